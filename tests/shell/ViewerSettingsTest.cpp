// The viewer's settings: corrections of stored values, the order and form of writing,
// and the default tables that go into the kernel and come back out of it.
#include "shell/ViewerSettings.h"

#include "import/gerber/ImportTestSupport.h"
#include "kernel/Kernel.h"
#include "platform/IniFile.h"
#include "platform/SystemServices.h"
#include "viewer/Redraw.h"
#include "viewer/ViewState.h"
#include "viewer/ViewTables.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <fstream>
#include <numeric>
#include <sstream>

namespace tvx {
namespace {

using Texts = std::vector<std::string>;

class ViewerSettingsTest : public ::testing::Test {
protected:
  std::string iniPath() const { return dir_.filePath("tarvex.ini").toStdString(); }
  // Starts over with a fresh service object on the settings file; text replaces the file.
  void useFile(const std::string* text) {
    if (text)
      std::ofstream(iniPath(), std::ios::binary) << *text;
    services_ = std::make_unique<SystemServices>();
    services_->SetIniFile(iniPath());
  }
  void useFile(const std::string& text) { useFile(&text); }
  IniDocument fileDoc() const { return IniDocument(test::readBytes(iniPath())); }
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

TEST_F(ViewerSettingsTest, StoredValuesAreCorrectedOnReading) {
  const auto get = [](const ViewerSettings& s, std::string_view key) -> double {
    return key == "ZOOM"       ? s.ZOOM
           : key == "MEASURE"  ? s.MEASURE
           : key == "NoCenter" ? s.NoCenter
           : key == "UNIT"     ? s.UNIT
                               : s.RULER_TYPE_CUSTOM;
  };
  const std::tuple<const char*, const char*, double> cases[] = {
      {"ZOOM", "1.05", 2.0}, {"ZOOM", "1.1", 1.1}, {"ZOOM", "2,5", 2.5},
      {"MEASURE", "3", 0},   {"MEASURE", "2", 2},  {"MEASURE", "-1", -1},
      {"NoCenter", "0", 0},  {"NoCenter", "5", 1}, {"NoCenter", "-1", 1},
      {"UNIT", "mm", 0},     {"UNIT", "2.5", 2},   {"RULER_TYPE_CUSTOM", "0,75", 0.75}};
  for (const auto& [key, value, expected] : cases) {
    SCOPED_TRACE(std::string(key) + "=" + value);
    useFile(std::string("[GBRVIEWER]\r\n") + key + "=" + value + "\r\n");
    EXPECT_DOUBLE_EQ(get(readAll(), key), expected);
  }
}

TEST_F(ViewerSettingsTest, ViewFieldsMissingAtTheEndReadAsOff) {
  const std::pair<const char*, const char*> cases[] = {
      {"1,0", "1,0,0,0,0,0,0"},
      {"", "0,0,0,0,0,0,0"},
      {"-1,0,0,0,0,-1,-1", "1,0,0,0,0,1,1"},   // booleans stored as -1 read as on
      {"1,1,1,1,1,1,1,1,1", "1,1,1,1,1,1,1"},  // extra fields are ignored
      {"x,2,0,0.5,0,0,0", "0,1,0,1,0,0,0"}};
  for (const auto& [text, read] : cases) {
    SCOPED_TRACE(text);
    useFile(std::string("[GBRVIEWER]\r\nVIEW=") + text + "\r\n");
    EXPECT_EQ(viewOptionsText(readAll().VIEW), read);
  }
}

TEST_F(ViewerSettingsTest, WritingThenReadingGivesTheSameSettings) {
  useFile("[GBRVIEWER]\r\nMEASURE=2\r\n");
  ViewerSettings written = readAll();
  std::tie(written.UNIT, written.ZOOM, written.RULER_TYPE, written.RULER_TYPE_CUSTOM, written.GRID,
           written.TOOLBARS) = std::tuple(1, 3.25, 2, 1.0 / 3.0, 3, 1);
  // Each VIEW field on alone, then all on, so no two fields can be exchanged.
  for (int field = 0; field <= 7; ++field) {
    SCOPED_TRACE(field);
    const auto on = [&](int i) { return field == 7 || i == field; };
    written.VIEW = {on(0), on(1), on(2), on(3), on(4), on(5), on(6)};
    int32_t status = -1;
    writeViewerSettings(status, *services_, written);
    ASSERT_EQ(status, 0);
    useFile(nullptr);
    const ViewerSettings read = readAll();
    EXPECT_EQ(read.VIEW, written.VIEW);
    EXPECT_EQ(
        std::tie(read.UNIT, read.ZOOM, read.RULER_TYPE, read.GRID, read.TOOLBARS),
        std::tie(written.UNIT, written.ZOOM, written.RULER_TYPE, written.GRID, written.TOOLBARS));
    // No digit is lost; MEASURE is never written and keeps its value.
    EXPECT_EQ(std::tuple(read.RULER_TYPE_CUSTOM, read.MEASURE),
              std::tuple(written.RULER_TYPE_CUSTOM, 2));
  }
}

TEST_F(ViewerSettingsTest, UnloadWritesItsKeysInOrderAndLeavesOthersAlone) {
  useFile("[GBRVIEWER]\r\nMEASURE=7\r\nImpDir=D:\\boards\r\n");
  ViewerSettings s = readAll();
  s.ZOOM = 2.5;
  int32_t status = -1;
  writeViewerSettings(status, *services_, s);
  ASSERT_EQ(status, 0);
  const IniDocument doc = fileDoc();
  EXPECT_EQ(doc.keys("GBRVIEWER"), (Texts{"MEASURE", "ImpDir", "UNIT", "VIEW", "ZOOM", "RULER_TYPE",
                                          "RULER_TYPE_CUSTOM", "GRID", "TOOLBARS"}));
  // MEASURE keeps the stored text, not the corrected 0; the suite's section is never written.
  EXPECT_EQ(std::tuple(doc.value("GBRVIEWER", "MEASURE"), doc.value("GBRVIEWER", "ImpDir"),
                       doc.value("GBRVIEWER", "ZOOM"), doc.value("Tarvex", "JobDir").has_value()),
            std::tuple("7", "D:\\boards", "2.5", false));

  writeImpDir(status, *services_, "E:\\gerber");
  EXPECT_EQ(std::tuple(status, fileDoc().value("GBRVIEWER", "ImpDir")),
            std::tuple(0, "E:\\gerber"));

  // A file that cannot be written gives status 1.
  services_->SetIniFile(dir_.filePath("no such folder/tarvex.ini").toStdString());
  int32_t impStatus = -1;
  writeViewerSettings(status, *services_, s);
  writeImpDir(impStatus, *services_, "C:\\");
  EXPECT_EQ(std::tuple(status, impStatus), std::tuple(1, 1));
}

TEST_F(ViewerSettingsTest, MonochromeSavedOnStillStartsInColour) {
  useFile("[GBRVIEWER]\r\nVIEW=0,0,1,1,1,1,0\r\nUNIT=1\r\nZOOM=4\r\n");
  const ViewerSettings s = readAll();
  EXPECT_TRUE(s.VIEW.Monochrome) << "kept, so that unload writes it back";

  ViewState view(k_.graphics, *services_);
  applyToView(s, view);
  EXPECT_EQ(
      std::tuple(view.MonoFlags & MonoFlag, view.ViewFlags, view.RulerOn, view.ScrollBarsOn,
                 view.PadPositions, view.DisplayUnit, view.ZoomFactor),
      std::tuple(0,
                 viewflag::ScreenView | viewflag::Outline | viewflag::PadFrames | viewflag::Mirror,
                 false, true, 0, 1, 4.0));

  // Back from the view: the view's own monochrome state is what unload writes.
  ViewerSettings back = s;
  takeFromView(view, back);
  EXPECT_FALSE(back.VIEW.Monochrome);
  view.MonoFlags |= MonoFlag;
  takeFromView(view, back);
  EXPECT_EQ(viewOptionsText(back.VIEW), "0,0,1,1,1,1,0");
}

TEST_F(ViewerSettingsTest, SuiteNamesAndSectionsOfTheirOwn) {
  useFile("[Tarvex]\r\nSysName=Other\r\nVer=7\r\nRev=B\r\nRange=Lab\r\nMaker=Someone\r\n"
          "JobDir=/jobs\r\nLibDir=/libs\r\n"
          "[POSTART]\r\nAper=STANDARD\r\n[IMAGES]\r\nIMGHEIGHT=24\r\nIMGWIDTH=32\r\n");
  const ViewerSettings s = readAll();
  EXPECT_EQ(s.SysName, "Fabrication Graphics (Gerber/Excellon/DXF/HPGL) Viewer & Import")
      << "the caption never takes the suite's name";
  EXPECT_EQ((Texts{s.Ver, s.Rev, s.Range, s.Maker, s.JobDir, s.LibDir, s.ImpDir, s.Aper}),
            (Texts{"7", "B", "Lab", "Someone", "/jobs", "/libs", "/jobs", "STANDARD"}));
  EXPECT_EQ(std::tie(s.IMGHEIGHT, s.IMGWIDTH), std::make_tuple(24, 32));

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
  // The millimetre group: a field without a number reads as 0, a short list leaves zeros.
  EXPECT_EQ((std::vector<int32_t>(t.Grid.begin() + 13, t.Grid.begin() + 17)),
            (std::vector<int32_t>{4, 0, 7, 0}));
  EXPECT_EQ(t.Precision, (std::array<int32_t, 32>{})) << "an empty list gives an empty table";

  EXPECT_EQ(readKernelDefaultTables(k_.strings), t);
  EXPECT_EQ(std::vector<uint8_t>(k_.strings.E_SysTable(7), k_.strings.E_SysTable(7) + 28), angles)
      << "the angle table is the kernel's own";
  const ViewTables view = ReadViewTables(k_.strings);
  EXPECT_EQ(std::tuple(view.currentGridStep(0), view.currentGridStep(1), view.currentPickPixels()),
            std::tuple(100, 0, 4));

  // Written tables replace the kernel's whole content, and read back the same.
  DefaultTables mine;
  std::iota(mine.Grid.begin(), mine.Grid.end(), 1000);
  std::iota(mine.Pick.begin(), mine.Pick.end(), -5);
  std::iota(mine.Precision.begin(), mine.Precision.end(), 7);
  writeDefaultTables(k_.strings, mine);
  EXPECT_EQ(readKernelDefaultTables(k_.strings), mine);
  EXPECT_EQ(ReadViewTables(k_.strings).LayPrecision, mine.Precision);
}

}  // namespace
}  // namespace tvx
