// A span rasteriser for the shapes of the store, writing straight into a 32-bit image.
//
// A pixel is set when its centre lies inside the shape; a shape that covers no pixel centre still
// sets the pixel under its middle, so nothing on the board disappears when zoomed out. There is no
// edge smoothing: every pixel is set exactly once per shape, which keeps shapes crisp at true size
// and makes drawing a million elements a matter of filling spans.
#pragma once

#include <QImage>
#include <QPointF>

#include <cstdint>
#include <vector>

namespace tvx {

class Raster {
public:
  explicit Raster(QImage& image);

  void setColour(QRgb colour) { colour_ = colour | 0xFF000000u; }

  void plot(int x, int y) {
    if (unsigned(x) < unsigned(width_) && unsigned(y) < unsigned(height_))
      row(y)[x] = colour_;
  }
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

  uchar* bits_;
  qsizetype stride_;
  int width_;
  int height_;
  QRgb colour_ = 0xFFFFFFFFu;
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
