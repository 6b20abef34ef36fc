#include "kernel/Palette.h"

namespace tvx {

const std::array<uint32_t, PaletteSize>& paletteRgb() {
  static constexpr std::array<uint32_t, PaletteSize> colours = {
      rgbValue(0, 0, 0),        // 0 black
      rgbValue(40, 80, 220),    // 1 blue
      rgbValue(0, 160, 0),      // 2 green
      rgbValue(0, 170, 170),    // 3 cyan
      rgbValue(200, 30, 30),    // 4 red
      rgbValue(180, 40, 180),   // 5 magenta
      rgbValue(170, 110, 20),   // 6 brown
      rgbValue(190, 190, 190),  // 7 light grey
      rgbValue(110, 110, 110),  // 8 dark grey
      rgbValue(80, 140, 255),   // 9 light blue
      rgbValue(60, 220, 60),    // 10 light green
      rgbValue(60, 220, 220),   // 11 light cyan
      rgbValue(255, 80, 80),    // 12 light red
      rgbValue(240, 90, 240),   // 13 light magenta
      rgbValue(240, 220, 40),   // 14 yellow
      rgbValue(255, 255, 255),  // 15 white
      rgbValue(255, 150, 0),    // 16 orange
      rgbValue(150, 90, 230),   // 17 violet
      rgbValue(0, 190, 130),    // 18 sea green
      rgbValue(230, 110, 150),  // 19 rose
      rgbValue(160, 200, 40),   // 20 lime
      rgbValue(40, 180, 230),   // 21 sky
      rgbValue(200, 160, 90),   // 22 tan
      rgbValue(120, 170, 120),  // 23 sage
      rgbValue(220, 70, 130),   // 24 raspberry
      rgbValue(100, 120, 200),  // 25 slate blue
      rgbValue(210, 180, 0),    // 26 gold
      rgbValue(0, 140, 160),    // 27 teal
      rgbValue(170, 80, 60),    // 28 rust
      rgbValue(140, 200, 200),  // 29 pale cyan
      rgbValue(200, 130, 220),  // 30 orchid
      rgbValue(230, 200, 140),  // 31 sand
  };
  return colours;
}

}  // namespace tvx
