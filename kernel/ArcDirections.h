// Directions along arcs, kept for the arc shapes drawn last.
//
// A board repeats a handful of arc shapes (the outlines of round and oblong pads, rounded corners)
// hundreds of thousands of times, and every point of an arc costs a sine and a cosine. The values
// are computed exactly as they would be without the store, so no picture changes by a bit.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace tvx {

class ArcDirections {
public:
  using Direction = std::pair<double, double>;  // cosine, sine

  // The directions of start + sweep * i / steps, i = 0 .. steps; angles in thousandths of a
  // degree. Valid until the next call.
  const std::vector<Direction>& along(int32_t start, int32_t sweep, int steps);

  // The angle step that keeps the chords of a circle of radius pixels within a quarter pixel of
  // it, in degrees.
  double stepFor(double radius);

private:
  struct Shape {
    int32_t start = 0;
    int32_t sweep = 0;
    int steps = -1;  // none yet
    std::vector<Direction> directions;
  };
  static constexpr size_t ShapeCount = 64;
  std::array<Shape, ShapeCount> shapes_;
  double lastRadius_ = -1;
  double lastStep_ = 0;
};

}  // namespace tvx
