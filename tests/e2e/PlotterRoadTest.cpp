// A plotter file opened as the user does: typed into the file request, it stands at once in the
// board outline layer, drawn as gbrview draws it, and moves with an X offset typed into its cell.
#include "e2e/HostDriver.h"
#include "support/CorpusPath.h"

#include <QDir>

namespace {

using test::Ink;
using test::inkOf;
using test::ScreenRect;

using PlotterRoad = test::HostDriver;

TEST_F(PlotterRoad, APlotFileStandsInTheOutlineLayerAndMovesWithItsOffset) {
  const std::string corpus = tvx::test::corpusDir();
  if (corpus.empty())
    GTEST_SKIP() << "no corpus found (set TVX_CORPUS_DIR)";
  const QString plot = QDir(QString::fromStdString(corpus)).filePath("hp2xx/hp-tests/arcs.hp");
  host.start(test::binary("tarvex-gbrviewer"), {});
  ASSERT_TRUE(host.waitForStarted(10000));
  typeIntoFileRequest(plot);

  auto rows = rowsWhen([](auto& r) { return r["#message"].contains("Import successful"); });
  EXPECT_EQ(rows["Import file type"], "HPGL Format file");
  EXPECT_EQ(rows["Import to layer"], "Board Outline/Cut-outs");
  EXPECT_EQ(rows.count("Unit"), 0u) << "a plotter file has no format rows";
  EXPECT_EQ(messageLine(), "Board Outline/Cut-outs Import successful");

  // Drawn with the shape gbrview gives it.
  const Ink ink = inkOf(view("plot.png"));
  ASSERT_GT(ink.pixels, 200);
  const QString rendered = home.filePath("rendered.png");
  const test::ProcessRun render =
      test::runGbrview({"render", "--mono", "--dpi", "100", "-o", rendered, plot});
  ASSERT_EQ(render.exitCode, 0) << render.err;
  const Ink reference = inkOf(QImage(rendered));
  ASSERT_GT(reference.pixels, 50);
  EXPECT_NEAR(double(ink.width()) / ink.height(), double(reference.width()) / reference.height(),
              0.05);

  // A tenth of an inch of X offset: the layer is imported again, moved by it.
  const ScreenRect offsetCell = place("CELL,Image X Offset", "CELL,");
  ASSERT_TRUE(offsetCell.valid());
  click(offsetCell, offsetCell.width / 2);
  xdo({"key", "ctrl+a"});
  xdo({"type", "--delay", "20", "0.1"});
  xdo({"key", "Return"});
  rows = rowsWhen([](auto& r) { return r["Image X Offset"] == "0.1000\""; });
  ASSERT_EQ(rows["Image X Offset"], "0.1000\"");
  const Ink moved = inkOf(view("moved.png"));
  const double pixelsPerInch = double(ink.width()) / reference.width() * 100;
  EXPECT_NEAR(moved.left - ink.left, 0.1 * pixelsPerInch, 0.05 * pixelsPerInch);
  EXPECT_NEAR(moved.top, ink.top, 3);
}

}  // namespace
