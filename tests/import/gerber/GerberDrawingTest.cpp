// Drawing Gerber into a layer, over a layer with its symbol in a kernel of its own.
// The element writers: filters and Force, the exclusion list, the pens of draws, and the arcs of
// outlines.
// One flash into the layer: exclusion, pad positions, the pad filters and Force, the special
// shapes with their painted holes, and the macro primitives with exposure, rotation and mirror.
// Flashes as the drawing engine paints them: the pieces of a thermal and a turned outline
// land where the aperture says, and a painted hole shows the clear colour.
// The drawing pass over TMP.ART: placement and mirror, repeats, polarity, the aperture look-up and
// what a missing aperture costs, zero-size apertures, the pen modes with full circles, polygons
// with their arcs, and the failures of a damaged stream. Streams come from the text pass over real
// Gerber text, or are written by hand. The Gerber reader on the import road: the scan writes
// TMP.ART into the work folder, the import restores the apertures from it and draws its stream, a
// damaged file is reported, and a layer without elements is imported empty with a message.
#include "import/gerber/GerberDrawing.h"
#include "GerberPassSupport.h"
#include "ImportTestSupport.h"
#include "import/core/ImportDriver.h"
#include "import/gerber/ApertureExpansion.h"
#include "import/gerber/ArtSections.h"
#include "import/gerber/ElementWriters.h"
#include "import/gerber/GerberFileReader.h"
#include "import/gerber/OutlineArcs.h"
#include "kernel/Kernel.h"
#include "kernel/Palette.h"
#include "kernel/Store.h"
#include "store/LayerSymbol.h"
#include "support/GuiTestApplication.h"

#include <QImage>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <memory>
#include <set>
#include <vector>

namespace tvx::test {

// What the drawing tests share: a layer with its symbol in a kernel of its own, a writer over it,
// the items it holds, the hole positions asked for, and a picture of the layer on an image.

inline constexpr int32_t ArtworkLayer = 2;
inline constexpr int32_t LayerColour = 10;
inline constexpr int32_t ClearCode = slotCode(colourslot::ClearColour);
// All filters on, outlines filled.
inline constexpr int32_t AllFilters = 127 | filter::FilledOutlines;

// An item's corner and extent, to compare in one line.
using Box = std::array<int32_t, 4>;
inline Box box(const ItemRecord& r) { return {r.X, r.Y, r.Width, r.Height}; }

class DrawFixture : public ::testing::Test {
protected:
  DrawFixture() {
    layer.Mask = 1 << (ArtworkLayer - 1);
    layer.SymbolHandle = LayerSymbolBase - ArtworkLayer;
    layer.SymbolName = "$$GIS_CAT" + std::to_string(layer.SymbolHandle);
    layer.ColourNumber = LayerColour;
    layer.PadKind = 5;
    EnsureLayerSymbol(k.store, layer, true);
    file.Colour = LayerColour;
    file.FilterMask = AllFilters;
  }

  // A writer over the layer and file as they stand now (the exclusion list is read here).
  ElementWriter& writer() {
    writer_ = std::make_unique<ElementWriter>(k.store, primitives, layer, file);
    return *writer_;
  }
  // The hole and pad positions placed in the layer.
  std::vector<Pad> holes() const { return padsOf(k.store, layer); }

  std::vector<ItemRecord> items() const { return itemsOf(k.store, layer); }
  void clearLayer() { EnsureLayerSymbol(k.store, layer, true); }

  // The layer drawn on a black image of w x h pixels, scale store units per pixel, centred on the
  // origin. Slot 60, the clear colour, is palette number clearPalette.
  QImage render(int w, int h, int32_t scale, int32_t clearPalette = 2) {
    guiTestApplication();
    k.strings.E_SysTable(1)[colourslot::ClearColour] = static_cast<uint8_t>(clearPalette);
    QImage image(w, h, QImage::Format_RGB32);
    const int32_t dev = k.graphics.G_GetDC(&image);
    EXPECT_EQ(k.graphics.G_OpenDC(dev, ViewSetup{scale, w, h, 0, 0, 4}, 0), 1);
    k.graphics.G_ChangeBackgroundColor(dev, 0);
    k.graphics.G_CreateShadowBitmap(dev);
    k.graphics.S_DrawSymbol(dev, layer.SymbolHandle, 1, 0);
    k.graphics.G_CloseDC(dev, 1);
    k.graphics.G_DeleteDC(dev);
    return image;
  }
  static QRgb colourOf(int paletteNumber) {
    const uint32_t v = paletteRgb()[size_t(paletteNumber)];
    return qRgb(redOf(v), greenOf(v), blueOf(v));
  }

