#include "import/readers/dxf/DxfGeometry.h"

#include "common/WholeNumber.h"
#include "kernel/PlaneGeometry.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace tvx {

namespace {

// The side of (x, y) seen along the chord from (ax, ay) to (bx, by): positive to the left.
double sideOf(double ax, double ay, double bx, double by, double x, double y) {
  return (bx - ax) * (y - ay) - (by - ay) * (x - ax);
}

}  // namespace

OutlinePoint outlinePointAt(int32_t kind, double x, double y) {
  OutlinePoint p;
  p.Kind = kind;
  p.X = std::nearbyint(x);
  p.Y = std::nearbyint(y);
  return p;
}

int32_t bulgeAngle(double bulge) {
  return roundToInt32(4 * std::atan(bulge) / RadiansPerDegree * 1000).value_or(0);
}

void ResolveBulges(OutlinePoints& points) {
  for (size_t i = 2; i + 1 < points.size(); ++i) {
    OutlinePoint& mid = points[i];
    if (mid.Kind != outlinepoint::ArcMiddle)
      continue;
    const OutlinePoint& p = points[i - 1];
    const OutlinePoint& q = points[i + 1];
    const double a = mid.Radius / 1000.0;
    const double beta = std::abs(a) / 4;
    const double mx = std::nearbyint((q.X - p.X) / 2 + p.X);
    const double my = std::nearbyint((q.Y - p.Y) / 2 + p.Y);
    const double h = std::hypot(mx - p.X, my - p.Y);
    const auto straight = [&] {
      mid = outlinePointAt(outlinepoint::Straight, mx, my);
      points[i - 1].Kind = outlinepoint::Straight;
    };
    if (beta == 90 || h == 0) {
      straight();
      continue;
    }
    const double t = std::tan(beta * RadiansPerDegree) * h;
    const double ox = std::nearbyint((q.Y - p.Y) * t / (2 * h));
    const double oy = std::nearbyint((q.X - p.X) * t / (2 * h));
    mid.X = a < 0 ? mx - ox : mx + ox;
    mid.Y = a < 0 ? my + oy : my - oy;
    mid.Radius = 0;
    const auto px = roundToInt32(p.X), py = roundToInt32(p.Y), ix = roundToInt32(mid.X),
               iy = roundToInt32(mid.Y), qx = roundToInt32(q.X), qy = roundToInt32(q.Y);
    if (!px || !py || !ix || !iy || !qx || !qy) {
      straight();
      continue;
    }
    int32_t status = 0;
    double cx = 0, cy = 0, r = 0, start = 0, sweep = 0;
    ArcThroughPoints(status, {*px, *py}, {*ix, *iy}, {*qx, *qy}, cx, cy, r, start, sweep);
    const auto wx = roundToInt32(cx), wy = roundToInt32(cy), wr = roundToInt32(r);
    if (status != 0 || !wx || !wy || !wr || *wr == 0) {
      mid.Kind = outlinepoint::Straight;
      points[i - 1].Kind = outlinepoint::Straight;
      continue;
    }
    mid.CentreX = *wx;
    mid.CentreY = *wy;
    mid.Radius = *wr;
  }
}

void closeChain(OutlinePoints& points) {
  if (points.size() < 3)
    return;
  const auto closeOnto = [&points] {
    OutlinePoint first = points[1];
    first.Kind = outlinepoint::Straight;
    points.push_back(first);
  };
  if (points.back().Kind == outlinepoint::ArcMiddle)
    closeOnto();
  if (points.back().X != points[1].X || points.back().Y != points[1].Y)
    closeOnto();
}

void dropTrailingBulge(OutlinePoints& points) {
  if (points.size() > 1 && points.back().Kind == outlinepoint::ArcMiddle) {
    points.pop_back();
    points.back().Kind = outlinepoint::Straight;
  }
}

OutlinePoints circleOutline(int32_t cx, int32_t cy, int32_t r) {
  const double x = cx, y = cy, d = r;
  OutlinePoints points(1);
  points.push_back(outlinePointAt(outlinepoint::NoStretch, x, y - d));
  points.push_back(outlinePointAt(outlinepoint::ArcMiddle, x - d, y));
  points.push_back(outlinePointAt(outlinepoint::NoStretch, x, y + d));
  points.push_back(outlinePointAt(outlinepoint::ArcMiddle, x + d, y));
  points.push_back(outlinePointAt(outlinepoint::NoStretch, x, y - d));
  for (OutlinePoint& p : points)
    if (p.Kind == outlinepoint::ArcMiddle) {
      p.CentreX = cx;
      p.CentreY = cy;
      p.Radius = r;
    }
  return points;
}

