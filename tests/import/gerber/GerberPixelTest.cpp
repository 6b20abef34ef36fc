// Flashes as the drawing engine paints them: the pieces of a thermal and a turned outline
// land where the aperture says, and a painted hole shows the clear colour.
#include "GerberDrawSupport.h"

#include "import/gerber/ApertureExpansion.h"

#include <cmath>

namespace tvx {
namespace {

using test::LayerColour;

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

TEST_F(GerberPixels, ARoundApertureWithAHoleShowsTheClearColourInside) {
  const int32_t first =
      test::addSpecial(primitives, primitive::RoundWithHole, 12, {10000, 4000, 0});
  FlashAperture(writer(), 0, 0, first, SpecialAperture, 12);
  image = render(Size, Size, Scale, ClearPalette);
  EXPECT_EQ(at(0, 0), colourOf(ClearPalette));
  EXPECT_EQ(at(1500, 0), colourOf(ClearPalette));
  EXPECT_EQ(at(3000, 0), ink);
  EXPECT_EQ(at(0, -4000), ink);
  EXPECT_EQ(at(6000, 0), none);
}

}  // namespace
}  // namespace tvx
