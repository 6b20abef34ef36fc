// Runs one of the project's executables as the user would and collects what it printed.
#pragma once

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <string>

namespace test {

// The application object that QProcess needs, created once.
inline QCoreApplication& coreApplication() {
  if (QCoreApplication* existing = QCoreApplication::instance())
    return *existing;
  static int argc = 1;
  static char name[] = "test_app";
  static char* argv[] = {name, nullptr};
  static QCoreApplication* app = new QCoreApplication(argc, argv);
  return *app;
}

// The path of a built executable.
inline QString binary(const char* name) { return QDir(TVX_DATA_DIR).filePath(name); }

struct ProcessRun {
  int exitCode = -1;  // -1 when it crashed or did not end in time
  std::string out;
  std::string err;
};

// Runs gbrview with arguments, in workDirectory when one is given, and waits up to timeoutMs for
// it to end.
inline ProcessRun runGbrview(const QStringList& arguments, const QString& workDirectory = {},
                             int timeoutMs = 60000) {
  coreApplication();
  QProcess cli;
  if (!workDirectory.isEmpty())
    cli.setWorkingDirectory(workDirectory);
  cli.start(binary("gbrview"), arguments);
  ProcessRun run;
  if (!cli.waitForFinished(timeoutMs)) {
    cli.kill();
    cli.waitForFinished(5000);
    return run;
  }
  run.exitCode = cli.exitStatus() == QProcess::NormalExit ? cli.exitCode() : -1;
  run.out = cli.readAllStandardOutput().toStdString();
  run.err = cli.readAllStandardError().toStdString();
  return run;
}

// A test of gbrview with a folder of its own for the files it writes.
class GbrviewTest : public ::testing::Test {
protected:
  void SetUp() override {
    coreApplication();
    ASSERT_TRUE(QFileInfo(binary("gbrview")).isExecutable()) << "build the target gbrview first";
    ASSERT_TRUE(folder.isValid());
  }
  // Writes bytes to a file of the folder; its path.
  QString write(const QString& name, const QByteArray& bytes) {
    const QString path = folder.filePath(name);
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
    return path;
  }

  QTemporaryDir folder;
};

}  // namespace test
