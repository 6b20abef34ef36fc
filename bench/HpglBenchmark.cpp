// A generated plotter file of about 20 MB (1.5 million pen-down pairs, with arcs, circles and
// rectangles among them): the two walks over its text, and the whole road from its path to the
// board outline layer, centring included.
#include "bench/ImportRoad.h"
#include "import/readers/WindowlessLayers.h"
#include "import/readers/hpgl/HpglInterpreter.h"
#include "kernel/Store.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"

#include <QTemporaryDir>
#include <benchmark/benchmark.h>

#include <fstream>
#include <random>
#include <string>

namespace tvx {
namespace {

const std::string& plotText() {
  static const std::string text = [] {
    std::string t = "IN;IP0,0,40000,40000;SC0,10000,0,10000;WU0;PW0.15,1;SP1;";
    std::mt19937 rng(7);
    std::uniform_int_distribution<int> pos(0, 10000);
    for (int i = 0; i < 178000; ++i) {
      t += "PU" + std::to_string(pos(rng)) + "," + std::to_string(pos(rng)) + ";PD";
      for (int pair = 0; pair < 10; ++pair)
        t += std::to_string(pos(rng)) + "," + std::to_string(pos(rng)) + (pair < 9 ? "," : ";");
      if (i % 20 == 0)
        t += "AA" + std::to_string(pos(rng)) + "," + std::to_string(pos(rng)) + ",45;";
      if (i % 25 == 0)
        t += "CI" + std::to_string(pos(rng) / 50) + ";";
      if (i % 40 == 0)
        t += "ER" + std::to_string(pos(rng) / 20) + "," + std::to_string(pos(rng) / 20) + ";";
    }
    return t;
  }();
  return text;
}

void BM_HpglTwoWalks(benchmark::State& state) {
  const std::string& text = plotText();
  for (auto _ : state) {
    state.PauseTiming();
    Store store;
    const SymbolId symbol = -76531;
    store.S_CreateSymbol(symbol, "OUTLINE");
    HpglInterpreter interpreter(store, symbol, 7);
    state.ResumeTiming();
    interpreter.run(text);
    benchmark::DoNotOptimize(interpreter.counts.lines);
  }
  state.counters["MB"] = double(text.size()) / 1e6;
}
BENCHMARK(BM_HpglTwoWalks)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_HpglFromPathToLayer(benchmark::State& state) {
  QTemporaryDir folder;
  const std::string path = folder.filePath("board.plt").toStdString();
  std::ofstream(path, std::ios::binary) << plotText();
  timeImportRoad(
      state, path,
      [&state](const ImportResult& result, const Store& store, const LayerTables& tables) {
        state.counters["items"] = store.OA_GetCount(
            store.S_SymbolItemArray(tables.layer(BoardOutlineLayer).SymbolHandle));
        state.counters["status"] = result.status;
        return std::string();
      });
}
BENCHMARK(BM_HpglFromPathToLayer)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace
}  // namespace tvx
