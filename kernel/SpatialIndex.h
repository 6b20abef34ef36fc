// A loose quadtree over 32-bit boxes, updated incrementally.
//
// An object lives in the node whose cell holds its centre, at the depth where the cell is at least
// as large as the object; a node's loose bounds are its cell grown by half a cell on every side, so
// they always contain its objects. Nodes are made only where objects are, and a node is split only
// when it holds more than a few objects, so sparse boards cost little. A query visits only the
// nodes whose loose bounds meet the query box. The node of each object is kept by the caller
// (through NodeSlot), so removal is a short search of one node.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <vector>

namespace tvx {

struct Box {
  int32_t minX = 0;
  int32_t minY = 0;
  int32_t maxX = 0;
  int32_t maxY = 0;

  bool intersects(const Box& o) const {
    return minX <= o.maxX && o.minX <= maxX && minY <= o.maxY && o.minY <= maxY;
  }
};

inline Box unite(const Box& a, const Box& b) {
  return {std::min(a.minX, b.minX), std::min(a.minY, b.minY), std::max(a.maxX, b.maxX),
          std::max(a.maxY, b.maxY)};
}

class SpatialIndex {
public:
  static constexpr uint32_t NoNode = UINT32_MAX;
  // Where the index keeps the node number of object id.
  using NodeSlot = std::function<uint32_t&(uint32_t id)>;

  explicit SpatialIndex(NodeSlot nodeSlot);

  void insert(uint32_t id, const Box& box);
  void remove(uint32_t id);
  size_t size() const { return size_; }

  // Calls visit(id, box) for every object whose box meets query.
  template <class Visit> void query(const Box& query, Visit&& visit) const {
    uint32_t stack[4 * MaxDepth + 8];
    int top = 0;
    stack[top++] = 0;
    while (top > 0) {
      const Node& node = nodes_[stack[--top]];
      for (const Entry& e : node.entries)
        if (e.box.intersects(query))
          visit(e.id, e.box);
      for (int32_t c : node.child)
        if (c >= 0 && looseBoundsMeet(nodes_[c], query))
          stack[top++] = uint32_t(c);
    }
  }

private:
  static constexpr int MaxDepth = 24;
  static constexpr size_t SplitThreshold = 8;

  struct Entry {
    uint32_t id;
    Box box;
  };
  struct Node {
    int32_t child[4] = {-1, -1, -1, -1};
    uint32_t cellX = 0;  // cell coordinates at this node's depth, in the shifted space
    uint32_t cellY = 0;
    uint8_t depth = 0;
    bool split = false;
    std::vector<Entry> entries;
  };

  static int targetDepth(const Box& box);
  static bool looseBoundsMeet(const Node& node, const Box& query);
  void place(uint32_t startNode, const Entry& entry, int depth);
  void splitNode(uint32_t nodeIndex);

  std::vector<Node> nodes_;
  NodeSlot nodeSlot_;
  size_t size_ = 0;
};

}  // namespace tvx
