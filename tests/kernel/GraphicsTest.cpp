// The drawing engine on offscreen images: transform, colours, modes and element drawing, 8-bit
// pictures drawn without a painter; grid, geometry helpers, text sizes, polygon drawing at an
// offset, clipboard and cursors.
#include "kernel/Kernel.h"
#include "kernel/Palette.h"
#include "support/GuiTestApplication.h"
#include "support/ItemBuilder.h"

#include <QClipboard>
#include <QCursor>
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

  // Draws the symbol on w x h pixels of the format, scale store units per pixel, centred on
  // (ox, oy); leftOut tells whether a figure that needs a painter was left out.
  QImage render(int w, int h, int32_t scale, int32_t ox, int32_t oy, int32_t mode = 4,
                QImage::Format format = QImage::Format_RGB32, int32_t drawMode = drawmode::Normal) {
    QImage image(w, h, format);
    int32_t dev = k.graphics.G_GetDC(&image);
    ViewSetup v{scale, w, h, ox, oy, mode};
    EXPECT_EQ(k.graphics.G_OpenDC(dev, v, 0), 1);
    k.graphics.G_ChangeBackgroundColor(dev, 0);
    k.graphics.G_CreateShadowBitmap(dev);
    k.graphics.G_SetDrawMode(dev, drawMode);
    k.graphics.G_SetOneColour(dev, oneColour, oneColourClear);
    k.graphics.S_DrawSymbol(dev, sym, 1, 1);
    k.graphics.G_CloseDC(dev, 1);
    leftOut = k.graphics.figuresLeftOut(dev);
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
  bool leftOut = false;
  int32_t oneColour = -1, oneColourClear = 0;  // G_SetOneColour of render
};

// The device's transform both ways is the view tests' (ViewTest.cpp); a device is opened only
// with a scale.
TEST_F(GraphicsTest, ADeviceOpensOnlyWhereItIsAndWithAScale) {
  QImage image(200, 100, QImage::Format_RGB32);
  const int32_t dev = k.graphics.G_GetDC(&image);
  EXPECT_EQ(k.graphics.G_OpenDC(dev, ViewSetup{100, 200, 100, 0, 0, 4}, 0), 1);
  EXPECT_EQ(k.graphics.G_OpenDC(99, ViewSetup{100, 200, 100, 0, 0, 4}, 0), 0) << "no such device";
  EXPECT_EQ(k.graphics.G_OpenDC(dev, ViewSetup{0, 200, 100, 0, 0, 4}, 0), 0) << "no scale";
  k.graphics.G_DeleteDC(dev);
}

TEST_F(GraphicsTest, ElementsAreDrawnAtTheirPlaceInTheirColour) {
  add(Item(ItemRectangle).at(-2000, -1000).colour(10).filled().size(4000, 2000));
  Item hidden(ItemRectangle, attr::PolygonFrameMark);  // not shown
  add(hidden.at(3000, -1000).colour(10).filled().size(4000, 2000));
  QImage img = render(100, 100, 100, 0, 0);
  // The top edge is 1000 units, 10 pixels, up; a hidden element is not drawn.
  EXPECT_EQ(std::tuple(img.pixel(50, 50), img.pixel(50, 41), img.pixel(50, 38), img.pixel(85, 50)),
            std::tuple(colourOf(10), colourOf(10), colourOf(0), colourOf(0)));
}

