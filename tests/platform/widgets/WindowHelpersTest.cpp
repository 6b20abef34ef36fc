// Top-most windows, waiting while a flag is set, and the printer's state.
#include "platform/widgets/WindowHelpers.h"
#include "support/WidgetTestApplication.h"

#include <gtest/gtest.h>

#include <QTimer>
#include <QWidget>

#include <vector>

namespace tvx {
namespace {

TEST(WindowHelpersTest, SetTopMostKeepsPlaceSizeAndVisibility) {
  test::widgetTestApplication();
  QWidget shown, hidden;
  shown.setGeometry(120, 80, 320, 240);
  shown.show();
  hidden.setGeometry(10, 20, 200, 100);
  for (bool flag : {true, false}) {
    for (QWidget* window : {&shown, &hidden}) {
      const bool visible = window->isVisible();
      const QRect before = window->geometry();
      SetTopMost(*window, flag);
      EXPECT_EQ(window->windowFlags().testFlag(Qt::WindowStaysOnTopHint), flag);
      EXPECT_EQ(window->isVisible(), visible);
      EXPECT_EQ(window->geometry(), before);
    }
  }
}

TEST(WindowHelpersTest, WaitWhileSetServesEventsUntilTheFlagIsCleared) {
  test::widgetTestApplication();
  int16_t running = 0;
  std::vector<int> seen;  // what the event handlers saw, in order
  QTimer::singleShot(0, [&] { seen.push_back(running); });
  QTimer::singleShot(150, [&] { seen.push_back(running); });
  QTimer::singleShot(300, [&] {
    seen.push_back(running);
    running = 0;  // the modeless step ends
  });
  WaitWhileSet(running);
  EXPECT_EQ(running, 0);
  EXPECT_EQ(seen, (std::vector<int>{-1, -1, -1})) << "the flag is set before events are served";

  bool open = false;
  bool sawSet = false;
  QTimer::singleShot(0, [&] {
    sawSet = open;
    open = false;
  });
  WaitWhileSet(open);
  EXPECT_TRUE(sawSet);
}

TEST(WindowHelpersTest, PrinterReadyNeedsAPrinterAndAReadableDefault) {
  EXPECT_FALSE(IsPrinterReady(PrinterState{0, true}));
  EXPECT_FALSE(IsPrinterReady(PrinterState{2, false}));
  EXPECT_TRUE(IsPrinterReady(PrinterState{1, true}));
}

}  // namespace
}  // namespace tvx
