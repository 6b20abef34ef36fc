// The main window's construction, the host's commands, the status bar, the menu bar and the
// commands behind it, and the link between the view picture and the redraw.
#include "shell/GBRVIEWER_MAIN.h"

#include "import/readers/ImportSession.h"
#include "kernel/Kernel.h"
#include "platform/SystemServices.h"
#include "platform/TokenList.h"
#include "platform/UserStore.h"
#include "platform/widgets/HelpWindow.h"
#include "print/widgets/QtPrinter.h"
#include "print/widgets/TvxPreview.h"
#include "reconstruct/ReconstructionState.h"
#include "reconstruct/widgets/GBRVIEWER_GIEIMP.h"
#include "shell/HostCommands.h"
#include "shell/Language.h"
#include "viewer/ElementEditor.h"
#include "viewer/LayerCommands.h"
#include "viewer/MeasureTools.h"
#include "viewer/Measuring.h"
#include "viewer/ToolBarModel.h"
#include "viewer/ToolDispatcher.h"
#include "viewer/widgets/ToolBarView.h"
#include "viewer/widgets/ViewPicture.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QFileDialog>
#include <QGridLayout>
#include <QImage>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QPixmap>
#include <QScrollBar>
#include <QStatusBar>
#include <QTextBrowser>
#include <QTimer>
#include <QToolButton>

namespace tvx {

namespace {

// The busy panel's two pictures: a red lamp while working, a green one when idle.
QPixmap lampPicture(bool busy) {
  QPixmap picture(14, 14);
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::darkGray);
  painter.setBrush(busy ? QColor(220, 40, 40) : QColor(40, 180, 60));
  painter.drawEllipse(1, 1, 12, 12);
  return picture;
}

}  // namespace

GBRVIEWER_MAIN::GBRVIEWER_MAIN(const ComponentContext& context, QWidget* parent)
    : QMainWindow(parent), context_(context), categories_(std::make_unique<ReconstructionState>()) {
  setObjectName("GBRVIEWER_MAIN");
  // The window's design size: the smallest it can be made.
  resize(DesignWidth, DesignHeight);

  auto* client = new QWidget(this);
  auto* grid = new QGridLayout(client);
  grid->setContentsMargins(0, 0, 0, 0);
  grid->setSpacing(0);
  viewPicture_ = new ViewPicture(client);
  horizontalBar_ = new QScrollBar(Qt::Horizontal, client);
  horizontalBar_->setObjectName("HScroll");
  verticalBar_ = new QScrollBar(Qt::Vertical, client);
  verticalBar_->setObjectName("VScroll");
  grid->addWidget(viewPicture_, 0, 0);
  grid->addWidget(verticalBar_, 0, 1);
  grid->addWidget(horizontalBar_, 1, 0);
  horizontalBar_->hide();
  verticalBar_->hide();
  setCentralWidget(client);

  Kernel& kernel = context_.kernel;
  view_ = std::make_unique<ViewState>(kernel.graphics, context_.services);
  tables_ = std::make_unique<LayerTables>();
  colours_ = std::make_unique<ColourSlots>();
  redraw_ = std::make_unique<ViewRedraw>(kernel, context_.services, context_.prompts, *view_,
                                         *tables_, *colours_);
  view_->setCoverSource(LayersCover(kernel.store, tables_->Layers));

  RedrawHooks& hooks = redraw_->hooks;
  hooks.showBusy = [this](bool busy) { setBusyPicture(busy ? BusyPicture : IdlePicture); };
  hooks.pointer = [this](bool hourglass) {
    if (hourglass)
      setCursor(Qt::WaitCursor);
    else
      unsetCursor();
  };
  hooks.messagePanel = [this](const std::string& text) {
    messagePanel_->setText(QString::fromStdString(text));
  };
  // The raster combo shows the step the drawing used.
  hooks.showRasterStep = [this](int32_t step) {
    if (bar_)
      bar_->update("ATB_GridValue", [&](ToolItem& t) { t.ComboText = view_->lengthText(step); });
  };
  viewPicture_->setPaintHandler([this] { ViewPicture_Paint(); });
  viewPicture_->setImageSource(
      [this]() -> const QImage* { return context_.kernel.graphics.shadowImage(cpDcId_); });

  connect(horizontalBar_, &QScrollBar::valueChanged, this, [this](int value) {
    if (!updatingBars_)
      applyViewChange(view_->horizontalBarChanged(value));
  });
  // The vertical bar shows its range negated, so that its top is the high Y.
  connect(verticalBar_, &QScrollBar::valueChanged, this, [this](int value) {
    if (!updatingBars_)
      applyViewChange(view_->verticalBarChanged(-value));
  });

  buildStatusBar();
  buildMenus();
  buildPointerInput();
  wireElementEditor();
  buildMeasuring();
}

