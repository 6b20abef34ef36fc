// A synthetic copper layer for the benchmarks: a mix of traces, round and square flashes, arcs and
// small polygons, spread at random over a square board.
#pragma once

#include "kernel/Store.h"

#include <random>

namespace tvx::bench {

inline constexpr SymbolId Layer = -76503;

// Traces, round and square flashes, arcs and a polygon every so often, spread like copper.
inline void fillMixedLayer(Store& s, int count, int32_t board) {
  s.S_CreateSymbol(Layer, "$$GIS_CAT-76503");
  ArrayHandle a = s.S_SymbolItemArray(Layer);
  std::mt19937 rng(1);
  std::uniform_int_distribution<int32_t> pos(0, board), len(-200000, 200000);
  for (int i = 0; i < count; ++i) {
    ItemRecord r;
    r.Attributes = attr::Shown;
    r.Colour = uint8_t(10);
    r.X = pos(rng);
    r.Y = pos(rng);
    switch (i % 5) {
    case 0:
      r.Type = ItemLine;
      r.Width = len(rng);
      r.Height = len(rng);
      r.LineWidth = 25400;
      break;
    case 1:
      r.Type = ItemCircle;
      r.Width = 50000;
      r.Style = StyleFilled;
      break;
    case 2:
      r.Type = ItemRectangle;
      r.Width = 150000;
      r.Height = 80000;
      r.Style = StyleFilled;
      break;
    case 3:
      r.Type = ItemArc;
      r.Width = 100000;
      r.Sweep = 180000;
      r.LineWidth = 20000;
      break;
    default: {
      // A small square polygon of four sides.
      int32_t x = r.X, y = r.Y, d = 120000;
      int32_t dx[4] = {d, 0, -d, 0}, dy[4] = {0, d, 0, -d};
      for (int k = 0; k < 4; ++k) {
        ItemRecord side;
        side.Type = ItemLine;
        side.Attributes = attr::Shown | attr::PolygonSide | (k == 0 ? attr::PolygonFirst : 0) |
                          (k == 3 ? attr::PolygonLast : 0);
        side.Style = StyleFilled;
        side.Colour = 10;
        side.LineWidth = 1;
        side.X = x;
        side.Y = y;
        side.Width = dx[k];
        side.Height = dy[k];
        s.OA_Add(a, s.I_MakeItem(side));
        x += dx[k];
        y += dy[k];
      }
      continue;
    }
    }
    s.OA_Add(a, s.I_MakeItem(r));
  }
}

}  // namespace tvx::bench
