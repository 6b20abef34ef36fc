// The suite's folders by the XDG rules: settings under $XDG_CONFIG_HOME (else ~/.config), work
// files under $XDG_CACHE_HOME (else ~/.cache), each in a folder "tarvex".
#pragma once

#include <string>

namespace tvx {

// The folder named by an environment variable when it holds an absolute path, else the home
// folder's fallback (".config", ".cache").
std::string xdgFolder(const char* variable, const char* fallback);

// The settings file the host reads when it is given none: <config>/tarvex/tarvex.ini.
std::string defaultSettingsFile();

}  // namespace tvx
