// The pads of the board: where they stand, on which sides, with which hole, and what they look
// like.
#include "common/UserDialogs.h"
#include "kernel/Store.h"
#include "platform/SystemServices.h"
#include "reconstruct/PadIndex.h"
#include "reconstruct/Reconstruction.h"
#include "store/LayerCatalogue.h"
#include "store/PlacedPoints.h"

#include <algorithm>
#include <cmath>

namespace tvx {

namespace {

// Pads of the top and bottom copper closer than this in both X and Y are one pad.
constexpr int32_t SamePadDistance = 1000;
// Unmatched drill hits listed in the report with the distance to their nearest pad.
constexpr size_t MostHolesListed = 100;

constexpr int32_t TopCopperLayer = 3;
constexpr int32_t BottomCopperLayer = 4;

}  // namespace

int32_t Reconstruction::drillTolerance() const {
  int32_t tolerance = SamePadDistance;
  for (const LayerFileRecord& file : layer(DrillLayer).Files)
    tolerance = std::max(tolerance, file.CoordinateStep);
  return tolerance;
}

bool Reconstruction::FindPadPositions(bool replace) {
  std::vector<PadPosition>& pads = state_.PadPositions;
  pads.clear();
  index_ = std::make_unique<PadIndex>(pads);
  std::vector<ApertureRow> apertures;
  if (!LayersHaveContent(layer(TopCopperLayer).Mask | layer(BottomCopperLayer).Mask, 1, 0))
    return false;

  int32_t allSides = 0;
  for (const auto& [number, side] :
       {std::pair{TopCopperLayer, padside::Top}, std::pair{BottomCopperLayer, padside::Bottom}}) {
    const LayerRecord& source = layer(number);
    const int32_t count = store_.OA_GetCount(store_.S_SymbolEntryArray(source.SymbolHandle));
    for (int32_t i = 1; i <= count; ++i) {
      EntryRecord entry;
      if (!store_.S_ReadEntry(source.SymbolHandle, i, entry))
        continue;
      allSides |= side;
      if (const int32_t row = index_->firstNear(entry.X, entry.Y, SamePadDistance); row >= 0) {
        pads[size_t(row)].Sides |= side;  // the row keeps its first D-code
        continue;
      }
      pads.push_back({entry.X, entry.Y, entry.PadStack, 0, side});
      index_->update();
      const auto code = [&](const ApertureRow& r) { return r.Code == entry.PadStack; };
      const auto known = std::find_if(source.Apertures.begin(), source.Apertures.end(), code);
      if (known != source.Apertures.end() && std::none_of(apertures.begin(), apertures.end(), code))
        apertures.push_back(*known);
    }
  }

  if (allSides == padside::Both && !apertures.empty())
    askViaCode(apertures);
  matchDrillHits();

  for (const int32_t target :
       {category::ThruPads, category::SmdPadsTop, category::SmdPadsBottom, category::ViaPads})
    EnsureCategorySymbol(store_, categories_[target], replace);
  placed_.clear();
  for (const PadPosition& pad : pads)
    AddPadPosition(pad.X, pad.Y, pad.PadStack, pad.Hole, positionCategory(pad));
  placed_.clear();
  return !pads.empty();
}

void Reconstruction::askViaCode(const std::vector<ApertureRow>& apertures) {
  state_.ViaCode = 0;
  if (chooseViaCode) {
    if (const std::optional<size_t> row = chooseViaCode(apertures); row && *row < apertures.size())
      state_.ViaCode = apertures[*row].Code;
    return;
  }
  const auto text = [&](const char* defaultText, const char* id) {
    return services_ ? services_->LocalMessage(defaultText, id) : std::string(defaultText);
  };
  std::vector<std::string> list = {std::string()};
  for (const ApertureRow& row : apertures)
    list.push_back(row.Text);
  int32_t index = 0;
  const std::string answer =
      AskQuery(prompts_, text("Via hole pad positions filter", "62404"),
               text("Select D-Code associated with via holes", "62405"), list, 5, index);
  if (!answer.empty() && index >= 1 && index <= int32_t(apertures.size()))
    state_.ViaCode = apertures[size_t(index - 1)].Code;
}

void Reconstruction::matchDrillHits() {
  ReconstructionReport& report = state_.Report;
  const LayerRecord& drill = layer(DrillLayer);
  const int32_t tolerance = drillTolerance();
  report.Tolerance = tolerance;
  const MapHandle padStacks = store_.S_SymbolPadStackMap(drill.SymbolHandle);
  const int32_t count = store_.OA_GetCount(store_.S_SymbolEntryArray(drill.SymbolHandle));
  for (int32_t i = 1; i <= count; ++i) {
    EntryRecord entry;
    if (!store_.S_ReadEntry(drill.SymbolHandle, i, entry))
      continue;
    ++report.Holes;
    const int32_t row = index_->nearestNear(entry.X, entry.Y, tolerance);
    if (row < 0) {
      if (report.HolesWithoutPad.size() < MostHolesListed)
        report.HolesWithoutPad.push_back({entry.X, entry.Y, -1});
      continue;
    }
    ++report.HolesMatched;
    PadPosition& pad = state_.PadPositions[size_t(row)];
    pad.Sides = padside::Both;
    PadStackRecord padStack;
    pad.Hole = store_.S_ReadPadStack(store_.OM_Object(padStacks, entry.PadStack), padStack)
                   ? padStack.HoleDiameter
                   : 0;
  }
  // The distance from each hole listed to its nearest pad, for the report.
  for (UnmatchedHole& hole : report.HolesWithoutPad)
    for (const PadPosition& pad : state_.PadPositions) {
      const double distance = std::hypot(double(pad.X) - hole.X, double(pad.Y) - hole.Y);
      if (hole.NearestPad < 0 || distance < hole.NearestPad)
        hole.NearestPad = distance;
    }
}

int32_t Reconstruction::positionCategory(const PadPosition& pad) const {
  if (pad.Sides == padside::Both)
    return state_.ViaCode != 0 && state_.ViaCode == pad.PadStack ? category::ViaPads
                                                                 : category::ThruPads;
  return pad.Sides == padside::Bottom ? category::SmdPadsBottom : category::SmdPadsTop;
}

int32_t Reconstruction::padStackCategory(const PadPosition& pad) const {
  if (pad.Sides == padside::Both)
    return state_.ViaCode != 0 && state_.ViaCode == pad.PadStack ? category::ViaPadStacks
                                                                 : category::ThruPadStacks;
  return pad.Sides == padside::Bottom ? category::SmdPadStacksBottom : category::SmdPadStacksTop;
}

void Reconstruction::AddPadPosition(int32_t x, int32_t y, int32_t padStack, int32_t hole,
                                    int32_t category) {
  const CategoryRecord& target = categories_[category];
  const SymbolId symbol = target.SymbolHandle;
  store_.S_SetCompLocation(0, 0, 0, 0);
  // No second pad on one point: the first one stands. The points of the category's pads are
  // read once per run, from index 2, past the dead entry.
  auto points = placed_.find(symbol);
  if (points == placed_.end())
    points = placed_.emplace(symbol, PlacedPoints(store_, symbol, 2)).first;
  if (points->second.contains(x, y))
    return;

  const MapHandle padStacks = store_.S_SymbolPadStackMap(symbol);
  if (const ObjectHandle existing = store_.OM_Object(padStacks, padStack);
      existing != ObjectHandle::None) {
    PadStackRecord record;
    if (hole != 0 && store_.S_ReadPadStack(existing, record) && record.HoleDiameter == 0)
      store_.S_ChangePadStackHole(existing, hole, 0);
  } else {
    const ObjectHandle made = store_.S_MakePadStack();
    if (made == ObjectHandle::None)
      return;
    if (store_.OM_Add(padStacks, made, padStack) != padStack) {
      store_.deleteFreeObject(made);  // key 0, which no map holds: the pad is passed over
      return;
    }
    store_.S_ChangePadStackHole(made, hole, 0);
    const ObjectHandle marker = store_.I_MakeItem(categoryMarker(target.PadKind, target.Colour));
    if (marker == ObjectHandle::None)
      return;
    store_.I_ChangeItemLink(marker, 0);
    store_.I_ChangeItemGap(marker, 0);
    if (store_.OA_Add(store_.S_PadStackItemArray(made), marker) == 0) {
      store_.deleteFreeObject(marker);
      return;
    }
  }

  const int32_t index = store_.S_InsertEntry(symbol, -1, x, y);
  if (index <= 0)
    return;
  store_.S_ChangePadRotation(symbol, index, 0);
  store_.S_ChangePadPadStack(symbol, index, padStack);
  store_.O_Mask(store_.S_Entry(symbol, index), attr::Shown, attr::Shown);
  points->second.add(x, y);
}

bool Reconstruction::CopyPadShapes(bool replace) {
  if (!LayersHaveContent(layergroup::FlashedPads, 0, attr::Flashed))
    return false;
  for (const int32_t target : {category::ThruPadStacks, category::SmdPadStacksTop,
                               category::SmdPadStacksBottom, category::ViaPadStacks})
    EnsureCategorySymbol(store_, categories_[target], replace);
  index_->update();
  bool copied = false;
  for (const LayerRecord& source : layers_) {
    if ((source.Mask & layergroup::FlashedPads) == 0)
      continue;
    // On the mask and inner layers any pad's D-code fits; on the top and bottom copper only the
    // pad's own.
    const bool anyCode = (source.Mask & (layergroup::SolderMask | layergroup::Inner)) != 0;
    const ArrayHandle items = store_.S_SymbolItemArray(source.SymbolHandle);
    const int32_t count = store_.OA_GetCount(items);
    for (int32_t i = 1; i <= count; ++i) {
      const ObjectHandle handle = store_.OA_Object(items, i);
      ItemRecord item;
      FrameRect frame;
      if (!store_.I_ReadItem(handle, item) || (item.Attributes & attr::Flashed) == 0 ||
          item.Colour == clearColour_ || !store_.I_FrameItem(handle, frame) || frame.isEmpty())
        continue;
      const int32_t row = index_->firstInFrame(
          frame, [&](const PadPosition& pad) { return anyCode || pad.PadStack == item.Link; });
      if (row < 0)
        continue;
      item.Colour = static_cast<uint8_t>(source.LayerCode);
      copied |= copyInto(padStackCategory(state_.PadPositions[size_t(row)]), item);
    }
  }
  return copied;
}

}  // namespace tvx
