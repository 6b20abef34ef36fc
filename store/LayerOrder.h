// The order in which the layers are drawn and which of them are drawn.
#pragma once

#include <cstdint>

namespace tvx {

// One row of LayerOrder. Row 1 is drawn last and so lies on top; every layer stands in exactly
// one row.
struct LayerOrderRow {
  int32_t LayerNumber = 0;  // index into Layers, 1 to 31
  bool Visible = false;     // drawn at all; starts as the layer's Listed
  bool Mono = false;        // drawn in one colour
  int32_t MonoColour = 0;   // that colour
  int32_t DrawItems = 1;    // item flag of S_DrawSymbol
  int32_t DrawEntries = 1;  // entry flag of S_DrawSymbol

  bool operator==(const LayerOrderRow&) const = default;
};

}  // namespace tvx
