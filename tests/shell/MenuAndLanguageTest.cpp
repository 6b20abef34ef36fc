// Reading the menu file into the function table, the menu files that ship, and the country table
// with the language path, catalogue and menu file it leads to.
#include "common/ParseList.h"
#include "kernel/KernelStrings.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"
#include "shell/Language.h"
#include "shell/MenuFile.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <set>

namespace tvx {
namespace {

class MenuFileTest : public ::testing::Test {
protected:
  void SetUp() override { ASSERT_TRUE(dir_.isValid()); }
  // Writes text as the menu file and reads it into table_.
  bool read(const std::string& text) {
    const std::string name = dir_.filePath("GBRVIEWER.MEN").toStdString();
    std::ofstream(name, std::ios::binary) << text;
    return ReadMenuFile(table_, name, services_);
  }
  const KeyRecord& key(int f, int k) const { return table_[size_t(f)].Keys[size_t(k)]; }

  QTemporaryDir dir_;
  ScriptedPrompts prompts_;
  SystemServices services_{&prompts_};
  FunctionTable table_{};
};

TEST_F(MenuFileTest, OptionalTokensOfFsikeyFollowTheFieldCount) {
  ASSERT_TRUE(read("FSIKEY,1,1,11,1,1,20,22,Ten,ten fields\n"
                   "FSIKEY,1,2,0,1,0,0,0,Eleven,eleven fields,XY\n"
                   "FSIKEY,1,3,0,1,0,0,0,Twelve,twelve fields,AB,1\n"
                   "FSIKEY,1,4,0,1,0,0,0,Thirteen,thirteen fields,CD,0,1\n"
                   "FSIKEY,1,5,0,1,0,0,0,Short,one letter,Q,1,1,extra,fields\n"
                   "FSIKEY,1,6,0,1,0,0,0,Long,three letters,XYZ,0,0\n"
                   "ENDMENU\n"));
  EXPECT_EQ(key(1, 1), (KeyRecord{.Value1 = 11,
                                  .Shown = 1,
                                  .Checked = 1,
                                  .FirstOptionPicture = 20,
                                  .Value2 = 22,
                                  .Caption = "Ten",
                                  .Description = "ten fields"}));
  // The shortcut needs its Global field too; it is two characters, fixed width.
  const std::tuple<int, std::string, int, int> optional[] = {
      {2, "  ", 0, 0}, {3, "AB", 1, 0}, {4, "CD", 0, 1}, {5, "Q ", 1, 1}, {6, "XY", 0, 0}};
  for (const auto& [k, shortcut, global, command] : optional) {
    SCOPED_TRACE(k);
    EXPECT_EQ(std::tie(key(1, k).Shortcut, key(1, k).Global, key(1, k).Command),
              std::tie(shortcut, global, command));
  }
  EXPECT_TRUE(prompts_.shown.empty());
}

TEST_F(MenuFileTest, ShortLinesSetWhatTheyHaveAndNothingElse) {
  ASSERT_TRUE(read("FSI,2,7\n"
                   "FSI\n"  // no function number: nothing
                   "FSIKEY,2,3,5\n"
                   "FSIKEY,2\n"
                   "OSTKEY,2,3,4,9\n"
                   "OSTKEY,2,3,5,1,1,1,Caption,Description\n"
                   "OSTKEY,2,3,6,1,1,0,C,D,1\n"));
  FunctionRecord expected2;
  expected2.FirstPicture = 7;
  expected2.Keys[3].Value1 = 5;
  expected2.Keys[3].Options[4].Group = 9;
  expected2.Keys[3].Options[5] = {1, 1, 0, 1, "Caption", "Description"};
  expected2.Keys[3].Options[6] = {1, 1, 1, 0, "C", "D"};
  EXPECT_EQ(std::tuple(table_[0], table_[1], table_[2]),
            std::tuple(FunctionRecord{}, FunctionRecord{}, expected2));
}

TEST_F(MenuFileTest, NumbersOutsideTheTableAreFileErrorsAndWriteNothing) {
  ASSERT_TRUE(read("FSI,11,5,0,Last,ok\n"
                   "FSI,12,5,0,Beyond,no\n"
                   "FSIKEY,1,10,0,1,0,0,0,Last key,ok\n"
                   "FSIKEY,1,11,0,1,0,0,0,Beyond,no\n"
                   "FSIKEY,-1,0,0,1,0,0,0,Negative,no\n"
                   "OSTKEY,1,10,10,0,0,0,End,ok\n"
                   "OSTKEY,1,10,11,0,0,0,Beyond,no\n"
                   "OSTKEY,99999999999,0,0,0,0,0,Huge,no\n"
                   "FSIKEY,1,9,0,1,0,0,0,Still read,after the faults\n"
                   "ENDMENU\n"));
  EXPECT_EQ(std::tuple(table_[11].Name, key(1, 10).Caption, key(1, 10).Options[10].Caption,
                       key(1, 9).Caption),
            std::tuple("Last", "Last key", "End", "Still read"));
  for (const FunctionRecord& f : table_)
    for (const KeyRecord& k : f.Keys) {
      EXPECT_NE(k.Caption, "Beyond");
      EXPECT_NE(k.Caption, "Negative");
      for (const OptionRecord& o : k.Options)
        EXPECT_NE(o.Caption, "Huge");
    }
  // One message for the whole file, naming each faulty line.
  ASSERT_EQ(prompts_.shown.size(), 1u);
  const std::string& text = prompts_.shown[0].prompt;
  EXPECT_NE(text.find("Error in menu file: "), std::string::npos);
  for (const char* line : {"Line 2: function 12", "Line 4: key 11", "Line 5: function -1",
                           "Line 7: option 11", "Line 8: function 99999999999"})
    EXPECT_NE(text.find(line), std::string::npos) << line << " in " << text;
  EXPECT_EQ(text.find("Line 1:"), std::string::npos);
}

TEST_F(MenuFileTest, EndmenuEndsTheReadingAndItsAbsenceReadsToTheEnd) {
  ASSERT_TRUE(read("FSI,1,1,0,Before\nENDMENU\nFSI,2,1,0,After\n"));
  EXPECT_EQ(std::tuple(table_[1].Name, table_[2].Name), std::tuple("Before", ""));

  // A second reading empties the table first.
  ASSERT_TRUE(read("\xEF\xBB\xBF"
                   "FSI,2,1,0,First\r\n\r\nREM a remark\r\nUNKNOWN,1,2,3\r\n"
                   "  fsikey ,2,0,0,1\r\nFSI,3,1,0,Last line without ending"));
  EXPECT_EQ(std::tuple(table_[1], table_[2].Name, key(2, 0).Shown, table_[3].Name),
            std::tuple(FunctionRecord{}, "First", 1, "Last line without ending"));
}

TEST_F(MenuFileTest, TheFileNameIsFoundCaseBlindAndAMissingFileIsReported) {
  const std::string folder = dir_.path().toStdString();
  std::ofstream(folder + "/gbrviewer.men") << "FSI,1,1,0,Lower case name\n";
  ASSERT_EQ(menuFilePath(folder), folder + "/gbrviewer.men");
  ASSERT_TRUE(ReadMenuFile(table_, menuFilePath(folder), services_));
  EXPECT_EQ(table_[1].Name, "Lower case name");

  const std::string missing = menuFilePath(folder + "/none");
  EXPECT_EQ(missing, folder + "/none/GBRVIEWER.MEN");
  EXPECT_FALSE(ReadMenuFile(table_, missing, services_));
  EXPECT_EQ(table_[1].Name, "Lower case name") << "the table is kept";
  ASSERT_EQ(prompts_.shown.size(), 1u);
  EXPECT_EQ(prompts_.shown[0].prompt, "Can't read file: " + missing);
}

// The menu files that ship: every record line has a field count the reader knows, the viewer's
// keys are there, and the languages differ only in their texts.
FunctionTable shippedMenu(const std::string& language, ScriptedPrompts& prompts) {
  const std::string folder = std::string(TVX_SOURCE_DIR) + "/data/COUNTRY/" + language;
  std::ifstream in(folder + "/GBRVIEWER.MEN");
  std::string line;
  while (std::getline(in, line)) {
    const ParsedList f = ParseList(line);
    const std::string& word = f.token(1);
    static const std::map<std::string, std::set<int>> fieldCounts = {
        {"FSI", {6}}, {"FSIKEY", {10, 13}}, {"OSTKEY", {9, 10}}};
    const auto known = fieldCounts.find(word);
    EXPECT_TRUE(known != fieldCounts.end() ? known->second.count(f.count()) > 0
                                           : word.rfind("REM ", 0) == 0 || word == "ENDMENU")
        << language << ": " << line;
  }
  SystemServices services(&prompts);
  FunctionTable table{};
  EXPECT_TRUE(ReadMenuFile(table, menuFilePath(folder), services));
  EXPECT_TRUE(prompts.shown.empty());
  return table;
}

TEST(ShippedMenuFiles, HoldTheKeysTheViewerNeedsInEveryLanguage) {
  ScriptedPrompts prompts;
  FunctionTable english = shippedMenu("English", prompts);
  const FunctionRecord& f1 = english[1];
  // Layer properties (key 0) and clear all elements (key 7, option 0) run at once.
  EXPECT_EQ(
      std::tuple(f1.Name, f1.Prompt.empty(), f1.Keys[0].Command, f1.Keys[7].Options[0].Command),
      std::tuple("Fabrication Editor", false, 1, 1));
  // Inspect is key 2: choosing a layer selects it again.
  for (int k : {0, 2, 7, 8})
    EXPECT_TRUE(f1.Keys[size_t(k)].Shown && !f1.Keys[size_t(k)].Caption.empty()) << "key " << k;
  EXPECT_EQ(f1.CurrentKey, 2);
  EXPECT_NE(f1.Keys[2].Checked, 0);
  for (int r = 0; r <= 3; ++r)
    EXPECT_NE(f1.Keys[8].Options[size_t(r)].Shown, 0) << "align option " << r;
  for (int k : {0, 7, 8})
    EXPECT_FALSE(f1.Keys[size_t(k)].Options[10].Caption.empty()) << "row 10 of key " << k;
  std::set<std::string> shortcuts;
  for (const KeyRecord& k : f1.Keys)
    EXPECT_TRUE(!k.Shown || shortcuts.insert(k.Shortcut).second)
        << "shortcut twice: " << k.Shortcut;

  FunctionTable german = shippedMenu("German", prompts);
  EXPECT_EQ(german[1].Name, "Fertigungseditor");
  // Blank the texts: what remains must be the same in both languages.
  auto numbersOnly = [](FunctionTable t) {
    for (FunctionRecord& f : t) {
      f.Name = f.Prompt = "";
      for (KeyRecord& k : f.Keys) {
        k.Caption = k.Description = "";
        for (OptionRecord& o : k.Options)
          o.Caption = o.Description = "";
      }
    }
    return t;
  };
  EXPECT_TRUE(numbersOnly(english) == numbersOnly(german));
  EXPECT_NE(german[1].Keys[7].Caption, english[1].Keys[7].Caption);
}

TEST(CountryTable, RowsAndDefaultsFromTheSettings) {
  QTemporaryDir dir;
  const std::string ini = dir.filePath("tarvex.ini").toStdString();
  std::ofstream(ini) << "[COUNTRY]\nNumber=3\nDefault=2\n1=English,English,0\n2=Deutsch,German,\n"
                        "3=,,238\n";
  SystemServices services;
  services.SetIniFile(ini);
  CountryTable t = ReadCountryTable(services);
  EXPECT_EQ(std::tuple(t.Number, t.Default), std::tuple(3, 2));
  // An empty value is left as it was; an empty language is English.
  EXPECT_EQ(t.Rows, (std::vector<CountryRow>{{"English", "English", 0},
                                             {"Deutsch", "German", 65535},
                                             {"English", "English", 238}}));
  EXPECT_EQ(t.DefaultRow, t.Rows[1]);

  // No settings at all: one language, the built-in row.
  SystemServices bare;
  CountryTable none = ReadCountryTable(bare);
  EXPECT_EQ(std::tuple(none.Number, none.Default, none.DefaultRow), std::tuple(1, 1, CountryRow{}));
  // A default that names a missing row gives the built-in row.
  std::ofstream(ini) << "[COUNTRY]\nNumber=1\nDefault=7\n1=Deutsch,German,0\n";
  EXPECT_EQ(ReadCountryTable(services).DefaultRow, CountryRow{});
}

// Switching the default row switches the language path and catalogue, end to end over the shipped
// data; the menu file of that path is the shipped menu tests'.
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
  EXPECT_EQ(
      std::tuple(path, SystemServices::StringFromPointer(strings.E_GetString("LANGUAGEPATH")),
                 services.LocalMessage("x", "62451")),
      std::tuple(appPath + "/COUNTRY/English", appPath + "/COUNTRY/English", "Can't read file: "));

  services.WriteIniString("COUNTRY", "Default", "2", status);
  path = ApplyLanguage(appPath, services, strings);
  EXPECT_EQ(std::tuple(path, services.LocalMessage("Can't read file: ", "62451")),
            std::tuple(appPath + "/COUNTRY/German", "Datei kann nicht gelesen werden: "));

  // The host may point the kernel string elsewhere; the language is then read back from it.
  strings.E_SetString("LANGUAGEPATH", appPath + "/COUNTRY/English");
  EXPECT_EQ(
      (std::tuple{ReloadLanguage(path, services, strings), services.LocalMessage("x", "62451")}),
      std::tuple(appPath + "/COUNTRY/English", "Can't read file: "));
  KernelStrings empty;
  EXPECT_EQ(
      (std::tuple{ReloadLanguage(path, services, empty), services.LocalMessage("x", "62451")}),
      std::tuple(path, "Datei kann nicht gelesen werden: "));
}

}  // namespace
}  // namespace tvx
