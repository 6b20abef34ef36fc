// Whole numbers as the system rounds them.
#pragma once

#include <cmath>
#include <cstdint>

namespace tvx {

// x to the nearest whole number, a half to the even neighbour, held within 32 bits; not-a-number
// gives 0.
inline int32_t whole(double x) {
  if (std::isnan(x))
    return 0;
  if (x >= 2147483647.0)
    return INT32_MAX;
  if (x <= -2147483648.0)
    return INT32_MIN;
  return int32_t(std::nearbyint(x));
}

}  // namespace tvx