GBRVIEWER_MAIN::~GBRVIEWER_MAIN() = default;

void GBRVIEWER_MAIN::setUserStore(UserStore* store) { userStore_ = store; }

QWidget* GBRVIEWER_MAIN::viewPicture() const { return viewPicture_; }

void GBRVIEWER_MAIN::showWindow() {
  // Start-up shows the window itself, or gives up and leaves it unloaded.
  if (!loaded_)
    Form_Load();
  else
    show();
}

// --- Status bar --------------------------------------------------------------------------------

void GBRVIEWER_MAIN::buildStatusBar() {
  QStatusBar* bar = statusBar();
  bar->setObjectName("staMessage");
  busyPanel_ = new QLabel(bar);
  busyPanel_->setObjectName(BusyPanel);
  escPanel_ = new QToolButton(bar);
  escPanel_->setObjectName(EscPanel);
  // A panel that looks pressed while the mouse holds it, and acts as the Escape key.
  connect(escPanel_, &QToolButton::clicked, this, [this] {
    if (escPanel_->objectName().trimmed().toUpper() == EscPanel)
      Form_KeyDown(keycode::Escape, 0);
  });
  messagePanel_ = new QLabel(bar);
  messagePanel_->setObjectName(MessagePanel);
  bar->addWidget(busyPanel_);
  bar->addWidget(escPanel_);
  bar->addWidget(messagePanel_, 1);
  setBusyPicture(IdlePicture);
}

QWidget* GBRVIEWER_MAIN::statusPanel(const std::string& key) const {
  return statusBar()->findChild<QWidget*>(QString::fromStdString(key));
}

void GBRVIEWER_MAIN::setBusyPicture(const char* picture) {
  if (busyPicture_ == picture)
    return;
  busyPicture_ = picture;
  busyPanel_->setPixmap(lampPicture(busyPicture_ == BusyPicture));
}

void GBRVIEWER_MAIN::EditMsgLine(const std::string& text) { redraw_->EditMsgLine(text); }

void GBRVIEWER_MAIN::UpdateStatusBusy() {
  setCursor(Qt::WaitCursor);
  setBusyPicture(BusyPicture);
}

// --- Menu bar ----------------------------------------------------------------------------------

void GBRVIEWER_MAIN::buildMenus() {
  auto entry = [this](QMenu* menu, const char* name, const char* caption,
                      void (GBRVIEWER_MAIN::*handler)(), bool checkable = false) {
    QAction* action = menu->addAction(QString::fromUtf8(caption));
    action->setObjectName(name);
    action->setCheckable(checkable);
    connect(action, &QAction::triggered, this, [this, handler] { (this->*handler)(); });
    return action;
  };
  QMenu* file = menuBar()->addMenu("&File");
  file->setObjectName("M_File");
  entry(file, "M_New", "&New", &GBRVIEWER_MAIN::M_New_Click);
  entry(file, "M_Print", "&Print...", &GBRVIEWER_MAIN::M_Print_Click);
  entry(file, "M_Scopy", "Copy Screen to Clipboard", &GBRVIEWER_MAIN::M_Scopy_Click);
  entry(file, "M_BScopy", "Copy Block to Clipboard", &GBRVIEWER_MAIN::M_BScopy_Click);
  file->addSeparator();
  entry(file, "M_Exit", "E&xit", &GBRVIEWER_MAIN::M_Exit_Click);

  buildEditMenu();

  QMenu* viewMenu = menuBar()->addMenu("&View");
  viewMenu->setObjectName("M_View");
  QMenu* unit = viewMenu->addMenu("&Unit");
  unit->setObjectName("M_UnitMenu");
  entry(unit, "M_Inches", "&Inches", &GBRVIEWER_MAIN::M_Inches_Click, true);
  entry(unit, "M_Mm", "&Millimeters", &GBRVIEWER_MAIN::M_Mm_Click, true);
  QMenu* project = viewMenu->addMenu("&Project");
  project->setObjectName("M_Vlay");
  entry(project, "M_GIESelCatView", "Layer Visibility", &GBRVIEWER_MAIN::M_GIESelCatView_Click);
  viewMenu->addSeparator();
  entry(viewMenu, "M_TrueSize", "&True Size ", &GBRVIEWER_MAIN::M_TrueSize_Click, true);
  entry(viewMenu, "M_PadFrame", "Pad &Frames", &GBRVIEWER_MAIN::M_PadFrame_Click, true);
  entry(viewMenu, "M_PadPosition", "&Pad Positions", &GBRVIEWER_MAIN::M_PadPosition_Click, true);
  entry(viewMenu, "M_Mirror", "&Mirror", &GBRVIEWER_MAIN::M_Mirror_Click, true);
  entry(viewMenu, "M_Mono", "Mono&chrome", &GBRVIEWER_MAIN::M_Mono_Click, true);
  viewMenu->addSeparator();
  entry(viewMenu, "M_Sbars", "Scroll Bars", &GBRVIEWER_MAIN::M_Sbars_Click, true);
  entry(viewMenu, "M_LCursor", "Long &Cursor", &GBRVIEWER_MAIN::M_LCursor_Click, true);
  // The view's own keys for two entries, shown beside them.
  ToolBarView::showKeys(*menuEntry("M_LCursor"), "Shift+Z");
  ToolBarView::showKeys(*menuEntry("M_BScopy"), "Shift+S");

  buildToolsMenu();
  buildLayerCommands();
  buildPreferencesMenu();

  // The suite's options window is not part of this viewer: its menu stands, shown disabled.
  QMenu* options = menuBar()->addMenu("Options");
  options->setObjectName("M_SetupOptions");
  options->menuAction()->setObjectName("M_SetupOptionsEntry");
  options->setEnabled(false);

  QMenu* help = menuBar()->addMenu("&Help");
  help->setObjectName("M_Help");
  entry(help, "M_HelpContents", "&Help", &GBRVIEWER_MAIN::M_Help_Click)
      ->setShortcut(QKeySequence("Ctrl+F1"));
}

