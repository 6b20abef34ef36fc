// The component's public class: what a host creates, loads and talks to with text commands.
#pragma once

#include "shell/ComponentContext.h"

#include <QObject>
#include <QPointer>

#include <cstdint>
#include <string>

namespace tvx {

class GBRVIEWER_MAIN;

class clsTVNGBRVIEWER : public QObject {
  Q_OBJECT

public:
  // Creates the process's main window on first use; a second instance shares it.
  explicit clsTVNGBRVIEWER(const ComponentContext& context, QObject* parent = nullptr);
  // Unloads the window (without a chance to refuse) and lets it go.
  ~clsTVNGBRVIEWER() override;

  // Shows the main window and sets its state (0 normal, 1 minimised, 2 maximised). -1 when the
  // window came up, 0 when start-up gave up.
  int16_t Load(int16_t& iMode);
  // Hands sCommand to the window; Aname is not looked at, the addressee is part of sCommand.
  void NotifyMe(const std::string& Aname, const std::string& sCommand);

  // A text the host may keep with the component; nothing in the component reads it. All
  // instances share it; it is empty after the window has gone.
  std::string SeverPath() const;
  void setSeverPath(const std::string& path);

  // The process's main window, or nullptr before the first class or after the class's end.
  static GBRVIEWER_MAIN* mainWindow();

signals:
  // Every command the component sends to its host and siblings. It is raised from inside the
  // component's own work, so a receiver must not destroy the class before returning; a host that
  // ends on "SHUTDOWN" does so through a queued call.
  void NotifyServer(const std::string& Aname, const std::string& sCommand);

private:
  void mw_GBRVIEWER_MAIN_NotifyClass(const std::string& Aname, const std::string& sCommand);

  QPointer<GBRVIEWER_MAIN> mw_GBRVIEWER_MAIN;
};

}  // namespace tvx
