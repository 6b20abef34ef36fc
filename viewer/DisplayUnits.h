// The units the viewer shows lengths in, and the pictures it formats them with.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tvx {

// Values of DisplayUnit.
namespace displayunit {
inline constexpr int32_t Inch = 0;
inline constexpr int32_t Millimetre = 1;
}  // namespace displayunit

// How one display unit shows a length.
struct DisplayUnitInfo {
  std::string_view LengthFormat;  // lengths in panels and combos
  std::string_view ShortFormat;   // lengths, short form
  std::string_view Mark;          // written right after a value
  std::string_view Word;          // the unit's name in texts
  double FactorFromMm;            // millimetres times this give the unit
  double FactorToStore;           // a typed value times this and the units per mm give store units
};

// The table row of unit; every value other than millimetre shows as inch, so a stray setting
// cannot index outside the table.
const DisplayUnitInfo& displayUnitInfo(int32_t unit);

// Angles in degrees.
inline constexpr std::string_view AngleFormat = "##0.0#";

// The inch as the precision combo converts it: 25.4 in single precision, so a typed inch value
// comes out a hair below the exact product and a half rounds down.
inline constexpr double SinglePrecisionInch = double(25.4f);

// A store length in the unit, without the unit mark: the text of the combos.
std::string FormatLengthValue(double storeLength, int32_t unit, int32_t unitsPerMm);
// A store length in the unit followed by the unit mark: the text of the panels.
std::string FormatLength(double storeLength, int32_t unit, int32_t unitsPerMm);
// The short form, with the unit mark.
std::string FormatShortLength(double storeLength, int32_t unit, int32_t unitsPerMm);
// An angle given in thousandths of a degree, in degrees.
std::string FormatAngle(int32_t thousandths);

}  // namespace tvx
