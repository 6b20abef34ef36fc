// Idioms over the store that several subsystems share: polygon runs and frames of elements.
#pragma once

#include "kernel/Store.h"

#include <string>
#include <vector>

namespace tvx {

// The polygon run that holds item index of an item array: from the side with the first-side bit
// to the side with the last-side bit. False when the item is not a polygon side or the run is
// broken (no first or no last side).
bool FindPolygonRun(const Store& store, ArrayHandle items, int32_t index, int32_t& first,
                    int32_t& last);

// Deletes the run that holds index (or the single item when it is no polygon side); returns the
// number of items deleted.
int32_t DeleteElementRun(Store& store, ArrayHandle items, int32_t index);

// Frame of the given items of a symbol: marked with the polygon frame mark, framed with both
// locations at zero, mark cleared again. False (and an all-zero frame) when nothing is framed.
bool FrameOfSelection(Store& store, SymbolId symbol, const std::vector<int32_t>& indices,
                      FrameRect& frame);

// Extent of one element as it would be stored, through a scratch symbol that is gone afterwards.
// An all-zero frame stands for no extent.
FrameRect ExtentOfElement(Store& store, const ItemRecord& record);

}  // namespace tvx
