// The 31 layer slots and their drawing order: building them from the catalogue, and what the
// windows ask of a layer's contents.
#pragma once

#include "kernel/Store.h"
#include "platform/SystemServices.h"
#include "store/ColourSlots.h"
#include "store/LayerCatalogue.h"
#include "store/LayerOrder.h"
#include "store/LayerRecord.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace tvx {

// The layers and their order, owned by the main window for its whole life. Layers never move in
// Layers; only the rows of LayerOrder change places. Both are numbered from 1.
struct LayerTables {
  std::array<LayerRecord, LayerCount> Layers;
  std::array<LayerOrderRow, LayerCount> LayerOrder;
  int32_t CurrentLayer = 1;

  LayerRecord& layer(int32_t number) { return Layers.at(size_t(number - 1)); }
  const LayerRecord& layer(int32_t number) const { return Layers.at(size_t(number - 1)); }
  LayerOrderRow& orderRow(int32_t row) { return LayerOrder.at(size_t(row - 1)); }
  const LayerOrderRow& orderRow(int32_t row) const { return LayerOrder.at(size_t(row - 1)); }
};

// Builds both tables from the catalogue: captions through the catalogue of messages, colours
// from the palette of colours, and then the colours stored in "GERBERVIEWERCOLORS" under each
// layer's SymbolName. Every layer's symbol is made anew and empty, whatever the store held. mono
// is the view's monochrome flag, copied into every row. The current layer becomes 1.
void BuildLayerTables(Store& store, const SystemServices& services, const ColourSlots& colours,
                      bool mono, LayerTables& tables);

// A stored colour: "palette number,RGB value". False, with both values untouched, for a text of
// fewer than two fields; a field that holds no number reads as 0.
bool parseStoredColour(std::string_view text, int32_t& colourNumber, int32_t& colourRgb);

// The text of a layer in the list of layers: "Empty" when it holds no entries and no items (used
// false), else the number of both, a blank and "elements" (used true).
std::string LayerContentsText(const Store& store, const SystemServices& services,
                              const LayerRecord& layer, bool& used);

// Element counts of a layer, at indices 1 to 11 (index 0 is unused).
namespace contents {
inline constexpr int32_t Lines = 1;
inline constexpr int32_t Arcs = 2;
inline constexpr int32_t FilledRectangles = 3;
inline constexpr int32_t OpenRectangles = 4;
inline constexpr int32_t FilledCircles = 5;
inline constexpr int32_t OpenCircles = 6;
inline constexpr int32_t FilledTriangles = 7;
inline constexpr int32_t OpenTriangles = 8;
inline constexpr int32_t Texts = 9;
inline constexpr int32_t Polygons = 10;
inline constexpr int32_t Entries = 11;  // drilled holes or pad positions
}  // namespace contents
using LayerContents = std::array<int32_t, 12>;

// Counts a layer's elements by kind. A polygon counts once, by its first side; its other sides
// are not counted, nor are items of other types.
void CountLayerContents(const Store& store, const LayerRecord& layer, LayerContents& counts);

// The extent of the entries and items of all layers, hidden ones too; all zeros when every layer
// is empty.
void FrameLayers(Store& store, std::span<const LayerRecord> layers, FrameRect& frame);

}  // namespace tvx
