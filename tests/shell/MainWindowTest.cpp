// The main window's start-up effects, its positioning, the unload's writing, the file-open command
// and the menu's display options; the layer properties window that follows the current layer.
#include "ComponentTestSupport.h"

#include "common/widgets/PropertyGrid.h"
#include "import/readers/window/widgets/GBRVIEWER_GISIMP.h"
#include "import/readers/window/widgets/GBRVIEWER_IMPORT.h"
#include "platform/IniFile.h"
#include "platform/UserStore.h"
#include "shell/HostCommands.h"
#include "store/LayerCatalogue.h"
#include "viewer/widgets/ViewPicture.h"

#include <QAction>
#include <QDesktopServices>
#include <QFile>
#include <QFileDialog>
#include <QScreen>
#include <QTemporaryDir>
#include <QTextBrowser>
#include <QToolButton>

#include <filesystem>
#include <fstream>
#include <tuple>

namespace tvx::test {

namespace {

constexpr const char* Drill = "M48\r\nINCH,TZ\r\nT1C0.04\r\n%\r\nT1\r\nX1000Y1000\r\nX5000Y1000\r\n"
                              "X3000Y4000\r\nM30\r\n";

class MainWindowTest : public SettingsFileTest {
protected:
  void SetUp() override {
    SettingsFileTest::SetUp();
    window()->setUserStore(&places);
  }

  std::string write(const char* name, const std::string& text) {
    const std::string path = folder.filePath(name).toStdString();
    std::ofstream(path, std::ios::binary) << text;
    return path;
  }
  int32_t drillEntries() {
    return kernel.store.OA_GetCount(
        kernel.store.S_SymbolEntryArray(window()->layerTables().layer(DrillLayer).SymbolHandle));
  }
  std::string place(const std::string& key) {
    return places.GetSetting(UserStoreApplication, UserStoreSection, "GBRVIEWER_MAIN" + key, "");
  }

