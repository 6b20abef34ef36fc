// The list of pads found, searched by position through a grid of cells, so that the pads of a
// large board are matched in about constant time per element. Every search gives the answer a
// walk of the list from its start would give: the first row that fits.
#pragma once

#include "kernel/KernelTypes.h"
#include "reconstruct/ReconstructionState.h"

#include <cstdint>
#include <functional>
#include <unordered_map>
#include <vector>

namespace tvx {

class PadIndex {
public:
  // Indexes pads as they are appended; the list must outlive the index.
  explicit PadIndex(const std::vector<PadPosition>& pads) : pads_(pads) {}

  // Takes in the pads appended since the last call.
  void update();

  // The first row with |row.X - x| < tolerance and |row.Y - y| < tolerance; -1 when none.
  int32_t firstNear(int32_t x, int32_t y, int32_t tolerance) const;
  // The row nearest to (x, y) among those firstNear would accept, the first of equals; -1 when
  // none.
  int32_t nearestNear(int32_t x, int32_t y, int32_t tolerance) const;
  // The first row whose point lies in frame, bounds included, and that fits; -1 when none.
  int32_t firstInFrame(const FrameRect& frame,
                       const std::function<bool(const PadPosition&)>& fits) const;

private:
  // Calls visit(row) for the rows in the cells that meet the box, cell by cell, each cell's rows
  // in ascending order; visit returns false to leave the cell. A box of more cells than rows
  // walks the list instead.
  void visitBox(int64_t minX, int64_t minY, int64_t maxX, int64_t maxY,
                const std::function<bool(int32_t)>& visit) const;

  const std::vector<PadPosition>& pads_;
  std::unordered_map<uint64_t, std::vector<int32_t>> cells_;
  size_t indexed_ = 0;
};

}  // namespace tvx
