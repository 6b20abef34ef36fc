// The print preview and the print pass on a generated board of 1 million elements, 700 mm
// square, which the preview cuts into 4 x 3 A4 sheets at 1:1: the 12 thumbnails painted as the
// window lays them out, and the 12 sheets printed into a PDF at 600 dpi.
#include "MixedLayer.h"

#include "kernel/Kernel.h"
#include "print/PreviewModel.h"
#include "print/PrintOutput.h"
#include "print/ScriptedPrinter.h"
#include "print/widgets/QtPrinter.h"
#include "viewer/DisplayUnits.h"

#include <QGuiApplication>
#include <QImage>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <memory>

namespace tvx::bench {
namespace {

constexpr int32_t BoardSize = 700 * StoreUnitsPerMm;
constexpr int Elements = 1'000'000;
constexpr double ScreenDpi = 96.0;

QGuiApplication& application() {
  static int argc = 1;
  static char name[] = "bench_print";
  static char* argv[] = {name, nullptr};
  static QGuiApplication app(argc, argv);
  return app;
}

Kernel& board() {
  static Kernel* kernel = [] {
    auto* k = new Kernel;
    fillMixedLayer(k->store, Elements, BoardSize);
    return k;
  }();
  return *kernel;
}

// A preview of the board with the margins at 0, laid out in a container of 260 x 200 mm.
struct Preview {
  explicit Preview(PlatformPrinter& platform) : printer(platform) {
    model.Begin({0, 0, BoardSize, BoardSize}, drawmode::Normal);
    record.ScaleMode = printer.ScaleMode = scalemode::Millimetres;
    model.Build();
    model.SetContainer(260, 200);
    model.Command("ATB_BestFit");
    model.DrawPage = [](int32_t device, int32_t mode) {
      board().graphics.G_SetDrawMode(device, mode | drawmode::Layer);
      board().graphics.S_DrawSymbol(device, Layer, 1, 1);
    };
  }
  PlatformPrinter& printer;
  PrinterSettings record;
  PreviewModel model{record, printer, displayunit::Millimetre};
};

void BM_Thumbnails(benchmark::State& state) {
  application();
  Graphics& graphics = board().graphics;
  ScriptedPrinter printer;
  Preview preview(printer);
  const PreviewModel& model = preview.model;
  std::vector<QImage> pictures;
  std::vector<int32_t> devices;
  for (const PreviewCell& cell : model.Cells()) {
    pictures.emplace_back(int(cell.Width / 25.4 * ScreenDpi), int(cell.Height / 25.4 * ScreenDpi),
                          QImage::Format_RGB32);
  }
  for (QImage& picture : pictures)
    devices.push_back(graphics.G_GetDC(&picture));
  for (auto _ : state) {
    for (size_t i = 0; i < devices.size(); ++i) {
      const QImage& picture = pictures[i];
      const int32_t zoom = model.ThumbZoomFor(picture.width(), picture.height());
      model.DrawSheet(graphics, devices[i], model.ViewRows[i], picture.width(), picture.height(),
                      zoom, false);
      graphics.G_CloseDC(devices[i], 1);
    }
  }
  for (int32_t device : devices)
    graphics.G_DeleteDC(device);
  state.counters["sheets"] = double(model.PageCount);
  state.counters["thumbnails"] = double(devices.size());
  state.counters["thumbnail_width"] = pictures.empty() ? 0 : pictures[0].width();
}
BENCHMARK(BM_Thumbnails)->Unit(benchmark::kMillisecond);

void BM_PrintToPdf(benchmark::State& state) {
  application();
  QTemporaryDir folder;
  QtPrinter printer(false, 600);
  Preview preview(printer);
  PrintOutput output(preview.model, board().graphics);
  output.AskFileName = [&](const PrintFileRequest&) {
    return std::optional<std::string>(folder.filePath("board.pdf").toStdString());
  };
  for (auto _ : state) {
    preview.model.Command("ATB_PrintAll");
    output.PrintPass();
  }
  state.counters["sheets"] = double(preview.model.PageCount);
  state.counters["pdf_bytes"] = double(QFileInfo(folder.filePath("board.pdf")).size());
}
BENCHMARK(BM_PrintToPdf)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
}  // namespace tvx::bench
