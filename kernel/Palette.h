// The store's palette: 32 colours by palette number, as 0x00BBGGRR values.
//
// Numbers 0 to 15 follow the classic sixteen-colour order that layer and category tables refer to
// (0 black, 7 light grey, 12 light red, 15 white, ...); 16 to 31 add distinct hues for the inner
// layers. Every colour but black and white keeps a contrast of at least 3.2 both against the black
// screen background and on white paper (docs/colours.md).
#pragma once

#include <array>
#include <cstdint>

namespace tvx {

inline constexpr int PaletteSize = 32;

const std::array<uint32_t, PaletteSize>& paletteRgb();

inline constexpr uint32_t rgbValue(int r, int g, int b) {
  return uint32_t(r) | (uint32_t(g) << 8) | (uint32_t(b) << 16);
}
inline constexpr int redOf(uint32_t rgb) { return int(rgb & 0xFF); }
inline constexpr int greenOf(uint32_t rgb) { return int((rgb >> 8) & 0xFF); }
inline constexpr int blueOf(uint32_t rgb) { return int((rgb >> 16) & 0xFF); }

}  // namespace tvx
