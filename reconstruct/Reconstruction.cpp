#include "reconstruct/Reconstruction.h"

#include "kernel/Store.h"
#include "reconstruct/PadIndex.h"
#include "store/LayerCatalogue.h"

namespace tvx {

Reconstruction::Reconstruction(Store& store, std::span<const LayerRecord> layers,
                               int32_t clearColour, const SystemServices* services,
                               UserPrompts& prompts, ReconstructionState& state)
    : store_(store), layers_(layers), clearColour_(clearColour), services_(services),
      prompts_(prompts), state_(state), categories_(services),
      index_(std::make_unique<PadIndex>(state.PadPositions)) {}

Reconstruction::~Reconstruction() = default;

bool Reconstruction::RunReconstruction() {
  categories_ = Categories(services_);
  state_.Report = {};
  for (int32_t number = 1; number <= category::Count; ++number)
    EnsureCategorySymbol(store_, categories_[number], false);
  const CategoryOptions& o = state_.Options;
  bool any = false;
  if (o.Outlines)
    any |= CopyOutlines(o.OutlinesReplace);
  if (o.Silkscreen)
    any |= CopySilkscreen(o.SilkscreenReplace);
  if (o.Traces)
    any |= CopyTraces(o.TracesReplace);
  if (o.Pads) {
    any |= FindPadPositions(o.PadsReplace);
    any |= CopyPadShapes(o.PadsReplace);
  }
  if (o.Copper)
    any |= CopyCopper(o.CopperReplace);
  fillReport();
  return any;
}

bool Reconstruction::LayersHaveContent(int32_t mask, int32_t kind, int32_t attribute) const {
  for (const LayerRecord& layer : layers_) {
    if ((layer.Mask & mask) == 0)
      continue;
    if (kind == 1) {
      if (store_.OA_GetCount(store_.S_SymbolEntryArray(layer.SymbolHandle)) > 0)
        return true;
      continue;
    }
    const ArrayHandle items = store_.S_SymbolItemArray(layer.SymbolHandle);
    if (attribute == 0 ? store_.OA_GetCount(items) > 0
                       : store_.OA_SearchMask(items, 1, attribute) > 0)
      return true;
  }
  return false;
}

template <typename Visit>
void Reconstruction::forEachItem(const LayerRecord& layer, Visit&& visit) const {
  const ArrayHandle items = store_.S_SymbolItemArray(layer.SymbolHandle);
  const int32_t count = store_.OA_GetCount(items);
  for (int32_t i = 1; i <= count; ++i) {
    ItemRecord item;
    if (store_.I_ReadItem(store_.OA_Object(items, i), item))
      visit(item);
  }
}

bool Reconstruction::copyInto(int32_t category, const ItemRecord& item) {
  const ArrayHandle target = store_.S_SymbolItemArray(categories_[category].SymbolHandle);
  return store_.OA_AddNewItem(target, item) > 0;
}

bool Reconstruction::CopyOutlines(bool replace) {
  if (!LayersHaveContent(BoardOutlineMask, 0, 0))
    return false;
  std::vector<int32_t> targets = {category::BoardOutline};
  if (state_.Options.OutlinesCutouts)
    targets.push_back(category::BoardCutouts);
  if (state_.Options.OutlinesTemplate)
    targets.push_back(category::TemplateOutlines);
  bool copied = false;
  for (const int32_t target : targets) {
    EnsureCategorySymbol(store_, categories_[target], replace);
    forEachItem(layer(BoardOutlineLayer), [&](ItemRecord& item) {
      item.Attributes = attr::Shown;
      item.Colour = static_cast<uint8_t>(categories_[target].Colour);
      copied |= copyInto(target, item);
    });
  }
  return copied;
}

bool Reconstruction::CopySilkscreen(bool replace) {
  if (!LayersHaveContent(layergroup::Silkscreen, 0, 0))
    return false;
  bool copied = false;
  for (const auto& [mask, target] : {std::pair{int32_t(0x1), category::SilkscreenTop},
                                     std::pair{int32_t(0x20), category::SilkscreenBottom}}) {
    for (const LayerRecord& source : layers_) {
      if (source.Mask != mask)
        continue;
      EnsureCategorySymbol(store_, categories_[target], replace);
      forEachItem(source, [&](ItemRecord& item) {
        item.Colour = static_cast<uint8_t>(source.LayerCode);
        copied |= copyInto(target, item);
      });
    }
  }
  return copied;
}

bool Reconstruction::CopyTraces(bool replace) {
  if (!LayersHaveContent(layergroup::Copper, 0, 0))
    return false;
  EnsureCategorySymbol(store_, categories_[category::Traces], replace);
  bool copied = false;
  for (const LayerRecord& source : layers_) {
    if ((source.Mask & layergroup::Copper) == 0)
      continue;
    forEachItem(source, [&](ItemRecord& item) {
      if ((item.Attributes & (attr::Flashed | attr::PolygonSide)) != 0 ||
          (item.Type != ItemLine && item.Type != ItemArc) || item.Colour == clearColour_)
        return;
      item.Colour = static_cast<uint8_t>(source.LayerCode);
      copied |= copyInto(category::Traces, item);
    });
  }
  return copied;
}

bool Reconstruction::CopyCopper(bool replace) {
  if (!LayersHaveContent(layergroup::Copper, 0, attr::PolygonSide))
    return false;
  EnsureCategorySymbol(store_, categories_[category::Copper], replace);
  bool copied = false;
  for (const LayerRecord& source : layers_) {
    if ((source.Mask & layergroup::Copper) == 0)
      continue;
    forEachItem(source, [&](ItemRecord& item) {
      if ((item.Attributes & attr::PolygonSide) == 0 || (item.Attributes & attr::Flashed) != 0 ||
          item.Colour == clearColour_)
        return;
      item.Style = 1;
      item.Colour = static_cast<uint8_t>(source.LayerCode);
      copied |= copyInto(category::Copper, item);
    });
  }
  return copied;
}

void Reconstruction::fillReport() {
  ReconstructionReport& report = state_.Report;
  report.Counts.clear();
  for (int32_t number = 1; number <= category::Count; ++number) {
    const SymbolId id = categories_[number].SymbolHandle;
    const int32_t entries = store_.OA_GetCount(store_.S_SymbolEntryArray(id));
    // Entry 1 is the category's dead entry.
    const int32_t count =
        store_.OA_GetCount(store_.S_SymbolItemArray(id)) + (entries > 1 ? entries - 1 : 0);
    report.Counts.emplace_back(categories_[number].Caption, count);
  }
}

}  // namespace tvx
