// The editor of function 1 on a layer of a million mixed elements: a click that picks and names
// an element, an undo copy pushed and popped, and a box delete of about 10,000 elements.
#include "kernel/Kernel.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"
#include "store/ColourSlots.h"
#include "store/Layers.h"
#include "viewer/ElementEditor.h"
#include "viewer/Redraw.h"
#include "viewer/ViewState.h"

#include <benchmark/benchmark.h>

#include <vector>

#include "MixedLayer.h"

namespace tvx {
namespace {

constexpr int32_t Board = 30000000;  // 300 mm square, as in bench_draw
constexpr int32_t Elements = 1000000;

// The editor over the mixed layer as layer 3, with no view device: what is timed is the store's
// work, not the redraw (bench_draw times that).
struct EditorWorld {
  EditorWorld() {
    bench::fillMixedLayer(kernel.store, Elements, Board);
    tables.CurrentLayer = 3;
    tables.layer(3).SymbolHandle = bench::Layer;
    tables.layer(3).Mask = 4;
    view.PickDistance = 10000;
  }
  Kernel kernel;
  ScriptedPrompts prompts;
  SystemServices services{&prompts};
  ColourSlots colours;
  LayerTables tables;
  ViewState view{kernel.graphics, services};
  ViewRedraw redraw{kernel, services, prompts, view, tables, colours};
  ElementEditor editor{kernel.store, services, tables, view, redraw};
};

void BM_PickAndDescribe(benchmark::State& state) {
  EditorWorld w;
  ItemRecord first;
  w.kernel.store.I_ReadItem(w.kernel.store.S_SymbolItem(bench::Layer, 1), first);
  w.editor.Inspect(first.X, first.Y);  // the layer's spatial index is made at the first pick
  for (auto _ : state) {
    w.editor.Inspect(first.X, first.Y);
    benchmark::DoNotOptimize(w.redraw.HLDCode);
  }
}
BENCHMARK(BM_PickAndDescribe)->Unit(benchmark::kMicrosecond);

// A push onto a stack of the given depth, then the pop that takes it off again.
void BM_UndoPush(benchmark::State& state) {
  EditorWorld w;
  for (int64_t i = 0; i < state.range(0); ++i)
    w.editor.DoUndo(bench::Layer, undomode::Push);
  for (auto _ : state) {
    w.editor.DoUndo(bench::Layer, undomode::Push);
    state.PauseTiming();
    w.editor.UndoDepth = int32_t(state.range(0));
    state.ResumeTiming();
  }
}
BENCHMARK(BM_UndoPush)->Arg(0)->Arg(5)->Unit(benchmark::kMillisecond);

void BM_UndoPop(benchmark::State& state) {
  EditorWorld w;
  for (auto _ : state) {
    state.PauseTiming();
    w.editor.DoUndo(bench::Layer, undomode::Push);
    state.ResumeTiming();
    w.editor.DoUndo(bench::Layer, undomode::Pop);
  }
}
BENCHMARK(BM_UndoPop)->Unit(benchmark::kMillisecond);

// The spatial index of the layer, as a layer that is drawn has it.
void indexLayer(EditorWorld& w) {
  std::vector<int32_t> positions;
  w.kernel.store.membersInBox(w.kernel.store.S_SymbolItemArray(bench::Layer), {0, 0, 1, 1},
                              positions);
}

// A box of 1% of the board holds about 10,000 elements; each round deletes them and the undo
// brings them back untimed.
void BM_BoxDelete(benchmark::State& state) {
  EditorWorld w;
  const FrameRect box{0, 0, Board / 10, Board / 10};
  int64_t deleted = 0;
  indexLayer(w);
  for (auto _ : state) {
    const int32_t before =
        w.kernel.store.OA_GetCount(w.kernel.store.S_SymbolItemArray(bench::Layer));
    w.editor.DeleteInBox(bench::Layer, box);
    state.PauseTiming();
    deleted = before - w.kernel.store.OA_GetCount(w.kernel.store.S_SymbolItemArray(bench::Layer));
    w.editor.DoUndo(bench::Layer, undomode::Pop);
    indexLayer(w);
    state.ResumeTiming();
  }
  state.counters["deleted"] = double(deleted);
}
BENCHMARK(BM_BoxDelete)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tvx
