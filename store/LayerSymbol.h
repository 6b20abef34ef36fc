// The symbols that hold a layer's elements and a board category's.
#pragma once

#include "kernel/Store.h"
#include "store/LayerRecord.h"

#include <string>

namespace tvx {

// Makes sure that symbol id exists under name and is this system's own. With replace the symbol
// is deleted and made anew, empty. Without it a symbol under the id whose name is not name
// (another project's) is deleted too, so it is never written into. A new symbol is marked as
// made by the system; with deadEntry it first gets an entry at index 1 with no attributes, which
// searches of its entries start after.
void EnsureSymbol(Store& store, SymbolId id, const std::string& name, bool replace,
                  bool deadEntry = false);

// The same for a layer's symbol.
inline void EnsureLayerSymbol(Store& store, const LayerRecord& layer, bool replace) {
  EnsureSymbol(store, layer.SymbolHandle, layer.SymbolName, replace);
}

}  // namespace tvx
