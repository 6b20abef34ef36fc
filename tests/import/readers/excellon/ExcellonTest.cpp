// The Excellon scan: the header's format, the tool table and its hole counts, program offsets,
// extents, the kind it returns; the coordinate decoder; what a file states of its own format.
// Reading a drill file into blocks, and the import of its holes: placement, mirror, modal
// registers, the tool table of the dialog, and the stop at a coordinate beyond the world.
// Every drill file of the shared corpus goes from its path into the drill layer, and every hole the
// scan counted is accounted for by a pad, or by a pad that already lay on its point.
#include "common/FileLayer.h"
#include "import/readers/excellon/ExcellonStatements.h"
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

// What a drill file states of its own format and what its coordinates show; the start values the
// reader takes from them; tools sized in comments; and the slots, repeats and zero sets of a
// program.
constexpr std::optional<int32_t> None = std::nullopt;

TEST(StatedFormat, UnitLinesAndCommentsStateUnitDigitsAndZeros) {
  struct Case {
    const char* blocks;
    const char* comments;
    StatedFormat stated;  // unit, integer digits, decimal digits, zeros, unit line ahead
  } cases[] = {
      // Excellon names the zeros it keeps: "LZ" keeps leading zeros, so numbers are
      // left-aligned (0); "TZ" keeps trailing zeros, right-aligned (1).
      {"M48|INCH,LZ|%|", "", {0, None, None, 0, false}},
      {"M48|INCH,TZ|%|", "", {0, None, None, 1, false}},
      {"M48|METRIC,LZ,000.000|%|", "", {1, 3, 3, 0, false}},
      {"M48|METRIC,0000.00|%|", "", {1, 4, 2, None, false}},
      // The digits of FILE_FORMAT stand beside a unit line that gives none.
      {"M48|METRIC,LZ|%|", ";FILE_FORMAT=4:4|", {1, 4, 4, 0, false}},
      // A pattern on the unit line comes first.
      {"M48|METRIC,LZ,000.000|%|", ";FILE_FORMAT=4:4|", {1, 3, 3, 0, false}},
      {"M48|FMAT,2|METRIC|%|",
       "; FORMAT={-:-/ ABSOLUTE / METRIC / DECIMAL}|",
       {1, None, None, None, false}},
      {"M48|%|", ";FORMAT={2:4/ ABSOLUTE / INCH / KEEP ZEROS}|", {0, 2, 4, None, false}},
      {"M48|%|",
       ";FORMAT={3:3/ ABSOLUTE / METRIC / SUPPRESS TRAILING ZEROS}|",
       {1, 3, 3, 0, false}},
      {"M48|%|", ";FORMAT={2:5/ ABSOLUTE / INCH / SUPPRESS LEADING ZEROS}|", {0, 2, 5, 1, false}},
      {"M48|%|", "; FORMAT  : 3.3 / ABSOLUTE / MM / LEADING|", {1, 3, 3, 1, false}},
      // A unit line ahead of the header declares the unit as a header does.
      {"INCH,TZ|%|M48|M72|T1C0.02|%|", "", {0, None, None, 1, true}},
      {"%|M48|M72|T01C0.0197|%|", "", {0, None, None, None, false}},
      {"M71|G93X0Y0|T1|X1Y1|", "", {1, None, None, None, false}},
      // A unit line behind the first coordinate states nothing; "M72" still does.
      {"M48|T1C0.1|%|T1|X1Y1|INCH|", "", {None, None, None, None, false}},
      {"M48|T1C0.1|%|T1|X1Y1|METRIC|M72|", "", {0, None, None, None, false}},
      // Malformed statements state nothing.
      {"M48|%|", ";FILE_FORMAT=4|;FILE_FORMAT=A:B|;FORMAT={123:4}|;|;;;|", {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.blocks) + " " + c.comments);
    EXPECT_EQ(ReadStatedFormat(c.blocks, c.comments), c.stated);
  }
}

