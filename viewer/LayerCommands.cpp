#include "viewer/LayerCommands.h"

#include "kernel/Store.h"
#include "platform/SystemServices.h"
#include "store/LayerCatalogue.h"
#include "store/Layers.h"

#include <utility>

namespace tvx {

namespace {

bool isLayerNumber(int32_t number) { return number >= 1 && number <= LayerCount; }

bool isInner(const LayerRecord& layer) { return (layer.Mask & layergroup::Inner) != 0; }

template <typename Hook, typename... Args> void call(const Hook& hook, Args&&... args) {
  if (hook)
    hook(std::forward<Args>(args)...);
}

}  // namespace

LayerCommands::LayerCommands(Store& store, SystemServices& services, LayerTables& tables)
    : store_(store), services_(services), tables_(tables) {}

int32_t LayerCommands::CurrentLayer() const { return tables_.CurrentLayer; }

void LayerCommands::M_ActiveCategories_Click(int32_t index) {
  if (index == tables_.CurrentLayer || !isLayerNumber(index))
    return;
  tables_.CurrentLayer = index;
  InitGIE();
}

void LayerCommands::InitGIE() {
  if (!isLayerNumber(tables_.CurrentLayer))
    return;
  call(hooks.closeLayerProperties);
  const bool visibilityWasLoaded = hooks.unloadVisibilityWindow && hooks.unloadVisibilityWindow();

  call(hooks.setRedrawBusy, true);
  call(hooks.endTool);

  WorkingSymbol = tables_.layer(tables_.CurrentLayer).SymbolHandle;
  call(hooks.clearUndo, WorkingSymbol);
  WorkingSymbolName =
      SystemServices::StringFromPointer(store_.O_GetName(store_.S_Symbol(WorkingSymbol)));

  // Only the working layer stays Active; its row goes to row 1 by exchange, so that it is drawn
  // last and lies on top, and becomes visible whatever the order window left.
  for (int32_t row = 1; row <= LayerCount; ++row) {
    LayerOrderRow& order = tables_.orderRow(row);
    LayerRecord& layer = tables_.layer(order.LayerNumber);
    layer.Active = false;
    if (layer.SymbolHandle != WorkingSymbol)
      continue;
    order.Visible = true;
    layer.Active = true;
    std::swap(order, tables_.orderRow(1));
  }
  modeLayer_ = tables_.CurrentLayer;
  notifyChanged();

  call(hooks.reselectKey);
  call(hooks.setRedrawBusy, false);
  call(hooks.redraw);
  if (visibilityWasLoaded)
    call(hooks.showVisibilityWindow);
}

void LayerCommands::M_AddLayer_Click() {
  for (LayerRecord& layer : tables_.Layers) {
    if (layer.Listed)
      continue;
    if (!services_.AskYesNo(text(layermsg::Add, layermsg::AddId) + " " + layer.DisplayName,
                            text(layermsg::NewLayerTitle, layermsg::NewLayerTitleId)))
      return;
    layer.Listed = true;
    notifyChanged();
    return;
  }
}

void LayerCommands::M_RemoveLayer_Click() {
  const int32_t current = tables_.CurrentLayer;
  // The entry is shown for inner layers only; the outer layers are never removed.
  if (!isLayerNumber(current) || !isInner(tables_.layer(current)))
    return;
  if (!services_.AskYesNo(text(layermsg::Remove, layermsg::RemoveId) + " " +
                              tables_.layer(current).DisplayName,
                          text(layermsg::RemovingTitle, layermsg::RemovingTitleId)))
    return;

  // Inner layers come in pairs: the layer above goes too, listed or not, but only when it is
  // inner itself, so that removing the last inner layer keeps the board outline.
  const int32_t last =
      current + 1 <= LayerCount && isInner(tables_.layer(current + 1)) ? current + 1 : current;
  for (int32_t n = current; n <= last; ++n) {
    tables_.layer(n).Listed = false;
    for (LayerOrderRow& order : tables_.LayerOrder)
      if (order.LayerNumber == n)
        order.Visible = false;
  }
  notifyChanged();

  for (int32_t n = current; n >= 1; --n) {
    const LayerRecord& layer = tables_.layer(n);
    if (layer.Listed && (layer.Mask & layergroup::AllButOutlineAndDrill) != 0) {
      M_ActiveCategories_Click(n);
      break;
    }
  }
}

void LayerCommands::M_New_Click() {
  if (!services_.AskYesNo(text(layermsg::ClearAll, layermsg::ClearAllId),
                          text(layermsg::ViewerTitle, layermsg::ViewerTitleId)))
    return;
  call(hooks.applySystemSettings);
  call(hooks.selectFunctionOne);
  call(hooks.redraw);
  notifyChanged();
  call(hooks.startImport);
}

void LayerCommands::setCommandsEnabled(bool enabled) {
  if (enabled == commandsEnabled_)
    return;
  commandsEnabled_ = enabled;
  notifyChanged();
}

LayerCommandsState LayerCommands::state() const {
  LayerCommandsState s;
  for (int32_t n = 1; n <= LayerCount; ++n) {
    const LayerRecord& layer = tables_.layer(n);
    s.layers[size_t(n - 1)] = {layer.DisplayName, layer.Listed, layer.Active, commandsEnabled_};
  }
  s.addLayer = {"", true, false, commandsEnabled_ && someLayerUnlisted()};
  if (isLayerNumber(tables_.CurrentLayer)) {
    const LayerRecord& current = tables_.layer(tables_.CurrentLayer);
    s.removeLayer = {text(layermsg::Remove, layermsg::RemoveId) + " " + current.DisplayName,
                     isInner(current), false, commandsEnabled_};
  }
  s.modeLayer = modeLayer_;
  return s;
}

void LayerCommands::notifyChanged() {
  ++revision_;
  call(hooks.changed);
}

bool LayerCommands::someLayerUnlisted() const {
  for (const LayerRecord& layer : tables_.Layers)
    if (!layer.Listed)
      return true;
  return false;
}

std::string LayerCommands::text(const char* defaultText, const char* id) const {
  return services_.LocalMessage(defaultText, id);
}

}  // namespace tvx
