#include "app/cli/CliApertureTable.h"

#include "aperture/ForeignApertureList.h"
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
    if (!table.loadFile(path))
      return "the aperture table " + path + " cannot be read";
    // A file without table rows may be another tool's aperture list.
    if (table.rows.size() == 1 && table.rows[0] == ApertureTableRow{1, 0, 0, 0})
      if (std::optional<ForeignApertureList> list = readForeignApertureListFile(path);
          list && !list->rows.empty())
        table.rows = std::move(list->rows);
    return std::string();
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
