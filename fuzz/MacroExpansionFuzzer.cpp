// Any text as an aperture macro and its modifiers: the first line holds the modifiers, every
// further piece up to a "*" is a macro line. Each line is also evaluated as a field and run as an
// assignment. No input may crash, hang or read out of bounds.
#include "import/gerber/MacroExpansion.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace tvx;
  std::string_view text(reinterpret_cast<const char*>(data), size);
  const size_t newline = text.find('\n');
  const std::string_view modifiers = text.substr(0, newline);
  std::vector<std::string> lines;
  if (newline != std::string_view::npos) {
    std::string_view rest = text.substr(newline + 1);
    while (!rest.empty()) {
      const size_t star = rest.find('*');
      lines.emplace_back(rest.substr(0, star));
      rest = star == std::string_view::npos ? std::string_view() : rest.substr(star + 1);
    }
  }
  MacroStore macros;
  macros.define("FUZZ", lines);
  std::vector<PrimitiveRow> primitives;
  for (int32_t unit : {0, 1})
    ExpandMacro(macros, macros.find("FUZZ"), modifiers, 10, LengthScale{unit, 100000}, primitives);
  MacroVariables variables(modifiers);
  for (const std::string& line : lines) {
    evaluateMacroField(line, variables);
    runMacroAssignment(line, variables);
  }
  return 0;
}
