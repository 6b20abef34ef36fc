// Building the 31 layers and their order: the catalogue's groups and roles, captions, symbols made
// anew, and the colours stored in the settings.
#include "store/LayerTestSupport.h"

#include <set>

namespace tvx {
namespace {

using LayerTablesTest = test::LayerTablesFixture;

std::vector<int32_t> numbers(std::initializer_list<std::pair<int32_t, int32_t>> ranges) {
  std::vector<int32_t> result;
  for (auto [first, last] : ranges)
    for (int32_t n = first; n <= last; ++n)
      result.push_back(n);
  return result;
}

TEST_F(LayerTablesTest, GroupsHoldTheirLayers) {
  build();
  const std::pair<int32_t, std::vector<int32_t>> groups[] = {
      {layergroup::ListedAtStart, numbers({{1, 6}, {30, 31}})},
      {layergroup::AllButOutlineAndDrill, numbers({{1, 29}})},
      {layergroup::Copper, numbers({{3, 4}, {7, 29}})},
      {layergroup::FlashedPads, numbers({{2, 5}, {7, 29}})},
      {layergroup::Inner, numbers({{7, 29}})},
      {layergroup::Silkscreen, {1, 6}},
      {layergroup::SolderMask, {2, 5}},
  };
  for (const auto& [mask, expected] : groups) {
    std::vector<int32_t> members;
    for (int32_t n = 1; n <= LayerCount; ++n)
      if (tables.layer(n).Mask & mask)
        members.push_back(n);
    EXPECT_EQ(members, expected) << mask;
  }
  int32_t all = 0;
  for (const LayerRecord& layer : tables.Layers) {
    EXPECT_EQ(all & layer.Mask, 0) << "one bit per layer";
    all |= layer.Mask;
    EXPECT_EQ(layer.Listed, (layer.Mask & layergroup::ListedAtStart) != 0);
  }
  EXPECT_EQ(all, 0x7FFFFFFF);
}

TEST_F(LayerTablesTest, FieldsFollowTheCatalogueAndTheLayersRole) {
  useCatalogue("62423\tSiebdruck oben\n4956\tInnenlage (K)\n");
  build();
  std::set<int32_t> codes;
  std::set<std::string> keys;
  for (int32_t n = 1; n <= LayerCount; ++n) {
    SCOPED_TRACE(n);
    const LayerRecord& layer = tables.layer(n);
    EXPECT_EQ(layer.SymbolName, "$$GIS_CAT" + std::to_string(-76500 - n));
    EXPECT_EQ(layer.SymbolHandle, -76500 - n);
    EXPECT_EQ(layer.FilterMask, n == 31 ? 50 : n == 30 ? 13 : 16511);
    EXPECT_EQ(layer.PadKind, n == 31 ? 6 : n == 30 ? 0 : 5);
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
