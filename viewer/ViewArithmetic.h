// Number conversions of the view's arithmetic.
#pragma once

#include "common/WholeNumber.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace tvx::view {

using tvx::whole;

// A 64-bit sum or product held within 32 bits.
inline int32_t toInt32(int64_t v) { return int32_t(std::clamp<int64_t>(v, INT32_MIN, INT32_MAX)); }

}  // namespace tvx::view
