// tarvex-gbrviewer: a host for the viewer component. It plays the suite's shell: it opens the
// kernel, creates the component, shows it, passes each line of its standard input to the component
// as a command, and writes every command the component sends to its standard output as
// "Aname<TAB>sCommand". It ends when the component reports SHUTDOWN.
//
// The files named on the command line are imported at start, one after another, in place of the
// file request. Lines that start "TARVEX," are the host's own queries (app/HostQueries.h): they
// answer what the user sees, for the scripts and tests that drive the viewer.

#include "app/HostQueries.h"
#include "app/PauseMeter.h"
#include "app/cli/CommandLine.h"
#include "common/FileLayer.h"
#include "common/widgets/QtUserPrompts.h"
#include "kernel/Kernel.h"
#include "platform/RuntimeDirectory.h"
#include "platform/SuiteFolders.h"
#include "platform/SystemServices.h"
#include "shell/ComponentContext.h"
#include "shell/GBRVIEWER_MAIN.h"
#include "shell/HostCommands.h"
#include "shell/clsTVNGBRVIEWER.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSocketNotifier>
#include <QString>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <unistd.h>

namespace {

// $XDG_<variable> when it is set to an absolute path, otherwise ~/<fallback>.
// Reads standard input as it arrives, without blocking the event loop, and hands each complete
// line to a callback. The end of input stops the reading and nothing else.
class StandardInputReader {
public:
  explicit StandardInputReader(std::function<void(const std::string&)> onLine)
      : notifier_(std::make_unique<QSocketNotifier>(STDIN_FILENO, QSocketNotifier::Read)),
        onLine_(std::move(onLine)) {
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                     [this] { readAvailable(); });
  }

private:
  void readAvailable() {
    char buffer[4096];
    const ssize_t n = ::read(STDIN_FILENO, buffer, sizeof buffer);
    if (n < 0 && (errno == EINTR || errno == EAGAIN))
      return;
    if (n <= 0) {
      notifier_->setEnabled(false);
      if (!pending_.empty())
        deliver(std::exchange(pending_, std::string()));
      return;
    }
    pending_.append(buffer, static_cast<size_t>(n));
    std::string::size_type end;
    while ((end = pending_.find('\n')) != std::string::npos) {
      std::string line = pending_.substr(0, end);
      pending_.erase(0, end + 1);
      deliver(std::move(line));
    }
  }
  void deliver(std::string line) {
    if (!line.empty() && line.back() == '\r')
      line.pop_back();
    onLine_(line);
  }

  std::unique_ptr<QSocketNotifier> notifier_;
  std::function<void(const std::string&)> onLine_;
  std::string pending_;
};

}  // namespace

