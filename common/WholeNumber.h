// Whole numbers as the system rounds them.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>

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

// The same for a field that must not take a wrong value: nothing for an infinity, NaN or a value
// beyond 32 bits, so that the reader skips the statement.
inline std::optional<int32_t> roundToInt32(double x) {
  if (!std::isfinite(x))
    return std::nullopt;
  const double r = std::nearbyint(x);
  if (r < double(std::numeric_limits<int32_t>::min()) ||
      r > double(std::numeric_limits<int32_t>::max()))
    return std::nullopt;
  return int32_t(r);
}

}  // namespace tvx
