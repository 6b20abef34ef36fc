// Mirroring a block: one element exactly reversible, a symbol in place (shown elements only,
// polygon runs whole), a layer flipped about its own centre keeping its frame.
#include "support/ItemBuilder.h"

#include "kernel/Store.h"
#include "store/AddElement.h"
#include "store/ElementRuns.h"
#include "viewer/BlockTransform.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <numbers>
#include <tuple>
#include <utility>
#include <vector>

namespace tvx::test {
namespace {

BlockTransform mirror(bool inX, bool inY, int32_t cx = 0, int32_t cy = 0) {
  return {.BlockCentreX = cx, .BlockCentreY = cy, .BlockMirrorX = inX, .BlockMirrorY = inY};
}

Item text(int32_t type) { return Item(type, attr::Shown | attr::Text).at(-700, 900).size(25, 18); }

// Each row mirrored once gives the expected record; mirrored twice, in X, Y or both, the row's
// record.
TEST(BlockTransformElement, MirrorOnceAndTwice) {
  const struct {
    BlockTransform block;
    ItemRecord in, out;
  } rows[] = {
      {mirror(true, false), Item(ItemArc).at(100, 50).size(10, 0).sweep(90000),
       Item(ItemArc).at(-100, 50).size(10, 180000).sweep(-90000)},
      {mirror(false, true, 0, 100), Item(ItemArc).at(0, 0).size(10, 90000).sweep(-45000),
       Item(ItemArc).at(0, 200).size(10, 270000).sweep(45000)},
      {mirror(true, true, 1, 2), Item(ItemArc).at(2, 4).size(7, 359999).sweep(360000).pen(9),
       Item(ItemArc).at(0, 0).size(7, 179999).sweep(360000).pen(9)},
      {mirror(true, false, 100), Item(ItemLine).at(10, 20).size(30, 40).link(5).gap(2),
       Item(ItemLine).at(190, 20).size(-30, 40).link(5).gap(2)},
      {mirror(false, true), Item(ItemTriangle).at(1, 20).size(30, 40).angle(50).sweep(-60),
       Item(ItemTriangle).at(1, -20).size(30, -40).angle(50).sweep(60)},
      {mirror(true, false), Item(ItemTriangle).at(1, 20).size(30, 40).angle(50).sweep(-60),
       Item(ItemTriangle).at(-1, 20).size(-30, 40).angle(-50).sweep(-60)},
      {mirror(true, false), Item(ItemRectangle).at(3, 0).size(5, 6).filled(),
       Item(ItemRectangle).at(-3, 0).size(-5, 6).filled()},
      {mirror(false, true), Item(ItemRectangle).at(0, 3).size(5, 6).angle(45500),
       Item(ItemRectangle).at(0, -3).size(5, -6).angle(314500)},
      {mirror(true, true, 10, 20), Item(ItemCircle).at(3, 4).size(9),
       Item(ItemCircle).at(17, 36).size(9)},
      {mirror(true, false, 50), text(ItemVectorText).angle(90000),
       text(ItemVectorText).angle(90000).at(800, 900)},
      {mirror(false, true), Item(ItemPadEntry).at(3, 4).angle(45000).link(7),
       Item(ItemPadEntry).at(3, -4).angle(45000).link(7)},
  };
  for (const auto& row : rows) {
    ItemRecord r = row.in;
    TransformElement(row.block, r);
    EXPECT_EQ(r, row.out) << "type " << row.in.Type;
    for (const BlockTransform& b :
         {row.block, mirror(true, false, 7), mirror(false, true, 0, -9)}) {
      r = row.in;
      TransformElement(b, r);
      TransformElement(b, r);
      EXPECT_EQ(r, row.in) << "type " << row.in.Type << " in X " << b.BlockMirrorX;
    }
  }
  ItemRecord moved = Item(ItemLine).at(3, 4).size(1, 1);
  TransformElement({.BlockDeltaX = 5, .BlockDeltaY = -7}, moved);
  EXPECT_EQ(moved, Item(ItemLine).at(8, -3).size(1, 1));
  // Every start angle: in X it turns to 180 degrees less it, in Y to its negative; and back.
  for (int32_t start = 0, failures = 0; start < 360000 && failures < 5; ++start)
    for (bool inX : {true, false}) {
      ItemRecord r = Item(ItemArc).size(1000, start), back = r;
      TransformElement(mirror(inX, !inX), r);
      TransformElement(mirror(inX, !inX), back = r);
      if (r.Height != ((inX ? 180000 : 0) - start + 360000) % 360000 || back.Height != start)
        failures++, ADD_FAILURE() << start << (inX ? " in X: " : " in Y: ") << r.Height;
    }
}

class BlockTransformStore : public ::testing::Test {
protected:
  static constexpr SymbolId Layer = LayerSymbolBase - 3, Other = LayerSymbolBase - 4;
  void SetUp() override {
    store.S_CreateSymbol(Layer, "$$GIS_CAT-76503");
    store.S_CreateSymbol(Other, "$$GIS_CAT-76504");
  }
  void add(SymbolId symbol, const ItemRecord& r) {
    int32_t status = 1, index = 0;
    AddElement(store, status, PlaceSymbolItems, symbol, r, r.Text, index, r.Face);
    ASSERT_EQ(status, 0);
  }
  std::vector<ItemRecord> items(SymbolId symbol) {
    std::vector<ItemRecord> all(size_t(store.OA_GetCount(store.S_SymbolItemArray(symbol))));
    for (size_t i = 0; i < all.size(); ++i)
      store.I_ReadItem(store.S_SymbolItem(symbol, int32_t(i + 1)), all[i]);
    return all;
  }
  EntryRecord entry(int32_t index) {
    EntryRecord e;
    return store.S_ReadEntry(Layer, index, e), e;
  }
  FrameRect frame() {
    FrameRect f;
    return store.S_FrameSymbolItems(Layer, -1, f), f;
  }
  Store store;
};

TEST_F(BlockTransformStore, OnlyShownElementsOfTheSymbolMove) {
  add(Layer, Item(ItemLine).at(100, 200).size(30, 40).pen(5).link(12).gap(2));
  add(Layer, Item(ItemLine, 0).at(100, 200).size(30, 40));
  add(Layer, Item(ItemArc).at(100, 200).size(50, 30000).sweep(60000));
  ItemRecord face = text(ItemTrueTypeText);
  face.Text = "R12", face.Face = "Sans";
  add(Layer, face);
  add(Layer, Item(ItemPadEntry).at(500, 600).angle(30000));
  add(Layer, Item(ItemPadEntry, 0).at(500, 600).angle(30000));
  add(Other, Item(ItemLine).at(100, 200).size(30, 40));
  auto expected = items(Layer);
  const auto other = items(Other);
  const EntryRecord hidden = entry(2);
  bool moved = false;
  MoveBlock(store, Layer, mirror(true, false, 1000), moved);
  EXPECT_TRUE(moved);
  for (size_t i : {0u, 2u, 3u})
    TransformElement(mirror(true, false, 1000), expected[i]);
  EXPECT_EQ(items(Layer), expected);
  EXPECT_EQ(items(Other), other);
  EXPECT_EQ(std::tuple(entry(1).X, entry(1).Y, entry(1).Rotation), std::tuple(1500, 600, 30000));
  EXPECT_EQ(entry(2), hidden);
  MoveBlock(store, Other - 1, mirror(true, false), moved);  // no such symbol
  EXPECT_FALSE(moved);
}

TEST_F(BlockTransformStore, PolygonRunKeepsItsMarksAndChains) {
  const int32_t side = attr::Shown | attr::PolygonSide;
  add(Layer, Item(ItemCircle).size(10));
  // From 30 to 150 degrees on the arc, then two lines back to its start through (0, -100000).
  add(Layer, Item(ItemArc, side | attr::PolygonFirst).filled().size(100000, 30000).sweep(120000));
  add(Layer, Item(ItemLine, side).filled().at(-86603, 50000).size(86603, -150000));
  add(Layer, Item(ItemLine, side | attr::PolygonLast).filled().at(0, -100000).size(86603, 150000));
  const auto ends = [](const ItemRecord& r) {  // start and end of a side as it runs
    if (r.Type == ItemLine)
      return std::array<double, 4>{1. * r.X, 1. * r.Y, 1. * r.X + r.Width, 1. * r.Y + r.Height};
    const double a = r.Height * std::numbers::pi / 180000,
                 b = a + r.Sweep * std::numbers::pi / 180000;
    return std::array{r.X + r.Width * std::cos(a), r.Y + r.Width * std::sin(a),
                      r.X + r.Width * std::cos(b), r.Y + r.Width * std::sin(b)};
  };
  for (const BlockTransform& block : {mirror(true, false, 3001), mirror(false, true, 0, -77)}) {
    bool moved = false;
    MoveBlock(store, Layer, block, moved);
    int32_t first = 0, last = 0;
    ASSERT_TRUE(FindPolygonRun(store, store.S_SymbolItemArray(Layer), 3, first, last));
    EXPECT_EQ(std::pair(first, last), std::pair(2, 4));
    const auto all = items(Layer);
    for (size_t i = 1; i < 4; ++i) {
      const auto from = ends(all[i]), to = ends(all[i % 3 + 1]);
      EXPECT_NEAR(from[2], to[0], 1.0) << "side " << i;
      EXPECT_NEAR(from[3], to[1], 1.0) << "side " << i;
    }
  }
}

TEST_F(BlockTransformStore, FlipAboutTheLayerCentreKeepsTheFrame) {
  add(Layer, Item(ItemLine).at(-5000, 1000).size(12000, 3000).pen(200));
  add(Layer, Item(ItemArc).at(2000, -3000).size(1500, 45000).sweep(-100000).pen(100));
  add(Layer, Item(ItemRectangle).at(4000, 4000).size(800, 300).angle(30000).filled());
  add(Layer, Item(ItemCircle).size(4320).pen(60));  // both sums of the frame even
  const auto before = items(Layer);
  const FrameRect original = frame();
  for (int32_t index : {0, 1}) {
    EXPECT_TRUE(FlipLayer(store, Layer, original, index));
    EXPECT_NE(items(Layer), before) << "index " << index;
    EXPECT_EQ(frame(), original) << "index " << index;
    EXPECT_TRUE(FlipLayer(store, Layer, original, index));
    EXPECT_EQ(items(Layer), before) << "index " << index;
  }
  EXPECT_FALSE(FlipLayer(store, Layer, original, 2));
  EXPECT_FALSE(FlipLayer(store, Layer, FrameRect{}, 0));
  EXPECT_EQ(items(Layer), before);
}

}  // namespace
}  // namespace tvx::test
