// The window "Apertures & Sizes": the scanned file's aperture lists and board size on one tab, its
// special apertures and their modifiers on the other, and the ways back to the import. It shows
// ApertureSizesModel, which holds all of the window's logic.
#pragma once

#include "aperture/ApertureSizesModel.h"

#include <QDialog>

#include <array>
#include <functional>

class QGroupBox;
class QPushButton;
class QTabWidget;
class QTableWidget;

namespace tvx {

class CellEdits;

class GBRVIEWER_GBRINFO : public QDialog {
  Q_OBJECT

public:
  GBRVIEWER_GBRINFO(ApertureSizesModel& model, QWidget* parent = nullptr);

  // What Ctrl+F1 opens.
  void setHelpHandler(std::function<void()> help) { help_ = std::move(help); }

  QTabWidget* AptTypes = nullptr;
  std::array<QTableWidget*, 3> egrdApts{};
  QTableWidget* egrdSizes = nullptr;
  QTableWidget* F_XUapts = nullptr;
  QGroupBox* F_ModFrame = nullptr;
  QTableWidget* F_XMod = nullptr;
  std::array<QPushButton*, 2> cmdUpdate{};
  QPushButton* cmdClose = nullptr;

protected:
  void keyReleaseEvent(QKeyEvent* event) override;

private:
  void refresh();
  void fill(QTableWidget& table, const std::vector<ShownRow>& rows, CellEdits* edits);
  void fillModifiers();

  ApertureSizesModel& model_;
  std::array<CellEdits*, 3> aptEdits_{};
  CellEdits* modEdits_ = nullptr;
  std::function<void()> help_;
};

}  // namespace tvx
