#include "viewer/ToolDispatcher.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>

namespace tvx {

namespace {

std::string upper(std::string_view text) {
  std::string out(text);
  std::transform(out.begin(), out.end(), out.begin(),
                 [](unsigned char c) { return char(std::toupper(c)); });
  return out;
}

// A tool name that is a number; none for any other.
std::optional<int32_t> numberOf(std::string_view name) {
  int32_t value = 0;
  const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), value);
  if (name.empty() || error != std::errc() || end != name.data() + name.size())
    return std::nullopt;
  return value;
}

}  // namespace

void ToolDispatcher::ToolClick(const std::string& tool) {
  if (hooks.busy)
    hooks.busy(true);
  const std::string name = upper(tool);
  if (std::find(DispatchedTools.begin(), DispatchedTools.end(), name) != DispatchedTools.end()) {
    if (hooks.named)
      hooks.named(name);
  } else if (const std::optional<int32_t> number = numberOf(name)) {
    const std::string band = upper(bar_.bandOf(tool));
    if ((band == "FUNCTIONTOOLS" || band == "SB_FUNCTIONTOOLSPROP") && hooks.functionKey)
      hooks.functionKey(std::abs(*number - 3000));
    else if ((band == "OPTIONTOOLS" || band == "SB_OPTIONTOOLSPROP") && hooks.optionRow)
      hooks.optionRow(std::abs(*number - 4000));
    else if (band == "SB_ACTIVECATEGORIES" && hooks.layerRow)
      hooks.layerRow(*number - 31);
  }
  if (hooks.refreshBands)
    hooks.refreshBands();
  if (hooks.busy)
    hooks.busy(false);
}

}  // namespace tvx
