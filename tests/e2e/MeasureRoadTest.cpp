// Measuring worked as the user does on the demo board: the position panels follow the pointer in
// inches; Shift+P on a pad marks the reference point in the view; Shift+M and a click on a trace,
// the pointer moved off, tell the distance to the trace's edge on the message line; Escape ends.
#include "e2e/HostDriver.h"

#include <QDir>

#include <cmath>

namespace {

using test::LayerFacts;
using test::ScreenRect;
using test::ViewNow;
using test::waitUntil;

constexpr double StorePerInch = 2540000.0;

// The number of a panel's or message's length in inches: "X= 0.12345"" gives 0.12345.
double inchesOf(const QString& text) {
  QString number = text.section('=', 1).trimmed();
  number.remove('"');
  return number.toDouble();
}

class MeasureRoad : public test::HostDriver {
protected:
  std::pair<long, long> world(double fileX, double fileY) const {
    return onDemoBoard(top, fileX, fileY);
  }
  QPoint at(double fileX, double fileY) { return screenOnDemoBoard(top, fileX, fileY); }
  void moveTo(QPoint p) { xdo({"mousemove", QString::number(p.x()), QString::number(p.y())}); }

  LayerFacts top;
};

TEST_F(MeasureRoad, PanelsReferencePointAndDistance) {
  startOnDemoBoard();
  for (int n = 1; n < 31 && top.items == 0; ++n)
    top = layer(n);
  ASSERT_GT(top.items, 0);
  HostDriver::choose("M_ActiveCategory", "l", "Artwork Top Layer");
  waitUntil([&] { return menu("M_ActiveCategory").checked == "Artwork Top Layer"; });
  // View > Ruler: the strip along the left edge and its check.
  const QImage bare = view("bare.png");
  HostDriver::choose("M_View", "v", "M_Ruler");
  waitUntil([&] { return menu("M_View").checked == "&Ruler"; });
  EXPECT_EQ(menu("M_View").checked, "&Ruler");
  QImage ruled;
  waitUntil([&] { return (ruled = view("ruled.png")).pixel(25, 5) != bare.pixel(25, 5); });
  EXPECT_EQ(ruled.pixel(25, 5), qRgb(255, 255, 255)) << "the strip is white";
  EXPECT_NE(bare.pixel(25, 5), qRgb(255, 255, 255));
  xdo({"windowfocus", "--sync", visibleWindow("Viewer & Import")});

  // The panels at two points of the board: the world position in inches, to a pixel.
  for (const auto& [fx, fy] : {std::pair{5.0, 13.73}, std::pair{31.0, 8.0}}) {
    moveTo(at(fx, fy) + QPoint(1, 0));
    moveTo(at(fx, fy));
    const auto [wx, wy] = world(fx, fy);
    const ViewNow now = viewNowWhen([&](const ViewNow& v) {
      return v.xPanel.startsWith("X= ") &&
             std::abs(inchesOf(v.xPanel) - wx / StorePerInch) < 2 * v.precision / StorePerInch;
    });
    ASSERT_GT(now.precision, 0);
    const double pixel = now.precision / StorePerInch;
    EXPECT_NEAR(inchesOf(now.xPanel), wx / StorePerInch, 1.5 * pixel) << fx << "," << fy;
    EXPECT_NEAR(inchesOf(now.yPanel), wy / StorePerInch, 1.5 * pixel) << fx << "," << fy;
    EXPECT_TRUE(now.xPanel.endsWith('"') && now.yPanel.startsWith("Y= "))
        << now.xPanel.toStdString();
  }

  // Shift+P on J1's second pad: the mark is in the view there and nowhere else on the board.
  const QPoint pad = at(5.0, 13.73);
  const QPoint elsewhere = at(20.0, 20.0);
  const ScreenRect picture = place("PLACE,ViewPicture", "PLACE,");
  moveTo(pad);
  const QImage before = view("before.png");
  xdo({"key", "shift+p"});
  QImage marked;
  const auto around = [&](const QImage& image, QPoint p) {
    return image.copy(p.x() - picture.x - 10, p.y() - picture.y - 10, 21, 21);
  };
  waitUntil([&] { return around(marked = view("marked.png"), pad) != around(before, pad); });
  EXPECT_NE(around(marked, pad), around(before, pad)) << "no mark at the pad";
  EXPECT_EQ(around(marked, elsewhere), around(before, elsewhere));

  // Shift+M and a click on the vertical trace at x = 21.27 mm; 3 mm to its right the pointer is
  // 3 mm less half the trace's clearance (1.4 mm wide) from its edge, level with it.
  const QPoint trace = at(21.27, 9.3);
  moveTo(trace);
  xdo({"key", "shift+m"});
  waitUntil([&] { return viewNow().message == "Select Object"; });
  xdo({"click", "1"});
  waitUntil([&] { return viewNow().tool == 700; });
  const QPoint off = at(24.27, 9.3);
  moveTo(off + QPoint(0, 1));
  moveTo(off);
  const ViewNow measured =
      viewNowWhen([](const ViewNow& v) { return v.message.startsWith("Distance = "); });
  ASSERT_TRUE(measured.message.startsWith("Distance = ")) << measured.message.toStdString();
  // The pointer's world X is what the panel shows; the trace's edge lies 0.7 mm right of its axis.
  const double edge = (world(21.27, 9.3).first + 70000) / StorePerInch;
  const QStringList parts = measured.message.split("   ");
  ASSERT_EQ(parts.size(), 3) << measured.message.toStdString();
  EXPECT_NEAR(inchesOf(parts[0]), inchesOf(measured.xPanel) - edge, 2e-5);
  EXPECT_NEAR(inchesOf(parts[1]), inchesOf(measured.xPanel) - edge, 2e-5);
  EXPECT_EQ(parts[2], "dY = 0.0000\"");
  EXPECT_NEAR(inchesOf(parts[0]), 2.3 / 25.4, 2 * measured.precision / StorePerInch);

  xdo({"key", "Escape"});
  moveTo(off + QPoint(1, 1));
  EXPECT_EQ(viewNowWhen([](const ViewNow& v) { return v.tool == 0; }).tool, 0);

  // "*CL", a click on J1's second pad and one on the trace: their clearance, less than the
  // distance of the pad's centre from the trace's end and held while the pointer moves.
  moveTo(pad);
  xdo({"type", "--delay", "20", "*CL"});
  xdo({"click", "1"});
  viewNowWhen([](const ViewNow& v) { return v.tool == 700; });
  moveTo(trace);
  xdo({"click", "1"});
  const ViewNow clearance =
      viewNowWhen([](const ViewNow& v) { return v.message.startsWith("Clearance = "); });
  ASSERT_TRUE(clearance.message.startsWith("Clearance = ")) << clearance.message.toStdString();
  const double centres = std::hypot(21.27 - 5.0, 11.19 - 13.73) / 25.4;
  EXPECT_GT(inchesOf(clearance.message.split("   ").value(0)), 0.0);
  EXPECT_LT(inchesOf(clearance.message.split("   ").value(0)), centres);
  moveTo(off);
  EXPECT_FALSE(waitUntil([&] { return viewNow().message != clearance.message; }, 1500))
      << "the clearance stays while the pointer moves";
  xdo({"key", "Escape"});
  moveTo(off + QPoint(1, 1));
  EXPECT_EQ(viewNowWhen([](const ViewNow& v) { return v.tool == 0; }).tool, 0);

  // Preferences > Zoom In/Out Factor, "1" typed: refused with the status box (titled by the
  // application), not completed to a row of the list and taken.
  const QString main = visibleWindow("Viewer & Import");
  HostDriver::choose("M_Prefs", "r", "M_ZoomFactor");
  ASSERT_TRUE(waitUntil([&] { return xdo({"getwindowfocus"}) != main; })) << "no prompt";
  xdo({"key", "ctrl+a"});
  xdo({"type", "--delay", "20", "1"});
  xdo({"key", "Return"});
  const QString refusal = visibleWindow("^Tarvex$", 10000);
  EXPECT_FALSE(refusal.isEmpty()) << "a zoom factor of 1 was taken";
  if (!refusal.isEmpty())
    xdo({"key", "Return"});
}

}  // namespace
