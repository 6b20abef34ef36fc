#include "kernel/ObjectTable.h"

namespace tvx {

ObjectTable::ObjectTable() {
  slots_.resize(1);  // slot 0 is never used, so no live handle can be 0
}

int32_t ObjectTable::add(ObjectKind kind, uint32_t poolIndex) {
  uint32_t slot;
  // Reuse a freed slot only once enough are waiting, so a slot rests a while between owners.
  if (freeSlots_.size() > 1024 || (slots_.size() > SlotMask && !freeSlots_.empty())) {
    slot = freeSlots_.front();
    freeSlots_.pop_front();
  } else if (slots_.size() <= SlotMask) {
    slot = uint32_t(slots_.size());
    slots_.push_back({});
  } else {
    return 0;
  }
  Slot& s = slots_[slot];
  s.generation = uint8_t(s.generation % (GenerationLimit - 1) + 1);
  s.kind = kind;
  s.poolIndex = poolIndex;
  ++live_;
  return int32_t((uint32_t(s.generation) << SlotBits) | slot);
}

bool ObjectTable::remove(int32_t handle) {
  if (kindOf(handle) == ObjectKind::Free)
    return false;
  uint32_t slot = uint32_t(handle) & SlotMask;
  slots_[slot].kind = ObjectKind::Free;
  freeSlots_.push_back(slot);
  --live_;
  return true;
}

ObjectKind ObjectTable::kindOf(int32_t handle) const {
  if (handle <= 0)
    return ObjectKind::Free;
  uint32_t slot = uint32_t(handle) & SlotMask;
  if (slot >= slots_.size())
    return ObjectKind::Free;
  const Slot& s = slots_[slot];
  if (s.generation != (uint32_t(handle) >> SlotBits))
    return ObjectKind::Free;
  return s.kind;
}

}  // namespace tvx
