#include "aperture/ApertureModifiers.h"

#include "common/FormatNumber.h"
#include "common/LengthFormats.h"
#include "common/ToNumber.h"
#include "platform/SystemServices.h"

#include <array>
#include <cmath>
#include <initializer_list>
#include <string_view>

namespace tvx {

namespace {

using namespace modifierclass;

// One item of a shape: its label's catalogue id and text, and its class.
struct Item {
  std::string_view id;
  std::string_view text;
  int32_t cls = Length;
};

constexpr Item Size{"62274", "Size"};
constexpr Item HoleX{"62275", "Hole X-Size"};
constexpr Item HoleY{"62276", "Hole Y-Size"};
constexpr Item XSize{"62277", "XSize"};
constexpr Item YSize{"62278", "YSize"};
constexpr Item Sides{"62279", "Sides", StandardSides};
constexpr Item Rotation{"62259", "Rotation", modifierclass::Rotation};
constexpr Item ExposureItem{"62250", "Exposure", Exposure};
constexpr Item Diameter{"62251", "Diameter"};
constexpr Item XCentre{"62252", "X centre"};
constexpr Item YCentre{"62253", "Y centre"};
constexpr Item Width{"62254", "Width"};
constexpr Item XStart{"62255", "X start"};
constexpr Item YStart{"62256", "Y start"};
constexpr Item XEnd{"62257", "X end"};
constexpr Item YEnd{"62258", "Y end"};
constexpr Item Height{"62260", "Height"};
constexpr Item YLowerLeft{"62261", "Y LLP"};
constexpr Item XLowerLeft{"62262", "X LLP"};
constexpr Item Points{"62263", "No of Points", FixedCount};
constexpr Item XVertex{"62264", "X Vertex"};
constexpr Item YVertex{"62265", "Y Vertex"};
constexpr Item Vertices{"62266", "Vertices", MacroSides};
constexpr Item Outside{"62267", "Outside Diam."};
constexpr Item CircleWidth{"62268", "Circle lWidth"};
constexpr Item Gap{"62269", "Gap"};
constexpr Item Circles{"62270", "No.Circles", Count};
constexpr Item CrossWidth{"62271", "CH Width"};
constexpr Item CrossLength{"62272", "CH Length"};
constexpr Item Inside{"62273", "Inside Diam."};

// A shape: its name and its items in order.
struct Shape {
  std::string_view name;
  std::vector<Item> items;
};

// The standard shapes by the Kind of their first row (1 to 4).
Shape standardShape(int32_t kind) {
  switch (kind) {
  case primitive::RoundWithHole:
    return {"C", {Size, HoleX, HoleY}};
  case primitive::Rectangle:
    return {"R", {XSize, YSize, HoleX, HoleY}};
  case primitive::Oval:
    return {"O", {XSize, YSize, HoleX, HoleY}};
  default:
    return {"P", {Size, Sides, Rotation, HoleX, HoleY}};
  }
}

// A macro primitive by its code; an outline's points follow from their count. An unknown code
// has no name and no items.
Shape macroPrimitive(int32_t code, double pointCount) {
  switch (code) {
  case 1:
    return {"Circle", {ExposureItem, Diameter, XCentre, YCentre}};
  case 2:
  case 20:
    return {"Line", {ExposureItem, Width, XStart, YStart, XEnd, YEnd, Rotation}};
  case 4: {
    Shape outline{"Polygon", {ExposureItem, Points, XStart, YStart}};
    // A count that is no sensible number of points gives none: the rows show unlabelled.
    const int32_t points = std::isfinite(pointCount) && pointCount > 0 && pointCount < 100000
                               ? int32_t(pointCount)
                               : 0;
    for (int32_t n = 1; n <= points; ++n) {
      outline.items.push_back(XVertex);
      outline.items.push_back(YVertex);
    }
    outline.items.push_back(Rotation);
    return outline;
  }
  case 5:
    return {"Polygon", {ExposureItem, Vertices, XCentre, YCentre, Diameter, Rotation}};
  case 6:
    return {
        "Moir\xC3\xA9",
        {XCentre, YCentre, Outside, CircleWidth, Gap, Circles, CrossWidth, CrossLength, Rotation}};
  case 7:
    return {"Thermal", {XCentre, YCentre, Outside, Inside, CrossWidth, Rotation}};
  case 21:
    return {"Rectangle(C)", {ExposureItem, Width, Height, XCentre, YCentre, Rotation}};
  case 22:
    return {"Rectangle(L)", {ExposureItem, Width, Height, XLowerLeft, YLowerLeft, Rotation}};
  default:
    return {};
  }
}

// The row of item index (from 0) of a shape; an outline's vertices carry their point's number.
ModifierRow itemRow(const SystemServices& services, const Shape& shape, size_t index) {
  ModifierRow row;
  if (index == 0)
    row.Name = std::string(shape.name);
  if (index >= shape.items.size())
    return row;
  const Item& item = shape.items[index];
  row.Label = services.LocalMessage(std::string(item.text), std::string(item.id));
  row.Class = item.cls;
  if (item.id == XVertex.id || item.id == YVertex.id)
    row.Label += " " + std::to_string((index - 4) / 2 + 1);
  return row;
}

constexpr double UnitsLimit = 5080000;  // 50.8 mm

}  // namespace

std::vector<std::string> exposureWords() { return {"OFF(0)", "ON(1)", "Reverse(2)"}; }

std::vector<ModifierRow> modifierRows(const SystemServices& services,
                                      const std::vector<PrimitiveRow>& primitives, int32_t first) {
  std::vector<ModifierRow> rows;
  if (first < 1 || first > static_cast<int32_t>(primitives.size()))
    return rows;
  const PrimitiveRow& head = primitives[size_t(first - 1)];
  const bool standard =
      head.Kind >= primitive::RoundWithHole && head.Kind <= primitive::RegularPolygon;
  Shape shape = standard ? standardShape(head.Kind) : Shape{};
  size_t index = 0;
  for (size_t r = size_t(first - 1); r < primitives.size() && primitives[r].DCode == head.DCode;
       ++r, ++index) {
    if (!standard && head.Kind == primitive::Macro && primitives[r].Number > 0) {
      const double count = r + 1 < primitives.size() ? primitives[r + 1].Value : 0;
      shape = macroPrimitive(primitives[r].Number, count);
      index = 0;
    }
    rows.push_back(itemRow(services, shape, index));
  }
  return rows;
}

ModifierCells modifierCells(const SystemServices& services, double value, int32_t cls) {
  const double unitsPerMm = services.DatabaseUnitsPerMm();
  switch (cls) {
  case Length:
    return {LengthValueText(value, 0, unitsPerMm), LengthValueText(value, 1, unitsPerMm)};
  case modifierclass::Rotation:
    return {FormatNumber(value / 1000, "##0.0#") + "\xC2\xB0", {}};
  case Exposure:
    if (value == 0 || value == 1 || value == 2) {
      const std::vector<std::string> words = exposureWords();
      return {words[size_t(value)], value == 2 ? std::string("current") : std::string()};
    }
    return {FormatNumber(value, ""), {}};
  default:
    return {FormatNumber(value, ""), {}};
  }
}

bool modifierValue(const SystemServices& services, int32_t cls, int column,
                   const std::string& typed, double& value) {
  if (cls == FixedCount || typed.empty())
    return false;
  if (cls == Exposure) {
    const std::vector<std::string> words = exposureWords();
    for (size_t n = 0; n < words.size(); ++n)
      if (typed == words[n]) {
        value = double(n);
        return true;
      }
  }
  double v = ToNumber(typed);
  switch (cls) {
  case Length: {
    if (column != 2 && column != 3)
      return false;
    const double factor = column == 2 ? 1 / 25.4 : 1.0;
    v = v / factor * services.DatabaseUnitsPerMm();
    if (v < -UnitsLimit || v > UnitsLimit)
      return false;
    break;
  }
  case Count:
    if (v <= 0)
      return false;
    break;
  case modifierclass::Rotation:
    if (v < -360 || v > 360)
      return false;
    v *= 1000;
    break;
  case Exposure:
    if (v < 0 || v > 2)
      return false;
    break;
  case MacroSides:
    if (v < 3 || v > 50)
      return false;
    break;
  case StandardSides:
    if (v < 3 || v > 12)
      return false;
    break;
  default:
    return false;
  }
  value = v;
  return true;
}

}  // namespace tvx
