// An 8-bit picture with a palette is drawn by the span rasteriser alone: the same pixels as a
// 32-bit one, and a note when a figure needs a painter.
#include "kernel/Kernel.h"
#include "support/GuiTestApplication.h"
#include "support/ItemBuilder.h"

#include <QImage>
#include <gtest/gtest.h>

#include <random>

namespace tvx {
namespace {

using test::Item;

struct Drawing {
  QImage picture;
  bool leftOut = false;
};

class IndexedPictureTest : public ::testing::Test {
protected:
  void SetUp() override {
    test::guiTestApplication();
    k.store.S_CreateSymbol(sym, "S");
  }
  void add(const ItemRecord& r) {
    k.store.OA_Add(k.store.S_SymbolItemArray(sym), k.store.I_MakeItem(r));
  }
  Drawing draw(QImage::Format format, int32_t mode = 0) {
    Drawing out{QImage(300, 200, format)};
    const int32_t dev = k.graphics.G_GetDC(&out.picture);
    EXPECT_EQ(k.graphics.G_OpenDC(dev, ViewSetup{200, 300, 200, 0, 0, 4}, 0), 1);
    k.graphics.G_ChangeBackgroundColor(dev, 0);
    k.graphics.G_CreateShadowBitmap(dev);
    k.graphics.G_SetDrawMode(dev, mode);
    k.graphics.S_DrawSymbol(dev, sym, 1, 1);
    k.graphics.G_CloseDC(dev, 1);
    out.leftOut = k.graphics.figuresLeftOut(dev);
    k.graphics.G_DeleteDC(dev);
    return out;
  }

  Kernel k;
  SymbolId sym = -76503;
};

TEST_F(IndexedPictureTest, DrawsTheSamePixelsAsAColourPicture) {
  std::mt19937 rng(11);
  std::uniform_int_distribution<int32_t> pos(-25000, 25000), size(100, 8000), angle(0, 359999);
  const int32_t types[] = {ItemLine, ItemCircle, ItemRectangle, ItemArc, ItemTriangle};
  for (int i = 0; i < 400; ++i) {
    const int32_t type = types[i % 5];
    add(Item(type)
            .at(pos(rng), pos(rng))
            .size(size(rng), size(rng))
            .pen(size(rng) / 8)
            .angle(type == ItemTriangle ? pos(rng) : angle(rng))
            .sweep(type == ItemTriangle ? pos(rng) : 90000)
            .style(i % 2 ? StyleFilled : 0)
            .colour(i % 32));
  }
  const Drawing colour = draw(QImage::Format_RGB32);
  const Drawing indexed = draw(QImage::Format_Indexed8);
  EXPECT_FALSE(indexed.leftOut);
  EXPECT_LE(indexed.picture.colorCount(), 33);
  EXPECT_EQ(indexed.picture.convertToFormat(QImage::Format_RGB32), colour.picture);
}

TEST_F(IndexedPictureTest, FiguresOnlyAPainterDrawsAreNotedAsLeftOut) {
  add(Item(ItemRectangle).at(0, 0).size(5000, 5000).filled().colour(12));
  EXPECT_FALSE(draw(QImage::Format_Indexed8).leftOut);
  EXPECT_TRUE(draw(QImage::Format_Indexed8, drawmode::ExclusiveOr).leftOut);
  EXPECT_FALSE(draw(QImage::Format_Indexed8).leftOut) << "each pass starts anew";
  Item text(ItemVectorText);
  text.Text = "TEXT";
  add(text.at(-10000, 0).size(3000, 3000).colour(15));
  EXPECT_TRUE(draw(QImage::Format_Indexed8).leftOut);
  EXPECT_FALSE(draw(QImage::Format_RGB32).leftOut) << "a painter draws it there";
}

}  // namespace
}  // namespace tvx