// One colour for a pass: every element takes it, an element of the clear colour shows the
// background, and the store keeps the elements' own colours.
TEST_F(GraphicsTest, OneColourDrawsEveryElementInItAndTheClearOnesAsBackground) {
  add(Item(ItemRectangle).at(-4000, -1000).colour(10).filled().size(2000, 2000));
  add(Item(ItemRectangle).at(1000, -1000).colour(3).filled().size(2000, 2000));
  add(Item(ItemLine).at(-4000, 3000).colour(7).pen(500).size(7000, 0));
  const QRgb background = colourOf(0);
  for (auto [one, clear, left, right, line] :
       {std::tuple(-1, 3, colourOf(10), colourOf(3), colourOf(7)),
        std::tuple(12, 3, colourOf(12), background, colourOf(12)),
        std::tuple(12, 7, colourOf(12), colourOf(12), background)}) {
    SCOPED_TRACE(::testing::Message() << one << " clear " << clear);
    oneColour = one;
    oneColourClear = clear;
    const QImage img = render(100, 100, 100, 0, 0);
    EXPECT_EQ(std::tuple(img.pixel(20, 50), img.pixel(70, 50), img.pixel(50, 20)),
              std::tuple(left, right, line));
  }
  ItemRecord r;
  k.store.I_ReadItem(k.store.S_SymbolItem(sym, 2), r);
  EXPECT_EQ(r.Colour, 3);
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

// The rubber box of the tools: an exclusive-or hairline rectangle (and the long cursor's lines)
// changes every pixel of its outline once, corners too, clipped to the picture; twice, nothing.
TEST_F(GraphicsTest, ExclusiveOrHairlinesTouchEachOutlinePixelOnce) {
  QImage image(120, 80, QImage::Format_RGB32);
  image.fill(Qt::darkGreen);
  const QImage before = image;
  const int32_t dev = k.graphics.G_GetDC(&image);
  const auto draw = [&] {
    ASSERT_EQ(k.graphics.G_OpenDC(dev, ViewSetup{100, 120, 80, 0, 0, 4}, 0), 1);
    k.graphics.G_SetDrawMode(dev, 6);
    k.graphics.G_SetColor(dev, 12);
    k.graphics.G_Rectangle(dev, -2000, 1000, 3000, -2000);        // pixels 40..70 by 40..60
    k.graphics.G_Line(dev, -220000000, -3000, 220000000, -3000);  // row 70, the whole width
    k.graphics.G_CloseDC(dev, 0);
  };
  draw();
  int changed = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      changed += image.pixel(x, y) != before.pixel(x, y);
  EXPECT_EQ(changed, 2 * 31 + 2 * 19 + 120);
  EXPECT_NE(image.pixel(40, 30), before.pixel(40, 30)) << "a corner";
  EXPECT_EQ(image.pixel(55, 40), before.pixel(55, 40)) << "inside";
  draw();
  EXPECT_EQ(image, before);
  k.graphics.G_DeleteDC(dev);
}

TEST_F(GraphicsTest, PenWidthTrueSizeAndSkeletonOutline) {
  add(Item(ItemLine).at(-5000, 0).colour(15).pen(2000 /* 20 pixels */).size(10000));
  QImage img = render(200, 100, 100, 0, 0);
  EXPECT_EQ(std::tuple(img.pixel(100, 58), img.pixel(100, 63), img.pixel(152, 50) /* round end */),
            std::tuple(colourOf(15), colourOf(0), colourOf(15)));
  QImage skeleton = render(200, 100, 100, 0, 0, 4 | 32);
  EXPECT_NE(skeleton.pixel(100, 50), colourOf(0));
  EXPECT_EQ(skeleton.pixel(100, 55), colourOf(0));
}

TEST_F(GraphicsTest, FilledPolygonRunsAreFilledAsOnePath) {
  auto side = [&](int32_t x, int32_t y, int32_t dx, int32_t dy, int32_t bits, uint8_t style) {
    Item r(ItemLine, attr::Shown | attr::PolygonSide | bits);
    add(r.at(x, y).colour(9).style(style).pen(1).size(dx, dy));
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
  EXPECT_TRUE(open.pixel(50, 50) == colourOf(0) && open.pixel(20, 50) != colourOf(0));
}

TEST_F(GraphicsTest, EntriesDrawTheirPadStackTurned) {
  ObjectHandle pad = k.store.S_MakePadStack();
  Item bar = Item(ItemRectangle).at(0, -500).colour(14).filled().size(4000, 1000);
  k.store.OA_Add(k.store.S_PadStackItemArray(pad), k.store.I_MakeItem(bar));
  k.store.OM_Add(k.store.S_SymbolPadStackMap(sym), pad, 10);
  int32_t e = k.store.S_InsertEntry(sym, -1, 0, 0);
  k.store.S_ChangePadPadStack(sym, e, 10);
  k.store.S_ChangePadRotation(sym, e, 90000);
  k.store.O_Mask(k.store.S_Entry(sym, e), attr::Shown, attr::Shown);
  QImage img = render(100, 100, 100, 0, 0);
  EXPECT_EQ(std::tuple(img.pixel(50, 20), img.pixel(80, 50)), std::tuple(colourOf(14), colourOf(0)))
      << "the bar points up after a quarter turn";
}

// A part of a large board drawn alone must look exactly like the same part of the whole board.
TEST_F(GraphicsTest, PartialViewsMatchTheWholePicture) {
  std::mt19937 rng(5);
  std::uniform_int_distribution<int32_t> pos(-50000, 50000), size(2500, 6000);
  for (int i = 0; i < 600; ++i) {
    const int32_t type = (i % 3 == 0) ? ItemLine : (i % 3 == 1 ? ItemCircle : ItemRectangle);
    const int32_t x = pos(rng), y = pos(rng), w = size(rng) * (type == ItemLine ? 3 : 1);
    const int32_t h = size(rng), pen = size(rng) / 10;
    add(Item(type).at(x, y).size(w, h).pen(pen).style(i % 2 ? StyleFilled : 0).colour(1 + i % 15));
  }
  QImage whole = render(400, 400, 250, 0, 0);
  // Windows whose centres lie dx pixels right of and dy pixels above the whole picture's centre:
  // a small one (the members met, from the spatial index) and one holding most of the board (all
  // members in one walk).
  // Pixels at exact edges may fall the other way from another origin: 28 of the larger window's
  // do. A missing or misplaced element (at least 10 pixels across here) differs by 78 or more.
  for (auto [w, h, dx, dy, most] :
       {std::tuple(100, 80, 20, 30, 20), std::tuple(380, 360, -8, 6, 40)}) {
    SCOPED_TRACE(w);
    const QImage part = render(w, h, 250, dx * 250, dy * 250);
    const QImage expected = whole.copy(200 + dx - w / 2, 200 - dy - h / 2, w, h);
    int differing = 0;
    for (int y = 2; y < h - 2; ++y)
      for (int x = 2; x < w - 2; ++x) {
        QRgb a = part.pixel(x, y), b = expected.pixel(x, y);
        int delta = std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                              std::abs(qBlue(a) - qBlue(b))});
        differing += delta > 64;
      }
    EXPECT_LE(differing, most);
  }
}

