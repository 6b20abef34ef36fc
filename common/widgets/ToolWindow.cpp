#include "common/widgets/ToolWindow.h"

#include "common/widgets/HelpKey.h"
#include "platform/widgets/WindowPlace.h"

#include <QCloseEvent>
#include <QKeyEvent>

#include <optional>

namespace tvx {

ToolWindow::ToolWindow(UserStore* places, QWidget* parent) : QMainWindow(parent), places_(places) {}

bool ToolWindow::restorePlace() {
  WindowPlace place;
  if (!places_ ||
      !RestoreWindowPlace(*places_, *this, place.Top, place.Left, place.Width, place.Height))
    return false;
  moveToPlace(*this, place);
  return true;
}

void ToolWindow::keyPressEvent(QKeyEvent* event) {
  if (isHelpKey(*event) && showHelp) {
    showHelp();
    return;
  }
  QMainWindow::keyPressEvent(event);
}

void ToolWindow::closeEvent(QCloseEvent* event) {
  if (!unloaded_) {
    unloaded_ = true;
    // The place and what the window keeps at its unload go out as one save.
    std::optional<UserStoreSave> save;
    if (places_) {
      save.emplace(*places_);
      SaveWindowPlace(*places_, *this);
    }
    unload();
  }
  event->accept();
}

}  // namespace tvx
