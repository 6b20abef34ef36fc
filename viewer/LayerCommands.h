// The commands that act on a layer as a whole, without widgets: choosing the current layer, adding
// and removing inner layers, clearing everything; and what the layer menu rows and the layer tools
// show, as plain data for the menu and the tool bar band to bind to.
//
// The model changes the layer tables; the other windows, the pointer tools, the undo stack, the
// redraw and the function band are reached through LayerCommandHooks, so that tests drive the
// commands with numbers and the window wires the hooks. Questions go through SystemServices.
#pragma once

#include "kernel/KernelTypes.h"
#include "store/LayerRecord.h"

#include <array>
#include <cstdint>
#include <functional>
#include <string>

namespace tvx {

class Store;
class SystemServices;
struct LayerTables;

// Message ids and default texts of the layer commands.
namespace layermsg {
inline constexpr const char* AddId = "6279";
inline constexpr const char* Add = "Add";
inline constexpr const char* NewLayerTitleId = "6280";
inline constexpr const char* NewLayerTitle = "New Artwork Layer";
inline constexpr const char* RemoveId = "6229";
inline constexpr const char* Remove = "Remove";
inline constexpr const char* RemovingTitleId = "6284";
inline constexpr const char* RemovingTitle = "Removing Artwork Layer";
inline constexpr const char* ClearAllId = "6282";
inline constexpr const char* ClearAll = "Clear all layers?";
inline constexpr const char* ViewerTitleId = "6283";
inline constexpr const char* ViewerTitle = "Viewer";
}  // namespace layermsg

// One entry as a menu row and its tool show it.
struct LayerEntryState {
  std::string caption;  // also the tool tip
  bool visible = false;
  bool checked = false;
  bool enabled = false;

  bool operator==(const LayerEntryState&) const = default;
};

// What the layer menu and the layer band show: M_ActiveCategories(1..31) with their tools, and
// M_AddLayer / M_RemoveLayer with ATB_AddLayer / ATB_RemoveLayer. The add entry's caption comes
// from the menu file, so its caption stays empty here.
struct LayerCommandsState {
  std::array<LayerEntryState, LayerCount> layers;  // layer n at index n - 1
  LayerEntryState addLayer;
  LayerEntryState removeLayer;
  // The layer whose picture and caption the band's mode tool shows; 0 before the first InitGIE.
  int32_t modeLayer = 0;

  const LayerEntryState& layer(int32_t number) const { return layers.at(size_t(number - 1)); }
  bool operator==(const LayerCommandsState&) const = default;
};

// What the commands ask of the window and of the parts of the viewer around them. Every hook may
// be left empty.
struct LayerCommandHooks {
  // InitGIE first unloads the layer properties window (GBRVIEWER_GISIMP) when it is loaded, and
  // the layer visibility window (GBRVIEWER_GIESVC), which tells whether it was loaded; such a
  // visibility window is shown again after the redraw.
  std::function<void()> closeLayerProperties;
  std::function<bool()> unloadVisibilityWindow;
  std::function<void()> showVisibilityWindow;
  // RedrawBusy of the redraw: set while InitGIE works, so that nothing is repainted half done.
  std::function<void(bool busy)> setRedrawBusy;
  // Form_KeyDown with Escape: a running tool or an armed state ends.
  std::function<void()> endTool;
  // DoUndo(symbol, 0): the undo stack is emptied, and M_Undo disabled with it.
  std::function<void(SymbolId symbol)> clearUndo;
  // Key 2 of the current function's band is reselected and its option tools are rebuilt.
  std::function<void()> reselectKey;
  // RedrawScreen.
  std::function<void()> redraw;
  // M_New_Click: ApplySystemSettings with every layer cleared and the tables built afresh.
  std::function<void()> applySystemSettings;
  // The current function becomes none and M_FSI_Click(1) selects function 1, which runs InitGIE
  // over the tables built afresh.
  std::function<void()> selectFunctionOne;
  // M_FSIimport_Click: the import starts with the file request.
  std::function<void()> startImport;
  // What state() gives has changed: the menu and the band show it again.
  std::function<void()> changed;
};

class LayerCommands {
public:
  LayerCommands(Store& store, SystemServices& services, LayerTables& tables);

  LayerCommandHooks hooks;

  // The current layer's symbol and its name as the store gives it; set by InitGIE.
  SymbolId WorkingSymbol = 0;
  std::string WorkingSymbolName;

  // The current layer, 1 to 31 (the tables' CurrentLayer).
  int32_t CurrentLayer() const;

  // Makes layer index current and runs InitGIE; the current layer again does nothing at all.
  void M_ActiveCategories_Click(int32_t index);
  // Re-derives everything that hangs on the current layer: other windows closed, the running tool
  // ended, the working symbol and its name, the undo stack emptied, Active and the checks, the
  // current layer's LayerOrder row made visible and exchanged with row 1, key 2 reselected, one
  // redraw.
  void InitGIE();
  // Offers the first unlisted layer; on Yes it is listed. It does not become current.
  void M_AddLayer_Click();
  // Removes the current inner layer, with the layer above it when that one is inner too: both are
  // unlisted and hidden, their data stays. The first listed layer below becomes current.
  void M_RemoveLayer_Click();
  // On Yes: the settings are applied afresh with empty layers, function 1 is selected, the view
  // redrawn and an import started.
  void M_New_Click();

  // While false (during an import) every layer row and both layer commands are disabled.
  void setCommandsEnabled(bool enabled);

  // What the layer menu and band show now.
  LayerCommandsState state() const;
  // Counts every change of what state() gives, so that a view can tell whether to refresh.
  uint64_t revision() const { return revision_; }

private:
  void notifyChanged();
  bool someLayerUnlisted() const;
  std::string text(const char* defaultText, const char* id) const;

  Store& store_;
  SystemServices& services_;
  LayerTables& tables_;
  bool commandsEnabled_ = true;
  int32_t modeLayer_ = 0;
  uint64_t revision_ = 0;
};

}  // namespace tvx
