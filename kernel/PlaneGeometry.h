// Points, angles and rigid placements of the plane, shared by the store, the drawing engine and
// the readers so that a placement means the same everywhere: mirror in X first (x becomes -x),
// then rotation about the origin, then translation.
#pragma once

#include <cstdint>
#include <numbers>

namespace tvx {

inline constexpr double RadiansPerDegree = std::numbers::pi / 180.0;

struct Point {
  double x = 0;
  double y = 0;

  bool operator==(const Point&) const = default;
};

// Angle brought into 0 to 359999 thousandths of a degree.
int32_t normalisedAngle(int64_t angle);

// A vector turned counter-clockwise by angle (thousandths of a degree); quarter turns are exact.
Point rotated(Point v, int32_t angle);

// A rigid placement in store units and thousandths of a degree.
struct Placement {
  int32_t X = 0;
  int32_t Y = 0;
  int32_t Angle = 0;
  bool Mirror = false;

  bool isIdentity() const { return X == 0 && Y == 0 && Angle == 0 && !Mirror; }
  // A vector mirrored and turned, without the translation.
  Point turned(Point v) const { return rotated({Mirror ? -v.x : v.x, v.y}, Angle); }
  // A point mirrored, turned and moved.
  Point placed(Point p) const {
    const Point v = turned(p);
    return {v.x + X, v.y + Y};
  }
};

}  // namespace tvx
