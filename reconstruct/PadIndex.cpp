#include "reconstruct/PadIndex.h"

#include <cmath>
#include <cstdlib>
#include <limits>

namespace tvx {

namespace {

// Cells of 2^18 store units (2.6 mm): a pad's frame meets one to four of them, a search near a
// point one to four.
constexpr int CellShift = 18;

int64_t cellOf(int64_t coordinate) { return coordinate >> CellShift; }

uint64_t keyOf(int64_t cx, int64_t cy) { return uint64_t(uint32_t(cx)) << 32 | uint32_t(cy); }

}  // namespace

void PadIndex::update() {
  for (; indexed_ < pads_.size(); ++indexed_) {
    const PadPosition& pad = pads_[indexed_];
    cells_[keyOf(cellOf(pad.X), cellOf(pad.Y))].push_back(int32_t(indexed_));
  }
}

void PadIndex::visitBox(int64_t minX, int64_t minY, int64_t maxX, int64_t maxY,
                        const std::function<bool(int32_t)>& visit) const {
  const int64_t x0 = cellOf(minX), x1 = cellOf(maxX);
  const int64_t y0 = cellOf(minY), y1 = cellOf(maxY);
  const double cells = double(x1 - x0 + 1) * double(y1 - y0 + 1);
  if (cells > double(indexed_)) {
    for (size_t row = 0; row < indexed_; ++row)
      if (!visit(int32_t(row)))
        return;
    return;
  }
  for (int64_t cx = x0; cx <= x1; ++cx)
    for (int64_t cy = y0; cy <= y1; ++cy) {
      const auto cell = cells_.find(keyOf(cx, cy));
      if (cell == cells_.end())
        continue;
      for (const int32_t row : cell->second)
        if (!visit(row))
          break;
    }
}

int32_t PadIndex::firstNear(int32_t x, int32_t y, int32_t tolerance) const {
  int32_t best = -1;
  visitBox(int64_t(x) - tolerance, int64_t(y) - tolerance, int64_t(x) + tolerance,
           int64_t(y) + tolerance, [&](int32_t row) {
             if (best >= 0 && row >= best)
               return false;  // the cell's later rows cannot come first
             const PadPosition& pad = pads_[size_t(row)];
             if (std::abs(int64_t(pad.X) - x) < tolerance &&
                 std::abs(int64_t(pad.Y) - y) < tolerance) {
               best = row;
               return false;
             }
             return true;
           });
  return best;
}

int32_t PadIndex::nearestNear(int32_t x, int32_t y, int32_t tolerance) const {
  int32_t best = -1;
  double bestDistance = std::numeric_limits<double>::infinity();
  visitBox(int64_t(x) - tolerance, int64_t(y) - tolerance, int64_t(x) + tolerance,
           int64_t(y) + tolerance, [&](int32_t row) {
             const PadPosition& pad = pads_[size_t(row)];
             const double dx = double(pad.X) - x, dy = double(pad.Y) - y;
             if (std::abs(dx) >= tolerance || std::abs(dy) >= tolerance)
               return true;
             const double distance = dx * dx + dy * dy;
             if (distance < bestDistance || (distance == bestDistance && row < best)) {
               best = row;
               bestDistance = distance;
             }
             return true;
           });
  return best;
}

int32_t PadIndex::firstInFrame(const FrameRect& frame,
                               const std::function<bool(const PadPosition&)>& fits) const {
  int32_t best = -1;
  visitBox(frame.MinX, frame.MinY, frame.MaxX, frame.MaxY, [&](int32_t row) {
    if (best >= 0 && row >= best)
      return false;
    const PadPosition& pad = pads_[size_t(row)];
    if (pad.X >= frame.MinX && pad.X <= frame.MaxX && pad.Y >= frame.MinY && pad.Y <= frame.MaxY &&
        fits(pad)) {
      best = row;
      return false;
    }
    return true;
  });
  return best;
}

}  // namespace tvx
