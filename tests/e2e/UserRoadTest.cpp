// The user's road through the real windows, driven with real X input: the host runs on an X server
// of the test's own (Xvfb), xdotool types and clicks, and the host's own queries (TARVEX,IMPORTROWS
// and friends) and its view pictures tell what the user sees.
#include "e2e/HostDriver.h"
#include "support/CorpusPath.h"

#include <QDir>
#include <QFile>
#include <QThread>

namespace {

using test::Ink;
using test::inkOf;
using test::pixelsInNewColours;
using test::ScreenRect;
using test::waitUntil;

using UserRoad = test::HostDriver;

TEST_F(UserRoad, AGerberFileIntoALayerThenADrillFile) {
  const QString silk = QDir(TVX_SOURCE_DIR).filePath("samples/demo-silk-top.gbr");
  const QString drill = QDir(TVX_SOURCE_DIR).filePath("samples/demo.drl");

  // No file on the command line: the start ends in the file request.
  host.start(test::binary("tarvex-gbrviewer"), {});
  ASSERT_TRUE(host.waitForStarted(10000));
  typeIntoFileRequest(silk);

  // The window shows what the scan found, all of it, with the layer still to choose.
  auto rows = rowsWhen([](auto& r) { return r.count("Import to layer") > 0; });
  ASSERT_EQ(rows["Import to layer"], "Click to select") << "the rows were not refilled";
  EXPECT_EQ(rows["Import file name"], silk);
  EXPECT_EQ(rows["Unit"], "Metric");
  EXPECT_EQ(rows["Omitted Zeroes"], "Leading");
  EXPECT_EQ(rows["Precision Format X"], "4.6");
  EXPECT_EQ(rows.count("Apertures used"), 1u);
  EXPECT_EQ(rows["#shown"], rows["#rows"]) << "the window hides rows";
  EXPECT_FALSE(messageLine().contains("Processing"));

  // The layer chosen in its list with the mouse and the keyboard.
  const ScreenRect layerCell = place("CELL,Import to layer", "CELL,");
  ASSERT_TRUE(layerCell.valid());
  click(layerCell, layerCell.width - 8);
  xdo({"type", "--delay", "20", "Artwork Top"});
  xdo({"key", "Return"});
  rows = rowsWhen([](auto& r) { return r["#message"].contains("Import successful"); });
  EXPECT_EQ(rows["#message"], "Artwork Top Layer Import successful");
  EXPECT_EQ(messageLine(), "Artwork Top Layer Import successful");
  EXPECT_EQ(rows["#shown"], rows["#rows"]) << "the window did not follow its new rows";

  // Drawn as gbrview draws the file: the same shape.
  const QImage drawn = view("drawn.png");
  const Ink ink = inkOf(drawn);
  ASSERT_GT(ink.pixels, 1000);
  const QString rendered = home.filePath("rendered.png");
  const test::ProcessRun render =
      test::runGbrview({"render", "--mono", "--dpi", "100", "-o", rendered, silk});
  ASSERT_EQ(render.exitCode, 0) << render.err;
  const Ink reference = inkOf(QImage(rendered));
  ASSERT_GT(reference.pixels, 100);
  EXPECT_NEAR(double(ink.width()) / ink.height(), double(reference.width()) / reference.height(),
              0.03);

  // Half an inch of X offset typed into its cell: the picture moves by it.
  const ScreenRect offsetCell = place("CELL,Image X Offset", "CELL,");
  ASSERT_TRUE(offsetCell.valid());
  click(offsetCell, offsetCell.width / 2);
  xdo({"key", "ctrl+a"});
  xdo({"type", "--delay", "20", "0.5"});
  xdo({"key", "Return"});
  rows = rowsWhen([](auto& r) { return r["Image X Offset"] == "0.5000\""; });
  ASSERT_EQ(rows["Image X Offset"], "0.5000\"");
  const QImage movedPicture = view("moved.png");
  const Ink moved = inkOf(movedPicture);
  const double pixelsPerInch = double(ink.width()) / reference.width() * 100;
  EXPECT_NEAR(moved.left - ink.left, 0.5 * pixelsPerInch, 0.05 * pixelsPerInch);
  EXPECT_NEAR(moved.top, ink.top, 3);

  // Closed with its button.
  const ScreenRect close = place("PLACE,cmdCmd1", "PLACE,");
  ASSERT_TRUE(close.valid());
  click(close, close.width / 2);
  rows = rowsWhen([](auto& r) { return r["#rows"] == "NONE"; });
  EXPECT_EQ(rows["#rows"], "NONE") << "the import window is still up";

  // A drill file from the main window's Tools menu lands on the drill layer at once.
  const QString main = visibleWindow("Viewer & Import");
  ASSERT_FALSE(main.isEmpty());
  xdo({"windowfocus", "--sync", main});
  xdo({"key", "alt+t"});
  xdo({"key", "i"});
  typeIntoFileRequest(drill);
  rows = rowsWhen([](auto& r) { return r["#message"].contains("Import successful"); });
  EXPECT_EQ(rows["Import file name"], drill);
  EXPECT_EQ(rows["#message"], "Drill Template Import successful");
  EXPECT_EQ(messageLine(), "Drill Template Import successful");
  EXPECT_GT(pixelsInNewColours(movedPicture, view("drilled.png")), 200) << "no holes drawn";
}

TEST_F(UserRoad, ADrillFileShowsTheFormatItStatesAndKeepsTheUsersCorrection) {
  const std::string corpus = tvx::test::corpusDir();
  if (corpus.empty())
    GTEST_SKIP() << "no corpus found (set TVX_CORPUS_DIR)";
  // "M71" states millimetres, its numbers keep leading zeros; it has no header unit, so the
  // user is told that it is read as Format One, with values the user may correct.
  const QString drill = QDir(QString::fromStdString(corpus))
                            .filePath("gerbv/test-inputs/test-drill-trailing-zero-suppression.exc");
  host.start(test::binary("tarvex-gbrviewer"), {});
  ASSERT_TRUE(host.waitForStarted(10000));
  typeIntoFileRequest(drill);
  const QString notice = visibleWindow("^Tarvex$");
  ASSERT_FALSE(notice.isEmpty()) << "no notice that the file is not Format Two";
  xdo({"windowfocus", "--sync", notice});
  xdo({"key", "Return"});

  auto rows = rowsWhen([](auto& r) { return r["#message"].contains("Import successful"); });
  EXPECT_EQ(rows["#message"], "Drill Template Import successful");
  EXPECT_EQ(rows["Unit"], "Metric");
  EXPECT_EQ(rows["Omitted Zeroes"], "Trailing");
  EXPECT_EQ(rows["Precision Format XY"], "3.3");
  const QImage metric = view("metric.png");
  const Ink holes = inkOf(metric);
  ASSERT_GT(holes.pixels, 100) << "no holes drawn";

  // The user reads it with two digits before the point instead: the holes gather ten times
  // closer round the middle of the view, and the correction stays in the grid.
  const ScreenRect precisionCell = place("CELL,Precision Format XY", "CELL,");
  ASSERT_TRUE(precisionCell.valid());
  click(precisionCell, precisionCell.width - 8);
  xdo({"type", "--delay", "20", "2.4"});
  xdo({"key", "Return"});
  rows = rowsWhen([](auto& r) { return r["Precision Format XY"] == "2.4"; });
  EXPECT_EQ(rows["Precision Format XY"], "2.4");
  EXPECT_EQ(rows["Unit"], "Metric");
  const Ink gathered = inkOf(view("gathered.png"));
  EXPECT_LT(gathered.width(), holes.width() / 4) << "the view does not show the new reading";
}

TEST_F(UserRoad, AnEmptyFileIsNamedOnceAndNotOfferedAsText) {
  const QString empty = home.filePath("empty.gbr");
  QFile(empty).open(QIODevice::WriteOnly);
  host.start(test::binary("tarvex-gbrviewer"), {});
  ASSERT_TRUE(host.waitForStarted(10000));
  typeIntoFileRequest(empty);
  const QString box = visibleWindow("^Tarvex$");
  ASSERT_FALSE(box.isEmpty()) << "the file was not named";
  xdo({"windowfocus", "--sync", box});
  xdo({"key", "Return"});
  // No second box calls it of an unknown format or offers to show its text, and no import
  // window opens. (The box once stood over the request's name completer and went with it.)
  QThread::msleep(1500);
  for (const char* title : {"^Tarvex$", "Unrecognized", "Import Parameters"})
    EXPECT_TRUE(xdo({"search", "--onlyvisible", "--name", title}).isEmpty()) << title;
  EXPECT_FALSE(visibleWindow("Viewer & Import").isEmpty());
}

TEST_F(UserRoad, FilesOnTheCommandLineEndWithTheOutcomeInTheMessageLine) {
  const QDir samples(QDir(TVX_SOURCE_DIR).filePath("samples"));
  host.start(test::binary("tarvex-gbrviewer"),
             {samples.filePath("demo-top.gbr"), samples.filePath("demo.drl")});
  ASSERT_TRUE(host.waitForStarted(10000));
  QString line;
  waitUntil([&] {
    line = messageLine();
    return line.endsWith("Import successful") || line.endsWith("Import failed");
  });
  EXPECT_EQ(line, "Drill Template Import successful");
}

TEST_F(UserRoad, WhatAFileLosesIsSaidWithTheOutcome) {
  // Files cut short in their last block: what they hold is drawn, and the loss is named by line.
  const struct {
    const char* name;
    const char* text;
    QString outcome;
  } cuts[] = {
      {"cut.gbr", "%FSLAX24Y24*%\n%MOIN*%\n%ADD10C,0.05*%\nD10*\nX0Y0D03*\nX1000Y1000D03*\nX20",
       "Artwork Top Layer Import successful - line 7: the file ends inside a block, which is "
       "dropped"},
      {"cut.drl", "M48\nINCH\nT1C0.02\n%\nT1\nX1000Y1000\nX2000Y2000\nX30",
       "Drill Template Import successful - line 8: the file ends inside a block, which is dropped"},
  };
  for (const auto& cut : cuts) {
    SCOPED_TRACE(cut.name);
    host.start(test::binary("tarvex-gbrviewer"), {writeHomeFile(cut.name, cut.text)});
    ASSERT_TRUE(host.waitForStarted(10000));
    QString line;
    waitUntil([&] {
      line = messageLine();
      return line.contains("Import successful") || line.contains("Import failed");
    });
    EXPECT_EQ(line, cut.outcome);
    stop();
    output.clear();
  }
}

TEST_F(UserRoad, NamesOnTheCommandLineThatAreNoFilesAreSaidForWhatTheyAre) {
  // Each is passed over without a box, a file beside it imported, and the message line says
  // what the name is.
  const QString drill = QDir(TVX_SOURCE_DIR).filePath("samples/demo.drl");
  const QString tooLong = home.filePath(QString(300, 'a'));
  const struct {
    QStringList names;
    QString said;
  } runs[] = {
      {{home.path(), drill}, "Can't read file: " + home.path() + " (Is a folder, not a file)"},
      {{tooLong}, "Can't read file: " + tooLong + " (The name is too long)"},
  };
  for (const auto& run : runs) {
    SCOPED_TRACE(run.said.toStdString());
    host.start(test::binary("tarvex-gbrviewer"), run.names);
    ASSERT_TRUE(host.waitForStarted(10000));
    waitUntil([&] { return messageLine() == run.said; });
    QThread::msleep(1000);  // start-up has settled (the file request of the second run is up)
    EXPECT_EQ(messageLine(), run.said);
    EXPECT_TRUE(xdo({"search", "--onlyvisible", "--name", "^Tarvex$"}).isEmpty()) << "a box";
    stop();
    output.clear();
  }
}

}  // namespace
