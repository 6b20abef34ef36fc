// One step of a rubber box over a 1920 x 1080 view of a layer of a million elements: the last box
// erased and the new one drawn by exclusive-or, the touched area handed on for repainting. The
// layer is drawn once before; a step must not depend on what it holds.
#include "kernel/Kernel.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"
#include "store/ColourSlots.h"
#include "store/Layers.h"
#include "viewer/PointerTools.h"

#include <QGuiApplication>
#include <QImage>
#include <benchmark/benchmark.h>

#include "MixedLayer.h"

namespace tvx {
namespace {

constexpr int32_t Board = 30000000;  // 300 mm square, as in bench_draw

void BM_RubberBoxStep(benchmark::State& state) {
  static int argc = 1;
  static char name[] = "bench_pointer";
  static char* argv[] = {name, nullptr};
  static QGuiApplication app(argc, argv);
  static Kernel kernel;
  static const bool filled = (bench::fillMixedLayer(kernel.store, 1000000, Board), true);
  (void)filled;
  ScriptedPrompts prompts;
  SystemServices services(&prompts);
  LayerTables tables;
  ColourSlots colours;
  QImage image(1920, 1080, QImage::Format_RGB32);
  const int32_t dev = kernel.graphics.G_GetDC(&image);
  ViewState view(kernel.graphics, services);
  view.setDevice(dev);
  view.setPictureSize(1920, 1080);
  view.m_Precision = Board / 1000;
  view.ViewCenterX = Board / 2;
  view.ViewCenterY = -Board / 2;
  view.OpenView(1);
  kernel.graphics.G_SetDrawMode(dev, 4 | 64);
  kernel.graphics.S_DrawSymbol(dev, bench::Layer, 1, 1);
  kernel.graphics.G_CloseDC(dev, 1);

  ViewRedraw redraw(kernel, services, prompts, view, tables, colours);
  redraw.HighlightColour = 12;
  PointerTools tools(kernel.graphics, services, view, redraw);
  int64_t repainted = 0;
  tools.hooks.repaintArea = [&repainted](int32_t, int32_t, int32_t width, int32_t height) {
    repainted += int64_t(width) * height;
  };
  tools.armBlockZoom();
  tools.ViewPicture_MouseDown(mousebutton::Left, 0, 400, 300);
  tools.ViewPicture_MouseUp(mousebutton::Left, 0, 400, 300);
  int step = 0;
  for (auto _ : state) {
    ++step;
    tools.ViewPicture_MouseMove(0, shiftbit::Shift, 1200 + step % 200, 700 + step % 150);
  }
  state.counters["repainted_px_per_step"] =
      benchmark::Counter(double(repainted) / double(std::max(step, 1)));
  kernel.graphics.G_DeleteDC(dev);
}
BENCHMARK(BM_RubberBoxStep)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace tvx
