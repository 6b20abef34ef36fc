// The host and the CLI as the user runs them: real processes, their output and exit codes.
#include "support/CliProcess.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <unistd.h>

namespace {

using test::binary;

// Three holes of 0.04 inch.
constexpr const char* Drill = "M48\r\nINCH,TZ\r\nT1C0.04\r\n%\r\nT1\r\nX1000Y1000\r\nX5000Y1000\r\n"
                              "X3000Y4000\r\nM30\r\n";

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

TEST(CliTest, BadArgumentsExitWithTwoAndTheUsage) {
  ASSERT_TRUE(QFileInfo(binary("gbrview")).isExecutable()) << "build the target gbrview first";
  // Every line the command line refuses takes this one way out (its own tests hold the reasons);
  // the render's check prints the usage too (RenderCommandTest).
  const QStringList bad[] = {{}, {"info", "a.gbr", "b.gbr"}};
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
                         "[--apt TABLE]"),
            std::string::npos);
  EXPECT_NE(run.out.find("plotter files and DXF drawings render"), std::string::npos) << run.out;
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
