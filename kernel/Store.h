// The artwork store: databases, symbols, items, entries, pad stacks, object arrays and maps,
// behind the kernel's operation names. Everything here is single-threaded.
//
// Handles are 32-bit: a slot number and a generation. A slot remembers the kind of object it holds,
// so a stale or wrong-kind handle is refused by every operation, which then returns its failure
// value (0 or negative) and changes nothing. Lookups are O(1); arrays are plain vectors of handles.
// Arrays that are searched by position (OA_Cover) keep a spatial index that is built on first use
// and kept up to date on every change; symbol frames are cached until the symbol changes.
#pragma once

#include "kernel/ItemGeometry.h"
#include "kernel/KernelTypes.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tvx {

class Store {
public:
  // Opens a store with one database named projectName, one hierarchy, 32 layers, and an empty
  // symbol map: the state the host leaves when the component starts.
  explicit Store(const std::string& projectName = "PROJECT");
  ~Store();
  Store(const Store&) = delete;
  Store& operator=(const Store&) = delete;

  // Database.
  ObjectHandle DB_DataBase() const;
  int32_t DB_CurHier() const;
  MapHandle DB_HierarchyMap() const;
  ArrayHandle DB_LayerArray() const;
  MapHandle DB_SymbMap() const;
  ArrayHandle DB_LayoutTextArray() const;
  uint8_t* DB_TextSizeTable();  // 384 bytes

  // Objects.
  const char* O_GetName(ObjectHandle object) const;  // nullptr on failure
  int32_t O_GetStatus(ObjectHandle object) const;
  int32_t O_Mask(ObjectHandle object, int32_t value, int32_t mask);
  int32_t O_ChangePosition(ObjectHandle entry, int32_t x, int32_t y);

  // Object arrays, 1-based.
  int32_t OA_GetCount(ArrayHandle array) const;
  ObjectHandle OA_Object(ArrayHandle array, int32_t index) const;
  int32_t OA_Add(ArrayHandle array, ObjectHandle object);
  int32_t OA_Insert(ArrayHandle array, ObjectHandle object, int32_t index);
  // A new item of record (its Link and Gap included) added at the end of an item array: the work
  // of I_MakeItem, I_ChangeItemLink, I_ChangeItemGap and OA_Add with one lookup of the array, for
  // the readers' streams of elements. Returns its index, 0 when the array takes no item.
  int32_t OA_AddNewItem(ArrayHandle array, const ItemRecord& record);
  int32_t OA_Delete(ArrayHandle array, int32_t index);
  // Deletes every object whose Attributes hold all bits of mask, in one pass; the others keep
  // their order. The number deleted.
  int32_t OA_DeleteMarked(ArrayHandle array, int32_t mask);
  int32_t OA_MaskAll(ArrayHandle array, int32_t value, int32_t mask);
  int32_t OA_SearchMask(ArrayHandle array, int32_t firstIndex, int32_t mask) const;
  // First index from firstIndex on whose object covers (x, y) within tolerance; 0 when none.
  // kinds is 15 on entry arrays and 0 on item arrays; the last two arguments are unused.
  int32_t OA_Cover(ArrayHandle array, int32_t firstIndex, int32_t x, int32_t y, int32_t tolerance,
                   int32_t kinds, int32_t unused1 = 0, int32_t unused2 = 0);

  // Object maps, walked in key order.
  ObjectHandle OM_Object(MapHandle map, int32_t key) const;
  int32_t OM_Add(MapHandle map, ObjectHandle object, int32_t key);
  int32_t OM_Delete(MapHandle map, int32_t key);
  int32_t OM_GetFirst(MapHandle map) const;
  int32_t OM_SearchMask(MapHandle map, int32_t* cursor, int32_t value, int32_t mask) const;

  // Items.
  ObjectHandle I_MakeItem(const ItemRecord& record);
  // The two size values go to Width and Height in this order, as I_ReadItem gives them back.
  ObjectHandle I_MakeText(int32_t x, int32_t y, int32_t angle, int32_t size1, int32_t size2,
                          const std::string& text, int32_t attributes, int32_t colour,
                          int32_t lineWidth);
  ObjectHandle I_MakeTTFText(const ItemRecord& record, const std::string& text,
                             const std::string& face);
  int32_t I_ReadItem(ObjectHandle item, ItemRecord& record) const;
  int32_t I_ReadItemAbs(ObjectHandle item, ItemRecord& record) const;
  int32_t I_FrameItem(ObjectHandle item, FrameRect& frame) const;
  int32_t I_ChangeItemAttr(ObjectHandle item, int32_t attributes, int32_t colour, int32_t style,
                           int32_t lineWidth);
  int32_t I_ChangeItemLink(ObjectHandle item, int32_t link);
  int32_t I_ChangeItemGap(ObjectHandle item, int32_t gap);
  int32_t I_ChangeItemXY(ObjectHandle item, const ItemRecord& record);
  int32_t I_ChangeTextSize(ObjectHandle item, int32_t size1, int32_t size2);
  void I_APtoLP(int32_t& x, int32_t& y) const;

