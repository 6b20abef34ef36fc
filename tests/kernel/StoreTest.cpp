// The artwork store: handles, containers and maps; frames, cover searches, symbol copies and the
// store's locations.
#include "kernel/Store.h"
#include "kernel/ItemGeometry.h"
#include "support/ItemBuilder.h"

#include <gtest/gtest.h>

#include <random>

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
  for (int32_t bad : {0, -1, 123456789, tableEntry(items) /* an array is not an item */}) {
    const ArrayHandle notArray = arrayHandle(bad == tableEntry(items) ? tableEntry(item) : bad);
    const ObjectHandle object = objectHandle(bad);
    EXPECT_EQ(std::tuple(s.I_ReadItem(object, r), s.I_FrameItem(object, f), s.O_Mask(object, 0, -1),
                         s.I_ChangeItemXY(object, r), s.OA_GetCount(notArray),
                         s.OA_Add(notArray, item), tableEntry(s.OM_Object(mapHandle(bad), -76501)),
                         s.OM_Delete(mapHandle(bad), -76501), s.S_ReadPadStack(object, p),
                         s.O_GetName(object)),
              std::tuple(0, 0, 0, 0, 0, 0, 0, 0, 0, nullptr))
        << bad;
  }
  EXPECT_EQ(s.liveObjectCount(), live);
  EXPECT_EQ(s.O_GetStatus(item), attr::Shown);

  // Once the symbol is gone, the item's old handle is refused, even after new objects take slots.
  ASSERT_EQ(s.OM_Delete(s.DB_SymbMap(), -76501), 1);
  EXPECT_EQ(s.S_Symbol(-76501), ObjectHandle::None);
  for (int i = 0; i < 3000; ++i)
    s.deleteFreeObject(s.S_MakePadStack());
  ObjectHandle fresh = s.S_MakePadStack();
  EXPECT_EQ(std::tuple(s.I_ReadItem(item, r), s.OA_GetCount(items), s.O_Mask(item, 1, 1)),
            std::tuple(0, 0, 0));
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
  EXPECT_EQ(s.S_CreateSymbol(0, ""), 1);
  EXPECT_EQ(s.S_CreateSymbol(0, ""), 2);
  ASSERT_EQ(s.OM_Delete(map, 1), 1);
  EXPECT_EQ(s.S_Symbol(1), ObjectHandle::None);
  EXPECT_EQ(s.S_CreateSymbol(0, ""), 1);

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
  const auto members = [&] {
    std::vector<ObjectHandle> m;
    for (int32_t i = 0; i <= s.OA_GetCount(a) + 1; ++i)  // 0 and count + 1 read as no object
      m.push_back(s.S_SymbolItem(5, i) == s.OA_Object(a, i) ? s.OA_Object(a, i) : objectHandle(-1));
    return m;
  };
  EXPECT_EQ(members(), (std::vector<ObjectHandle>{ObjectHandle::None, h[0], h[3], h[1], h[2],
                                                  ObjectHandle::None}));
  ASSERT_EQ(s.OA_Delete(a, 1), 1);
  EXPECT_EQ(members(),
            (std::vector<ObjectHandle>{ObjectHandle::None, h[3], h[1], h[2], ObjectHandle::None}));
  ItemRecord r;
  EXPECT_EQ(s.I_ReadItem(h[0], r), 0) << "a deleted item is gone";
  EXPECT_EQ(s.OA_Delete(a, 4), 0);
  // A hidden element still counts; OA_SearchMask finds marks from the first index on.
  s.O_Mask(h[1], 0, attr::Shown);
  s.O_Mask(h[2], attr::Selected, attr::Selected);
  EXPECT_EQ(std::tuple(s.OA_GetCount(a), s.OA_SearchMask(a, 1, attr::Selected),
                       s.OA_SearchMask(a, 4, attr::Selected)),
            std::tuple(3, 3, 0));
  s.OA_MaskAll(a, 0, -1);
  EXPECT_EQ(std::tuple(s.O_GetStatus(h[2]), s.OA_SearchMask(a, 1, -1)), std::tuple(0, 0));
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

using test::Item;

FrameRect frameOf(const ItemRecord& r) {
  Store s;
  FrameRect f;
  EXPECT_EQ(s.I_FrameItem(s.I_MakeItem(r), f), 1);
  return f;
}

