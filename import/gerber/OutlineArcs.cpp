#include "import/gerber/OutlineArcs.h"

#include "import/gerber/GerberFormat.h"
#include "kernel/Graphics.h"
#include "store/AddElement.h"

#include <cmath>
#include <numbers>
#include <string>

namespace tvx {

namespace {

constexpr double Degrees = 180.0 / std::numbers::pi;
constexpr double FlattestArc = 2.0;  // degrees; a flatter arc is written as two lines

IntPoint placed(const OutlinePoint& p, const OutlinePoint& offset) {
  return {toInt32(p.X + offset.X), toInt32(p.Y + offset.Y)};
}

}  // namespace

double AngleOf(double dx, double dy) {
  if (dx == 0)
    return dy >= 0 ? 90.0 : 270.0;
  double angle = std::atan(dy / dx) * Degrees;
  if (dx < 0)
    angle += 180.0;
  else if (dy < 0)
    angle += 360.0;
  return angle >= 360.0 ? angle - 360.0 : angle;
}

void ArcThroughPoints(int32_t& status, IntPoint p1, IntPoint p2, IntPoint p3, double& centreX,
                      double& centreY, double& radius, double& start, double& sweep) {
  status = 1;
  const double d1x = double(p2.X) - p1.X, d1y = double(p2.Y) - p1.Y;
  const double d2x = double(p3.X) - p2.X, d2y = double(p3.Y) - p2.Y;
  const double cross = d1x * d2y - d1y * d2x;
  if (cross == 0)
    return;
  // The perpendicular bisectors through the chords' middles, rounded to whole units.
  const double m1x = wholeNumber((double(p1.X) + p2.X) / 2),
               m1y = wholeNumber((double(p1.Y) + p2.Y) / 2);
  const double m2x = wholeNumber((double(p2.X) + p3.X) / 2),
               m2y = wholeNumber((double(p2.Y) + p3.Y) / 2);
  const double b1 = d1x * m1x + d1y * m1y;
  const double b2 = d2x * m2x + d2y * m2y;
  centreX = (b1 * d2y - b2 * d1y) / cross;
  centreY = (d1x * b2 - d2x * b1) / cross;
  radius = std::hypot(p2.X - centreX, p2.Y - centreY);
  if (radius == 0)
    return;
  double a1 = AngleOf(p1.X - centreX, p1.Y - centreY);
  const double am = AngleOf(p2.X - centreX, p2.Y - centreY);
  double a3 = AngleOf(p3.X - centreX, p3.Y - centreY);
  if (a1 > a3)
    std::swap(a1, a3);
  sweep = a3 - a1;
  if (am < a1 || am > a3)
    sweep -= 360.0;
  if (sweep == 0)
    return;
  if (sweep < 0) {
    sweep = -sweep;
    a1 = a1 + 360.0 - sweep;
  }
  start = a1;
  status = 0;
}

void WriteOutline(int32_t& status, Store& store, SymbolId symbol, const ItemRecord& templ,
                  const OutlinePoints& points, int32_t& first, int32_t& last) {
  static const std::string noText;
  status = 0;
  first = last = 0;
  if (points.size() < 3)
    return;
  ItemRecord piece;
  piece.Link = templ.Link;
  piece.Colour = templ.Colour;
  piece.Style = templ.Style;
  piece.LineWidth = templ.LineWidth;
  piece.Gap = 0;
  piece.Attributes = (templ.Attributes & ~(attr::PolygonFirst | attr::PolygonLast)) | attr::Shown;

  const auto add = [&](const ItemRecord& record) {
    int32_t index = 0;
    AddElement(store, status, PlaceSymbolItems, symbol, record, noText, index, noText);
    if (status != 0)
      return false;
    if (first == 0)
      first = index;
    last = index;
    return true;
  };
  const auto line = [&](IntPoint a, IntPoint b) {
    ItemRecord item = piece;
    item.Type = ItemLine;
    item.X = a.X;
    item.Y = a.Y;
    item.Width = toInt32(double(b.X) - a.X);
    item.Height = toInt32(double(b.Y) - a.Y);
    return add(item);
  };

  const OutlinePoint& offset = points[0];
  const size_t lastPoint = points.size() - 1;
  for (size_t i = 1; i < lastPoint; ++i) {
    const OutlinePoint& p = points[i];
    const IntPoint here = placed(p, offset);
    const IntPoint next = placed(points[i + 1], offset);
    if (p.Kind == outlinepoint::ArcMiddle && i > 1) {
      const IntPoint before = placed(points[i - 1], offset);
      int32_t arcStatus = 1;
      double cx = 0, cy = 0, radius = 0, start = 0, sweep = 0;
      ArcThroughPoints(arcStatus, before, here, next, cx, cy, radius, start, sweep);
      if (arcStatus != 0 || std::abs(sweep) < FlattestArc) {
        if (!line(before, here) || !line(here, next))
          return;
        continue;
      }
      if (Graphics::G_LinePointDeterminant(before.X, before.Y, here.X, here.Y, next.X, next.Y) >
          0) {
        // Written in the direction the outline runs.
        start += sweep;
        sweep = -sweep;
        if (start > 360.0)
          start -= 360.0;
      }
      ItemRecord item = piece;
      item.Type = ItemArc;
      item.X = toInt32(cx);
      item.Y = toInt32(cy);
      item.Width = toInt32(radius);
      int32_t arcX = item.X, arcY = item.Y, arcRadius = item.Width;
      int32_t startAngle = toInt32(start * 1000), sweepAngle = toInt32(sweep * 1000);
      Graphics::G_ArcNormalize(arcX, arcY, arcRadius, startAngle, sweepAngle);
      item.Height = startAngle;
      item.Sweep = sweepAngle;
      if (!add(item))
        return;
    } else if (p.Kind == outlinepoint::Straight) {
      if (!line(here, next))
        return;
    }
  }
  const ArrayHandle items = store.S_SymbolItemArray(symbol);
  if (first != 0)
    store.O_Mask(store.OA_Object(items, first), attr::PolygonFirst, attr::PolygonFirst);
  if (last != 0)
    store.O_Mask(store.OA_Object(items, last), attr::PolygonLast, attr::PolygonLast);
}

}  // namespace tvx
