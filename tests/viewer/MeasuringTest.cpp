// The measuring model driven with numbers: the panels by origin and kind, the reference point
// typed, snapped and drawn, the ruler cursor and the ruler in the picture, the calibration and
// zoom factor prompts with their ranges.
#include "support/ItemBuilder.h"

#include "kernel/Palette.h"
#include "viewer/Measuring.h"
#include "viewer/PointerTools.h"

#include "RedrawWorld.h"

#include <QImage>
#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace tvx::test {
namespace {

constexpr int Width = 300;
constexpr int Height = 200;
constexpr int32_t Precision = 10000;  // 0.1 mm a pixel

// Ink of a text or a line: a pixel well apart from the strip's colour, whatever its smoothing.
bool farFrom(QRgb pixel, QRgb strip) {
  return std::abs(qRed(pixel) - qRed(strip)) + std::abs(qGreen(pixel) - qGreen(strip)) +
             std::abs(qBlue(pixel) - qBlue(strip)) >
         200;
}

class MeasuringTest : public ::testing::Test, public RedrawWorld {
public:
  void SetUp() override {
    build(Width, Height, Precision);
    view.setCoverSource(LayersCover(kernel.store, tables.Layers));
    redraw.HighlightColour = 12;
    redraw.MarkerColour = 12;
    redraw.RedrawScreen();
  }

  // A filled box in layer 3 whose lower left corner is the cover's minimum.
  void addBox(int32_t x0, int32_t y0, int32_t x1, int32_t y1) {
    kernel.store.OA_Add(kernel.store.S_SymbolItemArray(tables.layer(3).SymbolHandle),
                        kernel.store.I_MakeItem(Item(ItemRectangle)
                                                    .at(x0, y0)
                                                    .colour(tables.layer(3).ColourNumber)
                                                    .filled()
                                                    .size(x1 - x0, y1 - y0)));
  }
  QImage picture() const { return kernel.graphics.shadowImage(view.device())->copy(); }
  void setPointer(int32_t x, int32_t y) {
    tools.CursorX = x;
    tools.CursorY = y;
  }

