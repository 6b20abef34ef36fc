// Comma lists and separated fields: the field texts and their numbers, numbered from 1.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tvx {

// The fields of one line. Tokens[i] is the text of field i and Values[i] its number (ToNumber),
// for i from 1 to count(); Tokens[0] is empty and Values[0] holds the number of fields.
struct ParsedList {
  std::vector<std::string> Tokens{std::string()};
  std::vector<double> Values{0.0};

  int count() const { return static_cast<int>(Tokens.size()) - 1; }
  // Field i, or an empty text / 0 for an index outside 1..count().
  const std::string& token(int i) const;
  double value(int i) const;

  void clear();
  void add(std::string text);
};

// Splits a comma list. A field that opens with a double quote which is followed by a second one
// runs to the first comma behind that second quote (commas between the quotes stay in it) and
// loses its first and last character; after it the walk goes on behind the comma and ends at the
// end of the text. A quote that has no second one takes the rest of the text, commas and all, as
// the field's text. Any other field runs to the next comma and is taken as it stands; a comma at
// the very end gives a further, empty field, and an empty text gives one empty field.
ParsedList ParseList(std::string_view text);

// Cuts text at every occurrence of separator. An empty text gives no field; a separator at the
// very end gives a further, empty field. An empty separator leaves the text as one field.
ParsedList SplitAt(std::string_view text, std::string_view separator);

}  // namespace tvx
