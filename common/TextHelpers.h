// Small text routines shared by the windows and readers.
#pragma once

#include <string>
#include <string_view>

namespace tvx {

// With folder set: what stands before the last of ":", "\" and "/"; without it: what stands
// after it. A path holding none of them is returned whole.
std::string PathPart(std::string_view path, bool folder);

// The text up to its first blank, or the whole text when it has none.
std::string FirstWord(std::string_view text);

// The text trimmed of blanks at both ends, with every double quote removed.
std::string StripQuotes(std::string_view text);

// The text without blanks at either end.
std::string_view TrimBlanks(std::string_view text);

// The text with its ASCII letters in upper case (names of tables and files are compared so).
std::string UpperCase(std::string_view text);

// A message on one line: each line break a blank, runs of blanks one (a break was two characters).
std::string OneLine(std::string text);

}  // namespace tvx
