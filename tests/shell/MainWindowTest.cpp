// The main window's start-up effects, its positioning, the unload's writing, the file-open command
// and the menu's display options.
#include "ComponentTestSupport.h"

#include "import/readers/window/widgets/GBRVIEWER_IMPORT.h"
#include "import/readers/window/widgets/ImportPropertyGrid.h"
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

namespace tvx::test {

namespace {

constexpr const char* Drill = "M48\r\nINCH,TZ\r\nT1C0.04\r\n%\r\nT1\r\nX1000Y1000\r\nX5000Y1000\r\n"
                              "X3000Y4000\r\nM30\r\n";

class MainWindowTest : public ComponentTest {
protected:
  void SetUp() override {
    ComponentTest::SetUp();
    ASSERT_TRUE(folder.isValid());
    ini = folder.filePath("tarvex.ini").toStdString();
    kernel.strings.E_SetString(IniFileString, ini);
    window()->setUserStore(&places);
  }

  std::string write(const char* name, const std::string& text) {
    QFile file(folder.filePath(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text.data(), qint64(text.size()));
    return file.fileName().toStdString();
  }
  int32_t drillEntries() {
    return kernel.store.OA_GetCount(
        kernel.store.S_SymbolEntryArray(window()->layerTables().layer(DrillLayer).SymbolHandle));
  }
  std::string place(const std::string& key) {
    return places.GetSetting(UserStoreApplication, UserStoreSection, "GBRVIEWER_MAIN" + key, "");
  }

  QTemporaryDir folder;
  std::string ini;
  MemoryUserStore places;
};

TEST_F(MainWindowTest, StartUpEndsIdleWithTheFileRequestOpen) {
  write("tarvex.ini", "[GBRVIEWER]\nUNIT=1\nVIEW=1,0,0,1,1,1,0\n");
  load();
  GBRVIEWER_MAIN& w = *window();
  EXPECT_FALSE(w.ExitAnyWay());
  EXPECT_NE(w.CPDcId(), 0);
  EXPECT_EQ(w.busyPicture(), IdlePicture);
  EXPECT_TRUE(w.viewPicture()->isEnabled());
  EXPECT_EQ(w.languagePath(), kernelString(LanguagePathString));
  ASSERT_NE(w.statusPanel(BusyPanel), nullptr);
  ASSERT_NE(w.statusPanel(MessagePanel), nullptr);

  // The viewer's settings reached the view and its menu entries; mono never starts on.
  EXPECT_EQ(w.view().DisplayUnit, 1);
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
  w.setPointerToolActive(true);
  esc->click();
  EXPECT_FALSE(w.pointerToolActive());
}

TEST_F(MainWindowTest, AMissingMenuFileEndsStartUp) {
  QTemporaryDir empty;
  window()->setAppPath(empty.path().toStdString());
  int16_t mode = windowstate::Normal;
  EXPECT_EQ(component->Load(mode), 0);
  EXPECT_FALSE(window()->isVisible());
  EXPECT_FALSE(window()->isLoaded());
  EXPECT_EQ(sent, shutdownOnly());
  // Nothing was released or written: the start-up had not got that far.
  EXPECT_EQ(kernelString(ComponentName), "");
  EXPECT_TRUE(places.values.empty());
  EXPECT_FALSE(QFile::exists(QString::fromStdString(ini)));
}

TEST_F(MainWindowTest, PositionComesFromThePlaceAndStaysOnTheScreen) {
  const QRect area = QGuiApplication::primaryScreen()->availableGeometry();
  {
    SCOPED_TRACE("nothing saved: the whole work area");
    load();
    const QRect got = window()->geometry();
    EXPECT_LE(std::abs(got.width() - area.width()), 4);
    EXPECT_LE(std::abs(got.height() - area.height()), 4);
    EXPECT_LE(std::abs(got.left() - area.left()), 4);
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
    EXPECT_EQ(window()->y(), 10);
    EXPECT_EQ(window()->size(), QSize(700, 600));
  }
}

TEST_F(MainWindowTest, TheWindowCannotBeMadeSmallerThanAtLoad) {
  load();
  window()->resize(200, 150);
  EXPECT_GE(window()->width(), int(window()->MinWidth()));
  EXPECT_GE(window()->height(), int(window()->MinHeight()));
}

// The menu's display options keep their checks through "UP", and unload writes them.
TEST_F(MainWindowTest, DisplayOptionsFromTheMenuKeepTheirChecksAndAreWritten) {
  load();
  GBRVIEWER_MAIN& w = *window();
  const int32_t rebuilds = w.redraw().rebuilds();
  w.menuEntry("M_Mirror")->trigger();
  EXPECT_TRUE(w.menuEntry("M_Mirror")->isChecked());
  EXPECT_EQ(w.view().ViewFlags & viewflag::Mirror, viewflag::Mirror);
  for (bool mono : {true, false, true}) {
    w.menuEntry("M_Mono")->trigger();
    EXPECT_EQ(w.menuEntry("M_Mono")->isChecked(), mono);
    EXPECT_EQ(w.layerTables().orderRow(1).Mono, mono);
  }
  EXPECT_EQ(w.redraw().rebuilds(), rebuilds + 4);

  // "UP" applies the settings again and gives back the remembered flags; the view keeps its place.
  w.view().m_Precision = 4321;
  w.view().ViewCenterX = 1270000;
  component->NotifyMe("TARVEX", "All,UP");
  EXPECT_EQ(w.view().m_Precision, 4321);
  EXPECT_EQ(w.view().ViewCenterX, 1270000);
  EXPECT_TRUE(w.menuEntry("M_Mirror")->isChecked());

  w.M_Mm_Click();
  component->NotifyMe("TARVEX", "All,EX");
  ASSERT_EQ(sent, shutdownOnly());
  EXPECT_EQ(w.CPDcId(), 0);
  SystemServices reader;
  reader.SetIniFile(ini);
  EXPECT_EQ(reader.GetIniString("GBRVIEWER", "UNIT", ""), "1");
  EXPECT_EQ(reader.GetIniString("GBRVIEWER", "VIEW", ""), "1,1,1,1,1,0,1");
  EXPECT_EQ(reader.GetIniString("GBRVIEWER", "GRID", ""), "1");
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
  EXPECT_EQ(drillEntries(), 3);
  EXPECT_TRUE(prompts.shown.empty());
  EXPECT_TRUE(window()->isEnabled());
  GBRVIEWER_IMPORT* importWindow = window()->importWindow();
  ASSERT_NE(importWindow, nullptr);
  EXPECT_TRUE(importWindow->isVisible());
  EXPECT_TRUE(window()->importDialogVisible());
  EXPECT_GT(importWindow->grid().rowCount(), 0);
  // A second file request waits until the window is closed.
  window()->importChosenFile(path);
  EXPECT_EQ(window()->importWindow(), importWindow);

  // Closing it makes the imported layer the current one, on top.
  importWindow->close();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_EQ(window()->importWindow(), nullptr);
  EXPECT_FALSE(window()->importDialogVisible());
  EXPECT_EQ(window()->layerTables().CurrentLayer, DrillLayer);
  EXPECT_EQ(window()->layerTables().orderRow(1).LayerNumber, DrillLayer);
  EXPECT_TRUE(window()->layerTables().layer(DrillLayer).Active);
  EXPECT_NE(window()->view().m_Precision, precision);
  EXPECT_EQ(window()->settings().ImpDir, folder.path().toStdString());
  EXPECT_EQ(window()->currentFunction(), 1);
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
  EXPECT_EQ(prompts.shown[1].prompt, "Display file?");
  EXPECT_EQ(prompts.shown[1].title, "Unrecognized  format");
  EXPECT_TRUE(opened.source().isEmpty());

  prompts.answers = {answer::Ok, answer::Yes};
  window()->importChosenFile(path);
  EXPECT_EQ(opened.source().toLocalFile().toStdString(), path);
  EXPECT_EQ(drillEntries(), 0);
  EXPECT_TRUE(window()->isEnabled());
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
  EXPECT_LE(seen.MinX, 254000);
  EXPECT_GE(seen.MaxX, 1270000);
  EXPECT_LE(seen.MinY, 254000);
  EXPECT_GE(seen.MaxY, 1016000);
}

}  // namespace
}  // namespace tvx::test
