// ToolClick: a pressed tool's action, found by its name in a fixed order, else by the band it sits
// on (a function key, an option row, a layer row). The window is disabled and shows busy around
// it, and the bands are laid out again after it.
#pragma once

#include "viewer/ToolBarModel.h"

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tvx {

// The names the dispatcher knows, in the order it compares them.
// ATB_GRAPHICIMPORTS, the tool of function 1, comes last.
inline constexpr std::array<std::string_view, 33> DispatchedTools = {
    "ATB_GRID",      "ATB_GRID1",        "ATB_GRID2",
    "ATB_GRID3",     "ATB_ZOOMUP",       "ATB_ZOOMDN",
    "ATB_BLOCKZOOM", "ATB_REDRAW",       "ATB_CURRENT",
    "ATB_CENTER",    "ATB_BOARD",        "ATB_ACTLBOARD",
    "ATB_INCHES",    "ATB_MILLIMETERS",  "ATB_DISTANCE",
    "ATB_XY",        "ATB_DISTANCETOOL", "ATB_GIESELCATVIEW",
    "ATB_TRUESIZE",  "ATB_PADPOSITION",  "ATB_PADFRAMES",
    "ATB_MIRROR",    "ATB_MONOCHROME",   "ATB_RULER",
    "ATB_TOOLTIP",   "ATB_NEW",          "ATB_GERBERVIEW",
    "ATB_FLIPXAXIS", "ATB_FLIPYAXIS",    "ATB_IMPORTCATEGORIES",
    "ATB_ADDLAYER",  "ATB_REMOVELAYER",  "ATB_GRAPHICIMPORTS",
};

// Every hook may be left empty.
struct ToolDispatchHooks {
  std::function<void(bool busy)> busy;  // the window disabled and "ST_BUSY", or back
  std::function<void()> refreshBands;
  // A tool of the list above, by its upper-cased name.
  std::function<void(std::string_view name)> named;
  std::function<void(int32_t key)> functionKey;   // a tool of FunctionTools: 3000 + key
  std::function<void(int32_t option)> optionRow;  // a tool of OptionTools: 4000 + option
  std::function<void(int32_t layer)> layerRow;    // a row of SB_ActiveCategories: 31 + layer
};

class ToolDispatcher {
public:
  explicit ToolDispatcher(const ToolBarModel& bar) : bar_(bar) {}

  ToolDispatchHooks hooks;

  void ToolClick(const std::string& tool);

private:
  const ToolBarModel& bar_;
};

}  // namespace tvx