  PointerTools tools{kernel.graphics, services, view, redraw};
  Measuring measuring{kernel.graphics, services, prompts, view, redraw, tools};
};

TEST_F(MeasuringTest, PanelsByOriginAndKind) {
  struct Case {
    const char* name;
    int32_t unit, mode;
    bool distance, box, point;
    int32_t x, y;
    std::string xPanel, yPanel;
  };
  using namespace displayunit;
  const Case cases[] = {
      {"world origin in mm", Millimetre, 0, false, false, false, 150000, -20000, "X= 1.500mm",
       "Y= -0.200mm"},
      {"world origin in inches", Inch, 0, false, false, false, 254000, 508000, "X= 0.1000\"",
       "Y= 0.2000\""},
      {"board datum", Millimetre, 1, false, true, false, 600000, 900000, "X= 1.000mm",
       "Y= 2.000mm"},
      {"board datum of an empty store", Millimetre, 1, false, false, false, 600000, 900000,
       "X= 6.000mm", "Y= 9.000mm"},
      {"reference point", Millimetre, 2, false, true, true, 600000, 900000, "X= 5.000mm",
       "Y= 7.000mm"},
      {"reference point not set", Millimetre, 2, false, true, false, 600000, 900000, "X= 6.000mm",
       "Y= 9.000mm"},
      {"distance from the datum", Millimetre, 1, true, true, false, 800000, 1100000, "",
       "D= 5.000mm"},
      {"distance from the world origin", Inch, 0, true, false, false, 0, -254000, "",
       "D= 0.1000\""},
  };
  for (const Case& c : cases) {
    kernel.store.OA_DeleteMarked(kernel.store.S_SymbolItemArray(tables.layer(3).SymbolHandle), 0);
    kernel.store.OA_MaskAll(kernel.store.S_SymbolItemArray(tables.layer(3).SymbolHandle), 0, 0);
    if (c.box)
      addBox(500000, 700000, 900000, 1200000);
    view.computeCover();
    view.DisplayUnit = c.unit;
    measuring.MeasureMode = c.mode;
    measuring.DistanceDisplay = c.distance;
    measuring.ReferencePoint = {c.point, 100000, 200000};
    std::vector<std::string> shown;
    measuring.hooks.showPanels = [&](const std::string& x, const std::string& y) {
      shown = {x, y};
    };
    measuring.ShowCoordinates(c.x, c.y);
    EXPECT_EQ(shown, (std::vector<std::string>{c.xPanel, c.yPanel})) << c.name;
    kernel.store.OA_MaskAll(kernel.store.S_SymbolItemArray(tables.layer(3).SymbolHandle), 1, 1);
    kernel.store.OA_DeleteMarked(kernel.store.S_SymbolItemArray(tables.layer(3).SymbolHandle), 1);
  }
}

TEST_F(MeasuringTest, TypedReferencePoint) {
  struct Case {
    const char* name;
    int32_t unit;
    std::string answer;
    std::optional<std::array<int32_t, 2>> point;  // none: the point stays cleared
    int beeps;
  };
  using namespace displayunit;
  const Case cases[] = {
      {"datum added", Millimetre, "1,2,D", std::array<int32_t, 2>{600000, 900000}, 0},
      {"datum in lower case with blanks", Millimetre, "1,2, d ",
       std::array<int32_t, 2>{600000, 900000}, 0},
      {"plain point", Millimetre, "1,2", std::array<int32_t, 2>{100000, 200000}, 0},
      {"comma as decimal point", Millimetre, "\"1,5\",2", std::array<int32_t, 2>{150000, 200000},
       0},
      {"in inches", Inch, "-1,0.5", std::array<int32_t, 2>{-2540000, 1270000}, 0},
      {"one number only", Millimetre, "1", std::nullopt, 1},
      {"beyond the world", Millimetre, "2200,0", std::nullopt, 1},
      {"empty answer", Millimetre, "", std::nullopt, 0},
  };
  addBox(500000, 700000, 900000, 1200000);
  for (const Case& c : cases) {
    view.DisplayUnit = c.unit;
    measuring.ReferencePoint = {true, 1, 1};  // an old point, cleared by every try
    prompts.beeps = 0;
    prompts.queryAnswers = {QueryAnswer{c.answer, 0}};
    measuring.SetReferencePoint(2);
    EXPECT_EQ(prompts.beeps, c.beeps) << c.name;
    EXPECT_EQ(measuring.ReferencePoint.Set, c.point.has_value()) << c.name;
    if (c.point) {
      EXPECT_EQ((std::array<int32_t, 2>{measuring.ReferencePoint.X, measuring.ReferencePoint.Y}),
                *c.point)
          << c.name;
    }
  }
  ASSERT_FALSE(prompts.queries.empty());
  EXPECT_EQ(prompts.queries.front().prompt, "Ref.point X,Y ( mm )\r\nFormat: x,y[,D]\r\nD for "
                                            "x,y displacement from board datum.");
}

TEST_F(MeasuringTest, PointerAndSnappedReferencePoint) {
  redraw.RasterStep = 100000;
  setPointer(140000, -260000);
  measuring.SetReferencePoint(0);
  EXPECT_EQ((std::array<int32_t, 3>{measuring.ReferencePoint.Set, measuring.ReferencePoint.X,
                                    measuring.ReferencePoint.Y}),
            (std::array<int32_t, 3>{1, 140000, -260000}));
  tools.FirstMove = true;  // the snap works also right after a redraw
  measuring.SetReferencePoint(1);
  EXPECT_EQ((std::array<int32_t, 2>{measuring.ReferencePoint.X, measuring.ReferencePoint.Y}),
            (std::array<int32_t, 2>{100000, -300000}));
  // Not while a tool runs: the point stays.
  tools.StartTool(toolcode::Distance);
  setPointer(0, 0);
  measuring.SetReferencePoint(0);
  EXPECT_EQ(measuring.ReferencePoint.X, 100000);
}

TEST_F(MeasuringTest, MarksRestoreThePictureAndComeBackWithARepaint) {
  addBox(-500000, -500000, 200000, 300000);
  redraw.RedrawScreen();
  const QImage plain = picture();
  setPointer(100000, 50000);
  measuring.SetReferencePoint(0);
  const QImage marked = picture();
  EXPECT_NE(marked, plain);
  // The mark lies at the point: the centre pixel's neighbourhood changed.
  int32_t px = 100000, py = 50000;
  kernel.graphics.G_LPtoDP(view.device(), px, py);
  EXPECT_NE(marked.pixel(px + 6, py), plain.pixel(px + 6, py));
  // A repaint draws it again, as it stood.
  redraw.RedrawScreen();
  EXPECT_EQ(picture(), marked);
  // Setting it elsewhere takes the old mark away.
  setPointer(-300000, -200000);
  measuring.SetReferencePoint(0);
  measuring.clearReferencePoint();
  redraw.RedrawScreen();
  EXPECT_EQ(picture(), plain);

  // The ruler cursor: drawn at each move, taken away by the next and by clearing. It changes
  // the strips alone, and only they are shown again.
  std::vector<std::array<int32_t, 4>> repainted;
  measuring.hooks.repaint = [&](int32_t x, int32_t y, int32_t w, int32_t h) {
    repainted.push_back({x, y, w, h});
  };
  view.RulerOn = true;
  measuring.pointerMoved(0, 0);
  EXPECT_EQ(repainted,
            (std::vector<std::array<int32_t, 4>>{{0, 0, 21, Height}, {0, Height - 21, Width, 21}}));
  const QImage cursor = picture();
  EXPECT_NE(cursor, plain);
  measuring.pointerMoved(50000, 70000);
  measuring.pointerMoved(0, 0);
  EXPECT_EQ(picture(), cursor);
  // A figure elsewhere in the view takes the cursor's place: the whole picture is shown again.
  repainted.clear();
  measuring.showOverlay([&](int32_t dc) {
    measuring.SetDrawStyle(5, false);
    kernel.graphics.G_Line(dc, 0, 0, 100000, 100000);
  });
  EXPECT_EQ(repainted, (std::vector<std::array<int32_t, 4>>{{0, 0, Width, Height}}));
  EXPECT_NE(picture(), cursor);
  measuring.clearOverlay();
  EXPECT_EQ(picture(), plain);
}

// The mark is drawn in the highlight colour, in colour 15 in a one-colour view.
TEST_F(MeasuringTest, TheMarkTakesColour15InAOneColourView) {
  for (bool mono : {false, true}) {
    SCOPED_TRACE(mono);
    if (mono)
      redraw.toggle(DisplayOption::Mono);
    const QImage plain = picture();
    setPointer(100000, 50000);
    measuring.SetReferencePoint(0);
    int32_t px = 100000, py = 50000;
    kernel.graphics.G_LPtoDP(view.device(), px, py);
    const uint32_t drawn = (picture().pixel(px + 6, py) ^ plain.pixel(px + 6, py)) & 0xFFFFFF;
    const uint32_t colour = paletteRgb()[size_t(mono ? 15 : redraw.HighlightColour)];
    EXPECT_EQ(drawn, qRgb(redOf(colour), greenOf(colour), blueOf(colour)) & 0xFFFFFF);
    measuring.clearReferencePoint();
    redraw.RedrawScreen();
  }
}

TEST_F(MeasuringTest, RulerOnAndOffAndMirrored) {
  const QImage plain = picture();
  measuring.M_Ruler_Click();
  ASSERT_TRUE(view.RulerOn);
  const QImage ruled = picture();
  // Half way between two groups, beyond the ticks: the strip's colour, left and below.
  const QRgb strip = ruled.pixel(25, Height / 2 - 25);
  EXPECT_NE(strip, plain.pixel(25, Height / 2 - 25));
  EXPECT_EQ(ruled.pixel(Width / 2 + 25, Height - 25), strip);
  // A repaint keeps the ruler; off takes it away.
  redraw.RedrawScreen();
  EXPECT_EQ(picture(), ruled);

  // The tick at world X +1 mm (10 pixels from the origin in the middle): the sweep to the right
  // draws in colour 9, and in a mirrored view, where it runs to the left, in colour 4.
  view.DisplayUnit = displayunit::Millimetre;
  const auto tickColour = [&](bool mirrored) {
    view.ViewFlags = mirrored ? viewflag::Mirror | viewflag::ScreenView : viewflag::ScreenView;
    redraw.RedrawScreen();
    int32_t x = 100000, y = 0;
    kernel.graphics.G_LPtoDP(view.device(), x, y);
    return picture().pixel(x, Height - 2);
  };
  const auto rgb = [](int32_t n) {
    uint32_t palette[32];
    Graphics::G_GetAllRGBColors(0, palette);
    return qRgb(redOf(palette[n]), greenOf(palette[n]), blueOf(palette[n]));
  };
  // A tick on the white strip is its colour smoothed towards white: the nearer of the two.
  const auto nearer = [&](QRgb pixel) {
    const auto residue = [&](QRgb colour) {
      int best = 1 << 30;
      for (int t = 0; t <= 16; ++t) {
        const auto mix = [t](int c) { return 255 + (c - 255) * t / 16; };
        best = std::min(best, std::abs(qRed(pixel) - mix(qRed(colour))) +
                                  std::abs(qGreen(pixel) - mix(qGreen(colour))) +
                                  std::abs(qBlue(pixel) - mix(qBlue(colour))));
      }
      return best;
    };
    return residue(rgb(RulerSweepColour)) < residue(rgb(RulerEdgeColour)) ? RulerSweepColour
                                                                          : RulerEdgeColour;
  };
  EXPECT_EQ(nearer(tickColour(false)), RulerSweepColour);
  EXPECT_EQ(nearer(tickColour(true)), RulerEdgeColour);
  view.ViewFlags = viewflag::ScreenView;
  view.DisplayUnit = displayunit::Inch;
  measuring.M_Ruler_Click();
  EXPECT_FALSE(view.RulerOn);
  EXPECT_EQ(picture(), plain);
}

TEST_F(MeasuringTest, MirroredLabelsAreTurnedOver) {
  // Millimetres: a label every 10 mm, 100 pixels. The origin 50 pixels below the middle puts the
  // label "10" of the Y sweep 50 pixels from the top, at the same place in both views; mirrored,
  // its ink is turned over left to right.
  view.RulerOn = true;
  view.DisplayUnit = displayunit::Millimetre;
  view.ViewCenterY = -500000;
  const auto labelInk = [&](bool mirrored) {
    view.ViewFlags = mirrored ? viewflag::Mirror | viewflag::ScreenView : viewflag::ScreenView;
    redraw.RedrawScreen();
    const QImage image = picture();
    const QRgb strip = image.pixel(25, 25);
    std::vector<std::string> rows;
    for (int y = 42; y <= 58; ++y) {
      std::string row;
      for (int x = 14; x < 39; ++x)
        row += farFrom(image.pixel(x, y), strip) ? '#' : '.';
      if (row.find('#') != std::string::npos)
        rows.push_back(row);
    }
    return rows;
  };
  const std::vector<std::string> normal = labelInk(false), mirrored = labelInk(true);
  ASSERT_FALSE(normal.empty());
  ASSERT_EQ(normal.size(), mirrored.size());
  // Trimmed to their ink, the mirrored rows are the normal rows read backwards.
  const auto trimmed = [](std::vector<std::string> rows, bool reverse) {
    size_t left = std::string::npos, right = 0;
    for (std::string& r : rows) {
      if (reverse)
        r = std::string(r.rbegin(), r.rend());
      left = std::min(left, r.find('#'));
      right = std::max(right, r.rfind('#'));
    }
    for (std::string& r : rows)
      r = r.substr(left, right - left + 1);
    return rows;
  };
  EXPECT_EQ(trimmed(mirrored, false), trimmed(normal, true));
  EXPECT_NE(trimmed(mirrored, false), trimmed(normal, false));
}

TEST_F(MeasuringTest, CalibrationAndZoomFactorRanges) {
  struct Case {
    const char* name;
    bool zoom;
    std::string answer;
    double value;  // what the setting holds afterwards
    bool refused;
  };
  const Case cases[] = {
      {"calibration 1 taken", false, "1", 1, false},
      {"calibration 10 taken", false, "10", 10, false},
      {"calibration 10.1 refused", false, "10.1", 10, true},
      {"calibration 0.5 refused", false, "0,5", 10, true},
      {"calibration empty ends quietly", false, "", 10, false},
      {"zoom 1 refused", true, "1", 2, true},
      {"zoom 10 taken", true, "10", 10, false},
      {"zoom 10.1 refused", true, "10.1", 10, true},
      {"zoom 1.05 taken", true, "1.05", 1.05, false},
      {"zoom empty ends quietly", true, "", 1.05, false},
  };
  view.ZoomFactor = 2;
  std::vector<std::string> reports;
  measuring.hooks.reportStatus = [&](int32_t status, const std::string& text) {
    reports.push_back(std::to_string(status) + " " + text);
  };
  for (const Case& c : cases) {
    reports.clear();
    prompts.queryAnswers = {QueryAnswer{c.answer, 0}};
    if (c.zoom)
      measuring.M_ZoomFactor_Click();
    else
      measuring.mnuCalRulerType_Click(rulertype::Custom);
    EXPECT_DOUBLE_EQ(c.zoom ? view.ZoomFactor : measuring.RulerCustomStep, c.value) << c.name;
    const std::string expected = c.zoom ? "2002 (Range = 1.1 to 10)  " : "2002 (Range = 1 to 10)  ";
    EXPECT_EQ(reports, c.refused ? std::vector<std::string>{expected} : std::vector<std::string>{})
        << c.name;
  }
  // The prompt offers the current value first.
  ASSERT_FALSE(prompts.queries.empty());
  EXPECT_EQ(prompts.queries.back().list,
            (std::vector<std::string>{"1.05", "1.5", "2", "2.5", "3", "4"}));
  EXPECT_EQ(prompts.queries.back().prompt, "Set Zoom In/Out Factor : (Range = 1.1 to 10)");
  EXPECT_EQ(measuring.RulerType, rulertype::Custom);
}

}  // namespace
}  // namespace tvx::test
