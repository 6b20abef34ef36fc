// The look and the wheel steps that every property grid of the viewer shares.
#pragma once

#include "common/PropertyGridAccess.h"

namespace tvx {

namespace gridcolour {
inline constexpr int32_t Fixed = 0xD1D1D1;     // heading rows and columns
inline constexpr int32_t Caption = 0xE6E6E6;   // the caption column
inline constexpr int32_t ReadOnly = 0xC0C0C0;  // a cell a dialog has greyed; kept as it is
}  // namespace gridcolour

inline constexpr int32_t GridLinesInset = 2;

// Fixed cells grey with inset lines; the captions of row 0 (columns 0 and 1) bold; the caption
// cell (column 0) of every row but the last one light grey, unless a dialog has greyed it.
void StyleGrid(PropertyGridAccess& grid);

// One wheel step: rotation above 0 shows one row more at the top (down to row 0), else one
// row less (up to the last row). Nothing happens when the grid cannot scroll.
void ScrollGrid(PropertyGridAccess& grid, int32_t rotation);

}  // namespace tvx
