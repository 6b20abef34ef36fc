// The component as its host sees it: load, the close request with its refusals, unload, the end
// of the class and shared windows; the host commands it takes (addressing, verbs and what each
// changes); and the commands it sends.
#include "ComponentTestSupport.h"
#include "shell/HostCommands.h"

#include <QLabel>
#include <QTemporaryDir>

#include <fstream>
#include <tuple>

namespace tvx::test {
namespace {

TEST_F(ComponentTest, LoadShowsTheWindowInTheRequestedState) {
  EXPECT_FALSE(window()->isLoaded() || window()->isVisible());
  kernel.strings.E_SetString(IniFileString, "/tmp/tarvex-test/tarvex.ini");
  for (int16_t mode : {windowstate::Maximised, windowstate::Minimised, windowstate::Normal}) {
    SCOPED_TRACE(mode);
    int16_t iMode = mode;
    EXPECT_EQ(component->Load(iMode), -1);
    EXPECT_EQ(
        std::tuple(iMode, window()->isLoaded(), window()->isVisible(), window()->windowStateCode()),
        std::tuple(mode, true, true, mode));
  }
  EXPECT_EQ(std::tuple(kernelString(ComponentName), services.iniFile(), window()->currentFunction(),
                       sent.size()),
            std::tuple(RunningMarker, "/tmp/tarvex-test/tarvex.ini", 1, 0u))
      << "the host's settings file";
}

// A running tool refuses first (the window stays minimised), then a minimised window is restored
// instead of closed, then the import dialog refuses without touching the state; "EX" and the
// user's close take the same path.
TEST_F(ComponentTest, CloseRefusalsComeInTheirOrder) {
  load(windowstate::Minimised);
  window()->pointerTools().StartTool(toolcode::Box);
  window()->setImportDialogVisible(true);
  component->NotifyMe("TARVEX", "All,EX");
  EXPECT_FALSE(window()->close());
  EXPECT_EQ(
      std::tuple(window()->windowStateCode(), window()->isVisible(), kernelString(ComponentName)),
      std::tuple(windowstate::Minimised, true, std::string(RunningMarker)));

  window()->pointerTools().FinishMove(0, 0);
  component->NotifyMe("TARVEX", "TVNGBRVIEWER,EX");
  EXPECT_EQ(window()->windowStateCode(), windowstate::Normal);

  component->NotifyMe("TARVEX", "All,MX");
  component->NotifyMe("TARVEX", "All,EX");
  EXPECT_FALSE(window()->close());
  EXPECT_EQ(std::tuple(window()->isLoaded(), window()->windowStateCode(), sent.size()),
            std::tuple(true, windowstate::Maximised, 0u));

  window()->setImportDialogVisible(false);
  EXPECT_TRUE(window()->close());
  EXPECT_EQ(std::tuple(window()->isLoaded(), sent), std::tuple(false, shutdownOnly()));
  // Siblings now see the viewer as not running.
  EXPECT_STREQ(kernel.strings.E_GetString(ComponentName), "");
}

// The end of the class unloads despite a refusing dialog, and reports the shutdown only once.
TEST_F(ComponentTest, EndOfTheClassUnloadsWithoutRefusalAndReportsOnce) {
  for (bool exitFirst : {false, true}) {
    SCOPED_TRACE(exitFirst);
    sent.clear();
    if (!component)
      component = makeComponent(sent);
    load();
    window()->setImportDialogVisible(!exitFirst);
    if (exitFirst)
      component->NotifyMe("TARVEX", "All,EX");
    component.reset();
    EXPECT_EQ(std::tuple(clsTVNGBRVIEWER::mainWindow(), sent, kernelString(ComponentName)),
              std::tuple(nullptr, shutdownOnly(), ""));
  }
}

TEST_F(ComponentTest, ASecondInstanceSharesTheWindow) {
  GBRVIEWER_MAIN* first = window();
  ASSERT_NE(first, nullptr);
  Sent secondSent;
  std::unique_ptr<clsTVNGBRVIEWER> second = makeComponent(secondSent);
  EXPECT_EQ(std::tuple(window(), component->SeverPath()), std::tuple(first, ""));
  second->setSeverPath("/srv/tarvex");
  EXPECT_EQ(component->SeverPath(), "/srv/tarvex");

  // A command through either instance acts on the one window; both hosts hear what it sends.
  int16_t mode = windowstate::Normal;
  EXPECT_EQ(second->Load(mode), -1);
  component->NotifyMe("TARVEX", "All,MX");
  EXPECT_EQ(first->windowStateCode(), windowstate::Maximised);
  second->NotifyMe("TARVEX", "All,EX");
  EXPECT_EQ(std::tuple(sent, secondSent), std::tuple(shutdownOnly(), shutdownOnly()));

  // The first instance's end takes the window along; the second is left without one.
  component.reset();
  EXPECT_EQ(window(), nullptr);
  EXPECT_EQ(std::tuple(second->Load(mode), second->SeverPath()), std::tuple(0, ""));
  second->NotifyMe("TARVEX", "All,EX");
  EXPECT_EQ(secondSent, shutdownOnly());

  // A new class creates a new window.
  second.reset();
  component = makeComponent(sent);
  EXPECT_NE(window(), nullptr);
}

TEST_F(ComponentTest, CommandsNotAddressedToTheViewerChangeNothing) {
  load(windowstate::Normal);
  // No or an empty verb or addressee, both compared with case and blanks, another module, an
  // unknown verb, and the wrong delimiter.
  const char* ignored[] = {"",
                           "TVNGBRVIEWER",
                           "TVNGBRVIEWER,",
                           "tvngbrviewer,MX",
                           "ALL,MX",
                           "TVNLAYPS,MX",
                           " TVNGBRVIEWER,MX",
                           "TVNGBRVIEWER,MX ",
                           "TVNGBRVIEWER,mx",
                           "TVNGBRVIEWER,QQ",
                           "TVNGBRVIEWER;MX",
                           ",MX"};

  // The addressee comes from the command only: the first argument neither helps nor hinders.
  for (const char* aname : {"TARVEX", "TVNGBRVIEWER", ""})
    for (const char* command : ignored) {
      SCOPED_TRACE(std::string(aname) + " / " + command);
      component->NotifyMe(aname, command);
      EXPECT_EQ(std::tuple(window()->windowStateCode(), window()->isVisible()),
                std::tuple(windowstate::Normal, true));
    }
  EXPECT_TRUE(sent.empty());
}

TEST_F(ComponentTest, WindowStateVerbsUnderBothAddresses) {
  load(windowstate::Normal);
  // Items after the verb are not looked at.
  const std::tuple<const char*, int16_t, Qt::WindowStates> steps[] = {
      {"MX", windowstate::Maximised, Qt::WindowMaximized},
      {"MN", windowstate::Minimised, Qt::WindowMinimized},
      {"DF", windowstate::Normal, Qt::WindowNoState},
      {"MX,1,2", windowstate::Maximised, Qt::WindowMaximized}};
  for (const std::string address : {"TVNGBRVIEWER", "All"})
    for (const auto& [verb, code, state] : steps) {
      SCOPED_TRACE(address + "," + verb);
      component->NotifyMe("TVNLAYPS", address + "," + verb);
      EXPECT_EQ(std::tuple(window()->windowStateCode(), window()->windowState()),
                std::tuple(code, state));
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
  EXPECT_GT(window()->redraw().rebuilds(), rebuildsBefore);
  // The window keeps its state and stays loaded.
  EXPECT_EQ(std::tuple(services.DatabaseUnitsPerMm(), window()->currentFunction(),
                       window()->windowStateCode(), window()->isLoaded(), sent.size()),
            std::tuple(100000, 1, windowstate::Maximised, true, 0u));
}

TEST_F(ComponentTest, LanguageChangeReadsThePathBackFromTheKernel) {
  QTemporaryDir folder, empty;
  std::ofstream(folder.filePath("GBRVIEWER.MSG").toStdString())
      << "62450\tBetrachter\n62999\tEbenen\n";
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
  EXPECT_EQ(std::tuple(window()->languagePath(), window()->windowTitle(), label->text()),
            std::tuple(folder.path().toStdString(), "Betrachter", "Ebenen"));

  // A language folder without a catalogue: the built-in texts return.
  kernel.strings.E_SetString(LanguagePathString, empty.path().toStdString());
  component->NotifyMe("TARVEX", "TVNGBRVIEWER,LZ");
  EXPECT_EQ(std::tuple(window()->languagePath(), window()->windowTitle(), label->text()),
            std::tuple(empty.path().toStdString(), builtInTitle, "Layers"));
  EXPECT_TRUE(sent.empty());
}

TEST_F(ComponentTest, SendToModuleReachesOnlyRunningSiblings) {
  load();
  SendToModule("TVNLAYPS", "GIE");  // never set: not running
  kernel.strings.E_SetString("TVNLAYPS", "");
  SendToModule("TVNLAYPS", "GIE");      // cleared: not running
  SendToModule("TVNGBRVIEWER", "GIE");  // this component, although its string is set
  EXPECT_EQ(std::tuple(kernelString("TVNGBRVIEWER"), sent.size()), std::tuple(RunningMarker, 0u));

  kernel.strings.E_SetString("TARVEX", "x");
  kernel.strings.E_SetString("TVNLAYPS", "1");
  SendToModule("TARVEX", "FMG,TVNGBRVIEWER");
  SendToModule("TVNLAYPS", "GIE");
  const Sent expected{{"TARVEX", "TARVEX,FMG,TVNGBRVIEWER"}, {"TVNLAYPS", "TVNLAYPS,GIE"}};
  EXPECT_EQ(sent, expected);

  // The module name is compared with case: a differently spelt name is another module.
  SendToModule("tvnlayps", "GIE");
  EXPECT_EQ(sent, expected);
  // Without a window nothing is sent.
  component.reset();
  sent.clear();
  SendToModule("TVNLAYPS", "GIE");
  EXPECT_TRUE(sent.empty());
}

TEST_F(ComponentTest, SendOperationsPassTheirTextsUnchanged) {
  load();
  window()->AP_SendCmd("TVNLAYPS", "TVNLAYPS,GIE,1");
  window()->AP_SendCmdAll("HELLO,1");
  int16_t mode = 3;
  window()->AP_Shell("TARVEX", mode, "/boards/a b.gbr");
  mode = -1;
  window()->AP_Shell("TARVEX", mode, "");
  mode = 0;
  window()->AP_Shell("", mode, "x,y");
  const Sent expected{{"TVNLAYPS", "TVNLAYPS,GIE,1"},
                      {"TVNGBRVIEWER", "HELLO,1"},
                      {"TARVEX", "SHELL,3,/boards/a b.gbr"},
                      {"TARVEX", "SHELL,-1,"},
                      {"", "SHELL,0,x,y"}};
  // Sending does not disturb the window.
  EXPECT_EQ(std::tuple(sent, mode, window()->isLoaded()), std::tuple(expected, 0, true));
}

}  // namespace
}  // namespace tvx::test
