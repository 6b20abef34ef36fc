#include "common/TextHelpers.h"

namespace tvx {

std::string PathPart(std::string_view path, bool folder) {
  size_t last = path.find_last_of(":\\/");
  if (last == std::string_view::npos)
    return std::string(path);
  return std::string(folder ? path.substr(0, last) : path.substr(last + 1));
}

std::string FirstWord(std::string_view text) { return std::string(text.substr(0, text.find(' '))); }

std::string StripQuotes(std::string_view text) {
  size_t b = text.find_first_not_of(" \t");
  if (b == std::string_view::npos)
    return {};
  size_t e = text.find_last_not_of(" \t");
  std::string out;
  for (char c : text.substr(b, e - b + 1))
    if (c != '"')
      out += c;
  return out;
}

std::string_view TrimBlanks(std::string_view text) {
  while (!text.empty() && text.front() == ' ')
    text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ')
    text.remove_suffix(1);
  return text;
}

std::string OneLine(std::string text) {
  for (char& c : text)
    if (c == '\r' || c == '\n')
      c = ' ';
  for (size_t at = text.find("  "); at != std::string::npos; at = text.find("  ", at))
    text.erase(at, 1);
  return text;
}

std::string UpperCase(std::string_view text) {
  std::string upper(text);
  for (char& c : upper)
    if (c >= 'a' && c <= 'z')
      c = char(c - 'a' + 'A');
  return upper;
}

}  // namespace tvx
