// The mark font of the viewer: small figures drawn at a world point, turned by an angle.
#pragma once

#include <cstdint>

namespace tvx {

class Graphics;

// Glyphs: 1 point (a diagonal cross), 5 focus (a ring with a cross), 6 cursor (an upright cross),
// 7 pan start (a square), 8 pan end (an arrow head pointing along the angle), 10 block start
// (a corner). Any other number draws nothing. Returns false when nothing was drawn.
bool drawMarkGlyph(Graphics& graphics, int32_t device, int32_t drawMode, int32_t glyph, int32_t x,
                   int32_t y, int32_t colour, int32_t angle, int32_t width, int32_t height);

}  // namespace tvx