// An 8-bit picture with a palette is drawn by the span rasteriser alone: the same pixels as a
// 32-bit one.
TEST_F(GraphicsTest, AnIndexedPictureDrawsTheSamePixelsAsAColourPicture) {
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
  const QImage colour = render(300, 200, 200, 0, 0, 4, QImage::Format_RGB32, 0);
  const QImage indexed = render(300, 200, 200, 0, 0, 4, QImage::Format_Indexed8, 0);
  EXPECT_FALSE(leftOut);
  EXPECT_LE(indexed.colorCount(), 33);
  EXPECT_EQ(indexed.convertToFormat(QImage::Format_RGB32), colour);
}

// A large array is drawn in two halves on both cores. Its picture is the one drawn member by
// member in order: overlapping colours, polygon runs across the middle, and a text in the later
// half (which only a painter draws, so that half is drawn after the first after all).
TEST_F(GraphicsTest, ManyMembersOnBothCoresGiveThePictureDrawnInOrder) {
  std::mt19937 rng(3);
  std::uniform_int_distribution<int32_t> pos(-25000, 25000), size(100, 3000);
  const int32_t types[] = {ItemLine, ItemCircle, ItemRectangle, ItemArc};
  for (int i = 0; i < 70000; ++i) {
    int32_t x = pos(rng), y = pos(rng);
    const int32_t s = size(rng);
    if (i % 9 == 0) {
      const int32_t dx[4] = {s, 0, -s, 0}, dy[4] = {0, s, 0, -s};
      for (int side = 0; side < 4; x += dx[side], y += dy[side], ++side)
        add(Item(ItemLine, attr::Shown | attr::PolygonSide | (side == 0 ? attr::PolygonFirst : 0) |
                               (side == 3 ? attr::PolygonLast : 0))
                .at(x, y)
                .size(dx[side], dy[side])
                .filled()
                .colour(i % 31));
      continue;
    }
    add(Item(types[i % 4])
            .at(x, y)
            .size(s, s)
            .pen(s / 8)
            .sweep(120000)
            .style(i % 2 ? StyleFilled : 0)
            .colour(i % 31));
  }
  const ArrayHandle items = k.store.S_SymbolItemArray(sym);
  // Member by member: each polygon run from its first side, every other member alone.
  const auto inOrder = [&] {
    QImage image(300, 300, QImage::Format_RGB32);
    const int32_t dev = k.graphics.G_GetDC(&image);
    k.graphics.G_OpenDC(dev, ViewSetup{200, 300, 300, 0, 0, 4}, 0);
    k.graphics.G_ChangeBackgroundColor(dev, 0);
    k.graphics.G_CreateShadowBitmap(dev);
    for (int32_t i = 1, n = k.store.OA_GetCount(items); i <= n; ++i) {
      ItemRecord r;
      k.store.I_ReadItem(k.store.OA_Object(items, i), r);
      if (!(r.Attributes & attr::PolygonSide)) {
        k.graphics.S_DrawItem(dev, sym, i);
        continue;
      }
      k.graphics.I_DrawItemPoly(dev, tableEntry(items), i, i + 3);
      i += 3;
    }
    k.graphics.G_CloseDC(dev, 1);
    k.graphics.G_DeleteDC(dev);
    return image;
  };
  EXPECT_EQ(render(300, 300, 200, 0, 0), inOrder());
  Item text(ItemVectorText);
  text.Text = "TEXT";
  int32_t late = k.store.OA_GetCount(items) - 100;  // before a member that starts no run
  while (k.store.itemFields(k.store.OA_Object(items, late))->Attributes & attr::PolygonSide)
    --late;
  k.store.OA_Insert(items, k.store.I_MakeItem(text.at(0, 0).size(8000, 8000).colour(15)), late);
  EXPECT_EQ(render(300, 300, 200, 0, 0), inOrder());
}

