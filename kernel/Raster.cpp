#include "kernel/Raster.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <cwchar>

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

// Pixels whose centres lie in [left, right]: from ceil(left - 0.5) to floor(right - 0.5).
inline int firstPixel(double left) { return int(std::ceil(left - 0.5)); }
inline int lastPixel(double right) { return int(std::floor(right - 0.5)); }
}  // namespace

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

void Raster::fill() {
  for (int y = 0; y < height_; ++y)
    span(y, 0, width_ - 1);
}

void Raster::span(int y, int x0, int x1) {
  if (unsigned(y) >= unsigned(height_))
    return;
  x0 = std::max(x0, 0);
  x1 = std::min(x1, width_ - 1);
  if (x0 > x1)
    return;
  if (indexed_)
    std::memset(bits_ + size_t(y) * stride_ + size_t(x0), index_, size_t(x1 - x0 + 1));
  else
    fillPixels(row(y) + x0, size_t(x1 - x0 + 1), colour_);
}

void Raster::spanOfInterval(int y, double left, double right) {
  int x0 = firstPixel(left), x1 = lastPixel(right);
  if (x0 <= x1)
    span(y, x0, x1);
}

void Raster::fillDisc(QPointF c, double r) {
  if (outside(c.x() - r, c.y() - r, c.x() + r, c.y() + r))
    return;
  int y0 = firstPixel(c.y() - r), y1 = lastPixel(c.y() + r);
  bool any = false;
  y0 = std::max(y0, 0);
  y1 = std::min(y1, height_ - 1);
  for (int y = y0; y <= y1; ++y) {
    double dy = y + 0.5 - c.y();
    double h2 = r * r - dy * dy;
    if (h2 < 0)
      continue;
    double h = std::sqrt(h2);
    int x0 = firstPixel(c.x() - h), x1 = lastPixel(c.x() + h);
    if (x0 <= x1) {
      span(y, x0, x1);
      any = true;
    }
  }
  if (!any)
    plot(int(std::floor(c.x())), int(std::floor(c.y())));
}

void Raster::fillRing(QPointF c, double outer, double inner) {
  if (inner <= 0) {
    fillDisc(c, outer);
    return;
  }
  if (outside(c.x() - outer, c.y() - outer, c.x() + outer, c.y() + outer))
    return;
  int y0 = std::max(firstPixel(c.y() - outer), 0);
  int y1 = std::min(lastPixel(c.y() + outer), height_ - 1);
  bool any = false;
  for (int y = y0; y <= y1; ++y) {
    double dy = y + 0.5 - c.y();
    double o2 = outer * outer - dy * dy;
    if (o2 < 0)
      continue;
    double ho = std::sqrt(o2);
    double i2 = inner * inner - dy * dy;
    int ox0 = firstPixel(c.x() - ho), ox1 = lastPixel(c.x() + ho);
    if (i2 <= 0) {
      if (ox0 <= ox1) {
        span(y, ox0, ox1);
        any = true;
      }
      continue;
    }
    double hi = std::sqrt(i2);
    // Pixels between the outer and the inner circle, on both sides.
    int ix0 = firstPixel(c.x() - hi), ix1 = lastPixel(c.x() + hi);
    if (ox0 <= ix0 - 1) {
      span(y, ox0, ix0 - 1);
      any = true;
    }
    if (ix1 + 1 <= ox1) {
      span(y, ix1 + 1, ox1);
      any = true;
    }
  }
  if (!any)
    plot(int(std::floor(c.x() + outer)), int(std::floor(c.y())));
}

