#include "common/widgets/PropertyGrid.h"

#include "common/GridHelpers.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QPixmap>
#include <QPushButton>
#include <QScrollBar>
#include <QTimer>
#include <QWheelEvent>

#include <algorithm>
#include <cstdlib>

namespace tvx {

namespace {
constexpr int KeyRole = Qt::UserRole + 1;
}  // namespace

QColor PropertyGrid::colourOf(int32_t bgr) {
  return QColor(bgr & 0xFF, (bgr >> 8) & 0xFF, (bgr >> 16) & 0xFF);
}

PropertyGrid::PropertyGrid(QWidget* parent) : QTableWidget(parent) {
  setObjectName("egrdProp");
  setColumnCount(2);
  horizontalHeader()->setStretchLastSection(true);
  horizontalHeader()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
  verticalHeader()->hide();
  setSelectionMode(QAbstractItemView::SingleSelection);
  setEditTriggers(QAbstractItemView::AllEditTriggers);
  setTabKeyNavigation(false);
  setVerticalScrollMode(QAbstractItemView::ScrollPerItem);

  // A typed value arrives here when the editor closes: on focus leaving, Tab or Enter.
  connect(this, &QTableWidget::itemChanged, this, [this](QTableWidgetItem* item) {
    if (filling_ || item->column() != 1)
      return;
    emit cellEdited();
    emitLater(item->row(), item->text());
  });
  // Told after the click has been handled, for a receiver that rebuilds the rows.
  connect(this, &QTableWidget::cellClicked, this, [this](int row, int column) {
    QTimer::singleShot(0, this, [this, row, column] { emit rowClicked(row, column == 1); });
  });
}

QSize PropertyGrid::sizeHint() const {
  // Beyond these the grid scrolls: a long aperture list does not make a window taller than a
  // screen, nor a long path one wider.
  constexpr int MostRowsShown = 30;
  constexpr int MostValueWidth = 480;
  const int frame = 2 * frameWidth();
  const int scrollBar = verticalScrollBar()->sizeHint().width();
  const int width = sizeHintForColumn(0) + std::min(sizeHintForColumn(1), MostValueWidth);
  int height = horizontalHeader()->sizeHint().height();
  for (int row = 0; row < std::min(rowCount(), MostRowsShown); ++row)
    height += std::max(rowHeight(row), sizeHintForRow(row));
  return {width + frame + scrollBar, height + frame};
}

void PropertyGrid::emitLater(int row, const QString& text) {
  QTimer::singleShot(0, this, [this, row, text] { emit cellCommitted(row, text); });
}

QString PropertyGrid::keyOf(int row) const {
  const QTableWidgetItem* caption = item(row, 0);
  return caption ? caption->data(KeyRole).toString() : QString();
}

int PropertyGrid::rowOfKey(const QString& key) const {
  for (int row = 0; row < rowCount(); ++row)
    if (keyOf(row) == key)
      return row;
  return -1;
}

QString PropertyGrid::shownValue(int row) const {
  const QWidget* editor = cellWidget(row, 1);
  if (const auto* box = qobject_cast<const QComboBox*>(editor))
    return box->currentText();
  if (const auto* check = qobject_cast<const QCheckBox*>(editor))
    return check->isChecked() ? "[x]" : "[ ]";
  if (const auto* button = qobject_cast<const QPushButton*>(editor))
    return button->text().replace("&&", "&");
  const QTableWidgetItem* cell = item(row, 1);
  return cell ? cell->text() : QString();
}

QRect PropertyGrid::valueCellOnScreen(int row) const {
  const QRect cell = visualRect(model()->index(row, 1));
  return {viewport()->mapToGlobal(cell.topLeft()), cell.size()};
}

int PropertyGrid::wholeRowsShown() const {
  const int bottom = viewport()->height();
  int shown = 0;
  for (int row = 0; row < rowCount(); ++row)
    shown += rowViewportPosition(row) >= 0 && rowViewportPosition(row) + rowHeight(row) <= bottom;
  return shown;
}

void PropertyGrid::setRows(const std::vector<GridRow>& rows,
                           const std::function<const std::vector<std::string>&(int32_t)>& listOf) {
  filling_ = true;
  const int current = currentRow();
  const int top = TopRow();
  clearSpans();
  setRowCount(0);
  setRowCount(static_cast<int>(rows.size()));
  for (int row = 0; row < static_cast<int>(rows.size()); ++row) {
    const GridRow& gridRow = rows[size_t(row)];
    auto* caption = new QTableWidgetItem(QString::fromStdString(gridRow.Caption));
    caption->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    caption->setData(KeyRole, QString::fromStdString(gridRow.Key));
    setItem(row, 0, caption);
    auto* value = new QTableWidgetItem(QString::fromStdString(gridRow.Value));
    const bool typed = gridRow.Cell == CellKind::Number && !gridRow.ReadOnly;
    value->setFlags(typed ? Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable
                          : Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    setItem(row, 1, value);
    if (gridRow.Cell == CellKind::Group) {
      QFont bold = caption->font();
      bold.setBold(true);
      caption->setFont(bold);
      value->setFont(bold);
    }
    if (gridRow.CaptionBack != gridcolour::NoColour)
      caption->setBackground(colourOf(gridRow.CaptionBack));
    if (gridRow.ValueBack != gridcolour::NoColour)
      value->setBackground(colourOf(gridRow.ValueBack));
    if (gridRow.ValueFore != gridcolour::NoColour)
      value->setForeground(colourOf(gridRow.ValueFore));
    if (gridRow.Swatch != gridcolour::NoColour) {
      QPixmap square(16, 16);
      square.fill(colourOf(gridRow.Swatch));
      value->setIcon(QIcon(square));
    }
    if (!gridRow.ReadOnly)
      addValueWidget(row, gridRow, listOf);
  }
  if (current >= 0 && current < rowCount())
    setCurrentCell(current, 1);
  SetTopRow(top);
  filling_ = false;
  updateGeometry();
}

void PropertyGrid::addValueWidget(
    int row, const GridRow& gridRow,
    const std::function<const std::vector<std::string>&(int32_t)>& listOf) {
  const QString value = QString::fromStdString(gridRow.Value);
  switch (gridRow.Cell) {
  case CellKind::List: {
    auto* box = new QComboBox;
    for (const std::string& entry : listOf(gridRow.List))
      box->addItem(QString::fromStdString(entry));
    const int index = box->findText(value);
    if (index >= 0) {
      box->setCurrentIndex(index);
    } else {
      // A value that is no entry ("Click to select", "(Default)") stands as the shown text.
      box->setEditable(true);
      box->lineEdit()->setReadOnly(true);
      box->setCurrentIndex(-1);
      box->setEditText(value);
    }
    if (gridRow.Swatch != gridcolour::NoColour) {
      QPixmap square(16, 16);
      square.fill(colourOf(gridRow.Swatch));
      box->setItemIcon(0, QIcon(square));
    }
    connect(box, &QComboBox::activated, this,
            [this, row, box](int chosen) { emitLater(row, box->itemText(chosen)); });
    setCellWidget(row, 1, box);
    break;
  }
  case CellKind::Check: {
    auto* check = new QCheckBox;
    check->setChecked(gridRow.Checked);
    connect(check, &QCheckBox::clicked, this,
            [this, row](bool on) { emitLater(row, on ? "1" : "0"); });
    setCellWidget(row, 1, check);
    break;
  }
  case CellKind::Button: {
    // "&" in a value is a character of the text, not a mnemonic.
    auto* button = new QPushButton(QString(value).replace('&', "&&"));
    button->setEnabled(gridRow.Enabled);
    connect(button, &QPushButton::clicked, this, [this, row, value] { emitLater(row, value); });
    setCellWidget(row, 1, button);
    break;
  }
  case CellKind::Group:
  case CellKind::Text:
  case CellKind::Number:
    break;
  }
}

int32_t PropertyGrid::CellBackColor(int32_t row, int32_t col) const {
  const QTableWidgetItem* cell = row > 0 ? item(row - 1, col) : horizontalHeaderItem(col);
  if (!cell || cell->background().style() == Qt::NoBrush)
    return gridcolour::NoColour;
  const QColor c = cell->background().color();
  return c.red() | (c.green() << 8) | (c.blue() << 16);
}

void PropertyGrid::SetCellBackColor(int32_t row, int32_t col, int32_t colour) {
  if (QTableWidgetItem* cell = row > 0 ? item(row - 1, col) : horizontalHeaderItem(col))
    cell->setBackground(colourOf(colour));
}

void PropertyGrid::SetCellFontBold(int32_t row, int32_t col, bool bold) {
  if (QTableWidgetItem* cell = row > 0 ? item(row - 1, col) : horizontalHeaderItem(col)) {
    QFont font = cell->font();
    font.setBold(bold);
    cell->setFont(font);
  }
}

void PropertyGrid::SetBackColorFixed(int32_t colour) {
  horizontalHeader()->setStyleSheet(
      QString("QHeaderView::section { background-color: %1; }").arg(colourOf(colour).name()));
}

// The first row below the heading that is shown.
int32_t PropertyGrid::TopRow() const { return verticalScrollBar()->value() + 1; }

void PropertyGrid::SetTopRow(int32_t row) { verticalScrollBar()->setValue(std::max(0, row - 1)); }

void PropertyGrid::wheelEvent(QWheelEvent* event) {
  const int32_t steps = wheelSteps_.add(event->angleDelta().y(), event->pixelDelta().y());
  for (int32_t step = 0; step < std::abs(steps); ++step)
    ScrollGrid(*this, steps);
  event->accept();
}

}  // namespace tvx
