// Holes as pads: the pad stack of each tool code with its marker by PadKind, one pad per point, the
// drill layer's dropping of tools without a size, and hole sizes that stay with the layer.
#include "import/core/PlaceHole.h"

#include "import/readers/excellon/ExcellonTestSupport.h"

namespace tvx {
namespace {

using test::drillFile;
using test::makeLayer;
using test::Pad;
using test::padsOf;

class PlaceHoleTest : public ::testing::Test {
protected:
  ObjectHandle padStack(const LayerRecord& layer, int32_t code) const {
    return store.OM_Object(store.S_SymbolPadStackMap(layer.SymbolHandle), code);
  }
  // The hole diameter and kind of a tool's pad stack.
  std::pair<int32_t, int32_t> holeOf(const LayerRecord& layer, int32_t code) const {
    PadStackRecord record;
    EXPECT_NE(store.S_ReadPadStack(padStack(layer, code), record), 0) << "tool " << code;
    return {record.HoleDiameter, record.HoleKind};
  }
  std::vector<ItemRecord> markers(const LayerRecord& layer, int32_t code) const {
    std::vector<ItemRecord> items;
    const ArrayHandle array = store.S_PadStackItemArray(padStack(layer, code));
    for (int32_t i = 1; i <= store.OA_GetCount(array); ++i) {
      ItemRecord item;
      store.I_ReadItem(store.OA_Object(array, i), item);
      items.push_back(item);
    }
    return items;
  }

