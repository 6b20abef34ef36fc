#include "import/readers/dxf/DxfFileReader.h"

#include "import/core/ReportStatus.h"
#include "import/core/StatusCodes.h"
#include "import/readers/dxf/DxfLoader.h"

#include <cstdio>

namespace tvx {

ScanResult DxfFileReader::scan(ImportJob& job) {
  switch (ReadDxfFile(files_, services_, job.SourcePath, job.DxfText, editMsgLine)) {
  case DxfLoad::Unreadable:
    return ScanResult::Failed;
  case DxfLoad::Binary:
    reporter_.ReportStatus(StatusBinaryDxf, job.SourcePath);
    return ScanResult::Failed;
  case DxfLoad::Read:
    break;
  }
  if (!job.DxfUnitStarted) {
    // The drawing's own unit, when it states one the unit row has, is where the row starts.
    const int32_t unit = dxfUnitOfInsUnits(dxfHeaderOf(job.DxfText).InsUnits);
    if (unit >= 0)
      format_.DxfUnit = unit;
    job.DxfUnitStarted = true;
  }
  return ScanResult::Scanned;
}

void DxfFileReader::importFile(int32_t& status, const ImportJob& job, LayerRecord& layer,
                               LayerFileRecord& file) {
  lastReport = {};
  ImportDxf(status, job.DxfText, store_, layer, file, format_, &lastReport);
  if (lastReport.removed == 0)
    return;
  if (lastReport.outOfRange) {
    const auto length = [this](double storeLength) {
      if (formatLength)
        return formatLength(storeLength);
      char text[32];
      std::snprintf(text, sizeof text, "%.3f", storeLength / StoreUnitsPerMm);
      return std::string(text);
    };
    std::string size = "(" + length(lastReport.sizeX);
    size += " X " + length(lastReport.sizeY);
    size += (unitWord ? unitWord() : std::string(" mm")) + ")";
    reporter_.ReportStatus(StatusExtentsTruncated, size);
  } else {
    reporter_.ReportStatus(StatusFarElementsLeftOut, std::to_string(lastReport.removed));
  }
}

}  // namespace tvx
