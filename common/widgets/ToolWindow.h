// A window of the viewer beside the main window: Ctrl+F1 asks for its help, it comes back where it
// was closed last time, and its first close keeps its place and unloads it.
#pragma once

#include <QMainWindow>

#include <functional>

namespace tvx {

class UserStore;

class ToolWindow : public QMainWindow {
public:
  // Without a store of places the window neither comes back to nor keeps a place.
  ToolWindow(UserStore* places, QWidget* parent);

  // What Ctrl+F1 opens.
  std::function<void()> showHelp;

protected:
  // Moves the window to its stored place (the objectName keys it); false when there is none or
  // it is off the screen.
  bool restorePlace();
  // Form_Unload: what the window's going does, once.
  virtual void unload() = 0;

  void keyPressEvent(QKeyEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

private:
  UserStore* places_ = nullptr;
  bool unloaded_ = false;
};

}  // namespace tvx
