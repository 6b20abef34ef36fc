// Opening the view, pixels and world points through a real device, keeping the view in the
// world, and the cover with the scroll bars.
#include "ViewTestSupport.h"

#include <random>

namespace tvx {
namespace {

using ViewCoordinatesTest = test::ViewFixture;
using Point = std::array<int32_t, 2>;

TEST_F(ViewCoordinatesTest, OpenViewPassesTheNegatedCentreAndPointsAreClampedToTheWorld) {
  view.m_Precision = 100;
  view.ViewCenterX = 5000;
  view.ViewCenterY = -7000;  // world Y 7000
  for (int32_t mirror : {0, viewflag::Mirror}) {
    view.ViewFlags = mirror;
    ASSERT_EQ(view.OpenView(1), 1);
    EXPECT_EQ(view.ViewRect, (FrameRect{5000 - 20000, 7000 - 15000, 5000 + 20000, 7000 + 15000}));
    EXPECT_EQ(worldOf(Width / 2, Height / 2), (Point{5000, 7000}));
    // The top of the picture is the high Y; mirrored, the left is the high X.
    EXPECT_EQ(worldOf(0, 0), (Point{mirror ? view.ViewRect.MaxX : view.ViewRect.MinX, 22000}));
  }
  view.m_Precision = 1000000;
  view.ViewCenterX = 210000000;
  view.ViewCenterY = -100000000;
  view.ViewFlags = 0;
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
    view.m_Precision = s;
    view.ViewCenterX = centreOf(random);
    view.ViewCenterY = centreOf(random);
    view.ViewFlags = mirror ? viewflag::Mirror : 0;
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
  struct Case {
    const char* what;
    int32_t precision, mirror, cx, cy;  // cy is the stored, negated Y
    int32_t expectedPrecision, expectedX, expectedY;
  };
  // At 10000 units per pixel the half extents are 2000000 by 1500000. At 2540000 the picture
  // is larger than the world: 440000000 must just fit across the larger side, 400 pixels.
  const Case cases[] = {
      {"inside", 10000, 0, 5000000, -7000000, 10000, 5000000, -7000000},
      {"right and low edges", 10000, 0, 218000001, 218500000, 10000, 218000000, 218500000},
      {"left and high edges", 10000, 0, -218000001, -218500001, 10000, -218000000, -218500000},
      {"far outside", 10000, 0, 2000000000, -2000000000, 10000, 218000000, -218500000},
      {"mirrored", 10000, 1, 219000000, 0, 10000, 218000000, 0},
      {"larger than the world", 2540000, 0, 100000000, -100000000, 1100000, 0, -55000000},
      {"larger, mirrored", 2540000, 1, -100000000, 3, 1100000, 0, 3},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    view.m_Precision = c.precision;
    view.ViewFlags = c.mirror;
    view.ViewCenterX = c.cx;
    view.ViewCenterY = c.cy;
    view.PrecisionText.clear();
    const ViewChange change = view.keepInWorld();
    EXPECT_EQ(zoom(), (std::array{c.expectedPrecision, c.expectedX, c.expectedY}));
    EXPECT_EQ(change.Precision, !view.PrecisionText.empty());
    EXPECT_EQ(change.Precision, c.precision != c.expectedPrecision) << "a new precision is shown";
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
  EXPECT_EQ(bar(view.VerticalBar), (Bar{32000, -32000, 16000, 640, 15})) << "one unit too thin";
  EXPECT_EQ(view.CoverRect.CoverHeight, SmallestScrollCover - 1) << "the cover stays the data's";

  addBox(3, 100 * ScrollBarUnit, 200 * ScrollBarUnit, 600 * ScrollBarUnit, 500 * ScrollBarUnit);
  view.ViewCenterX = 400 * ScrollBarUnit;
  view.ViewCenterY = -350 * ScrollBarUnit;
  view.SetScrollBars();  // both layers: x from 0 to 700 bar units, y from 0 to 500
  EXPECT_EQ(bar(view.HorizontalBar), (Bar{0, 700, 175, 7, 400}));
  EXPECT_EQ(bar(view.VerticalBar), (Bar{500, 0, 125, 5, 350}));
  view.ViewCenterX = view.ViewCenterY = -100000000;
  view.SetScrollBars();
  EXPECT_EQ(view.HorizontalBar.Value, 0) << "held within the bar";
  EXPECT_EQ(view.VerticalBar.Value, 500);
}

TEST_F(ViewCoordinatesTest, MovingABarMovesTheCentreInTheMirroredSenseWhenMirrored) {
  EXPECT_FALSE(view.horizontalBarChanged(0).any() || view.verticalBarChanged(0).any());
  const ViewChange change = view.horizontalBarChanged(100);
  EXPECT_EQ(view.ViewCenterX, 687500);
  EXPECT_TRUE(change.Redraw && change.FocusView);
  view.ViewFlags = viewflag::Mirror;
  view.horizontalBarChanged(100);
  EXPECT_EQ(view.ViewCenterX, -687500);
  view.verticalBarChanged(-40);
  EXPECT_EQ(view.ViewCenterY, 275000) << "bar value -40 is world Y -275000";
}

}  // namespace
}  // namespace tvx
