// One flash expanded into the elements of its aperture's picture: discs and boxes for the round
// and square pads, and for the special apertures their shapes, holes and macro primitives.
#pragma once

#include "import/gerber/ElementWriters.h"

#include <cstdint>

namespace tvx {

// Flashes the aperture (listKind, size: see ApertureKind) of dCode at (x, y) into the writer's
// layer: its hole position when the file asks for pad positions, then its shape when it asks for
// pads. An excluded aperture writes nothing at all.
void FlashAperture(ElementWriter& writer, double x, double y, int32_t size, int32_t listKind,
                   int32_t dCode);

// The primitives of a macro aperture whose first row is at position first (from 1), flashed at
// (x, y). Rows are taken as long as they belong to dCode; a primitive whose rows end early ends
// the flash with what was written so far.
void FlashMacro(ElementWriter& writer, double x, double y, int32_t first, int32_t dCode);

// A regular polygon of the given vertices about (cx, cy), its first corner at firstAngle degrees
// and each next one step = 360 / vertices further, closed by a copy of its first point.
OutlinePoints regularPolygonPoints(double cx, double cy, double radius, double vertices,
                                   double firstAngle);

// The most rings a moire writes, whatever its count says.
inline constexpr int32_t MostMoireRings = 1000;

}  // namespace tvx
