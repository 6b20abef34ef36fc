// The help file names, the shipped help pages, and the help window's life.
#include "platform/widgets/HelpWindow.h"
#include "support/WidgetTestApplication.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTextBrowser>
#include <QUrl>

#include <memory>
#include <vector>

namespace tvx {
namespace {

const std::string HelpFile = HelpFileName(TVX_DATA_DIR, "tarvex_gbrviewer.so");

TEST(HelpWindowTest, HelpFileNames) {
  EXPECT_EQ(HelpFileName(" /opt/tarvex", "/lib/GBRVIEWER.DLL"), "/opt/tarvex/GBRVIEWER.HLP");
  EXPECT_EQ(HelpFileName("/opt/tarvex/", "viewer"), "/opt/tarvex/viewer.HLP");
  EXPECT_EQ(CompiledHelpFile("/opt/tarvex/GBRVIEWER.HLP"), "/opt/tarvex/GBRVIEWER.chm");
  EXPECT_EQ(HelpIndexPage("/opt/tarvex/GBRVIEWER.HLP"), "/opt/tarvex/help/index.html");
}

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
  EXPECT_TRUE(help.isOpen());
  QTextBrowser* browser = help.browser();
  ASSERT_NE(browser, nullptr);
  EXPECT_TRUE(browser->isWindow());
  EXPECT_TRUE(browser->isVisible());
  EXPECT_EQ(browser->parentWidget(), &owner);
  EXPECT_EQ(browser->windowTitle(), "Fabrication Graphics Viewer - Help");

  // Links are followed in the window; asking again brings the same window back to the index.
  browser->setSource(QUrl("layers.html"));
  EXPECT_EQ(browser->windowTitle(), "Layers");
  ASSERT_TRUE(help.ShowHelp());
  EXPECT_EQ(help.browser(), browser);
  EXPECT_EQ(browser->source().fileName(), "index.html");

  const QPointer<QTextBrowser> watch(browser);
  help.closeHelp();
  EXPECT_FALSE(help.isOpen());
  EXPECT_TRUE(watch.isNull());

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
  EXPECT_TRUE(help.isOpen());
  EXPECT_EQ(help.browser(), nullptr) << "no window of its own";
  help.closeHelp();
  EXPECT_FALSE(help.isOpen());
  accept = false;
  EXPECT_FALSE(help.ShowHelp());
  EXPECT_FALSE(help.isOpen());

  QTemporaryDir empty;
  HelpWindow nowhere(HelpFileName(empty.path().toStdString(), "tarvex_gbrviewer.so"));
  EXPECT_FALSE(nowhere.ShowHelp());
  EXPECT_FALSE(nowhere.isOpen());
  EXPECT_EQ(nowhere.browser(), nullptr);
}

}  // namespace
}  // namespace tvx
