// Plotter files run into a layer: the tokeniser's rules, the state the commands leave, the
// elements they write, the faults that skip one statement, and the corpus's plots.
#include "import/readers/hpgl/HpglInterpreter.h"

#include "common/FileLayer.h"
#include "import/core/StatusCodes.h"
#include "import/gerber/ImportTestSupport.h"
#include "import/readers/excellon/ExcellonTestSupport.h"
#include "import/readers/hpgl/HpglFileReader.h"
#include "kernel/Kernel.h"
#include "platform/SystemServices.h"
#include "support/CorpusPath.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

namespace tvx {
namespace {

struct Plot {
  Kernel kernel;
  LayerRecord layer;
  HpglCounts counts;
  HpglState state;

  explicit Plot(std::string_view text) {
    layer.SymbolHandle = -76531;
    kernel.store.S_CreateSymbol(layer.SymbolHandle, "OUTLINE");
    HpglInterpreter interpreter(kernel.store, layer.SymbolHandle, 7);
    interpreter.run(text);
    counts = interpreter.counts;
    state = interpreter.state;
  }
  std::vector<ItemRecord> items() const { return test::itemsOf(kernel.store, layer); }
};

constexpr int32_t Unit = 2500;  // store units of one plotter unit (0.025 mm)

TEST(HpglInterpreter, TheTokeniserAndTheStateCommandsLeave) {
  struct Case {
    const char* name;
    const char* text;
    HpglCounts counts;
    std::function<void(const Plot&)> check;
  };
  const Case cases[] = {
      {"commands follow each other without a semicolon",
       "IN;PA100,100PD200,200;",
       {1, 0, 0, 0},
       [](const Plot& r) {
         const ItemRecord l = r.items().at(0);
         EXPECT_EQ(std::tuple(l.X, l.Y, l.Width, l.Height),
                   std::tuple(100 * Unit, 100 * Unit, 100 * Unit, 100 * Unit));
         EXPECT_EQ(std::tuple(l.Type, l.Attributes, l.Colour, l.LineWidth),
                   std::tuple(int32_t(ItemLine), 1, uint8_t(7), 1));
       }},
      {"PU without a pair only lifts the pen",
       "PD;PU;",
       {},
       [](const Plot& r) { EXPECT_EQ(r.state.PenDown, 0); }},
      {"a second semicolon runs SC again without arguments",
       "IP0,0,4000,4000;SC0,1000,0,1000;;",
       {},
       [](const Plot& r) { EXPECT_EQ(r.state.ScaleX, HpglPlotterUnit); }},
      {"blanks part arguments; an odd last one is ignored",
       "PD;PA 100 100;PA200,200,300;",
       {2, 0, 0, 0},
       [](const Plot& r) { EXPECT_EQ(r.state.CurX, 200.0 * Unit); }},
      {"SC before IP leaves the scale",
       "SC0,10,0,10;",
       {},
       [](const Plot& r) { EXPECT_EQ(r.state.ScaleX, HpglPlotterUnit); }},
      {"SC after IP maps the user's minimum onto P1",
       "IP400,0,4400,2000;SC50,100,0,100;PA60,10;",
       {},
       [](const Plot& r) {
         EXPECT_DOUBLE_EQ(r.state.ScaleX, 2.0);
         EXPECT_DOUBLE_EQ(r.state.ScaleY, 0.5);
         EXPECT_DOUBLE_EQ(r.state.CurX, (10.0 + 10 * 2.0) * 100000);  // P1 at 10 mm, 10 units on
         EXPECT_DOUBLE_EQ(r.state.CurY, 10 * 0.5 * 100000);
       }},
      {"relative moves take no origin",
       "IP0,0,4000,4000;SC50,150,50,150;PA50,50;PR10,10;",
       {},
       [](const Plot& r) { EXPECT_DOUBLE_EQ(r.state.CurX, 10 * 1.0 * 100000); }},
      {"PW with WU0 is in millimetres",
       "WU0;PW0.5,3;SP3;",
       {},
       [](const Plot& r) { EXPECT_EQ(r.state.PenWidth, 50000); }},
      {"PW without WU is in millimetres too",
       "PW0.5,3;SP3;",
       {},
       [](const Plot& r) { EXPECT_EQ(r.state.PenWidth, 50000); }},
      {"WU1 makes widths hundredths of the P1-P2 diagonal",
       "IP0,0,3000,4000;WU1;PW2,1;SP1;",
       {},
       [](const Plot& r) { EXPECT_EQ(r.state.PenWidth, 250000); }},  // 2% of 125 mm
      {"PW with a width alone sets every pen, the one in hand too",
       "SP2;PW0.3;SP9;PD10,0;",
       {1, 0, 0, 0},
       [](const Plot& r) { EXPECT_EQ(r.items().at(0).LineWidth, 30000); }},
      {"the filled forms are written filled, the edge forms open",
       "IN;RA10,10;EA10,10;",
       {0, 0, 0, 2},
       [](const Plot& r) {
         EXPECT_EQ(r.items().front().Style, StyleFilled);
         EXPECT_EQ(r.items().back().Style, 0);
       }},
      {"a pen beyond the table has width 1",
       "PW0.5,3;SP7;",
       {},
       [](const Plot& r) { EXPECT_EQ(r.state.PenWidth, 1); }},
      {"a pen the table grew over has width 0",
       "PW0.5,3;SP2;",
       {},
       [](const Plot& r) { EXPECT_EQ(r.state.PenWidth, 0); }},
      {"PW behind the drawing has no effect",
       "SP3;PD10,0;PW0.5,3;",
       {1, 0, 0, 0},
       [](const Plot& r) { EXPECT_EQ(r.items().at(0).LineWidth, 1); }},
      {"CI writes with the pen up; AA with the pen up only moves",
       "PU100,0;CI50;AA0,0,90;",
       {0, 0, 1, 0},
       [](const Plot& r) {
         EXPECT_EQ(r.items().at(0).Width, 50 * Unit);
         EXPECT_NEAR(r.state.CurX, 0, 1e-6);
         EXPECT_NEAR(r.state.CurY, 100.0 * Unit, 1e-6);
       }},
      {"LT0 keeps the line type, LT resets it",
       "LT1;LT0;",
       {},
       [](const Plot& r) { EXPECT_EQ(r.state.LineType, 1); }},
      {"LT keeps the pattern's number, adaptive ones as their positive",
       "LT2;PD10,0;LT-4;",
       {1, 0, 0, 0},
       [](const Plot& r) {
         EXPECT_EQ(r.items().at(0).Style, 2);
         EXPECT_EQ(r.state.LineType, 4);
       }},
      {"LT without an argument",
       "LT6;LT;",
       {},
       [](const Plot& r) { EXPECT_EQ(r.state.LineType, 0); }},
      {"RA leaves the pen, PA starts from it",
       "IN;PA10,10;RA20,20;PD30,10;",
       {1, 0, 0, 1},
       [](const Plot& r) { EXPECT_EQ(r.items().back().X, 10 * Unit); }},
      {"without IN walk 1 goes on from where walk 0 ended",
       "PR;PD10,0;",
       {1, 0, 0, 0},
       [](const Plot& r) {
         EXPECT_EQ(r.items().at(0).X, 10 * Unit);
         EXPECT_EQ(r.items().at(0).Width, 10 * Unit);
       }},
      {"an unknown pair skips a letter and the numbers fill the open argument",
       "PD10,1X0;",
       {1, 0, 0, 0},
       [](const Plot& r) { EXPECT_EQ(r.state.CurY, 10.0 * Unit); }},
      {"lower case commands", "in;sp1;pd10,0;pu;", {1, 0, 0, 0}, nullptr},
      {"no commands", "12,34;;", {}, [](const Plot& r) { EXPECT_TRUE(r.items().empty()); }},
      {"device-control escapes are passed over",
       "\x1B.(;\x1B.I81;;17:IN;PD10,0;PU;",
       {1, 0, 0, 0},
       nullptr},
      {"a label's text is no command", "IN;PD10,0;LBPD99,99\x03PU;", {1, 0, 0, 0, 1}, nullptr},
      {"DT sets the label's terminator",
       "IN;DT@;LBPA5,5PD1,1@PD10,0;",
       {1, 0, 0, 0, 1},
       [](const Plot& r) { EXPECT_EQ(r.items().at(0).X, 0); }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Plot run(c.text);
    EXPECT_EQ(run.counts, c.counts);
    if (c.check)
      c.check(run);
  }
}

// A number of an encoded polyline: its sign in the lowest bit, then digits of 5 bits (seven-bit
// mode) or 6 bits, the lowest first, the last one from the terminating range.
std::string encoded(int64_t value, bool sevenBit) {
  uint64_t whole = value < 0 ? (uint64_t(-value) << 1) | 1 : uint64_t(value) << 1;
  const uint64_t base = sevenBit ? 32 : 64;
  std::string digits;
  for (; whole >= base; whole /= base)
    digits += char(63 + whole % base);
  return digits + char((sevenBit ? 95 : 191) + whole);
}

TEST(HpglInterpreter, EncodedPolylines) {
  struct Case {
    const char* name;
    bool sevenBit;
    std::string flags;  // before the first pair
    double scale;       // what a pair's numbers are worth
  };
  const Case cases[] = {{"eight-bit digits", false, "", 1.0},
                        {"seven-bit digits", true, "7", 1.0},
                        {"two fractional bits", true, "7>" + encoded(2, true), 0.25}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const auto e = [&c](int64_t v) { return encoded(v, c.sevenBit); };
    // A pen-up move to an absolute point, then two relative pen-down pairs, one going back.
    const std::string text =
        "IN;pe" + c.flags + "<=" + e(400) + e(400) + e(200) + e(0) + e(0) + e(-120) + ";PU;";
    Plot plot(text);
    EXPECT_EQ(plot.counts.lines, 2);
    EXPECT_NEAR(plot.state.CurX, 600 * c.scale * Unit, 1e-6);
    EXPECT_NEAR(plot.state.CurY, 280 * c.scale * Unit, 1e-6);
  }
  Plot pen("IN;WU0;PW0.3,2;PE:" + encoded(2, false) + encoded(40, false) + encoded(0, false) + ";");
  EXPECT_EQ(pen.state.PenNumber, 2);
  EXPECT_EQ(pen.items().at(0).LineWidth, 30000);
}

TEST(HpglInterpreter, ArcsWedgesAndRotation) {
  {
    Plot run("PU100,0;PD;AA0,0,-90;");
    const ItemRecord a = run.items().at(0);
    EXPECT_EQ(std::tuple(a.Type, a.X, a.Y, a.Width, a.Height, a.Sweep, a.Style),
              std::tuple(int32_t(ItemArc), 0, 0, 100 * Unit, 0, -90000, uint8_t(0)));
    EXPECT_NEAR(run.state.CurY, -100.0 * Unit, 1e-6);
  }
  {
    Plot run("PU100,0;PD;AR-100,0,90;");  // the centre relative to the pen
    EXPECT_EQ(run.items().at(0).X, 0);
    EXPECT_NEAR(run.state.CurY, 100.0 * Unit, 1e-6);
  }
  {
    Plot run("PU0,0;WG100,0,90;");  // a wedge: centre, start, arc through its middle, back
    EXPECT_EQ(run.counts.outlines, 1);
    const std::vector<ItemRecord> items = run.items();
    ASSERT_EQ(items.size(), 3u);
    EXPECT_EQ(std::tuple(items[0].Type, items[1].Type, items[2].Type),
              std::tuple(int32_t(ItemLine), int32_t(ItemArc), int32_t(ItemLine)));
    EXPECT_EQ(items[0].Attributes & 8, 8) << "outline pieces are polygon sides";
    EXPECT_EQ(run.state.CurX, 0.0) << "the pen stays at the centre";
  }
  {
    Plot run("RO90;PD100,0;");
    EXPECT_NEAR(run.state.CurX, 0, 1e-6);
    EXPECT_NEAR(run.state.CurY, 100.0 * Unit, 1e-6);
  }
}

TEST(HpglInterpreter, PolygonModeBuildsWhatFillAndEdgeWrite) {
  struct Case {
    const char* name;
    const char* text;
    int32_t outlines;
    std::vector<int32_t> types;  // of the items written, in order
    uint8_t style;
    double penX, penY;  // plotter units
  };
  constexpr int32_t L = ItemLine, A = ItemArc;
  const Case cases[] = {
      {"a square filled, nothing drawn while it was built",
       "IN;PU0,0;PM0;PD100,0,100,100,0,100;PM2;FP;",
       1,
       {L, L, L, L},
       StyleFilled,
       0,
       0},
      {"its edges", "IN;PU0,0;PM0;PD100,0,100,100,0,100;PM2;EP;", 1, {L, L, L, L}, 0, 0, 0},
      {"two sub-polygons, the second begun by a pen-up move",
       "IN;PU0,0;PM0;PD100,0,100,100;PM1;PU200,0;PD300,0,300,100;PM2;FP;",
       2,
       {L, L, L, L, L, L},
       StyleFilled,
       0,
       0},
      {"a circle is a sub-polygon of two half arcs; the pen stays at the centre",
       "IN;PU50,50;PM0;CI10;PM2;FP;PA70,70;",
       1,
       {A, A},
       StyleFilled,
       70,
       70},
      {"an arc side between straight ones",
       "IN;PU0,0;PM0;PD100,0;AA0,0,90;PD0,0;PM2;EP;",
       1,
       {L, A, L},
       0,
       0,
       0},
      {"a sweep of billions of degrees is one turn",
       "IN;PU10,0;PM0;PD;AA0,0,3000000000000;PM2;EP;",
       1,
       {A, A},
       0,
       10,
       0},
      {"a polygon never filled writes nothing", "IN;PM0;PD10,0,10,10;PM2;", 0, {}, 0, 0, 0},
      {"IN leaves polygon mode", "IN;PM0;IN;PD10,0;", 0, {L}, 0, 10, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Plot plot(c.text);
    EXPECT_EQ(plot.counts.outlines, c.outlines);
    std::vector<int32_t> types;
    for (const ItemRecord& r : plot.items())
      types.push_back(r.Type);
    EXPECT_EQ(types, c.types);
    if (c.outlines > 0) {
      EXPECT_EQ(plot.items().front().Style, c.style);
    }
    EXPECT_NEAR(plot.state.CurX, c.penX * Unit, 1e-6);
    EXPECT_NEAR(plot.state.CurY, c.penY * Unit, 1e-6);
  }
}

TEST(HpglInterpreter, LabelsAreTextInTheSizeAndDirectionSet) {
  Plot plot("IN;SI0.2,0.4;DI0,1;PU100,100;LBAb\x03;");
  ASSERT_EQ(plot.counts.labels, 1);
  const ItemRecord t = plot.items().at(0);
  EXPECT_EQ(std::tuple(t.Type, t.Text, t.Width, t.Height, t.Angle),
            std::tuple(int32_t(ItemVectorText), std::string("Ab"), 400000, 300000, 90000));
  EXPECT_NEAR(plot.state.CurY, 100.0 * Unit + 2 * 300000, 1e-6) << "the pen ends behind it";
  // Relative to P1-P2 (100 by 50 mm): 2% wide and 4% high are 2 mm each; DR0,1 points up.
  Plot relative("IN;IP0,0,4000,2000;SR2,4;DR0,1;PU0,0;LBA\x03;");
  const ItemRecord r = relative.items().at(0);
  EXPECT_EQ(std::tuple(r.Width, r.Height, r.Angle), std::tuple(200000, 300000, 90000));
}

TEST(HpglInterpreter, FaultsSkipOneStatement) {
  // Letters are no part of a number ("1E3" reads as 13); a point or a radius beyond 32 bits is.
  const std::string huge(300, '9');
  Plot run("IN;SP-1;PW1,70000;SP70000;PW1,-2;PD" + huge + ",0;CI" + huge + ";PD10,0;");
  EXPECT_EQ(run.state.PenNumber, 70000) << "a pen number only gives a width";
  EXPECT_EQ(run.state.PenTable.size(), 1u) << "the table did not grow to a huge pen";
  EXPECT_EQ(run.counts.lines, 1);
  EXPECT_EQ(run.counts.circles, 0);
}

TEST(HpglInterpreter, CorpusPlots) {
  const std::string corpus = test::corpusDir();
  if (corpus.empty())
    GTEST_SKIP() << "no corpus";
  SystemServices services;
  FileLayer files(services, nullptr);
  const auto read = [&](const char* name) {
    std::string text;
    EXPECT_TRUE(ReadHpglText(files, services, corpus + "/hp2xx/hp-tests/" + name, text, {}));
    return text;
  };
  Plot arcs(read("arcs.hp"));
  EXPECT_EQ(arcs.counts, (HpglCounts{3, 3, 3, 0}));
  std::vector<int32_t> radii, sweeps;
  for (const ItemRecord& item : arcs.items()) {
    if (item.Type == ItemCircle)
      radii.push_back(item.Width);
    if (item.Type == ItemArc)
      sweeps.push_back(item.Sweep);
  }
  EXPECT_EQ(radii, (std::vector<int32_t>{125000, 250000, 375000}));
  EXPECT_NE(std::find(sweeps.begin(), sweeps.end(), -90000), sweeps.end());
  for (const char* name : {"acad.hp", "inter.hp", "win_1.hp", "spectrum.plt"}) {
    Plot run(read(name));
    EXPECT_GT(run.counts.lines, 20) << name;
  }
  std::string none;
  EXPECT_FALSE(ReadHpglText(files, services, corpus + "/no such plot", none, {}));
}

// A run of files: the plotter file stands in the outline layer, a second one finds it taken and
// is refused with status 200 instead of replacing it.
TEST(HpglImport, ASecondPlotOfOneRunFindsTheOutlineLayerTaken) {
  test::ImportWorld world;
  const std::string first = world.write("first.plt", "IN;SP1;PU0,0;PD400,0,400,400;");
  const std::string second = world.write("second.plt", "IN;SP1;PU0,0;PD100,100;");
  ImportSession::BatchOptions options;
  options.noCenter = true;
  const std::vector<ImportResult> results =
      world.session->importFiles(world.tables->Layers, {first, second}, options);
  ASSERT_EQ(results.size(), 2u);
  EXPECT_EQ(std::tuple(results[0].status, results[0].layer), std::tuple(0, BoardOutlineLayer));
  EXPECT_TRUE(results[1].noFreeLayer);
  EXPECT_EQ(results[1].status, StatusNoLayers);
  EXPECT_EQ(world.items(BoardOutlineLayer).size(), 2u) << "the first plot stays";
  // Read from its file the text keeps its case: a label shows it as written.
  test::ImportWorld labelled;
  ImportOptions plotter;
  plotter.kind = ImportKind::Hpgl;
  labelled.run(labelled.write("label.plt", "IN;PU0,0;LBHello\x03;"), plotter);
  ASSERT_EQ(labelled.items(BoardOutlineLayer).size(), 1u);
  EXPECT_EQ(labelled.items(BoardOutlineLayer).at(0).Text, "Hello");
  ASSERT_FALSE(world.boxes().empty());
  EXPECT_NE(world.boxes().back().find("No available layers"), std::string::npos);
}

}  // namespace
}  // namespace tvx
