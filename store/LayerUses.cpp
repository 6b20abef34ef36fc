#include "store/LayerUses.h"

#include "store/LayerCatalogue.h"

#include <unordered_map>

namespace tvx {

void CountApertureUses(const Store& store, LayerRecord& layer) {
  // The first row of each code, so that one walk over the items finds its row at once.
  std::unordered_map<int32_t, ApertureRow*> rowOfCode;
  rowOfCode.reserve(layer.Apertures.size());
  for (ApertureRow& row : layer.Apertures) {
    row.Count = 0;
    rowOfCode.emplace(row.Code, &row);
  }
  if (rowOfCode.empty())
    return;
  const ArrayHandle items = store.S_SymbolItemArray(layer.SymbolHandle);
  const int32_t n = store.OA_GetCount(items);
  if (n > 0)
    store.forEachItem(items, 1, n, [&](int32_t, const ItemFields* item) {
      if (!item || (item->Attributes & attr::PolygonSide) != 0 || item->Link == 0)
        return;
      if (const auto found = rowOfCode.find(item->Link); found != rowOfCode.end())
        ++found->second->Count;
    });
}

std::vector<LayerToolRow> LayerToolList(const Store& store, const LayerRecord& layer) {
  std::vector<LayerToolRow> tools;
  const MapHandle padStacks = store.S_SymbolPadStackMap(layer.SymbolHandle);
  if (padStacks == MapHandle::None)
    return tools;
  int32_t cursor = store.OM_GetFirst(padStacks);
  while (const int32_t key = store.OM_SearchMask(padStacks, &cursor, 0, 0)) {
    PadStackRecord padStack;
    if (store.S_ReadPadStack(store.OM_Object(padStacks, key), padStack) == 0)
      continue;
    const LayerToolRow row{key, padStack.HoleDiameter, padStack.HoleKind, 0};
    auto at = tools.begin();
    while (at != tools.end() && at->Diameter < row.Diameter)
      ++at;
    tools.insert(at, row);
  }
  std::unordered_map<int32_t, size_t> rowOfKey;
  for (size_t i = 0; i < tools.size(); ++i)
    rowOfKey.emplace(tools[i].Code, i);
  const int32_t entries = store.OA_GetCount(store.S_SymbolEntryArray(layer.SymbolHandle));
  EntryRecord entry;
  for (int32_t i = 1; i <= entries; ++i)
    if (store.S_ReadEntry(layer.SymbolHandle, i, entry) != 0)
      if (const auto found = rowOfKey.find(entry.PadStack); found != rowOfKey.end())
        ++tools[found->second].Count;
  return tools;
}

namespace {
void recolourItems(Store& store, ArrayHandle items, int32_t colour, int32_t keep) {
  const int32_t n = store.OA_GetCount(items);
  for (int32_t i = 1; i <= n; ++i) {
    const ObjectHandle item = store.OA_Object(items, i);
    const ItemFields* f = store.itemFields(item);
    if (f && f->Colour != keep)
      store.I_ChangeItemAttr(item, f->Attributes, colour, f->Style, f->LineWidth);
  }
}
}  // namespace

void RecolourLayerElements(Store& store, const LayerRecord& layer, int32_t clearColourCode) {
  if ((layer.Mask & layergroup::AllButDrill) != 0)
    recolourItems(store, store.S_SymbolItemArray(layer.SymbolHandle), layer.ColourNumber,
                  clearColourCode);
  if (layer.Mask != DrillLayerMask)
    return;
  const MapHandle padStacks = store.S_SymbolPadStackMap(layer.SymbolHandle);
  if (padStacks == MapHandle::None)
    return;
  int32_t cursor = store.OM_GetFirst(padStacks);
  while (const int32_t key = store.OM_SearchMask(padStacks, &cursor, 0, 0))
    recolourItems(store, store.S_PadStackItemArray(store.OM_Object(padStacks, key)),
                  layer.ColourNumber, -1);
}

}  // namespace tvx
