// The sorting of the 31 layers' elements into the board categories: outlines, silkscreen,
// traces, copper pours, and the pads found on the top and bottom copper, told apart by the drill
// template into through pads, surface pads of either side and vias.
#pragma once

#include "reconstruct/Categories.h"
#include "reconstruct/ReconstructionState.h"
#include "store/LayerRecord.h"
#include "store/PlacedPoints.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

namespace tvx {

class PadIndex;
class SystemServices;
class Store;
class UserPrompts;

class Reconstruction {
public:
  // layers are the 31 layer records, layer n at n - 1; clearColour is the colour value of
  // clear-polarity elements, which are never copied. services translates the captions and the
  // via question; prompts asks it.
  Reconstruction(Store& store, std::span<const LayerRecord> layers, int32_t clearColour,
                 const SystemServices* services, UserPrompts& prompts, ReconstructionState& state);
  ~Reconstruction();

  // The six steps in order, each as the options say; true when any element or pad position went
  // into a category. Fills the state's report.
  bool RunReconstruction();

  // Whether a layer of mask holds anything: kind 0 items (with attribute 0 any item, else one
  // with a bit of attribute), kind 1 pad entries.
  bool LayersHaveContent(int32_t mask, int32_t kind, int32_t attribute) const;

  bool CopyOutlines(bool replace);
  bool CopySilkscreen(bool replace);
  bool CopyTraces(bool replace);
  bool CopyCopper(bool replace);
  bool FindPadPositions(bool replace);
  bool CopyPadShapes(bool replace);
  // One pad position into its category: its pad stack per D-code with the category's marker and
  // the hole once known, and the pad, unless one stands on the point already. The points of a
  // category's pads are read at its first pad of a run; between calls only this adds pads.
  void AddPadPosition(int32_t x, int32_t y, int32_t padStack, int32_t hole, int32_t category);

  // Answers the via question in place of the query box, where set (the command line's --via):
  // the index of the chosen row of the apertures, or none as a cancel.
  std::function<std::optional<size_t>(const std::vector<ApertureRow>& apertures)> chooseViaCode;

  const Categories& categories() const { return categories_; }
  // How far a drill hit may lie from its pad: 1000 store units, or the drill files' coordinate
  // step when that is larger, so that a hole rounded to the file's digits still finds its pad.
  int32_t drillTolerance() const;

private:
  const LayerRecord& layer(int32_t number) const { return layers_[size_t(number - 1)]; }
  // Copies item of a layer into a category; false when the store refused it.
  bool copyInto(int32_t category, const ItemRecord& item);
  // Calls visit(item) for a copy of every item of the layer.
  template <typename Visit> void forEachItem(const LayerRecord& layer, Visit&& visit) const;
  // The category of a pad row: positions or pad stacks.
  int32_t positionCategory(const PadPosition& pad) const;
  int32_t padStackCategory(const PadPosition& pad) const;
  void askViaCode(const std::vector<ApertureRow>& apertures);
  void matchDrillHits();
  void fillReport();

  Store& store_;
  std::span<const LayerRecord> layers_;
  int32_t clearColour_;
  const SystemServices* services_;
  UserPrompts& prompts_;
  ReconstructionState& state_;
  Categories categories_;
  std::unique_ptr<PadIndex> index_;
  std::unordered_map<SymbolId, PlacedPoints> placed_;  // the points of each category's pads
};

}  // namespace tvx
