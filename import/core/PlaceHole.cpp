#include "import/core/PlaceHole.h"

#include "import/gerber/GerberFormat.h"
#include "kernel/Store.h"
#include "store/AddElement.h"

#include <cmath>
#include <numbers>

namespace tvx {

namespace {

constexpr int32_t MarkerLineWidth = 20320;
// Cover hits looked at for a pad on the very point, when no table of points is kept.
constexpr int MostCoverHits = 8;
constexpr int32_t ArtworkMarkerHalf = 25400;  // the artwork marker is a 0.508 mm filled square

const ToolEntry* firstSized(const std::vector<ToolEntry>& tools, int32_t code) {
  for (const ToolEntry& tool : tools)
    if (tool.Code == code && tool.Diameter != 0)
      return &tool;
  return nullptr;
}

// The marker item of a pad stack on a layer of this PadKind.
ItemRecord markerItem(const LayerRecord& layer, int32_t radius) {
  ItemRecord item;
  item.Attributes = attr::Shown;
  item.LineWidth = MarkerLineWidth;
  const auto marked = static_cast<uint8_t>(layer.ColourNumber + ColourMarkBit);
  switch (layer.PadKind) {
  case padkind::Drill:
    item.Type = ItemCircle;
    item.Width = radius;
    item.Style = StyleFilled;
    item.Colour = static_cast<uint8_t>(layer.ColourNumber);
    break;
  case padkind::BoardOutline:
    item.Type = ItemRectangle;
    item.Style = StyleOpen;
    item.Colour = marked;
    break;
  default:  // artwork layers
    item.Type = ItemRectangle;
    item.X = item.Y = -ArtworkMarkerHalf;
    item.Width = item.Height = 2 * ArtworkMarkerHalf;
    item.Style = StyleFilled;
    item.Colour = marked;
    break;
  }
  return item;
}

// Makes the pad stack of a tool code with its hole and marker; false when the store refused it.
bool makePadStack(Store& store, const LayerRecord& layer, int32_t toolCode, int32_t radius,
                  int32_t holeKind) {
  const ObjectHandle padStack = store.S_MakePadStack();
  if (padStack == ObjectHandle::None)
    return false;
  if (store.OM_Add(store.S_SymbolPadStackMap(layer.SymbolHandle), padStack, toolCode) != toolCode) {
    store.deleteFreeObject(padStack);
    return false;
  }
  store.S_ChangePadStackHole(padStack, toInt32(2.0 * radius), holeKind);
  const ObjectHandle item = store.I_MakeItem(markerItem(layer, radius));
  if (item == ObjectHandle::None)
    return false;
  store.I_ChangeItemLink(item, 0);
  store.I_ChangeItemGap(item, 0);
  if (store.OA_Add(store.S_PadStackItemArray(padStack), item) == 0) {
    store.deleteFreeObject(item);
    return false;
  }
  return true;
}

}  // namespace

HoleSizes::HoleSizes(const std::vector<ToolEntry>& tools) {
  for (const ToolEntry& tool : tools)
    if (tool.Diameter != 0)
      first_.emplace(tool.Code, tool);  // an earlier entry of the same code stays
}

const ToolEntry* HoleSizes::find(int32_t code) const {
  const auto it = first_.find(code);
  return it == first_.end() ? nullptr : &it->second;
}

HolePlacement PlaceHole(Store& store, double x, double y, int32_t toolCode,
                        const LayerRecord& layer, const LayerFileRecord& file,
                        const HoleSizes* sizes, PlacedPoints* placed) {
  if (file.ClearPolarity)
    return HolePlacement::ClearPolarity;

  int32_t radius = 0;
  int32_t holeKind = 0;
  if (layer.PadKind == padkind::Drill) {
    const ToolEntry* tool = sizes ? sizes->find(toolCode) : firstSized(file.Tools, toolCode);
    if (!tool)
      return HolePlacement::WithoutSize;
    radius = toInt32(tool->Diameter / 2.0);
    holeKind = tool->HoleKind;
  }

  const SymbolId symbol = layer.SymbolHandle;
  const int32_t px = toInt32(x);
  const int32_t py = toInt32(y);
  store.S_SetCompLocation(0, 0, 0, 0);
  const ArrayHandle entries = store.S_SymbolEntryArray(symbol);
  int32_t componentWord = 1;
  store.L_CoverComponent(0, 0, 0, &componentWord, 15, 0, 0);
  // Only a pad on the very point makes this hole a repeat: a small hole beside a larger pad is a
  // hole of its own. An import keeps the points in a table; without one the cover search, which
  // finds the pads whose shape takes in the point, looks at its first few hits.
  if (placed) {
    if (placed->contains(px, py))
      return HolePlacement::Covered;
  } else {
    int32_t hit = store.OA_Cover(entries, 1, px, py, 1, 15, 0, 0);
    for (int looked = 0; hit != 0 && looked < MostCoverHits; ++looked) {
      EntryRecord entry;
      if (store.S_ReadEntry(symbol, hit, entry) && entry.X == px && entry.Y == py)
        return HolePlacement::Covered;
      hit = store.OA_Cover(entries, hit + 1, px, py, 1, 15, 0, 0);
    }
  }

  // Key 0 cannot stand in a pad stack map: such a pad is a bare position.
  if (toolCode != 0 &&
      store.OM_Object(store.S_SymbolPadStackMap(symbol), toolCode) == ObjectHandle::None &&
      !makePadStack(store, layer, toolCode, radius, holeKind))
    return HolePlacement::StoreRefused;

  const int32_t index = store.S_InsertEntry(symbol, -1, px, py);
  if (index <= 0)
    return HolePlacement::StoreRefused;
  store.S_ChangePadRotation(symbol, index, 0);
  store.S_ChangePadPadStack(symbol, index, toolCode);
  store.O_Mask(store.S_Entry(symbol, index), attr::Shown, attr::Shown);
  if (placed)
    placed->add(px, py);
  return HolePlacement::Placed;
}

namespace {

// The angle of a vector in degrees, from 0 to under 360.
double degreesOf(double dx, double dy) {
  double degrees = std::atan2(dy, dx) * 180.0 / std::numbers::pi;
  if (degrees < 0)
    degrees += 360.0;
  return degrees;
}

}  // namespace

HolePlacement PlaceSlot(Store& store, const SlotPath& path, int32_t toolCode,
                        const LayerRecord& layer, const LayerFileRecord& file,
                        const HoleSizes* sizes) {
  if (file.ClearPolarity)
    return HolePlacement::ClearPolarity;
  int32_t width = 0;
  if (layer.PadKind == padkind::Drill) {
    const ToolEntry* tool = sizes ? sizes->find(toolCode) : firstSized(file.Tools, toolCode);
    if (!tool)
      return HolePlacement::WithoutSize;
    width = tool->Diameter;
  }

  ItemRecord item;
  item.LineWidth = width;
  item.Style = StyleOpen;
  item.Colour = static_cast<uint8_t>(layer.ColourNumber);
  item.Link = toolCode;
  item.Attributes = attr::Shown;
  if (path.arc) {
    // Stored counter-clockwise: a clockwise cut runs from its end back to its start.
    const Point start = path.clockwise ? path.to : path.from;
    const Point end = path.clockwise ? path.from : path.to;
    const double startAngle = degreesOf(start.x - path.centre.x, start.y - path.centre.y);
    double sweep = degreesOf(end.x - path.centre.x, end.y - path.centre.y) - startAngle;
    if (sweep <= 0)
      sweep += 360.0;
    item.Type = ItemArc;
    item.X = toInt32(path.centre.x);
    item.Y = toInt32(path.centre.y);
    item.Width = toInt32(std::hypot(start.x - path.centre.x, start.y - path.centre.y));
    item.Height = toInt32(startAngle * 1000);
    item.Sweep = toInt32(sweep * 1000);
  } else {
    item.Type = ItemLine;
    item.X = toInt32(path.from.x);
    item.Y = toInt32(path.from.y);
    item.Width = toInt32(double(toInt32(path.to.x)) - item.X);
    item.Height = toInt32(double(toInt32(path.to.y)) - item.Y);
  }
  int32_t status = 0;
  int32_t index = 0;
  AddElement(store, status, PlaceSymbolItems, layer.SymbolHandle, item, std::string(), index,
             std::string());
  return status == 0 ? HolePlacement::Placed : HolePlacement::StoreRefused;
}

}  // namespace tvx
