// The main window's bands without a screen: every tool and menu entry the window names exists, a
// band the user closes clears its entry and the entry brings it back, and a typed precision ends
// once, by Return or by leaving the box, never twice.
#include "ComponentTestSupport.h"

#include "platform/UserStore.h"
#include "viewer/ToolBarModel.h"
#include "viewer/widgets/ToolBarView.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QFileDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QToolBar>

namespace tvx::test {
namespace {

class ToolBarsTest : public SettingsFileTest {};

TEST_F(ToolBarsTest, EveryToolAndMenuEntryExists) {
  load();
  GBRVIEWER_MAIN& w = *window();
  if (QFileDialog* request = w.fileRequest())
    request->close();
  ASSERT_NE(w.toolBar(), nullptr);
  for (const char* tool : {"ATB_ZoomValue",
                           "ATB_ZoomUp",
                           "ATB_ZoomDn",
                           "ATB_BlockZoom",
                           "ATB_Redraw",
                           "ATB_Grid",
                           "ATB_GridValue",
                           "ATB_GRID1",
                           "ATB_GRID2",
                           "ATB_GRID3",
                           "ATB_Current",
                           "ATB_Center",
                           "ATB_Board",
                           "ATB_ActlBoard",
                           "ATB_XPos",
                           "ATB_YPos",
                           "ATB_DistanceTool",
                           "ATB_Units",
                           "ATB_Coordinates",
                           "ATB_Inches",
                           "ATB_Millimeters",
                           "ATB_XY",
                           "ATB_Distance",
                           "ATB_GraphicImports",
                           "ATB_New",
                           "ATB_GerberView",
                           "ATB_FlipXaxis",
                           "ATB_FlipYaxis",
                           "ATB_ImportCategories",
                           "ATB_GIESelCatView",
                           "ATB_TrueSize",
                           "ATB_PadPosition",
                           "ATB_PadFrames",
                           "ATB_Mirror",
                           "ATB_Monochrome",
                           "ATB_Ruler",
                           "ATB_ToolTip",
                           "ATB_ActiveCategory",
                           "ATB_AddLayer",
                           "ATB_RemoveLayer",
                           "32",
                           "62",
                           "3000",
                           "3010",
                           "4000",
                           "4010"})
    EXPECT_NE(w.toolBar()->tool(tool), nullptr) << tool;
  for (const char* entry : {"M_New",
                            "M_Print",
                            "M_Scopy",
                            "M_BScopy",
                            "M_Exit",
                            "M_Undo",
                            "M_ActiveCategorySel",
                            "M_AddLayer",
                            "M_RemoveLayer",
                            "M_FSIimport",
                            "M_ImportCategories",
                            "M_ZoomFactor",
                            "M_Coords",
                            "M_LockTB",
                            "M_Tbar",
                            "M_Functions",
                            "M_Options",
                            "M_ToolS",
                            "M_Standard",
                            "M_Position",
                            "M_Views",
                            "M_ViewLayers",
                            "M_Inches",
                            "M_Mm",
                            "M_GIESelCatView",
                            "M_TrueSize",
                            "M_PadFrame",
                            "M_PadPosition",
                            "M_Mirror",
                            "M_Mono",
                            "M_Sbars",
                            "M_ToolTip",
                            "M_Ruler",
                            "M_LCursor"})
    EXPECT_NE(w.menuEntry(entry), nullptr) << entry;
  emit w.findChild<QMenu*>("M_Edit")->aboutToShow();
  ASSERT_NE(w.menuEntry("M_FSI_1"), nullptr);
  EXPECT_FALSE(w.menuEntry("M_FSI_1")->isVisible()) << "function 1 is the tool's alone";
  ASSERT_NE(w.findChild<QMenu*>("M_SetupOptions"), nullptr);
  EXPECT_FALSE(w.findChild<QMenu*>("M_SetupOptions")->isEnabled()) << "no options window yet";
  // The keys of entries and tools are shown beside them; the option tools take the F-keys in
  // the order they are shown (the four of Align).
  w.toolBar()->events.toolClick("3008");
  for (const auto& [name, keys] : {std::pair{"M_LCursor", "Shift+Z"},
                                   {"M_BScopy", "Shift+S"},
                                   {"M_HelpContents", "Ctrl+F1"},
                                   {"M_Undo", "Ctrl+Z"},
                                   {"ATB_BlockZoom", "Shift+B"},
                                   {"ATB_DistanceTool", "Shift+M"}})
    EXPECT_EQ(w.findChild<QAction*>(name)->shortcut().toString(), keys) << name;
  QStringList optionKeys;
  for (QAction* option : w.findChild<QToolBar*>("OptionTools")->actions())
    if (option->isVisible() && !option->isSeparator())
      optionKeys << option->shortcut().toString();
  ASSERT_EQ(optionKeys.size(), 4);
  for (int n = 0; n < optionKeys.size(); ++n)
    EXPECT_EQ(optionKeys[n], QString("F%1").arg(n + 1));
  for (const char* band : {"B_Standard", "B_Position", "B_Tools", "B_ViewLayout", "B_View",
                           "B_Layer", "FunctionTools", "OptionTools"})
    EXPECT_NE(w.findChild<QToolBar*>(band), nullptr) << band;
  // Function 1's view band holds the layer visibility's tool and stands in the place.
  EXPECT_FALSE(w.findChild<QToolBar*>("B_ViewLayout")->isHidden());
  EXPECT_TRUE(w.findChild<QToolBar*>("B_View")->isHidden());

  // A band the user closes clears its entry; the entry brings it back.
  auto* tools = w.findChild<QToolBar*>("B_Tools");
  QAction* entry = w.menuEntry("M_ToolS");
  ASSERT_TRUE(entry->isChecked());
  tools->toggleViewAction()->trigger();
  EXPECT_TRUE(tools->isHidden());
  EXPECT_FALSE(entry->isChecked());
  entry->trigger();
  EXPECT_FALSE(tools->isHidden());
  EXPECT_TRUE(entry->isChecked());
}

// Each band's place goes to the per-user store at unload and comes back at the next start; a
// value that is not eight numbers leaves its band as built.
TEST_F(ToolBarsTest, BandsAreKeptInTheUserStore) {
  MemoryUserStore store;
  const auto stored = [&store](const std::string& band) {
    return store.GetSetting("Tarvex", "TVNGBRVIEWER", "ATV-atvPostPro-" + band, "");
  };
  window()->setUserStore(&store);
  load();
  window()->findChild<QToolBar*>("B_Tools")->toggleViewAction()->trigger();
  component->NotifyMe("TARVEX", "All,EX");
  for (const char* band : {"B_Standard", "B_Position", "B_Tools", "B_ViewLayout", "B_View",
                           "B_Layer", "FunctionTools", "OptionTools"})
    EXPECT_TRUE(BandPlace::parse(stored(band))) << band << " " << stored(band);
  EXPECT_EQ(stored("B_Tools").substr(0, 2), "0,");
  EXPECT_FALSE(stored("Layout").empty());

  component.reset();
  component = makeComponent(sent);
  store.SaveSetting("Tarvex", "TVNGBRVIEWER", "ATV-atvPostPro-B_Standard", "1,4,0");
  window()->setUserStore(&store);
  load();
  EXPECT_TRUE(window()->findChild<QToolBar*>("B_Tools")->isHidden());
  EXPECT_FALSE(window()->menuEntry("M_ToolS")->isChecked());
  EXPECT_FALSE(window()->findChild<QToolBar*>("B_Standard")->isHidden());
  component.reset();  // before the store goes
}

// Keys typed into a line as the user types them, and the line left.
void type(QLineEdit* line, const QString& text) {
  for (const QChar c : text) {
    QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, QString(c));
    QApplication::sendEvent(line, &press);
  }
}
void press(QLineEdit* line, int key) {
  QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
  QApplication::sendEvent(line, &event);
}
void leave(QLineEdit* line) {
  QFocusEvent out(QEvent::FocusOut, Qt::TabFocusReason);
  QApplication::sendEvent(line, &out);
}

// A typed value ends once: by Return, or by leaving the box after typing; leaving after Return
// ends nothing more.
TEST(ToolBarViewTest, ATypedComboValueEndsOnce) {
  widgetTestApplication();
  QMainWindow window;
  ToolBarModel bar;
  bar.addBand("B_Standard", "Standard");
  bar.addTool("B_Standard",
              {.Name = "ATB_ZoomValue", .Kind = ToolKind::Combo, .ComboRows = {"0.1", "0.2"}});
  std::vector<std::string> ended;
  bar.events.comboChange = [&](const std::string& tool) {
    ended.push_back(bar.tool(tool)->ComboText);
  };
  ToolBarView view(bar, window, {}, 16);
  view.build();
  window.show();
  QComboBox* box = view.combo("ATB_ZoomValue");
  ASSERT_NE(box, nullptr);
  QLineEdit* line = box->lineEdit();
  line->clear();
  type(line, "0,5");
  press(line, Qt::Key_Return);
  leave(line);
  EXPECT_EQ(ended, std::vector<std::string>{"0,5"});
  type(line, "1");
  leave(line);
  EXPECT_EQ(ended, (std::vector<std::string>{"0,5", "0,51"}));
  leave(line);
  EXPECT_EQ(ended.size(), 2u) << "nothing typed since";
}

}  // namespace
}  // namespace tvx::test
