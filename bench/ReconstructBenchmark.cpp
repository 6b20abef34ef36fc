// The sorting into board categories of a large board: pads flashed on both copper sides with a
// pad position each, a drill hit on every pad, trace segments, pours and mask openings. The
// argument is the board's scale: 1 for 100,000 pads, 100,000 holes, 500,000 traces, pours of
// 100,000 sides and 100,000 mask flashes; 2 for twice each.
#include "kernel/Kernel.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"
#include "reconstruct/Reconstruction.h"
#include "store/ColourSlots.h"
#include "store/Layers.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <random>

namespace tvx {
namespace {

constexpr int32_t Pitch = 127000;  // 1.27 mm between pads

struct LargeBoard {
  explicit LargeBoard(int scale) : services(&prompts) {
    colours.build(kernel.strings);
    BuildLayerTables(kernel.store, services, colours, false, tables);
    Store& store = kernel.store;
    const int32_t pads = 100000 * scale;
    const int32_t side = int32_t(std::ceil(std::sqrt(double(pads))));
    const auto padStack = [&](int32_t layer, int32_t code, int32_t hole) {
      const ObjectHandle stack = store.S_MakePadStack();
      store.OM_Add(store.S_SymbolPadStackMap(tables.layer(layer).SymbolHandle), stack, code);
      store.S_ChangePadStackHole(stack, hole, 0);
    };
    for (const int32_t layer : {3, 4})
      padStack(layer, 10, 0);
    padStack(31, 1, 80000);
    const auto add = [&](int32_t layer, const ItemRecord& item) {
      store.OA_AddNewItem(store.S_SymbolItemArray(tables.layer(layer).SymbolHandle), item);
    };
    ItemRecord flash;
    flash.Type = ItemCircle;
    flash.Attributes = attr::Shown | attr::Flashed;
    flash.Width = 40000;
    flash.Style = StyleFilled;
    flash.Link = 10;
    for (int32_t n = 0; n < pads; ++n) {
      const int32_t x = (n % side) * Pitch, y = (n / side) * Pitch;
      for (const int32_t layer : {3, 4, 31}) {
        const SymbolId symbol = tables.layer(layer).SymbolHandle;
        store.S_ChangePadPadStack(symbol, store.S_InsertEntry(symbol, -1, x, y),
                                  layer == 31 ? 1 : 10);
      }
      flash.X = x;
      flash.Y = y;
      for (const int32_t layer : {2, 3, 4})
        add(layer, flash);
    }
    std::mt19937 random(1);
    std::uniform_int_distribution<int32_t> place(0, side * Pitch);
    ItemRecord trace;
    trace.Type = ItemLine;
    trace.Attributes = attr::Shown;
    trace.LineWidth = 25400;
    for (int32_t n = 0; n < 500000 * scale; ++n) {
      trace.X = place(random);
      trace.Y = place(random);
      trace.Width = 200000;
      add(n % 2 ? 3 : 4, trace);
    }
    ItemRecord pour = trace;
    pour.Attributes = attr::Shown | attr::PolygonSide;
    for (int32_t n = 0; n < 100000 * scale; ++n) {
      pour.X = place(random);
      pour.Y = place(random);
      add(3, pour);
    }
  }

  Kernel kernel;
  ScriptedPrompts prompts;
  SystemServices services;
  ColourSlots colours;
  LayerTables tables;
  ReconstructionState state;
};

void BM_RunReconstruction(benchmark::State& state) {
  LargeBoard board(int(state.range(0)));
  for (auto _ : state) {
    Reconstruction reconstruction(board.kernel.store, board.tables.Layers,
                                  board.colours.ClearColour(), &board.services, board.prompts,
                                  board.state);
    benchmark::DoNotOptimize(reconstruction.RunReconstruction());
  }
  state.counters["thru_pads"] = board.state.Report.Counts[3].second;
  state.counters["holes_matched"] = board.state.Report.HolesMatched;
}
BENCHMARK(BM_RunReconstruction)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace
}  // namespace tvx
