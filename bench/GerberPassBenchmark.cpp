// The Gerber text pass over files of 100 MB on disk: copper with draws, flashes and arcs over many
// apertures, and a file of regions. Reports the throughput, the records written and the growth of
// the process's peak memory during the pass, which must not follow the file's size.
#include "BenchRunner.h"
#include "common/FileLayer.h"
#include "import/core/ReportStatus.h"
#include "import/gerber/GerberTextPass.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

namespace tvx {
namespace {

constexpr std::size_t Size = 100 * 1024 * 1024;

// Made once and never destroyed, so that the clean-up at exit still finds it.
const std::filesystem::path& workDirectory() {
  static const auto* dir = [] {
    std::string pattern = (std::filesystem::temp_directory_path() / "tvx-bench-XXXXXX").string();
    return new std::filesystem::path(mkdtemp(pattern.data()));
  }();
  return *dir;
}

// Writes a file of about Size bytes: a header, then blocks from makeBlock until the size is
// reached. The text never stands in memory whole.
template <typename MakeBlock>
std::string writeFile(const std::string& name, const std::string& header, MakeBlock makeBlock) {
  const std::string path = (workDirectory() / name).string();
  std::ofstream out(path, std::ios::binary);
  out << header;
  std::size_t written = header.size();
  std::string buffer;
  std::mt19937 rng(7);
  while (written < Size) {
    buffer.clear();
    while (buffer.size() < (1 << 20))
      makeBlock(rng, buffer);
    out << buffer;
    written += buffer.size();
  }
  out << "M02*\r\n";
  return path;
}

// Copper: 200 apertures (round, square, oval, a macro), a select every few blocks, draws, moves,
// flashes and arcs with full coordinates.
const std::string& copperFile() {
  static const std::string path = [] {
    std::string header =
        "G04 copper*\r\n%FSLAX24Y24*%\r\n%MOIN*%\r\n%AMDONUT*1,1,$1,0,0*1,0,$2,0,0*%\r\n";
    for (int d = 10; d < 210; ++d) {
      const char* shape = d % 4 == 0   ? "C,0.0100"
                          : d % 4 == 1 ? "R,0.0600X0.0600"
                          : d % 4 == 2 ? "O,0.0600X0.0400"
                                       : "DONUT,0.0800X0.0400";
      header += "%ADD" + std::to_string(d) + shape + "*%\r\n";
    }
    return writeFile("copper.gbr", header, [](std::mt19937& rng, std::string& text) {
      std::uniform_int_distribution<int> coordinate(0, 99999), aperture(10, 209), kind(0, 19);
      char block[96];
      const int k = kind(rng);
      if (k == 0)
        std::snprintf(block, sizeof block, "D%d*\r\n", aperture(rng));
      else if (k < 4)
        std::snprintf(block, sizeof block, "X%dY%dD03*\r\n", coordinate(rng), coordinate(rng));
      else if (k < 6)
        std::snprintf(block, sizeof block, "G75*G03X%dY%dI%dJ%dD01*\r\n", coordinate(rng),
                      coordinate(rng), coordinate(rng) / 10, coordinate(rng) / 10);
      else if (k < 9)
        std::snprintf(block, sizeof block, "G01X%dY%dD02*\r\n", coordinate(rng), coordinate(rng));
      else
        std::snprintf(block, sizeof block, "X%dY%dD01*\r\n", coordinate(rng), coordinate(rng));
      text += block;
    });
  }();
  return path;
}

// Regions: polygons of straight and arc sides, as copper pours come.
const std::string& regionFile() {
  static const std::string path = [] {
    return writeFile(
        "regions.gbr", "%FSLAX46Y46*%\r\n%MOMM*%\r\n%LPD*%\r\n%ADD10C,0.1*%\r\nD10*\r\n",
        [](std::mt19937& rng, std::string& text) {
          std::uniform_int_distribution<int> coordinate(0, 99999999);
          char block[96];
          text += "G36*\r\n";
          std::snprintf(block, sizeof block, "X%dY%dD02*\r\n", coordinate(rng), coordinate(rng));
          text += block;
          for (int side = 0; side < 40; ++side) {
            std::snprintf(block, sizeof block,
                          side % 8 == 7 ? "G03X%dY%dI1000J0D01*\r\nG01*\r\n" : "X%dY%dD01*\r\n",
                          coordinate(rng), coordinate(rng));
            text += block;
          }
          text += "G37*\r\n";
        });
  }();
  return path;
}

void runPass(benchmark::State& state, const std::string& source) {
  ScriptedPrompts prompts;
  SystemServices services(&prompts);
  StatusTitles titles{"Bench", ""};
  FormatDigits digits;
  StatusReporter reporter(services, prompts, titles, digits);
  FileLayer files(services, &prompts);
  GerberFormat format;
  GerberScan scan;
  int yields = 0;
  const std::string art = (workDirectory() / "TMP.ART").string();
  GerberPassContext context{
      services, reporter, files, format, scan, nullptr, {}, {}, [&yields] { ++yields; }};
  const long peakBefore = bench::residentKilobytes("VmHWM:");
  int32_t status = 0;
  for (auto _ : state) {
    format = GerberFormat{};
    RunGerberTextPass(status, source, art, context);
    if (status != 0)
      state.SkipWithError("the pass failed");
  }
  const auto bytes = static_cast<int64_t>(std::filesystem::file_size(source));
  state.SetBytesProcessed(bytes * static_cast<int64_t>(state.iterations()));
  state.counters["records"] = scan.StreamRecords;
  state.counters["art_MB"] = double(std::filesystem::file_size(art)) / (1 << 20);
  state.counters["peak_rss_MB"] = double(bench::residentKilobytes("VmHWM:")) / 1024;
  state.counters["peak_rss_growth_MB"] =
      double(bench::residentKilobytes("VmHWM:") - peakBefore) / 1024;
  state.counters["yields_per_pass"] = double(yields) / double(state.iterations());
}

void BM_GerberPassCopper(benchmark::State& state) { runPass(state, copperFile()); }
BENCHMARK(BM_GerberPassCopper)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_GerberPassRegions(benchmark::State& state) { runPass(state, regionFile()); }
BENCHMARK(BM_GerberPassRegions)->Unit(benchmark::kMillisecond)->Iterations(3);

struct Cleanup {
  ~Cleanup() {
    std::error_code ec;
    std::filesystem::remove_all(workDirectory(), ec);
  }
} cleanup;

}  // namespace
}  // namespace tvx
