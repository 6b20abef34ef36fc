#include "store/PlacedPoints.h"

namespace tvx {

PlacedPoints::PlacedPoints(const Store& store, SymbolId symbol, int32_t firstIndex) {
  const int32_t count = store.OA_GetCount(store.S_SymbolEntryArray(symbol));
  for (int32_t i = firstIndex; i <= count; ++i) {
    EntryRecord entry;
    if (store.S_ReadEntry(symbol, i, entry))
      add(entry.X, entry.Y);
  }
}

}  // namespace tvx
