#include "app/cli/CliApertureTable.h"

#include "common/TextHelpers.h"
#include "platform/SuiteFolders.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace tvx {

std::string loadCliApertureTable(ApertureTable& table, const std::string& path) {
  if (!path.empty()) {
    table.current = UpperCase(QFileInfo(QString::fromStdString(path)).baseName().toStdString());
    return table.loadFile(path) ? std::string() : "the aperture table " + path + " cannot be read";
  }
  ScriptedPrompts prompts;
  SystemServices services(&prompts);
  services.SetIniFile(defaultSettingsFile());
  table.current = UpperCase(services.GetIniString("POSTART", "Aper", "NONE"));
  if (QCoreApplication::instance())
    table.load(QCoreApplication::applicationDirPath().toStdString() + "/SYS");
  return std::string();
}

}  // namespace tvx
