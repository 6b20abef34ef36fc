// The window "Import to categories": a check box per option in the property grid, with OK and
// Cancel, over CategoryDialogModel, which holds its logic.
#pragma once

#include "platform/InterfaceFont.h"
#include "reconstruct/CategoryDialogModel.h"

#include <QDialog>

#include <functional>

class QPushButton;

namespace tvx {

class PropertyGrid;
class SystemServices;
class UserStore;

class GBRVIEWER_GIEIMP : public QDialog {
  Q_OBJECT

public:
  // With a store of places the window comes back where it was closed last time.
  GBRVIEWER_GIEIMP(CategoryOptions& options, const SystemServices& services,
                   UserStore* places = nullptr, QWidget* parent = nullptr,
                   const InterfaceFont& font = {});

  CategoryDialogModel& model() { return model_; }
  // What Ctrl+F1 opens.
  void setHelpHandler(std::function<void()> help) { help_ = std::move(help); }

  // The title; the rows as the options stand, the current row kept; the grid and buttons placed.
  void FormFill();
  void FormUpdate();
  void SizeControls();

  PropertyGrid* egrdProp = nullptr;
  QPushButton* cmdOK = nullptr;
  QPushButton* cmdCancel = nullptr;

protected:
  void resizeEvent(QResizeEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void done(int result) override;

private:
  CategoryDialogModel model_;
  UserStore* places_;
  std::function<void()> help_;
};

}  // namespace tvx
