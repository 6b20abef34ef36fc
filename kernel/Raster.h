// A span rasteriser for the shapes of the store, writing straight into a 32-bit image or into an
// 8-bit one with a palette (a quarter of the memory, for pictures of few colours).
//
// A pixel is set when its centre lies inside the shape; a shape that covers no pixel centre still
// sets the pixel under its middle, so nothing on the board disappears when zoomed out. There is no
// edge smoothing: every pixel is set exactly once per shape, which keeps shapes crisp at true size
// and makes drawing a million elements a matter of filling spans.
#pragma once

#include <QImage>
#include <QList>
#include <QPointF>

#include <cstdint>
#include <vector>

namespace tvx {

class Raster {
public:
  explicit Raster(QImage& image);

  // True for the formats drawn into: 32-bit RGB and 8-bit with a palette.
  static bool draws(const QImage& image);

  void setColour(QRgb colour) {
    colour_ = colour | 0xFF000000u;
    if (indexed_)
      index_ = paletteIndex(colour_);
  }
  // The colours drawn into an 8-bit picture, by their index; the picture's colour table.
  const QList<QRgb>& palette() const { return palette_; }
  // True when an 8-bit picture was given more colours than 256 (the later ones drawn as the first).
  bool paletteOverflowed() const { return paletteOverflowed_; }

  void plot(int x, int y) {
    if (unsigned(x) < unsigned(width_) && unsigned(y) < unsigned(height_)) {
      if (indexed_)
        bits_[size_t(y) * stride_ + size_t(x)] = index_;
      else
        row(y)[x] = colour_;
    }
  }
  // Every pixel of the picture.
  void fill();
  // Pixels x0..x1 (inclusive) of row y, clipped.
  void span(int y, int x0, int x1);

  void fillDisc(QPointF centre, double radius);
  void fillRing(QPointF centre, double outer, double inner);
  void fillConvex(const QPointF* points, int count);
  // Even-odd fill of any closed outline.
  void fillPolygon(const std::vector<QPointF>& points);
  // A segment with round ends of the given width; thinner than a pixel it is a one-pixel line.
  void strokeSegment(QPointF a, QPointF b, double width);
  void hairline(QPointF a, QPointF b);

  // True when the box (in pixels) misses the image.
  bool outside(double x0, double y0, double x1, double y1) const {
    return x1 < -1 || y1 < -1 || x0 > width_ + 1 || y0 > height_ + 1;
  }

private:
  QRgb* row(int y) { return reinterpret_cast<QRgb*>(bits_ + size_t(y) * stride_); }
  void spanOfInterval(int y, double left, double right);
  uchar paletteIndex(QRgb colour);

  uchar* bits_;
  qsizetype stride_;
  int width_;
  int height_;
  bool indexed_;
  QRgb colour_ = 0xFFFFFFFFu;
  uchar index_ = 0;
  QList<QRgb> palette_;
  bool paletteOverflowed_ = false;
  // An edge of a polygon from a to b (as the outline runs), with the rows it may cross.
  struct Edge {
    double ax, ay, bx, by;
    int first, last;
  };
  // Kept between calls: no allocation per shape.
  std::vector<double> crossings_;
  std::vector<Edge> edges_;
  std::vector<uint32_t> active_;
};

}  // namespace tvx
