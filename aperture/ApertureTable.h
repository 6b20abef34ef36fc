// The aperture table in force: the sizes that give a plain RS-274-D file's D-codes their shapes,
// kept in a small text file per table in the system folder (NAME.APT).
//
// A table file has one line per size, "Size,LinesD,RoundD,SquareD" (store units, D-codes, 0 for
// none), lines ended by CR LF, and the end line "#","#","#","#".
#pragma once

#include "import/gerber/ApertureLists.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tvx {

// Where a size stands in a table ordered by size. row: the row (from 1) of that size, 0 when
// there is none; position: the row a new row of that size takes to keep the order (from 1 to
// count + 1).
struct SizeRow {
  int32_t row = 0;
  int32_t position = 1;
  bool operator==(const SizeRow&) const = default;
};

class ApertureTable {
public:
  // The rows, row n at index n - 1, in the order of the file.
  std::vector<ApertureTableRow> rows{{1, 0, 0, 0}};
  // The table's name without folder and extension, upper case; "NONE" when none was chosen.
  std::string current = "NONE";

  // Reads the table called current from folder (the name compared case-blind). False when there
  // is no such file or it cannot be read: the table is then the one row of size 1 without codes,
  // and current keeps its name.
  bool load(const std::string& folder, std::string_view extension = ".APT");
  // Reads a table file by its path, as load does.
  bool loadFile(const std::string& path);
  // Writes the rows that have a D-code, then the end line, as folder/NAME.APT, replacing any file
  // of that name whole (never half-written); current becomes name. False when it cannot be
  // written: nothing changed then.
  bool save(const std::string& folder, const std::string& name);

  SizeRow findSizeRow(int32_t size) const;

  // The rows of a table file's text (see above); the one-row table for a text without rows.
  static std::vector<ApertureTableRow> parse(std::string_view text);
  // The text of a table file for rows.
  static std::string format(const std::vector<ApertureTableRow>& rows);
};

}  // namespace tvx
