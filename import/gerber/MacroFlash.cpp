// The primitives of a macro aperture, flashed one after the other in the order of the macro.
#include "import/gerber/ApertureExpansion.h"

#include "import/gerber/GerberFormat.h"
#include "kernel/Graphics.h"
#include "kernel/PlaneGeometry.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tvx {

namespace {

// A point taken round the origin by rotation (thousandths of a degree); its distance is made whole.
Point turnedOnWholeRadius(Point p, double rotation) {
  if (rotation == 0)
    return p;
  const double angle = (AngleOf(p.x, p.y) + rotation / 1000) * RadiansPerDegree;
  const double distance = wholeNumber(std::hypot(p.x, p.y));
  return {distance * std::cos(angle), distance * std::sin(angle)};
}

// The values of one primitive: v(1) is its first row.
class Primitive {
public:
  Primitive(const std::vector<PrimitiveRow>& rows, size_t first, size_t count)
      : rows_(rows), first_(first), count_(count) {}
  double v(size_t n) const { return rows_[first_ + n - 1].Value; }
  size_t count() const { return count_; }

private:
  const std::vector<PrimitiveRow>& rows_;
  size_t first_;
  size_t count_;
};

class MacroFlasher {
public:
  MacroFlasher(ElementWriter& writer, double x, double y, int32_t dCode)
      : w_(writer), x_(x), y_(y), d_(dCode), mirror_(writer.file().Mirror) {}

  // False when the walk over the macro ends here.
  bool flash(int32_t code, const Primitive& p);

private:
  // A box with its corner relative to the flash point, turned by rotation about that point.
  void rotatedBox(Point corner, double width, double height, double angle, double rotation);
  void line(const Primitive& p);
  void outline(const Primitive& p);
  void moire(const Primitive& p);
  bool thermal(const Primitive& p);

