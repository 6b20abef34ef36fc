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
  for (const char* command : ignored) {
    SCOPED_TRACE(command);
    component->NotifyMe("TARVEX", command);
    EXPECT_EQ(window()->windowStateCode(), windowstate::Normal);
    EXPECT_TRUE(window()->isLoaded());
    EXPECT_TRUE(window()->isVisible());
  }
  EXPECT_TRUE(sent.empty());
}

TEST_F(ComponentTest, WindowStateVerbsUnderBothAddresses) {
  load(windowstate::Normal);
  for (const std::string address : {"TVNGBRVIEWER", "All"}) {
    SCOPED_TRACE(address);
    component->NotifyMe("TARVEX", address + ",MX");
    EXPECT_EQ(window()->windowStateCode(), windowstate::Maximised);
    EXPECT_TRUE(window()->windowState() & Qt::WindowMaximized);
    component->NotifyMe("TARVEX", address + ",MN");
    EXPECT_EQ(window()->windowStateCode(), windowstate::Minimised);
    EXPECT_TRUE(window()->windowState() & Qt::WindowMinimized);
    component->NotifyMe("TARVEX", address + ",DF");
    EXPECT_EQ(window()->windowStateCode(), windowstate::Normal);
    EXPECT_EQ(window()->windowState(), Qt::WindowNoState);
    // Items after the verb are not looked at.
    component->NotifyMe("TARVEX", address + ",MX,1,2");
    EXPECT_EQ(window()->windowStateCode(), windowstate::Maximised);
    component->NotifyMe("TARVEX", address + ",DF,extra");
    EXPECT_EQ(window()->windowStateCode(), windowstate::Normal);
  }
  EXPECT_TRUE(sent.empty());
}

TEST_F(ComponentTest, NotifyMeTakesTheAddresseeFromTheCommandOnly) {
  load(windowstate::Normal);
  // A sibling's name as the first argument neither helps nor hinders.
  component->NotifyMe("TVNLAYPS", "TVNGBRVIEWER,MX");
  EXPECT_EQ(window()->windowStateCode(), windowstate::Maximised);
  component->NotifyMe("TVNGBRVIEWER", "TVNLAYPS,DF");
  EXPECT_EQ(window()->windowStateCode(), windowstate::Maximised);
  component->NotifyMe("", "All,DF");
  EXPECT_EQ(window()->windowStateCode(), windowstate::Normal);
  component->NotifyMe("TVNGBRVIEWER", "");
  EXPECT_EQ(window()->windowStateCode(), windowstate::Normal);
  EXPECT_TRUE(sent.empty());
}

TEST_F(ComponentTest, ExitByEitherAddressUnloadsAndReportsOnce) {
  for (const char* command : {"All,EX", "TVNGBRVIEWER,EX"}) {
    SCOPED_TRACE(command);
    sent.clear();
    load(windowstate::Normal);
    EXPECT_EQ(kernelString(ComponentName), RunningMarker);

    component->NotifyMe("TARVEX", command);
    EXPECT_EQ(sent, shutdownOnly());
    EXPECT_FALSE(window()->isLoaded());
    EXPECT_FALSE(window()->isVisible());
    // Siblings now see the viewer as not running.
    ASSERT_NE(kernel.strings.E_GetString(ComponentName), nullptr);
    EXPECT_EQ(kernelString(ComponentName), "");

    // An unloaded window has nothing more to report.
    component->NotifyMe("TARVEX", command);
    EXPECT_EQ(sent, shutdownOnly());
  }
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
  QTemporaryDir folder;
  ASSERT_TRUE(folder.isValid());
  {
    QFile catalogue(QDir(folder.path()).filePath("GBRVIEWER.MSG"));
    ASSERT_TRUE(catalogue.open(QIODevice::WriteOnly));
    catalogue.write("62450\tBetrachter\n62999\tEbenen\n");
  }
  load(windowstate::Normal);
  EXPECT_EQ(window()->windowTitle().toStdString(),
            "Fabrication Graphics (Gerber/Excellon/DXF/HPGL) Viewer & Import");
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
  QTemporaryDir empty;
  ASSERT_TRUE(empty.isValid());
  kernel.strings.E_SetString(LanguagePathString, empty.path().toStdString());
  component->NotifyMe("TARVEX", "TVNGBRVIEWER,LZ");
  EXPECT_EQ(window()->languagePath(), empty.path().toStdString());
  EXPECT_EQ(window()->windowTitle().toStdString(),
            "Fabrication Graphics (Gerber/Excellon/DXF/HPGL) Viewer & Import");
  EXPECT_EQ(label->text().toStdString(), "Layers");
  EXPECT_TRUE(sent.empty());
}

}  // namespace
}  // namespace tvx::test
