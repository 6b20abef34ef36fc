#include "aperture/ApertureTable.h"

#include "common/ParseList.h"
#include "platform/DataFiles.h"
#include "platform/TextLines.h"

#include <QSaveFile>

#include <algorithm>
#include <cmath>
#include <limits>

namespace tvx {

namespace {

const std::vector<ApertureTableRow> OneRowTable{{1, 0, 0, 0}};

// A field's number made whole and kept within 32 bits, so that a huge number is no overflow.
int32_t wholeField(double value) {
  if (!std::isfinite(value))
    return 0;
  const double whole = std::round(value);
  return int32_t(std::clamp(whole, double(std::numeric_limits<int32_t>::min()),
                            double(std::numeric_limits<int32_t>::max())));
}

}  // namespace

std::vector<ApertureTableRow> ApertureTable::parse(std::string_view text) {
  std::vector<ApertureTableRow> rows;
  forEachTextLine(text, [&rows](std::string_view line) {
    const ParsedList fields = ParseList(line);
    // Fewer than four fields (a blank line, a lone "#") is passed over; "#" first ends the table.
    if (fields.count() < 4)
      return true;
    if (fields.token(1) == "#")
      return false;
    rows.push_back({wholeField(fields.value(1)), wholeField(fields.value(2)),
                    wholeField(fields.value(3)), wholeField(fields.value(4))});
    return true;
  });
  // A file of no rows leaves the one-row table: the grid and the size search always have a row.
  return rows.empty() ? OneRowTable : rows;
}

std::string ApertureTable::format(const std::vector<ApertureTableRow>& rows) {
  std::string text;
  for (const ApertureTableRow& r : rows) {
    // A size without any code is not kept: it lives only until the table is read again.
    if (r.LinesD == 0 && r.RoundD == 0 && r.SquareD == 0)
      continue;
    text += std::to_string(r.Size) + "," + std::to_string(r.LinesD) + "," +
            std::to_string(r.RoundD) + "," + std::to_string(r.SquareD) + "\r\n";
  }
  return text + "\"#\",\"#\",\"#\",\"#\"\r\n";
}

bool ApertureTable::loadFile(const std::string& path) {
  const std::optional<std::string> text = readWholeFile(path);
  rows = text ? parse(*text) : OneRowTable;
  return text.has_value();
}

bool ApertureTable::load(const std::string& folder, std::string_view extension) {
  const std::string path = findFileCaseBlind(folder, current + std::string(extension));
  return loadFile(path);
}

bool ApertureTable::save(const std::string& folder, const std::string& name) {
  if (name.empty())
    return false;
  std::string path = findFileCaseBlind(folder, name + ".APT");
  if (path.empty())
    path = folder + "/" + name + ".APT";
  QSaveFile file(QString::fromStdString(path));
  const std::string text = format(rows);
  if (!file.open(QIODevice::WriteOnly) ||
      file.write(text.data(), qint64(text.size())) != qint64(text.size()) || !file.commit())
    return false;
  current = name;
  return true;
}

SizeRow ApertureTable::findSizeRow(int32_t size) const {
  // The rows stand in ascending order of size: the first row not below size is the place.
  const auto at = std::lower_bound(rows.begin(), rows.end(), size,
                                   [](const ApertureTableRow& r, int32_t s) { return r.Size < s; });
  const int32_t position = int32_t(at - rows.begin()) + 1;
  return {at != rows.end() && at->Size == size ? position : 0, position};
}

}  // namespace tvx
