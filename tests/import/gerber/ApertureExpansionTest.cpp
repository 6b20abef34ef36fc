// One flash into the layer: exclusion, pad positions, the pad filters and Force, the special
// shapes with their painted holes, and the macro primitives with exposure, rotation and mirror.
#include "GerberDrawSupport.h"

#include "import/gerber/ApertureExpansion.h"

#include <cmath>

namespace tvx {
namespace {

using test::ClearCode;
using test::HoleCall;
using test::LayerColour;

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
    holes.clear();
    file.FilterMask = c.mask;
    file.ReaderCode = c.readerCode;
    file.Tag = c.tag;
    flash(1000, 2000, 500, RoundAperture, 10);
    EXPECT_EQ(items().size(), c.items);
    EXPECT_EQ(holes.size(), c.holes);
    if (!holes.empty()) {
      EXPECT_EQ(holes[0], (HoleCall{1000, 2000, 10}));
    }
  }
}

TEST_F(ApertureExpansion, RoundAndSquarePadsIgnoreTheLineAndArcFilters) {
  file.FilterMask = filter::AF_IPD;  // no lines, no arcs
  flash(1000, 1000, 501, RoundAperture, 10);
  flash(1000, 1000, 400, SquareAperture, 11);
  const auto all = items();
  ASSERT_EQ(all.size(), 2u);
  EXPECT_EQ(all[0].Type, ItemCircle);
  EXPECT_EQ(all[0].Width, 250);
  EXPECT_EQ(all[0].Style, StyleFilled);
  EXPECT_EQ(all[0].Attributes, attr::Flashed + attr::Shown);
  EXPECT_EQ(all[1].Type, ItemRectangle);
  EXPECT_EQ(test::box(all[1]), (test::Box{800, 800, 400, 400}));
  EXPECT_EQ(all[1].Attributes, attr::Flashed + attr::Shown);
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
  EXPECT_EQ(all[0].Width, 500);
  EXPECT_EQ(all[0].Colour, LayerColour);
  EXPECT_EQ(all[0].Attributes, attr::Flashed + attr::FlashPiece + attr::Shown);
  EXPECT_EQ(all[1].Type, ItemCircle);
  EXPECT_EQ(all[1].Width, 200);
  EXPECT_EQ(all[1].Colour, ClearCode);
  EXPECT_EQ(all[1].Style, StyleFilled);

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
  EXPECT_EQ(holes, (std::vector<HoleCall>{{10, 20, 13}}));
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
  EXPECT_EQ((std::array{all[0].X, all[0].Y, all[0].Width}), (std::array{5100, 6200, 1000}));
  EXPECT_EQ(all[0].Colour, LayerColour);
  EXPECT_EQ(all[1].Width, 500);
  EXPECT_EQ(all[1].Colour, ClearCode) << "exposure off";
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
  EXPECT_EQ(firsts, 6);
  EXPECT_EQ(lasts, 6);
  EXPECT_EQ(arcs, 8);
  // The pentagon starts at its rotation, 0: on the X axis, radius 1000.
  EXPECT_EQ((std::array{all[3].X, all[3].Y}), (std::array{1000, 0}));
  // First sector about 45 degrees: W = 500, mean radius 750, outer arc of radius 1000.
  const ItemRecord& outer = all[9];
  ASSERT_EQ(outer.Type, ItemArc);
  EXPECT_NEAR(outer.Width, 1000, 1);
  const double gap = 200 * 180 / ((250 + 750) * M_PI);
  EXPECT_NEAR(outer.Sweep, (90 - gap) * 1000, 300);
  EXPECT_NEAR(outer.Height, (45 - (90 - gap) / 2) * 1000, 300);
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
    EXPECT_EQ(all[size_t(i)].Type, ItemCircle);
    EXPECT_EQ(all[size_t(i)].Style, StyleOpen);
    EXPECT_EQ(all[size_t(i)].LineWidth, 100);
    EXPECT_EQ(all[size_t(i)].Width, 950 - 250 * i);
  }
  EXPECT_EQ((std::array{all[3].X, all[3].Y, all[3].Width, all[3].Height, all[3].LineWidth}),
            (std::array{-1100, 100, 2400, 0, 50}));
  EXPECT_EQ(test::box(all[4]), (test::Box{100, -1100, 0, 2400}));
}

}  // namespace
}  // namespace tvx
