#include "shell/HostCommands.h"

#include "kernel/Kernel.h"
#include "shell/GBRVIEWER_MAIN.h"
#include "shell/clsTVNGBRVIEWER.h"

namespace tvx {

void SendToModule(const std::string& name, const std::string& command) {
  if (name == ComponentName)
    return;
  GBRVIEWER_MAIN* window = clsTVNGBRVIEWER::mainWindow();
  if (!window)
    return;
  // A module runs while the kernel keeps a non-empty string under its name.
  const char* running = window->context().kernel.strings.E_GetString(name);
  if (!running || !*running)
    return;
  window->AP_SendCmd(name, name + "," + command);
}

}  // namespace tvx
