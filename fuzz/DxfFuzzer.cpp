// Any text as a DXF drawing (behind one byte that picks the unit, the scale and whether line sizes
// are true), read into records and drawn into a layer over a fresh store. No input may crash, hang,
// read out of bounds or grow without end. Afterwards the block symbols are gone from the store
// (the layer's symbol alone is left, and no object outlives its symbol), every line, circle and
// arc left reaches no point beyond the store's 32-bit coordinates, and what the range check kept
// lies within the extents it kept them by.
#include "import/readers/dxf/DxfInterpreter.h"
#include "import/readers/dxf/DxfLoader.h"
#include "kernel/KernelTypes.h"
#include "kernel/Store.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string_view>

namespace {

// The range check keeps what lies less than 1000 mm outside the extents; extents beyond 4400 mm
// are cut to 4400 mm from the drawing's lower left.
constexpr double FarMargin = 1000.0 * tvx::StoreUnitsPerMm;
constexpr double OutOfRangeSize = 4400.0 * tvx::StoreUnitsPerMm;

bool inStoreRange(double x, double y) {
  constexpr double lo = std::numeric_limits<int32_t>::min(),
                   hi = std::numeric_limits<int32_t>::max();
  return x >= lo && x <= hi && y >= lo && y <= hi;
}

// The points an item is drawn through that its fields do not hold themselves: a line's far end, a
// circle's extremes, an arc's two ends. Each must be a point the store can hold.
bool reachesWithinRange(const tvx::ItemRecord& r) {
  const double x = r.X, y = r.Y;
  switch (r.Type) {
  case tvx::ItemLine:
    return inStoreRange(x + r.Width, y + r.Height);
  case tvx::ItemCircle: {
    const double radius = std::abs(double(r.Width));
    return inStoreRange(x - radius, y - radius) && inStoreRange(x + radius, y + radius);
  }
  case tvx::ItemArc: {
    const double radius = std::abs(double(r.Width));
    for (const double millidegrees : {double(r.Height), double(r.Height) + r.Sweep}) {
      const double a = millidegrees / 1000 * M_PI / 180;
      if (!inStoreRange(std::round(x + radius * std::cos(a)), std::round(y + radius * std::sin(a))))
        return false;
    }
    return true;
  }
  default:
    return true;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace tvx;
  if (size == 0)
    return 0;
  const uint8_t choice = data[0];
  const std::string_view text(reinterpret_cast<const char*>(data + 1), size - 1);

  DxfSettings settings;
  settings.Unit = (choice & 1) != 0 ? 0 : 1;
  settings.TrueLineSize = (choice & 2) != 0;
  constexpr double scales[4] = {1.0, 0.001, 25.4, 1000.0};
  settings.Scale = scales[(choice >> 2) & 3];
  // Small inputs nest blocks into millions of copies within the budget of a real drawing; a
  // smaller budget keeps each run short without leaving the copying untested.
  settings.CopyBudget = 50000;

  Store store;
  const SymbolId layer = -76530;
  store.S_CreateSymbol(layer, "OUTLINE");
  const size_t objectsBefore = store.liveObjectCount();

  DxfInterpreter interpreter(store, layer, 7, settings);
  interpreter.run(ParseDxfText(text));
  const DxfReport& report = interpreter.report;
  if (report.removed < 0)
    std::abort();

  // Every block symbol is deleted at the end: the walk of the symbol map meets the layer only.
  const MapHandle symbols = store.DB_SymbMap();
  int32_t cursor = store.OM_GetFirst(symbols);
  while (const int32_t key = store.OM_SearchMask(symbols, &cursor, 0, 0))
    if (key != layer)
      std::abort();

  // With the block symbols gone, the objects left over the fresh store are the layer's items.
  const ArrayHandle items = store.S_SymbolItemArray(layer);
  const int32_t count = store.OA_GetCount(items);
  if (store.liveObjectCount() != objectsBefore + size_t(count))
    std::abort();

  // Without extents in the header the items frame the drawing, so the check takes none of them.
  if (!report.headerExtents && !report.outOfRange && report.removed != 0)
    std::abort();

  // What is left lies within the kept extents and their margin: its frame is no wider or taller.
  if (count > 0) {
    double minX = std::numeric_limits<double>::max(), minY = minX;
    double maxX = std::numeric_limits<double>::lowest(), maxY = maxX;
    for (int32_t i = 1; i <= count; ++i) {
      const ObjectHandle item = store.OA_Object(items, i);
      ItemRecord r{};
      FrameRect f;
      if (store.I_ReadItem(item, r) == 0 || store.I_FrameItem(item, f) == 0)
        std::abort();
      if (!reachesWithinRange(r))
        std::abort();
      minX = std::min(minX, double(f.MinX));
      minY = std::min(minY, double(f.MinY));
      maxX = std::max(maxX, double(f.MaxX));
      maxY = std::max(maxY, double(f.MaxY));
    }
    const double spanX = report.outOfRange ? OutOfRangeSize : report.sizeX;
    const double spanY = report.outOfRange ? OutOfRangeSize : report.sizeY;
    if (!(maxX - minX < spanX + 2 * FarMargin) || !(maxY - minY < spanY + 2 * FarMargin))
      std::abort();
  }
  return 0;
}
