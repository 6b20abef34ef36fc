#include "import/gerber/GerberFileReader.h"

#include "import/core/ReportStatus.h"
#include "import/core/StatusCodes.h"
#include "import/gerber/ArtSections.h"
#include "import/gerber/GerberDrawing.h"

#include <filesystem>

namespace tvx {

std::string intermediatePathIn(const std::string& workDirectory) {
  if (workDirectory.empty() || workDirectory.back() == '/')
    return workDirectory + "TMP.ART";
  return workDirectory + "/TMP.ART";
}

ScanResult GerberFileReader::scan(ImportJob& job) {
  job.Prepared = false;
  // Without a work directory (a command line run) TMP.ART goes to the system's temporary folder
  // rather than wherever the process happens to stand.
  std::error_code error;
  const std::string folder = job.WorkDirectory.empty()
                                 ? std::filesystem::temp_directory_path(error).string()
                                 : job.WorkDirectory;
  job.IntermediatePath = intermediatePathIn(folder);
  int32_t status = StatusOk;
  RunGerberTextPass(status, job.SourcePath, job.IntermediatePath, pass_);
  if (status != StatusOk) {
    job.IntermediatePath.clear();
    // Text that is no Gerber ends the import; a pass that stopped on a value (coordinates outside
    // the limits, a range error) leaves the format to be corrected and the file read again.
    return pass_.scan.NotGerber ? ScanResult::NotReadable : ScanResult::Failed;
  }
  const ArtHeader& header = pass_.scan.Header;
  extents_ = {header.MinX, header.MinY, header.MaxX, header.MaxY};
  return ScanResult::Scanned;
}

void GerberFileReader::importFile(int32_t& status, const ImportJob& job, LayerRecord& layer,
                                  LayerFileRecord& file) {
  ArtFile art;
  if (!art.open(file.FileName)) {
    reporter_.ReportStatus(StatusCannotLoad, file.FileName);
    status = StatusReported;
    return;
  }
  status = StatusOk;
  if (art.recordCount() < artrecord::HeaderRecords) {
    reporter_.ReportStatus(StatusIncorrectFormat, file.FileName);
    status = StatusReported;
    return;
  }
  // A cut-off last record: the whole records are imported, then the damage is reported.
  const bool truncated = art.hasPartialRecord();
  LoadArtHeader(status, art, false, pass_.scan, reporter_);
  int32_t elements = 0;
  if (status == StatusOk) {
    const GerberDrawContext drawing{store_, reporter_, pass_.scan, clearColour, pass_.yield};
    elements = DrawGerberStream(status, art, layer, file, drawing);
  }
  art.close();
  if (status == StatusOk && truncated) {
    reporter_.ReportStatus(StatusIncorrectFormat, file.FileName);
    status = StatusReported;
    return;
  }
  // A layer without draws, flashes or regions (a header and apertures alone) is imported empty;
  // the user is told so, and the import stands.
  if (status == StatusOk && elements == 0)
    reporter_.ReportStatus(StatusNothingToImport,
                           ": " + (job.SourcePath.empty() ? file.FileName : job.SourcePath));
}

std::vector<std::string> GerberFileReader::notes() const { return noteTexts(pass_.scan); }

}  // namespace tvx
