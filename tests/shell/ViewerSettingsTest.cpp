// The viewer's settings: defaults, corrections of stored values, the order and form of writing,
// and the default tables that go into the kernel and come back out of it.
#include "shell/ViewerSettings.h"

#include "kernel/Kernel.h"
#include "platform/IniFile.h"
#include "platform/SystemServices.h"
#include "viewer/ViewState.h"
#include "viewer/ViewTables.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace tvx {
namespace {

class ViewerSettingsTest : public ::testing::Test {
protected:
  std::string iniPath() const { return dir_.filePath("tarvex.ini").toStdString(); }
  // Starts over with a settings file of exactly this text.
  void useFile(const std::string& text) {
    std::ofstream(iniPath(), std::ios::binary) << text;
    services_ = std::make_unique<SystemServices>();
    services_->SetIniFile(iniPath());
  }
  std::string fileText() const {
    std::ifstream in(iniPath(), std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
  }
  // Everything start-up and ApplySystemSettings read, in their order.
  ViewerSettings readAll(const std::string& product = "TVX") {
    ViewerSettings s;
    readFolders(*services_, product, s);
    readSystemNames(*services_, s);
    readViewerSettings(*services_, s);
    readSystemSettings(*services_, k_.strings, s);
    return s;
  }

  QTemporaryDir dir_;
  std::unique_ptr<SystemServices> services_;
  Kernel k_;
};

TEST_F(ViewerSettingsTest, MissingSectionsGiveTheDefaults) {
  useFile("[COUNTRY]\r\nLanguage=1\r\n");
  const ViewerSettings s = readAll("Tarvex Pro");

  EXPECT_EQ(s.JobDir, "C:\\Tarvex Pro\\JOB");
  EXPECT_EQ(s.LibDir, "C:\\Tarvex Pro\\LIB");
  EXPECT_EQ(s.ImpDir, s.JobDir) << "ImpDir defaults to the job folder";
  EXPECT_EQ(s.SysName, "Fabrication Graphics (Gerber/Excellon/DXF/HPGL) Viewer & Import");
  EXPECT_EQ(s.Ver, "?");
  EXPECT_EQ(s.Rev, "?");
  EXPECT_EQ(s.Range, "Electronic Engineering System");

  EXPECT_EQ(s.UNIT, 0);
  EXPECT_EQ(viewOptionsText(s.VIEW), "1,1,1,0,0,0,1");
  EXPECT_EQ(s.ZOOM, 2.0);
  EXPECT_EQ(s.RULER_TYPE, 0);
  EXPECT_EQ(s.RULER_TYPE_CUSTOM, 2.0);
  EXPECT_EQ(s.MEASURE, 0);
  EXPECT_EQ(s.TOOLBARS, 0);
  EXPECT_EQ(s.GRID, 1);
  EXPECT_TRUE(s.NoCenter);
  EXPECT_EQ(s.Aper, "NONE");
  EXPECT_EQ(s.IMGHEIGHT, 16);
  EXPECT_EQ(s.IMGWIDTH, 16);
  EXPECT_EQ(s.Categories.LayoutBackground, 0);
  EXPECT_EQ(s.Categories.Layout[61 - 32].Name, "Board Outline");

  // The default tables, as the view reads them back from the kernel: 0.1 inch and 2 mm raster,
  // 2 pixels pick distance, precision row 12 of each unit.
  const ViewTables view = ReadViewTables(k_.strings);
  EXPECT_EQ(view.currentGridStep(0), 254000);
  EXPECT_EQ(view.currentGridStep(1), 200000);
  EXPECT_EQ(view.currentPickPixels(), 2);
  EXPECT_EQ(view.currentPrecisionRow(0), 25400);
  EXPECT_EQ(view.currentPrecisionRow(1), 25000);
  EXPECT_EQ(view.gridRows(0).back(), 50000) << "the inch group ends with the list's last value";
  EXPECT_EQ(view.gridRows(1).front(), 254000);
  EXPECT_EQ(view.precisionRows(1).back(), 250000);
}

TEST_F(ViewerSettingsTest, StoredValuesAreCorrectedOnReading) {
  struct Case {
    const char* key;
    const char* value;
    double expected;
  };
  const auto zoomOf = [](const ViewerSettings& s) { return s.ZOOM; };
  const auto measureOf = [](const ViewerSettings& s) { return double(s.MEASURE); };
  const auto noCenterOf = [](const ViewerSettings& s) { return s.NoCenter ? 1.0 : 0.0; };
  const auto unitOf = [](const ViewerSettings& s) { return double(s.UNIT); };
  const auto customOf = [](const ViewerSettings& s) { return s.RULER_TYPE_CUSTOM; };
  const struct {
    Case c;
    double (*get)(const ViewerSettings&);
  } cases[] = {
      {{"ZOOM", "1.05", 2.0}, zoomOf},    {{"ZOOM", "1.1", 1.1}, zoomOf},
      {{"ZOOM", "0", 2.0}, zoomOf},       {{"ZOOM", "-4", 2.0}, zoomOf},
      {{"ZOOM", "abc", 2.0}, zoomOf},     {{"ZOOM", "2,5", 2.5}, zoomOf},
      {{"MEASURE", "7", 0}, measureOf},   {{"MEASURE", "3", 0}, measureOf},
      {{"MEASURE", "2", 2}, measureOf},   {{"MEASURE", "-1", -1}, measureOf},
      {{"NoCenter", "0", 0}, noCenterOf}, {{"NoCenter", "1", 1}, noCenterOf},
      {{"NoCenter", "5", 1}, noCenterOf}, {{"NoCenter", "-1", 1}, noCenterOf},
      {{"UNIT", "mm", 0}, unitOf},        {{"UNIT", "1", 1}, unitOf},
      {{"UNIT", "2.5", 2}, unitOf},       {{"RULER_TYPE_CUSTOM", "0,75", 0.75}, customOf},
  };
  for (const auto& [c, get] : cases) {
    SCOPED_TRACE(std::string(c.key) + "=" + c.value);
    useFile(std::string("[GBRVIEWER]\r\n") + c.key + "=" + c.value + "\r\n");
    EXPECT_DOUBLE_EQ(get(readAll()), c.expected);
  }
}

TEST_F(ViewerSettingsTest, ViewFieldsMissingAtTheEndReadAsOff) {
  const struct {
    const char* text;
    const char* read;
  } cases[] = {
      {"1,0", "1,0,0,0,0,0,0"},
      {"0,1,1", "0,1,1,0,0,0,0"},
      {"", "0,0,0,0,0,0,0"},
      {"-1,0,0,0,0,-1,-1", "1,0,0,0,0,1,1"},   // booleans stored as -1 read as on
      {"1,1,1,1,1,1,1,1,1", "1,1,1,1,1,1,1"},  // extra fields are ignored
      {"x,2,0,0.5,0,0,0", "0,1,0,1,0,0,0"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    useFile(std::string("[GBRVIEWER]\r\nVIEW=") + c.text + "\r\n");
    EXPECT_EQ(viewOptionsText(readAll().VIEW), c.read);
  }
}

TEST_F(ViewerSettingsTest, WritingThenReadingGivesTheSameSettings) {
  useFile("[GBRVIEWER]\r\nMEASURE=2\r\n");
  ViewerSettings written = readAll();
  written.UNIT = 1;
  written.ZOOM = 3.25;
  written.RULER_TYPE = 2;
  written.RULER_TYPE_CUSTOM = 1.0 / 3.0;
  written.GRID = 3;
  written.TOOLBARS = 1;
  // Each VIEW field on alone, then all on and all off, so no two fields can be exchanged.
  for (int field = 0; field <= 8; ++field) {
    SCOPED_TRACE(field);
    bool on[7] = {};
    for (int i = 0; i < 7; ++i)
      on[i] = field == 8 || i == field;
    written.VIEW = {on[0], on[1], on[2], on[3], on[4], on[5], on[6]};
    int32_t status = -1;
    writeViewerSettings(status, *services_, written);
    ASSERT_EQ(status, 0);

    services_ = std::make_unique<SystemServices>();
    services_->SetIniFile(iniPath());
    const ViewerSettings read = readAll();
    EXPECT_EQ(read.UNIT, written.UNIT);
    EXPECT_EQ(read.VIEW, written.VIEW);
    EXPECT_EQ(read.ZOOM, written.ZOOM);
    EXPECT_EQ(read.RULER_TYPE, written.RULER_TYPE);
    EXPECT_EQ(read.RULER_TYPE_CUSTOM, written.RULER_TYPE_CUSTOM) << "no digit is lost";
    EXPECT_EQ(read.GRID, written.GRID);
    EXPECT_EQ(read.TOOLBARS, written.TOOLBARS);
    EXPECT_EQ(read.MEASURE, 2) << "MEASURE is never written and keeps its value";
  }
}

TEST_F(ViewerSettingsTest, UnloadWritesItsKeysInOrderAndLeavesOthersAlone) {
  useFile("[GBRVIEWER]\r\nMEASURE=7\r\nImpDir=D:\\boards\r\n");
  ViewerSettings s = readAll();
  s.ZOOM = 2.5;
  s.RULER_TYPE_CUSTOM = 1.5;
  s.VIEW.Monochrome = true;
  int32_t status = -1;
  writeViewerSettings(status, *services_, s);
  ASSERT_EQ(status, 0);

  const IniDocument doc(fileText());
  EXPECT_EQ(doc.keys("GBRVIEWER"),
            (std::vector<std::string>{"MEASURE", "ImpDir", "UNIT", "VIEW", "ZOOM", "RULER_TYPE",
                                      "RULER_TYPE_CUSTOM", "GRID", "TOOLBARS"}));
  EXPECT_EQ(doc.value("GBRVIEWER", "MEASURE"), "7") << "the stored text, not the corrected 0";
  EXPECT_EQ(doc.value("GBRVIEWER", "ImpDir"), "D:\\boards");
  EXPECT_EQ(doc.value("GBRVIEWER", "UNIT"), "0");
  EXPECT_EQ(doc.value("GBRVIEWER", "VIEW"), "1,1,1,0,1,0,1");
  EXPECT_EQ(doc.value("GBRVIEWER", "ZOOM"), "2.5");
  EXPECT_EQ(doc.value("GBRVIEWER", "RULER_TYPE_CUSTOM"), "1.5");
  EXPECT_EQ(doc.value("GBRVIEWER", "GRID"), "1");
  EXPECT_FALSE(doc.value("Tarvex", "JobDir")) << "the suite's section is never written";

  int32_t impStatus = -1;
  writeImpDir(impStatus, *services_, "E:\\gerber");
  EXPECT_EQ(impStatus, 0);
  EXPECT_EQ(IniDocument(fileText()).value("GBRVIEWER", "ImpDir"), "E:\\gerber");
}

TEST_F(ViewerSettingsTest, AFileThatCannotBeWrittenGivesStatusOne) {
  services_ = std::make_unique<SystemServices>();
  services_->SetIniFile(dir_.filePath("no such folder/tarvex.ini").toStdString());
  int32_t status = -1;
  writeViewerSettings(status, *services_, ViewerSettings{});
  EXPECT_EQ(status, 1);
  status = -1;
  writeImpDir(status, *services_, "C:\\");
  EXPECT_EQ(status, 1);
}

TEST_F(ViewerSettingsTest, MonochromeSavedOnStillStartsInColour) {
  useFile("[GBRVIEWER]\r\nVIEW=0,0,1,1,1,1,0\r\nUNIT=1\r\nZOOM=4\r\n");
  const ViewerSettings s = readAll();
  EXPECT_TRUE(s.VIEW.Monochrome) << "kept, so that unload writes it back";

  ViewState view(k_.graphics, *services_);
  applyToView(s, view);
  EXPECT_EQ(view.MonoFlags & 8, 0);
  EXPECT_FALSE(view.RulerOn);
  EXPECT_EQ(view.ViewFlags & viewflag::Outline, viewflag::Outline) << "true size off";
  EXPECT_EQ(view.ViewFlags & viewflag::PadFrames, viewflag::PadFrames);
  EXPECT_EQ(view.ViewFlags & viewflag::Mirror, viewflag::Mirror);
  EXPECT_EQ(view.ViewFlags & viewflag::ScreenView, viewflag::ScreenView);
  EXPECT_TRUE(view.ScrollBarsOn);
  EXPECT_EQ(view.PadPositions, 0);
  EXPECT_EQ(view.DisplayUnit, 1);
  EXPECT_EQ(view.ZoomFactor, 4.0);

  // Back from the view: the view's own monochrome state is what unload writes.
  ViewerSettings back = s;
  takeFromView(view, back);
  EXPECT_FALSE(back.VIEW.Monochrome);
  view.MonoFlags |= 8;
  takeFromView(view, back);
  EXPECT_EQ(viewOptionsText(back.VIEW), "0,0,1,1,1,1,0");
  EXPECT_EQ(viewOptionsText(back.VIEW), view.viewSettingText()) << "the view writes VIEW alike";
}

TEST_F(ViewerSettingsTest, SuiteNamesAndSectionsOfTheirOwn) {
  useFile("[Tarvex]\r\nSysName=Other\r\nVer=7\r\nRev=B\r\nRange=Lab\r\nMaker=Someone\r\n"
          "JobDir=/jobs\r\nLibDir=/libs\r\n"
          "[POSTART]\r\nAper=STANDARD\r\n[IMAGES]\r\nIMGHEIGHT=24\r\nIMGWIDTH=32\r\n");
  const ViewerSettings s = readAll();
  EXPECT_EQ(s.SysName, "Fabrication Graphics (Gerber/Excellon/DXF/HPGL) Viewer & Import")
      << "the caption never takes the suite's name";
  EXPECT_EQ(s.Ver, "7");
  EXPECT_EQ(s.Rev, "B");
  EXPECT_EQ(s.Range, "Lab");
  EXPECT_EQ(s.Maker, "Someone");
  EXPECT_EQ(s.JobDir, "/jobs");
  EXPECT_EQ(s.LibDir, "/libs");
  EXPECT_EQ(s.ImpDir, "/jobs");
  EXPECT_EQ(s.Aper, "STANDARD");
  EXPECT_EQ(s.IMGHEIGHT, 24);
  EXPECT_EQ(s.IMGWIDTH, 32);
  EXPECT_EQ(defaultApertureFile("/opt/tvx/SYS", s.Aper), "/opt/tvx/SYS/STANDARD.APT");

  // The caption follows the catalogue.
  std::ofstream(dir_.filePath("GBRVIEWER.MSG").toStdString()) << "62450\tViewer\n";
  services_->loadCatalogue(dir_.path().toStdString());
  ViewerSettings named;
  readSystemNames(*services_, named);
  EXPECT_EQ(named.SysName, "Viewer");
}

TEST_F(ViewerSettingsTest, KernelTablesAreWrittenAndReadBack) {
  useFile("[Tarvex]\r\nPickTable=3, 1, 2, 4\r\n"
          "LayGridTable=1,100,200,300,400,500,600,700,800,900,1000,1100,1200,1300,1400\r\n"
          "LayGridTableM=4,x,7\r\nLayPrecision=\r\n");
  std::vector<uint8_t> angles(size_t(KernelStrings::tableSize(7)), 0x5A);
  KernelStrings::E_MemCopy(k_.strings.E_SysTable(7), angles.data(), int32_t(angles.size()));

  const ViewerSettings s = readAll();
  const DefaultTables& t = s.Tables;
  EXPECT_EQ(t.Pick, (std::array<int32_t, 5>{3, 1, 2, 4, 0})) << "a short list leaves zeros";
  for (int i = 0; i < 13; ++i)
    EXPECT_EQ(t.Grid[size_t(i)], i == 0 ? 1 : 100 * i) << "values beyond 13 are dropped: " << i;
  EXPECT_EQ(t.Grid[13], 4);
  EXPECT_EQ(t.Grid[14], 0) << "a field without a number reads as 0";
  EXPECT_EQ(t.Grid[15], 7);
  EXPECT_EQ(t.Grid[16], 0);
  EXPECT_EQ(t.Precision, (std::array<int32_t, 32>{})) << "an empty list gives an empty table";

  EXPECT_EQ(readKernelDefaultTables(k_.strings), t);
  EXPECT_EQ(std::vector<uint8_t>(k_.strings.E_SysTable(7), k_.strings.E_SysTable(7) + 28), angles)
      << "the angle table is the kernel's own";
  const ViewTables view = ReadViewTables(k_.strings);
  EXPECT_EQ(view.currentGridStep(0), 100);
  EXPECT_EQ(view.currentGridStep(1), 0);
  EXPECT_EQ(view.currentPickPixels(), 4);

  // Written tables replace the kernel's whole content, and read back the same.
  DefaultTables mine;
  for (size_t i = 0; i < mine.Grid.size(); ++i)
    mine.Grid[i] = int32_t(1000 + i);
  for (size_t i = 0; i < mine.Pick.size(); ++i)
    mine.Pick[i] = int32_t(-1 - int(i));
  for (size_t i = 0; i < mine.Precision.size(); ++i)
    mine.Precision[i] = int32_t(i * i);
  writeDefaultTables(k_.strings, mine);
  EXPECT_EQ(readKernelDefaultTables(k_.strings), mine);
  EXPECT_EQ(ReadViewTables(k_.strings).LayPrecision, mine.Precision);
}

}  // namespace
}  // namespace tvx
