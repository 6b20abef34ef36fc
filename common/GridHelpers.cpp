#include "common/GridHelpers.h"

#include <algorithm>

namespace tvx {

void StyleGrid(PropertyGridAccess& grid) {
  grid.SetBackColorFixed(gridcolour::Fixed);
  grid.SetGridLinesFixed(GridLinesInset);
  // Every row but the last one.
  const int32_t lastStyled = grid.Rows() - 2;
  for (int32_t row = 0; row <= lastStyled; ++row) {
    if (row == 0) {
      grid.SetCellFontBold(0, 0, true);
      if (grid.Cols() > 1)
        grid.SetCellFontBold(0, 1, true);
    }
    if (grid.CellBackColor(row, 0) != gridcolour::ReadOnly)
      grid.SetCellBackColor(row, 0, gridcolour::Caption);
  }
}

void ScrollGrid(PropertyGridAccess& grid, int32_t rotation) {
  if (!grid.canScroll())
    return;
  const int32_t top = grid.TopRow();
  if (rotation > 0)
    grid.SetTopRow(std::max(0, top - 1));
  else
    grid.SetTopRow(std::max(0, std::min(grid.Rows() - 1, top + 1)));
}

}  // namespace tvx
