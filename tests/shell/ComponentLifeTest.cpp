// Load, the close request with its refusals, unload, the end of the class, shared windows.
#include "ComponentTestSupport.h"

#include "shell/HostCommands.h"

namespace tvx::test {
namespace {

TEST_F(ComponentTest, LoadShowsTheWindowInTheRequestedState) {
  EXPECT_FALSE(window()->isLoaded());
  EXPECT_FALSE(window()->isVisible());
  kernel.strings.E_SetString(IniFileString, "/tmp/tarvex-test/tarvex.ini");

  int16_t mode = windowstate::Maximised;
  EXPECT_EQ(component->Load(mode), -1);
  EXPECT_TRUE(window()->isLoaded());
  EXPECT_TRUE(window()->isVisible());
  EXPECT_EQ(window()->windowStateCode(), windowstate::Maximised);
  EXPECT_EQ(kernelString(ComponentName), RunningMarker);
  // The settings file named by the host reaches the services.
  EXPECT_EQ(services.iniFile(), "/tmp/tarvex-test/tarvex.ini");
  EXPECT_EQ(window()->currentFunction(), 1);
  EXPECT_TRUE(sent.empty());
}

TEST_F(ComponentTest, LoadMinimisedAndNormal) {
  for (int16_t mode : {windowstate::Minimised, windowstate::Normal}) {
    SCOPED_TRACE(mode);
    int16_t iMode = mode;
    EXPECT_EQ(component->Load(iMode), -1);
    EXPECT_EQ(window()->windowStateCode(), mode);
    EXPECT_EQ(iMode, mode);
  }
}

TEST_F(ComponentTest, CloseIsRefusedWhileAToolRuns) {
  load();
  window()->setPointerToolActive(true);
  component->NotifyMe("TARVEX", "All,EX");
  EXPECT_TRUE(window()->isLoaded());
  EXPECT_TRUE(window()->isVisible());
  EXPECT_FALSE(window()->close());
  EXPECT_TRUE(window()->isVisible());
  EXPECT_TRUE(sent.empty());
  EXPECT_EQ(kernelString(ComponentName), RunningMarker);

  window()->setPointerToolActive(false);
  component->NotifyMe("TARVEX", "All,EX");
  EXPECT_EQ(sent, shutdownOnly());
}

TEST_F(ComponentTest, CloseOfAMinimisedWindowRestoresItFirst) {
  load(windowstate::Minimised);
  component->NotifyMe("TARVEX", "TVNGBRVIEWER,EX");
  EXPECT_TRUE(window()->isLoaded());
  EXPECT_EQ(window()->windowStateCode(), windowstate::Normal);
  EXPECT_TRUE(sent.empty());

  // The second close goes through.
  component->NotifyMe("TARVEX", "TVNGBRVIEWER,EX");
  EXPECT_FALSE(window()->isLoaded());
  EXPECT_EQ(sent, shutdownOnly());
}

TEST_F(ComponentTest, CloseIsRefusedWhileTheImportDialogShows) {
  load(windowstate::Maximised);
  window()->setImportDialogVisible(true);
  component->NotifyMe("TARVEX", "All,EX");
  EXPECT_FALSE(window()->close());
  EXPECT_TRUE(window()->isLoaded());
  // A refusal for the dialog leaves the window's state alone.
  EXPECT_EQ(window()->windowStateCode(), windowstate::Maximised);
  EXPECT_TRUE(sent.empty());

  window()->setImportDialogVisible(false);
  // The user's close takes the same path as "EX".
  EXPECT_TRUE(window()->close());
  EXPECT_FALSE(window()->isLoaded());
  EXPECT_EQ(sent, shutdownOnly());
  EXPECT_EQ(kernelString(ComponentName), "");
}

TEST_F(ComponentTest, QueryUnloadChecksInOrder) {
  load(windowstate::Minimised);
  window()->setPointerToolActive(true);
  bool cancel = false;
  // A running tool refuses before anything else: the window stays minimised.
  window()->Form_QueryUnload(cancel, unloadmode::UserClose);
  EXPECT_TRUE(cancel);
  EXPECT_EQ(window()->windowStateCode(), windowstate::Minimised);

  window()->setPointerToolActive(false);
  window()->setImportDialogVisible(true);
  cancel = false;
  window()->Form_QueryUnload(cancel, unloadmode::Code);
  EXPECT_TRUE(cancel);
  EXPECT_EQ(window()->windowStateCode(), windowstate::Normal);

  window()->setImportDialogVisible(false);
  cancel = false;
  window()->Form_QueryUnload(cancel, unloadmode::Code);
  EXPECT_FALSE(cancel);
  EXPECT_TRUE(window()->isLoaded());
  EXPECT_TRUE(sent.empty());
}

TEST_F(ComponentTest, EndOfTheClassUnloadsWithoutRefusal) {
  load();
  window()->setPointerToolActive(true);
  window()->setImportDialogVisible(true);
  component.reset();
  EXPECT_EQ(clsTVNGBRVIEWER::mainWindow(), nullptr);
  EXPECT_EQ(sent, shutdownOnly());
  EXPECT_EQ(kernelString(ComponentName), "");
}

TEST_F(ComponentTest, EndOfTheClassAfterShutdownReportsNothingMore) {
  load();
  component->NotifyMe("TARVEX", "All,EX");
  component.reset();
  EXPECT_EQ(clsTVNGBRVIEWER::mainWindow(), nullptr);
  EXPECT_EQ(sent, shutdownOnly());
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
  component->NotifyMe("TARVEX", "All,EX");
  ASSERT_FALSE(window()->isLoaded());
  window()->setPointerToolActive(true);
  load(windowstate::Maximised);
  // Start-up set every member to its zero state.
  EXPECT_FALSE(window()->pointerToolActive());
  EXPECT_EQ(kernelString(ComponentName), RunningMarker);
  EXPECT_EQ(window()->windowStateCode(), windowstate::Maximised);
}

}  // namespace
}  // namespace tvx::test
