// gbrview: the viewer's readers and drawing without a window. Its verbs (render, info,
// reconstruct, print) and their options are parsed in app/cli/CommandLine, whose usage text lists
// them. Exit codes: 0 success, 1 a file failed, 2 bad arguments.

#include "app/cli/CommandLine.h"
#include "app/cli/FileInfo.h"
#include "app/cli/RenderFiles.h"
#include "platform/RuntimeDirectory.h"

#include <QGuiApplication>
#include <QString>
#include <QStringList>

#include <cstdio>
#include <string>

namespace {

int badArguments(const std::string& reason) {
  std::fprintf(stderr, "gbrview: %s\n\n%s", reason.c_str(), tvx::GbrviewUsage);
  return tvx::ExitBadArguments;
}

// Runs work under a headless platform unless the environment names one. The application sees no
// arguments: they are gbrview's, not Qt's.
template <typename Work> int withApplication(Work&& work) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
    qputenv("QT_QPA_PLATFORM", "offscreen");
  static char name[] = "gbrview";
  int argc = 1;
  char* argv[] = {name, nullptr};
  QGuiApplication application(argc, argv);
  return work();
}

int runRender(const tvx::RenderOptions& options) {
  const tvx::RenderOutcome outcome = tvx::renderFiles(options);
  for (const std::string& message : outcome.messages)
    std::fprintf(stderr, "%s\n", message.c_str());
  if (outcome.exitCode == tvx::ExitBadArguments)
    std::fputs(tvx::GbrviewUsage, stderr);
  return outcome.exitCode;
}

// Writes an outcome's report to stdout and its messages to stderr; its exit code.
template <typename Outcome> int reported(const Outcome& outcome) {
  std::fwrite(outcome.report.data(), 1, outcome.report.size(), stdout);
  for (const std::string& message : outcome.messages)
    std::fprintf(stderr, "%s\n", message.c_str());
  return outcome.exitCode;
}

int runInfo(const tvx::CliArguments& arguments) {
  std::string out;
  std::string err;
  const int code = tvx::runInfoCommand(arguments.infoFile, arguments.json, out, err,
                                       arguments.infoApertureTable);
  std::fwrite(out.data(), 1, out.size(), stdout);
  std::fwrite(err.data(), 1, err.size(), stderr);
  return code;
}

}  // namespace

int main(int argc, char* argv[]) {
  // Before any Qt object: a session without a runtime folder gets a private one, so that Qt has
  // nothing to warn about on stderr.
  tvx::ensureRuntimeDirectory();
  QStringList arguments;
  for (int i = 0; i < argc; ++i)
    arguments.append(QString::fromLocal8Bit(argv[i]));
  const tvx::CliArguments parsed = tvx::parseCliArguments(arguments);
  switch (parsed.command) {
  case tvx::CliCommand::Help:
    std::fputs(tvx::GbrviewUsage, stdout);
    return 0;
  case tvx::CliCommand::Version:
    std::printf("gbrview %s\n", TVX_VERSION);
    return 0;
  case tvx::CliCommand::Render:
    return withApplication([&] { return runRender(parsed.render); });
  case tvx::CliCommand::Info:
    return runInfo(parsed);
  case tvx::CliCommand::Reconstruct:
    return withApplication([&] { return reported(tvx::reconstructFiles(parsed.reconstruct)); });
  case tvx::CliCommand::Print:
    return withApplication([&] { return reported(tvx::printFiles(parsed.print)); });
  case tvx::CliCommand::Bad:
    break;
  }
  return badArguments(parsed.error);
}
