// The drawing engine on offscreen images: transform, colours, modes and element drawing.
#include "kernel/Kernel.h"
#include "kernel/Palette.h"

#include "support/GuiTestApplication.h"
#include "support/ItemBuilder.h"

#include <QImage>
#include <gtest/gtest.h>

#include <random>

namespace tvx {
namespace {

using test::Item;

class GraphicsTest : public ::testing::Test {
protected:
  void SetUp() override {
    test::guiTestApplication();
    k.store.S_CreateSymbol(sym, "S");
  }

  // Draws the symbol on w x h pixels, scale store units per pixel, centred on (ox, oy).
  QImage render(int w, int h, int32_t scale, int32_t ox, int32_t oy, int32_t mode = 4) {
    QImage image(w, h, QImage::Format_RGB32);
    int32_t dev = k.graphics.G_GetDC(&image);
    ViewSetup v{scale, w, h, ox, oy, mode};
    EXPECT_EQ(k.graphics.G_OpenDC(dev, v, 0), 1);
    k.graphics.G_ChangeBackgroundColor(dev, 0);
    k.graphics.G_CreateShadowBitmap(dev);
    k.graphics.S_DrawSymbol(dev, sym, 1, 1);
    k.graphics.G_CloseDC(dev, 1);
    k.graphics.G_DeleteDC(dev);
    return image;
  }
  void add(const ItemRecord& r) {
    k.store.OA_Add(k.store.S_SymbolItemArray(sym), k.store.I_MakeItem(r));
  }
  static QRgb colourOf(int paletteNumber) {
    uint32_t v = paletteRgb()[size_t(paletteNumber)];
    return qRgb(redOf(v), greenOf(v), blueOf(v));
  }

