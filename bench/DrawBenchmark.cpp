// Drawing a layer of a million mixed elements: the whole board, a view of 1% of it, a pan and a
// wheel step; and the memory the layer takes in the store.
#include "kernel/Kernel.h"

#include <QGuiApplication>
#include <QImage>
#include <benchmark/benchmark.h>

#include "BenchRunner.h"
#include "MixedLayer.h"

namespace tvx {
namespace {

using bench::Layer;
constexpr int32_t Board = 30000000;         // 300 mm square: every point is covered ~10 times
constexpr int32_t SparseBoard = 100000000;  // 1 m square: about as much copper as board

constexpr int Elements = 1000000;

// The layer and its spatial index (made by the first partial view, once after an import), with
// the resident memory they took.
struct Scene {
  Kernel kernel;
  double bytesPerElement = 0;
  explicit Scene(int32_t board) {
    const long before = ::bench::residentKilobytes("VmRSS:");
    bench::fillMixedLayer(kernel.store, Elements, board);
    std::vector<int32_t> warm;
    kernel.store.membersInBox(kernel.store.S_SymbolItemArray(Layer), FrameRect{0, 0, 1, 1}, warm);
    bytesPerElement = double(::bench::residentKilobytes("VmRSS:") - before) * 1024 / Elements;
  }
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
  state.counters["store_bytes_per_element"] = scene(board).bytesPerElement;
  QImage image(1920, 1080, QImage::Format_RGB32);
  int32_t dev = k.graphics.G_GetDC(&image);
  ViewSetup view{scale, 1920, 1080, ox, oy, 4};
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

// A pan by a tenth of the view at 1%: the view drawn again at its new place (no part of the last
// picture is kept yet, so this is what the user waits for after a drag).
void BM_DrawPanTenth(benchmark::State& state) {
  drawView(state, Board, Board / 14400, Board / 2 + 192 * (Board / 14400), Board / 2);
}
BENCHMARK(BM_DrawPanTenth)->Unit(benchmark::kMillisecond);

// One wheel step in from the whole board: a fifth more magnified, about the pointer at the centre.
void BM_DrawWheelStep(benchmark::State& state) {
  drawView(state, Board, Board / 1200, Board / 2, Board / 2);
}
BENCHMARK(BM_DrawWheelStep)->Unit(benchmark::kMillisecond);

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
