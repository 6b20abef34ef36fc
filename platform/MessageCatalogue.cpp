#include "platform/MessageCatalogue.h"

#include "platform/DataFiles.h"
#include "platform/IniFile.h"

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
  size_t pos = 0;
  while (pos < text.size()) {
    size_t end = text.find('\n', pos);
    if (end == std::string_view::npos)
      end = text.size();
    std::string_view line = text.substr(pos, end - pos);
    pos = end + 1;
    if (!line.empty() && line.back() == '\r')
      line.remove_suffix(1);
    if (line.empty() || line[0] == '#')
      continue;
    size_t tab = line.find('\t');
    if (tab == std::string_view::npos || tab == 0 || tab + 1 >= line.size())
      continue;
    std::string_view id = line.substr(0, tab);
    bool digits = true;
    for (char c : id)
      digits = digits && c >= '0' && c <= '9';
    if (!digits)
      continue;
    texts_.try_emplace(std::string(id), unescape(std::string(line.substr(tab + 1))));
  }
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
