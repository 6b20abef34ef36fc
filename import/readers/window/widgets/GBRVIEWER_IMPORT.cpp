#include "import/readers/window/widgets/GBRVIEWER_IMPORT.h"

#include "import/readers/window/widgets/FileRequest.h"
#include "import/readers/window/widgets/PalettePage.h"

#include "common/GridHelpers.h"
#include "common/widgets/PropertyGrid.h"
#include "platform/InterfaceFont.h"
#include "platform/SystemServices.h"
#include "platform/widgets/LocalizeForm.h"
#include "platform/widgets/WindowHelpers.h"

#include <QActionGroup>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QSplitter>
#include <QStatusBar>
#include <QTabWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace tvx {

GBRVIEWER_IMPORT::GBRVIEWER_IMPORT(ImportWindowOwners owners, UserStore* places, QWidget* parent,
                                   const InterfaceFont& font)
    : ToolWindow(places, parent) {
  setObjectName("GBRVIEWER_IMPORT");
  ImportWindowLink& link = owners.window;
  if (!link.SetInpFileN)
    link.SetInpFileN = [this](int mode, const std::string& start) {
      return askForFile(this, model_->session().services, mode, start);
    };
  link.unload = [this, outer = std::move(link.unload)] {
    if (outer)
      outer();
    close();
  };
  link.setTopmost = [this, outer = std::move(link.setTopmost)](bool on) {
    if (outer)
      outer(on);
    // Changing the flag hides the window; the helper shows it again where it was.
    SetTopMost(*this, on);
  };
  showHelp = link.showHelp;
  model_ = std::make_unique<ImportWindowModel>(std::move(owners));

  egrdProp_ = new PropertyGrid;
  const SystemServices& services = model_->session().services;
  egrdProp_->setHorizontalHeaderLabels(
      {QString::fromStdString(services.LocalMessage("Import File", "62363")),
       QString::fromStdString(services.LocalMessage("Setting", "62364"))});
  F_Viewer_ = new QPlainTextEdit;
  F_Viewer_->setObjectName("F_Viewer");
  F_Viewer_->setReadOnly(true);
  F_Viewer_->setLineWrapMode(QPlainTextEdit::NoWrap);
  F_Viewer_->hide();
  picSplitter_ = new QSplitter(Qt::Horizontal);
  picSplitter_->setObjectName("picSplitter");
  picSplitter_->addWidget(egrdProp_);
  picSplitter_->addWidget(F_Viewer_);

  tabColor_ = new QTabWidget;
  tabColor_->setObjectName("tabColor");
  tabColor_->addTab(picSplitter_, QString());
  tabColor_->addTab(makePalettePage([this](int32_t colour) { model_->PaletteClick(colour); }),
                    QString());

  const auto button = [](const char* name, const char* caption, const char* tag) {
    auto* b = new QPushButton(caption);
    b->setObjectName(name);
    if (tag)
      b->setProperty(TagProperty, tag);
    return b;
  };
  cmdClose_ = button("cmdCmd1", "Close", "99422");
  cmdFilters_ = button("cmdCmd3", "Details", nullptr);
  cmdClear_ = button("cmdCmd4", "Clear", nullptr);
  cmdView_ = button("cmdView", "View", "62311");
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(cmdView_);
  buttons->addStretch();
  buttons->addWidget(cmdFilters_);
  buttons->addWidget(cmdClear_);
  buttons->addWidget(cmdClose_);

  auto* central = new QWidget;
  auto* layout = new QVBoxLayout(central);
  layout->addWidget(tabColor_, 1);
  layout->addLayout(buttons);
  setCentralWidget(central);
  MsgLine_ = new QLabel;
  MsgLine_->setObjectName("MsgLine");
  statusBar()->addWidget(MsgLine_, 1);
  buildMenus();

  ImportWindowModel& m = *model_;
  connect(cmdClose_, &QPushButton::clicked, this, [&m] { m.cmdClose(); });
  connect(cmdFilters_, &QPushButton::clicked, this, [&m] { m.cmdFilters(); });
  connect(cmdClear_, &QPushButton::clicked, this, [&m] { m.cmdClear(); });
  connect(cmdView_, &QPushButton::clicked, this, [&m] { m.cmdView(); });
  connect(egrdProp_, &PropertyGrid::cellEdited, this, [&m] { m.CellEdited = true; });
  connect(egrdProp_, &PropertyGrid::cellCommitted, this,
          [&m](int row, const QString& text) { m.CommitCell(row, text.toStdString()); });
  connect(egrdProp_, &PropertyGrid::rowClicked, this,
          [&m](int row, bool valueCell) { m.ClickRow(row, valueCell); });
  m.changed = [this] { refresh(); };
  // The message line changes while an import runs: only the line follows then.
  m.stages().messageLineChanged = [this](const std::string& line) {
    MsgLine_->setText(QString::fromStdString(line));
  };
  LocalizeForm(this, services, font);
  // A window never placed (or placed off the screen) is sized to its content before it shows and
  // left where the window system puts it.
  placeKept_ = restorePlace();
  m.FormFill();
  m.FormUpdate();
}

