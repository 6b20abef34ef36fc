#include "platform/MessageCatalogue.h"

#include "platform/DataFiles.h"
#include "platform/IniFile.h"
#include "platform/TextLines.h"

namespace tvx {

std::string MessageCatalogue::unescape(const std::string& text) {
  std::string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    char c = text[i];
    if (c == '\\' && i + 1 < text.size()) {
      char n = text[i + 1];
      if (n == 'n' || n == 't' || n == '\\') {
        out += n == 'n' ? '\n' : n == 't' ? '\t' : '\\';
        ++i;
        continue;
      }
    }
    out += c;
  }
  return out;
}

std::string MessageCatalogue::escape(const std::string& text) {
  std::string out;
  for (char c : text) {
    if (c == '\n')
      out += "\\n";
    else if (c == '\t')
      out += "\\t";
    else if (c == '\\')
      out += "\\\\";
    else if (c != '\r')
      out += c;
  }
  return out;
}

void MessageCatalogue::parse(const std::string& input) {
  std::string_view text(input);
  if (text.size() >= 3 && text.substr(0, 3) == "\xEF\xBB\xBF")
    text.remove_prefix(3);
  forEachTextLine(text, [this](std::string_view line) {
    if (line.empty() || line[0] == '#')
      return true;
    size_t tab = line.find('\t');
    if (tab == std::string_view::npos || tab == 0 || tab + 1 >= line.size())
      return true;
    std::string_view id = line.substr(0, tab);
    bool digits = true;
    for (char c : id)
      digits = digits && c >= '0' && c <= '9';
    if (digits)
      texts_.try_emplace(std::string(id), unescape(std::string(line.substr(tab + 1))));
    return true;
  });
}

bool MessageCatalogue::load(const std::string& languagePath) {
  clear();
  const std::string path = findFileCaseBlind(languagePath, CatalogueFileName);
  std::string text;
  if (path.empty() || !readWholeFile(path, text))
    return false;
  parse(text);
  return true;
}

const std::string* MessageCatalogue::find(const std::string& id) const {
  auto it = texts_.find(id);
  return it == texts_.end() ? nullptr : &it->second;
}

}  // namespace tvx