TEST(ItemFrames, EveryTypeIncludesItsPen) {
  EXPECT_EQ(frameOf(Item(ItemLine).size(1000, -500).pen(100)), (FrameRect{-50, -550, 1050, 50}));
  EXPECT_EQ(frameOf(Item(ItemCircle).at(100, 100).size(50).pen(10)), (FrameRect{45, 45, 155, 155}));
  // A quarter arc from 0 to 90 degrees passes no other axis point.
  EXPECT_EQ(frameOf(Item(ItemArc).size(1000).sweep(90000)), (FrameRect{0, 0, 1000, 1000}));
  // The same arc swept clockwise from 90 covers the same points.
  EXPECT_EQ(frameOf(Item(ItemArc).size(1000, 90000).sweep(-90000)), (FrameRect{0, 0, 1000, 1000}));
  // An arc from 45 through 180 to 225 reaches the top and the left.
  FrameRect f = frameOf(Item(ItemArc).size(1000, 45000).sweep(180000));
  EXPECT_EQ(std::pair(f.MinX, f.MaxY), std::pair(-1000, 1000));
  EXPECT_NEAR(f.MinY, -707, 1);
  EXPECT_NEAR(f.MaxX, 707, 1);
  // A rectangle turned a quarter about its lower left corner lies left of it.
  EXPECT_EQ(frameOf(Item(ItemRectangle).size(200, 100).filled().angle(90000)),
            (FrameRect{-100, 0, 0, 200}));
  // A rectangle with a negative width (mirrored) extends to the left.
  EXPECT_EQ(frameOf(Item(ItemRectangle).size(-200, 100).filled()), (FrameRect{-200, 0, 0, 100}));
  EXPECT_EQ(frameOf(Item(ItemTriangle).size(100).filled().angle(50).sweep(80)),
            (FrameRect{0, 0, 100, 80}));
}

TEST(ItemCover, ShapesArePickedWithinTolerance) {
  auto covers = [](const ItemRecord& r, double x, double y, double tol) {
    return itemCovers(r, r.Text.size(), x, y, tol);
  };
  // Each shape with a point it covers and one it does not, at the same tolerance.
  const ItemRecord ln = Item(ItemLine).size(1000).pen(100);
  EXPECT_TRUE(covers(ln, 500, 60, 10));  // pen half 50 + tolerance 10
  EXPECT_FALSE(covers(ln, 500, 61, 0));
  EXPECT_TRUE(covers(ln, 1050, 0, 0));  // round end
  const std::tuple<ItemRecord, int, int, int, int, int> cases[] = {
      {Item(ItemCircle).size(1000).pen(20), 1005, 0, 0, 0, 5},
      {Item(ItemCircle).size(1000).pen(20).filled(), 0, 0, 1005, 0, 0},  // no pen on a filled area
      {Item(ItemArc).size(1000).sweep(90000), 0, 1000, 0, -1000, 1},
      {Item(ItemRectangle).size(200, 100).filled().angle(90000), -50, 150, 50, 150, 0},
      {Item(ItemRectangle).size(200, 100), 100, 95, 100, 50, 10}};
  for (const auto& [r, inX, inY, outX, outY, tol] : cases) {
    SCOPED_TRACE(testing::Message() << r.Type << " style " << int(r.Style));
    EXPECT_TRUE(covers(r, inX, inY, tol));
    EXPECT_FALSE(covers(r, outX, outY, tol));
  }
}

