// Drawing a layer of a million mixed elements: the whole board, and a view of 1% of it.
#include "kernel/Kernel.h"

#include <QGuiApplication>
#include <QImage>
#include <benchmark/benchmark.h>

#include <random>

namespace tvx {
namespace {

constexpr SymbolId Layer = -76503;
constexpr int32_t Board = 30000000;        // 300 mm square: every point is covered ~10 times
constexpr int32_t SparseBoard = 100000000;  // 1 m square: about as much copper as board

// Traces, round and square flashes, arcs and a polygon every so often, spread like copper.
void fill(Store& s, int count, int32_t board) {
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

struct Scene {
  Kernel kernel;
  explicit Scene(int32_t board) { fill(kernel.store, 1000000, board); }
};
Scene& scene(int32_t board) {
  static Scene dense(Board);
  if (board == Board)
    return dense;
  static Scene sparse(SparseBoard);
  return sparse;
}

void drawView(benchmark::State& state, int32_t board, int32_t scale, int32_t ox, int32_t oy) {
  static int argc = 1;
  static char name[] = "bench_draw";
  static char* argv[] = {name, nullptr};
  static QGuiApplication app(argc, argv);
  Kernel& k = scene(board).kernel;
  QImage image(1920, 1080, QImage::Format_RGB32);
  int32_t dev = k.graphics.G_GetDC(&image);
  ViewSetup view{scale, 1920, 1080, ox, oy, 4};
  // The first partial view builds the layer's spatial index, once after an import; not timed.
  std::vector<int32_t> warm;
  k.store.membersInBox(k.store.S_SymbolItemArray(Layer), FrameRect{0, 0, 1, 1}, warm);
  for (auto _ : state) {
    k.graphics.G_OpenDC(dev, view, 0);
    k.graphics.G_CreateShadowBitmap(dev);
    k.graphics.G_SetDrawMode(dev, 4 | 64);
    k.graphics.S_DrawSymbol(dev, Layer, 1, 1);
    k.graphics.G_CloseDC(dev, 1);
  }
  k.graphics.G_DeleteDC(dev);
}

// The whole 300 mm board in 1080 pixels.
void BM_DrawFit(benchmark::State& state) {
  drawView(state, Board, Board / 1000, Board / 2, Board / 2);
}
BENCHMARK(BM_DrawFit)->Unit(benchmark::kMillisecond);

// 1% of the board's area: 1920 x 1080 pixels of Board / 14400 units each.
void BM_DrawOnePercent(benchmark::State& state) {
  drawView(state, Board, Board / 14400, Board / 2, Board / 2);
}
BENCHMARK(BM_DrawOnePercent)->Unit(benchmark::kMillisecond);

// The same million elements spread so that they rarely overlap.
void BM_DrawFitSparse(benchmark::State& state) {
  drawView(state, SparseBoard, SparseBoard / 1000, SparseBoard / 2, SparseBoard / 2);
}
BENCHMARK(BM_DrawFitSparse)->Unit(benchmark::kMillisecond);

void BM_DrawOnePercentSparse(benchmark::State& state) {
  drawView(state, SparseBoard, SparseBoard / 14400, SparseBoard / 2, SparseBoard / 2);
}
BENCHMARK(BM_DrawOnePercentSparse)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tvx
