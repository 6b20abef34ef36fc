// The Excellon scan: the header's format, the tool table and its hole counts, program offsets,
// extents, the kind it returns; and the coordinate decoder.
// Reading a drill file into blocks, and the import of its holes: placement, mirror, modal
// registers, the tool table of the dialog, and the stop at a coordinate beyond the world.
// Every drill file of the shared corpus goes from its path into the drill layer, and every hole the
// scan counted is accounted for by a pad, or by a pad that already lay on its point.
#include "common/FileLayer.h"
#include "import/readers/excellon/ExcellonTestSupport.h"
#include "support/CorpusPath.h"

#include <array>
#include <cmath>
#include <fstream>
#include <map>
#include <numeric>

namespace tvx {
namespace {

using test::ExcellonTest;

constexpr double Inch = 2540000.0;  // store units
constexpr int32_t Mm = 100000;

using ScanTest = ExcellonTest;

TEST_F(ScanTest, TheHeaderSetsTheFormat) {
  struct Case {
    const char* text;
    ExcellonFormat before;
    ExcellonFormat after;
    int32_t kind;
    bool readHeader = true;
  } cases[] = {
      // "LZ" wins over "TZ" when the header has both.
      {"M48|INCH,LZ,TZ|T1C0.02|%|T1|X01Y01|", {1, 3, 3, 1}, {0, 2, 4, 0}, 3},
      {"M48|INCH,TZ|T1C0.02|%|T1|X01Y01|", {1, 3, 3, 0}, {0, 2, 4, 1}, 3},
      // "INCH" behind the header is not seen; "M72" still gives inches, but not Format Two.
      {"M48|T1C0.02|%|INCH|M72|T1|X01Y01|", {1, 3, 3, 0}, {0, 2, 4, 0}, 4},
      {"T1C0.5|M71|T1|X1Y1|", {0, 2, 4, 0}, {1, 3, 3, 0}, 4},
      // "METRIC" and the format on its line.
      {"M48|METRIC|T1C0.5|%|T1|X1Y1|", {0, 2, 4, 0}, {1, 3, 3, 0}, 3},
      {"M48|METRIC,0000.00|T1C0.5|%|T1|X1Y1|", {0, 2, 4, 0}, {1, 4, 2, 0}, 3},
      {"M48|METRIC,TZ,000.000|T1C0.5|%|T1|X1Y1|", {0, 2, 4, 0}, {1, 3, 3, 1}, 3},
      // Without "%" the header ends at "M95"; a line that ends behind it is not examined.
      {"M48|T1C0.5|METRIC,0000.00M95,9|T1|X1Y1|", {0, 2, 4, 0}, {1, 3, 3, 0}, 3},
      // A header without an end is no header, but its unit line still states the unit.
      {"M48|INCH|T1C0.02|T1|X1Y1|", {1, 3, 3, 1}, {0, 2, 4, 1}, 4},
      // Tools without a size: not Format Two.
      {"M48|INCH|%|T1|X1Y1|", {1, 3, 3, 0}, {0, 2, 4, 0}, 4},
      // Without reading the header the format stays and the kind is Format One.
      {"M48|INCH,LZ|T1C0.02|%|M72|T1|X01Y01|", {1, 3, 3, 1}, {1, 3, 3, 1}, 4, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    format = c.before;
    std::vector<ToolEntry> tools;
    EXPECT_EQ(reader.ScanExcellonText(c.text, tools, c.readHeader, false), c.kind);
    EXPECT_EQ(format, c.after);
  }
}

TEST_F(ScanTest, TextsWithoutToolsOrCoordinatesAreNoExcellon) {
  for (const char* text : {"", "M48|INCH|T1C0.5|%|T1|", "X1Y1|X2Y2|", "G04 PLOT*|X0Y0D02*|",
                           "\x01\xff|T|X|Y|", "|||||"}) {
    SCOPED_TRACE(text);
    std::vector<ToolEntry> tools;
    EXPECT_EQ(reader.ScanExcellonText(text, tools, true, false), 0);
  }
}

TEST_F(ScanTest, ToolTableAndHoleCounts) {
  format = {};
  std::vector<ToolEntry> tools{{9, 1, 1, 1}};  // a table of an earlier scan goes
  // Coordinates before the first tool, and blocks without X or Y, count no hole; a block with
  // only X or only Y does. "F" and "S" close the open field; "C" without "T" sets nothing.
  const std::string text = "X1Y1|M48|METRIC|T01C0.8|T2F00S00C0.032|C5.0|%|T1|X2Y2|Y3|G05|T3|X4|"
                           "T2|X5Y5|X6Y6|T1|X7Y7|";
  EXPECT_EQ(reader.ScanExcellonText(text, tools, true, false), 3);
  EXPECT_EQ(tools, (std::vector<ToolEntry>{{1, 80000, 1, 3}, {2, 3200, 1, 2}, {3, 0, 1, 1}}));
}

TEST_F(ScanTest, KeptToolsKeepTheirSizesAndAreRecounted) {
  format = {1, 3, 3, 0};
  // The user's table: tool 2 with a size of its own and another hole kind.
  std::vector<ToolEntry> tools{{2, 12345, 7, 99}, {5, 500, 1, 4}};
  EXPECT_EQ(reader.ScanExcellonText("T1C0.8|T2C0.9|X1Y1|T1|X2Y2|X3Y3|", tools, false, true), 4);
  EXPECT_EQ(tools, (std::vector<ToolEntry>{{2, 12345, 7, 1}, {5, 500, 1, 0}, {1, 0, 1, 2}}));
}

TEST_F(ScanTest, ToolsBehindAnEndOfProgramAreCountedApart) {
  format = {1, 3, 3, 0};
  std::vector<ToolEntry> tools;
  // "M30" and "M030" end a program, "M300" does not. The third program drills with tool 1 of the
  // first without defining it again, so tool 201 takes its size.
  const std::string text = "T1C0.1|T2C0.2|X1Y1|M30|T02C0.3|X2Y2|M300|T02|X3Y3|M030|T1|X4Y4|";
  reader.ScanExcellonText(text, tools, false, false);
  EXPECT_EQ(tools,
            (std::vector<ToolEntry>{
                {1, 10000, 1, 0}, {2, 20000, 1, 1}, {102, 30000, 1, 2}, {201, 10000, 1, 1}}));
}

TEST_F(ScanTest, ExtentsCoverEveryCoordinateAndStartAtTheWorldLimits) {
  format = {1, 3, 3, 0};
  std::vector<ToolEntry> tools;
  // A number with a point ignores the digit format: "X1.5" beside "X1500" (LZ, 3.3: 150 mm).
  reader.ScanExcellonText("T1C1|X1.5Y-2.0|X1500|Y-0.5|", tools, false, false);
  const auto corners = [this] {
    return std::array{extents.MinX, extents.MinY, extents.MaxX, extents.MaxY};
  };
  EXPECT_EQ(corners(), (std::array{1.5 * Mm, -2.0 * Mm, 150.0 * Mm, -0.5 * Mm}));
  reader.ScanExcellonText("T1C1|", tools, false, false);
  EXPECT_EQ(corners(), (std::array{WorldLimit, WorldLimit, -WorldLimit, -WorldLimit}));
}

using DecodeTest = ExcellonTest;

TEST_F(DecodeTest, DigitsArePaddedByTheZerosModeAndScaledByTheFormat) {
  struct Case {
    ExcellonFormat format;
    const char* digits;
    double expected;   // store units
    const char* left;  // what the decoder leaves of the string
  } cases[] = {
      {{0, 2, 4, 0}, "0123", 1.23 * Inch, "0123"},    // left-aligned: "012300"
      {{0, 2, 4, 1}, "0123", 0.0123 * Inch, "0123"},  // right-aligned: "000123"
      {{0, 2, 4, 0}, "-1234", -12.34 * Inch, "1234"},
      {{0, 2, 4, 0}, "+1234", 12.34 * Inch, "1234"},
      {{0, 2, 4, 1}, "12-34", -0.0034 * Inch, "34"},          // a sign cuts what stands before it
      {{0, 2, 4, 0}, "1234567", 123.4567 * Inch, "1234567"},  // more digits than the format
      {{0, 2, 4, 1}, "1234567", 123.4567 * Inch, "1234567"},
      {{1, 3, 3, 0}, "1", 100 * Mm, "1"},
      {{1, 3, 3, 1}, "1", 0.001 * Mm, "1"},
      {{1, 4, 2, 1}, "", 0.0, ""},
      {{0, 2, 4, 2}, "12", 0.0012 * Inch, "12"},  // no zeros mode: no padding
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.digits) + " in " + std::to_string(c.format.XYFormB) + "." +
                 std::to_string(c.format.XYFormA) + " zeros " + std::to_string(c.format.OMZeros));
    format = c.format;
    std::string digits = c.digits;
    EXPECT_NEAR(reader.DecodeExcellonNumber(digits), c.expected, 1e-6);
    EXPECT_EQ(digits, c.left);
  }
}

TEST_F(DecodeTest, AbsurdNumbersAndFormatsGiveFiniteValues) {
  format = {0, 2, 4, 0};
  std::string digits = "99999999999999";
  EXPECT_NEAR(reader.DecodeExcellonNumber(digits), 9999999999.9999 * Inch, 1e3);
  digits.assign(400, '9');  // beyond a double: reads as 0
  EXPECT_EQ(reader.DecodeExcellonNumber(digits), 0.0);

  // A digit count edited by hand into the thousands.
  for (const int32_t zeros : {0, 1}) {
    format = {0, 2, 5000, zeros};
    digits = "5";
    EXPECT_EQ(reader.DecodeExcellonNumber(digits), 0.0) << zeros;
  }
  format = {1, 600, 0, 1};
  digits = "7";
  EXPECT_DOUBLE_EQ(reader.DecodeExcellonNumber(digits), 7 * Mm);
}

using test::drillFile;
using test::makeLayer;
using test::Pad;
using test::padsOf;

using test::ImportExcellonTest;

TEST_F(ImportExcellonTest, HolesAreCentredMovedByTheOffsetsAndMirrored) {
  // The pads of "X10.0Y20.0" and "X30.0Y60.0", millimetres.
  struct Case {
    bool original, mirror;
    int32_t offsetX, offsetY;
    int32_t x1, y1, x2, y2;
  } cases[] = {
      {false, false, 0, 0, -10 * Mm, -20 * Mm, 10 * Mm, 20 * Mm},  // centred
      // Centred, moved, mirrored: the mirror axis of a centred file is its offset.
      {false, true, 500, 700, 10 * Mm + 500, -20 * Mm + 700, -10 * Mm + 500, 20 * Mm + 700},
      {true, false, 0, 0, 10 * Mm, 20 * Mm, 30 * Mm, 60 * Mm},  // own coordinates
      // Own coordinates, mirrored: the axis is still half the width, x becomes 20 mm - x.
      {true, true, 0, 0, 10 * Mm, 20 * Mm, -10 * Mm, 60 * Mm},
      {true, false, -3, 4, 10 * Mm - 3, 20 * Mm + 4, 30 * Mm - 3, 60 * Mm + 4},  // and moved
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message()
                 << "original " << c.original << " mirror " << c.mirror << " offset " << c.offsetX);
    EnsureLayerSymbol(store, drill, true);
    LayerFileRecord file = drillFile();
    file.OriginalCoordinates = c.original;
    file.Mirror = c.mirror;
    file.OffsetX = c.offsetX;
    file.OffsetY = c.offsetY;
    EXPECT_EQ(import("T1C1|X10.0Y20.0|X30.0Y60.0|", file, 1), 0);  // an inherited failure goes
    EXPECT_EQ(padsOf(store, drill), (std::vector<Pad>{{c.x1, c.y1, 1}, {c.x2, c.y2, 1}}));
    // Kept coordinates leave the minima at 0 for the ones that follow.
    EXPECT_EQ(extents.MinX, c.original ? 0.0 : 10.0 * Mm);
    EXPECT_EQ(extents.MinY, c.original ? 0.0 : 20.0 * Mm);
  }
}

