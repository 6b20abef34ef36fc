// "gbrview print" of the demo board as the user runs it: the PDF's pages and paper, and the
// board's outline found in the pictures of its pages where the preview's sheets put it.
#include "app/cli/CliImport.h"
#include "app/cli/PrintFiles.h"
#include "print/PreviewModel.h"
#include "support/CliProcess.h"
#include "support/WidgetTestApplication.h"

#include <QImage>
#include <QStandardPaths>

#include <gtest/gtest.h>

#include <optional>

namespace tvx {
namespace {

constexpr double UnitsPerMm = StoreUnitsPerMm;

bool hasPoppler() {
  return !QStandardPaths::findExecutable("pdftoppm").isEmpty() &&
         !QStandardPaths::findExecutable("pdfinfo").isEmpty();
}

std::string run(const QString& program, const QStringList& arguments) {
  QProcess process;
  process.start(program, arguments);
  process.waitForFinished(60000);
  return process.readAllStandardOutput().toStdString();
}

// The page of the PDF as a picture at dpi; with a size in pixels only its top left corner.
QImage pagePicture(const QString& pdf, int page, int dpi, const QString& folder,
                   QSize corner = {}) {
  const QString stem = folder + "/page" + QString::number(page);
  QStringList arguments{"-r", QString::number(dpi),  "-f",          QString::number(page),
                        "-l", QString::number(page), "-singlefile", "-png"};
  if (corner.isValid())
    arguments << "-x"
              << "0"
              << "-y"
              << "0"
              << "-W" << QString::number(corner.width()) << "-H"
              << QString::number(corner.height());
  run("pdftoppm", arguments << pdf << stem);
  return QImage(stem + ".png");
}

// The outline is the red of the board outline layer.
bool outlinePixel(const QImage& image, int x, int y) {
  const QRgb c = image.pixel(x, y);
  return qRed(c) > 150 && qGreen(c) < 120 && qBlue(c) < 120;
}

// The centre of the first run of outline pixels along a row (across) or a column, searched
// from one end: its position in pixels.
std::optional<double> firstRun(const QImage& image, int line, bool across, bool fromEnd) {
  const int length = across ? image.width() : image.height();
  auto at = [&](int i) {
    const int p = fromEnd ? length - 1 - i : i;
    return across ? outlinePixel(image, p, line) : outlinePixel(image, line, p);
  };
  int i = 0;
  while (i < length && !at(i))
    ++i;
  if (i == length)
    return std::nullopt;
  int end = i;
  while (end < length && at(end))
    ++end;
  const double centre = (i + end - 1) / 2.0;
  return fromEnd ? length - 1 - centre : centre;
}

class PrintCommandTest : public ::testing::Test {
protected:
  void SetUp() override {
    test::widgetTestApplication();
    if (!hasPoppler())
      GTEST_SKIP() << "pdftoppm and pdfinfo are needed";
    ASSERT_TRUE(folder.isValid());
  }

  // Prints the demo board at scale; the arguments the run took.
  PrintOptions print(const QString& scale, const QString& pdf) {
    const QString samples = TVX_SOURCE_DIR "/samples/";
    const ::test::ProcessRun ran = ::test::runGbrview(
        {"print", "--scale", scale, "-o", pdf, "--layer", "3", samples + "demo-top.gbr", "--layer",
         "30", samples + "demo-outline.gbr", "--layer", "31", samples + "demo.drl"});
    EXPECT_EQ(ran.exitCode, 0) << ran.err;
    PrintOptions options;
    options.scale = scale.toStdString();
    options.output = pdf.toStdString();
    options.files = {(samples + "demo-top.gbr").toStdString(),
                     (samples + "demo-outline.gbr").toStdString(),
                     (samples + "demo.drl").toStdString()};
    options.layers = {3, 30, 31};
    report = ran.out;
    return options;
  }

