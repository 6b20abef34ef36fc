// A generated drawing of about 20 MB as a current CAD tool writes it (a header with its version,
// unit and extents; a layer table; one block of 50 lines and arcs; lines, arcs, circles, closed
// light polylines with bulges and 2000 inserts of the block): its loading into records, and the
// whole road from its path to the layer, centring included. Then the range check of a drawing with
// 100,000 lines 2000 mm outside its header's extents, at three sizes to show how the removal grows.
#include "bench/ImportRoad.h"
#include "common/FileLayer.h"
#include "import/readers/WindowlessLayers.h"
#include "import/readers/dxf/DxfInterpreter.h"
#include "import/readers/dxf/DxfLoader.h"
#include "kernel/Store.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"
#include "store/LayerRecord.h"

#include <QTemporaryDir>
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace tvx {
namespace {

// Groups as R2000 files write them: the code right-aligned in three columns, then its value.
class DxfText {
public:
  void group(int code, std::string_view value) {
    char c[8];
    std::snprintf(c, sizeof c, "%3d\n", code);
    text += c;
    text += value;
    text += '\n';
  }
  void real(int code, double value) {
    char v[32];
    std::snprintf(v, sizeof v, "%.6f", value);
    group(code, v);
  }
  void whole(int code, int value) { group(code, std::to_string(value)); }
  // An entity's start: its name, handle, owner, layer and subclass markers.
  void entity(std::string_view name, std::string_view subclass) {
    group(0, name);
    char h[16];
    std::snprintf(h, sizeof h, "%X", ++handle_);
    group(5, h);
    group(330, "1F");
    group(100, "AcDbEntity");
    group(8, "0");
    group(100, subclass);
  }
  void point(int code, double x, double y) {
    real(code, x);
    real(code + 10, y);
    real(code + 20, 0);
  }
  void line(double x0, double y0, double x1, double y1) {
    entity("LINE", "AcDbLine");
    point(10, x0, y0);
    point(11, x1, y1);
  }
  void arc(double x, double y, double r, double start, double end) {
    entity("ARC", "AcDbCircle");
    point(10, x, y);
    real(40, r);
    group(100, "AcDbArc");
    real(50, start);
    real(51, end);
  }
  void header(double minX, double minY, double maxX, double maxY) {
    group(0, "SECTION");
    group(2, "HEADER");
    group(9, "$ACADVER");
    group(1, "AC1015");
    group(9, "$INSUNITS");
    whole(70, 4);
    group(9, "$EXTMIN");
    point(10, minX, minY);
    group(9, "$EXTMAX");
    point(10, maxX, maxY);
    group(0, "ENDSEC");
    // The tables section that files of CAD tools have (recognition looks for it): one layer.
    group(0, "SECTION");
    group(2, "TABLES");
    group(0, "TABLE");
    group(2, "LAYER");
    whole(70, 1);
    group(0, "LAYER");
    group(2, "0");
    whole(70, 0);
    whole(62, 7);
    group(6, "CONTINUOUS");
    group(0, "ENDTAB");
    group(0, "ENDSEC");
  }

  std::string text;

private:
  int handle_ = 0x100;
};

constexpr int Inserts = 2000;
constexpr int BlockItems = 50;

const std::string& drawingText() {
  static const std::string text = [] {
    DxfText d;
    d.text.reserve(21000000);
    d.header(0, 0, 1000, 1000);
    std::mt19937 rng(11);
    std::uniform_real_distribution<double> pos(0, 950), small(0, 5), angle(0, 360);
    d.group(0, "SECTION");
    d.group(2, "BLOCKS");
    d.entity("BLOCK", "AcDbBlockBegin");
    d.group(2, "CELL");
    d.whole(70, 0);
    d.point(10, 0, 0);
    for (int i = 0; i < BlockItems; ++i) {
      if (i % 10 < 7)
        d.line(small(rng), small(rng), small(rng), small(rng));
      else
        d.arc(small(rng), small(rng), 0.5 + small(rng) / 5, angle(rng), angle(rng));
    }
    d.entity("ENDBLK", "AcDbBlockEnd");
    d.group(0, "ENDSEC");
    d.group(0, "SECTION");
    d.group(2, "ENTITIES");
    for (int i = 0; d.text.size() < 20000000; ++i) {
      if (i < Inserts) {
        d.entity("INSERT", "AcDbBlockReference");
        d.group(2, "CELL");
        d.point(10, pos(rng), pos(rng));
        d.real(50, angle(rng));
      }
      const double x = pos(rng), y = pos(rng);
      d.line(x, y, x + small(rng), y + small(rng));
      if (i % 4 == 0)
        d.arc(pos(rng), pos(rng), 0.2 + small(rng), angle(rng), angle(rng));
      if (i % 4 == 2) {
        d.entity("CIRCLE", "AcDbCircle");
        d.point(10, pos(rng), pos(rng));
        d.real(40, 0.1 + small(rng) / 4);
      }
      if (i % 8 == 5) {
        // A closed outline of six vertices, every other side an arc.
        d.entity("LWPOLYLINE", "AcDbPolyline");
        d.whole(90, 6);
        d.whole(70, 1);
        d.real(43, 0);
        const double cx = pos(rng), cy = pos(rng);
        for (int v = 0; v < 6; ++v) {
          const double a = v * 60 * 3.14159265358979 / 180;
          d.real(10, cx + 3 * std::cos(a));
          d.real(20, cy + 3 * std::sin(a));
          if (v % 2 == 1)
            d.real(42, 0.25);
        }
      }
    }
    d.group(0, "ENDSEC");
    d.group(0, "EOF");
    return d.text;
  }();
  return text;
}

std::string writeDrawing(const QTemporaryDir& folder) {
  const std::string path = folder.filePath("board.dxf").toStdString();
  std::ofstream(path, std::ios::binary) << drawingText();
  return path;
}

void BM_DxfLoad(benchmark::State& state) {
  QTemporaryDir folder;
  const std::string path = writeDrawing(folder);
  SystemServices services;
  FileLayer files(services, nullptr);
  std::vector<DxfRecord> records;
  for (auto _ : state) {
    const DxfLoad load = ReadDxfFile(files, services, path, records, {});
    if (load != DxfLoad::Read) {
      state.SkipWithError("the drawing was not read");
      break;
    }
    benchmark::DoNotOptimize(records.data());
  }
  state.counters["MB"] = double(drawingText().size()) / 1e6;
  state.counters["records"] = double(records.size());
}
BENCHMARK(BM_DxfLoad)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_DxfFromPathToLayer(benchmark::State& state) {
  QTemporaryDir folder;
  const std::string path = writeDrawing(folder);
  timeImportRoad(
      state, path,
      [&state](const ImportResult& result, const Store& store, const LayerTables& tables) {
        if (result.status != 0 || result.layer == 0)
          return "not imported: status " + std::to_string(result.status) + ", kind " +
                 std::to_string(int(result.kind)) + ", layer " + std::to_string(result.layer);
        const int32_t items =
            store.OA_GetCount(store.S_SymbolItemArray(tables.layer(result.layer).SymbolHandle));
        // The block copies alone are this many.
        if (items < Inserts * BlockItems)
          return std::string("the layer lacks the block copies");
        state.counters["items"] = items;
        return std::string();
      });
}
BENCHMARK(BM_DxfFromPathToLayer)->Unit(benchmark::kMillisecond)->Iterations(3);

constexpr int NearLines = 1000;

// A drawing whose header says 0 to 100 mm: lines within it and far ones 2000 mm to the right,
// which the range check takes out.
std::vector<DxfRecord> farDrawing(int far) {
  DxfText d;
  d.header(0, 0, 100, 100);
  d.group(0, "SECTION");
  d.group(2, "ENTITIES");
  std::mt19937 rng(5);
  std::uniform_real_distribution<double> pos(0, 95), small(0, 5);
  for (int i = 0; i < NearLines; ++i) {
    const double x = pos(rng), y = pos(rng);
    d.line(x, y, x + small(rng), y + small(rng));
  }
  for (int i = 0; i < far; ++i) {
    const double x = 2100 + pos(rng), y = pos(rng);
    d.line(x, y, x + small(rng), y + small(rng));
  }
  d.group(0, "ENDSEC");
  d.group(0, "EOF");
  return ParseDxfText(d.text);
}

void BM_DxfRangeCheck(benchmark::State& state) {
  const int far = int(state.range(0));
  const std::vector<DxfRecord> records = farDrawing(far);
  LayerRecord layer;
  layer.SymbolHandle = -76530;
  LayerFileRecord file;
  file.Colour = 5;
  for (auto _ : state) {
    state.PauseTiming();
    auto store = std::make_unique<Store>();
    store->S_CreateSymbol(layer.SymbolHandle, "OUTLINE");
    state.ResumeTiming();
    int32_t status = -1;
    DxfReport report;
    ImportDxf(status, records, *store, layer, file, DxfFormat{}, &report);
    state.PauseTiming();
    if (report.removed != far) {
      state.SkipWithError(("removed " + std::to_string(report.removed)).c_str());
      break;
    }
    const int32_t kept = store->OA_GetCount(store->S_SymbolItemArray(layer.SymbolHandle));
    if (kept != NearLines) {
      state.SkipWithError(("kept " + std::to_string(kept)).c_str());
      break;
    }
    state.counters["removed"] = report.removed;
    store.reset();  // the store goes outside the timing
    state.ResumeTiming();
  }
  state.SetComplexityN(far);
}
BENCHMARK(BM_DxfRangeCheck)
    ->Arg(25000)
    ->Arg(50000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3)
    ->Complexity();

}  // namespace
}  // namespace tvx
