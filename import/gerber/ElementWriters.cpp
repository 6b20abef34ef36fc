#include "import/gerber/ElementWriters.h"

#include "import/core/PlaceHole.h"
#include "import/gerber/GerberFormat.h"
#include "store/AddElement.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace tvx {

namespace {

const std::string NoText;

// The pen a draw takes from its aperture.
struct Pen {
  bool square = false;
  double width = 0;
};

// A row of the same aperture at position (from 1) in the primitive list, or nullptr.
const PrimitiveRow* rowAt(const std::vector<PrimitiveRow>& rows, int64_t position, int32_t dCode) {
  if (position < 1 || position > static_cast<int64_t>(rows.size()))
    return nullptr;
  const PrimitiveRow& row = rows[size_t(position - 1)];
  return row.DCode == dCode ? &row : nullptr;
}

// The pen of a special aperture, whose first row stands at first; false when there is no row.
bool specialPen(const std::vector<PrimitiveRow>& rows, int32_t first, int32_t dCode, double x1,
                double y1, double x2, double y2, Pen& pen) {
  if (first < 1 || first > static_cast<int64_t>(rows.size()))
    return false;
  const PrimitiveRow& head = rows[size_t(first - 1)];
  switch (head.Kind) {
  case primitive::RoundWithHole:
  case primitive::Oval:
  case primitive::RegularPolygon:
    pen = {false, head.Value};
    return true;
  case primitive::Rectangle: {
    const PrimitiveRow* second = rowAt(rows, int64_t(first) + 1, dCode);
    if (!second) {
      pen = {false, 1};
      return true;
    }
    // The side across the stroke: X size for a vertical stroke, Y size for a horizontal one.
    if (x1 == x2)
      pen = {true, head.Value};
    else if (y1 == y2)
      pen = {true, second->Value};
    else
      pen = {true, std::min(head.Value, second->Value)};
    return true;
  }
  case primitive::Macro:
    pen = {false, 1};
    return true;
  default:
    pen = {false, double(first)};
    return true;
  }
}

}  // namespace

ElementWriter::ElementWriter(Store& store, const std::vector<PrimitiveRow>& primitives,
                             LayerRecord& layer, LayerFileRecord& file, int32_t clearColour)
    : store_(store), primitives_(primitives), layer_(layer), file_(file), clearColour_(clearColour),
      exclusions_(file.Tag), placed_(store, layer.SymbolHandle) {}

uint8_t ElementWriter::colour() const {
  return static_cast<uint8_t>(file_.ClearPolarity ? clearColour_ : file_.Colour);
}

void ElementWriter::write(ItemRecord& record, int32_t dCode, int32_t attributes) {
  record.Gap = 0;
  record.Link = dCode;
  record.Attributes = attributes | attr::Shown;
  int32_t status = 0;
  int32_t index = 0;
  // A refused element is given up without a message.
  AddElement(store_, status, PlaceSymbolItems, layer_.SymbolHandle, record, NoText, index, NoText);
}

void ElementWriter::AddDisc(double x, double y, double radius, int32_t lineWidth, int32_t style,
                            int32_t force, int32_t attributes, int32_t dCode) {
  if (!passes(filter::AF_IPA, force) || excluded(dCode))
    return;
  ItemRecord item;
  item.Type = ItemCircle;
  item.X = toInt32(x);
  item.Y = toInt32(y);
  item.Width = toInt32(radius);
  item.LineWidth = lineWidth;
  item.Style = static_cast<uint8_t>(style);
  item.Colour = colour();
  write(item, dCode, attributes);
}

void ElementWriter::AddBox(double x, double y, double width, double height, int32_t angle,
                           int32_t style, int32_t lineWidth, int32_t attributes, int32_t dCode) {
  ItemRecord item;
  item.Type = ItemRectangle;
  item.X = toInt32(x);
  item.Y = toInt32(y);
  item.Width = toInt32(width);
  item.Height = toInt32(height);
  item.Angle = angle;
  item.Style = static_cast<uint8_t>(style);
  item.LineWidth = style == StyleFilled ? 0 : lineWidth;
  item.Colour = colour();
  write(item, dCode, attributes);
}

