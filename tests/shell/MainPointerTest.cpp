// Real Qt events reach the pointer tools and the keys through the main window: the wheel over
// the view zooms whatever has the keyboard focus, over a scroll bar it does nothing; Tab stays
// with the view; a middle drag pans.
#include "ComponentTestSupport.h"

#include "viewer/widgets/ViewPicture.h"

#include <QApplication>
#include <QFileDialog>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTimer>
#include <QToolButton>
#include <QWheelEvent>

namespace tvx::test {
namespace {

using MainPointerTest = ComponentTest;

void wheel(QWidget* target, int angle) {
  const QPointF at(target->width() / 2.0, target->height() / 2.0);
  QWheelEvent event(at, target->mapToGlobal(at), QPoint(), QPoint(0, angle), Qt::NoButton,
                    Qt::NoModifier, Qt::NoScrollPhase, false);
  QApplication::sendEvent(target, &event);
  QCoreApplication::processEvents();  // the steps are taken after the events queued with them
}

void mouse(QWidget* target, QEvent::Type type, Qt::MouseButton button, QPointF at) {
  const Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : button;
  QMouseEvent event(type, at, target->mapToGlobal(at),
                    type == QEvent::MouseMove ? Qt::NoButton : button, held, Qt::NoModifier);
  QApplication::sendEvent(target, &event);
}

void key(QWidget* target, int qtKey) {
  QKeyEvent down(QEvent::KeyPress, qtKey, Qt::NoModifier);
  QApplication::sendEvent(target, &down);
  QKeyEvent up(QEvent::KeyRelease, qtKey, Qt::NoModifier);
  QApplication::sendEvent(target, &up);
}

TEST_F(MainPointerTest, EventsReachTheToolsThroughTheWindow) {
  load();
  GBRVIEWER_MAIN& w = *window();
  if (QFileDialog* request = w.fileRequest())
    request->close();
  w.activateWindow();
  QApplication::setActiveWindow(&w);
  QWidget* view = w.viewPicture();
  view->setFocus();
  const auto now = [&w] {
    return std::array<int32_t, 3>{w.view().m_Precision, w.view().ViewCenterX, w.view().ViewCenterY};
  };
  const std::array<int32_t, 3> start = now();

  // The wheel over a scroll bar: nothing.
  w.menuEntry("M_Sbars")->trigger();
  auto* bar = w.findChild<QScrollBar*>("HScroll");
  ASSERT_NE(bar, nullptr);
  const int barValue = bar->value();
  wheel(bar, -120);
  EXPECT_EQ(now(), start);
  EXPECT_EQ(bar->value(), barValue);

  // Tab remembers the view and keeps the focus on it; a wheel click zooms in; Tab goes back.
  key(view, Qt::Key_Tab);
  EXPECT_EQ(QApplication::focusWidget(), view) << "Tab went to the focus chain";
  wheel(view, -120);
  EXPECT_LT(now()[0], start[0]);
  key(view, Qt::Key_Tab);
  EXPECT_EQ(now(), start);

  // Steps that arrive together zoom together, with one redraw.
  const std::array<int32_t, 3> one = now();
  const int32_t rebuilds = w.redraw().rebuilds();
  for (int i = 0; i < 3; ++i) {
    const QPointF at(view->width() / 2.0, view->height() / 2.0);
    QWheelEvent step(at, view->mapToGlobal(at), QPoint(), QPoint(0, 120), Qt::NoButton,
                     Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(view, &step);
  }
  QCoreApplication::processEvents();
  EXPECT_EQ(w.redraw().rebuilds(), rebuilds + 1);
  EXPECT_GT(now()[0], one[0]);
  key(view, Qt::Key_Tab);

  // With the focus elsewhere the wheel over the view still zooms.
  w.findChild<QToolButton*>()->setFocus();
  wheel(view, -120);
  EXPECT_LT(now()[0], start[0]);

  // A middle drag pans by what the pointer moved.
  view->setFocus();
  const std::array<int32_t, 3> before = now();
  mouse(view, QEvent::MouseButtonPress, Qt::MiddleButton, {100, 100});
  QMouseEvent drag(QEvent::MouseMove, QPointF(60, 100), view->mapToGlobal(QPointF(60, 100)),
                   Qt::NoButton, Qt::MiddleButton, Qt::NoModifier);
  QApplication::sendEvent(view, &drag);
  mouse(view, QEvent::MouseButtonRelease, Qt::MiddleButton, {60, 100});
  EXPECT_EQ(now()[1] - before[1], 40 * before[0]);
  EXPECT_EQ(w.pointerTools().MiddleDrag, 0);
}

// ConfirmYESNO asks through the pop-up menu M_Conf: its first row is the question, M_Yes answers
// yes, and closing the menu otherwise answers no.
TEST_F(MainPointerTest, ConfirmYesNoAnswersByTheMenu) {
  load();
  GBRVIEWER_MAIN& w = *window();
  const auto answer = [&w](const char* choice) {
    QTimer::singleShot(0, [choice] {
      auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
      ASSERT_NE(menu, nullptr);
      EXPECT_EQ(menu->objectName(), "M_Conf");
      EXPECT_EQ(menu->actions().front()->text(), "Delete?");
      if (QAction* action = choice ? menu->findChild<QAction*>(choice) : nullptr)
        action->trigger();
      menu->close();
    });
    return w.ConfirmYESNO("Delete?", 10, 10);
  };
  EXPECT_TRUE(answer("M_Yes"));
  EXPECT_FALSE(answer("M_No"));
  EXPECT_FALSE(answer(nullptr));
}

}  // namespace
}  // namespace tvx::test
