// The view worked with the mouse, the wheel and the keyboard, through real X input on the demo
// board as `make run` shows it: the wheel zooms about the pointer, a middle drag pans, Shift+B
// and two clicks frame a box, Tab goes back, Shift+S and two clicks copy a box to the clipboard,
// Escape ends a box without effect.
#include "e2e/HostDriver.h"

#include <QDir>

namespace {

using test::ScreenRect;
using test::ViewNow;
using test::waitUntil;

class ViewRoad : public test::HostDriver {
protected:
  void moveTo(int toX, int toY) { xdo({"mousemove", QString::number(toX), QString::number(toY)}); }
};

TEST_F(ViewRoad, WheelPanBoxTabAndEscape) {
  QStringList files;
  for (const char* name : {"demo-top.gbr", "demo-silk-top.gbr", "demo-outline.gbr", "demo.drl"})
    files << QDir(TVX_SOURCE_DIR).filePath(QString("samples/") + name);
  host.start(test::binary("tarvex-gbrviewer"), files);
  ASSERT_TRUE(host.waitForStarted(10000));
  const ViewNow fit = viewNowWhen([](const ViewNow& v) { return v.precision > 0; });
  const ScreenRect view = place("PLACE,ViewPicture", "PLACE,");
  ASSERT_TRUE(view.valid());
  const int midX = view.x + view.width / 2, midY = view.y + view.height / 2;

  // Two wheel clicks towards the user zoom in about the pointer: its world point stays.
  const int px = midX + 120, py = midY - 80;
  moveTo(px, py);
  xdo({"click", "5"});
  xdo({"click", "5"});
  const ViewNow zoomed = viewNowWhen([&](const ViewNow& v) { return v.precision < fit.precision; });
  const auto worldX = [&](const ViewNow& v) { return v.centreX + (px - midX) * v.precision; };
  EXPECT_NEAR(double(worldX(zoomed)), double(worldX(fit)), 2.0 * zoomed.precision);

  // A middle drag 100 pixels left and 50 down moves the centre right and up by as much.
  moveTo(midX, midY);
  xdo({"mousedown", "2"});
  for (int step = 1; step <= 5; ++step)
    moveTo(midX - 20 * step, midY + 10 * step);
  xdo({"mouseup", "2"});
  const ViewNow panned = viewNowWhen([&](const ViewNow& v) { return v.centreX != zoomed.centreX; });
  EXPECT_NEAR(double(panned.centreX - zoomed.centreX), 100.0 * zoomed.precision,
              2.0 * zoomed.precision);
  EXPECT_NEAR(double(panned.centreY - zoomed.centreY), -50.0 * zoomed.precision,
              2.0 * zoomed.precision);

  // Tab remembers this view; Shift+B and two clicks frame a box; Tab comes back.
  xdo({"key", "Tab"});
  xdo({"key", "shift+b"});
  moveTo(midX - 60, midY - 40);
  xdo({"click", "1"});
  ViewNow boxing = viewNowWhen([](const ViewNow& v) { return v.tool == 600; });
  EXPECT_EQ(boxing.tool, 600);
  moveTo(midX + 60, midY + 40);
  xdo({"click", "1"});
  const ViewNow framed = viewNowWhen([&](const ViewNow& v) { return v.tool == 0; });
  EXPECT_LT(framed.precision, panned.precision);
  EXPECT_NEAR(double(framed.centreX), double(panned.centreX), 2.0 * panned.precision)
      << "the box was centred on the view";
  xdo({"key", "Tab"});
  EXPECT_EQ(viewNowWhen([&](const ViewNow& v) { return v == panned; }), panned);

  // Shift+S and two clicks put that part of the picture on the clipboard.
  xdo({"key", "shift+s"});
  moveTo(midX - 50, midY - 30);
  xdo({"click", "1"});
  viewNowWhen([](const ViewNow& v) { return v.tool == 600; });
  moveTo(midX + 49, midY + 29);
  xdo({"click", "1"});
  viewNowWhen([](const ViewNow& v) { return v.tool == 0; });
  QStringList copied;
  test::waitUntil([&] {
    copied = ask("TARVEX,CLIPBOARD", "CLIPBOARD,").back().section('\t', 1).split(',');
    return copied.value(1) != "0";
  });
  EXPECT_EQ(copied, (QStringList{"CLIPBOARD", "100", "60"}));
  EXPECT_EQ(viewNow(), panned) << "a box copy leaves the view";

  // Escape during a box ends it without effect and with nothing left armed.
  xdo({"key", "shift+b"});
  moveTo(midX - 60, midY - 40);
  xdo({"click", "1"});
  viewNowWhen([](const ViewNow& v) { return v.tool == 600; });
  moveTo(midX + 30, midY + 30);
  xdo({"key", "Escape"});
  const ViewNow escaped = viewNowWhen([](const ViewNow& v) { return v.tool == 0; });
  EXPECT_EQ(escaped, panned);
  EXPECT_EQ(escaped.message, "");
}

}  // namespace