void ElementWriter::AddHole(double x, double y, double holeX, double holeY, int32_t dCode) {
  if (holeX <= 0 || excluded(dCode))
    return;
  ItemRecord item;
  item.Style = StyleFilled;
  item.Colour = static_cast<uint8_t>(clearColour_);
  item.X = toInt32(x);
  item.Y = toInt32(y);
  if (holeY <= 0) {
    item.Type = ItemCircle;
    item.Width = toInt32(holeX / 2);
  } else {
    item.Type = ItemRectangle;
    item.X = toInt32(x - holeX / 2);
    item.Y = toInt32(y - holeY / 2);
    item.Width = toInt32(holeX);
    item.Height = toInt32(holeY);
  }
  write(item, dCode, flashword::Piece);
}

void ElementWriter::AddStroke(double x1, double y1, double x2, double y2, int32_t size,
                              int32_t listKind, int32_t dCode, int32_t force, int32_t attributes) {
  if (!passes(filter::AF_ILN, force) || excluded(dCode))
    return;
  Pen pen{false, double(size)};
  if (listKind == SquareAperture)
    pen.square = true;
  else if (listKind == SpecialAperture &&
           !specialPen(primitives_, size, dCode, x1, y1, x2, y2, pen))
    return;

  ItemRecord item;
  item.Colour = colour();
  if (!pen.square) {
    item.Type = ItemLine;
    item.X = toInt32(x1);
    item.Y = toInt32(y1);
    item.Width = toInt32(double(toInt32(x2)) - item.X);
    item.Height = toInt32(double(toInt32(y2)) - item.Y);
    item.LineWidth = toInt32(pen.width);
    item.Style = StyleOpen;
    write(item, dCode, attributes);
    return;
  }
  // A square pen: one box from half a side behind the start to half a side beyond the end.
  const double side = pen.width;
  const double dx = x2 - x1, dy = y2 - y1;
  const double length = wholeNumber(std::hypot(dx, dy));
  item.Type = ItemRectangle;
  item.Style = StyleFilled;
  item.LineWidth = 0;
  if (length > 0) {
    const double a = wholeNumber(side / 2 * dx / length);
    const double b = wholeNumber(side / 2 * dy / length);
    item.X = toInt32(x1 - (a - b));
    item.Y = toInt32(y1 - (a + b));
    item.Width = toInt32(length + side);
    item.Height = toInt32(side);
    item.Angle = toInt32(AngleOf(dx, dy) * 1000);
  } else {
    item.X = toInt32(x1 - side / 2);
    item.Y = toInt32(y1 - side / 2);
    item.Width = item.Height = toInt32(side);
  }
  write(item, dCode, attributes);
}

void ElementWriter::AddArc(Point centre, int32_t radius, Point start, Point end, int32_t size,
                           int32_t dCode, int32_t force) {
  if (!passes(filter::AF_IPA, force) || excluded(dCode))
    return;
  const double startAngle = AngleOf(start.x - centre.x, start.y - centre.y);
  const double endAngle = AngleOf(end.x - centre.x, end.y - centre.y);
  double sweep = endAngle - startAngle;
  if (sweep < 0)
    sweep += 360.0;
  ItemRecord item;
  item.Type = ItemArc;
  item.X = toInt32(centre.x);
  item.Y = toInt32(centre.y);
  item.Width = radius;
  item.Height = toInt32(startAngle * 1000);
  item.Sweep = toInt32(sweep * 1000);
  item.LineWidth = size;
  item.Style = StyleOpen;
  item.Colour = colour();
  write(item, dCode, flashword::Drawn);
}

void ElementWriter::AddOutlinePolygon(const OutlinePoints& points, int32_t link,
                                      int32_t attributes) {
  if ((file_.FilterMask & filter::AF_IPL) == 0)
    return;
  ItemRecord templ;
  templ.Attributes = attributes + attr::PolygonSide + attr::Shown;
  templ.Link = link;
  templ.LineWidth = 1;
  templ.Style = (file_.FilterMask & filter::FilledOutlines) ? StyleFilled : StyleOpen;
  templ.Colour = colour();
  int32_t status = 0, first = 0, last = 0;
  WriteOutline(status, store_, layer_.SymbolHandle, templ, points, first, last);
}

void ElementWriter::placeHole(double x, double y, int32_t dCode) {
  PlaceHole(store_, x, y, dCode, layer_, file_, nullptr, &placed_);
}

}  // namespace tvx