  Kernel k;
  LayerRecord layer;
  LayerFileRecord file;
  std::vector<PrimitiveRow> primitives;

private:
  std::unique_ptr<ElementWriter> writer_;
};

// Rows of one special aperture appended to a primitive list; returns the first row's number.
inline int32_t addSpecial(std::vector<PrimitiveRow>& rows, int32_t kind, int32_t dCode,
                          std::initializer_list<double> values) {
  const auto first = static_cast<int32_t>(rows.size() + 1);
  for (double v : values)
    rows.push_back({kind, dCode, 0, v, {}});
  return first;
}

// One macro primitive of the given code: its rows with the code on the first and minus the count
// on the last, as macro expansion leaves them.
inline void addPrimitive(std::vector<PrimitiveRow>& rows, int32_t dCode, int32_t code,
                         std::initializer_list<double> values) {
  const size_t first = rows.size();
  for (double v : values)
    rows.push_back({primitive::Macro, dCode, 0, v, {}});
  rows[first].Number = code;
  rows.back().Number = -static_cast<int32_t>(values.size());
}

}  // namespace tvx::test

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

  file.Tag = "|D10*|";
  writer().AddDisc(0, 0, 10, 0, StyleFilled, force::Disc, flashword::Single, 10);
  writer().AddStroke(0, 0, 10, 0, 5, RoundAperture, 10, force::Stroke, flashword::Drawn);
  writer().AddArc({0, 0}, 10, {10, 0}, {0, 10}, 5, 10, force::Disc);
  EXPECT_EQ(items().size(), 1u) << "an excluded aperture writes nothing";
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

