// Handles, containers and maps of the artwork store.
#include "kernel/KernelStrings.h"
#include "kernel/Store.h"

#include <gtest/gtest.h>

namespace tvx {
namespace {

ItemRecord line(int32_t x, int32_t y, int32_t dx, int32_t dy, int32_t width = 0) {
  ItemRecord r;
  r.Type = ItemLine;
  r.Attributes = attr::Shown;
  r.X = x;
  r.Y = y;
  r.Width = dx;
  r.Height = dy;
  r.LineWidth = width;
  return r;
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
  PadStackRecord pr;
  EXPECT_GT(s.S_ReadPadStack(fresh, pr), 0);
}

TEST(StoreHandles, ObjectsBelongToOneContainer) {
  Store s;
  s.S_CreateSymbol(1, "A");
  s.S_CreateSymbol(2, "B");
  ObjectHandle item = s.I_MakeItem(line(0, 0, 1, 1));
  EXPECT_EQ(s.OA_Add(s.S_SymbolItemArray(1), item), 1);
  EXPECT_EQ(s.OA_Add(s.S_SymbolItemArray(2), item), 0);
  // An item does not go into an entry array, nor an entry into an item array.
  EXPECT_EQ(s.OA_Add(s.S_SymbolEntryArray(2), s.I_MakeItem(line(0, 0, 1, 1))), 0);
  ObjectHandle pad = s.S_MakePadStack();
  EXPECT_EQ(s.OA_Add(s.S_SymbolItemArray(2), pad), 0);
  EXPECT_EQ(s.OM_Add(s.S_SymbolPadStackMap(2), pad, 10), 10);
  EXPECT_EQ(s.OM_Add(s.S_SymbolPadStackMap(1), pad, 11), 0);
}

TEST(StoreHandles, DatabaseHierarchiesAndLayers) {
  Store s("BOARD");
  EXPECT_STREQ(s.O_GetName(s.DB_DataBase()), "BOARD");
  EXPECT_EQ(s.OA_GetCount(s.DB_LayerArray()), 32);
  EXPECT_NE(s.O_GetName(s.OA_Object(s.DB_LayerArray(), 32)), nullptr);
  EXPECT_EQ(s.OA_Object(s.DB_LayerArray(), 33), 0);
  ObjectHandle hierarchy = s.OM_Object(s.DB_HierarchyMap(), s.DB_CurHier());
  EXPECT_NE(s.O_GetName(hierarchy), nullptr);
  EXPECT_NE(s.DB_TextSizeTable(), nullptr);
}

TEST(StoreMaps, SymbolKeysAndWalks) {
  Store s;
  MapHandle map = s.DB_SymbMap();
  EXPECT_EQ(s.S_CreateSymbol(-76503, "$$GIS_CAT-76503"), -76503);
  EXPECT_EQ(s.S_CreateSymbol(-76501, "$$GIS_CAT-76501"), -76501);
  EXPECT_EQ(s.S_CreateSymbol(-76501, "again"), 0) << "a used id is refused";

  // Scratch symbols take the lowest free positive key, and a freed key is used again.
  SymbolId a = s.S_CreateSymbol(0, "");
  SymbolId b = s.S_CreateSymbol(0, "");
  EXPECT_EQ(a, 1);
  EXPECT_EQ(b, 2);
  ASSERT_EQ(s.OM_Delete(map, a), 1);
  EXPECT_EQ(s.S_Symbol(a), 0);
  EXPECT_EQ(s.S_CreateSymbol(0, ""), a);

  // OM_Add under a used key fails and the map stays as it was.
  ObjectHandle pad1 = s.S_MakePadStack(), pad2 = s.S_MakePadStack();
  MapHandle pads = s.S_SymbolPadStackMap(-76501);
  EXPECT_EQ(s.OM_Add(pads, pad1, 10), 10);
  EXPECT_NE(s.OM_Add(pads, pad2, 10), 10);
  EXPECT_EQ(s.OM_Object(pads, 10), pad1);

  // A walk visits every key in key order, negative keys first.
  std::vector<int32_t> keys;
  int32_t cursor = s.OM_GetFirst(map);
  while (int32_t key = s.OM_SearchMask(map, &cursor, 0, 0))
    keys.push_back(key);
  EXPECT_EQ(keys, (std::vector<int32_t>{-76503, -76501, 1, 2}));

  // With a mask, only matching objects are returned.
  s.O_Mask(s.S_Symbol(-76501), attr::MadeBySystem, attr::MadeBySystem);
  keys.clear();
  cursor = s.OM_GetFirst(map);
  while (int32_t key = s.OM_SearchMask(map, &cursor, attr::MadeBySystem, attr::MadeBySystem))
    keys.push_back(key);
  EXPECT_EQ(keys, (std::vector<int32_t>{-76501}));
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
  ItemRecord in;
  in.Type = ItemArc;
  in.Attributes = attr::Shown | attr::Flashed;
  in.Link = 17;
  in.Gap = 5;
  in.X = -100;
  in.Y = 200;
  in.Colour = 3;
  in.Style = StyleOpen;
  in.LineWidth = 20;
  in.Width = 500;
  in.Height = 45000;
  in.Sweep = -90000;
  ObjectHandle item = s.I_MakeItem(in);
  ItemRecord out;
  ASSERT_EQ(s.I_ReadItem(item, out), ItemArc);
  EXPECT_EQ(out.Link, 0) << "I_MakeItem does not take Link";
  EXPECT_EQ(out.Gap, 0);
  s.I_ChangeItemLink(item, 17);
  s.I_ChangeItemGap(item, 5);
  s.I_ReadItem(item, out);
  EXPECT_EQ(out, in);

  // The two text size values come back in the order they went in.
  ObjectHandle text = s.I_MakeText(1, 2, 90000, 300, 200, "U1", attr::Shown, 4, 10);
  ASSERT_EQ(s.I_ReadItem(text, out), ItemVectorText);
  EXPECT_EQ(out.Width, 300);
  EXPECT_EQ(out.Height, 200);
  EXPECT_EQ(out.Text, "U1");
  s.I_ChangeTextSize(text, 50, 40);
  s.I_ReadItem(text, out);
  EXPECT_EQ(out.Width, 50);
  EXPECT_EQ(out.Text, "U1");

  ItemRecord ttf;
  ttf.X = 7;
  ObjectHandle t2 = s.I_MakeTTFText(ttf, "REV A", "Sans");
  ASSERT_EQ(s.I_ReadItem(t2, out), ItemTrueTypeText);
  EXPECT_EQ(out.Face, "Sans");
  EXPECT_EQ(out.Text, "REV A");
}

TEST(StoreStrings, KernelStringsAndTables) {
  KernelStrings k;
  EXPECT_EQ(k.E_GetString("TVNLAYPS"), nullptr);
  k.E_SetString("TVNLAYPS", "");
  ASSERT_NE(k.E_GetString("TVNLAYPS"), nullptr);
  EXPECT_STREQ(k.E_GetString("TVNLAYPS"), "");
  EXPECT_EQ(k.E_SysTable(3), nullptr);
  struct {
    int32_t number, bytes;
  } sizes[] = {{1, 64}, {2, 32}, {5, 104}, {6, 104}, {7, 28}, {8, 20},
               {9, 192}, {10, 12}, {11, 4}, {17, 4}, {18, 4}, {21, 128}};
  for (auto t : sizes) {
    SCOPED_TRACE(t.number);
    ASSERT_NE(k.E_SysTable(t.number), nullptr);
    EXPECT_EQ(KernelStrings::tableSize(t.number), t.bytes);
  }
  int32_t grid[26] = {1, 254000};
  KernelStrings::E_MemCopy(k.E_SysTable(5), grid, sizeof grid);
  int32_t back[26] = {};
  KernelStrings::E_MemCopy(back, k.E_SysTable(5), sizeof back);
  EXPECT_EQ(back[1], 254000);
}

}  // namespace
}  // namespace tvx
