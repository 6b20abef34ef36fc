#include "platform/SuiteFolders.h"

#include <QDir>

namespace tvx {

std::string xdgFolder(const char* variable, const char* fallback) {
  const QString value = qEnvironmentVariable(variable);
  if (!value.isEmpty() && QDir::isAbsolutePath(value))
    return value.toStdString();
  return (QDir::homePath() + "/" + fallback).toStdString();
}

std::string defaultSettingsFile() {
  return xdgFolder("XDG_CONFIG_HOME", ".config") + "/tarvex/tarvex.ini";
}

}  // namespace tvx
