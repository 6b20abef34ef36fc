// The Excellon scan: header, tool table, hole counts and extents; and the coordinate decoder.
#include "import/readers/excellon/DrillMotion.h"
#include "import/readers/excellon/ExcellonBlocks.h"
#include "import/readers/excellon/ExcellonReader.h"
#include "import/readers/excellon/ExcellonStatements.h"

#include "common/ToNumber.h"
#include "import/core/FileRecognition.h"
#include "import/gerber/GerberFormat.h"
#include "platform/SystemServices.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tvx {

namespace {

constexpr size_t NotFound = std::string_view::npos;

// Holes of one cell that the check for holes inside one another compares a hole with, at most.
constexpr size_t NeighboursLooked = 64;

// How many programs back a tool without a size looks for one of its number.
constexpr int MaxProgramsBack = 1000;

// Padding beyond this many digits cannot change a decoded value any more: right-padding a digit
// other than 0 by so many zeros leaves the range of a double, which reads as 0.
constexpr int64_t MaxPadding = 330;

void widen(double value, double& minimum, double& maximum) {
  if (value < minimum)
    minimum = value;
  if (value > maximum)
    maximum = value;
}

bool allDigits(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

bool ExcellonReader::readHeader(const std::string& text) {
  ExcellonFormat& f = format_;
  bool unitSeen = false;
  const std::string_view all(text);
  const size_t start = all.find("M48");
  if (start != NotFound) {
    size_t end = all.find('%', start);
    if (end == NotFound)
      end = all.find("M95", start);
    if (end != NotFound) {
      // The header runs to three characters behind its end mark.
      const std::string_view header = all.substr(start, std::min(end + 3, all.size()) - start);
      if (header.find("INCH") != NotFound) {
        f.XYunit = 0;
        f.XYFormB = 2;
        f.XYFormA = 4;
        unitSeen = true;
      } else if (const size_t metric = header.find("METRIC"); metric != NotFound) {
        f.XYunit = 1;
        f.XYFormB = 3;
        f.XYFormA = 3;
        unitSeen = true;
        // A format behind the unit counts when its line ends inside the header.
        const size_t rest = metric + 6;
        if (const size_t lineEnd = header.find('|', rest); lineEnd != NotFound) {
          const std::string_view line = header.substr(rest, lineEnd - rest);
          if (line.find("000.000") != NotFound) {
            f.XYFormB = 3;
            f.XYFormA = 3;
          } else if (line.find("0000.00") != NotFound) {
            f.XYFormB = 4;
            f.XYFormA = 2;
          } else if (line.find("000.00") != NotFound) {
            f.XYFormB = 3;
            f.XYFormA = 2;
          }
        }
      }
      if (header.find("LZ") != NotFound)
        f.OMZeros = 0;
      else if (header.find("TZ") != NotFound)
        f.OMZeros = 1;
    }
  }
  if (!unitSeen) {
    // The unit codes of the program, which give the unit but do not make a Format Two file.
    if (all.find("M72") != NotFound) {
      f.XYunit = 0;
      f.XYFormB = 2;
      f.XYFormA = 4;
    } else if (all.find("M71") != NotFound) {
      f.XYunit = 1;
      f.XYFormB = 3;
      f.XYFormA = 3;
    }
  }
  return unitSeen;
}

double ExcellonReader::DecodeExcellonNumber(std::string& digits) const {
  const ExcellonFormat& f = format_;
  int64_t width = int64_t(f.XYFormB) + f.XYFormA;
  double sign = 1.0;
  if (const size_t plus = digits.find('+'); plus != std::string::npos)
    digits.erase(0, plus + 1);
  if (const size_t minus = digits.find('-'); minus != std::string::npos) {
    digits.erase(0, minus + 1);
    sign = -1.0;
  }
  const auto length = static_cast<int64_t>(digits.size());
  width = std::max(width, length);
  const int64_t padding = width - length;

  double value = 0.0;
  if (padding > MaxPadding) {
    // Zeros at the front change nothing; zeros at the end of a number make it too large to read
    // (0), unless something other than a digit ends the number before them.
    value = f.OMZeros == 0 && allDigits(digits) ? 0.0 : ToNumber(digits);
  } else if (f.OMZeros == 0) {
    value = ToNumber(digits + std::string(size_t(padding), '0'));
  } else if (f.OMZeros == 1) {
    value = ToNumber(std::string(size_t(padding), '0') + digits);
  } else {
    value = ToNumber(digits);
  }
  return value / std::pow(10.0, f.XYFormA) / unitTableValue(f.XYunit) *
         services_.DatabaseUnitsPerMm() * sign;
}

double ExcellonReader::coordinateStep() const {
  return std::pow(10.0, -format_.XYFormA) / unitTableValue(format_.XYunit) *
         services_.DatabaseUnitsPerMm();
}

double ExcellonReader::fileLength(const std::string& field) const {
  return ToNumber(field) / unitTableValue(format_.XYunit) * services_.DatabaseUnitsPerMm();
}

double ExcellonReader::coordinate(const std::string& field) const {
  if (field.find('.') != std::string::npos)
    return fileLength(field);
  std::string digits = field;
  return DecodeExcellonNumber(digits);
}

namespace {

// Holes of a board: none farther than 2 m from the origin, and no board wider than 1 m. A reading
// off by a power of ten gives holes metres apart or lands beyond the world.
bool fitsBoard(const FileExtents& e, double unitsPerMm) {
  if (e.MinX > e.MaxX || e.MinY > e.MaxY)
    return true;  // no holes
  const double farthest =
      std::max({std::abs(e.MinX), std::abs(e.MaxX), std::abs(e.MinY), std::abs(e.MaxY)});
  const double widest = std::max(e.MaxX - e.MinX, e.MaxY - e.MinY);
  return farthest <= 2000.0 * unitsPerMm && widest <= 1000.0 * unitsPerMm;
}

// The digits that a unit line gives when it names no pattern.
void unitDigits(ExcellonFormat& f) {
  f.XYFormB = f.XYunit == 0 ? 2 : 3;
  f.XYFormA = f.XYunit == 0 ? 4 : 3;
}

}  // namespace

bool ExcellonReader::ApplyStatedFormat(const std::string& text, std::string_view comments) {
  // The binding and the import scan a file again with the same text and format: the answer of
  // the first time stands.
  const StatedMemo asked{std::hash<std::string_view>()(text),
                         std::hash<std::string_view>()(comments), format_};
  if (memo_ && memo_->asked == asked) {
    format_ = memo_->format;
    return memo_->unitLineAhead;
  }
  const bool unitLineAhead = applyStatedFormat(text, comments);
  memo_ = StatedAnswer{asked, format_, unitLineAhead};
  return unitLineAhead;
}

bool ExcellonReader::applyStatedFormat(const std::string& text, std::string_view comments) {
  ExcellonFormat& f = format_;
  const StatedFormat stated = ReadStatedFormat(text, comments);
  if (stated.unit && *stated.unit != f.XYunit) {
    f.XYunit = *stated.unit;
    unitDigits(f);
  }
  const DigitEvidence evidence = GatherDigitEvidence(text);
  if (stated.zeros)
    f.OMZeros = *stated.zeros;
  else if (const std::optional<int32_t> shown = ZerosShownBy(evidence))
    f.OMZeros = *shown;
  if (stated.integerDigits) {
    f.XYFormB = *stated.integerDigits;
    f.XYFormA = *stated.decimalDigits;
    return stated.unitLineAhead;
  }
  if (evidence.numbers == 0)
    return stated.unitLineAhead;

  // Left-aligned numbers are placed by their digits before the point, right-aligned ones by those
  // behind it: the widest number fills the rest.
  const bool leftAligned = f.OMZeros == 0;
  int32_t& placing = leftAligned ? f.XYFormB : f.XYFormA;
  int32_t& filling = leftAligned ? f.XYFormA : f.XYFormB;
  filling = std::max(filling, evidence.widest - placing);
  if (plausible(text))
    return stated.unitLineAhead;
  // Fewer places shrink left-aligned readings; more places shrink right-aligned ones.
  const int32_t kept = placing;
  const int32_t keptFilling = filling;
  for (const int32_t change : {-1, 1, -2, 2}) {
    placing = kept + (leftAligned ? change : -change);
    if (placing < 0 || placing > 9)
      continue;
    filling = std::max(keptFilling, evidence.widest - placing);
    if (plausible(text))
      return stated.unitLineAhead;
  }
  placing = kept;
  filling = keptFilling;
  return stated.unitLineAhead;
}

bool ExcellonReader::plausible(const std::string& text) const {
  // Holes with the diameters of their tools, where the file gives them.
  struct Drilled {
    Point centre;
    double radius;
  };
  std::vector<Drilled> holes;
  FileExtents extents{WorldLimit, WorldLimit, -WorldLimit, -WorldLimit};
  std::unordered_map<int32_t, double> radii;
  double radius = 0.0;
  double largest = 0.0;
  DrillMotion motion(text);
  const auto decode = [this](const std::string& field) { return coordinate(field); };
  ExcellonBlock block;
  ExcellonBlockWalker walker(text);
  while (walker.next(block)) {
    if (const std::string& t = block[ExcellonBlock::T]; !t.empty()) {
      const int32_t code = toInt32(ToNumber(t));
      if (const std::string& c = block[ExcellonBlock::C]; !c.empty())
        radii[code] = fileLength(c) / 2.0;
      radius = radii.count(code) ? radii[code] : 0.0;
      largest = std::max(largest, radius);
    }
    motion.take(block, decode, [&](const DrillStroke& stroke) {
      widen(stroke.from.x, extents.MinX, extents.MaxX);
      widen(stroke.from.y, extents.MinY, extents.MaxY);
      widen(stroke.to.x, extents.MinX, extents.MaxX);
      widen(stroke.to.y, extents.MinY, extents.MaxY);
      if (stroke.kind == DrillStroke::Hole && radius > 0.0 && std::isfinite(stroke.from.x) &&
          std::isfinite(stroke.from.y))
        holes.push_back({stroke.from, radius});
    });
  }
  if (!fitsBoard(extents, services_.DatabaseUnitsPerMm()))
    return false;
  if (holes.size() < 2 || largest <= 0.0)
    return true;

  // Drills do not stand inside one another: a reading that puts many a hole's centre inside a
  // larger hole is off by a power of ten. The holes sorted by cells as wide as the largest hole
  // find their neighbours; up to SampledHoles of them, spread over the file, are looked at.
  const double cell = 2.0 * largest;
  // A cell and a hole's index in one word, cells in the order of their rows: 20 bits each for
  // the cell's column and row (the world is narrower than 2^20 cells of the smallest hole wider
  // than 0.5 mm), 24 for the index.
  constexpr int64_t Half = int64_t(1) << 19;
  const auto index = [cell](double v, int64_t step) {
    const double limit = double(Half - 2);
    return int64_t(std::clamp(std::floor(v / cell), -limit, limit)) + step + Half;
  };
  const auto cellKey = [&](Point p, int64_t dx, int64_t dy) {
    return uint64_t(index(p.x, dx)) << 44 | uint64_t(index(p.y, dy)) << 24;
  };
  const size_t counted = std::min<size_t>(holes.size(), size_t(1) << 24);
  std::vector<uint64_t> sorted(counted);
  for (size_t i = 0; i < counted; ++i)
    sorted[i] = cellKey(holes[i].centre, 0, 0) | i;
  std::sort(sorted.begin(), sorted.end());
  constexpr uint64_t IndexBits = (uint64_t(1) << 24) - 1;
  const size_t stride = std::max<size_t>(1, counted / SampledHoles);
  size_t looked = 0;
  size_t inside = 0;
  for (size_t i = 0; i < counted; i += stride) {
    ++looked;
    const Drilled& hole = holes[i];
    bool found = false;
    for (int64_t dx = -1; dx <= 1 && !found; ++dx)
      for (int64_t dy = -1; dy <= 1 && !found; ++dy) {
        const uint64_t key = cellKey(hole.centre, dx, dy);
        // A cell crowded beyond NeighboursLooked (holes drilled again and again on one point)
        // is looked at in part.
        auto it = std::lower_bound(sorted.begin(), sorted.end(), key);
        for (size_t seen = 0;
             it != sorted.end() && (*it & ~IndexBits) == key && !found && seen < NeighboursLooked;
             ++it, ++seen) {
          const Drilled& other = holes[*it & IndexBits];
          const double ddx = other.centre.x - hole.centre.x;
          const double ddy = other.centre.y - hole.centre.y;
          const double d2 = ddx * ddx + ddy * ddy;
          found = d2 > 0.0 && other.radius > hole.radius && d2 < other.radius * other.radius;
        }
      }
    if (found)
      ++inside;
  }
  return inside * 20 < looked;  // under 5%
}

int32_t ExcellonReader::ScanExcellonText(const std::string& text, std::vector<ToolEntry>& tools,
                                         bool readHeader, bool keepTools,
                                         std::string_view comments) {
  if (!keepTools)
    tools.clear();
  extents_ = FileExtents{WorldLimit, WorldLimit, -WorldLimit, -WorldLimit};
  for (ToolEntry& tool : tools)
    tool.HoleCount = 0;

  bool headerUnitSeen = readHeader && this->readHeader(text);
  if (readHeader && ApplyStatedFormat(text, comments))
    headerUnitSeen = true;
  bool toolSizeSeen = false;
  bool toolSeen = false;
  bool coordinatesSeen = false;

  // Where each code first stands in the table, so that a tool costs no walk of the table.
  std::unordered_map<int32_t, size_t> slots;
  for (size_t i = 0; i < tools.size(); ++i)
    slots.emplace(tools[i].Code, i);

  size_t current = 0;
  bool hasCurrent = false;
  DrillMotion motion(text);
  const auto decode = [this](const std::string& field) { return coordinate(field); };
  walkExcellonProgram(text, yield, YieldBlocks,
                      [&](const ExcellonBlock& block, std::optional<int32_t> code) {
                        if (code) {
                          const auto [slot, added] = slots.emplace(*code, tools.size());
                          if (added)
                            tools.push_back(ToolEntry{*code, 0, 1, 0});
                          current = slot->second;
                          hasCurrent = true;
                          if (const std::string& c = block[ExcellonBlock::C]; !c.empty()) {
                            if (!keepTools)
                              tools[current].Diameter = toInt32(fileLength(c));
                            toolSizeSeen = true;
                          }
                          toolSeen = true;
                        }
                        if (tools.empty() || !hasCurrent) {
                          // Nothing is drilled before a tool, but the tool's way is followed.
                          motion.take(block, decode, [](const DrillStroke&) {});
                          return true;
                        }
                        motion.take(block, decode, [&](const DrillStroke& stroke) {
                          if (stroke.startsCut)
                            ++tools[current].HoleCount;
                          coordinatesSeen = true;
                          widen(stroke.from.x, extents_.MinX, extents_.MaxX);
                          widen(stroke.from.y, extents_.MinY, extents_.MaxY);
                          widen(stroke.to.x, extents_.MinX, extents_.MaxX);
                          widen(stroke.to.y, extents_.MinY, extents_.MaxY);
                        });
                        return true;
                      });
  if (!keepTools)
    completeToolSizes(tools, comments);

  if (headerUnitSeen && toolSizeSeen && toolSeen && coordinatesSeen)
    return static_cast<int32_t>(ImportKind::ExcellonFormatTwo);
  if (toolSeen && coordinatesSeen)
    return static_cast<int32_t>(ImportKind::ExcellonFormatOne);
  return static_cast<int32_t>(ImportKind::Unknown);
}

void ExcellonReader::completeToolSizes(std::vector<ToolEntry>& tools,
                                       std::string_view comments) const {
  const std::map<int32_t, double> stated = ToolSizesInComments(comments, format_.XYunit);
  std::unordered_map<int32_t, int32_t> sizes;
  for (const ToolEntry& tool : tools)
    if (tool.Diameter != 0)
      sizes.emplace(tool.Code, tool.Diameter);
  for (ToolEntry& tool : tools) {
    if (tool.Diameter != 0)
      continue;
    if (const auto it = stated.find(tool.Code); it != stated.end()) {
      tool.Diameter = toInt32(it->second * services_.DatabaseUnitsPerMm());
    } else {
      // A program behind an "M30" that selects a tool it does not define drills with the size
      // that the same number had before.
      int64_t code = int64_t(tool.Code) - ProgramOffsetStep;
      for (int programs = 0; code >= 0 && tool.Diameter == 0 && programs < MaxProgramsBack;
           code -= ProgramOffsetStep, ++programs)
        if (const auto size = sizes.find(int32_t(code)); size != sizes.end())
          tool.Diameter = size->second;
    }
  }
}

}  // namespace tvx
