// The Excellon scan: header, tool table, hole counts and extents; and the coordinate decoder.
#include "import/readers/excellon/ExcellonBlocks.h"
#include "import/readers/excellon/ExcellonReader.h"

#include "common/ToNumber.h"
#include "import/core/FileRecognition.h"
#include "import/gerber/GerberFormat.h"
#include "platform/SystemServices.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <unordered_map>

namespace tvx {

namespace {

constexpr size_t NotFound = std::string_view::npos;

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

double ExcellonReader::fileLength(const std::string& field) const {
  return ToNumber(field) / unitTableValue(format_.XYunit) * services_.DatabaseUnitsPerMm();
}

double ExcellonReader::coordinate(const std::string& field) const {
  if (field.find('.') != std::string::npos)
    return fileLength(field);
  std::string digits = field;
  return DecodeExcellonNumber(digits);
}

int32_t ExcellonReader::ScanExcellonText(const std::string& text, std::vector<ToolEntry>& tools,
                                         bool readHeader, bool keepTools) {
  if (!keepTools)
    tools.clear();
  extents_ = FileExtents{WorldLimit, WorldLimit, -WorldLimit, -WorldLimit};
  for (ToolEntry& tool : tools)
    tool.HoleCount = 0;

  const bool headerUnitSeen = readHeader && this->readHeader(text);
  bool toolSizeSeen = false;
  bool toolSeen = false;
  bool coordinatesSeen = false;

  // Where each code first stands in the table, so that a tool costs no walk of the table.
  std::unordered_map<int32_t, size_t> slots;
  for (size_t i = 0; i < tools.size(); ++i)
    slots.emplace(tools[i].Code, i);

  size_t current = 0;
  bool hasCurrent = false;
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
                        const std::string& x = block[ExcellonBlock::X];
                        const std::string& y = block[ExcellonBlock::Y];
                        if ((x.empty() && y.empty()) || tools.empty() || !hasCurrent)
                          return true;
                        ++tools[current].HoleCount;
                        coordinatesSeen = true;
                        if (!x.empty())
                          widen(coordinate(x), extents_.MinX, extents_.MaxX);
                        if (!y.empty())
                          widen(coordinate(y), extents_.MinY, extents_.MaxY);
                        return true;
                      });

  if (headerUnitSeen && toolSizeSeen && toolSeen && coordinatesSeen)
    return static_cast<int32_t>(ImportKind::ExcellonFormatTwo);
  if (toolSeen && coordinatesSeen)
    return static_cast<int32_t>(ImportKind::ExcellonFormatOne);
  return static_cast<int32_t>(ImportKind::Unknown);
}

}  // namespace tvx
