// A CAD tool's drawing opened as the user does: typed into the file request, it stands at once in
// the board outline layer, at its own place or centred; Inches makes it 25.4 times larger, true
// line sizes show its widths, and the layer list imports it into an artwork layer.
#include "e2e/HostDriver.h"
#include "support/CorpusPath.h"

#include <QDir>

namespace {

using test::inkOf;
using test::LayerFacts;
using test::ScreenRect;

class DrawingRoad : public test::HostDriver {
protected:
  void choose(const QString& caption, const QString& typed) {
    const ScreenRect cell = place("CELL," + caption, "CELL,");
    ASSERT_TRUE(cell.valid()) << caption.toStdString();
    click(cell, cell.width - 8);
    xdo({"type", "--delay", "20", typed});
    xdo({"key", "Return"});
  }
};

TEST_F(DrawingRoad, ADrawingStandsCentredAndFollowsItsUnitWidthsAndLayer) {
  const std::string corpus = tvx::test::corpusDir();
  if (corpus.empty())
    GTEST_SKIP() << "no corpus found (set TVX_CORPUS_DIR)";
  const QString drawing =
      QDir(QString::fromStdString(corpus)).filePath("ezdxf/integration_tests/POLI-ALL210_12.DXF");
  host.start(test::binary("tarvex-gbrviewer"), {});
  ASSERT_TRUE(host.waitForStarted(10000));
  typeIntoFileRequest(drawing);

  auto rows = rowsWhen([](auto& r) { return r["#message"].contains("Import successful"); });
  EXPECT_EQ(rows["Import file type"], "AutoCAD DXF file");
  EXPECT_EQ(rows["Import to layer"], "Board Outline/Cut-outs");
  EXPECT_EQ(rows["Unit"], "Metric") << "the drawing states no unit: the setting's";
  EXPECT_EQ(messageLine(), "Board Outline/Cut-outs Import successful");
  const LayerFacts original = layer(30);
  ASSERT_GT(original.items, 100);
  EXPECT_EQ(std::tuple(original.minX, original.maxX), std::tuple(-600001L, 1800001L))
      << "the drawing's own place while Original coordinates is ticked (the setting's start)";

  // Unticked: centred on the origin to the millimetre.
  const ScreenRect originalCell = place("CELL,Original coordinates", "CELL,");
  ASSERT_TRUE(originalCell.valid());
  click(originalCell, 10);
  rows = rowsWhen([](auto& r) { return r["Original coordinates"] == "[ ]"; });
  ASSERT_EQ(rows["Original coordinates"], "[ ]");
  const LayerFacts metric = layer(30);
  EXPECT_EQ(metric.items, original.items);
  EXPECT_LT(std::abs(metric.minX + metric.maxX), 100000) << "centred on the origin";
  EXPECT_EQ(metric.widest, 1) << "widths wait for true line sizes";
  EXPECT_GT(inkOf(view("metric.png")).pixels, 200);

  choose("Unit", "Inch");
  rows = rowsWhen([](auto& r) { return r["Unit"] == "Inches"; });
  ASSERT_EQ(rows["Unit"], "Inches");
  const LayerFacts inches = layer(30);
  EXPECT_NEAR(inches.width() / metric.width(), 25.4, 0.01);

  const ScreenRect trueSizes = place("CELL,Import with true line sizes", "CELL,");
  ASSERT_TRUE(trueSizes.valid());
  click(trueSizes, 10);
  rows = rowsWhen([](auto& r) { return r["Import with true line sizes"] == "[x]"; });
  ASSERT_EQ(rows["Import with true line sizes"], "[x]");
  EXPECT_GT(layer(30).widest, 100000) << "a polyline's width in inches, drawn";

  choose("Import to layer", "Artwork Top");
  rows = rowsWhen([](auto& r) { return r["#message"].contains("Artwork Top"); });
  EXPECT_EQ(rows["#message"], "Artwork Top Layer Import successful");
  EXPECT_EQ(layer(3).items, inches.items) << "the drawing went to the chosen layer";
}

}  // namespace
