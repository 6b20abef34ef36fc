// What a drill file states of its own format and what its coordinates show; the start values the
// reader takes from them; tools sized in comments; and the slots, repeats and zero sets of a
// program.
#include "import/readers/excellon/ExcellonStatements.h"
#include "import/readers/excellon/ExcellonTestSupport.h"

#include <cmath>

namespace tvx {
namespace {

constexpr int32_t Mm = 100000;
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

using test::ExcellonTest;

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

using test::drillFile;
using test::ImportExcellonTest;
using test::padsOf;

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

}  // namespace
}  // namespace tvx
