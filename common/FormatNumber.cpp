#include "common/FormatNumber.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <vector>

namespace tvx {

namespace {

struct Token {
  enum Kind { Digit, Point, Comma, Percent, Literal } kind;
  bool zero = false;  // a "0" placeholder (else "#")
  std::string text;   // of a literal
};

// Splits the picture at ";" outside quotes and escapes.
std::vector<std::string_view> splitSections(std::string_view picture) {
  std::vector<std::string_view> sections;
  size_t start = 0;
  bool quoted = false;
  for (size_t i = 0; i < picture.size(); ++i) {
    const char c = picture[i];
    if (quoted) {
      quoted = c != '"';
    } else if (c == '"') {
      quoted = true;
    } else if (c == '\\') {
      ++i;
    } else if (c == ';') {
      sections.push_back(picture.substr(start, i - start));
      start = i + 1;
    }
  }
  sections.push_back(picture.substr(start));
  return sections;
}

std::vector<Token> tokenize(std::string_view section) {
  std::vector<Token> tokens;
  bool pointSeen = false;
  auto literal = [&](std::string text) {
    if (!tokens.empty() && tokens.back().kind == Token::Literal)
      tokens.back().text += text;
    else
      tokens.push_back({Token::Literal, false, std::move(text)});
  };
  for (size_t i = 0; i < section.size(); ++i) {
    const char c = section[i];
    switch (c) {
    case '0':
    case '#':
      tokens.push_back({Token::Digit, c == '0', {}});
      break;
    case '.':
      if (pointSeen) {
        literal(".");
      } else {
        pointSeen = true;
        tokens.push_back({Token::Point, false, {}});
      }
      break;
    case ',':
      tokens.push_back({Token::Comma, false, {}});
      break;
    case '%':
      tokens.push_back({Token::Percent, false, {}});
      break;
    case '\\':
      if (i + 1 < section.size())
        literal(std::string(1, section[++i]));
      break;
    case '"': {
      const size_t close = section.find('"', i + 1);
      const size_t end = close == std::string_view::npos ? section.size() : close;
      literal(std::string(section.substr(i + 1, end - i - 1)));
      i = end;
      break;
    }
    default:
      literal(std::string(1, c));
    }
  }
  return tokens;
}

// magnitude (>= 0) rounded half away from zero to places decimals, on its 15 significant
// digits: the integer digits without leading zeros (empty for 0) and exactly places fraction
// digits.
void roundDigits(double magnitude, int places, std::string& integer, std::string& fraction) {
  char buffer[40] = {};
  std::to_chars(buffer, buffer + sizeof buffer - 1, magnitude, std::chars_format::scientific, 14);
  std::string digits;
  const char* p = buffer;
  for (; *p && *p != 'e'; ++p)
    if (*p >= '0' && *p <= '9')
      digits += *p;
  const int exponent = *p == 'e' ? std::atoi(p + 1) : 0;
  const int keep = exponent + 1 + places;  // digits of magnitude * 10^places before its point

  std::string scaled;
  char next = '0';
  if (keep >= 0) {
    for (int i = 0; i < keep; ++i)
      scaled += i < static_cast<int>(digits.size()) ? digits[static_cast<size_t>(i)] : '0';
    if (keep < static_cast<int>(digits.size()))
      next = digits[static_cast<size_t>(keep)];
  }
  if (next >= '5') {
    int i = static_cast<int>(scaled.size()) - 1;
    for (; i >= 0 && scaled[static_cast<size_t>(i)] == '9'; --i)
      scaled[static_cast<size_t>(i)] = '0';
    if (i >= 0)
      ++scaled[static_cast<size_t>(i)];
    else
      scaled.insert(scaled.begin(), '1');
  }
  if (static_cast<int>(scaled.size()) < places + 1)
    scaled.insert(0, static_cast<size_t>(places + 1) - scaled.size(), '0');
  integer = scaled.substr(0, scaled.size() - static_cast<size_t>(places));
  fraction = scaled.substr(scaled.size() - static_cast<size_t>(places));
  const size_t first = integer.find_first_not_of('0');
  integer = first == std::string::npos ? std::string() : integer.substr(first);
}

std::string generalText(double value) {
  char buffer[40] = {};
  std::to_chars(buffer, buffer + sizeof buffer - 1, value, std::chars_format::general, 15);
  std::string text = buffer;
  // Exponents in upper case: "1E+20".
  for (char& c : text)
    if (c == 'e')
      c = 'E';
  return text;
}

std::string formatSection(double magnitude, const std::vector<Token>& tokens) {
  const auto pointAt = std::find_if(tokens.begin(), tokens.end(),
                                    [](const Token& t) { return t.kind == Token::Point; });
  const size_t integerEnd = static_cast<size_t>(pointAt - tokens.begin());
  const bool hasPoint = pointAt != tokens.end();

  // Placeholders, grouping and scaling of the integer part.
  int integerPlaces = 0, firstZero = -1, lastDigit = -1;
  for (size_t i = 0; i < integerEnd; ++i) {
    if (tokens[i].kind != Token::Digit)
      continue;
    if (tokens[i].zero && firstZero < 0)
      firstZero = integerPlaces;
    ++integerPlaces;
    lastDigit = static_cast<int>(i);
  }
  bool grouping = false;
  int scalingCommas = 0;
  if (lastDigit >= 0) {
    size_t i = static_cast<size_t>(lastDigit) + 1;
    size_t run = i;
    while (run < integerEnd && tokens[run].kind == Token::Comma)
      ++run;
    // Commas right before the point scale; without a point, commas behind the last digit.
    if (run > i && (run == integerEnd || !hasPoint)) {
      scalingCommas = static_cast<int>(run - i);
    }
    bool digitBefore = false;
    for (size_t k = 0; k < static_cast<size_t>(lastDigit); ++k) {
      if (tokens[k].kind == Token::Digit)
        digitBefore = true;
      else if (tokens[k].kind == Token::Comma && digitBefore)
        grouping = true;
    }
  }
  if (std::any_of(tokens.begin(), tokens.end(),
                  [](const Token& t) { return t.kind == Token::Percent; }))
    magnitude *= 100.0;
  for (int i = 0; i < scalingCommas; ++i)
    magnitude /= 1000.0;

  const int fractionPlaces = static_cast<int>(
      std::count_if(pointAt, tokens.end(), [](const Token& t) { return t.kind == Token::Digit; }));
  std::string integer, fraction;
  roundDigits(magnitude, fractionPlaces, integer, fraction);

  const int least = firstZero < 0 ? 0 : integerPlaces - firstZero;
  if (static_cast<int>(integer.size()) < least)
    integer.insert(0, static_cast<size_t>(least) - integer.size(), '0');

  std::string out;
  const int length = static_cast<int>(integer.size());
  auto putDigit = [&](int index) {
    out += integer[static_cast<size_t>(index)];
    const int behind = length - 1 - index;
    if (grouping && behind > 0 && behind % 3 == 0)
      out += ',';
  };
  // Placeholder j (from 0) of the integer part shows digit j - (integerPlaces - length); the
  // first placeholder also takes the digits that have no placeholder of their own.
  int placeholder = 0;
  for (size_t i = 0; i < integerEnd; ++i) {
    const Token& t = tokens[i];
    if (t.kind == Token::Digit) {
      const int index = placeholder - (integerPlaces - length);
      if (placeholder == 0)
        for (int k = 0; k < index; ++k)
          putDigit(k);
      if (index >= 0)
        putDigit(index);
      ++placeholder;
    } else if (t.kind == Token::Literal) {
      out += t.text;
    } else if (t.kind == Token::Percent) {
      out += '%';
    }
  }
  if (integerPlaces == 0)
    for (int k = 0; k < length; ++k)
      putDigit(k);
  if (!hasPoint)
    return out;

  // Trailing zeros in "#" places are dropped, from the right up to the first other digit.
  std::vector<bool> shown(static_cast<size_t>(fractionPlaces), true);
  {
    int k = fractionPlaces - 1;
    for (auto it = tokens.rbegin(); it != tokens.rend() && k >= 0; ++it) {
      if (it->kind != Token::Digit)
        continue;
      if (it->zero || fraction[static_cast<size_t>(k)] != '0')
        break;
      shown[static_cast<size_t>(k--)] = false;
    }
  }
  out += '.';
  int k = 0;
  for (auto it = pointAt + 1; it != tokens.end(); ++it) {
    switch (it->kind) {
    case Token::Digit:
      if (shown[static_cast<size_t>(k)])
        out += fraction[static_cast<size_t>(k)];
      ++k;
      break;
    case Token::Literal:
      out += it->text;
      break;
    case Token::Percent:
      out += '%';
      break;
    case Token::Comma:
      out += ',';
      break;
    case Token::Point:
      break;
    }
  }
  return out;
}

}  // namespace

std::string FormatNumber(double value, std::string_view picture) {
  if (std::isnan(value))
    return "NaN";
  if (std::isinf(value))
    return value < 0 ? "-Infinity" : "Infinity";
  if (picture.empty())
    return generalText(value);

  const std::vector<std::string_view> sections = splitSections(picture);
  auto usable = [&](size_t i) { return i < sections.size() && !sections[i].empty(); };
  if (value < 0 && usable(1))
    return formatSection(-value, tokenize(sections[1]));
  if (value == 0 && usable(2))
    return formatSection(0.0, tokenize(sections[2]));
  const std::string text = formatSection(std::fabs(value), tokenize(sections[0]));
  return value < 0 ? "-" + text : text;
}

}  // namespace tvx
