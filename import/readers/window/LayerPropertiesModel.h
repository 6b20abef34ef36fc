// The model of the layer properties window GBRVIEWER_GISIMP: what a layer holds once imported (its
// last file, its elements by kind, its apertures or tools with their use counts), the change of
// its colour and the highlight of an aperture or tool. No widget lives here.
#pragma once

#include "common/GridRow.h"
#include "import/readers/window/ImportWindowModel.h"
#include "store/LayerRecord.h"
#include "store/LayerUses.h"
#include "store/Layers.h"

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace tvx {

class Store;
class SystemServices;

// The one fixed list of the grid: the colour choice.
namespace propertieslist {
inline constexpr int32_t Colour = 1;
}  // namespace propertieslist

struct LayerPropertiesOwners {
  Store& store;
  SystemServices& services;
  std::span<LayerRecord> layers;   // layer n at index n - 1
  const int32_t& PropertiesLayer;  // the layer the main window asks to show
  HighlightLink highlights;
  std::function<void()> RedrawScreen;
  std::function<void()> unload;   // the window goes
  int32_t clearColourNumber = 0;  // palette number of the ClearColour slot
  int32_t clearColourCode = 0;    // the colour value clear elements carry
  int32_t displayUnit = 0;
};

class LayerPropertiesModel {
public:
  explicit LayerPropertiesModel(LayerPropertiesOwners owners);

  // Once at load: the caption, the tab, the list.
  void FormFill();
  // The layer asked for, its counts, its rows.
  void FormUpdate();

  // The one commit step for the value cell of row (from 0): a list entry's text or a typed text.
  void CommitCell(int32_t row, const std::string& text);
  // A click on a row: the highlight of an aperture or tool row, on and off.
  void ClickRow(int32_t row);
  // A square of the colour page.
  void PaletteClick(int32_t colour);
  // The highlights cleared, the view redrawn, the window unloaded.
  void cmdClose();

  const std::vector<std::string>& list(int32_t which) const;
  int32_t rowOf(const std::string& key) const;

  int32_t DialogLayer = 0;
  LayerContents Contents{};
  std::vector<LayerToolRow> ToolList;
  bool CellEdited = false;

  // What the window shows.
  std::vector<GridRow> rows;
  std::string caption;
  std::string gridCaption;
  std::string paletteCaption;
  std::string headerProperty;
  std::string headerValue;
  bool colourPageShown = false;
  std::function<void()> changed;  // rows or state changed: the window refills

private:
  std::string text(const char* defaultText, const char* id) const;
  LayerRecord* layer();
  bool drillLayer() const;
  void buildRows();
  void addUseRows(const LayerRecord& layer);
  void changeColour(int32_t number, int32_t rgb);
  void notify();

  Store& store_;
  SystemServices& services_;
  std::span<LayerRecord> layers_;
  const int32_t& PropertiesLayer_;
  HighlightLink highlights_;
  std::function<void()> redraw_;
  std::function<void()> unload_;
  int32_t clearColourNumber_;
  int32_t clearColourCode_;
  int32_t displayUnit_;
  std::vector<std::string> colourList_;
};

}  // namespace tvx
