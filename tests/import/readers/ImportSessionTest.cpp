// A drill file from its path to the drill layer without a window: recognition, the stage-one scan
// and binding, the import, and every way a file can fail on the way.
#include "import/readers/excellon/ExcellonTestSupport.h"

namespace tvx {
namespace {

using test::Pad;

constexpr int32_t DrillLayer = 31;

std::string repeated(const std::string& text, size_t times) {
  std::string out;
  for (size_t i = 0; i < times; ++i)
    out += text;
  return out;
}

struct ImportSessionTest : ::testing::Test, test::ImportWorld {
  LayerRecord& drill() { return layer(DrillLayer); }
  std::vector<Pad> drillPads() { return pads(DrillLayer); }
};

constexpr const char* FormatTwo = "M48\r\n; a comment\r\nINCH,TZ\r\nT1C0.02\r\nT2C0.04\r\n%\r\n"
                                  "T1\r\nX1000Y1000\r\nX2000Y2000\r\nT2\r\nX3000Y3000\r\nM30\r\n";

TEST_F(ImportSessionTest, AFormatTwoFileGoesIntoTheDrillLayer) {
  const std::string path = write("board.txt", FormatTwo);
  const ImportResult result = run(path);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.kind, ImportKind::ExcellonFormatTwo);
  EXPECT_EQ(result.layer, DrillLayer);
  EXPECT_TRUE(boxes().empty());
  // Inches, 2.4, right-aligned: "1000" is 0.1 inch = 254000 units. Own coordinates are kept.
  EXPECT_EQ(drillPads(),
            (std::vector<Pad>{{254000, 254000, 1}, {508000, 508000, 1}, {762000, 762000, 2}}));
  EXPECT_EQ(result.scanned.MinX, 254000);
  EXPECT_EQ(result.scanned.MaxY, 762000);
  const LayerFileRecord& file = drill().Files.at(0);
  EXPECT_EQ(file.FileName, path);
  EXPECT_EQ(file.ReaderCode, ReaderExcellon);
  EXPECT_EQ(file.Tools, (std::vector<ToolEntry>{{1, 50800, 1, 2}, {2, 101600, 1, 1}}));
  EXPECT_EQ(drill().LastFile, path);
  EXPECT_EQ(session->excellonFormat, (ExcellonFormat{0, 2, 4, 1}));

  // Without NoCenter the holes are centred on the origin; the layer is cleared first.
  ImportOptions centred;
  centred.noCenter = false;
  EXPECT_EQ(run(path, centred).status, 0);
  EXPECT_EQ(drillPads(), (std::vector<Pad>{{-254000, -254000, 1}, {0, 0, 1}, {254000, 254000, 2}}));
}

TEST_F(ImportSessionTest, AFormatTwoFileThatScansAsFormatOneIsReportedAndImported) {
  // "M71" makes recognition say Format Two; without a header unit the scan says Format One.
  const ImportResult result = run(write("m71.drl", "M71\nT1C0.5\nT1\nX1000Y1000\nX2000Y2000\n"));
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.kind, ImportKind::ExcellonFormatOne);
  ASSERT_EQ(boxes().size(), 1u);
  EXPECT_NE(boxes()[0].find("m71.drl - this is not Format 2 File."), std::string::npos);
  // The unit codes left millimetres, 3.3; the stored zeros mode is left-aligned: 100 and 200 mm.
  EXPECT_EQ(drillPads(), (std::vector<Pad>{{10000000, 10000000, 1}, {20000000, 20000000, 1}}));
}

TEST_F(ImportSessionTest, AChosenKindSkipsRecognition) {
  // Recognition needs a call of tool one; the user may still choose Excellon.
  const std::string path = write("t3.drl", "M48\nMETRIC,TZ\nT03C0.8\n%\nT03\nX2550Y80000\n");
  EXPECT_EQ(run(path).status, 1);
  EXPECT_EQ(boxes(),
            std::vector<std::string>{path + " - import of files in this format is not supported"});
  EXPECT_TRUE(drillPads().empty());

  ImportOptions chosen;
  chosen.kind = ImportKind::ExcellonFormatTwo;
  const ImportResult result = run(path, chosen);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.kind, ImportKind::ExcellonFormatTwo);
  EXPECT_EQ(drillPads(), (std::vector<Pad>{{255000, 8000000, 3}}));
}

