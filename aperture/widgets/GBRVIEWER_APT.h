// The window "Aperture Tables": the tables of the system folder, the sizes of the table in force
// and the commands, shown over ApertureTablesModel, which holds all of the window's logic.
#pragma once

#include "aperture/ApertureTablesModel.h"

#include <QDialog>

#include <functional>

class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QTableWidget;

namespace tvx {

class CellEdits;

class GBRVIEWER_APT : public QDialog {
  Q_OBJECT

public:
  GBRVIEWER_APT(ApertureTablesModel& model, QWidget* parent = nullptr);

  // What Ctrl+F1 opens.
  void setHelpHandler(std::function<void()> help) { help_ = std::move(help); }

  QListWidget* AptLst = nullptr;
  QLabel* staCurApt = nullptr;
  QLineEdit* txtNewFname = nullptr;
  QTableWidget* egrdSizes = nullptr;
  QPushButton* cmdInsSize[2] = {nullptr, nullptr};
  QPushButton* cmdDelSize = nullptr;
  QPushButton* cmdSaveAfile = nullptr;
  QPushButton* cmdReadList = nullptr;  // another tool's aperture list into the table
  QPushButton* cmdAccept = nullptr;
  QPushButton* cmdCancel = nullptr;

protected:
  void resizeEvent(QResizeEvent* event) override;
  void reject() override;  // Escape and closing the window: Cancel
  void keyReleaseEvent(QKeyEvent* event) override;

private:
  // Shows the model: the list, the name, the grid, the current cell.
  void refresh();
  void fillGrid();
  void measureRows();
  void commitCell(int row, int column, const QString& text);

  ApertureTablesModel& model_;
  CellEdits* edits_ = nullptr;  // a key typed into the grid marks an edit; its end commits
  std::function<void()> help_;
};

}  // namespace tvx