// The indexed search must give exactly what a walk of the whole array gives.
TEST(StoreCover, IndexedSearchAgreesWithFullWalkThroughChanges) {
  Store s;
  s.S_CreateSymbol(1, "S");
  ArrayHandle a = s.S_SymbolItemArray(1);
  std::mt19937 rng(7);
  std::uniform_int_distribution<int32_t> pos(-200000, 200000), size(0, 20000), type(0, 3);
  auto randomItem = [&] {
    const int32_t x = pos(rng), y = pos(rng), w = size(rng), h = size(rng);
    const int32_t angle = int32_t(rng() % 360000);
    switch (type(rng)) {
    case 0:
      return Item(ItemLine).at(x, y).size(w - 10000, h - 10000).pen(size(rng) / 10);
    case 1:
      return Item(ItemCircle).at(x, y).size(w).pen(100).style(16 * (rng() & 1));
    case 2:
      return Item(ItemRectangle).at(x, y).size(w, h).filled().angle(angle);
    default:
      return Item(ItemArc).at(x, y).size(w, angle).pen(50).sweep(int32_t(rng() % 720000) - 360000);
    }
  };
  for (int i = 0; i < 3000; ++i)
    s.OA_Add(a, s.I_MakeItem(randomItem()));

  auto walk = [&](int32_t first, int32_t x, int32_t y, int32_t tol) {
    for (int32_t i = first; i <= s.OA_GetCount(a); ++i) {
      ItemRecord r;
      s.I_ReadItem(s.OA_Object(a, i), r);
      if (itemCovers(r, 0, x, y, tol))
        return i;
    }
    return 0;
  };
  // Box queries: every member whose frame meets the box, ascending, with its own fields.
  auto checkBox = [&] {
    int32_t x = pos(rng), y = pos(rng), w = int32_t(rng() % 60000), h = int32_t(rng() % 60000);
    const FrameRect box{x, y, x + w, y + h};
    std::vector<int32_t> expected;
    for (int32_t i = 1; i <= s.OA_GetCount(a); ++i) {
      FrameRect f;
      s.I_FrameItem(s.OA_Object(a, i), f);
      if (f.MinX <= box.MaxX && f.MaxX >= box.MinX && f.MinY <= box.MaxY && f.MaxY >= box.MinY)
        expected.push_back(i);
    }
    std::vector<int32_t> positions;
    ASSERT_TRUE(s.membersInBox(a, box, positions));
    EXPECT_EQ(positions, expected);
    std::vector<Store::ItemInBox> items;
    ASSERT_TRUE(s.itemsInBox(a, box, items));
    ASSERT_EQ(items.size(), expected.size());
    for (size_t k = 0; k < items.size(); ++k) {
      EXPECT_EQ(items[k].position, expected[k]);
      EXPECT_EQ(items[k].fields, s.itemFields(s.OA_Object(a, expected[k])));
    }
  };
  auto check = [&](int rounds) {
    for (int q = 0; q < rounds; ++q) {
      int32_t x = pos(rng), y = pos(rng), tol = int32_t(rng() % 3000);
      int32_t first = 1 + int32_t(rng() % 2000);
      ASSERT_EQ(s.OA_Cover(a, first, x, y, tol, 0), walk(first, x, y, tol))
          << "at " << x << "," << y << " tol " << tol << " from " << first;
      if (q % 10 == 0)
        checkBox();
    }
  };
  check(300);
  // Move, reshape, delete and insert, then compare again.
  for (int i = 0; i < 500; ++i) {
    int32_t index = 1 + int32_t(rng() % s.OA_GetCount(a));
    switch (rng() % 3) {
    case 0:
      s.I_ChangeItemXY(s.OA_Object(a, index), randomItem());
      break;
    case 1:
      s.OA_Delete(a, index);
      break;
    default:
      s.OA_Insert(a, s.I_MakeItem(randomItem()), index);
    }
  }
  check(300);
}

TEST(StoreCover, EntriesAndFirstIndex) {
  Store s;
  s.S_CreateSymbol(-76531, "drill");
  ASSERT_EQ(s.S_InsertEntry(-76531, -1, 1000, 2000), 1);
  ArrayHandle entries = s.S_SymbolEntryArray(-76531);
  s.L_CoverComponent(0, 0, 0, nullptr, 15, 0, 0);
  EXPECT_EQ(s.OA_Cover(entries, 1, 1000, 2000, 1, 15), 1) << "exact repeat of the point";
  EXPECT_EQ(s.OA_Cover(entries, 2, 1000, 2000, 1, 15), 0) << "first index beyond the only entry";
  EXPECT_EQ(s.OA_Cover(entries, 1, 1002, 2000, 1, 15), 0);
  // A pad stack with a rotated rectangle pad: the entry covers the pad's area, turned.
  ObjectHandle pad = s.S_MakePadStack();
  s.OA_Add(s.S_PadStackItemArray(pad),
           s.I_MakeItem(Item(ItemRectangle).at(0, -100).size(5000, 200).filled()));
  ASSERT_EQ(s.OM_Add(s.S_SymbolPadStackMap(-76531), pad, 10), 10);
  s.S_ChangePadPadStack(-76531, 1, 10);
  s.S_ChangePadRotation(-76531, 1, 90000);
  EXPECT_EQ(s.OA_Cover(entries, 1, 1000, 6000, 1, 15), 1);
  EXPECT_EQ(s.OA_Cover(entries, 1, 6000, 2000, 1, 15), 0);
  // Many entries: continuing a search after a hit finds the next one on the same point.
  for (int i = 0; i < 200; ++i)
    s.S_InsertEntry(-76531, -1, i * 10000, 0);
  s.S_InsertEntry(-76531, -1, 50000, 0);
  int32_t hit = s.OA_Cover(entries, 1, 50000, 0, 1, 15);
  EXPECT_EQ(hit, 7);
  EXPECT_EQ(s.OA_Cover(entries, hit + 1, 50000, 0, 1, 15), 202);
  EXPECT_EQ(s.OA_Cover(entries, 203, 50000, 0, 1, 15), 0);
  // A hole reaches its radius.
  s.S_ChangePadStackHole(pad, 3000, 1);
  s.S_ChangePadPadStack(-76531, 100, 10);
  EXPECT_EQ(s.OA_Cover(entries, 2, 98 * 10000 - 1400, 0, 1, 15), 100);
}

