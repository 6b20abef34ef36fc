#include "import/readers/excellon/ExcellonStatements.h"

#include "common/ToNumber.h"
#include "import/readers/excellon/ExcellonBlocks.h"

#include <algorithm>
#include <cctype>
#include <string>

namespace tvx {

namespace {

constexpr size_t NotFound = std::string_view::npos;
constexpr double MmPerInch = 25.4;
constexpr double MmPerMil = 0.0254;

bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool startsWith(std::string_view text, std::string_view prefix) {
  return text.substr(0, prefix.size()) == prefix;
}

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t'))
    text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t'))
    text.remove_suffix(1);
  return text;
}

// A comment without its leading ";" characters and blanks.
std::string_view commentText(std::string_view comment) {
  const size_t start = comment.find_first_not_of(';');
  return start == NotFound ? std::string_view() : trimmed(comment.substr(start));
}

template <typename T> void stateOnce(std::optional<T>& value, T stated) {
  if (!value)
    value = stated;
}

// Calls visit(block) for each block of a text whose blocks "|" closes.
template <typename Visit> void forEachBlock(std::string_view text, Visit&& visit) {
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find('|', start);
    if (end == NotFound)
      end = text.size();
    if (!visit(text.substr(start, end - start)))
      return;
    start = end + 1;
  }
}

// "a:b" or "a.b" with one or two digits each: the digits before and after the point.
bool digitPair(std::string_view text, int32_t& before, int32_t& after) {
  text = trimmed(text);
  const size_t mark = text.find_first_of(":.");
  if (mark == NotFound || mark == 0 || mark + 1 >= text.size())
    return false;
  const std::string_view a = text.substr(0, mark);
  std::string_view b = text.substr(mark + 1);
  b = b.substr(0, std::min(b.find_first_not_of("0123456789"), b.size()));
  const auto digitsOnly = [](std::string_view s) {
    return !s.empty() && s.size() <= 2 && std::all_of(s.begin(), s.end(), isDigit);
  };
  if (!digitsOnly(a) || !digitsOnly(b))
    return false;
  before = toInt32(ToNumber(std::string(a)));
  after = toInt32(ToNumber(std::string(b)));
  return before + after > 0;
}

// A block of a coordinate: an X or a Y followed by a number.
bool holdsCoordinate(std::string_view block) {
  for (size_t i = 0; i + 1 < block.size(); ++i)
    if ((block[i] == 'X' || block[i] == 'Y') && (isDigit(block[i + 1]) || block[i + 1] == '-' ||
                                                 block[i + 1] == '+' || block[i + 1] == '.'))
      return true;
  return false;
}

// "INCH" or "METRIC" with its fields: ",LZ", ",TZ" and a digit pattern such as "000.000".
void readUnitLine(std::string_view line, StatedFormat& stated) {
  const bool inch = startsWith(line, "INCH");
  stateOnce(stated.unit, inch ? 0 : 1);
  size_t start = line.find(',');
  while (start != NotFound) {
    size_t end = line.find(',', start + 1);
    const std::string_view field =
        trimmed(line.substr(start + 1, end == NotFound ? NotFound : end - start - 1));
    if (field == "LZ")
      stateOnce(stated.zeros, 0);
    else if (field == "TZ")
      stateOnce(stated.zeros, 1);
    else if (const size_t point = field.find('.');
             point != NotFound && field.find_first_not_of("0.") == NotFound) {
      stateOnce(stated.integerDigits, int32_t(point));
      stateOnce(stated.decimalDigits, int32_t(field.size() - point - 1));
    }
    start = end;
  }
}

// The fields of a format comment behind "FORMAT": "={2:4/ absolute / inch / suppress trailing
// zeros}" or " : 3.3 / Absolute / MM / Leading".
void readFormatComment(std::string_view rest, StatedFormat& stated) {
  rest = trimmed(rest);
  if (rest.empty() || (rest.front() != '=' && rest.front() != ':'))
    return;
  rest.remove_prefix(1);
  rest = trimmed(rest);
  if (!rest.empty() && rest.front() == '{')
    rest.remove_prefix(1);
  if (const size_t close = rest.find('}'); close != NotFound)
    rest = rest.substr(0, close);
  bool first = true;
  size_t start = 0;
  while (start <= rest.size()) {
    size_t end = rest.find('/', start);
    if (end == NotFound)
      end = rest.size();
    const std::string_view field = trimmed(rest.substr(start, end - start));
    int32_t before = 0, after = 0;
    if (first && digitPair(field, before, after)) {
      stateOnce(stated.integerDigits, before);
      stateOnce(stated.decimalDigits, after);
    } else if (field == "INCH" || field == "INCHES") {
      stateOnce(stated.unit, 0);
    } else if (field == "METRIC" || field == "MM") {
      stateOnce(stated.unit, 1);
    } else if (field.find("KEEP") == NotFound && field.find("DECIMAL") == NotFound) {
      // "suppress trailing zeros" and "Trailing" (suppressed) leave numbers left-aligned, as
      // under "LZ"; "suppress leading zeros" and "Leading" right-aligned, as under "TZ".
      if (field.find("TRAILING") != NotFound)
        stateOnce(stated.zeros, 0);
      else if (field.find("LEADING") != NotFound)
        stateOnce(stated.zeros, 1);
    }
    first = false;
    start = end + 1;
  }
}

}  // namespace