GBRVIEWER_IMPORT::~GBRVIEWER_IMPORT() {
  if (model_)
    model_->changed = nullptr;
}

// Menus and actions carry their design captions and the message ids that LocalizeForm translates
// them by; entries without an id keep their caption in every language.
void GBRVIEWER_IMPORT::buildMenus() {
  QMenu* file = menuBar()->addMenu("&File");
  file->setObjectName("M_File");
  QAction* select = file->addAction("Open for Import");
  select->setObjectName("M_FileSelect");
  connect(select, &QAction::triggered, this, [this] { model_->M_FileSelect(); });
  QAction* view = file->addAction("Open for View");
  view->setObjectName("M_FileView");
  connect(view, &QAction::triggered, this, [this] { model_->M_FileView(); });

  QMenu* unit = menuBar()->addMenu("Unit");
  unit->setObjectName("F_Unit");
  unit->setProperty(TagProperty, "62315");
  auto* group = new QActionGroup(this);
  const char* names[][2] = {{"Inches", "62174"}, {"Millimeters", "62175"}};
  for (int index = 0; index < 2; ++index) {
    QAction* entry = unit->addAction(names[index][0]);
    entry->setProperty(TagProperty, names[index][1]);
    entry->setObjectName(QString("F_InchMM%1").arg(index));
    entry->setCheckable(true);
    group->addAction(entry);
    connect(entry, &QAction::triggered, this, [this, index] { model_->F_InchMM(index); });
    F_InchMM_[size_t(index)] = entry;
  }
}

void GBRVIEWER_IMPORT::refresh() {
  ImportWindowModel& m = *model_;
  const ImportDialogModel& stages = m.stages();
  setWindowTitle(QString::fromStdString(stages.caption));
  tabColor_->setTabText(0, QString::fromStdString(m.tabGridCaption));
  tabColor_->setTabText(1, QString::fromStdString(m.tabPaletteCaption));
  tabColor_->setCurrentIndex(m.colourPageShown ? 1 : 0);
  egrdProp_->setRows(
      m.rows, [&m](int32_t which) -> const std::vector<std::string>& { return m.list(which); });
  StyleGrid(*egrdProp_);
  if (m.currentRow >= 0 && m.currentRow < egrdProp_->rowCount())
    egrdProp_->setCurrentCell(m.currentRow, 1);

  cmdFilters_->setVisible(stages.filterButtonVisible);
  cmdFilters_->setText(QString::fromStdString(stages.filterButtonCaption));
  cmdClear_->setVisible(stages.clearButtonVisible);
  cmdView_->setVisible(stages.viewButtonVisible);
  cmdView_->setText(QString::fromStdString(stages.viewButtonCaption));
  MsgLine_->setText(QString::fromStdString(stages.messageLine));
  F_InchMM_[size_t(m.OffsetUnit == 1 ? 1 : 0)]->setChecked(true);

  // Until the user sizes it, a window that was not placed follows its rows as they come and go.
  if (!placeKept_ && (!isVisible() || size() == fittedSize_))
    fitToContent();

  const bool wasShown = F_Viewer_->isVisible();
  F_Viewer_->setVisible(m.ViewShown);
  if (m.ViewShown) {
    F_Viewer_->setPlainText(
        QString::fromLocal8Bit(m.viewerText.data(), static_cast<qsizetype>(m.viewerText.size())));
    QPalette colours = F_Viewer_->palette();
    colours.setColor(QPalette::Base, PropertyGrid::colourOf(m.viewerBackground));
    F_Viewer_->setPalette(colours);
    if (!wasShown)
      SizeControls(egrdProp_->width());
  }
}

void GBRVIEWER_IMPORT::fitToContent() {
  // The layouts learn of the new rows only when the event loop runs again, so the window's size is
  // summed here from the parts: the tabs with the grid, the buttons, the menu and the status bar.
  const QLayout& column = *centralWidget()->layout();
  const QMargins margins = column.contentsMargins();
  const QSize tabs = tabColor_->sizeHint();
  const int width =
      std::max(tabs.width() + margins.left() + margins.right(), menuBar()->sizeHint().width());
  const int height = menuBar()->sizeHint().height() + margins.top() + tabs.height() +
                     column.spacing() + cmdClose_->sizeHint().height() + margins.bottom() +
                     statusBar()->sizeHint().height();
  QSize most(1024, 768);
  if (const QScreen* shown = screen())
    most = shown->availableGeometry().size() * 9 / 10;
  fittedSize_ = QSize(width, height).boundedTo(most);
  resize(fittedSize_);
}

void GBRVIEWER_IMPORT::SizeControls(int splitterPosition) {
  // With the text view the whole takes one and a half times the grid's width.
  const int viewer = model_->ViewShown ? splitterPosition / 2 : 0;
  picSplitter_->setSizes({splitterPosition, viewer});
}

void GBRVIEWER_IMPORT::unload() { model_->Form_Unload(); }

}  // namespace tvx
