// Grid, geometry helpers, text sizes, polygon drawing at an offset, clipboard and cursors.
#include "kernel/Kernel.h"
#include "kernel/Palette.h"

#include "support/GuiTestApplication.h"
#include "support/ItemBuilder.h"

#include <QClipboard>
#include <QCursor>
#include <QImage>
#include <gtest/gtest.h>

namespace tvx {
namespace {

class GraphicsServicesTest : public ::testing::Test {
protected:
  void SetUp() override { test::guiTestApplication(); }
  int32_t open(QImage& image, int32_t scale) {
    int32_t dev = k.graphics.G_GetDC(&image);
    const ViewSetup setup{scale, image.width(), image.height(), 0, 0, 4};
    EXPECT_EQ(k.graphics.G_OpenDC(dev, setup, 0), 1);
    k.graphics.G_CreateShadowBitmap(dev);
    return dev;
  }
  Kernel k;
};

TEST_F(GraphicsServicesTest, GridUsesACoarserStepWhenTheAskedOneIsTooFine) {
  QImage image(100, 100, QImage::Format_RGB32);
  k.strings.E_SysTable(1)[62] = 15;  // grid dots white
  int32_t dev = open(image, 100);
  FrameRect all{0, 0, 100, 100};
  EXPECT_EQ(k.graphics.G_DrawGrid(dev, all, 1000, 1), 1000) << "10 pixels apart is fine";
  EXPECT_EQ(k.graphics.G_DrawGrid(dev, all, 100, 0), 800) << "1 pixel apart is doubled to 8";
  k.graphics.G_CloseDC(dev, 1);
  // Dots at every 10 pixels from the centre, nothing between them.
  QRgb white = qRgb(255, 255, 255);
  EXPECT_EQ(image.pixel(50, 50), white);
  EXPECT_EQ(image.pixel(60, 40), white);
  EXPECT_NE(image.pixel(55, 50), white);
  EXPECT_EQ(k.graphics.G_GetGridMode(dev), 1);
  EXPECT_EQ(k.graphics.G_SetGridMode(dev, 4), 0);
  EXPECT_EQ(k.graphics.G_SetGridMode(dev, 2), 1);
  EXPECT_EQ(k.graphics.G_GetGridMode(dev), 2);
}

TEST_F(GraphicsServicesTest, GeometryHelpers) {
  int32_t x = 0, y = 0, r = -500, start = 90000, sweep = -180000;
  Graphics::G_ArcNormalize(x, y, r, start, sweep);
  EXPECT_EQ(std::tuple(r, start, sweep), std::tuple(500, 270000, 180000));
  EXPECT_EQ(Graphics::G_LinePointDeterminant(0, 0, 10, 10, 20, 20), 0);
  EXPECT_GT(Graphics::G_LinePointDeterminant(0, 0, 10, 0, 0, 10), 0);
  EXPECT_EQ(Graphics::G_LinePointDeterminant(-2000000000, 0, 2000000000, 1, 0, 2000000000),
            int64_t(4000000000) * 2000000000 - int64_t(1) * 2000000000)
      << "no overflow";
  EXPECT_TRUE(Graphics::DB_CoverRectangle(10, 5, 1, 10, 0, 0, 5)) << "corners in any order";
  EXPECT_FALSE(Graphics::DB_CoverRectangle(10, 5, 0, 10, 0, 0, 5)) << "edges only when inclusive";
  EXPECT_TRUE(Graphics::DB_CoverRectangle(5, 2, 0, 10, 0, 0, 5));
  int32_t w = 0, h = 0;
  Graphics::G_GetTextSize(200, 150, 4, w, h);
  EXPECT_EQ(std::pair(w, h), std::pair(600, 200));
  int32_t tw = 0, th = 0;
  ASSERT_EQ(k.graphics.G_GetTrueTypeTextSize(0, 100000, "WIDE", "Sans", 0, tw, th), 1);
  int32_t nw = 0, nh = 0;
  k.graphics.G_GetTrueTypeTextSize(0, 100000, "i", "Sans", 0, nw, nh);
  EXPECT_GT(tw, 3 * nw);
  EXPECT_GE(th, 100000);
}

TEST_F(GraphicsServicesTest, PolygonRunsAndItemsAtAnOffset) {
  SymbolId sym = 1;
  k.store.S_CreateSymbol(sym, "S");
  ArrayHandle items = k.store.S_SymbolItemArray(sym);
  int32_t dx[3] = {2000, -1000, -1000}, dy[3] = {0, 2000, -2000}, x = -1000, y = -1000;
  for (int i = 0; i < 3; ++i) {
    const int32_t bits = attr::Shown | attr::PolygonSide | (i == 0 ? attr::PolygonFirst : 0) |
                         (i == 2 ? attr::PolygonLast : 0);
    k.store.OA_Add(items,
                   k.store.I_MakeItem(
                       test::Item(ItemLine, bits).at(x, y).colour(15).filled().size(dx[i], dy[i])));
    x += dx[i];
    y += dy[i];
  }
  QImage image(100, 100, QImage::Format_RGB32);
  int32_t dev = open(image, 100);
  EXPECT_EQ(k.graphics.I_DrawItemPoly(dev, items, 1, 3), 1);
  EXPECT_EQ(k.graphics.I_DrawItemPoly(dev, items, 2, 4), 0) << "beyond the array";
  // The first side once more, moved 3000 up: a line across the top.
  EXPECT_EQ(k.graphics.I_DrawItemPoly(dev, k.store.OA_Object(items, 1), 0, 3000), 1);
  k.graphics.G_CloseDC(dev, 1);
  QRgb white = qRgb(255, 255, 255);
  EXPECT_EQ(image.pixel(50, 55), white) << "inside the filled triangle";
  EXPECT_NE(image.pixel(50, 35), white) << "above its tip";
  EXPECT_EQ(image.pixel(50, 30), white) << "the moved side, 2000 units above the centre";
}

TEST_F(GraphicsServicesTest, ClipboardAndCursors) {
  QImage image(40, 30, QImage::Format_RGB32);
  int32_t dev = open(image, 100);
  k.graphics.G_CloseDC(dev, 1);
  image.setPixel(5, 5, qRgb(1, 2, 3));
  ASSERT_EQ(k.graphics.G_CopyToClipBoard(dev), 1);
  EXPECT_EQ(QGuiApplication::clipboard()->image().size(), QSize(40, 30));
  ASSERT_EQ(k.graphics.G_CopyScreen(dev, 10, 10, -6, -6), 1) << "corners in any order";
  QImage part = QGuiApplication::clipboard()->image();
  EXPECT_EQ(part.size(), QSize(6, 6));
  EXPECT_EQ(part.pixel(1, 1), qRgb(1, 2, 3));
  EXPECT_EQ(k.graphics.G_CopyScreen(dev, 100, 100, 5, 5), 0) << "outside the picture";

  int32_t cross = k.graphics.G_SelectCur(2);
  ASSERT_NE(k.graphics.cursor(cross), nullptr);
  EXPECT_EQ(k.graphics.cursor(cross)->shape(), Qt::CrossCursor);
  EXPECT_EQ(k.graphics.G_DelCur(cross), 1);
  EXPECT_EQ(k.graphics.cursor(cross), nullptr);
  EXPECT_EQ(k.graphics.G_DelCur(cross), 0);
}

}  // namespace
}  // namespace tvx
