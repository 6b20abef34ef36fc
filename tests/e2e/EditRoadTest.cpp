// The editor of function 1 worked as the user does on the demo board: a click on a hole of the
// drill layer names its size and tool; on the top copper "*DE", a click on a trace and Yes in the
// pop-up at the pointer take the trace away; Ctrl+Z (Edit > UnDo) brings back the same picture;
// a box round a connector asks and deletes its pads; Tools > Mirror along X twice leaves the
// layer as it was.
#include "e2e/HostDriver.h"

#include <QDir>

namespace {

using test::LayerFacts;
using test::ScreenRect;
using test::waitUntil;

class EditRoad : public test::HostDriver {
protected:
  QPoint onTopCopper(double fileX, double fileY) { return screenOnDemoBoard(top, fileX, fileY); }
  void clickAt(QPoint at) {
    xdo({"mousemove", QString::number(at.x()), QString::number(at.y())});
    xdo({"click", "1"});
  }

  LayerFacts top;
};

TEST_F(EditRoad, AHoleIsNamedATraceDeletedAndUndone) {
  startOnDemoBoard();
  int topNumber = 0;
  for (int n = 1; n < 31 && topNumber == 0; ++n)
    if ((top = layer(n)).items > 0)
      topNumber = n;
  ASSERT_GT(topNumber, 0);

  // The drill layer is current: the hole under J1's second pin, drilled with tool 4 (1.0 mm).
  clickAt(onTopCopper(5.0, 13.73));
  waitUntil([&] { return messageLine().startsWith("Holes with diameter"); });
  EXPECT_EQ(messageLine(), "Holes with diameter 0.03937\"Tool: T4");

  HostDriver::choose("M_ActiveCategory", "l", "Artwork Top Layer");
  waitUntil([&] { return menu("M_ActiveCategory").checked == "Artwork Top Layer"; });
  const QImage board = view("board.png");
  xdo({"mousemove", "10", "10"});
  xdo({"windowfocus", "--sync", visibleWindow("Viewer & Import")});
  const QPoint trace = onTopCopper(21.27, 9.3);  // the vertical trace left of the pour's edge
  xdo({"mousemove", QString::number(trace.x()), QString::number(trace.y())});
  xdo({"type", "--delay", "20", "*DE"});
  clickAt(trace);
  ScreenRect yes;
  waitUntil([&] { return (yes = menu("M_Conf").places["M_Yes"].second).valid(); });
  ASSERT_TRUE(yes.valid()) << "no question at the pointer";
  EXPECT_EQ(menu("M_Conf").places["M_Query"].first, "Delete element?");
  click(yes, yes.width / 2);
  waitUntil([&] { return layer(topNumber).items == top.items - 1; });
  EXPECT_EQ(layer(topNumber).items, top.items - 1);
  const QImage deleted = view("deleted.png");
  EXPECT_NE(deleted, board);
  EXPECT_EQ(menu("M_OrdEdit").places["M_Undo"].first, "UnDo");

  xdo({"key", "ctrl+z"});
  waitUntil([&] { return layer(topNumber).items == top.items; });
  EXPECT_EQ(layer(topNumber).items, top.items);
  EXPECT_EQ(view("undone.png"), board) << "undo gives the first picture back";

  // A box from beside the board round the connector J1: its pads go, the traces that leave it
  // and the pour stay; undo brings them back.
  clickAt(onTopCopper(-1.0, 9.0));
  xdo({"mousemove", QString::number(onTopCopper(7.5, 19.5).x()),
       QString::number(onTopCopper(7.5, 19.5).y())});
  clickAt(onTopCopper(7.5, 19.5));
  const QString question = visibleWindow("Fabrication Editor");
  ASSERT_FALSE(question.isEmpty()) << "no question for the box";
  xdo({"windowfocus", "--sync", question});
  xdo({"key", "Return"});
  waitUntil([&] { return layer(topNumber).items < top.items; });
  const LayerFacts afterBox = layer(topNumber);
  EXPECT_GE(top.items - afterBox.items, 4) << "J1's four pads";
  EXPECT_EQ(std::tuple(afterBox.minX, afterBox.maxY), std::tuple(top.minX, top.maxY))
      << "the pour, half inside, stays";
  xdo({"windowfocus", "--sync", visibleWindow("Viewer & Import")});
  xdo({"key", "ctrl+z"});
  waitUntil([&] { return layer(topNumber).items == top.items; });
  EXPECT_EQ(view("boxundone.png"), board);

  // Tools > Mirror along X twice leaves the layer as it was.
  HostDriver::choose("M_Edit", "t", "M_FlipLayer_0");
  waitUntil([&] { return view("mirrored.png") != board; });
  EXPECT_NE(view("mirrored.png"), board);
  EXPECT_EQ(layer(topNumber).items, top.items);
  HostDriver::choose("M_Edit", "t", "M_FlipLayer_0");
  waitUntil([&] { return view("back.png") == board; });
  EXPECT_EQ(view("back.png"), board) << "a second mirror gives the layer back";
}

}  // namespace
