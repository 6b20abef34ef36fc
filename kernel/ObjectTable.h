// Slot table behind the store's 32-bit handles.
//
// A handle is a slot number (low 25 bits) and a generation (next 6 bits), so it is always positive.
// Each slot records the kind of object it holds and the object's index in that kind's pool.
// Deleting an object frees its slot and advances the generation, so a stale handle no longer
// matches; freed slots are reused oldest first, which keeps a generation from coming round again
// for a long time. A handle is only ever accepted for the kind it was made for.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <vector>

namespace tvx {

enum class ObjectKind : uint8_t {
  Free = 0,
  Database,
  Hierarchy,
  Layer,
  Symbol,
  Item,
  Entry,
  PadStack,
  Array,
  Map,
};

// Room for more elements than v holds now. Capacity grows by half at least, so that calls that
// add a little at a time do not copy the vector each time.
template <typename T> void reserveMore(std::vector<T>& v, size_t more) {
  const size_t wanted = v.size() + more;
  if (wanted > v.capacity())
    v.reserve(std::max(wanted, v.capacity() + v.capacity() / 2));
}

class ObjectTable {
public:
  static constexpr uint32_t NotFound = UINT32_MAX;

  ObjectTable();

  // Registers an object of kind stored at poolIndex; returns its handle, 0 when the table is full.
  int32_t add(ObjectKind kind, uint32_t poolIndex);
  // Makes room for count more objects at once, so that a large import does not copy the table
  // again and again as it grows; free slots count.
  void reserve(size_t count) {
    reserveMore(slots_, count > freeSlots_.size() ? count - freeSlots_.size() : 0);
  }
  // Frees the handle's slot. Returns false for a handle that is not live.
  bool remove(int32_t handle);

  // Pool index of a live handle of the given kind, NotFound otherwise.
  uint32_t find(int32_t handle, ObjectKind kind) const {
    if (handle <= 0)
      return NotFound;
    uint32_t slot = uint32_t(handle) & SlotMask;
    if (slot >= slots_.size())
      return NotFound;
    const Slot& s = slots_[slot];
    if (s.kind != kind || s.generation != (uint32_t(handle) >> SlotBits))
      return NotFound;
    return s.poolIndex;
  }
  // Kind of a live handle, Free when it is not live.
  ObjectKind kindOf(int32_t handle) const;
  size_t liveCount() const { return live_; }

private:
  static constexpr uint32_t SlotBits = 25;
  static constexpr uint32_t SlotMask = (1u << SlotBits) - 1;
  static constexpr uint32_t GenerationLimit = 64;  // 6 bits; generation 0 is never issued

  struct Slot {
    ObjectKind kind = ObjectKind::Free;
    uint8_t generation = 0;
    uint32_t poolIndex = 0;
  };
  std::vector<Slot> slots_;
  std::deque<uint32_t> freeSlots_;
  size_t live_ = 0;
};

}  // namespace tvx
