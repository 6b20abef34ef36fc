// Any text as a plotter file, in its case as the reader keeps it, through both walks into a layer
// over a fresh store. No input may crash, hang, read out of bounds or grow without end: the pen
// table stays within the largest pen, and every item written is one that a command counted.
#include "import/readers/hpgl/HpglInterpreter.h"
#include "kernel/Store.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace tvx;
  const std::string text(reinterpret_cast<const char*>(data), size);
  Store store;
  const SymbolId symbol = -76531;
  store.S_CreateSymbol(symbol, "OUTLINE");
  HpglInterpreter interpreter(store, symbol, 7);
  interpreter.run(text);
  if (interpreter.state.PenTable.size() > 65536)
    std::abort();
  const HpglCounts& c = interpreter.counts;
  const int32_t items = store.OA_GetCount(store.S_SymbolItemArray(symbol));
  // A line, an arc, a circle or a label is one item; an outline as many as it wrote. An element
  // the store refused is missing.
  const int64_t counted = c.lines + c.arcs + c.circles + c.labels + interpreter.outlinePieces;
  if (interpreter.status == 0 ? items != counted : items > counted)
    std::abort();
  return 0;
}
