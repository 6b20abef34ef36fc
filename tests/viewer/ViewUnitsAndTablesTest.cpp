// Display units and their pictures, the view's settings, and the kernel's tables read back.
#include "ViewTestSupport.h"

#include "viewer/Redraw.h"

namespace tvx {
namespace {

TEST(DisplayUnitsTest, LengthsAndAnglesInTheirPictures) {
  // The common length texts, with the units per millimetre passed on.
  EXPECT_EQ(FormatLength(254000, displayunit::Inch, 100000), "0.1000\"");
  EXPECT_EQ(FormatLengthValue(2000, displayunit::Millimetre, 1000), "2.000");
  EXPECT_EQ(FormatShortLength(1234567, displayunit::Millimetre, 100000), "12.3mm");
  EXPECT_EQ(displayUnitInfo(7).Word, "inches") << "a stray unit shows as inch";
  EXPECT_EQ(FormatAngle(22500), "22.5");
  EXPECT_EQ(FormatAngle(1250), "1.25");
}

TEST(ViewTablesTest, CurrentRowsAndDefaultPrecisionComeFromTheKernel) {
  Kernel k;
  test::writeStartupTables(k.strings);
  ViewTables t = ReadViewTables(k.strings);
  EXPECT_EQ(t.defaultPrecision(displayunit::Inch), 25400);
  EXPECT_EQ(t.defaultPrecision(displayunit::Millimetre), 25000);
  EXPECT_EQ(t.currentGridStep(displayunit::Millimetre), 200000);
  EXPECT_EQ(t.currentPickPixels(), 2);
  EXPECT_EQ(t.currentAngleStep(), 15000);
  EXPECT_EQ(t.gridRows(displayunit::Millimetre).size(), 12u);
  EXPECT_EQ(t.precisionRows(displayunit::Millimetre).back(), 250000);
  // No current row, a row beyond the group, and a current row that holds 0 all give 12700.
  int32_t* precision = reinterpret_cast<int32_t*>(k.strings.E_SysTable(21));
  precision[0] = 16;
  precision[16] = 0;
  t = ReadViewTables(k.strings);
  EXPECT_EQ(t.defaultPrecision(displayunit::Inch), 12700);
  EXPECT_EQ(t.defaultPrecision(displayunit::Millimetre), 12700);
  precision[16] = 3;
  EXPECT_EQ(ReadViewTables(k.strings).defaultPrecision(displayunit::Millimetre), 1000);
  precision[19] = 0;
  EXPECT_EQ(ReadViewTables(k.strings).defaultPrecision(displayunit::Millimetre), 12700);
}

TEST(ViewTablesTest, WheelStepsAlongTheRowsOfTheUnit) {
  Kernel k;
  test::writeStartupTables(k.strings);
  const ViewTables t = ReadViewTables(k.strings);
  const int32_t in = displayunit::Inch, mm = displayunit::Millimetre;
  const std::array<int32_t, 4> cases[] = {
      {in, 25400, -120, 20320}, {in, 25400, 120, 50800},   {in, 25400, 0, 50800},
      {in, 30000, -1, 25400},   {in, 30000, 1, 50800},      // between two rows
      {in, 254, -120, 254},     {in, 254000, 120, 254000},  // none beyond: the finest, the coarsest
      {in, 1, 120, 254},        {mm, 25000, -120, 20000},  {mm, 254, -120, 100}};
  for (const auto& [unit, precision, rotation, expected] : cases) {
    SCOPED_TRACE(testing::Message() << unit << " " << precision << " " << rotation);
    EXPECT_EQ(t.wheelPrecision(unit, precision, rotation), expected);
  }
  Kernel empty;
  EXPECT_EQ(ReadViewTables(empty.strings).wheelPrecision(in, 5000, -120), 5000);
}

using ViewSettingsTest = test::ViewFixture;

TEST_F(ViewSettingsTest, ViewZoomAndUnitSettings) {
  view.applyViewSetting("1,1,1,0,0,0,1");
  EXPECT_TRUE(view.RulerOn);
  EXPECT_EQ(view.ViewFlags, viewflag::ScreenView | viewflag::PadFrames) << "true size clears 32";
  EXPECT_EQ(view.PadPositions, 1);
  EXPECT_EQ(view.viewSettingText(), "1,1,1,0,0,0,1");
  view.applyViewSetting("0,0,0,1");  // the missing fields read as 0
  EXPECT_EQ(view.ViewFlags, viewflag::ScreenView | viewflag::Outline | viewflag::Mirror);
  EXPECT_EQ(view.viewSettingText(), "0,0,0,1,0,0,0");
  view.applyViewSetting("-1,1,0,0,1,-1,-1");  // monochrome is not applied; booleans go out as 1
  EXPECT_EQ(view.MonoFlags, 0);
  EXPECT_TRUE(view.ScrollBarsOn);
  view.MonoFlags = MonoFlag;
  EXPECT_EQ(view.viewSettingText(), "1,1,0,0,1,1,1");

  for (auto [text, factor] : {std::pair{"1.05", 2.0}, {"1,5", 1.5}, {"none", 2.0}}) {
    view.applyZoomSetting(text);
    EXPECT_EQ(view.ZoomFactor, factor) << text;
  }
  view.applyUnitSetting("1");
  EXPECT_EQ(view.DisplayUnit, displayunit::Millimetre);
}

}  // namespace
}  // namespace tvx
