// Building the 31 layers and their order (the catalogue's codes, captions and colours, symbols made
// anew, the colours stored in the settings), what a layer holds, and the colour slots of kernel
// table 1 with the colour categories of the settings that fill it.
#include "store/LayerSymbol.h"
#include "store/LayerTestSupport.h"

#include <set>

namespace tvx {
namespace {

using LayerTablesTest = test::LayerTablesFixture;

TEST_F(LayerTablesTest, FieldsFollowTheCatalogue) {
  useCatalogue("62423\tSiebdruck oben\n4956\tInnenlage (K)\n");
  build();
  std::set<int32_t> codes;
  std::set<std::string> keys;
  for (int32_t n = 1; n <= LayerCount; ++n) {
    SCOPED_TRACE(n);
    const LayerRecord& layer = tables.layer(n);
    EXPECT_TRUE(n >= 30 ? layer.LayerCode == 0 : codes.insert(layer.LayerCode).second);
    EXPECT_TRUE(keys.insert(layer.KeyName).second && !layer.KeyName.empty());
    EXPECT_EQ(uint32_t(layer.DefaultColourRgb), paletteRgb().at(size_t(layer.ColourNumber)));
    EXPECT_EQ(layer.ColourRgb, layer.DefaultColourRgb);
  }
  // The artwork layers take the editor's codes 96 to 127. Captions come through the catalogue, the
  // default where it has none, trailing blank and all.
  EXPECT_EQ(std::tuple(*codes.begin(), *codes.rbegin(), tables.layer(1).DisplayName,
                       tables.layer(17).DisplayName, tables.layer(8).DisplayName),
            std::tuple(96, 127, "Siebdruck oben", "Innenlage (K)", "Artwork Inner Layer (B) "));
}

TEST_F(LayerTablesTest, BuildingStartsRowsAndSymbolsAfresh) {
  Store& store = k.store;
  store.S_CreateSymbol(-76503, "$$GIS_CAT-76503");
  store.S_InsertEntry(-76503, -1, 10, 10);
  store.S_CreateSymbol(-76504, "SOMETHING ELSE");
  for (bool mono : {false, true}) {
    tables.CurrentLayer = 7;
    tables.orderRow(1) = LayerOrderRow{5, true, !mono, 9, 0, 0};
    build(mono);
    EXPECT_EQ(tables.CurrentLayer, 1);
    for (int32_t n = 1; n <= LayerCount; ++n) {
      const LayerRecord& layer = tables.layer(n);
      EXPECT_EQ(tables.orderRow(n), (LayerOrderRow{n, layer.Listed, mono, 0, 1, 1}));
      const ObjectHandle symbol = store.S_Symbol(layer.SymbolHandle);
      EXPECT_EQ(std::tuple(SystemServices::StringFromPointer(store.O_GetName(symbol)),
                           store.OA_GetCount(store.S_SymbolEntryArray(layer.SymbolHandle))),
                std::tuple(layer.SymbolName, 0))
          << n;
    }
  }
}

TEST_F(LayerTablesTest, StoredColoursNeedTwoValues) {
  const std::tuple<const char*, bool, int32_t, int32_t> cases[] = {
      {"9,16711680", true, 9, 16711680}, {"4,255,77", true, 4, 255},
      {"2.5,3.5", true, 2, 4},  // halves to even
      {"abc,xyz", true, 0, 0},           {"9", false, -1, -1},
      {"garbage", false, -1, -1}};
  for (const auto& [text, taken, number, rgb] : cases) {
    int32_t gotNumber = -1, gotRgb = -1;
    EXPECT_EQ((std::tuple{parseStoredColour(text, gotNumber, gotRgb), gotNumber, gotRgb}),
              std::tuple(taken, number, rgb))
        << text;
  }
  setSetting("GERBERVIEWERCOLORS", "$$GIS_CAT-76503", " 14, 2631935");
  setSetting("GERBERVIEWERCOLORS", "$$GIS_CAT-76504", "14");
  setSetting("LAYERCOLORS", "$$GIS_CAT-76501", "5,123");  // not where start-up looks
  build();
  EXPECT_EQ(std::tuple(tables.layer(3).ColourNumber, tables.layer(3).ColourRgb,
                       tables.layer(3).DefaultColourNumber),
            std::tuple(14, 2631935, 10))
      << "the default stays the catalogue's";
  for (int32_t n : {1, 4})
    EXPECT_EQ(tables.layer(n).ColourRgb, tables.layer(n).DefaultColourRgb) << n;
}

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
  EXPECT_EQ((std::tuple{text(tables.layer(5)), used}), std::tuple("Empty", false));
  addItem(5, ItemLine);
  EXPECT_EQ((std::tuple{text(tables.layer(5)), used}), std::tuple("1 elements", true));
  addPad(5, 10, 0, 0, 3);  // entries count as well
  EXPECT_EQ(text(tables.layer(5)), "2 elements");
  LayerRecord missing = tables.layer(7);  // a symbol the store does not have reads as empty
  missing.SymbolHandle = -1234;
  EXPECT_EQ((std::tuple{text(missing), used}), std::tuple("Empty", false));
  useCatalogue("62422\tLeer\n62421\tElemente\n");
  EXPECT_EQ(std::tuple(text(tables.layer(5)), text(tables.layer(9))),
            std::tuple("2 Elemente", "Leer"));
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

class ColourSlotsTest : public test::LayerTablesFixture {
protected:
  uint8_t* table() { return k.strings.E_SysTable(1); }
  void markTable() { std::fill_n(table(), ColourSlotCount, uint8_t(0xEE)); }
  // Reads the group into a marked table; each row writes its colour to its own slot and a slot
  // without a row keeps the mark. Returns the number of rows.
  int readGroup(CategoryGroup group) {
    markTable();
    readCategoryGroup(services, k.strings, group, categories);
    const bool layout = group == CategoryGroup::Layout;
    const auto& rows = layout ? categories.Layout : categories.Schematic;
    int count = 0;
    for (int32_t i = 0; i < 32; ++i) {
      const int32_t key = layout ? 32 + i : i;
      SCOPED_TRACE(key);
      if (rows[size_t(i)].isEmpty()) {
        EXPECT_EQ(table()[key], 0xEE) << "no row, no write";
        continue;
      }
      ++count;
      EXPECT_EQ(rows[size_t(i)].Slot, key);
      EXPECT_EQ(table()[key], rows[size_t(i)].Colour);
    }
    for (int32_t key = layout ? 0 : 32; key < (layout ? 32 : 64); ++key)
      EXPECT_EQ(table()[key], 0xEE) << "the other group's slot " << key;
    return count;
  }
};

TEST_F(ColourSlotsTest, CategoryRowsAreWrittenThroughToTableOne) {
  EXPECT_EQ(readGroup(CategoryGroup::Layout), 11);
  colours.build(k.strings);
  EXPECT_EQ(std::tuple(table()[60], colours[colourslot::ClearColour].ColourNumber,
                       uint32_t(colours[colourslot::ClearColour].Rgb)),
            std::tuple(15, 15, paletteRgb()[15]))
      << "the defaults are read";

  // Settings replace rows one by one; an empty row and a key outside the group write nothing.
  setSetting("CATEGORIES", "63", "Background,15,dark room");
  setSetting("CATEGORIES", "61", "\"Outline, board\",5");
  setSetting("CATEGORIES", "36", "");
  setSetting("CATEGORIES", "40", "Not a layout key,9,");
  EXPECT_EQ(readGroup(CategoryGroup::Layout), 10);
  EXPECT_EQ(std::tuple(categories.LayoutBackground, categories.Layout[63 - 32].Remark,
                       categories.Layout[61 - 32].Name),
            std::tuple(15, "dark room", "Outline, board"));
  EXPECT_EQ(std::vector<uint8_t>(table() + 60, table() + 64), (std::vector<uint8_t>{15, 5, 7, 15}));

  // The schematic group fills the low slots and leaves the layout's alone.
  EXPECT_EQ(readGroup(CategoryGroup::Schematic), 23);
  EXPECT_EQ(std::tuple(categories.Schematic[14].Name, categories.Schematic[31].Remark),
            std::tuple("Simvex \"GND\" Marker", " "));
}

}  // namespace
}  // namespace tvx
