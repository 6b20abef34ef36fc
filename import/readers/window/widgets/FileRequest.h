// The file request of the import commands: its two titles and its filter list, shared by the main
// window's file-open command and the import window's "Open for Import" and "Open for View".
#pragma once

#include <QStringList>

#include <string>

class QWidget;

namespace tvx {

class SystemServices;

namespace filerequest {
inline constexpr int ForDisplay = 1;  // "Select File for Display"
inline constexpr int ForImport = 2;   // "Select File for Import"
}  // namespace filerequest

// The title of the request in the user's language.
std::string fileRequestTitle(const SystemServices& services, int mode);
// Every file first, then the usual extensions of each kind.
QStringList importFileFilters();
// Asks for an existing file, starting in startFolder; empty when the user cancels.
std::string askForFile(QWidget* parent, const SystemServices& services, int mode,
                       const std::string& startFolder);

}  // namespace tvx
