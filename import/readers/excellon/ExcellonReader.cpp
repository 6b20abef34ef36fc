// Reading an Excellon file into blocks, and the import of its holes into a layer.
#include "import/readers/excellon/ExcellonReader.h"

#include "common/FileLayer.h"
#include "import/core/FileRecognition.h"
#include "import/core/ReadTextFile.h"
#include "import/core/ReportStatus.h"
#include "import/readers/excellon/DrillMotion.h"
#include "import/readers/excellon/ExcellonBlocks.h"
#include "platform/SystemServices.h"

#include <cerrno>
#include <cmath>
#include <filesystem>
#include <unordered_set>

namespace tvx {

namespace {

bool isBlank(char c) { return c == ' ' || c == '\t'; }

void appendUpperCased(std::string& text, const std::string& line, size_t first, size_t last) {
  for (size_t i = first; i < last; ++i) {
    const char c = line[i];
    text += (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c;
  }
  text += '|';
}

// One line of the file as a block: upper-cased, trimmed, cut at its first ";". The comment from
// the ";" on goes to comments when they are kept.
void appendBlock(std::string& text, std::string* comments, const std::string& line) {
  size_t first = 0;
  size_t last = line.size();
  while (first < last && isBlank(line[first]))
    ++first;
  while (last > first && isBlank(line[last - 1]))
    --last;
  const size_t comment = line.find(';', first);
  if (comment != std::string::npos && comment < last) {
    if (comments)
      appendUpperCased(*comments, line, comment, last);
    last = comment;
  }
  if (first != last)
    appendUpperCased(text, line, first, last);
}

}  // namespace

bool ReadExcellonText(FileLayer& files, const SystemServices& services, const std::string& fileName,
                      std::string& text, const std::function<void(const std::string&)>& editMsgLine,
                      std::string* comments, std::vector<std::string>* notes) {
  text.clear();
  if (comments)
    comments->clear();
  if (notes)
    notes->clear();
  int64_t lines = 0;
  int64_t lastBlockLine = 0;
  size_t lastBlockStart = 0;
  const bool read =
      readTextFileLines(files, services, fileName, editMsgLine, [&](const std::string& line) {
        ++lines;
        const size_t before = text.size();
        appendBlock(text, comments, line);
        if (text.size() != before) {
          lastBlockLine = lines;
          lastBlockStart = before;
        }
      });
  if (!read) {
    text.clear();
    if (comments)
      comments->clear();
    return false;
  }
  ExcellonBlock last;
  ExcellonBlockWalker(std::string_view(text).substr(lastBlockStart)).next(last);
  if (text.empty() || isEndOfProgram(last[ExcellonBlock::M]))
    return true;
  // The end of the program is missing: the file was cut, inside its last block when that block's
  // line has no line end.
  const bool cutInBlock = lastBlockLine == lines && lastLineIsOpen(fileName);
  if (cutInBlock)
    text.resize(lastBlockStart);
  if (notes)
    notes->push_back("line " + std::to_string(lines) + ": " +
                     (cutInBlock ? "the file ends inside a block, which is dropped"
                                 : "the file ends without M30"));
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
  PlacedPoints placedPoints(store_, layer.SymbolHandle);
  std::unordered_set<int32_t> codes;
  for (const ToolEntry& tool : file.Tools)
    codes.insert(tool.Code);

  // A point of the file where the layer puts it: moved, and mirrored about the axis.
  const auto placed = [&](Point p) {
    Point q{p.x - extents_.MinX + offX, p.y - extents_.MinY + offY};
    if (file.Mirror)
      q.x = axis - q.x + axis;
    return q;
  };
  const auto inWorld = [](Point p) {
    return std::abs(p.x) <= WorldLimit && std::abs(p.y) <= WorldLimit;
  };
  const auto tally = [this](HolePlacement placement) {
    switch (placement) {
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
  };

  int32_t toolCode = 0;
  bool outside = false;
  DrillMotion motion(text);
  {
    // Modal coordinates go on from where the registers stand, also from an earlier file.
    const double x = file.Mirror ? 2.0 * axis - RegisterX : RegisterX;
    motion.startAt({x + extents_.MinX - offX, RegisterY + extents_.MinY - offY});
  }
  const auto decode = [this](const std::string& field) { return coordinate(field); };
  walkExcellonProgram(
      text, yield, YieldBlocks, [&](const ExcellonBlock& block, std::optional<int32_t> selected) {
        if (selected)
          toolCode = codes.count(*selected) ? *selected : 0;
        motion.take(block, decode, [&](const DrillStroke& stroke) {
          if (outside)
            return;
          const SlotPath path{placed(stroke.from), placed(stroke.to), placed(stroke.centre),
                              stroke.clockwise != file.Mirror, stroke.kind == DrillStroke::Arc};
          if (!inWorld(path.from) || !inWorld(path.to)) {
            outside = true;
            return;
          }
          // The registers hold where the tool stands, for a later file's modal coordinates.
          RegisterX = path.to.x;
          RegisterY = path.to.y;
          if (stroke.kind == DrillStroke::Hole) {
            tally(PlaceHole(store_, path.from.x, path.from.y, toolCode, layer, file, &sizes,
                            &placedPoints));
          } else {
            const HolePlacement placement = PlaceSlot(store_, path, toolCode, layer, file, &sizes);
            if (stroke.startsCut) {
              tally(placement);
              if (placement == HolePlacement::Placed)
                ++LastImport.Slots;
            }
          }
        });
        return !outside;
      });
  if (outside) {
    reporter_.ReportStatus(StatusOutsideLimits, file.FileName);
    status = 1;
    return;
  }
  status = 0;
}

}  // namespace tvx
