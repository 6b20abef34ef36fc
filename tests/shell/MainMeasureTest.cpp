// Measuring in the main window: the calibration and origin settings check their menu rows at
// start and the calibration is written at unload; the position band's panels follow the pointer;
// its tools switch the coordinates' kind and the unit; the ruler's entry draws the strip.
#include "ComponentTestSupport.h"

#include "shell/HostCommands.h"
#include "viewer/Measuring.h"
#include "viewer/widgets/ViewPicture.h"

#include <QAction>
#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QMouseEvent>
#include <QTemporaryDir>
#include <QToolBar>

#include <fstream>
#include <string>
#include <tuple>

namespace tvx::test {
namespace {

class MainMeasureTest : public SettingsFileTest {
protected:
  void settings(const std::string& text) { std::ofstream(ini, std::ios::binary) << text; }
  QAction* action(const char* name) { return window()->findChild<QAction*>(name); }
  std::string panel(const char* name) {
    const auto* field = window()->findChild<QLineEdit*>(name);
    return field ? field->text().toStdString() : std::string("(none)");
  }
};

TEST_F(MainMeasureTest, SettingsCheckTheirRowsAndTheCalibrationIsWritten) {
  struct Case {
    const char* file;
    int32_t rulerRow, originRow;
  };
  const Case cases[] = {
      {"[GBRVIEWER]\r\nRULER_TYPE=2\r\nMEASURE=1\r\n", 2, 1},
      {"[GBRVIEWER]\r\nRULER_TYPE=3\r\nRULER_TYPE_CUSTOM=2.5\r\nMEASURE=7\r\n", 3, 0},
  };
  for (const Case& c : cases) {
    // One component at a time: the one before is gone before the next is made.
    if (!component)
      component = makeComponent(sent);
    settings(c.file);
    load();
    GBRVIEWER_MAIN& w = *window();
    for (int32_t row = 0; row < 4; ++row)
      EXPECT_EQ(action(("mnuCalRulerType_" + std::to_string(row)).c_str())->isChecked(),
                row == c.rulerRow)
          << c.file << row;
    for (int32_t row = 0; row < 3; ++row)
      EXPECT_EQ(action(("M_XYmeasure_" + std::to_string(row)).c_str())->isChecked(),
                row == c.originRow)
          << c.file << row;
    EXPECT_EQ(w.measuring().MeasureMode, c.originRow) << c.file;
    w.measuring().mnuCalRulerType_Click(rulertype::Fixed);
    EXPECT_TRUE(action("mnuCalRulerType_1")->isChecked()) << c.file;
    component->NotifyMe("TARVEX", "All,EX");
    SystemServices reader;
    reader.SetIniFile(ini);
    EXPECT_EQ(reader.GetIniString("GBRVIEWER", "RULER_TYPE", ""), "1") << c.file;
    component.reset();
  }
}

TEST_F(MainMeasureTest, BandPanelsToolsAndRuler) {
  settings("[GBRVIEWER]\r\nUNIT=1\r\nVIEW=0,1,1,0,1,0,1\r\n");
  load();
  GBRVIEWER_MAIN& w = *window();
  if (QFileDialog* request = w.fileRequest())
    request->close();
  auto* band = w.findChild<QToolBar*>("B_Position");
  ASSERT_NE(band, nullptr);
  for (const char* name : {"ATB_XPos", "ATB_YPos"}) {
    auto* field = w.findChild<QLineEdit*>(name);
    ASSERT_NE(field, nullptr) << name;
    EXPECT_TRUE(field->isReadOnly()) << name;
  }
  for (const char* name : {"ATB_DistanceTool", "ATB_Inches", "ATB_Millimeters", "ATB_XY",
                           "ATB_Distance", "M_Ruler", "M_ZoomFactor", "M_Coords"})
    EXPECT_NE(action(name), nullptr) << name;

  // A move over the view fills the panels, in the unit of the settings.
  QWidget* view = w.viewPicture();
  w.view().setPictureSize(view->width(), view->height());
  const QPointF at(view->width() / 2.0, view->height() / 2.0);
  QMouseEvent move(QEvent::MouseMove, at, view->mapToGlobal(at), Qt::NoButton, Qt::NoButton,
                   Qt::NoModifier);
  QApplication::sendEvent(view, &move);
  EXPECT_EQ(panel("ATB_XPos").rfind("X= ", 0), 0u);
  EXPECT_EQ(panel("ATB_XPos").substr(panel("ATB_XPos").size() - 2), "mm");
  EXPECT_EQ(w.positionText(true), panel("ATB_YPos"));

  // The kinds of coordinates: Distance ends on, XY ends off, whatever the state before.
  struct Step {
    const char* tool;
    bool distance;
    std::string caption;
  };
  for (const Step& s :
       {Step{"ATB_Distance", true, "Distance:"}, Step{"ATB_Distance", true, "Distance:"},
        Step{"ATB_XY", false, "X/Y Coords:"}, Step{"ATB_XY", false, "X/Y Coords:"}}) {
    action(s.tool)->trigger();
    EXPECT_EQ(w.measuring().DistanceDisplay, s.distance) << s.tool;
    EXPECT_EQ(action("M_Coords")->text().toStdString(), s.caption) << s.tool;
    EXPECT_EQ(std::tuple(action("ATB_XY")->isChecked(), action("ATB_Distance")->isChecked()),
              std::tuple(!s.distance, s.distance))
        << s.tool;
  }
  // The unit tools follow the unit both ways.
  action("ATB_Inches")->trigger();
  EXPECT_EQ(std::tuple(w.view().DisplayUnit, action("ATB_Inches")->isChecked(),
                       action("ATB_Millimeters")->isChecked(), action("M_Inches")->isChecked()),
            std::tuple(displayunit::Inch, true, false, true));
  // The ruler: its entry's check follows RulerOn; with it on a unit switch draws the picture
  // again, so that the ruler counts in the new unit; without it the picture stays.
  for (const bool on : {true, false}) {
    action("M_Ruler")->trigger();
    EXPECT_EQ(std::tuple(w.view().RulerOn, action("M_Ruler")->isChecked()), std::tuple(on, on));
    for (const char* unit : {"ATB_Millimeters", "ATB_Inches"}) {
      const int32_t rebuilds = w.redraw().rebuilds();
      action(unit)->trigger();
      EXPECT_EQ(w.redraw().rebuilds(), rebuilds + (on ? 1 : 0)) << unit << on;
    }
  }
  // The distance tool arms the pick and is checked until Escape disarms it.
  action("ATB_DistanceTool")->trigger();
  EXPECT_TRUE(w.pointerTools().SelectObjectArmed);
  EXPECT_EQ(w.MessageLine(), "Select Object");
  w.Form_KeyDown(27, 0);
  EXPECT_FALSE(w.pointerTools().SelectObjectArmed);
  EXPECT_FALSE(action("ATB_DistanceTool")->isChecked());
  // File > New, answered yes, takes the reference point with the layers.
  w.measuring().ReferencePoint = {true, 100, 200};
  w.M_New_Click();
  EXPECT_FALSE(w.measuring().ReferencePoint.Set);
  if (QFileDialog* request = w.fileRequest())
    request->close();
  component->NotifyMe("TARVEX", "All,EX");
}

}  // namespace
}  // namespace tvx::test
