// The walks over a layer's items: counting by kind, and a drawing in one colour, which recolours
// every item before the drawing and gives the colours back afterwards; the layer properties'
// counts of aperture and tool uses, and their recolouring of a layer.
#include "import/readers/window/LayerPropertiesModel.h"
#include "kernel/Kernel.h"
#include "platform/SystemServices.h"
#include "store/LayerCatalogue.h"
#include "store/LayerDrawing.h"
#include "store/LayerUses.h"
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

constexpr int32_t ApertureCount = 500;

// One artwork layer of count mixed items, one in ten of them clear, made by 500 apertures in turn.
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
      r.Link = 10 + i % ApertureCount;
      store.OA_AddNewItem(items, r);
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

// The layer properties' rows of a layer of a million items and its 500 apertures.
void BM_LayerPropertiesFormUpdate(benchmark::State& state) {
  Board board(int32_t(state.range(0)), false);
  std::array<LayerRecord, 3> layers;
  layers[2] = board.layer;
  for (int32_t n = 0; n < ApertureCount; ++n)
    layers[2].Apertures.push_back({"D" + std::to_string(10 + n), true, 10 + n, 0});
  SystemServices services;
  HighlightValues highlights;
  const int32_t shown = 3;
  LayerPropertiesModel model(
      {board.kernel.store, services, layers, shown, highlights, {}, {}, 8, 92, 1});
  model.FormFill();
  for (auto _ : state)
    model.FormUpdate();
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_LayerPropertiesFormUpdate)->Arg(1000000)->Unit(benchmark::kMillisecond);

// The tool list of a drill layer of 100 tools and 100000 holes.
void BM_LayerToolList(benchmark::State& state) {
  Kernel kernel;
  Store& store = kernel.store;
  LayerRecord drill;
  drill.SymbolHandle = -76531;
  drill.Mask = DrillLayerMask;
  store.S_CreateSymbol(drill.SymbolHandle, "$$GIS_CAT-76531");
  const MapHandle padStacks = store.S_SymbolPadStackMap(drill.SymbolHandle);
  constexpr int32_t Tools = 100;
  for (int32_t key = 1; key <= Tools; ++key) {
    const ObjectHandle padStack = store.S_MakePadStack();
    store.S_ChangePadStackHole(padStack, 10000 + (key * 37) % Tools * 1000, 1);
    store.OM_Add(padStacks, padStack, key);
  }
  for (int32_t n = 0; n < int32_t(state.range(0)); ++n)
    store.S_ChangePadPadStack(drill.SymbolHandle,
                              store.S_InsertEntry(drill.SymbolHandle, -1, n * 100, n % 1000),
                              1 + n % Tools);
  for (auto _ : state)
    benchmark::DoNotOptimize(LayerToolList(store, drill));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_LayerToolList)->Arg(100000)->Unit(benchmark::kMillisecond);

// A million items given the layer's colour, the clear ones kept.
void BM_RecolourLayerElements(benchmark::State& state) {
  Board board(int32_t(state.range(0)), false);
  int32_t colour = 0;
  for (auto _ : state) {
    board.layer.ColourNumber = 3 + (colour++ % 2);
    RecolourLayerElements(board.kernel.store, board.layer, 92);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_RecolourLayerElements)->Arg(1000000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tvx
