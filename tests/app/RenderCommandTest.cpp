// "gbrview render" as the user runs it: a drill file drawn at known pixels, the three output
// formats, files that fail beside files that render, and options refused before anything is read.
#include "support/CliProcess.h"

#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QRect>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

// Two holes: 2 mm at (5, 5) and 1 mm at (2, 8), millimetres.
constexpr char DrillText[] = "M48\nMETRIC,TZ\nT01C2.000\nT02C1.000\n%\nT01\nX5.000Y5.000\n"
                             "T02\nX2.000Y8.000\nM30\n";

class RenderCommandTest : public test::GbrviewTest {
protected:
  void SetUp() override {
    test::GbrviewTest::SetUp();
    drill = write("board.drl", DrillText);
  }
  static bool lit(const QImage& image, int x, int y) { return qGray(image.pixel(x, y)) >= 128; }

  QString drill;
};

TEST_F(RenderCommandTest, DrillHolesLandOnTheirPixelsWithTheirSize) {
  const QString png = folder.filePath("board.png");
  // 254 dpi: 10 pixels a millimetre; the window's top left corner (-5, 10) is pixel (0, 0), so
  // the 2 mm hole at (5, 5) is centred on pixel (100, 50), the 1 mm hole at (2, 8) on (70, 20).
  // (The spellings of the options are the command line's tests.)
  const test::ProcessRun run = test::runGbrview(
      {"render", "--mono", "--dpi=254", "--window", "-5,-5,10,10", "-o", png, drill});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  const QImage image(png);
  ASSERT_EQ(image.size(), QSize(150, 150));
  struct Hole {
    int x, y, radius;
  };
  for (const Hole& hole : {Hole{100, 50, 10}, Hole{70, 20, 5}}) {
    SCOPED_TRACE(testing::Message() << "hole at " << hole.x << "," << hole.y);
    EXPECT_TRUE(lit(image, hole.x, hole.y));
    for (const auto& [dx, dy] :
         {std::pair{1, 0}, std::pair{-1, 0}, std::pair{0, 1}, std::pair{0, -1}}) {
      EXPECT_TRUE(lit(image, hole.x + dx * (hole.radius - 2), hole.y + dy * (hole.radius - 2)));
      EXPECT_FALSE(lit(image, hole.x + dx * (hole.radius + 2), hole.y + dy * (hole.radius + 2)));
    }
  }
  // Nothing else is drawn: the lit area is that of the two discs, within a rim of pixels.
  int litPixels = 0;
  for (int i = 0; i < image.width() * image.height(); ++i)
    litPixels += lit(image, i % image.width(), i / image.width());
  const double discs = 3.14159265 * (10 * 10 + 5 * 5);
  EXPECT_NEAR(litPixels, discs, 0.12 * discs);
}

TEST_F(RenderCommandTest, WithoutAWindowThePictureFramesTheHolesWithAMargin) {
  const QString png = folder.filePath("framed.png");
  const test::ProcessRun run = test::runGbrview({"render", "--dpi", "254", "-o", png, drill});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  const QImage image(png);
  // The holes span 4.5 mm each way (45 pixels); the margin is 1 mm (10 pixels) on every side.
  const QRgb background = image.pixel(0, 0);
  QRect drawn;
  for (int i = 0; i < image.width() * image.height(); ++i)
    if (image.pixel(i % image.width(), i / image.width()) != background)
      drawn |= QRect(i % image.width(), i / image.width(), 1, 1);
  ASSERT_FALSE(drawn.isEmpty());
  EXPECT_NEAR(drawn.width(), 45, 2);
  EXPECT_NEAR(drawn.height(), 45, 2);
  EXPECT_NEAR(drawn.left(), 10, 2);
  EXPECT_NEAR(drawn.top(), 10, 2);
  EXPECT_NEAR(image.width() - 1 - drawn.right(), 10, 2);
  EXPECT_NEAR(image.height() - 1 - drawn.bottom(), 10, 2);
}

TEST_F(RenderCommandTest, PdfAndSvgAreWrittenAsDocuments) {
  for (const char* suffix : {"pdf", "svg"}) {
    SCOPED_TRACE(suffix);
    const QString output = folder.filePath(QString("board.") + suffix);
    const test::ProcessRun run = test::runGbrview({"render", "-o", output, drill});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    QFile file(output);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    if (QByteArray(suffix) == "pdf")
      EXPECT_TRUE(bytes.startsWith("%PDF"));
    else
      EXPECT_TRUE(bytes.contains("<svg") && bytes.count("<circle") == 2) << "the two holes";
  }
}

