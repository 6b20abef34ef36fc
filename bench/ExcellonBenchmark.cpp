// A drill file of 100,000 holes over 20 tools: reading it into blocks, the scan, the import of the
// holes into the drill layer, and the whole road from the path to the layer without a window.
#include "import/readers/ImportSession.h"
#include "kernel/Kernel.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"
#include "store/ColourSlots.h"
#include "store/Layers.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <unistd.h>
#include <vector>

namespace tvx {
namespace {

constexpr int Holes = 100'000;
constexpr int Tools = 20;

// Format Two, inches, 2.4 with trailing zeros kept. The holes stand on a 0.1 inch grid (wider than
// the largest tool) in random order, each tool drilling its share.
std::string drillText() {
  std::string text = "M48\r\n;DRILL FILE\r\nINCH,TZ\r\n";
  char line[64];
  for (int t = 1; t <= Tools; ++t) {
    std::snprintf(line, sizeof line, "T%02dC%.4f\r\n", t, 0.008 + 0.004 * t);
    text += line;
  }
  text += "%\r\nG05\r\nG90\r\n";
  std::vector<int> cells(Holes);
  for (int i = 0; i < Holes; ++i)
    cells[size_t(i)] = i;
  std::shuffle(cells.begin(), cells.end(), std::mt19937(7));
  constexpr int Columns = 317;
  for (int i = 0; i < Holes; ++i) {
    if (i % (Holes / Tools) == 0) {
      std::snprintf(line, sizeof line, "T%02d\r\n", i / (Holes / Tools) + 1);
      text += line;
    }
    const int cell = cells[size_t(i)];
    std::snprintf(line, sizeof line, "X%06dY%06d\r\n", (cell % Columns) * 1000 + 500,
                  (cell / Columns) * 1000 + 500);
    text += line;
  }
  return text + "T0\r\nM30\r\n";
}

// A component's import state, its layers and the drill file on disk.
struct Fixture {
  Fixture() {
    ColourSlots colours;
    colours.build(kernel.strings);
    BuildLayerTables(kernel.store, services, colours, false, tables);
    path = (std::filesystem::temp_directory_path() /
            ("tvx-bench-" + std::to_string(getpid()) + ".drl"))
               .string();
    std::ofstream(path, std::ios::binary) << drillText();
  }
  ~Fixture() { std::filesystem::remove(path); }

  ScriptedPrompts prompts;
  SystemServices services{&prompts};
  Kernel kernel;
  LayerTables tables;
  ImportSession session{kernel.store, services, prompts};
  std::string path;
};

Fixture& fixture() {
  static auto* f = new Fixture;
  return *f;
}

void BM_ReadExcellonText(benchmark::State& state) {
  Fixture& f = fixture();
  std::string text;
  for (auto _ : state) {
    ReadExcellonText(f.session.files, f.services, f.path, text);
    benchmark::DoNotOptimize(text.data());
  }
  state.SetBytesProcessed(int64_t(state.iterations()) *
                          int64_t(std::filesystem::file_size(f.path)));
}

void BM_ScanExcellonText(benchmark::State& state) {
  Fixture& f = fixture();
  std::string text;
  ReadExcellonText(f.session.files, f.services, f.path, text);
  std::vector<ToolEntry> tools;
  for (auto _ : state)
    benchmark::DoNotOptimize(f.session.excellon.ScanExcellonText(text, tools, true, false));
  state.SetItemsProcessed(int64_t(state.iterations()) * Holes);
}

// The import stage alone: the drill layer cleared, the import's scan, 100,000 pads placed.
void BM_ImportIntoDrillLayer(benchmark::State& state) {
  Fixture& f = fixture();
  if (f.session.importFile(f.tables.Layers, f.path).status != 0)
    state.SkipWithError("the drill file did not import");
  LayerRecord& drill = f.tables.layer(31);
  ImportSession& s = f.session;
  for (auto _ : state) {
    int32_t status = 0;
    ImportIntoLayer(status, drill, s.state, s.readers, s.store, s.reporter);
    benchmark::DoNotOptimize(status);
  }
  if (f.session.excellon.LastImport.Placed != Holes)
    state.SkipWithError("not every hole was placed");
  state.SetItemsProcessed(int64_t(state.iterations()) * Holes);
}

// What the user waits for: recognition, reading, both scans, binding and the import.
void BM_ImportWithoutWindow(benchmark::State& state) {
  Fixture& f = fixture();
  for (auto _ : state) {
    const ImportResult result = f.session.importFile(f.tables.Layers, f.path);
    if (result.status != 0)
      state.SkipWithError("the drill file did not import");
  }
  state.SetItemsProcessed(int64_t(state.iterations()) * Holes);
}

BENCHMARK(BM_ReadExcellonText)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ScanExcellonText)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ImportIntoDrillLayer)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ImportWithoutWindow)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tvx
