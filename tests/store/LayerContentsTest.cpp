// What a layer holds: its text in the layer list, its counts by kind, and the frame of all layers.
#include "store/LayerTestSupport.h"

#include "store/LayerSymbol.h"

namespace tvx {
namespace {

class LayerContentsTest : public test::LayerTablesFixture {
protected:
  void SetUp() override {
    LayerTablesFixture::SetUp();
    build();
  }
};

TEST_F(LayerContentsTest, TextSaysEmptyOrTheNumberOfElements) {
  bool used = true;
  const auto text = [&](const LayerRecord& layer) {
    return LayerContentsText(k.store, services, layer, used);
  };
  EXPECT_EQ(text(tables.layer(5)), "Empty");
  EXPECT_FALSE(used);
  addItem(5, ItemLine);
  EXPECT_EQ(text(tables.layer(5)), "1 elements");
  EXPECT_TRUE(used);
  addPad(5, 10, 0, 0, 3);  // entries count as well
  EXPECT_EQ(text(tables.layer(5)), "2 elements");
  LayerRecord missing = tables.layer(7);  // a symbol the store does not have reads as empty
  missing.SymbolHandle = -1234;
  EXPECT_EQ(text(missing), "Empty");
  EXPECT_FALSE(used);
  useCatalogue("62422\tLeer\n62421\tElemente\n");
  EXPECT_EQ(text(tables.layer(5)), "2 Elemente");
  EXPECT_EQ(text(tables.layer(9)), "Leer");
}

TEST_F(LayerContentsTest, CountsGoByTypeStyleAndPolygonSides) {
  for (int32_t type : {ItemLine, ItemArc, ItemRectangle, ItemCircle, ItemTriangle})
    for (int32_t style : {16, 0, 1})  // a style other than 16 counts as open
      addItem(3, type, 3, style);
  addItem(3, ItemVectorText);
  addItem(3, ItemTrueTypeText, 3, StyleFilled);
  // A polygon counts once, by its first side, whatever its sides' types; a first-side bit
  // without the side bit is no polygon.
  const int32_t side = attr::Shown | attr::PolygonSide;
  addItem(3, ItemLine, 3, StyleFilled, side | attr::PolygonFirst);
  addItem(3, ItemArc, 3, StyleFilled, side);
  addItem(3, ItemLine, 3, StyleFilled, side | attr::PolygonLast);
  addItem(3, ItemLine, 3, StyleOpen, attr::Shown | attr::PolygonFirst);
  addPad(3, 10, 0, 0, 3);
  addPad(3, 11, 5000, 0, 3);

  LayerContents counts;
  counts.fill(-7);
  CountLayerContents(k.store, tables.layer(3), counts);
  EXPECT_EQ(counts, (LayerContents{0, 4, 3, 1, 2, 1, 2, 1, 2, 2, 1, 2}));
  CountLayerContents(k.store, tables.layer(4), counts);
  EXPECT_EQ(counts, LayerContents{});
}

TEST_F(LayerContentsTest, FrameCoversEveryLayerHiddenOrNot) {
  FrameRect frame{1, 2, 3, 4};
  FrameLayers(k.store, tables.Layers, frame);
  EXPECT_EQ(frame, FrameRect{}) << "nothing anywhere gives all zeros";

  ASSERT_FALSE(tables.orderRow(9).Visible);  // layer 9 is hidden; its elements still count
  ItemRecord r{{.Type = ItemLine, .X = -50000, .Y = 20000, .Width = 10000, .Height = 5000}};
  addItem(9, r);
  r.X = 300000;
  r.Y = -70000;
  addItem(2, r);
  addPad(31, 1, 0, 400000, 31);  // entries reach as far as their pads
  FrameLayers(k.store, tables.Layers, frame);
  EXPECT_EQ(frame, (FrameRect{-50000, -70000, 310000, 405000}));

  EnsureLayerSymbol(k.store, tables.layer(31), true);
  FrameLayers(k.store, tables.Layers, frame);
  EXPECT_EQ(frame, (FrameRect{-50000, -70000, 310000, 25000}));
}

}  // namespace
}  // namespace tvx
