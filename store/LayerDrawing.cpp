#include "store/LayerDrawing.h"

#include "store/LayerCatalogue.h"

namespace tvx {

namespace {

// Gives every item of every pad stack of the layer the layer's colour, keeping the rest.
void colourPadStackItems(Store& store, const LayerRecord& layer) {
  const MapHandle padStacks = store.S_SymbolPadStackMap(layer.SymbolHandle);
  if (padStacks == MapHandle::None)
    return;
  int32_t cursor = store.OM_GetFirst(padStacks);
  while (int32_t key = store.OM_SearchMask(padStacks, &cursor, 0, 0)) {
    const ArrayHandle items = store.S_PadStackItemArray(store.OM_Object(padStacks, key));
    const int32_t count = store.OA_GetCount(items);
    for (int32_t i = 1; i <= count; ++i) {
      const ObjectHandle item = store.OA_Object(items, i);
      if (const ItemFields* f = store.itemFields(item))
        store.I_ChangeItemAttr(item, f->Attributes, layer.ColourNumber, f->Style, f->LineWidth);
    }
  }
}

}  // namespace

void DrawLayers(LayerDrawContext& context, int32_t device, int32_t drawMode,
                std::span<const LayerOrderRow> order, std::span<const LayerRecord> layers) {
  for (size_t row = order.size(); row-- > 0;) {
    const LayerOrderRow& r = order[row];
    if (!r.Visible || r.LayerNumber < 1 || size_t(r.LayerNumber) > layers.size())
      continue;
    DrawLayer(context, device, drawMode, layers[size_t(r.LayerNumber - 1)], r.DrawItems,
              r.DrawEntries, r.Mono, r.MonoColour);
  }
}

void DrawLayer(LayerDrawContext& context, int32_t device, int32_t drawMode,
               const LayerRecord& layer, int32_t drawItems, int32_t drawEntries, bool mono,
               int32_t monoColour) {
  Store& store = context.store;
  Graphics& graphics = context.graphics;
  const SymbolId symbol = layer.SymbolHandle;
  const bool drillTemplate = (layer.Mask & layergroup::AllButDrill) == 0;

  // A one-colour layer: its pad stacks take the layer's colour in the store (a drill template's
  // pads), its items are drawn in the one colour, clear ones with the background bit.
  if (mono && drillTemplate)
    colourPadStackItems(store, layer);
  graphics.G_SetDrawMode(device, drawMode | drawmode::Layer);
  store.S_SetCompLocation(0, 0, 0, 0);
  store.S_SetPadLocation(0, 0, 0);
  if (mono && !drillTemplate)
    graphics.G_SetOneColour(device, monoColour, context.clearColour);
  graphics.S_DrawSymbol(device, symbol, drawItems, 0);
  if (mono && !drillTemplate)
    graphics.G_SetOneColour(device, -1, 0);
  if ((layer.Mask & layergroup::OutlineAndDrill) != 0 || context.padPositions)
    graphics.S_DrawSymbol(device, symbol, 0, drawEntries);
}

}  // namespace tvx