TEST_F(RenderCommandTest, AFailingFileIsNamedAndTheOthersStillRender) {
  const QString text = write("notes.txt", "just some words, nothing to draw\n");
  const QString missing = folder.filePath("missing.gbr");
  const QString png = folder.filePath("partial.png");
  const test::ProcessRun run = test::runGbrview({"render", "-o", png, text, drill, missing});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_NE(run.err.find("notes.txt"), std::string::npos) << run.err;
  EXPECT_NE(run.err.find("missing.gbr"), std::string::npos) << run.err;
  EXPECT_EQ(run.err.find("board.drl"), std::string::npos) << run.err;
  EXPECT_TRUE(QImage(png).width() > 0);

  // Each fault of a file is exit 1 with one message naming the file, never the usage text; what
  // a file loses is said by line with exit 0. Info and render agree, but for a drawing too large
  // for a picture, which info need not draw.
  const std::string folderPath = folder.path().toStdString();
  const QString tooLong = folder.filePath(QString(300, 'a'));
  const QByteArray head = "%FSLAX24Y24*%\n%MOIN*%\n";
  const struct {
    QString file;
    std::string message;
    int renderExit;
    int infoExit;
  } faults[] = {
      {write("empty.gbr", ""), "the file is empty", 1, 1},
      {missing, "Can't read file: " + missing.toStdString() + " (No such file or directory)", 1, 1},
      {folder.path(), "Can't read file: " + folderPath + " (Is a folder, not a file)", 1, 1},
      {tooLong, "(The name is too long)", 1, 1},
      // An aperture 2 m wide: the picture of its drawing would pass the size limit.
      {write("huge.gbr", head + "%ADD10C,80.0*%\nD10*\nX0Y0D03*\nM02*\n"),
       "huge.gbr: the picture would be", 1, 0},
      {write("cut.gbr", head + "%ADD10C,0.01*%\nD10*\nX0Y0D03*\nX100Y1"),
       "cut.gbr: line 6: the file ends inside a block, which is dropped", 0, 0},
      {write("macro.gbr", head + "%AMDOT*1,1,0.1,0,0,nan*%\n%ADD10DOT*%\nD10*\nX0Y0D03*\nM02*\n"),
       "macro.gbr: line 4: aperture D10 (macro DOT): \"nan\" is no number, read as 0", 0, 0},
      {write("cut.drl", QByteArray(DrillText).replace("M30\n", "X3")),
       "cut.drl: line 10: the file ends inside a block, which is dropped", 0, 0},
  };
  for (const auto& fault : faults) {
    SCOPED_TRACE(fault.file.toStdString());
    const test::ProcessRun one = test::runGbrview({"render", "-o", png, fault.file});
    EXPECT_EQ(one.exitCode, fault.renderExit);
    EXPECT_NE(one.err.find(fault.message), std::string::npos) << one.err;
    EXPECT_EQ(one.err.find("not supported"), std::string::npos) << one.err;
    EXPECT_EQ(one.err.find("usage"), std::string::npos) << one.err;
    const test::ProcessRun info = test::runGbrview({"info", fault.file});
    EXPECT_EQ(info.exitCode, fault.infoExit);
    if (fault.infoExit == fault.renderExit) {
      EXPECT_NE(info.err.find(fault.message), std::string::npos) << info.err;
    }
  }

  // With nothing that renders there is no picture at all.
  const QString none = folder.filePath("none.png");
  const test::ProcessRun nothing = test::runGbrview({"render", "-o", none, text});
  EXPECT_EQ(nothing.exitCode, 1);
  EXPECT_FALSE(QFileInfo::exists(none));
}

TEST_F(RenderCommandTest, PicturesTooLargeOrEmptyAreRefusedBeforeReading) {
  const QString png = folder.filePath("never.png");
  const QStringList refused[] = {
      {"--dpi", "20001"},
      {"--dpi", "0.5"},
      {"--window", "0,0,0,10"},
      {"--window", "0,10,10,10"},
      {"--dpi", "20000", "--window", "0,0,1000,1000"},  // 787402 pixels square
      {"--dpi", "1", "--window", "0,0,10,10"},          // under one pixel
  };
  for (const QStringList& options : refused) {
    SCOPED_TRACE(options.join(' ').toStdString());
    const test::ProcessRun run =
        test::runGbrview(QStringList{"render"} + options + QStringList{"-o", png, drill});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_NE(run.err.find("gbrview: "), std::string::npos);
    EXPECT_NE(run.err.find("gbrview info FILE [--json]"), std::string::npos) << "the usage";
    EXPECT_FALSE(QFileInfo::exists(png));
  }
}

}  // namespace
