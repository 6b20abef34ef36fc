#include "store/ElementRuns.h"

#include "support/ItemBuilder.h"

#include <gtest/gtest.h>

namespace tvx {
namespace {

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
  ArrayHandle items = 0;
};

TEST_F(ElementRunsTest, RunsAreFoundFromAnySide) {
  int32_t first = 0, last = 0;
  for (int32_t i = 2; i <= 6; ++i) {
    SCOPED_TRACE(i);
    ASSERT_TRUE(FindPolygonRun(store, items, i, first, last));
    EXPECT_EQ(std::pair(first, last), i == 6 ? std::pair(6, 6) : std::pair(2, 5));
  }
  EXPECT_FALSE(FindPolygonRun(store, items, 1, first, last)) << "not a side";
  EXPECT_FALSE(FindPolygonRun(store, items, 9, first, last));

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
  EXPECT_EQ(f, (FrameRect{100, 0, 510, 500}));
  EXPECT_EQ(store.OA_SearchMask(items, 1, attr::PolygonFrameMark), 0) << "marks are cleared";
  EXPECT_FALSE(FrameOfSelection(store, sym, {}, f));

  SymbolId before = store.S_CreateSymbol(0, "");
  store.OM_Delete(store.DB_SymbMap(), before);
  EXPECT_EQ(ExtentOfElement(store, test::Item(ItemCircle, 0).at(10, 0).size(5)),
            (FrameRect{5, -5, 15, 5}));
  EXPECT_EQ(store.S_Symbol(before), 0) << "the scratch symbol is gone again";
  EXPECT_EQ(store.S_CreateSymbol(0, ""), before) << "and its key is free";
}

}  // namespace
}  // namespace tvx
