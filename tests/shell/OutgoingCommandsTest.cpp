// Commands the component sends: SendToModule and the window's send operations.
#include "ComponentTestSupport.h"

#include "shell/HostCommands.h"

namespace tvx::test {
namespace {

TEST_F(ComponentTest, SendToModuleReachesOnlyRunningSiblings) {
  load();
  SendToModule("TVNLAYPS", "GIE");  // never set: not running
  kernel.strings.E_SetString("TVNLAYPS", "");
  SendToModule("TVNLAYPS", "GIE");      // cleared: not running
  SendToModule("TVNGBRVIEWER", "GIE");  // this component, although its string is set
  ASSERT_EQ(kernelString("TVNGBRVIEWER"), RunningMarker);
  EXPECT_TRUE(sent.empty());

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
  EXPECT_EQ(sent, expected);
  EXPECT_EQ(mode, 0);
  // Sending does not disturb the window.
  EXPECT_TRUE(window()->isLoaded());
}

}  // namespace
}  // namespace tvx::test
