// The geometry behind the drawing's entities: bulges into arcs, ellipses and splines into chords,
// the recognition of a closed chain that is really a circle, and a point list's frame. Point
// lists are outlines as WriteOutline takes them: index 0 holds the zero offset, points run from
// index 1.
#pragma once

#include "import/gerber/OutlineArcs.h"
#include "kernel/KernelTypes.h"

#include <array>
#include <cstdint>
#include <vector>

namespace tvx {

// Attributes of what the drawing writes.
namespace dxfattr {
inline constexpr int32_t Single = 1;
inline constexpr int32_t ClosedOutline = 9;
inline constexpr int32_t OpenChain = attr::OpenChain | attr::Shown;
inline constexpr int32_t CircleOutline = attr::CircleOutline | ClosedOutline;
}  // namespace dxfattr

// A point of a list at (x, y), rounded to whole store units.
OutlinePoint outlinePointAt(int32_t kind, double x, double y);

// Between reading a bulge and ResolveBulges, the Radius of a Kind 5 point holds the bulge's
// included angle in thousandths of a degree, with its sign (positive: counter-clockwise).
int32_t bulgeAngle(double bulge);

// Every Kind 5 placeholder between two points becomes the middle of the arc it stands for: a
// point on the arc with its centre and radius, or (a half turn's middle that cannot be made, ends
// that meet, three points on a line) a straight stretch.
void ResolveBulges(OutlinePoints& points);

// A chain closed onto its first point: after a bulge that ends it, or when its last point lies
// elsewhere.
void closeChain(OutlinePoints& points);
// An open chain's last bulge has no point to end on: it goes.
void dropTrailingBulge(OutlinePoints& points);

// The five points of a circle: from its bottom through its left, top and right back to the bottom.
OutlinePoints circleOutline(int32_t cx, int32_t cy, int32_t r);

// An ellipse (or a circle seen at a slant) as its centre and two axis vectors: the point of
// parameter t is centre + U cos t + V sin t. A drawn ellipse has U the major axis and V the minor
// one, a quarter turn on from U (the other way round for an ellipse seen from below).
struct DxfEllipse {
  double CentreX = 0, CentreY = 0;
  double UX = 0, UY = 0;
  double VX = 0, VY = 0;
  double Start = 0, End = 360;  // parameters in degrees
};

// The ellipse in chords of one degree of its parameter, all points of Kind 1. An end below the
// start runs on through 360, and one turn is the most. attributes takes ClosedOutline when the
// last point is the first, OpenChain otherwise; a list beyond the store's reach is left empty.
void EllipseToPoints(const DxfEllipse& ellipse, OutlinePoints& points, int32_t& attributes);

// Every arc of a list (a Kind 5 point with its centre and radius) into chords of two degrees at
// most, so that the list can be drawn through a map that is no turn or mirror.
void ChordArcs(OutlinePoints& points);

// The plane of an entity that lies in its own coordinate system: the X and Y axes that the
// drawing's rule gives for the extrusion direction n, and the top view of a point of it.
struct DxfPlane {
  std::array<double, 3> ax{1, 0, 0}, ay{0, 1, 0}, n{0, 0, 1};

  static DxfPlane ofNormal(double nx, double ny, double nz);
  bool upright() const { return n[2] > 0 && n[0] == 0 && n[1] == 0; }
  bool fromBelow() const { return n[2] < 0 && n[0] == 0 && n[1] == 0; }
  bool flat() const { return upright() || fromBelow(); }
  std::array<double, 2> map(double x, double y, double z) const {
    return {x * ax[0] + y * ay[0] + z * n[0], x * ax[1] + y * ay[1] + z * n[1]};
  }
};

// True when every point (but the last) lies within tolerance of the circle that fits the list's
// frame; the list is then the five points of that circle.
bool PointsToCircle(OutlinePoints& points, int32_t tolerance);

// The integer frame of a list: an arc's middle adds the extreme points of its circle that lie on
// its side of the chord. Fewer than two points give an empty frame (all zeros).
void FramePoints(const OutlinePoints& points, int32_t& x1, int32_t& y1, int32_t& x2, int32_t& y2);

struct DxfSpline {
  int32_t Degree = 3;
  std::vector<double> Knots;
  std::vector<double> Weights;  // one per control point, or empty
  std::vector<std::array<double, 2>> Control;
  std::vector<std::array<double, 2>> Fit;
};

// Points along a spline: the curve of its control points, knots and weights when they agree,
// otherwise its fit points, otherwise its control points.
std::vector<std::array<double, 2>> SplineToPoints(const DxfSpline& spline);

// The extrusion direction of an entity, read from its groups 210, 220 and 230.
struct DxfNormal {
  double x = 0, y = 0, z = 1;
  // True when the group was one of the three.
  bool take(int32_t code, double value) {
    if (code == 210)
      x = value;
    else if (code == 220)
      y = value;
    else if (code == 230)
      z = value;
    else
      return false;
    return true;
  }
  DxfPlane plane() const { return DxfPlane::ofNormal(x, y, z); }
};

}  // namespace tvx
