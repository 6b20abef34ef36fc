#include "viewer/MeasureGeometry.h"

#include "kernel/Graphics.h"
#include "viewer/ElementEditor.h"

#include <array>
#include <cmath>
#include <numbers>
#include <vector>

namespace tvx {

namespace {

struct Point {
  double x = 0, y = 0;
};

constexpr double RadiansPerThousandth = std::numbers::pi / 180000.0;

// The segment rule: the foot of q on the segment a-b, held to its ends; a for a zero length.
Point nearestOnSegment(Point a, Point b, Point q) {
  const double dx = b.x - a.x, dy = b.y - a.y;
  const double length2 = dx * dx + dy * dy;
  if (length2 == 0)
    return a;
  const double t = ((q.x - a.x) * dx + (q.y - a.y) * dy) / length2;
  if (t < 0)
    return a;
  if (t > 1)
    return b;
  return {a.x + t * dx, a.y + t * dy};
}

double distance(Point a, Point b) { return GetDistance(a.x, a.y, b.x, b.y); }

// The nearest point of a closed outline, side by side; the first side wins a tie.
template <size_t N> Point nearestOnOutline(const std::array<Point, N>& corners, Point q) {
  Point best = nearestOnSegment(corners[0], corners[1 % N], q);
  double bestDistance = distance(best, q);
  for (size_t i = 1; i < N; ++i) {
    const Point p = nearestOnSegment(corners[i], corners[(i + 1) % N], q);
    const double d = distance(p, q);
    if (d < bestDistance) {
      best = p;
      bestDistance = d;
    }
  }
  return best;
}

std::array<Point, 3> triangleCorners(const ItemRecord& r) {
  return {Point{double(r.X), double(r.Y)}, Point{double(r.X) + r.Width, double(r.Y) + r.Height},
          Point{double(r.X) + r.Angle, double(r.Y) + r.Sweep}};
}

// The corners of a rectangle turned by its Angle about its lower left corner, counter-clockwise.
std::array<Point, 4> rectangleCorners(const ItemRecord& r) {
  const double a = r.Angle * RadiansPerThousandth, c = std::cos(a), s = std::sin(a);
  const auto place = [&](double u, double v) {
    return Point{r.X + u * c - v * s, r.Y + u * s + v * c};
  };
  return {place(0, 0), place(r.Width, 0), place(r.Width, r.Height), place(0, r.Height)};
}

// The point of a circle towards q; the centre itself when q is the centre or the radius is 0.
Point nearestOnCircle(Point centre, double radius, Point q) {
  const double d = distance(centre, q);
  if (d == 0 || radius == 0)
    return centre;
  return {centre.x + (q.x - centre.x) * radius / d, centre.y + (q.y - centre.y) * radius / d};
}

struct ArcShape {
  Point centre;
  double radius = 0;
  int32_t start = 0;  // thousandths of a degree, 0..359999
  int32_t sweep = 0;  // positive
  Point first, last;
};

ArcShape arcOf(const ItemRecord& r) {
  ArcShape arc;
  int32_t x = r.X, y = r.Y, radius = r.Width, start = r.Height, sweep = r.Sweep;
  Graphics::G_ArcNormalize(x, y, radius, start, sweep);
  arc.centre = {double(x), double(y)};
  arc.radius = radius;
  arc.start = start;
  arc.sweep = sweep;
  const auto at = [&](double thousandths) {
    const double a = thousandths * RadiansPerThousandth;
    return Point{x + radius * std::cos(a), y + radius * std::sin(a)};
  };
  arc.first = at(start);
  arc.last = at(double(start) + sweep);
  return arc;
}

bool inSweep(const ArcShape& arc, Point q) {
  if (arc.sweep >= 360000)
    return true;
  double angle = std::atan2(q.y - arc.centre.y, q.x - arc.centre.x) / RadiansPerThousandth;
  if (angle < 0)
    angle += 360000;
  double from = angle - arc.start;
  if (from < 0)
    from += 360000;
  return from <= arc.sweep;
}

Point nearerOf(Point a, Point b, Point q) { return distance(b, q) < distance(a, q) ? b : a; }

// Half the pen that counts for the distance.
double halfPen(const ItemRecord& r) {
  switch (r.Type) {
  case ItemLine:
  case ItemArc:
    return r.LineWidth / 2.0;
  case ItemTriangle:
  case ItemRectangle:
  case ItemCircle:
    return r.Style == StyleFilled ? 0.0 : r.LineWidth / 2.0;
  default:
    return 0.0;
  }
}

}  // namespace

double GetDistance(double x1, double y1, double x2, double y2) {
  return std::hypot(x2 - x1, y2 - y1);
}

void NearestPoint(double& d, double& nx, double& ny, double qx, double qy,
                  const ItemRecord& record) {
  const Point q{qx, qy};
  const ItemRecord& r = record;
  Point n{double(r.X), double(r.Y)};
  switch (r.Type) {
  case ItemLine:
    n = nearestOnSegment(n, {double(r.X) + r.Width, double(r.Y) + r.Height}, q);
    break;
  case ItemTriangle:
    n = nearestOnOutline(triangleCorners(r), q);
    break;
  case ItemRectangle:
    n = nearestOnOutline(rectangleCorners(r), q);
    break;
  case ItemCircle:
    n = nearestOnCircle(n, std::abs(double(r.Width)), q);
    break;
  case ItemArc: {
    const ArcShape arc = arcOf(r);
    n = inSweep(arc, q) ? nearestOnCircle(arc.centre, arc.radius, q)
                        : nearerOf(arc.first, arc.last, q);
    break;
  }
  default:  // points, and whatever else stands for its anchor
    break;
  }
  double gap = distance(n, q);
  const double h = halfPen(r);
  if (h > 0 && gap > 0) {
    const double step = std::min(h, gap);
    n = {n.x + (q.x - n.x) * step / gap, n.y + (q.y - n.y) * step / gap};
    gap -= step;
  }
  d = gap;
  nx = n.x;
  ny = n.y;
}

KeyPoints ElementKeyPoints(const ItemRecord& r, double x, double y,
                           std::span<const VertexRow> polygon) {
  const Point q{x, y};
  Point nearPoint{double(r.X), double(r.Y)}, middle = nearPoint;
  switch (r.Type) {
  case ItemLine: {
    const Point end{double(r.X) + r.Width, double(r.Y) + r.Height};
    nearPoint = nearerOf(nearPoint, end, q);
    middle = {(r.X + end.x) / 2, (r.Y + end.y) / 2};
    break;
  }
  case ItemTriangle: {
    const auto c = triangleCorners(r);
    nearPoint = nearerOf(nearerOf(c[0], c[1], q), c[2], q);
    middle = {(c[0].x + c[1].x + c[2].x) / 3, (c[0].y + c[1].y + c[2].y) / 3};
    break;
  }
  case ItemRectangle:
  case ItemVectorText:
  case ItemTrueTypeText: {
    const auto c = rectangleCorners(r);
    nearPoint = nearerOf(nearerOf(nearerOf(c[0], c[1], q), c[2], q), c[3], q);
    middle = {(c[0].x + c[2].x) / 2, (c[0].y + c[2].y) / 2};
    break;
  }
  case ItemCircle: {
    const double radius = std::abs(double(r.Width));
    const double d = distance(middle, q);
    nearPoint = d == 0 ? Point{middle.x + radius, middle.y} : nearestOnCircle(middle, radius, q);
    break;
  }
  case ItemArc: {
    const ArcShape arc = arcOf(r);
    nearPoint = nearerOf(arc.first, arc.last, q);
    middle = arc.centre;
    break;
  }
  default:  // pad entries and points: the position for both
    break;
  }
  if (!polygon.empty()) {
    nearPoint = {double(polygon.front().X), double(polygon.front().Y)};
    for (const VertexRow& v : polygon.subspan(1))
      nearPoint = nearerOf(nearPoint, {double(v.X), double(v.Y)}, q);
  }
  return {nearPoint.x, nearPoint.y, middle.x, middle.y};
}

}  // namespace tvx
