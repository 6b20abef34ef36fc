// The host and the CLI as the user runs them: real processes, their output and exit codes.
#include "support/CliProcess.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

using test::binary;

QCoreApplication& application() { return test::coreApplication(); }

class HostTest : public ::testing::Test {
protected:
  void SetUp() override {
    application();
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
  start({"first.gbr", "second.drl"});  // files are accepted
  host.write("All,EX\n");
  ASSERT_TRUE(host.waitForFinished(20000));
  EXPECT_EQ(host.exitStatus(), QProcess::NormalExit);
  EXPECT_EQ(host.exitCode(), 0);
  EXPECT_EQ(host.readAllStandardOutput().toStdString(), "TVNGBRVIEWER\tSHUTDOWN\n");
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
  EXPECT_TRUE(QFileInfo(home.filePath("own")).isDir());
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

test::ProcessRun runCli(const QStringList& arguments) { return test::runGbrview(arguments); }

TEST(CliTest, BadArgumentsExitWithTwoAndTheUsage) {
  ASSERT_TRUE(QFileInfo(binary("gbrview")).isExecutable()) << "build the target gbrview first";
  const QStringList bad[] = {
      {},
      {"draw", "a.gbr"},
      {"render"},
      {"render", "a.gbr"},
      {"render", "-o", "out.png"},
      {"render", "-o", "out.jpg", "a.gbr"},
      {"render", "--dpi", "0", "-o", "out.png", "a.gbr"},
      {"render", "--dpi", "many", "-o", "out.png", "a.gbr"},
      {"render", "--window", "0,0,10", "-o", "out.png", "a.gbr"},
      {"render", "--window", "10,0,0,10", "-o", "out.png", "a.gbr"},
      {"render", "--layer", "32", "-o", "out.png", "a.gbr"},
      {"render", "--colour", "-o", "out.png", "a.gbr"},
      {"render", "-o", "out.png", "a.gbr", "--dpi"},
      {"info"},
      {"info", "a.gbr", "b.gbr"},
      {"info", "--xml", "a.gbr"},
  };
  for (const QStringList& arguments : bad) {
    SCOPED_TRACE(arguments.join(' ').toStdString());
    const test::ProcessRun run = runCli(arguments);
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_NE(run.err.find("gbrview info FILE [--json]"), std::string::npos);
    EXPECT_EQ(run.out, "");
  }
}

TEST(CliTest, HelpPrintsTheUsage) {
  const test::ProcessRun run = runCli({"--help"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_NE(run.out.find("gbrview render [--dpi N] [--window x0,y0,x1,y1] [--mono] [--layer N] "
                         "-o OUT.(png|pdf|svg) FILE..."),
            std::string::npos);
}

}  // namespace
