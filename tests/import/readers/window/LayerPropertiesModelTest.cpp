// The layer properties window without widgets, over layers imported through the import window:
// its rows, use counts, highlights and colour changes.
#include "import/readers/window/LayerPropertiesModel.h"
#include "import/readers/window/ImportWindowTestSupport.h"

#include "kernel/Palette.h"
#include "store/LayerCatalogue.h"

namespace tvx {
namespace {

using Captions = std::vector<std::pair<std::string, std::string>>;

class LayerProperties : public ::testing::Test {
protected:
  void show(int32_t layer) {
    PropertiesLayer = layer;
    model = std::make_unique<LayerPropertiesModel>(LayerPropertiesOwners{
        world.kernel->store, world.reporting.services, world.tables->Layers, PropertiesLayer,
        world.highlights, [this] { ++redraws; }, [this] { ++unloads; }, ClearNumber, ClearCode, 0});
    model->FormFill();
    model->FormUpdate();
  }
  Captions rows() const {
    Captions all;
    for (const GridRow& row : model->rows)
      all.emplace_back(row.Caption, row.Value);
    return all;
  }
  std::string stored(int32_t layer) const {
    return world.reporting.services.GetIniString("LAYERCOLORS", world.layer(layer).SymbolName, "");
  }

  static constexpr int32_t ClearNumber = test::ImportWindowWorld::ClearColour;
  static constexpr int32_t ClearCode = 92;
  test::ImportWindowWorld world;
  int32_t PropertiesLayer = 0;
  std::unique_ptr<LayerPropertiesModel> model;
  int redraws = 0;
  int unloads = 0;
};

TEST_F(LayerProperties, AnEmptyLayerShowsItsFileColourAndContentsGroup) {
  show(5);
  EXPECT_EQ(model->caption, "Layer properties [" + world.layer(5).DisplayName + "]");
  EXPECT_EQ(rows(), (Captions{{"Import file name", ""},
                              {"Change display color", "(Default)    "},
                              {"Layer ", "Contents"}}));
  EXPECT_EQ(model->rows[1].Swatch, world.layer(5).ColourRgb);
}

TEST_F(LayerProperties, AnArtworkLayerCountsItsElementsAndEachAperturesUses) {
  world.openAs("top.gbr", test::TwoPadsAndATrack, ImportKind::ArtworkRS274X);
  world.choose(world.layer(3).DisplayName);
  show(3);
  const Captions all = rows();
  EXPECT_EQ(Captions(all.begin() + 2, all.end()), (Captions{{"Layer ", "Contents"},
                                                            {"Lines", "1"},
                                                            {"Filled Rectangles", "2"},
                                                            {"Pad positions", "2"},
                                                            {"Aperture list", "Count"},
                                                            {"D10* Line    0.0100\"", "1"},
                                                            {"D11* Sqr.Pad 0.0600\"", "2"}}));
  EXPECT_EQ(all[0].second, world.layer(3).LastFile);

  // Left out of the import, an aperture of the list counts 0.
  world.model->cmdFilters();
  world.model->CommitCell(world.model->rowOf("AF_APF,1"), "0");
  model->FormUpdate();
  EXPECT_EQ(rows().back(), (std::pair<std::string, std::string>{"D11* Sqr.Pad 0.0600\"", "2"}));
  EXPECT_EQ(rows()[rows().size() - 2].second, "0");
  EXPECT_EQ(model->rowOf("AF_APF,3"), -1);
  world.model->CommitCell(world.model->rowOf("AF_APF,1"), "1");
  model->FormUpdate();
  world.highlights = {};

  // A click lights the code's elements and a second puts the light out; Close clears all.
  const int32_t d10 = model->rowOf("AF_APF,1");
  model->ClickRow(d10);
  EXPECT_EQ(world.highlights.HLDCode, 10);
  EXPECT_EQ(world.highlights.HLDCodeText, "Dcode: " + world.layer(3).Apertures[0].Text);
  model->ClickRow(d10);
  EXPECT_EQ(world.highlights, HighlightValues{});
  model->ClickRow(d10);
  world.highlights.HLPadstack = 4;
  model->cmdClose();
  EXPECT_EQ(world.highlights, HighlightValues{});
  EXPECT_EQ(unloads, 1);
  EXPECT_EQ(redraws, 4);
}

TEST_F(LayerProperties, TheDrillLayerListsItsToolsWithTheirHoles) {
  world.openAs("holes.drl", test::ThreeHoles, ImportKind::ExcellonFormatTwo);
  world.model->ImportFile();
  show(DrillLayer);
  const Captions all = rows();
  EXPECT_EQ(Captions(all.begin() + 3, all.end()), (Captions{{"Drilled holes", "3"},
                                                            {"Tool List(Hole Count)", "Diameters"},
                                                            {"T1    (2)", "0.030\""},
                                                            {"T2    (1)", "0.040\""}}));
  // Typed or clicked, a tool row lights its holes; its diameter stays.
  model->CommitCell(model->rowOf("AF_APH,2"), "0.5");
  EXPECT_EQ(world.highlights.HLPadstack, model->ToolList[1].Code);
  EXPECT_EQ(rows().back().second, "0.040\"");
  model->ClickRow(model->rowOf("AF_APH,2"));
  EXPECT_EQ(world.highlights.HLPadstack, 0);
}

TEST_F(LayerProperties, ColoursAreStoredAndTheClearColourOnlyOnOutlineAndDrill) {
  for (int32_t layer : {1, 3, 29, BoardOutlineLayer, DrillLayer}) {
    SCOPED_TRACE(layer);
    show(layer);
    const int32_t before = world.layer(layer).ColourNumber;
    model->PaletteClick(ClearNumber);
    const bool taken = layer >= BoardOutlineLayer;
    EXPECT_EQ(world.layer(layer).ColourNumber, taken ? ClearNumber : before);
    EXPECT_EQ(stored(layer), taken ? " 8, " + std::to_string(paletteRgb()[ClearNumber]) : "");
  }
  world.openAs("top.gbr", test::TwoPadsAndATrack, ImportKind::ArtworkRS274X);
  world.choose(world.layer(3).DisplayName);
  show(3);
  model->CommitCell(model->rowOf("AF_ICL"), "Selected from palette");
  EXPECT_TRUE(model->colourPageShown);
  model->PaletteClick(5);
  EXPECT_FALSE(model->colourPageShown);
  EXPECT_EQ(stored(3), " 5, " + std::to_string(paletteRgb()[5]));
  EXPECT_EQ(int32_t(world.items(3).front().Colour), 5);
  EXPECT_EQ(model->rows[1].Value, "(Palette)    ");
  model->CommitCell(model->rowOf("AF_ICL"), "Use default layer color");
  EXPECT_EQ(world.layer(3).ColourNumber, world.layer(3).DefaultColourNumber);
  EXPECT_EQ(int32_t(world.items(3).front().Colour), world.layer(3).DefaultColourNumber);
  EXPECT_EQ(model->rows[1].Value, "(Default)    ");
}

}  // namespace
}  // namespace tvx
