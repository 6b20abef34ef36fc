// Drawing the layers on a kernel device, in the order and with the visibility of LayerOrder, and
// the one-colour view.
#pragma once

#include "kernel/Graphics.h"
#include "kernel/Store.h"
#include "store/LayerOrder.h"
#include "store/LayerRecord.h"

#include <cstdint>
#include <span>

namespace tvx {

// What a drawing pass of the layers uses besides its device and mode. One per drawing window.
struct LayerDrawContext {
  LayerDrawContext(Graphics& drawGraphics, Store& drawStore)
      : graphics(drawGraphics), store(drawStore) {}

  Graphics& graphics;
  Store& store;
  int32_t clearColour = 0;    // colour value of clear elements (ColourSlots::ClearColour())
  bool padPositions = false;  // the view shows the entries of artwork layers
};

// Draws the rows of order from the last to the first, each row with Visible set, so that row 1
// lies on top.
void DrawLayers(LayerDrawContext& context, int32_t device, int32_t drawMode,
                std::span<const LayerOrderRow> order, std::span<const LayerRecord> layers);

// Draws one layer: its items when drawItems is non-zero, then its entries when drawEntries is
// non-zero and the layer is the board outline or the drill template or the view shows pad
// positions. In mono view the items are drawn in monoColour, clear ones in monoColour with bit
// 128 (the background), their own colours untouched; the drill template's pad stack items take
// the layer's colour and keep it.
void DrawLayer(LayerDrawContext& context, int32_t device, int32_t drawMode,
               const LayerRecord& layer, int32_t drawItems, int32_t drawEntries, bool mono,
               int32_t monoColour);

}  // namespace tvx
