#include "platform/widgets/HelpWindow.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QTextBrowser>
#include <QUrl>

#include <filesystem>

namespace tvx {

namespace {
std::string trimmed(const std::string& text) {
  const size_t b = text.find_first_not_of(" \t");
  if (b == std::string::npos)
    return {};
  return text.substr(b, text.find_last_not_of(" \t") - b + 1);
}
}  // namespace

std::string HelpFileName(const std::string& appPath, const std::string& componentFile) {
  std::string folder = appPath;
  if (!folder.empty() && folder.back() != '/' && folder.back() != '\\')
    folder += '/';
  return trimmed(folder + std::filesystem::path(componentFile).stem().string() + ".HLP");
}

std::string CompiledHelpFile(const std::string& helpFile) {
  if (helpFile.size() < 3)
    return "chm";
  return helpFile.substr(0, helpFile.size() - 3) + "chm";
}

std::string HelpIndexPage(const std::string& helpFile) {
  const std::filesystem::path folder = std::filesystem::path(helpFile).parent_path();
  return (folder / "help" / "index.html").string();
}

HelpWindow::HelpWindow(std::string helpFile, QWidget* owner, Viewer viewer, UrlOpener opener)
    : indexPage_(HelpIndexPage(helpFile)), owner_(owner), viewer_(viewer),
      opener_(std::move(opener)) {
  if (!opener_)
    opener_ = [](const QUrl& url) { return QDesktopServices::openUrl(url); };
}

HelpWindow::~HelpWindow() { closeHelp(); }

bool HelpWindow::ShowHelp() {
  const QString page = QString::fromStdString(indexPage_);
  if (!QFileInfo(page).isFile())
    return false;
  const QUrl url = QUrl::fromLocalFile(QFileInfo(page).absoluteFilePath());

  if (viewer_ == Viewer::DesktopBrowser) {
    if (!opener_(url))
      return false;
    open_ = true;
    return true;
  }

  if (!browser_) {
    // A window of its own that belongs to the owner: it stays above it and goes with it.
    browser_ = new QTextBrowser(owner_);
    browser_->setWindowFlag(Qt::Window);
    browser_->setAttribute(Qt::WA_DeleteOnClose, false);
    browser_->setOpenExternalLinks(true);
    browser_->resize(720, 560);
    QObject::connect(
        browser_.data(), &QTextBrowser::sourceChanged, browser_.data(),
        [browser = browser_.data()] { browser->setWindowTitle(browser->documentTitle()); });
  }
  browser_->setSource(url);
  browser_->setWindowTitle(browser_->documentTitle());
  browser_->show();
  browser_->raise();
  browser_->activateWindow();
  open_ = true;
  return true;
}

void HelpWindow::closeHelp() {
  if (!open_)
    return;
  open_ = false;
  // A page in the desktop's browser belongs to the browser and stays.
  if (browser_)
    delete browser_.data();
}

}  // namespace tvx
