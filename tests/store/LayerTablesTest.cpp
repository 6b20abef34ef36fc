// Building the 31 layers and their order: the catalogue's codes, captions and colours, symbols made
// anew, and the colours stored in the settings.
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
  EXPECT_EQ(*codes.begin(), 96);  // the artwork layers take the editor's codes 96 to 127
  EXPECT_EQ(*codes.rbegin(), 127);
  // Captions through the catalogue, the default where it has none, trailing blank and all.
  EXPECT_EQ(tables.layer(1).DisplayName, "Siebdruck oben");
  EXPECT_EQ(tables.layer(17).DisplayName, "Innenlage (K)");
  EXPECT_EQ(tables.layer(8).DisplayName, "Artwork Inner Layer (B) ");
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
      EXPECT_EQ(SystemServices::StringFromPointer(store.O_GetName(symbol)), layer.SymbolName);
      EXPECT_EQ(store.OA_GetCount(store.S_SymbolEntryArray(layer.SymbolHandle)), 0) << n;
    }
  }
}

TEST_F(LayerTablesTest, StoredColoursNeedTwoValues) {
  const std::tuple<const char*, bool, int32_t, int32_t> cases[] = {
      {"9,16711680", true, 9, 16711680},
      {" 9, 16711680", true, 9, 16711680},
      {"4,255,77", true, 4, 255},
      {"2.5,3.5", true, 2, 4},  // halves to even
      {"abc,xyz", true, 0, 0},
      {"9", false, -1, -1},
      {"", false, -1, -1},
      {"garbage", false, -1, -1}};
  for (const auto& [text, taken, number, rgb] : cases) {
    int32_t gotNumber = -1, gotRgb = -1;
    EXPECT_EQ(parseStoredColour(text, gotNumber, gotRgb), taken) << text;
    EXPECT_EQ(std::pair(gotNumber, gotRgb), std::pair(number, rgb)) << text;
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

}  // namespace
}  // namespace tvx
