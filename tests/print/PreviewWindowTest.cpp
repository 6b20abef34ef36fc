// The preview window offscreen: the sheets of a frame as a grid of thumbnails, and a click that
// selects one.
#include "print/widgets/QtPrinter.h"
#include "print/widgets/TvxPreview.h"

#include "kernel/Kernel.h"
#include "support/WidgetTestApplication.h"
#include "viewer/widgets/ViewPicture.h"

#include <QAction>
#include <QApplication>
#include <QMouseEvent>
#include <gtest/gtest.h>

namespace tvx {
namespace {

constexpr int32_t Mm = StoreUnitsPerMm;

TEST(PreviewWindowTest, SixSheetsShowAsThreeByTwoAndAClickSelectsOne) {
  test::widgetTestApplication();
  Kernel kernel;
  QtPrinter printer(false);
  PrinterSettings record;
  int drawn = 0;
  PreviewHost host{kernel.graphics, printer, record, {}, {}, {}, 1, {}, {}, {}, {}, {}};
  host.draw = [&](int32_t, int32_t) { ++drawn; };
  TvxPreview preview(host);
  preview.resize(1000, 800);
  preview.show();
  preview.Open({0, 0, 500 * Mm, 500 * Mm}, "Board", 4);
  QApplication::processEvents();
  ASSERT_EQ(preview.model().PageCount, 6);
  // The window opens on one sheet; Best Fit shows them all.
  preview.findChild<QAction*>("ATB_BestFit")->trigger();
  QApplication::processEvents();

  std::vector<ViewPicture*> shown;
  for (ViewPicture* picture : preview.findChildren<ViewPicture*>())
    if (picture->isVisible())
      shown.push_back(picture);
  ASSERT_EQ(shown.size(), 6u);
  std::sort(shown.begin(), shown.end(), [](ViewPicture* a, ViewPicture* b) {
    return std::pair(a->y(), a->x()) < std::pair(b->y(), b->x());
  });
  EXPECT_EQ(shown[0]->y(), shown[2]->y());
  EXPECT_LT(shown[2]->y(), shown[3]->y());
  EXPECT_GT(drawn, 0);

  const QPointF at(shown[4]->width() / 2.0, shown[4]->height() / 2.0);
  QMouseEvent press(QEvent::MouseButtonPress, at, shown[4]->mapToGlobal(at), Qt::LeftButton,
                    Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(shown[4], &press);
  EXPECT_EQ(preview.model().CurrentPage, 5);
  const std::string panel = preview.panelText(1);
  EXPECT_EQ(panel.substr(panel.size() - 3), "5/6");
}

}  // namespace
}  // namespace tvx