TEST_F(ImportExcellonTest, CoordinateRegistersAreModalEvenAcrossFiles) {
  LayerFileRecord file = drillFile();
  EXPECT_EQ(import("T1C1|X1.0Y2.0|X3.0|Y4.0|", file), 0);
  EXPECT_EQ(padsOf(store, drill),
            (std::vector<Pad>{{1 * Mm, 2 * Mm, 1}, {3 * Mm, 2 * Mm, 1}, {3 * Mm, 4 * Mm, 1}}));
  // The next file gives no Y yet: the last file's Y stands.
  LayerFileRecord next = drillFile();
  EXPECT_EQ(import("T1C1|X5.0|", next), 0);
  EXPECT_EQ(padsOf(store, drill).back(), (Pad{5 * Mm, 4 * Mm, 1}));
}

TEST_F(ImportExcellonTest, ACoordinateBeyondTheWorldStopsTheImportAndKeepsWhatWasPlaced) {
  LayerFileRecord file = drillFile();
  EXPECT_EQ(import("T1C1|X1.0Y1.0|X2.0Y2.0|X99999999999999|X3.0Y3.0|", file), 1);
  EXPECT_EQ(padsOf(store, drill), (std::vector<Pad>{{1 * Mm, 1 * Mm, 1}, {2 * Mm, 2 * Mm, 1}}));
  ASSERT_EQ(boxes().size(), 1u);
  EXPECT_NE(boxes()[0].find("Coordinates outside limits"), std::string::npos);

  // Exactly at the limit is inside.
  reporting.prompts.shown.clear();
  EnsureLayerSymbol(store, drill, true);
  LayerFileRecord edge = drillFile();
  EXPECT_EQ(import("T1C1|X2200.0Y-2200.0|", edge), 0);
  EXPECT_EQ(padsOf(store, drill), (std::vector<Pad>{{220000000, -220000000, 1}}));
  EXPECT_TRUE(boxes().empty());
}

