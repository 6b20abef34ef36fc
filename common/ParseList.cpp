#include "common/ParseList.h"

#include "common/ToNumber.h"

namespace tvx {

namespace {
const std::string EmptyText;
}

const std::string& ParsedList::token(int i) const {
  return i >= 1 && i <= count() ? Tokens[size_t(i)] : EmptyText;
}

double ParsedList::value(int i) const { return i >= 1 && i <= count() ? Values[size_t(i)] : 0.0; }

void ParsedList::clear() {
  Tokens.assign(1, std::string());
  Values.assign(1, 0.0);
}

void ParsedList::add(std::string text) {
  Values.push_back(ToNumber(text));
  Tokens.push_back(std::move(text));
  Values[0] = count();
}

ParsedList ParseList(std::string_view text) {
  ParsedList list;
  const size_t n = text.size();
  if (n == 0) {
    list.add(std::string());
    return list;
  }
  size_t pos = 0;
  while (pos < n) {
    if (text[pos] == '"' && pos + 1 < n) {
      size_t second = text.find('"', pos + 1);
      if (second == std::string_view::npos) {
        // No closing quote: the rest of the text is the field.
        list.add(std::string(text.substr(pos + 1)));
        break;
      }
      size_t comma = text.find(',', second + 1);
      size_t end = comma == std::string_view::npos ? n : comma;
      // The field's text lies between its first and its last character.
      list.add(std::string(text.substr(pos + 1, end - pos - 2)));
      if (comma == std::string_view::npos)
        break;
      pos = comma + 1;
      continue;
    }
    size_t comma = text.find(',', pos);
    if (comma == std::string_view::npos) {
      list.add(std::string(text.substr(pos)));
      break;
    }
    list.add(std::string(text.substr(pos, comma - pos)));
    pos = comma + 1;
    if (pos == n)
      list.add(std::string());
  }
  return list;
}

ParsedList SplitAt(std::string_view text, std::string_view separator) {
  ParsedList list;
  if (text.empty())
    return list;
  if (separator.empty()) {
    list.add(std::string(text));
    return list;
  }
  size_t pos = 0;
  for (;;) {
    size_t at = text.find(separator, pos);
    if (at == std::string_view::npos) {
      list.add(std::string(text.substr(pos)));
      break;
    }
    list.add(std::string(text.substr(pos, at - pos)));
    pos = at + separator.size();
  }
  return list;
}

}  // namespace tvx
