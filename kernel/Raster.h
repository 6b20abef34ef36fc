// A span rasteriser for the shapes of the store, writing straight into a 32-bit image or into an
// 8-bit one with a palette (a quarter of the memory, for pictures of few colours).
//
// A pixel is set when its centre lies inside the shape; a shape that covers no pixel centre still
// sets the pixel under its middle, so nothing on the board disappears when zoomed out. There is no
// edge smoothing: every pixel is set exactly once per shape, which keeps shapes crisp at true size
// and makes drawing a million elements a matter of filling spans.
//
// Between beginBatch and endBatch the shapes are kept, and drawn in two bands of rows on both
// cores, each band in the order the shapes came: the picture is the same as when every shape is
// drawn at once.
#pragma once

#include <QImage>
#include <QList>
#include <QPointF>

#include <cstdint>
#include <vector>

namespace tvx {

// Writes spans of one colour into the rows [rowBegin, rowEnd) of a picture.
class SpanWriter {
public:
  SpanWriter(uchar* bits, qsizetype stride, int width, bool indexed, int rowBegin, int rowEnd)
      : bits_(bits), stride_(stride), width_(width), indexed_(indexed), rowBegin_(rowBegin),
        rowEnd_(rowEnd) {}

  void setColour(QRgb colour, uchar index) {
    colour_ = colour;
    index_ = index;
  }
  int rowBegin() const { return rowBegin_; }
  int rowLast() const { return rowEnd_ - 1; }
  void plot(int x, int y) {
    if (unsigned(x) < unsigned(width_) && y >= rowBegin_ && y < rowEnd_) {
      if (indexed_)
        bits_[size_t(y) * stride_ + size_t(x)] = index_;
      else
        reinterpret_cast<QRgb*>(bits_ + size_t(y) * stride_)[x] = colour_;
    }
  }
  // Pixels x0..x1 (inclusive) of row y, clipped.
  void span(int y, int x0, int x1);

private:
  uchar* bits_;
  qsizetype stride_;
  int width_;
  bool indexed_;
  int rowBegin_, rowEnd_;
  QRgb colour_ = 0xFFFFFFFFu;
  uchar index_ = 0;
};

// Scratch of the polygon fill, kept between shapes: no allocation per shape.
struct PolygonScratch {
  // An edge of a polygon from a to b (as the outline runs), with the rows it may cross.
  struct Edge {
    double ax, ay, bx, by;
    int first, last;
  };
  std::vector<double> crossings;
  std::vector<Edge> edges;
  std::vector<uint32_t> active;
};

class Raster {
public:
  explicit Raster(QImage& image);
  ~Raster();
  Raster(const Raster&) = delete;
  Raster& operator=(const Raster&) = delete;

  // True for the formats drawn into: 32-bit RGB and 8-bit with a palette.
  static bool draws(const QImage& image);

  void setColour(QRgb colour);
  // The colours drawn into an 8-bit picture, by their index; the picture's colour table.
  const QList<QRgb>& palette() const { return palette_; }
  // True when an 8-bit picture was given more colours than 256 (the later ones drawn as the first).
  bool paletteOverflowed() const { return paletteOverflowed_; }

  void plot(int x, int y);
  // Every pixel of the picture.
  void fill();

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

  // Shapes from here on are kept, and drawn on both cores at a flush or at the batch's end.
  void beginBatch() { batching_ = true; }
  // Draws the kept shapes; a batch goes on.
  void flush();
  // Draws the kept shapes and ends the batch; the caller's drawing call returns after it.
  void endBatch() {
    flush();
    batching_ = false;
  }

  enum class ShapeKind : uint8_t { Disc, Ring, Convex, Polygon, Segment, Hairline, Plot };
  // A shape as drawn: its numbers (centre and radii, ends and width), its points, its colour, the
  // pixel that stands for it when it covers no pixel centre, and the rows it may touch.
  struct Shape {
    ShapeKind kind;
    uchar index = 0;
    QRgb colour = 0;
    double v[5] = {};
    const QPointF* points = nullptr;
    uint32_t first = 0, count = 0;  // its points in a batch
    int fallbackX = 0, fallbackY = 0;
    int top = 0, bottom = 0;
  };

private:
  uchar paletteIndex(QRgb colour);
  // Draws a shape at once, or keeps it (with a copy of its points) in a batch.
  void submit(Shape& shape);
  SpanWriter wholePicture() const;

  uchar* bits_;
  qsizetype stride_;
  int width_;
  int height_;
  bool indexed_;
  QRgb colour_ = 0xFFFFFFFFu;
  uchar index_ = 0;
  QList<QRgb> palette_;
  bool paletteOverflowed_ = false;
  bool batching_ = false;
  std::vector<Shape> shapes_;
  std::vector<QPointF> points_;
  int64_t rowsKept_ = 0;  // the rows the kept shapes may touch, summed
  PolygonScratch scratch_;
};

}  // namespace tvx