  QTemporaryDir folder;
  std::string report;
};

TEST_F(PrintCommandTest, FiveToOneJoinsTwoA4PagesWhereTheSheetsLie) {
  const QString pdf = folder.filePath("board.pdf");
  PrintRun expected(print("5:1", pdf));
  ASSERT_TRUE(expected.model);
  const PreviewModel& model = *expected.model;
  ASSERT_EQ(model.PageCount, 2);
  EXPECT_EQ(report, "sheets 2 across x 1 down, scale 5:1, pages 1 to 2 of 2\n");
  const std::string info = run("pdfinfo", {pdf});
  EXPECT_NE(info.find("Pages:           2\n"), std::string::npos) << info;
  EXPECT_NE(info.find("(A4)"), std::string::npos) << info;

  // Store X or Y to pixels of a page at 150 dpi from the sheet's left or top edge.
  constexpr int Dpi = 150;
  const double pieceW = model.PageWidth / 5, pieceH = model.PageHeight / 5;
  auto pixels = [&](double storeFromEdge) { return storeFromEdge * 5 / UnitsPerMm / 25.4 * Dpi; };
  const PageRow& first = model.PageRows[0];
  const PageRow& second = model.PageRows[1];
  const double top = first.CentreY + pieceH / 2;
  const QImage page1 = pagePicture(pdf, 1, Dpi, folder.path());
  const QImage page2 = pagePicture(pdf, 2, Dpi, folder.path());
  ASSERT_FALSE(page1.isNull());
  ASSERT_FALSE(page2.isNull());
  const int middleRow = int(pixels(top - 15 * UnitsPerMm));
  const int middleColumn = int(pixels(20 * UnitsPerMm - (first.CentreX - pieceW / 2)));

  const auto left = firstRun(page1, middleRow, true, false);
  const auto topEdge = firstRun(page1, middleColumn, false, false);
  const auto right = firstRun(page2, middleRow, true, false);
  ASSERT_TRUE(left && topEdge && right);
  EXPECT_NEAR(*left, pixels(0 - (first.CentreX - pieceW / 2)), 2);
  EXPECT_NEAR(*topEdge, pixels(top - 30 * UnitsPerMm), 2);
  EXPECT_NEAR(*right, pixels(40 * UnitsPerMm - (second.CentreX - pieceW / 2)), 2);
}

TEST_F(PrintCommandTest, OneToOneKeepsTheBoardsMillimetres) {
  const QString pdf = folder.filePath("board.pdf");
  print("1:1", pdf);
  EXPECT_EQ(report, "sheets 1 across x 1 down, scale 1:1, pages 1 to 1 of 1\n");
  constexpr int Dpi = 600;
  // The board lies within 60 by 50 mm of the top left corner, behind the 10 mm margins.
  const QImage board =
      pagePicture(pdf, 1, Dpi, folder.path(), QSize(60 * Dpi * 10 / 254, 50 * Dpi * 10 / 254));
  ASSERT_FALSE(board.isNull());
  const int rowGuess = int((10 + 15) / 25.4 * Dpi), columnGuess = int((10 + 20) / 25.4 * Dpi);
  const auto left = firstRun(board, rowGuess, true, false);
  const auto top = firstRun(board, columnGuess, false, false);
  const auto right = firstRun(board, rowGuess, true, true);
  const auto bottom = firstRun(board, columnGuess, false, true);
  ASSERT_TRUE(left && top && right && bottom);
  const double mmPerPixel = 25.4 / Dpi;
  EXPECT_NEAR((*right - *left) * mmPerPixel, 40.0, 0.1);
  EXPECT_NEAR((*bottom - *top) * mmPerPixel, 30.0, 0.1);
}

TEST_F(PrintCommandTest, UnwritableOutputIsTold) {
  const ::test::ProcessRun ran = ::test::runGbrview(
      {"print", "-o", "/nonexistent-folder/board.pdf", TVX_SOURCE_DIR "/samples/demo.drl"});
  EXPECT_EQ(ran.exitCode, 1);
  EXPECT_NE(ran.err.find("Start Spooling Document Failed"), std::string::npos) << ran.err;
}

}  // namespace
}  // namespace tvx
