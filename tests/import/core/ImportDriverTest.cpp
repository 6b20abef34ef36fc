// The import driver: layer symbols made and replaced, centring, every file through its reader; the
// binding of a file's kind to the layers; the status messages with their icons; and holes placed
// as pads.
#include "import/core/ImportDriver.h"
#include "import/core/ImportJob.h"
#include "import/core/PlaceHole.h"
#include "import/core/ReportStatus.h"
#include "import/core/StatusCodes.h"
#include "import/gerber/ImportTestSupport.h"
#include "import/readers/excellon/ExcellonTestSupport.h"
#include "store/LayerSymbol.h"

#include <gtest/gtest.h>

#include <fstream>
#include <regex>

namespace tvx {
namespace {

using test::drillFile;
using test::makeLayer;
using test::Pad;
using test::padsOf;

using test::addItem;
using test::line;

class ImportDriverTest : public ::testing::Test {
protected:
  int32_t itemCount(const LayerRecord& layer) {
    return store.OA_GetCount(store.S_SymbolItemArray(layer.SymbolHandle));
  }
  static LayerFileRecord fileOf(const std::string& name, int32_t readerCode) {
    LayerFileRecord f;
    f.FileName = name;
    f.ReaderCode = readerCode;
    return f;
  }

  Store store;
  test::Reporting reporting;
  ImportState state;
  ReaderTable readers;
  std::vector<std::string> messageLines;
  void importLayer(int32_t& status, LayerRecord& layer) {
    ImportIntoLayer(status, layer, state, readers, store, reporting.reporter,
                    [this](const std::string& text) { messageLines.push_back(text); });
  }
  std::array<LayerRecord, LayerCount> layers = test::makeLayers();
};

TEST_F(ImportDriverTest, EnsureLayerSymbolMakesReplacesAndEvictsForeignSymbols) {
  LayerRecord& layer = layers[2];
  const SymbolId id = layer.SymbolHandle;
  const MapHandle symbols = store.DB_SymbMap();
  const auto name = [&] {
    return SystemServices::StringFromPointer(store.O_GetName(store.S_Symbol(id)));
  };
  const auto madeBySystem = [&] {
    return store.O_GetStatus(store.S_Symbol(id)) & attr::MadeBySystem;
  };

  EnsureLayerSymbol(store, layer, false);
  ASSERT_NE(store.S_Symbol(id), ObjectHandle::None);
  EXPECT_EQ(name(), "$$GIS_CAT-76503");
  EXPECT_EQ(madeBySystem(), attr::MadeBySystem);
  ASSERT_NE(addItem(store, id, line(0, 0, 10, 10)), ObjectHandle::None);
  EnsureLayerSymbol(store, layer, false);
  EXPECT_EQ(itemCount(layer), 1) << "the layer's own symbol is kept without replace";
  EnsureLayerSymbol(store, layer, true);
  EXPECT_EQ(itemCount(layer), 0);
  EXPECT_EQ(madeBySystem(), attr::MadeBySystem);

  // The names are compared trimmed.
  store.OM_Delete(symbols, id);
  ASSERT_EQ(store.S_CreateSymbol(id, "  $$GIS_CAT-76503 "), id);
  addItem(store, id, line(0, 0, 10, 10));
  EnsureLayerSymbol(store, layer, false);
  EXPECT_EQ(itemCount(layer), 1);

  // Another project's symbol under the layer's id is never written into.
  store.OM_Delete(symbols, id);
  ASSERT_EQ(store.S_CreateSymbol(id, "BOARD"), id);
  addItem(store, id, line(0, 0, 10, 10));
  EnsureLayerSymbol(store, layer, false);
  EXPECT_EQ(name(), "$$GIS_CAT-76503");
  EXPECT_EQ(itemCount(layer), 0);
  EXPECT_EQ(madeBySystem(), attr::MadeBySystem);
}

TEST(CentringTest, LowerLeftCornerGoesToWholeMillimetresFromTheCentre) {
  struct Case {
    FrameRect frame;
    int64_t x, y;
  };
  const Case cases[] = {
      // corner -2.0 mm from the centre on both axes
      {{-350000, -250000, 50000, 150000}, -350000 + 200000, -250000 + 200000},
      // exact halves go away from zero: -1.5 to -2 and -2.5 to -3 (not to the even -2)
      {{0, 0, 300000, 500000}, 200000, 300000},
      // -0.5 to -1, -1.4 to -1
      {{1000, -7000, 101000, 273000}, 101000, 93000},
      // a centre on half a unit; a frame of no height
      {{0, 5, 100001, 5}, 100000, 5},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.frame.MinX);
    const Shift s = centringShift(c.frame, false), kept = centringShift(c.frame, true);
    EXPECT_EQ(std::tuple(s.x, s.y, kept.x, kept.y), std::tuple(c.x, c.y, 0, 0));
  }
}

TEST_F(ImportDriverTest, CentringMovesTheItemsOfHpglAndDxfLayersOnly) {
  for (int32_t code : {ReaderHpgl, ReaderDxf, ReaderExcellon, ReaderGerberArtwork}) {
    for (bool original : {false, true}) {
      SCOPED_TRACE(testing::Message() << "reader " << code << " original " << original);
      LayerRecord& layer = layers[29];
      EnsureLayerSymbol(store, layer, true);
      addItem(store, layer.SymbolHandle, line(-350000, -250000, 400000, 400000));
      addItem(store, layer.SymbolHandle, line(0, 0, 10, 10));
      layer.Files = {fileOf("o.dxf", code)};
      layer.Files[0].OffsetX = 12345;
      layer.Files[0].OffsetY = -678;
      layer.Files[0].OriginalCoordinates = original;

      centreImportedLayer(store, layer, state.Extents);

      const bool moves = code == ReaderHpgl || code == ReaderDxf;
      const int32_t dx = !moves ? 0 : original ? 12345 : 150000 + 12345;
      const int32_t dy = !moves ? 0 : original ? -678 : 50000 - 678;
      ItemRecord r;
      ASSERT_NE(store.I_ReadItem(store.S_SymbolItem(layer.SymbolHandle, 2), r), 0);
      EXPECT_EQ(std::tuple(r.X, r.Y, r.Width), std::tuple(dx, dy, 10));
      FrameRect frame;
      ASSERT_NE(store.S_FrameSymbolItems(layer.SymbolHandle, -1, frame), 0);
      EXPECT_EQ(std::pair(frame.MinX, frame.MinY), std::pair(-350000 + dx, -250000 + dy));
    }
  }
}

TEST_F(ImportDriverTest, EveryFileGoesThroughItsReaderAndTheLoopGoesOnAfterAFailure) {
  state.Job.ExcellonText = "T1|X1Y1|";
  state.Job.HpglText = "PU;";
  std::vector<std::string> calls;
  test::ScriptedReader excellon, hpgl;
  excellon.onImport = [&](int32_t& status, const ImportJob& job, LayerRecord&, LayerFileRecord&) {
    calls.push_back("excellon " + job.ExcellonText + " " + std::to_string(status));
    status = 1;
  };
  hpgl.onImport = [&](int32_t& status, const ImportJob& job, LayerRecord& layer, LayerFileRecord&) {
    calls.push_back("hpgl " + job.HpglText + " " + std::to_string(status));
    addItem(store, layer.SymbolHandle, line(0, 0, 1, 1));
    status = 0;
  };
  readers.add(ReaderExcellon, excellon);
  readers.add(ReaderHpgl, hpgl);
  // No DXF reader is built in: that file is reported and fails.
  LayerRecord& layer = layers[29];
  layer.Files = {fileOf("a.drl", ReaderExcellon), fileOf("b.plt", ReaderHpgl),
                 fileOf("c.dxf", ReaderDxf), fileOf("d.xyz", 7)};
  EnsureLayerSymbol(store, layer, true);
  addItem(store, layer.SymbolHandle, line(5, 5, 1, 1));

  int32_t status = 0;
  importLayer(status, layer);
  EXPECT_EQ(status, 1);
  EXPECT_EQ(calls, (std::vector<std::string>{"excellon T1|X1Y1| 0", "hpgl PU; 1"}));
  EXPECT_EQ(messageLines, (std::vector<std::string>{"a.drl Importing", "b.plt Importing",
                                                    "c.dxf Importing", "d.xyz Importing"}));
  ASSERT_EQ(reporting.prompts.shown.size(), 1u);
  EXPECT_EQ(reporting.prompts.shown[0].prompt,
            "c.dxf - import of files in this format is not supported");
  EXPECT_EQ(itemCount(layer), 1) << "import mode 0 clears the layer first";

  layer.ImportMode = 1;
  layer.Files = {fileOf("b.plt", ReaderHpgl)};
  importLayer(status, layer);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(itemCount(layer), 2) << "append keeps the earlier import";
}

class LayerBindingTest : public ::testing::Test {
protected:
  void bindKind(ImportKind kind, bool noCenter = true) {
    state.Job.Kind = kind;
    bindLayers(state, layers, noCenter, readers);
  }
  std::vector<int32_t> choices() const {
    std::vector<int32_t> numbers;
    for (const LayerChoice& c : state.LayerChoices)
      numbers.push_back(c.LayerNumber);
    return numbers;
  }
  // A layer left as an earlier import left it, to see what binding renews.
  void dirty(LayerRecord& layer) {
    layer.Files = {LayerFileRecord{}, LayerFileRecord{}};
    layer.Files[0].OffsetX = 500;
    layer.Files[0].Tools = {{1, 2, 3, 4}};
    layer.Mirror = true;
  }

