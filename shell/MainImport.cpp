// The file-open command of the main window and the host's files, and the layer visibility window.
#include "shell/GBRVIEWER_MAIN.h"

#include "aperture/widgets/GBRVIEWER_APT.h"
#include "import/core/StatusCodes.h"
#include "import/readers/ImportSession.h"
#include "import/readers/window/widgets/FileRequest.h"
#include "import/readers/window/widgets/GBRVIEWER_IMPORT.h"
#include "kernel/Kernel.h"
#include "platform/InterfaceFont.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"
#include "store/LayerCatalogue.h"
#include "store/widgets/GBRVIEWER_GIESVC.h"
#include "viewer/LayerCommands.h"

#include <QDesktopServices>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenuBar>
#include <QTimer>
#include <QUrl>

#include <algorithm>
#include <optional>
#include <utility>

namespace tvx {

namespace {

constexpr const char* DisplayFileId = "151217";
constexpr const char* DisplayFileText = "Display file?";
constexpr const char* UnrecognisedId = "151218";
constexpr const char* UnrecognisedText = "Unrecognized  format";

}  // namespace

void GBRVIEWER_MAIN::M_FSIimport_Click() {
  if (!import_)
    return;
  Form_KeyDown(keycode::Escape, 0);
  import_->startJob({}, ImportKind::Unknown);
  if (fileRequest_) {
    fileRequest_->raise();
    return;
  }
  // The request is modeless: start-up ends with it open and the answer arrives as a signal.
  auto* request = new QFileDialog(this);
  request->setObjectName("SetInpFileN");
  request->setAttribute(Qt::WA_DeleteOnClose);
  request->setWindowTitle(
      QString::fromStdString(fileRequestTitle(context_.services, filerequest::ForImport)));
  request->setFileMode(QFileDialog::ExistingFile);
  request->setAcceptMode(QFileDialog::AcceptOpen);
  request->setOption(QFileDialog::ReadOnly, true);
  request->setNameFilters(importFileFilters());
  request->selectNameFilter(importFileFilters().front());
  request->setDirectory(QString::fromStdString(settings_.ImpDir));
  // The import starts once the request has gone from the screen.
  connect(request, &QFileDialog::fileSelected, this, [this](const QString& file) {
    QTimer::singleShot(0, this, [this, path = file.toStdString()] { importChosenFile(path); });
  });
  connect(request, &QFileDialog::rejected, this, [this] { M_FSI_Click(1); });
  fileRequest_ = request;
  request->open();
}

bool GBRVIEWER_MAIN::importDialogVisible() const { return import_ && import_->windowShown; }

void GBRVIEWER_MAIN::setImportDialogVisible(bool visible) {
  if (import_)
    import_->windowShown = visible;
}

bool GBRVIEWER_MAIN::importRunning() const { return import_ && import_->running; }

void GBRVIEWER_MAIN::setImportControlsEnabled(bool enabled) {
  menuBar()->setEnabled(enabled);
  centralWidget()->setEnabled(enabled);
  setEnabled(enabled);
}

void GBRVIEWER_MAIN::askToDisplayFile(const std::string& path, bool reported) {
  if (!reported)
    import_->reporter.ReportStatus(StatusNotSupported, path);
  const SystemServices& services = context_.services;
  if (context_.services.AskYesNo(services.LocalMessage(DisplayFileText, DisplayFileId),
                                 services.LocalMessage(UnrecognisedText, UnrecognisedId)))
    QDesktopServices::openUrl(QUrl::fromLocalFile(QString::fromStdString(path)));
  import_->state.Job.SourcePath.clear();
}

void GBRVIEWER_MAIN::importChosenFile(const std::string& path) {
  if (!import_ || import_->running)
    return;
  import_->startJob(path, ImportKind::Unknown);
  const std::string folder = QFileInfo(QString::fromStdString(path)).absolutePath().toStdString();
  int32_t status = 0;
  writeImpDir(status, context_.services, folder);
  settings_.ImpDir = folder;

  setImportControlsEnabled(false);
  setCursor(Qt::WaitCursor);
  const ImportKind kind =
      import_->recognise(path, [this](const std::string& text) { EditMsgLine(text); });
  unsetCursor();
  const bool displayFile = kind == ImportKind::Unknown;
  if (!displayFile) {
    // The import window takes the file: stage one at once, and for the kinds whose layer is
    // fixed (drill, HPGL, DXF) the import too. It stays up, without a modal loop, until the user
    // closes it; until then closing the main window is refused and no other import starts.
    import_->state.Job.Kind = kind;
    GBRVIEWER_IMPORT& window = loadImportWindow();
    ImportWindowModel& model = window.model();
    import_->running = true;
    setImportDialogVisible(true);
    const bool stays = model.ApplyFile();
    if (stays && (isExcellonKind(kind) || isPlotterOrCadKind(kind)))
      model.ImportFile();
    // A rejected file closes the window at once; its unload offers the file as text.
    if (!stays)
      model.cmdClose();
    if (importWindow_) {
      window.refresh();
      window.show();
      window.raise();
    }
  }
  setImportControlsEnabled(true);
  syncMenuChecks();
  currentFunction_ = 0;
  M_FSI_Click(1);
  if (displayFile) {
    EditMsgLine(std::string());  // the reading is over
    // An unreadable file has been named by the file layer and an empty one is named empty;
    // only a file of text of no kind is offered as text.
    if (import_->reportRefusal(path))
      askToDisplayFile(path, true);
  }
}

int GBRVIEWER_MAIN::importFiles(const std::vector<std::string>& files,
                                const std::vector<int32_t>& layers) {
  if (!import_)
    return 0;
  int imported = 0;
  setImportControlsEnabled(false);
  import_->running = true;
  ImportSession::BatchOptions options;
  options.layers = layers;
  options.noCenter = settings_.NoCenter;
  import_->apertureRowUnit = view_->DisplayUnit;
  options.editMsgLine = [this](const std::string& text) { EditMsgLine(text); };
  // The message line ends with how the import went: the last file's outcome, or the first failure.
  std::string outcome;
  bool failed = false;
  options.afterEach = [&](const std::string& path, const ImportResult& result) {
    const bool ok = result.status == StatusOk && result.layer != 0;
    if (!failed) {
      const std::string name = result.layer != 0 ? tables_->layer(result.layer).DisplayName : path;
      outcome =
          outcomeWithNotes(name + " " +
                               (ok ? context_.services.LocalMessage("Import successful", "62320")
                                   : context_.services.LocalMessage("Import failed", "62319")),
                           result.notes);
    }
    failed = failed || !ok;
    if (!ok)
      return;
    layerCommands_->M_ActiveCategories_Click(result.layer);
    ++imported;
  };
  batchImporting_ = true;
  import_->importFiles(tables_->Layers, files, options);
  batchImporting_ = false;
  EditMsgLine(outcome);
  import_->running = false;
  setImportControlsEnabled(true);
  M_FSI_Click(1);
  redrawView(true);
  return imported;
}

void GBRVIEWER_MAIN::redrawView(bool fit) {
  if (fit)
    view_->ZoomModeFlag = zoommode::Board;
  applyViewChange(view_->ATB_RedrawButtonClick(fit ? view_->ZoomModeFlag : zoommode::Current));
}

QFileDialog* GBRVIEWER_MAIN::fileRequest() const { return fileRequest_; }

GBRVIEWER_IMPORT* GBRVIEWER_MAIN::importWindow() const { return importWindow_; }

void GBRVIEWER_MAIN::setCurrentApertureTable(const std::string& name) {
  int32_t status = 0;
  writeAper(status, context_.services, name);
  settings_.Aper = name;
}

GBRVIEWER_IMPORT& GBRVIEWER_MAIN::loadImportWindow() {
  if (importWindow_)
    return *importWindow_;
  ViewRedraw& r = *redraw_;
  MainWindowLink main;
  main.setBusyPointer = [this](bool busy) {
    if (busy)
      setCursor(Qt::WaitCursor);
    else
      unsetCursor();
  };
  main.editMsgLine = [this](const std::string& text) { EditMsgLine(text); };
  main.setDisplayFile = [this](bool reported) { displayFileReported_ = reported; };
  main.redraw = [this](bool fit) { redrawView(fit); };
  ImportWindowLink link;
  link.RedrawScreen = [this] { RedrawScreen(); };
  link.currentLayer = [this] { return tables_->CurrentLayer; };
  link.activateLayer = [this](int32_t layer) {
    if (layer >= 1 && layer <= LayerCount) {
      layerCommands_->M_ActiveCategories_Click(layer);
      syncMenuChecks();
    }
  };
  link.openApertureTable = [this] {
    ApertureTablesModel tables(apertureTable_, context_.services, context_.prompts, sysDir_,
                               [this](const std::string& name) { setCurrentApertureTable(name); });
    GBRVIEWER_APT window(tables, importWindow_);
    window.setHelpHandler([this] { M_Help_Click(); });
    window.exec();
    if (importWindow_)
      importWindow_->model().apertureTableName = apertureTable_.current;
    return true;
  };
  link.openApertureUse = [this] { return openApertureUse(); };
  link.dialogClosed = [this] {
    if (importWindow_)
      import_->HoleMapping = importWindow_->model().HoleMapping;
    import_->running = false;
    setImportDialogVisible(false);
    currentFunction_ = 0;
    M_FSI_Click(1);
    // After the window has gone, not inside its close event.
    if (const std::optional<bool> reported = std::exchange(displayFileReported_, std::nullopt))
      QTimer::singleShot(0, this, [this, path = import_->state.Job.SourcePath, r = *reported] {
        askToDisplayFile(path, r);
      });
  };
  link.saveNoCenter = [this](bool noCenter) { settings_.NoCenter = noCenter; };
  link.saveImpDir = [this](const std::string& folder) {
    int32_t status = 0;
    writeImpDir(status, context_.services, folder);
    settings_.ImpDir = folder;
  };
  link.showHelp = [this] { M_Help_Click(); };
  ImportWindowOwners owners{*import_,
                            tables_->Layers,
                            HighlightLink(r.HLDCode, r.HLDCodeText, r.HLPadstack, r.HLPadstackText),
                            std::move(main),
                            std::move(link),
                            (*colours_)[colourslot::ClearColour].ColourNumber,
                            view_->DisplayUnit};
  auto* window = new GBRVIEWER_IMPORT(std::move(owners), userStore_, this, SelectInterfaceFont());
  window->setWindowFlag(Qt::Window);
  window->setAttribute(Qt::WA_DeleteOnClose);
  ImportWindowModel& model = window->model();
  model.stages().programTitle = windowTitle().toStdString();
  model.NoCenter = settings_.NoCenter;
  model.ImpDir = settings_.ImpDir;
  model.apertureTableName = apertureTable_.current;
  model.apertureTableWindow = true;
  model.apertureUseWindow = true;
  model.HoleMapping = import_->HoleMapping;
  model.FormFill();
  importWindow_ = window;
  return *window;
}

void GBRVIEWER_MAIN::M_GIESelCatView_Click() {
  // Shown without a modal loop; the picture follows every change of the rows.
  if (layerVisibility_) {
    layerVisibility_->FormFill();
    layerVisibility_->show();
    layerVisibility_->raise();
    return;
  }
  auto* dialog = new GBRVIEWER_GIESVC(
      *tables_, context_.kernel.store, context_.services, [this] { RedrawScreen(); }, this,
      userStore_, SelectInterfaceFont());
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  // OK and Cancel leave the redraw to the main window.
  connect(dialog, &QDialog::finished, this, [this] { RedrawScreen(); });
  layerVisibility_ = dialog;
  dialog->show();
}

GBRVIEWER_GIESVC* GBRVIEWER_MAIN::layerVisibilityWindow() const { return layerVisibility_; }

}  // namespace tvx
