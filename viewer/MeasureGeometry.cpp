#include "viewer/MeasureGeometry.h"

#include "kernel/Graphics.h"
#include "viewer/ElementEditor.h"

#include <array>
#include <cmath>
#include <limits>
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

// --- Closest points of two elements -------------------------------------------------------------

// A piece of an element's outline: a point, a straight side, or a circle or arc.
struct Piece {
  enum Kind { Dot, Side, Round } kind = Dot;
  Point a, b;  // a point; a side's ends
  ArcShape arc;
};

ArcShape circleOf(const ItemRecord& r) {
  ArcShape circle;
  circle.centre = {double(r.X), double(r.Y)};
  circle.radius = std::abs(double(r.Width));
  circle.sweep = 360000;
  circle.first = circle.last = {circle.centre.x + circle.radius, circle.centre.y};
  return circle;
}

template <size_t N> void addOutline(std::vector<Piece>& pieces, const std::array<Point, N>& c) {
  for (size_t i = 0; i < N; ++i)
    pieces.push_back({Piece::Side, c[i], c[(i + 1) % N], {}});
}

std::vector<Piece> piecesOf(const ItemRecord& r) {
  std::vector<Piece> pieces;
  const Point anchor{double(r.X), double(r.Y)};
  switch (r.Type) {
  case ItemLine:
    pieces.push_back({Piece::Side, anchor, {anchor.x + r.Width, anchor.y + r.Height}, {}});
    break;
  case ItemTriangle:
    addOutline(pieces, triangleCorners(r));
    break;
  case ItemRectangle:
    addOutline(pieces, rectangleCorners(r));
    break;
  case ItemCircle:
    pieces.push_back({Piece::Round, {}, {}, circleOf(r)});
    break;
  case ItemArc:
    pieces.push_back({Piece::Round, {}, {}, arcOf(r)});
    break;
  default:
    pieces.push_back({Piece::Dot, anchor, anchor, {}});
    break;
  }
  return pieces;
}

// The point of a circle or arc nearest to q.
Point nearestOnRound(const ArcShape& arc, Point q) {
  if (distance(arc.centre, q) == 0)
    return arc.first;
  return inSweep(arc, q) ? nearestOnCircle(arc.centre, arc.radius, q)
                         : nearerOf(arc.first, arc.last, q);
}

Point nearestOnPiece(const Piece& piece, Point q) {
  switch (piece.kind) {
  case Piece::Side:
    return nearestOnSegment(piece.a, piece.b, q);
  case Piece::Round:
    return nearestOnRound(piece.arc, q);
  default:
    return piece.a;
  }
}

// The nearest pair found so far: p on the first element, q on the second.
struct Pair {
  double d = std::numeric_limits<double>::infinity();
  Point p, q;
  void consider(Point onFirst, Point onSecond) {
    const double gap = distance(onFirst, onSecond);
    if (gap < d)
      *this = {gap, onFirst, onSecond};
  }
};

// Where the segment a-b meets the circle of arc, inside the arc's sweep.
void sideMeetsRound(Point a, Point b, const ArcShape& arc, std::vector<Point>& out) {
  const double dx = b.x - a.x, dy = b.y - a.y;
  const double fx = a.x - arc.centre.x, fy = a.y - arc.centre.y;
  const double qa = dx * dx + dy * dy, qb = 2 * (fx * dx + fy * dy);
  const double qc = fx * fx + fy * fy - arc.radius * arc.radius;
  const double disc = qb * qb - 4 * qa * qc;
  if (qa == 0 || disc < 0)
    return;
  for (const double t : {(-qb - std::sqrt(disc)) / (2 * qa), (-qb + std::sqrt(disc)) / (2 * qa)})
    if (t >= 0 && t <= 1 && inSweep(arc, {a.x + t * dx, a.y + t * dy}))
      out.push_back({a.x + t * dx, a.y + t * dy});
}

