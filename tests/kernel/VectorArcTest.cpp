// An arc on a vector device (a printer, a PDF or SVG file; here a QPicture) is drawn as curves:
// played back it covers the pixels the raster picture of the same arc covers, in a mirrored
// view too.
#include "kernel/Kernel.h"
#include "support/GuiTestApplication.h"
#include "support/ItemBuilder.h"

#include <QImage>
#include <QPainter>
#include <QPicture>
#include <gtest/gtest.h>

namespace tvx {
namespace {

constexpr SymbolId Sym = -76503;

// The arc's picture on target, then as a 200 x 200 image: white where it drew.
QImage drawn(Kernel& k, int32_t mode, bool vector) {
  QImage image(200, 200, QImage::Format_RGB32);
  image.fill(Qt::black);
  QPicture picture;
  const int32_t dev = vector ? k.graphics.G_GetDC(&picture)
                             : k.graphics.G_GetDC(static_cast<QPaintDevice*>(&image));
  ViewSetup view{100, 200, 200, 0, 0, mode};
  EXPECT_EQ(k.graphics.G_OpenDC(dev, view, 0), 1);
  k.graphics.S_DrawSymbol(dev, Sym, 1, 1);
  k.graphics.G_CloseDC(dev, 1);
  k.graphics.G_DeleteDC(dev);
  if (vector) {
    QPainter painter(&image);
    picture.play(&painter);
  }
  return image;
}

TEST(VectorArcTest, CurvesCoverTheRasterArc) {
  test::guiTestApplication();
  Kernel k;
  k.store.S_CreateSymbol(Sym, "S");
  // Radius 60 pixels, from 30 degrees through 200, 10 pixels wide, in white.
  k.store.OA_Add(
      k.store.S_SymbolItemArray(Sym),
      k.store.I_MakeItem(
          test::Item(ItemArc).at(1000, -500).size(6000, 30000).sweep(200000).pen(1000).colour(15)));
  for (int32_t mode : {4, 4 | viewflag::Mirror}) {
    SCOPED_TRACE(mode);
    const QImage raster = drawn(k, mode, false), vector = drawn(k, mode, true);
    int both = 0, either = 0;
    for (int y = 0; y < 200; ++y)
      for (int x = 0; x < 200; ++x) {
        const bool a = qGray(raster.pixel(x, y)) > 128, b = qGray(vector.pixel(x, y)) > 128;
        both += a && b;
        either += a || b;
      }
    ASSERT_GT(either, 1000);
    EXPECT_GT(both, either * 9 / 10);
  }
}

}  // namespace
}  // namespace tvx
