#include "viewer/BlockTransform.h"

#include "kernel/Graphics.h"
#include "kernel/Store.h"

#include <cmath>
#include <limits>
#include <numbers>

namespace tvx {

namespace {

constexpr int32_t FullTurn = 360000;

int32_t saturated(int64_t v) {
  constexpr int64_t lo = std::numeric_limits<int32_t>::min();
  constexpr int64_t hi = std::numeric_limits<int32_t>::max();
  return int32_t(v < lo ? lo : v > hi ? hi : v);
}

int32_t mirroredCoordinate(int32_t v, int32_t centre) { return saturated(2 * int64_t(centre) - v); }

int32_t negated(int32_t v) { return v == std::numeric_limits<int32_t>::min() ? -(v + 1) : -v; }

// A rotation mirrored in either axis turns the other way: 360000 - angle, brought into
// 0..359999, so that 0 stays 0 and mirroring twice gives the angle back. The thousandths are
// kept, so that a rotation of 45.5 degrees comes back as 45.5.
int32_t mirroredRotation(int32_t angle) {
  return Graphics::G_AngleAdj(FullTurn - angle % FullTurn);
}

// The start angle of an arc whose centre and start point are mirrored: the direction from the
// centre to the start point, mirrored, as an angle in thousandths of a degree. The direction
// alone is mirrored, so a zero or negative radius keeps its meaning.
int32_t mirroredStartAngle(int32_t start, bool inX) {
  constexpr double ToRadians = std::numbers::pi / 180000.0;
  const double a = double(start % FullTurn) * ToRadians;
  double dx = std::cos(a), dy = std::sin(a);
  if (inX)
    dx = -dx;
  else
    dy = -dy;
  const double mirrored = std::atan2(dy, dx) / ToRadians;
  return Graphics::G_AngleAdj(int32_t(std::lround(mirrored)));
}

// One axis of the mirror: inX mirrors X (the element turned over the vertical line through the
// centre), otherwise Y.
void mirrorElement(ItemRecord& r, bool inX, int32_t centre) {
  if (inX)
    r.X = mirroredCoordinate(r.X, centre);
  else
    r.Y = mirroredCoordinate(r.Y, centre);
  int32_t& along = inX ? r.Width : r.Height;  // the first vector's component on the axis
  switch (r.Type) {
  case ItemLine:
    along = negated(along);
    break;
  case ItemTriangle:
    along = negated(along);
    if (inX)
      r.Angle = negated(r.Angle);
    else
      r.Sweep = negated(r.Sweep);
    break;
  case ItemRectangle:
    along = negated(along);
    r.Angle = mirroredRotation(r.Angle);
    break;
  case ItemArc:
    r.Sweep = negated(r.Sweep);
    r.Height = mirroredStartAngle(r.Height, inX);
    break;
  default:  // circles, texts and pad entries: the anchor point alone
    break;
  }
}

}  // namespace

int32_t SelectBlock(BlockTransform& block, int32_t mode, const FrameRect& allLayers) {
  if (mode != 0 || allLayers.isEmpty())
    return 1;
  block = BlockTransform{};
  block.BlockCornerX = allLayers.MinX;
  block.BlockCornerY = allLayers.MinY;
  block.BlockWidth = saturated(int64_t(allLayers.MaxX) - allLayers.MinX);
  block.BlockHeight = saturated(int64_t(allLayers.MaxY) - allLayers.MinY);
  // Halved with a shift: rounded down for negative sums as for positive ones.
  block.BlockCentreX = int32_t((int64_t(allLayers.MinX) + allLayers.MaxX) >> 1);
  block.BlockCentreY = int32_t((int64_t(allLayers.MinY) + allLayers.MaxY) >> 1);
  return 0;
}

void TransformElement(const BlockTransform& block, ItemRecord& record) {
  if (block.BlockMirrorX)
    mirrorElement(record, true, block.BlockCentreX);
  if (block.BlockMirrorY)
    mirrorElement(record, false, block.BlockCentreY);
  record.X = saturated(int64_t(record.X) + block.BlockDeltaX);
  record.Y = saturated(int64_t(record.Y) + block.BlockDeltaY);
}

void MoveBlock(Store& store, SymbolId symbol, const BlockTransform& block, bool& moved) {
  moved = false;
  // Items: the fields are read in place and copied into one record that is reused, so that the
  // texts are not copied; every change goes through the store's writers.
  const ArrayHandle items = store.S_SymbolItemArray(symbol);
  const int32_t itemCount = store.OA_GetCount(items);
  ItemRecord r;
  for (int32_t i = 1; i <= itemCount; ++i) {
    const ObjectHandle item = store.OA_Object(items, i);
    const ItemFields* fields = store.itemFields(item);
    if (!fields || !(fields->Attributes & attr::Shown))
      continue;
    static_cast<ItemFields&>(r) = *fields;
    TransformElement(block, r);
    store.I_ChangeItemLink(item, r.Link);
    store.I_ChangeItemGap(item, r.Gap);
    store.I_ChangeItemXY(item, r);
    store.I_ChangeItemAttr(item, r.Attributes, r.Colour, r.Style, r.LineWidth);
    if (r.Type == ItemVectorText || r.Type == ItemTrueTypeText)
      store.I_ChangeTextSize(item, r.Width, r.Height);
    moved = true;
  }

  // Pad entries: the position and the rotation.
  const int32_t entryCount = store.OA_GetCount(store.S_SymbolEntryArray(symbol));
  EntryRecord entry;
  for (int32_t i = 1; i <= entryCount; ++i) {
    if (!store.S_ReadEntry(symbol, i, entry) || !(entry.Attributes & attr::Shown))
      continue;
    ItemRecord pad;
    pad.Type = ItemPadEntry;
    pad.X = entry.X;
    pad.Y = entry.Y;
    pad.Angle = entry.Rotation;
    TransformElement(block, pad);
    store.S_ChangePadRotation(symbol, i, pad.Angle);
    store.O_ChangePosition(store.S_Entry(symbol, i), pad.X, pad.Y);
    moved = true;
  }
}

bool FlipLayer(Store& store, SymbolId working, const FrameRect& allLayers, int32_t index) {
  if (index != 0 && index != 1)
    return false;
  BlockTransform block;
  if (SelectBlock(block, 0, allLayers) != 0)
    return false;
  block.BlockMirrorY = index == 0;
  block.BlockMirrorX = index == 1;
  bool moved = false;
  MoveBlock(store, working, block, moved);
  return moved;
}

}  // namespace tvx
