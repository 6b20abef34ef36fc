#include "platform/MarkGlyphs.h"

#include "kernel/Graphics.h"
#include "kernel/PlaneGeometry.h"

#include <cmath>
#include <utility>
#include <vector>

namespace tvx {

namespace {
struct Segment {
  double x1, y1, x2, y2;  // in units of half the glyph's size
};
}  // namespace

bool drawMarkGlyph(Graphics& g, int32_t dev, int32_t drawMode, int32_t glyph, int32_t x, int32_t y,
                   int32_t colour, int32_t angle, int32_t width, int32_t height) {
  std::vector<Segment> lines;
  bool ring = false;
  switch (glyph) {
  case 1:
    lines = {{-1, -1, 1, 1}, {-1, 1, 1, -1}};
    break;
  case 5:
    lines = {{-1, 0, 1, 0}, {0, -1, 0, 1}};
    ring = true;
    break;
  case 6:
    lines = {{-1, 0, 1, 0}, {0, -1, 0, 1}};
    break;
  case 7:
    lines = {{-1, -1, 1, -1}, {1, -1, 1, 1}, {1, 1, -1, 1}, {-1, 1, -1, -1}};
    break;
  case 8:
    lines = {{1, 0, -1, 0.6}, {-1, 0.6, -1, -0.6}, {-1, -0.6, 1, 0}};
    break;
  case 10:
    lines = {{0, 0, 1, 0}, {0, 0, 0, 1}};
    break;
  default:
    return false;
  }
  double hw = (width > 0 ? width : height) / 2.0, hh = (height > 0 ? height : width) / 2.0;
  double a = angle / 1000.0 * RadiansPerDegree, c = std::cos(a), s = std::sin(a);
  auto place = [&](double u, double v) {
    double px = u * hw, py = v * hh;
    return std::pair<int32_t, int32_t>{int32_t(std::lround(x + px * c - py * s)),
                                       int32_t(std::lround(y + px * s + py * c))};
  };
  g.G_SetDrawMode(dev, drawMode);
  g.G_SetColor(dev, colour);
  g.G_SetStyle(dev, 0);
  g.G_SetWidth(dev, 0);
  for (const Segment& l : lines) {
    auto [ax, ay] = place(l.x1, l.y1);
    auto [bx, by] = place(l.x2, l.y2);
    g.G_Line(dev, ax, ay, bx, by);
  }
  if (ring)
    g.G_Circle(dev, x, y, int32_t(std::lround(std::min(hw, hh) * 0.7)));
  return true;
}

}  // namespace tvx
