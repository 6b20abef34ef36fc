#include "viewer/DisplayUnits.h"

#include "common/FormatNumber.h"
#include "common/LengthFormats.h"

namespace tvx {

namespace {
constexpr DisplayUnitInfo Units[] = {
    {InchPictures.Length, InchPictures.Short, InchPictures.Mark, "inches",
     InchPictures.FactorFromMm, SinglePrecisionInch},
    {MillimetrePictures.Length, MillimetrePictures.Short, MillimetrePictures.Mark, "millimeters",
     MillimetrePictures.FactorFromMm, 1.0},
};
}  // namespace

const DisplayUnitInfo& displayUnitInfo(int32_t unit) {
  return Units[unit == displayunit::Millimetre ? 1 : 0];
}

std::string FormatLengthValue(double storeLength, int32_t unit, int32_t unitsPerMm) {
  return LengthValueText(storeLength, unit, double(unitsPerMm));
}

std::string FormatLength(double storeLength, int32_t unit, int32_t unitsPerMm) {
  return LengthText(storeLength, unit, double(unitsPerMm));
}

std::string FormatShortLength(double storeLength, int32_t unit, int32_t unitsPerMm) {
  return ShortLengthText(storeLength, unit, double(unitsPerMm));
}

std::string FormatAngle(int32_t thousandths) {
  return FormatNumber(thousandths / 1000.0, AngleFormat);
}

}  // namespace tvx
