// The import window's model: the rows for each kind of file (which rows, in which order, read-only
// or editable, before and after a layer is chosen, with the filter, aperture and tool rows); and
// the commit step: range edges refused in silence with the old value shown again, the re-run that
// keeps the chosen layer, the drill layer switch, the aperture check boxes and their Tag, the
// highlights, the colour page, Clear, Close and the DXF rebinding. Under it, the window's stages
// over the session with scripted readers where a format has none.
#include "aperture/ApertureTablesModel.h"
#include "import/readers/window/ImportDialogModel.h"
#include "import/readers/window/ImportWindowTestSupport.h"

#include "import/readers/ImportSettings.h"
#include "store/LayerSymbol.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <memory>

namespace tvx {
namespace {

using test::addItem;
using test::line;

using Keys = std::vector<std::string>;

TEST(ImportWindowRows, AGerberFileWaitsForALayerThenShowsItsLayerAndFilterRows) {
  test::ImportWindowWorld world;
  world.open("top.gbr", test::TwoPadsAndATrack);
  ASSERT_EQ(world.session->state.Job.Kind, ImportKind::ArtworkRS274X);
  // Reading the whole file shows its progress in the main window's line, not in the window's.
  EXPECT_EQ(std::count(world.events.begin(), world.events.end(),
                       "main line " + world.nextFile + " Processing"),
            1);
  EXPECT_EQ(world.model->stages().messageLine.find("Processing"), std::string::npos);
  EXPECT_EQ(world.keys(), (Keys{"IMP_FLEN", "IMP_FLET", "(group)", "IMP_UNITG", "IMP_OZG",
                                "IMP_SCFXG", "IMP_SCFYG", "IMP_PFXG", "IMP_PFYG", "IMP_APT",
                                "IMP_APTUSE", "(group)", "IMP_LAYER"}));
  EXPECT_EQ(world.row("IMP_FLET").Value, "Artwork GERBER RS-274-X");
  // The file's own format, read-only and grey.
  EXPECT_EQ(world.row("IMP_UNITG").Value, "Inches");
  EXPECT_TRUE(world.row("IMP_UNITG").ReadOnly);
  EXPECT_EQ(world.row("IMP_PFXG").Value, "2.4");
  EXPECT_EQ(world.row("IMP_APT").Value, "Embedded");
  EXPECT_FALSE(world.row("IMP_APT").Enabled) << "the aperture windows are not there";
  EXPECT_EQ(world.row("IMP_LAYER").Cell, CellKind::List);
  EXPECT_EQ(world.model->list(importlist::Layers).size(), world.session->state.LayerChoices.size());
  EXPECT_EQ(world.entries(1) + world.items(1).size(), 0u) << "nothing is imported yet";

  world.choose(world.layer(1).DisplayName);
  EXPECT_EQ(world.items(1).size(), 3u);
  EXPECT_EQ(world.row("AF_ICL").Swatch, world.layer(1).ColourRgb);
  EXPECT_EQ(world.row("AFS_XO").Value, "0.0000\"");
  EXPECT_TRUE(world.row("AFS_NOCENTER").Checked);
  EXPECT_EQ(world.model->rowOf("AF_ILN"), -1) << "filters are hidden until asked for";

  world.model->cmdFilters();
  const Keys all = world.keys();
  EXPECT_EQ(Keys(all.end() - 11, all.end()),
            (Keys{"(group)", "AF_ILN", "AF_IPD", "AF_IPA", "AF_IPL", "AF_IMC", "AF_IPP", "AF_IMP",
                  "(group)", "AF_APF,1", "AF_APF,2"}));
  EXPECT_EQ(world.row("AF_APF,1").Caption, "D10* Line    0.0100\"");
  EXPECT_EQ(world.row("AF_APF,2").Caption, "D11* Sqr.Pad 0.0600\"");
  EXPECT_TRUE(world.row("AF_APF,2").Checked);
  EXPECT_EQ(world.layer(1).Apertures, world.model->ApertureRows);

  // Millimetres: the lengths of the rows follow.
  world.model->F_InchMM(1);
  EXPECT_EQ(world.row("AF_APF,1").Caption, "D10* Line    0.254mm");
  EXPECT_EQ(world.row("AFS_XO").Value, "0.000mm");

  // A layer without some kinds of elements offers only its own filters.
  world.model->cmdFilters();
  world.layer(2).FilterMask = filter::AF_ILN | filter::AF_IPP;
  world.choose(world.layer(2).DisplayName);
  world.model->cmdFilters();
  EXPECT_GE(world.model->rowOf("AF_ILN"), 0);
  EXPECT_GE(world.model->rowOf("AF_IPP"), 0);
  EXPECT_EQ(world.model->rowOf("AF_IPD"), -1);
}

TEST(ImportWindowRows, ADrillFileIsImportedAtOnceWithItsToolsEditable) {
  test::ImportWindowWorld world;
  world.open("holes.drl", test::ThreeHoles);
  ASSERT_EQ(world.session->state.Job.Kind, ImportKind::ExcellonFormatTwo);
  EXPECT_GT(world.entries(31), 0) << "imported at once";
  EXPECT_EQ(world.keys(), (Keys{"IMP_FLEN", "IMP_FLET", "(group)", "(info)", "(info)", "(info)",
                                "(group)", "IMP_LAYER", "AF_ICL", "AFS_XO", "AFS_YO",
                                "AFS_NOCENTER", "(group)", "AF_APH,1", "AF_APH,2"}));
  EXPECT_EQ(world.model->list(importlist::FileType),
            (Keys{"Drilling EXCELLON Format Two", "Drilling EXCELLON Format One"}));
  EXPECT_TRUE(world.model->rows[3].ReadOnly);
  EXPECT_EQ(world.row("IMP_LAYER").Cell, CellKind::Text);
  EXPECT_EQ(world.row("AF_APH,1").Caption, "T1   (2)");
  EXPECT_EQ(world.row("AF_APH,2").Caption, "T2   (1)");
  EXPECT_EQ(world.row("AF_APH,1").Value, "0.030\"");
  EXPECT_EQ(world.row("AF_APH,1").Cell, CellKind::Number);

  // Read as Format One: the format rows become lists taken from the settings.
  world.model->CommitCell(world.model->rowOf("IMP_FLET"), "Drilling EXCELLON Format One");
  EXPECT_EQ(world.session->state.Job.Kind, ImportKind::ExcellonFormatOne);
  EXPECT_EQ(world.model->rows[2].ValueBack, 0xFFFF00);
  EXPECT_EQ(world.row("IMP_UNITD").Cell, CellKind::List);
  EXPECT_EQ(world.row("IMP_PRFXYD").Value, "2.4");
  EXPECT_EQ(world.row("IMP_OZD").Value, "Trailing");
  EXPECT_EQ(world.session->state.DialogLayer, 31);
}

TEST(ImportWindowRows, APlotterFileHasNoFormatRowsAndOnlyTheOutlineLayer) {
  test::ImportWindowWorld world;
  int imports = 0;
  test::ScriptedReader hpgl;
  hpgl.onImport = [&](int32_t&, const ImportJob&, LayerRecord&, LayerFileRecord&) { ++imports; };
  world.session->readers.add(ReaderHpgl, hpgl);
  world.makeModel();
  world.open("outline.plt", "IN;PU0,0;PD400,0;\n");
  ASSERT_EQ(world.session->state.Job.Kind, ImportKind::Hpgl);
  EXPECT_EQ(imports, 1) << "imported at once";
  const Keys keys{"IMP_FLEN", "IMP_FLET", "(group)", "IMP_LAYER",
                  "AF_ICL",   "AFS_XO",   "AFS_YO",  "AFS_NOCENTER"};
  EXPECT_EQ(world.keys(), keys);
  EXPECT_EQ(world.model->list(importlist::Layers), Keys{"Board Outline/Cut-outs"});
  world.model->cmdFilters();
  EXPECT_EQ(world.keys(), keys) << "filters have nothing to show for it";
}

class ImportWindowCommit : public ::testing::Test {
protected:
  // What the user does in the row of key: types text and leaves the cell.
  void commit(const std::string& key, const std::string& text) {
    const int32_t row = model().rowOf(key);
    ASSERT_GE(row, 0) << key << " has no row";
    model().CommitCell(row, text);
  }
  // A plain RS-274-D track, whose format rows the user may change, chosen into layer.
  void openPlain(int32_t layer = 1) {
    world.model->apertureTableName = "PLOTTER1";
    world.openAs("plain.gbr", test::PlainTrack, ImportKind::ArtworkRS274D);
    world.choose(world.layer(layer).DisplayName);
    ASSERT_EQ(world.session->state.DialogLayer, layer);
  }
  void openArtwork(int32_t layer = 1) {
    world.open("top.gbr", test::TwoPadsAndATrack);
    ASSERT_EQ(world.session->state.Job.Kind, ImportKind::ArtworkRS274X);
    world.choose(world.layer(layer).DisplayName);
    ASSERT_EQ(world.session->state.DialogLayer, layer);
  }
  // X of the track, the last item of the layer.
  int32_t trackX(int32_t layer = 1) {
    const auto all = world.items(layer);
    return all.empty() ? -1 : all.back().X;
  }
  GerberFormat storedGerber() {
    GerberFormat stored;
    LoadGerberSettings(world.reporting.services, stored);
    return stored;
  }
  const std::string& messageLine() { return model().stages().messageLine; }
  ImportWindowModel& model() { return *world.model; }