QAction* GBRVIEWER_MAIN::menuEntry(const std::string& name) const {
  return findChild<QAction*>(QString::fromStdString(name));
}

void GBRVIEWER_MAIN::syncMenuChecks() {
  auto check = [this](const char* name, bool on) {
    if (QAction* action = menuEntry(name))
      action->setChecked(on);
  };
  check("M_Inches", view_->DisplayUnit != displayunit::Millimetre);
  check("M_Mm", view_->DisplayUnit == displayunit::Millimetre);
  check("M_TrueSize", redraw_->isChecked(DisplayOption::TrueSize));
  check("M_PadFrame", redraw_->isChecked(DisplayOption::PadFrame));
  check("M_PadPosition", redraw_->isChecked(DisplayOption::PadPosition));
  check("M_Mirror", redraw_->isChecked(DisplayOption::Mirror));
  check("M_Mono", redraw_->isChecked(DisplayOption::Mono));
  check("M_Sbars", view_->ScrollBarsOn);
  syncMeasureChecks();
}

void GBRVIEWER_MAIN::toggleDisplay(DisplayOption option) {
  redraw_->toggle(option);
  syncMenuChecks();
}

void GBRVIEWER_MAIN::M_TrueSize_Click() { toggleDisplay(DisplayOption::TrueSize); }
void GBRVIEWER_MAIN::M_PadFrame_Click() { toggleDisplay(DisplayOption::PadFrame); }
void GBRVIEWER_MAIN::M_PadPosition_Click() { toggleDisplay(DisplayOption::PadPosition); }
void GBRVIEWER_MAIN::M_Mirror_Click() { toggleDisplay(DisplayOption::Mirror); }
void GBRVIEWER_MAIN::M_Mono_Click() { toggleDisplay(DisplayOption::Mono); }

void GBRVIEWER_MAIN::M_Inches_Click() {
  applyViewChange(view_->M_Inches_Click());
  syncMenuChecks();
}

void GBRVIEWER_MAIN::M_Mm_Click() {
  applyViewChange(view_->M_Mm_Click());
  syncMenuChecks();
}

void GBRVIEWER_MAIN::M_Sbars_Click() {
  view_->ScrollBarsOn = !view_->ScrollBarsOn;
  syncMenuChecks();
  layoutView();
  applyViewChange(view_->SetScrollBars());
}

void GBRVIEWER_MAIN::M_Scopy_Click() {
  setCursor(Qt::WaitCursor);
  context_.kernel.graphics.G_CopyToClipBoard(cpDcId_);
  unsetCursor();
}

void GBRVIEWER_MAIN::M_Exit_Click() {
  if (import_)
    for (LayerRecord& layer : tables_->Layers)
      layer.Files.assign(1, LayerFileRecord{});
  ShutDown();
}

void GBRVIEWER_MAIN::M_Help_Click() {
  if (!help_)
    help_ = std::make_unique<HelpWindow>(helpFile_, this);
  help_->ShowHelp();
}

// --- View ----------------------------------------------------------------------------------------

