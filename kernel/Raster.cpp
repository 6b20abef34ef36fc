#include "kernel/Raster.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>
#include <cwchar>
#include <thread>

namespace tvx {

namespace {
// n pixels of one colour. The C library's wide-character fill writes 32-bit values with the
// machine's widest stores, where a plain loop writes one pixel at a time.
inline void fillPixels(QRgb* first, size_t n, QRgb colour) {
  if constexpr (sizeof(wchar_t) == sizeof(QRgb)) {
    std::wmemset(reinterpret_cast<wchar_t*>(first), static_cast<wchar_t>(colour), n);
  } else {
    std::fill_n(first, n, colour);
  }
}

// Floor and ceiling by the truncating conversion: without SSE4.1 the library's rounding takes
// several dependent steps, and a span takes two of them a row. Values are held to +-2^30 pixels
// first (a shape may reach far beyond the picture at a fine precision), so that the conversion
// stays in the range of int.
constexpr double FarthestPixel = 1 << 30;
inline int floorToInt(double v) {
  v = std::clamp(v, -FarthestPixel, FarthestPixel);
  const int i = int(v);
  return i - int(v < double(i));
}
inline int ceilToInt(double v) {
  v = std::clamp(v, -FarthestPixel, FarthestPixel);
  const int i = int(v);
  return i + int(v > double(i));
}

// std::llround for values well inside the range of int64_t, inline: the fractional part
// v - trunc(v) is exact, so halves go away from zero as there.
inline int64_t roundHalfAway(double v) {
  int64_t i = int64_t(v);
  const double fraction = v - double(i);
  i += int64_t(fraction >= 0.5) - int64_t(fraction <= -0.5);
  return i;
}

// Pixels whose centres lie in [left, right]: from ceil(left - 0.5) to floor(right - 0.5).
inline int firstPixel(double left) { return ceilToInt(left - 0.5); }
inline int lastPixel(double right) { return floorToInt(right - 0.5); }

// A batch is drawn once it holds this many shapes or points, so that it stays small in memory.
constexpr size_t BatchShapes = size_t(1) << 16;
constexpr size_t BatchPoints = size_t(1) << 20;
// Fewer shapes than this, or fewer rows, are not worth a second thread.
constexpr size_t ShapesForTwoBands = 256;
constexpr int RowsForTwoBands = 32;
// A batch whose first shapes are this small on average (in rows) is drawn at once from there on:
// keeping tiny shapes costs more than a second core saves on them.
constexpr size_t ShapesToJudge = 4096;
constexpr int64_t SmallShapeRows = 12;

using Shape = Raster::Shape;
using Kind = Raster::ShapeKind;

// Widens [left, right] to the crossings of the row through sy with the closed outline p.
inline void widenByCrossings(const QPointF* p, int n, double sy, double& left, double& right) {
  for (int i = 0, j = n - 1; i < n; j = i++) {
    const double ay = p[j].y(), by = p[i].y();
    if ((ay <= sy) == (by <= sy))
      continue;
    const double x = p[j].x() + (sy - ay) * (p[i].x() - p[j].x()) / (by - ay);
    left = std::min(left, x);
    right = std::max(right, x);
  }
}

// The spans of a shape on the rows first..last, each given to take(y, x0, x1) in the order of the
// rows; take returns false to stop. Returns true when some span was given. Hairlines and single
// pixels have no spans.
// Always inlined: called with a shape of a known kind, the switch folds away, and a tiny shape
// drawn at once costs no more than its own arithmetic.
template <typename Take>
[[gnu::always_inline]] inline bool spansOf(const Shape& s, int first, int last,
                                           PolygonScratch& scratch, Take&& take) {
  bool any = false;
  // One row's interval [left, right] of pixel centres: a span when it holds one.
  auto interval = [&](int y, double left, double right) {
    const int x0 = firstPixel(left), x1 = lastPixel(right);
    if (x0 > x1)
      return true;
    any = true;
    return take(y, x0, x1);
  };
  switch (s.kind) {
  case Kind::Disc: {
    const double cx = s.v[0], cy = s.v[1], r = s.v[2];
    const int y0 = std::max(firstPixel(cy - r), first), y1 = std::min(lastPixel(cy + r), last);
    for (int y = y0; y <= y1; ++y) {
      const double dy = y + 0.5 - cy;
      const double h2 = r * r - dy * dy;
      if (h2 < 0)
        continue;
      const double h = std::sqrt(h2);
      if (!interval(y, cx - h, cx + h))
        break;
    }
    return any;
  }
  case Kind::Ring: {
    const double cx = s.v[0], cy = s.v[1], outer = s.v[2], inner = s.v[3];
    const int y0 = std::max(firstPixel(cy - outer), first);
    const int y1 = std::min(lastPixel(cy + outer), last);
    for (int y = y0; y <= y1; ++y) {
      const double dy = y + 0.5 - cy;
      const double o2 = outer * outer - dy * dy;
      if (o2 < 0)
        continue;
      const double ho = std::sqrt(o2);
      const double i2 = inner * inner - dy * dy;
      const int ox0 = firstPixel(cx - ho), ox1 = lastPixel(cx + ho);
      if (i2 <= 0) {
        if (ox0 <= ox1) {
          any = true;
          if (!take(y, ox0, ox1))
            break;
        }
        continue;
      }
      const double hi = std::sqrt(i2);
      // Pixels between the outer and the inner circle, on both sides.
      const int ix0 = firstPixel(cx - hi), ix1 = lastPixel(cx + hi);
      if (ox0 <= ix0 - 1) {
        any = true;
        if (!take(y, ox0, ix0 - 1))
          break;
      }
      if (ix1 + 1 <= ox1) {
        any = true;
        if (!take(y, ix1 + 1, ox1))
          break;
      }
    }
    return any;
  }
  case Kind::Convex: {
    const QPointF* p = s.points;
    const int n = int(s.count);
    const int y0 = std::max(firstPixel(s.v[1]), first), y1 = std::min(lastPixel(s.v[3]), last);
    for (int y = y0; y <= y1; ++y) {
      double sy = y + 0.5, left = HUGE_VAL, right = -HUGE_VAL;
      widenByCrossings(p, n, sy, left, right);
      if (left <= right && !interval(y, left, right))
        break;
    }
    return any;
  }
  case Kind::Polygon: {
    const QPointF* p = s.points;
    const size_t n = s.count;
    const int y0 = std::max(firstPixel(s.v[1]), first), y1 = std::min(lastPixel(s.v[3]), last);
    // The edges sorted once by their first row; each row looks only at the edges active on it.
    // Rows are given one spare at each end, and the exact test of the crossing decides, so that a
    // pixel is set exactly as when every edge is tested on every row.
    auto& edges = scratch.edges;
    edges.clear();
    for (size_t i = 0, j = n - 1; i < n; j = i++) {
      const double ay = p[j].y(), by = p[i].y();
      if (ay == by)
        continue;
      const double low = std::min(ay, by), high = std::max(ay, by);
      const int from = int(std::max(std::ceil(low - 0.5) - 1, double(y0)));
      const int to = int(std::min(std::floor(high - 0.5) + 1, double(y1)));
      if (from <= to)
        edges.push_back({p[j].x(), ay, p[i].x(), by, from, to});
    }
    std::sort(edges.begin(), edges.end(),
              [](const PolygonScratch::Edge& l, const PolygonScratch::Edge& r) {
                return l.first < r.first;
              });
    auto& active = scratch.active;
    auto& crossings = scratch.crossings;
    active.clear();
    size_t next = 0;
    for (int y = y0; y <= y1; ++y) {
      if (active.empty()) {
        if (next == edges.size())
          break;
        y = std::max(y, edges[next].first);
      }
      while (next < edges.size() && edges[next].first <= y)
        active.push_back(uint32_t(next++));
      const double sy = y + 0.5;
      crossings.clear();
      for (size_t k = 0; k < active.size();) {
        const PolygonScratch::Edge& e = edges[active[k]];
        if (e.last < y) {
          active[k] = active.back();
          active.pop_back();
          continue;
        }
        if ((e.ay <= sy) != (e.by <= sy))
          crossings.push_back(e.ax + (sy - e.ay) * (e.bx - e.ax) / (e.by - e.ay));
        ++k;
      }
      std::sort(crossings.begin(), crossings.end());
      for (size_t k = 0; k + 1 < crossings.size(); k += 2)
        if (!interval(y, crossings[k], crossings[k + 1]))
          return true;
    }
    return any;
  }
  case Kind::Segment: {
    // The body as a quad; the round ends as discs. Row by row the three pieces of this convex
    // shape are joined into one span, so no pixel is set twice.
    const QPointF a(s.v[0], s.v[1]), b(s.v[2], s.v[3]);
    const double r = s.v[4] / 2;
    const double dx = b.x() - a.x(), dy = b.y() - a.y();
    const double len = std::hypot(dx, dy);
    const double nx = -dy / len * r, ny = dx / len * r;
    const QPointF quad[4] = {{a.x() + nx, a.y() + ny},
                             {b.x() + nx, b.y() + ny},
                             {b.x() - nx, b.y() - ny},
                             {a.x() - nx, a.y() - ny}};
    const double minY = std::min(a.y(), b.y()) - r, maxY = std::max(a.y(), b.y()) + r;
    const int y0 = std::max(firstPixel(minY), first), y1 = std::min(lastPixel(maxY), last);
    for (int y = y0; y <= y1; ++y) {
      double sy = y + 0.5, left = HUGE_VAL, right = -HUGE_VAL;
      for (QPointF c : {a, b}) {
        const double d = sy - c.y(), h2 = r * r - d * d;
        if (h2 >= 0) {
          const double h = std::sqrt(h2);
          left = std::min(left, c.x() - h);
          right = std::max(right, c.x() + h);
        }
      }
      widenByCrossings(quad, 4, sy, left, right);
      if (left <= right && !interval(y, left, right))
        break;
    }
    return any;
  }
  case Kind::Hairline:
  case Kind::Plot:
    return false;
  }
  return false;
}

// A one-pixel line, clipped to the picture first so that the walk stays short (Liang-Barsky).
[[gnu::always_inline]] inline void walkHairline(const Shape& s, int width, int height,
                                                SpanWriter& out) {
  const QPointF a(s.v[0], s.v[1]), b(s.v[2], s.v[3]);
  const double dx = b.x() - a.x(), dy = b.y() - a.y();
  const double minX = std::min(a.x(), b.x()), maxX = std::max(a.x(), b.x());
  const double minY = std::min(a.y(), b.y()), maxY = std::max(a.y(), b.y());
  double t0 = 0, t1 = 1;
  if (minX < -1 || minY < -1 || maxX > width + 1 || maxY > height + 1) {
    auto clip = [&](double p, double q) {
      if (p == 0)
        return q >= 0;
      const double r = q / p;
      if (p < 0) {
        if (r > t1)
          return false;
        t0 = std::max(t0, r);
      } else {
        if (r < t0)
          return false;
        t1 = std::min(t1, r);
      }
      return true;
    };
    if (!clip(-dx, a.x() + 1) || !clip(dx, width + 1 - a.x()) || !clip(-dy, a.y() + 1) ||
        !clip(dy, height + 1 - a.y()))
      return;
  }
  const double fx = a.x() + t0 * dx, fy = a.y() + t0 * dy;
  const double lx = dx * (t1 - t0), ly = dy * (t1 - t0);
  const int steps = ceilToInt(std::max(std::abs(lx), std::abs(ly)));
  // Fixed point with 16 fraction bits; the shift floors negative values too.
  int64_t x = roundHalfAway(fx * 65536.0), y = roundHalfAway(fy * 65536.0);
  if (steps == 0) {
    out.plot(int(x >> 16), int(y >> 16));
    return;
  }
  const int64_t sx = roundHalfAway(lx / steps * 65536.0);
  const int64_t sy = roundHalfAway(ly / steps * 65536.0);
  for (int i = 0; i <= steps; ++i, x += sx, y += sy)
    out.plot(int(x >> 16), int(y >> 16));
}

// Draws a shape into the rows of out. standIn: the pixel under its middle stands for a shape that
// sets no pixel. A shape of a batch is drawn in bands, where that was decided beforehand.
[[gnu::always_inline]] inline void drawShape(const Shape& s, int width, int height, SpanWriter& out,
                                             PolygonScratch& scratch, bool standIn) {
  out.setColour(s.colour, s.index);
  switch (s.kind) {
  case Kind::Hairline:
    walkHairline(s, width, height, out);
    return;
  case Kind::Plot:
    out.plot(s.fallbackX, s.fallbackY);
    return;
  default: {
    const bool any = spansOf(s, out.rowBegin(), out.rowLast(), scratch, [&](int y, int x0, int x1) {
      out.span(y, x0, x1);
      return true;
    });
    if (!any && standIn && s.kind != Kind::Segment)
      out.plot(s.fallbackX, s.fallbackY);
  }
  }
}

// The rows [top, bottom] a shape may touch, from its extent in y: whole rows with a row to spare
// on each side, within a few rows beyond the picture (the conversion truncates towards zero).
void setRows(Shape& s, double minY, double maxY, int height) {
  s.top = int(std::clamp(minY, -4.0, height + 4.0)) - 2;
  s.bottom = int(std::clamp(maxY, -4.0, height + 4.0)) + 2;
}

}  // namespace

void SpanWriter::span(int y, int x0, int x1) {
  if (y < rowBegin_ || y >= rowEnd_)
    return;
  x0 = std::max(x0, 0);
  x1 = std::min(x1, width_ - 1);
  if (x0 > x1)
    return;
  if (indexed_)
    std::memset(bits_ + size_t(y) * stride_ + size_t(x0), index_, size_t(x1 - x0 + 1));
  else
    fillPixels(reinterpret_cast<QRgb*>(bits_ + size_t(y) * stride_) + x0, size_t(x1 - x0 + 1),
               colour_);
}

bool Raster::draws(const QImage& image) {
  switch (image.format()) {
  case QImage::Format_RGB32:
  case QImage::Format_ARGB32:
  case QImage::Format_ARGB32_Premultiplied:
  case QImage::Format_Indexed8:
    return true;
  default:
    return false;
  }
}

Raster::Raster(QImage& image)
    : bits_(image.bits()), stride_(image.bytesPerLine()), width_(image.width()),
      height_(image.height()), indexed_(image.format() == QImage::Format_Indexed8) {
  if (indexed_)
    index_ = paletteIndex(colour_);
}

Raster::~Raster() { flush(); }

uchar Raster::paletteIndex(QRgb colour) {
  // A picture holds a handful of colours, and a shape asks for the one of the shape before.
  if (index_ < palette_.size() && palette_[index_] == colour)
    return index_;
  const qsizetype known = palette_.indexOf(colour);
  if (known >= 0)
    return uchar(known);
  if (palette_.size() == 256) {
    paletteOverflowed_ = true;
    return 0;
  }
  palette_.push_back(colour);
  return uchar(palette_.size() - 1);
}

void Raster::setColour(QRgb colour) {
  colour_ = colour | 0xFF000000u;
  if (indexed_)
    index_ = paletteIndex(colour_);
}

SpanWriter Raster::wholePicture() const {
  SpanWriter out(bits_, stride_, width_, indexed_, 0, height_);
  out.setColour(colour_, index_);
  return out;
}

void Raster::plot(int x, int y) {
  Shape s{Kind::Plot};
  s.fallbackX = x;
  s.fallbackY = y;
  setRows(s, y, y, height_);
  submit(s);
}

void Raster::fill() {
  flush();
  SpanWriter out = wholePicture();
  for (int y = 0; y < height_; ++y)
    out.span(y, 0, width_ - 1);
}

[[gnu::always_inline]] inline void Raster::submit(Shape& s) {
  s.colour = colour_;
  s.index = index_;
  if (!batching_) {
    SpanWriter out = wholePicture();
    drawShape(s, width_, height_, out, scratch_, true);
    return;
  }
  // Whether the shape sets a pixel anywhere in the picture is decided here, once: a band that
  // holds none of its pixels must not take the pixel that stands for it.
  if (s.kind != Kind::Hairline && s.kind != Kind::Plot && s.kind != Kind::Segment &&
      !spansOf(s, 0, height_ - 1, scratch_, [](int, int, int) { return false; })) {
    s.kind = Kind::Plot;
    setRows(s, s.fallbackY, s.fallbackY, height_);
  }
  if (s.points && s.kind != Kind::Plot) {
    s.first = uint32_t(points_.size());
    points_.insert(points_.end(), s.points, s.points + s.count);
  }
  s.points = nullptr;
  shapes_.push_back(s);
  rowsKept_ += s.bottom - s.top;
  if (shapes_.size() == ShapesToJudge && rowsKept_ < int64_t(ShapesToJudge) * SmallShapeRows) {
    endBatch();
    return;
  }
  if (shapes_.size() >= BatchShapes || points_.size() >= BatchPoints)
    flush();
}

void Raster::flush() {
  if (shapes_.empty())
    return;
  for (Shape& s : shapes_)
    if (s.kind == Kind::Convex || s.kind == Kind::Polygon)
      s.points = points_.data() + s.first;
  auto drawRows = [this](int rowBegin, int rowEnd, PolygonScratch& scratch) {
    SpanWriter out(bits_, stride_, width_, indexed_, rowBegin, rowEnd);
    for (const Shape& s : shapes_)
      if (s.bottom >= rowBegin && s.top < rowEnd)
        drawShape(s, width_, height_, out, scratch, false);
  };
  if (shapes_.size() < ShapesForTwoBands || height_ < RowsForTwoBands) {
    drawRows(0, height_, scratch_);
  } else {
    // The rows split where half of the shapes lie above, so that both cores have work.
    std::vector<int> middles;
    middles.reserve(shapes_.size());
    for (const Shape& s : shapes_)
      middles.push_back(std::clamp((s.top + s.bottom) / 2, 1, height_ - 1));
    std::nth_element(middles.begin(), middles.begin() + qsizetype(middles.size() / 2),
                     middles.end());
    const int split = middles[middles.size() / 2];
    PolygonScratch upperScratch;
    std::thread upper([&] { drawRows(0, split, upperScratch); });
    drawRows(split, height_, scratch_);
    upper.join();
  }
  shapes_.clear();
  points_.clear();
  rowsKept_ = 0;
}

void Raster::fillDisc(QPointF c, double r) {
  if (outside(c.x() - r, c.y() - r, c.x() + r, c.y() + r))
    return;
  Shape s{Kind::Disc};
  s.v[0] = c.x();
  s.v[1] = c.y();
  s.v[2] = r;
  s.fallbackX = int(std::floor(c.x()));
  s.fallbackY = int(std::floor(c.y()));
  setRows(s, c.y() - r, c.y() + r, height_);
  submit(s);
}

void Raster::fillRing(QPointF c, double outer, double inner) {
  if (inner <= 0) {
    fillDisc(c, outer);
    return;
  }
  if (outside(c.x() - outer, c.y() - outer, c.x() + outer, c.y() + outer))
    return;
  Shape s{Kind::Ring};
  s.v[0] = c.x();
  s.v[1] = c.y();
  s.v[2] = outer;
  s.v[3] = inner;
  s.fallbackX = int(std::floor(c.x() + outer));
  s.fallbackY = int(std::floor(c.y()));
  setRows(s, c.y() - outer, c.y() + outer, height_);
  submit(s);
}

namespace {
// A shape of points with its extent (v: minX, minY, maxX, maxY) and the pixel under its middle.
Shape outlineShape(Kind kind, const QPointF* p, size_t n, int height) {
  Shape s{kind};
  double minX = p[0].x(), maxX = minX, minY = p[0].y(), maxY = minY;
  for (size_t i = 1; i < n; ++i) {
    minX = std::min(minX, p[i].x());
    maxX = std::max(maxX, p[i].x());
    minY = std::min(minY, p[i].y());
    maxY = std::max(maxY, p[i].y());
  }
  s.v[0] = minX;
  s.v[1] = minY;
  s.v[2] = maxX;
  s.v[3] = maxY;
  s.points = p;
  s.count = uint32_t(n);
  s.fallbackX = int(std::floor((minX + maxX) / 2));
  s.fallbackY = int(std::floor((minY + maxY) / 2));
  setRows(s, minY, maxY, height);
  return s;
}
}  // namespace

void Raster::fillConvex(const QPointF* p, int n) {
  if (n < 3)
    return;
  Shape s = outlineShape(Kind::Convex, p, size_t(n), height_);
  if (!outside(s.v[0], s.v[1], s.v[2], s.v[3]))
    submit(s);
}

void Raster::fillPolygon(const std::vector<QPointF>& p) {
  if (p.size() < 3)
    return;
  Shape s = outlineShape(Kind::Polygon, p.data(), p.size(), height_);
  if (!outside(s.v[0], s.v[1], s.v[2], s.v[3]))
    submit(s);
}

void Raster::hairline(QPointF a, QPointF b) {
  const double minX = std::min(a.x(), b.x()), maxX = std::max(a.x(), b.x());
  const double minY = std::min(a.y(), b.y()), maxY = std::max(a.y(), b.y());
  if (outside(minX, minY, maxX, maxY))
    return;
  Shape s{Kind::Hairline};
  s.v[0] = a.x();
  s.v[1] = a.y();
  s.v[2] = b.x();
  s.v[3] = b.y();
  setRows(s, minY, maxY, height_);
  submit(s);
}

void Raster::strokeSegment(QPointF a, QPointF b, double width) {
  const double r = width / 2;
  if (width < 1.5) {
    hairline(a, b);
    return;
  }
  if (outside(std::min(a.x(), b.x()) - r, std::min(a.y(), b.y()) - r, std::max(a.x(), b.x()) + r,
              std::max(a.y(), b.y()) + r))
    return;
  if (std::hypot(b.x() - a.x(), b.y() - a.y()) < 1e-9) {
    fillDisc(a, r);
    return;
  }
  Shape s{Kind::Segment};
  s.v[0] = a.x();
  s.v[1] = a.y();
  s.v[2] = b.x();
  s.v[3] = b.y();
  s.v[4] = width;
  setRows(s, std::min(a.y(), b.y()) - r, std::max(a.y(), b.y()) + r, height_);
  submit(s);
}

}  // namespace tvx
