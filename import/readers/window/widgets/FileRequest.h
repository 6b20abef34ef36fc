// The file request of the import commands: its two titles and its filter list, shared by the main
// window's file-open command and the import window's "Open for Import" and "Open for View".
#pragma once

#include "import/readers/window/FileRequestMode.h"

#include <QStringList>

#include <string>

class QWidget;

namespace tvx {

class SystemServices;

// The title of the request in the user's language.
std::string fileRequestTitle(const SystemServices& services, int mode);
// Every file first, then the usual extensions of each kind.
QStringList importFileFilters();
// Asks for an existing file, starting in startFolder; empty when the user cancels.
std::string askForFile(QWidget* parent, const SystemServices& services, int mode,
                       const std::string& startFolder);

}  // namespace tvx