  Store store;
};

ItemRecord marker(int32_t type, int32_t xy, int32_t width, int32_t height, uint8_t style,
                  int32_t colour) {
  return test::Item(type).at(xy, xy).size(width, height).style(style).colour(colour).pen(20320);
}

TEST_F(PlaceHoleTest, EachPadKindGetsItsMarkerAndHoleSize) {
  // An odd diameter loses or gains a unit: the hole is twice the radius rounded half to even.
  const LayerFileRecord file = drillFile({{1, 80001, 1, 0}, {2, 80003, 3, 0}});
  struct Case {
    int32_t number, padKind, colour;
    ItemRecord marker1, marker2;
    int32_t hole1, holeKind1, hole2, holeKind2;
  } cases[] = {
      {31, 6, 31, marker(ItemCircle, 0, 40000, 0, StyleFilled, 31),
       marker(ItemCircle, 0, 40002, 0, StyleFilled, 31), 80000, 1, 80004, 3},
      {3, 5, 10, marker(ItemRectangle, -25400, 50800, 50800, StyleFilled, 138),
       marker(ItemRectangle, -25400, 50800, 50800, StyleFilled, 138), 0, 0, 0, 0},
      {30, 0, 12, marker(ItemRectangle, 0, 0, 0, StyleOpen, 140),
       marker(ItemRectangle, 0, 0, 0, StyleOpen, 140), 0, 0, 0, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE("PadKind " + std::to_string(c.padKind));
    const LayerRecord layer = makeLayer(store, c.number, c.padKind, c.colour);
    EXPECT_EQ(PlaceHole(store, 1000, 2000, 1, layer, file), HolePlacement::Placed);
    EXPECT_EQ(PlaceHole(store, 201000, 2000, 2, layer, file), HolePlacement::Placed);
    EXPECT_EQ(PlaceHole(store, 401000, 2000, 1, layer, file), HolePlacement::Placed);
    EXPECT_EQ(markers(layer, 1), std::vector<ItemRecord>{c.marker1});
    EXPECT_EQ(markers(layer, 2), std::vector<ItemRecord>{c.marker2});
    EXPECT_EQ(holeOf(layer, 1), (std::pair{c.hole1, c.holeKind1}));
    EXPECT_EQ(holeOf(layer, 2), (std::pair{c.hole2, c.holeKind2}));
    EXPECT_EQ(padsOf(store, layer),
              (std::vector<Pad>{{1000, 2000, 1}, {201000, 2000, 2}, {401000, 2000, 1}}));
    // The pads are shown, unrotated.
    EntryRecord entry;
    ASSERT_NE(store.S_ReadEntry(layer.SymbolHandle, 3, entry), 0);
    EXPECT_EQ(entry.Rotation, 0);
    EXPECT_NE(store.O_GetStatus(store.S_Entry(layer.SymbolHandle, 3)) & attr::Shown, 0);
  }
}

TEST_F(PlaceHoleTest, APointTakesOnePadOfTheToolThatCameFirst) {
  const LayerRecord layer = makeLayer(store, 31, 6);
  const LayerFileRecord file = drillFile({{1, 1000, 1, 0}, {2, 1000, 1, 0}});
  EXPECT_EQ(PlaceHole(store, 700, 300, 2, layer, file), HolePlacement::Placed);
  EXPECT_EQ(PlaceHole(store, 700, 300, 1, layer, file), HolePlacement::Covered);
  EXPECT_EQ(PlaceHole(store, 700.4, 299.6, 2, layer, file), HolePlacement::Covered);
  EXPECT_EQ(PlaceHole(store, 5000, 300, 1, layer, file), HolePlacement::Placed);
  EXPECT_EQ(padsOf(store, layer), (std::vector<Pad>{{700, 300, 2}, {5000, 300, 1}}));
  // Coordinates are rounded half to even.
  EXPECT_EQ(PlaceHole(store, 20000.5, -30001.5, 1, layer, file), HolePlacement::Placed);
  EXPECT_EQ(padsOf(store, layer).back(), (Pad{20000, -30002, 1}));
}

TEST_F(PlaceHoleTest, TheDrillLayerDropsToolsWithoutASize) {
  // Tool 2 stands twice; the first entry with a size counts.
  const std::vector<ToolEntry> tools{{1, 0, 1, 0}, {2, 0, 1, 0}, {2, 3000, 4, 0}};
  const LayerFileRecord file = drillFile(tools);
  const HoleSizes sizes(tools);
  for (const HoleSizes* lookup : {static_cast<const HoleSizes*>(nullptr), &sizes}) {
    SCOPED_TRACE(lookup ? "with the size index" : "with the table");
    const LayerRecord drill = makeLayer(store, 31, 6);
    EXPECT_EQ(PlaceHole(store, 0, 0, 1, drill, file, lookup), HolePlacement::WithoutSize);
    EXPECT_EQ(PlaceHole(store, 0, 0, 7, drill, file, lookup), HolePlacement::WithoutSize);
    EXPECT_EQ(PlaceHole(store, 0, 0, 2, drill, file, lookup), HolePlacement::Placed);
    EXPECT_EQ(padsOf(store, drill), (std::vector<Pad>{{0, 0, 2}}));
    EXPECT_EQ(holeOf(drill, 2), (std::pair{3000, 4}));
    EXPECT_EQ(padStack(drill, 1), ObjectHandle::None);
  }
  // Elsewhere every tool places its pads, with a hole of size 0.
  const LayerRecord artwork = makeLayer(store, 4, 5);
  EXPECT_EQ(PlaceHole(store, 0, 0, 1, artwork, file), HolePlacement::Placed);
  EXPECT_EQ(PlaceHole(store, 90000, 0, 7, artwork, file), HolePlacement::Placed);
  EXPECT_EQ(padsOf(store, artwork), (std::vector<Pad>{{0, 0, 1}, {90000, 0, 7}}));
  EXPECT_EQ(holeOf(artwork, 7).first, 0);
}

TEST_F(PlaceHoleTest, APadStackKeepsTheHoleSizeOfTheFirstFile) {
  const LayerRecord drill = makeLayer(store, 31, 6);
  EXPECT_EQ(PlaceHole(store, 0, 0, 3, drill, drillFile({{3, 600, 1, 0}})), HolePlacement::Placed);
  EXPECT_EQ(PlaceHole(store, 5000, 0, 3, drill, drillFile({{3, 900, 1, 0}})),
            HolePlacement::Placed);
  EXPECT_EQ(holeOf(drill, 3).first, 600);
  EXPECT_EQ(markers(drill, 3).size(), 1u);
}

TEST_F(PlaceHoleTest, ClearPolarityAndToolZero) {
  const LayerRecord artwork = makeLayer(store, 2, 5);
  LayerFileRecord file = drillFile({{4, 500, 1, 0}});
  file.ClearPolarity = true;
  EXPECT_EQ(PlaceHole(store, 0, 0, 4, artwork, file), HolePlacement::ClearPolarity);
  EXPECT_TRUE(padsOf(store, artwork).empty());

  // No pad stack map holds key 0: the pad is a bare position.
  file.ClearPolarity = false;
  EXPECT_EQ(PlaceHole(store, 10, 20, 0, artwork, file), HolePlacement::Placed);
  EXPECT_EQ(padsOf(store, artwork), (std::vector<Pad>{{10, 20, 0}}));
  const MapHandle padStacks = store.S_SymbolPadStackMap(artwork.SymbolHandle);
  int32_t cursor = store.OM_GetFirst(padStacks);
  EXPECT_EQ(store.OM_SearchMask(padStacks, &cursor, 0, 0), 0);  // no pad stack was made
}

TEST_F(PlaceHoleTest, ALayerWithoutASymbolTakesNothing) {
  LayerRecord layer = makeLayer(store, 31, 6);
  store.OM_Delete(store.DB_SymbMap(), layer.SymbolHandle);
  const size_t objects = store.liveObjectCount();
  EXPECT_EQ(PlaceHole(store, 0, 0, 1, layer, drillFile({{1, 500, 1, 0}})),
            HolePlacement::StoreRefused);
  EXPECT_EQ(store.liveObjectCount(), objects);  // nothing left behind
}

}  // namespace
}  // namespace tvx
