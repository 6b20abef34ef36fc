#include "kernel/Palette.h"

namespace tvx {

const std::array<uint32_t, PaletteSize>& paletteRgb() {
  static constexpr std::array<uint32_t, PaletteSize> colours = {
      rgbValue(0, 0, 0),        // 0 black
      rgbValue(43, 84, 228),    // 1 blue
      rgbValue(0, 160, 0),      // 2 green
      rgbValue(0, 159, 159),    // 3 cyan
      rgbValue(200, 30, 30),    // 4 red
      rgbValue(180, 40, 180),   // 5 magenta
      rgbValue(170, 110, 20),   // 6 brown
      rgbValue(141, 141, 141),  // 7 light grey
      rgbValue(110, 110, 110),  // 8 dark grey
      rgbValue(80, 140, 255),   // 9 light blue
      rgbValue(42, 163, 42),    // 10 light green
      rgbValue(40, 158, 158),   // 11 light cyan
      rgbValue(255, 80, 80),    // 12 light red
      rgbValue(225, 84, 225),   // 13 light magenta
      rgbValue(156, 143, 23),   // 14 yellow
      rgbValue(255, 255, 255),  // 15 white
      rgbValue(210, 122, 0),    // 16 orange
      rgbValue(150, 90, 230),   // 17 violet
      rgbValue(0, 161, 110),    // 18 sea green
      rgbValue(216, 102, 140),  // 19 rose
      rgbValue(122, 154, 28),   // 20 lime
      rgbValue(31, 152, 195),   // 21 sky
      rgbValue(170, 135, 75),   // 22 tan
      rgbValue(108, 154, 108),  // 23 sage
      rgbValue(220, 70, 130),   // 24 raspberry
      rgbValue(100, 120, 200),  // 25 slate blue
      rgbValue(166, 142, 0),    // 26 gold
      rgbValue(0, 140, 160),    // 27 teal
      rgbValue(170, 80, 60),    // 28 rust
      rgbValue(102, 149, 149),  // 29 pale cyan
      rgbValue(182, 118, 199),  // 30 orchid
      rgbValue(160, 139, 95),   // 31 sand
  };
  return colours;
}

}  // namespace tvx
