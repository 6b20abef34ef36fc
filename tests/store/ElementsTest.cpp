// Elements of a symbol: adding them to their places, and the runs of polygon sides with the
// frames of selections.
#include "store/AddElement.h"
#include "store/ElementRuns.h"
#include "support/ItemBuilder.h"

#include <gtest/gtest.h>

namespace tvx {
namespace {

using test::Item;

class AddElementTest : public ::testing::Test {
protected:
  void SetUp() override { ASSERT_EQ(store.S_CreateSymbol(symbol, "$$GIS_CAT-76501"), symbol); }
  // Adds r to the symbol's items and reads it back from where it went.
  ItemRecord addAndRead(const ItemRecord& r, const std::string& text = "",
                        const std::string& face = "") {
    AddElement(store, status, PlaceSymbolItems, symbol, r, text, index, face);
    EXPECT_EQ(status, 0);
    ItemRecord back;
    EXPECT_EQ(store.I_ReadItem(store.S_SymbolItem(symbol, index), back), r.Type);
    return back;
  }
  Store store;
  SymbolId symbol = -76501;
  int32_t status = -1;
  int32_t index = -1;
};

TEST_F(AddElementTest, ItemsKeepLinkAndGapAndGoToTheirPlace) {
  const ItemRecord r = Item(ItemLine, attr::Shown | attr::Flashed).link(10).gap(7).size(100);
  EXPECT_EQ(std::tuple(addAndRead(r), index), std::tuple(r, 1));

  // Each place names its own array; the two layout text places mark the item as text.
  const std::tuple<int32_t, ArrayHandle, bool> cases[] = {
      {PlaceCompText, store.C_CompTextArray(symbol), false},
      {PlaceLayoutCompText, store.L_CompTextArray(symbol), true},
      {PlaceLayoutText, store.DB_LayoutTextArray(), true},
      {PlaceBranchText, store.B_BranchTextArray(symbol), false}};
  for (const auto& [place, array, text] : cases) {
    SCOPED_TRACE(place);
    AddElement(store, status, place, symbol, r, "", index, "");
    const int32_t st = store.O_GetStatus(store.OA_Object(array, 1));
    EXPECT_EQ(std::tuple(status, index, (st & attr::Text) != 0), std::tuple(0, 1, text));
  }
}

TEST_F(AddElementTest, TextTakesSizesStyleAndTextBit) {
  ItemRecord r = Item(ItemVectorText).colour(5).style(32).pen(12).angle(90000).size(250, 180);
  ItemRecord back = addAndRead(r, "R12");
  // I_ChangeItemAttr replaced the attribute word.
  EXPECT_EQ(std::tuple(back.Text, back.Width, back.Height, back.Style, back.Attributes),
            std::tuple("R12", 250, 180, uint8_t(32), attr::Shown));

  r.Type = ItemTrueTypeText;
  r.Style = 0;
  back = addAndRead(r, "TOP", "DejaVu Sans");
  EXPECT_EQ(std::tuple(back.Face, back.Attributes & attr::Text),
            std::tuple("DejaVu Sans", attr::Text));
}

TEST_F(AddElementTest, PadEntryTakesRotationPadStackAndMask) {
  const ItemRecord r =
      Item(ItemPadEntry, attr::Shown | attr::Flashed).link(23).at(1000, -2000).angle(45000);
  AddElement(store, status, PlaceSymbolItems, symbol, r, "", index, "");
  ASSERT_EQ(status, 0);
  EntryRecord e;
  ASSERT_NE(store.S_ReadEntry(symbol, index, e), 0);
  EXPECT_EQ(std::tuple(e.X, e.Y, e.Rotation, e.PadStack, e.Attributes),
            std::tuple(1000, -2000, 45000, 23, attr::Shown | attr::Flashed));
  EXPECT_EQ(store.OA_GetCount(store.S_SymbolItemArray(symbol)), 0);
}

TEST_F(AddElementTest, MissingSymbolFailsWithoutLeaking) {
  size_t live = store.liveObjectCount();
  for (int32_t type : {ItemCircle, ItemPadEntry}) {
    SCOPED_TRACE(type);
    status = 0;
    AddElement(store, status, PlaceSymbolItems, -76599, Item(type, 0), "", index, "");
    EXPECT_EQ(std::tuple(status, index), std::tuple(1, 0));
  }
  EXPECT_EQ(store.liveObjectCount(), live);
}

ItemRecord side(int32_t x, int32_t y, int32_t dx, int32_t dy, int32_t bits) {
  return test::Item(ItemLine, attr::Shown | attr::PolygonSide | bits).at(x, y).size(dx, dy);
}

class ElementRunsTest : public ::testing::Test {
protected:
  void SetUp() override {
    store.S_CreateSymbol(sym, "S");
    items = store.S_SymbolItemArray(sym);
    add(side(0, 0, 0, 0, 0) /* a loose line, no polygon */);
    store.I_ChangeItemAttr(store.OA_Object(items, 1), attr::Shown, 0, 0, 0);
    add(side(0, 0, 100, 0, attr::PolygonFirst));  // square: indices 2..5
    add(side(100, 0, 0, 100, 0));
    add(side(100, 100, -100, 0, 0));
    add(side(0, 100, 0, -100, attr::PolygonLast));
    add(side(500, 500, 10, 0, attr::PolygonFirst | attr::PolygonLast));  // one-sided run: 6
  }
  void add(const ItemRecord& r) { store.OA_Add(items, store.I_MakeItem(r)); }
  Store store;
  SymbolId sym = 7;
  ArrayHandle items = ArrayHandle::None;
};

TEST_F(ElementRunsTest, RunsAreFoundFromAnySide) {
  int32_t first = 0, last = 0;
  for (int32_t i = 2; i <= 6; ++i) {
    SCOPED_TRACE(i);
    ASSERT_TRUE(FindPolygonRun(store, items, i, first, last));
    EXPECT_EQ(std::pair(first, last), i == 6 ? std::pair(6, 6) : std::pair(2, 5));
  }
  EXPECT_FALSE(FindPolygonRun(store, items, 1, first, last) ||
               FindPolygonRun(store, items, 9, first, last))
      << "not a side, no item";

  // A run without its last side is broken, not extended into the next run.
  store.O_Mask(store.OA_Object(items, 5), 0, attr::PolygonLast);
  EXPECT_FALSE(FindPolygonRun(store, items, 3, first, last));
}

TEST_F(ElementRunsTest, DeletingARunTakesAllItsSidesOnly) {
  EXPECT_EQ(DeleteElementRun(store, items, 4), 4);
  ASSERT_EQ(store.OA_GetCount(items), 2);
  EXPECT_EQ(store.O_GetStatus(store.OA_Object(items, 2)) & attr::PolygonFirst, attr::PolygonFirst);
  EXPECT_EQ(DeleteElementRun(store, items, 1), 1) << "a loose item goes alone";
  EXPECT_EQ(DeleteElementRun(store, items, 5), 0);
}

TEST_F(ElementRunsTest, FramesOfSelectionsAndSingleElements) {
  FrameRect f;
  ASSERT_TRUE(FrameOfSelection(store, sym, {3, 6}, f));
  EXPECT_EQ(std::tuple(f, store.OA_SearchMask(items, 1, attr::PolygonFrameMark)),
            std::tuple(FrameRect{100, 0, 510, 500}, 0))
      << "marks are cleared";
  EXPECT_FALSE(FrameOfSelection(store, sym, {}, f));

  SymbolId before = store.S_CreateSymbol(0, "");
  store.OM_Delete(store.DB_SymbMap(), before);
  EXPECT_EQ(ExtentOfElement(store, test::Item(ItemCircle, 0).at(10, 0).size(5)),
            (FrameRect{5, -5, 15, 5}));
  EXPECT_EQ(store.S_Symbol(before), ObjectHandle::None) << "the scratch symbol is gone again";
  EXPECT_EQ(store.S_CreateSymbol(0, ""), before) << "and its key is free";
}

}  // namespace
}  // namespace tvx
