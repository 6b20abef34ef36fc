// Start-up of the main window (Form_Load), its positioning, and ApplySystemSettings.
#include "shell/GBRVIEWER_MAIN.h"
#include "viewer/DisplayUnits.h"

#include "common/FileLayer.h"
#include "common/TextHelpers.h"
#include "import/readers/ImportSession.h"
#include "kernel/Kernel.h"
#include "platform/InterfaceFont.h"
#include "platform/SystemServices.h"
#include "platform/UserStore.h"
#include "platform/ViewerWorkFolder.h"
#include "platform/widgets/HelpWindow.h"
#include "platform/widgets/LocalizeForm.h"
#include "platform/widgets/WindowPlace.h"
#include "shell/HostCommands.h"
#include "shell/Language.h"
#include "viewer/widgets/ViewPicture.h"

#include <QApplication>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QScreen>
#include <QTextBrowser>
#include <QToolButton>

#include <cmath>

namespace tvx {

namespace {

constexpr const char* ProductNameString = "PRODUCT_NAME";
constexpr const char* ViewerTitleId = "62104";
constexpr const char* ViewerTitleText = "Fabrication Graphics Viewer";
constexpr const char* EscCaptionId = "62105";
constexpr const char* EscCaption = "Esc";
constexpr const char* EscTipId = "62106";
constexpr const char* EscTip = "Click to cancel current operation";
// The file the component's help is named after.
constexpr const char* ComponentFile = "tarvex_gbrviewer";
// Raster, alternate raster and angle step when the kernel's tables hold none.
constexpr int32_t FallbackRaster = 254000;

}  // namespace

void GBRVIEWER_MAIN::resetMembers() {
  exitAnyWay_ = false;
  resizeStartup_ = firstResize_ = false;
  minimisingAll_ = false;
  toolbarsLocked_ = false;
  currentFunction_ = 0;
  cpDcId_ = 0;
  cursors_ = {};
  languagePath_.clear();
  sysName_.clear();
  helpFile_.clear();
  viewerTitle_.clear();
  settings_ = ViewerSettings{};
  functions_ = FunctionTable{};
  pointer_->reset();
  ViewRedraw& r = *redraw_;
  r.RedrawPending = r.PaintBusy = r.RedrawBusy = r.ResizeBusy = r.ResizePending = false;
  r.HLDCode = r.HLPadstack = 0;
  r.HLDCodeText.clear();
  r.HLPadstackText.clear();
  r.MessageLine.clear();
}

// Start-up, in the order of its steps.
void GBRVIEWER_MAIN::Form_Load() {
  Kernel& kernel = context_.kernel;
  SystemServices& services = context_.services;
  loaded_ = true;
  setBusyPicture(BusyPicture);
  resetMembers();

  if (appPath_.empty())
    appPath_ = QCoreApplication::applicationDirPath().toStdString();
  sysDir_ = appPath_ + "/SYS";
  services.SetIniFile(SystemServices::StringFromPointer(kernel.strings.E_GetString(IniFileString)));
  // A settings file that cannot be replaced is said by the file layer's message, once a run.
  services.setSettingsFailureReport(
      [&services, &prompts = context_.prompts](const std::string& file, int error) {
        FileLayer(services, &prompts).ReportWriteError(file, error);
      });
  readFolders(services,
              SystemServices::StringFromPointer(kernel.strings.E_GetString(ProductNameString)),
              settings_);
  languagePath_ = ApplyLanguage(appPath_, services, kernel.strings);

  exitAnyWay_ = true;
  readSystemNames(services, settings_);
  sysName_ = settings_.SysName;
  if (!ReadMenuFile(functions_, menuFilePath(languagePath_), services)) {
    ShutDown();
    return;
  }
  // Keys and the wheel reach the window before its controls: an application-wide filter.
  qApp->installEventFilter(this);
  exitAnyWay_ = false;

  localizeWindow();
  cpDcId_ = kernel.graphics.G_GetDC(viewPicture_, [this] { viewPicture_->present(); });
  view_->setDevice(cpDcId_);
  services.setGraphics(&kernel.graphics);
  redraw_->RedrawPending = true;

  viewPicture_->setEnabled(false);
  setCursor(Qt::WaitCursor);
  helpFile_ = HelpFileName(appPath_, ComponentFile);
  viewerTitle_ = services.LocalMessage(ViewerTitleText, ViewerTitleId);
  minWidth_ = DesignWidth;
  minHeight_ = DesignHeight;
  setMinimumSize(int(minWidth_), int(minHeight_));
  resizeStartup_ = firstResize_ = true;

  // The working arrays and the job's file records start empty.
  import_ = std::make_unique<ImportSession>(kernel.store, services, context_.prompts);
  // While a file is read the windows keep painting and the message line shows the progress; what
  // the user does waits until the reading is over, as do the host's commands, so nothing starts
  // inside an import.
  import_->hpglReader.editMsgLine = [this](const std::string& text) { EditMsgLine(text); };
  import_->dxfReader.editMsgLine = [this](const std::string& text) { EditMsgLine(text); };
  // The size of a drawing that is out of range is told in the display unit.
  import_->dxfReader.formatLength = [this](double storeLength) {
    return FormatLengthValue(storeLength, view_->DisplayUnit, StoreUnitsPerMm);
  };
  import_->dxfReader.unitWord = [this] {
    return " " + std::string(displayUnitInfo(view_->DisplayUnit).Word);
  };
  import_->setYield([] {
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents |
                                    QEventLoop::ExcludeSocketNotifiers);
  });
  // The viewer's own folder in the work directory: another viewer on the same folder never sees
  // its intermediate files.
  const char* work = kernel.strings.E_GetString(WorkDirString);
  workFolder_ = std::make_unique<ViewerWorkFolder>(work ? work : "");
  import_->state.Job.WorkDirectory = workFolder_->path();
  positionWindow();
  resizeStartup_ = false;