void EllipseToPoints(const DxfEllipse& e, OutlinePoints& points, int32_t& attributes) {
  points.assign(1, OutlinePoint{});
  double start = e.Start, end = e.End;
  for (double v : {start, end, e.CentreX, e.CentreY, e.UX, e.UY, e.VX, e.VY})
    if (!std::isfinite(v))
      return;
  if (std::abs(start) > 360) {
    // Whole turns taken off, so that a step of one degree still moves the parameter.
    const double turns = std::floor(start / 360) * 360;
    start -= turns;
    end -= turns;
  }
  if (start == 0 && std::abs(360 - end) <= 1)
    end = 360;
  if (end < start)
    end += 360 * std::ceil((start - end) / 360);  // an end below the start runs on through 360
  end = std::min(end, start + 360);
  const auto add = [&](double t) {
    const double c = std::cos(t * RadiansPerDegree), s = std::sin(t * RadiansPerDegree);
    points.push_back(outlinePointAt(outlinepoint::Straight,
                                    std::nearbyint(e.CentreX + e.UX * c + e.VX * s),
                                    std::nearbyint(e.CentreY + e.UY * c + e.VY * s)));
  };
  add(start);
  for (double t = start + 1; t < end; t += 1)
    add(t);
  add(end);
  for (const OutlinePoint& p : points)
    if (!roundToInt32(p.X) || !roundToInt32(p.Y)) {
      points.assign(1, OutlinePoint{});
      return;
    }
  const bool closed = points[1].X == points.back().X && points[1].Y == points.back().Y;
  attributes = closed ? dxfattr::ClosedOutline : dxfattr::OpenChain;
}

void ChordArcs(OutlinePoints& points) {
  OutlinePoints out;
  out.reserve(points.size());
  for (size_t i = 0; i < points.size(); ++i) {
    const OutlinePoint& m = points[i];
    if (m.Kind != outlinepoint::ArcMiddle || i < 2 || i + 1 >= points.size() || m.Radius == 0) {
      out.push_back(m);
      if (m.Kind == outlinepoint::ArcMiddle)
        out.back().Kind = outlinepoint::Straight;
      continue;
    }
    const OutlinePoint& a = points[i - 1];
    const OutlinePoint& b = points[i + 1];
    const double cx = m.CentreX, cy = m.CentreY, r = m.Radius;
    const double a0 = AngleOf(a.X - cx, a.Y - cy), a1 = AngleOf(b.X - cx, b.Y - cy);
    const double am = AngleOf(m.X - cx, m.Y - cy);
    const auto ccw = [](double from, double to) {
      const double d = std::fmod(to - from + 720.0, 360.0);
      return d == 0 ? 360.0 : d;
    };
    double sweep = ccw(a0, a1);
    if (ccw(a0, am) > sweep)
      sweep -= 360;  // the middle lies the other way round
    out.back().Kind = outlinepoint::Straight;
    const int steps = std::max(2, int(std::ceil(std::abs(sweep) / 2)));
    for (int k = 1; k < steps; ++k) {
      const double t = (a0 + sweep * k / steps) * RadiansPerDegree;
      out.push_back(outlinePointAt(outlinepoint::Straight, std::nearbyint(cx + r * std::cos(t)),
                                   std::nearbyint(cy + r * std::sin(t))));
    }
  }
  points.swap(out);
}

DxfPlane DxfPlane::ofNormal(double nx, double ny, double nz) {
  DxfPlane p;
  const double length = std::sqrt(nx * nx + ny * ny + nz * nz);
  if (!(length > 0) || !std::isfinite(length))
    return p;
  p.n = {nx / length, ny / length, nz / length};
  if (p.n[0] == 0 && p.n[1] == 0) {
    // Straight up or straight down: the usual axes, X turned over from below.
    p.ax = {p.n[2] > 0 ? 1.0 : -1.0, 0, 0};
    p.ay = {0, 1, 0};
    return p;
  }
  const auto cross = [](const std::array<double, 3>& u, const std::array<double, 3>& v) {
    return std::array<double, 3>{u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2],
                                 u[0] * v[1] - u[1] * v[0]};
  };
  // The arbitrary axis rule: X is the world's Y (or, for a normal close to Z, its Z) crossed
  // with the normal; Y is the normal crossed with X.
  const bool nearZ = std::abs(p.n[0]) < 1.0 / 64 && std::abs(p.n[1]) < 1.0 / 64;
  std::array<double, 3> x =
      cross(nearZ ? std::array<double, 3>{0, 1, 0} : std::array<double, 3>{0, 0, 1}, p.n);
  const double lx = std::sqrt(x[0] * x[0] + x[1] * x[1] + x[2] * x[2]);
  p.ax = {x[0] / lx, x[1] / lx, x[2] / lx};
  p.ay = cross(p.n, p.ax);
  return p;
}

