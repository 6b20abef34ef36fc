// Wheel deltas summed into whole steps: notched wheels, fine wheels, touchpads sending pixels,
// reversals and floods.
#include "common/WheelSteps.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace tvx {
namespace {

TEST(WheelSteps, DeltasMakeWholeSteps) {
  struct Event {
    int32_t angle, pixels, steps;
  };
  struct Case {
    const char* name;
    std::vector<Event> events;
  };
  const Case cases[] = {
      {"a notch is a step, each way", {{120, 0, 1}, {-120, 0, -1}, {240, 0, 2}}},
      {"a fine wheel: eighths of a notch add up",
       {{15, 0, 0}, {15, 0, 0}, {60, 0, 0}, {30, 0, 1}, {60, 0, 0}, {60, 0, 1}}},
      {"a reversal drops what the other way left", {{100, 0, 0}, {-100, 0, 0}, {-20, 0, -1}}},
      {"pixels alone count when the angle is 0", {{0, 30, 0}, {0, 40, 1}, {0, -70, -1}}},
      {"an angle wins over pixels and drops them", {{0, 50, 0}, {120, 500, 1}, {0, 10, 0}}},
      {"a flood cannot overflow",
       {{std::numeric_limits<int32_t>::max(), 0, 1000},
        {std::numeric_limits<int32_t>::min(), 0, -1000}}},
  };
  for (const Case& c : cases) {
    WheelSteps wheel;
    for (size_t i = 0; i < c.events.size(); ++i)
      EXPECT_EQ(wheel.add(c.events[i].angle, c.events[i].pixels), c.events[i].steps)
          << c.name << ", event " << i;
  }
}

}  // namespace
}  // namespace tvx
