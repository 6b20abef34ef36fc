// The window "Aperture Tables" (GBRVIEWER_APT) without its widgets: the list of tables in the
// system folder, the table in force as a grid of sizes and codes, and its commands (pick a table,
// edit a code, insert and delete a size, save, accept, cancel).
#pragma once

#include "aperture/ApertureTable.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace tvx {

class SystemServices;
class UserPrompts;

class ApertureTablesModel {
public:
  // table: the one table in force, changed in place; setCurrent writes its name to the settings
  // ("Aper" of "POSTART") whenever it changes.
  ApertureTablesModel(ApertureTable& table, SystemServices& services, UserPrompts& prompts,
                      std::string sysDir, std::function<void(const std::string&)> setCurrent);

  static constexpr int Columns = 5;  // inch, mm, lines, round, square

  // Opening: headers, the list of tables, the table read again.
  void FillAptform();
  std::string header(int column) const;
  // The names of the table files in the system folder ("*.APT"), sorted.
  const std::vector<std::string>& tableFiles() const { return tableFiles_; }
  int32_t rowCount() const { return int32_t(table_.rows.size()); }
  // A grid cell: row from 1, column 0 to 4.
  std::string cell(int32_t row, int column) const;

  // A click on an entry of the list: the unsaved-changes question, then that table.
  void listClick(const std::string& entry);
  // Leaving a code cell (columns 2 to 4) that was typed in: its digits make the code, 10 to 999,
  // an empty text 0. False (with a beep, the cell as it was) for any other text.
  bool EditAptValues(int32_t row, int column, const std::string& text);
  // "inch" (0) or " mm" (1): asks the size, adds a row for it in order of size.
  void insertSize(int index);
  // Deletes the current row after a question; never the last row.
  void deleteSize();
  // Replaces the rows with those of another tool's aperture list (after the unsaved-changes
  // question) and says how many codes were taken and which were left out. The table is then
  // changed, named after the list, and waits to be saved.
  void readList(const std::string& path);
  // Saves under the name typed (txtNewFname), upper case up to its first blank.
  void save();
  // The unsaved-changes question, then the window may close; the table stays as it is.
  void accept();
  // The table read again from its file: what was not saved is gone.
  void cancel();

  // The window's state.
  int32_t ChangedFlag = 0;
  bool CellEditPending = false;
  int32_t CurrentRow = 1;
  int32_t CurrentColumn = 2;
  int32_t TopRow = 1;
  int32_t VisibleRows = 10;
  std::string staCurApt;    // the current table, "none" when it could not be read
  std::string txtNewFname;  // the name to save under

private:
  void loadChosen();
  void askUnsaved();
  void refreshList();
  std::string text(const char* defaultText, const char* id) const;

  ApertureTable& table_;
  SystemServices& services_;
  UserPrompts& prompts_;
  std::string sysDir_;
  std::function<void(const std::string&)> setCurrent_;
  std::vector<std::string> tableFiles_;
};

// The code of a typed code cell: its decimal digits in order ("D23*", "23" and "2 3" are 23), 0
// for an empty text; -1 when the digits make no code from 10 to 999.
int32_t codeOfCell(const std::string& text);

}  // namespace tvx