TEST(StoreCover, ItemsBesideEntriesIgnoreThePadStacks) {
  // A layer holds drawn items and flashed pads; a pad change must not disturb the item index.
  Store s;
  s.S_CreateSymbol(3, "copper");
  ArrayHandle items = s.S_SymbolItemArray(3);
  for (int i = 0; i < 50; ++i)
    s.OA_Add(items, s.I_MakeItem(Item(ItemCircle).at(i * 10000, 0).size(2000).pen(100).filled()));
  std::vector<Store::ItemInBox> inBox;
  ASSERT_TRUE(s.itemsInBox(items, FrameRect{0, -100, 25000, 100}, inBox));  // builds the index
  ObjectHandle pad = s.S_MakePadStack();
  s.OA_Add(s.S_PadStackItemArray(pad), s.I_MakeItem(Item(ItemCircle).size(50000).filled()));
  ASSERT_EQ(s.OM_Add(s.S_SymbolPadStackMap(3), pad, 10), 10);
  ASSERT_EQ(s.S_InsertEntry(3, -1, 0, 0), 1);
  s.S_ChangePadPadStack(3, 1, 10);
  ASSERT_TRUE(s.itemsInBox(items, FrameRect{0, -100, 25000, 100}, inBox));
  EXPECT_EQ(std::tuple(inBox.size(), s.OA_Cover(items, 1, 30000, 0, 10, 0)), std::tuple(3u, 4));
}

TEST(StoreFrames, SymbolFramesFollowChangesAndMasks) {
  Store s;
  s.S_CreateSymbol(3, "S");
  FrameRect f;
  EXPECT_EQ(std::tuple(s.S_FrameSymbolItems(3, -1, f), f), std::tuple(0, FrameRect{}))
      << "no items, no frame";
  ArrayHandle a = s.S_SymbolItemArray(3);
  const ObjectHandle far = s.I_MakeItem(Item(ItemCircle).at(5000, 5000).size(10));
  s.OA_Add(a, s.I_MakeItem(Item(ItemLine).size(100, 100)));
  s.OA_Add(a, far);
  ASSERT_EQ(s.S_FrameSymbolItems(3, -1, f), 1);
  EXPECT_EQ(f, (FrameRect{0, 0, 5010, 5010}));

  // The frame of a selection: mark, frame with the mark, clear.
  s.OA_MaskAll(a, 0, attr::PolygonFrameMark);
  s.O_Mask(far, attr::PolygonFrameMark, attr::PolygonFrameMark);
  ASSERT_EQ(s.S_FrameSymbolItems(3, attr::PolygonFrameMark, f), 1);
  EXPECT_EQ(f, (FrameRect{4990, 4990, 5010, 5010}));
  s.O_Mask(far, 0, attr::PolygonFrameMark);
  EXPECT_EQ(s.S_FrameSymbolItems(3, attr::PolygonFrameMark, f), 0);
  ASSERT_EQ(s.S_FrameSymbolItems(3, -1, f), 1);
  EXPECT_EQ(f, (FrameRect{0, 0, 5010, 5010})) << "marks change no frame";

  // A moved item moves the frame (the cached frame is not reused).
  s.I_ChangeItemXY(far, Item(ItemCircle).at(-5000, 0).size(10));
  s.S_FrameSymbolItems(3, -1, f);
  EXPECT_EQ(f, (FrameRect{-5010, -10, 100, 100}));

  // The component location applies to the frame.
  s.S_SetCompLocation(1000, 0, 0, 0);
  s.S_FrameSymbolItems(3, -1, f);
  EXPECT_EQ(f.MinX, -4010);
  s.S_SetCompLocation(0, 0, 0, 0);

  // Entries frame with their pad stacks.
  s.S_InsertEntry(3, -1, 100, 100);
  ObjectHandle pad = s.S_MakePadStack();
  s.S_ChangePadStackHole(pad, 40, 1);
  s.OM_Add(s.S_SymbolPadStackMap(3), pad, 1);
  s.S_ChangePadPadStack(3, 1, 1);
  ASSERT_EQ(s.S_FrameSymbolEntries(3, -1, f), 1);
  EXPECT_EQ(f, (FrameRect{80, 80, 120, 120}));
}

