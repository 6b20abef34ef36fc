// The Excellon scan: the header's format, the tool table and its hole counts, program offsets,
// extents, the kind it returns; and the coordinate decoder.
#include "import/readers/excellon/ExcellonTestSupport.h"

#include <array>
#include <cmath>

namespace tvx {
namespace {

using test::ExcellonTest;

constexpr double Inch = 2540000.0;  // store units
constexpr double Mm = 100000.0;

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
      {"M48|METRIC,000.00|T1C0.5|%|T1|X1Y1|", {0, 2, 4, 0}, {1, 3, 2, 0}, 3},
      {"M48|METRIC,TZ,000.000|T1C0.5|%|T1|X1Y1|", {0, 2, 4, 0}, {1, 3, 3, 1}, 3},
      // Without "%" the header ends at "M95"; a line that ends behind it is not examined.
      {"M48|T1C0.5|METRIC,0000.00M95,9|T1|X1Y1|", {0, 2, 4, 0}, {1, 3, 3, 0}, 3},
      // A header without an end is no header; the format stays.
      {"M48|INCH|T1C0.02|T1|X1Y1|", {1, 3, 3, 1}, {1, 3, 3, 1}, 4},
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
  // "M30" and "M030" end a program, "M300" does not.
  const std::string text = "T1C0.1|T2C0.2|X1Y1|M30|T02C0.3|X2Y2|M300|T02|X3Y3|M030|T1|X4Y4|";
  reader.ScanExcellonText(text, tools, false, false);
  EXPECT_EQ(tools, (std::vector<ToolEntry>{
                       {1, 10000, 1, 0}, {2, 20000, 1, 1}, {102, 30000, 1, 2}, {201, 0, 1, 1}}));
}

TEST_F(ScanTest, ExtentsCoverEveryCoordinateAndStartAtTheWorldLimits) {
  format = {1, 3, 3, 0};
  std::vector<ToolEntry> tools;
  // A number with a point ignores the digit format: "X1.5" beside "X1500" (LZ, 3.3: 150 mm).
  reader.ScanExcellonText("T1C1|X1.5Y-2.0|X1500|Y-0.5|", tools, false, false);
  const auto corners = [this] {
    return std::array{extents.MinX, extents.MinY, extents.MaxX, extents.MaxY};
  };
  EXPECT_EQ(corners(), (std::array{1.5 * Mm, -2.0 * Mm, 150 * Mm, -0.5 * Mm}));
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
  format = {0, 2, 5000, 0};
  digits = "5";
  EXPECT_EQ(reader.DecodeExcellonNumber(digits), 0.0);
  format = {0, 2, 5000, 1};
  digits = "5";
  EXPECT_EQ(reader.DecodeExcellonNumber(digits), 0.0);
  format = {1, 600, 0, 1};
  digits = "7";
  EXPECT_DOUBLE_EQ(reader.DecodeExcellonNumber(digits), 7 * Mm);
}

}  // namespace
}  // namespace tvx
