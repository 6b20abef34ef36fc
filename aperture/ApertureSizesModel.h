// The window "Apertures & Sizes" (GBRVIEWER_GBRINFO) without its widgets: the apertures a Gerber
// scan left in TMP.ART, the board's size and offset, the modifiers of the special apertures; the
// edits of sizes and modifiers, and the two ways back to the import: the lists written back into
// TMP.ART, or made into a new aperture table named after the file.
#pragma once

#include "aperture/ApertureModifiers.h"
#include "aperture/ApertureTable.h"
#include "import/core/ImportJob.h"
#include "import/gerber/GerberScan.h"

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace tvx {

class StatusReporter;

// One row of a grid as shown: its cells' texts and which of them the user may type into.
struct ShownRow {
  std::vector<std::string> Cells;
  std::vector<bool> Editable;

  bool operator==(const ShownRow&) const = default;
};

struct ApertureSizesOwners {
  GerberScan& scan;  // the lists of the file last scanned, edited in place
  const ImportJob& job;
  ApertureTable& table;  // the table in force, replaced by a created one
  std::string sysDir;
  // Writes the name of a created table to the settings ("Aper").
  std::function<void(const std::string&)> setCurrent;
  const StatusReporter& reporter;
  int32_t displayUnit = 0;
  // The offset of the layer the file is bound to, 0 without one.
  int32_t layerOffsetX = 0;
  int32_t layerOffsetY = 0;
};

// The name a table made from a file takes: the path without quotes and end blanks, without its
// folders (up to the last ":", "\" or "/"), cut before its first "." and its first blank.
std::string apertureTableNameOf(const std::string& sourcePath);

// The table of the three standard lists: a row per size of at least 1 store unit, ascending, with
// each list's code in its column (a later code of a size and list replacing the earlier).
std::vector<ApertureTableRow> tableOfLists(const ApertureLists& lists);

class ApertureSizesModel {
public:
  explicit ApertureSizesModel(ApertureSizesOwners owners);

  static constexpr const char* WindowTitle = "Apertures & Sizes";
  static constexpr int32_t SizesBack = 0xE6E6E6;  // every cell of egrdSizes, 0xBBGGRR

  // Opening: captions, headers and every grid filled from TMP.ART.
  void open();

  // The grids: egrdApts(0..2), egrdSizes, F_XUapts, F_XMod. Rows from index 0 (grid row 1).
  std::array<std::vector<ShownRow>, 3> apertureGrids;
  std::vector<ShownRow> sizeGrid;
  std::vector<ShownRow> specialGrid;
  std::vector<ShownRow> modifierGrid;
  std::vector<std::string> apertureHeader;
  std::vector<std::string> sizeHeader;
  std::vector<std::string> specialHeader;
  std::vector<std::string> modifierHeader;
  std::string caption;       // the window's caption
  std::string messageTitle;  // the title of its messages
  std::string modifierCaption;
  std::string standardTab;
  std::string specialTab;
  bool specialTabEnabled = false;
  bool createShown = false;  // cmdUpdate(1): only a plain RS-274-D file needs a table

  // A typed size in row (from 1) of egrdApts(index), column 1 (inch) or 2 (mm). False (with a
  // beep) when the value is out of 1 to 5080000 store units; the row shows the list again.
  bool editSize(int index, int32_t row, int column, const std::string& text);
  // A click on row (from 1) of F_XUapts: that aperture's modifiers.
  void showModifiers(int32_t row);
  // A typed modifier in row (from 1) of F_XMod, column 2 (inch) or 3 (mm). False (with a beep)
  // when its class takes no edit or the value is out of range; the cell keeps the text then.
  bool editModifier(int32_t row, int column, const std::string& text);
  // "Update Artwork File && Return": true when the window goes.
  bool updateArtwork();
  // "Create Aperture File && Return": true when the window goes.
  bool createApertureFile();

  // The window's state.
  std::vector<int32_t> ModifierClasses;
  int32_t FirstPrimitive = 0;
  int32_t SpecialRow = 0;
  int32_t EditRow = 0;
  int32_t EditColumn = 0;
  bool CellEditPending = false;
  // What the window leaves for the import window.
  bool ApertureFileCreated = false;
  bool ArtworkUpdated = false;

private:
  std::string text(const char* defaultText, const char* id) const;
  std::vector<ApertureUse>* list(int index);
  ShownRow apertureRow(int index, const ApertureUse& use) const;
  ShownRow specialRow(const ApertureUse& use) const;
  std::string specialType(const ApertureUse& use) const;
  void fillGrids();
  void fillSizes();
  void beep() const;

  GerberScan& scan_;
  const ImportJob& job_;
  ApertureTable& table_;
  std::string sysDir_;
  std::function<void(const std::string&)> setCurrent_;
  const StatusReporter& reporter_;
  int32_t displayUnit_;
  int32_t layerOffsetX_;
  int32_t layerOffsetY_;
};

}  // namespace tvx
