// Text of a pixel size at a world point: where it stands by its mode, its size, its mirror, and
// exclusive-or text drawn twice.
#include "kernel/Kernel.h"
#include "support/GuiTestApplication.h"

#include <QImage>
#include <gtest/gtest.h>

#include <string>

namespace tvx {
namespace {

class PixelTextTest : public ::testing::Test {
protected:
  void SetUp() override {
    test::guiTestApplication();
    image.fill(Qt::black);
    dev = k.graphics.G_GetDC(&image);
    ASSERT_EQ(k.graphics.G_OpenDC(dev, ViewSetup{100, Width, Height, 0, 0, 4}, 0), 1);
    k.graphics.G_SetColor(dev, 15);
  }
  void TearDown() override { k.graphics.G_DeleteDC(dev); }

  // The box of the pixels that are not black.
  QRect ink() const {
    QRect box;
    for (int y = 0; y < Height; ++y)
      for (int x = 0; x < Width; ++x)
        if (qGray(image.pixel(x, y)) > 0)
          box |= QRect(x, y, 1, 1);
    return box;
  }

  static constexpr int Width = 200;
  static constexpr int Height = 100;
  Kernel k;
  QImage image{Width, Height, QImage::Format_RGB32};
  int32_t dev = 0;
};

TEST_F(PixelTextTest, PlacedByItsModeAndSized) {
  struct Case {
    const char* name;
    int32_t horizontal, vertical;
    bool left, right, above, below;  // ink on that side of the point, the middle of the picture
  };
  const Case cases[] = {
      {"left, top", 0, 0, false, true, false, true},
      {"right, bottom", 2, 2, true, false, true, false},
      {"centred", 1, 1, true, true, true, true},
  };
  for (const Case& c : cases) {
    image.fill(Qt::black);
    k.graphics.G_SetTextMode(dev, c.horizontal, c.vertical, 1);
    EXPECT_EQ(k.graphics.G_PixelText(dev, 0, 0, 20, "HH"), 1) << c.name;
    const QRect box = ink();
    ASSERT_FALSE(box.isEmpty()) << c.name;
    EXPECT_EQ(box.left() < Width / 2, c.left) << c.name;
    EXPECT_EQ(box.right() >= Width / 2, c.right) << c.name;
    EXPECT_EQ(box.top() < Height / 2, c.above) << c.name;
    EXPECT_EQ(box.bottom() >= Height / 2, c.below) << c.name;
    // An upper-case letter of a 20-pixel font is 10 to 20 pixels high.
    EXPECT_GE(box.height(), 10) << c.name;
    EXPECT_LE(box.height(), 20) << c.name;
  }
  EXPECT_EQ(k.graphics.G_PixelText(dev, 0, 0, 0, "H"), 0);
  EXPECT_EQ(k.graphics.G_PixelText(dev, 0, 0, 10, ""), 0);
}

TEST_F(PixelTextTest, MirroredAndExclusiveOr) {
  k.graphics.G_SetTextMode(dev, 0, 0, 1);
  k.graphics.G_PixelText(dev, 0, 0, 20, "F7");
  const QImage plain = image.copy();
  image.fill(Qt::black);
  k.graphics.G_SetTextMirror(dev, 1);
  k.graphics.G_PixelText(dev, 0, 0, 20, "F7");
  EXPECT_EQ(image.copy(ink()), plain.copy(ink()).mirrored(true, false));
  EXPECT_NE(image, plain);

  k.graphics.G_SetTextMirror(dev, 0);
  image.fill(Qt::darkCyan);
  const QImage before = image.copy();
  k.graphics.G_SetDrawMode(dev, drawmode::Normal | drawmode::ExclusiveOr);
  k.graphics.G_PixelText(dev, -5000, 1000, 14, "12.5");
  EXPECT_NE(image, before);
  k.graphics.G_PixelText(dev, -5000, 1000, 14, "12.5");
  EXPECT_EQ(image, before);
}

}  // namespace
}  // namespace tvx