  ElementWriter& w_;
  double x_, y_;
  int32_t d_;
  bool mirror_;
};

size_t rowsOf(int32_t code) {
  switch (code) {
  case 1:
    return 4;
  case 2:
  case 20:
    return 7;
  case 4:
    return 5;  // at least: the points follow from the count
  case 5:
  case 7:
  case 21:
  case 22:
    return 6;
  case 6:
    return 9;
  default:
    return 0;
  }
}

void MacroFlasher::rotatedBox(Point corner, double width, double height, double angle,
                              double rotation) {
  corner = turnedOnWholeRadius(corner, rotation);
  if (angle > 360)
    angle -= 360;
  else if (angle < -360)
    angle += 360;
  int32_t storedAngle = 0;
  if (mirror_) {
    corner.x = -corner.x;
    width = -width;
    storedAngle = Graphics::G_AngleAdj(toInt32((360 - angle) * 1000));
  } else {
    storedAngle = toInt32(angle * 1000);
  }
  w_.AddBox(x_ + corner.x, y_ + corner.y, width, height, storedAngle, StyleFilled, 0,
            flashword::Piece, d_);
}

void MacroFlasher::line(const Primitive& p) {
  const double width = p.v(2), sx = p.v(3), sy = p.v(4), ex = p.v(5), ey = p.v(6);
  const double rotation = p.v(7);
  const double dx = ex - sx, dy = ey - sy;
  const double length = wholeNumber(std::hypot(dx, dy));
  double a = width / 2, b = width / 2;
  if (length != 0) {
    a = width / 2 * dy / length;
    b = width / 2 * dx / length;
  }
  rotatedBox({sx + a, sy - b}, length, width, AngleOf(dx, dy) + rotation / 1000, rotation);
}

void MacroFlasher::outline(const Primitive& p) {
  const double count = p.v(2);
  if (!(count >= 0))
    return;
  // An outline whose count does not fit its rows (left in file units) is drawn with the points
  // it has.
  const size_t pairs = std::min<size_t>(size_t(std::min(count, 1e7)) + 1, (p.count() - 3) / 2);
  const double rotation = p.v(p.count());
  const double sign = mirror_ ? -1 : 1;
  OutlinePoints points(1);
  points.reserve(pairs + 1);
  for (size_t i = 0; i < pairs; ++i) {
    const Point point = turnedOnWholeRadius({sign * p.v(3 + 2 * i), p.v(4 + 2 * i)}, rotation);
    points.push_back({outlinepoint::Straight, x_ + point.x, y_ + point.y});
  }
  w_.AddOutlinePolygon(points, d_, flashword::Piece);
}

void MacroFlasher::moire(const Primitive& p) {
  const double cx = x_ + p.v(1), cy = y_ + p.v(2);
  const double thickness = p.v(4), gap = p.v(5);
  const double rings = std::min(p.v(6), double(MostMoireRings));
  double radius = wholeNumber(p.v(3) / 2 - thickness / 2);
  for (int32_t i = 0; i < rings && radius >= 0; ++i) {
    w_.AddDisc(cx, cy, radius, toInt32(thickness), StyleOpen, force::Disc, flashword::Single, d_);
    radius = wholeNumber(radius - thickness - gap);
  }
  const double half = wholeNumber(p.v(8) / 2);
  const double angle = p.v(9) / 1000 * RadiansPerDegree;
  const Point along{half * std::cos(angle), half * std::sin(angle)};
  const int32_t width = toInt32(p.v(7));
  w_.AddStroke(cx - along.x, cy - along.y, cx + along.x, cy + along.y, width, RoundAperture, d_,
               force::Stroke, flashword::Piece);
  w_.AddStroke(cx + along.y, cy - along.x, cx - along.y, cy + along.x, width, RoundAperture, d_,
               force::Stroke, flashword::Piece);
}

bool MacroFlasher::thermal(const Primitive& p) {
  const double outer = p.v(3), inner = p.v(4), gap = p.v(5), rotation = p.v(6);
  const double width = wholeNumber((outer - inner) / 2);
  const double radius = wholeNumber(outer / 2 - width / 2);
  if (radius <= 0)
    return false;
  const double cx = x_ + p.v(1), cy = y_ + p.v(2);
  const double sweep = 90 - gap * 180 / ((width / 2 + radius) * std::numbers::pi);
  if (sweep <= 0)
    return true;
  const double outerRadius = radius + width / 2, innerRadius = radius - width / 2;
  const auto at = [&](double r, double degrees, int32_t kind) {
    OutlinePoint point{kind, cx + r * std::cos(degrees * RadiansPerDegree),
                       cy + r * std::sin(degrees * RadiansPerDegree)};
    if (kind == outlinepoint::ArcMiddle) {
      point.CentreX = toInt32(cx);
      point.CentreY = toInt32(cy);
      point.Radius = toInt32(r);
    }
    return point;
  };
  for (const double centre : {45.0, 135.0, 225.0, 315.0}) {
    const double middle = rotation / 1000 + centre;
    const double from = middle - sweep / 2, to = middle + sweep / 2;
    // Radial side out, outer arc, radial side in, inner arc back to the start.
    const OutlinePoints sector{{},
                               at(innerRadius, from, outlinepoint::Straight),
                               at(outerRadius, from, outlinepoint::NoStretch),
                               at(outerRadius, middle, outlinepoint::ArcMiddle),
                               at(outerRadius, to, outlinepoint::Straight),
                               at(innerRadius, to, outlinepoint::NoStretch),
                               at(innerRadius, middle, outlinepoint::ArcMiddle),
                               at(innerRadius, from, outlinepoint::Straight)};
    w_.AddOutlinePolygon(sector, d_, flashword::Piece);
  }
  return true;
}

bool MacroFlasher::flash(int32_t code, const Primitive& p) {
  // Exposure off paints this primitive clear, so it punches through what came before.
  LayerFileRecord& file = w_.file();
  const bool clearBefore = file.ClearPolarity;
  if (code != 6 && code != 7 && p.v(1) == 0)
    file.ClearPolarity = true;
  bool goOn = true;
  switch (code) {
  case 1:
    w_.AddDisc(x_ + p.v(3), y_ + p.v(4), wholeNumber(p.v(2) / 2), 0, StyleFilled, force::Disc,
               flashword::Piece, d_);
    break;
  case 2:
  case 20:
    line(p);
    break;
  case 4:
    outline(p);
    break;
  case 5: {
    const double vertices = std::trunc(p.v(2));
    if (vertices >= 1 && vertices <= 1e6)
      w_.AddOutlinePolygon(regularPolygonPoints(x_ + p.v(3), y_ + p.v(4), wholeNumber(p.v(5) / 2),
                                                vertices, p.v(6) / 1000),
                           d_, flashword::Piece);
    break;
  }
  case 6:
    moire(p);
    break;
  case 7:
    goOn = thermal(p);
    break;
  case 21:
    rotatedBox({p.v(4) - p.v(2) / 2, p.v(5) - p.v(3) / 2}, p.v(2), p.v(3), p.v(6) / 1000, p.v(6));
    break;
  case 22:
    rotatedBox({p.v(4), p.v(5)}, p.v(2), p.v(3), p.v(6) / 1000, p.v(6));
    break;
  default:
    break;
  }
  file.ClearPolarity = clearBefore;
  return goOn;
}

}  // namespace

void FlashMacro(ElementWriter& writer, double x, double y, int32_t first, int32_t dCode) {
  const std::vector<PrimitiveRow>& rows = writer.primitives();
  const size_t n = rows.size();
  MacroFlasher flasher(writer, x, y, dCode);
  size_t at = first >= 1 ? size_t(first - 1) : n;
  while (at < n && rows[at].DCode == dCode) {
    const int32_t code = rows[at].Number;
    // A primitive's rows end at the row that holds minus its count.
    size_t end = at;
    while (end < n && rows[end].DCode == dCode && rows[end].Number >= 0)
      ++end;
    if (end >= n || rows[end].DCode != dCode)
      return;
    const size_t count = end - at + 1;
    const size_t needed = rowsOf(code);
    if (needed != 0) {
      if (count < needed)
        return;
      if (!flasher.flash(code, Primitive(rows, at, count)))
        return;
    }
    at = end + 1;
  }
}

}  // namespace tvx
