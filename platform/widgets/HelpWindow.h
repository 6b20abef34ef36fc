// The viewer's help: its own HTML pages in a help window, or in the desktop's browser.
#pragma once

#include <QPointer>

#include <functional>
#include <string>

class QTextBrowser;
class QUrl;
class QWidget;

namespace tvx {

// The component's help file name: AppPath, a separator, the component file's name without its
// extension, and ".HLP", trimmed.
std::string HelpFileName(const std::string& appPath, const std::string& componentFile);
// The compiled help of a help file name: its last three characters replaced by "chm".
std::string CompiledHelpFile(const std::string& helpFile);
// The page that stands for the compiled help: "help/index.html" in the help file's folder.
std::string HelpIndexPage(const std::string& helpFile);

// Owns the help window of one main window. ShowHelp opens the help pages (or brings the open
// window forward at its first page) and remembers that it did; closeHelp, at unload, closes what
// was opened.
class HelpWindow {
public:
  enum class Viewer { Window, DesktopBrowser };
  using UrlOpener = std::function<bool(const QUrl&)>;

  // helpFile is the component's HelpFile; owner the window the help belongs to (may be null).
  // The desktop browser is reached through opener (QDesktopServices::openUrl when empty).
  explicit HelpWindow(std::string helpFile, QWidget* owner = nullptr,
                      Viewer viewer = Viewer::Window, UrlOpener opener = {});
  ~HelpWindow();
  HelpWindow(const HelpWindow&) = delete;
  HelpWindow& operator=(const HelpWindow&) = delete;

  // False, and nothing opened, when the pages are missing or the browser refused.
  bool ShowHelp();
  void closeHelp();

  bool isOpen() const { return open_; }
  const std::string& indexPage() const { return indexPage_; }
  // The help window while it exists (Viewer::Window only).
  QTextBrowser* browser() const { return browser_; }

private:
  std::string indexPage_;
  QWidget* owner_;
  Viewer viewer_;
  UrlOpener opener_;
  QPointer<QTextBrowser> browser_;
  bool open_ = false;
};

}  // namespace tvx
