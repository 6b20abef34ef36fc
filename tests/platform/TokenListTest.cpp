#include "platform/TokenList.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tvx {
namespace {

std::vector<std::string> itemsOf(const TokenList& list) {
  std::vector<std::string> items;
  for (int32_t i = 1; i <= list.Count(); ++i)
    items.push_back(list.Item(i));
  return items;
}

TEST(TokenListTest, ParseCutsAtEveryDelimiter) {
  struct Case {
    std::string text;
    std::string delimiter;
    std::vector<std::string> items;
  };
  const Case cases[] = {
      {"TVNGBRVIEWER,MX", ",", {"TVNGBRVIEWER", "MX"}},
      {"TVNGBRVIEWER", ",", {"TVNGBRVIEWER"}},
      {"", ",", {}},
      {"a,,b", ",", {"a", "", "b"}},
      {"a,b,", ",", {"a", "b", ""}},
      {",a", ",", {"", "a"}},
      {" a , b ", ",", {" a ", " b "}},
      {"a<>b<>c", "<>", {"a", "b", "c"}},
      {"a<b>c", "<>", {"a<b>c"}},
      {"a,b", "", {"a,b"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE("'" + c.text + "' at '" + c.delimiter + "'");
    TokenList list;
    list.Parse(c.text, c.delimiter);
    EXPECT_EQ(list.Count(), static_cast<int32_t>(c.items.size()));
    EXPECT_EQ(itemsOf(list), c.items);
  }
}

TEST(TokenListTest, IndexOutsideTheItemsYieldsEmptyText) {
  TokenList list;
  EXPECT_EQ(list.Count(), 0);
  EXPECT_EQ(list.Item(1), "");
  list.Parse("a,b", ",");
  for (int32_t index : {0, -1, 3, 1000}) {
    SCOPED_TRACE(index);
    EXPECT_EQ(list.Item(index), "");
    EXPECT_EQ(list.ItemValue(index), 0.0);
  }
  // A new text replaces the old items.
  list.Parse("c", ",");
  EXPECT_EQ(list.Count(), 1);
  EXPECT_EQ(list.Item(1), "c");
  EXPECT_EQ(list.Item(2), "");
}

TEST(TokenListTest, ItemValueReadsLeniently) {
  struct Case {
    std::string item;
    double value;
  };
  const Case cases[] = {
      {"12", 12.0}, {"-3.25", -3.25}, {"2,5", 2.5},     {"1,2,3", 1.2},  {"  7", 7.0},
      {"+4", 4.0},  {"+-4", 0.0},     {"12.5mm", 12.5}, {"1e3", 1000.0}, {"abc", 0.0},
      {"", 0.0},    {"-", 0.0},       {".5", 0.5},      {"1e999", 0.0},  {"0,001", 0.001},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE("'" + c.item + "'");
    TokenList list;
    list.Parse("x;" + c.item, ";");
    ASSERT_EQ(list.Count(), 2);
    EXPECT_DOUBLE_EQ(list.ItemValue(2), c.value);
  }
}

}  // namespace
}  // namespace tvx
