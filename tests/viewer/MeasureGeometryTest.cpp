// The nearest point of every element type to a point, with the pen width, and the key points the
// alignment tool snaps to.
#include "support/ItemBuilder.h"

#include "viewer/ElementEditor.h"
#include "viewer/MeasureGeometry.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <span>
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

TEST(ClosestPoints, ClearanceOfTwoElements) {
  struct Case {
    const char* name;
    ItemRecord a, b;
    double d;
    std::array<double, 4> points;  // on a, on b; NaN where a tie leaves the choice open
  };
  const double open = std::nan("");
  const Case cases[] = {
      {"parallel lines",
       Item(ItemLine).at(0, 0).size(10, 0),
       Item(ItemLine).at(0, 5).size(10, 0),
       5,
       {open, 0, open, 5}},
      {"crossing lines",
       Item(ItemLine).at(0, 0).size(10, 10),
       Item(ItemLine).at(0, 10).size(10, -10),
       0,
       {5, 5, 5, 5}},
      {"a line and a circle apart",
       Item(ItemLine).at(-10, 0).size(20, 0),
       Item(ItemCircle).at(0, 8).size(3),
       5,
       {0, 0, 0, 5}},
      {"a line through a circle",
       Item(ItemLine).at(-10, 0).size(20, 0),
       Item(ItemCircle).at(0, 1).size(3),
       0,
       {open, 0, open, 0}},
      {"a line inside a circle",
       Item(ItemLine).at(-1, 0).size(2, 0),
       Item(ItemCircle).at(0, 0).size(10),
       9,
       {open, 0, open, 0}},
      {"an arc's end to a line",
       Item(ItemArc).at(0, 0).size(10, 0).sweep(90000),
       Item(ItemLine).at(-5, -20).size(0, 40),
       5,
       {0, 10, -5, 10}},
      {"circles apart",
       Item(ItemCircle).at(0, 0).size(2),
       Item(ItemCircle).at(10, 0).size(3),
       5,
       {2, 0, 7, 0}},
      {"a circle inside a circle",
       Item(ItemCircle).at(0, 0).size(10),
       Item(ItemCircle).at(1, 0).size(2),
       7,
       {10, 0, 3, 0}},
      {"arcs facing each other",
       Item(ItemArc).at(0, 0).size(10, 0).sweep(90000),
       Item(ItemArc).at(30, 0).size(10, 90000).sweep(180000),
       10,
       {10, 0, 20, 0}},
      {"arcs turned away: their ends",
       Item(ItemArc).at(0, 0).size(10, 90000).sweep(180000),
       Item(ItemArc).at(30, 0).size(10, 270000).sweep(180000),
       30,
       {0, open, 30, open}},
      {"two pens",
       Item(ItemLine).at(0, 0).size(10, 0).pen(2),
       Item(ItemLine).at(0, 5).size(10, 0).pen(4),
       2,
       {open, 1, open, 3}},
      {"a point inside a filled square",
       Item(ItemRectangle).at(0, 0).size(10, 10).filled(),
       Item(ItemPointRecord).at(5, 5),
       0,
       {5, 5, 5, 5}},
      {"a pad to a trace",
       Item(ItemCircle).at(0, 0).size(1).filled(),
       Item(ItemLine).at(3, -5).size(0, 10).pen(2) /* half a pen of 1 */,
       1,
       {1, 0, 2, 0}},
      {"squares side by side",
       Item(ItemRectangle).at(0, 0).size(10, 10),
       Item(ItemRectangle).at(15, 2).size(5, 5),
       5,
       {10, open, 15, open}},
  };
  for (const Case& c : cases) {
    double d = -1;
    std::array<double, 4> p{};
    ClosestPoints(d, p[0], p[1], p[2], p[3], c.a, c.b);
    EXPECT_NEAR(d, c.d, 1e-9) << c.name;
    for (size_t i = 0; i < 4; ++i) {
      if (!std::isnan(c.points[i])) {
        EXPECT_NEAR(p[i], c.points[i], 1e-9) << c.name << " coordinate " << i;
      }
    }
    // The distance is that of the two points given.
    EXPECT_NEAR(GetDistance(p[0], p[1], p[2], p[3]), d, 1e-9) << c.name;
  }
}

TEST(ClosestPoints, PolygonRuns) {
  // A square polygon of four sides from (0, 0) to (10, 10).
  const auto square = [](bool filled) {
    std::vector<ItemRecord> run;
    const int32_t corners[4][4] = {
        {0, 0, 10, 0}, {10, 0, 0, 10}, {10, 10, -10, 0}, {0, 10, 0, -10}};
    for (const auto& c : corners) {
      Item side(ItemLine, attr::Shown | attr::PolygonSide);
      side.at(c[0], c[1]).size(c[2], c[3]);
      if (filled)
        side.filled();
      run.push_back(side);
    }
    return run;
  };
  struct Case {
    const char* name;
    bool filled;
    ItemRecord other;
    double d;
  };
  const Case cases[] = {
      {"a point inside a filled polygon", true, Item(ItemPointRecord).at(4, 3), 0},
      {"a point inside an open one: its nearest side", false, Item(ItemPointRecord).at(4, 3), 3},
      {"a circle outside", true, Item(ItemCircle).at(15, 5).size(2), 3},
      {"a line across a corner", false, Item(ItemLine).at(8, 12).size(4, -4), 0},
  };
  for (const Case& c : cases) {
    const std::vector<ItemRecord> run = square(c.filled);
    double d = -1, ax = 0, ay = 0, bx = 0, by = 0;
    ClosestPoints(d, ax, ay, bx, by, run, std::span(&c.other, 1));
    EXPECT_NEAR(d, c.d, 1e-9) << c.name;
    // Either way round.
    ClosestPoints(d, ax, ay, bx, by, std::span(&c.other, 1), run);
    EXPECT_NEAR(d, c.d, 1e-9) << c.name << ", turned round";
  }
}

}  // namespace
}  // namespace tvx::test
