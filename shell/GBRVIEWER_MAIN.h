// The component's main window: its life (load, close request, unload) and the host's commands.
#pragma once

#include "shell/ComponentContext.h"

#include <QMainWindow>

#include <cstdint>
#include <string>

class QCloseEvent;

namespace tvx {

// Window states as Load and the host's commands number them.
namespace windowstate {
inline constexpr int16_t Normal = 0;
inline constexpr int16_t Minimised = 1;
inline constexpr int16_t Maximised = 2;
}  // namespace windowstate

// Why the window is asked to unload.
namespace unloadmode {
inline constexpr int16_t UserClose = 0;  // the window's close button or the desktop
inline constexpr int16_t Code = 1;       // ShutDown, from "EX" or a start-up that gave up
}  // namespace unloadmode

class GBRVIEWER_MAIN : public QMainWindow {
  Q_OBJECT

public:
  explicit GBRVIEWER_MAIN(const ComponentContext& context, QWidget* parent = nullptr);
  ~GBRVIEWER_MAIN() override;

  const ComponentContext& context() const { return context_; }

  // Loads the window when it is not loaded yet (Form_Load) and shows it without a modal loop.
  void showWindow();
  bool isLoaded() const { return loaded_; }

  void Form_Load();
  // Refuses (Cancel = true) while a pointer tool runs, while the window is minimised (which it
  // restores) and while the import dialog shows.
  void Form_QueryUnload(bool& Cancel, int16_t UnloadMode);
  void Form_Unload(bool& Cancel);
  // Unloads the window, subject to Form_QueryUnload.
  void ShutDown();
  // Unloads the window without asking Form_QueryUnload: the component itself is going away.
  void unloadUnconditionally();

  // Executes one incoming command "addressee,verb[,...]".
  void AP_ExeCmd(const std::string& Cmd);
  void AP_SendCmd(const std::string& Aname, const std::string& sCommand);
  void AP_SendCmdAll(const std::string& sCommand);
  // Raises NotifyClass(Aname, "SHELL,<iMode>," + sFileName).
  void AP_Shell(const std::string& Aname, int16_t& iMode, const std::string& sFileName);

  // The window state as a windowstate value; any other value sets the normal state.
  int16_t windowStateCode() const;
  void setWindowStateCode(int16_t state);

  // Re-reads what depends on the suite's settings and the kernel's tables.
  void ApplySystemSettings();
  // Selects function (of the menu file's function table) as the current one.
  void M_FSI_Click(int16_t function);
  // Marks the view for drawing anew and asks for a paint.
  void RedrawScreen();

  // Set by the pointer tools while a tool or a rubber figure runs.
  bool pointerToolActive() const { return pointerToolActive_; }
  void setPointerToolActive(bool active) { pointerToolActive_ = active; }
  // Set by the import dialog while it is loaded and visible.
  bool importDialogVisible() const { return importDialogVisible_; }
  void setImportDialogVisible(bool visible) { importDialogVisible_ = visible; }

  // True while start-up has not yet got the view ready; unload then releases nothing.
  bool ExitAnyWay() const { return exitAnyWay_; }
  int16_t currentFunction() const { return currentFunction_; }
  bool redrawPending() const { return redrawPending_; }
  const std::string& languagePath() const { return languagePath_; }
  const std::string& sysName() const { return sysName_; }

  QWidget* viewPicture() const { return viewPicture_; }

  // The host's text behind the class's SeverPath property.
  const std::string& severPath() const { return severPath_; }
  void setSeverPath(const std::string& path) { severPath_ = path; }

signals:
  // Every command the component sends; the class passes it on to its host unchanged.
  void NotifyClass(const std::string& Aname, const std::string& sCommand);

protected:
  void closeEvent(QCloseEvent* event) override;

private:
  // Runs the unload path once; false when it was refused.
  bool unloadWindow(int16_t unloadMode, bool mayRefuse);
  // Interface font, control texts by their tags and the caption for the current language, at
  // start-up and on "LZ".
  void localizeWindow();
  void resetMembers();

  ComponentContext context_;
  QWidget* viewPicture_ = nullptr;

  bool loaded_ = false;
  bool unloading_ = false;
  bool exitAnyWay_ = false;
  bool redrawPending_ = false;
  bool pointerToolActive_ = false;
  bool importDialogVisible_ = false;
  int16_t currentFunction_ = 0;
  std::string languagePath_;
  std::string sysName_;
  std::string severPath_;
};

}  // namespace tvx
