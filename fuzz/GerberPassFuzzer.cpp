// Any bytes through the Gerber text pass into TMP.ART, and what it wrote back through the reading
// of the header and sections. No input may crash, hang, read out of bounds or grow without end.
#include "FuzzWorkFolder.h"
#include "common/FileLayer.h"
#include "import/core/ReportStatus.h"
#include "import/gerber/ArtSections.h"
#include "import/gerber/GerberTextPass.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <string>

namespace {

const std::string& intermediatePath() {
  static const std::string path = (tvx::fuzz::workFolder() / "TMP.ART").string();
  return path;
}

const std::string& sourcePath() {
  static const std::string path = (tvx::fuzz::workFolder() / "fuzz.gbr").string();
  return path;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace tvx;
  ScriptedPrompts prompts;
  SystemServices services(&prompts);
  StatusTitles titles{"Fuzz", ""};
  FormatDigits digits;
  StatusReporter reporter(services, prompts, titles, digits);
  FileLayer files(services, &prompts);
  GerberFormat format;
  // The first byte picks the zero mode and the unit, as the settings could; the text is all of it.
  if (size > 0) {
    format.OmittedZeros = data[0] & 1;
    format.Unit = (data[0] >> 1) & 1;
  }
  GerberScan scan;
  const std::vector<ApertureTableRow> table = {{2540, 10, 20, 30}, {5080, 11, 21, 31}};
  GerberPassContext context{services, reporter, files, format, scan, &table, {}, {}, {}};
  std::ofstream(sourcePath(), std::ios::binary | std::ios::trunc)
      .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  int32_t status = 0;
  RunGerberTextPass(status, sourcePath(), intermediatePath(), context);
  if (status == 0) {
    ArtFile art;
    if (art.open(intermediatePath())) {
      GerberScan back;
      LoadArtHeader(status, art, false, back, reporter);
      if (status == 0)
        LoadArtHeader(status, art, true, back, reporter);
    }
  }
  return 0;
}
