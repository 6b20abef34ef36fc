// Opening the view, pixels and world points through a real device, keeping the view in the world,
// and the cover with the scroll bars; zoom steps, typed precision, the redraw modes with fit and
// actual size, box zoom, the wheel, panning, the unit switch and the remembered view; display
// units and their pictures, the view's settings, and the kernel's tables read back.
#include "ViewTestSupport.h"
#include "viewer/Redraw.h"

#include <cmath>
#include <random>

namespace tvx {
namespace {

using ViewCoordinatesTest = test::ViewFixture;
using Point = std::array<int32_t, 2>;

TEST_F(ViewCoordinatesTest, OpenViewPassesTheNegatedCentreAndPointsAreClampedToTheWorld) {
  for (int32_t mirror : {0, viewflag::Mirror}) {
    place(100, mirror, 5000, -7000);  // world Y 7000
    ASSERT_EQ(view.OpenView(1), 1);
    EXPECT_EQ(view.ViewRect, (FrameRect{5000 - 20000, 7000 - 15000, 5000 + 20000, 7000 + 15000}));
    EXPECT_EQ(worldOf(Width / 2, Height / 2), (Point{5000, 7000}));
    // The top of the picture is the high Y; mirrored, the left is the high X.
    EXPECT_EQ(worldOf(0, 0), (Point{mirror ? view.ViewRect.MaxX : view.ViewRect.MinX, 22000}));
  }
  place(1000000, 0, 210000000, -100000000);
  ASSERT_EQ(view.OpenView(2), 1);
  EXPECT_EQ(worldOf(Width - 1, Height / 2), (Point{WorldExtent, 100000000})) << "axis by axis";
  EXPECT_EQ(worldOf(0, 0), (Point{10000000, WorldExtent}));
  view.setDevice(0);
  EXPECT_EQ(view.OpenView(1), 0) << "no device, no view";
}

// A pixel's world point drawn as a dot lands on that pixel, and any world point drawn lies in
// the square of the pixel that reads back: each conversion is the other's inverse.
TEST_F(ViewCoordinatesTest, PixelsAndWorldPointsAreEachOthersInverseThroughTheDevice) {
  std::mt19937 random(6);
  std::uniform_int_distribution<int32_t> precisionOf(1, 60000), centreOf(-90000000, 90000000);
  const auto below = [&](int32_t n) { return int32_t(random() % uint32_t(n)); };
  const auto litPixel = [&](int32_t x, int32_t y) {
    k.graphics.I_DrawItem(view.device(), k.store.I_MakeItem(dotRecord(x, y)));
    Point found{-1, -1};
    for (int py = 0; py < Height; ++py)
      for (int px = 0; px < Width; ++px)
        if (image.pixel(px, py) != qRgb(0, 0, 0)) {
          EXPECT_EQ(found[0], -1) << "one pixel only";
          found = {px, py};
          image.setPixel(px, py, qRgb(0, 0, 0));
        }
    return found;
  };
  for (int trial = 0; trial < 24; ++trial) {
    const int32_t s = trial < 2 ? 1 + trial : precisionOf(random);
    const bool mirror = trial % 2;
    const int32_t cx = centreOf(random);
    place(s, mirror ? viewflag::Mirror : 0, cx, centreOf(random));
    SCOPED_TRACE(testing::Message() << "precision " << s << " mirror " << mirror);
    ASSERT_EQ(view.OpenView(1), 1);
    const FrameRect seen = view.ViewRect;
    for (int n = 0; n < 12; ++n) {
      const Point pixel{below(Width), below(Height)};
      const Point corner = worldOf(pixel[0], pixel[1]);
      EXPECT_EQ(litPixel(corner[0] + (mirror ? -s / 2 : s / 2), corner[1] - s / 2), pixel);
      // Points on the right (mirrored: left) and bottom edges of the view belong to no pixel.
      const int32_t wx = seen.MinX + (mirror ? 1 : 0) + below(seen.MaxX - seen.MinX);
      const int32_t wy = seen.MinY + 1 + below(seen.MaxY - seen.MinY);
      const Point lit = litPixel(wx, wy);
      const Point back = worldOf(lit[0], lit[1]);
      EXPECT_TRUE(mirror ? wx <= back[0] && wx > back[0] - s : wx >= back[0] && wx < back[0] + s);
      EXPECT_TRUE(wy <= back[1] && wy > back[1] - s);
    }
  }
}

TEST_F(ViewCoordinatesTest, KeepingTheViewInTheWorld) {
  // What, precision, mirror, centre (Y negated), and the precision and centre expected.
  using Case =
      std::tuple<const char*, int32_t, int32_t, int32_t, int32_t, int32_t, int32_t, int32_t>;
  // At 10000 units per pixel the half extents are 2000000 by 1500000. At 2540000 the picture
  // is larger than the world: 440000000 must just fit across the larger side, 400 pixels.
  const Case cases[] = {
      {"inside", 10000, 0, 5000000, -7000000, 10000, 5000000, -7000000},
      {"right and low edges", 10000, 0, 218000001, 218500000, 10000, 218000000, 218500000},
      {"left and high edges", 10000, 0, -218000001, -218500001, 10000, -218000000, -218500000},
      {"far outside", 10000, 0, 2000000000, -2000000000, 10000, 218000000, -218500000},
      {"mirrored", 10000, 1, 219000000, 0, 10000, 218000000, 0},
      {"larger than the world", 2540000, 0, 100000000, -100000000, 1100000, 0, -55000000},
      {"larger, mirrored", 2540000, 1, -100000000, 3, 1100000, 0, 3}};
  for (const auto& [what, precision, mirror, cx, cy, expectedPrecision, expectedX, expectedY] :
       cases) {
    SCOPED_TRACE(what);
    place(precision, mirror, cx, cy);
    view.PrecisionText.clear();
    const ViewChange change = view.keepInWorld();
    EXPECT_EQ(zoom(), (std::array{expectedPrecision, expectedX, expectedY}));
    EXPECT_EQ(change.Precision, !view.PrecisionText.empty());
    EXPECT_EQ(change.Precision, precision != expectedPrecision) << "a new precision is shown";
  }
}

TEST_F(ViewCoordinatesTest, ScrollBarsCoverTheDataOrTheWholeWorld) {
  const auto bar = [](const ScrollBarState& b) {
    return std::array<int32_t, 5>{b.Minimum, b.Maximum, b.LargeChange, b.SmallChange, b.Value};
  };
  using Bar = std::array<int32_t, 5>;
  EXPECT_TRUE(view.SetScrollBars().ScrollBars);
  EXPECT_EQ(bar(view.HorizontalBar), (Bar{-32000, 32000, 16000, 640, 0})) << "empty store";
  EXPECT_EQ(bar(view.VerticalBar), (Bar{32000, -32000, 16000, 640, 0})) << "the top is high Y";

  addBox(2, 0, 0, 700 * ScrollBarUnit, SmallestScrollCover - 1);
  view.ViewCenterY = -100000;
  view.SetScrollBars();
  // One unit too thin for the bar; the cover stays the data's.
  EXPECT_EQ(std::tuple(bar(view.VerticalBar), view.CoverRect.CoverHeight),
            std::tuple(Bar{32000, -32000, 16000, 640, 15}, SmallestScrollCover - 1));

  addBox(3, 100 * ScrollBarUnit, 200 * ScrollBarUnit, 600 * ScrollBarUnit, 500 * ScrollBarUnit);
  view.ViewCenterX = 400 * ScrollBarUnit;
  view.ViewCenterY = -350 * ScrollBarUnit;
  view.SetScrollBars();  // both layers: x from 0 to 700 bar units, y from 0 to 500
  EXPECT_EQ(std::tuple(bar(view.HorizontalBar), bar(view.VerticalBar)),
            std::tuple(Bar{0, 700, 175, 7, 400}, Bar{500, 0, 125, 5, 350}));
  view.ViewCenterX = view.ViewCenterY = -100000000;
  view.SetScrollBars();
  EXPECT_EQ(std::tuple(view.HorizontalBar.Value, view.VerticalBar.Value), std::tuple(0, 500))
      << "held within the bar";
}

TEST_F(ViewCoordinatesTest, MovingABarMovesTheCentreInTheMirroredSenseWhenMirrored) {
  EXPECT_FALSE(view.horizontalBarChanged(0).any() || view.verticalBarChanged(0).any());
  const ViewChange change = view.horizontalBarChanged(100);
  EXPECT_TRUE(view.ViewCenterX == 687500 && change.Redraw && change.FocusView);
  view.ViewFlags = viewflag::Mirror;
  view.horizontalBarChanged(100);
  view.verticalBarChanged(-40);
  EXPECT_EQ(centre(), (Point{-687500, 275000})) << "bar value -40 is world Y -275000";
}

using ViewZoomTest = test::ViewFixture;
using Zoom = std::array<int32_t, 3>;

TEST_F(ViewZoomTest, ZoomStepsStopAtTheirLimitsAndCentreOnTheCursor) {
  const std::tuple<int32_t, double, int32_t, int32_t> cases[] = {
      {25400, 2, zoomstep::Out, 50800},     {25403, 2, zoomstep::In, 12702},  // halves to even
      {100, 2, zoomstep::In, 100},          {1, 2, zoomstep::In, 100},
      {2000000, 2, zoomstep::Out, 2540000}, {25400, 2, zoomstep::Recentre, 25400},
      {25400, -3, zoomstep::Out, 25400},  // factor 1
  };
  for (const auto& [precision, factor, mode, expected] : cases) {
    SCOPED_TRACE(testing::Message() << precision << " by " << factor << " mode " << mode);
    view.m_Precision = precision;
    view.ZoomFactor = factor;
    view.CursorX = 1000;
    view.CursorY = 2000;
    const ViewChange change = view.ZoomStep(mode);
    EXPECT_EQ(zoom(), (Zoom{expected, 1000, -2000}));
    EXPECT_TRUE(change.Redraw && change.ScrollBars && change.Precision && change.RepeatPointerMove);
  }
  view.ViewCenterX = 5000;  // the tools zoom about the centre
  view.zoomAboutCentre(zoomstep::In);
  EXPECT_EQ(centre(), (Point{5000, -2000}));
}

TEST_F(ViewZoomTest, TypedPrecisionIsReadInTheDisplayUnit) {
  const int32_t in = displayunit::Inch, mm = displayunit::Millimetre;
  // 0.000125 inch is 317.5 units, but the combo's inch is 25.4 in single precision, which gives
  // 317.49999...: 317, not the even 318. The shown text changes nothing; then the limits, and
  // texts without a usable number.
  const std::tuple<int32_t, const char*, int32_t, int32_t> cases[] = {
      {mm, "0,05", 25000, 5000},    {mm, "0.05", 25000, 5000},  {in, "0,05", 25400, 127000},
      {in, "0.000125", 25400, 317}, {mm, "0,0001", 25000, 100}, {mm, "-3", 25000, 100},
      {in, "2", 25400, 2540000},    {mm, "", 12345, 12345},     {in, "0", 12345, 12345}};
  for (const auto& [unit, text, precision, expected] : cases) {
    SCOPED_TRACE(text);
    view.DisplayUnit = unit;
    view.m_Precision = precision;
    view.PrecisionText = text;
    view.applyTypedPrecision();
    EXPECT_EQ(view.m_Precision, expected);
  }
  view.DisplayUnit = mm;
  view.PrecisionText = "0,05";  // the redraw button applies what was typed
  view.ATB_RedrawButtonClick(zoommode::Current);
  EXPECT_EQ(std::tuple(view.m_Precision, view.PrecisionText), std::tuple(5000, "0.050"));
}

TEST_F(ViewZoomTest, RedrawModesCurrentCentreFitAndActualSize) {
  view.ViewCenterX = 777;
  view.ViewCenterY = 888;
  view.ZoomModeFlag = zoommode::ActualBoard;
  const ViewChange change = view.ATB_RedrawButtonClick(zoommode::Current);
  EXPECT_TRUE(change.ScrollBars && change.Precision && change.Redraw && change.FocusView &&
              change.RepeatPointerMove);
  EXPECT_EQ(std::tuple(zoom(), view.ZoomModeFlag),
            std::tuple(Zoom{25400, 777, 888}, zoommode::ActualBoard))
      << "the mode is the tools' to set";

  view.ATB_RedrawButtonClick(zoommode::Board);  // an empty store: nothing to fit
  EXPECT_EQ(zoom(), (Zoom{25400, 777, 888}));
  view.ATB_RedrawButtonClick(zoommode::Center);
  EXPECT_EQ(centre(), (Point{0, 0}));

  using Case = std::tuple<const char*, int32_t, bool, int32_t, int32_t, int32_t>;
  // 4000000 by 1000000 on 400 by 300 pixels; the ruler adds its margin to both and moves the
  // centre by half of it, so that the margin is left and below.
  const Case cases[] = {
      {"fit", zoommode::Board, false, 10000 + 635, 3000000, 2500000},
      {"fit, ruler", zoommode::Board, true, (4000000 + RulerMargin) / Width + 635,
       3000000 - RulerMargin / 2, 2500000 - RulerMargin / 2},
      {"actual size", zoommode::ActualBoard, false, ActualSizePrecision, 3000000, 2500000}};
  addBox(1, 1000000, 2000000, 5000000, 3000000);
  for (const auto& [what, mode, ruler, precision, x, y] : cases) {
    SCOPED_TRACE(what);
    view.RulerOn = ruler;
    view.ATB_RedrawButtonClick(mode);
    EXPECT_EQ(std::tuple(zoom(), view.PrecisionText),
              std::tuple(Zoom{precision, x, -y}, view.lengthText(precision)));
  }
  view.setFitSource([] { return FrameRect{-1000000, -1000000, 3000000, 2000000}; });
  view.ATB_RedrawButtonClick(zoommode::Board);  // the import's board rectangle
  EXPECT_EQ(zoom(), (Zoom{10635, 1000000, -500000}));
}

TEST_F(ViewZoomTest, DataSmallerThanAPixelFitsAtPrecisionOne) {
  addBox(2, 0, 0, 300, 200);
  view.ATB_RedrawButtonClick(zoommode::Board);
  EXPECT_EQ(zoom(), (Zoom{1, 150, -100}));
  view.ATB_RedrawButtonClick(zoommode::ActualBoard);
  EXPECT_EQ(view.m_Precision, 1) << "actual size of a tiny cover";
}

TEST_F(ViewZoomTest, BoxZoomFramesTheBoxThroughTheShownPrecision) {
  view.DisplayUnit = displayunit::Millimetre;
  ViewChange change = view.boxZoom(0, 0, 1233881, 1000);
  // 1233881 / 400 pixels = 3084.7, truncated to 3084 units (0.03084 mm): the combo shows
  // "0.0308" and the redraw in mode 0 reads that back.
  EXPECT_EQ(std::tuple(view.PrecisionText, zoom(), view.ZoomModeFlag),
            std::tuple("0.0308", Zoom{3080, 616940, -500}, zoommode::Current))
      << "616940.5 to the even neighbour";
  EXPECT_TRUE(change.ModeTool && change.Redraw && change.ScrollBars && change.Precision);
  view.DisplayUnit = displayunit::Inch;
  view.boxZoom(0, 0, 4000000, -1500000);  // 10000 units: "0.00394" inch
  EXPECT_EQ(view.m_Precision, int32_t(std::nearbyint(0.00394 * 100000 * double(25.4f))));
  EXPECT_EQ(view.ViewCenterY, 750000);
  view.boxZoom(10, 10, 20, 30);  // within a pixel: 1, then the finest step through the combo
  EXPECT_EQ(view.m_Precision, FinestStepPrecision);

  view.ZoomModeFlag = zoommode::Board;
  const std::array<int32_t, 4> rejected[] = {
      {5, 0, 5, 1000},
      {0, 7, 1000, 7},                    // no width, no height
      {0, 0, WorldExtent + 1, 1000},      // a corner outside the world
      {-200000000, 0, 200000000, 1000}};  // wider than half the world
  for (const auto& [sx, sy, ex, ey] : rejected) {
    EXPECT_EQ((std::tuple{view.boxZoom(sx, sy, ex, ey).any(), view.ViewCenterX, view.ZoomModeFlag}),
              std::tuple(false, 15, zoommode::Board));
  }
  EXPECT_TRUE(view.boxZoom(-WorldExtent, 0, 0, 1000).any()) << "the limits are inside";
}

TEST_F(ViewZoomTest, WheelKeepsThePointUnderThePointer) {
  const Point pixels[] = {{0, 0}, {399, 299}, {17, 250}, {200, 150}, {311, 42}};
  for (int32_t unit : {displayunit::Inch, displayunit::Millimetre})
    for (int32_t mirror : {0, viewflag::Mirror})
      for (int32_t rotation : {-120, 120})
        for (const Point& p : pixels) {
          SCOPED_TRACE(testing::Message() << unit << " " << mirror << " " << rotation << " at "
                                          << p[0] << "," << p[1]);
          const int32_t start = view.tables().defaultPrecision(unit);
          view.DisplayUnit = unit;
          place(start, mirror, 1234567, -7654321);
          ASSERT_EQ(view.OpenView(2), 1);
          const Point before = worldOf(p[0], p[1]);
          EXPECT_TRUE(view.wheelZoom(rotation, p[0], p[1]).Redraw);
          EXPECT_EQ(view.m_Precision, view.tables().wheelPrecision(unit, start, rotation));
          ASSERT_EQ(view.OpenView(2), 1);
          EXPECT_EQ(worldOf(p[0], p[1]), before);
        }
}

TEST_F(ViewZoomTest, PanningUnitSwitchAndTheRememberedView) {
  view.m_Precision = 1000;
  ASSERT_EQ(view.OpenView(1), 1);
  const Point target = worldOf(10, 20);
  EXPECT_TRUE(view.panToPixel(10, 20).Redraw);
  ASSERT_EQ(view.OpenView(1), 1);
  EXPECT_EQ(worldOf(Width / 2, Height / 2), target) << "the point is now in the middle";
  view.centreOn(300000000, -300000000);
  EXPECT_EQ(centre(), (Point{WorldExtent, WorldExtent})) << "world Y -220000000, negated";

  view.RulerOn = true;
  ViewChange change = view.M_Mm_Click();
  EXPECT_EQ(change.EraseRulerUnit, displayunit::Inch) << "erased in the old unit";
  EXPECT_TRUE(change.DrawRuler && change.Combos && change.UnitTool && change.Precision &&
              !change.Redraw)
      << "the artwork is not drawn again";
  EXPECT_EQ(
      std::tuple(view.PrecisionText, view.precisionComboRows()[11], view.rasterComboRows()[1]),
      std::tuple("0.010", "0.250", "2.000"));
  change = view.M_Mm_Click();
  EXPECT_FALSE(change.Combos || change.DrawRuler || change.EraseRulerUnit >= 0);
  view.RulerOn = false;
  change = view.M_Inches_Click();
  EXPECT_TRUE(change.Combos && change.EraseRulerUnit < 0 && !change.DrawRuler);
  EXPECT_EQ(std::tuple(view.precisionComboRows()[0], view.rasterComboRows()[6]),
            std::tuple("0.0001", "0.1000"))
      << "254 units, a ten-thousandth of an inch";

  EXPECT_FALSE(view.exchangeViewHistory().any()) << "the first exchange only remembers";
  view.m_Precision = 5000;
  view.ViewCenterX = 30;
  EXPECT_TRUE(view.exchangeViewHistory().Redraw);
  EXPECT_EQ(zoom(), (Zoom{1000, WorldExtent, WorldExtent}));
  view.exchangeViewHistory();
  EXPECT_EQ(zoom(), (Zoom{5000, 30, WorldExtent}));
}

// The length texts are the common ones (their own tests); angles have a picture of their own.
TEST(DisplayUnitsTest, AnglesInTheirPictureAndAStrayUnitAsInch) {
  EXPECT_EQ(std::tuple(FormatAngle(22500), FormatAngle(1250)), std::tuple("22.5", "1.25"));
  EXPECT_EQ(displayUnitInfo(7).Word, "inches");
}

TEST(ViewTablesTest, CurrentRowsAndDefaultPrecisionComeFromTheKernel) {
  Kernel k;
  test::writeStartupTables(k.strings);
  ViewTables t = ReadViewTables(k.strings);
  const int32_t in = displayunit::Inch, mm = displayunit::Millimetre;
  EXPECT_EQ(std::tuple(t.defaultPrecision(in), t.defaultPrecision(mm), t.currentGridStep(mm),
                       t.currentPickPixels(), t.currentAngleStep(), t.gridRows(mm).size(),
                       t.precisionRows(mm).back()),
            std::tuple(25400, 25000, 200000, 2, 15000, 12u, 250000));
  // No current row, a row beyond the group, and a current row that holds 0 all give 12700.
  int32_t* precision = reinterpret_cast<int32_t*>(k.strings.E_SysTable(21));
  precision[0] = 16;
  precision[16] = 0;
  t = ReadViewTables(k.strings);
  EXPECT_EQ(std::tuple(t.defaultPrecision(in), t.defaultPrecision(mm)), std::tuple(12700, 12700));
  precision[16] = 3;
  EXPECT_EQ(ReadViewTables(k.strings).defaultPrecision(mm), 1000);
  precision[19] = 0;
  EXPECT_EQ(ReadViewTables(k.strings).defaultPrecision(mm), 12700);
}

TEST(ViewTablesTest, WheelStepsAlongTheRowsOfTheUnit) {
  Kernel k;
  test::writeStartupTables(k.strings);
  const ViewTables t = ReadViewTables(k.strings);
  const int32_t in = displayunit::Inch, mm = displayunit::Millimetre;
  const std::array<int32_t, 4> cases[] = {
      {in, 25400, -120, 20320}, {in, 25400, 120, 50800},   {in, 25400, 0, 50800},
      {in, 30000, -1, 25400},   {in, 30000, 1, 50800},      // between two rows
      {in, 254, -120, 254},     {in, 254000, 120, 254000},  // none beyond: the finest, the coarsest
      {in, 1, 120, 254},        {mm, 25000, -120, 20000},  {mm, 254, -120, 100}};
  for (const auto& [unit, precision, rotation, expected] : cases) {
    SCOPED_TRACE(testing::Message() << unit << " " << precision << " " << rotation);
    EXPECT_EQ(t.wheelPrecision(unit, precision, rotation), expected);
  }
  Kernel empty;
  EXPECT_EQ(ReadViewTables(empty.strings).wheelPrecision(in, 5000, -120), 5000);
}

}  // namespace
}  // namespace tvx
