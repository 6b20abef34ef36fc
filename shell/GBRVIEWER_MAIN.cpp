#include "shell/GBRVIEWER_MAIN.h"

#include "kernel/Kernel.h"
#include "platform/InterfaceFont.h"
#include "platform/LocalizeForm.h"
#include "platform/SystemServices.h"
#include "platform/TokenList.h"
#include "shell/HostCommands.h"
#include "shell/Language.h"

#include <QCloseEvent>
#include <QWidget>

namespace tvx {

namespace {

// The system's name, which becomes the window's caption.
constexpr const char* SysNameId = "62450";
constexpr const char* SysNameDefault =
    "Fabrication Graphics (Gerber/Excellon/DXF/HPGL) Viewer & Import";

}  // namespace

GBRVIEWER_MAIN::GBRVIEWER_MAIN(const ComponentContext& context, QWidget* parent)
    : QMainWindow(parent), context_(context) {
  setObjectName("GBRVIEWER_MAIN");
  viewPicture_ = new QWidget(this);
  viewPicture_->setObjectName("ViewPicture");
  setCentralWidget(viewPicture_);
}

GBRVIEWER_MAIN::~GBRVIEWER_MAIN() = default;

void GBRVIEWER_MAIN::showWindow() {
  // Start-up shows the window itself, or gives up and leaves it unloaded.
  if (!loaded_)
    Form_Load();
  else
    show();
}

void GBRVIEWER_MAIN::resetMembers() {
  exitAnyWay_ = false;
  redrawPending_ = false;
  pointerToolActive_ = false;
  importDialogVisible_ = false;
  currentFunction_ = 0;
  languagePath_.clear();
  sysName_.clear();
}

// Start-up, in the order of its steps. The steps of the later parts of the viewer (country table,
// menu file, tool bars, cursors, the kernel's device, the import request) join them in place.
void GBRVIEWER_MAIN::Form_Load() {
  loaded_ = true;
  resetMembers();

  // The settings file is named by the host through the kernel.
  context_.services.SetIniFile(
      SystemServices::StringFromPointer(context_.kernel.strings.E_GetString(IniFileString)));

  // The menu file is read here, with ExitAnyWay set around it, once start-up reads it.

  localizeWindow();
  redrawPending_ = true;
  currentFunction_ = 0;
  ApplySystemSettings();

  // Siblings see the component as running while its kernel string is not empty.
  context_.kernel.strings.E_SetString(ComponentName, RunningMarker);

  show();
  RedrawScreen();
}

void GBRVIEWER_MAIN::Form_QueryUnload(bool& Cancel, int16_t UnloadMode) {
  if (pointerToolActive_) {
    Cancel = true;
    return;
  }
  if (windowStateCode() == windowstate::Minimised) {
    // A minimised window comes back first; a second close is needed.
    setWindowStateCode(windowstate::Normal);
    Cancel = true;
    return;
  }
  if (importDialogVisible_) {
    Cancel = true;
    return;
  }
}

// Unload, in the order of its steps. Saving tool bars, placement and settings, and freeing the
// undo copies, cursors and the kernel's device come with the parts that own them.
void GBRVIEWER_MAIN::Form_Unload(bool& Cancel) {
  if (!exitAnyWay_)
    context_.kernel.strings.E_SetString(ComponentName, "");
  emit NotifyClass(ComponentName, ShutdownCommand);
}

bool GBRVIEWER_MAIN::unloadWindow(int16_t unloadMode, bool mayRefuse) {
  if (!loaded_ || unloading_)
    return !loaded_;
  if (mayRefuse) {
    bool cancel = false;
    Form_QueryUnload(cancel, unloadMode);
    if (cancel)
      return false;
  }
  unloading_ = true;
  bool cancel = false;
  Form_Unload(cancel);
  unloading_ = false;
  if (cancel)
    return false;
  loaded_ = false;
  hide();
  return true;
}

void GBRVIEWER_MAIN::ShutDown() { unloadWindow(unloadmode::Code, true); }

void GBRVIEWER_MAIN::unloadUnconditionally() { unloadWindow(unloadmode::Code, false); }

void GBRVIEWER_MAIN::closeEvent(QCloseEvent* event) {
  if (!loaded_ || unloading_) {
    event->accept();
    return;
  }
  if (unloadWindow(unloadmode::UserClose, true))
    event->accept();
  else
    event->ignore();
}

void GBRVIEWER_MAIN::AP_ExeCmd(const std::string& Cmd) {
  if (Cmd.empty())
    return;
  TokenList tokens;
  tokens.Parse(Cmd, ",");
  const std::string addressee = tokens.Item(1);
  if (addressee != ComponentName && addressee != AddressAll)
    return;

  const std::string verb = tokens.Item(2);
  if (verb == "MX") {
    setWindowStateCode(windowstate::Maximised);
  } else if (verb == "MN") {
    setWindowStateCode(windowstate::Minimised);
  } else if (verb == "DF") {
    setWindowStateCode(windowstate::Normal);
  } else if (verb == "UP") {
    ApplySystemSettings();
    currentFunction_ = 0;
    M_FSI_Click(1);
    RedrawScreen();
  } else if (verb == "EX") {
    ShutDown();
  } else if (verb == "LZ") {
    // The host may have changed the language: its path comes back through the kernel.
    languagePath_ = ReloadLanguage(languagePath_, context_.services, context_.kernel.strings);
    localizeWindow();
  }
}

void GBRVIEWER_MAIN::AP_SendCmd(const std::string& Aname, const std::string& sCommand) {
  emit NotifyClass(Aname, sCommand);
}

void GBRVIEWER_MAIN::AP_SendCmdAll(const std::string& sCommand) {
  emit NotifyClass(ComponentName, sCommand);
}

void GBRVIEWER_MAIN::AP_Shell(const std::string& Aname, int16_t& iMode,
                              const std::string& sFileName) {
  emit NotifyClass(Aname, "SHELL," + std::to_string(iMode) + "," + sFileName);
}

int16_t GBRVIEWER_MAIN::windowStateCode() const {
  const Qt::WindowStates state = windowState();
  if (state & Qt::WindowMinimized)
    return windowstate::Minimised;
  if (state & (Qt::WindowMaximized | Qt::WindowFullScreen))
    return windowstate::Maximised;
  return windowstate::Normal;
}

void GBRVIEWER_MAIN::setWindowStateCode(int16_t state) {
  switch (state) {
  case windowstate::Minimised:
    setWindowState(Qt::WindowMinimized);
    break;
  case windowstate::Maximised:
    setWindowState(Qt::WindowMaximized);
    break;
  default:
    setWindowState(Qt::WindowNoState);
    break;
  }
}

// The steps that exist so far; tables, layers, grid, combos and tool bars join them with the
// parts that own them.
void GBRVIEWER_MAIN::ApplySystemSettings() {
  setWindowTitle(QString::fromStdString(sysName_));
  context_.services.SetDatabaseUnitsPerMm(100000);
  M_FSI_Click(1);
}

void GBRVIEWER_MAIN::M_FSI_Click(int16_t function) { currentFunction_ = function; }

void GBRVIEWER_MAIN::RedrawScreen() {
  redrawPending_ = true;
  viewPicture_->update();
}

void GBRVIEWER_MAIN::localizeWindow() {
  LocalizeForm(this, context_.services, SelectInterfaceFont());
  // The caption is the system's name, which has a message of its own rather than a tag.
  sysName_ = context_.services.LocalMessage(SysNameDefault, SysNameId);
  setWindowTitle(QString::fromStdString(sysName_));
}

}  // namespace tvx
