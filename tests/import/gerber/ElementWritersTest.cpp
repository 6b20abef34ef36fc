// The element writers: filters and Force, the exclusion list, clear polarity, the pens of draws,
// arcs, holes, and outlines with arcs.
#include "GerberDrawSupport.h"

#include "import/gerber/OutlineArcs.h"

#include <cmath>

namespace tvx {
namespace {

using test::ClearCode;
using test::LayerColour;
using test::typesOf;

class ElementWriters : public test::DrawFixture {};

TEST_F(ElementWriters, LabelsAndTheExclusionList) {
  EXPECT_EQ(ApertureLabel(10), "D10*");
  EXPECT_EQ(ApertureLabel(12345), "D1234");
  EXPECT_EQ(ApertureLabel(0), "         ");
  EXPECT_TRUE(labelExcluded("|D10*|D23*|", 23));
  EXPECT_FALSE(labelExcluded("|D100*|", 10));
  EXPECT_FALSE(labelExcluded(" ", 10));
  ExclusionCache cache("|D11*|");
  EXPECT_TRUE(cache.excluded(11));
  EXPECT_TRUE(cache.excluded(11));
  EXPECT_FALSE(cache.excluded(1));
}

TEST_F(ElementWriters, DiscsPassTheArcFilterOnlyWithTheBitOrForce) {
  file.FilterMask = filter::AF_ILN;
  writer().AddDisc(100.4, 200.6, 50.5, 7, StyleOpen, force::None, flashword::Drawn, 10);
  EXPECT_TRUE(items().empty());
  writer().AddDisc(100.4, 200.6, 50.5, 7, StyleOpen, force::Disc, flashword::Single, 10);
  ASSERT_EQ(items().size(), 1u);
  const ItemRecord disc = items()[0];
  // A half of the width goes to the even neighbour.
  EXPECT_EQ((std::array{disc.Type, disc.X, disc.Y, disc.Width, disc.LineWidth, disc.Link,
                        int(disc.Colour)}),
            (std::array<int32_t, 7>{ItemCircle, 100, 201, 50, 7, 10, LayerColour}));
  EXPECT_EQ(disc.Attributes & (attr::Flashed | attr::Shown), attr::Flashed | attr::Shown);

  file.Tag = "|D10*|";
  writer().AddDisc(0, 0, 10, 0, StyleFilled, force::Disc, flashword::Single, 10);
  writer().AddStroke(0, 0, 10, 0, 5, RoundAperture, 10, force::Stroke, flashword::Drawn);
  writer().AddArc({0, 0}, 10, {10, 0}, {0, 10}, 5, 10, force::Disc);
  EXPECT_EQ(items().size(), 1u) << "an excluded aperture writes nothing";
}

TEST_F(ElementWriters, ClearPolarityAndHolesTakeTheClearColour) {
  LayerFileRecord& f = file;
  f.ClearPolarity = true;
  writer().AddBox(0, 0, 10, 10, 0, StyleFilled, 9, flashword::Single, 11);
  f.ClearPolarity = false;
  writer().AddHole(0, 0, 40, 0, 11);
  writer().AddHole(0, 0, 40, 20, 11);
  writer().AddHole(0, 0, 0, 20, 11);
  writer().AddHole(0, 0, -1, -1, 11);
  const auto all = items();
  ASSERT_EQ(all.size(), 3u);
  EXPECT_EQ(std::pair(int(all[0].Colour), all[0].LineWidth), std::pair(ClearCode, 0))
      << "a filled box has no line width";
  EXPECT_EQ((std::array{all[1].Type, all[1].Width, int(all[1].Colour)}),
            (std::array<int32_t, 3>{ItemCircle, 20, ClearCode}));
  EXPECT_EQ(std::pair(all[2].Type, int(all[2].Style)),
            std::pair(int32_t(ItemRectangle), int(StyleFilled)));
  EXPECT_EQ(test::box(all[2]), (test::Box{-20, -10, 40, 20}));
  EXPECT_EQ(all[2].Attributes & flashword::Piece, flashword::Piece);
}

TEST_F(ElementWriters, StrokesTakeTheirPenFromTheAperture) {
  // Round pen: a line from the start with the vector to the end.
  writer().AddStroke(1000, 2000, 4000, 6000, 250, RoundAperture, 10, force::None, 0);
  // Square pen along a 3-4-5 diagonal: one box with square ends, turned to the stroke.
  writer().AddStroke(0, 0, 3000, 4000, 1000, SquareAperture, 11, force::None, 0);
  // A square pen on a single point is the square itself.
  writer().AddStroke(500, 500, 500, 500, 200, SquareAperture, 11, force::None, 0);
  const auto all = items();
  ASSERT_EQ(typesOf(all), (std::vector<int32_t>{ItemLine, ItemRectangle, ItemRectangle}));
  EXPECT_EQ((std::array{all[0].X, all[0].Y, all[0].Width, all[0].Height, all[0].LineWidth}),
            (std::array{1000, 2000, 3000, 4000, 250}));
  // a = 500 x 3/5 = 300, b = 500 x 4/5 = 400: the corner lies half a side behind and beside.
  EXPECT_EQ(test::box(all[1]), (test::Box{100, -700, 6000, 1000}));
  EXPECT_EQ(std::pair(all[1].Angle, int(all[1].Style)), std::pair(53130, int(StyleFilled)));
  EXPECT_EQ((std::array{all[2].X, all[2].Y, all[2].Width, all[2].Height, all[2].Angle}),
            (std::array{400, 400, 200, 200, 0}));

  file.FilterMask = filter::AF_IPD;
  writer().AddStroke(0, 0, 10, 0, 5, RoundAperture, 10, force::None, 0);
  EXPECT_EQ(items().size(), 3u) << "lines off";
  writer().AddStroke(0, 0, 10, 0, 5, RoundAperture, 10, force::Stroke, flashword::Piece);
  EXPECT_EQ(items().size(), 4u) << "a piece of a flash forces its stroke through";
}

TEST_F(ElementWriters, SpecialAperturesDrawWithPensOfTheirShape) {
  const int32_t rect = test::addSpecial(primitives, primitive::Rectangle, 20, {600, 200, 0, 0});
  const int32_t oval = test::addSpecial(primitives, primitive::Oval, 21, {300, 900, 0, 0});
  const int32_t lone = test::addSpecial(primitives, primitive::Rectangle, 22, {700});
  primitives.push_back({primitive::Macro, 23, 1, 1, "M"});
  const int32_t macro = static_cast<int32_t>(primitives.size());
  struct Case {
    const char* name;
    int32_t first, dCode;
    double x2, y2;
    int32_t type, width;  // item type, and line width or box height
  };
  const Case cases[] = {
      {"rectangle, vertical stroke: the X side", rect, 20, 0, 5000, ItemRectangle, 600},
      {"rectangle, horizontal stroke: the Y side", rect, 20, 5000, 0, ItemRectangle, 200},
      {"rectangle, slanted: the smaller side", rect, 20, 3000, 4000, ItemRectangle, 200},
      {"oval: round, its first row", oval, 21, 5000, 0, ItemLine, 300},
      {"rectangle without a second row: round, width 1", lone, 22, 5000, 0, ItemLine, 1},
      {"macro: round, width 1", macro, 23, 5000, 0, ItemLine, 1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    clearLayer();
    writer().AddStroke(0, 0, c.x2, c.y2, c.first, SpecialAperture, c.dCode, force::None, 0);
    ASSERT_EQ(items().size(), 1u);
    const ItemRecord r = items()[0];
    EXPECT_EQ(r.Type, c.type);
    EXPECT_EQ(r.Type == ItemLine ? r.LineWidth : r.Height, c.width);
  }
  clearLayer();
  writer().AddStroke(0, 0, 10, 0, 999, SpecialAperture, 20, force::None, 0);
  EXPECT_TRUE(items().empty()) << "a first row behind the list writes nothing";
}

TEST_F(ElementWriters, ArcsRunCounterClockwiseFromStartToEnd) {
  // From straight down (270) to straight right (0/360): a sweep of 90 over the wrap.
  writer().AddArc({100, 100}, 50, {100, 50}, {150, 100}, 12, 14, force::None);
  file.FilterMask = filter::AF_ILN;
  writer().AddArc({100, 100}, 50, {100, 50}, {150, 100}, 12, 14, force::None);
  ASSERT_EQ(items().size(), 1u);
  const ItemRecord arc = items()[0];
  EXPECT_EQ((std::array{arc.Type, arc.X, arc.Y, arc.Width, arc.Height, arc.Sweep, arc.LineWidth,
                        arc.Link}),
            (std::array<int32_t, 8>{ItemArc, 100, 100, 50, 270000, 90000, 12, 14}));
  EXPECT_EQ(arc.Attributes & attr::Flashed, 0);
}

TEST_F(ElementWriters, OutlinesNeedThePolygonFilterAndMarkTheirEnds) {
  test::DrawFixture::file.FilterMask = filter::AF_IPD;
  OutlinePoints square{{}, {1, 0, 0}, {1, 1000, 0}, {1, 1000, 1000}, {1, 0, 1000}, {1, 0, 0}};
  writer().AddOutlinePolygon(square, 10001, 0);
  EXPECT_TRUE(items().empty());
  file.FilterMask = test::AllFilters;
  square[0] = {0, 5000, -5000};  // the offset of a repeat moves every point
  writer().AddOutlinePolygon(square, 10001, 0);
  const auto all = items();
  ASSERT_EQ(all.size(), 4u);
  EXPECT_EQ(test::box(all[0]), (test::Box{5000, -5000, 1000, 0}));
  for (size_t i = 0; i < all.size(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(all[i].Link, 10001);
    EXPECT_EQ(all[i].Style, StyleFilled);
    EXPECT_EQ(all[i].LineWidth, 1);
    EXPECT_NE(all[i].Attributes & attr::PolygonSide, 0);
    EXPECT_EQ((all[i].Attributes & attr::PolygonFirst) != 0, i == 0);
    EXPECT_EQ((all[i].Attributes & attr::PolygonLast) != 0, i == 3);
  }
}

TEST(OutlineArcs, AngleOfCoversEveryQuadrant) {
  const std::array<double, 3> cases[] = {{0, 0, 90},    {0, -1, 270}, {1, 1, 45},  {-1, 1, 135},
                                         {-1, -1, 225}, {1, -1, 315}, {-1, 0, 180}};
  for (const auto& [x, y, degrees] : cases)
    EXPECT_DOUBLE_EQ(AngleOf(x, y), degrees) << x << "," << y;
}

TEST(OutlineArcs, ArcThroughThreePoints) {
  int32_t status = -1;
  double cx, cy, r, start, sweep;
  // A quarter from the right point up to the top, through 45 degrees.
  ArcThroughPoints(status, {1000, 0}, {707, 707}, {0, 1000}, cx, cy, r, start, sweep);
  ASSERT_EQ(status, 0);
  EXPECT_NEAR(cx, 0, 1);
  EXPECT_NEAR(cy, 0, 1);
  EXPECT_NEAR(r, 1000, 1);
  EXPECT_NEAR(std::remainder(start, 360.0), 0, 0.1) << "0, or just below 360";
  EXPECT_NEAR(sweep, 90, 0.1);
  // Three quarters, the long way round through the bottom: starts where the short way ends.
  ArcThroughPoints(status, {1000, 0}, {0, -1000}, {0, 1000}, cx, cy, r, start, sweep);
  ASSERT_EQ(status, 0);
  EXPECT_NEAR(start, 90, 0.1);
  EXPECT_NEAR(sweep, 270, 0.1);
  ArcThroughPoints(status, {0, 0}, {5, 5}, {10, 10}, cx, cy, r, start, sweep);
  EXPECT_EQ(status, 1) << "points on a line";
}

}  // namespace
}  // namespace tvx
