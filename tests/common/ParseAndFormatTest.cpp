// Comma lists, separated fields and the lenient number reader.
// The display pictures against known texts, rounding and signs included, and the length texts
// built on them.
#include "common/FormatNumber.h"
#include "common/LengthFormats.h"
#include "common/ParseList.h"
#include "common/TextHelpers.h"
#include "common/ToNumber.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace tvx {
namespace {

using Fields = std::vector<std::string>;

Fields fieldsOf(const ParsedList& list) {
  EXPECT_EQ(list.Values[0], list.count());
  EXPECT_EQ(list.Tokens.size(), list.Values.size());
  return Fields(list.Tokens.begin() + 1, list.Tokens.end());
}

TEST(ParseList, FieldsQuotesAndCommas) {
  const std::pair<const char*, Fields> cases[] = {
      {"FSI,1,0,0,Fabrication Editor,Select a key",
       {"FSI", "1", "0", "0", "Fabrication Editor", "Select a key"}},
      {"", {""}},         // empty text: one empty field
      {",", {"", ""}},    // a lone comma: two empty fields
      {"a,", {"a", ""}},  // trailing comma: a further, empty field
      {"a,,b", {"a", "", "b"}},
      {"\"x,y\",2", {"x,y", "2"}},  // comma inside quotes stays
      {"\"a\",", {"a"}},            // after a quoted field the walk ends at the end
      {"\"a\"b,c", {"a\"", "c"}},   // text after the quote belongs to the field
      {"\"\",x", {"", "x"}},        // empty quoted field
      {"\"", {"\""}},               // a quote as the last character is plain text
      {"1,\"open,to the end", {"1", "open,to the end"}},  // unclosed quote: the rest of the text
      {"a\"b,c", {"a\"b", "c"}},                          // a quote inside a plain field is kept
      {" a , b ", {" a ", " b "}},                        // fields are taken as they stand
  };
  for (const auto& [text, expected] : cases) {
    SCOPED_TRACE(text);
    EXPECT_EQ(fieldsOf(ParseList(text)), expected);
  }
}

TEST(ParseList, EveryFieldAlsoGivesItsNumber) {
  ParsedList list = ParseList("OSTKEY,1,8,\"2,5\",x,-7e1");
  EXPECT_EQ(list.Values, (std::vector<double>{6, 0, 1, 8, 2.5, 0, -70}));
  // Outside 1..count the accessors give an empty text and 0 instead of reading past the end.
  EXPECT_EQ(std::tuple(list.token(0), list.token(7), list.value(7), list.value(-1)),
            std::tuple("", "", 0, 0));
}

TEST(SplitAt, CutsAtEverySeparator) {
  const std::tuple<const char*, const char*, Fields> cases[] = {
      {"0.0100X0.0200", "X", {"0.0100", "0.0200"}},
      {"", "X", {}},  // empty text: no field at all
      {"0.5", "X", {"0.5"}},
      {"1X2X", "X", {"1", "2", ""}},  // separator at the end: a further, empty field
      {"X1", "X", {"", "1"}},
      {"1XX2", "X", {"1", "", "2"}},
      {"a<>b<>c", "<>", {"a", "b", "c"}},  // a separator of several characters
      {"a,b", "", {"a,b"}}};
  for (const auto& [text, separator, expected] : cases) {
    SCOPED_TRACE(std::string(text) + " at " + separator);
    EXPECT_EQ(fieldsOf(SplitAt(text, separator)), expected);
  }
  EXPECT_EQ(SplitAt("0.01X0.02X", "X").Values, (std::vector<double>{3, 0.01, 0.02, 0}));
}

TEST(ToNumber, ReadsTheLeadingNumberLikeVal) {
  const std::pair<const char*, double> cases[] = {
      {"", 0},      {"3,5", 3.5},      {"1,2,3", 1.2}, {"  42", 42},    {"\t-3.5", -3.5},
      {"+7", 7},    {"-0,5", -0.5},    {",5", 0.5},    {"5.", 5},       {"1.5,3", 1.5},
      {"1D2", 100}, {"2.5E-2", 0.025}, {"1e+", 1},     {"3e2x", 300},   {"abc", 0},
      {"- 5", 0},   {"0x10", 0},       {"1e999", 0},   {"12,5mm", 12.5}};
  for (const auto& [text, expected] : cases) {
    SCOPED_TRACE(text);
    EXPECT_DOUBLE_EQ(ToNumber(text), expected);
  }
  EXPECT_EQ(ToNumber("123456789012"), 123456789012.0);
}

TEST(TextHelpers, PathPartFirstWordStripQuotes) {
  // The file name and the folder of each path; without a separator both are the whole path.
  const std::array<const char*, 3> paths[] = {
      {"/boards/demo/top.gbr", "top.gbr", "/boards/demo"},
      {"C:\\boards\\demo\\top.gbr", "top.gbr", "C:\\boards\\demo"},
      {"C:top.gbr", "top.gbr", "C"},
      {"top.gbr", "top.gbr", "top.gbr"},
      {"/boards/", "", "/boards"},
      {"mixed/dir\\file", "file", "mixed/dir"}};
  for (const auto& [path, file, folder] : paths)
    EXPECT_EQ(std::tuple(PathPart(path, false), PathPart(path, true)), std::tuple(file, folder))
        << path;

  EXPECT_EQ(std::tuple(FirstWord("notepad.exe file.txt"), FirstWord("single"),
                       FirstWord(" leading"), FirstWord("")),
            std::tuple("notepad.exe", "single", "", ""));

  EXPECT_EQ(StripQuotes("  \"C:\\My Boards\\top.gbr\"  "), "C:\\My Boards\\top.gbr");
  EXPECT_EQ(StripQuotes("a\"b\"c"), "abc");
  EXPECT_EQ(StripQuotes(" \" \" "), " ");  // trimmed first, then the quotes go
  EXPECT_EQ(StripQuotes("   "), "");
}

// Each picture against known texts: the length pictures of the panels (required and optional
// decimals), angles and sheet sizes, pictures without an integer zero (the ruler labels), the
// coordinate pictures, grouping, commas that scale, sections and literals, and edge values.
TEST(FormatNumberTest, PicturesGiveTheirTexts) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double infinity = std::numeric_limits<double>::infinity();
  // clang-format off
  const std::pair<const char*, std::vector<std::pair<double, const char*>>> pictures[] = {
      {"#0.0000#", {{0, "0.0000"}, {25.4, "25.4000"}, {0.123456, "0.12346"}, {9.99995, "9.99995"},
                    {9.999995, "10.0000"}, {1.000005, "1.00001"}, {0.000004, "0.0000"},
                    {-3.25, "-3.2500"}, {-0.0393701, "-0.03937"}}},
      {"###0.000#", {{1234.56789, "1234.5679"}, {12345.6, "12345.600"}}},
      // The sign of the value is kept.
      {"#0.000", {{9.99995, "10.000"}, {2.675, "2.675"}, {-0.0005, "-0.001"}, {-0.0, "0.000"},
                  {-0.0004, "-0.000"}}},
      {"###0.0", {{0.05, "0.1"}, {0.04, "0.0"}, {-99.95, "-100.0"}}},
      {"##0.0#", {{22.5, "22.5"}, {0.125, "0.13"}, {1.999, "2.0"}, {-360, "-360.0"}}},
      {"00.00", {{5, "05.00"}, {123.456, "123.46"}, {0.005, "00.01"}}},
      // No integer zero: a value below 1 begins with the point, and a zero leaves only the point.
      {"#.00", {{0.5, ".50"}, {0, ".00"}, {1.005, "1.01"}, {-0.25, "-.25"}}},
      // The ruler labels: the point stays when no decimal is left.
      {"###.###", {{0, "."}, {2, "2."}, {2.5, "2.5"}, {0.0005, ".001"}, {1234.5678, "1234.568"},
                   {-1.25, "-1.25"}}},
      {"######.###", {{1000, "1000."}, {1234567.0001, "1234567."}}},
      // The coordinate pictures: "####0" and, with decimals, "." and that many zeros.
      {"####0", {{2.5, "3"}, {-2.5, "-3"}, {0.4, "0"}, {123456, "123456"}}},
      {"####0.0000", {{3.14159265, "3.1416"}, {-3.14159265, "-3.1416"}}},
      {"####0.", {{0, "0."}, {4.5, "5."}}},
      // No grouping unless the picture asks for it; commas right before the point divide by a
      // thousand each.
      {"#0.00", {{1234567.891, "1234567.89"}}},
      {"#,##0.00", {{1234567.891, "1,234,567.89"}, {999, "999.00"}, {-1000, "-1,000.00"}}},
      {"0,", {{1500000, "1500"}}},
      {"0,,.0", {{1900000, "1.9"}}},
      {"0%", {{0.255, "26%"}}},
      {"0.00;(0.00);\"zero\"", {{2, "2.00"}, {-1.5, "(1.50)"}, {0, "zero"}}},
      {"0.0;;\"-\"", {{-1.5, "-1.5"}, {0, "-"}}},
      {"0.0\" mm\"", {{1.25, "1.3 mm"}}},
      {"$#", {{-10, "-$10"}}},
      {"\\#0", {{7, "#7"}}},
      {"0.00", {{1e20, "100000000000000000000.00"}}},
      {"0", {{123456789012345678.0, "123456789012346000"}}},
      {"0.0000#", {{1e-20, "0.0000"}}},
      {"", {{2.5, "2.5"}, {1e20, "1E+20"}}},
      {"0.0", {{nan, "NaN"}, {-infinity, "-Infinity"}}}};
  // clang-format on
  for (const auto& [picture, cases] : pictures)
    for (const auto& [value, text] : cases)
      EXPECT_EQ(FormatNumber(value, picture), text) << picture << " of " << value;
}

TEST(LengthFormats, InchesAndMillimetresWithTheirMarksAndShortForms) {
  EXPECT_EQ(LengthText(254000, 0, 100000), "0.1000\"");
  EXPECT_EQ(LengthText(254000, 1, 100000), "2.540mm");
  EXPECT_EQ(LengthValueText(127, 0, 100000), "0.00005") << "a fifth digit when it is needed";
  EXPECT_EQ(LengthValueText(1234567, 1, 100000), "12.3457");
  EXPECT_EQ(ShortLengthText(1234567, 1, 100000), "12.3mm");
  EXPECT_EQ(ShortLengthText(254000, 0, 100000), "0.100\"");
  EXPECT_EQ(LengthValueText(-2000, 1, 1000), "-2.000") << "units per mm and the sign";
  EXPECT_EQ(LengthText(2540000, 3, 100000), LengthText(2540000, 0, 100000)) << "any other: inch";
}

}  // namespace
}  // namespace tvx
