// The demo board through File > Print with real X input: the scale typed into the preview's
// box, the sheets shown as thumbnails, and Print All Pages into the PDF file the save dialog
// offers, whose pages join into the board at five times its size.
#include "e2e/HostDriver.h"

#include <QDir>
#include <QImage>
#include <QStandardPaths>

namespace {

using test::ScreenRect;

class PrintRoad : public test::HostDriver {
protected:
  // The fields of the PREVIEW query: sheets, across, down, scale, thumbnails shown, selected,
  // then the sheet's size as the status bar shows it.
  QStringList preview() {
    for (const QString& line : ask("TARVEX,PREVIEW", "PREVIEW,"))
      if (line.contains("PREVIEW,") && !line.contains("PREVIEW,NONE"))
        return line.section('\t', 1, 1).section(',', 1).split(',') << line.section('\t', 3, 3);
    return {};
  }
  void openPreview() {
    choose("M_File", "f", "M_Print");
    ASSERT_TRUE(test::waitUntil([&] { return preview().size() == 7; })) << "no preview";
  }
  void closePreview() {
    clickPlace("ATB_Precision");  // the preview takes the keys
    xdo({"key", "Escape"});
    ASSERT_TRUE(test::waitUntil([&] { return preview().isEmpty(); })) << "the preview stays";
  }
  void clickPlace(const QString& name) {
    const ScreenRect r = place("PLACE," + name, "PLACE,");
    ASSERT_TRUE(r.valid()) << name.toStdString();
    click(r, r.width / 2);
  }
  // The first column from the left of the outline's red along a row, -1 without one.
  static int redColumn(const QImage& page, int row, bool fromRight) {
    for (int i = 0; i < page.width(); ++i) {
      const int x = fromRight ? page.width() - 1 - i : i;
      const QRgb c = page.pixel(x, row);
      if (qRed(c) > 150 && qGreen(c) < 120 && qBlue(c) < 120)
        return x;
    }
    return -1;
  }
};

TEST_F(PrintRoad, FiveToOneShowsTwoSheetsThatPrintIntoOneBoard) {
  // The save dialog starts in the import folder.
  const QString folder = home.filePath("prints");
  ASSERT_TRUE(QDir().mkpath(folder));
  QFile settings(home.filePath("config/tarvex/tarvex.ini"));
  ASSERT_TRUE(settings.open(QIODevice::Append));
  settings.write(("ImpDir=" + folder + "\r\n").toUtf8());
  settings.close();
  startOnAllLayers();

  openPreview();
  clickPlace("ATB_Precision");
  xdo({"key", "ctrl+a"});
  xdo({"type", "--delay", "20", "5:1"});
  xdo({"key", "Return"});
  QStringList state;
  ASSERT_TRUE(test::waitUntil([&] {
    state = preview();
    return state.size() == 7 && state[3] == "5:1";
  })) << state.join(',').toStdString();
  EXPECT_EQ(state[0], "2") << "sheets";
  EXPECT_EQ(state[4], "2") << "thumbnails";
  // A click selects the second sheet, the left arrow goes back to the first.
  clickPlace("ViewPicture_2");
  EXPECT_TRUE(test::waitUntil([&] { return preview().value(5) == "2"; })) << "sheet 2";
  xdo({"key", "Left"});
  EXPECT_TRUE(test::waitUntil([&] { return preview().value(5) == "1"; })) << "sheet 1";

  clickPlace("ATB_PrintAll");
  const QString dialog = visibleWindow("Save As");
  ASSERT_FALSE(dialog.isEmpty()) << "no save dialog";
  xdo({"windowfocus", "--sync", dialog});
  xdo({"key", "Return"});
  const QString pdf = QDir(folder).filePath("PrintOut_1.pdf");
  ASSERT_TRUE(test::waitUntil([&] { return QFileInfo(pdf).size() > 1000; }, 30000))
      << "PrintOut_1.pdf was not written";
  // The pass ends its document before the window takes commands again.
  ASSERT_TRUE(test::waitUntil([&] { return preview().size() == 7; }));
  closePreview();

  if (QStandardPaths::findExecutable("pdftoppm").isEmpty())
    GTEST_SKIP() << "pdftoppm is needed to look at the pages";
  QProcess pages;
  pages.start("pdftoppm", {"-r", "100", "-png", pdf, home.filePath("page")});
  ASSERT_TRUE(pages.waitForFinished(60000));
  const QImage first(home.filePath("page-1.png")), second(home.filePath("page-2.png"));
  ASSERT_FALSE(first.isNull());
  ASSERT_FALSE(second.isNull());
  EXPECT_FALSE(QFileInfo::exists(home.filePath("page-3.png")));
  // The board is 40 mm wide: its left edge on the first sheet and its right edge on the second
  // lie 200 mm apart once the second sheet stands to the right of the first.
  const int row = first.height() / 8;
  const int left = redColumn(first, row, false), right = redColumn(second, row, true);
  ASSERT_GE(left, 0);
  ASSERT_GE(right, 0);
  const double mm = (right + first.width() - left) * 25.4 / 100;
  EXPECT_NEAR(mm, 200.0, 1.0);
}

TEST_F(PrintRoad, PaperChosenInPageSetupIsThereWhenThePreviewOpensAgain) {
  startOnAllLayers();
  openPreview();
  EXPECT_TRUE(preview().last().startsWith("P:8.2")) << "A4 portrait in inches";
  clickPlace("ATB_PageSetup");
  ScreenRect paper;
  ASSERT_TRUE(test::waitUntil([&] {
    return (paper = place("PLACE,pageSizeCombo", "PLACE,")).valid();
  })) << "no page dialog";
  click(paper, paper.width / 2);
  xdo({"key", "Up"});  // the list opens on A4, A3 stands above it
  xdo({"key", "Return"});
  clickPlace("landscape");
  xdo({"key", "Return"});
  ASSERT_TRUE(test::waitUntil([&] { return preview().value(6).startsWith("P:16.5"); }))
      << preview().join(',').toStdString();
  closePreview();
  openPreview();
  EXPECT_TRUE(preview().value(6).startsWith("P:16.5")) << "A3 landscape: 16.54 inches wide";
}

}  // namespace
