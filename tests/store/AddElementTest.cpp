#include "store/AddElement.h"

#include <gtest/gtest.h>

namespace tvx {
namespace {

class AddElementTest : public ::testing::Test {
protected:
  void SetUp() override { ASSERT_EQ(store.S_CreateSymbol(symbol, "$$GIS_CAT-76501"), symbol); }
  Store store;
  SymbolId symbol = -76501;
  int32_t status = -1;
  int32_t index = -1;
};

TEST_F(AddElementTest, ItemsKeepLinkAndGapAndGoToTheirPlace) {
  ItemRecord r;
  r.Type = ItemLine;
  r.Attributes = attr::Shown | attr::Flashed;
  r.Link = 10;
  r.Gap = 7;
  r.Width = 100;
  AddElement(store, status, PlaceSymbolItems, symbol, r, "", index, "");
  ASSERT_EQ(status, 0);
  EXPECT_EQ(index, 1);
  ItemRecord back;
  store.I_ReadItem(store.S_SymbolItem(symbol, 1), back);
  EXPECT_EQ(back, r);

  // Each place names its own array; the two layout text places mark the item as text.
  struct Case {
    int32_t place;
    ArrayHandle array;
    bool text;
  } cases[] = {{PlaceCompText, store.C_CompTextArray(symbol), false},
               {PlaceLayoutCompText, store.L_CompTextArray(symbol), true},
               {PlaceLayoutText, store.DB_LayoutTextArray(), true},
               {PlaceBranchText, store.B_BranchTextArray(symbol), false}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.place);
    AddElement(store, status, c.place, symbol, r, "", index, "");
    ASSERT_EQ(status, 0);
    EXPECT_EQ(index, 1);
    int32_t st = store.O_GetStatus(store.OA_Object(c.array, 1));
    EXPECT_EQ((st & attr::Text) != 0, c.text);
  }
}

TEST_F(AddElementTest, TextTakesSizesStyleAndTextBit) {
  ItemRecord r;
  r.Type = ItemVectorText;
  r.Attributes = attr::Shown;
  r.Width = 250;
  r.Height = 180;
  r.Angle = 90000;
  r.Colour = 5;
  r.Style = 32;
  r.LineWidth = 12;
  AddElement(store, status, PlaceSymbolItems, symbol, r, "R12", index, "");
  ASSERT_EQ(status, 0);
  ItemRecord back;
  ASSERT_EQ(store.I_ReadItem(store.S_SymbolItem(symbol, index), back), ItemVectorText);
  EXPECT_EQ(back.Text, "R12");
  EXPECT_EQ(back.Width, 250);
  EXPECT_EQ(back.Height, 180);
  EXPECT_EQ(back.Style, 32);
  EXPECT_EQ(back.Attributes, attr::Shown);  // I_ChangeItemAttr replaced the word

  r.Type = ItemTrueTypeText;
  r.Style = 0;
  AddElement(store, status, PlaceSymbolItems, symbol, r, "TOP", index, "DejaVu Sans");
  ASSERT_EQ(store.I_ReadItem(store.S_SymbolItem(symbol, index), back), ItemTrueTypeText);
  EXPECT_EQ(back.Face, "DejaVu Sans");
  EXPECT_NE(back.Attributes & attr::Text, 0);
}

TEST_F(AddElementTest, PadEntryTakesRotationPadStackAndMask) {
  ItemRecord r;
  r.Type = ItemPadEntry;
  r.X = 1000;
  r.Y = -2000;
  r.Angle = 45000;
  r.Link = 23;
  r.Attributes = attr::Shown | attr::Flashed;
  AddElement(store, status, PlaceSymbolItems, symbol, r, "", index, "");
  ASSERT_EQ(status, 0);
  EntryRecord e;
  ASSERT_NE(store.S_ReadEntry(symbol, index, e), 0);
  EXPECT_EQ(e.X, 1000);
  EXPECT_EQ(e.Y, -2000);
  EXPECT_EQ(e.Rotation, 45000);
  EXPECT_EQ(e.PadStack, 23);
  EXPECT_EQ(e.Attributes, attr::Shown | attr::Flashed);
  EXPECT_EQ(store.OA_GetCount(store.S_SymbolItemArray(symbol)), 0);
}

TEST_F(AddElementTest, MissingSymbolFailsWithoutLeaking) {
  size_t live = store.liveObjectCount();
  ItemRecord r;
  r.Type = ItemCircle;
  AddElement(store, status, PlaceSymbolItems, -76599, r, "", index, "");
  EXPECT_EQ(status, 1);
  EXPECT_EQ(index, 0);
  r.Type = ItemPadEntry;
  AddElement(store, status, PlaceSymbolItems, -76599, r, "", index, "");
  EXPECT_EQ(status, 1);
  EXPECT_EQ(store.liveObjectCount(), live);
}

}  // namespace
}  // namespace tvx
