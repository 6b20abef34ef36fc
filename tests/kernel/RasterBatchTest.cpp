// Shapes kept in a batch and drawn in bands on both cores give the picture of shapes drawn at once.
// Kept arc directions are bit for bit the ones computed afresh, whatever order the shapes come in.
#include "kernel/ArcDirections.h"
#include "kernel/PlaneGeometry.h"
#include "kernel/Raster.h"

#include <QImage>
#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace tvx {
namespace {

// Draws a random mix of every kind of shape, from below a pixel to larger than the picture, many
// of them across the middle rows where the bands meet. tinyFirst: the first 5000 shapes are all
// small, which makes a batch draw the rest at once.
void drawScene(Raster& r, uint32_t seed, bool tinyFirst) {
  std::mt19937 rng(seed);
  std::uniform_real_distribution<double> x(-20, 220), y(-20, 170), size(0.05, 30), tiny(0, 0.6);
  auto at = [&] { return QPointF(x(rng), y(rng)); };
  const int count = tinyFirst ? 8000 : 3000;
  for (int i = 0; i < count; ++i) {
    r.setColour(qRgb(int(rng() % 256), int(rng() % 256), i % 7 * 30));
    if (tinyFirst && i < 5000) {
      r.fillDisc(at(), tiny(rng));
      continue;
    }
    const bool small = i % 4 == 0;
    const double s = small ? tiny(rng) : size(rng);
    switch (i % 8) {
    case 0:
      r.fillDisc(at(), s);
      break;
    case 1:
      r.fillRing(at(), s + 1, s / 2);
      break;
    case 2: {
      const QPointF c = at();
      const QPointF quad[4] = {c, c + QPointF(s, s / 3), c + QPointF(s / 2, s), c + QPointF(0, s)};
      r.fillConvex(quad, 4);
      break;
    }
    case 3: {
      const QPointF c = at();
      std::vector<QPointF> star;
      for (int k = 0; k < 10; ++k)
        star.push_back(c + QPointF((k % 2 ? s : s / 3) * std::cos(k * 0.63),
                                   (k % 2 ? s : s / 3) * std::sin(k * 0.63)));
      r.fillPolygon(star);
      break;
    }
    case 4:
      r.strokeSegment(at(), at(), small ? s : s / 4);
      break;
    case 5:
      r.hairline(at(), at());
      break;
    case 6:
      r.plot(int(x(rng)), int(y(rng)));
      break;
    default: {
      const QPointF c = at();
      r.strokeSegment(c, c, s);  // a segment of no length is a disc
    }
    }
  }
}

TEST(RasterBatch, BandsOnBothCoresDrawTheSamePicture) {
  for (QImage::Format format : {QImage::Format_RGB32, QImage::Format_Indexed8}) {
    for (uint32_t seed : {1u, 2u, 3u}) {
      SCOPED_TRACE(seed);
      const bool tinyFirst = seed == 3;
      QImage atOnce(200, 150, format), batched(200, 150, format);
      {
        Raster r(atOnce);
        r.setColour(qRgb(0, 0, 0));
        r.fill();
        drawScene(r, seed, tinyFirst);
        if (format == QImage::Format_Indexed8)
          atOnce.setColorTable(r.palette());
      }
      {
        Raster r(batched);
        r.setColour(qRgb(0, 0, 0));
        r.fill();
        r.beginBatch();
        drawScene(r, seed, tinyFirst);
        r.endBatch();
        if (format == QImage::Format_Indexed8)
          batched.setColorTable(r.palette());
      }
      EXPECT_EQ(batched, atOnce);
    }
  }
}

// A stick too thin for any pixel centre above a foot that holds some: its middle lies in the upper
// band, its pixels only in the lower one, and the upper band must not take the pixel that stands
// for a shape without pixels.
TEST(RasterBatch, AShapeWithPixelsInOneBandOnlyLeavesTheOtherAlone) {
  QImage picture(200, 100, QImage::Format_RGB32);
  picture.fill(Qt::black);
  Raster r(picture);
  r.beginBatch();
  r.setColour(qRgb(0, 0, 255));
  for (int i = 0; i < 300; ++i)
    r.plot(i % 10, 50);  // puts the rows' split at 50
  r.setColour(qRgb(255, 255, 255));
  r.fillPolygon({{100.6, 40},
                 {100.9, 40},
                 {100.9, 50.2},
                 {102, 50.2},
                 {102, 50.6},
                 {100, 50.6},
                 {100, 50.2},
                 {100.6, 50.2}});
  r.endBatch();
  EXPECT_EQ(picture.pixel(100, 50), qRgb(255, 255, 255));
  EXPECT_EQ(picture.pixel(101, 45), qRgb(0, 0, 0));
}

// Kept arc directions are bit for bit the ones computed afresh, whatever order the shapes come in.
TEST(ArcDirections, EveryShapeGetsItsOwnDirectionsExactly) {
  ArcDirections arcs;
  std::mt19937 rng(3);
  // Few angles and step counts, so that shapes repeat, share slots and replace each other.
  std::uniform_int_distribution<int32_t> angle(-4, 4), steps(1, 12);
  for (int n = 0; n < 5000; ++n) {
    const int32_t start = angle(rng) * 45000, sweep = angle(rng) * 30000 + (n % 3);
    const int count = steps(rng);
    const auto& directions = arcs.along(start, sweep, count);
    ASSERT_EQ(directions.size(), size_t(count + 1));
    for (int i = 0; i <= count; ++i) {
      const double a = (start / 1000.0 + sweep / 1000.0 * i / count) * RadiansPerDegree;
      ASSERT_EQ(directions[size_t(i)], std::pair(std::cos(a), std::sin(a)))
          << start << " " << sweep << " " << count << " " << i;
    }
  }
}

TEST(ArcDirections, TheStepFollowsTheRadius) {
  ArcDirections arcs;
  for (double radius : {0.25, 100.0, 3.3, 100.0, 0.25, 3.3}) {
    const double expected = radius > 0.5 ? 2 * std::acos(1 - 0.25 / radius) / RadiansPerDegree : 90;
    EXPECT_EQ(arcs.stepFor(radius), expected) << radius;
  }
}

}  // namespace
}  // namespace tvx
