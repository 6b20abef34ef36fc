// The one writer of elements that imports and reconstructions make.
#pragma once

#include "kernel/Store.h"

#include <string>

namespace tvx {

// Places of AddElement: which array of the symbol (or of the layout) receives the element.
enum ElementPlace : int32_t {
  PlaceSymbolItems = 0,
  PlaceCompText = 1,
  PlaceLayoutCompText = 2,
  PlaceLayoutText = 3,
  PlaceBranchText = 4,
};

// Writes record into the array that place names: a pad entry for type 22, text for types 6 and 8,
// any other item otherwise. index receives the element's index in its array; status is 0 on
// success and 1 when the store refused the element.
void AddElement(Store& store, int32_t& status, int32_t place, const SymbolId& symbol,
                const ItemRecord& record, const std::string& text, int32_t& index,
                const std::string& face);

}  // namespace tvx