// A figure that only a painter draws is noted as left out of an indexed picture.
TEST_F(GraphicsTest, FiguresOnlyAPainterDrawsAreNotedAsLeftOut) {
  add(Item(ItemRectangle).at(0, 0).size(5000, 5000).filled().colour(12));
  const auto indexedLeftOut = [this](int32_t drawMode) {
    render(300, 200, 200, 0, 0, 4, QImage::Format_Indexed8, drawMode);
    return leftOut;
  };
  EXPECT_FALSE(indexedLeftOut(0));
  EXPECT_TRUE(indexedLeftOut(drawmode::ExclusiveOr));
  EXPECT_FALSE(indexedLeftOut(0)) << "each pass starts anew";
  Item text(ItemVectorText);
  text.Text = "TEXT";
  add(text.at(-10000, 0).size(3000, 3000).colour(15));
  EXPECT_TRUE(indexedLeftOut(0));
  render(300, 200, 200, 0, 0, 4, QImage::Format_RGB32, 0);
  EXPECT_FALSE(leftOut) << "a painter draws it there";
}

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
  EXPECT_TRUE(image.pixel(50, 50) == white && image.pixel(60, 40) == white &&
              image.pixel(55, 50) != white);
  EXPECT_EQ(k.graphics.G_SetGridMode(dev, 4), 0) << "no such mode";

  // Crosses by exclusive-or over the background: every pixel of a cross shows, the middle too,
  // and a second drawing leaves the background.
  image.fill(Qt::black);
  k.strings.E_SysTable(1)[37] = 15;  // crosses white
  dev = open(image, 100);
  k.graphics.G_SetGridMode(dev, 3);
  k.graphics.G_SetDrawMode(dev, drawmode::Normal | drawmode::ExclusiveOr);
  k.graphics.G_DrawGrid(dev, all, 1000, 1);
  const std::vector<QPoint> cross{{48, 50}, {52, 50}, {50, 48}, {50, 52}, {50, 50}};
  for (const QPoint& p : cross)
    EXPECT_NE(image.pixel(p), qRgb(0, 0, 0)) << p.x() << "," << p.y();
  k.graphics.G_DrawGrid(dev, all, 1000, 1);
  k.graphics.G_CloseDC(dev, 1);
  EXPECT_EQ(image.pixel(50, 50), qRgb(0, 0, 0));
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
  EXPECT_LT(Graphics::G_LinePointDeterminant(INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX, INT32_MAX,
                                             INT32_MIN),
            0)
      << "the sign of an area beyond 64 bits";
  EXPECT_TRUE(Graphics::DB_CoverRectangle(10, 5, 1, 10, 0, 0, 5)) << "corners in any order";
  EXPECT_FALSE(Graphics::DB_CoverRectangle(10, 5, 0, 10, 0, 0, 5)) << "edges only when inclusive";
  EXPECT_TRUE(Graphics::DB_CoverRectangle(5, 2, 0, 10, 0, 0, 5));
  int32_t w = 0, h = 0;
  Graphics::G_GetTextSize(200, 150, 4, w, h);
  EXPECT_EQ(std::pair(w, h), std::pair(600, 200));
  int32_t tw = 0, th = 0, nw = 0, nh = 0;
  ASSERT_EQ(k.graphics.G_GetTrueTypeTextSize(0, 100000, "WIDE", "Sans", 0, tw, th), 1);
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
    Item side(ItemLine, bits);
    k.store.OA_Add(items, k.store.I_MakeItem(side.at(x, y).colour(15).filled().size(dx[i], dy[i])));
    x += dx[i];
    y += dy[i];
  }
  QImage image(100, 100, QImage::Format_RGB32);
  int32_t dev = open(image, 100);
  EXPECT_EQ(k.graphics.I_DrawItemPoly(dev, tableEntry(items), 1, 3), 1);
  EXPECT_EQ(k.graphics.I_DrawItemPoly(dev, tableEntry(items), 2, 4), 0) << "beyond the array";
  // The first side once more, moved 3000 up: a line across the top.
  EXPECT_EQ(k.graphics.I_DrawItemPoly(dev, tableEntry(k.store.OA_Object(items, 1)), 0, 3000), 1);
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
  EXPECT_EQ(std::tuple(part.size(), part.pixel(1, 1)), std::tuple(QSize(6, 6), qRgb(1, 2, 3)));
  EXPECT_EQ(k.graphics.G_CopyScreen(dev, 100, 100, 5, 5), 0) << "outside the picture";

  int32_t cross = k.graphics.G_SelectCur(2);
  ASSERT_NE(k.graphics.cursor(cross), nullptr);
  EXPECT_EQ(k.graphics.cursor(cross)->shape(), Qt::CrossCursor);
  EXPECT_EQ(k.graphics.G_DelCur(cross), 1);
  EXPECT_EQ((std::tuple{k.graphics.cursor(cross), k.graphics.G_DelCur(cross)}),
            std::tuple(nullptr, 0));
}

}  // namespace
}  // namespace tvx
