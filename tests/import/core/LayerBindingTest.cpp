#include "import/core/ImportDriver.h"

#include "import/gerber/ImportTestSupport.h"

#include <gtest/gtest.h>

namespace tvx {
namespace {

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
    EXPECT_EQ(state.DialogLayer, 0);
    EXPECT_EQ(state.LayerListIndex, 2);
    EXPECT_TRUE(state.Job.Prepared);
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
      ASSERT_EQ(outline.Files.size(), 1u);
      const LayerFileRecord& file = outline.Files[0];
      EXPECT_EQ(file.ReaderCode, kind == ImportKind::Hpgl ? ReaderHpgl : ReaderDxf);
      EXPECT_EQ(file.FileName, "/boards/outline.dxf");
      EXPECT_EQ(file.Colour, 12);
      EXPECT_EQ(file.OffsetX, 0);
      EXPECT_TRUE(file.Tools.empty());
      EXPECT_EQ(outline.OriginalCoordinates, noCenter);
      EXPECT_EQ(file.OriginalCoordinates, noCenter);
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
    ASSERT_EQ(drill.Files.size(), 1u);
    const LayerFileRecord& file = drill.Files[0];
    EXPECT_EQ(file.ReaderCode, ReaderExcellon);
    EXPECT_EQ(file.Tag, " ");
    EXPECT_EQ(file.FilterMask, 50);
    EXPECT_TRUE(file.Mirror);
    EXPECT_FALSE(file.OriginalCoordinates);
    EXPECT_EQ(file.Tools, (std::vector<ToolEntry>{{1, 80000, 1, 1}}));
    EXPECT_EQ(scans, std::vector<std::string>{state.Job.ExcellonText});
    EXPECT_EQ(state.Job.Kind, ImportKind::ExcellonFormatOne) << "the scan's kind is the job's";
  }

  // Without a drill reader the kind stays; without a listed drill layer nothing is bound.
  readers = ReaderTable{};
  bindKind(ImportKind::ExcellonFormatTwo);
  EXPECT_EQ(state.Job.Kind, ImportKind::ExcellonFormatTwo);
  EXPECT_EQ(state.DialogLayer, 31);
  drill.Listed = false;
  bindKind(ImportKind::ExcellonFormatTwo);
  EXPECT_EQ(state.DialogLayer, 0);
  EXPECT_TRUE(state.LayerChoices.empty());
  EXPECT_TRUE(state.Job.Prepared);
}

}  // namespace
}  // namespace tvx
