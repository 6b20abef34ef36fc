#include "store/Layers.h"

#include "common/ParseList.h"
#include "common/WholeNumber.h"
#include "store/LayerSymbol.h"

#include <algorithm>

namespace tvx {

void BuildLayerTables(Store& store, const SystemServices& services, const ColourSlots& colours,
                      bool mono, LayerTables& tables) {
  for (int32_t n = 1; n <= LayerCount; ++n) {
    const LayerCatalogueRow& row = LayerCatalogue[size_t(n - 1)];
    LayerRecord& layer = tables.layer(n);
    layer = LayerRecord{};
    layer.Mask = layerMask(n);
    layer.SymbolHandle = layerSymbolId(n);
    layer.Listed = (layer.Mask & layergroup::ListedAtStart) != 0;
    layer.DefaultColourNumber = layer.ColourNumber = row.Colour;
    layer.DefaultColourRgb = layer.ColourRgb = colours.rgbOf(row.Colour);
    layer.LayerCode = row.LayerCode;
    layer.FilterMask = initialFilterMask(n);
    layer.PadKind = initialPadKind(n);
    layer.DisplayName = services.LocalMessage(std::string(row.Caption), std::string(row.TextId));
    layer.KeyName = row.KeyName;
    layer.SymbolName = layerSymbolName(n);

    LayerOrderRow& order = tables.orderRow(n);
    order = LayerOrderRow{};
    order.LayerNumber = n;
    order.Visible = layer.Listed;
    order.Mono = mono;

    EnsureLayerSymbol(store, layer, true);

    const std::string stored = services.GetIniString("GERBERVIEWERCOLORS", layer.SymbolName, "");
    if (!stored.empty())
      parseStoredColour(stored, layer.ColourNumber, layer.ColourRgb);
  }
  tables.CurrentLayer = 1;
}

bool parseStoredColour(std::string_view text, int32_t& colourNumber, int32_t& colourRgb) {
  const ParsedList fields = ParseList(text);
  if (fields.count() < 2)
    return false;
  colourNumber = whole(fields.value(1));
  colourRgb = whole(fields.value(2));
  return true;
}

std::string LayerContentsText(const Store& store, const SystemServices& services,
                              const LayerRecord& layer, bool& used) {
  const int32_t count = store.OA_GetCount(store.S_SymbolEntryArray(layer.SymbolHandle)) +
                        store.OA_GetCount(store.S_SymbolItemArray(layer.SymbolHandle));
  used = count >= 1;
  if (!used)
    return services.LocalMessage("Empty", "62422");
  return std::to_string(count) + " " + services.LocalMessage("elements", "62421");
}

namespace {
// The index that counts an item, 0 for one that is not counted.
int32_t contentsIndex(const ItemFields& item) {
  const int32_t both = attr::PolygonSide | attr::PolygonFirst;
  if ((item.Attributes & both) == both)
    return contents::Polygons;
  if (item.Attributes & attr::PolygonSide)
    return 0;
  const bool filled = item.Style == StyleFilled;
  switch (item.Type) {
  case ItemLine:
    return contents::Lines;
  case ItemArc:
    return contents::Arcs;
  case ItemRectangle:
    return filled ? contents::FilledRectangles : contents::OpenRectangles;
  case ItemCircle:
    return filled ? contents::FilledCircles : contents::OpenCircles;
  case ItemTriangle:
    return filled ? contents::FilledTriangles : contents::OpenTriangles;
  case ItemVectorText:
  case ItemTrueTypeText:
    return contents::Texts;
  default:
    return 0;
  }
}
}  // namespace

void CountLayerContents(const Store& store, const LayerRecord& layer, LayerContents& counts) {
  counts.fill(0);
  counts[contents::Entries] = store.OA_GetCount(store.S_SymbolEntryArray(layer.SymbolHandle));
  const ArrayHandle items = store.S_SymbolItemArray(layer.SymbolHandle);
  const int32_t n = store.OA_GetCount(items);
  for (int32_t i = 1; i <= n; ++i)
    if (const ItemFields* item = store.itemFields(store.OA_Object(items, i)))
      if (int32_t index = contentsIndex(*item))
        ++counts[size_t(index)];
}

void FrameLayers(Store& store, std::span<const LayerRecord> layers, FrameRect& frame) {
  frame = FrameRect{};
  bool any = false;
  const auto unite = [&](const FrameRect& f) {
    if (f.isEmpty())
      return;
    if (any)
      frame.unite(f);
    else
      frame = f;
    any = true;
  };
  for (const LayerRecord& layer : layers) {
    FrameRect f;
    if (store.S_FrameSymbolEntries(layer.SymbolHandle, -1, f))
      unite(f);
    if (store.S_FrameSymbolItems(layer.SymbolHandle, -1, f))
      unite(f);
  }
}

}  // namespace tvx