  MemoryUserStore places;
};

TEST_F(MainWindowTest, StartUpEndsIdleWithTheFileRequestOpen) {
  write("tarvex.ini", "[GBRVIEWER]\nUNIT=1\nVIEW=1,0,0,1,1,1,0\n");
  load();
  GBRVIEWER_MAIN& w = *window();
  EXPECT_NE(w.CPDcId(), 0);
  EXPECT_EQ(std::tuple(w.ExitAnyWay(), w.busyPicture(), w.viewPicture()->isEnabled(),
                       w.languagePath(), w.view().DisplayUnit),
            std::tuple(false, IdlePicture, true, kernelString(LanguagePathString), 1));
  ASSERT_NE(w.statusPanel(BusyPanel), nullptr);
  ASSERT_NE(w.statusPanel(MessagePanel), nullptr);

  // The viewer's settings reached the view and its menu entries; mono never starts on.
  for (const char* on : {"M_Mm", "M_Mirror", "M_Sbars"})
    EXPECT_TRUE(w.menuEntry(on)->isChecked()) << on;
  for (const char* off : {"M_Inches", "M_TrueSize", "M_Mono"})
    EXPECT_FALSE(w.menuEntry(off)->isChecked()) << off;
  EXPECT_GE(w.redraw().rebuilds(), 1);

  // The first thing the user sees is the request for a file.
  ASSERT_NE(w.fileRequest(), nullptr);
  EXPECT_TRUE(w.fileRequest()->isVisible());

  // The Esc panel has its caption and cancels a pointer tool.
  auto* esc = qobject_cast<QToolButton*>(w.statusPanel(EscPanel));
  ASSERT_NE(esc, nullptr);
  EXPECT_EQ(esc->text().toStdString(), "Esc");
  w.pointerTools().StartTool(toolcode::Box);
  esc->click();
  EXPECT_FALSE(w.pointerToolActive());

  // The window cannot be made smaller than at load.
  w.resize(200, 150);
  EXPECT_TRUE(w.width() >= int(w.MinWidth()) && w.height() >= int(w.MinHeight()));
}

TEST_F(MainWindowTest, AMissingMenuFileEndsStartUp) {
  QTemporaryDir empty;
  window()->setAppPath(empty.path().toStdString());
  int16_t mode = windowstate::Normal;
  EXPECT_EQ(component->Load(mode), 0);
  EXPECT_EQ(std::tuple(window()->isVisible(), window()->isLoaded(), sent),
            std::tuple(false, false, shutdownOnly()));
  // Nothing was released or written: the start-up had not got that far.
  EXPECT_EQ(std::tuple(kernelString(ComponentName), places.values.empty(),
                       QFile::exists(QString::fromStdString(ini))),
            std::tuple("", true, false));
}

TEST_F(MainWindowTest, PositionComesFromThePlaceAndStaysOnTheScreen) {
  const QRect area = QGuiApplication::primaryScreen()->availableGeometry();
  {
    SCOPED_TRACE("nothing saved: the whole work area");
    load();
    const QRect got = window()->geometry();
    for (int gap :
         {got.width() - area.width(), got.height() - area.height(), got.left() - area.left()})
      EXPECT_LE(std::abs(gap), 4);
    component->NotifyMe("TARVEX", "All,EX");
  }
  // The unload saved the place in twips.
  EXPECT_EQ(place("_WIDTH"), std::to_string(window()->width() * 15));
  {
    SCOPED_TRACE("a saved left beyond the work area comes back on it");
    for (const auto& [key, value] : {std::pair{"_TOP", std::string("150")},
                                     {"_LEFT", std::to_string(area.width() * 15 * 3)},
                                     {"_WIDTH", std::string("10500")},
                                     {"_HEIGHT", std::string("9000")}})
      places.SaveSetting(UserStoreApplication, UserStoreSection,
                         std::string("GBRVIEWER_MAIN") + key, value);
    load();
    EXPECT_LT(window()->x(), area.width());
    EXPECT_EQ(std::tuple(window()->y(), window()->size()), std::tuple(10, QSize(700, 600)));
    component->NotifyMe("TARVEX", "All,EX");
    EXPECT_EQ(std::tuple(window()->isLoaded(), sent.size()), std::tuple(false, 2u))
        << "a window loaded again closes again";
  }
}

// The menu's display options keep their checks through "UP", and unload writes them.
TEST_F(MainWindowTest, DisplayOptionsFromTheMenuKeepTheirChecksAndAreWritten) {
  load();
  GBRVIEWER_MAIN& w = *window();
  const int32_t rebuilds = w.redraw().rebuilds();
  w.menuEntry("M_Mirror")->trigger();
  EXPECT_EQ(std::tuple(w.menuEntry("M_Mirror")->isChecked(), w.view().ViewFlags & viewflag::Mirror),
            std::tuple(true, viewflag::Mirror));
  for (bool mono : {true, false, true}) {
    w.menuEntry("M_Mono")->trigger();
    EXPECT_EQ(std::tuple(w.menuEntry("M_Mono")->isChecked(), w.layerTables().orderRow(1).Mono),
              std::tuple(mono, mono));
  }
  EXPECT_EQ(w.redraw().rebuilds(), rebuilds + 4);

  // "UP" applies the settings again and gives back the remembered flags; the view keeps its place.
  w.view().m_Precision = 4321;
  w.view().ViewCenterX = 1270000;
  component->NotifyMe("TARVEX", "All,UP");
  EXPECT_EQ(
      std::tuple(w.view().m_Precision, w.view().ViewCenterX, w.menuEntry("M_Mirror")->isChecked()),
      std::tuple(4321, 1270000, true));

  w.M_Mm_Click();
  component->NotifyMe("TARVEX", "All,EX");
  ASSERT_EQ(sent, shutdownOnly());
  EXPECT_EQ(w.CPDcId(), 0);
  SystemServices reader;
  reader.SetIniFile(ini);
  EXPECT_EQ(std::tuple(reader.GetIniString("GBRVIEWER", "UNIT", ""),
                       reader.GetIniString("GBRVIEWER", "VIEW", ""),
                       reader.GetIniString("GBRVIEWER", "GRID", "")),
            std::tuple("1", "1,1,1,1,1,0,1", "1"));
}

TEST_F(MainWindowTest, AnExcellonFileGoesIntoTheDrillLayerAndIsFitted) {
  const std::string path = write("board.drl", Drill);
  load();
  QFileDialog* request = window()->fileRequest();
  ASSERT_NE(request, nullptr);
  const int32_t precision = window()->view().m_Precision;
  request->selectFile(QString::fromStdString(path));
  QMetaObject::invokeMethod(request, "accept");
  QCoreApplication::processEvents();  // the import starts once the request has gone

  // The import window takes the file and imports it at once: a drill file has its layer.
  EXPECT_EQ(std::tuple(drillEntries(), prompts.shown.size(), window()->isEnabled()),
            std::tuple(3, 0u, true));
  GBRVIEWER_IMPORT* importWindow = window()->importWindow();
  ASSERT_NE(importWindow, nullptr);
  EXPECT_TRUE(importWindow->isVisible() && window()->importDialogVisible());
  EXPECT_GT(importWindow->grid().rowCount(), 0);
  // A second file request waits until the window is closed.
  window()->importChosenFile(path);
  EXPECT_EQ(window()->importWindow(), importWindow);

  // Closing it makes the imported layer the current one, on top.
  importWindow->close();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_EQ(std::tuple(window()->importWindow(), window()->importDialogVisible()),
            std::tuple(nullptr, false));
  const LayerTables& layers = window()->layerTables();
  EXPECT_EQ(std::tuple(layers.CurrentLayer, layers.orderRow(1).LayerNumber,
                       layers.layer(DrillLayer).Active),
            std::tuple(DrillLayer, DrillLayer, true));
  EXPECT_NE(window()->view().m_Precision, precision);
  EXPECT_EQ(std::tuple(window()->settings().ImpDir, window()->currentFunction()),
            std::tuple(folder.path().toStdString(), 1));
}

TEST_F(MainWindowTest, AnUnknownFileIsReportedAndMayBeOpenedAsText) {
  const std::string path = write("notes.txt", "just some words\n");
  // What the desktop's handler would open lands in this browser instead.
  QTextBrowser opened;
  QDesktopServices::setUrlHandler("file", &opened, "setSource");
  load();
  prompts.answers = {answer::Ok, answer::No};
  window()->importChosenFile(path);
  ASSERT_EQ(prompts.shown.size(), 2u);
  EXPECT_NE(prompts.shown[0].prompt.find(path), std::string::npos);
  EXPECT_EQ(std::tuple(prompts.shown[1].prompt, prompts.shown[1].title, opened.source().isEmpty()),
            std::tuple("Display file?", "Unrecognized  format", true));

  prompts.answers = {answer::Ok, answer::Yes};
  window()->importChosenFile(path);
  EXPECT_EQ(std::tuple(opened.source().toLocalFile().toStdString(), drillEntries(),
                       window()->isEnabled()),
            std::tuple(path, 0, true));
  QDesktopServices::unsetUrlHandler("file");
}

TEST_F(MainWindowTest, HostFilesAreImportedInPlaceOfTheRequest) {
  const std::string path = write("board.drl", Drill);
  window()->setStartupFiles({path, folder.filePath("missing.drl").toStdString()});
  load();
  EXPECT_EQ(window()->fileRequest(), nullptr);
  EXPECT_EQ(drillEntries(), 3);
  // The missing file was reported, and the good one still shows.
  ASSERT_FALSE(prompts.shown.empty());
  EXPECT_NE(prompts.shown.back().prompt.find("missing.drl"), std::string::npos);
  const FrameRect seen = window()->view().ViewRect;
  EXPECT_TRUE(seen.MinX <= 254000 && seen.MaxX >= 1270000 && seen.MinY <= 254000 &&
              seen.MaxY >= 1016000);

  // A batch that changes the current layer draws the view once, fitted, at its end.
  const std::string plot = write("board.plt", "IN;SP1;PU0,0;PD4000,0,4000,4000;");
  const int32_t before = window()->redraw().rebuilds();
  ASSERT_EQ(window()->importFiles({plot}), 1);
  EXPECT_NE(window()->layerTables().CurrentLayer, 31);
  EXPECT_EQ(window()->redraw().rebuilds(), before + 1);
}

// Key 0 of function 1 opens the current layer's properties with their tool; another layer
// closes them, which ends the tool and puts out the lit tool.
TEST_F(MainWindowTest, LayerPropertiesFollowTheCurrentLayer) {
  window()->setStartupFiles({write("board.drl", Drill)});
  load();
  GBRVIEWER_MAIN& w = *window();
  ASSERT_EQ(w.layerTables().CurrentLayer, DrillLayer);
  w.functionKeys().RunFunctionCommand(0, 0, true);
  ASSERT_NE(w.layerPropertiesWindow(), nullptr);
  EXPECT_TRUE(w.PropertiesOpen);
  EXPECT_EQ(w.layerPropertiesWindow()->model().DialogLayer, DrillLayer);
  EXPECT_EQ(w.pointerTools().ToolCode, toolcode::LayerProperties);
  w.redraw().HLPadstack = 1;
  w.menuEntry("M_ActiveCategories_3")->trigger();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_EQ(w.layerPropertiesWindow(), nullptr);
  EXPECT_FALSE(w.PropertiesOpen);
  EXPECT_EQ(w.pointerTools().ToolCode, toolcode::None);
  EXPECT_EQ(w.redraw().HLPadstack, 0);
}

// The unload with the layer properties open replaces the settings file once, the places of both
// windows in it. A settings file made read-only stays as it was, and of the two saves that fail
// (the properties closed, then the unload) only the first is said.
TEST_F(MainWindowTest, AnUnloadIsOneReplacementOfTheSettingsFileAndAFailureIsSaidOnce) {
  namespace fs = std::filesystem;
  const std::string before = "[GBRVIEWER]\nUNIT=1\n";
  for (bool readOnly : {false, true}) {
    SCOPED_TRACE(readOnly);
    write("tarvex.ini", before);
    fs::permissions(ini, readOnly ? fs::perms::owner_read : fs::perms::owner_all);
    prompts.shown.clear();
    window()->setUserStore(nullptr);  // the places go to the settings file
    window()->setStartupFiles({write("board.drl", Drill)});
    load();
    window()->functionKeys().RunFunctionCommand(0, 0, true);
    ASSERT_NE(window()->layerPropertiesWindow(), nullptr);
    if (readOnly)
      window()->layerPropertiesWindow()->close();
    int replacements = 0;
    setAtomicWriteStepHook(
        [&](AtomicWriteStep step) { replacements += step == AtomicWriteStep::Rename; });
    component->NotifyMe("TARVEX", "All,EX");
    setAtomicWriteStepHook({});
    SystemServices reader;
    reader.SetIniFile(ini);
    const auto saved = [&](const char* key) {
      return !reader.GetIniString("Tarvex.TVNGBRVIEWER", key, "").empty();
    };
    if (!readOnly) {
      EXPECT_EQ(std::tuple(replacements, saved("GBRVIEWER_MAIN_WIDTH"),
                           saved("GBRVIEWER_GISIMP_WIDTH"), prompts.shown.size()),
                std::tuple(1, true, true, size_t(0)));
      continue;
    }
    std::ifstream file(ini);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), before);
    ASSERT_EQ(prompts.shown.size(), 1u);
    EXPECT_EQ(prompts.shown[0].prompt, "Can't create/write to file: " + ini);
  }
}

}  // namespace
}  // namespace tvx::test