void Raster::fillConvex(const QPointF* p, int n) {
  if (n < 3)
    return;
  double minX = p[0].x(), maxX = minX, minY = p[0].y(), maxY = minY;
  for (int i = 1; i < n; ++i) {
    minX = std::min(minX, p[i].x());
    maxX = std::max(maxX, p[i].x());
    minY = std::min(minY, p[i].y());
    maxY = std::max(maxY, p[i].y());
  }
  if (outside(minX, minY, maxX, maxY))
    return;
  int y0 = std::max(firstPixel(minY), 0), y1 = std::min(lastPixel(maxY), height_ - 1);
  bool any = false;
  for (int y = y0; y <= y1; ++y) {
    double sy = y + 0.5, left = HUGE_VAL, right = -HUGE_VAL;
    for (int i = 0, j = n - 1; i < n; j = i++) {
      double ay = p[j].y(), by = p[i].y();
      if ((ay <= sy) == (by <= sy))
        continue;
      double x = p[j].x() + (sy - ay) * (p[i].x() - p[j].x()) / (by - ay);
      left = std::min(left, x);
      right = std::max(right, x);
    }
    if (left <= right) {
      int x0 = firstPixel(left), x1 = lastPixel(right);
      if (x0 <= x1) {
        span(y, x0, x1);
        any = true;
      }
    }
  }
  if (!any)
    plot(int(std::floor((minX + maxX) / 2)), int(std::floor((minY + maxY) / 2)));
}

void Raster::fillPolygon(const std::vector<QPointF>& p) {
  size_t n = p.size();
  if (n < 3)
    return;
  double minX = p[0].x(), maxX = minX, minY = p[0].y(), maxY = minY;
  for (const QPointF& q : p) {
    minX = std::min(minX, q.x());
    maxX = std::max(maxX, q.x());
    minY = std::min(minY, q.y());
    maxY = std::max(maxY, q.y());
  }
  if (outside(minX, minY, maxX, maxY))
    return;
  const int y0 = std::max(firstPixel(minY), 0), y1 = std::min(lastPixel(maxY), height_ - 1);
  // The edges sorted once by their first row; each row looks only at the edges active on it.
  // Rows are given one spare at each end, and the exact test of the crossing decides, so that a
  // pixel is set exactly as when every edge is tested on every row.
  edges_.clear();
  for (size_t i = 0, j = n - 1; i < n; j = i++) {
    const double ay = p[j].y(), by = p[i].y();
    if (ay == by)
      continue;
    const double low = std::min(ay, by), high = std::max(ay, by);
    const int first = int(std::max(std::ceil(low - 0.5) - 1, double(y0)));
    const int last = int(std::min(std::floor(high - 0.5) + 1, double(y1)));
    if (first <= last)
      edges_.push_back({p[j].x(), ay, p[i].x(), by, first, last});
  }
  std::sort(edges_.begin(), edges_.end(),
            [](const Edge& l, const Edge& r) { return l.first < r.first; });
  active_.clear();
  size_t next = 0;
  bool any = false;
  for (int y = y0; y <= y1; ++y) {
    if (active_.empty()) {
      if (next == edges_.size())
        break;
      y = std::max(y, edges_[next].first);
    }
    while (next < edges_.size() && edges_[next].first <= y)
      active_.push_back(uint32_t(next++));
    const double sy = y + 0.5;
    crossings_.clear();
    for (size_t k = 0; k < active_.size();) {
      const Edge& e = edges_[active_[k]];
      if (e.last < y) {
        active_[k] = active_.back();
        active_.pop_back();
        continue;
      }
      if ((e.ay <= sy) != (e.by <= sy))
        crossings_.push_back(e.ax + (sy - e.ay) * (e.bx - e.ax) / (e.by - e.ay));
      ++k;
    }
    std::sort(crossings_.begin(), crossings_.end());
    for (size_t k = 0; k + 1 < crossings_.size(); k += 2) {
      int x0 = firstPixel(crossings_[k]), x1 = lastPixel(crossings_[k + 1]);
      if (x0 <= x1) {
        span(y, x0, x1);
        any = true;
      }
    }
  }
  if (!any)
    plot(int(std::floor((minX + maxX) / 2)), int(std::floor((minY + maxY) / 2)));
}

