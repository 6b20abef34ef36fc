// End to end: the host imports the drill file of its command line, the view shows its holes and
// nothing else, and "All,EX" ends it with the shutdown line. On a virtual X display when the
// machine has one (xvfb-run), so the view is grabbed as a real window shows it.
#include "support/CliProcess.h"

#include <QFile>
#include <QStandardPaths>
#include <QImage>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <vector>

namespace {

// Three holes of 0.04 inch at (0.1, 0.1), (0.5, 0.1) and (0.3, 0.4) inch.
constexpr const char* Drill = "M48\r\nINCH,TZ\r\nT1C0.04\r\n%\r\nT1\r\nX1000Y1000\r\nX5000Y1000\r\n"
                              "X3000Y4000\r\nM30\r\n";

// The runs of true values in a row of flags.
int runsOf(const std::vector<bool>& flags) {
  int runs = 0;
  for (size_t i = 0; i < flags.size(); ++i)
    runs += flags[i] && (i == 0 || !flags[i - 1]);
  return runs;
}

// Reads the host's output until a line holding text arrives or the time runs out.
bool waitForLine(QProcess& host, QByteArray& output, const QByteArray& text) {
  for (int i = 0; i < 100 && !output.contains(text); ++i) {
    host.waitForReadyRead(200);
    output += host.readAllStandardOutput();
  }
  return output.contains(text);
}

TEST(HostViewTest, TheDrillFileOfTheCommandLineShowsItsHolesOnly) {
  test::coreApplication();
  QTemporaryDir home;
  ASSERT_TRUE(home.isValid());
  QFile file(home.filePath("board.drl"));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(Drill);
  file.close();

  QProcess host;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert("XDG_CONFIG_HOME", home.filePath("config"));
  environment.insert("XDG_CACHE_HOME", home.filePath("cache"));
  const QString xvfb = QStandardPaths::findExecutable("xvfb-run");
  if (xvfb.isEmpty()) {
    host.setProcessEnvironment(environment);
    host.start(test::binary("tarvex-gbrviewer"), {"-platform", "offscreen", file.fileName()});
  } else {
    environment.remove("QT_QPA_PLATFORM");
    host.setProcessEnvironment(environment);
    host.start(xvfb, {"-a", "-s", "-screen 0 1280x1024x24", test::binary("tarvex-gbrviewer"),
                      "-platform", "xcb", file.fileName()});
  }
  ASSERT_TRUE(host.waitForStarted(10000));

  const QString picture = home.filePath("view.png");
  host.write(("TARVEX,SAVEVIEW," + picture + "\n").toUtf8());
  QByteArray output;
  ASSERT_TRUE(waitForLine(host, output, "SAVEVIEW,")) << output.toStdString();
  EXPECT_TRUE(output.contains("TARVEX\tSAVEVIEW,OK\n")) << output.toStdString();

  host.write("All,EX\n");
  ASSERT_TRUE(host.waitForFinished(20000));
  output += host.readAllStandardOutput();
  EXPECT_EQ(host.exitCode(), 0);
  EXPECT_TRUE(output.endsWith("TVNGBRVIEWER\tSHUTDOWN\n")) << output.toStdString();

  QImage image(picture);
  ASSERT_FALSE(image.isNull());
  // The fit leaves the ruler's margin left and below: the top right corner is background.
  const QRgb background = image.pixel(image.width() - 1, 0);
  std::vector<bool> columns(size_t(image.width()), false), rows(size_t(image.height()), false);
  int64_t marked = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      if (image.pixel(x, y) != background) {
        columns[size_t(x)] = rows[size_t(y)] = true;
        ++marked;
      }
  // Three holes in three columns and two rows; everything else is background.
  EXPECT_EQ(runsOf(columns), 3);
  EXPECT_EQ(runsOf(rows), 2);
  EXPECT_GT(marked, 0);
  EXPECT_LT(marked, int64_t(image.width()) * image.height() / 50);
  int left = image.width(), right = -1, top = image.height(), bottom = -1;
  for (int x = 0; x < image.width(); ++x)
    if (columns[size_t(x)]) {
      left = std::min(left, x);
      right = std::max(right, x);
    }
  for (int y = 0; y < image.height(); ++y)
    if (rows[size_t(y)]) {
      top = std::min(top, y);
      bottom = std::max(bottom, y);
    }
  // The holes' spread is 0.44 by 0.34 inch.
  const double ratio = double(right - left + 1) / double(bottom - top + 1);
  EXPECT_NEAR(ratio, 0.44 / 0.34, 0.1);
}

}  // namespace
