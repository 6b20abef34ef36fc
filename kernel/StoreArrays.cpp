// Object arrays and maps: counting, walking, adding, deleting, masks and cover searches.
#include "kernel/StoreImpl.h"

#include "kernel/PlaneGeometry.h"

#include <algorithm>
#include <climits>
#include <cmath>

namespace tvx {

namespace {
// Arrays shorter than this are searched directly; longer ones get a spatial index on first use.
constexpr size_t IndexThreshold = 48;

// The cursor value that stands before the first key of a map.
constexpr int32_t WalkStart = INT32_MIN;

int32_t* ownerField(Store::Impl& s, int32_t object) {
  if (ItemData* d = s.item(object))
    return &d->owner;
  if (EntryData* e = s.entry(object))
    return &e->owner;
  if (NamedData* n = s.namedObject(object))
    return &n->owner;
  if (SymbolData* sym = s.symbolObject(object))
    return &sym->owner;
  if (PadStackData* p = s.padStack(object))
    return &p->owner;
  return nullptr;
}

void setPosition(Store::Impl& s, int32_t object, int32_t position) {
  if (ItemData* d = s.item(object))
    d->position = position;
  else if (EntryData* e = s.entry(object))
    e->position = position;
}
}  // namespace

void Store::Impl::touchArray(int32_t arrayHandle) {
  ArrayData* a = array(arrayHandle);
  if (!a)
    return;
  ++a->version;
  if (a->padStackItems)
    ++padEpoch;
}

Box Store::Impl::memberBox(const ArrayData& a, int32_t member) {
  if (a.element == ObjectKind::Entry) {
    // An entry is found within the reach of its own pad around its point.
    const EntryData* e = entry(member);
    int32_t r = clampToInt32(std::ceil(entryReach(*e)));
    return {clampToInt32(double(e->x) - r), clampToInt32(double(e->y) - r),
            clampToInt32(double(e->x) + r), clampToInt32(double(e->y) + r)};
  }
  const ItemData* d = item(member);
  return itemFrame(d->f, textLength(*d));
}

void Store::Impl::touchMarks(int32_t arrayHandle) {
  ArrayData* a = array(arrayHandle);
  if (!a)
    return;
  const uint64_t before = a->version;
  touchArray(arrayHandle);
  if (a->element == ObjectKind::Item)
    for (FrameCacheEntry& c : a->frames)
      if (c.mask == -1 && c.version == before)
        c.version = a->version;
}

void Store::Impl::growWholeFrame(ArrayData& a, uint64_t before, int32_t member) {
  if (a.element != ObjectKind::Item)
    return;
  const Box box = memberBox(a, member);
  for (FrameCacheEntry& c : a.frames)
    if (c.mask == -1 && c.version == before) {
      c.frame = c.any ? unite(c.frame, box) : box;
      c.any = true;
      c.version = a.version;
      return;
    }
  if (a.objects.size() == 1)
    a.frames.push_back({-1, a.version, 0, box, true});
}

void Store::Impl::indexMember(ArrayData& a, int32_t member) {
  if (!a.index)
    return;
  uint32_t id = table.find(member, a.element);
  a.index->insert(id, memberBox(a, member));
}

void Store::Impl::unindexMember(ArrayData& a, int32_t member) {
  if (!a.index)
    return;
  a.index->remove(table.find(member, a.element));
}

void Store::Impl::reindexMember(ArrayData& a, int32_t member) {
  if (!a.index)
    return;
  unindexMember(a, member);
  indexMember(a, member);
}

namespace {
// The bits of x and y interleaved, x in the even places.
uint64_t zOrder(uint32_t x, uint32_t y) {
  const auto spread = [](uint64_t v) {
    v = (v | (v << 16)) & 0x0000FFFF0000FFFFull;
    v = (v | (v << 8)) & 0x00FF00FF00FF00FFull;
    v = (v | (v << 4)) & 0x0F0F0F0F0F0F0F0Full;
    v = (v | (v << 2)) & 0x3333333333333333ull;
    v = (v | (v << 1)) & 0x5555555555555555ull;
    return v;
  };
  return spread(x) | (spread(y) << 1);
}
}  // namespace

void Store::Impl::buildIndex(ArrayData& a) {
  if (a.element == ObjectKind::Entry)
    a.index = std::make_unique<SpatialIndex>(
        [this](uint32_t id) -> uint32_t& { return entries.data[id].spatialNode; });
  else
    a.index = std::make_unique<SpatialIndex>(
        [this](uint32_t id) -> uint32_t& { return items.data[id].spatialNode; });
  if (a.element == ObjectKind::Entry) {
    a.indexedReach.clear();
    if (SymbolData* sym = symbolObject(a.ownerSymbol))
      if (MapData* pads = map(sym->padStacks))
        for (auto& [key, handle] : pads->objects)
          a.indexedReach[key] = padReach(*padStack(handle));
    a.boxesEpoch = padEpoch;
  }
  // The members go in by the Z-order of their centres: each descent then follows the one before
  // through nodes already in the cache, where an order by position sends every one of them
  // across the whole tree. What a query finds does not depend on the order.
  struct Placed {
    uint64_t key;
    uint32_t id;
    Box box;
  };
  std::vector<Placed> placed;
  placed.reserve(a.objects.size());
  for (int32_t member : a.objects) {
    const Box box = memberBox(a, member);
    const auto centre = [](int32_t low, int32_t high) {
      return uint32_t(int32_t((int64_t(low) + high) >> 1)) ^ 0x80000000u;
    };
    placed.push_back({zOrder(centre(box.minX, box.maxX), centre(box.minY, box.maxY)),
                      table.find(member, a.element), box});
  }
  std::sort(placed.begin(), placed.end(),
            [](const Placed& l, const Placed& r) { return l.key < r.key; });
  for (const Placed& p : placed)
    a.index->insert(p.id, p.box);
}

namespace {
// Appends the outline of one polygon side to a ring of points; arcs are followed in short chords.
void appendSide(const ItemFields& f, std::vector<std::pair<double, double>>& ring) {
  if (f.Type == ItemArc) {
    int32_t start = f.Height, sweep = f.Sweep;
    bool clockwise = sweep < 0;
    normaliseArc(start, sweep);
    int steps = std::max(2, sweep / 10000);
    for (int i = 0; i <= steps; ++i) {
      double t = clockwise ? double(steps - i) / steps : double(i) / steps;
      double a = (start + t * sweep) / 1000.0 * RadiansPerDegree;
      ring.emplace_back(f.X + f.Width * std::cos(a), f.Y + f.Width * std::sin(a));
    }
    return;
  }
  ring.emplace_back(f.X, f.Y);
  if (f.Type == ItemLine)
    ring.emplace_back(double(f.X) + f.Width, double(f.Y) + f.Height);
}

bool insideRing(const std::vector<std::pair<double, double>>& ring, double x, double y) {
  bool inside = false;
  for (size_t i = 0, j = ring.size() - 1; i < ring.size(); j = i++) {
    auto [xi, yi] = ring[i];
    auto [xj, yj] = ring[j];
    if ((yi > y) != (yj > y) && x < xj + (y - yj) * (xi - xj) / (yi - yj))
      inside = !inside;
  }
  return inside;
}
}  // namespace

int32_t Store::Impl::filledRunHit(ArrayData& a, int32_t firstIndex, double x, double y) {
  if (a.element != ObjectKind::Item)
    return INT32_MAX;
  if (a.runsVersion != a.version) {
    a.filledRuns.clear();
    for (size_t i = 0; i < a.objects.size(); ++i) {
      const ItemData* d = item(a.objects[i]);
      int32_t bits = d->f.Attributes;
      if (!(bits & attr::PolygonSide) || !(bits & attr::PolygonFirst) || d->f.Style != StyleFilled)
        continue;
      FilledRun run{int32_t(i + 1), 0, itemFrame(d->f, 0)};
      for (size_t j = i; j < a.objects.size(); ++j) {
        const ItemData* side = item(a.objects[j]);
        if (!(side->f.Attributes & attr::PolygonSide) ||
            (j > i && (side->f.Attributes & attr::PolygonFirst)))
          break;
        Box b = itemFrame(side->f, 0);
        run.frame = {std::min(run.frame.minX, b.minX), std::min(run.frame.minY, b.minY),
                     std::max(run.frame.maxX, b.maxX), std::max(run.frame.maxY, b.maxY)};
        if (side->f.Attributes & attr::PolygonLast) {
          run.last = int32_t(j + 1);
          break;
        }
      }
      if (run.last)
        a.filledRuns.push_back(run);
    }
    a.runNodes.assign(a.filledRuns.size(), SpatialIndex::NoNode);
    // The pool of arrays may move: the index finds its array by handle.
    a.runIndex = std::make_unique<SpatialIndex>(
        [this, self = a.self](uint32_t id) -> uint32_t& { return array(self)->runNodes[id]; });
    for (size_t i = 0; i < a.filledRuns.size(); ++i)
      a.runIndex->insert(uint32_t(i), a.filledRuns[i].frame);
    a.runsVersion = a.version;
  }
  std::vector<std::pair<double, double>> ring;
  int32_t best = INT32_MAX;
  int32_t px = clampToInt32(x), py = clampToInt32(y);
  a.runIndex->query(Box{px, py, px, py}, [&](uint32_t id, const Box&) {
    const FilledRun& run = a.filledRuns[id];
    if (run.first < firstIndex || run.first >= best)
      return;
    ring.clear();
    for (int32_t i = run.first; i <= run.last; ++i)
      appendSide(item(a.objects[size_t(i) - 1])->f, ring);
    if (ring.size() >= 3 && insideRing(ring, x, y))
      best = run.first;
  });
  return best;
}

int32_t Store::OA_GetCount(ArrayHandle array) const {
  ArrayData* a = impl_->array(array);
  return a ? int32_t(a->objects.size()) : 0;
}

ObjectHandle Store::OA_Object(ArrayHandle array, int32_t index) const {
  ArrayData* a = impl_->array(array);
  if (!a || index < 1 || size_t(index) > a->objects.size())
    return ObjectHandle::None;
  return objectHandle(a->objects[size_t(index) - 1]);
}

int32_t Store::OA_Add(ArrayHandle array, ObjectHandle object) {
  return OA_Insert(array, object, OA_GetCount(array) + 1);
}

int32_t Store::OA_Insert(ArrayHandle array, ObjectHandle object, int32_t index) {
  Impl& s = *impl_;
  ArrayData* a = s.array(array);
  if (!a || s.kindOf(object) != a->element || index < 1 || size_t(index) > a->objects.size() + 1)
    return 0;
  int32_t* owner = ownerField(s, tableEntry(object));
  if (!owner || *owner != 0)
    return 0;  // an object belongs to one container at most
  *owner = tableEntry(array);
  a->objects.insert(a->objects.begin() + (index - 1), tableEntry(object));
  for (size_t i = size_t(index) - 1; i < a->objects.size(); ++i)
    setPosition(s, a->objects[i], int32_t(i + 1));
  s.indexMember(*a, object);
  const uint64_t before = a->version;
  s.touchArray(tableEntry(array));
  s.growWholeFrame(*a, before, tableEntry(object));
  return index;
}

int32_t Store::OA_AddNewItem(ArrayHandle array, const ItemRecord& record) {
  Impl& s = *impl_;
  ArrayData* a = s.array(array);
  if (!a || a->element != ObjectKind::Item)
    return 0;
  const bool text = record.Type == ItemVectorText || record.Type == ItemTrueTypeText;
  // Making an item moves only the item pool and the object table, never the array.
  const int32_t object =
      s.makeItem(record, text ? &record.Text : nullptr, text ? &record.Face : nullptr);
  if (object == 0)
    return 0;
  ItemData& d = *s.item(object);
  d.owner = tableEntry(array);
  a->objects.push_back(object);
  d.position = int32_t(a->objects.size());
  s.indexMember(*a, object);
  const uint64_t before = a->version;
  s.touchArray(tableEntry(array));
  s.growWholeFrame(*a, before, object);
  return d.position;
}

int32_t Store::OA_Delete(ArrayHandle array, int32_t index) {
  Impl& s = *impl_;
  ArrayData* a = s.array(array);
  if (!a || index < 1 || size_t(index) > a->objects.size())
    return 0;
  int32_t object = a->objects[size_t(index) - 1];
  s.unindexMember(*a, object);
  a->objects.erase(a->objects.begin() + (index - 1));
  for (size_t i = size_t(index) - 1; i < a->objects.size(); ++i)
    setPosition(s, a->objects[i], int32_t(i + 1));
  s.touchArray(tableEntry(array));
  s.destroy(object);
  return 1;
}

int32_t Store::OA_DeleteMarked(ArrayHandle array, int32_t mask) {
  Impl& s = *impl_;
  ArrayData* a = s.array(array);
  if (!a || mask == 0)
    return 0;
  const auto marked = [&s, mask](int32_t object) {
    int32_t attributes = 0;
    if (ItemData* d = s.item(object))
      attributes = d->f.Attributes;
    else if (EntryData* e = s.entry(object))
      attributes = e->attributes;
    else if (NamedData* n = s.namedObject(object))
      attributes = n->attributes;
    return (attributes & mask) == mask;
  };
  std::vector<int32_t> gone;
  std::vector<int32_t> kept;
  kept.reserve(a->objects.size());
  for (int32_t object : a->objects)
    (marked(object) ? gone : kept).push_back(object);
  if (gone.empty())
    return 0;
  for (int32_t object : gone)
    s.unindexMember(*a, object);
  a->objects = std::move(kept);
  for (size_t i = 0; i < a->objects.size(); ++i)
    setPosition(s, a->objects[i], int32_t(i + 1));
  s.touchArray(tableEntry(array));
  for (int32_t object : gone)
    s.destroy(object);
  return int32_t(gone.size());
}

int32_t Store::OA_MaskAll(ArrayHandle array, int32_t value, int32_t mask) {
  Impl& s = *impl_;
  ArrayData* a = s.array(array);
  if (!a)
    return 0;
  for (int32_t object : a->objects) {
    if (ItemData* d = s.item(object))
      d->f.Attributes = (d->f.Attributes & ~mask) | (value & mask);
    else if (EntryData* e = s.entry(object))
      e->attributes = (e->attributes & ~mask) | (value & mask);
    else if (NamedData* n = s.namedObject(object))
      n->attributes = (n->attributes & ~mask) | (value & mask);
  }
  s.touchArray(tableEntry(array));
  return 1;
}

int32_t Store::OA_SearchMask(ArrayHandle array, int32_t firstIndex, int32_t mask) const {
  ArrayData* a = impl_->array(array);
  if (!a)
    return 0;
  for (size_t i = size_t(std::max(firstIndex, 1)); i <= a->objects.size(); ++i)
    if (O_GetStatus(objectHandle(a->objects[i - 1])) & mask)
      return int32_t(i);
  return 0;
}

int32_t Store::OA_Cover(ArrayHandle array, int32_t firstIndex, int32_t x, int32_t y,
                        int32_t tolerance, int32_t /*kinds*/, int32_t, int32_t) {
  Impl& s = *impl_;
  ArrayData* a = s.array(array);
  if (!a || (a->element != ObjectKind::Item && a->element != ObjectKind::Entry))
    return 0;
  firstIndex = std::max(firstIndex, 1);
  if (size_t(firstIndex) > a->objects.size())
    return 0;
  double tol = std::max(0, tolerance);
  auto covers = [&](int32_t member) {
    if (a->element == ObjectKind::Entry)
      return s.entryCovers(*s.entry(member), x, y, tol);
    ItemData* d = s.item(member);
    return itemCovers(d->f, s.textLength(*d), x, y, tol);
  };

  // The area of a filled polygon counts as well as its sides.
  int32_t best = s.filledRunHit(*a, firstIndex, x, y);
  if (a->objects.size() - size_t(firstIndex) < IndexThreshold) {
    for (size_t i = size_t(firstIndex); i <= a->objects.size() && int32_t(i) < best; ++i)
      if (covers(a->objects[i - 1]))
        return int32_t(i);
    return best == INT32_MAX ? 0 : best;
  }

  if (!a->index)
    s.buildIndex(*a);
  s.refreshEntryBoxes(*a);
  int32_t r = clampToInt32(std::ceil(tol));
  Box query{clampToInt32(double(x) - r), clampToInt32(double(y) - r), clampToInt32(double(x) + r),
            clampToInt32(double(y) + r)};
  a->index->query(query, [&](uint32_t id, const Box&) {
    int32_t position;
    int32_t member;
    if (a->element == ObjectKind::Entry) {
      position = s.entries.data[id].position;
      member = s.entries.data[id].self;
    } else {
      position = s.items.data[id].position;
      member = s.items.data[id].self;
    }
    if (position >= firstIndex && position < best && covers(member))
      best = position;
  });
  return best == INT32_MAX ? 0 : best;
}

int32_t Store::deleteFreeObject(ObjectHandle object) {
  int32_t* owner = ownerField(*impl_, tableEntry(object));
  if (!owner || *owner != 0 || impl_->kindOf(object) == ObjectKind::Database)
    return 0;
  impl_->destroy(object);
  return 1;
}

// Runs visit(id, isEntry) for every member of array whose box meets box, through the array's
// spatial index. Returns false when the box holds the whole array (nothing is visited) and true
// otherwise, also for an empty array or one that is not of items or entries.
template <typename Visit>
static bool visitMembersInBox(Store::Impl& s, ArrayHandle array, const FrameRect& box,
                              Visit&& visit) {
  ArrayData* a = s.array(array);
  if (!a || (a->element != ObjectKind::Item && a->element != ObjectKind::Entry))
    return true;
  Box all;
  if (!s.frameOf(*a, -1, all))
    return true;  // nothing in the array
  if (box.MinX <= all.minX && box.MinY <= all.minY && box.MaxX >= all.maxX && box.MaxY >= all.maxY)
    return false;
  if (!a->index)
    s.buildIndex(*a);
  s.refreshEntryBoxes(*a);
  const bool entries = a->element == ObjectKind::Entry;
  a->index->query(Box{box.MinX, box.MinY, box.MaxX, box.MaxY},
                  [&](uint32_t id, const Box&) { visit(id, entries); });
  return true;
}

// Puts members found in a box in the order of their positions (1 .. count). A view that holds
// much of a large array finds most of its members: they are then set in slots by position and
// gathered in one walk, linear where a sort takes n log n.
template <typename Member, typename PositionOf>
static void orderByPosition(std::vector<Member>& members, size_t count, PositionOf positionOf) {
  if (members.size() < count / 16) {
    std::sort(members.begin(), members.end(),
              [&](const Member& l, const Member& r) { return positionOf(l) < positionOf(r); });
    return;
  }
  std::vector<Member> slots(count + 1);  // position 0: an empty slot
  for (const Member& m : members)
    if (size_t(positionOf(m)) < slots.size())
      slots[size_t(positionOf(m))] = m;
  members.clear();
  for (const Member& m : slots)
    if (positionOf(m) != 0)
      members.push_back(m);
}

bool Store::membersInBox(ArrayHandle array, const FrameRect& box, std::vector<int32_t>& positions) {
  positions.clear();
  Impl& s = *impl_;
  const bool indexed = visitMembersInBox(s, array, box, [&](uint32_t id, bool entries) {
    positions.push_back(entries ? s.entries.data[id].position : s.items.data[id].position);
  });
  if (const ArrayData* a = s.array(array))
    orderByPosition(positions, a->objects.size(), [](int32_t p) { return p; });
  return indexed;
}

bool Store::itemsInBox(ArrayHandle array, const FrameRect& box, std::vector<ItemInBox>& items) {
  items.clear();
  Impl& s = *impl_;
  const ArrayData* a = s.array(array);
  if (!a || a->element != ObjectKind::Item)
    return true;
  const bool indexed = visitMembersInBox(s, array, box, [&](uint32_t id, bool) {
    const ItemData& d = s.items.data[id];
    items.push_back(ItemInBox{d.position, &d.f});
  });
  orderByPosition(items, a->objects.size(), [](const ItemInBox& i) { return i.position; });
  return indexed;
}

bool Store::drawsEveryItem(ArrayHandle array, const FrameRect& box, std::vector<ItemInBox>& met) {
  met.clear();
  Impl& s = *impl_;
  ArrayData* a = s.array(array);
  Box all;
  if (!a || a->element != ObjectKind::Item || !s.frameOf(*a, -1, all))
    return false;
  const auto extent = [](int32_t from, int32_t to) { return std::max(0.0, double(to) - from + 1); };
  const double overlap = extent(std::max(box.MinX, all.minX), std::min(box.MaxX, all.maxX)) *
                         extent(std::max(box.MinY, all.minY), std::min(box.MaxY, all.maxY));
  const double whole = extent(all.minX, all.maxX) * extent(all.minY, all.maxY);
  if (overlap * 4 >= whole * 3)
    return true;
  itemsInBox(array, box, met);
  return false;
}

void Store::forEachItem(ArrayHandle array, int32_t first, int32_t last,
                        const std::function<void(int32_t, const ItemFields*)>& visit) const {
  const Impl& s = *impl_;
  const uint32_t i = s.table.find(tableEntry(array), ObjectKind::Array);
  if (i == ObjectTable::NotFound || s.arrays.data[i].element != ObjectKind::Item)
    return;
  const std::vector<int32_t>& objects = s.arrays.data[i].objects;
  last = std::min(last, int32_t(objects.size()));
  for (int32_t p = std::max(first, 1); p <= last; ++p)
    visit(p, &s.items.data[s.table.find(objects[size_t(p) - 1], ObjectKind::Item)].f);
}

ObjectHandle Store::OM_Object(MapHandle map, int32_t key) const {
  MapData* m = impl_->map(map);
  if (!m)
    return ObjectHandle::None;
  auto it = m->objects.find(key);
  return it == m->objects.end() ? ObjectHandle::None : objectHandle(it->second);
}

int32_t Store::OM_Add(MapHandle map, ObjectHandle object, int32_t key) {
  Impl& s = *impl_;
  MapData* m = s.map(map);
  if (!m || key == 0 || key == WalkStart || s.kindOf(object) != m->element || m->objects.count(key))
    return 0;
  int32_t* owner = ownerField(s, tableEntry(object));
  if (!owner || *owner != 0)
    return 0;
  *owner = tableEntry(map);
  m->objects[key] = tableEntry(object);
  if (m->element == ObjectKind::PadStack)
    ++s.padEpoch;
  return key;
}

int32_t Store::OM_Delete(MapHandle map, int32_t key) {
  Impl& s = *impl_;
  MapData* m = s.map(map);
  if (!m)
    return 0;
  auto it = m->objects.find(key);
  if (it == m->objects.end())
    return 0;
  int32_t object = it->second;
  m->objects.erase(it);
  s.destroy(object);
  return 1;
}

int32_t Store::OM_GetFirst(MapHandle) const { return WalkStart; }

int32_t Store::OM_SearchMask(MapHandle map, int32_t* cursor, int32_t value, int32_t mask) const {
  MapData* m = impl_->map(map);
  if (!m || !cursor)
    return 0;
  auto it = *cursor == WalkStart ? m->objects.begin() : m->objects.upper_bound(*cursor);
  for (; it != m->objects.end(); ++it) {
    if (((O_GetStatus(objectHandle(it->second)) ^ value) & mask) == 0) {
      *cursor = it->first;
      return it->first;
    }
  }
  *cursor = m->objects.empty() ? WalkStart : m->objects.rbegin()->first;
  return 0;
}

}  // namespace tvx
