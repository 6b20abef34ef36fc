#include "import/readers/excellon/ExcellonFileReader.h"

#include "import/core/ReportStatus.h"
#include "import/core/StatusCodes.h"

#include <vector>

namespace tvx {

ScanResult ExcellonFileReader::scan(ImportJob& job) {
  if (!ReadExcellonText(files_, reader_.services(), job.SourcePath, job.ExcellonText,
                        reader_.editMsgLine))
    return ScanResult::Failed;
  // The tool table is filled for real by the binding, into the drill layer's file record.
  std::vector<ToolEntry> tools;
  const auto found = static_cast<ImportKind>(reader_.ScanExcellonText(
      job.ExcellonText, tools, job.Kind == ImportKind::ExcellonFormatTwo, false));
  if (found == ImportKind::Unknown) {
    reader_.reporter().ReportStatus(StatusNotSupported, job.SourcePath);
    return ScanResult::NotReadable;
  }
  if (found == ImportKind::ExcellonFormatOne && job.Kind == ImportKind::ExcellonFormatTwo)
    reader_.reporter().ReportStatus(StatusNotFormatTwo, job.SourcePath);
  job.Kind = found;
  return ScanResult::Scanned;
}

void ExcellonFileReader::prepareBoundFile(ImportJob& job, LayerFileRecord& file) {
  job.Kind = static_cast<ImportKind>(reader_.ScanExcellonText(
      job.ExcellonText, file.Tools, job.Kind == ImportKind::ExcellonFormatTwo, false));
}

void ExcellonFileReader::importFile(int32_t& status, const ImportJob& job, LayerRecord& layer,
                                    LayerFileRecord& file) {
  reader_.ImportExcellon(status, job.ExcellonText, layer, file);
}

}  // namespace tvx
