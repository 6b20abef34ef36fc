#include "aperture/ForeignApertureList.h"

#include "common/TextHelpers.h"
#include "kernel/KernelTypes.h"
#include "platform/DataFiles.h"
#include "platform/TextLines.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <string>

namespace tvx {

namespace {

enum class Shape { None, Round, Square, Other };

Shape shapeOf(const std::string& word) {
  static const char* const round[] = {"ROUND", "ROUNDED", "CIRCLE", "CIRCULAR", "CIRC"};
  static const char* const square[] = {"SQUARE", "RECT", "RECTANGLE", "RECTANGULAR"};
  static const char* const other[] = {"OBLONG",  "OVAL",    "OBROUND", "OCTAGON", "OCTAGONAL",
                                      "THERMAL", "TARGET",  "DONUT",   "ANNULUS", "POLYGON",
                                      "MOIRE",   "SPECIAL", "CUSTOM",  "MACRO"};
  const auto in = [&word](const auto& names) {
    return std::any_of(std::begin(names), std::end(names),
                       [&word](const char* name) { return word == name; });
  };
  return in(round)    ? Shape::Round
         : in(square) ? Shape::Square
         : in(other)  ? Shape::Other
                      : Shape::None;
}

// A number field: digits with at most one decimal point or comma, an optional sign.
std::optional<double> numberOf(std::string text) {
  std::replace(text.begin(), text.end(), ',', '.');
  double value = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || stop != end || !std::isfinite(value))
    return std::nullopt;
  return value;
}

// The code of a first field "D12" or "12", 0 when it is none.
int32_t codeOf(const std::string& field) {
  const std::string_view digits =
      field.size() > 1 && field[0] == 'D' ? std::string_view(field).substr(1) : field;
  int32_t code = 0;
  const auto [stop, error] = std::from_chars(digits.data(), digits.data() + digits.size(), code);
  return error == std::errc() && stop == digits.data() + digits.size() && !digits.empty() ? code
                                                                                          : 0;
}

struct Entry {
  int32_t code = 0;
  Shape shape = Shape::None;
  int32_t size = 0;  // store units; 0 when the entry has no size a table can hold
  bool draws = false;
  bool flashes = false;
};

class ListReader {
public:
  ForeignApertureList read(std::string_view text) {
    forEachTextLine(text, [this](std::string_view line) {
      readLine(line);
      return true;
    });
    std::stable_sort(
        list_.rows.begin(), list_.rows.end(),
        [](const ApertureTableRow& a, const ApertureTableRow& b) { return a.Size < b.Size; });
    return std::move(list_);
  }

private:
  void readLine(std::string_view line) {
    std::vector<std::string> fields;
    constexpr std::string_view Blanks = " \t";
    for (size_t from = line.find_first_not_of(Blanks); from != std::string_view::npos;) {
      const size_t end = std::min(line.find_first_of(Blanks, from), line.size());
      fields.push_back(UpperCase(line.substr(from, end - from)));
      from = line.find_first_not_of(Blanks, end);
    }
    if (fields.empty())
      return;
    Entry entry{codeOf(fields[0])};
    std::vector<double> numbers;
    for (size_t i = 1; i < fields.size(); ++i) {
      if (const std::optional<double> number = numberOf(fields[i]); number)
        numbers.push_back(*number);
      else if (const Shape shape = shapeOf(fields[i]); entry.shape == Shape::None)
        entry.shape = shape;
      entry.draws |= fields[i].find("DRAW") != std::string::npos ||
                     fields[i].find("LINE") != std::string::npos;
      entry.flashes |= fields[i].find("FLASH") != std::string::npos;
    }
    if (entry.code == 0 || entry.shape == Shape::None || numbers.empty()) {
      takeUnit(fields);
      return;
    }
    if (!entry.draws && !entry.flashes) {
      entry.draws = entry.shape == Shape::Round;
      entry.flashes = true;
    }
    entry.size = sizeOf(entry.shape, numbers);
    take(entry);
  }

  // A line of words that names a unit sets the unit of the sizes after it.
  void takeUnit(const std::vector<std::string>& fields) {
    for (const std::string& word : fields) {
      if (word == "MM" || word == "MILLIMETER" || word == "MILLIMETERS" || word == "METRIC")
        mmPerUnit_ = 1.0;
      else if (word == "MIL" || word == "MILS")
        mmPerUnit_ = 0.0254;
      else if (word == "INCH" || word == "INCHES")
        mmPerUnit_ = 25.4;
    }
  }

  // The size in store units of a round or square entry; 0 for any other, or one whose two sides
  // differ. A second number that is the first in mm is the same size written twice.
  int32_t sizeOf(Shape shape, const std::vector<double>& numbers) const {
    const double first = numbers[0];
    if (shape == Shape::Other || !(first > 0))
      return 0;
    if (numbers.size() > 1 && mmPerUnit_ != 1.0 &&
        std::abs(numbers[1] - first * mmPerUnit_) <= 0.0005 + first * mmPerUnit_ * 1e-6) {
      // Taken from the first number, which is the more exact.
    } else if (numbers.size() > 1 && numbers[1] != 0 && numbers[1] != first) {
      return 0;
    }
    const double units = std::round(first * mmPerUnit_ * StoreUnitsPerMm);
    return units >= 1 && units <= 220000000.0 ? int32_t(units) : 0;
  }

  void take(const Entry& entry) {
    if (entry.code < 10 || entry.code > 999 || entry.size == 0) {
      note(list_.leftOut, entry.code);
      return;
    }
    note(list_.codes, entry.code);
    const bool lines = entry.draws;
    const bool round = entry.shape == Shape::Round && entry.flashes;
    const bool square = entry.shape == Shape::Square && entry.flashes;
    const auto fits = [&](int32_t slot, bool wanted) {
      return !wanted || slot == 0 || slot == entry.code;
    };
    auto row = std::find_if(list_.rows.begin(), list_.rows.end(), [&](const ApertureTableRow& r) {
      return r.Size == entry.size && fits(r.LinesD, lines) && fits(r.RoundD, round) &&
             fits(r.SquareD, square);
    });
    if (row == list_.rows.end())
      row = list_.rows.insert(list_.rows.end(), ApertureTableRow{entry.size, 0, 0, 0});
    if (lines)
      row->LinesD = entry.code;
    if (round)
      row->RoundD = entry.code;
    if (square)
      row->SquareD = entry.code;
  }

  static void note(std::vector<int32_t>& codes, int32_t code) {
    if (std::find(codes.begin(), codes.end(), code) == codes.end())
      codes.push_back(code);
  }

  ForeignApertureList list_;
  double mmPerUnit_ = 0.0254;
};

}  // namespace

ForeignApertureList readForeignApertureList(std::string_view text) {
  return ListReader().read(text);
}

std::optional<ForeignApertureList> readForeignApertureListFile(const std::string& path) {
  const std::optional<std::string> text = readWholeFile(path);
  if (!text)
    return std::nullopt;
  return readForeignApertureList(*text);
}

}  // namespace tvx
