// The text commands between the component and its host and siblings.
#pragma once

#include <string>

namespace tvx {

// The component's name on the command channel, and the kernel string that tells siblings it runs.
inline constexpr const char* ComponentName = "TVNGBRVIEWER";
// The second form of address that every module accepts.
inline constexpr const char* AddressAll = "All";
// The command raised when the component's window has gone.
inline constexpr const char* ShutdownCommand = "SHUTDOWN";

// Kernel strings the host sets before Load.
inline constexpr const char* IniFileString = "IniFile";
inline constexpr const char* LanguagePathString = "LANGUAGEPATH";
// The suite's work directory (intermediate files); the host's own key.
inline constexpr const char* WorkDirString = "WORKDIR";

// The text the component puts into its own kernel string while its window is loaded.
inline constexpr const char* RunningMarker = "RUNNING";

// Sends command to the sibling module name through the main window, as "name,command". Nothing is
// sent to this component itself, nor to a module whose kernel string is unset or empty (it does
// not run), nor when there is no main window; the sender is not told.
void SendToModule(const std::string& name, const std::string& command);

}  // namespace tvx