// Where two circles meet, inside both sweeps.
void roundMeetsRound(const ArcShape& one, const ArcShape& two, std::vector<Point>& out) {
  const double d = distance(one.centre, two.centre);
  if (d == 0 || d > one.radius + two.radius || d < std::abs(one.radius - two.radius))
    return;
  const double along = (one.radius * one.radius - two.radius * two.radius + d * d) / (2 * d);
  const double across = std::sqrt(std::max(0.0, one.radius * one.radius - along * along));
  const double ux = (two.centre.x - one.centre.x) / d, uy = (two.centre.y - one.centre.y) / d;
  const Point foot{one.centre.x + ux * along, one.centre.y + uy * along};
  for (const double side : {-1.0, 1.0}) {
    const Point p{foot.x - uy * across * side, foot.y + ux * across * side};
    if (inSweep(one, p) && inSweep(two, p))
      out.push_back(p);
  }
}

// The ends of a piece, from which the other piece's nearest point is a candidate.
std::vector<Point> endsOf(const Piece& piece) {
  if (piece.kind == Piece::Round)
    return {piece.arc.first, piece.arc.last};
  return {piece.a, piece.b};
}

// The nearest pair of two pieces: the ends of each against the other, the crossings, and the
// pairs on the line through a circle's centre square to a side or through both centres.
void nearestPair(const Piece& one, const Piece& two, Pair& best) {
  for (const Point e : endsOf(one))
    best.consider(e, nearestOnPiece(two, e));
  for (const Point e : endsOf(two))
    best.consider(nearestOnPiece(one, e), e);
  std::vector<Point> crossings;
  if (one.kind == Piece::Side && two.kind == Piece::Side) {
    const double den =
        (one.b.x - one.a.x) * (two.b.y - two.a.y) - (one.b.y - one.a.y) * (two.b.x - two.a.x);
    if (den != 0) {
      const double t =
          ((two.a.x - one.a.x) * (two.b.y - two.a.y) - (two.a.y - one.a.y) * (two.b.x - two.a.x)) /
          den;
      const double u =
          ((two.a.x - one.a.x) * (one.b.y - one.a.y) - (two.a.y - one.a.y) * (one.b.x - one.a.x)) /
          den;
      if (t >= 0 && t <= 1 && u >= 0 && u <= 1)
        crossings.push_back({one.a.x + t * (one.b.x - one.a.x), one.a.y + t * (one.b.y - one.a.y)});
    }
  }
  const auto sideAndRound = [&](const Piece& side, const Piece& round, bool sideFirst) {
    sideMeetsRound(side.a, side.b, round.arc, crossings);
    const Point foot = nearestOnSegment(side.a, side.b, round.arc.centre);
    if (distance(foot, round.arc.centre) == 0)
      return;
    const Point onRound = nearestOnCircle(round.arc.centre, round.arc.radius, foot);
    if (inSweep(round.arc, onRound)) {
      if (sideFirst)
        best.consider(foot, onRound);
      else
        best.consider(onRound, foot);
    }
  };
  if (one.kind == Piece::Side && two.kind == Piece::Round)
    sideAndRound(one, two, true);
  if (one.kind == Piece::Round && two.kind == Piece::Side)
    sideAndRound(two, one, false);
  if (one.kind == Piece::Round && two.kind == Piece::Round) {
    roundMeetsRound(one.arc, two.arc, crossings);
    const double d = distance(one.arc.centre, two.arc.centre);
    const double ux = d == 0 ? 1 : (two.arc.centre.x - one.arc.centre.x) / d;
    const double uy = d == 0 ? 0 : (two.arc.centre.y - one.arc.centre.y) / d;
    for (const double s1 : {-1.0, 1.0})
      for (const double s2 : {-1.0, 1.0}) {
        const Point p{one.arc.centre.x + s1 * one.arc.radius * ux,
                      one.arc.centre.y + s1 * one.arc.radius * uy};
        const Point q{two.arc.centre.x + s2 * two.arc.radius * ux,
                      two.arc.centre.y + s2 * two.arc.radius * uy};
        if (inSweep(one.arc, p) && inSweep(two.arc, q))
          best.consider(p, q);
      }
  }
  for (const Point c : crossings)
    best.consider(c, c);
}

