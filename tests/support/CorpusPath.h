// Where the shared corpus of real input files lies: $TVX_CORPUS_DIR, else the folder
// "shared/corpus" beside the source tree, else the workspace's shared folder. Empty when none
// exists; corpus tests then skip.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

namespace tvx::test {

inline std::string corpusDir() {
  namespace fs = std::filesystem;
  std::error_code ec;
  if (const char* env = std::getenv("TVX_CORPUS_DIR"); env && fs::is_directory(env, ec))
    return env;
  for (const char* candidate : {TVX_SOURCE_DIR "/../shared/corpus", "/work/shared/corpus"})
    if (fs::is_regular_file(fs::path(candidate) / "MANIFEST.tsv", ec))
      return fs::weakly_canonical(candidate, ec).string();
  return {};
}

}  // namespace tvx::test