void Raster::hairline(QPointF a, QPointF b) {
  double dx = b.x() - a.x(), dy = b.y() - a.y();
  double minX = std::min(a.x(), b.x()), maxX = std::max(a.x(), b.x());
  double minY = std::min(a.y(), b.y()), maxY = std::max(a.y(), b.y());
  if (outside(minX, minY, maxX, maxY))
    return;
  double t0 = 0, t1 = 1;
  if (minX < -1 || minY < -1 || maxX > width_ + 1 || maxY > height_ + 1) {
    // Clip long lines to the image first so the walk stays short (Liang-Barsky).
    auto clip = [&](double p, double q) {
      if (p == 0)
        return q >= 0;
      double r = q / p;
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
    if (!clip(-dx, a.x() + 1) || !clip(dx, width_ + 1 - a.x()) || !clip(-dy, a.y() + 1) ||
        !clip(dy, height_ + 1 - a.y()))
      return;
  }
  double fx = a.x() + t0 * dx, fy = a.y() + t0 * dy;
  double lx = dx * (t1 - t0), ly = dy * (t1 - t0);
  int steps = int(std::ceil(std::max(std::abs(lx), std::abs(ly))));
  // Fixed point with 16 fraction bits; the shift floors negative values too.
  int64_t x = int64_t(std::llround(fx * 65536.0)), y = int64_t(std::llround(fy * 65536.0));
  if (steps == 0) {
    plot(int(x >> 16), int(y >> 16));
    return;
  }
  int64_t sx = int64_t(std::llround(lx / steps * 65536.0));
  int64_t sy = int64_t(std::llround(ly / steps * 65536.0));
  for (int i = 0; i <= steps; ++i, x += sx, y += sy)
    plot(int(x >> 16), int(y >> 16));
}

void Raster::strokeSegment(QPointF a, QPointF b, double width) {
  double r = width / 2;
  if (width < 1.5) {
    hairline(a, b);
    return;
  }
  if (outside(std::min(a.x(), b.x()) - r, std::min(a.y(), b.y()) - r, std::max(a.x(), b.x()) + r,
              std::max(a.y(), b.y()) + r))
    return;
  double dx = b.x() - a.x(), dy = b.y() - a.y();
  double len = std::hypot(dx, dy);
  if (len < 1e-9) {
    fillDisc(a, r);
    return;
  }
  // The body as a quad; the round ends as discs. Row by row the three pieces of this convex
  // shape are joined into one span, so no pixel is set twice.
  double nx = -dy / len * r, ny = dx / len * r;
  QPointF quad[4] = {{a.x() + nx, a.y() + ny},
                     {b.x() + nx, b.y() + ny},
                     {b.x() - nx, b.y() - ny},
                     {a.x() - nx, a.y() - ny}};
  double minY = std::min(a.y(), b.y()) - r, maxY = std::max(a.y(), b.y()) + r;
  int y0 = std::max(firstPixel(minY), 0), y1 = std::min(lastPixel(maxY), height_ - 1);
  for (int y = y0; y <= y1; ++y) {
    double sy = y + 0.5, left = HUGE_VAL, right = -HUGE_VAL;
    for (QPointF c : {a, b}) {
      double d = sy - c.y(), h2 = r * r - d * d;
      if (h2 >= 0) {
        double h = std::sqrt(h2);
        left = std::min(left, c.x() - h);
        right = std::max(right, c.x() + h);
      }
    }
    for (int i = 0, j = 3; i < 4; j = i++) {
      double ay = quad[j].y(), by = quad[i].y();
      if ((ay <= sy) == (by <= sy))
        continue;
      double x = quad[j].x() + (sy - ay) * (quad[i].x() - quad[j].x()) / (by - ay);
      left = std::min(left, x);
      right = std::max(right, x);
    }
    if (left <= right)
      spanOfInterval(y, left, right);
  }
}

}  // namespace tvx
