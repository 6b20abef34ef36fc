// The host and the CLI as the user runs them: real processes, their output and exit codes.
#include "support/CliProcess.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include <unistd.h>

namespace {

using test::binary;

// Three holes of 0.04 inch at (0.1, 0.1), (0.5, 0.1) and (0.3, 0.4) inch.
constexpr const char* Drill = "M48\r\nINCH,TZ\r\nT1C0.04\r\n%\r\nT1\r\nX1000Y1000\r\nX5000Y1000\r\n"
                              "X3000Y4000\r\nM30\r\n";

// The runs of true values in a row of flags, and the length from the first true to the last.
int runsOf(const std::vector<bool>& flags) {
  int runs = 0;
  for (size_t i = 0; i < flags.size(); ++i)
    runs += flags[i] && (i == 0 || !flags[i - 1]);
  return runs;
}
double spanOf(const std::vector<bool>& flags) {
  const auto first = std::find(flags.begin(), flags.end(), true);
  const auto last = std::find(flags.rbegin(), flags.rend(), true);
  return double(flags.rend() - last) - double(first - flags.begin());
}

// Reads the host's output until a line holding text arrives or the time runs out.
bool waitForLine(QProcess& host, QByteArray& output, const QByteArray& text) {
  for (int i = 0; i < 100 && !output.contains(text); ++i) {
    host.waitForReadyRead(200);
    output += host.readAllStandardOutput();
  }
  return output.contains(text);
}

class HostTest : public ::testing::Test {
protected:
  void SetUp() override {
    test::coreApplication();
    ASSERT_TRUE(home.isValid());
    ASSERT_TRUE(QFileInfo(binary("tarvex-gbrviewer")).isExecutable())
        << "build the target tarvex-gbrviewer first";
    // Settings and cache go to a folder of the test's own, never the user's.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("QT_QPA_PLATFORM", "offscreen");
    environment.insert("XDG_CONFIG_HOME", home.filePath("config"));
    environment.insert("XDG_CACHE_HOME", home.filePath("cache"));
    host.setProcessEnvironment(environment);
  }
  void TearDown() override {
    if (host.state() != QProcess::NotRunning) {
      host.kill();
      host.waitForFinished(5000);
    }
  }
  void start(const QStringList& arguments = {}) {
    host.start(binary("tarvex-gbrviewer"), arguments);
    ASSERT_TRUE(host.waitForStarted(10000));
  }

  QTemporaryDir home;
  QProcess host;
};

TEST_F(HostTest, ExitCommandEndsTheHostWithTheShutdownLine) {
  // Names that are no files are passed over, each with its reason.
  const QString longName = home.filePath(QString(300, 'a'));
  start({"first.gbr", home.path(), longName});
  host.write("All,EX\n");
  ASSERT_TRUE(host.waitForFinished(20000));
  EXPECT_EQ(host.exitStatus(), QProcess::NormalExit);
  EXPECT_EQ(host.exitCode(), 0);
  EXPECT_EQ(host.readAllStandardOutput().toStdString(), "TVNGBRVIEWER\tSHUTDOWN\n");
  const std::string err = host.readAllStandardError().toStdString();
  for (const std::string& said :
       {std::string("first.gbr: No such file or directory"),
        home.path().toStdString() + ": is a folder", std::string("aaaa: File name too long")})
    EXPECT_NE(err.find(said), std::string::npos) << err;
  // The host prepared the settings and work folders below the XDG folders.
  EXPECT_TRUE(QFileInfo(home.filePath("config/tarvex")).isDir());
  EXPECT_TRUE(QFileInfo(home.filePath("cache/tarvex")).isDir());
}

TEST_F(HostTest, RefusedCloseKeepsRunningUntilAskedAgain) {
  start({"--ini", home.filePath("own/settings.ini")});
  // A minimised window is restored by the first close and closes on the second.
  host.write("TVNGBRVIEWER,MN\nother,EX\nTVNGBRVIEWER,EX\n");
  EXPECT_FALSE(host.waitForFinished(1500));
  EXPECT_EQ(host.readAllStandardOutput().toStdString(), "");
  host.write("TVNGBRVIEWER,EX\n");
  ASSERT_TRUE(host.waitForFinished(20000));
  EXPECT_EQ(host.exitCode(), 0);
  EXPECT_EQ(host.readAllStandardOutput().toStdString(), "TVNGBRVIEWER\tSHUTDOWN\n");
  // The window's place went into the settings file the host was given, with the settings.
  QFile settings(home.filePath("own/settings.ini"));
  ASSERT_TRUE(settings.open(QIODevice::ReadOnly));
  const QByteArray text = settings.readAll();
  EXPECT_TRUE(text.contains("[Tarvex.TVNGBRVIEWER]") && text.contains("[GBRVIEWER]"))
      << text.data();
}

TEST_F(HostTest, UnknownOptionIsRefusedBeforeAnyWindow) {
  start({"--bogus"});
  ASSERT_TRUE(host.waitForFinished(20000));
  EXPECT_EQ(host.exitCode(), 2);
  EXPECT_EQ(host.readAllStandardOutput().toStdString(), "");
  EXPECT_NE(host.readAllStandardError().toStdString().find("bogus"), std::string::npos);
}

TEST_F(HostTest, EndOfInputLeavesTheWindowOpen) {
  start();
  host.write("All,MX\n");
  host.closeWriteChannel();
  EXPECT_FALSE(host.waitForFinished(1500));
  EXPECT_EQ(host.state(), QProcess::Running);
  EXPECT_EQ(host.readAllStandardOutput().toStdString(), "");
}

// End to end: the drill file of the command line is imported and the view shows its holes and
// nothing else. On a virtual X display when the machine has one (xvfb-run), so the view is grabbed
// as a real window shows it.
TEST_F(HostTest, TheDrillFileOfTheCommandLineShowsItsHolesOnly) {
  QFile file(home.filePath("board.drl"));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(Drill) > 0);
  file.close();
  const QString xvfb = QStandardPaths::findExecutable("xvfb-run");
  if (xvfb.isEmpty()) {
    start({"-platform", "offscreen", file.fileName()});
  } else {
    QProcessEnvironment environment = host.processEnvironment();
    environment.remove("QT_QPA_PLATFORM");
    host.setProcessEnvironment(environment);
    host.start(xvfb, {"-a", "-s", "-screen 0 1280x1024x24", binary("tarvex-gbrviewer"), "-platform",
                      "xcb", file.fileName()});
    ASSERT_TRUE(host.waitForStarted(10000));
  }

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
  // The holes' spread is 0.44 by 0.34 inch.
  const double ratio = spanOf(columns) / spanOf(rows);
  EXPECT_NEAR(ratio, 0.44 / 0.34, 0.1);
}

