// One row of the suite's property grid, as a dialog's model fills it: a caption, a value, the
// kind of value cell and a key the user doesn't see. No widget lives here.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace tvx {

enum class CellKind { Text, List, Number, Check, Button, Group };

namespace gridcolour {
// Leaves the grid's own colour.
inline constexpr int32_t NoColour = -1;
inline constexpr int32_t Greyed = 0xE6E6E6;  // a read-only row
inline constexpr int32_t Group = 0xC0C0C0;
}  // namespace gridcolour

struct GridRow {
  std::string Key;      // empty for group rows and plain information rows
  std::string Caption;  // a group's first text
  std::string Value;    // the shown value; a group's second text
  CellKind Cell = CellKind::Text;
  int32_t List = 0;  // the dialog's fixed list of a list cell; 0 for none
  bool ReadOnly = false;
  bool Checked = false;  // a check box's value
  bool Enabled = true;   // a button whose window is not there is shown disabled
  // Colours are 0xBBGGRR.
  int32_t CaptionBack = gridcolour::NoColour;
  int32_t ValueBack = gridcolour::NoColour;
  int32_t ValueFore = gridcolour::NoColour;
  int32_t Swatch = gridcolour::NoColour;  // a 16 by 16 picture in this colour beside the value

  bool operator==(const GridRow&) const = default;
};

// A group row of two texts across both cells.
inline GridRow groupRow(std::string first, std::string second, int32_t back = gridcolour::Group) {
  GridRow row;
  row.Cell = CellKind::Group;
  row.Caption = std::move(first);
  row.Value = std::move(second);
  row.ReadOnly = true;
  row.CaptionBack = row.ValueBack = back;
  return row;
}

// The index of the row of a key, -1 when none.
inline int32_t rowOfKey(const std::vector<GridRow>& rows, const std::string& key) {
  for (size_t i = 0; i < rows.size(); ++i)
    if (rows[i].Key == key)
      return static_cast<int32_t>(i);
  return -1;
}

// The row made read-only, and grey as such rows are.
inline GridRow readOnlyRow(GridRow row) {
  row.ReadOnly = true;
  row.CaptionBack = row.ValueBack = gridcolour::Greyed;
  return row;
}

}  // namespace tvx
