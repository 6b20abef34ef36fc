// File recognition on files of 100 MB: a whole Gerber file read from disk and classified, the
// classification alone, and texts that go through all four tests (plotter text, random bytes).
#include "common/FileLayer.h"
#include "import/core/FileRecognition.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

namespace tvx {
namespace {

constexpr std::size_t Size = 100 * 1024 * 1024;

// RS-274-X copper: a header, then draws and flashes with full coordinates.
std::string gerberText() {
  std::string text = "G04 copper layer*\r\n%FSLAX24Y24*%\r\n%MOIN*%\r\n%ADD10C,0.0100*%\r\n"
                     "%ADD11R,0.0600X0.0400*%\r\nD10*\r\n";
  text.reserve(Size + 64);
  std::mt19937 rng(1);
  std::uniform_int_distribution<int> coordinate(0, 999999);
  char block[64];
  for (int i = 0; text.size() < Size; ++i) {
    const char* code = i % 3 == 0 ? "D02" : i % 7 == 0 ? "D03" : "D01";
    std::snprintf(block, sizeof block, "X%06dY%06d%s*\r\n", coordinate(rng), coordinate(rng), code);
    text += block;
  }
  return text + "M02*\r\n";
}

// HPGL: recognised only by the last test, after every other test has searched the whole text.
std::string plotterText() {
  std::string text = "IN;SP1;";
  text.reserve(Size + 64);
  std::mt19937 rng(2);
  std::uniform_int_distribution<int> coordinate(0, 20000);
  char block[64];
  while (text.size() < Size) {
    std::snprintf(block, sizeof block, "PU%d,%d;PD%d,%d;\n", coordinate(rng), coordinate(rng),
                  coordinate(rng), coordinate(rng));
    text += block;
  }
  return text;
}

std::string randomBytes() {
  std::string text(Size, '\0');
  std::mt19937_64 rng(3);
  for (std::size_t i = 0; i + 8 <= text.size(); i += 8) {
    const uint64_t word = rng();
    std::memcpy(text.data() + i, &word, 8);
  }
  return text;
}

void classify(benchmark::State& state, const std::string& text, ImportKind expected) {
  for (auto _ : state) {
    YieldClock clock;
    const ImportKind kind = recogniseText(text, clock);
    if (kind != expected)
      state.SkipWithError("wrong kind");
    benchmark::DoNotOptimize(kind);
  }
  state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(text.size()));
}

void BM_ClassifyGerber(benchmark::State& state) {
  static const std::string text = gerberText();
  classify(state, text, ImportKind::ArtworkRS274X);
}
BENCHMARK(BM_ClassifyGerber)->Unit(benchmark::kMillisecond);

void BM_ClassifyPlotter(benchmark::State& state) {
  static const std::string text = plotterText();
  classify(state, text, ImportKind::Hpgl);
}
BENCHMARK(BM_ClassifyPlotter)->Unit(benchmark::kMillisecond);

void BM_ClassifyRandomBytes(benchmark::State& state) {
  static const std::string text = randomBytes();
  classify(state, text, ImportKind::Unknown);
}
BENCHMARK(BM_ClassifyRandomBytes)->Unit(benchmark::kMillisecond);

// The whole road of a chosen file: read once through the file layer, then classified, with a
// yield callback in place as the component has one.
void BM_RecogniseGerberFile(benchmark::State& state) {
  const std::string path =
      (std::filesystem::temp_directory_path() / "tvx-recognise-bench.gbr").string();
  {
    const std::string text = gerberText();
    std::ofstream(path, std::ios::binary).write(text.data(), std::streamsize(text.size()));
  }
  ScriptedPrompts prompts;
  SystemServices services(&prompts);
  FileLayer files(services, &prompts);
  FileRecogniser recogniser(files, services);
  int64_t yields = 0;
  recogniser.yield = [&] { ++yields; };
  for (auto _ : state) {
    const ImportKind kind = recogniser.RecogniseFile(path);
    if (kind != ImportKind::ArtworkRS274X)
      state.SkipWithError("wrong kind");
  }
  state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(std::filesystem::file_size(path)));
  state.counters["yields"] = benchmark::Counter(double(yields), benchmark::Counter::kAvgIterations);
  std::filesystem::remove(path);
}
BENCHMARK(BM_RecogniseGerberFile)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tvx
