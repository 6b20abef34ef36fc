#include "common/ToNumber.h"

#include <charconv>
#include <string>
#include <system_error>

namespace tvx {

namespace {
bool isDigit(char c) { return c >= '0' && c <= '9'; }
}  // namespace

double ToNumber(std::string_view text) {
  const size_t n = text.size();
  size_t i = 0;
  while (i < n && (text[i] == ' ' || text[i] == '\t' || text[i] == '\r' || text[i] == '\n'))
    ++i;

  // The digits are copied with "." as the decimal point and "e" as the exponent mark, so that
  // from_chars reads them whatever the locale.
  std::string number;
  bool negative = false;
  if (i < n && (text[i] == '+' || text[i] == '-')) {
    negative = text[i] == '-';
    ++i;
  }
  // Only the first comma of the whole text is a decimal point.
  const size_t firstComma = text.find(',');
  bool digits = false;
  while (i < n && isDigit(text[i])) {
    number += text[i++];
    digits = true;
  }
  if (i < n && (text[i] == '.' || (text[i] == ',' && i == firstComma))) {
    number += '.';
    ++i;
    while (i < n && isDigit(text[i])) {
      number += text[i++];
      digits = true;
    }
  }
  if (!digits)
    return 0.0;
  if (i < n && (text[i] == 'e' || text[i] == 'E' || text[i] == 'd' || text[i] == 'D')) {
    size_t j = i + 1;
    std::string exponent = "e";
    if (j < n && (text[j] == '+' || text[j] == '-'))
      exponent += text[j++];
    if (j < n && isDigit(text[j])) {
      while (j < n && isDigit(text[j]))
        exponent += text[j++];
      number += exponent;
    }
  }
  double value = 0.0;
  auto [end, ec] = std::from_chars(number.data(), number.data() + number.size(), value);
  if (ec != std::errc())
    return 0.0;
  return negative ? -value : value;
}

bool isPlainDecimal(std::string_view text) {
  const size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos)
    return false;
  text = text.substr(first, text.find_last_not_of(' ') + 1 - first);
  if (text.front() == '+' || text.front() == '-')
    text.remove_prefix(1);
  bool digit = false, point = false;
  for (const char c : text) {
    if (c >= '0' && c <= '9')
      digit = true;
    else if (c == '.' && !point)
      point = true;
    else
      return false;
  }
  return digit;
}

}  // namespace tvx
