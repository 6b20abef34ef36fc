// A text cut at a delimiter into items numbered from 1.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tvx {

class TokenList {
public:
  // Cuts text at every occurrence of delimiter. An empty text gives no items; two delimiters in a
  // row give an empty item between them; an empty delimiter keeps the whole text as one item.
  void Parse(const std::string& text, const std::string& delimiter);

  int32_t Count() const { return static_cast<int32_t>(items_.size()); }
  // Item index (from 1); an index outside 1..Count() yields the empty text.
  std::string Item(int32_t index) const;
  // The number at the start of item index, read leniently: blanks before it are skipped, the first
  // comma counts as the decimal point, and anything after the number is ignored. 0 when the item
  // does not start with a number or does not exist.
  double ItemValue(int32_t index) const;

private:
  std::vector<std::string> items_;
};

}  // namespace tvx