void FramePoints(const OutlinePoints& points, int32_t& x1, int32_t& y1, int32_t& x2, int32_t& y2) {
  x1 = y1 = x2 = y2 = 0;
  if (points.size() < 3)
    return;
  double minX = points[1].X, maxX = minX, minY = points[1].Y, maxY = minY;
  const auto widen = [&](double x, double y) {
    minX = std::min(minX, x);
    maxX = std::max(maxX, x);
    minY = std::min(minY, y);
    maxY = std::max(maxY, y);
  };
  for (size_t i = 2; i < points.size(); ++i) {
    const OutlinePoint& p = points[i];
    if (p.Kind != outlinepoint::ArcMiddle || i + 1 >= points.size()) {
      widen(p.X, p.Y);
      continue;
    }
    // The circle's extreme points on the middle's side of the chord.
    const OutlinePoint& a = points[i - 1];
    const OutlinePoint& b = points[i + 1];
    const double side = sideOf(a.X, a.Y, b.X, b.Y, p.X, p.Y);
    const double cx = p.CentreX, cy = p.CentreY, r = p.Radius;
    const double extremes[4][2] = {{cx + r, cy}, {cx - r, cy}, {cx, cy + r}, {cx, cy - r}};
    for (const auto& [x, y] : extremes)
      if ((sideOf(a.X, a.Y, b.X, b.Y, x, y) > 0) == (side > 0))
        widen(x, y);
  }
  const auto fx1 = roundToInt32(minX), fy1 = roundToInt32(minY), fx2 = roundToInt32(maxX),
             fy2 = roundToInt32(maxY);
  if (fx1 && fy1 && fx2 && fy2) {
    x1 = *fx1;
    y1 = *fy1;
    x2 = *fx2;
    y2 = *fy2;
  }
}

bool PointsToCircle(OutlinePoints& points, int32_t tolerance) {
  int32_t x1 = 0, y1 = 0, x2 = 0, y2 = 0;
  FramePoints(points, x1, y1, x2, y2);
  const double w = double(x2) - x1, h = double(y2) - y1;
  const double r = std::nearbyint((std::nearbyint(w / 2) + std::nearbyint(h / 2)) / 2);
  const double cx = std::nearbyint(w / 2 + x1), cy = std::nearbyint(h / 2 + y1);
  if (points.size() < 3 || r <= 0)
    return false;
  for (size_t i = 1; i + 1 < points.size(); ++i) {
    const double d = std::hypot(points[i].X - cx, points[i].Y - cy);
    if (std::nearbyint(std::abs(d - r)) > tolerance)
      return false;
  }
  const auto wx = roundToInt32(cx), wy = roundToInt32(cy), wr = roundToInt32(r);
  if (!wx || !wy || !wr)
    return false;
  points = circleOutline(*wx, *wy, *wr);
  return true;
}

std::vector<std::array<double, 2>> SplineToPoints(const DxfSpline& s) {
  const size_t n = s.Control.size();
  const size_t p = size_t(std::max(0, s.Degree));
  const bool knotsAgree =
      p >= 1 && n > p && s.Knots.size() == n + p + 1 &&
      std::is_sorted(s.Knots.begin(), s.Knots.end()) && s.Knots[n] > s.Knots[p] &&
      std::all_of(s.Knots.begin(), s.Knots.end(), [](double k) { return std::isfinite(k); });
  if (!knotsAgree)
    return !s.Fit.empty() ? s.Fit : s.Control;
  const bool rational =
      s.Weights.size() == n && std::all_of(s.Weights.begin(), s.Weights.end(),
                                           [](double w) { return std::isfinite(w) && w > 0; });
  const std::vector<double>& u = s.Knots;
  // De Boor's algorithm on homogeneous points.
  const auto at = [&](double t) -> std::array<double, 2> {
    size_t k = p;
    while (k + 1 < n && t >= u[k + 1])
      ++k;
    std::vector<std::array<double, 3>> d(p + 1);
    for (size_t j = 0; j <= p; ++j) {
      const size_t c = j + k - p;
      const double w = rational ? s.Weights[c] : 1.0;
      d[j] = {s.Control[c][0] * w, s.Control[c][1] * w, w};
    }
    for (size_t r = 1; r <= p; ++r)
      for (size_t j = p; j >= r; --j) {
        const double lo = u[j + k - p], hi = u[j + 1 + k - r];
        const double alpha = hi > lo ? (t - lo) / (hi - lo) : 0;
        for (int c = 0; c < 3; ++c)
          d[j][size_t(c)] = (1 - alpha) * d[j - 1][size_t(c)] + alpha * d[j][size_t(c)];
      }
    const double w = d[p][2] != 0 ? d[p][2] : 1;
    return {d[p][0] / w, d[p][1] / w};
  };
  // Sixteen chords a knot span, two thousand at most.
  std::vector<std::array<double, 2>> out;
  size_t spans = 0;
  for (size_t k = p; k < n; ++k)
    spans += u[k + 1] > u[k] ? 1 : 0;
  const size_t perSpan = std::clamp<size_t>(2000 / std::max<size_t>(spans, 1), 1, 16);
  for (size_t k = p; k < n; ++k) {
    if (!(u[k + 1] > u[k]))
      continue;
    for (size_t i = 0; i < perSpan; ++i)
      out.push_back(at(u[k] + (u[k + 1] - u[k]) * double(i) / double(perSpan)));
  }
  out.push_back(at(u[n]));
  return out;
}

}  // namespace tvx