TEST(CliTest, BadArgumentsExitWithTwoAndTheUsage) {
  ASSERT_TRUE(QFileInfo(binary("gbrview")).isExecutable()) << "build the target gbrview first";
  // Refused by the command line (whose own tests hold the reasons) or by the render's check.
  const QStringList bad[] = {
      {},
      {"draw", "a.gbr"},
      {"render", "--dpi", "0", "-o", "out.png", "a.gbr"},
      {"render", "-o", "out.png", "a.gbr", "--dpi"},
      {"info", "a.gbr", "b.gbr"},
  };
  for (const QStringList& arguments : bad) {
    SCOPED_TRACE(arguments.join(' ').toStdString());
    const test::ProcessRun run = test::runGbrview(arguments);
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_NE(run.err.find("gbrview info FILE [--json]"), std::string::npos);
    EXPECT_EQ(run.out, "");
  }
}

TEST(CliTest, HelpPrintsTheUsage) {
  const test::ProcessRun run = test::runGbrview({"--help"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_NE(run.out.find("gbrview render [--dpi N] [--window x0,y0,x1,y1] [--mono] [--layer N] "
                         "-o OUT.(png|pdf|svg) FILE..."),
            std::string::npos);
  EXPECT_NE(run.out.find("Gerber files (RS-274-X and RS-274-D) and Excellon drill files render"),
            std::string::npos)
      << run.out;
}

TEST(CliTest, VersionPrintsTheProjectsVersion) {
  const test::ProcessRun run = test::runGbrview({"--version"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_TRUE(QRegularExpression("^gbrview \\d+\\.\\d+(\\.\\d+)*\n$")
                  .match(QString::fromStdString(run.out))
                  .hasMatch())
      << run.out;
  EXPECT_EQ(run.err, "");
}

// Without XDG_RUNTIME_DIR Qt would warn on stderr; gbrview makes a private folder of mode 0700
// under the temporary folder, or gives an existing one of its own that mode, and prints nothing.
TEST(CliTest, WithoutARuntimeFolderStderrStaysEmpty) {
  for (const bool existing : {false, true}) {
    SCOPED_TRACE(existing ? "a folder left open to all" : "no folder yet");
    QTemporaryDir temporary;
    ASSERT_TRUE(temporary.isValid());
    const QString runtime = temporary.filePath(QString("tarvex-runtime-%1").arg(::getuid()));
    const QFile::Permissions openToAll =
        QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ReadOther | QFile::ExeOther;
    if (existing) {
      ASSERT_TRUE(QDir().mkdir(runtime) && QFile::setPermissions(runtime, openToAll));
    }
    QFile drill(temporary.filePath("board.drl"));
    ASSERT_TRUE(drill.open(QIODevice::WriteOnly) && drill.write(Drill) > 0);
    drill.close();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove("XDG_RUNTIME_DIR");
    environment.insert("TMPDIR", temporary.path());
    QProcess cli;
    cli.setProcessEnvironment(environment);
    cli.start(binary("gbrview"),
              {"render", "-o", temporary.filePath("board.png"), drill.fileName()});
    ASSERT_TRUE(cli.waitForFinished(60000));
    EXPECT_EQ(cli.exitCode(), 0);
    EXPECT_EQ(cli.readAllStandardError().toStdString(), "");
    const QFile::Permissions ownerGroupOther = QFileInfo(runtime).permissions() & 0x7077;
    EXPECT_EQ(ownerGroupOther.toInt(),
              (QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner).toInt());
  }
}

}  // namespace
