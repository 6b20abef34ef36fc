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

// Gives every item monoColour, clear ones monoColour with the background bit, and remembers the
// colours they had. One pass over the items, no allocation once the scratch is large enough.
void colourItemsMono(LayerDrawContext& context, ArrayHandle items, int32_t count,
                     int32_t monoColour) {
  Store& store = context.store;
  context.rememberedColours.assign(size_t(count), -1);
  for (int32_t i = 1; i <= count; ++i) {
    const ObjectHandle item = store.OA_Object(items, i);
    const ItemFields* f = store.itemFields(item);
    if (!f)
      continue;
    context.rememberedColours[size_t(i - 1)] = f->Colour;
    const int32_t colour =
        f->Colour == context.clearColour ? (monoColour | ColourMarkBit) : monoColour;
    store.I_ChangeItemAttr(item, f->Attributes, colour, f->Style, f->LineWidth);
  }
}

// Gives the items back the colours colourItemsMono took from them.
void restoreItemColours(LayerDrawContext& context, ArrayHandle items, int32_t count) {
  Store& store = context.store;
  const auto& remembered = context.rememberedColours;
  for (int32_t i = 1; i <= count && size_t(i) <= remembered.size(); ++i) {
    const int16_t colour = remembered[size_t(i - 1)];
    if (colour < 0)
      continue;
    const ObjectHandle item = store.OA_Object(items, i);
    if (const ItemFields* f = store.itemFields(item))
      store.I_ChangeItemAttr(item, f->Attributes, colour, f->Style, f->LineWidth);
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

  ArrayHandle items = ArrayHandle::None;
  int32_t itemCount = 0;
  if (mono) {
    if (drillTemplate) {
      colourPadStackItems(store, layer);
    } else {
      items = store.S_SymbolItemArray(symbol);
      itemCount = store.OA_GetCount(items);
      colourItemsMono(context, items, itemCount, monoColour);
    }
  }

  graphics.G_SetDrawMode(device, drawMode | drawmode::Layer);
  store.S_SetCompLocation(0, 0, 0, 0);
  store.S_SetPadLocation(0, 0, 0);
  graphics.S_DrawSymbol(device, symbol, drawItems, 0);
  if ((layer.Mask & layergroup::OutlineAndDrill) != 0 || context.padPositions)
    graphics.S_DrawSymbol(device, symbol, 0, drawEntries);

  if (mono && !drillTemplate)
    restoreItemColours(context, items, itemCount);
}

}  // namespace tvx
