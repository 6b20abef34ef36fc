// Widgets of the platform: the help file names, the shipped help pages and the help window's life;
// translating windows by their tags and the choice of the interface font; top-most windows, waiting
// while a flag is set, the printer's state, and window places in the per-user store.
#include "platform/InterfaceFont.h"
#include "platform/SystemServices.h"
#include "platform/UserStore.h"
#include "platform/widgets/HelpWindow.h"
#include "platform/widgets/LocalizeForm.h"
#include "platform/widgets/WindowHelpers.h"
#include "platform/widgets/WindowPlace.h"
#include "support/WidgetTestApplication.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGroupBox>
#include <QLabel>
#include <QLocale>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QRegularExpression>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTextBrowser>
#include <QTimer>
#include <QUrl>
#include <QWidget>
#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <vector>

namespace tvx {
namespace {

const std::string HelpFile = HelpFileName(TVX_DATA_DIR, "tarvex_gbrviewer.so");

TEST(HelpWindowTest, ShippedPagesLinkEachOther) {
  const QDir help(QFileInfo(QString::fromStdString(HelpIndexPage(HelpFile))).path());
  const QStringList pages = help.entryList({"*.html"}, QDir::Files);
  ASSERT_GE(pages.size(), 6);
  const QRegularExpression link(R"(href="([^"#:]+)[#"])");
  QStringList fromIndex;
  for (const QString& page : pages) {
    SCOPED_TRACE(page.toStdString());
    QFile file(help.filePath(page));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(file.readAll());
    EXPECT_TRUE(text.contains(QRegularExpression("<title>[^<]+</title>")));
    QStringList targets;
    for (auto it = link.globalMatch(text); it.hasNext();)
      targets << it.next().captured(1);
    for (const QString& target : targets)
      EXPECT_TRUE(QFileInfo::exists(help.filePath(target))) << target.toStdString();
    if (page == "index.html")
      fromIndex = targets;
    else
      EXPECT_TRUE(targets.contains("index.html")) << "every page leads back to the contents";
  }
  for (const QString& page : pages)
    EXPECT_TRUE(page == "index.html" || fromIndex.contains(page)) << page.toStdString();
}

TEST(HelpWindowTest, ShowHelpOpensTheIndexAndCloseHelpClosesIt) {
  test::widgetTestApplication();
  QWidget owner;
  HelpWindow help(HelpFile, &owner);
  EXPECT_FALSE(help.isOpen());
  ASSERT_TRUE(help.ShowHelp());
  QTextBrowser* browser = help.browser();
  ASSERT_NE(browser, nullptr);
  EXPECT_EQ(std::tuple(help.isOpen(), browser->isWindow(), browser->isVisible(),
                       browser->parentWidget(), browser->windowTitle()),
            std::tuple(true, true, true, &owner, "Fabrication Graphics Viewer - Help"));

  // Links are followed in the window; asking again brings the same window back to the index.
  browser->setSource(QUrl("layers.html"));
  EXPECT_EQ(browser->windowTitle(), "Layers");
  ASSERT_TRUE(help.ShowHelp());
  EXPECT_EQ(std::tuple(help.browser(), browser->source().fileName()),
            std::tuple(browser, "index.html"));

  const QPointer<QTextBrowser> watch(browser);
  help.closeHelp();
  EXPECT_EQ(std::tuple(help.isOpen(), watch.isNull()), std::tuple(false, true));

  // The owner may go first, taking the window with it.
  auto owner2 = std::make_unique<QWidget>();
  HelpWindow second(HelpFile, owner2.get());
  ASSERT_TRUE(second.ShowHelp());
  owner2.reset();
  EXPECT_EQ(second.browser(), nullptr);
  second.closeHelp();
  EXPECT_FALSE(second.isOpen());
}

TEST(HelpWindowTest, DesktopBrowserAndMissingPages) {
  test::widgetTestApplication();
  std::vector<QUrl> asked;
  bool accept = true;
  HelpWindow help(HelpFile, nullptr, HelpWindow::Viewer::DesktopBrowser, [&](const QUrl& url) {
    asked.push_back(url);
    return accept;
  });
  ASSERT_TRUE(help.ShowHelp());
  ASSERT_EQ(asked.size(), 1u);
  EXPECT_EQ(QFileInfo(asked[0].toLocalFile()).canonicalFilePath(),
            QFileInfo(QString::fromStdString(HelpIndexPage(HelpFile))).canonicalFilePath());
  EXPECT_EQ(std::tuple(help.isOpen(), help.browser()), std::tuple(true, nullptr))
      << "no window of its own";
  help.closeHelp();
  EXPECT_FALSE(help.isOpen());
  accept = false;
  EXPECT_FALSE(help.ShowHelp());
  EXPECT_FALSE(help.isOpen());

  QTemporaryDir empty;
  HelpWindow nowhere(HelpFileName(empty.path().toStdString(), "tarvex_gbrviewer.so"));
  EXPECT_FALSE(nowhere.ShowHelp());
  EXPECT_EQ(std::tuple(nowhere.isOpen(), nowhere.browser()), std::tuple(false, nullptr));
}

struct Window {
  QWidget form;
  QPushButton* cancel = new QPushButton("Cancel", &form);
  QLabel* untagged = new QLabel("Scale:", &form);
  QGroupBox* group = new QGroupBox("Unit", &form);
  QTabWidget* tabs = new QTabWidget(&form);
  QWidget* page = new QWidget;
  QMenuBar* bar = new QMenuBar(&form);
  QMenu* menu = bar->addMenu("&Help");
  QAction* close = menu->addAction("Close");

  Window() {
    form.setWindowTitle("Fabrication Graphics Viewer");
    form.setProperty(TagProperty, "62104");
    cancel->setProperty(TagProperty, "99388");
    group->setProperty(TagProperty, "62315");
    tabs->addTab(page, "View");
    page->setProperty(TagProperty, "62311");
    menu->setProperty(TagProperty, "99746");
    close->setProperty(TagProperty, "99422");
    QFont bold = untagged->font();
    bold.setBold(true);
    untagged->setFont(bold);
  }
  std::vector<QString> captions() const {
    return {form.windowTitle(), cancel->text(), untagged->text(), group->title(),
            tabs->tabText(0),   menu->title(),  close->text()};
  }
};

TEST(LocalizeForm, TagsTakeTheCatalogueTextAndFallBackToTheDesignCaption) {
  test::widgetTestApplication();
  Window w;
  SystemServices services;
  InterfaceFont font{"DejaVu Sans", 11, 0};

  services.loadCatalogue(std::string(TVX_SOURCE_DIR) + "/data/COUNTRY/German");
  LocalizeForm(&w.form, services, font);
  EXPECT_EQ(w.captions(), (std::vector<QString>{"Fertigungsdaten-Betrachter", "Abbrechen",
                                                "Scale:", "Einheit", "Ansicht", "Hilfe",
                                                QString::fromUtf8("Schlie\xC3\x9F"
                                                                  "en")}));

  // A catalogue that lacks the ids gives back the design captions, not the German ones.
  QTemporaryDir dir;
  std::ofstream(dir.filePath("GBRVIEWER.MSG").toStdString()) << "99388\tAnnuler\n";
  services.loadCatalogue(dir.path().toStdString());
  LocalizeForm(&w.form, services, font);
  EXPECT_EQ(w.captions(), (std::vector<QString>{"Fabrication Graphics Viewer", "Annuler",
                                                "Scale:", "Unit", "View", "&Help", "Close"}));

  EXPECT_EQ(std::tuple(w.form.font().family(), w.form.font().pointSize(),
                       w.untagged->font().family(), w.untagged->font().bold()),
            std::tuple("DejaVu Sans", 11, "DejaVu Sans", false));
}

TEST(LocalizeForm, ClassicGreyBackgroundBecomesTheDesktopColour) {
  test::widgetTestApplication();
  QWidget grey, blue;
  QPalette p = grey.palette();
  p.setColor(QPalette::Window, QColor(192, 192, 192));
  grey.setPalette(p);
  p.setColor(QPalette::Window, QColor(0, 0, 255));
  blue.setPalette(p);
  SystemServices services;
  LocalizeForm(&grey, services, InterfaceFont{});
  LocalizeForm(&blue, services, InterfaceFont{});
  EXPECT_EQ(grey.palette().color(QPalette::Window),
            QApplication::palette().color(QPalette::Window));
  EXPECT_EQ(blue.palette().color(QPalette::Window), QColor(0, 0, 255));
  LocalizeForm(nullptr, services, InterfaceFont{});
}

TEST(InterfaceFont, CharacterSetsAndScriptsByLanguage) {
  const std::tuple<const char*, CjkScript, int32_t> cases[] = {
      {"en_US", CjkScript::None, 0},
      {"zh_TW", CjkScript::TraditionalChinese, 136},
      {"zh_CN", CjkScript::SimplifiedChinese, 134},
      {"ru_RU", CjkScript::None, 204}};
  for (const auto& [name, script, charset] : cases) {
    SCOPED_TRACE(name);
    QLocale locale(name);
    EXPECT_EQ(std::tuple(scriptNeeded(locale), charsetOf(locale), sampleCharacters(script).empty()),
              std::tuple(script, charset, script == CjkScript::None));
  }
}

TEST(InterfaceFont, AFamilyWithTheScriptIsChosenOnlyWhenTheDesktopFontLacksIt) {
  const std::string sample = sampleCharacters(CjkScript::Japanese);
  std::vector<std::string> asked;
  auto has = [&](const std::string& family, const std::string& s) {
    asked.push_back(family);
    EXPECT_EQ(s, sample);
    return family == "Gothic B" || family == "Gothic C";
  };
  EXPECT_EQ(chooseFamily("Desk", sample, {"Serif A", "Gothic B", "Gothic C"}, has), "Gothic B");
  EXPECT_EQ(asked, (std::vector<std::string>{"Desk", "Serif A", "Gothic B"}));
  EXPECT_EQ(chooseFamily("Gothic C", sample, {"Gothic B"}, has), "Gothic C");
  EXPECT_EQ(chooseFamily("Desk", sample, {"Serif A"}, has), "Desk");  // nothing better
  asked.clear();
  EXPECT_EQ(chooseFamily("Desk", "", {"Gothic B"}, has), "Desk");  // no script needed
  EXPECT_TRUE(asked.empty());

  // On this machine: the desktop's font for a Western language; the character set as the table
  // says for Japanese, whatever fonts are installed.
  test::widgetTestApplication();
  InterfaceFont western = SelectInterfaceFont(QLocale("en_US"));
  InterfaceFont japanese = SelectInterfaceFont(QLocale("ja_JP"));
  EXPECT_GT(western.Size, 0);
  EXPECT_EQ(
      std::tuple(western.Name.empty(), western.Charset, japanese.Name.empty(), japanese.Charset),
      std::tuple(false, 0, false, 128));
}

TEST(WindowHelpersTest, SetTopMostKeepsPlaceSizeAndVisibility) {
  test::widgetTestApplication();
  QWidget shown, hidden;
  shown.setGeometry(120, 80, 320, 240);
  shown.show();
  hidden.setGeometry(10, 20, 200, 100);
  for (bool flag : {true, false}) {
    for (QWidget* window : {&shown, &hidden}) {
      const bool visible = window->isVisible();
      const QRect before = window->geometry();
      SetTopMost(*window, flag);
      EXPECT_EQ(std::tuple(window->windowFlags().testFlag(Qt::WindowStaysOnTopHint),
                           window->isVisible(), window->geometry()),
                std::tuple(flag, visible, before));
    }
  }
}

TEST(WindowHelpersTest, WaitWhileSetServesEventsUntilTheFlagIsCleared) {
  test::widgetTestApplication();
  int16_t running = 0;
  std::vector<int> seen;  // what the event handlers saw, in order
  QTimer::singleShot(0, [&] { seen.push_back(running); });
  QTimer::singleShot(150, [&] { seen.push_back(running); });
  QTimer::singleShot(300, [&] {
    seen.push_back(running);
    running = 0;  // the modeless step ends
  });
  WaitWhileSet(running);
  EXPECT_EQ(running, 0);
  EXPECT_EQ(seen, (std::vector<int>{-1, -1, -1})) << "the flag is set before events are served";

  bool open = false, sawSet = false;
  QTimer::singleShot(0, [&] {
    sawSet = open;
    open = false;
  });
  WaitWhileSet(open);
  EXPECT_TRUE(sawSet);
}

TEST(WindowHelpersTest, PrinterReadyNeedsAPrinterAndAReadableDefault) {
  EXPECT_EQ(std::tuple(IsPrinterReady(PrinterState{0, true}),
                       IsPrinterReady(PrinterState{2, false}),
                       IsPrinterReady(PrinterState{1, true})),
            std::tuple(false, false, true));
}

// A work area of 1280 x 800 pixels: 19200 x 12000 twips, fortieths of 480 and 300.
constexpr WorkArea Work{1280 * TwipsPerPixel, 800 * TwipsPerPixel};
constexpr int32_t PresentWidth = 6000, PresentHeight = 4500;

// Top, Left, Width, Height, to compare whole places.
auto fields(const WindowPlace& p) { return std::make_tuple(p.Top, p.Left, p.Width, p.Height); }

TEST(WindowPlaceTest, CorrectionsOfTheStoredPlace) {
  // The stored top, left, height and width; whether the place is usable, and the place.
  const std::tuple<const char*, const char*, const char*, const char*, bool, WindowPlace> cases[] =
      {{"1500", "3000", "7200", "9600", true, {1500, 3000, 9600, 7200}},
       {"11700", "100", "4000", "5000", true, {11700, 100, 5000, 4000}},  // the fortieth fits
       {"11701", "100", "4000", "5000", false, {0, 100, 5000, 4000}},     // bottom fortieth
       {"100", "18720", "4000", "5000", true, {100, 18720, 5000, 4000}},
       {"100", "18721", "4000", "5000", false, {100, 0, 5000, 4000}},  // right fortieth
       {"-1", "300", "4000", "5000", false, {0, 300, 5000, 4000}},
       {"300", "-150", "4000", "5000", false, {300, 0, 5000, 4000}},
       // Sizes below 1 take the present ones and leave the place usable.
       {"300", "450", "0", "-20", true, {300, 450, PresentWidth, PresentHeight}},
       {"300", "450", "0.4", "5000", true, {300, 450, 5000, PresentHeight}},
       // Whole numbers, a half to the even neighbour; text without a number is -1.
       {" 300 ", "+450", "4000.5", "5001.5", true, {300, 450, 5002, 4000}},
       {"abc", "450", "4000", "12mm", false, {0, 450, PresentWidth, 4000}}};
  for (const auto& [top, left, height, width, usable, expected] : cases) {
    SCOPED_TRACE(std::string(top) + "|" + left + "|" + height + "|" + width);
    MemoryUserStore store;
    for (auto [key, value] : {std::pair{"_TOP", top}, std::pair{"_LEFT", left},
                              std::pair{"_HEIGHT", height}, std::pair{"_WIDTH", width}})
      store.SaveSetting("Tarvex", "TVNGBRVIEWER", std::string("W") + key, value);
    WindowPlace place;
    EXPECT_EQ(RestoreWindowPlace(store, "W", Work, PresentWidth, PresentHeight, place), usable);
    EXPECT_EQ(fields(place), fields(expected));
  }
}

TEST(WindowPlaceTest, NoSavedPlaceAndTheStoreFile) {
  QTemporaryDir dir;
  ASSERT_TRUE(dir.isValid());
  QtUserStore store(dir.filePath("user.ini").toStdString());
  WindowPlace place{99, 99, 99, 99};
  EXPECT_FALSE(RestoreWindowPlace(store, "GBRVIEWER_MAIN", Work, 700, 500, place));
  EXPECT_EQ(fields(place), fields({0, 0, 700, 500}));

  SaveWindowPlace(store, "GBRVIEWER_MAIN", {15, 30, 9000, 6000});
  QtUserStore again(dir.filePath("user.ini").toStdString());
  EXPECT_EQ(again.GetSetting("Tarvex", "TVNGBRVIEWER", "GBRVIEWER_MAIN_HEIGHT", ""), "6000");
  EXPECT_EQ(again.GetSetting("Tarvex", "OTHER", "GBRVIEWER_MAIN_TOP", "none"), "none");
  EXPECT_TRUE(RestoreWindowPlace(again, "GBRVIEWER_MAIN", Work, 700, 500, place));
  EXPECT_EQ(fields(place), fields({15, 30, 9000, 6000}));
  EXPECT_FALSE(RestoreWindowPlace(again, "GBRVIEWER_IMPORT", Work, 700, 500, place))
      << "every window has keys of its own";
}

TEST(WindowPlaceTest, AWindowGoesBackWhereItWas) {
  test::widgetTestApplication();
  MemoryUserStore store;
  QWidget first;
  first.setObjectName("GBRVIEWER_IMPORT");
  first.move(40, 30);
  first.resize(300, 200);
  SaveWindowPlace(store, first);
  EXPECT_EQ(store.GetSetting("Tarvex", "TVNGBRVIEWER", "GBRVIEWER_IMPORT_TOP", ""), "450");
  EXPECT_EQ(store.GetSetting("Tarvex", "TVNGBRVIEWER", "GBRVIEWER_IMPORT_WIDTH", ""), "4500");

  QWidget second;
  second.setObjectName("GBRVIEWER_IMPORT");
  second.resize(120, 90);
  int32_t top = 0, left = 0, width = 0, height = 0;
  ASSERT_TRUE(RestoreWindowPlace(store, second, top, left, width, height));
  moveToPlace(second, {top, left, width, height});
  EXPECT_EQ(std::tuple(second.pos(), second.size()), std::tuple(QPoint(40, 30), QSize(300, 200)));
}

}  // namespace
}  // namespace tvx