TEST(StatedFormat, CoordinatesShowTheirZeroForm) {
  struct Case {
    const char* blocks;
    int32_t numbers, widest;
    std::optional<int32_t> zeros;
  } cases[] = {
      {"T1|X001Y03|", 2, 3, 0},
      {"T1|X12500Y3000|X2000Y800|", 4, 5, 1},
      {"T1|X7003Y2682|X11403Y4082|", 4, 5, None},
      // Points, signs, zeros alone and the far end of a drilled slot.
      {"T1|X1.5Y-2.5|X0Y000|X-0120Y+40G85X12340|", 3, 5, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.blocks);
    const DigitEvidence evidence = GatherDigitEvidence(c.blocks);
    EXPECT_EQ(evidence.numbers, c.numbers);
    EXPECT_EQ(evidence.widest, c.widest);
    EXPECT_EQ(ZerosShownBy(evidence), c.zeros);
  }
}

TEST(StatedFormat, ToolSizesInComments) {
  const char* comments =
      ";T01 HOLESIZE 1. = 8.000000 TOLERANCE = +2.000000/-2.000000 PLATED MILS QUANTITY = 18|"
      ";T2 0.800MM|;T3 0.031|;TYPE=PLATED|;T4|;T5 HOLESIZE 5.|;T6 0.05 INCH|;|;;|";
  const std::map<int32_t, double> inch = ToolSizesInComments(comments, 0);
  ASSERT_EQ(inch.size(), 4u);
  EXPECT_DOUBLE_EQ(inch.at(1), 0.2032);
  EXPECT_DOUBLE_EQ(inch.at(2), 0.8);
  EXPECT_DOUBLE_EQ(inch.at(3), 0.031 * 25.4);
  EXPECT_DOUBLE_EQ(inch.at(6), 1.27);
  EXPECT_DOUBLE_EQ(ToolSizesInComments(comments, 1).at(3), 0.031);
}

TEST_F(ExcellonTest, TheFileStatesTheStartValuesAndTheCoordinatesShowTheRest) {
  struct Case {
    ExcellonFormat before, after;  // unit, digits before and after the point, zeros
    const char* blocks;
    const char* comments = "";
  } cases[] = {
      // FILE_FORMAT against a later INCH,LZ line.
      {{1, 3, 3, 1}, {0, 2, 3, 0}, "M48|INCH,LZ|T1C0.012|%|T01|X0152Y00455|", ";FILE_FORMAT=2:3|"},
      // A unit that changes brings its digits; the same unit keeps the stored digits.
      {{1, 3, 3, 1}, {0, 2, 4, 0}, "M48|INCH|T1C0.02|%|T1|X001Y03|"},
      {{0, 2, 5, 1}, {0, 2, 5, 0}, "M48|INCH|T1C0.02|%|T1|X001Y03|"},
      // Right-aligned by trailing zeros.
      {{1, 3, 3, 0}, {1, 3, 3, 1}, "M48|METRIC|T1C0.5|%|T1|X12500Y3000|X2000Y800|"},
      // Decimal points: no evidence, the zeros stay.
      {{0, 2, 4, 1}, {1, 3, 3, 1}, "M48|METRIC|T1C0.5|%|T1|X1.5Y2.5|"},
      // Left-aligned numbers wider than the format: the places before the point stay.
      {{1, 3, 3, 0}, {1, 3, 5, 0}, "M48|METRIC,LZ|T1C1|%|T1|X00073401Y0001|X0006625Y00015|"},
      // Too wide a board, left-aligned: 91.2345 inches is 2.3 m: one place fewer gives 9.12
      // inches.
      {{0, 2, 4, 0}, {0, 1, 5, 0}, "M48|INCH,LZ|T1C0.02|%|T1|X912345Y912345|X1Y1|"},
      // Right-aligned, 5 m: one more place behind the point gives 500 mm; the widest number fills
      // the rest.
      {{1, 3, 3, 1}, {1, 4, 4, 1}, "M48|METRIC,TZ|T1C0.5|%|T1|X5000000Y10|X10Y10|"},
      // Holes inside larger holes: read with four decimals both small holes stand inside the large
      // one; with three apart.
      {{0, 2, 4, 1},
       {0, 2, 3, 1},
       "M48|INCH,TZ|T1C0.02|T2C0.1|%|T1|X3070Y2010|X3030Y1820|T2|X3050Y1900|"},
      // Stated digits are not second-guessed.
      {{0, 2, 4, 1}, {0, 2, 2, 1}, "M48|INCH,TZ|T1C0.02|%|T1|X9123450Y10|", ";FILE_FORMAT=2:2|"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.blocks);
    format = c.before;
    reader.ApplyStatedFormat(c.blocks, c.comments);
    EXPECT_EQ(format, c.after);
  }
}

