#include "common/WheelSteps.h"

#include <algorithm>

namespace tvx {

int32_t WheelSteps::take(int32_t& sum, int32_t delta, int32_t perStep) {
  if ((sum > 0 && delta < 0) || (sum < 0 && delta > 0))
    sum = 0;
  // Held within a few steps, so that a flood of deltas cannot overflow the sum.
  const int64_t total =
      std::clamp<int64_t>(int64_t(sum) + delta, -int64_t(perStep) * 1000, int64_t(perStep) * 1000);
  const int32_t steps = int32_t(total / perStep);
  sum = int32_t(total - int64_t(steps) * perStep);
  return steps;
}

int32_t WheelSteps::add(int32_t angleDelta, int32_t pixelDelta) {
  if (angleDelta != 0) {
    pixels_ = 0;
    return take(angle_, angleDelta, AnglePerStep);
  }
  return take(pixels_, pixelDelta, PixelsPerStep);
}

}  // namespace tvx
