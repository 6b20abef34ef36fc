// The element writers: filters and Force, the exclusion list, clear polarity, the pens of draws,
// arcs, holes, and outlines with arcs.
// One flash into the layer: exclusion, pad positions, the pad filters and Force, the special
// shapes with their painted holes, and the macro primitives with exposure, rotation and mirror.
// Flashes as the drawing engine paints them: the pieces of a thermal and a turned outline
// land where the aperture says, and a painted hole shows the clear colour.
#include "GerberDrawSupport.h"
#include "import/gerber/ApertureExpansion.h"
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
  writer().AddArc({100, 100}, 50, {100, 50}, {150, 100}, 12, 14, force::None);
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
    EXPECT_EQ((std::array{all[i].Link, int(all[i].Style), all[i].LineWidth}),
              (std::array{10001, int(StyleFilled), 1}));
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

using test::Pad;

class ApertureExpansion : public test::DrawFixture {
protected:
  void flash(double x, double y, int32_t size, int32_t kind, int32_t dCode) {
    FlashAperture(writer(), x, y, size, kind, dCode);
  }
};

TEST_F(ApertureExpansion, FiltersDecideWhatAFlashLeaves) {
  struct Case {
    const char* name;
    int32_t mask;
    int32_t readerCode;
    std::string tag;
    size_t items;
    size_t holes;
  };
  const Case cases[] = {
      {"everything", test::AllFilters, ReaderGerberArtwork, " ", 1, 1},
      {"an excluded D-code: no element, no hole", test::AllFilters, ReaderGerberArtwork,
       "|D9*|D10*|", 0, 0},
      {"pad positions only", filter::AF_IPP, ReaderGerberArtwork, " ", 0, 1},
      {"read as drilling: positions, never shapes", test::AllFilters, ReaderGerberDrilling, " ", 0,
       1},
      {"pads without positions", filter::AF_IPD, ReaderGerberArtwork, " ", 1, 0},
      {"neither", filter::AF_ILN | filter::AF_IPA, ReaderGerberArtwork, " ", 0, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    clearLayer();
    file.FilterMask = c.mask;
    file.ReaderCode = c.readerCode;
    file.Tag = c.tag;
    flash(1000, 2000, 500, RoundAperture, 10);
    EXPECT_EQ(items().size(), c.items);
    const std::vector<Pad> placed = holes();
    EXPECT_EQ(placed.size(), c.holes);
    if (!placed.empty()) {
      EXPECT_EQ(placed[0], (Pad{1000, 2000, 10}));
    }
  }
}

TEST_F(ApertureExpansion, RoundAndSquarePadsIgnoreTheLineAndArcFilters) {
  file.FilterMask = filter::AF_IPD;  // no lines, no arcs
  flash(1000, 1000, 501, RoundAperture, 10);
  flash(1000, 1000, 400, SquareAperture, 11);
  const auto all = items();
  ASSERT_EQ(typesOf(all), (std::vector<int32_t>{ItemCircle, ItemRectangle}));
  EXPECT_EQ(std::pair(all[0].Width, int(all[0].Style)), std::pair(250, int(StyleFilled)));
  EXPECT_EQ(test::box(all[1]), (test::Box{800, 800, 400, 400}));
  for (const ItemRecord& r : all)
    EXPECT_EQ(r.Attributes, attr::Flashed + attr::Shown);
}

TEST_F(ApertureExpansion, SpecialShapesWithTheirHoles) {
  const int32_t withHole =
      test::addSpecial(primitives, primitive::RoundWithHole, 12, {1000, 400, 0});
  const int32_t rect = test::addSpecial(primitives, primitive::Rectangle, 13, {800, 300, 200, 100});
  const int32_t tall = test::addSpecial(primitives, primitive::Oval, 14, {200, 1000, 0, 0});
  const int32_t wide = test::addSpecial(primitives, primitive::Oval, 15, {1000, 200, 0, 0});
  const int32_t hexagon =
      test::addSpecial(primitives, primitive::RegularPolygon, 16, {2000, 6, 0, 0, 0});

  flash(0, 0, withHole, SpecialAperture, 12);
  auto all = items();
  ASSERT_EQ(all.size(), 2u) << "a disc, then its painted hole";
  EXPECT_EQ((std::array{all[0].Width, int(all[0].Colour), all[0].Attributes}),
            (std::array{500, LayerColour, attr::Flashed + attr::FlashPiece + attr::Shown}));
  EXPECT_EQ((std::array{all[1].Type, all[1].Width, int(all[1].Colour), int(all[1].Style)}),
            (std::array<int32_t, 4>{ItemCircle, 200, ClearCode, StyleFilled}));

  clearLayer();
  flash(0, 0, rect, SpecialAperture, 13);
  all = items();
  ASSERT_EQ(all.size(), 2u);
  EXPECT_EQ(test::box(all[0]), (test::Box{-400, -150, 800, 300}));
  EXPECT_EQ(test::box(all[1]), (test::Box{-100, -50, 200, 100}));
  EXPECT_EQ(all[1].Colour, ClearCode);

  clearLayer();
  file.FilterMask = filter::AF_IPD | filter::AF_IMC | filter::AF_IPL;  // no line filter: Force 1
  flash(0, 0, tall, SpecialAperture, 14);
  flash(0, 0, wide, SpecialAperture, 15);
  all = items();
  ASSERT_EQ(all.size(), 2u);
  EXPECT_EQ((std::array{all[0].X, all[0].Y, all[0].Width, all[0].Height, all[0].LineWidth}),
            (std::array{0, -400, 0, 800, 200}));
  EXPECT_EQ((std::array{all[1].X, all[1].Y, all[1].Width, all[1].Height, all[1].LineWidth}),
            (std::array{-400, 0, 800, 0, 200}));

  clearLayer();
  flash(0, 0, hexagon, SpecialAperture, 16);
  all = items();
  ASSERT_EQ(all.size(), 6u) << "six sides, starting at the top";
  EXPECT_EQ((std::array{all[0].X, all[0].Y}), (std::array{0, 1000}));
  EXPECT_NE(all[5].Attributes & attr::PolygonLast, 0);
  EXPECT_EQ(all[5].X + all[5].Width, 0) << "closed back at the first corner";
  EXPECT_EQ(all[5].Y + all[5].Height, 1000);
}

TEST_F(ApertureExpansion, SpecialAperturesWithMacrosOffStillPlaceTheirHoles) {
  const int32_t rect = test::addSpecial(primitives, primitive::Rectangle, 13, {800, 300, 0, 0});
  file.FilterMask = filter::AF_IPD | filter::AF_IPP;
  flash(10, 20, rect, SpecialAperture, 13);
  EXPECT_TRUE(items().empty());
  EXPECT_EQ(holes(), (std::vector<Pad>{{10, 20, 13}}));
  // Rows that end before the shape does stop the flash; so does a first row behind the list.
  file.FilterMask = test::AllFilters;
  const int32_t cut = test::addSpecial(primitives, primitive::Rectangle, 17, {800, 300});
  flash(0, 0, cut, SpecialAperture, 17);
  flash(0, 0, 99, SpecialAperture, 13);
  EXPECT_TRUE(items().empty());
}

TEST_F(ApertureExpansion, MacroPrimitivesPunchThroughAndTurn) {
  constexpr int32_t D = 20;
  primitives.push_back({});  // row 1 belongs to no aperture
  const auto first = static_cast<int32_t>(primitives.size() + 1);
  test::addPrimitive(primitives, D, 1, {1, 2000, 100, 200});          // dark circle
  test::addPrimitive(primitives, D, 1, {0, 1000, 100, 200});          // clear circle
  test::addPrimitive(primitives, D, 21, {1, 400, 200, 0, 0, 90000});  // centre line, turned 90
  test::addPrimitive(primitives, D, 20, {1, 200, 0, 0, 1000, 0, 0});  // line by end points
  test::addPrimitive(primitives, D, 99, {1, 2});                      // unknown: passed over
  test::addPrimitive(primitives, D, 22, {1, 300, 100, 50, 60, 0});    // lower left line
  primitives.push_back({primitive::Macro, 21, 1, 1, {}});             // next aperture
  primitives[size_t(first - 1)].Text = "M";

  FlashAperture(writer(), 5000, 6000, first, SpecialAperture, D);
  auto all = items();
  ASSERT_EQ(all.size(), 5u);
  EXPECT_EQ((std::array{all[0].X, all[0].Y, all[0].Width, int(all[0].Colour)}),
            (std::array{5100, 6200, 1000, LayerColour}));
  EXPECT_EQ(std::pair(all[1].Width, int(all[1].Colour)), std::pair(500, ClearCode))
      << "exposure off";
  EXPECT_FALSE(file.ClearPolarity) << "the file's polarity comes back";
  EXPECT_EQ(all[2].Colour, LayerColour);
  // Corner (-200, -100) turned by 90 about the flash point: (100, -200); the box turns with it.
  EXPECT_EQ((std::array{all[2].X, all[2].Y, all[2].Width, all[2].Height, all[2].Angle}),
            (std::array{5100, 5800, 400, 200, 90000}));
  // A line from (0, 0) to (1000, 0) of width 200: the box from (0, -100), 1000 by 200.
  EXPECT_EQ((std::array{all[3].X, all[3].Y, all[3].Width, all[3].Height, all[3].Angle}),
            (std::array{5000, 5900, 1000, 200, 0}));
  EXPECT_EQ(test::box(all[4]), (test::Box{5050, 6060, 300, 100}));

  // Mirrored: the corner's X and the width change sign, the angle runs the other way.
  clearLayer();
  file.Mirror = true;
  FlashAperture(writer(), 5000, 6000, first, SpecialAperture, D);
  all = items();
  ASSERT_EQ(all.size(), 5u);
  EXPECT_EQ((std::array{all[0].X, all[0].Y}), (std::array{5100, 6200})) << "circles keep X";
  EXPECT_EQ((std::array{all[2].X, all[2].Y, all[2].Width, all[2].Angle}),
            (std::array{4900, 5800, -400, 270000}));
  EXPECT_EQ((std::array{all[4].X, all[4].Width, all[4].Angle}), (std::array{4950, -300, 0}));
}

TEST_F(ApertureExpansion, OutlinesPolygonsAndThermalsNeedThePolygonFilter) {
  constexpr int32_t D = 30;
  // A triangle outline of three points and its closing one, a pentagon, a thermal.
  test::addPrimitive(primitives, D, 4, {1, 3, 0, 0, 1000, 0, 0, 1000, 0, 0, 0});
  test::addPrimitive(primitives, D, 5, {1, 5, 0, 0, 2000, 0});
  test::addPrimitive(primitives, D, 7, {0, 0, 2000, 1000, 200, 0});
  file.FilterMask = test::AllFilters & ~filter::AF_IPL;
  FlashAperture(writer(), 0, 0, 1, SpecialAperture, D);
  EXPECT_TRUE(items().empty());

  file.FilterMask = test::AllFilters;
  FlashAperture(writer(), 0, 0, 1, SpecialAperture, D);
  const auto all = items();
  // 3 triangle sides, 5 pentagon sides, 4 sectors of two sides and two arcs.
  ASSERT_EQ(all.size(), 3u + 5u + 16u);
  int32_t firsts = 0, lasts = 0, arcs = 0;
  for (const ItemRecord& r : all) {
    firsts += (r.Attributes & attr::PolygonFirst) != 0;
    lasts += (r.Attributes & attr::PolygonLast) != 0;
    arcs += r.Type == ItemArc;
  }
  EXPECT_EQ(std::tuple(firsts, lasts, arcs), std::tuple(6, 6, 8));
  // The pentagon starts at its rotation, 0: on the X axis, radius 1000. The thermal's sectors
  // are pictured below.
  EXPECT_EQ((std::array{all[3].X, all[3].Y}), (std::array{1000, 0}));
}

TEST_F(ApertureExpansion, MoireRingsAndCross) {
  constexpr int32_t D = 40;
  // Outer diameter 2000, rings 100 thick with 150 gaps, 3 rings; cross 50 wide, 2400 long.
  test::addPrimitive(primitives, D, 6, {0, 0, 2000, 100, 150, 3, 50, 2400, 0});
  file.FilterMask = filter::AF_IPD | filter::AF_IMC;  // no arcs, no lines: Force carries them
  FlashAperture(writer(), 100, 100, 1, SpecialAperture, D);
  const auto all = items();
  ASSERT_EQ(all.size(), 5u);
  for (int i = 0; i < 3; ++i) {
    SCOPED_TRACE(i);
    const ItemRecord& r = all[size_t(i)];
    EXPECT_EQ((std::array{r.Type, int(r.Style), r.LineWidth, r.Width}),
              (std::array{int(ItemCircle), int(StyleOpen), 100, 950 - 250 * i}));
  }
  EXPECT_EQ((std::array{all[3].X, all[3].Y, all[3].Width, all[3].Height, all[3].LineWidth}),
            (std::array{-1100, 100, 2400, 0, 50}));
  EXPECT_EQ(test::box(all[4]), (test::Box{100, -1100, 0, 2400}));
}

// 200 x 200 pixels of 100 store units about the origin.
constexpr int Size = 200;
constexpr int32_t Scale = 100;
constexpr int ClearPalette = 2;

class GerberPixels : public test::DrawFixture {
protected:
  void flashMacro(int32_t code, std::initializer_list<double> values) {
    test::addPrimitive(primitives, 50, code, values);
    FlashAperture(writer(), 0, 0, 1, SpecialAperture, 50);
    image = render(Size, Size, Scale, ClearPalette);
  }
  // The pixel under a store point.
  QRgb at(double x, double y) const {
    return image.pixel(int(std::floor(Size / 2 + x / Scale)),
                       int(std::floor(Size / 2 - y / Scale)));
  }
  QRgb atPolar(double radius, double degrees) const {
    const double a = degrees * M_PI / 180;
    return at(radius * std::cos(a), radius * std::sin(a));
  }

  QImage image;
  const QRgb ink = colourOf(LayerColour);
  const QRgb none = colourOf(0);
};

TEST_F(GerberPixels, AThermalIsFourSectorsWithGapsOnTheAxes) {
  // Outer 16000, inner 8000, gaps 2000 wide: the ring runs from 4000 to 8000.
  flashMacro(7, {0, 0, 16000, 8000, 2000, 0});
  EXPECT_EQ(at(0, 0), none) << "the middle is open";
  for (const double centre : {45.0, 135.0, 225.0, 315.0}) {
    SCOPED_TRACE(centre);
    EXPECT_EQ(atPolar(6000, centre), ink);
    EXPECT_EQ(atPolar(5000, centre + 30), ink);
    EXPECT_EQ(atPolar(6000, centre + 45), none) << "the gap";
    EXPECT_EQ(atPolar(9000, centre), none);
    EXPECT_EQ(atPolar(3000, centre), none);
  }
}

TEST_F(GerberPixels, AnOutlineTurnsAboutTheFlashPoint) {
  // A 6000 by 2000 rectangle from the origin, turned by 90 degrees: it now stands up, left of X 0.
  flashMacro(4, {1, 4, 0, 0, 6000, 0, 6000, 2000, 0, 2000, 0, 0, 90000});
  EXPECT_EQ(at(-1000, 3000), ink);
  EXPECT_EQ(at(-1000, 5500), ink);
  EXPECT_EQ(at(3000, 1000), none) << "where it lay before turning";
  EXPECT_EQ(at(-3000, 3000), none);

  clearLayer();
  file.Mirror = true;  // mirrored, then turned: it hangs down left of X 0
  FlashAperture(writer(), 0, 0, 1, SpecialAperture, 50);
  image = render(Size, Size, Scale, ClearPalette);
  EXPECT_EQ(at(-1000, -3000), ink);
  EXPECT_EQ(at(-1000, 3000), none);
}

}  // namespace
}  // namespace tvx