TEST_F(ExcellonTest, ToolDefinitionsAndSizesWhereverTheFileGivesThem) {
  struct Case {
    int32_t kind;
    std::vector<ToolEntry> tools;  // code, diameter, hole kind, holes
    const char* blocks;
    const char* comments = "";
  } cases[] = {
      // "C" anywhere in a T block defines the tool, and makes the file Format Two.
      {3, {{1, 20000, 1, 1}}, "M48|METRIC,LZ|T1F00S00C0.2000|%|T01|X0001Y0001|"},
      {3, {{1, 20320, 1, 1}}, "M48|INCH|T01C0.008F1B1S6H2000|%|T01|X01Y01|"},
      // Tool 0 may carry a size; selecting it again unloads nothing.
      {3, {{0, 15240, 1, 0}, {1, 30480, 1, 1}}, "M48|INCH|T0C0.006|T1C0.012|%|T1|X01Y01|T0|M30|"},
      // Sizes in comments.
      {4,
       {{1, 80000, 1, 1}, {2, 100000, 1, 1}},
       "M48|METRIC|%|T1|X1Y1|T2|X2Y2|",
       ";T1 0.800MM|;T2 HOLESIZE 2. = 1.0|"},
      // A tool number at the limit of the table's field looks for no size before it.
      {3, {{1, 25400, 1, 0}, {INT32_MIN, 0, 1, 1}}, "M48|INCH|T1C0.01|%|T-2147483648|X01Y01|"},
      // A zero size stays a tool without a size, and a comment may give it one.
      {3,
       {{1, 0, 1, 1}, {2, 50000, 1, 1}},
       "M48|METRIC|T1C0|T2C0.0|%|T1|X1Y1|T2|X2Y2|",
       ";T2 0.5MM|"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.blocks);
    std::vector<ToolEntry> tools;
    EXPECT_EQ(reader.ScanExcellonText(c.blocks, tools, true, false, c.comments), c.kind);
    EXPECT_EQ(tools, c.tools);
  }
}

