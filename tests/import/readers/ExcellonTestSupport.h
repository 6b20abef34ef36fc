// What the Excellon tests share: a reader over its own store, single layers of each PadKind, and
// the pads of a layer read back from the store.
#pragma once

#include "import/readers/ExcellonReader.h"
#include "store/LayerSymbol.h"

#include "import/gerber/ImportTestSupport.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tvx::test {

// A layer slot of the given number and PadKind with its symbol made.
inline LayerRecord makeLayer(Store& store, int32_t number, int32_t padKind, int32_t colour = 31) {
  LayerRecord layer;
  layer.Mask = static_cast<int32_t>(1u << (number - 1));
  layer.SymbolHandle = LayerSymbolBase - number;
  layer.SymbolName = "$$GIS_CAT" + std::to_string(layer.SymbolHandle);
  layer.Listed = true;
  layer.ColourNumber = colour;
  layer.PadKind = padKind;
  layer.FilterMask = 50;
  EnsureLayerSymbol(store, layer, true);
  return layer;
}

// A file record for the drill reader with a tool table.
inline LayerFileRecord drillFile(std::vector<ToolEntry> tools = {}) {
  LayerFileRecord file;
  file.FileName = "holes.drl";
  file.ReaderCode = ReaderExcellon;
  file.OriginalCoordinates = true;
  file.Tools = std::move(tools);
  return file;
}

// One pad of a layer as the store holds it.
struct Pad {
  int32_t x = 0;
  int32_t y = 0;
  int32_t padStack = 0;
  bool operator==(const Pad&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Pad& p) {
  return out << "(" << p.x << ", " << p.y << " T" << p.padStack << ")";
}

inline std::vector<Pad> padsOf(const Store& store, const LayerRecord& layer) {
  std::vector<Pad> pads;
  const int32_t count = store.OA_GetCount(store.S_SymbolEntryArray(layer.SymbolHandle));
  for (int32_t i = 1; i <= count; ++i) {
    EntryRecord entry;
    if (store.S_ReadEntry(layer.SymbolHandle, i, entry))
      pads.push_back({entry.X, entry.Y, entry.PadStack});
  }
  return pads;
}

// The reader with its own format, extents and store, reporting into scripted prompts.
class ExcellonTest : public ::testing::Test {
protected:
  std::vector<std::string> boxes() const {
    std::vector<std::string> texts;
    for (const auto& shown : reporting.prompts.shown)
      texts.push_back(shown.prompt);
    return texts;
  }

  Store store;
  Reporting reporting;
  ExcellonFormat format;
  FileExtents extents;
  ExcellonReader reader{store, reporting.services, reporting.reporter, format, extents};
};

}  // namespace tvx::test