TEST(StoreCopy, CopyReplacesTargetEntirely) {
  Store s;
  s.S_CreateSymbol(-76501, "$$GIS_CAT-76501");
  s.S_CreateSymbol(-76551, "old undo");
  s.OA_Add(s.S_SymbolItemArray(-76551), s.I_MakeItem(Item(ItemLine).at(9, 9).size(9, 9)));
  s.S_InsertEntry(-76551, -1, 9, 9);
  s.OM_Add(s.S_SymbolPadStackMap(-76551), s.S_MakePadStack(), 99);

  ObjectHandle text = s.I_MakeText(5, 5, 0, 100, 80, "J1", attr::Shown | attr::Text, 2, 10);
  s.I_ChangeItemLink(text, 12);
  s.OA_Add(s.S_SymbolItemArray(-76501), text);
  ObjectHandle pad = s.S_MakePadStack();
  s.S_ChangePadStackHole(pad, 800, 2);
  s.OA_Add(s.S_PadStackItemArray(pad), s.I_MakeItem(Item(ItemCircle).size(500).filled()));
  s.OM_Add(s.S_SymbolPadStackMap(-76501), pad, 11);
  int32_t e = s.S_InsertEntry(-76501, -1, 300, 400);
  s.S_ChangePadPadStack(-76501, e, 11);
  s.S_ChangePadRotation(-76501, e, 45000);
  s.O_Mask(s.S_Entry(-76501, e), attr::Shown, attr::Shown);

  ASSERT_EQ(s.S_CopySymbol(-76501, -76551), -76551);
  EXPECT_STREQ(s.O_GetName(s.S_Symbol(-76551)), "$$GIS_CAT-76501");
  ASSERT_EQ(s.OA_GetCount(s.S_SymbolItemArray(-76551)), 1);
  ItemRecord r;
  s.I_ReadItem(s.S_SymbolItem(-76551, 1), r);
  EXPECT_EQ(std::tuple(r.Text, r.Link), std::tuple("J1", 12));
  EXPECT_EQ(s.OM_Object(s.S_SymbolPadStackMap(-76551), 99), ObjectHandle::None)
      << "old pad stacks are gone";
  ObjectHandle padCopy = s.OM_Object(s.S_SymbolPadStackMap(-76551), 11);
  PadStackRecord pr;
  EntryRecord er;
  ASSERT_GT(s.S_ReadPadStack(padCopy, pr), 0);
  ASSERT_EQ(std::tuple(pr.HoleDiameter, s.OA_GetCount(s.S_PadStackItemArray(padCopy)),
                       s.OA_GetCount(s.S_SymbolEntryArray(-76551)),
                       s.S_ReadEntry(-76551, 1, er) != 0),
            std::tuple(800, 1, 1, true));
  EXPECT_EQ(std::tuple(er.X, er.Rotation, er.PadStack, er.Attributes),
            std::tuple(300, 45000, 11, attr::Shown));

  // The copy is independent of the source.
  s.OA_Delete(s.S_SymbolItemArray(-76501), 1);
  EXPECT_EQ(s.OA_GetCount(s.S_SymbolItemArray(-76551)), 1);
  EXPECT_EQ(s.S_CopySymbol(-1, -76551), 0) << "no source";
}

