// Reading an Excellon file into blocks, and the import of its holes into a layer.
#include "import/readers/excellon/ExcellonReader.h"

#include "common/FileLayer.h"
#include "import/core/FileRecognition.h"
#include "import/core/ReportStatus.h"
#include "import/readers/excellon/ExcellonBlocks.h"
#include "platform/SystemServices.h"

#include <cerrno>
#include <cmath>
#include <filesystem>
#include <unordered_set>

namespace tvx {

namespace {

bool isBlank(char c) { return c == ' ' || c == '\t'; }

// One line of the file as a block: upper-cased, trimmed, cut at its first ";".
void appendBlock(std::string& text, const std::string& line) {
  size_t first = 0;
  size_t last = line.size();
  while (first < last && isBlank(line[first]))
    ++first;
  while (last > first && isBlank(line[last - 1]))
    --last;
  const size_t comment = line.find(';', first);
  if (comment != std::string::npos && comment < last)
    last = comment;
  if (first == last)
    return;
  for (size_t i = first; i < last; ++i) {
    const char c = line[i];
    text += (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c;
  }
  text += '|';
}

}  // namespace

bool ReadExcellonText(FileLayer& files, const SystemServices& services, const std::string& fileName,
                      std::string& text,
                      const std::function<void(const std::string&)>& editMsgLine) {
  text.clear();
  if (editMsgLine)
    editMsgLine(fileName + " " + services.LocalMessage("Processing", "62441"));

  // Only a plain file is read: a folder reads as empty and a pipe may never end.
  std::error_code error;
  const auto type = std::filesystem::status(fileName, error).type();
  if (type == std::filesystem::file_type::directory) {
    files.ReportReadError(fileName, EISDIR);
    return false;
  }
  if (type != std::filesystem::file_type::regular &&
      type != std::filesystem::file_type::not_found && type != std::filesystem::file_type::none) {
    files.ReportReadError(fileName, EINVAL);
    return false;
  }

  int32_t status = 0;
  int16_t handle = 0;
  files.OpenForInput(status, handle, fileName);
  if (status != 0)
    return false;
  std::string line;
  while (!files.EndOfFile(handle)) {
    files.ReadTextLine(status, handle, line);
    if (status != 0) {
      files.CloseFile(false, handle, fileName);
      text.clear();
      return false;
    }
    appendBlock(text, line);
  }
  files.CloseFile(false, handle, fileName);
  return true;
}

ExcellonReader::ExcellonReader(Store& store, const SystemServices& services,
                               const StatusReporter& reporter, ExcellonFormat& format,
                               FileExtents& extents)
    : store_(store), services_(services), reporter_(reporter), format_(format), extents_(extents) {}

void ExcellonReader::ImportExcellon(int32_t& status, const std::string& text, LayerRecord& layer,
                                    LayerFileRecord& file) {
  LastImport = HoleTally{};
  // Adds the tools that the table lacks and counts the holes anew; the table's sizes stay.
  ScanExcellonText(text, file.Tools, false, true);

  // The placement: centred on the origin unless the file's own coordinates are kept, then moved
  // by the offsets. The mirror axis is taken before a kept file's minima become 0.
  double offX = 0.0;
  double offY = 0.0;
  if (!file.OriginalCoordinates) {
    offX = -(extents_.MaxX - extents_.MinX) / 2.0;
    offY = -(extents_.MaxY - extents_.MinY) / 2.0;
  }
  offX += file.OffsetX;
  offY += file.OffsetY;
  const double axis = (extents_.MaxX - extents_.MinX) / 2.0 + offX;
  if (file.OriginalCoordinates) {
    extents_.MinX = 0.0;
    extents_.MinY = 0.0;
  }

  const HoleSizes sizes(file.Tools);
  std::unordered_set<int32_t> codes;
  for (const ToolEntry& tool : file.Tools)
    codes.insert(tool.Code);

  int32_t toolCode = 0;
  bool outside = false;
  walkExcellonProgram(
      text, yield, YieldBlocks, [&](const ExcellonBlock& block, std::optional<int32_t> selected) {
        if (selected)
          toolCode = codes.count(*selected) ? *selected : 0;
        const std::string& x = block[ExcellonBlock::X];
        const std::string& y = block[ExcellonBlock::Y];
        if (x.empty() && y.empty())
          return true;
        if (!x.empty()) {
          RegisterX = coordinate(x) - extents_.MinX + offX;
          if (file.Mirror)
            RegisterX = axis - RegisterX + axis;
        }
        if (!y.empty())
          RegisterY = coordinate(y) - extents_.MinY + offY;

        if (!(std::abs(RegisterX) <= WorldLimit && std::abs(RegisterY) <= WorldLimit)) {
          outside = true;
          return false;
        }
        switch (PlaceHole(store_, RegisterX, RegisterY, toolCode, layer, file, &sizes)) {
        case HolePlacement::Placed:
          ++LastImport.Placed;
          break;
        case HolePlacement::Covered:
          ++LastImport.Covered;
          break;
        case HolePlacement::WithoutSize:
          ++LastImport.WithoutSize;
          break;
        case HolePlacement::ClearPolarity:
        case HolePlacement::StoreRefused:
          ++LastImport.StoreRefused;
          break;
        }
        return true;
      });
  if (outside) {
    reporter_.ReportStatus(StatusOutsideLimits, file.FileName);
    status = 1;
    return;
  }
  status = 0;
}

}  // namespace tvx
