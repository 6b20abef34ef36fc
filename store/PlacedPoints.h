// The points on which pads of a symbol stand, for the exact-repeat look-up of imports and of the
// board categories: no second pad on one point.
#pragma once

#include "kernel/Store.h"

#include <cstdint>
#include <unordered_set>

namespace tvx {

class PlacedPoints {
public:
  // The symbol's pads from index firstIndex on (a category's entry 1 is its dead entry).
  PlacedPoints(const Store& store, SymbolId symbol, int32_t firstIndex = 1);
  bool contains(int32_t x, int32_t y) const { return points_.count(key(x, y)) != 0; }
  void add(int32_t x, int32_t y) { points_.insert(key(x, y)); }

private:
  static uint64_t key(int32_t x, int32_t y) { return uint64_t(uint32_t(x)) << 32 | uint32_t(y); }
  std::unordered_set<uint64_t> points_;
};

}  // namespace tvx
