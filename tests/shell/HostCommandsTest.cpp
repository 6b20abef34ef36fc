// Incoming host commands: addressing, verbs and what each verb changes.
#include "ComponentTestSupport.h"

#include "shell/HostCommands.h"

#include <QDir>
#include <QFile>
#include <QLabel>
#include <QTemporaryDir>

namespace tvx::test {
namespace {

TEST_F(ComponentTest, CommandsNotAddressedToTheViewerChangeNothing) {
  load(windowstate::Normal);
  const char* ignored[] = {
      "",                  // empty
      "TVNGBRVIEWER",      // no verb
      "TVNGBRVIEWER,",     // empty verb
      "All",               // no verb
      "tvngbrviewer,MX",   // addressee compared with case
      "ALL,MX",            // the same for the second form
      "all,EX",            //
      "TVNLAYPS,MX",       // another module
      "TARVEX,EX",         //
      " TVNGBRVIEWER,MX",  // a blank is part of the item
      "TVNGBRVIEWER,MX ",  // the same for the verb
      "TVNGBRVIEWER,mx",   // verb compared with case
      "TVNGBRVIEWER,ex",   //
      "TVNGBRVIEWER,QQ",   // unknown verb
      "TVNGBRVIEWER;MX",   // wrong delimiter: one item
      ",MX",               // empty addressee
  };
  // The addressee comes from the command only: the first argument neither helps nor hinders.
  for (const char* aname : {"TARVEX", "TVNGBRVIEWER", ""})
    for (const char* command : ignored) {
      SCOPED_TRACE(std::string(aname) + " / " + command);
      component->NotifyMe(aname, command);
      EXPECT_EQ(window()->windowStateCode(), windowstate::Normal);
      EXPECT_TRUE(window()->isVisible());
    }
  EXPECT_TRUE(sent.empty());
}

TEST_F(ComponentTest, WindowStateVerbsUnderBothAddresses) {
  load(windowstate::Normal);
  const struct {
    const char* verb;  // items after the verb are not looked at
    int16_t code;
    Qt::WindowStates state;
  } steps[] = {{"MX", windowstate::Maximised, Qt::WindowMaximized},
               {"MN", windowstate::Minimised, Qt::WindowMinimized},
               {"DF", windowstate::Normal, Qt::WindowNoState},
               {"MX,1,2", windowstate::Maximised, Qt::WindowMaximized},
               {"DF,extra", windowstate::Normal, Qt::WindowNoState}};
  for (const std::string address : {"TVNGBRVIEWER", "All"})
    for (const auto& step : steps) {
      SCOPED_TRACE(address + "," + step.verb);
      component->NotifyMe("TVNLAYPS", address + "," + step.verb);
      EXPECT_EQ(window()->windowStateCode(), step.code);
      EXPECT_EQ(window()->windowState(), step.state);
    }
  EXPECT_TRUE(sent.empty());
}

TEST_F(ComponentTest, UpdateReappliesSettingsAndSelectsFunctionOne) {
  load(windowstate::Maximised);
  services.SetDatabaseUnitsPerMm(1);
  window()->M_FSI_Click(7);
  ASSERT_EQ(window()->currentFunction(), 7);

  const int32_t rebuildsBefore = window()->redraw().rebuilds();
  component->NotifyMe("TARVEX", "TVNGBRVIEWER,UP");
  EXPECT_EQ(services.DatabaseUnitsPerMm(), 100000);
  EXPECT_EQ(window()->currentFunction(), 1);
  EXPECT_GT(window()->redraw().rebuilds(), rebuildsBefore);
  // The window keeps its state and stays loaded.
  EXPECT_EQ(window()->windowStateCode(), windowstate::Maximised);
  EXPECT_TRUE(window()->isLoaded());
  EXPECT_TRUE(sent.empty());
}

TEST_F(ComponentTest, LanguageChangeReadsThePathBackFromTheKernel) {
  QTemporaryDir folder, empty;
  QFile catalogue(QDir(folder.path()).filePath("GBRVIEWER.MSG"));
  ASSERT_TRUE(catalogue.open(QIODevice::WriteOnly));
  catalogue.write("62450\tBetrachter\n62999\tEbenen\n");
  catalogue.close();
  load(windowstate::Normal);
  const QString builtInTitle = window()->windowTitle();
  // A control of the window with a message id in its tag follows the language too.
  auto* label = new QLabel("Layers", window());
  label->setProperty("Tag", "62999");

  // Until "LZ" the window keeps the path it had.
  const std::string pathAtLoad = window()->languagePath();
  ASSERT_NE(pathAtLoad, folder.path().toStdString());
  kernel.strings.E_SetString(LanguagePathString, folder.path().toStdString());
  EXPECT_EQ(window()->languagePath(), pathAtLoad);
  component->NotifyMe("TARVEX", "All,LZ");
  EXPECT_EQ(window()->languagePath(), folder.path().toStdString());
  EXPECT_EQ(window()->windowTitle().toStdString(), "Betrachter");
  EXPECT_EQ(label->text().toStdString(), "Ebenen");

  // A language folder without a catalogue: the built-in texts return.
  kernel.strings.E_SetString(LanguagePathString, empty.path().toStdString());
  component->NotifyMe("TARVEX", "TVNGBRVIEWER,LZ");
  EXPECT_EQ(window()->languagePath(), empty.path().toStdString());
  EXPECT_EQ(window()->windowTitle(), builtInTitle);
  EXPECT_EQ(label->text().toStdString(), "Layers");
  EXPECT_TRUE(sent.empty());
}

}  // namespace
}  // namespace tvx::test