TEST_F(ImportExcellonTest, TheDialogsToolSizesReachThePads) {
  // The user gave tool 1 its own size; tool 2 is new to the table and has none.
  LayerFileRecord file = drillFile({{1, 12345, 1, 0}});
  const std::string text = "T1C0.5|T2C0.6|X1.0Y1.0|T2|X2.0Y2.0|T1|X1.0Y1.0|";
  int32_t status = 0;
  reader.ImportExcellon(status, text, drill, file);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(file.Tools, (std::vector<ToolEntry>{{1, 12345, 1, 1}, {2, 0, 1, 2}}));
  EXPECT_EQ(padsOf(store, drill), (std::vector<Pad>{{1 * Mm, 1 * Mm, 1}}));
  EXPECT_EQ(reader.LastImport, (HoleTally{1, 0, 0, 2, 0}));
  PadStackRecord hole;
  store.S_ReadPadStack(store.OM_Object(store.S_SymbolPadStackMap(drill.SymbolHandle), 1), hole);
  EXPECT_EQ(hole.HoleDiameter, 12344);  // twice the radius 6172.5 rounded to even
}

TEST_F(ImportExcellonTest, HolesWithoutAKnownToolGoOnlyIntoOtherLayers) {
  // Coordinates before any tool, and a tool that is used but never given a size.
  const std::string text = "X1.0Y1.0|T5|X2.0Y2.0|T1C1|X3.0Y3.0|";
  LayerFileRecord file = drillFile();
  EXPECT_EQ(import(text, file), 0);
  EXPECT_EQ(padsOf(store, drill), (std::vector<Pad>{{3 * Mm, 3 * Mm, 1}}));
  EXPECT_EQ(reader.LastImport.WithoutSize, 2);

  LayerRecord artwork = makeLayer(store, 3, 5);
  LayerFileRecord other = drillFile();
  int32_t status = 0;
  reader.ScanExcellonText(text, other.Tools, false, false);
  reader.ImportExcellon(status, text, artwork, other);
  EXPECT_EQ(padsOf(store, artwork),
            (std::vector<Pad>{{1 * Mm, 1 * Mm, 0}, {2 * Mm, 2 * Mm, 5}, {3 * Mm, 3 * Mm, 1}}));
}