TEST_F(ImportSessionTest, AFileThatCannotBeReadLeavesTheLayerAsItWas) {
  ASSERT_EQ(run(write("board.txt", FormatTwo)).status, 0);
  const std::string missing = folder.file("missing.drl");
  const ImportResult result = run(missing);
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.layer, 0);
  EXPECT_EQ(boxes(), (std::vector<std::string>{
                         "Can't read file: " + missing,
                         missing + " - import of files in this format is not supported"}));
  EXPECT_EQ(drillPads().size(), 3u);
  EXPECT_EQ(session->state.Job.SourcePath, missing);
  EXPECT_TRUE(session->state.Job.ExcellonText.empty());  // nothing of the last file's scan stays
}

TEST_F(ImportSessionTest, ACoordinateBeyondTheWorldFailsTheImport) {
  const ImportResult result =
      run(write("far.drl", "M48\nMETRIC\nT1C1\n%\nT1\nX1.0Y1.0\nX99999999999.0Y1.0\nX3.0Y3.0\n"));
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.layer, DrillLayer);
  ASSERT_EQ(boxes().size(), 1u);
  EXPECT_EQ(boxes()[0],
            "Coordinates outside limits\r\nCheck parameters for GERBER file and import again.");
  EXPECT_EQ(drillPads(), (std::vector<Pad>{{100000, 100000, 1}}));
  EXPECT_EQ(drill().LastFile, "");
}

TEST_F(ImportSessionTest, WithoutAListedDrillLayerNothingIsBound) {
  drill().Listed = false;
  const ImportResult result = run(write("board.txt", FormatTwo));
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.layer, 0);
  EXPECT_EQ(boxes(), std::vector<std::string>{folder.file("board.txt") + " No available layers"});
  EXPECT_TRUE(drillPads().empty());
}

TEST_F(ImportSessionTest, BadInputEndsWithAStatusNeverACrash) {
  struct Case {
    const char* name;
    std::string text;
    int32_t status;
    size_t pads;
  } cases[] = {
      {"a line of five million digits", "T1C0.1\nT1\nX" + std::string(5'000'000, '1') + "Y1\n", 0,
       1},
      {"tools that never get a size", "T1\nX01Y01\nT7\nX02Y02\n", 0, 0},
      {"a tool used before its size", "T1\nX01Y01\nT1C0.05\nX09Y09\n", 0, 2},
      {"coordinates without a tool", "X01Y01\nT1C0.05\nT1\nX09Y09\n", 0, 1},
      {"an absurd coordinate", "T1C0.5\nT1\nX99999999999999Y01\n", 1, 0},
      // A pad that covers the world: every later hole lies on it.
      {"an absurd tool size", "T1C99999999999\nT1\nX01Y01\nX02Y02\n", 0, 1},
      {"an absurd tool number",
       "T1C0.1\nT99999999999999C0.2\nT1\nX01Y01\nT99999999999999\nX09Y09\n", 0, 2},
      {"many ends of programs", repeated("M30\n", 200'000) + "T1C0.1\nT1\nX01Y01\n", 0, 1},
      {"binary junk", std::string("\x01\x02T1\xffX1Y1\x00", 10), 1, 0},
      {"an empty file", "", 1, 0},
      // Gerber goes into the first artwork layer offered, never the drill layer.
      {"a Gerber file", "%FSLAX24Y24*%\n%ADD10C,0.1*%\nD10*\nX0Y0D03*\n", 0, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const ImportResult result = run(write("bad.drl", c.text));
    EXPECT_EQ(result.status, c.status);
    EXPECT_EQ(drillPads().size(), c.pads);
    EnsureLayerSymbol(kernel->store, drill(), true);
  }
}

}  // namespace
}  // namespace tvx
