// The tool bands on the screen (offscreen): the whole bar of about 60 tools built into a main
// window, and the option band of 11 tools emptied and filled again, as a change of key does.
#include "viewer/ToolBarModel.h"
#include "viewer/widgets/ToolBarView.h"

#include <QApplication>
#include <QMainWindow>
#include <benchmark/benchmark.h>

#include <string>

namespace tvx {
namespace {

QApplication& application() {
  static int argc = 1;
  static char name[] = "bench_toolbars";
  static char* argv[] = {name, nullptr};
  static QApplication app(argc, argv);
  return app;
}

// Seven bands as the main window has them: 50 buttons, two combos, two drop-downs of 31 rows.
void fillBar(ToolBarModel& bar) {
  for (int band = 0; band < 7; ++band) {
    const std::string name = "B_" + std::to_string(band);
    bar.addBand(name, name);
    for (int n = 0; n < 7; ++n)
      bar.addTool(name, {.Name = name + "_" + std::to_string(n),
                         .Caption = "Tool",
                         .ToolTip = "A tool",
                         .Checkable = true});
  }
  bar.addTool("B_0", {.Name = "combo1", .Kind = ToolKind::Combo, .ComboRows = {"1", "2", "3"}});
  bar.addTool("B_0", {.Name = "combo2", .Kind = ToolKind::Combo, .ComboRows = {"1", "2", "3"}});
  for (const char* drop : {"drop1", "drop2"}) {
    const std::string rows = std::string("SB_") + drop;
    bar.addBand(rows, "", true);
    for (int n = 0; n < 31; ++n)
      bar.addTool(rows, {.Name = rows + std::to_string(n), .Caption = "Layer", .Checkable = true});
    bar.addTool("B_1", {.Name = drop, .Kind = ToolKind::DropDown, .Rows = rows});
  }
  bar.addBand("OptionTools", "Options");
}

void BM_BuildBar(benchmark::State& state) {
  application();
  for (auto _ : state) {
    QMainWindow window;
    ToolBarModel bar;
    fillBar(bar);
    ToolBarView view(bar, window, {}, 16);
    view.build();
    benchmark::DoNotOptimize(view.toolBar("B_0"));
  }
}
BENCHMARK(BM_BuildBar)->Unit(benchmark::kMillisecond);

void BM_RebuildOptionBand(benchmark::State& state) {
  application();
  QMainWindow window;
  ToolBarModel bar;
  fillBar(bar);
  ToolBarView view(bar, window, {}, 16);
  view.build();
  for (auto _ : state) {
    bar.clearBand("OptionTools");
    for (int r = 0; r < 11; ++r)
      bar.addTool("OptionTools", {.Name = std::to_string(4000 + r),
                                  .Caption = "Option",
                                  .Description = "An option",
                                  .Checkable = true,
                                  .Visible = r != 10,
                                  .GroupStart = r == 4});
    bar.bandChanged("OptionTools");
  }
}
BENCHMARK(BM_RebuildOptionBand)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tvx
