// Geometry of stored items: frames, cover tests and placements. Shared by the store and the
// drawing engine so that what is drawn, framed and picked agree.
#pragma once

#include "kernel/KernelTypes.h"
#include "kernel/PlaneGeometry.h"
#include "kernel/SpatialIndex.h"

#include <cstdint>

namespace tvx {

// Arc with a positive sweep of at most 360000 and a start angle in 0..359999.
void normaliseArc(int32_t& startAngle, int32_t& sweep);

// Size of a text box from its two size values (text height, character width) and its length.
void textBoxSize(int32_t type, int32_t size1, int32_t size2, size_t length, int32_t& width,
                 int32_t& height);

// Extent of an item, pen width included. Always succeeds for a valid type.
Box itemFrame(const ItemFields& item, size_t textLength);
// True when (x, y) lies within tolerance of the item as drawn (filled shapes over their area).
bool itemCovers(const ItemFields& item, size_t textLength, double x, double y, double tolerance);

// Applies a placement to an item's geometry fields.
void placeItem(ItemFields& item, const Placement& placement);
// Applies a placement to a point; unplacePoint is its exact inverse up to rounding.
void placePoint(int32_t& x, int32_t& y, const Placement& placement);
void unplacePoint(int32_t& x, int32_t& y, const Placement& placement);

// Frame of a box after a placement (the box's four corners placed).
Box placeBox(const Box& box, const Placement& placement);

inline int32_t clampToInt32(double v) {
  if (v >= 2147483647.0)
    return 2147483647;
  if (v <= -2147483648.0)
    return -2147483647 - 1;
  return int32_t(v < 0 ? v - 0.5 : v + 0.5);
}

}  // namespace tvx
