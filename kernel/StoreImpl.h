// Internal data of the artwork store. Only the store's own .cpp files include this.
#pragma once

#include "kernel/ItemGeometry.h"
#include "kernel/ObjectTable.h"
#include "kernel/SpatialIndex.h"
#include "kernel/Store.h"

#include <array>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace tvx {

// A pool of records addressed by index, with freed indices reused.
template <class T> struct Pool {
  std::vector<T> data;
  std::vector<uint32_t> freeIndices;

  uint32_t alloc() {
    if (!freeIndices.empty()) {
      uint32_t i = freeIndices.back();
      freeIndices.pop_back();
      data[i] = T{};
      return i;
    }
    data.emplace_back();
    return uint32_t(data.size() - 1);
  }
  void release(uint32_t i) {
    data[i] = T{};
    freeIndices.push_back(i);
  }
};

struct ItemData {
  ItemFields f;
  int32_t self = 0;
  int32_t owner = 0;     // array handle, 0 while the item is free
  int32_t position = 0;  // 1-based index in the owner
  uint32_t spatialNode = SpatialIndex::NoNode;
};

struct ItemText {
  std::string text;
  std::string face;
};

struct EntryData {
  int32_t attributes = 0;
  int32_t x = 0;
  int32_t y = 0;
  int32_t rotation = 0;
  int32_t padStack = 0;
  int32_t self = 0;
  int32_t owner = 0;
  int32_t position = 0;
  uint32_t spatialNode = SpatialIndex::NoNode;
};

struct FrameCacheEntry {
  int32_t mask = 0;
  uint64_t version = 0;
  uint64_t padEpoch = 0;
  Box frame;
  bool any = false;
};

// A filled polygon run of an item array: its first and last side and its frame.
struct FilledRun {
  int32_t first = 0;
  int32_t last = 0;
  Box frame;
};

struct ArrayData {
  ObjectKind element = ObjectKind::Item;
  int32_t self = 0;
  int32_t ownerSymbol = 0;     // symbol handle for a symbol's arrays
  bool padStackItems = false;  // the item array of a pad stack
  std::vector<int32_t> objects;
  uint64_t version = 0;
  std::unique_ptr<SpatialIndex> index;
  std::vector<FrameCacheEntry> frames;
  // Entry arrays: the reach of each pad stack key with which its entries' boxes were indexed.
  std::unordered_map<int32_t, double> indexedReach;
  uint64_t boxesEpoch = UINT64_MAX;
  std::vector<FilledRun> filledRuns;  // valid while runsVersion == version
  std::vector<uint32_t> runNodes;     // the spatial node of each filled run
  std::unique_ptr<SpatialIndex> runIndex;
  uint64_t runsVersion = UINT64_MAX;
};

struct MapData {
  ObjectKind element = ObjectKind::Symbol;
  int32_t self = 0;
  int32_t ownerSymbol = 0;
  std::map<int32_t, int32_t> objects;
};

struct SymbolData {
  std::string name;
  int32_t attributes = 0;
  int32_t self = 0;
  int32_t owner = 0;  // map handle
  int32_t items = 0;
  int32_t entries = 0;
  int32_t padStacks = 0;
  int32_t compText = 0;
  int32_t layoutText = 0;
  int32_t branchText = 0;
};

struct PadStackData {
  int32_t self = 0;
  int32_t owner = 0;  // map handle
  int32_t diameter = 0;
  int32_t kind = 0;
  int32_t items = 0;
  int32_t attributes = 0;
  uint64_t reachEpoch = UINT64_MAX;
  double reach = 0;  // how far the pad reaches from its entry's point, at any rotation
};

// Database, hierarchy and layer: a name and an attribute word.
struct NamedData {
  std::string name;
  int32_t attributes = 0;
  int32_t self = 0;
  int32_t owner = 0;
};

class Store::Impl {
public:
  ObjectTable table;
  Pool<ItemData> items;
  std::unordered_map<uint32_t, ItemText> itemTexts;  // by item pool index
  Pool<EntryData> entries;
  Pool<ArrayData> arrays;
  Pool<MapData> maps;
  Pool<SymbolData> symbols;
  Pool<PadStackData> padStacks;
  Pool<NamedData> named;

  int32_t database = 0;
  int32_t hierarchyMap = 0;
  int32_t currentHierarchy = 1;
  int32_t layerArray = 0;
  int32_t symbolMap = 0;
  int32_t layoutTextArray = 0;
  std::array<uint8_t, 384> textSizeTable{};

  Placement compLocation;
  Placement padLocation;
  uint64_t padEpoch = 0;  // advances whenever any pad stack or its items change

