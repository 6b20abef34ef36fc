#include "print/widgets/TvxPreview.h"

#include "common/widgets/HelpKey.h"
#include "kernel/Graphics.h"
#include "platform/InterfaceFont.h"
#include "platform/UserPrompts.h"
#include "platform/UserStore.h"
#include "platform/widgets/LocalizeForm.h"
#include "platform/widgets/WindowPlace.h"
#include "print/widgets/QtPrinter.h"
#include "print/widgets/QtSetupDialogs.h"
#include "viewer/widgets/ViewPicture.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QCursor>
#include <QFileDialog>
#include <QFrame>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QScreen>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

namespace tvx {

namespace {

// A printer with a sheet coming out of it, the sheet a step further in each of the five frames.
QPixmap printerPicture(int frame) {
  QPixmap pixmap(16, 16);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.fillRect(1, 6, 14, 6, Qt::darkGray);
  painter.fillRect(4, 12 - 2 * frame + 2, 8, 2 * frame, Qt::white);
  painter.setPen(Qt::black);
  painter.drawRect(1, 6, 13, 5);
  return pixmap;
}

}  // namespace

TvxPreview::TvxPreview(PreviewHost& host, QWidget* parent)
    : QDialog(parent), host_(host),
      model_(host.record, host.printer, host.displayUnit, host.services, host.prompts),
      output_(model_, host.graphics, host.prompts, host.services) {
  setObjectName("TvxPreview");
  setModal(true);
  setMinimumSize(480, 360);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  atvPrev_ = new QToolBar(this);
  atvPrev_->setObjectName("atvPrev");
  layout->addWidget(atvPrev_);

  auto* middle = new QWidget(this);
  auto* grid = new QGridLayout(middle);
  grid->setContentsMargins(5, 5, 5, 5);
  grid->setSpacing(0);
  picContainer_ = new QWidget(middle);
  picContainer_->setObjectName("picContainer");
  picContainer_->setAutoFillBackground(true);
  picContainer_->setBackgroundRole(QPalette::Dark);
  picContainer_->installEventFilter(this);
  vscScroll_ = new QScrollBar(Qt::Vertical, middle);
  vscScroll_->setObjectName("vscScroll");
  hscScroll_ = new QScrollBar(Qt::Horizontal, middle);
  hscScroll_->setObjectName("HscScroll");
  grid->addWidget(picContainer_, 0, 0);
  grid->addWidget(vscScroll_, 0, 1);
  auto* bottom = new QHBoxLayout;
  bottom->addWidget(hscScroll_, 1);
  const char* pageCaptions[] = {"<", "...", ">"};
  for (int i = 0; i < 3; ++i) {
    cmdPages_[i] = new QToolButton(middle);
    cmdPages_[i]->setObjectName(QString("cmdPages_%1").arg(i));
    cmdPages_[i]->setText(pageCaptions[i]);
    bottom->addWidget(cmdPages_[i]);
    connect(cmdPages_[i], &QToolButton::clicked, this, [this, i] {
      if (i == 1) {
        popup_->exec(cmdPages_[1]->mapToGlobal(QPoint(cmdPages_[1]->width(), 0)));
        return;
      }
      model_.PagesButton(i);
      showGrid();
    });
  }
  grid->addLayout(bottom, 1, 0, 1, 2);
  layout->addWidget(middle, 1);
  shpHlight_ = new QFrame(picContainer_);
  shpHlight_->setObjectName("shpHlight");
  shpHlight_->setFrameStyle(QFrame::Box);
  shpHlight_->setLineWidth(2);
  shpHlight_->setStyleSheet("color: red");
  shpHlight_->setAttribute(Qt::WA_TransparentForMouseEvents);
  shpHlight_->hide();

  staMsg_ = new QStatusBar(this);
  staMsg_->setObjectName("staMsg");
  staMsg_->setSizeGripEnabled(false);
  for (int i = 0; i < 3; ++i) {
    panels_[i] = new QLabel(staMsg_);
    panels_[i]->setObjectName(QString("staMsg_%1").arg(i + 1));
    staMsg_->addWidget(panels_[i], i == 2 ? 1 : 0);
  }
  layout->addWidget(staMsg_);

  timPrinting_ = new QTimer(this);
  timPrinting_->setObjectName("timPrinting");
  timPrinting_->setInterval(300);
  connect(timPrinting_, &QTimer::timeout, this, [this] {
    output_.Tick();
    if (!model_.DocOpen && closeAfterPass_)
      close();
  });
  output_.DoEvents = [] { QCoreApplication::processEvents(); };
  output_.ShowPrinterPicture = [this](int32_t n) { panels_[2]->setPixmap(printerPicture(n)); };
  output_.ShowStatus = [this](const std::string& text) {
    panels_[2]->setText(QString::fromStdString(text));
  };
  output_.EnableClose = [this](bool on) {
    if (QAction* close = findChild<QAction*>("ATB_Close"))
      close->setEnabled(on);
  };
  output_.StopTimer = [this] { timPrinting_->stop(); };
  output_.AskFileName = [this](const PrintFileRequest& request) -> std::optional<std::string> {
    QFileDialog cdlgPrnFile(this);
    cdlgPrnFile.setObjectName("cdlgPrnFile");
    cdlgPrnFile.setOption(QFileDialog::DontUseNativeDialog);
    cdlgPrnFile.setAcceptMode(QFileDialog::AcceptSave);
    cdlgPrnFile.setDefaultSuffix(QString::fromStdString(request.defaultExtension));
    cdlgPrnFile.setNameFilter(QString::fromStdString(request.filter));
    QString start = QString::fromStdString(request.fileName);
    if (!request.defaultExtension.empty())
      start += "." + QString::fromStdString(request.defaultExtension);
    cdlgPrnFile.selectFile(start);
    if (cdlgPrnFile.exec() != QDialog::Accepted || cdlgPrnFile.selectedFiles().isEmpty())
      return std::nullopt;
    return cdlgPrnFile.selectedFiles().front().left(255).toStdString();
  };
  output_.ImportFolder = host.importFolder;
  output_.ProductName = host.productName;
  model_.DrawPage = host.draw;

  connect(vscScroll_, &QScrollBar::valueChanged, this, [this](int value) {
    if (!thumbs_.empty() && model_.ScrollOnePage == 1)
      thumbs_[0].picture->move(thumbs_[0].picture->x(), value + 10);
  });
  connect(hscScroll_, &QScrollBar::valueChanged, this, [this](int value) {
    if (!thumbs_.empty() && model_.ScrollOnePage == 1)
      thumbs_[0].picture->move(value + 10, thumbs_[0].picture->y());
  });
  buildTools();
}

TvxPreview::~TvxPreview() {
  for (Thumb& thumb : thumbs_)
    host_.graphics.G_DeleteDC(thumb.device);
}

QAction* TvxPreview::tool(const char* name, const char* id, const char* text, QMenu* menu) {
  QAction* action = new QAction(QString::fromStdString(model_.text(text, id)), this);
  action->setObjectName(name);
  if (menu)
    menu->addAction(action);
  else
    atvPrev_->addAction(action);
  if (QWidget* button = menu ? nullptr : atvPrev_->widgetForAction(action))
    button->setObjectName(name);
  connect(action, &QAction::triggered, this, [this, name] { runCommand(name); });
  return action;
}

void TvxPreview::buildTools() {
  auto label = [this](const char* name, const char* id, const char* text) {
    auto* l = new QLabel(QString::fromStdString(model_.text(text, id)), atvPrev_);
    l->setObjectName(name);
    atvPrev_->addWidget(l);
  };
  auto box = [this](const char* name, const QStringList& items) {
    auto* combo = new QComboBox(atvPrev_);
    combo->setObjectName(name);
    combo->setEditable(true);
    combo->setInsertPolicy(QComboBox::NoInsert);
    combo->addItems(items);
    combo->setMinimumContentsLength(6);
    atvPrev_->addWidget(combo);
    return combo;
  };
  tool("ATB_Print", "5297", "Print page : 1 using (default printer)");
  tool("ATB_PrintAll", "52105", "Print &All Pages");
  tool("ATB_PageSetup", "52101", "Page Setup");
  label("ATB_PrecisionLabel", "13188", "Scale:");
  precision_ = box("ATB_Precision", {"10:1", "5:1", "2:1", "1:1", "1:2", "1:5", "1:10"});
  label("ATB_Zoom", "991433", "Zoom:");
  zoom_ = box("ATB_zoom", {"250%", "200%", "150%", "100%", "75%", "50%", "25%", "10%"});
  auto entered = [this](QComboBox* combo, bool scale) {
    if (model_.DocOpen)
      return;
    const std::string text = combo->currentText().toStdString();
    const std::string shown = scale ? model_.ScaleEntered(text) : model_.ZoomEntered(text);
    combo->setEditText(QString::fromStdString(shown));
    showGrid();
  };
  // A choice from the list, or Enter in the box.
  for (auto [combo, scale] : {std::pair{precision_, true}, std::pair{zoom_, false}}) {
    connect(combo, &QComboBox::textActivated, this,
            [entered, combo, scale] { entered(combo, scale); });
    connect(combo->lineEdit(), &QLineEdit::returnPressed, this,
            [entered, combo, scale] { entered(combo, scale); });
  }
  tool("ATB_ZoomUp", "13677", "Scale up")->setText("+");
  tool("ATB_ZoomDn", "13678", "Scale down")->setText("-");
  atvPrev_->addSeparator();
  tool("ATB_Printers", "5299", "Print (w) Printer ....");
  atvPrev_->addSeparator();
  tool("ATB_Onepage", "52102", "Show single Page");
  tool("ATB_Multipages", "52103", "Show Multiple pages");
  horizontal_ = new QMenu(this);
  horizontal_->setObjectName("SB_Horiz");
  vertical_ = new QMenu(this);
  vertical_->setObjectName("SB_Verti");
  const std::string pages = model_.text(" Page(s)", "13548");
  // The grid's counts across and down, n from 1 to the most.
  auto fill = [this, &pages](QMenu* menu, const char* prefix, int32_t most,
                             void (PreviewModel::*choose)(int32_t)) {
    for (int32_t n = 1; n <= most; ++n) {
      QAction* a = menu->addAction(QString::number(n) + QString::fromStdString(pages));
      a->setObjectName(QString("%1~%2").arg(prefix).arg(n));
      a->setCheckable(true);
      connect(a, &QAction::triggered, this, [this, n, choose] {
        (model_.*choose)(n);
        showGrid();
      });
    }
  };
  fill(horizontal_, "Horiz", model_.MaxAcross, &PreviewModel::ChooseAcross);
  fill(vertical_, "Verti", model_.MaxDown, &PreviewModel::ChooseDown);
  for (auto [menu, name, id, text] :
       {std::tuple{horizontal_, "ATB_Horizontal", "99759", "Horizontal"},
        std::tuple{vertical_, "ATB_Vertical", "991390", "Vertical"}}) {
    QAction* a = atvPrev_->addAction(QString::fromStdString(model_.text(text, id)));
    a->setObjectName(name);
    a->setMenu(menu);
    if (auto* button = qobject_cast<QToolButton*>(atvPrev_->widgetForAction(a))) {
      button->setObjectName(name);
      button->setPopupMode(QToolButton::InstantPopup);
    }
  }
  tool("ATB_BestFit", "52107", "Best Fit");
  tool("ATB_Fitpage", "52104", "Fit graphic to one page with margins");
  tool("ATB_Fitwomargins", "52109", "Fit to page w/o margins");
  tool("ATB_CentreImage", "52110", "Centre image in 1x1 Pages");
  tool("ATB_ShowBkgd", "52117", "Show Background")->setCheckable(true);
  findChild<QAction*>("ATB_ShowBkgd")->setChecked(true);
  tool("ATB_fullscreen", "", "Full screen")->setCheckable(true);
  tool("ATB_help", "99746", "Help");
  tool("ATB_Close", "9917", "&Close");
  closeBand_ = new QMenu(this);
  closeBand_->setObjectName("SB_Close");
  closeBand_->addAction(findChild<QAction*>("ATB_Close"));
  tool("ATB_UpdClose", "52111", "&Update & Close", closeBand_);

  // The pop-up bands of the tools that have one.
  auto band = [this](const char* name, const char* owner,
                     std::initializer_list<const char*> tools) {
    auto* menu = new QMenu(this);
    menu->setObjectName(name);
    for (const char* t : tools)
      menu->addAction(findChild<QAction*>(t));
    QAction* on = findChild<QAction*>(owner);
    on->setMenu(menu);
    if (auto* button = qobject_cast<QToolButton*>(atvPrev_->widgetForAction(on)))
      button->setPopupMode(QToolButton::MenuButtonPopup);
    return menu;
  };
  band("SB_Fitpage", "ATB_Fitpage",
       {"ATB_Fitpage", "ATB_Fitwomargins", "ATB_CentreImage", "ATB_BestFit"});
  band("SB_Prns", "ATB_Print", {"ATB_Print", "ATB_PrintAll", "ATB_Printers", "ATB_PageSetup"});
  QMenu* both = band("SB_HorizVerti", "ATB_Multipages", {"ATB_Multipages", "ATB_Onepage"});
  both->addMenu(horizontal_)->setText(findChild<QAction*>("ATB_Horizontal")->text());
  both->addMenu(vertical_)->setText(findChild<QAction*>("ATB_Vertical")->text());

  popup_ = new QMenu(this);
  popup_->setObjectName("SB_Popup");
  tool("ATB_PrintPop", "5298", "Print page : ", popup_);
  tool("ATB_FPage", "52112", "F&irst Page", popup_);
  tool("ATB_PPage", "52113", "P&revious Page", popup_);
  tool("ATB_NPage", "52114", "N&ext Page", popup_);
  tool("ATB_LPage", "52115", "L&ast Page", popup_);
  tool("ATB_MPage", "52116", "M&ove to Page ...", popup_);
}

double TvxPreview::pixelsPerMm() const { return logicalDpiX() / 25.4; }

void TvxPreview::restorePlace() {
  if (!host_.store)
    return;
  int32_t top = 0, left = 0, width = 0, height = 0;
  if (RestoreWindowPlace(*host_.store, *this, top, left, width, height)) {
    moveToPlace(*this, {top, left, width, height});
    return;
  }
  // Beside the main window's strip, the height of the work area.
  const QRect work = screen() ? screen()->availableGeometry() : QRect(0, 0, 1024, 768);
  int w = work.width() - host_.mainWidth;
  if (w >= work.width())
    w = work.width() / 2;
  setGeometry(work.left() + work.width() - w, work.top(), w, work.height());
}

void TvxPreview::Open(const FrameRect& frame, const std::string& caption, int32_t drawFlags) {
  if (host_.services)
    LocalizeForm(this, *host_.services, SelectInterfaceFont());
  restorePlace();
  model_.Begin(frame, drawFlags);
  if (host_.store)
    output_.LoadSettings(*host_.store);
  else if (manager_)
    model_.ReadPrintManager(*manager_);
  model_.Build();
  setWindowTitle(QString::fromStdString(caption));
  output_.Caption = caption;
  precision_->setEditText(QString::fromStdString(model_.ScaleText()));
  picContainer_->resize(picContainer_->size().expandedTo(QSize(100, 100)));
  model_.SetContainer(picContainer_->width() / pixelsPerMm(),
                      picContainer_->height() / pixelsPerMm());
  model_.LayoutOrZoom();
  showGrid();
}

bool TvxPreview::ShowPreview(FrameRect& frame, const std::string& caption, int32_t drawFlags,
                             int32_t& status) {
  // A plain preview: Close is a plain tool, Update & Close out of reach.
  findChild<QAction*>("ATB_Close")->setMenu(nullptr);
  Open(frame, caption, drawFlags);
  exec();
  status = 0;
  return updated_;
}

bool TvxPreview::ShowPrnMgrPreview(FrameRect& frame, const std::string& caption, int32_t drawFlags,
                                   bool plainPreview, PrintManagerRecord& manager,
                                   int32_t& status) {
  findChild<QAction*>("ATB_Close")->setMenu(closeBand_);
  if (auto* button =
          qobject_cast<QToolButton*>(atvPrev_->widgetForAction(findChild<QAction*>("ATB_Close"))))
    button->setPopupMode(QToolButton::MenuButtonPopup);
  if (!plainPreview) {
    manager_ = &manager;
    model_.PrintManager = &manager;
  }
  Open(frame, caption, drawFlags);
  exec();
  status = 0;
  return updated_;
}

void TvxPreview::RedrawScreen() {
  for (Thumb& thumb : thumbs_) {
    thumb.dirty = true;
    thumb.picture->update();
  }
}

void TvxPreview::showGrid() {
  const std::vector<PreviewCell>& cells = model_.Cells();
  const double scale = pixelsPerMm();
  while (thumbs_.size() < cells.size()) {
    Thumb thumb;
    thumb.picture = new ViewPicture(picContainer_);
    const size_t index = thumbs_.size();
    thumb.picture->setObjectName(QString("ViewPicture_%1").arg(index + 1));
    // A thumbnail takes the focus, so that the page keys reach the window and not a box.
    thumb.picture->setFocusPolicy(Qt::ClickFocus);
    ViewPicture* picture = thumb.picture;
    thumb.device = host_.graphics.G_GetDC(picture, [picture] { picture->present(); });
    const int32_t device = thumb.device;
    picture->setImageSource([this, device] { return host_.graphics.shadowImage(device); });
    picture->setPaintHandler([this, index] { paintCell(index); });
    picture->setPointerHandler(
        [this, index](ViewPicture::PointerAction action, int button, int, double, double) {
          if (action != ViewPicture::PointerAction::Press)
            return;
          const PreviewAction result = model_.CellClicked(index, button == 2);
          showGrid();
          act(result);
        });
    thumbs_.push_back(thumb);
  }
  for (size_t i = 0; i < thumbs_.size(); ++i) {
    ViewPicture* picture = thumbs_[i].picture;
    const bool shown = i < cells.size() && model_.ViewRows[i].Shown;
    if (shown) {
      const PreviewCell& c = cells[i];
      picture->setGeometry(int(c.X * scale), int(c.Y * scale), std::max(1, int(c.Width * scale)),
                           std::max(1, int(c.Height * scale)));
      thumbs_[i].dirty = true;
      picture->update();
    }
    picture->setVisible(shown);
  }
  // The selected cell is framed and takes a pointer of its own: one that suggests the grid on a
  // single sheet, another that suggests the single sheet on a grid.
  const size_t current = size_t(model_.CurrentCell);
  const Qt::CursorShape selected =
      model_.ViewAcross * model_.ViewDown == 1 ? Qt::SizeAllCursor : Qt::PointingHandCursor;
  for (size_t i = 0; i < thumbs_.size(); ++i)
    thumbs_[i].picture->setCursor(i == current ? selected : Qt::ArrowCursor);
  if (current < cells.size() && model_.ViewRows[current].Shown) {
    shpHlight_->setGeometry(thumbs_[current].picture->geometry().adjusted(-3, -3, 3, 3));
    shpHlight_->show();
    shpHlight_->raise();
  } else {
    shpHlight_->hide();
  }
  // A single thumbnail larger than the window moves with the scroll bars.
  const bool onePage = model_.ScrollOnePage == 1;
  for (auto [bar, end] : {std::pair{vscScroll_, int(model_.ScrollEndY * scale)},
                          std::pair{hscScroll_, int(model_.ScrollEndX * scale)}}) {
    const QSignalBlocker quiet(bar);
    bar->setRange(end, 0);
    bar->setSingleStep(std::abs(end) / 50 + 1);
    bar->setPageStep(std::abs(end) / 10 + 1);
    bar->setValue(end / 2);
    bar->setEnabled(onePage);
  }
  for (QAction* a : horizontal_->actions())
    a->setChecked(a->objectName() == QString("Horiz~%1").arg(model_.ViewAcross));
  for (QAction* a : vertical_->actions())
    a->setChecked(a->objectName() == QString("Verti~%1").arg(model_.ViewDown));
  zoom_->setEditText(QString::fromStdString(model_.ZoomText()));
  precision_->setEditText(QString::fromStdString(model_.ScaleText()));
  updateTexts();
}

void TvxPreview::paintCell(size_t cell) {
  Thumb& thumb = thumbs_[cell];
  const int w = thumb.picture->width(), h = thumb.picture->height();
  if (!thumb.dirty || w <= 0 || h <= 0 || cell >= model_.ViewRows.size())
    return;
  const QString kept = panels_[2]->text();
  panels_[2]->setText(QString::fromStdString(model_.text("Redrawing ...", "52120")));
  model_.ThumbZoom = model_.ThumbZoomFor(w, h);
  model_.DrawSheet(host_.graphics, thumb.device, model_.ViewRows[cell], w, h, model_.ThumbZoom,
                   false);
  thumb.dirty = false;
  host_.graphics.G_CloseDC(thumb.device, 1);
  panels_[2]->setText(kept);
}

void TvxPreview::updateTexts() {
  auto set = [this](const char* name, const std::string& tip, const std::string& caption = {}) {
    if (QAction* a = findChild<QAction*>(name)) {
      a->setToolTip(QString::fromStdString(tip));
      if (!caption.empty())
        a->setText(QString::fromStdString(caption));
    }
  };
  set("ATB_Print", model_.PrintTip());
  set("ATB_PrintPop", model_.PrintPopCaption(), model_.PrintPopCaption());
  set("ATB_PrintAll", model_.PrintAllTip(), model_.PrintAllCaption());
  set("ATB_Multipages", model_.MultipagesTip());
  set("ATB_CentreImage", model_.CentreTip());
  panels_[0]->setText(QString::fromStdString(model_.PagePanel()));
  panels_[1]->setText(QString::fromStdString(model_.SizePanel()));
}

std::string TvxPreview::panelText(int panel) const {
  return panel >= 1 && panel <= 3 ? panels_[panel - 1]->text().toStdString() : std::string();
}

void TvxPreview::runCommand(const std::string& name) {
  if (model_.DocOpen)
    return;
  const PreviewAction action = model_.Command(name);
  if (name == "ATB_ShowBkgd")
    RedrawScreen();
  showGrid();
  act(action);
}

void TvxPreview::afterDialog(bool changed) {
  model_.ZoomMode = 0;
  model_.PageMetrics(changed);
  model_.LayoutOrZoom();
  showGrid();
}

void TvxPreview::act(PreviewAction action) {
  switch (action) {
  case PreviewAction::StartPrinting:
    timPrinting_->start();
    break;
  case PreviewAction::PageSetup: {
    QtSetupDialogs dialogs(host_.printer, this);
    if (PageSetup(host_.record, host_.printer, dialogs, 0, model_.DocOpen))
      afterDialog(true);
    break;
  }
  case PreviewAction::PrinterDialog: {
    QtSetupDialogs dialogs(host_.printer, this);
    bool changed = false;
    if (!PreviewPrintDialog(model_, dialogs, host_.productName + " " + output_.Caption, changed))
      break;
    afterDialog(changed);
    if (model_.PrinterChanged && host_.prompts &&
        host_.prompts->messageBox(model_.text("Print with current page setup", "60113"), 0x24,
                                  host_.productName) != answer::Yes)
      break;
    QCoreApplication::processEvents();
    model_.PrintFrom = std::min(model_.PrintFrom, model_.PageCount);
    model_.PrintTo = std::min(model_.PrintTo, model_.PageCount);
    timPrinting_->start();
    break;
  }
  case PreviewAction::Help:
    if (host_.help)
      host_.help();
    break;
  case PreviewAction::FullScreen: {
    const bool on = findChild<QAction*>("ATB_fullscreen")->isChecked();
    staMsg_->setVisible(!on);
    if (on)
      showFullScreen();
    else
      showNormal();
    break;
  }
  case PreviewAction::Close:
    close();
    break;
  case PreviewAction::UpdateAndClose:
    if (manager_)
      model_.WritePrintManager(*manager_);
    updated_ = true;
    close();
    break;
  case PreviewAction::Popup:
    popup_->exec(QCursor::pos());
    break;
  case PreviewAction::None:
    break;
  }
}

bool TvxPreview::eventFilter(QObject* watched, QEvent* event) {
  // The grid follows the container's size once the window's layout has set it.
  if (watched == picContainer_ && event->type() == QEvent::Resize && !model_.PageRows.empty()) {
    model_.SetContainer(picContainer_->width() / pixelsPerMm(),
                        picContainer_->height() / pixelsPerMm());
    model_.Layout();
    showGrid();
  }
  return QDialog::eventFilter(watched, event);
}

void TvxPreview::keyPressEvent(QKeyEvent* event) {
  if (isHelpKey(*event)) {
    if (host_.help)
      host_.help();
    return;
  }
  if (event->key() == Qt::Key_Escape) {
    close();
    return;
  }
  if (model_.KeyPressed(event->key(), (event->modifiers() & Qt::ControlModifier) != 0)) {
    showGrid();
    if (size_t(model_.CurrentCell) < thumbs_.size())
      thumbs_[size_t(model_.CurrentCell)].picture->setFocus();
    return;
  }
  QDialog::keyPressEvent(event);
}

void TvxPreview::closeNow() {
  if (model_.DocOpen) {
    output_.RequestStop();
    closeAfterPass_ = true;
    return;
  }
  close();
}

void TvxPreview::saveAndRelease() {
  timPrinting_->stop();
  for (Thumb& thumb : thumbs_) {
    host_.graphics.G_DeleteDC(thumb.device);
    thumb.device = 0;
  }
  if (host_.store) {
    const UserStoreSave save(*host_.store);
    output_.SaveSettings(*host_.store);
    SaveWindowPlace(*host_.store, *this);
  }
}

void TvxPreview::closeEvent(QCloseEvent* event) {
  if (model_.DocOpen) {
    // The document ends after the sheet being drawn; the window closes then.
    output_.RequestStop();
    closeAfterPass_ = true;
    event->ignore();
    return;
  }
  saveAndRelease();
  QDialog::closeEvent(event);
}

}  // namespace tvx