StatedFormat ReadStatedFormat(std::string_view blocks, std::string_view comments) {
  StatedFormat stated;
  bool headerSeen = false;
  bool unitLineSeen = false;
  forEachBlock(blocks, [&](std::string_view block) {
    if (startsWith(block, "M48"))
      headerSeen = true;
    if (holdsCoordinate(block) && !startsWith(block, "G93"))
      return false;
    if (!unitLineSeen && (startsWith(block, "INCH") || startsWith(block, "METRIC"))) {
      unitLineSeen = true;
      stated.unitLineAhead = !headerSeen;
      readUnitLine(block, stated);
    }
    return true;
  });
  if (!stated.unit) {
    // The unit codes of the program, wherever they stand.
    forEachBlock(blocks, [&](std::string_view block) {
      if (block == "M72" || block == "M71") {
        stated.unit = block == "M72" ? 0 : 1;
        return false;
      }
      return true;
    });
  }
  forEachBlock(comments, [&](std::string_view comment) {
    comment = commentText(comment);
    int32_t before = 0, after = 0;
    if (startsWith(comment, "FILE_FORMAT=")) {
      if (digitPair(comment.substr(12), before, after)) {
        stateOnce(stated.integerDigits, before);
        stateOnce(stated.decimalDigits, after);
      }
    } else if (startsWith(comment, "FORMAT")) {
      readFormatComment(comment.substr(6), stated);
    }
    return true;
  });
  // Digits come as a pair: one stated alone is no statement.
  if (stated.integerDigits.has_value() != stated.decimalDigits.has_value())
    stated.integerDigits = stated.decimalDigits = std::nullopt;
  return stated;
}

DigitEvidence GatherDigitEvidence(std::string_view blocks) {
  DigitEvidence evidence;
  const auto look = [&evidence](const std::string& field) {
    if (field.empty() || field.find('.') != std::string::npos)
      return;
    const size_t first = field.find_first_of("0123456789");
    if (first == std::string::npos)
      return;
    const std::string_view digits = std::string_view(field).substr(first);
    if (digits.find_first_not_of('0') == NotFound)
      return;  // all zeros: aligned either way
    ++evidence.numbers;
    evidence.widest = std::max(evidence.widest, int32_t(digits.size()));
    if (digits.front() == '0')
      ++evidence.leadingZeros;
    if (digits.back() == '0')
      ++evidence.trailingZeros;
  };
  ExcellonBlock block;
  ExcellonBlockWalker walker(blocks);
  while (walker.next(block))
    for (ExcellonBlock::Field f :
         {ExcellonBlock::X, ExcellonBlock::Y, ExcellonBlock::SlotX, ExcellonBlock::SlotY})
      look(block[f]);
  return evidence;
}

std::optional<int32_t> ZerosShownBy(const DigitEvidence& evidence) {
  if (evidence.leadingZeros > 0)
    return 0;
  if (evidence.trailingZeros > 0)
    return 1;
  return std::nullopt;
}

std::map<int32_t, double> ToolSizesInComments(std::string_view comments, int32_t fileUnit) {
  std::map<int32_t, double> sizes;
  forEachBlock(comments, [&](std::string_view comment) {
    comment = commentText(comment);
    if (comment.size() < 2 || comment.front() != 'T' || !isDigit(comment[1]))
      return true;
    size_t end = 1;
    while (end < comment.size() && isDigit(comment[end]))
      ++end;
    const int32_t code = toInt32(ToNumber(std::string(comment.substr(1, end - 1))));
    std::string_view rest = comment.substr(end);
    // "Holesize 1. = 8.0": the size stands behind the "="; otherwise it is the first number.
    if (const size_t holesize = rest.find("HOLESIZE"); holesize != NotFound) {
      const size_t equals = rest.find('=', holesize);
      if (equals == NotFound)
        return true;
      rest = rest.substr(equals + 1);
    }
    const size_t number = rest.find_first_of("0123456789.");
    if (number == NotFound)
      return true;
    const double value = ToNumber(std::string(rest.substr(number)));
    if (!(value > 0))
      return true;
    double mm = fileUnit == 0 ? value * MmPerInch : value;
    if (comment.find("MIL") != NotFound)
      mm = value * MmPerMil;
    else if (comment.find("MM") != NotFound)
      mm = value;
    else if (comment.find("INCH") != NotFound)
      mm = value * MmPerInch;
    sizes.emplace(code, mm);
    return true;
  });
  return sizes;
}

}  // namespace tvx