  // The unit words of the display are those of viewer/DisplayUnits.h.
  readViewerSettings(services, settings_);
  applyToView(settings_, *view_);
  applyMeasureSettings();
  redraw_->RememberedViewFlags = view_->ViewFlags;
  redraw_->RememberedMonoFlags = view_->MonoFlags;
  currentFunction_ = 0;

  escPanel_->setText(QString::fromStdString(services.LocalMessage(EscCaption, EscCaptionId)));
  escPanel_->setToolTip(QString::fromStdString(services.LocalMessage(EscTip, EscTipId)));
  kernel.graphics.G_SetGridMode(cpDcId_, 1);

  ApplySystemSettings();
  // The bands, docked where the user left them.
  buildToolBars();
  loadBands();

  // The kernel's cursors: the arrow for the view picture, the cross for the tools.
  cursors_[0] = kernel.graphics.G_SelectCur(1);
  cursors_[1] = kernel.graphics.G_SelectCur(2);
  if (const QCursor* first = kernel.graphics.cursor(cursors_[0]))
    viewPicture_->setCursor(*first);

  show();
  unsetCursor();
  RedrawScreen();
  viewPicture_->setEnabled(true);
  viewPicture_->setFocus();
  setBusyPicture(IdlePicture);
  if (settings_.TOOLBARS == 1)
    toolbarsLocked_ = true;
  applyToolbarLock();
  viewPicture_->setFocus();

  // Context strings of siblings see the component as running while its name is set.
  kernel.strings.E_SetString(ComponentName, RunningMarker);

  if (!startupFiles_.empty())
    importFiles(std::exchange(startupFiles_, {}), std::exchange(startupLayers_, {}));
  else
    M_FSIimport_Click();
  // A name of the command line that is no file to read is said after the imports' outcome.
  if (!refusedStartupNames_.empty() && import_) {
    const auto& [name, error] = refusedStartupNames_.front();
    EditMsgLine(import_->files.readErrorLine(name, error));
    refusedStartupNames_.clear();
  }
}

