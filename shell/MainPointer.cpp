// The main window's pointer, keys and wheel: the view picture's presses, moves and releases go
// to the pointer tools; every key of the window goes to the keyboard model before the window's
// controls see it; one application-wide filter routes the wheel.
#include "shell/GBRVIEWER_MAIN.h"

#include "kernel/Kernel.h"
#include "platform/SystemServices.h"
#include "viewer/widgets/ViewPicture.h"

#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QCursor>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>
#include <QTimer>
#include <QWheelEvent>

#include <algorithm>
#include <utility>

namespace tvx {

namespace {

// The window system's key code of a Qt key; 0 for keys the viewer has no use for.
int32_t keyCodeOf(const QKeyEvent& event) {
  const int key = event.key();
  switch (key) {
  case Qt::Key_Backspace:
    return keycode::Backspace;
  case Qt::Key_Tab:
  case Qt::Key_Backtab:
    return keycode::Tab;
  case Qt::Key_Return:
  case Qt::Key_Enter:
    return keycode::Return;
  case Qt::Key_Escape:
    return keycode::Escape;
  case Qt::Key_Space:
    return keycode::Space;
  case Qt::Key_End:
    return keycode::End;
  case Qt::Key_Home:
    return keycode::Home;
  case Qt::Key_Left:
    return keycode::Left;
  case Qt::Key_Up:
    return keycode::Up;
  case Qt::Key_Right:
    return keycode::Right;
  case Qt::Key_Down:
    return keycode::Down;
  default:
    break;
  }
  if (key >= Qt::Key_A && key <= Qt::Key_Z)
    return int32_t(key);  // Qt's letter keys are the upper-case character codes
  if (key >= Qt::Key_F1 && key <= Qt::Key_F12)
    return keycode::F1 + (key - Qt::Key_F1);
  return 0;
}

int32_t shiftOf(Qt::KeyboardModifiers modifiers) {
  return (modifiers & Qt::ShiftModifier ? shiftbit::Shift : 0) |
         (modifiers & Qt::ControlModifier ? shiftbit::Ctrl : 0) |
         (modifiers & Qt::AltModifier ? shiftbit::Alt : 0);
}

}  // namespace

void GBRVIEWER_MAIN::buildPointerInput() {
  Kernel& kernel = context_.kernel;
  pointer_ = std::make_unique<PointerTools>(kernel.graphics, context_.services, *view_, *redraw_);
  keys_ = std::make_unique<FunctionKeys>(functions_, context_.services);
  keyboard_ = std::make_unique<KeyboardInput>(*pointer_, *view_, *redraw_, context_.services);

  // Redraws during a middle drag are timed: a slow one makes the next drag a rubber line.
  redraw_->hooks.ticks = [] {
    static QElapsedTimer clock = [] {
      QElapsedTimer started;
      started.start();
      return started;
    }();
    return uint32_t(clock.elapsed());
  };

  PointerHooks& p = pointer_->hooks;
  p.applyViewChange = [this](const ViewChange& change) { applyViewChange(change); };
  p.setViewCursor = [this](int32_t cursor) { setViewCursor(cursor); };
  p.enableMenuGroups = [this](bool enabled) { menuBar()->setEnabled(enabled); };
  p.enableView = [this](bool enabled) { viewPicture_->setEnabled(enabled); };
  p.focusView = [this] { viewPicture_->setFocus(); };
  p.repaintArea = [this](int32_t x, int32_t y, int32_t width, int32_t height) {
    viewPicture_->update(x, y, width, height);
  };
  p.dialogsVisible = [this] { return importDialogVisible(); };
  p.endOptionChecked = [this] { return keys_->optionChecked(OptionCount - 1); };
  p.clearEndOption = [this] { keys_->SetOption(OptionCount - 1, false); };
  p.functionPrompt = [this] {
    return currentFunction_ >= 0 && currentFunction_ < FunctionCount
               ? functions_[size_t(currentFunction_)].Prompt
               : std::string();
  };
  p.functionOneCurrent = [this] { return currentFunction_ == 1; };

  FunctionKeyHooks& k = keys_->hooks;
  k.currentFunction = [this] { return currentFunction_; };
  k.toolRunning = [this] { return pointer_->toolRunning(); };
  k.repeatPointerMove = [this] { pointer_->repeatPointerMove(); };
  k.focusView = [this] { viewPicture_->setFocus(); };
  k.editMsgLine = [this](const std::string& text) { EditMsgLine(text); };
  k.selectFunction = [this](int16_t function) { M_FSI_Click(function); };
  k.functionEnabled = [](int16_t) { return true; };
  k.modalBusy = [this] { return importRunning(); };
  k.enableCommandGroups = [this](bool enabled) { menuBar()->setEnabled(enabled); };
  k.refreshBands = [this] { refreshBands(); };

  KeyboardHooks& h = keyboard_->hooks;
  h.visibleOptionRow = [this](int32_t n) { return keys_->visibleOptionRow(n); };
  h.optionEnabled = [this](int32_t row) { return keys_->optionEnabled(row); };
  h.optionChecked = [this](int32_t row) { return keys_->optionChecked(row); };
  h.optionCommand = [this](int32_t row) { return keys_->optionCommand(row); };
  h.setOption = [this](int32_t row, bool check) { keys_->SetOption(row, check); };
  h.runOptionCommand = [this](int32_t row) {
    keys_->RunFunctionCommand(keys_->CurrentKey(), row, true);
  };
  h.lookupShortcut = [this](const std::string& letters) { keys_->lookupShortcut(letters); };
  h.viewHasFocus = [this] {
    const QWidget* focus = QApplication::focusWidget();
    return focus && focus->objectName().toUpper() == viewPicture_->objectName().toUpper();
  };
  h.movePointer = [this](int32_t dx, int32_t dy) {
    const QRect view(viewPicture_->mapToGlobal(QPoint(0, 0)), viewPicture_->size());
    const QPoint at = QCursor::pos() + QPoint(dx, dy);
    QCursor::setPos(std::clamp(at.x(), view.left(), view.right()),
                    std::clamp(at.y(), view.top(), view.bottom()));
  };
  h.pointerInView = [this](double& x, double& y) {
    const QPoint at = viewPicture_->mapFromGlobal(QCursor::pos());
    if (!viewPicture_->rect().contains(at))
      return false;
    x = at.x();
    y = at.y();
    return true;
  };
  h.showHelp = [this] { M_Help_Click(); };
  h.checkLongCursor = [this](bool checked) {
    if (QAction* action = menuEntry("M_LCursor"))
      action->setChecked(checked);
  };

  viewPicture_->setPointerHandler(
      [this](ViewPicture::PointerAction action, int button, int shift, double x, double y) {
        viewPointer(int(action), button, shift, x, y);
      });
}

void GBRVIEWER_MAIN::setViewCursor(int32_t cursor) {
  const int32_t handle = cursors_[cursor == SecondCursor ? 1 : 0];
  if (const QCursor* shape = context_.kernel.graphics.cursor(handle))
    viewPicture_->setCursor(*shape);
}

void GBRVIEWER_MAIN::viewPointer(int action, int button, int shift, double x, double y) {
  // Before the first picture there is no world to point at.
  if (cpDcId_ == 0 || !loaded_)
    return;
  view_->setPictureSize(viewPicture_->width(), viewPicture_->height());
  switch (ViewPicture::PointerAction(action)) {
  case ViewPicture::PointerAction::Press:
    pointer_->ViewPicture_MouseDown(button, shift, x, y);
    break;
  case ViewPicture::PointerAction::Move:
    pointer_->ViewPicture_MouseMove(button, shift, x, y);
    break;
  case ViewPicture::PointerAction::Release:
    pointer_->ViewPicture_MouseUp(button, shift, x, y);
    break;
  }
}

void GBRVIEWER_MAIN::Form_KeyDown(int KeyCode, int Shift) {
  int32_t code = KeyCode;
  keyboard_->Form_KeyDown(code, Shift);
}

bool GBRVIEWER_MAIN::routeKey(QKeyEvent* event) {
  const int32_t shift = shiftOf(event->modifiers());
  int32_t code = keyCodeOf(*event);
  const bool viewFocused = keyboard_->hooks.viewHasFocus();
  if (event->type() == QEvent::KeyRelease) {
    if (!event->isAutoRepeat())
      keyboard_->Form_KeyUp(code, shift);
    return viewFocused && !(shift & shiftbit::Alt);
  }
  if (code != 0)
    keyboard_->Form_KeyDown(code, shift);
  const QString text = event->text();
  if (text.size() == 1 && text[0].unicode() >= 32 && text[0].unicode() < 127 &&
      !(shift & (shiftbit::Ctrl | shiftbit::Alt))) {
    int32_t ascii = text[0].unicode();
    keyboard_->Form_KeyPress(ascii);
  }
  // With the view focused every key is the viewer's, Tab too; Alt keys open the menus. Elsewhere
  // a control keeps its keys (Escape has done its part already).
  return viewFocused && !(shift & shiftbit::Alt);
}

bool GBRVIEWER_MAIN::routeWheel(QObject* watched, QWheelEvent* event) {
  auto* target = qobject_cast<QWidget*>(watched);
  if (!target || target->window() != this)
    return false;  // other windows and open drop-down lists scroll as they do
  if (inWheel_)
    return true;
  inWheel_ = true;
  if (target == viewPicture_ && cpDcId_ != 0) {
    // The wheel over the view zooms, whatever has the keyboard focus.
    // Steps that queued up while a slow redraw ran are taken together, with one redraw.
    pendingWheelSteps_ += wheelSteps_.add(event->angleDelta().y(), event->pixelDelta().y());
    pendingWheelAt_ = event->position();
    if (pendingWheelSteps_ != 0 && !wheelQueued_) {
      wheelQueued_ = true;
      QTimer::singleShot(0, this, [this] {
        wheelQueued_ = false;
        const int32_t steps = std::exchange(pendingWheelSteps_, 0);
        view_->setPictureSize(viewPicture_->width(), viewPicture_->height());
        pointer_->wheel(steps, pendingWheelAt_.x(), pendingWheelAt_.y());
      });
    }
  }
  inWheel_ = false;
  // Scroll bars, bands and the status bar take no wheel.
  return true;
}

bool GBRVIEWER_MAIN::eventFilter(QObject* watched, QEvent* event) {
  switch (event->type()) {
  case QEvent::Wheel:
    return routeWheel(watched, static_cast<QWheelEvent*>(event));
  case QEvent::KeyPress:
  case QEvent::KeyRelease: {
    // Each key once, as the window receives it: at the widget that has the focus.
    auto* target = qobject_cast<QWidget*>(watched);
    if (!target || target->window() != this || target != QApplication::focusWidget() || !keyboard_)
      return false;
    return routeKey(static_cast<QKeyEvent*>(event));
  }
  default:
    return QMainWindow::eventFilter(watched, event);
  }
}

bool GBRVIEWER_MAIN::ConfirmYESNO(const std::string& text, int32_t X, int32_t Y) {
  QMenu menu(this);
  menu.setObjectName("M_Conf");
  QAction* query = menu.addAction(QString::fromStdString(text));
  query->setObjectName("M_Query");
  query->setEnabled(false);
  menu.addSeparator();
  QAction* yes = menu.addAction(tr("Yes"));
  yes->setObjectName("M_Yes");
  QAction* no = menu.addAction(tr("No"));
  no->setObjectName("M_No");
  bool answer = false;
  connect(yes, &QAction::triggered, &menu, [&answer] { answer = true; });
  menu.exec(viewPicture_->mapToGlobal(QPoint(X, Y)));
  return answer;
}

void GBRVIEWER_MAIN::M_BScopy_Click() { pointer_->armBoxCopy(); }

void GBRVIEWER_MAIN::M_LCursor_Click() {
  pointer_->toggleLongCursor();
  if (QAction* action = menuEntry("M_LCursor"))
    action->setChecked(pointer_->LongCursor);
}

}  // namespace tvx