  // Symbols.
  ObjectHandle S_Symbol(SymbolId id) const;
  SymbolId S_CreateSymbol(SymbolId id, const std::string& name);
  SymbolId S_CopySymbol(SymbolId source, SymbolId target);
  // Gives the symbol source the id target, in place of the symbol that had it, without a copy:
  // source is free afterwards. Returns target, or 0 when there is no symbol source.
  SymbolId S_MoveSymbol(SymbolId source, SymbolId target);
  ArrayHandle S_SymbolItemArray(SymbolId id) const;
  ArrayHandle S_SymbolEntryArray(SymbolId id) const;
  MapHandle S_SymbolPadStackMap(SymbolId id) const;
  ArrayHandle C_CompTextArray(SymbolId id);
  ArrayHandle L_CompTextArray(SymbolId id);
  ArrayHandle B_BranchTextArray(SymbolId id);
  ObjectHandle S_SymbolItem(SymbolId id, int32_t index) const;
  ObjectHandle S_Entry(SymbolId id, int32_t index) const;
  int32_t S_ReadEntry(SymbolId id, int32_t index, EntryRecord& record) const;
  int32_t S_InsertEntry(SymbolId id, int32_t where, int32_t x, int32_t y);
  int32_t S_ChangePadRotation(SymbolId id, int32_t index, int32_t rotation);
  int32_t S_ChangePadPadStack(SymbolId id, int32_t index, int32_t padStackKey);
  int32_t S_FrameSymbolItems(SymbolId id, int32_t mask, FrameRect& frame);
  int32_t S_FrameSymbolEntries(SymbolId id, int32_t mask, FrameRect& frame);
  void S_SetCompLocation(int32_t x, int32_t y, int32_t angle, int32_t mirror);
  void S_SetPadLocation(int32_t x, int32_t y, int32_t rotation);
  // Component search before a cover search of entries. This store holds no placed components,
  // so it never finds one and returns 0.
  int32_t L_CoverComponent(int32_t, int32_t, int32_t, int32_t* word, int32_t kinds, int32_t,
                           int32_t) const;

  // Pad stacks.
  ObjectHandle S_MakePadStack();
  int32_t S_ChangePadStackHole(ObjectHandle padStack, int32_t diameter, int32_t kind);
  int32_t S_ReadPadStack(ObjectHandle padStack, PadStackRecord& record) const;
  ArrayHandle S_PadStackItemArray(ObjectHandle padStack) const;

  // Positions (1-based, ascending) of the members of an item or entry array whose frames meet the
  // box; an entry counts by its point grown by the reach of its own pad. Uses the array's
  // spatial index, made on first use. Returns false, with no positions, when the box holds the
  // whole array: the caller then takes every member.
  bool membersInBox(ArrayHandle array, const FrameRect& box, std::vector<int32_t>& positions);

  // The same for an item array, each position with the item's fields read in place (valid until the
  // store next changes), so that a drawing walk reaches them without the handle lookups.
  struct ItemInBox {
    int32_t position = 0;
    const ItemFields* fields = nullptr;
  };
  bool itemsInBox(ArrayHandle array, const FrameRect& box, std::vector<ItemInBox>& items);
  // Which items a drawing of box needs. True when it takes every member of the array: the box
  // holds most of the array's frame, and a walk in order is cheaper than the index and an ordering
  // (the drawing passes over what lies outside). Otherwise met holds, as itemsInBox gives them,
  // the members whose frames meet the box.
  bool drawsEveryItem(ArrayHandle array, const FrameRect& box, std::vector<ItemInBox>& met);
  // Calls visit(position, fields) for the members first..last of an item array in order, the
  // fields read in place. visit must not change the store. Safe from several threads while the
  // store does not change.
  void forEachItem(ArrayHandle array, int32_t first, int32_t last,
                   const std::function<void(int32_t, const ItemFields*)>& visit) const;

  // The numeric fields of an item, and its text and face when it has them, read in place without a
  // copy: for walks that touch every element. Valid until the store next changes; nullptr for a
  // handle that is not a live item.
  const ItemFields* itemFields(ObjectHandle item, const std::string** text = nullptr,
                               const std::string** face = nullptr) const;

  // Makes room for count more items at once: for readers that know roughly how many they add.
  void reserveItems(size_t count);

  // Deletes an object that no array or map holds (an item or pad stack whose adding failed).
  // Returns 0 for an object that has an owner or is not live.
  int32_t deleteFreeObject(ObjectHandle object);

  // Number of live objects of all kinds; for tests and diagnostics.
  size_t liveObjectCount() const;

  // The store's internal data; opaque outside the store's own files.
  class Impl;

private:
  std::unique_ptr<Impl> impl_;
};

}  // namespace tvx