int main(int argc, char* argv[]) {
  tvx::ensureRuntimeDirectory();  // before any Qt object: no runtime folder warning on stderr
  QCommandLineParser parser;
  parser.setApplicationDescription(
      "Fabrication graphics viewer of Tarvex. Reads one command per line from standard input "
      "(for example \"All,EX\") and writes each command the viewer sends as NAME<TAB>COMMAND.");
  const QCommandLineOption helpOption({"h", "help"}, "Displays this help.");
  const QCommandLineOption iniOption(
      "ini", "Settings file (default $XDG_CONFIG_HOME/tarvex/tarvex.ini).", "FILE");
  const QCommandLineOption layerOption(
      "layer", "Imports the file after it into layer N (1 to 31) instead of where its kind goes.",
      "N");
  parser.addOption(helpOption);
  parser.addOption(iniOption);
  parser.addOption(layerOption);
  parser.addPositionalArgument("files", "Files to import at start.", "[[--layer N] FILE...]");
  // Help needs no display: it is answered before the application object exists.
  for (int i = 1; i < argc; ++i) {
    if (std::string_view(argv[i]) == "-h" || std::string_view(argv[i]) == "--help") {
      QString help = parser.helpText();
      help.replace("<executable_name>", "tarvex-gbrviewer");
      std::fputs(qPrintable(help), stdout);
      return 0;
    }
  }

  QApplication app(argc, argv);
  QApplication::setApplicationName("tarvex-gbrviewer");
  QApplication::setApplicationDisplayName("Tarvex");
  // Only the component's SHUTDOWN ends the host, not the last window closing.
  app.setQuitOnLastWindowClosed(false);
  // The timing scripts ask how long the window went without answering (the query PAUSE).
  std::unique_ptr<tvx::PauseMeter> pauses;
  if (qEnvironmentVariableIsSet("TVX_MEASURE_PAUSES"))
    pauses = std::make_unique<tvx::PauseMeter>();
  // The application object has taken its own options (-platform, ...) out of the arguments.
  if (!parser.parse(QCoreApplication::arguments())) {
    std::fprintf(stderr, "tarvex-gbrviewer: %s\n", qPrintable(parser.errorText()));
    return 2;
  }

  std::vector<int32_t> fileLayers;
  if (const std::string error =
          tvx::layersOfFiles(QCoreApplication::arguments(), {"--ini"}, fileLayers);
      !error.empty()) {
    std::fprintf(stderr, "tarvex-gbrviewer: %s\n", error.c_str());
    return 2;
  }

  QString iniFile = parser.value(iniOption);
  if (iniFile.isEmpty())
    iniFile = QString::fromStdString(tvx::defaultSettingsFile());
  iniFile = QDir::cleanPath(QDir::current().absoluteFilePath(iniFile));
  QDir().mkpath(QFileInfo(iniFile).absolutePath());
  const QString workDirectory =
      QString::fromStdString(tvx::xdgFolder("XDG_CACHE_HOME", ".cache")) + "/tarvex";
  QDir().mkpath(workDirectory);

  tvx::Kernel kernel;
  tvx::QtUserPrompts prompts;
  tvx::SystemServices services(&prompts);
  prompts.setServices(&services);
  kernel.strings.E_SetString(tvx::IniFileString, iniFile.toStdString());
  kernel.strings.E_SetString(tvx::WorkDirString, workDirectory.toStdString());

  tvx::ComponentContext context{kernel, services, prompts};
  tvx::clsTVNGBRVIEWER component(context);
  // Ctrl+F1 in the query box opens the viewer's help.
  prompts.setHelpHandler([] {
    if (tvx::GBRVIEWER_MAIN* window = tvx::clsTVNGBRVIEWER::mainWindow())
      window->M_Help_Click();
  });

  QObject::connect(&component, &tvx::clsTVNGBRVIEWER::NotifyServer,
                   [&app](const std::string& Aname, const std::string& sCommand) {
                     std::fprintf(stdout, "%s\t%s\n", Aname.c_str(), sCommand.c_str());
                     std::fflush(stdout);
                     if (Aname == tvx::ComponentName && sCommand == tvx::ShutdownCommand)
                       QMetaObject::invokeMethod(&app, &QCoreApplication::quit,
                                                 Qt::QueuedConnection);
                   });

  StandardInputReader input([&component](const std::string& line) {
    std::string answer;
    if (tvx::answerHostQuery(line, tvx::clsTVNGBRVIEWER::mainWindow(), answer)) {
      std::fputs(answer.c_str(), stdout);
      std::fflush(stdout);
      return;
    }
    component.NotifyMe(tvx::HostName, line);
  });

  std::vector<std::string> files;
  std::vector<int32_t> layers;
  std::vector<std::pair<std::string, int>> refused;
  // A name that is no file to read is told here, with the reason, and passed over, so that
  // start-up shows no box for it; the window's message line names it too.
  const QStringList named = parser.positionalArguments();
  for (qsizetype n = 0; n < named.size(); ++n) {
    const QString& file = named[n];
    const int error = tvx::FileLayer::plainFileError(QFile::encodeName(file).toStdString());
    if (error != 0) {
      const char* reason = error == EISDIR                         ? "is a folder, not a file"
                           : error == tvx::FileLayer::NotPlainFile ? "is not a plain file"
                                                                   : std::strerror(error);
      std::fprintf(stderr, "tarvex-gbrviewer: %s: %s\n", qPrintable(file), reason);
      refused.emplace_back(file.toStdString(), error);
      continue;
    }
    files.push_back(QFileInfo(file).absoluteFilePath().toStdString());
    layers.push_back(size_t(n) < fileLayers.size() ? fileLayers[size_t(n)] : 0);
  }
  if (tvx::GBRVIEWER_MAIN* window = tvx::clsTVNGBRVIEWER::mainWindow())
    window->setStartupFiles(std::move(files), std::move(layers), std::move(refused));

  int16_t mode = 0;
  component.Load(mode);
  return app.exec();
}
