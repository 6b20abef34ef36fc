// Kept arc directions are bit for bit the ones computed afresh, whatever order the shapes come in.
#include "kernel/ArcDirections.h"
#include "kernel/PlaneGeometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace tvx {
namespace {

TEST(ArcDirections, EveryShapeGetsItsOwnDirectionsExactly) {
  ArcDirections arcs;
  std::mt19937 rng(3);
  // Few angles and step counts, so that shapes repeat, share slots and replace each other.
  std::uniform_int_distribution<int32_t> angle(-4, 4), steps(1, 12);
  for (int n = 0; n < 5000; ++n) {
    const int32_t start = angle(rng) * 45000, sweep = angle(rng) * 30000 + (n % 3);
    const int count = steps(rng);
    const auto& directions = arcs.along(start, sweep, count);
    ASSERT_EQ(directions.size(), size_t(count + 1));
    for (int i = 0; i <= count; ++i) {
      const double a = (start / 1000.0 + sweep / 1000.0 * i / count) * RadiansPerDegree;
      ASSERT_EQ(directions[size_t(i)], std::pair(std::cos(a), std::sin(a)))
          << start << " " << sweep << " " << count << " " << i;
    }
  }
}

TEST(ArcDirections, TheStepFollowsTheRadius) {
  ArcDirections arcs;
  for (double radius : {0.25, 100.0, 3.3, 100.0, 0.25, 3.3}) {
    const double expected = radius > 0.5 ? 2 * std::acos(1 - 0.25 / radius) / RadiansPerDegree : 90;
    EXPECT_EQ(arcs.stepFor(radius), expected) << radius;
  }
}

}  // namespace
}  // namespace tvx
