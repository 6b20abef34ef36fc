// Translating windows by their tags, and the choice of the interface font.
#include "platform/widgets/LocalizeForm.h"
#include "platform/InterfaceFont.h"
#include "platform/SystemServices.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>

#include "support/WidgetTestApplication.h"
#include <QGroupBox>
#include <QLabel>
#include <QLocale>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QVBoxLayout>

#include <fstream>

namespace tvx {
namespace {

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

  EXPECT_EQ(w.form.font().family(), "DejaVu Sans");
  EXPECT_EQ(w.form.font().pointSize(), 11);
  EXPECT_EQ(w.untagged->font().family(), "DejaVu Sans");
  EXPECT_FALSE(w.untagged->font().bold());
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
  struct Case {
    const char* locale;
    CjkScript script;
    int32_t charset;
  } cases[] = {
      {"en_US", CjkScript::None, 0},
      {"zh_TW", CjkScript::TraditionalChinese, 136},
      {"zh_HK", CjkScript::TraditionalChinese, 136},
      {"zh_CN", CjkScript::SimplifiedChinese, 134},
      {"ja_JP", CjkScript::Japanese, 128},
      {"ko_KR", CjkScript::Korean, 129},
      {"ru_RU", CjkScript::None, 204},
      {"pl_PL", CjkScript::None, 238},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.locale);
    QLocale locale(c.locale);
    EXPECT_EQ(scriptNeeded(locale), c.script);
    EXPECT_EQ(charsetOf(locale), c.charset);
    EXPECT_EQ(sampleCharacters(c.script).empty(), c.script == CjkScript::None);
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
  EXPECT_FALSE(western.Name.empty());
  EXPECT_GT(western.Size, 0);
  EXPECT_EQ(western.Charset, 0);
  InterfaceFont japanese = SelectInterfaceFont(QLocale("ja_JP"));
  EXPECT_EQ(japanese.Charset, 128);
  EXPECT_FALSE(japanese.Name.empty());
}

}  // namespace
}  // namespace tvx
