#include "import/readers/excellon/ExcellonFileReader.h"

#include "import/core/ReportStatus.h"
#include "import/core/StatusCodes.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace tvx {

ScanResult ExcellonFileReader::scan(ImportJob& job) {
  if (!ReadExcellonText(files_, reader_.services(), job.SourcePath, job.ExcellonText,
                        reader_.editMsgLine, &job.ExcellonComments, &notes_))
    return ScanResult::Failed;
  // The tool table is filled for real by the binding, into the drill layer's file record.
  // At the first scan the header is read whatever kind was recognised: a file with a header unit
  // and tool sizes is Format Two however its tool blocks are written ("T1F00S00C0.2").
  std::vector<ToolEntry> tools;
  const bool readHeader = job.Kind == ImportKind::ExcellonFormatTwo || !job.ExcellonFormatStarted;
  const auto found = static_cast<ImportKind>(
      reader_.ScanExcellonText(job.ExcellonText, tools, readHeader, false, job.ExcellonComments));
  if (found == ImportKind::Unknown) {
    reader_.reporter().ReportStatus(StatusNotSupported, job.SourcePath);
    return ScanResult::NotReadable;
  }
  if (found == ImportKind::ExcellonFormatOne && job.Kind == ImportKind::ExcellonFormatTwo)
    reader_.reporter().ReportStatus(StatusNotFormatTwo, job.SourcePath);
  job.Kind = found;
  // A Format One file starts from the stored format with what the file states of itself; a
  // later scan of the same file keeps what the user has set since.
  if (found == ImportKind::ExcellonFormatOne && !job.ExcellonFormatStarted) {
    if (restoreStoredFormat)
      restoreStoredFormat();
    reader_.ApplyStatedFormat(job.ExcellonText, job.ExcellonComments);
  }
  job.ExcellonFormatStarted = true;
  return ScanResult::Scanned;
}

void ExcellonFileReader::prepareBoundFile(ImportJob& job, LayerFileRecord& file) {
  job.Kind = static_cast<ImportKind>(reader_.ScanExcellonText(
      job.ExcellonText, file.Tools, job.Kind == ImportKind::ExcellonFormatTwo, false,
      job.ExcellonComments));
}

void ExcellonFileReader::importFile(int32_t& status, const ImportJob& job, LayerRecord& layer,
                                    LayerFileRecord& file) {
  reader_.ImportExcellon(status, job.ExcellonText, layer, file);
  // Kept for the matching of holes with pads, which allows for the file's rounding.
  const double step = reader_.coordinateStep();
  file.CoordinateStep = std::isfinite(step) ? int32_t(std::lround(std::clamp(step, 0.0, 1e6))) : 0;
}

}  // namespace tvx
