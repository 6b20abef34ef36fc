// A layer of a million mixed elements mirrored about its centre in place, as the layer menu's
// mirror does: once on a layer never searched, once on a layer whose spatial index exists (a
// drawn and picked layer), which every change keeps up to date.
#include "kernel/Store.h"
#include "viewer/BlockTransform.h"

#include <benchmark/benchmark.h>

#include <vector>

#include "MixedLayer.h"

namespace tvx {
namespace {

constexpr int32_t Board = 30000000;  // 300 mm square, as in bench_draw

void BM_MirrorLayer(benchmark::State& state) {
  Store store;
  bench::fillMixedLayer(store, int(state.range(0)), Board);
  const ArrayHandle items = store.S_SymbolItemArray(bench::Layer);
  if (state.range(1) != 0) {
    std::vector<int32_t> positions;
    store.membersInBox(items, FrameRect{0, 0, 100000, 100000}, positions);
  }
  FrameRect frame;
  store.S_FrameSymbolItems(bench::Layer, -1, frame);
  int32_t index = 0;
  for (auto _ : state) {
    bool moved = FlipLayer(store, bench::Layer, frame, index);
    benchmark::DoNotOptimize(moved);
    index ^= 1;
  }
  state.counters["items"] = double(store.OA_GetCount(items));
  state.SetItemsProcessed(state.iterations() * store.OA_GetCount(items));
}
BENCHMARK(BM_MirrorLayer)->Args({1000000, 0})->Args({1000000, 1})->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tvx
