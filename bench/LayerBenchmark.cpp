// The walks over a layer's items: counting by kind, and a drawing in one colour, which recolours
// every item before the drawing and gives the colours back afterwards.
#include "kernel/Kernel.h"
#include "store/LayerDrawing.h"
#include "store/Layers.h"

#include <benchmark/benchmark.h>

namespace tvx {
namespace {

// A device that draws nothing, so that only the walks are timed.
class SilentGraphics : public Graphics {
public:
  using Graphics::Graphics;
  int32_t G_SetDrawMode(int32_t, int32_t) override { return 1; }
  int32_t S_DrawSymbol(int32_t, SymbolId, int32_t, int32_t) override { return 1; }
};

// One artwork layer of count mixed items, one in ten of them clear.
struct Board {
  explicit Board(int32_t count, bool indexed) {
    layer.SymbolHandle = -76503;
    layer.Mask = 4;
    Store& store = kernel.store;
    store.S_CreateSymbol(layer.SymbolHandle, "$$GIS_CAT-76503");
    const ArrayHandle items = store.S_SymbolItemArray(layer.SymbolHandle);
    for (int32_t i = 0; i < count; ++i) {
      ItemRecord r;
      r.Type = i % 3 == 0 ? ItemLine : i % 3 == 1 ? ItemCircle : ItemRectangle;
      r.Attributes = attr::Shown;
      r.X = (i % 1000) * 50000;
      r.Y = (i / 1000) * 50000;
      r.Width = 20000;
      r.Height = 10000;
      r.LineWidth = 1000;
      r.Colour = i % 10 == 0 ? 92 : 10;
      store.OA_Add(items, store.I_MakeItem(r));
    }
    if (indexed) {  // a culled drawing or a pick makes the array's spatial index
      std::vector<int32_t> positions;
      store.membersInBox(items, FrameRect{0, 0, 100000, 100000}, positions);
    }
  }
  Kernel kernel;
  LayerRecord layer;
};

void BM_MonoDrawLayer(benchmark::State& state) {
  Board board(int32_t(state.range(0)), state.range(1) != 0);
  SilentGraphics graphics(board.kernel.store, board.kernel.strings);
  LayerDrawContext context(graphics, board.kernel.store);
  context.clearColour = 92;
  for (auto _ : state)
    DrawLayer(context, 1, 4, board.layer, 1, 1, true, 0);
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_MonoDrawLayer)
    ->Args({100000, 0})
    ->Args({1000000, 0})
    ->Args({1000000, 1})
    ->Unit(benchmark::kMillisecond);

void BM_CountLayerContents(benchmark::State& state) {
  Board board(int32_t(state.range(0)), false);
  LayerContents counts;
  for (auto _ : state) {
    CountLayerContents(board.kernel.store, board.layer, counts);
    benchmark::DoNotOptimize(counts);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_CountLayerContents)->Arg(1000000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tvx
