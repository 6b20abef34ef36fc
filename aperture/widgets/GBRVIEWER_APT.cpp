#include "aperture/widgets/GBRVIEWER_APT.h"

#include "common/widgets/CellEdits.h"
#include "common/widgets/HelpKey.h"

#include <QFileDialog>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTableWidget>

namespace tvx {

namespace {
QPushButton* button(QWidget* parent, const char* name, const QString& caption) {
  auto* b = new QPushButton(caption, parent);
  b->setObjectName(name);
  b->setAutoDefault(false);
  return b;
}
}  // namespace

GBRVIEWER_APT::GBRVIEWER_APT(ApertureTablesModel& model, QWidget* parent)
    : QDialog(parent), model_(model) {
  setObjectName("GBRVIEWER_APT");
  setWindowTitle(tr("Aperture Tables"));
  AptLst = new QListWidget(this);
  AptLst->setObjectName("AptLst");
  staCurApt = new QLabel(this);
  staCurApt->setObjectName("staCurApt");
  staCurApt->setFrameShape(QFrame::Panel);
  staCurApt->setFrameShadow(QFrame::Sunken);
  txtNewFname = new QLineEdit(this);
  txtNewFname->setObjectName("txtNewFname");
  egrdSizes = new QTableWidget(0, ApertureTablesModel::Columns, this);
  egrdSizes->setObjectName("egrdSizes");
  egrdSizes->verticalHeader()->hide();
  egrdSizes->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
  egrdSizes->setSelectionMode(QAbstractItemView::SingleSelection);
  egrdSizes->setEditTriggers(QAbstractItemView::AnyKeyPressed | QAbstractItemView::DoubleClicked |
                             QAbstractItemView::EditKeyPressed);
  cmdInsSize[0] = button(this, "cmdInsSize0", tr("inch"));
  cmdInsSize[1] = button(this, "cmdInsSize1", tr(" mm"));
  cmdDelSize = button(this, "cmdDelSize", tr("Delete Size"));
  cmdSaveAfile = button(this, "cmdSaveAfile", tr("Save Aperture Table"));
  cmdReadList = button(this, "cmdReadList", tr("Read Aperture List..."));
  cmdAccept = button(this, "cmdAccept", tr("Accept"));
  cmdCancel = button(this, "cmdCancel", tr("Cancel"));

  auto* insert = new QGroupBox(tr("Insert Size"), this);
  auto* insertRow = new QHBoxLayout(insert);
  insertRow->addWidget(cmdInsSize[0]);
  insertRow->addWidget(cmdInsSize[1]);
  auto* layout = new QGridLayout(this);
  layout->addWidget(new QLabel(tr("List of Aperture Tables:"), this), 0, 0);
  layout->addWidget(AptLst, 1, 0, 5, 1);
  layout->addWidget(new QLabel(tr("Current Aperture Table:"), this), 6, 0);
  layout->addWidget(staCurApt, 7, 0);
  layout->addWidget(new QLabel(tr("Named As :"), this), 8, 0);
  layout->addWidget(txtNewFname, 9, 0);
  layout->addWidget(new QLabel(tr("Sizes:"), this), 0, 1);
  layout->addWidget(egrdSizes, 1, 1, 9, 1);
  layout->addWidget(insert, 1, 2);
  layout->addWidget(cmdDelSize, 2, 2);
  layout->addWidget(cmdSaveAfile, 3, 2);
  layout->addWidget(cmdReadList, 4, 2);
  layout->addWidget(cmdAccept, 8, 2);
  layout->addWidget(cmdCancel, 9, 2);
  layout->setColumnStretch(1, 1);
  resize(900, 440);

  for (int column = 0; column < ApertureTablesModel::Columns; ++column)
    egrdSizes->setHorizontalHeaderItem(
        column, new QTableWidgetItem(QString::fromStdString(model_.header(column))));
  edits_ = new CellEdits(
      egrdSizes,
      {[this] { return model_.CellEditPending; }, [this] { model_.CellEditPending = true; },
       [this](int row, int column, const QString& text) { commitCell(row, column, text); }});
  model_.FillAptform();
  refresh();

  connect(AptLst, &QListWidget::itemClicked, this, [this](QListWidgetItem* item) {
    model_.listClick(item->text().toStdString());
    refresh();
  });
  connect(egrdSizes, &QTableWidget::currentCellChanged, this, [this](int row, int column) {
    if (edits_->filling || row < 0)
      return;
    model_.CurrentRow = row + 1;
    model_.CurrentColumn = column;
  });
  connect(txtNewFname, &QLineEdit::textEdited, this,
          [this](const QString& text) { model_.txtNewFname = text.toStdString(); });
  for (int index = 0; index < 2; ++index)
    connect(cmdInsSize[index], &QPushButton::clicked, this, [this, index] {
      model_.insertSize(index);
      refresh();
      egrdSizes->setFocus();
    });
  connect(cmdDelSize, &QPushButton::clicked, this, [this] {
    model_.deleteSize();
    refresh();
  });
  connect(cmdSaveAfile, &QPushButton::clicked, this, [this] {
    model_.save();
    refresh();
  });
  connect(cmdReadList, &QPushButton::clicked, this, [this] {
    // Qt's own dialog, so that it looks and answers alike everywhere, tests included.
    const QString path =
        QFileDialog::getOpenFileName(this, cmdReadList->text(), QString(), tr("Aperture lists (*)"),
                                     nullptr, QFileDialog::DontUseNativeDialog);
    if (path.isEmpty())
      return;
    model_.readList(path.toStdString());
    refresh();
  });
  connect(cmdAccept, &QPushButton::clicked, this, [this] {
    model_.accept();
    accept();
  });
  connect(cmdCancel, &QPushButton::clicked, this, &GBRVIEWER_APT::reject);
}

void GBRVIEWER_APT::reject() {
  model_.cancel();
  QDialog::reject();
}

void GBRVIEWER_APT::commitCell(int row, int column, const QString& text) {
  model_.EditAptValues(row + 1, column, text.toStdString());
  // After the editor has gone: the row shows the table's values, typed or kept.
  QMetaObject::invokeMethod(
      this, [this] { refresh(); }, Qt::QueuedConnection);
}

void GBRVIEWER_APT::keyReleaseEvent(QKeyEvent* event) {
  if (isHelpKey(*event) && help_) {
    help_();
    return;
  }
  QDialog::keyReleaseEvent(event);
}

void GBRVIEWER_APT::resizeEvent(QResizeEvent* event) {
  QDialog::resizeEvent(event);
  measureRows();
}

void GBRVIEWER_APT::measureRows() {
  const int rowHeight = std::max(1, egrdSizes->verticalHeader()->defaultSectionSize());
  model_.VisibleRows = std::max(1, egrdSizes->viewport()->height() / rowHeight - 1);
}

void GBRVIEWER_APT::fillGrid() {
  egrdSizes->setRowCount(model_.rowCount());
  for (int32_t row = 1; row <= model_.rowCount(); ++row)
    for (int column = 0; column < ApertureTablesModel::Columns; ++column) {
      auto* item = new QTableWidgetItem(QString::fromStdString(model_.cell(row, column)));
      if (column < 2)
        item->setFlags(item->flags() & ~Qt::ItemIsEditable);  // sizes are not typed over
      egrdSizes->setItem(row - 1, column, item);
    }
}

void GBRVIEWER_APT::refresh() {
  edits_->filling = true;
  AptLst->clear();
  for (const std::string& name : model_.tableFiles())
    AptLst->addItem(QString::fromStdString(name));
  staCurApt->setText(QString::fromStdString(model_.staCurApt));
  txtNewFname->setText(QString::fromStdString(model_.txtNewFname));
  fillGrid();
  if (model_.rowCount() > 0) {
    egrdSizes->setCurrentCell(model_.CurrentRow - 1, model_.CurrentColumn);
    egrdSizes->scrollToItem(egrdSizes->item(model_.TopRow - 1, 0),
                            QAbstractItemView::PositionAtTop);
  }
  edits_->filling = false;
}

}  // namespace tvx
