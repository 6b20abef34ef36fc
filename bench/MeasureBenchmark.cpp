// Measuring over a 1920 x 1080 view of a layer of a million elements: an idle pointer move (the
// panels and the ruler cursor), a step of the distance tool, and the whole ruler at every
// precision from 1 to 2540000 store units a pixel, with its origin near the view or far off in
// the world. None of them may depend on what the layer holds.
#include "kernel/Kernel.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"
#include "store/ColourSlots.h"
#include "store/Layers.h"
#include "viewer/ElementEditor.h"
#include "viewer/MeasureTools.h"
#include "viewer/Measuring.h"
#include "viewer/PointerTools.h"

#include <QGuiApplication>
#include <QImage>
#include <benchmark/benchmark.h>

#include <memory>

#include "MixedLayer.h"

namespace tvx {
namespace {

constexpr int32_t Board = 30000000;  // 300 mm square, as in bench_draw
constexpr int Width = 1920;
constexpr int Height = 1080;

// The layer drawn once into the view's picture; the models over it.
struct MeasureWorld {
  MeasureWorld() {
    static int argc = 1;
    static char name[] = "bench_measure";
    static char* argv[] = {name, nullptr};
    static QGuiApplication app(argc, argv);
    static const bool filled = (bench::fillMixedLayer(kernel().store, 1000000, Board), true);
    (void)filled;
    dev = kernel().graphics.G_GetDC(&image);
    view.setDevice(dev);
    view.setPictureSize(Width, Height);
    view.m_Precision = Board / 1000;
    view.ViewCenterX = Board / 2;
    view.ViewCenterY = -Board / 2;
    view.OpenView(1);
    kernel().graphics.G_SetDrawMode(dev, 4 | 64);
    kernel().graphics.S_DrawSymbol(dev, bench::Layer, 1, 1);
    kernel().graphics.G_CloseDC(dev, 1);
    tables.CurrentLayer = 3;
    tables.layer(3).SymbolHandle = bench::Layer;
    view.PickDistance = 10000;
    redraw.HighlightColour = 12;
    redraw.MarkerColour = 12;
  }
  ~MeasureWorld() { kernel().graphics.G_DeleteDC(dev); }
  static Kernel& kernel() {
    static Kernel k;
    return k;
  }

  QImage image{Width, Height, QImage::Format_RGB32};
  int32_t dev = 0;
  ScriptedPrompts prompts;
  SystemServices services{&prompts};
  LayerTables tables;
  ColourSlots colours;
  ViewState view{kernel().graphics, services};
  ViewRedraw redraw{kernel(), services, prompts, view, tables, colours};
  PointerTools tools{kernel().graphics, services, view, redraw};
  Measuring measuring{kernel().graphics, services, prompts, view, redraw, tools};
  ElementEditor editor{kernel().store, services, tables, view, redraw};
  MeasureTools measure{kernel().store, kernel().graphics, services, view, redraw, tables,
                       tools,          measuring,         editor};
};

// The world point of a pixel of the view.
std::pair<int32_t, int32_t> worldAt(const MeasureWorld& w, int px, int py) {
  int32_t x = Board / 2, y = Board / 2;
  w.view.pixelToWorld(px, py, x, y);
  return {x, y};
}

void BM_PointerMove(benchmark::State& state) {
  MeasureWorld w;
  w.view.RulerOn = true;
  w.measuring.MeasureMode = measuremode::BoardDatum;
  int step = 0;
  for (auto _ : state) {
    ++step;
    const auto [x, y] = worldAt(w, 300 + step % 900, 200 + step % 600);
    w.measuring.pointerMoved(x, y);
    benchmark::DoNotOptimize(w.measuring.YPanel);
  }
}
BENCHMARK(BM_PointerMove)->Unit(benchmark::kMicrosecond);

// Tool 700 with a trace as its target: the figure, the pointer cross and the message of a step.
void BM_DistanceToolStep(benchmark::State& state) {
  MeasureWorld w;
  w.measure.Target.Type = ItemLine;
  w.measure.Target.X = Board / 4;
  w.measure.Target.Y = Board / 2;
  w.measure.Target.Width = Board / 2;
  w.measure.Target.LineWidth = 25400;
  w.tools.StartTool(toolcode::Distance);
  int step = 0;
  for (auto _ : state) {
    ++step;
    const auto [x, y] = worldAt(w, 300 + step % 900, 200 + step % 600);
    w.measure.drawFigure(toolcode::Distance, 0, x, y);
    benchmark::DoNotOptimize(w.redraw.MessageLine);
  }
}
BENCHMARK(BM_DistanceToolStep)->Unit(benchmark::kMicrosecond);

// The ruler drawn on the open view and the view closed: arguments precision, calibration and
// where the origin lies (0 the view's middle, 1 the world's far corner).
void BM_DrawRuler(benchmark::State& state) {
  MeasureWorld w;
  w.view.m_Precision = int32_t(state.range(0));
  w.measuring.RulerType = int32_t(state.range(1));
  w.measuring.MeasureMode = measuremode::ReferencePoint;
  w.measuring.ReferencePoint = state.range(2) == 0
                                   ? ReferencePointState{true, Board / 2, Board / 2}
                                   : ReferencePointState{true, -WorldExtent + 1, WorldExtent - 1};
  for (auto _ : state) {
    const int32_t dc = w.view.OpenView(1);
    w.measuring.DrawRuler(dc, drawmode::Normal);
    w.kernel().graphics.G_CloseDC(dc, 0);
  }
}
BENCHMARK(BM_DrawRuler)
    ->ArgsProduct({{1, 10, 100, 1000, 10000, 100000, 1000000, 2540000},
                   {rulertype::Auto, rulertype::Fixed},
                   {0, 1}})
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tvx
