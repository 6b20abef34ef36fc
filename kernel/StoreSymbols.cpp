// Symbols, entries and pad stacks: creating, copying, framing and the store's two locations.
#include "kernel/StoreImpl.h"

#include <algorithm>
#include <cmath>

namespace tvx {

namespace {
bool matchesMask(int32_t attributes, int32_t mask) {
  return mask == -1 || (attributes & mask) != 0;
}
}  // namespace

// ---- Pad stacks and entries ----

PadStackData* Store::Impl::padStackOfEntry(const EntryData& e) {
  ArrayData* a = array(e.owner);
  SymbolData* sym = a ? symbolObject(a->ownerSymbol) : nullptr;
  MapData* m = sym ? map(sym->padStacks) : nullptr;
  if (!m)
    return nullptr;
  auto it = m->objects.find(e.padStack);
  return it == m->objects.end() ? nullptr : padStack(it->second);
}

Box Store::Impl::padStackFrame(const PadStackData& p) {
  int32_t r = std::max(0, p.diameter) / 2 + (std::max(0, p.diameter) & 1);
  Box frame{-r, -r, r, r};
  if (ArrayData* a = array(p.items))
    for (int32_t member : a->objects) {
      ItemData* d = item(member);
      frame = unite(frame, itemFrame(d->f, textLength(*d)));
    }
  return frame;
}

double Store::Impl::padReach(PadStackData& p) {
  if (p.reachEpoch == padEpoch)
    return p.reach;
  Box f = padStackFrame(p);
  double corner = std::max({std::abs(double(f.minX)), std::abs(double(f.maxX)),
                            std::abs(double(f.minY)), std::abs(double(f.maxY))});
  p.reach = corner * std::sqrt(2.0);  // any rotation
  p.reachEpoch = padEpoch;
  return p.reach;
}

double Store::Impl::entryReach(const EntryData& e) {
  PadStackData* p = padStackOfEntry(e);
  return p ? padReach(*p) : 0.0;
}

void Store::Impl::refreshEntryBoxes(ArrayData& a) {
  // Only entries reach as far as their pads; the boxes of items never change with pad stacks.
  if (a.element != ObjectKind::Entry || !a.index || a.boxesEpoch == padEpoch)
    return;
  a.boxesEpoch = padEpoch;
  SymbolData* sym = symbolObject(a.ownerSymbol);
  MapData* pads = sym ? map(sym->padStacks) : nullptr;
  if (!pads)
    return;
  std::unordered_map<int32_t, double> grown;
  for (auto& [key, handle] : pads->objects) {
    double reach = padReach(*padStack(handle));
    if (reach > a.indexedReach[key])
      grown[key] = reach;
  }
  if (grown.empty())
    return;
  for (int32_t member : a.objects)
    if (grown.count(entry(member)->padStack))
      reindexMember(a, member);
  for (auto& [key, reach] : grown)
    a.indexedReach[key] = reach;
}

bool Store::Impl::entryCovers(EntryData& e, double x, double y, double tolerance) {
  double dx = x - e.x, dy = y - e.y;
  double distance = std::hypot(dx, dy);
  if (distance <= tolerance)
    return true;
  PadStackData* p = padStackOfEntry(e);
  if (!p)
    return false;
  if (distance <= std::max(0, p->diameter) / 2.0 + tolerance)
    return true;
  ArrayData* a = array(p->items);
  if (!a || a->objects.empty())
    return false;
  // The point in the pad's own coordinates.
  int32_t lx = clampToInt32(x), ly = clampToInt32(y);
  unplacePoint(lx, ly, Placement{e.x, e.y, e.rotation, false});
  for (int32_t member : a->objects) {
    ItemData* d = item(member);
    if (itemCovers(d->f, textLength(*d), lx, ly, tolerance))
      return true;
  }
  return false;
}

Box Store::Impl::entryFrame(EntryData& e) {
  Box point{e.x, e.y, e.x, e.y};
  PadStackData* p = padStackOfEntry(e);
  if (!p)
    return point;
  return unite(point, placeBox(padStackFrame(*p), Placement{e.x, e.y, e.rotation, false}));
}

bool Store::Impl::frameOf(ArrayData& a, int32_t mask, Box& frame) {
  uint64_t epoch = a.element == ObjectKind::Entry ? padEpoch : 0;
  for (const FrameCacheEntry& c : a.frames)
    if (c.mask == mask && c.version == a.version && c.padEpoch == epoch) {
      frame = c.frame;
      return c.any;
    }
  bool any = false;
  Box result{};
  for (int32_t member : a.objects) {
    Box b;
    if (a.element == ObjectKind::Entry) {
      EntryData* e = entry(member);
      if (!matchesMask(e->attributes, mask))
        continue;
      b = entryFrame(*e);
    } else {
      ItemData* d = item(member);
      if (!matchesMask(d->f.Attributes, mask))
        continue;
      b = itemFrame(d->f, textLength(*d));
    }
    result = any ? unite(result, b) : b;
    any = true;
  }
  // Keep the few masks in use; the cache is small and rebuilt after every change.
  std::erase_if(a.frames, [&](const FrameCacheEntry& c) { return c.version != a.version; });
  if (a.frames.size() >= 8)
    a.frames.erase(a.frames.begin());
  a.frames.push_back({mask, a.version, epoch, result, any});
  frame = result;
  return any;
}

// ---- Symbols ----

ObjectHandle Store::S_Symbol(SymbolId id) const {
  SymbolData* s = impl_->symbolById(id);
  return s ? objectHandle(s->self) : ObjectHandle::None;
}

SymbolId Store::S_CreateSymbol(SymbolId id, const std::string& name) {
  if (id == 0) {
    MapData* m = impl_->map(impl_->symbolMap);
    if (!m)
      return 0;
    // The lowest free positive key; a deleted scratch symbol's key is free again.
    id = 1;
    for (auto it = m->objects.lower_bound(1); it != m->objects.end() && it->first == id; ++it)
      ++id;
    if (id <= 0)
      return 0;
  }
  return impl_->makeSymbol(id, name);
}

SymbolId Store::S_MoveSymbol(SymbolId source, SymbolId target) {
  Impl& s = *impl_;
  MapData* m = s.map(s.symbolMap);
  if (!m || target == 0)
    return 0;
  auto it = m->objects.find(source);
  if (it == m->objects.end())
    return 0;
  if (source == target)
    return target;
  const int32_t object = it->second;
  m->objects.erase(it);
  if (s.symbolById(target))
    OM_Delete(mapHandle(s.symbolMap), target);
  m->objects[target] = object;
  return target;
}

SymbolId Store::S_CopySymbol(SymbolId source, SymbolId target) {
  Impl& s = *impl_;
  if (!s.symbolById(source))
    return 0;
  if (source == target)
    return target;
  if (s.symbolById(target))
    OM_Delete(mapHandle(s.symbolMap), target);
  std::string name = s.symbolById(source)->name;
  if (s.makeSymbol(target, name) != target)
    return 0;
  // Fetch both records anew after each allocation: pools may move.
  s.symbolById(target)->attributes = s.symbolById(source)->attributes;

  // Fields are read in place; only texts are copied as strings. The copy's array is sized once.
  auto copyItems = [&](ArrayHandle from, ArrayHandle to) {
    const int32_t n = OA_GetCount(from);
    reserveItems(size_t(n));
    s.array(to)->objects.reserve(size_t(n));
    for (int32_t i = 1; i <= n; ++i) {
      const std::string* text = nullptr;
      const std::string* face = nullptr;
      const ItemFields* original = itemFields(OA_Object(from, i), &text, &face);
      if (!original)
        continue;
      const ItemFields fields = *original;  // the pool may move as the copy is made
      ObjectHandle copy = ObjectHandle::None;
      if (text || face) {
        const std::string t = text ? *text : std::string(), f = face ? *face : std::string();
        copy = objectHandle(s.makeItem(fields, &t, &f));
      } else {
        copy = objectHandle(s.makeItem(fields, nullptr, nullptr));
      }
      OA_Add(to, copy);
    }
  };
  copyItems(S_SymbolItemArray(source), S_SymbolItemArray(target));

  MapHandle fromPads = S_SymbolPadStackMap(source);
  int32_t cursor = OM_GetFirst(fromPads);
  while (int32_t key = OM_SearchMask(fromPads, &cursor, 0, 0)) {
    ObjectHandle original = OM_Object(fromPads, key);
    PadStackRecord pr;
    S_ReadPadStack(original, pr);
    ObjectHandle copy = S_MakePadStack();
    S_ChangePadStackHole(copy, pr.HoleDiameter, pr.HoleKind);
    s.padStack(copy)->attributes = s.padStack(original)->attributes;
    copyItems(S_PadStackItemArray(original), S_PadStackItemArray(copy));
    OM_Add(S_SymbolPadStackMap(target), copy, key);
  }

  for (int32_t i = 1, n = OA_GetCount(S_SymbolEntryArray(source)); i <= n; ++i) {
    EntryData original = *s.entry(OA_Object(S_SymbolEntryArray(source), i));
    int32_t index = S_InsertEntry(target, -1, original.x, original.y);
    EntryData* copy = s.entry(OA_Object(S_SymbolEntryArray(target), index));
    copy->rotation = original.rotation;
    copy->padStack = original.padStack;
    copy->attributes = original.attributes;
  }

  for (auto part : {&SymbolData::compText, &SymbolData::layoutText, &SymbolData::branchText}) {
    const int32_t from = s.symbolById(source)->*part;
    if (!from)
      continue;
    const int32_t to = s.makeArray(ObjectKind::Item, s.symbolById(target)->self, false);
    s.symbolById(target)->*part = to;
    copyItems(arrayHandle(from), arrayHandle(to));
  }
  return target;
}

ArrayHandle Store::S_SymbolItemArray(SymbolId id) const {
  SymbolData* s = impl_->symbolById(id);
  return arrayHandle(s ? s->items : 0);
}

ArrayHandle Store::S_SymbolEntryArray(SymbolId id) const {
  SymbolData* s = impl_->symbolById(id);
  return arrayHandle(s ? s->entries : 0);
}

MapHandle Store::S_SymbolPadStackMap(SymbolId id) const {
  SymbolData* s = impl_->symbolById(id);
  return mapHandle(s ? s->padStacks : 0);
}

namespace {
// A symbol's text array, made on first use.
ArrayHandle textArray(Store::Impl& s, SymbolId id, int32_t SymbolData::*which) {
  SymbolData* sym = s.symbolById(id);
  if (!sym)
    return ArrayHandle::None;
  if (!(sym->*which)) {
    int32_t self = sym->self;
    const int32_t a = s.makeArray(ObjectKind::Item, self, false);
    s.symbolById(id)->*which = a;
  }
  return arrayHandle(s.symbolById(id)->*which);
}
}  // namespace

ArrayHandle Store::C_CompTextArray(SymbolId id) {
  return textArray(*impl_, id, &SymbolData::compText);
}
ArrayHandle Store::L_CompTextArray(SymbolId id) {
  return textArray(*impl_, id, &SymbolData::layoutText);
}
ArrayHandle Store::B_BranchTextArray(SymbolId id) {
  return textArray(*impl_, id, &SymbolData::branchText);
}

ObjectHandle Store::S_SymbolItem(SymbolId id, int32_t index) const {
  return OA_Object(S_SymbolItemArray(id), index);
}

ObjectHandle Store::S_Entry(SymbolId id, int32_t index) const {
  return OA_Object(S_SymbolEntryArray(id), index);
}

int32_t Store::S_ReadEntry(SymbolId id, int32_t index, EntryRecord& record) const {
  EntryData* e = impl_->entry(S_Entry(id, index));
  if (!e)
    return 0;
  record = EntryRecord{};
  record.Attributes = e->attributes;
  record.X = e->x;
  record.Y = e->y;
  record.Rotation = e->rotation;
  record.PadStack = e->padStack;
  return 1;
}

int32_t Store::S_InsertEntry(SymbolId id, int32_t where, int32_t x, int32_t y) {
  ArrayHandle entries = S_SymbolEntryArray(id);
  if (entries == ArrayHandle::None)
    return 0;
  ObjectHandle e = objectHandle(impl_->makeEntry());
  if (e == ObjectHandle::None)
    return 0;
  impl_->entry(e)->x = x;
  impl_->entry(e)->y = y;
  int32_t count = OA_GetCount(entries);
  int32_t index = (where >= 1 && where <= count + 1) ? where : count + 1;
  int32_t result = OA_Insert(entries, e, index);
  if (!result)
    impl_->destroy(e);
  return result;
}

namespace {
template <class Change>
int32_t changeEntry(Store& store, Store::Impl& s, SymbolId id, int32_t index, Change&& change) {
  ObjectHandle h = store.S_Entry(id, index);
  EntryData* e = s.entry(h);
  if (!e)
    return 0;
  change(*e);
  if (ArrayData* a = s.array(e->owner))
    s.reindexMember(*a, h);  // a new pad stack gives the entry another reach
  s.touchArray(e->owner);
  return 1;
}
}  // namespace

int32_t Store::S_ChangePadRotation(SymbolId id, int32_t index, int32_t rotation) {
  return changeEntry(*this, *impl_, id, index, [&](EntryData& e) { e.rotation = rotation; });
}

int32_t Store::S_ChangePadPadStack(SymbolId id, int32_t index, int32_t padStackKey) {
  return changeEntry(*this, *impl_, id, index, [&](EntryData& e) { e.padStack = padStackKey; });
}

namespace {
// Frame of the members of one of a symbol's arrays that have a bit of mask, after the component
// location.
int32_t frameSymbolArray(Store::Impl& s, SymbolId id, int32_t SymbolData::*which, int32_t mask,
                         FrameRect& frame) {
  ArrayData* a = s.symbolArray(id, which);
  Box b;
  if (!a || !s.frameOf(*a, mask, b)) {
    frame = FrameRect{};
    return 0;
  }
  frame = toFrameRect(placeBox(b, s.compLocation));
  return 1;
}
}  // namespace

int32_t Store::S_FrameSymbolItems(SymbolId id, int32_t mask, FrameRect& frame) {
  return frameSymbolArray(*impl_, id, &SymbolData::items, mask, frame);
}

int32_t Store::S_FrameSymbolEntries(SymbolId id, int32_t mask, FrameRect& frame) {
  return frameSymbolArray(*impl_, id, &SymbolData::entries, mask, frame);
}

void Store::S_SetCompLocation(int32_t x, int32_t y, int32_t angle, int32_t mirror) {
  impl_->compLocation = Placement{x, y, angle, mirror != 0};
}

void Store::S_SetPadLocation(int32_t x, int32_t y, int32_t rotation) {
  impl_->padLocation = Placement{x, y, rotation, false};
}

int32_t Store::L_CoverComponent(int32_t, int32_t, int32_t, int32_t*, int32_t, int32_t,
                                int32_t) const {
  return 0;
}

ObjectHandle Store::S_MakePadStack() { return objectHandle(impl_->makePadStack()); }

int32_t Store::S_ChangePadStackHole(ObjectHandle padStack, int32_t diameter, int32_t kind) {
  PadStackData* p = impl_->padStack(padStack);
  if (!p)
    return 0;
  p->diameter = diameter;
  p->kind = kind;
  ++impl_->padEpoch;
  return 1;
}

int32_t Store::S_ReadPadStack(ObjectHandle padStack, PadStackRecord& record) const {
  PadStackData* p = impl_->padStack(padStack);
  if (!p)
    return 0;
  record = PadStackRecord{};
  record.HoleDiameter = p->diameter;
  record.HoleKind = p->kind;
  return 1;
}

ArrayHandle Store::S_PadStackItemArray(ObjectHandle padStack) const {
  PadStackData* p = impl_->padStack(padStack);
  return arrayHandle(p ? p->items : 0);
}

}  // namespace tvx
