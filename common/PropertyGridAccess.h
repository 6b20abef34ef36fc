// What the shared grid helpers need of a property grid. The grid widget of the dialogs
// implements it; tests use a grid of their own.
#pragma once

#include <cstdint>

namespace tvx {

// Rows and columns count from 0; colours are 0xBBGGRR values as the settings hold them.
class PropertyGridAccess {
public:
  virtual ~PropertyGridAccess() = default;

  virtual int32_t Rows() const = 0;
  virtual int32_t Cols() const = 0;

  virtual int32_t CellBackColor(int32_t row, int32_t col) const = 0;
  virtual void SetCellBackColor(int32_t row, int32_t col, int32_t colour) = 0;
  virtual void SetCellFontBold(int32_t row, int32_t col, bool bold) = 0;

  // Background and line style of the fixed (heading) rows and columns.
  virtual void SetBackColorFixed(int32_t colour) = 0;
  virtual void SetGridLinesFixed(int32_t style) = 0;

  // The first row shown.
  virtual int32_t TopRow() const = 0;
  virtual void SetTopRow(int32_t row) = 0;
  // Whether the grid takes ScrollGrid's steps now; a grid that can scroll answers true.
  virtual bool canScroll() const = 0;
};

}  // namespace tvx
