#include "import/core/ImportDriver.h"
#include "store/LayerSymbol.h"

#include "import/gerber/ImportTestSupport.h"

#include <gtest/gtest.h>

namespace tvx {
namespace {

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
  ASSERT_NE(store.S_Symbol(id), 0);
  EXPECT_EQ(name(), "$$GIS_CAT-76503");
  EXPECT_EQ(madeBySystem(), attr::MadeBySystem);
  ASSERT_NE(addItem(store, id, line(0, 0, 10, 10)), 0);
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

}  // namespace
}  // namespace tvx