  test::ImportWindowWorld world;
};

// Opening a file from the window's file menu: what stays up, what is offered as text, and what
// both message lines say when the reading is over. Whatever goes wrong is told once.
TEST_F(ImportWindowCommit, OpeningAFileEndsInItsRowsOrInItsText) {
  std::string gerber = test::TwoPadsAndATrack;
  gerber.erase(gerber.find("M02*"));
  const struct {
    const char* name;
    std::string text;
    bool stays;
    size_t messages;
  } cases[] = {
      {"artwork.gbr", test::TwoPadsAndATrack, true, 0},
      {"not-gerber.gbr", gerber + std::string(101, 'q') + "M02*", false, 1},
      {"outside.gbr", gerber + "G75*G02X1Y1I99999999J0D01*M02*", true, 1},
      {"no-holes.drl", "M48\nINCH,TZ\nT1C0.03\n%\nM30\n", false, 1},
      {"words.txt", "nothing to see here\n", false, 1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    test::ImportWindowWorld fresh;
    fresh.open(c.name, c.text);
    const auto count = [&fresh](const char* event) {
      return std::count(fresh.events.begin(), fresh.events.end(), event);
    };
    const bool closed = count("unload") > 0;
    EXPECT_EQ(closed, !c.stays);
    EXPECT_EQ(count("display file") + count("display file after 93"), closed ? 1 : 0);
    EXPECT_EQ(fresh.boxes().size() + size_t(count("display file after 93")), c.messages);
    if (c.messages == 0) {
      // The rows follow the scan without another refill: the layer can be chosen.
      EXPECT_GE(fresh.model->rowOf("IMP_LAYER"), 0);
      EXPECT_EQ(fresh.events.back(), "main line " + fresh.nextFile + " Completed");
    }
  }
  // Taken as Gerber by the user's choice of kind, text that is none: the pass rejects it, says so
  // once, and the file is offered as text.
  test::ImportWindowWorld chosen;
  chosen.openAs("chosen.gbr", gerber + std::string(101, 'q') + "M02*", ImportKind::ArtworkRS274X);
  EXPECT_EQ(chosen.events.back(), "main line ");
  EXPECT_NE(std::find(chosen.events.begin(), chosen.events.end(), "display file"),
            chosen.events.end());
  EXPECT_EQ(chosen.boxes().size(), 1u);

  openArtwork();
  EXPECT_EQ(world.events.back(), "main line Silkscreen Top Import successful");
}

TEST_F(ImportWindowCommit, ScaleFactorsAreTakenOnlyBetweenZeroAndTen) {
  openPlain();
  const int32_t length = world.items(1).back().Width;
  for (const char* refused : {"0", "10", "-1", "12.5"}) {
    SCOPED_TRACE(refused);
    commit("IMP_SCFXG", refused);
    EXPECT_EQ(world.session->gerberFormat.Scale[AxisX], 1.0);
    EXPECT_EQ(world.row("IMP_SCFXG").Value, "1.0") << "the old value is shown again";
  }
  EXPECT_TRUE(world.reporting.prompts.shown.empty()) << "refused in silence";

  commit("IMP_SCFXG", "9.999");
  EXPECT_EQ(world.session->state.DialogLayer, 1);
  EXPECT_NEAR(world.items(1).back().Width, length / 9.999, 1.0) << "re-run into the same layer";
  EXPECT_EQ(storedGerber().Scale[AxisX], 9.999);

  world.session->state.Job.Kind = ImportKind::Dxf;  // only the format is looked at
  model().FormUpdate();
  commit("IMP_SCFDXF", "10");
  EXPECT_EQ(world.session->dxfFormat.DxfScale, 1.0);
}

TEST_F(ImportWindowCommit, OffsetsReachTheEdgeOfTheWorldAndNoFurther) {
  openArtwork();
  model().F_InchMM(1);
  const int32_t x = trackX();
  commit("AFS_XO", "10");
  EXPECT_EQ(world.layer(1).Files.at(0).OffsetX, 1000000);
  EXPECT_EQ(trackX(), x + 1000000) << "the layer was imported again, moved";
  // The first import fitted the view to the data; the re-run keeps it, so the move shows.
  EXPECT_EQ(world.fits, 1);
  EXPECT_GE(world.redraws, 2);

  commit("AFS_YO", "-2200");
  EXPECT_EQ(world.layer(1).OffsetY, -220000000) << "exactly the edge is taken";
  commit("AFS_XO", "2200");
  EXPECT_EQ(world.layer(1).OffsetX, 220000000);
  commit("AFS_XO", "2200.00001");  // one store unit more
  EXPECT_EQ(world.layer(1).OffsetX, 220000000);
  EXPECT_EQ(world.row("AFS_XO").Value, "2200.000mm");
  commit("AFS_XO", "");
  EXPECT_EQ(world.layer(1).OffsetX, 220000000) << "an empty text changes nothing";
  model().F_InchMM(0);
  commit("AFS_XO", "1");
  EXPECT_EQ(world.layer(1).OffsetX, 2540000) << "inches in the inch unit";
  EXPECT_EQ(world.row("AFS_XO").Value, "1.0000\"");
}

TEST_F(ImportWindowCommit, OriginalCoordinatesAreSavedAsTheSetting) {
  openArtwork();
  const int32_t kept = trackX();
  model().CommitCell(model().rowOf("AFS_NOCENTER"), "0");
  EXPECT_FALSE(world.layer(1).OriginalCoordinates);
  EXPECT_FALSE(model().NoCenter);
  EXPECT_THAT(world.events, ::testing::Contains("NoCenter 0"));
  EXPECT_EQ(trackX(), kept - 1270000) << "centred on the origin";
}

TEST_F(ImportWindowCommit, HoleDiametersFromZeroToBelowAHundredMillimetres) {
  world.open("holes.drl", test::ThreeHoles);
  ASSERT_EQ(world.session->state.DialogLayer, 31);
  model().F_InchMM(1);
  std::vector<ToolEntry>& tools = world.layer(31).Files.at(0).Tools;
  ASSERT_EQ(tools.size(), 2u);
  const int32_t before = tools[0].Diameter;
  model().CommitCell(model().rowOf("AF_APH,1"), "100");
  EXPECT_EQ(tools[0].Diameter, before);
  EXPECT_EQ(world.row("AF_APH,1").Value, "0.8mm");
  EXPECT_EQ(world.highlights.HLPadstack, 0);

  model().CommitCell(model().rowOf("AF_APH,1"), "0");
  EXPECT_EQ(tools[0].Diameter, 0);
  model().CommitCell(model().rowOf("AF_APH,2"), "99.99");
  EXPECT_EQ(tools[1].Diameter, 9999000);
  EXPECT_EQ(world.row("AF_APH,2").Value, "100.0mm");  // the short form has one decimal
  // Typing a diameter highlights the tool, and again does not take it away.
  EXPECT_EQ(world.highlights.HLPadstackText, "Tool No. " + ToolLabel(tools[1].Code));
  model().CommitCell(model().rowOf("AF_APH,2"), "1");
  EXPECT_EQ(world.highlights.HLPadstack, tools[1].Code);
}

TEST_F(ImportWindowCommit, TheDrillLayerTurnsArtworkIntoDrillingAndBack) {
  openArtwork();
  world.choose("Drill Template");
  EXPECT_EQ(world.session->state.Job.Kind, ImportKind::DrillingRS274X);
  EXPECT_EQ(world.row("IMP_FLET").Value, "Drilling GERBER RS-274-X");
  EXPECT_TRUE(model().stages().FiltersShown);
  const LayerFileRecord& file = world.layer(31).Files.at(0);
  EXPECT_EQ(file.ReaderCode, ReaderGerberDrilling);
  // Only the flashed aperture gives a tool: half its size (76200), cut to 0.1 mm.
  EXPECT_EQ(file.Tools, (std::vector<ToolEntry>{{11, 70000, 0, 0}}));
  EXPECT_GT(world.entries(31), 0) << "the pads became holes";
  model().CommitCell(model().rowOf("AF_MAPHOLES"), "explicit apeture size");
  EXPECT_EQ(world.layer(31).Files.at(0).Tools.at(0).Diameter, 150000);

  world.choose(world.layer(2).DisplayName);
  EXPECT_EQ(world.session->state.Job.Kind, ImportKind::ArtworkRS274X);
  EXPECT_EQ(world.layer(2).Files.at(0).ReaderCode, ReaderGerberArtwork);
  EXPECT_FALSE(model().stages().FiltersShown);
  EXPECT_EQ(world.items(2).size(), 3u);
}

TEST_F(ImportWindowCommit, ApertureCheckBoxesBuildTheTagAndTheHighlight) {
  openArtwork();
  model().cmdFilters();
  const LayerFileRecord& file = world.layer(1).Files.at(0);
  const auto check = [this](const char* key, const char* on) {
    model().CommitCell(model().rowOf(key), on);
  };
  check("AF_APF,1", "0");
  EXPECT_EQ(file.Tag, "|D10*|");
  EXPECT_EQ(world.items(1).size(), 2u) << "the track is left out";
  EXPECT_FALSE(world.row("AF_APF,1").Checked) << "the row stays";
  EXPECT_EQ(world.highlights.HLDCode, 0);
  check("AF_APF,2", "0");
  EXPECT_EQ(file.Tag, "|D10*|D11*|");
  check("AF_APF,1", "1");
  EXPECT_EQ(file.Tag, "|D11*|");
  EXPECT_EQ(world.highlights.HLDCode, 10);
  EXPECT_EQ(world.highlights.HLDCodeText, "Dcode: D10* Line    0.0100\"");
  check("AF_APF,2", "1");
  EXPECT_EQ(file.Tag, " ");
  EXPECT_EQ(world.items(1).size(), 3u);

  check("AF_IPD", "0");
  EXPECT_EQ(file.FilterMask & filter::AF_IPD, 0);
  check("AF_IPD", "1");
  EXPECT_NE(file.FilterMask & filter::AF_IPD, 0);

  // Unselected rows are found again when the layer's aperture rows are rebuilt.
  check("AF_APF,2", "0");
  model().F_InchMM(1);
  EXPECT_FALSE(model().ApertureRows.at(1).Selected);
  EXPECT_TRUE(model().ApertureRows.at(0).Selected);
}

TEST_F(ImportWindowCommit, ClicksOnApertureAndToolRowsToggleTheHighlight) {
  openArtwork();
  model().cmdFilters();
  const int redraws = world.redraws;
  const auto click = [this](const char* key) { model().ClickRow(model().rowOf(key), false); };
  click("AF_APF,2");
  EXPECT_EQ(world.highlights.HLDCode, 11);
  click("AF_APF,1");
  EXPECT_EQ(world.highlights.HLDCode, 10);
  click("AF_APF,1");
  EXPECT_EQ(world.highlights, HighlightValues{});
  EXPECT_EQ(world.redraws, redraws + 3);

  world.choose("Drill Template");
  EXPECT_EQ(world.highlights, HighlightValues{}) << "a new layer clears the highlights";
  click("AF_APH,1");
  EXPECT_EQ(world.highlights.HLPadstack, 11);
  EXPECT_EQ(world.highlights.HLPadstackText, "Dcode: D11* Sqr.Pad 0.0600\"");
  click("AF_APH,1");
  EXPECT_EQ(world.highlights.HLPadstack, 0);

  // Close takes every highlight away and lets the main window select the layer.
  click("AF_APH,1");
  model().cmdClose();
  EXPECT_EQ(world.highlights, HighlightValues{});
  EXPECT_EQ(world.events.back(), "activate 31");
}

TEST_F(ImportWindowCommit, FormatChangesRerunIntoTheChosenLayer) {
  world.model->apertureTableName = "PLOTTER1";
  world.openAs("plain.gbr", test::PlainTrack, ImportKind::ArtworkRS274D);
  EXPECT_FALSE(world.row("IMP_UNITG").ReadOnly) << "a plain file's format is the user's";
  EXPECT_EQ(world.row("IMP_APT").Value, "PLOTTER1") << "the table the sizes come from";
  world.choose(world.layer(3).DisplayName);
  ASSERT_EQ(world.session->state.DialogLayer, 3);
  const int32_t inchLength = world.items(3).back().Width;
  ASSERT_GT(inchLength, 100000);
  model().cmdFilters();
  model().CommitCell(model().rowOf("AF_APF,1"), "0");
  model().CommitCell(model().rowOf("AF_APF,1"), "1");
  model().CommitCell(model().rowOf("IMP_UNITG"), "Metric");
  EXPECT_EQ(world.session->state.DialogLayer, 3) << "the layer stays chosen";
  EXPECT_EQ(world.row("IMP_LAYER").Value, world.layer(3).DisplayName);
  EXPECT_EQ(world.highlights.HLDCode, 10) << "the file record and its state are kept";
  EXPECT_NEAR(world.items(3).back().Width, inchLength / 25.4, 1.0);
  EXPECT_EQ(storedGerber().Unit, 1);

  model().CommitCell(model().rowOf("IMP_PFYG"), "3.3");
  EXPECT_EQ(world.session->gerberFormat.IntegerDigits[AxisY], 3);
  EXPECT_EQ(world.session->gerberFormat.DecimalDigits[AxisY], 3);

  // A list text that is no entry of its list changes nothing.
  const int32_t zeroes = world.session->gerberFormat.OmittedZeros;
  model().CommitCell(model().rowOf("IMP_OZG"), "Sideways");
  EXPECT_EQ(world.session->gerberFormat.OmittedZeros, zeroes);
  model().CommitCell(model().rowOf("IMP_OZG"), zeroes == 0 ? "Leading" : "Trailing");
  EXPECT_EQ(world.session->gerberFormat.OmittedZeros, 1 - zeroes);
}

// The two aperture windows, as stand-ins through the window's link: raised above all while they
// show, then the file is scanned again or not by what they report, and imported into its layer.
TEST_F(ImportWindowCommit, TheApertureWindowsReimportIntoTheChosenLayer) {
  std::vector<std::string> shown;
  int32_t useFlags = 0;
  ImportWindowOwners owners = world.makeOwners();
  owners.window.openApertureTable = [&shown] {
    shown.push_back("table");
    return true;
  };
  owners.window.openApertureUse = [&shown, &useFlags] {
    shown.push_back("use");
    return useFlags;
  };
  owners.window.setTopmost = [&shown](bool on) { shown.push_back(on ? "top" : "normal"); };
  world.model = std::make_unique<ImportWindowModel>(std::move(owners));
  world.model->FormFill();
  world.openAs("plain.gbr", test::PlainTrack, ImportKind::ArtworkRS274D);
  world.choose(world.layer(3).DisplayName);
  ASSERT_FALSE(world.items(3).empty());
  const auto emptied = [this] {
    EnsureLayerSymbol(world.kernel->store, world.layer(3), true);
    return world.items(3).empty();
  };

  ASSERT_TRUE(emptied());
  model().cmdFilters();
  model().CommitCell(model().rowOf("IMP_APT"), "NONE");
  EXPECT_EQ(shown, (std::vector<std::string>{"top", "table", "normal"}));
  EXPECT_EQ(world.session->state.DialogLayer, 3);
  EXPECT_FALSE(world.items(3).empty()) << "imported again";
  EXPECT_FALSE(world.model->stages().FiltersShown);
  EXPECT_TRUE(world.model->stages().filterButtonVisible);

  // The apertures display: nothing reported, nothing imported; either flag imports again.
  for (int32_t flags : {0, ArtworkUpdated, ApertureFileCreated}) {
    SCOPED_TRACE(flags);
    useFlags = flags;
    ASSERT_TRUE(emptied());
    model().CommitCell(model().rowOf("IMP_APTUSE"), "Click for info & setup");
    EXPECT_EQ(shown.back(), "normal");
    EXPECT_EQ(world.items(3).empty(), flags == 0);
    EXPECT_EQ(world.session->state.DialogLayer, 3);
    EXPECT_EQ(world.model->ApertureRows.size(), 1u);
  }
}

// The tables window's model behind the link, answered by scripted prompts: a size inserted, D10
// typed under Lines, Accept without saving; the layer is imported again with traces that wide.
TEST_F(ImportWindowCommit, ASizeInsertedInTheTableWindowGivesTheTracesTheirWidth) {
  ApertureTable table;
  world.session->gerberPass.apertureTable = &table.rows;
  ScriptedPrompts& prompts = world.reporting.prompts;
  ImportWindowOwners owners = world.makeOwners();
  owners.window.openApertureTable = [&] {
    ApertureTablesModel tables(table, world.reporting.services, prompts,
                               world.folder.path().string(), [](const std::string&) {});
    tables.FillAptform();
    prompts.queryAnswers.push_back({"0.5", 0});
    tables.insertSize(1);
    EXPECT_TRUE(tables.EditAptValues(tables.CurrentRow, 2, "D10*"));
    prompts.answers.push_back(7);  // not saved: the table in memory is what the pass uses
    tables.accept();
    return true;
  };
  world.model = std::make_unique<ImportWindowModel>(std::move(owners));
  world.model->FormFill();
  world.openAs("plain.gbr", test::PlainTrack, ImportKind::ArtworkRS274D);
  world.choose(world.layer(3).DisplayName);
  ASSERT_FALSE(world.items(3).empty());
  EXPECT_NE(world.items(3).back().LineWidth, 50000);
  model().CommitCell(model().rowOf("IMP_APT"), "NONE");
  ASSERT_FALSE(world.items(3).empty());
  EXPECT_EQ(world.items(3).back().LineWidth, 50000) << "0.5 mm in store units";
}

TEST_F(ImportWindowCommit, TheColourPageRefusesTheClearColourOnCopper) {
  constexpr int32_t Clear = test::ImportWindowWorld::ClearColour;
  openArtwork();
  model().CommitCell(model().rowOf("AF_ICL"), "Selected from palette");
  EXPECT_TRUE(model().colourPageShown);
  const int32_t before = world.layer(1).ColourNumber;
  model().PaletteClick(Clear);
  EXPECT_FALSE(model().colourPageShown);
  EXPECT_EQ(world.layer(1).ColourNumber, before);

  model().PaletteClick(13);
  EXPECT_EQ(world.layer(1).ColourRgb, static_cast<int32_t>(paletteRgb()[13]));
  EXPECT_EQ(world.layer(1).Files.at(0).Colour, 13);
  EXPECT_EQ(world.row("AF_ICL").Value, "(Palette)");
  EXPECT_EQ(world.items(1).back().Colour, 13);

  model().CommitCell(model().rowOf("AF_ICL"), "Use default layer color");
  EXPECT_EQ(world.layer(1).ColourNumber, world.layer(1).DefaultColourNumber);
  EXPECT_EQ(world.row("AF_ICL").Value, "(Default)");

  world.choose("Board Outline/Cut-outs");  // not copper: takes it
  model().PaletteClick(Clear);
  EXPECT_EQ(world.layer(30).ColourNumber, Clear);
}

TEST_F(ImportWindowCommit, ClearEmptiesTheLayerAndForgetsItUnlessItIsTheDrillLayer) {
  openArtwork();
  model().cmdClear();
  EXPECT_TRUE(world.items(1).empty());
  EXPECT_EQ(world.session->state.DialogLayer, 0);
  EXPECT_EQ(world.row("IMP_LAYER").Value, "Click to select");
  EXPECT_FALSE(model().stages().clearButtonVisible);
  EXPECT_FALSE(model().stages().filterButtonVisible);
  EXPECT_EQ(model().rowOf("AFS_XO"), -1);
  model().cmdClose();
  EXPECT_EQ(world.events.back(), "activate 4") << "closed without a layer: the current one";

  world.choose("Drill Template");
  model().cmdClear();
  EXPECT_EQ(world.session->state.DialogLayer, 31);
  EXPECT_EQ(world.entries(31), 0);
}

TEST_F(ImportWindowCommit, ADxfFileBoundToTheOutlineCanBeMovedToAnotherLayer) {
  std::vector<int32_t> readInto;
  test::ScriptedReader dxf;
  dxf.onImport = [&](int32_t&, const ImportJob&, LayerRecord& layer, LayerFileRecord&) {
    readInto.push_back(layer.Mask);
  };
  world.session->readers.add(ReaderDxf, dxf);
  world.makeModel();
  ImportState& state = world.session->state;
  state.Job.SourcePath = world.folder.file("board.dxf");
  state.Job.Kind = ImportKind::Dxf;
  ASSERT_TRUE(model().ApplyFile());
  model().ImportFile();
  model().FormUpdate();
  EXPECT_EQ(state.DialogLayer, 30);
  EXPECT_EQ(readInto, std::vector<int32_t>{BoardOutlineMask});
  EXPECT_EQ(world.row("IMP_LAYER").Cell, CellKind::List);
  EXPECT_GE(model().rowOf("AFS_DXFTRUESIZE"), 0);

  const auto expectOnLayer2 = [&] {
    EXPECT_EQ(state.DialogLayer, 2);
    EXPECT_EQ(state.CurrentSymbol, world.layer(2).SymbolHandle);
    EXPECT_EQ(readInto.back(), world.layer(2).Mask);
  };
  world.choose(world.layer(2).DisplayName);
  expectOnLayer2();
  EXPECT_EQ(world.layer(2).Files.at(0).FileName, state.Job.SourcePath);
  EXPECT_EQ(world.layer(2).Files.at(0).Colour, world.layer(2).ColourNumber);

  // True line sizes, then a new scale: the re-run stays on the chosen layer.
  commit("AFS_DXFTRUESIZE", "1");
  EXPECT_TRUE(world.layer(2).Files.at(0).TrueLineSize);
  commit("IMP_SCFDXF", "2.5");
  EXPECT_EQ(world.session->dxfFormat.DxfScale, 2.5);
  expectOnLayer2();
}

TEST_F(ImportWindowCommit, AScanThatVanishedFailsTheImportButNotTheWindow) {
  // Artwork: the window stays, the filter button shows even though the import failed.
  world.model->apertureTableName = "PLOTTER1";
  world.openAs("plain.gbr", test::PlainTrack, ImportKind::ArtworkRS274D);
  ASSERT_FALSE(model().stages().filterButtonVisible);
  std::filesystem::remove(world.session->state.Job.IntermediatePath);
  world.choose(world.layer(1).DisplayName);
  EXPECT_EQ(messageLine(), world.layer(1).DisplayName + " Import failed");
  ASSERT_FALSE(world.reporting.prompts.shown.empty());
  EXPECT_NE(world.reporting.prompts.shown.front().prompt.find("TMP.ART"), std::string::npos);
  EXPECT_TRUE(model().stages().clearButtonVisible);
  EXPECT_TRUE(model().stages().filterButtonVisible);
  EXPECT_EQ(std::count(world.events.begin(), world.events.end(), "unload"), 0);
  commit("IMP_SCFYG", "1");  // scans again and imports
  EXPECT_EQ(world.items(1).size(), 1u);
  EXPECT_EQ(messageLine(), world.layer(1).DisplayName + " Import successful");

  // Drilling: a failed import leaves the filter button hidden, a successful one shows it.
  world.open("plain.gbr", test::PlainTrack);
  ASSERT_EQ(world.session->state.Job.Kind, ImportKind::ArtworkRS274D);
  std::filesystem::remove(world.session->state.Job.IntermediatePath);
  world.choose("Drill Template");
  ASSERT_EQ(world.session->state.Job.Kind, ImportKind::DrillingRS274D);
  ASSERT_EQ(messageLine(), world.layer(31).DisplayName + " Import failed");
  EXPECT_FALSE(model().stages().filterButtonVisible);
  EXPECT_TRUE(model().stages().FiltersShown) << "the tool rows are shown all the same";
  commit("IMP_SCFYG", "1");
  ASSERT_EQ(messageLine(), world.layer(31).DisplayName + " Import successful");
  EXPECT_TRUE(model().stages().filterButtonVisible);
}

TEST_F(ImportWindowCommit, ALayerKeepsItsRowsWhenARescanFindsNoFile) {
  openPlain();
  commit("AFS_XO", "0.5");
  const int32_t offset = world.layer(1).OffsetX;
  ASSERT_NE(offset, 0);
  std::filesystem::remove(world.session->state.Job.SourcePath);
  commit("IMP_SCFYG", "2");
  ASSERT_FALSE(world.session->state.Job.Prepared) << "the scan found nothing to import";
  EXPECT_EQ(world.session->state.Job.IntermediatePath, "") << "nor left a TMP.ART to read";
  ASSERT_EQ(world.session->state.DialogLayer, 1);
  EXPECT_LT(model().rowOf("IMP_LAYER"), 0) << "the layer choice needs a scan";
  for (const char* key : {"AF_ICL", "AFS_XO", "AFS_YO", "AFS_NOCENTER"})
    EXPECT_GE(model().rowOf(key), 0) << key;
  EXPECT_EQ(world.row("AFS_XO").Value, "0.5000\"");
  EXPECT_EQ(world.layer(1).OffsetX, offset);
}

TEST_F(ImportWindowCommit, TheTextViewShowsTheFileAndAPickerCancelledChangesNothing) {
  world.open("top.gbr", test::TwoPadsAndATrack);
  model().cmdView();
  EXPECT_TRUE(model().ViewShown);
  EXPECT_EQ(model().viewerText, world.nextFile + ":\r\n\r\n" + test::TwoPadsAndATrack);
  model().cmdView();
  EXPECT_FALSE(model().ViewShown);
  const size_t before = world.events.size();
  model().M_FileView();
  ASSERT_GT(world.events.size(), before + 1);
  EXPECT_EQ(world.events[before].rfind("picker 1 in ", 0), 0u) << "the request for display";
  EXPECT_EQ(world.events.back(), "main line " + world.nextFile + " Processing");
  EXPECT_EQ(world.session->state.Job.Kind, ImportKind::ArtworkRS274X) << "import state untouched";
  // A picker cancelled from the file name changes nothing either.
  world.nextFile.clear();
  model().ClickRow(model().rowOf("IMP_FLEN"), true);
  EXPECT_EQ(world.session->state.Job.Kind, ImportKind::ArtworkRS274X);
  EXPECT_EQ(world.events.back(), "picker 2 in " + world.folder.path().string());
}

// The import window's stages over the session with scripted readers where a format has none: stage
// one of each kind of file (scan, layers offered, binding), and the import into the bound layer
// with its centring and order.
class ImportDialogModelTest : public ::testing::Test {
protected:
  ImportDialogModelTest() {
    state.Job.WorkDirectory = folder.path().string();
    state.Job.SourcePath = "/boards/top.gbr";
    window.setDisplayFile = [this](bool) { events.push_back("display file"); };
    window.markProjectChanged = [this] { events.push_back("changed"); };
    window.showHoles = [this] { events.push_back("holes"); };
    window.redraw = [this](bool fit) { events.push_back(fit ? "redraw" : "redraw kept"); };
    window.checkActiveCategory = [this](int32_t layer, bool on) {
      if (on)
        events.push_back("check " + std::to_string(layer));
    };
    gerber.onScan = [this](ImportJob& job) {
      events.push_back("pass " + job.SourcePath);
      return passStatus == 0 ? ScanResult::Scanned : ScanResult::Failed;
    };
    session.readers.add(ReaderGerberArtwork, gerber);
  }
  ImportDialogModel& model() {
    if (!model_) {
      model_ = std::make_unique<ImportDialogModel>(session, layers, window);
      model_->programTitle = "Tarvex Viewer";
    }
    return *model_;
  }
  std::vector<std::string> boxes() const { return test::boxesOf(reporting.prompts); }

  test::TempDir folder;
  Store store;
  test::Reporting reporting;
  ImportSession session{store, reporting.services, reporting.prompts};
  ImportState& state = session.state;
  std::array<LayerRecord, LayerCount> layers = test::makeLayers();
  test::ScriptedReader gerber;
  MainWindowLink window;
  std::vector<std::string> events;
  int32_t passStatus = 0;
  std::unique_ptr<ImportDialogModel> model_;
};

TEST_F(ImportDialogModelTest, GerberStageOneScansIntoTheWorkDirectoryAndOffersLayers) {
  for (ImportKind kind : {ImportKind::ArtworkRS274X, ImportKind::DrillingRS274D}) {
    SCOPED_TRACE(static_cast<int>(kind));
    events.clear();
    state.Job.Kind = kind;
    EXPECT_TRUE(model().ApplyFile());
    EXPECT_EQ(events, std::vector<std::string>{"pass /boards/top.gbr"});
    EXPECT_TRUE(state.Job.Prepared);
    EXPECT_EQ(state.DialogLayer, 0);
    EXPECT_EQ(model().layerList.size(), 8u);
    EXPECT_EQ(model().layerList[7], "Drill Template");
    EXPECT_TRUE(model().viewButtonVisible);
    const bool drilling = kind == ImportKind::DrillingRS274D;
    EXPECT_EQ(model().FiltersShown, drilling);
    EXPECT_EQ(model().filterButtonCaption, drilling ? "Hide Filters" : "Show Filters");
  }

  // A failed pass leaves no scan result and nothing prepared; the dialog stays up.
  passStatus = 1;
  state.Job.Prepared = false;
  EXPECT_TRUE(model().ApplyFile());
  EXPECT_FALSE(state.Job.Prepared);

  // Without the text pass the file is reported as not supported.
  session.readers = ReaderTable{};
  model_.reset();
  EXPECT_TRUE(model().ApplyFile());
  EXPECT_EQ(boxes(), std::vector<std::string>{
                         "/boards/top.gbr - import of files in this format is not supported"});
  EXPECT_FALSE(state.Job.Prepared);

  state.Job.Kind = ImportKind::Unknown;
  model().caption.clear();
  EXPECT_FALSE(model().ApplyFile());
  EXPECT_EQ(model().caption, "Tarvex Viewer - Import Parameters");
}

TEST_F(ImportDialogModelTest, ExcellonStageOneReadsScansAndBindsTheDrillLayer) {
  // Recognised as Format Two but without a unit in its header: told, and read as Format One.
  state.Job.SourcePath = folder.write("holes.drl", "M48\nT1C0.02\n%\nT1\nX01Y01\nM30\n");
  state.Job.Kind = ImportKind::ExcellonFormatTwo;
  EXPECT_TRUE(model().ApplyFile());
  EXPECT_EQ(boxes(), std::vector<std::string>{
                         state.Job.SourcePath +
                         " - this is not Format 2 File.\r\nFormat parameters "
                         "and/or tools sizes might need adjustment for correct import"});
  EXPECT_EQ(state.Job.ExcellonText, "M48|T1C0.02|%|T1|X01Y01|M30|");
  EXPECT_EQ(state.Job.Kind, ImportKind::ExcellonFormatOne);
  EXPECT_EQ(model().kindText, std::string(importKindText(ImportKind::ExcellonFormatOne).text));
  EXPECT_EQ(state.DialogLayer, 31);
  EXPECT_EQ(layers[30].Files.at(0).Tools.size(), 1u) << "the binding fills the tool table";
  EXPECT_EQ(model().layerList, std::vector<std::string>{"Drill Template"});
  EXPECT_TRUE(model().FiltersShown);

  // Not Excellon after all: shown as text, no binding.
  state.DialogLayer = 0;
  state.Job.SourcePath = folder.write("notes.drl", "hello\n");
  EXPECT_FALSE(model().ApplyFile());
  EXPECT_EQ(events, std::vector<std::string>{"display file"});
  EXPECT_EQ(state.DialogLayer, 0);

  // An unreadable file is told by the file layer and is not shown as text.
  events.clear();
  state.Job.SourcePath = folder.file("missing.drl");
  EXPECT_FALSE(model().ApplyFile());
  EXPECT_TRUE(events.empty());
}

TEST_F(ImportDialogModelTest, PlotterAndCadStageOneBindOnlyAfterTheReaderScanned) {
  test::ScriptedReader hpgl;
  bool loaded = false;
  hpgl.onScan = [&](ImportJob& job) {
    job.HpglText = "IN;PU0,0;";
    return loaded ? ScanResult::Scanned : ScanResult::Failed;
  };
  session.readers.add(ReaderHpgl, hpgl);
  state.Job.Kind = ImportKind::Hpgl;
  model().filterButtonVisible = true;
  EXPECT_FALSE(model().ApplyFile());
  EXPECT_EQ(events, std::vector<std::string>{"display file"});
  EXPECT_FALSE(state.Job.Prepared);
  EXPECT_FALSE(model().filterButtonVisible);
  EXPECT_TRUE(model().viewButtonVisible);

  loaded = true;
  EXPECT_TRUE(model().ApplyFile());
  EXPECT_EQ(state.Job.HpglText, "IN;PU0,0;");
  EXPECT_EQ(state.DialogLayer, 30);
  EXPECT_FALSE(model().FiltersShown);

  // No DXF reader is built in.
  state.Job.Kind = ImportKind::Dxf;
  EXPECT_FALSE(model().ApplyFile());
  EXPECT_EQ(boxes().size(), 1u);
}

TEST_F(ImportDialogModelTest, ImportFileWritesTheLayerCentresItAndPutsItOnTop) {
  bool fail = false;
  test::ScriptedReader hpgl;
  hpgl.onImport = [&](int32_t& status, const ImportJob&, LayerRecord& layer, LayerFileRecord&) {
    addItem(store, layer.SymbolHandle, line(-350000, -250000, 400000, 400000));
    status = fail ? 1 : 0;
  };
  session.readers.add(ReaderHpgl, hpgl);
  std::vector<std::string> lines;
  model().messageLineChanged = [&](const std::string& text) { lines.push_back(text); };
  state.Job.Kind = ImportKind::Hpgl;
  state.Job.SourcePath = "/boards/edge.plt";
  model().ImportFile();
  EXPECT_TRUE(events.empty()) << "nothing happens before the job is prepared";

  ASSERT_TRUE(model().ApplyFile());
  model().NoCenter = false;
  layers[29].Files[0].OriginalCoordinates = false;
  layers[29].Files[0].OffsetX = 1000;
  layers[2].Active = true;
  model().ImportFile();

  EXPECT_EQ(lines, (std::vector<std::string>{"/boards/edge.plt Importing",
                                             "Board Outline/Cut-outs Import successful"}));
  EXPECT_EQ(layers[29].LastFile, "/boards/edge.plt");
  FrameRect frame;
  ASSERT_NE(store.S_FrameSymbolItems(layers[29].SymbolHandle, -1, frame), 0);
  EXPECT_EQ(std::pair(frame.MinX, frame.MinY), std::pair(-200000 + 1000, -200000));
  EXPECT_EQ(model().LayerOrder[0], 30);
  EXPECT_EQ(model().LayerOrder[29], 1) << "the old first entry takes the imported layer's place";
  for (const LayerRecord& layer : layers)
    EXPECT_EQ(layer.Active, &layer == &layers[29]);
  EXPECT_EQ(events, (std::vector<std::string>{"changed", "check 30", "redraw"}));
  EXPECT_TRUE(model().filterButtonVisible);
  EXPECT_TRUE(model().clearButtonVisible);
  EXPECT_FALSE(model().topmost);

  // A failed import: told in the message line with a beep, LastFile cleared, still on top.
  fail = true;
  events.clear();
  lines.clear();
  model().filterButtonVisible = false;
  layers[29].Files[0].FilterMask = filter::AF_IPP;
  model().ImportFile();
  EXPECT_EQ(lines.back(), "Board Outline/Cut-outs Import failed");
  EXPECT_EQ(reporting.prompts.beeps, 1);
  EXPECT_TRUE(layers[29].LastFile.empty());
  EXPECT_FALSE(model().filterButtonVisible);
  EXPECT_EQ(model().LayerOrder[0], 30);
  // The same file into the same layer again: the view stays where the user had it.
  EXPECT_EQ(events, (std::vector<std::string>{"changed", "check 30", "holes", "redraw kept"}));
  EXPECT_EQ(store.OA_GetCount(store.S_SymbolItemArray(layers[29].SymbolHandle)), 1)
      << "each import replaces the last one";
}

}  // namespace
}  // namespace tvx
