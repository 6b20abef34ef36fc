// The store's object life: making, finding and deleting objects, and the database.
#include "kernel/StoreImpl.h"

namespace tvx {

NamedData* Store::Impl::namedObject(int32_t h) {
  ObjectKind k = table.kindOf(h);
  if (k != ObjectKind::Database && k != ObjectKind::Hierarchy && k != ObjectKind::Layer)
    return nullptr;
  return &named.data[table.find(h, k)];
}

SymbolData* Store::Impl::symbolById(SymbolId id) {
  MapData* m = map(symbolMap);
  if (!m)
    return nullptr;
  auto it = m->objects.find(id);
  return it == m->objects.end() ? nullptr : symbolObject(it->second);
}

ArrayData* Store::Impl::symbolArray(SymbolId id, int32_t SymbolData::*which) {
  SymbolData* s = symbolById(id);
  return s ? array(s->*which) : nullptr;
}

const std::string* Store::Impl::textOf(const ItemData& d) const {
  if (d.f.Type != ItemVectorText && d.f.Type != ItemTrueTypeText)
    return nullptr;
  auto it = itemTexts.find(table.find(d.self, ObjectKind::Item));
  return it == itemTexts.end() ? nullptr : &it->second.text;
}

size_t Store::Impl::textLength(const ItemData& d) const {
  const std::string* t = textOf(d);
  return t ? t->size() : 0;
}

int32_t Store::Impl::makeNamed(ObjectKind kind, const std::string& name) {
  uint32_t i = named.alloc();
  int32_t h = table.add(kind, i);
  if (!h) {
    named.release(i);
    return 0;
  }
  named.data[i].name = name;
  named.data[i].self = h;
  return h;
}

int32_t Store::Impl::makeArray(ObjectKind element, int32_t ownerSymbol, bool padStackItems) {
  uint32_t i = arrays.alloc();
  int32_t h = table.add(ObjectKind::Array, i);
  if (!h) {
    arrays.release(i);
    return 0;
  }
  ArrayData& a = arrays.data[i];
  a.element = element;
  a.self = h;
  a.ownerSymbol = ownerSymbol;
  a.padStackItems = padStackItems;
  return h;
}

int32_t Store::Impl::makeMap(ObjectKind element, int32_t ownerSymbol) {
  uint32_t i = maps.alloc();
  int32_t h = table.add(ObjectKind::Map, i);
  if (!h) {
    maps.release(i);
    return 0;
  }
  maps.data[i].element = element;
  maps.data[i].self = h;
  maps.data[i].ownerSymbol = ownerSymbol;
  return h;
}

int32_t Store::Impl::makeItem(const ItemFields& fields, const std::string* text,
                              const std::string* face) {
  uint32_t i = items.alloc();
  int32_t h = table.add(ObjectKind::Item, i);
  if (!h) {
    items.release(i);
    return 0;
  }
  ItemData& d = items.data[i];
  d.f = fields;
  d.self = h;
  if (text || face)
    itemTexts[i] = ItemText{text ? *text : std::string(), face ? *face : std::string()};
  return h;
}

int32_t Store::Impl::makeEntry() {
  uint32_t i = entries.alloc();
  int32_t h = table.add(ObjectKind::Entry, i);
  if (!h) {
    entries.release(i);
    return 0;
  }
  entries.data[i].self = h;
  return h;
}

int32_t Store::Impl::makePadStack() {
  uint32_t i = padStacks.alloc();
  int32_t h = table.add(ObjectKind::PadStack, i);
  if (!h) {
    padStacks.release(i);
    return 0;
  }
  int32_t itemsArray = makeArray(ObjectKind::Item, 0, true);
  if (!itemsArray) {
    table.remove(h);
    padStacks.release(i);
    return 0;
  }
  padStacks.data[i].self = h;
  padStacks.data[i].items = itemsArray;
  return h;
}

int32_t Store::Impl::makeSymbol(SymbolId key, const std::string& name) {
  MapData* m = map(symbolMap);
  if (!m || key == 0 || m->objects.count(key))
    return 0;
  uint32_t i = symbols.alloc();
  int32_t h = table.add(ObjectKind::Symbol, i);
  if (!h) {
    symbols.release(i);
    return 0;
  }
  int32_t itemsArray = makeArray(ObjectKind::Item, h, false);
  int32_t entryArray = makeArray(ObjectKind::Entry, h, false);
  int32_t padMap = makeMap(ObjectKind::PadStack, h);
  SymbolData& s = symbols.data[i];
  s.self = h;
  s.name = name;
  s.items = itemsArray;
  s.entries = entryArray;
  s.padStacks = padMap;
  s.owner = symbolMap;
  if (!itemsArray || !entryArray || !padMap) {
    destroy(h);
    return 0;
  }
  map(symbolMap)->objects[key] = h;
  return key;
}

void Store::Impl::destroy(int32_t h) {
  switch (table.kindOf(h)) {
  case ObjectKind::Item: {
    uint32_t i = table.find(h, ObjectKind::Item);
    itemTexts.erase(i);
    items.release(i);
    break;
  }
  case ObjectKind::Entry:
    entries.release(table.find(h, ObjectKind::Entry));
    break;
  case ObjectKind::Array: {
    uint32_t i = table.find(h, ObjectKind::Array);
    std::vector<int32_t> members = std::move(arrays.data[i].objects);
    bool pads = arrays.data[i].padStackItems;
    arrays.release(i);
    for (int32_t m : members)
      destroy(m);
    if (pads)
      ++padEpoch;
    break;
  }
  case ObjectKind::Map: {
    uint32_t i = table.find(h, ObjectKind::Map);
    std::map<int32_t, int32_t> members = std::move(maps.data[i].objects);
    maps.release(i);
    for (auto& [key, m] : members)
      destroy(m);
    break;
  }
  case ObjectKind::Symbol: {
    SymbolData s = std::move(symbols.data[table.find(h, ObjectKind::Symbol)]);
    symbols.release(table.find(h, ObjectKind::Symbol));
    for (int32_t part : {s.items, s.entries, s.padStacks, s.compText, s.layoutText, s.branchText})
      if (part)
        destroy(part);
    break;
  }
  case ObjectKind::PadStack: {
    uint32_t i = table.find(h, ObjectKind::PadStack);
    int32_t itemsArray = padStacks.data[i].items;
    padStacks.release(i);
    destroy(itemsArray);
    ++padEpoch;
    break;
  }
  case ObjectKind::Database:
  case ObjectKind::Hierarchy:
  case ObjectKind::Layer:
    named.release(table.find(h, table.kindOf(h)));
    break;
  case ObjectKind::Free:
    return;
  }
  table.remove(h);
}

Store::Store(const std::string& projectName) : impl_(std::make_unique<Impl>()) {
  Impl& s = *impl_;
  s.database = s.makeNamed(ObjectKind::Database, projectName);
  s.hierarchyMap = s.makeMap(ObjectKind::Hierarchy, 0);
  int32_t hierarchy = s.makeNamed(ObjectKind::Hierarchy, "MAIN");
  s.named.data[s.table.find(hierarchy, ObjectKind::Hierarchy)].owner = s.hierarchyMap;
  s.map(s.hierarchyMap)->objects[s.currentHierarchy] = hierarchy;
  s.layerArray = s.makeArray(ObjectKind::Layer, 0, false);
  for (int n = 1; n <= 32; ++n) {
    int32_t layer = s.makeNamed(ObjectKind::Layer, "Layer " + std::to_string(n));
    s.named.data[s.table.find(layer, ObjectKind::Layer)].owner = s.layerArray;
    s.array(s.layerArray)->objects.push_back(layer);
  }
  s.symbolMap = s.makeMap(ObjectKind::Symbol, 0);
  s.layoutTextArray = s.makeArray(ObjectKind::Item, 0, false);
}

Store::~Store() = default;

size_t Store::liveObjectCount() const { return impl_->table.liveCount(); }

ObjectHandle Store::DB_DataBase() const { return objectHandle(impl_->database); }
int32_t Store::DB_CurHier() const { return impl_->currentHierarchy; }
MapHandle Store::DB_HierarchyMap() const { return mapHandle(impl_->hierarchyMap); }
ArrayHandle Store::DB_LayerArray() const { return arrayHandle(impl_->layerArray); }
MapHandle Store::DB_SymbMap() const { return mapHandle(impl_->symbolMap); }
ArrayHandle Store::DB_LayoutTextArray() const { return arrayHandle(impl_->layoutTextArray); }
uint8_t* Store::DB_TextSizeTable() { return impl_->textSizeTable.data(); }

const char* Store::O_GetName(ObjectHandle object) const {
  Impl& s = *impl_;
  if (SymbolData* sym = s.symbolObject(object))
    return sym->name.c_str();
  if (NamedData* n = s.namedObject(object))
    return n->name.c_str();
  return nullptr;
}

namespace {
int32_t* attributesOf(Store::Impl& s, ObjectHandle object, int32_t*& ownerArray) {
  ownerArray = nullptr;
  if (ItemData* d = s.item(object)) {
    ownerArray = &d->owner;
    return &d->f.Attributes;
  }
  if (EntryData* e = s.entry(object)) {
    ownerArray = &e->owner;
    return &e->attributes;
  }
  if (SymbolData* sym = s.symbolObject(object))
    return &sym->attributes;
  if (PadStackData* p = s.padStack(object))
    return &p->attributes;
  if (NamedData* n = s.namedObject(object))
    return &n->attributes;
  return nullptr;
}
}  // namespace

int32_t Store::O_GetStatus(ObjectHandle object) const {
  int32_t* owner;
  int32_t* a = attributesOf(*impl_, object, owner);
  return a ? *a : 0;
}

int32_t Store::O_Mask(ObjectHandle object, int32_t value, int32_t mask) {
  int32_t* owner;
  int32_t* a = attributesOf(*impl_, object, owner);
  if (!a)
    return 0;
  *a = (*a & ~mask) | (value & mask);
  if (owner && *owner)
    impl_->touchMarks(*owner);
  return 1;
}

int32_t Store::O_ChangePosition(ObjectHandle entry, int32_t x, int32_t y) {
  EntryData* e = impl_->entry(entry);
  if (!e)
    return 0;
  e->x = x;
  e->y = y;
  if (e->owner) {
    ArrayData* a = impl_->array(e->owner);
    impl_->reindexMember(*a, entry);
    impl_->touchArray(e->owner);
  }
  return 1;
}

}  // namespace tvx
