#include "kernel/PlaneGeometry.h"

#include <cmath>

namespace tvx {

int32_t normalisedAngle(int64_t angle) {
  int64_t a = angle % 360000;
  return int32_t(a < 0 ? a + 360000 : a);
}

Point rotated(Point v, int32_t angle) {
  switch (normalisedAngle(angle)) {
  case 0:
    return v;
  case 90000:
    return {-v.y, v.x};
  case 180000:
    return {-v.x, -v.y};
  case 270000:
    return {v.y, -v.x};
  default: {
    const double a = angle / 1000.0 * RadiansPerDegree;
    const double c = std::cos(a), s = std::sin(a);
    return {v.x * c - v.y * s, v.x * s + v.y * c};
  }
  }
}

}  // namespace tvx
