// The geometry of the measuring tools: the point of an element nearest to a given point (with the
// element's pen width), and the key points of an element that the alignment tool snaps to.
#pragma once

#include "kernel/KernelTypes.h"

#include <cstdint>
#include <span>

namespace tvx {

struct VertexRow;

// Record type of a bare point: a pad entry without a pad item under the pointer.
inline constexpr int32_t ItemPointRecord = 99;

// The straight distance between two points.
double GetDistance(double x1, double y1, double x2, double y2);

// The nearest point of an element to the point q. Lines, triangles, rectangles (turned by their
// Angle), circles, arcs (inside their sweep as their circle, else the nearer end) and points;
// any other type counts as the point X, Y. The pen width counts: half of it for lines and arcs,
// and for the other figures unless they are filled (style 16); the point then moves towards q by
// that half, at most onto q. d is the distance from q to the point found.
void NearestPoint(double& d, double& nx, double& ny, double qx, double qy,
                  const ItemRecord& record);

// The clearance of two elements: the shortest distance between them and its two points, on a and
// on b. Sides, circles and arcs exactly (crossings give 0, as does a point of one inside the other
// when that one is filled); each element's pen counts as in NearestPoint.
void ClosestPoints(double& d, double& ax, double& ay, double& bx, double& by, const ItemRecord& a,
                   const ItemRecord& b);
// The same for elements of several records: the sides of a polygon run, whose inside counts when
// it is filled.
void ClosestPoints(double& d, double& ax, double& ay, double& bx, double& by,
                   std::span<const ItemRecord> a, std::span<const ItemRecord> b);

// The near point (for a pointer at x, y) and the middle point of an element: a line's nearer end
// (the start on a tie) and its middle; a triangle's nearest corner and its centroid; a rectangle's
// (or a text frame's) nearest corner after rotation and its centre; a circle's circumference point
// towards the pointer and its centre; an arc's nearer end and its centre; a pad entry's position
// for both. With polygon vertices, the near point is the nearest of them.
struct KeyPoints {
  double NearX = 0, NearY = 0;
  double MiddleX = 0, MiddleY = 0;
};
KeyPoints ElementKeyPoints(const ItemRecord& record, double x, double y,
                           std::span<const VertexRow> polygon = {});

}  // namespace tvx
