// What the layer properties window counts and changes on a layer: how often each aperture of the
// layer's list is used, the drill layer's tools ordered by diameter with their hole counts, and the
// layer's colour given to its elements.
#pragma once

#include "kernel/Store.h"
#include "store/LayerRecord.h"

#include <cstdint>
#include <vector>

namespace tvx {

// One tool of the drill layer: a pad stack of its symbol and the entries placed with it.
struct LayerToolRow {
  int32_t Code = 0;      // the pad stack's key in the layer's symbol
  int32_t Diameter = 0;  // store units
  int32_t HoleKind = 0;  // not 0 for an Excellon tool, 0 for an aperture
  int32_t Count = 0;

  bool operator==(const LayerToolRow&) const = default;
};

// Sets Count of every row of the layer's Apertures to the number of its items made by that code.
// Polygon sides and items without a Link are not counted; a code that two rows share counts on the
// first of them, and a Link that no row has is not counted at all.
void CountApertureUses(const Store& store, LayerRecord& layer);

// The pad stacks of the layer's symbol, ascending by diameter and the latest first among equal
// diameters, each with the number of entries placed with it.
std::vector<LayerToolRow> LayerToolList(const Store& store, const LayerRecord& layer);

// Gives the layer's elements its ColourNumber: every item whose colour is not clearColourCode on
// any layer but the drill layer; every pad stack item of the drill layer.
void RecolourLayerElements(Store& store, const LayerRecord& layer, int32_t clearColourCode);

}  // namespace tvx
