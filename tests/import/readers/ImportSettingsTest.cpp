// The import settings: lenient reading of hand-edited values, and values written by one run read
// back the same by the next.
#include "import/readers/ImportSettings.h"

#include "platform/IniFile.h"
#include "platform/SystemServices.h"

#include "import/gerber/ImportTestSupport.h"

#include <gtest/gtest.h>

#include <fstream>

namespace tvx {
namespace {

class ImportSettingsTest : public ::testing::Test {
protected:
  ImportSettingsTest() { services.SetIniFile(folder.file("tarvex.ini")); }
  void writeSettings(const std::string& text) {
    std::ofstream(folder.file("tarvex.ini"), std::ios::binary) << text;
  }
  std::vector<std::string> keysOf(const std::string& section) {
    return IniDocument(test::readBytes(folder.file("tarvex.ini"))).keys(section);
  }

  test::TempDir folder;
  SystemServices services;
};

TEST_F(ImportSettingsTest, HandEditedValuesAreReadLenientlyAndWithoutRangeChecks) {
  writeSettings("[DXF]\nXYunit=0\nScale=1,5\n"
                "[EXCELLON]\nXYunit=7\nXYFormB=2.5\nXYFormA=3,5\nOMZeros=none\n"
                "[GERBER]\nXYFormBX=-4\nXScale= 2.25mm\nYScale=1e3\n");
  DxfFormat dxf;
  LoadDxfSettings(services, dxf);
  EXPECT_EQ(dxf.DxfUnit, 0);
  EXPECT_DOUBLE_EQ(dxf.DxfScale, 1.5);  // the first comma is the decimal point

  ExcellonFormat excellon;
  LoadExcellonSettings(services, excellon);
  EXPECT_EQ(excellon.XYunit, 7);   // out of range, kept
  EXPECT_EQ(excellon.XYFormB, 2);  // a half goes to the even neighbour
  EXPECT_EQ(excellon.XYFormA, 4);
  EXPECT_EQ(excellon.OMZeros, 0);  // no number in the text

  GerberFormat gerber;
  LoadGerberSettings(services, gerber);
  EXPECT_EQ(gerber.IntegerDigits[AxisX], -4);
  EXPECT_EQ(gerber.DecimalDigits[AxisX], 3);  // missing key: its default
  EXPECT_DOUBLE_EQ(gerber.Scale[AxisX], 2.25);
  EXPECT_DOUBLE_EQ(gerber.Scale[AxisY], 1000.0);
}

TEST_F(ImportSettingsTest, SavedGroupsReadBackTheSameInAFreshServiceObject) {
  const ExcellonFormat excellon{1, 3, 3, 1};
  const GerberFormat gerber{1, {4, 3}, {2, 5}, 1, {0.3937007874015748, -2.5}};
  const DxfFormat dxf{0, 1e-7};
  SaveExcellonSettings(services, excellon);
  SaveGerberSettings(services, gerber);
  SaveDxfSettings(services, dxf);

  SystemServices fresh;
  fresh.SetIniFile(folder.file("tarvex.ini"));
  ExcellonFormat excellonRead;
  GerberFormat gerberRead;
  DxfFormat dxfRead;
  LoadExcellonSettings(fresh, excellonRead);
  LoadGerberSettings(fresh, gerberRead);
  LoadDxfSettings(fresh, dxfRead);
  EXPECT_EQ(excellonRead, excellon);
  EXPECT_EQ(gerberRead, gerber);  // doubles bit for bit
  EXPECT_EQ(dxfRead, dxf);

  // Every key of a group, in the order of loading.
  EXPECT_EQ(keysOf("EXCELLON"),
            (std::vector<std::string>{"XYunit", "XYFormB", "XYFormA", "OMZeros"}));
  EXPECT_EQ(keysOf("GERBER"),
            (std::vector<std::string>{"XYunit", "XYFormBX", "XYFormAX", "XYFormBY", "XYFormAY",
                                      "OMZeros", "XScale", "YScale"}));
  EXPECT_EQ(keysOf("DXF"), (std::vector<std::string>{"XYunit", "Scale"}));
  EXPECT_EQ(fresh.GetIniString("GERBER", "XYFormBX", ""), " 4");
  EXPECT_EQ(fresh.GetIniString("GERBER", "YScale", ""), "-2.5");
}

TEST(SettingTextTest, NumbersThatAreNotNegativeBeginWithABlank) {
  EXPECT_EQ(settingText(2), " 2");
  EXPECT_EQ(settingText(0), " 0");
  EXPECT_EQ(settingText(1.5), " 1.5");
  EXPECT_EQ(settingText(-3), "-3");
  EXPECT_EQ(settingText(-0.25), "-0.25");
  EXPECT_EQ(settingText(1e20), " 1e+20");
}

}  // namespace
}  // namespace tvx
