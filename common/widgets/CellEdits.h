// The edits of a table's cells as the viewer's grids take them: a key that types into a cell marks
// an edit as pending, and the end of an edit commits the cell, with its new text or (an edit that
// was pending but left the text as it stood) with the text it has.
#pragma once

#include <QObject>

#include <functional>

class QTableWidget;

namespace tvx {

class CellEdits : public QObject {
public:
  struct Hooks {
    std::function<bool()> pending;  // an edit is pending
    std::function<void()> typed;    // a key typed into a cell
    std::function<void(int row, int column, const QString& text)> commit;
  };

  // Watches table, whose parent it becomes a child of.
  CellEdits(QTableWidget* table, Hooks hooks);

  // While set (the table being filled) no change is committed.
  bool filling = false;

protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

private:
  QTableWidget* table_;
  Hooks hooks_;
};

}  // namespace tvx
