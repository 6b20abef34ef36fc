// Window helpers: top-most windows, waiting while a flag is set and the printer's state; window
// places in the per-user store and the corrections that keep a window within reach.
#include "platform/UserStore.h"
#include "platform/widgets/WindowHelpers.h"
#include "platform/widgets/WindowPlace.h"
#include "support/WidgetTestApplication.h"

#include <QPrinterInfo>
#include <QTemporaryDir>
#include <QTimer>
#include <QWidget>
#include <gtest/gtest.h>

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
  test::widgetTestApplication();
  EXPECT_EQ(probePrinters().Count, QPrinterInfo::availablePrinterNames().size());
  if (QPrinterInfo::availablePrinterNames().isEmpty()) {
    EXPECT_FALSE(IsPrinterReady()) << "no printer listed";
  }
}

// A work area of 1280 x 800 pixels: 19200 x 12000 twips, fortieths of 480 and 300.
constexpr WorkArea Work{1280 * TwipsPerPixel, 800 * TwipsPerPixel};
constexpr int32_t PresentWidth = 6000, PresentHeight = 4500;

// Top, Left, Width, Height, to compare whole places.
auto fields(const WindowPlace& p) { return std::make_tuple(p.Top, p.Left, p.Width, p.Height); }

struct Case {
  const char *top, *left, *height, *width;
  bool usable;
  WindowPlace expected;
};

TEST(WindowPlaceTest, CorrectionsOfTheStoredPlace) {
  const Case cases[] = {
      {"1500", "3000", "7200", "9600", true, {1500, 3000, 9600, 7200}},
      {"11700", "100", "4000", "5000", true, {11700, 100, 5000, 4000}},  // the fortieth fits
      {"11701", "100", "4000", "5000", false, {0, 100, 5000, 4000}},     // bottom fortieth
      {"12000", "100", "4000", "5000", false, {0, 100, 5000, 4000}},
      {"100", "18720", "4000", "5000", true, {100, 18720, 5000, 4000}},
      {"100", "18721", "4000", "5000", false, {100, 0, 5000, 4000}},  // right fortieth
      {"13000", "25000", "4000", "5000", false, {0, 0, 5000, 4000}},  // beyond the work area
      {"-1", "300", "4000", "5000", false, {0, 300, 5000, 4000}},
      {"300", "-150", "4000", "5000", false, {300, 0, 5000, 4000}},
      // Sizes below 1 take the present ones and leave the place usable.
      {"300", "450", "0", "-20", true, {300, 450, PresentWidth, PresentHeight}},
      {"300", "450", "0.4", "5000", true, {300, 450, 5000, PresentHeight}},
      // Whole numbers, a half to the even neighbour; text without a number is -1.
      {" 300 ", "+450", "4000.5", "5001.5", true, {300, 450, 5002, 4000}},
      {"abc", "450", "4000", "12mm", false, {0, 450, PresentWidth, 4000}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.top) + "|" + c.left + "|" + c.height + "|" + c.width);
    MemoryUserStore store;
    for (auto [key, value] : {std::pair{"_TOP", c.top}, std::pair{"_LEFT", c.left},
                              std::pair{"_HEIGHT", c.height}, std::pair{"_WIDTH", c.width}})
      store.SaveSetting("Tarvex", "TVNGBRVIEWER", std::string("W") + key, value);
    WindowPlace place;
    EXPECT_EQ(RestoreWindowPlace(store, "W", Work, PresentWidth, PresentHeight, place), c.usable);
    EXPECT_EQ(fields(place), fields(c.expected));
  }
}

TEST(WindowPlaceTest, NoSavedPlaceAndTheStoreFile) {
  QTemporaryDir dir;
  ASSERT_TRUE(dir.isValid());
  QtUserStore store(dir.filePath("user.ini").toStdString());
  WindowPlace place{99, 99, 99, 99};
  EXPECT_FALSE(RestoreWindowPlace(store, "GBRVIEWER_MAIN", Work, 700, 500, place));
  EXPECT_EQ(fields(place), fields({0, 0, 700, 500}));

  SaveWindowPlace(store, "GBRVIEWER_MAIN", {15, 30, 9000, 6000});
  QtUserStore again(dir.filePath("user.ini").toStdString());
  EXPECT_EQ(again.GetSetting("Tarvex", "TVNGBRVIEWER", "GBRVIEWER_MAIN_HEIGHT", ""), "6000");
  EXPECT_EQ(again.GetSetting("Tarvex", "OTHER", "GBRVIEWER_MAIN_TOP", "none"), "none");
  EXPECT_TRUE(RestoreWindowPlace(again, "GBRVIEWER_MAIN", Work, 700, 500, place));
  EXPECT_EQ(fields(place), fields({15, 30, 9000, 6000}));
  EXPECT_FALSE(RestoreWindowPlace(again, "GBRVIEWER_IMPORT", Work, 700, 500, place))
      << "every window has keys of its own";
}

TEST(WindowPlaceTest, AWindowGoesBackWhereItWas) {
  test::widgetTestApplication();
  MemoryUserStore store;
  QWidget first;
  first.setObjectName("GBRVIEWER_IMPORT");
  first.move(40, 30);
  first.resize(300, 200);
  SaveWindowPlace(store, first);
  EXPECT_EQ(store.GetSetting("Tarvex", "TVNGBRVIEWER", "GBRVIEWER_IMPORT_TOP", ""), "450");
  EXPECT_EQ(store.GetSetting("Tarvex", "TVNGBRVIEWER", "GBRVIEWER_IMPORT_WIDTH", ""), "4500");

  QWidget second;
  second.setObjectName("GBRVIEWER_IMPORT");
  second.resize(120, 90);
  int32_t top = 0, left = 0, width = 0, height = 0;
  ASSERT_TRUE(RestoreWindowPlace(store, second, top, left, width, height));
  moveToPlace(second, {top, left, width, height});
  EXPECT_EQ(second.pos(), QPoint(40, 30));
  EXPECT_EQ(second.size(), QSize(300, 200));
}

}  // namespace
}  // namespace tvx
