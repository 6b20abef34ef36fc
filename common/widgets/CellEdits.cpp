#include "common/widgets/CellEdits.h"

#include <QAbstractItemDelegate>
#include <QKeyEvent>
#include <QTableWidget>

namespace tvx {

CellEdits::CellEdits(QTableWidget* table, Hooks hooks)
    : QObject(table), table_(table), hooks_(std::move(hooks)) {
  table->installEventFilter(this);
  connect(table, &QTableWidget::itemChanged, this, [this](QTableWidgetItem* item) {
    if (!filling && hooks_.commit)
      hooks_.commit(item->row(), item->column(), item->text());
  });
  // An editor left with its text unchanged gives no itemChanged; a pending edit is still taken.
  connect(table->itemDelegate(), &QAbstractItemDelegate::closeEditor, this, [this] {
    const int row = table_->currentRow();
    const int column = table_->currentColumn();
    if (hooks_.pending && hooks_.pending() && row >= 0 && column >= 0 &&
        table_->item(row, column) && hooks_.commit)
      hooks_.commit(row, column, table_->item(row, column)->text());
  });
}

bool CellEdits::eventFilter(QObject* watched, QEvent* event) {
  if (watched == table_ && event->type() == QEvent::KeyPress) {
    const auto* key = static_cast<QKeyEvent*>(event);
    if (!key->text().isEmpty() && key->key() != Qt::Key_Return && key->key() != Qt::Key_Enter &&
        key->key() != Qt::Key_Tab && key->key() != Qt::Key_Escape && hooks_.typed)
      hooks_.typed();
  }
  return QObject::eventFilter(watched, event);
}

}  // namespace tvx
