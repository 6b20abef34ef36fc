#include "import/gerber/ApertureExpansion.h"

#include "import/gerber/GerberFormat.h"
#include "kernel/PlaneGeometry.h"

#include <cmath>

namespace tvx {

namespace {

// Rows each shape of a special aperture needs.
int32_t rowsNeeded(int32_t kind) {
  switch (kind) {
  case primitive::RoundWithHole:
    return 3;
  case primitive::Rectangle:
  case primitive::Oval:
    return 4;
  case primitive::RegularPolygon:
    return 5;
  default:
    return 1;
  }
}

}  // namespace

OutlinePoints regularPolygonPoints(double cx, double cy, double radius, double vertices,
                                   double firstAngle) {
  OutlinePoints points(1);
  const double step = 360.0 / vertices;
  double angle = firstAngle;
  const auto count = static_cast<int64_t>(vertices);
  for (int64_t i = 0; i <= count; ++i) {
    points.push_back({outlinepoint::Straight, cx + radius * std::cos(angle * RadiansPerDegree),
                      cy + radius * std::sin(angle * RadiansPerDegree)});
    angle += step;
    if (angle > 360.0)
      angle -= 360.0;
  }
  points.back() = points[1];
  return points;
}

void FlashAperture(ElementWriter& writer, double x, double y, int32_t size, int32_t listKind,
                   int32_t dCode) {
  if (writer.excluded(dCode))
    return;
  const LayerFileRecord& file = writer.file();
  if (file.FilterMask & filter::AF_IPP) {
    writer.placeHole(x, y, dCode);
    if (file.ReaderCode == ReaderGerberDrilling)
      return;  // Gerber read as drilling: positions only
  }
  if ((file.FilterMask & filter::AF_IPD) == 0)
    return;

  if (listKind == RoundAperture) {
    writer.AddDisc(x, y, size / 2.0, 0, StyleFilled, force::Disc, flashword::Single, dCode);
    return;
  }
  if (listKind == SquareAperture) {
    writer.AddBox(x - size / 2.0, y - size / 2.0, size, size, 0, StyleFilled, 0, flashword::Single,
                  dCode);
    return;
  }
  if ((file.FilterMask & filter::AF_IMC) == 0)
    return;
  const std::vector<PrimitiveRow>& rows = writer.primitives();
  if (size < 1 || size > static_cast<int64_t>(rows.size()))
    return;
  const int32_t kind = rows[size_t(size - 1)].Kind;
  if (kind == primitive::Macro) {
    FlashMacro(writer, x, y, size, dCode);
    return;
  }
  if (int64_t(size) - 1 + rowsNeeded(kind) > static_cast<int64_t>(rows.size()))
    return;
  const auto p = [&](int n) { return rows[size_t(size - 1 + n - 1)].Value; };

  switch (kind) {
  case primitive::RoundWithHole:
    writer.AddDisc(x, y, p(1) / 2, 0, StyleFilled, force::Disc, flashword::Piece, dCode);
    writer.AddHole(x, y, p(2), p(3), dCode);
    break;
  case primitive::Rectangle:
    writer.AddBox(x - p(1) / 2, y - p(2) / 2, p(1), p(2), 0, StyleFilled, 0, flashword::Piece,
                  dCode);
    writer.AddHole(x, y, p(3), p(4), dCode);
    break;
  case primitive::Oval: {
    // A stroke with round ends along the longer side.
    const double w = p(1), h = p(2);
    if (w <= h)
      writer.AddStroke(x, y - h / 2 + w / 2, x, y + h / 2 - w / 2, toInt32(w), RoundAperture, dCode,
                       force::Stroke, flashword::Piece);
    else
      writer.AddStroke(x - w / 2 + h / 2, y, x + w / 2 - h / 2, y, toInt32(h), RoundAperture, dCode,
                       force::Stroke, flashword::Piece);
    writer.AddHole(x, y, p(3), p(4), dCode);
    break;
  }
  case primitive::RegularPolygon: {
    const double vertices = std::trunc(p(2));
    if (vertices >= 1 && vertices <= 1e6)
      writer.AddOutlinePolygon(
          regularPolygonPoints(x, y, wholeNumber(p(1) / 2), vertices, p(3) / 1000 + 90), dCode,
          flashword::Piece);
    writer.AddHole(x, y, p(4), p(5), dCode);
    break;
  }
  default:
    break;
  }
}

}  // namespace tvx
