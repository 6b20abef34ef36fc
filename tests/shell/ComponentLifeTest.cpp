// Load, the close request with its refusals, unload, the end of the class, shared windows.
#include "ComponentTestSupport.h"

#include "shell/HostCommands.h"

namespace tvx::test {
namespace {

TEST_F(ComponentTest, LoadShowsTheWindowInTheRequestedState) {
  EXPECT_FALSE(window()->isLoaded());
  EXPECT_FALSE(window()->isVisible());
  kernel.strings.E_SetString(IniFileString, "/tmp/tarvex-test/tarvex.ini");
  for (int16_t mode : {windowstate::Maximised, windowstate::Minimised, windowstate::Normal}) {
    SCOPED_TRACE(mode);
    int16_t iMode = mode;
    EXPECT_EQ(component->Load(iMode), -1);
    EXPECT_EQ(iMode, mode);
    EXPECT_TRUE(window()->isLoaded());
    EXPECT_TRUE(window()->isVisible());
    EXPECT_EQ(window()->windowStateCode(), mode);
  }
  EXPECT_EQ(kernelString(ComponentName), RunningMarker);
  EXPECT_EQ(services.iniFile(), "/tmp/tarvex-test/tarvex.ini") << "the host's settings file";
  EXPECT_EQ(window()->currentFunction(), 1);
  EXPECT_TRUE(sent.empty());
}

// A running tool refuses first (the window stays minimised), then a minimised window is restored
// instead of closed, then the import dialog refuses without touching the state; "EX" and the
// user's close take the same path.
TEST_F(ComponentTest, CloseRefusalsComeInTheirOrder) {
  load(windowstate::Minimised);
  window()->setPointerToolActive(true);
  window()->setImportDialogVisible(true);
  component->NotifyMe("TARVEX", "All,EX");
  EXPECT_FALSE(window()->close());
  EXPECT_EQ(window()->windowStateCode(), windowstate::Minimised);
  EXPECT_TRUE(window()->isVisible());
  EXPECT_EQ(kernelString(ComponentName), RunningMarker);

  window()->setPointerToolActive(false);
  component->NotifyMe("TARVEX", "TVNGBRVIEWER,EX");
  EXPECT_EQ(window()->windowStateCode(), windowstate::Normal);

  component->NotifyMe("TARVEX", "All,MX");
  component->NotifyMe("TARVEX", "All,EX");
  EXPECT_FALSE(window()->close());
  EXPECT_TRUE(window()->isLoaded());
  EXPECT_EQ(window()->windowStateCode(), windowstate::Maximised);
  EXPECT_TRUE(sent.empty());

  window()->setImportDialogVisible(false);
  EXPECT_TRUE(window()->close());
  EXPECT_FALSE(window()->isLoaded());
  EXPECT_EQ(sent, shutdownOnly());
  // Siblings now see the viewer as not running.
  ASSERT_NE(kernel.strings.E_GetString(ComponentName), nullptr);
  EXPECT_EQ(kernelString(ComponentName), "");
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
    EXPECT_EQ(clsTVNGBRVIEWER::mainWindow(), nullptr);
    EXPECT_EQ(sent, shutdownOnly());
    EXPECT_EQ(kernelString(ComponentName), "");
  }
}

TEST_F(ComponentTest, ASecondInstanceSharesTheWindow) {
  GBRVIEWER_MAIN* first = window();
  ASSERT_NE(first, nullptr);
  Sent secondSent;
  std::unique_ptr<clsTVNGBRVIEWER> second = makeComponent(secondSent);
  EXPECT_EQ(window(), first);
  EXPECT_EQ(component->SeverPath(), "");
  second->setSeverPath("/srv/tarvex");
  EXPECT_EQ(component->SeverPath(), "/srv/tarvex");

  // A command through either instance acts on the one window; both hosts hear what it sends.
  int16_t mode = windowstate::Normal;
  EXPECT_EQ(second->Load(mode), -1);
  component->NotifyMe("TARVEX", "All,MX");
  EXPECT_EQ(first->windowStateCode(), windowstate::Maximised);
  second->NotifyMe("TARVEX", "All,EX");
  EXPECT_EQ(sent, shutdownOnly());
  EXPECT_EQ(secondSent, shutdownOnly());

  // The first instance's end takes the window along; the second is left without one.
  component.reset();
  EXPECT_EQ(window(), nullptr);
  EXPECT_EQ(second->Load(mode), 0);
  EXPECT_EQ(second->SeverPath(), "");
  second->NotifyMe("TARVEX", "All,EX");
  EXPECT_EQ(secondSent, shutdownOnly());

  // A new class creates a new window.
  second.reset();
  component = makeComponent(sent);
  EXPECT_NE(window(), nullptr);
}

TEST_F(ComponentTest, WindowCanBeLoadedAgainAfterShutdown) {
  load();
  component->NotifyMe("TARVEX", "TVNGBRVIEWER,EX");
  ASSERT_FALSE(window()->isLoaded());
  EXPECT_FALSE(window()->isVisible());
  component->NotifyMe("TARVEX", "All,EX");
  EXPECT_EQ(sent, shutdownOnly()) << "an unloaded window has nothing more to report";
  window()->setPointerToolActive(true);
  load(windowstate::Maximised);
  EXPECT_FALSE(window()->pointerToolActive()) << "start-up sets every member to its zero state";
  EXPECT_EQ(kernelString(ComponentName), RunningMarker);
  EXPECT_EQ(window()->windowStateCode(), windowstate::Maximised);
}

}  // namespace
}  // namespace tvx::test
