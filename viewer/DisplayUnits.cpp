#include "viewer/DisplayUnits.h"

#include "common/FormatNumber.h"

namespace tvx {

namespace {
constexpr DisplayUnitInfo Units[] = {
    {"#0.0000#", "#0.000", "\"", "inches", 1.0 / 25.4, SinglePrecisionInch},
    {"###0.000#", "###0.0", "mm", "millimeters", 1.0, 1.0},
};

double inUnit(double storeLength, int32_t unit, int32_t unitsPerMm) {
  return storeLength / double(unitsPerMm) * displayUnitInfo(unit).FactorFromMm;
}
}  // namespace

const DisplayUnitInfo& displayUnitInfo(int32_t unit) {
  return Units[unit == displayunit::Millimetre ? 1 : 0];
}

std::string FormatLengthValue(double storeLength, int32_t unit, int32_t unitsPerMm) {
  return FormatNumber(inUnit(storeLength, unit, unitsPerMm), displayUnitInfo(unit).LengthFormat);
}

std::string FormatLength(double storeLength, int32_t unit, int32_t unitsPerMm) {
  return FormatLengthValue(storeLength, unit, unitsPerMm) + std::string(displayUnitInfo(unit).Mark);
}

std::string FormatShortLength(double storeLength, int32_t unit, int32_t unitsPerMm) {
  const DisplayUnitInfo& info = displayUnitInfo(unit);
  return FormatNumber(inUnit(storeLength, unit, unitsPerMm), info.ShortFormat) +
         std::string(info.Mark);
}

std::string FormatAngle(int32_t thousandths) {
  return FormatNumber(thousandths / 1000.0, AngleFormat);
}

}  // namespace tvx
