// "gbrview reconstruct": files through the windowless import, then the layers sorted into the
// board categories with the options' defaults, and the report printed.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tvx {

struct ReconstructOptions {
  bool json = false;
  std::optional<int32_t> via;  // the via pads' D-code, in place of the question
  std::string apertureTable;   // --apt, as for render
  std::vector<std::string> files;
  std::vector<int32_t> layers;  // the layer --layer binds to each file; 0 where none
};

struct ReconstructOutcome {
  int exitCode = 0;                   // 0 done, 1 a file failed or nothing to import, 2 bad --apt
  std::string report;                 // for stdout
  std::vector<std::string> messages;  // one line each, for stderr
};

ReconstructOutcome reconstructFiles(const ReconstructOptions& options);

}  // namespace tvx
