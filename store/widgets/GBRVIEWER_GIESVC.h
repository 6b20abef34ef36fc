// The layer order dialog: a modeless window with the list of listed layers (selected = drawn),
// Up and Down to change the drawing order, a small menu of selection tools, OK and Cancel. All
// logic is in LayerOrderModel; this window shows it and forwards the user's actions.
#pragma once

#include "platform/InterfaceFont.h"
#include "store/LayerOrderModel.h"

#include <QDialog>

#include <functional>

class QAction;
class QListWidget;
class QMenu;
class QPushButton;
class QTabWidget;
class QToolBar;

namespace tvx {

class Store;
class SystemServices;
class UserStore;
struct LayerTables;

class GBRVIEWER_GIESVC : public QDialog {
  Q_OBJECT

public:
  // redraw is the main window's RedrawScreen; it runs after every change of the rows. The window
  // place is restored from userStore and saved there when the frame closes the dialog (none
  // when userStore is null). The list is filled at once.
  GBRVIEWER_GIESVC(LayerTables& tables, const Store& store, const SystemServices& services,
                   std::function<void()> redraw, QWidget* parent = nullptr,
                   UserStore* userStore = nullptr, const InterfaceFont& font = InterfaceFont{});
  ~GBRVIEWER_GIESVC() override;

  // Refills the list from LayerOrder, as at load.
  void FormFill();
  LayerOrderModel& model() { return model_; }
  // Ctrl+F1 opens the help through this.
  void setHelpHandler(std::function<void()> help) { help_ = std::move(help); }

  // The controls, by their names.
  QListWidget* lstSearchSeq = nullptr;
  QPushButton* cmdUp = nullptr;
  QPushButton* cmdDown = nullptr;
  QPushButton* cmdOK = nullptr;
  QPushButton* cmdCancel = nullptr;
  QTabWidget* tabPages = nullptr;
  QToolBar* atvSearchSeq = nullptr;
  QMenu* mnuOptions = nullptr;
  QAction* ATB_SelectAll = nullptr;
  QAction* ATB_UnSelectAll = nullptr;
  QAction* ATB_SelectAllUsed = nullptr;

protected:
  void closeEvent(QCloseEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;

private:
  void showModel();
  // Hands the list's selection and current line to the model once the list's own events of a
  // click are over, then shows the model again (an active layer's line stays selected).
  void listChanged();
  void syncFromList();
  void runTool(const QString& key);

  LayerOrderModel model_;
  UserStore* userStore_ = nullptr;
  std::function<void()> help_;
  bool showing_ = false;  // the view is being set from the model
  bool syncPending_ = false;
};

}  // namespace tvx