// A filled figure holds q inside (or on) its outline.
bool filledHolds(const ItemRecord& r, Point q) {
  if (r.Style != StyleFilled)
    return false;
  const auto convexHolds = [q](const auto& corners) {
    int sign = 0;
    for (size_t i = 0; i < corners.size(); ++i) {
      const Point a = corners[i], b = corners[(i + 1) % corners.size()];
      const double cross = (b.x - a.x) * (q.y - a.y) - (b.y - a.y) * (q.x - a.x);
      const int s = cross > 0 ? 1 : cross < 0 ? -1 : 0;
      if (s != 0 && sign != 0 && s != sign)
        return false;
      sign = s != 0 ? s : sign;
    }
    return true;
  };
  switch (r.Type) {
  case ItemTriangle:
    return convexHolds(triangleCorners(r));
  case ItemRectangle:
    return convexHolds(rectangleCorners(r));
  case ItemCircle:
    return distance({double(r.X), double(r.Y)}, q) <= std::abs(double(r.Width));
  default:
    return false;
  }
}

// A filled element holds q: a filled figure, or the run of a filled polygon (its sides' starts as
// its corners, by the even-odd rule).
bool filledHolds(std::span<const ItemRecord> element, Point q) {
  if (element.size() == 1 && !(element.front().Attributes & attr::PolygonSide))
    return filledHolds(element.front(), q);
  if (element.empty() || element.front().Style != StyleFilled ||
      !(element.front().Attributes & attr::PolygonSide))
    return false;
  std::vector<Point> corners;
  for (const ItemRecord& side : element)
    corners.push_back(side.Type == ItemArc ? arcOf(side).first
                                           : Point{double(side.X), double(side.Y)});
  bool inside = false;
  for (size_t i = 0, j = corners.size() - 1; i < corners.size(); j = i++) {
    const Point a = corners[i], b = corners[j];
    if ((a.y > q.y) != (b.y > q.y) && q.x < (b.x - a.x) * (q.y - a.y) / (b.y - a.y) + a.x)
      inside = !inside;
  }
  return inside;
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

void ClosestPoints(double& d, double& ax, double& ay, double& bx, double& by,
                   std::span<const ItemRecord> a, std::span<const ItemRecord> b) {
  Pair best;
  if (a.empty() || b.empty()) {
    d = ax = ay = bx = by = 0;
    return;
  }
  // Element by element, each pair's gap less both pens: the pens may differ from side to side.
  for (const ItemRecord& ra : a)
    for (const ItemRecord& rb : b) {
      Pair raw;
      for (const Piece& one : piecesOf(ra))
        for (const Piece& two : piecesOf(rb))
          nearestPair(one, two, raw);
      const double gap = raw.d;
      if (!(gap - halfPen(ra) - halfPen(rb) < best.d))
        continue;
      if (gap > 0) {
        const double ux = (raw.q.x - raw.p.x) / gap, uy = (raw.q.y - raw.p.y) / gap;
        const double fromFirst = std::min(halfPen(ra), gap);
        const double fromSecond = std::min(halfPen(rb), gap - fromFirst);
        raw.p = {raw.p.x + ux * fromFirst, raw.p.y + uy * fromFirst};
        raw.q = {raw.q.x - ux * fromSecond, raw.q.y - uy * fromSecond};
        raw.d = gap - fromFirst - fromSecond;
      }
      best = raw;
    }
  // A filled figure or polygon that holds a point of the other element overlaps it.
  const Point ofSecond = endsOf(piecesOf(b.front()).front()).front();
  const Point ofFirst = endsOf(piecesOf(a.front()).front()).front();
  if (filledHolds(a, ofSecond))
    best = {0, ofSecond, ofSecond};
  else if (filledHolds(b, ofFirst))
    best = {0, ofFirst, ofFirst};
  d = best.d;
  ax = best.p.x;
  ay = best.p.y;
  bx = best.q.x;
  by = best.q.y;
}

void ClosestPoints(double& d, double& ax, double& ay, double& bx, double& by, const ItemRecord& a,
                   const ItemRecord& b) {
  ClosestPoints(d, ax, ay, bx, by, std::span(&a, 1), std::span(&b, 1));
}

}  // namespace tvx
