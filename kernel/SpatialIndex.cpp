#include "kernel/SpatialIndex.h"

#include <algorithm>
#include <bit>

namespace tvx {

namespace {
// Coordinates are shifted into [0, 2^32) so that cells are plain bit slices.
inline uint32_t shifted(int32_t v) { return uint32_t(v) ^ 0x80000000u; }
inline int64_t shifted64(int32_t v) { return int64_t(v) + 0x80000000LL; }
}  // namespace

SpatialIndex::SpatialIndex(NodeSlot nodeSlot) : nodeSlot_(std::move(nodeSlot)) {
  nodes_.emplace_back();
}

int SpatialIndex::targetDepth(const Box& box) {
  uint64_t size = std::max<int64_t>(int64_t(box.maxX) - box.minX, int64_t(box.maxY) - box.minY);
  if (size <= 1)
    return MaxDepth;
  // Deepest depth whose cell size 2^(32 - depth) is at least size.
  int bits = std::bit_width(size - 1);  // 2^bits >= size
  return std::clamp(32 - bits, 0, MaxDepth);
}

bool SpatialIndex::looseBoundsMeet(const Node& node, const Box& query) {
  int64_t cell = int64_t(1) << (32 - node.depth);
  int64_t x0 = int64_t(node.cellX) * cell - cell / 2;
  int64_t y0 = int64_t(node.cellY) * cell - cell / 2;
  int64_t x1 = x0 + 2 * cell;
  int64_t y1 = y0 + 2 * cell;
  return shifted64(query.minX) < x1 && x0 <= shifted64(query.maxX) && shifted64(query.minY) < y1 &&
         y0 <= shifted64(query.maxY);
}

void SpatialIndex::insert(uint32_t id, const Box& box) {
  Entry entry{id, box};
  if (entry.box.maxX < entry.box.minX)
    std::swap(entry.box.maxX, entry.box.minX);
  if (entry.box.maxY < entry.box.minY)
    std::swap(entry.box.maxY, entry.box.minY);
  place(0, entry, targetDepth(entry.box));
  ++size_;
}

void SpatialIndex::place(uint32_t nodeIndex, const Entry& entry, int depth) {
  uint32_t cx = shifted(int32_t((int64_t(entry.box.minX) + entry.box.maxX) >> 1));
  uint32_t cy = shifted(int32_t((int64_t(entry.box.minY) + entry.box.maxY) >> 1));
  while (nodes_[nodeIndex].depth < depth && nodes_[nodeIndex].split) {
    int d = nodes_[nodeIndex].depth;
    int shift = 31 - d;  // the bit that picks the child's half at depth d + 1
    int quadrant = int((cx >> shift) & 1u) | int(((cy >> shift) & 1u) << 1);
    int32_t child = nodes_[nodeIndex].child[quadrant];
    if (child < 0) {
      Node n;
      n.depth = uint8_t(d + 1);
      n.cellX = cx >> (32 - n.depth);
      n.cellY = cy >> (32 - n.depth);
      child = int32_t(nodes_.size());
      nodes_.push_back(std::move(n));
      nodes_[nodeIndex].child[quadrant] = child;
    }
    nodeIndex = uint32_t(child);
  }
  Node& node = nodes_[nodeIndex];
  node.entries.push_back(entry);
  nodeSlot_(entry.id) = nodeIndex;
  if (!node.split && node.entries.size() > SplitThreshold && node.depth < MaxDepth)
    splitNode(nodeIndex);
}

void SpatialIndex::splitNode(uint32_t nodeIndex) {
  nodes_[nodeIndex].split = true;
  std::vector<Entry> entries = std::move(nodes_[nodeIndex].entries);
  nodes_[nodeIndex].entries.clear();
  int depth = nodes_[nodeIndex].depth;
  for (const Entry& e : entries) {
    int target = targetDepth(e.box);
    if (target <= depth) {
      nodes_[nodeIndex].entries.push_back(e);
      nodeSlot_(e.id) = nodeIndex;
    } else {
      place(nodeIndex, e, target);
    }
  }
}

void SpatialIndex::remove(uint32_t id) {
  uint32_t& slot = nodeSlot_(id);
  if (slot >= nodes_.size())
    return;
  std::vector<Entry>& entries = nodes_[slot].entries;
  for (size_t i = 0; i < entries.size(); ++i) {
    if (entries[i].id == id) {
      entries[i] = entries.back();
      entries.pop_back();
      --size_;
      break;
    }
  }
  slot = NoNode;
}

}  // namespace tvx
