// The Excellon format's part of the import road: stage one reads the file as blocks and scans its
// format and tools; the layer binding gives the drill layer's file record its tool table; stage
// two places the holes.
#pragma once

#include "import/core/FileReader.h"
#include "import/readers/excellon/ExcellonReader.h"

#include <functional>
#include <string>
#include <vector>

namespace tvx {

class FileLayer;

class ExcellonFileReader : public FileReader {
public:
  ExcellonFileReader(ExcellonReader& reader, FileLayer& files) : reader_(reader), files_(files) {}

  // A kind-3 file that scans as Format One is reported with status 94, and the import goes on.
  ScanResult scan(ImportJob& job) override;
  void prepareBoundFile(ImportJob& job, LayerFileRecord& file) override;
  void importFile(int32_t& status, const ImportJob& job, LayerRecord& layer,
                  LayerFileRecord& file) override;
  std::vector<std::string> notes() const override { return notes_; }

  // Loads the stored format into the reader's format state (the settings belong to the session).
  std::function<void()> restoreStoredFormat;

private:
  ExcellonReader& reader_;
  FileLayer& files_;
  std::vector<std::string> notes_;
};

}  // namespace tvx
