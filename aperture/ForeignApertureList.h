// Aperture lists written by other CAD tools, read into the rows of an aperture table: the lists
// that come beside plain RS-274-D files, one aperture per line, such as
//   D10 ROUND       4.00 0.102  0.00 ...          (code, shape, size in mil and in mm)
//   D10   ROUNDED   13,000  13,000  0,000 LINE    (code, shape, x and y, turn, use)
//       10      4        0    round   0  1  BOTH    DRAW    (number, size, second size, shape)
// Sizes are in mil unless a line of words names another unit (MM, INCH); decimal commas are
// read as points. A table holds round and square sizes only: rectangles, ovals and other shapes
// are left out and listed.
#pragma once

#include "import/gerber/ApertureLists.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tvx {

struct ForeignApertureList {
  // In order of size. A round code draws (Lines) and flashes (Round) unless the list says it
  // only does one; a square code flashes (Square), and draws too when the list says so.
  std::vector<ApertureTableRow> rows;
  // The codes taken into rows, each once.
  std::vector<int32_t> codes;
  // The codes of shapes no table holds, each once.
  std::vector<int32_t> leftOut;
};

ForeignApertureList readForeignApertureList(std::string_view text);
// The list of the file at path; nothing when the file cannot be read.
std::optional<ForeignApertureList> readForeignApertureListFile(const std::string& path);

}  // namespace tvx
