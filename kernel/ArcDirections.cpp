#include "kernel/ArcDirections.h"
#include "kernel/PlaneGeometry.h"

#include <cmath>

namespace tvx {

const std::vector<ArcDirections::Direction>& ArcDirections::along(int32_t start, int32_t sweep,
                                                                  int steps) {
  const uint32_t hash =
      (uint32_t(start) * 2654435761u) ^ (uint32_t(sweep) * 40503u) ^ (uint32_t(steps) * 97u);
  Shape& shape = shapes_[(hash >> 7) % ShapeCount];
  if (shape.start == start && shape.sweep == sweep && shape.steps == steps)
    return shape.directions;
  shape.start = start;
  shape.sweep = sweep;
  shape.steps = steps;
  shape.directions.clear();
  const double from = start / 1000.0, degrees = sweep / 1000.0;
  for (int i = 0; i <= steps; ++i) {
    const double a = (from + degrees * i / steps) * RadiansPerDegree;
    shape.directions.emplace_back(std::cos(a), std::sin(a));
  }
  return shape.directions;
}

double ArcDirections::stepFor(double radius) {
  if (radius != lastRadius_) {
    lastRadius_ = radius;
    lastStep_ =
        radius > 0.5 ? 2 * std::acos(std::max(-1.0, 1 - 0.25 / radius)) / RadiansPerDegree : 90;
  }
  return lastStep_;
}

}  // namespace tvx
