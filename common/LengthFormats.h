// How a length in store units is shown in inches or millimetres: the pictures of the panels and
// their short form, and the unit mark. The viewer and the import window show lengths alike.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tvx {

// The pictures of one unit.
struct LengthPictures {
  std::string_view Length;  // lengths in panels and combos
  std::string_view Short;   // lengths, short form
  std::string_view Mark;    // written right after a value
  double FactorFromMm;      // millimetres times this give the unit
};

inline constexpr LengthPictures InchPictures{"#0.0000#", "#0.000", "\"", 1.0 / 25.4};
inline constexpr LengthPictures MillimetrePictures{"###0.000#", "###0.0", "mm", 1.0};

// Unit 1 is the millimetre; every other value shows as inch, so that a stray setting still
// gives a picture.
const LengthPictures& lengthPictures(int32_t unit);

// A store length in the unit, without the mark.
std::string LengthValueText(double storeLength, int32_t unit, double unitsPerMm);
// The same followed by the unit mark.
std::string LengthText(double storeLength, int32_t unit, double unitsPerMm);
// The short form, with the unit mark.
std::string ShortLengthText(double storeLength, int32_t unit, double unitsPerMm);

}  // namespace tvx