class ReadExcellonTextTest : public ::testing::Test {
protected:
  test::TempDir folder;
  test::Reporting reporting;
  FileLayer files{reporting.services, &reporting.prompts};
};

TEST_F(ReadExcellonTextTest, LinesBecomeUpperCaseBlocksWithoutComments) {
  std::string text;
  std::vector<std::string> lines;
  const std::string path = folder.write(
      "drill.txt",
      "m48\r\n  inch,lz ; comment\r\n\r\n;only a comment\n\tT1c0.02\rx1y1  \n   \nM30");
  EXPECT_TRUE(ReadExcellonText(files, reporting.services, path, text,
                               [&](const std::string& line) { lines.push_back(line); }));
  EXPECT_EQ(text, "M48|INCH,LZ |T1C0.02|X1Y1|M30|");
  EXPECT_EQ(lines, std::vector<std::string>{path + " Processing"});
  EXPECT_TRUE(reporting.prompts.shown.empty());
  EXPECT_EQ(files.openCount(), 0);

  EXPECT_TRUE(ReadExcellonText(files, reporting.services, folder.write("drill.txt", ""), text));
  EXPECT_EQ(text, "");
  const std::string longLine(3'000'000, '7');
  EXPECT_TRUE(
      ReadExcellonText(files, reporting.services, folder.write("drill.txt", "x" + longLine), text));
  EXPECT_EQ(text, "X" + longLine + "|");
}