  // Lookups: nullptr for a handle that is not live or not of the kind.
  ItemData* item(int32_t h) { return lookup(items, h, ObjectKind::Item); }
  EntryData* entry(int32_t h) { return lookup(entries, h, ObjectKind::Entry); }
  ArrayData* array(int32_t h) { return lookup(arrays, h, ObjectKind::Array); }
  MapData* map(int32_t h) { return lookup(maps, h, ObjectKind::Map); }
  ArrayData* array(ArrayHandle h) { return array(tableEntry(h)); }
  MapData* map(MapHandle h) { return map(tableEntry(h)); }
  SymbolData* symbolObject(int32_t h) { return lookup(symbols, h, ObjectKind::Symbol); }
  PadStackData* padStack(int32_t h) { return lookup(padStacks, h, ObjectKind::PadStack); }
  NamedData* namedObject(int32_t h);
  // The same lookups by the handle of the store's interface.
  ItemData* item(ObjectHandle h) { return item(tableEntry(h)); }
  EntryData* entry(ObjectHandle h) { return entry(tableEntry(h)); }
  SymbolData* symbolObject(ObjectHandle h) { return symbolObject(tableEntry(h)); }
  PadStackData* padStack(ObjectHandle h) { return padStack(tableEntry(h)); }
  NamedData* namedObject(ObjectHandle h) { return namedObject(tableEntry(h)); }
  SymbolData* symbolById(SymbolId id);
  ArrayData* symbolArray(SymbolId id, int32_t SymbolData::*which);

  const std::string* textOf(const ItemData& d) const;
  size_t textLength(const ItemData& d) const;

  int32_t makeNamed(ObjectKind kind, const std::string& name);
  int32_t makeArray(ObjectKind element, int32_t ownerSymbol, bool padStackItems);
  int32_t makeMap(ObjectKind element, int32_t ownerSymbol);
  int32_t makeItem(const ItemFields& fields, const std::string* text, const std::string* face);
  int32_t makeEntry();
  int32_t makePadStack();
  int32_t makeSymbol(SymbolId key, const std::string& name);

  // Deletes an object and all it holds. The caller has taken it out of its container.
  void destroy(int32_t handle);

  // Called after a member of an array changed its geometry or status.
  void touchArray(int32_t arrayHandle);
  void reindexMember(ArrayData& a, int32_t member);
  void unindexMember(ArrayData& a, int32_t member);
  void indexMember(ArrayData& a, int32_t member);
  // The kept frame of all an item array's members (mask -1), valid at version before, takes in a
  // new member, so that a large import is never walked again for its frame.
  void growWholeFrame(ArrayData& a, uint64_t before, int32_t member);
  // touchArray for a change of marks or style alone: an item's frame depends on neither, so the
  // kept frame of all members stays.
  void touchMarks(int32_t arrayHandle);
  void reindexMember(ArrayData& a, ObjectHandle member) { reindexMember(a, tableEntry(member)); }
  void unindexMember(ArrayData& a, ObjectHandle member) { unindexMember(a, tableEntry(member)); }
  void indexMember(ArrayData& a, ObjectHandle member) { indexMember(a, tableEntry(member)); }
  void destroy(ObjectHandle handle) { destroy(tableEntry(handle)); }
  ObjectKind kindOf(ObjectHandle handle) const { return table.kindOf(tableEntry(handle)); }
  void buildIndex(ArrayData& a);
  Box memberBox(const ArrayData& a, int32_t member);

  // Pad stack of an entry's symbol under key, nullptr when there is none.
  PadStackData* padStackOfEntry(const EntryData& e);
  Box padStackFrame(const PadStackData& p);
  double padReach(PadStackData& p);
  double entryReach(const EntryData& e);
  // Re-boxes the entries whose pad stack has grown since they were indexed.
  void refreshEntryBoxes(ArrayData& a);
  bool entryCovers(EntryData& e, double x, double y, double tolerance);
  Box entryFrame(EntryData& e);

  bool frameOf(ArrayData& a, int32_t mask, Box& frame);

  // Lowest first-side index from firstIndex on of a filled run whose area holds (x, y);
  // INT32_MAX when none.
  int32_t filledRunHit(ArrayData& a, int32_t firstIndex, double x, double y);

private:
  template <class T> T* lookup(Pool<T>& pool, int32_t h, ObjectKind kind) {
    uint32_t i = table.find(h, kind);
    return i == ObjectTable::NotFound ? nullptr : &pool.data[i];
  }
};

inline FrameRect toFrameRect(const Box& b) { return {b.minX, b.minY, b.maxX, b.maxY}; }

}  // namespace tvx