TEST(StoreLocations, AbsoluteReadsAndTheirInverse) {
  Store s;
  ObjectHandle ln = s.I_MakeItem(Item(ItemLine).at(100, 0).size(50));
  ObjectHandle rect = s.I_MakeItem(Item(ItemRectangle).at(10, 0).size(20, 10).filled());
  ObjectHandle arc = s.I_MakeItem(Item(ItemArc).size(100).sweep(90000));
  ItemRecord r;

  s.S_SetCompLocation(1000, 2000, 90000, 0);
  const auto local = [&](int32_t x, int32_t y) {
    s.I_APtoLP(x, y);
    return std::pair(x, y);
  };
  s.I_ReadItemAbs(ln, r);
  EXPECT_EQ(std::tuple(r.X, r.Y, r.Width, r.Height), std::tuple(1000, 2100, 0, 50));
  EXPECT_EQ(local(1000, 2100), std::pair(100, 0));

  // Mirror: X negated before the turn; a rectangle keeps its corner and flips its width,
  // an arc flips its sweep.
  s.S_SetCompLocation(0, 0, 0, 1);
  s.I_ReadItemAbs(rect, r);
  EXPECT_EQ(std::pair(r.X, r.Width), std::pair(-10, -20));
  s.I_ReadItemAbs(arc, r);
  EXPECT_EQ(std::pair(r.Height, r.Sweep), std::pair(180000, -90000));
  FrameRect before, after;
  s.S_SetCompLocation(0, 0, 0, 0);
  s.I_FrameItem(arc, before);
  s.S_SetCompLocation(0, 0, 0, 1);
  Store scratch;
  s.I_ReadItemAbs(arc, r);
  scratch.I_FrameItem(scratch.I_MakeItem(r), after);
  EXPECT_EQ(after, (FrameRect{-before.MaxX, before.MinY, -before.MinX, before.MaxY}));

  // The pad location comes first, then the component location.
  s.S_SetCompLocation(0, 0, 0, 0);
  s.S_SetPadLocation(10, 20, 180000);
  s.I_ReadItemAbs(ln, r);
  EXPECT_EQ(std::tuple(r.X, r.Y, r.Width), std::tuple(-90, 20, -50));
  EXPECT_EQ(local(-90, 20), std::pair(100, 0));
  s.S_SetPadLocation(0, 0, 0);
}

// A filled polygon is picked inside its area, at its first side; an open one only on its sides.
TEST(StoreCover, FilledPolygonsArePickedInside) {
  Store s;
  s.S_CreateSymbol(1, "S");
  ArrayHandle a = s.S_SymbolItemArray(1);
  auto side = [&](int32_t type, int32_t x, int32_t y, int32_t w, int32_t h, int32_t sweep,
                  int32_t bits, uint8_t style) {
    const int32_t attributes = attr::Shown | attr::PolygonSide | bits;
    s.OA_Add(a, s.I_MakeItem(
                    Item(type, attributes).at(x, y).size(w, h).pen(1).style(style).sweep(sweep)));
  };
  for (int copy = 0; copy < 30; ++copy)  // enough items for the indexed search too
    side(ItemLine, 900000 + copy, 0, 1, 0, 0, 0, 0);
  // A "D" shape: a straight side and a half circle, filled: indices 31 and 32.
  side(ItemLine, 0, -1000, 0, 2000, 0, attr::PolygonFirst, StyleFilled);
  side(ItemArc, 0, 0, 1000, 90000, -180000, attr::PolygonLast, StyleFilled);
  // The same shape open, 10000 to the right: indices 33 and 34.
  side(ItemLine, 10000, -1000, 0, 2000, 0, attr::PolygonFirst, StyleOpen);
  side(ItemArc, 10000, 0, 1000, 90000, -180000, attr::PolygonLast, StyleOpen);
  for (int extra = 0; extra < 2; ++extra) {
    SCOPED_TRACE(extra);
    EXPECT_EQ(s.OA_Cover(a, 1, 500, 0, 0, 0), 31);
    EXPECT_EQ(s.OA_Cover(a, 32, 500, 0, 0, 0), 0) << "the area belongs to the first side";
    EXPECT_EQ(s.OA_Cover(a, 1, -500, 0, 0, 0), 0) << "left of the straight side";
    EXPECT_EQ(s.OA_Cover(a, 1, 10500, 0, 0, 0), 0) << "open polygons have no area";
    EXPECT_EQ(s.OA_Cover(a, 1, 11000, 0, 2, 0), 34);
    for (int i = 0; i < 40; ++i)  // grow past the direct-search size
      side(ItemLine, 800000 + i, 0, 1, 0, 0, 0, 0);
  }
}

}  // namespace
}  // namespace tvx