  Kernel k;
  SymbolId sym = -76503;
};

TEST_F(GraphicsTest, DeviceToStoreIsTheInverseOfTheView) {
  QImage image(200, 100, QImage::Format_RGB32);
  int32_t dev = k.graphics.G_GetDC(&image);
  ASSERT_EQ(k.graphics.G_OpenDC(dev, ViewSetup{100, 200, 100, 1000, 2000, 4}, 0), 1);
  const auto store = [&](int32_t x, int32_t y) {
    k.graphics.G_DPtoLP(dev, x, y);
    return std::pair(x, y);
  };
  EXPECT_EQ(store(100, 50), std::pair(1000, 2000));
  EXPECT_EQ(store(0, 0), std::pair(1000 - 10000, 2000 + 5000)) << "Y grows upwards";
  k.graphics.G_CloseDC(dev, 0);
  // Mirrored view: X runs the other way.
  ASSERT_EQ(k.graphics.G_OpenDC(dev, ViewSetup{100, 200, 100, 0, 0, 4 | 1}, 0), 1);
  EXPECT_EQ(store(0, 50).first, 10000);
  k.graphics.G_CloseDC(dev, 0);
  EXPECT_EQ(k.graphics.G_OpenDC(99, ViewSetup{}, 0), 0) << "no such device";
  EXPECT_EQ(k.graphics.G_OpenDC(dev, ViewSetup{0, 200, 100, 0, 0, 4}, 0), 0) << "no scale";
}

TEST_F(GraphicsTest, ElementsAreDrawnAtTheirPlaceInTheirColour) {
  add(Item(ItemRectangle).at(-2000, -1000).colour(10).filled().size(4000, 2000));
  // Not shown:
  add(Item(ItemRectangle, attr::PolygonFrameMark)
          .at(3000, -1000)
          .colour(10)
          .filled()
          .size(4000, 2000));
  QImage img = render(100, 100, 100, 0, 0);
  EXPECT_EQ(img.pixel(50, 50), colourOf(10));
  EXPECT_EQ(img.pixel(50, 41), colourOf(10)) << "the top edge is 1000 units, 10 pixels, up";
  EXPECT_EQ(img.pixel(50, 38), colourOf(0));
  EXPECT_EQ(img.pixel(85, 50), colourOf(0)) << "a hidden element is not drawn";
}

TEST_F(GraphicsTest, ColourValuesNameSlotsAndBackground) {
  k.strings.E_SysTable(1)[60] = 14;
  add(Item(ItemCircle).colour(64 + 28 /* slot 60 */).filled().size(2000));
  add(Item(ItemCircle).at(6000, 0).colour(10 | ColourMarkBit).filled().size(2000));  // background
  QImage img = render(200, 100, 100, 3000, 0);
  EXPECT_EQ(img.pixel(70, 50), colourOf(14));
  EXPECT_EQ(img.pixel(130, 50), colourOf(0));
}

TEST_F(GraphicsTest, ExclusiveOrDrawingTwiceRestoresThePicture) {
  add(Item(ItemLine).at(-4000, 0).colour(12).pen(500).size(8000, 3000));
  QImage image(120, 80, QImage::Format_RGB32);
  image.fill(Qt::darkGreen);
  QImage before = image;
  int32_t dev = k.graphics.G_GetDC(&image);
  for (int pass = 0; pass < 2; ++pass) {
    ASSERT_EQ(k.graphics.G_OpenDC(dev, ViewSetup{100, 120, 80, 0, 0, 4}, 0), 1);
    k.graphics.G_SetDrawMode(dev, 6);
    k.graphics.S_DrawItem(dev, sym, 1);
    k.graphics.G_CloseDC(dev, 0);
    EXPECT_EQ(image == before, pass == 1) << pass;
  }
}

TEST_F(GraphicsTest, PenWidthTrueSizeAndSkeletonOutline) {
  add(Item(ItemLine).at(-5000, 0).colour(15).pen(2000 /* 20 pixels */).size(10000));
  QImage img = render(200, 100, 100, 0, 0);
  EXPECT_EQ(img.pixel(100, 58), colourOf(15));
  EXPECT_EQ(img.pixel(100, 63), colourOf(0));
  EXPECT_EQ(img.pixel(152, 50), colourOf(15)) << "round end";
  QImage skeleton = render(200, 100, 100, 0, 0, 4 | 32);
  EXPECT_NE(skeleton.pixel(100, 50), colourOf(0));
  EXPECT_EQ(skeleton.pixel(100, 55), colourOf(0));
}

TEST_F(GraphicsTest, FilledPolygonRunsAreFilledAsOnePath) {
  auto side = [&](int32_t x, int32_t y, int32_t dx, int32_t dy, int32_t bits, uint8_t style) {
    add(Item(ItemLine, attr::Shown | attr::PolygonSide | bits)
            .at(x, y)
            .colour(9)
            .style(style)
            .pen(1)
            .size(dx, dy));
  };
  side(-3000, -3000, 6000, 0, attr::PolygonFirst, StyleFilled);
  side(3000, -3000, 0, 6000, 0, StyleFilled);
  side(3000, 3000, -6000, 0, 0, StyleFilled);
  side(-3000, 3000, 0, -6000, attr::PolygonLast, StyleFilled);
  QImage filled = render(100, 100, 100, 0, 0);
  EXPECT_EQ(filled.pixel(50, 50), colourOf(9));
  k.store.OA_MaskAll(k.store.S_SymbolItemArray(sym), 0, 0);  // no-op mask keeps the run
  for (int i = 1; i <= 4; ++i) {
    ObjectHandle h = k.store.S_SymbolItem(sym, i);
    k.store.I_ChangeItemAttr(h, k.store.O_GetStatus(h), 9, StyleOpen, 1);
  }
  QImage open = render(100, 100, 100, 0, 0);
  EXPECT_EQ(open.pixel(50, 50), colourOf(0));
  EXPECT_NE(open.pixel(20, 50), colourOf(0));
}

TEST_F(GraphicsTest, EntriesDrawTheirPadStackTurned) {
  ObjectHandle pad = k.store.S_MakePadStack();
  k.store.OA_Add(
      k.store.S_PadStackItemArray(pad),
      k.store.I_MakeItem(Item(ItemRectangle).at(0, -500).colour(14).filled().size(4000, 1000)));
  k.store.OM_Add(k.store.S_SymbolPadStackMap(sym), pad, 10);
  int32_t e = k.store.S_InsertEntry(sym, -1, 0, 0);
  k.store.S_ChangePadPadStack(sym, e, 10);
  k.store.S_ChangePadRotation(sym, e, 90000);
  k.store.O_Mask(k.store.S_Entry(sym, e), attr::Shown, attr::Shown);
  QImage img = render(100, 100, 100, 0, 0);
  EXPECT_EQ(img.pixel(50, 20), colourOf(14)) << "the bar points up after a quarter turn";
  EXPECT_EQ(img.pixel(80, 50), colourOf(0));
}

// A part of a large board drawn alone must look exactly like the same part of the whole board.
TEST_F(GraphicsTest, PartialViewsMatchTheWholePicture) {
  std::mt19937 rng(5);
  std::uniform_int_distribution<int32_t> pos(-50000, 50000), size(2500, 6000);
  for (int i = 0; i < 600; ++i) {
    const int32_t type = (i % 3 == 0) ? ItemLine : (i % 3 == 1 ? ItemCircle : ItemRectangle);
    const int32_t x = pos(rng), y = pos(rng), w = size(rng) * (type == ItemLine ? 3 : 1);
    const int32_t h = size(rng), pen = size(rng) / 10;
    add(Item(type)
            .at(x, y)
            .size(w, h)
            .pen(pen)
            .style(i % 2 ? StyleFilled : StyleOpen)
            .colour(1 + i % 15));
  }
  QImage whole = render(400, 400, 250, 0, 0);
  // A 100 x 80 window whose centre lies 20 pixels right of and 30 pixels above the whole
  // picture's centre.
  QImage part = render(100, 80, 250, 20 * 250, 30 * 250);
  QImage expected = whole.copy(200 + 20 - 50, 200 - 30 - 40, 100, 80);
  // Edge smoothing may differ by a few shades where shapes are rasterised from another origin, and
  // where several edges blend in one pixel by a little more; a missing or misplaced element (at
  // least 10 pixels across here, 78 pixels or more) differs over a whole patch.
  int differing = 0;
  for (int y = 2; y < 78; ++y)
    for (int x = 2; x < 98; ++x) {
      QRgb a = part.pixel(x, y), b = expected.pixel(x, y);
      int delta = std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                            std::abs(qBlue(a) - qBlue(b))});
      differing += delta > 64;
    }
  EXPECT_LE(differing, 20);
}

}  // namespace
}  // namespace tvx
