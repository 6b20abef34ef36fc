// Wheel input turned into whole steps: the view zooms and the grids scroll by them. A notched wheel
// sends 120 (eighths of a degree) a notch; high-resolution wheels and touchpads send many small
// deltas, and some touchpads only pixels. Each delta is summed until it makes a step, so that a
// swipe is not ten steps and a fine wheel is not ignored.
#pragma once

#include <cstdint>

namespace tvx {

class WheelSteps {
public:
  static constexpr int32_t AnglePerStep = 120;
  static constexpr int32_t PixelsPerStep = 60;

  // Takes one event's vertical deltas (pixels count only when the angle is 0) and gives the
  // whole steps now due, signed as the angle (positive: away from the user). What is left over
  // waits for the next event; turning the other way starts afresh.
  int32_t add(int32_t angleDelta, int32_t pixelDelta);

private:
  static int32_t take(int32_t& sum, int32_t delta, int32_t perStep);

  int32_t angle_ = 0;
  int32_t pixels_ = 0;
};

}  // namespace tvx
