#include "common/LengthFormats.h"

#include "common/FormatNumber.h"

namespace tvx {

namespace {
double inUnit(double storeLength, int32_t unit, double unitsPerMm) {
  return storeLength / unitsPerMm * lengthPictures(unit).FactorFromMm;
}
}  // namespace

const LengthPictures& lengthPictures(int32_t unit) {
  return unit == 1 ? MillimetrePictures : InchPictures;
}

std::string LengthValueText(double storeLength, int32_t unit, double unitsPerMm) {
  return FormatNumber(inUnit(storeLength, unit, unitsPerMm), lengthPictures(unit).Length);
}

std::string LengthText(double storeLength, int32_t unit, double unitsPerMm) {
  return LengthValueText(storeLength, unit, unitsPerMm) + std::string(lengthPictures(unit).Mark);
}

std::string ShortLengthText(double storeLength, int32_t unit, double unitsPerMm) {
  const LengthPictures& pictures = lengthPictures(unit);
  return FormatNumber(inUnit(storeLength, unit, unitsPerMm), pictures.Short) +
         std::string(pictures.Mark);
}

}  // namespace tvx
