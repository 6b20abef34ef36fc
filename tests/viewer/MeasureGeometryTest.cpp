// The nearest point of every element type to a point, with the pen width, and the key points the
// alignment tool snaps to.
#include "support/ItemBuilder.h"

#include "viewer/ElementEditor.h"
#include "viewer/MeasureGeometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace tvx::test {
namespace {

TEST(NearestPoint, EveryTypeWithItsPen) {
  struct Case {
    const char* name;
    ItemRecord element;
    double qx, qy;
    double d, nx, ny;
  };
  const Case cases[] = {
      {"line: foot inside", Item(ItemLine).at(0, 0).size(1000, 0), 400, 300, 300, 400, 0},
      {"line: before its start", Item(ItemLine).at(0, 0).size(1000, 0), -300, 400, 500, 0, 0},
      {"line: beyond its end", Item(ItemLine).at(0, 0).size(1000, 0), 1300, -400, 500, 1000, 0},
      {"line: zero length", Item(ItemLine).at(50, 50).size(0, 0), 50, 150, 100, 50, 50},
      {"line: half the pen", Item(ItemLine).at(0, 0).size(1000, 0).pen(100), 400, 300, 250, 400,
       50},
      {"line: pen wider than the gap", Item(ItemLine).at(0, 0).size(1000, 0).pen(1000), 400, 300, 0,
       400, 300},
      {"triangle: nearest side", Item(ItemTriangle).at(0, 0).size(1000, 0).angle(0).sweep(1000),
       600, -200, 200, 600, 0},
      {"triangle: the hypotenuse", Item(ItemTriangle).at(0, 0).size(1000, 0).angle(0).sweep(1000),
       1000, 1000, std::sqrt(2) * 500, 500, 500},
      {"rectangle: above its top", Item(ItemRectangle).at(0, 0).size(1000, 500), 300, 800, 300, 300,
       500},
      {"rectangle: turned a quarter", Item(ItemRectangle).at(0, 0).size(1000, 500).angle(90000),
       -800, 300, 300, -500, 300},
      {"rectangle: outlined pen counts", Item(ItemRectangle).at(0, 0).size(1000, 500).pen(200), 300,
       800, 200, 300, 600},
      {"rectangle: filled pen does not",
       Item(ItemRectangle).at(0, 0).size(1000, 500).pen(200).filled(), 300, 800, 300, 300, 500},
      {"circle: circumference", Item(ItemCircle).at(0, 0).size(500), 0, 800, 300, 0, 500},
      {"circle: from inside", Item(ItemCircle).at(0, 0).size(500), 300, 0, 200, 500, 0},
      {"circle: at its centre", Item(ItemCircle).at(10, 20).size(500), 10, 20, 0, 10, 20},
      {"circle: zero radius", Item(ItemCircle).at(10, 20).size(0), 10, 120, 100, 10, 20},
      {"arc: inside its sweep", Item(ItemArc).at(0, 0).size(1000, 0).sweep(90000), 1000, 1000,
       std::sqrt(2) * 1000 - 1000, 1000 / std::sqrt(2), 1000 / std::sqrt(2)},
      {"arc: outside, the nearer end", Item(ItemArc).at(0, 0).size(1000, 0).sweep(90000), 1000,
       -500, 500, 1000, 0},
      {"arc: outside, the other end", Item(ItemArc).at(0, 0).size(1000, 0).sweep(90000), -500, 1000,
       500, 0, 1000},
      {"arc: negative sweep normalised", Item(ItemArc).at(0, 0).size(1000, 90000).sweep(-90000),
       2000, 0, 1000, 1000, 0},
      {"arc: half its pen", Item(ItemArc).at(0, 0).size(1000, 0).sweep(90000).pen(200), 0, 1500,
       400, 0, 1100},
      {"point", Item(ItemPointRecord).at(30, 40), 0, 0, 50, 30, 40},
  };
  for (const Case& c : cases) {
    double d = -1, nx = 0, ny = 0;
    NearestPoint(d, nx, ny, c.qx, c.qy, c.element);
    EXPECT_NEAR(d, c.d, 1e-6) << c.name;
    EXPECT_NEAR(nx, c.nx, 1e-6) << c.name;
    EXPECT_NEAR(ny, c.ny, 1e-6) << c.name;
  }
}

TEST(ElementKeyPoints, NearAndMiddleOfEachKind) {
  struct Case {
    const char* name;
    ItemRecord element;
    double x, y;
    KeyPoints expected;
    std::vector<VertexRow> polygon = {};
  };
  VertexRow a, b, c;
  a.X = 0, a.Y = 0, b.X = 1000, b.Y = 0, c.X = 1000, c.Y = 1000;
  const Case cases[] = {
      {"line: the start", Item(ItemLine).at(0, 0).size(1000, 200), 100, 0, {0, 0, 500, 100}},
      {"line: a tie keeps the start",
       Item(ItemLine).at(0, 0).size(1000, 0),
       500,
       0,
       {0, 0, 500, 0}},
      {"line: the end", Item(ItemLine).at(0, 0).size(1000, 200), 900, 0, {1000, 200, 500, 100}},
      {"triangle",
       Item(ItemTriangle).at(0, 0).size(900, 0).angle(0).sweep(600),
       800,
       100,
       {900, 0, 300, 200}},
      {"rectangle turned",
       Item(ItemRectangle).at(0, 0).size(1000, 500).angle(90000),
       -450,
       950,
       {-500, 1000, -250, 500}},
      {"circle towards the pointer",
       Item(ItemCircle).at(100, 100).size(50),
       100,
       1000,
       {100, 150, 100, 100}},
      {"circle with the pointer at its centre",
       Item(ItemCircle).at(100, 100).size(50),
       100,
       100,
       {150, 100, 100, 100}},
      {"arc: the nearer end",
       Item(ItemArc).at(0, 0).size(1000, 0).sweep(90000),
       100,
       900,
       {0, 1000, 0, 0}},
      {"pad entry", Item(ItemPadEntry).at(700, -300), 0, 0, {700, -300, 700, -300}},
      {"polygon side: the nearest vertex",
       Item(ItemLine).at(0, 0).size(1000, 0),
       900,
       800,
       {1000, 1000, 500, 0},
       {a, b, c}},
  };
  for (const Case& t : cases) {
    const KeyPoints k = ElementKeyPoints(t.element, t.x, t.y, t.polygon);
    EXPECT_NEAR(k.NearX, t.expected.NearX, 1e-6) << t.name;
    EXPECT_NEAR(k.NearY, t.expected.NearY, 1e-6) << t.name;
    EXPECT_NEAR(k.MiddleX, t.expected.MiddleX, 1e-6) << t.name;
    EXPECT_NEAR(k.MiddleY, t.expected.MiddleY, 1e-6) << t.name;
  }
}

}  // namespace
}  // namespace tvx::test
