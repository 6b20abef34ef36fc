// A plain RS-274-D file gets its sizes from an aperture table the user makes in the window
// "Aperture Tables", through the real windows with real X input.
#include "e2e/HostDriver.h"
#include "support/CorpusPath.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

using test::inkOf;
using test::ScreenRect;

using ApertureTableRoad = test::HostDriver;

TEST_F(ApertureTableRoad, ATableMadeInTheWindowSizesThePlainFileAndIsKept) {
  const QString name = "E2EROAD";
  // The tables live in the data folder beside the programs.
  const QString table = QFileInfo(test::binary("gbrview")).absolutePath() + "/SYS/" + name + ".APT";
  QFile::remove(table);
  const QString plain = writeHomeFile("plain.gbr", test::PlainTracesAndPads);
  importIntoLayer(plain, "Artwork Top");
  auto rows = importRows();
  EXPECT_EQ(rows["Aperture Table"], "NONE");

  // The table: 0.254 mm drawn by D10, 1.6 mm flashed round by D11, saved under its name.
  const ScreenRect button = place("CELL,Aperture Table", "CELL,");
  ASSERT_TRUE(button.valid());
  click(button, button.width / 2);
  ASSERT_FALSE(visibleWindow("Aperture Tables").isEmpty());
  const ScreenRect mm = place("PLACE,cmdInsSize1", "PLACE,");
  ASSERT_TRUE(mm.valid());
  const auto insert = [&](const QString& size) {
    click(mm, mm.width / 2);
    // The size question's text box, then the size typed into it.
    ScreenRect answer;
    test::waitUntil([&] { return (answer = place("PLACE,txtText", "PLACE,")).valid(); });
    ASSERT_TRUE(answer.valid()) << "no size question";
    xdo({"type", "--delay", "20", size});
    xdo({"key", "Return"});
  };
  insert("0.254");
  xdo({"type", "--delay", "20", "10"});
  xdo({"key", "Return"});
  insert("1.6");
  xdo({"key", "Right"});
  xdo({"type", "--delay", "20", "D11*"});
  xdo({"key", "Return"});
  const ScreenRect nameBox = place("PLACE,txtNewFname", "PLACE,");
  click(nameBox, nameBox.width / 2);
  xdo({"key", "ctrl+a"});
  xdo({"type", "--delay", "20", name.toLower()});
  const ScreenRect save = place("PLACE,cmdSaveAfile", "PLACE,");
  click(save, save.width / 2);
  test::waitUntil([&] { return QFile::exists(table); });
  QFile saved(table);
  ASSERT_TRUE(saved.open(QIODevice::ReadOnly)) << "the table was not saved";
  EXPECT_EQ(saved.readAll(),
            QByteArray("25400,10,0,0\r\n160000,0,11,0\r\n\"#\",\"#\",\"#\",\"#\"\r\n"));

  // Accept asks once more about the changes; Yes, and the file is read again with the sizes.
  const ScreenRect accept = place("PLACE,cmdAccept", "PLACE,");
  click(accept, accept.width / 2);
  xdo({"key", "Return"});
  rows = rowsWhen([&](auto& r) {
    return r["Aperture Table"] == name && r["#message"].contains("Import successful");
  });
  // Drawn as gbrview draws the file with the same table: the share of the frame the ink covers
  // does not depend on the scale, and without the sizes (lines and pads of one pixel) it is a
  // fraction of it.
  const test::Ink drawn = inkOf(view("sized.png"));
  const QString rendered = home.filePath("rendered.png");
  const test::ProcessRun render =
      test::runGbrview({"render", "--mono", "--apt", table, "--dpi", "200", "-o", rendered, plain});
  ASSERT_EQ(render.exitCode, 0) << render.err;
  const test::Ink reference = inkOf(QImage(rendered));
  ASSERT_GT(drawn.pixels, 100);
  ASSERT_GT(reference.pixels, 100);
  const auto cover = [](const test::Ink& ink) {
    return double(ink.pixels) / (double(ink.width()) * ink.height());
  };
  EXPECT_NEAR(cover(drawn) / cover(reference), 1.0, 0.35);

  // The table stays the current one for the next start: the settings name it, and the file
  // opened again after a restart is shown with it.
  QFile settings(home.filePath("config/tarvex/tarvex.ini"));
  ASSERT_TRUE(settings.open(QIODevice::ReadOnly));
  EXPECT_TRUE(settings.readAll().contains("Aper=" + name.toUtf8())) << "the setting was not kept";
  restart();
  typeIntoFileRequest(plain);
  rows = rowsWhen([](auto& r) { return r.count("Aperture Table") > 0; });
  EXPECT_EQ(rows["Aperture Table"], name);
  QFile::remove(table);
}

TEST_F(ApertureTableRoad, AnotherToolsApertureListIsReadIntoATable) {
  const std::string corpus = tvx::test::corpusDir();
  if (corpus.empty())
    GTEST_SKIP() << "no corpus";
  const QString name = "E2ELIST";
  const QString table = QFileInfo(test::binary("gbrview")).absolutePath() + "/SYS/" + name + ".APT";
  QFile::remove(table);
  host.start(test::binary("tarvex-gbrviewer"), {});
  ASSERT_TRUE(host.waitForStarted(10000));
  typeIntoFileRequest(QString::fromStdString(corpus) + "/gerbv/ekf/l1.off");
  rowsWhen([](auto& r) { return r.count("Aperture Table") > 0; });
  const ScreenRect button = place("CELL,Aperture Table", "CELL,");
  ASSERT_TRUE(button.valid());
  click(button, button.width / 2);
  ASSERT_FALSE(visibleWindow("Aperture Tables").isEmpty());

  const ScreenRect read = place("PLACE,cmdReadList", "PLACE,");
  ASSERT_TRUE(read.valid());
  click(read, read.width / 2);
  const QString request = visibleWindow("Read Aperture List");
  ASSERT_FALSE(request.isEmpty()) << "no file request";
  xdo({"windowfocus", "--sync", request});
  xdo({"type", "--delay", "5", QString::fromStdString(corpus) + "/gerbv/ekf/ekf.gap"});
  xdo({"key", "Return"});
  // The count of codes taken is told in a message box; Enter closes it.
  const QString told = visibleWindow("^Aperture Table$");
  ASSERT_FALSE(told.isEmpty()) << "no report of the list";
  xdo({"windowfocus", "--sync", told});
  xdo({"key", "Return"});

  // Saved, the table holds the list's sizes: D10 at 4 mil first; the round D19 and the square
  // D71, both 24 mil, in one row; 199 codes in 136 rows and the end line.
  const ScreenRect save = place("PLACE,cmdSaveAfile", "PLACE,");
  const ScreenRect nameBox = place("PLACE,txtNewFname", "PLACE,");
  click(nameBox, nameBox.width / 2);
  xdo({"key", "ctrl+a"});
  xdo({"type", "--delay", "20", name});
  click(save, save.width / 2);
  test::waitUntil([&] { return QFile::exists(table); });
  QFile saved(table);
  ASSERT_TRUE(saved.open(QIODevice::ReadOnly)) << "the table was not saved";
  const QByteArray text = saved.readAll();
  EXPECT_TRUE(text.startsWith("10160,10,10,0\r\n")) << text.left(200).toStdString();
  EXPECT_TRUE(text.contains("\r\n60960,19,19,71\r\n"));
  EXPECT_EQ(text.count("\r\n"), 137);
  QFile::remove(table);
}

}  // namespace