TEST_F(ReadExcellonTextTest, AFileThatCannotBeReadGivesFalseAndAMessage) {
  for (const std::string& path : {folder.file("missing.drl"), folder.path().string()}) {
    SCOPED_TRACE(path);
    reporting.prompts.shown.clear();
    std::string text = "stale";
    EXPECT_FALSE(ReadExcellonText(files, reporting.services, path, text));
    EXPECT_EQ(text, "");
    ASSERT_EQ(reporting.prompts.shown.size(), 1u);
    EXPECT_EQ(reporting.prompts.shown[0].prompt, "Can't read file: " + path);
    EXPECT_EQ(files.openCount(), 0);
  }
}

// Drill files without a call of tool one: recognition gives no kind, the user chooses Excellon.

// Files in which some holes fall on a pad that is already there, which places no second pad.
struct Covered {
  int32_t holes;
  const char* reason;
};
const std::map<std::string, Covered> CoveredHoles = {
    {"gerbv/test-inputs/test-drill-trailing-zero-suppression.exc",
     {4, "four points at y 116.713 mm are drilled twice, by two tools"}},
};

TEST(ExcellonCorpusTest, EveryDrillFileImportsAndAccountsForEveryHole) {
  const std::string corpus = test::corpusDir();
  if (corpus.empty())
    GTEST_SKIP() << "no corpus found (set TVX_CORPUS_DIR)";
  const auto files = test::manifestFiles(corpus, "excellon");
  ASSERT_FALSE(files.empty());
  size_t covered = 0;
  for (const auto& [path, format] : files) {
    SCOPED_TRACE(path);
    test::ImportWorld world;
    const ImportResult result = world.run(corpus + "/" + path);
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(isExcellonKind(result.kind)) << int(result.kind);
    ASSERT_EQ(result.layer, 31);

    const std::vector<ToolEntry>& tools = world.layer(31).Files.at(0).Tools;
    const int32_t holes =
        std::accumulate(tools.begin(), tools.end(), 0,
                        [](int32_t sum, const ToolEntry& t) { return sum + t.HoleCount; });
    EXPECT_GT(holes, 0);
    const HoleTally& tally = world.session->excellon.LastImport;
    const auto pads = static_cast<int32_t>(world.pads(31).size());
    int32_t expectedCovered = 0;
    if (auto it = CoveredHoles.find(path); it != CoveredHoles.end()) {
      SCOPED_TRACE(it->second.reason);
      expectedCovered = it->second.holes;
      ++covered;
    }
    EXPECT_EQ(tally, (HoleTally{pads + tally.Slots, tally.Slots, expectedCovered, 0, 0}));
    EXPECT_EQ(tally.total(), holes);  // so pads + slots + covered = holes
    // Every slot is at least one stroke of the layer.
    EXPECT_GE(static_cast<int32_t>(world.items(31).size()), tally.Slots);
  }
  EXPECT_EQ(covered, CoveredHoles.size()) << "a listed file left the manifest";
}

}  // namespace
}  // namespace tvx
