// Item records in one line, test::Item(ItemLine).at(0, 0).size(100, 50).pen(10): a shown element
// unless other attributes are given, every field not named zero.
#pragma once

#include "kernel/KernelTypes.h"

namespace tvx::test {

struct Item : ItemRecord {
  explicit Item(int32_t type, int32_t attributes = attr::Shown) {
    Type = type;
    Attributes = attributes;
  }
  Item& at(int32_t x, int32_t y) { return X = x, Y = y, *this; }
  Item& size(int32_t width, int32_t height = 0) { return Width = width, Height = height, *this; }
  Item& colour(int32_t colour) { return Colour = uint8_t(colour), *this; }
  Item& style(int32_t style) { return Style = uint8_t(style), *this; }
  Item& filled() { return style(StyleFilled); }
  Item& pen(int32_t width) { return LineWidth = width, *this; }
  Item& angle(int32_t angle) { return Angle = angle, *this; }
  Item& sweep(int32_t sweep) { return Sweep = sweep, *this; }
  Item& link(int32_t link) { return Link = link, *this; }
  Item& gap(int32_t gap) { return Gap = gap, *this; }
};

}  // namespace tvx::test
