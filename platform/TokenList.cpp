#include "platform/TokenList.h"

#include <charconv>
#include <cmath>

namespace tvx {

void TokenList::Parse(const std::string& text, const std::string& delimiter) {
  items_.clear();
  if (text.empty())
    return;
  if (delimiter.empty()) {
    items_.push_back(text);
    return;
  }
  std::string::size_type start = 0;
  for (;;) {
    std::string::size_type at = text.find(delimiter, start);
    if (at == std::string::npos) {
      items_.push_back(text.substr(start));
      return;
    }
    items_.push_back(text.substr(start, at - start));
    start = at + delimiter.size();
  }
}

std::string TokenList::Item(int32_t index) const {
  if (index < 1 || index > Count())
    return std::string();
  return items_[static_cast<size_t>(index - 1)];
}

double TokenList::ItemValue(int32_t index) const {
  std::string text = Item(index);
  if (auto comma = text.find(','); comma != std::string::npos)
    text[comma] = '.';
  // std::from_chars rather than strtod: the reading must not follow the process's locale, which
  // Qt sets from the environment.
  const char* first = text.data();
  const char* last = first + text.size();
  while (first != last && (*first == ' ' || *first == '\t'))
    ++first;
  if (first != last && *first == '+') {
    ++first;
    if (first != last && *first == '-')
      return 0.0;
  }
  double value = 0.0;
  auto [end, error] = std::from_chars(first, last, value, std::chars_format::general);
  if (error != std::errc() || !std::isfinite(value))
    return 0.0;
  return value;
}

}  // namespace tvx