struct Stroke {
  int32_t type, x, y, width, height, sweep, lineWidth;
  bool operator==(const Stroke&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Stroke& s) {
  return out << "{" << s.type << ", " << s.x << ", " << s.y << ", " << s.width << ", " << s.height
             << ", " << s.sweep << ", " << s.lineWidth << "}";
}

TEST_F(ImportExcellonTest, SlotsRepeatsZeroSetsAndPrograms) {
  struct Case {
    const char* text;
    int32_t slots;
    std::vector<test::Pad> pads;
    std::vector<Stroke> strokes =
        {};  // ItemLine: start and vector; ItemArc: centre, radius, angles
  } cases[] = {
      // A drilled slot.
      {"T1C0.5|T1|X2.0Y1.0G85X3.0Y1.0|X5.0Y5.0|",
       1,
       {{5 * Mm, 5 * Mm, 1}},
       {{ItemLine, 2 * Mm, 1 * Mm, 1 * Mm, 0, 0, 50000}}},
      // A routed slot: G00 moves without drilling; between M15 and M16 every move cuts; G05 drills
      // again.
      {"T1C1|T1|G00X1.0Y1.0|M15|G01X2.0Y1.0|Y2.0|M16|X7.0Y7.0|G05|X5.0Y5.0|",
       1,
       {{5 * Mm, 5 * Mm, 1}},
       {{ItemLine, 1 * Mm, 1 * Mm, 1 * Mm, 0, 0, Mm},
        {ItemLine, 2 * Mm, 1 * Mm, 0, 1 * Mm, 0, Mm}}},
      // A routed arc by its radius: the shorter counter-clockwise arc from (0, 0) to (2, 2) of
      // radius 2 has its centre at (0, 2): from 270 degrees through 90.
      {"T1C1|T1|G00X0.0Y0.0|M15|G03X2.0Y2.0A2.0|M16|",
       1,
       {},
       {{ItemArc, 0, 2 * Mm, 2 * Mm, 270000, 90000, Mm}}},
      // Clockwise with the centre by I and J: stored counter-clockwise from the end.
      {"T1C1|T1|G00X2.0Y0.0|M15|G02X0.0Y2.0I-2.0J0|M16|",
       1,
       {},
       {{ItemArc, 0, 0, 2 * Mm, 90000, 270000, Mm}}},
      // A program that never plunges cuts along its routed moves.
      {"T1C1|T1|G00X0.0Y0.0|G01X1.0Y0.0|", 1, {}, {{ItemLine, 0, 0, 1 * Mm, 0, 0, Mm}}},
      // A repeat, and a zero set.
      {"T1C0.5|T1|X1.0Y1.0|R3X1.0|",
       0,
       {{1 * Mm, 1 * Mm, 1}, {2 * Mm, 1 * Mm, 1}, {3 * Mm, 1 * Mm, 1}, {4 * Mm, 1 * Mm, 1}}},
      {"G93X10.0Y0.0|T1C0.5|T1|X1.0Y1.0|", 0, {{11 * Mm, 1 * Mm, 1}}},
      // A second program drills with tools of its own.
      {"T1C1|X1.0Y1.0|M30|T1C2|X2.0Y2.0|", 0, {{1 * Mm, 1 * Mm, 1}, {2 * Mm, 2 * Mm, 101}}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    EnsureLayerSymbol(store, drill, true);
    LayerFileRecord file = drillFile();
    EXPECT_EQ(import(c.text, file), 0);
    EXPECT_EQ(padsOf(store, drill), c.pads);
    std::vector<Stroke> strokes;
    for (const ItemRecord& r : test::itemsOf(store, drill))
      strokes.push_back({r.Type, r.X, r.Y, r.Width, r.Height, r.Sweep, r.LineWidth});
    EXPECT_EQ(strokes, c.strokes);
    EXPECT_EQ(reader.LastImport.Slots, c.slots);
    // Each slot is counted once for its tool, like a hole.
    int32_t holes = 0;
    for (const ToolEntry& tool : file.Tools)
      holes += tool.HoleCount;
    EXPECT_EQ(holes, int32_t(c.pads.size()) + c.slots);
  }
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
  EXPECT_TRUE(ReadExcellonText(files, reporting.services,
                               folder.write("drill.txt", "x" + longLine + "\n"), text));
  EXPECT_EQ(text, "X" + longLine + "|");
}

// A file whose last block is no end of program was cut: said by line, and a last block whose
// line has no line end is dropped.
TEST_F(ReadExcellonTextTest, CutFilesAreNotedByLine) {
  const std::string head = "M48\nINCH\nT1C0.02\n%\nT1\nX1000Y1000\n";
  struct Case {
    std::string file;
    std::string lastBlocks;  // of the text
    std::vector<std::string> notes;
  } cases[] = {
      {head + "M30\n", "X1000Y1000|M30|", {}},
      {head + "M30", "X1000Y1000|M30|", {}},
      {head, "T1|X1000Y1000|", {"line 6: the file ends without M30"}},
      {head + "X20", "T1|X1000Y1000|", {"line 7: the file ends inside a block, which is dropped"}},
      {head + "X20\n\n;cut", "X1000Y1000|X20|", {"line 9: the file ends without M30"}},
      {head + "M30\nT1\nX1Y1\n", "M30|T1|X1Y1|", {"line 9: the file ends without M30"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.file);
    std::string text;
    std::vector<std::string> notes = {"stale"};
    ASSERT_TRUE(ReadExcellonText(files, reporting.services, folder.write("cut.drl", c.file), text,
                                 {}, nullptr, &notes));
    EXPECT_TRUE(text.ends_with(c.lastBlocks)) << text;
    EXPECT_EQ(notes, c.notes);
  }
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