void GBRVIEWER_MAIN::RedrawScreen() {
  if (cpDcId_ == 0)
    return;
  view_->setPictureSize(viewPicture_->width(), viewPicture_->height());
  redraw_->RedrawScreen();
}

void GBRVIEWER_MAIN::ViewPicture_Paint() {
  if (cpDcId_ == 0)
    return;
  if (view_->pictureWidth() != viewPicture_->width() ||
      view_->pictureHeight() != viewPicture_->height()) {
    view_->setPictureSize(viewPicture_->width(), viewPicture_->height());
    redraw_->RedrawPending = true;
  }
  redraw_->ViewPicture_Paint();
}

void GBRVIEWER_MAIN::RedrawScreenFocus(int32_t Xpos, int32_t Ypos) {
  if (cpDcId_ == 0)
    return;
  view_->setPictureSize(viewPicture_->width(), viewPicture_->height());
  applyViewChange(redraw_->RedrawScreenFocus(Xpos, Ypos));
}

void GBRVIEWER_MAIN::syncScrollBars() {
  updatingBars_ = true;
  const ScrollBarState& h = view_->HorizontalBar;
  horizontalBar_->setRange(h.Minimum, h.Maximum);
  horizontalBar_->setPageStep(h.LargeChange);
  horizontalBar_->setSingleStep(h.SmallChange);
  horizontalBar_->setValue(h.Value);
  const ScrollBarState& v = view_->VerticalBar;
  verticalBar_->setRange(-v.Minimum, -v.Maximum);
  verticalBar_->setPageStep(v.LargeChange);
  verticalBar_->setSingleStep(v.SmallChange);
  verticalBar_->setValue(-v.Value);
  updatingBars_ = false;
}

void GBRVIEWER_MAIN::applyViewChange(const ViewChange& change) {
  if (change.ScrollBars)
    syncScrollBars();
  if (change.UnitTool)
    syncMenuChecks();
  // The ruler in another unit: the rebuild draws it anew over the artwork it covered.
  if (change.Redraw || (view_->RulerOn && (change.EraseRulerUnit >= 0 || change.DrawRuler)))
    RedrawScreen();
  if (change.Precision || change.Combos || change.ModeTool || change.UnitTool)
    refreshBands();
  if (change.FocusView)
    viewPicture_->setFocus();
  if (change.RepeatPointerMove && pointer_)
    pointer_->repeatPointerMove();
}

bool GBRVIEWER_MAIN::saveViewPicture(const std::string& path) const {
  // What the view shows on the screen when it is shown; its shadow picture otherwise.
  if (viewPicture_ && viewPicture_->isVisible()) {
    const QImage grabbed = viewPicture_->grab().toImage();
    if (!grabbed.isNull())
      return grabbed.save(QString::fromStdString(path), "PNG");
  }
  const QImage* image = context_.kernel.graphics.shadowImage(cpDcId_);
  return image && !image->isNull() && image->save(QString::fromStdString(path), "PNG");
}

// --- Host commands
// ---------------------------------------------------------------------------------

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
    // The settings again; the view keeps its centre and precision.
    const ViewTriple kept{view_->m_Precision, view_->ViewCenterX, view_->ViewCenterY};
    ApplySystemSettings();
    currentFunction_ = 0;
    M_FSI_Click(1);
    view_->m_Precision = kept.m_Precision;
    view_->ViewCenterX = kept.ViewCenterX;
    view_->ViewCenterY = kept.ViewCenterY;
    applyViewChange(view_->SetScrollBars());
    RedrawScreen();
  } else if (verb == "EX") {
    if (preview_) {
      // A print under way ends its document first; the unload follows the window.
      preview_->closeNow();
      shutDownAfterPreview();
    } else if (categoryDialog_) {
      // The window closes as cancelled; the unload follows once its modal loop has ended.
      categoryDialog_->reject();
      QTimer::singleShot(0, this, [this] { ShutDown(); });
    } else {
      ShutDown();
    }
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

void GBRVIEWER_MAIN::M_FSI_Click(int16_t function) {
  if (function != currentFunction_ && function >= 0 && function < FunctionCount) {
    // A running tool or an armed one belongs to the function before.
    Form_KeyDown(keycode::Escape, 0);
    currentFunction_ = function;
    keys_->rebuildOptions();
    std::string title = functions_[size_t(function)].Name;
    std::erase(title, '&');
    keys_->FunctionTitle = title;
    refreshBands();
    // Function 1 works on the current layer: what hangs on it is derived again.
    if (function == 1 && layerCommands_)
      layerCommands_->InitGIE();
  }
  // The function's prompt shows at the next move over the view: the outcome of an import that
  // ends here stays readable until then.
}

}  // namespace tvx
