// The store on a board of a million elements: building, walking, framing and picking.
#include "kernel/Store.h"

#include <benchmark/benchmark.h>

#include "MixedLayer.h"

#include <random>
#include <vector>

namespace tvx {
namespace {

using bench::Layer;
constexpr int32_t Board = 30000000;  // 300 mm square

void fill(Store& s, int count) { bench::fillMixedLayer(s, count, Board); }

void BM_Build(benchmark::State& state) {
  for (auto _ : state) {
    Store s;
    fill(s, int(state.range(0)));
    benchmark::DoNotOptimize(s.OA_GetCount(s.S_SymbolItemArray(Layer)));
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_Build)->Arg(1000000)->Unit(benchmark::kMillisecond)->Iterations(1);

// The spatial index of a layer made at once, as the first partial view or pick after an import
// makes it.
void BM_IndexBuild(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    Store s;
    fill(s, int(state.range(0)));
    std::vector<int32_t> found;
    state.ResumeTiming();
    s.membersInBox(s.S_SymbolItemArray(Layer), FrameRect{0, 0, 1, 1}, found);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_IndexBuild)->Arg(1000000)->Unit(benchmark::kMillisecond)->Iterations(2);

struct Board1M {
  Store store;
  Board1M() { fill(store, 1000000); }
};
Board1M& board() {
  static Board1M b;
  return b;
}

// The walk the layers do: the array fetched anew for each element, as callers do.
void BM_Walk(benchmark::State& state) {
  Store& s = board().store;
  int64_t sum = 0;
  for (auto _ : state) {
    int32_t n = s.OA_GetCount(s.S_SymbolItemArray(Layer));
    ItemRecord r;
    for (int32_t i = 1; i <= n; ++i) {
      s.I_ReadItem(s.OA_Object(s.S_SymbolItemArray(Layer), i), r);
      sum += r.X;
    }
  }
  benchmark::DoNotOptimize(sum);
  state.SetItemsProcessed(state.iterations() * 1000000);
}
BENCHMARK(BM_Walk)->Unit(benchmark::kMillisecond);

// A full frame after a change (no cache), and a repeated frame (cached).
void BM_FrameAfterChange(benchmark::State& state) {
  Store& s = board().store;
  FrameRect f;
  ObjectHandle first = s.S_SymbolItem(Layer, 1);
  for (auto _ : state) {
    s.O_Mask(first, attr::Shown, attr::Shown);
    s.S_FrameSymbolItems(Layer, -1, f);
  }
  benchmark::DoNotOptimize(f);
}
BENCHMARK(BM_FrameAfterChange)->Unit(benchmark::kMillisecond);

void BM_FrameCached(benchmark::State& state) {
  Store& s = board().store;
  FrameRect f;
  for (auto _ : state)
    s.S_FrameSymbolItems(Layer, -1, f);
  benchmark::DoNotOptimize(f);
}
BENCHMARK(BM_FrameCached);

// Picks at 1000 points with a pick tolerance of 0.2 mm; the first pick builds the index.
void BM_Pick(benchmark::State& state) {
  Store& s = board().store;
  ArrayHandle a = s.S_SymbolItemArray(Layer);
  s.OA_Cover(a, 1, 0, 0, 20000, 0);
  std::mt19937 rng(2);
  std::uniform_int_distribution<int32_t> pos(0, Board);
  std::vector<std::pair<int32_t, int32_t>> points(1000);
  for (auto& p : points)
    p = {pos(rng), pos(rng)};
  int64_t hits = 0;
  for (auto _ : state)
    for (auto [x, y] : points)
      hits += s.OA_Cover(a, 1, x, y, 20000, 0) != 0;
  benchmark::DoNotOptimize(hits);
  state.SetItemsProcessed(state.iterations() * 1000);
  state.counters["hit_ratio"] = double(hits) / double(state.iterations() * 1000);
}
BENCHMARK(BM_Pick)->Unit(benchmark::kMillisecond);

// Drill import: test each hole's point against the entries so far, then add it. With hugePad,
// the last 5% of the holes use a pad stack of a 2.5 m hole (an absurd tool size in a file), which
// must not slow down the searches of all other holes.
void placeHoles(benchmark::State& state, bool hugePad) {
  for (auto _ : state) {
    Store s;
    s.S_CreateSymbol(-76531, "drill");
    ArrayHandle entries = s.S_SymbolEntryArray(-76531);
    for (int32_t key = 1; key <= 2; ++key) {
      ObjectHandle pad = s.S_MakePadStack();
      s.S_ChangePadStackHole(pad, key == 2 && hugePad ? 254000000 : 80000, 1);
      s.OM_Add(s.S_SymbolPadStackMap(-76531), pad, key);
    }
    std::mt19937 rng(3);
    std::uniform_int_distribution<int32_t> pos(0, Board / 100);
    int count = int(state.range(0));
    for (int i = 0; i < count; ++i) {
      int32_t x = pos(rng) * 100, y = pos(rng) * 100;
      if (s.OA_Cover(entries, 1, x, y, 1, 15))
        continue;
      int32_t e = s.S_InsertEntry(-76531, -1, x, y);
      s.S_ChangePadPadStack(-76531, e, i >= count / 20 * 19 ? 2 : 1);
    }
    benchmark::DoNotOptimize(s.OA_GetCount(entries));
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_DrillPlacement(benchmark::State& state) { placeHoles(state, false); }
BENCHMARK(BM_DrillPlacement)->Arg(100000)->Unit(benchmark::kMillisecond);

void BM_DrillPlacementWithHugePad(benchmark::State& state) { placeHoles(state, true); }
BENCHMARK(BM_DrillPlacementWithHugePad)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tvx