TEST_F(ApertureExpansion, RoundAndSquarePadsAreFilledWholeFlashesWithoutLineOrArcFilters) {
  file.FilterMask = filter::AF_IPD;
  flash(1000, 1000, 400, RoundAperture, 10);
  flash(1000, 1000, 400, SquareAperture, 11);
  ASSERT_EQ(items().size(), 2u);
  for (const ItemRecord& r : items())
    EXPECT_EQ(std::pair(int(r.Style), r.Attributes),
              std::pair(int(StyleFilled), attr::Flashed + attr::Shown));
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
  EXPECT_EQ((std::array{all[1].Type, all[1].Width, int(all[1].Colour), int(all[1].Style),
                        all[1].Attributes}),
            (std::array<int32_t, 5>{ItemCircle, 200, ClearCode, StyleFilled,
                                    flashword::Piece | attr::Shown}));

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

// Millimetres with three decimals: "X1000" is 1 mm, 100000 store units.
constexpr const char* Head = "%FSLAX33Y33*%%MOMM*%%ADD10C,0.2*%%ADD11R,0.5X0.5*%";

class GerberDrawing : public test::DrawFixture {
protected:
  GerberDrawing() { file.OriginalCoordinates = true; }

  // The text pass over text, the header and sections loaded back, then the drawing pass.
  int32_t drawText(const std::string& body) {
    EXPECT_EQ(pass.run(std::string(Head) + body + "M02*"), 0);
    ArtFile art;
    EXPECT_TRUE(art.open(pass.art));
    int32_t status = 0;
    LoadArtHeader(status, art, false, scan, pass.reporting.reporter);
    EXPECT_EQ(status, 0);
    if (edit)
      edit(scan);
    return replay(art);
  }
  // A stream written by hand behind a header of the given extents; the lists are scan's as set.
  int32_t drawRecords(const std::vector<ArtRecord>& stream, double minX = 0, double minY = 0,
                      double maxX = 0, double maxY = 0) {
    scan.Header.MinX = minX;
    scan.Header.MinY = minY;
    scan.Header.MaxX = maxX;
    scan.Header.MaxY = maxY;
    ArtFile art;
    EXPECT_TRUE(art.create(pass.art));
    for (const ArtRecord& r : headerRecords(scan.Header))
      art.append(r);
    for (const ArtRecord& r : stream)
      art.append(r);
    return replay(art);
  }
  int32_t replay(ArtFile& art) {
    int32_t status = -1;
    GerberDrawContext context{k.store, pass.reporting.reporter, scan};
    elements = DrawGerberStream(status, art, layer, file, context);
    EXPECT_FALSE(file.ClearPolarity) << "the working flag does not outlive the pass";
    return status;
  }
  // Pads that the flashes placed in the layer.
  int32_t pads() { return k.store.OA_GetCount(k.store.S_SymbolEntryArray(layer.SymbolHandle)); }
  std::vector<std::string> boxes() const { return test::boxesOf(pass.reporting.prompts); }

  test::GerberPass pass;
  GerberScan scan;
  std::function<void(GerberScan&)> edit;
  int32_t elements = -1;  // what the last replay counted
};

TEST_F(GerberDrawing, LinesArcsAndAFullCircle) {
  ASSERT_EQ(drawText("D10*X0Y0D02*G01X2000Y0D01*"
                     "G75*G03X3000Y1000I0J1000D01*"        // a quarter about (2 mm, 1 mm)
                     "X3000Y0D02*G02X3000Y0I1000J0D01*"    // a whole clockwise circle
                     "D11*G01X0Y2000D02*X1000Y2000D01*"),  // a square pen, linked from DrawList
            0);
  const auto all = items();
  ASSERT_EQ(typesOf(all), (std::vector<int32_t>{ItemLine, ItemArc, ItemCircle, ItemRectangle}));
  EXPECT_EQ(
      (std::array{all[0].X, all[0].Y, all[0].Width, all[0].Height, all[0].LineWidth, all[0].Link}),
      (std::array{0, 0, 200000, 0, 20000, 10}));
  // From straight below the centre to straight right of it.
  EXPECT_EQ(
      (std::array{all[1].X, all[1].Y, all[1].Width, all[1].Height, all[1].Sweep, all[1].LineWidth}),
      (std::array{200000, 100000, 100000, 270000, 90000, 20000}));
  // A full circle: an open disc with the aperture's width as its line.
  EXPECT_EQ((std::array{all[2].X, all[2].Y, all[2].Width, all[2].LineWidth, int(all[2].Style),
                        all[2].Attributes}),
            (std::array{400000, 0, 100000, 20000, int(StyleOpen), attr::Shown}));
  // The square pen's box covers the stroke with square ends of half its side, 25000.
  EXPECT_EQ(
      (std::array{all[3].X, all[3].Y, all[3].Width, all[3].Height, all[3].Angle, all[3].Link}),
      (std::array{-25000, 175000, 150000, 50000, 0, 11}));
  EXPECT_TRUE(boxes().empty());
}

TEST_F(GerberDrawing, MirrorSwapsArcDirectionsButNotStepDistances) {
  const std::string body = "%SRX2Y1I5.0J0*%D11*X0Y0D03*%SRX1Y1I0J0*%"
                           "D10*X0Y1000D02*G75*G02X1000Y0I0J-1000D01*";
  ASSERT_EQ(drawText(body), 0);
  const auto plain = items();
  ASSERT_EQ(typesOf(plain), (std::vector<int32_t>{ItemRectangle, ItemRectangle, ItemArc}));
  EXPECT_EQ(plain[1].X - plain[0].X, 500000);
  // Clockwise from (0, 1 mm) to (1 mm, 0) about the origin: 0 to 90 counter-clockwise.
  EXPECT_EQ((std::array{plain[2].X, plain[2].Height, plain[2].Sweep}), (std::array{0, 0, 90000}));

  clearLayer();
  file.Mirror = true;
  ASSERT_EQ(drawText(body), 0);
  const auto mirrored = items();
  const ArtHeader& h = scan.Header;
  const double axis = (h.MaxX - h.MinX) / 2 + h.MinX;
  const auto x = [&](double fileX) { return toInt32(2 * axis - fileX); };
  ASSERT_EQ(typesOf(mirrored), typesOf(plain));
  EXPECT_EQ(mirrored[0].X, x(0) - 25000);
  EXPECT_EQ(mirrored[1].X - mirrored[0].X, 500000) << "repeats still step in +X";
  // Now counter-clockwise from (-0, 1 mm) to (-1 mm, 0): 90 to 180.
  EXPECT_EQ((std::array{mirrored[2].X, mirrored[2].Height, mirrored[2].Sweep}),
            (std::array{x(0), 90000, 90000}));
}

TEST_F(GerberDrawing, ClearPolarityIsDroppedOrPaintedClear) {
  const std::string body = "D10*X0Y0D03*%LPC*%X1000Y0D03*X1000Y0D02*X2000Y0D01*%LPD*%X3000Y0D03*";
  file.FilterMask = test::AllFilters & ~filter::AF_IMP;
  ASSERT_EQ(drawText(body), 0);
  auto all = items();
  ASSERT_EQ(all.size(), 2u) << "everything between LPC and LPD is missing";
  EXPECT_EQ(all[1].X, 300000);
  EXPECT_EQ(pads(), 2);

  clearLayer();
  file.FilterMask = test::AllFilters;
  ASSERT_EQ(drawText(body), 0);
  all = items();
  ASSERT_EQ(all.size(), 4u);
  EXPECT_EQ((std::array<int32_t, 4>{all[0].Colour, all[1].Colour, all[2].Colour, all[3].Colour}),
            (std::array<int32_t, 4>{LayerColour, ClearCode, ClearCode, LayerColour}));
  EXPECT_EQ(pads(), 2) << "the clear flash places no hole";
}

TEST_F(GerberDrawing, PolygonsAreNumberedFrom10001AndNeedTheirFilter) {
  const std::string square = "G36*X0Y0D02*G01X1000Y0D01*X1000Y1000D01*X0Y1000D01*G37*";
  ASSERT_EQ(drawText(square + "%SRX2Y2I2.0J3.0*%" + square), 0);
  const auto all = items();
  // The list is closed back to its first point: four sides each, five polygons, each repeat moved
  // by its step in X and in Y.
  ASSERT_EQ(all.size(), 20u);
  std::set<std::array<int32_t, 2>> repeats;
  for (size_t i = 4; i < all.size(); i += 4) {
    EXPECT_EQ(all[i].Link, int32_t(10001 + i / 4));
    repeats.insert({all[i].X, all[i].Y});
  }
  EXPECT_EQ(all[0].Link, 10001);
  EXPECT_EQ(repeats,
            (std::set<std::array<int32_t, 2>>{{0, 0}, {200000, 0}, {0, 300000}, {200000, 300000}}));
  EXPECT_EQ(std::pair(all[3].X + all[3].Width, all[3].Y + all[3].Height), std::pair(0, 0));
  for (const ItemRecord& r : all) {
    EXPECT_EQ(r.Style, StyleFilled);
    EXPECT_EQ(r.Attributes & (attr::PolygonSide | attr::Flashed), attr::PolygonSide);
  }

  clearLayer();
  file.FilterMask = test::AllFilters & ~filter::AF_IPL;
  ASSERT_EQ(drawText(square), 0);
  EXPECT_TRUE(items().empty());
}

TEST_F(GerberDrawing, EachContourOfARegionIsAPolygonOfItsOwn) {
  // The second contour starts (D02) after an arc side and a G01 of the first.
  ASSERT_EQ(drawText("G36*X0Y0D02*G01X1000Y0D01*G75*G03X1000Y1000I0J500D01*G01X0Y1000D01*"
                     "X0Y0D01*X2000Y0D02*X3000Y0D01*X3000Y1000D01*G37*"),
            0);
  const auto all = items();
  EXPECT_EQ(typesOf(all), (std::vector<int32_t>{ItemLine, ItemArc, ItemLine, ItemLine, ItemLine,
                                                ItemLine, ItemLine}));
  EXPECT_EQ((std::array{all.front().Link, all.back().Link}), (std::array{10001, 10002}));
  EXPECT_EQ(all[4].X, 200000) << "the second outline is a side of the region, not a stroke";
}

TEST_F(GerberDrawing, PolygonArcsFlatterThanTwoDegreesBecomeTwoSides) {
  // A quarter arc stays an arc; an arc of about one degree on a 10 mm radius does not.
  ASSERT_EQ(drawText("G36*X0Y0D02*G01X10000Y0D01*G75*G03X0Y10000I-10000J0D01*G01X0Y0D01*G37*"), 0);
  EXPECT_EQ(typesOf(items()), (std::vector<int32_t>{ItemLine, ItemArc, ItemLine}));
  const ItemRecord arc = items()[1];
  EXPECT_NEAR(arc.X, 0, 2);
  EXPECT_NEAR(arc.Width, 1000000, 2);
  EXPECT_NEAR(arc.Sweep, 90000, 10);

  clearLayer();
  ASSERT_EQ(drawText("G36*X0Y0D02*G01X10000Y0D01*G75*G03X9998Y175I-10000J0D01*G01X0Y0D01*G37*"), 0);
  EXPECT_EQ(typesOf(items()), (std::vector<int32_t>(4, ItemLine)));
}

TEST_F(GerberDrawing, PlacementCentresOffsetsAndMirrorsAboutTheMiddle) {
  const std::string body = "X1000Y1000D02*D11*X1000Y1000D03*X5000Y3000D03*";
  const auto corners = [&] {
    std::vector<std::array<int32_t, 2>> centres;
    for (const ItemRecord& r : items())
      centres.push_back({r.X + r.Width / 2, r.Y + r.Height / 2});
    clearLayer();
    return centres;
  };
  ASSERT_EQ(drawText(body), 0);
  EXPECT_EQ(corners(), (std::vector<std::array<int32_t, 2>>{{100000, 100000}, {500000, 300000}}));
  file.OriginalCoordinates = false;
  ASSERT_EQ(drawText(body), 0);
  EXPECT_EQ(corners(), (std::vector<std::array<int32_t, 2>>{{-200000, -100000}, {200000, 100000}}));
  file.OffsetX = 7;
  file.OffsetY = -3;
  ASSERT_EQ(drawText(body), 0);
  EXPECT_EQ(corners(), (std::vector<std::array<int32_t, 2>>{{-199993, -100003}, {200007, 99997}}));
  file.Mirror = true;  // the offset moves the picture against the line, so it is mirrored too
  ASSERT_EQ(drawText(body), 0);
  EXPECT_EQ(corners(), (std::vector<std::array<int32_t, 2>>{{199993, -100003}, {-200007, 99997}}));
}

// The message of a missing aperture: its label and the elements it cost.
std::string missing(const std::string& label, const std::string& cost) {
  return label + " aperture not found in the list during import. (" + cost +
         ")\r\nSelect proper Aperture Table and import again.";
}

TEST_F(GerberDrawing, AMissingApertureCostsOnlyItsElementsAndIsReportedOnceAfterThePass) {
  const auto noSquares = [](GerberScan& s) { s.Lists.SquarePadList.clear(); };
  const auto noLinesOf10 = [](GerberScan& s) {
    std::erase_if(s.Lists.DrawList, [](const ApertureUse& row) { return row.DCode == 10; });
  };
  // D10 flashes a disc (centre and radius, 0.1 mm); D11 strokes with a 0.5 mm square.
  const std::tuple<const char*, std::function<void(GerberScan&)>, std::string,
                   std::vector<test::Box>, std::vector<std::string>, int32_t>
      cases[] = {
          {"flashes on both sides of missing ones",
           noSquares,
           "D10*X0Y0D03*D11*X1000Y0D03*X1500Y0D03*D10*X2000Y0D03*",
           {{0, 0, 10000, 0}, {200000, 0, 10000, 0}},
           {missing("D11*", "2 elements")},
           4},
          {"the pen goes on from a missing stroke",
           noLinesOf10,
           "D10*X0Y0D02*X1000Y0D01*D11*X2000Y0D01*",
           {{75000, -25000, 150000, 50000}},
           {missing("D10*", "1 element")},
           2},
          {"one message a code, in the order of the codes",
           [&](GerberScan& s) {
             noSquares(s);
             noLinesOf10(s);
           },
           "D11*X0Y0D03*D10*X0Y0D02*X1000Y0D01*X0Y0D01*",
           {},
           {missing("D10*", "2 elements"), missing("D11*", "1 element")},
           3},
      };
  for (const auto& [name, change, body, drawn, messages, count] : cases) {
    SCOPED_TRACE(name);
    clearLayer();
    pass.reporting.prompts.shown.clear();
    edit = change;
    EXPECT_EQ(drawText(body), 0);
    std::vector<test::Box> boxesDrawn;
    for (const ItemRecord& r : items())
      boxesDrawn.push_back(test::box(r));
    EXPECT_EQ(std::tuple(boxesDrawn, boxes(), elements), std::tuple(drawn, messages, count));
  }
}

TEST_F(GerberDrawing, ZeroSizeAperturesDrawWithoutWidth) {
  // Each body ends in a flash of D10 at 5 mm, which the pass must still reach.
  const std::pair<std::string, std::vector<int32_t>> cases[] = {
      {"%ADD12C,0.00000*%D12*X0Y0D02*G01X1000Y0D01*", {ItemLine}},
      {"%ADD12C,0.00000*%D12*G36*X0Y0D02*G01X1000Y0D01*X1000Y1000D01*X0Y0D01*G37*"
       "X0Y0D02*X0Y1000D01*",
       {ItemLine, ItemLine, ItemLine, ItemLine}},
      {"%ADD12C,0*%D12*X0Y0D03*", {ItemCircle}},
      {"%ADD12R,0X0*%D12*X0Y0D03*X0Y0D02*X1000Y0D01*", {ItemRectangle, ItemRectangle}},
  };
  for (const auto& [body, types] : cases) {
    SCOPED_TRACE(body);
    clearLayer();
    EXPECT_EQ(drawText(body + "D10*X5000Y0D03*"), 0);
    EXPECT_EQ(boxes(), std::vector<std::string>{});
    std::vector<ItemRecord> all = items();
    ASSERT_EQ(all.size(), types.size() + 1);
    EXPECT_EQ(test::box(all.back()), (test::Box{500000, 0, 10000, 0}));
    all.pop_back();
    EXPECT_EQ(typesOf(all), types);
    // Region sides have a pen of their own; everything else has the aperture's, none.
    for (const ItemRecord& r : all)
      EXPECT_EQ(r.LineWidth, (r.Attributes & attr::PolygonSide) ? 1 : 0);
  }
}

TEST_F(GerberDrawing, DamagedStreamsEndWithTheirStatus) {
  scan.Lists.RoundPadList = {{10, 1000, 1}};
  scan.Lists.DrawList = {{10, 50, 1}};
  struct Case {
    const char* name;
    std::vector<ArtRecord> stream;
    int32_t status;
    size_t items;
    std::string box;
  };
  constexpr uint8_t Flash = artrecord::Flash, Draw = artrecord::PathPoint,
                    End = artrecord::EndOfStream, Negative = artrecord::ImagePolarity;
  const Case cases[] = {
      // clang-format off
      {"an unknown record ends the drawing, status 0",
       {{Flash, 10, 0, 0}, {77, 0, 0, 0}, {Flash, 10, 5, 5}, {End, 0, 0, 0}}, 0, 1,
       "Artwork File - Incorrect format"},
      {"a point beyond the world", {{Flash, 10, 0, 0}, {Flash, 10, 3e8, 0}, {End, 0, 0, 0}}, 1, 1,
       "Coordinates outside limits"},
      {"no end record", {{Flash, 10, 0, 0}}, 1, 1, "Artwork File - Incorrect format"},
      {"a draw before any path start writes nothing", {{Draw, 10, 100, 0}, {End, 0, 0, 0}}, 0, 0, ""},
      {"a negative image is clear too", {{Negative, 1, 0, 0}, {Flash, 10, 0, 0}, {Negative, 0, 0, 0},
                                         {Flash, 10, 0, 0}, {End, 0, 0, 0}}, 0, 1, ""},
      // clang-format on
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    clearLayer();
    pass.reporting.prompts.shown.clear();
    file.FilterMask = test::AllFilters & ~filter::AF_IMP;
    EXPECT_EQ(drawRecords(c.stream), c.status);
    EXPECT_EQ(items().size(), c.items);
    ASSERT_EQ(boxes().size(), c.box.empty() ? 0u : 1u);
    EXPECT_TRUE(c.box.empty() || boxes()[0].starts_with(c.box)) << boxes()[0];
  }
}

// The Gerber reader over a store of its own, with a job for the pass's source file.
struct ReaderRun {
  test::GerberPass pass;
  Store store;
  FileExtents extents;
  GerberPassContext context = pass.context();
  GerberFileReader reader{store, pass.reporting.reporter, context, extents};
  ImportJob job;

  ReaderRun() {
    job.WorkDirectory = pass.dir.path().string();
    job.SourcePath = pass.source;
    job.Kind = ImportKind::ArtworkRS274X;
  }
  // The import into an emptied layer, with a fresh scan and no messages yet; its status.
  int32_t import(LayerRecord& layer, LayerFileRecord& file) {
    pass.reporting.prompts.shown.clear();
    pass.scan = GerberScan{};
    EnsureLayerSymbol(store, layer, true);
    int32_t status = 99;  // set anew by the reader
    reader.importFile(status, job, layer, file);
    return status;
  }
};

TEST(GerberFileReader, ScanThenImportDrawsTheFileAndReportsADamagedIntermediateFile) {
  ReaderRun r;
  auto& [pass, store, extents, context, reader, job] = r;
  std::ofstream(pass.source, std::ios::binary)
      << "%FSLAX24Y24*%%MOIN*%%ADD10C,0.0100*%%ADD11R,0.0600X0.0400*%\r\n"
         "D10*X0Y0D02*X10000Y0D01*D11*X5000Y5000D03*X6000Y5000D03*M02*\r\n";
  ASSERT_EQ(reader.scan(job), ScanResult::Scanned);
  ASSERT_EQ(job.IntermediatePath, pass.dir.file("TMP.ART"));
  const ArtHeader header = pass.scan.Header;
  EXPECT_EQ(extents.MaxX, header.MaxX);

  auto layers = test::makeLayers();
  LayerRecord& layer = layers[0];
  LayerFileRecord& file = StartLayerFile(job, layer, true);
  const auto run = [&] { return r.import(layer, file); };
  const auto elements = [&] {
    return store.OA_GetCount(store.S_SymbolItemArray(layer.SymbolHandle)) +
           store.OA_GetCount(store.S_SymbolEntryArray(layer.SymbolHandle));
  };
  const auto lastBox = [&] {
    const auto& shown = pass.reporting.prompts.shown;
    return shown.empty() ? std::string() : shown.back().prompt;
  };

  ASSERT_EQ(run(), 0);
  EXPECT_EQ(pass.scan.Header, header) << "the import restores what the scan found";
  ASSERT_EQ(pass.scan.Lists.DrawList.size(), 1u);
  EXPECT_EQ(pass.scan.Lists.DrawList[0], (ApertureUse{10, 25400, 1}));
  ASSERT_EQ(pass.scan.Lists.SpecialList.size(), 1u);
  EXPECT_EQ(pass.scan.Lists.SpecialList[0].Uses, 2);
  const int32_t drawn = elements();
  EXPECT_EQ(drawn, 5) << "the draw and the two flashes";
  EXPECT_TRUE(pass.shown().empty());

  // A cut-off last record: the whole records are drawn, then the damage is reported.
  const std::string& path = job.IntermediatePath;
  const auto records = std::filesystem::file_size(path) / 21;
  std::filesystem::resize_file(path, records * 21 - 10);
  EXPECT_EQ(run(), 1);
  EXPECT_EQ(lastBox(), "Artwork File - Incorrect format");

  std::filesystem::resize_file(path, 4 * 21);
  EXPECT_EQ(run(), 1);
  EXPECT_EQ(elements(), 0) << "no header, nothing to replay";
  EXPECT_EQ(lastBox(), "Artwork File - Incorrect format");

  std::filesystem::remove(path);
  EXPECT_EQ(run(), 1);
  EXPECT_EQ(lastBox(), "Can't load " + path);
}

TEST(GerberFileReader, ALayerWithoutElementsIsImportedEmptyWithAMessage) {
  const std::pair<std::string, int32_t> cases[] = {
      {"G04 #@! TF.FileFunction,Copper,L2,Inr*\n%FSLAX46Y46*%\n%MOMM*%\n%ADD10C,0.1*%\nM02*\n", 0},
      {"%FSLAX24Y24*%%MOIN*%%ADD10C,0.01*%D10*X1000Y1000D03*M02*\n", 1},
  };
  for (const auto& [text, items] : cases) {
    SCOPED_TRACE(text);
    ReaderRun r;
    auto& [pass, store, extents, context, reader, job] = r;
    std::ofstream(pass.source, std::ios::binary) << text;
    ASSERT_EQ(reader.scan(job), ScanResult::Scanned);
    auto layers = test::makeLayers();
    const int32_t status = r.import(layers[0], StartLayerFile(job, layers[0], true));
    const std::vector<std::string> said =
        items == 0 ? std::vector<std::string>{"Nothing to import: " + pass.source}
                   : std::vector<std::string>{};
    EXPECT_EQ(std::tuple(status, store.OA_GetCount(store.S_SymbolItemArray(layers[0].SymbolHandle)),
                         test::boxesOf(pass.reporting.prompts)),
              std::tuple(0, items, said));
  }
}

}  // namespace
}  // namespace tvx
