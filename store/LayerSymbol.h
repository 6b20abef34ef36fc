// The symbol that holds a layer's elements.
#pragma once

#include "kernel/Store.h"
#include "store/LayerRecord.h"

namespace tvx {

// Makes sure that the layer's symbol exists and is the layer's own. With replace the symbol is
// deleted and made anew, empty. Without it a symbol under the layer's id whose name is not the
// layer's SymbolName (another project's) is deleted too, so it is never written into.
void EnsureLayerSymbol(Store& store, const LayerRecord& layer, bool replace);

}  // namespace tvx
