// The close request, the unload, and the window's sizing.
#include "shell/GBRVIEWER_MAIN.h"

#include "import/readers/ImportSession.h"
#include "kernel/Kernel.h"
#include "platform/SystemServices.h"
#include "platform/UserStore.h"
#include "platform/widgets/HelpWindow.h"
#include "platform/widgets/WindowPlace.h"
#include "shell/HostCommands.h"
#include "viewer/ElementEditor.h"
#include "viewer/widgets/ViewPicture.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFileDialog>
#include <QScrollBar>
#include <QTextBrowser>

#include <algorithm>

namespace tvx {

void GBRVIEWER_MAIN::Form_QueryUnload(bool& Cancel, int16_t /*UnloadMode*/) {
  if (pointerToolActive()) {
    Cancel = true;
    return;
  }
  if (windowStateCode() == windowstate::Minimised) {
    // A minimised window comes back first; a second close is needed.
    setWindowStateCode(windowstate::Normal);
    Cancel = true;
    return;
  }
  if (importDialogVisible()) {
    Cancel = true;
    return;
  }
}

// Unload, in the order of its steps. While start-up has not got the view ready it only reports.
void GBRVIEWER_MAIN::Form_Unload(bool& /*Cancel*/) {
  Kernel& kernel = context_.kernel;
  qApp->removeEventFilter(this);
  if (!exitAnyWay_) {
    kernel.strings.E_SetString(ComponentName, "");
    // The settings of the unload, the places of this window and of the windows it closes
    // included, replace the file once: a viewer killed on the way leaves the old file or the new
    // one, never a mix.
    SettingsBatch batch(context_.services);
    if (userStore_)
      SaveWindowPlace(*userStore_, *this);
    saveBands();
    takeFromView(*view_, settings_);
    takeMeasureSettings();
    settings_.VIEW.Monochrome = (redraw_->RememberedMonoFlags & MonoFlag) != 0;
    settings_.GRID = kernel.graphics.G_GetGridMode(cpDcId_);
    settings_.TOOLBARS = toolbarsLocked_ ? 1 : 0;
    int32_t status = 0;
    writeViewerSettings(status, context_.services, settings_);

    if (const QCursor* first = kernel.graphics.cursor(cursors_[0]))
      viewPicture_->setCursor(*first);
    kernel.graphics.G_FreeThickPen(cpDcId_, 0, 0);
    editor_->DoUndo(editor_->WorkingSymbol(), undomode::Free);
    redraw_->RedrawPending = false;
    if (help_)
      help_->closeHelp();
    for (int32_t& cursor : cursors_)
      cursor = kernel.graphics.G_DelCur(cursor) ? 0 : cursor;

    // Every other window of the component goes: the file request and the dialogs.
    if (fileRequest_)
      fileRequest_->close();
    for (QWidget* child : findChildren<QWidget*>())
      if (child->isWindow() && child->isVisible())
        child->close();
    batch.commit();

    kernel.graphics.G_DeleteDC(cpDcId_);
    cpDcId_ = 0;
    view_->setDevice(0);
    import_.reset();
    workFolder_.reset();
    layersBuilt_ = false;
  }
  emit NotifyClass(ComponentName, ShutdownCommand);
}

bool GBRVIEWER_MAIN::unloadWindow(int16_t unloadMode, bool mayRefuse) {
  if (!loaded_ || unloading_)
    return !loaded_;
  if (mayRefuse) {
    bool cancel = false;
    Form_QueryUnload(cancel, unloadMode);
    if (cancel)
      return false;
  }
  unloading_ = true;
  bool cancel = false;
  Form_Unload(cancel);
  unloading_ = false;
  if (cancel)
    return false;
  loaded_ = false;
  hide();
  return true;
}

void GBRVIEWER_MAIN::ShutDown() { unloadWindow(unloadmode::Code, true); }

void GBRVIEWER_MAIN::unloadUnconditionally() { unloadWindow(unloadmode::Code, false); }

void GBRVIEWER_MAIN::closeEvent(QCloseEvent* event) {
  if (!loaded_ || unloading_) {
    event->accept();
    return;
  }
  if (unloadWindow(unloadmode::UserClose, true))
    event->accept();
  else
    event->ignore();
}

void GBRVIEWER_MAIN::resizeEvent(QResizeEvent* event) {
  QMainWindow::resizeEvent(event);
  Form_Resize();
}

void GBRVIEWER_MAIN::changeEvent(QEvent* event) {
  QMainWindow::changeEvent(event);
  if (event->type() == QEvent::WindowStateChange)
    Form_Resize();
}

void GBRVIEWER_MAIN::layoutView() {
  redraw_->ResizeBusy = true;
  horizontalBar_->setVisible(view_->ScrollBarsOn);
  verticalBar_->setVisible(view_->ScrollBarsOn);
  redraw_->ResizeBusy = false;
}

void GBRVIEWER_MAIN::Form_Resize() {
  if (!loaded_ || unloading_)
    return;
  const bool minimised = (windowState() & Qt::WindowMinimized) != 0;
  if (minimised && pointerToolActive()) {
    // A running tool keeps the window on the screen.
    setWindowState(windowState() & ~Qt::WindowMinimized);
    return;
  }
  if (minimised && !minimisingAll_) {
    minimisingAll_ = true;
    minimisedWithMe_.clear();
    for (QWidget* child : findChildren<QWidget*>())
      if (child->isWindow() && child->isVisible()) {
        minimisedWithMe_.emplace_back(child);
        child->showMinimized();
      }
    return;
  }
  if (!minimised && minimisingAll_) {
    minimisingAll_ = false;
    for (const QPointer<QWidget>& child : std::exchange(minimisedWithMe_, {}))
      if (child)
        child->showNormal();
  }
  if (minimised)
    return;
  if (width() < minWidth_ || height() < minHeight_)
    resize(std::max(width(), int(minWidth_)), std::max(height(), int(minHeight_)));
  layoutView();
  if (firstResize_ && cpDcId_ != 0) {
    firstResize_ = false;
    view_->setPictureSize(viewPicture_->width(), viewPicture_->height());
    applyViewChange(view_->SetScrollBars());
    applyViewChange(view_->takeDefaultPrecision());
  }
  redraw_->RedrawPending = true;
  redraw_->ResizePending = true;
  viewPicture_->update();
}

}  // namespace tvx
