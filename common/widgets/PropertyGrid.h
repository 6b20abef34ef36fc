// The suite's property grid: a caption cell and a value cell per row, and the row's
// key hidden in the caption cell. Value cells are read-only texts, lists, typed numbers, check
// boxes and buttons; group rows span both cells. Every change the user makes comes out as one
// signal, cellCommitted, delivered after the event that caused it so that the receiver may
// rebuild the rows.
#pragma once

#include "common/GridRow.h"
#include "common/PropertyGridAccess.h"
#include "common/WheelSteps.h"

#include <QTableWidget>

#include <functional>
#include <string>
#include <vector>

namespace tvx {

class PropertyGrid : public QTableWidget, public PropertyGridAccess {
  Q_OBJECT

public:
  explicit PropertyGrid(QWidget* parent = nullptr);

  // Shows rows; listOf gives the entries of a fixed list. The current row is kept.
  void setRows(const std::vector<GridRow>& rows,
               const std::function<const std::vector<std::string>&(int32_t)>& listOf);
  // The hidden key of a row.
  QString keyOf(int row) const;
  // The row of a key, -1 when none.
  int rowOfKey(const QString& key) const;
  // What the user sees in a row's value cell: the text of its list, box or button, "[x]" or "[ ]"
  // for a check box, else the cell's text.
  QString shownValue(int row) const;
  // Where a row's value cell is on the screen.
  QRect valueCellOnScreen(int row) const;
  // The rows that show whole without scrolling.
  int wholeRowsShown() const;

  // PropertyGridAccess. Its row 0 is the heading row, so that grid row r is table row r - 1.
  int32_t Rows() const override { return rowCount() + 1; }
  int32_t Cols() const override { return columnCount(); }
  int32_t CellBackColor(int32_t row, int32_t col) const override;
  void SetCellBackColor(int32_t row, int32_t col, int32_t colour) override;
  void SetCellFontBold(int32_t row, int32_t col, bool bold) override;
  void SetBackColorFixed(int32_t colour) override;
  void SetGridLinesFixed(int32_t) override {}
  int32_t TopRow() const override;
  void SetTopRow(int32_t row) override;
  bool canScroll() const override { return rowCount() > 0; }

  static QColor colourOf(int32_t bgr);

  // Wide enough for both columns' contents and high enough for every row, up to a limit: what a
  // window that was never placed opens at.
  QSize sizeHint() const override;

protected:
  // One row per wheel step, as every property grid of the viewer scrolls.
  void wheelEvent(QWheelEvent* event) override;

signals:
  // A list entry chosen, a box or button clicked, or a typed value left by focus, Tab or Enter.
  void cellCommitted(int row, const QString& text);
  // A click on a row; valueCell tells which of its two cells.
  void rowClicked(int row, bool valueCell);
  // The user typed into a value cell.
  void cellEdited();

private:
  void addValueWidget(int row, const GridRow& data,
                      const std::function<const std::vector<std::string>&(int32_t)>& listOf);
  void emitLater(int row, const QString& text);
  bool filling_ = false;
  WheelSteps wheelSteps_;
};

}  // namespace tvx
