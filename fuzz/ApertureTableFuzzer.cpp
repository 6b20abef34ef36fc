// Any text as an aperture table file: read without crash, hang or overflow; the rows it gives,
// written and read again, are the rows that carry a code (the one-row table when none does); a
// size is found at a row of the table or at a place beside it. The same text as another tool's
// aperture list gives rows in order of size, of sizes a table holds, each code taken or left out.
#include "aperture/ApertureTable.h"
#include "aperture/ForeignApertureList.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace tvx;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  ApertureTable table;
  table.rows = ApertureTable::parse(text);
  if (table.rows.empty())
    std::abort();
  std::vector<ApertureTableRow> kept;
  for (const ApertureTableRow& r : table.rows)
    if (r.LinesD != 0 || r.RoundD != 0 || r.SquareD != 0)
      kept.push_back(r);
  if (kept.empty())
    kept = {{1, 0, 0, 0}};
  if (ApertureTable::parse(ApertureTable::format(table.rows)) != kept)
    std::abort();

  std::sort(table.rows.begin(), table.rows.end(),
            [](const ApertureTableRow& a, const ApertureTableRow& b) { return a.Size < b.Size; });
  const int32_t count = int32_t(table.rows.size());
  for (const ApertureTableRow& r : table.rows) {
    const SizeRow found = table.findSizeRow(r.Size);
    if (found.row < 1 || found.row > count || table.rows[size_t(found.row - 1)].Size != r.Size)
      std::abort();
  }
  const SizeRow beyond =
      table.findSizeRow(table.rows.back().Size + (table.rows.back().Size < INT32_MAX));
  if (beyond.position < 1 || beyond.position > count + 1)
    std::abort();

  const ForeignApertureList list = readForeignApertureList(text);
  for (size_t i = 0; i < list.rows.size(); ++i) {
    const ApertureTableRow& r = list.rows[i];
    if (r.Size < 1 || r.Size > 220000000 || (i > 0 && list.rows[i - 1].Size > r.Size))
      std::abort();
    for (int32_t code : {r.LinesD, r.RoundD, r.SquareD})
      if (code != 0 && std::find(list.codes.begin(), list.codes.end(), code) == list.codes.end())
        std::abort();
  }
  return 0;
}