  ImportState state;
  ReaderTable readers;
  std::array<LayerRecord, LayerCount> layers = test::makeLayers();
};

TEST_F(LayerBindingTest, GerberKindsOfferTheListedLayersAndBindNone) {
  layers[6].Listed = true;   // an inner layer the user has listed
  layers[1].Listed = false;  // and a hidden one
  for (ImportKind kind : {ImportKind::ArtworkRS274X, ImportKind::ArtworkRS274D,
                          ImportKind::DrillingRS274X, ImportKind::DrillingRS274D}) {
    SCOPED_TRACE(static_cast<int>(kind));
    state.DialogLayer = 5;
    state.LayerListIndex = 2;
    state.Job.Prepared = false;
    bindKind(kind);
    EXPECT_EQ(choices(), (std::vector<int32_t>{1, 3, 4, 5, 6, 7, 30, 31}));
    EXPECT_EQ(state.LayerChoices[6].LayerName, "Board Outline/Cut-outs");
    EXPECT_EQ(std::tuple(state.DialogLayer, state.LayerListIndex, state.Job.Prepared),
              std::tuple(0, 2, true));
  }
}

TEST_F(LayerBindingTest, HpglAndDxfAreBoundToTheOutlineAtOnce) {
  state.Job.SourcePath = "/boards/outline.dxf";
  layers[29].Listed = false;  // bound whether listed or not
  layers[29].ColourNumber = 12;
  for (ImportKind kind : {ImportKind::Hpgl, ImportKind::Dxf}) {
    for (bool noCenter : {true, false}) {
      SCOPED_TRACE(testing::Message() << static_cast<int>(kind) << " " << noCenter);
      dirty(layers[29]);
      state.LayerListIndex = 3;
      bindKind(kind, noCenter);
      const LayerRecord& outline = layers[29];
      EXPECT_EQ(state.DialogLayer, 30);
      EXPECT_EQ(state.CurrentSymbol, -76530);
      EXPECT_EQ(state.LayerListIndex, 0);
      // HPGL goes only into the outline; DXF may be moved to any listed artwork layer.
      const std::vector<int32_t> offered = kind == ImportKind::Hpgl
                                               ? std::vector<int32_t>{30}
                                               : std::vector<int32_t>{30, 1, 2, 3, 4, 5, 6};
      EXPECT_EQ(choices(), offered);
      LayerFileRecord file;
      file.FileName = "/boards/outline.dxf";
      file.Colour = 12;
      file.ReaderCode = kind == ImportKind::Hpgl ? ReaderHpgl : ReaderDxf;
      file.OriginalCoordinates = noCenter;
      EXPECT_EQ(outline.Files, std::vector<LayerFileRecord>{file});
      EXPECT_EQ(outline.OriginalCoordinates, noCenter);
      EXPECT_TRUE(state.Job.Prepared);
    }
  }
}

TEST_F(LayerBindingTest, DrillFilesAreBoundToTheDrillLayerAndScanned) {
  state.Job.ExcellonText = "M48|INCH|T1C0.8|%|T1|X1Y1|";
  std::vector<std::string> scans;
  test::ScriptedReader excellon;
  excellon.onPrepare = [&](ImportJob& job, LayerFileRecord& file) {
    scans.push_back(job.ExcellonText);
    file.Tools = {{1, 80000, 1, 1}};
    job.Kind = ImportKind::ExcellonFormatOne;
  };
  readers.add(ReaderExcellon, excellon);
  LayerRecord& drill = layers[30];
  for (ImportKind kind : {ImportKind::ExcellonFormatTwo, ImportKind::ExcellonFormatOne}) {
    SCOPED_TRACE(static_cast<int>(kind));
    scans.clear();
    dirty(drill);
    bindKind(kind, false);
    EXPECT_EQ(state.DialogLayer, 31);
    EXPECT_EQ(choices(), std::vector<int32_t>{31});
    LayerFileRecord file;
    file.ReaderCode = ReaderExcellon;
    file.FilterMask = 50;
    file.Colour = drill.ColourNumber;
    file.Mirror = true;
    file.Tools = {{1, 80000, 1, 1}};
    EXPECT_EQ(drill.Files, std::vector<LayerFileRecord>{file});
    EXPECT_EQ(scans, std::vector<std::string>{state.Job.ExcellonText});
    EXPECT_EQ(state.Job.Kind, ImportKind::ExcellonFormatOne) << "the scan's kind is the job's";
  }

  // Without a drill reader the kind stays (an unlisted drill layer: ImportSessionTest).
  readers = ReaderTable{};
  bindKind(ImportKind::ExcellonFormatTwo);
  EXPECT_EQ(std::pair(state.Job.Kind, state.DialogLayer),
            std::pair(ImportKind::ExcellonFormatTwo, 31));
}

constexpr int Ex = msgbox::Exclamation;
constexpr int Cr = msgbox::Critical;

struct StatusCase {
  int32_t status;
  int icon;
  const char* defaults;  // the text with an empty catalogue
  const char* byId;      // the text when every id's entry reads "<id>"
};

// Name is "F.GBR" and the format 3.4 throughout: one row for each way a text is put together.
const StatusCase Cases[] = {
    {StatusReported, Cr, "Range Error - format:3.4", "<62379>3.4"},
    {StatusIncorrectFormat, Ex, "Artwork File - Incorrect format", "<62380>"},
    {StatusSaveFailed, Ex, "Save of F.GBR failed", "<62383>F.GBR<62384>"},
    {StatusExtents, 0,
     "Coordinates outside limits\r\nCheck parameters for F.GBR file and import again.",
     "<62385>\r\n<62389>F.GBR <62390>"},
    {StatusNotSupported, Ex, "F.GBR - import of files in this format is not supported",
     "F.GBR - <62391>"},
    {StatusCompleted, 0, "F.GBR Completed", "F.GBR <62399>"},
    // Both texts of StatusExtentsTruncated stand under the id "loc", which no catalogue holds.
    {StatusExtentsTruncated, Ex,
     "Drawing extents are out of range.\r\nF.GBR\r\nImport may be truncated into supported range.",
     "Drawing extents are out of range.\r\nF.GBR\r\nImport may be truncated into supported range."},
    {95, Cr, "Unknown Error", "<62403>"},
};

// A catalogue in which every id used by the status table reads as itself in angle brackets.
void writeMarkerCatalogue(const std::string& folder) {
  std::ofstream out(folder + "/GBRVIEWER.MSG");
  std::regex idPattern("<([0-9]+)>");
  for (const StatusCase& c : Cases) {
    std::string text = c.byId;
    for (std::sregex_iterator it(text.begin(), text.end(), idPattern), end; it != end; ++it)
      out << (*it)[1] << "\t<" << (*it)[1] << ">\n";
  }
}

TEST(ReportStatusTest, EveryCodeHasItsTextAndIcon) {
  test::Reporting r;
  r.digits = {3, 4};
  for (const StatusCase& c : Cases) {
    SCOPED_TRACE(c.status);
    StatusMessage m = statusMessage(r.services, c.status, "F.GBR", r.digits);
    EXPECT_EQ(m.text, c.defaults);
    EXPECT_EQ(m.icon, c.icon);
  }
  test::TempDir dir;
  writeMarkerCatalogue(dir.path().string());
  r.services.loadCatalogue(dir.path().string());
  for (const StatusCase& c : Cases) {
    SCOPED_TRACE(c.status);
    EXPECT_EQ(statusMessage(r.services, c.status, "F.GBR", r.digits).text, c.byId);
  }
}

TEST(ReportStatusTest, BoxIsSystemModalWithBothTitles) {
  test::Reporting r;
  r.titles.dialogTitle = "Import Parameters";
  r.digits = {2, 5};
  r.reporter.ReportStatus(StatusReported, "");
  r.titles.dialogTitle.clear();
  r.reporter.ReportStatus(StatusCompleted, "Layer 3");
  r.reporter.ReportStatus(StatusIncorrectFormat, "");
  ASSERT_EQ(r.prompts.shown.size(), 3u);
  EXPECT_EQ(r.prompts.shown[0].prompt, "Range Error - format:2.5");
  EXPECT_EQ(r.prompts.shown[0].flags, msgbox::Critical | msgbox::SystemModal);
  EXPECT_EQ(r.prompts.shown[0].title, "Tarvex Viewer (Import Parameters)");
  EXPECT_EQ(r.prompts.shown[1].flags, msgbox::SystemModal);
  EXPECT_EQ(r.prompts.shown[1].title, "Tarvex Viewer");
  EXPECT_EQ(r.prompts.shown[2].flags, msgbox::Exclamation | msgbox::SystemModal);
}

// Holes as pads: the pad stack of each tool code with its marker by PadKind, one pad per point, the
// drill layer's dropping of tools without a size, and hole sizes that stay with the layer.
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
