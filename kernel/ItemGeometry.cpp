#include "kernel/ItemGeometry.h"

#include <algorithm>
#include <cmath>

namespace tvx {

namespace {

constexpr double Milli = 1000.0;

struct Bounds {
  double minX = HUGE_VAL, minY = HUGE_VAL, maxX = -HUGE_VAL, maxY = -HUGE_VAL;
  void add(Point p) {
    minX = std::min(minX, p.x);
    minY = std::min(minY, p.y);
    maxX = std::max(maxX, p.x);
    maxY = std::max(maxY, p.y);
  }
  Box grown(double by) const {
    return {clampToInt32(std::floor(minX - by)), clampToInt32(std::floor(minY - by)),
            clampToInt32(std::ceil(maxX + by)), clampToInt32(std::ceil(maxY + by))};
  }
};

double segmentDistance(Point q, Point a, Point b) {
  double dx = b.x - a.x, dy = b.y - a.y;
  double len2 = dx * dx + dy * dy;
  double t = len2 > 0 ? ((q.x - a.x) * dx + (q.y - a.y) * dy) / len2 : 0.0;
  t = std::clamp(t, 0.0, 1.0);
  return std::hypot(q.x - (a.x + t * dx), q.y - (a.y + t * dy));
}

// Distance from q to a closed polygon's outline, and whether q lies inside it.
double outlineDistance(Point q, const Point* corners, int n, bool& inside) {
  double best = HUGE_VAL;
  inside = false;
  for (int i = 0, j = n - 1; i < n; j = i++) {
    best = std::min(best, segmentDistance(q, corners[j], corners[i]));
    if ((corners[i].y > q.y) != (corners[j].y > q.y)) {
      double xCross = corners[j].x + (q.y - corners[j].y) * (corners[i].x - corners[j].x) /
                                         (corners[i].y - corners[j].y);
      if (q.x < xCross)
        inside = !inside;
    }
  }
  return best;
}

int cornersOf(const ItemFields& item, size_t textLength, Point* out) {
  Point origin{double(item.X), double(item.Y)};
  auto at = [&](double dx, double dy) {
    Point v = rotated({dx, dy}, item.Angle);
    return Point{origin.x + v.x, origin.y + v.y};
  };
  switch (item.Type) {
  case ItemTriangle:
    out[0] = origin;
    out[1] = {origin.x + item.Width, origin.y + item.Height};
    out[2] = {origin.x + item.Angle, origin.y + item.Sweep};
    return 3;
  case ItemRectangle:
    out[0] = at(0, 0);
    out[1] = at(item.Width, 0);
    out[2] = at(item.Width, item.Height);
    out[3] = at(0, item.Height);
    return 4;
  case ItemVectorText:
  case ItemTrueTypeText: {
    int32_t w = 0, h = 0;
    textBoxSize(item.Type, item.Width, item.Height, textLength, w, h);
    out[0] = at(0, 0);
    out[1] = at(w, 0);
    out[2] = at(w, h);
    out[3] = at(0, h);
    return 4;
  }
  default:
    return 0;
  }
}

// Half the pen width where the pen adds to the shape: not on filled areas.
double halfPen(const ItemFields& item) {
  bool filledArea =
      item.Style == StyleFilled &&
      (item.Type == ItemTriangle || item.Type == ItemRectangle || item.Type == ItemCircle);
  return filledArea ? 0.0 : std::max(0, item.LineWidth) / 2.0;
}

bool angleInSweep(double angle, int32_t start, int32_t sweep) {
  double rel = std::fmod(angle - start + 720000.0, 360000.0);
  return rel <= sweep;
}

}  // namespace

void normaliseArc(int32_t& startAngle, int32_t& sweep) {
  int64_t start = startAngle;
  int64_t sw = sweep;
  if (sw < 0) {
    start += sw;
    sw = -sw;
  }
  startAngle = normalisedAngle(start);
  sweep = int32_t(std::min<int64_t>(sw, 360000));
}

void textBoxSize(int32_t type, int32_t size1, int32_t size2, size_t length, int32_t& width,
                 int32_t& height) {
  double h = std::abs(double(size1));
  double charWidth =
      size2 != 0 ? std::abs(double(size2)) : h * (type == ItemTrueTypeText ? 0.6 : 0.75);
  width = clampToInt32(charWidth * double(length));
  height = clampToInt32(h);
}

Box itemFrame(const ItemFields& item, size_t textLength) {
  Bounds b;
  double pen = std::max(0, item.LineWidth) / 2.0;
  switch (item.Type) {
  case ItemLine:
    b.add({double(item.X), double(item.Y)});
    b.add({double(item.X) + item.Width, double(item.Y) + item.Height});
    return b.grown(pen);
  case ItemCircle: {
    double r = std::abs(double(item.Width)) + pen;
    b.add({item.X - r, item.Y - r});
    b.add({item.X + r, item.Y + r});
    return b.grown(0);
  }
  case ItemArc: {
    int32_t start = item.Height, sweep = item.Sweep;
    normaliseArc(start, sweep);
    double r = std::abs(double(item.Width));
    auto onArc = [&](double angle) {
      double a = angle / Milli * RadiansPerDegree;
      // Rounded so that exact quarter points stay exact.
      b.add({std::round(item.X + r * std::cos(a)), std::round(item.Y + r * std::sin(a))});
    };
    onArc(start);
    onArc(double(start) + sweep);
    // The quarter points without a sine or cosine: rounded, the tiny values that the functions
    // give for the zeros of the quarters vanish, and the ones are exact.
    static constexpr double QuarterX[] = {1, 0, -1, 0}, QuarterY[] = {0, 1, 0, -1};
    for (int quarter = 0; quarter < 4; ++quarter)
      if (angleInSweep(quarter * 90000.0, start, sweep))
        b.add({std::round(item.X + r * QuarterX[quarter]),
               std::round(item.Y + r * QuarterY[quarter])});
    return b.grown(pen);
  }
  case ItemTriangle:
  case ItemRectangle:
  case ItemVectorText:
  case ItemTrueTypeText: {
    Point corners[4];
    int n = cornersOf(item, textLength, corners);
    for (int i = 0; i < n; ++i)
      b.add(corners[i]);
    bool text = item.Type == ItemVectorText || item.Type == ItemTrueTypeText;
    return b.grown(text ? 0 : pen);
  }
  default:
    b.add({double(item.X), double(item.Y)});
    return b.grown(0);
  }
}

bool itemCovers(const ItemFields& item, size_t textLength, double x, double y, double tolerance) {
  Point q{x, y};
  double reach = tolerance + halfPen(item);
  switch (item.Type) {
  case ItemLine:
    return segmentDistance(q, {double(item.X), double(item.Y)},
                           {double(item.X) + item.Width, double(item.Y) + item.Height}) <= reach;
  case ItemCircle: {
    double d = std::hypot(x - item.X, y - item.Y);
    double r = std::abs(double(item.Width));
    return item.Style == StyleFilled ? d <= r + reach : std::abs(d - r) <= reach;
  }
  case ItemArc: {
    int32_t start = item.Height, sweep = item.Sweep;
    normaliseArc(start, sweep);
    double r = std::abs(double(item.Width));
    double d = std::hypot(x - item.X, y - item.Y);
    if (d > 0) {
      double angle = std::atan2(y - item.Y, x - item.X) / RadiansPerDegree * Milli;
      if (angleInSweep(angle, start, sweep))
        return std::abs(d - r) <= reach;
    }
    for (double a : {double(start), double(start) + sweep}) {
      double rad = a / Milli * RadiansPerDegree;
      if (std::hypot(x - (item.X + r * std::cos(rad)), y - (item.Y + r * std::sin(rad))) <= reach)
        return true;
    }
    return false;
  }
  case ItemTriangle:
  case ItemRectangle:
  case ItemVectorText:
  case ItemTrueTypeText: {
    Point corners[4];
    int n = cornersOf(item, textLength, corners);
    bool inside = false;
    double d = outlineDistance(q, corners, n, inside);
    bool area =
        item.Style == StyleFilled || item.Type == ItemVectorText || item.Type == ItemTrueTypeText;
    return (area && inside) || d <= reach;
  }
  default:
    return std::hypot(x - item.X, y - item.Y) <= tolerance;
  }
}

void placePoint(int32_t& x, int32_t& y, const Placement& p) {
  if (p.isIdentity())
    return;
  const Point v = p.placed({double(x), double(y)});
  x = clampToInt32(v.x);
  y = clampToInt32(v.y);
}

void unplacePoint(int32_t& x, int32_t& y, const Placement& p) {
  if (p.isIdentity())
    return;
  Point v = rotated({double(x) - p.X, double(y) - p.Y}, -p.Angle);
  x = clampToInt32(p.Mirror ? -v.x : v.x);
  y = clampToInt32(v.y);
}

void placeItem(ItemFields& item, const Placement& p) {
  if (p.isIdentity())
    return;
  auto placeVector = [&](int32_t& dx, int32_t& dy) {
    const Point v = p.turned({double(dx), double(dy)});
    dx = clampToInt32(v.x);
    dy = clampToInt32(v.y);
  };
  placePoint(item.X, item.Y, p);
  switch (item.Type) {
  case ItemLine:
    placeVector(item.Width, item.Height);
    break;
  case ItemTriangle:
    placeVector(item.Width, item.Height);
    placeVector(item.Angle, item.Sweep);
    break;
  case ItemRectangle:
    if (p.Mirror) {
      item.Width = -item.Width;
      item.Angle = -item.Angle;
    }
    item.Angle = normalisedAngle(int64_t(item.Angle) + p.Angle);
    break;
  case ItemArc:
    if (p.Mirror) {
      item.Height = 180000 - item.Height;
      item.Sweep = -item.Sweep;
    }
    item.Height = normalisedAngle(int64_t(item.Height) + p.Angle);
    break;
  case ItemVectorText:
  case ItemTrueTypeText:
    if (p.Mirror)
      item.Angle = -item.Angle;
    item.Angle = normalisedAngle(int64_t(item.Angle) + p.Angle);
    break;
  default:
    break;
  }
}

Box placeBox(const Box& box, const Placement& p) {
  if (p.isIdentity())
    return box;
  Bounds b;
  for (int i = 0; i < 4; ++i) {
    int32_t x = (i & 1) ? box.maxX : box.minX;
    int32_t y = (i & 2) ? box.maxY : box.minY;
    placePoint(x, y, p);
    b.add({double(x), double(y)});
  }
  return b.grown(0);
}

}  // namespace tvx
