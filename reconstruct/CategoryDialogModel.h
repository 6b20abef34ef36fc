// The logic of the window "Import to categories": a row per option, the children of an option
// shown only while it is checked, a click's commit, and OK and Cancel. No widget lives here.
#pragma once

#include "common/GridRow.h"
#include "reconstruct/ReconstructionState.h"

#include <string>
#include <vector>

namespace tvx {

class SystemServices;

class CategoryDialogModel {
public:
  // The options are the main window's, changed in place; services translates the texts (none:
  // English).
  CategoryDialogModel(CategoryOptions& options, const SystemServices* services = nullptr);

  // The window's title and the two column headings.
  std::string Title() const;
  std::string CaptionHeading() const;
  std::string ModeHeading() const;

  // The rows as the options now stand: parents, the children of checked parents, and an empty
  // row between groups.
  void FormUpdate();
  const std::vector<GridRow>& Rows() const { return rows_; }

  // A check box of a row set to checked: its option changes and the rows are built again. A row
  // without a key changes nothing. The row of the same key afterwards, for the current cell.
  int CellCommitted(int row, bool checked);

  void OK() { options_.Confirmed = true; }
  void Cancel() { options_.Confirmed = false; }

private:
  std::string text(const char* defaultText, const char* id) const;

  CategoryOptions& options_;
  const SystemServices* services_;
  std::vector<GridRow> rows_;
};

}  // namespace tvx
