// Mirroring and moving the elements of a symbol as one block: the block's frame and centre, one
// element transformed as a record, and the transform applied in place to a whole layer symbol
// through the store's own operations, so that its spatial index and frame caches follow.
#pragma once

#include "kernel/KernelTypes.h"

#include <cstdint>

namespace tvx {

class Store;

// Captions of the two mirror commands of the layer menu, by FlipLayer index.
namespace blockmsg {
inline constexpr const char* MirrorAlongX = "Mirror Current Layer along &X-axis";  // index 0
inline constexpr const char* MirrorAlongY = "Mirror Current Layer along &Y-axis";  // index 1
}  // namespace blockmsg

// The block being transformed, in store units.
struct BlockTransform {
  int32_t BlockCornerX = 0, BlockCornerY = 0, BlockWidth = 0, BlockHeight = 0;
  int32_t BlockCentreX = 0, BlockCentreY = 0;  // centre of mirroring
  int32_t BlockDeltaX = 0, BlockDeltaY = 0;    // displacement
  bool BlockMirrorX = false, BlockMirrorY = false;

  bool operator==(const BlockTransform&) const = default;
};

// Chooses the block. Mode 0 takes the whole board, allLayers being the frame of all layers
// (FrameLayers): corner and size from that frame, the centre in its middle (rounded down), no
// displacement and no mirror. Status 0 when the block was set; 1, with block unchanged, for an
// empty frame or another mode.
int32_t SelectBlock(BlockTransform& block, int32_t mode, const FrameRect& allLayers);

// Mirrors one element about the block centre (first in X, then in Y, as the block says) and then
// displaces it. Shapes keep their form: a line's and a rectangle's vectors, a triangle's offsets
// and an arc's start angle and sweep turn with the mirror; circles, texts and pad entries move by
// their anchor point alone. Angles come out in 0..359999; for angles in that range mirroring
// twice gives back the record exactly.
void TransformElement(const BlockTransform& block, ItemRecord& record);

// Applies the block transform to every shown item and pad entry of symbol, in place: polygon
// sides stay where they are in their run. moved tells whether any element was transformed.
void MoveBlock(Store& store, SymbolId symbol, const BlockTransform& block, bool& moved);

// Mirrors the working layer symbol about the centre of all layers: index 0 along the X axis
// (Y mirrored), index 1 along the Y axis (X mirrored). True when any element moved; false for an
// empty board or another index.
bool FlipLayer(Store& store, SymbolId working, const FrameRect& allLayers, int32_t index);

}  // namespace tvx
