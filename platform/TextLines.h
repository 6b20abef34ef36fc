// The lines of a text, for the readers of the suite's small text files.
#pragma once

#include <string_view>

namespace tvx {

// Calls visit(line) for every line of text without its line end (LF or CR LF), in order; a last
// line without an end counts too. visit returns false to stop.
template <typename Visit> void forEachTextLine(std::string_view text, Visit&& visit) {
  size_t from = 0;
  while (from < text.size()) {
    size_t end = text.find('\n', from);
    if (end == std::string_view::npos)
      end = text.size();
    std::string_view line = text.substr(from, end - from);
    from = end + 1;
    if (!line.empty() && line.back() == '\r')
      line.remove_suffix(1);
    if (!visit(line))
      return;
  }
}

}  // namespace tvx
