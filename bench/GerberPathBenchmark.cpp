// The whole road of a large RS-274-X copper layer: recognition, text pass and drawing pass (all in
// ImportSession::importFile), then one redraw of the layer at fit on a 1920 x 1080 offscreen
// picture. The file is generated once per size into a temporary folder: a grid of tiles, each with
// pads of several apertures (round, square, oval, polygon, two macros), tracks, arcs, and a small
// pour with clear cut-outs. Sizes: 20 MB, and 100 MB, which runs only when asked for by name
// (--benchmark_filter=100MB).
#include "import/readers/ImportSession.h"
#include "import/readers/WindowlessLayers.h"
#include "kernel/Kernel.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"
#include "store/ColourSlots.h"
#include "store/LayerDrawing.h"
#include "store/Layers.h"

#include <QGuiApplication>
#include <QImage>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

#include "BenchRunner.h"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace tvx {
namespace {

constexpr double TilePitchMm = 8.0;
constexpr int32_t CopperLayer = 3;

// Appends one block with coordinates in millimetres, format 4.6.
void put(std::string& out, const char* code, double x, double y) {
  char text[64];
  std::snprintf(text, sizeof text, "%sX%lldY%lld", code, std::llround(x * 1e6),
                std::llround(y * 1e6));
  out += text;
}

void flash(std::string& out, double x, double y) {
  put(out, "", x, y);
  out += "D03*\n";
}
void moveTo(std::string& out, double x, double y) {
  put(out, "", x, y);
  out += "D02*\n";
}
void lineTo(std::string& out, double x, double y) {
  put(out, "G01", x, y);
  out += "D01*\n";
}
// An arc to (x, y) about the centre at offset (i, j) from the point where the pen stands.
void arcTo(std::string& out, bool ccw, double x, double y, double i, double j) {
  put(out, ccw ? "G03" : "G02", x, y);
  char text[64];
  std::snprintf(text, sizeof text, "I%lldJ%lldD01*\n", std::llround(i * 1e6),
                std::llround(j * 1e6));
  out += text;
}

// One 8 x 8 mm tile with its lower left corner at (x, y). Apertures: D10 round pad, D11 square,
// D12 oval, D13 hexagon, D14 thermal macro, D15 rounded-rectangle macro, D16 clearance circle,
// D20 thin track, D21 wide track, D22 clearance track.
void tile(std::string& out, double x, double y, int n) {
  // A pour in the upper part of the tile, its corner rounded by an arc, then its cut-outs.
  out += "G36*\n";
  moveTo(out, x + 0.5, y + 5.0);
  lineTo(out, x + 7.0, y + 5.0);
  arcTo(out, true, x + 7.5, y + 5.5, 0.0, 0.5);
  lineTo(out, x + 7.5, y + 7.5);
  lineTo(out, x + 0.5, y + 7.5);
  lineTo(out, x + 0.5, y + 5.0);
  out += "G37*\n%LPC*%\nD16*\n";
  for (int k = 0; k < 4; ++k)
    flash(out, x + 1.5 + 1.6 * k, y + 6.25);
  out += "D22*\n";
  moveTo(out, x + 0.5, y + 5.6);
  lineTo(out, x + 7.5, y + 5.6);
  out += "%LPD*%\nD14*\n";
  for (int k = 0; k < 4; ++k)
    flash(out, x + 1.5 + 1.6 * k, y + 6.25);

  // Two rows of pads, the aperture changing along the row.
  static const char* const Pads[] = {"D10*\n", "D11*\n", "D12*\n", "D13*\n", "D15*\n"};
  for (int row = 0; row < 2; ++row) {
    for (int k = 0; k < 5; ++k) {
      out += Pads[(k + row + n) % 5];
      flash(out, x + 0.8 + 1.5 * k, y + 0.8 + 2.6 * row);
    }
  }
  // Tracks between the rows, a dog-leg and arcs.
  out += "D20*\n";
  for (int k = 0; k < 5; ++k) {
    moveTo(out, x + 0.8 + 1.5 * k, y + 0.8);
    lineTo(out, x + 0.8 + 1.5 * k, y + 1.6);
    lineTo(out, x + 1.2 + 1.5 * k, y + 2.0);
    lineTo(out, x + 1.2 + 1.5 * k, y + 3.0);
  }
  moveTo(out, x + 0.3, y + 4.2);
  arcTo(out, true, x + 1.3, y + 4.2, 0.5, 0.0);
  arcTo(out, false, x + 2.3, y + 4.2, 0.5, 0.0);
  arcTo(out, true, x + 3.3, y + 4.2, 0.5, 0.0);
  out += "D21*\n";
  moveTo(out, x + 3.8, y + 4.4);
  lineTo(out, x + 7.6, y + 4.4);
  lineTo(out, x + 7.6, y + 0.4);
}

std::string header() {
  return "G04 generated copper layer for the path benchmark*\n"
         "%FSLAX46Y46*%\n%MOMM*%\n%LPD*%\n"
         "%AMTHERM*7,0,0,$1,$2,$3,0*%\n"
         "%AMRNDRECT*21,1,$1,$2,0,0,0*1,1,$3,$4,0*1,1,$3,-$4,0*%\n"
         "%ADD10C,0.9*%\n%ADD11R,0.9X0.9*%\n%ADD12O,0.8X1.2*%\n%ADD13P,1.0X6X30*%\n"
         "%ADD14THERM,1.4X1.0X0.25*%\n%ADD15RNDRECT,0.9X0.6X0.6X0.15*%\n%ADD16C,1.4*%\n"
         "%ADD20C,0.15*%\n%ADD21C,0.4*%\n%ADD22C,0.5*%\n"
         "G75*\n";
}

// Writes a file of about megabytes MB; its path, empty on failure.
std::string generatedFile(int megabytes) {
  static QTemporaryDir folder;
  static std::map<int, std::string> made;
  if (auto it = made.find(megabytes); it != made.end())
    return it->second;
  if (!folder.isValid())
    return {};
  std::string sample;
  tile(sample, 0, 0, 0);
  const double target = megabytes * 1e6;
  const int tiles = int(std::ceil(target / double(sample.size())));
  const int columns = int(std::ceil(std::sqrt(double(tiles))));
  const double origin = -columns * TilePitchMm / 2;  // centred on the world's origin
  const std::string path = folder.filePath(QString("copper-%1MB.gbr").arg(megabytes)).toStdString();
  std::ofstream file(path, std::ios::binary);
  file << header();
  std::string block;
  for (int n = 0; n < tiles; ++n) {
    block.clear();
    tile(block, origin + (n % columns) * TilePitchMm, origin + (n / columns) * TilePitchMm, n);
    file << block;
  }
  file << "M02*\n";
  if (!file)
    return {};
  made[megabytes] = path;
  return path;
}

QGuiApplication& application() {
  static int argc = 1;
  static char name[] = "bench_gerber_path";
  static char* argv[] = {name, nullptr};
  static QGuiApplication app(argc, argv);
  return app;
}

void runGerberPath(benchmark::State& state, int megabytes) {
  application();
  const std::string path = generatedFile(megabytes);
  if (path.empty()) {
    state.SkipWithError("the generated file could not be written");
    return;
  }
  double importSeconds = 0, drawSeconds = 0, longestPause = 0;
  int64_t items = 0;
  for (auto _ : state) {
    ScriptedPrompts prompts;
    SystemServices services(&prompts);
    WindowlessLayers run(services, prompts);
    Kernel* kernel = run.kernel.get();
    LayerTables* tables = run.tables.get();

    const auto start = std::chrono::steady_clock::now();
    ImportOptions options;
    options.layer = CopperLayer;
    // The longest time between two yields to the event loop: how long the window stops
    // answering during the import.
    auto lastYield = start;
    auto notePause = [&] {
      const auto now = std::chrono::steady_clock::now();
      longestPause = std::max(longestPause, std::chrono::duration<double>(now - lastYield).count());
      lastYield = now;
    };
    options.yield = notePause;
    const ImportResult result = run.session->importFile(run.layers(), path, options);
    notePause();
    const auto imported = std::chrono::steady_clock::now();
    if (result.status != 0) {
      state.SkipWithError("the import failed");
      return;
    }

    // Redraw at fit: the frame of the layers in a 1920 x 1080 view.
    FrameRect frame;
    FrameLayers(kernel->store, tables->Layers, frame);
    QImage image(1920, 1080, QImage::Format_RGB32);
    Graphics& graphics = kernel->graphics;
    const int32_t dev = graphics.G_GetDC(&image);
    ViewSetup view;
    const double spanX = double(frame.MaxX) - frame.MinX, spanY = double(frame.MaxY) - frame.MinY;
    view.Scale = int32_t(std::max(1.0, std::ceil(std::max(spanX / 1900, spanY / 1060))));
    view.Width = 1920;
    view.Height = 1080;
    view.OriginX = int32_t((double(frame.MinX) + frame.MaxX) / 2);
    view.OriginY = int32_t((double(frame.MinY) + frame.MaxY) / 2);
    view.Mode = drawmode::Normal;
    graphics.G_OpenDC(dev, view, drawmode::Normal);
    graphics.G_CreateShadowBitmap(dev);
    LayerDrawContext context(graphics, kernel->store);
    context.clearColour = run.colours.ClearColour();
    std::vector<LayerOrderRow> order(tables->LayerOrder.begin(), tables->LayerOrder.end());
    for (LayerOrderRow& row : order)
      row.Visible = row.LayerNumber == result.layer;
    DrawLayers(context, dev, drawmode::Normal, order, tables->Layers);
    graphics.G_CloseDC(dev, 1);
    graphics.G_DeleteDC(dev);
    const auto drawn = std::chrono::steady_clock::now();

    importSeconds += std::chrono::duration<double>(imported - start).count();
    drawSeconds += std::chrono::duration<double>(drawn - imported).count();
    items = kernel->store.OA_GetCount(
        kernel->store.S_SymbolItemArray(tables->layer(result.layer).SymbolHandle));
    state.PauseTiming();  // the store's teardown is not part of the path
    run.kernel.reset();
    state.ResumeTiming();
  }
  const double runs = double(state.iterations());
  state.counters["import_s"] = importSeconds / runs;
  state.counters["redraw_s"] = drawSeconds / runs;
  state.counters["longest_import_pause_s"] = longestPause;
  state.counters["items"] = double(items);
  state.SetBytesProcessed(int64_t(runs) * int64_t(megabytes) * 1000000);
}

void BM_GerberPath20MB(benchmark::State& state) { runGerberPath(state, 20); }
BENCHMARK(BM_GerberPath20MB)->Iterations(3)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_GerberPath100MB(benchmark::State& state) { runGerberPath(state, 100); }
BENCHMARK(BM_GerberPath100MB)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
}  // namespace tvx

// The 100 MB run is left out unless a filter is given.
int main(int argc, char** argv) { return bench::runBenchmarks(argc, argv, "-100MB"); }
