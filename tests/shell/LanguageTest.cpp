// The country table, the language path and the catalogue it leads to.
#include "shell/Language.h"
#include "kernel/KernelStrings.h"
#include "platform/SystemServices.h"
#include "shell/MenuFile.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <fstream>

namespace tvx {
namespace {

TEST(CountryTable, RowsAndDefaultsFromTheSettings) {
  QTemporaryDir dir;
  const std::string ini = dir.filePath("tarvex.ini").toStdString();
  std::ofstream(ini) << "[COUNTRY]\nNumber=3\nDefault=2\n1=English,English,0\n2=Deutsch,German,\n"
                        "3=,,238\n";
  SystemServices services;
  services.SetIniFile(ini);
  CountryTable t = ReadCountryTable(services);
  EXPECT_EQ(t.Number, 3);
  EXPECT_EQ(t.Default, 2);
  ASSERT_EQ(t.Rows.size(), 3u);
  EXPECT_EQ(t.Rows[0], (CountryRow{"English", "English", 0}));
  EXPECT_EQ(t.Rows[1], (CountryRow{"Deutsch", "German", 65535}));  // empty value: left as it was
  EXPECT_EQ(t.Rows[2], (CountryRow{"English", "English", 238}));
  EXPECT_EQ(t.DefaultRow, t.Rows[1]);

  // No settings at all: one language, the built-in row.
  SystemServices bare;
  CountryTable none = ReadCountryTable(bare);
  EXPECT_EQ(none.Number, 1);
  EXPECT_EQ(none.Default, 1);
  EXPECT_EQ(none.DefaultRow, CountryRow{});
  // A default that names a missing row gives the built-in row.
  std::ofstream(ini) << "[COUNTRY]\nNumber=1\nDefault=7\n1=Deutsch,German,0\n";
  EXPECT_EQ(ReadCountryTable(services).DefaultRow, CountryRow{});

  EXPECT_EQ(parseCountryRow("Français,French"), (CountryRow{"Français", "French", 65535}));
  EXPECT_EQ(parseCountryRow(""), CountryRow{});
}

// Switching the default row switches catalogue and menu file, end to end over the shipped data.
TEST(Language, TheDefaultRowLeadsToItsCatalogueAndMenuFile) {
  QTemporaryDir dir;
  const std::string ini = dir.filePath("tarvex.ini").toStdString();
  const std::string appPath = std::string(TVX_SOURCE_DIR) + "/data";
  SystemServices services;
  KernelStrings strings;
  services.SetIniFile(ini);
  int32_t status = 0;
  services.WriteIniString("COUNTRY", "Number", "2", status);
  services.WriteIniString("COUNTRY", "2", "Deutsch,German,65535", status);
  ASSERT_EQ(status, 0);

  std::string path = ApplyLanguage(appPath, services, strings);
  EXPECT_EQ(path, appPath + "/COUNTRY/English");
  ASSERT_NE(strings.E_GetString("LANGUAGEPATH"), nullptr);
  EXPECT_EQ(std::string(strings.E_GetString("LANGUAGEPATH")), path);
  EXPECT_EQ(services.LocalMessage("x", "62451"), "Can't read file: ");

  services.WriteIniString("COUNTRY", "Default", "2", status);
  path = ApplyLanguage(appPath, services, strings);
  EXPECT_EQ(path, appPath + "/COUNTRY/German");
  EXPECT_EQ(services.LocalMessage("Can't read file: ", "62451"),
            "Datei kann nicht gelesen werden: ");
  FunctionTable table{};
  ASSERT_TRUE(ReadMenuFile(table, menuFilePath(path), services));
  EXPECT_EQ(table[1].Name, "Fertigungseditor");

  // The host may point the kernel string elsewhere; the language is then read back from it.
  strings.E_SetString("LANGUAGEPATH", appPath + "/COUNTRY/English");
  EXPECT_EQ(ReloadLanguage(path, services, strings), appPath + "/COUNTRY/English");
  EXPECT_EQ(services.LocalMessage("x", "62451"), "Can't read file: ");
  KernelStrings empty;
  EXPECT_EQ(ReloadLanguage(path, services, empty), path);
  EXPECT_EQ(services.LocalMessage("x", "62451"), "Datei kann nicht gelesen werden: ");
}

}  // namespace
}  // namespace tvx
