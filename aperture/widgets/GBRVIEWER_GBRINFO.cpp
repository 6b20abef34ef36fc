#include "aperture/widgets/GBRVIEWER_GBRINFO.h"

#include "common/widgets/CellEdits.h"
#include "common/widgets/HelpKey.h"
#include "common/widgets/PropertyGrid.h"

#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QStyledItemDelegate>
#include <QTabWidget>
#include <QTableWidget>
#include <QVBoxLayout>

namespace tvx {

namespace {

QTableWidget* grid(const QString& name, const std::vector<std::string>& header) {
  auto* table = new QTableWidget(0, int(header.size()));
  table->setObjectName(name);
  table->verticalHeader()->hide();
  table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
  table->setSelectionMode(QAbstractItemView::SingleSelection);
  table->setEditTriggers(QAbstractItemView::AnyKeyPressed | QAbstractItemView::DoubleClicked |
                         QAbstractItemView::EditKeyPressed);
  QStringList labels;
  for (const std::string& text : header)
    labels << QString::fromStdString(text);
  table->setHorizontalHeaderLabels(labels);
  return table;
}

QPushButton* button(const char* name, const QString& caption) {
  auto* b = new QPushButton(caption);
  b->setObjectName(name);
  b->setAutoDefault(false);
  return b;
}

// An exposure's value cell offers its three words as a list; every other cell is typed into.
class ExposureDelegate : public QStyledItemDelegate {
public:
  ExposureDelegate(std::function<bool(int row)> exposure, QObject* parent)
      : QStyledItemDelegate(parent), exposure_(std::move(exposure)) {}

  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const override {
    if (!exposure_(index.row()))
      return QStyledItemDelegate::createEditor(parent, option, index);
    auto* words = new QComboBox(parent);
    for (const std::string& word : exposureWords())
      words->addItem(QString::fromStdString(word));
    return words;
  }
  void setEditorData(QWidget* editor, const QModelIndex& index) const override {
    if (auto* words = qobject_cast<QComboBox*>(editor))
      words->setCurrentText(index.data().toString());
    else
      QStyledItemDelegate::setEditorData(editor, index);
  }
  void setModelData(QWidget* editor, QAbstractItemModel* model,
                    const QModelIndex& index) const override {
    if (auto* words = qobject_cast<QComboBox*>(editor))
      model->setData(index, words->currentText());
    else
      QStyledItemDelegate::setModelData(editor, model, index);
  }

private:
  std::function<bool(int)> exposure_;
};

}  // namespace

GBRVIEWER_GBRINFO::GBRVIEWER_GBRINFO(ApertureSizesModel& model, QWidget* parent)
    : QDialog(parent), model_(model) {
  setObjectName("GBRVIEWER_GBRINFO");
  model_.open();
  setWindowTitle(QString::fromStdString(model_.caption));

  const char* listNames[] = {"Line Apertures:", "Round Pad Apertures:", "Square Pad Apertures:"};
  auto* standard = new QWidget;
  auto* standardLayout = new QGridLayout(standard);
  standardLayout->addWidget(new QLabel(" Click Column to change Apeture Size (inch/mm)"), 0, 0, 1,
                            3);
  for (int index = 0; index < 3; ++index) {
    egrdApts[size_t(index)] = grid(QString("egrdApts%1").arg(index), model_.apertureHeader);
    standardLayout->addWidget(new QLabel(listNames[index]), 1, index);
    standardLayout->addWidget(egrdApts[size_t(index)], 2, index);
    aptEdits_[size_t(index)] = new CellEdits(
        egrdApts[size_t(index)],
        {[this] { return model_.CellEditPending; }, [this] { model_.CellEditPending = true; },
         [this, index](int row, int column, const QString& text) {
           model_.editSize(index, row + 1, column, text.toStdString());
           // After the editor has gone: the row shows the list's value, typed or kept.
           QMetaObject::invokeMethod(
               this, [this] { refresh(); }, Qt::QueuedConnection);
         }});
  }
  egrdSizes = grid("egrdSizes", model_.sizeHeader);
  egrdSizes->setEditTriggers(QAbstractItemView::NoEditTriggers);
  standardLayout->addWidget(new QLabel("Sizes:"), 3, 0, 1, 3);
  standardLayout->addWidget(egrdSizes, 4, 0, 1, 3);
  standardLayout->setRowStretch(2, 1);

  auto* special = new QWidget;
  auto* specialLayout = new QVBoxLayout(special);
  specialLayout->addWidget(new QLabel("Click on aperture to view/change modifiers:"));
  specialLayout->addWidget(new QLabel("Special Apertures:"));
  F_XUapts = grid("F_XUapts", model_.specialHeader);
  F_XUapts->setEditTriggers(QAbstractItemView::NoEditTriggers);
  specialLayout->addWidget(F_XUapts, 1);
  F_ModFrame = new QGroupBox("Modifiers:");
  F_ModFrame->setObjectName("F_ModFrame");
  auto* frameLayout = new QVBoxLayout(F_ModFrame);
  F_XMod = grid("F_XMod", model_.modifierHeader);
  // The delegate first: the edits watch the delegate the grid has.
  F_XMod->setItemDelegate(new ExposureDelegate(
      [this](int row) {
        return row >= 0 && row < int(model_.ModifierClasses.size()) &&
               model_.ModifierClasses[size_t(row)] == modifierclass::Exposure;
      },
      F_XMod));
  frameLayout->addWidget(F_XMod);
  specialLayout->addWidget(F_ModFrame, 2);
  modEdits_ = new CellEdits(
      F_XMod, {[this] { return model_.CellEditPending; }, [this] { model_.CellEditPending = true; },
               [this](int row, int column, const QString& text) {
                 // A refused value stays in the cell as typed.
                 if (model_.editModifier(row + 1, column, text.toStdString()))
                   QMetaObject::invokeMethod(
                       this, [this] { fillModifiers(); }, Qt::QueuedConnection);
               }});
  connect(F_XUapts, &QTableWidget::cellClicked, this, [this](int row, int) {
    model_.showModifiers(row + 1);
    fillModifiers();
  });

  AptTypes = new QTabWidget;
  AptTypes->setObjectName("AptTypes");
  AptTypes->addTab(standard, QString::fromStdString(model_.standardTab));
  AptTypes->addTab(special, QString::fromStdString(model_.specialTab));

  cmdUpdate[0] = button("cmdUpdate0", "Update Artwork File && Return");
  cmdUpdate[1] = button("cmdUpdate1", "Create Aperture File && Return");
  cmdClose = button("cmdClose", "Close");
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(cmdUpdate[0]);
  buttons->addWidget(cmdUpdate[1]);
  buttons->addStretch();
  buttons->addWidget(cmdClose);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(AptTypes, 1);
  layout->addLayout(buttons);
  resize(900, 560);

  connect(cmdUpdate[0], &QPushButton::clicked, this, [this] {
    if (model_.updateArtwork())
      accept();
  });
  connect(cmdUpdate[1], &QPushButton::clicked, this, [this] {
    if (model_.createApertureFile())
      accept();
  });
  connect(cmdClose, &QPushButton::clicked, this, &QDialog::reject);
  refresh();
}

void GBRVIEWER_GBRINFO::fill(QTableWidget& table, const std::vector<ShownRow>& rows,
                             CellEdits* edits) {
  if (edits)
    edits->filling = true;
  table.setRowCount(int(rows.size()));
  for (size_t row = 0; row < rows.size(); ++row)
    for (size_t column = 0; column < rows[row].Cells.size(); ++column) {
      auto* item = new QTableWidgetItem(QString::fromStdString(rows[row].Cells[column]));
      if (column >= rows[row].Editable.size() || !rows[row].Editable[column])
        item->setFlags(item->flags() & ~Qt::ItemIsEditable);
      table.setItem(int(row), int(column), item);
    }
  // A list without rows leaves its grid disabled.
  table.setEnabled(!rows.empty());
  if (edits)
    edits->filling = false;
}

void GBRVIEWER_GBRINFO::fillModifiers() {
  F_ModFrame->setTitle(QString::fromStdString(model_.modifierCaption));
  fill(*F_XMod, model_.modifierGrid, modEdits_);
  F_XMod->setEnabled(true);
}

void GBRVIEWER_GBRINFO::refresh() {
  for (size_t index = 0; index < 3; ++index)
    fill(*egrdApts[index], model_.apertureGrids[index], aptEdits_[index]);
  fill(*egrdSizes, model_.sizeGrid, nullptr);
  egrdSizes->setEnabled(true);
  const QColor grey = PropertyGrid::colourOf(ApertureSizesModel::SizesBack);
  for (int row = 0; row < egrdSizes->rowCount(); ++row)
    for (int column = 0; column < egrdSizes->columnCount(); ++column)
      if (QTableWidgetItem* item = egrdSizes->item(row, column))
        item->setBackground(grey);
  fill(*F_XUapts, model_.specialGrid, nullptr);
  AptTypes->setTabEnabled(1, model_.specialTabEnabled);
  cmdUpdate[1]->setVisible(model_.createShown);
  fillModifiers();
}

void GBRVIEWER_GBRINFO::keyReleaseEvent(QKeyEvent* event) {
  if (isHelpKey(*event) && help_) {
    help_();
    return;
  }
  QDialog::keyReleaseEvent(event);
}

}  // namespace tvx