void GBRVIEWER_MAIN::positionWindow() {
  QScreen* screen = this->screen() ? this->screen() : QGuiApplication::primaryScreen();
  const QRect area = screen ? screen->availableGeometry() : QRect(0, 0, 800, 600);
  UserStore* store = userStore_;
  if (!store) {
    // With a settings file the window places go into it too; without one, to the desktop's store.
    if (context_.services.iniFile().empty())
      ownUserStore_ = std::make_unique<QtUserStore>();
    else
      ownUserStore_ = std::make_unique<IniUserStore>(context_.services);
    store = userStore_ = ownUserStore_.get();
  }
  const std::string name = objectName().toStdString();
  const bool saved =
      store->GetSetting(UserStoreApplication, UserStoreSection, name + "_TOP", "") != "";
  if (!saved) {
    setGeometry(area);
    return;
  }
  WindowPlace place;
  RestoreWindowPlace(*store, name, workAreaOf(*this), width() * TwipsPerPixel,
                     height() * TwipsPerPixel, place);
  if (place.Left >= area.width() * TwipsPerPixel)
    place.Left = area.width() * TwipsPerPixel / 2;
  moveToPlace(*this, place);
}

void GBRVIEWER_MAIN::localizeWindow() {
  LocalizeForm(this, context_.services, SelectInterfaceFont());
  // The caption is the system's name, which has a message of its own rather than a tag.
  sysName_ = context_.services.LocalMessage(std::string(SysNameMessageText),
                                            std::string(SysNameMessageId));
  setWindowTitle(QString::fromStdString(sysName_));
}

// The settings and the kernel's tables again, in the order of their steps. Tool bars and combos
// are not part of this window yet; their steps join when they are built.
void GBRVIEWER_MAIN::ApplySystemSettings() {
  Kernel& kernel = context_.kernel;
  SystemServices& services = context_.services;
  pointer_->reset();
  ViewRedraw& r = *redraw_;
  const bool wasBusy = r.RedrawBusy;
  r.RedrawBusy = true;

  // The store's database and hierarchy; the caption is the system's name.
  setWindowTitle(QString::fromStdString(sysName_));
  services.SetDatabaseUnitsPerMm(StoreUnitsPerMm);
  readSystemSettings(services, kernel.strings, settings_);
  colours_->build(kernel.strings);

  // The coordinates' number format follows the import's decimal count.
  coordinateFormat_ = "####0";
  const int32_t decimals = import_ ? import_->gerberFormat.DecimalDigits[0] : 0;
  if (decimals > 0)
    coordinateFormat_ += "." + std::string(size_t(decimals), '0');
  apertureTable_.current = UpperCase(settings_.Aper);
  apertureTable_.load(sysDir_);
  if (import_)
    import_->gerberPass.apertureTable = &apertureTable_.rows;
  view_->ZoomModeFlag = zoommode::Board;

  view_->readKernelTables(kernel.strings);
  r.RasterStep = view_->tables().currentGridStep(view_->DisplayUnit);
  if (r.RasterStep == 0)
    r.RasterStep = FallbackRaster;

  // The layers are built once per load: building them again would empty their symbols.
  const bool mono = (r.RememberedMonoFlags & MonoFlag) != 0;
  if (!layersBuilt_) {
    BuildLayerTables(kernel.store, services, *colours_, mono, *tables_);
    layersBuilt_ = true;
  }
  syncMenuChecks();
  if (view_->m_Precision == 0)
    applyViewChange(view_->takeDefaultPrecision());

  M_FSI_Click(1);
  kernel.graphics.G_ChangeBackgroundColor(cpDcId_, colours_->backgroundColour());
  view_->ViewFlags = r.RememberedViewFlags;
  view_->MonoFlags = r.RememberedMonoFlags;
  r.applyMono();

  r.RedrawBusy = wasBusy;
  syncMenuChecks();
  layoutView();
}

}  // namespace tvx
