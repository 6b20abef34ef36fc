// Comma lists, separated fields and the lenient number reader.
#include "common/ParseList.h"
#include "common/TextHelpers.h"
#include "common/ToNumber.h"

#include <gtest/gtest.h>

namespace tvx {
namespace {

using Fields = std::vector<std::string>;

Fields fieldsOf(const ParsedList& list) {
  EXPECT_EQ(list.Values[0], list.count());
  EXPECT_EQ(list.Tokens.size(), list.Values.size());
  return Fields(list.Tokens.begin() + 1, list.Tokens.end());
}

TEST(ParseList, FieldsQuotesAndCommas) {
  struct Case {
    const char* text;
    Fields expected;
  } cases[] = {
      {"FSI,1,0,0,Fabrication Editor,Select a key",
       {"FSI", "1", "0", "0", "Fabrication Editor", "Select a key"}},
      {"", {""}},         // empty text: one empty field
      {",", {"", ""}},    // a lone comma: two empty fields
      {"a,", {"a", ""}},  // trailing comma: a further, empty field
      {"a,,b", {"a", "", "b"}},
      {"\"x,y\",2", {"x,y", "2"}},  // comma inside quotes stays
      {"1,\"Delete, then undo\",3", {"1", "Delete, then undo", "3"}},
      {"\"quoted\"", {"quoted"}},  // quoted field at the end: no further field
      {"\"a\",", {"a"}},           // after a quoted field the walk ends at the end
      {"\"a\"b,c", {"a\"", "c"}},  // text after the quote belongs to the field
      {"\"\",x", {"", "x"}},       // empty quoted field
      {"\"", {"\""}},              // a quote as the last character is plain text
      {"1,\"open,to the end", {"1", "open,to the end"}},  // unclosed quote: the rest of the text
      {"a\"b,c", {"a\"b", "c"}},                          // a quote inside a plain field is kept
      {" a , b ", {" a ", " b "}},                        // fields are taken as they stand
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(fieldsOf(ParseList(c.text)), c.expected);
  }
}

TEST(ParseList, EveryFieldAlsoGivesItsNumber) {
  ParsedList list = ParseList("OSTKEY,1,8,\"2,5\",x,-7e1");
  ASSERT_EQ(list.count(), 6);
  EXPECT_EQ(list.Values[0], 6);
  EXPECT_EQ(list.Values[1], 0);
  EXPECT_EQ(list.Values[3], 8);
  EXPECT_DOUBLE_EQ(list.Values[4], 2.5);
  EXPECT_EQ(list.Values[6], -70);
  // Outside 1..count the accessors give an empty text and 0 instead of reading past the end.
  EXPECT_EQ(list.token(0), "");
  EXPECT_EQ(list.token(7), "");
  EXPECT_EQ(list.value(7), 0);
  EXPECT_EQ(list.value(-1), 0);
}

TEST(SplitAt, CutsAtEverySeparator) {
  struct Case {
    const char* text;
    const char* separator;
    Fields expected;
  } cases[] = {
      {"0.0100X0.0200", "X", {"0.0100", "0.0200"}},
      {"", "X", {}},  // empty text: no field at all
      {"0.5", "X", {"0.5"}},
      {"1X2X", "X", {"1", "2", ""}},  // separator at the end: a further, empty field
      {"X1", "X", {"", "1"}},
      {"1XX2", "X", {"1", "", "2"}},
      {"a<>b<>c", "<>", {"a", "b", "c"}},  // a separator of several characters
      {"a,b", "", {"a,b"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.text) + " at " + c.separator);
    ParsedList list = SplitAt(c.text, c.separator);
    EXPECT_EQ(fieldsOf(list), c.expected);
  }
  ParsedList numbers = SplitAt("0.01X0.02X", "X");
  ASSERT_EQ(numbers.count(), 3);
  EXPECT_DOUBLE_EQ(numbers.Values[1], 0.01);
  EXPECT_DOUBLE_EQ(numbers.Values[2], 0.02);
  EXPECT_EQ(numbers.Values[3], 0);
}

TEST(ToNumber, ReadsTheLeadingNumberLikeVal) {
  struct Case {
    const char* text;
    double expected;
  } cases[] = {
      {"", 0},      {"3,5", 3.5},     {"0,25", 0.25},   {"1,2,3", 1.2}, {"12mm", 12},
      {"  42", 42}, {"\t-3.5", -3.5}, {"+7", 7},        {"-0,5", -0.5}, {",5", 0.5},
      {".5", 0.5},  {"5.", 5},        {"1.5,3", 1.5},   {"1e3", 1000},  {"2.5E-2", 0.025},
      {"1D2", 100}, {"1e", 1},        {"1e+", 1},       {"3e2x", 300},  {"abc", 0},
      {"-", 0},     {".", 0},         {"- 5", 0},       {"0x10", 0},    {"007", 7},
      {"1 2", 1},   {"1e999", 0},     {"12,5mm", 12.5},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_DOUBLE_EQ(ToNumber(c.text), c.expected);
  }
  EXPECT_EQ(ToNumber("123456789012"), 123456789012.0);
}

TEST(TextHelpers, PathPartFirstWordStripQuotes) {
  EXPECT_EQ(PathPart("/boards/demo/top.gbr", false), "top.gbr");
  EXPECT_EQ(PathPart("/boards/demo/top.gbr", true), "/boards/demo");
  EXPECT_EQ(PathPart("C:\\boards\\demo\\top.gbr", false), "top.gbr");
  EXPECT_EQ(PathPart("C:\\boards\\demo\\top.gbr", true), "C:\\boards\\demo");
  EXPECT_EQ(PathPart("C:top.gbr", false), "top.gbr");
  EXPECT_EQ(PathPart("C:top.gbr", true), "C");
  EXPECT_EQ(PathPart("top.gbr", true), "top.gbr");  // no separator: the whole path
  EXPECT_EQ(PathPart("top.gbr", false), "top.gbr");
  EXPECT_EQ(PathPart("/boards/", false), "");
  EXPECT_EQ(PathPart("mixed/dir\\file", true), "mixed/dir");

  EXPECT_EQ(FirstWord("notepad.exe file.txt"), "notepad.exe");
  EXPECT_EQ(FirstWord("single"), "single");
  EXPECT_EQ(FirstWord(" leading"), "");
  EXPECT_EQ(FirstWord(""), "");

  EXPECT_EQ(StripQuotes("  \"C:\\My Boards\\top.gbr\"  "), "C:\\My Boards\\top.gbr");
  EXPECT_EQ(StripQuotes("a\"b\"c"), "abc");
  EXPECT_EQ(StripQuotes(" \" \" "), " ");  // trimmed first, then the quotes go
  EXPECT_EQ(StripQuotes("   "), "");
}

}  // namespace
}  // namespace tvx
