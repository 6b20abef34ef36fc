// The texts of one language, by message id.
#pragma once

#include <string>
#include <unordered_map>

namespace tvx {

// The catalogue file of a language folder.
inline constexpr const char* CatalogueFileName = "GBRVIEWER.MSG";

// A catalogue is UTF-8 text, one message a line: the id (decimal digits), a tab, the text.
// In the text "\n" stands for a line break, "\t" for a tab and "\\" for a backslash. Lines that
// start with "#" and empty lines are comments; a line without a tab, with an id that is not all
// digits or with an empty text is skipped. When an id appears twice the first line counts.
class MessageCatalogue {
public:
  void clear() { texts_.clear(); }
  void parse(const std::string& text);
  // Reads the catalogue file of a language folder; false (and empty) when there is none.
  bool load(const std::string& languagePath);

  const std::string* find(const std::string& id) const;
  size_t size() const { return texts_.size(); }

  static std::string unescape(const std::string& text);
  static std::string escape(const std::string& text);

private:
  std::unordered_map<std::string, std::string> texts_;
};

}  // namespace tvx
