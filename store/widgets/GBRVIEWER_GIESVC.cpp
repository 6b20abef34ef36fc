#include "store/widgets/GBRVIEWER_GIESVC.h"

#include "common/widgets/HelpKey.h"
#include "platform/widgets/LocalizeForm.h"
#include "platform/widgets/WindowPlace.h"

#include <QAction>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QTabWidget>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

namespace tvx {

GBRVIEWER_GIESVC::GBRVIEWER_GIESVC(LayerTables& tables, const Store& store,
                                   const SystemServices& services, std::function<void()> redraw,
                                   QWidget* parent, UserStore* userStore, const InterfaceFont& font)
    : QDialog(parent), model_(tables, store, services, std::move(redraw)), userStore_(userStore) {
  setObjectName("GBRVIEWER_GIESVC");
  setModal(false);
  setWindowTitle("PCB Layers");
  setProperty(TagProperty, "62304");

  auto* outer = new QVBoxLayout(this);

  atvSearchSeq = new QToolBar(this);
  atvSearchSeq->setObjectName("atvSearchSeq");
  mnuOptions = new QMenu("Options", this);
  mnuOptions->setObjectName("mnuOptions");
  const auto makeTool = [&](const char* key, const char* caption, const char* id,
                            const QKeySequence& keys) {
    auto* action = new QAction(caption, this);
    action->setObjectName(key);
    action->setProperty(TagProperty, id);
    if (!keys.isEmpty()) {
      action->setShortcut(keys);
      action->setShortcutContext(Qt::WindowShortcut);
    }
    connect(action, &QAction::triggered, this, [this, key] { runTool(key); });
    mnuOptions->addAction(action);
    addAction(action);  // the keys work wherever the focus is in the dialog
    return action;
  };
  ATB_SelectAll = makeTool("ATB_SelectAll", "Select &All", "62306", QKeySequence("Ctrl+A"));
  ATB_UnSelectAll = makeTool("ATB_UnSelectAll", "&UnSelect All", "62307", QKeySequence("Ctrl+U"));
  ATB_SelectAllUsed = makeTool("ATB_SelectAllUsed", "Select &Not Empty", "62308", {});
  auto* optionsButton = new QToolButton(atvSearchSeq);
  optionsButton->setText("...");
  optionsButton->setMenu(mnuOptions);
  optionsButton->setPopupMode(QToolButton::InstantPopup);
  atvSearchSeq->addWidget(optionsButton);
  outer->addWidget(atvSearchSeq);

  tabPages = new QTabWidget(this);
  auto* page = new QWidget;
  page->setProperty(TagProperty, "62305");
  tabPages->addTab(page, "Set visibility and display order");
  auto* pageLayout = new QHBoxLayout(page);
  lstSearchSeq = new QListWidget(page);
  lstSearchSeq->setObjectName("lstSearchSeq");
  lstSearchSeq->setSelectionMode(QAbstractItemView::MultiSelection);
  lstSearchSeq->setContextMenuPolicy(Qt::CustomContextMenu);
  pageLayout->addWidget(lstSearchSeq, 1);
  auto* moves = new QVBoxLayout;
  cmdUp = new QPushButton("Up", page);
  cmdUp->setObjectName("cmdUp");
  cmdDown = new QPushButton("Down", page);
  cmdDown->setObjectName("cmdDown");
  moves->addWidget(cmdUp);
  moves->addWidget(cmdDown);
  moves->addStretch(1);
  pageLayout->addLayout(moves);
  outer->addWidget(tabPages, 1);

  auto* buttons = new QHBoxLayout;
  buttons->addStretch(1);
  cmdOK = new QPushButton("OK", this);
  cmdOK->setObjectName("cmdOK");
  cmdCancel = new QPushButton("Cancel", this);
  cmdCancel->setObjectName("cmdCancel");
  buttons->addWidget(cmdOK);
  buttons->addWidget(cmdCancel);
  outer->addLayout(buttons);
  // Enter in the list must not press OK behind the user's back.
  cmdOK->setAutoDefault(false);
  cmdCancel->setAutoDefault(false);
  cmdUp->setAutoDefault(false);
  cmdDown->setAutoDefault(false);

  connect(lstSearchSeq, &QListWidget::itemSelectionChanged, this, [this] { listChanged(); });
  connect(lstSearchSeq, &QListWidget::currentRowChanged, this, [this] { listChanged(); });
  connect(lstSearchSeq, &QWidget::customContextMenuRequested, this, [this](const QPoint& at) {
    mnuOptions->popup(lstSearchSeq->viewport()->mapToGlobal(at));
  });
  connect(cmdUp, &QPushButton::clicked, this, [this] {
    syncFromList();
    model_.cmdUp_Click();
    showModel();
  });
  connect(cmdDown, &QPushButton::clicked, this, [this] {
    syncFromList();
    model_.cmdDown_Click();
    showModel();
  });
  connect(cmdOK, &QPushButton::clicked, this, [this] {
    syncFromList();
    model_.cmdOK_Click();
    accept();
  });
  connect(cmdCancel, &QPushButton::clicked, this, [this] {
    model_.cmdCancel_Click();
    reject();
  });

  LocalizeForm(this, services, font);
  if (userStore_) {
    int32_t top = 0, left = 0, width = 0, height = 0;
    if (RestoreWindowPlace(*userStore_, *this, top, left, width, height))
      moveToPlace(*this, {top, left, width, height});
  }
  FormFill();
}

GBRVIEWER_GIESVC::~GBRVIEWER_GIESVC() = default;

void GBRVIEWER_GIESVC::FormFill() {
  model_.FormFill();
  showModel();
}

void GBRVIEWER_GIESVC::showModel() {
  showing_ = true;
  setWindowTitle(QString::fromStdString(model_.title()));
  tabPages->setTabText(0, QString::fromStdString(model_.tabCaption()));
  const auto& tools = model_.tools();
  QAction* actions[] = {ATB_SelectAll, ATB_UnSelectAll, ATB_SelectAllUsed};
  for (size_t i = 0; i < tools.size() && i < std::size(actions); ++i)
    actions[i]->setText(QString::fromStdString(tools[i].Caption));

  const auto& lines = model_.lines();
  while (lstSearchSeq->count() > int(lines.size()))
    delete lstSearchSeq->takeItem(lstSearchSeq->count() - 1);
  while (lstSearchSeq->count() < int(lines.size()))
    lstSearchSeq->addItem(QString());
  for (int i = 0; i < int(lines.size()); ++i) {
    QListWidgetItem* item = lstSearchSeq->item(i);
    item->setText(QString::fromStdString(lines[size_t(i)].Text));
    item->setSelected(lines[size_t(i)].Selected);
  }
  if (model_.listIndex() >= 0)
    lstSearchSeq->setCurrentRow(model_.listIndex(), QItemSelectionModel::NoUpdate);
  cmdUp->setEnabled(model_.upEnabled());
  cmdDown->setEnabled(model_.downEnabled());
  showing_ = false;
}

void GBRVIEWER_GIESVC::listChanged() {
  if (showing_ || syncPending_)
    return;
  syncPending_ = true;
  QTimer::singleShot(0, this, [this] { syncFromList(); });
}

void GBRVIEWER_GIESVC::syncFromList() {
  if (!syncPending_)
    return;
  syncPending_ = false;
  const auto& lines = model_.lines();
  for (int i = 0; i < lstSearchSeq->count() && i < int(lines.size()); ++i) {
    const bool selected = lstSearchSeq->item(i)->isSelected();
    if (selected != lines[size_t(i)].Selected)
      model_.lstSearchSeq_Click(i, selected);
  }
  // A move of the current line alone (the arrow keys) is a click as well.
  const int current = lstSearchSeq->currentRow();
  if (current >= 0 && current < int(lines.size()) && current != model_.listIndex())
    model_.lstSearchSeq_Click(current, lstSearchSeq->item(current)->isSelected());
  showModel();
}

void GBRVIEWER_GIESVC::runTool(const QString& key) {
  syncFromList();
  model_.runTool(key.toStdString());
  showModel();
}

void GBRVIEWER_GIESVC::closeEvent(QCloseEvent* event) {
  if (userStore_)
    SaveWindowPlace(*userStore_, *this);
  QDialog::closeEvent(event);
}

void GBRVIEWER_GIESVC::keyReleaseEvent(QKeyEvent* event) {
  if (isHelpKey(*event) && help_) {
    help_();
    return;
  }
  QDialog::keyReleaseEvent(event);
}

}  // namespace tvx
