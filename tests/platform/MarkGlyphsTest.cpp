#include "platform/MarkGlyphs.h"

#include "kernel/Kernel.h"
#include "platform/SystemServices.h"

#include "support/GuiTestApplication.h"

#include <QImage>
#include <gtest/gtest.h>

namespace tvx {
namespace {

// Each glyph marks its point and stays within its size; drawn twice in exclusive-or it is gone.
TEST(MarkGlyphs, GlyphsMarkTheirPointAndEraseThemselves) {
  test::guiTestApplication();
  Kernel k;
  SystemServices services;
  services.setGraphics(&k.graphics);
  for (int glyph : {1, 5, 6, 7, 8, 10}) {
    SCOPED_TRACE(glyph);
    QImage image(60, 60, QImage::Format_RGB32);
    image.fill(Qt::black);
    const QImage blank = image;
    int32_t dev = k.graphics.G_GetDC(&image);
    ASSERT_EQ(k.graphics.G_OpenDC(dev, ViewSetup{100, 60, 60, 0, 0, 4}, 0), 1);
    services.DrawMarkGlyph(dev, 4, std::to_string(glyph), 0, 0, 15, 0, 2000, 2000);
    k.graphics.G_CloseDC(dev, 0);
    int lit = 0, far = 0;
    for (int py = 0; py < 60; ++py)
      for (int px = 0; px < 60; ++px)
        if (image.pixel(px, py) != blank.pixel(px, py)) {
          ++lit;
          far += std::abs(px - 30) > 12 || std::abs(py - 30) > 12;
        }
    EXPECT_GT(lit, 5);
    EXPECT_EQ(far, 0) << "a 2000-unit glyph stays within 10 pixels of its point";

    image = blank;
    ASSERT_EQ(k.graphics.G_OpenDC(dev, ViewSetup{100, 60, 60, 0, 0, 4}, 0), 1);
    services.DrawMarkGlyph(dev, 6, std::to_string(glyph), 0, 0, 15, 30000, 2000, 2000);
    services.DrawMarkGlyph(dev, 6, std::to_string(glyph), 0, 0, 15, 30000, 2000, 2000);
    k.graphics.G_CloseDC(dev, 0);
    EXPECT_EQ(image, blank);
    k.graphics.G_DeleteDC(dev);
  }
  EXPECT_FALSE(drawMarkGlyph(k.graphics, 1, 4, 2, 0, 0, 15, 0, 10, 10)) << "no glyph 2";
}

}  // namespace
}  // namespace tvx
