// The import window's stages over the session with scripted readers where a format has none: stage
// one of each kind of file (scan, layers offered, binding), and the import into the bound layer
// with its centring and order.
#include "import/readers/window/ImportDialogModel.h"

#include "import/readers/excellon/ExcellonTestSupport.h"

#include <memory>

namespace tvx {
namespace {

using test::addItem;
using test::line;

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
    EXPECT_EQ(model().kindText, std::string(importKindText(kind).text));
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
