// Outlines as the store keeps them: runs of line and arc items marked as polygon sides, written
// from a list of points where some points are the middles of arcs. The HPGL and DXF readers write
// their outlines the same way.
#pragma once

#include "kernel/KernelTypes.h"

#include <cstdint>
#include <vector>

namespace tvx {

class Store;

// Kinds of OutlinePoint.
namespace outlinepoint {
inline constexpr int32_t NoStretch = 0;  // nothing starts here (the point before an arc's middle)
inline constexpr int32_t Straight = 1;   // a straight side starts here
inline constexpr int32_t ArcMiddle = 5;  // the middle of an arc from the point before to the next
}  // namespace outlinepoint

struct OutlinePoint {
  int32_t Kind = outlinepoint::NoStretch;
  double X = 0;
  double Y = 0;
  // Kind 5 only: the arc's centre and radius.
  int32_t CentreX = 0;
  int32_t CentreY = 0;
  int32_t Radius = 0;

  bool operator==(const OutlinePoint&) const = default;
};

// The points of an outline are used from index 1; index 0 holds the offset that is added to every
// point when it is written (the offset of one repeat), and no stretch.
using OutlinePoints = std::vector<OutlinePoint>;

// The direction of a vector in degrees, from 0 up to but not including 360; straight up or down
// for dx = 0.
double AngleOf(double dx, double dy);

struct IntPoint {
  int32_t X = 0;
  int32_t Y = 0;
};

// The arc through three points, counter-clockwise from start by sweep degrees (both out). status
// 0 on success; 1 when the points lie on one line, or the radius or the sweep comes out 0.
void ArcThroughPoints(int32_t& status, IntPoint p1, IntPoint p2, IntPoint p3, double& centreX,
                      double& centreY, double& radius, double& start, double& sweep);

// Writes the sides of points into the symbol's items with the template's Link, Colour, Style and
// LineWidth: a line from each Kind 1 point to the next, an arc through each Kind 5 point and its
// neighbours (two lines when the arc is flatter than 2 degrees or cannot be made). The first piece
// is marked as a polygon's first side and the last as its last. first and last receive the
// pieces' indexes in the item array (0 when nothing was written). A refused element ends the
// writing with status 1, leaving the pieces made so far.
void WriteOutline(int32_t& status, Store& store, SymbolId symbol, const ItemRecord& templ,
                  const OutlinePoints& points, int32_t& first, int32_t& last);

}  // namespace tvx
