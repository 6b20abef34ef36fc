// What the layer properties count and change on a layer: aperture uses, the drill layer's tools
// and the layer's colour given to its elements.
#include "store/LayerUses.h"
#include "store/LayerTestSupport.h"

namespace tvx {
namespace {

using test::Item;

class LayerUsesTest : public test::LayerTablesFixture {
protected:
  void SetUp() override {
    LayerTablesFixture::SetUp();
    build();
  }
  ObjectHandle addLinked(int32_t layer, int32_t link, int32_t attributes = attr::Shown,
                         int32_t colour = 3) {
    const ObjectHandle item =
        addItem(layer, Item(ItemLine, attributes).colour(colour).size(100, 0));
    k.store.I_ChangeItemLink(item, link);
    return item;
  }
  // A pad stack of a hole diameter under key, and count entries placed with it.
  void addTool(int32_t key, int32_t diameter, int32_t holeKind, int32_t count) {
    const SymbolId symbol = tables.layer(DrillLayer).SymbolHandle;
    const ObjectHandle padStack = k.store.S_MakePadStack();
    k.store.S_ChangePadStackHole(padStack, diameter, holeKind);
    k.store.OM_Add(k.store.S_SymbolPadStackMap(symbol), padStack, key);
    for (int32_t n = 0; n < count; ++n)
      k.store.S_ChangePadPadStack(symbol, k.store.S_InsertEntry(symbol, -1, n * 1000, 0), key);
  }
};

TEST_F(LayerUsesTest, AperturesCountTheirItemsOnTheirFirstRowOnly) {
  LayerRecord& layer = tables.layer(3);
  layer.Apertures = {{"D10*", true, 10, 99},
                     {"D11*", true, 11, 99},
                     {"D10* again", true, 10, 99},
                     {"D13*", true, 13, 99}};
  addLinked(3, 10);
  addLinked(3, 10);
  addLinked(3, 11);
  addLinked(3, 11, attr::Shown | attr::PolygonSide | attr::PolygonFirst);  // a polygon's side
  addLinked(3, 0);
  addLinked(3, 12);  // a code no row has
  addLinked(4, 13);  // another layer's
  CountApertureUses(k.store, layer);
  std::vector<int32_t> counts;
  for (const ApertureRow& row : layer.Apertures)
    counts.push_back(row.Count);
  EXPECT_EQ(counts, (std::vector<int32_t>{2, 1, 0, 0}));
}

TEST_F(LayerUsesTest, ToolsStandByDiameterTheLatestFirstWithTheirHoles) {
  addTool(1, 30000, 1, 2);
  addTool(2, 10000, 1, 1);
  addTool(3, 30000, 0, 0);
  addTool(4, 20000, 1, 3);
  EXPECT_EQ(LayerToolList(k.store, tables.layer(DrillLayer)),
            (std::vector<LayerToolRow>{
                {2, 10000, 1, 1}, {4, 20000, 1, 3}, {3, 30000, 0, 0}, {1, 30000, 1, 2}}));
  EXPECT_TRUE(LayerToolList(k.store, tables.layer(3)).empty());
}

TEST_F(LayerUsesTest, RecolouringKeepsClearItemsAndColoursTheDrillLayersPads) {
  const int32_t clear = colours.ClearColour();
  LayerRecord& layer = tables.layer(3);
  layer.ColourNumber = 7;
  const ObjectHandle dark = addLinked(3, 10, attr::Shown, 3);
  const ObjectHandle clearItem = addLinked(3, 10, attr::Shown, clear);
  const ObjectHandle pad = addPad(3, 5, 0, 0, 3);
  RecolourLayerElements(k.store, layer, clear);
  EXPECT_EQ(colourOf(dark), 7);
  EXPECT_EQ(colourOf(clearItem), clear);
  EXPECT_EQ(colourOf(pad), 3) << "an artwork layer's pads keep theirs";

  LayerRecord& drill = tables.layer(DrillLayer);
  drill.ColourNumber = 9;
  const ObjectHandle drillPad = addPad(DrillLayer, 5, 0, 0, clear);
  RecolourLayerElements(k.store, drill, clear);
  EXPECT_EQ(colourOf(drillPad), 9);
}

}  // namespace
}  // namespace tvx
