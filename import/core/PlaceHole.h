// One hole or pad position as a pad of a layer's symbol: a pad stack per tool code with the marker
// item of the layer's PadKind, and one pad per point.
#pragma once

#include "kernel/PlaneGeometry.h"
#include "store/LayerRecord.h"
#include "store/PlacedPoints.h"

#include <cstdint>
#include <unordered_map>
#include <vector>

namespace tvx {

class Store;

// Marker drawn in the pad stacks of a layer, by its PadKind.
namespace padkind {
inline constexpr int32_t BoardOutline = 0;
inline constexpr int32_t Artwork = 5;
inline constexpr int32_t Drill = 6;
}  // namespace padkind

// What became of one hole. PlaceHole writes nothing back into the tables; callers that count
// holes read this.
enum class HolePlacement {
  Placed,
  Covered,        // a pad already lies on the point
  WithoutSize,    // drill layer: no tool of this code with a diameter
  ClearPolarity,  // the Gerber pass is drawing clear: no holes
  StoreRefused,   // the store refused the pad stack, its item or the pad
};

// The first tool of each code that has a diameter, for the drill layer's look-up of a hole's size.
// Built once per file so that a hole costs no walk of the tool table.
class HoleSizes {
public:
  explicit HoleSizes(const std::vector<ToolEntry>& tools);
  // The first entry of the table with this code and a diameter other than 0; nullptr when none.
  const ToolEntry* find(int32_t code) const;

private:
  std::unordered_map<int32_t, ToolEntry> first_;
};

// Places one hole at (x, y), in store units, into the layer's symbol under the tool code. On the
// drill layer (PadKind 6) a tool without a diameter places nothing; on other layers the pad stack's
// hole size is 0. A point on which a pad of the symbol already stands takes no second pad, whatever
// its tool. A pad stack is made once per tool code and symbol, so a later file in the same layer
// reuses it with its hole size. Tool code 0, which no pad stack map can hold as a key, gives a
// bare pad position without a pad stack. Store failures end the placement silently. sizes, when
// given, stands for the tool table of file in the drill layer's look-up.
HolePlacement PlaceHole(Store& store, double x, double y, int32_t toolCode,
                        const LayerRecord& layer, const LayerFileRecord& file,
                        const HoleSizes* sizes = nullptr, PlacedPoints* placed = nullptr);

// The path of a slot, in store units: a straight cut from one point to another, or an arc about a
// centre.
struct SlotPath {
  Point from;
  Point to;
  Point centre;
  bool clockwise = false;
  bool arc = false;
};

// Places one slot as a stroke of the tool's diameter along its path with round ends, an element
// of the layer's symbol in the layer's colour. As with holes, a tool without a diameter places
// nothing on the drill layer; on other layers the stroke has no width.
HolePlacement PlaceSlot(Store& store, const SlotPath& path, int32_t toolCode,
                        const LayerRecord& layer, const LayerFileRecord& file,
                        const HoleSizes* sizes = nullptr);

}  // namespace tvx
