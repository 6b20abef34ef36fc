// Runs one of the project's executables as the user would and collects what it printed.
#pragma once

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QString>
#include <QStringList>

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

// Runs gbrview with arguments and waits up to timeoutMs for it to end.
inline ProcessRun runGbrview(const QStringList& arguments, int timeoutMs = 60000) {
  coreApplication();
  QProcess cli;
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

}  // namespace test
