#include "print/PlatformPrinter.h"

namespace tvx {

double PlatformPrinter::unitsPerInch(int32_t mode, bool alongY) const {
  switch (mode) {
  case scalemode::Pixels:
    return deviceCaps(alongY ? devcaps::LogPixelsY : devcaps::LogPixelsX);
  case scalemode::Inches:
    return 1.0;
  case scalemode::Millimetres:
    return 25.4;
  default:
    return 1440.0;
  }
}

double PlatformPrinter::convert(double value, int32_t fromMode, int32_t toMode, bool alongY) const {
  if (fromMode == toMode)
    return value;
  const double from = unitsPerInch(fromMode, alongY);
  return from > 0 ? value / from * unitsPerInch(toMode, alongY) : 0.0;
}

}  // namespace tvx
