// The coordinate format of the Gerber file being read, and the unit arithmetic that turns file
// lengths into store units.
#pragma once

#include "import/core/ReportStatus.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>

namespace tvx {

// Axis indexes of the per-axis format fields.
enum GerberAxis : int { AxisX = 0, AxisY = 1 };

// The format in force. Start values are the "GERBER" import settings; an RS-274-X file overrides
// them with its own MO, FS and SF blocks, and what it sets stays for the next file.
struct GerberFormat {
  int32_t Unit = 0;                            // 0 inch, 1 millimetre
  std::array<int32_t, 2> IntegerDigits{2, 2};  // digits before the point, X and Y
  std::array<int32_t, 2> DecimalDigits{3, 3};  // digits after the point
  int32_t OmittedZeros = 0;                    // 0 trailing zeros omitted, 1 leading zeros omitted
  std::array<double, 2> Scale{1.0, 1.0};       // each coordinate is divided by this

  bool operator==(const GerberFormat&) const = default;
};

// The digits of the X axis, for the range error message.
inline FormatDigits formatDigitsOf(const GerberFormat& format) {
  return {format.IntegerDigits[AxisX], format.DecimalDigits[AxisX]};
}

// The unit table: a length L in file units is L / unitTableValue(unit) millimetres. Index 1 is the
// millimetre; every other index reads as the inch, so a hand-edited setting cannot index outside.
inline double unitTableValue(int32_t unit) { return unit == 1 ? 1.0 : 1.0 / 25.4; }

// To the nearest whole number, a half to the even neighbour (the default rounding mode).
inline double wholeNumber(double value) { return std::nearbyint(value); }

// A double into a 32-bit field: whole, and held to the field's range; NaN gives 0.
inline int32_t toInt32(double value) {
  if (std::isnan(value))
    return 0;
  const double w = wholeNumber(value);
  if (w >= static_cast<double>(std::numeric_limits<int32_t>::max()))
    return std::numeric_limits<int32_t>::max();
  if (w <= static_cast<double>(std::numeric_limits<int32_t>::min()))
    return std::numeric_limits<int32_t>::min();
  return static_cast<int32_t>(w);
}

// The whole part (towards zero) into a 32-bit field, held to its range; NaN gives 0.
inline int32_t truncToInt32(double value) { return toInt32(std::trunc(value)); }

// How file lengths become store units under one unit.
struct LengthScale {
  int32_t unit = 0;
  int32_t unitsPerMm = 100000;

  // value / unit table x store units per millimetre, not rounded.
  double exact(double value) const { return value / unitTableValue(unit) * unitsPerMm; }
  // The same, whole.
  double length(double value) const { return wholeNumber(exact(value)); }
};

}  // namespace tvx
