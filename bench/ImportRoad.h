// The road of one file from its path to its layer, timed as the user meets it: a fresh windowless
// viewer per iteration, made and dropped outside the timing.
#pragma once

#include "import/readers/WindowlessLayers.h"
#include "kernel/Store.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"

#include <benchmark/benchmark.h>

#include <functional>
#include <string>

namespace tvx {

// check looks at each import's outcome and the store it filled: an empty text when it is right,
// else why not, which ends the benchmark with that error.
using ImportRoadCheck =
    std::function<std::string(const ImportResult&, const Store&, const LayerTables&)>;

inline void timeImportRoad(benchmark::State& state, const std::string& path,
                           const ImportRoadCheck& check) {
  for (auto _ : state) {
    state.PauseTiming();
    ScriptedPrompts prompts;
    SystemServices services(&prompts);
    WindowlessLayers run(services, prompts);
    state.ResumeTiming();
    const ImportResult result = run.session->importFile(run.layers(), path, ImportOptions{});
    benchmark::DoNotOptimize(result.status);
    state.PauseTiming();
    const std::string error = check(result, run.kernel->store, *run.tables);
    if (!error.empty()) {
      state.SkipWithError(error.c_str());
      break;
    }
    run = WindowlessLayers(services, prompts);  // the store goes outside the timing
    state.ResumeTiming();
  }
}

}  // namespace tvx
