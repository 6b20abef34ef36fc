// Handles, containers and maps of the artwork store.
#include "kernel/KernelStrings.h"
#include "kernel/Store.h"

#include "support/ItemBuilder.h"

#include <gtest/gtest.h>

namespace tvx {
namespace {

ItemRecord line(int32_t x, int32_t y, int32_t dx, int32_t dy) {
  return test::Item(ItemLine).at(x, y).size(dx, dy);
}

TEST(StoreHandles, BadStaleAndWrongKindHandlesFailWithoutChange) {
  Store s;
  ASSERT_EQ(s.S_CreateSymbol(-76501, "$$GIS_CAT-76501"), -76501);
  ArrayHandle items = s.S_SymbolItemArray(-76501);
  ObjectHandle item = s.I_MakeItem(line(0, 0, 10, 10));
  ASSERT_EQ(s.OA_Add(items, item), 1);
  size_t live = s.liveObjectCount();

  ItemRecord r;
  FrameRect f;
  PadStackRecord p;
  for (int32_t bad : {0, -1, 123456789, items /* an array is not an item */}) {
    SCOPED_TRACE(bad);
    EXPECT_EQ(s.I_ReadItem(bad, r), 0);
    EXPECT_EQ(s.I_FrameItem(bad, f), 0);
    EXPECT_EQ(s.O_Mask(bad, 0, -1), 0);
    EXPECT_EQ(s.I_ChangeItemXY(bad, r), 0);
    EXPECT_EQ(s.OA_GetCount(bad == items ? item : bad), 0);
    EXPECT_EQ(s.OA_Add(bad == items ? item : bad, item), 0);
    EXPECT_EQ(s.OM_Object(bad, -76501), 0);
    EXPECT_EQ(s.OM_Delete(bad, -76501), 0);
    EXPECT_EQ(s.S_ReadPadStack(bad, p), 0);
    EXPECT_EQ(s.O_GetName(bad), nullptr);
  }
  EXPECT_EQ(s.liveObjectCount(), live);
  EXPECT_EQ(s.O_GetStatus(item), attr::Shown);

  // Once the symbol is gone, the item's old handle is refused, even after new objects take slots.
  ASSERT_EQ(s.OM_Delete(s.DB_SymbMap(), -76501), 1);
  EXPECT_EQ(s.S_Symbol(-76501), 0);
  for (int i = 0; i < 3000; ++i)
    s.deleteFreeObject(s.S_MakePadStack());
  ObjectHandle fresh = s.S_MakePadStack();
  EXPECT_EQ(s.I_ReadItem(item, r), 0);
  EXPECT_EQ(s.OA_GetCount(items), 0);
  EXPECT_EQ(s.O_Mask(item, 1, 1), 0);
  EXPECT_GT(s.S_ReadPadStack(fresh, p), 0);
}

TEST(StoreHandles, ObjectsBelongToOneContainerOfTheirKind) {
  Store s;
  s.S_CreateSymbol(1, "A");
  s.S_CreateSymbol(2, "B");
  ObjectHandle item = s.I_MakeItem(line(0, 0, 1, 1));
  EXPECT_EQ(s.OA_Add(s.S_SymbolItemArray(1), item), 1);
  EXPECT_EQ(s.OA_Add(s.S_SymbolItemArray(2), item), 0);
  EXPECT_EQ(s.OA_Add(s.S_SymbolEntryArray(2), s.I_MakeItem(line(0, 0, 1, 1))), 0);
  ObjectHandle pad = s.S_MakePadStack();
  EXPECT_EQ(s.OA_Add(s.S_SymbolItemArray(2), pad), 0);
  EXPECT_EQ(s.OM_Add(s.S_SymbolPadStackMap(2), pad, 10), 10);
  EXPECT_EQ(s.OM_Add(s.S_SymbolPadStackMap(1), pad, 11), 0);
}

TEST(StoreMaps, SymbolKeysAndWalks) {
  Store s;
  MapHandle map = s.DB_SymbMap();
  EXPECT_EQ(s.S_CreateSymbol(-76503, "$$GIS_CAT-76503"), -76503);
  EXPECT_EQ(s.S_CreateSymbol(-76501, "$$GIS_CAT-76501"), -76501);
  EXPECT_EQ(s.S_CreateSymbol(-76501, "again"), 0) << "a used id is refused";

  // Scratch symbols take the lowest free positive key, and a freed key is used again.
  SymbolId a = s.S_CreateSymbol(0, "");
  EXPECT_EQ(a, 1);
  EXPECT_EQ(s.S_CreateSymbol(0, ""), 2);
  ASSERT_EQ(s.OM_Delete(map, a), 1);
  EXPECT_EQ(s.S_Symbol(a), 0);
  EXPECT_EQ(s.S_CreateSymbol(0, ""), a);

  // OM_Add under a used key fails and the map stays as it was.
  ObjectHandle pad1 = s.S_MakePadStack(), pad2 = s.S_MakePadStack();
  MapHandle pads = s.S_SymbolPadStackMap(-76501);
  EXPECT_EQ(s.OM_Add(pads, pad1, 10), 10);
  EXPECT_NE(s.OM_Add(pads, pad2, 10), 10);
  EXPECT_EQ(s.OM_Object(pads, 10), pad1);

  // A walk visits matching keys in key order, negative keys first.
  const auto walk = [&](int32_t mask) {
    std::vector<int32_t> keys;
    int32_t cursor = s.OM_GetFirst(map);
    while (int32_t key = s.OM_SearchMask(map, &cursor, mask, mask))
      keys.push_back(key);
    return keys;
  };
  EXPECT_EQ(walk(0), (std::vector<int32_t>{-76503, -76501, 1, 2}));
  s.O_Mask(s.S_Symbol(-76501), attr::MadeBySystem, attr::MadeBySystem);
  EXPECT_EQ(walk(attr::MadeBySystem), (std::vector<int32_t>{-76501}));
}

TEST(StoreArrays, IndicesInsertDeleteAndMasks) {
  Store s;
  s.S_CreateSymbol(5, "S");
  ArrayHandle a = s.S_SymbolItemArray(5);
  ObjectHandle h[4];
  for (int i = 0; i < 3; ++i)
    ASSERT_EQ(s.OA_Add(a, h[i] = s.I_MakeItem(line(i, 0, 1, 0))), i + 1);
  h[3] = s.I_MakeItem(line(99, 0, 1, 0));
  EXPECT_EQ(s.OA_Insert(a, h[3], 5), 0) << "beyond count + 1";
  EXPECT_EQ(s.OA_Insert(a, h[3], 2), 2);
  EXPECT_EQ(s.OA_Object(a, 2), h[3]);
  EXPECT_EQ(s.OA_Object(a, 3), h[1]);
  EXPECT_EQ(s.OA_Object(a, 0), 0);
  EXPECT_EQ(s.S_SymbolItem(5, 4), h[2]);
  EXPECT_EQ(s.S_SymbolItem(5, 5), 0);

  ASSERT_EQ(s.OA_Delete(a, 1), 1);
  EXPECT_EQ(s.OA_GetCount(a), 3);
  EXPECT_EQ(s.OA_Object(a, 1), h[3]);
  ItemRecord r;
  EXPECT_EQ(s.I_ReadItem(h[0], r), 0) << "a deleted item is gone";
  EXPECT_EQ(s.OA_Delete(a, 4), 0);

  // A hidden element still counts; OA_SearchMask finds marks from the first index on.
  s.O_Mask(h[1], 0, attr::Shown);
  EXPECT_EQ(s.OA_GetCount(a), 3);
  s.O_Mask(h[2], attr::Selected, attr::Selected);
  EXPECT_EQ(s.OA_SearchMask(a, 1, attr::Selected), 3);
  EXPECT_EQ(s.OA_SearchMask(a, 4, attr::Selected), 0);
  s.OA_MaskAll(a, 0, -1);
  EXPECT_EQ(s.O_GetStatus(h[2]), 0);
  EXPECT_EQ(s.OA_SearchMask(a, 1, -1), 0);
}

TEST(StoreItems, RecordsRoundTripAndLinkGapAreSeparate) {
  Store s;
  const ItemRecord in = test::Item(ItemArc, attr::Shown | attr::Flashed)
                            .link(17)
                            .at(-100, 200)
                            .colour(3)
                            .pen(20)
                            .gap(5)
                            .size(500, 45000)
                            .sweep(-90000);
  ObjectHandle item = s.I_MakeItem(in);
  ItemRecord out;
  ASSERT_EQ(s.I_ReadItem(item, out), ItemArc);
  EXPECT_EQ(std::pair(out.Link, out.Gap), std::pair(0, 0)) << "I_MakeItem takes neither";
  s.I_ChangeItemLink(item, 17);
  s.I_ChangeItemGap(item, 5);
  s.I_ReadItem(item, out);
  EXPECT_EQ(out, in);

  // The two text size values come back in the order they went in.
  ObjectHandle text = s.I_MakeText(1, 2, 90000, 300, 200, "U1", attr::Shown, 4, 10);
  ASSERT_EQ(s.I_ReadItem(text, out), ItemVectorText);
  EXPECT_EQ(std::tuple(out.Width, out.Height, out.Text), std::tuple(300, 200, "U1"));
  s.I_ChangeTextSize(text, 50, 40);
  s.I_ReadItem(text, out);
  EXPECT_EQ(std::pair(out.Width, out.Text), std::pair(50, std::string("U1")));

  ObjectHandle t2 = s.I_MakeTTFText(ItemRecord{{.X = 7}}, "REV A", "Sans");
  ASSERT_EQ(s.I_ReadItem(t2, out), ItemTrueTypeText);
  EXPECT_EQ(std::pair(out.Face, out.Text), std::pair(std::string("Sans"), std::string("REV A")));
}

TEST(StoreStrings, KernelStringsAndTables) {
  KernelStrings k;
  EXPECT_EQ(k.E_GetString("TVNLAYPS"), nullptr);
  k.E_SetString("TVNLAYPS", "");
  ASSERT_NE(k.E_GetString("TVNLAYPS"), nullptr);
  EXPECT_STREQ(k.E_GetString("TVNLAYPS"), "");
  // A table is copied in and out whole; the view reads table 5 as 26 whole numbers.
  int32_t grid[26] = {1, 254000}, back[26] = {};
  KernelStrings::E_MemCopy(k.E_SysTable(5), grid, sizeof grid);
  KernelStrings::E_MemCopy(back, k.E_SysTable(5), sizeof back);
  EXPECT_EQ(back[1], 254000);
  EXPECT_EQ(k.E_SysTable(99), nullptr);
}

}  // namespace
}  // namespace tvx
