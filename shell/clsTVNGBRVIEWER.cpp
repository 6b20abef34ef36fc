#include "shell/clsTVNGBRVIEWER.h"

#include "shell/GBRVIEWER_MAIN.h"

#include <QApplication>
#include <QCursor>

namespace tvx {

namespace {

// The one main-window reference of the process: every instance of the class shares the window.
QPointer<GBRVIEWER_MAIN>& globalMainWindow() {
  static QPointer<GBRVIEWER_MAIN> window;
  return window;
}

// True when window is one of the application's windows and is visible.
bool IsFormVisible(const QWidget* window) {
  if (!window)
    return false;
  for (const QWidget* w : QApplication::topLevelWidgets())
    if (w == window)
      return w->isVisible();
  return false;
}

}  // namespace

clsTVNGBRVIEWER::clsTVNGBRVIEWER(const ComponentContext& context, QObject* parent)
    : QObject(parent) {
  QPointer<GBRVIEWER_MAIN>& window = globalMainWindow();
  if (!window)
    window = new GBRVIEWER_MAIN(context);
  mw_GBRVIEWER_MAIN = window;
  connect(mw_GBRVIEWER_MAIN, &GBRVIEWER_MAIN::NotifyClass, this,
          &clsTVNGBRVIEWER::mw_GBRVIEWER_MAIN_NotifyClass);
}

clsTVNGBRVIEWER::~clsTVNGBRVIEWER() {
  if (!mw_GBRVIEWER_MAIN)
    return;
  GBRVIEWER_MAIN* window = mw_GBRVIEWER_MAIN;
  mw_GBRVIEWER_MAIN = nullptr;
  // The window cannot outlive the component, so a tool or a dialog does not stop this unload.
  window->unloadUnconditionally();
  delete window;
}

int16_t clsTVNGBRVIEWER::Load(int16_t& iMode) {
  if (!mw_GBRVIEWER_MAIN)
    return 0;
  QApplication::setOverrideCursor(Qt::WaitCursor);
  mw_GBRVIEWER_MAIN->showWindow();
  int16_t result = 0;
  if (mw_GBRVIEWER_MAIN && IsFormVisible(mw_GBRVIEWER_MAIN)) {
    mw_GBRVIEWER_MAIN->setWindowStateCode(iMode);
    result = -1;
  }
  QApplication::restoreOverrideCursor();
  return result;
}

void clsTVNGBRVIEWER::NotifyMe(const std::string& /*Aname*/, const std::string& sCommand) {
  if (sCommand.empty() || !mw_GBRVIEWER_MAIN)
    return;
  mw_GBRVIEWER_MAIN->AP_ExeCmd(sCommand);
}

// The text is kept with the shared window, so that every instance of the class sees the same one.
std::string clsTVNGBRVIEWER::SeverPath() const {
  return mw_GBRVIEWER_MAIN ? mw_GBRVIEWER_MAIN->severPath() : std::string();
}

void clsTVNGBRVIEWER::setSeverPath(const std::string& path) {
  if (mw_GBRVIEWER_MAIN)
    mw_GBRVIEWER_MAIN->setSeverPath(path);
}

GBRVIEWER_MAIN* clsTVNGBRVIEWER::mainWindow() { return globalMainWindow(); }

void clsTVNGBRVIEWER::mw_GBRVIEWER_MAIN_NotifyClass(const std::string& Aname,
                                                    const std::string& sCommand) {
  emit NotifyServer(Aname, sCommand);
}

}  // namespace tvx
