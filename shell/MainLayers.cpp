// The layer commands of the main window: the "PCB Layer" menu (a row per listed layer, add and
// remove an inner layer) and File > New, bound to the widget-free LayerCommands.
#include "shell/GBRVIEWER_MAIN.h"

#include "kernel/Kernel.h"
#include "shell/FunctionKeys.h"
#include "store/widgets/GBRVIEWER_GIESVC.h"
#include "viewer/KeyboardInput.h"
#include "viewer/LayerCommands.h"
#include "viewer/Measuring.h"
#include "viewer/Redraw.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>

#include <memory>
#include <utility>

namespace tvx {

void GBRVIEWER_MAIN::buildLayerCommands() {
  layerCommands_ =
      std::make_unique<LayerCommands>(context_.kernel.store, context_.services, *tables_);
  LayerCommandHooks& h = layerCommands_->hooks;
  h.unloadVisibilityWindow = [this] {
    if (!layerVisibility_)
      return false;
    layerVisibility_->close();
    return true;
  };
  h.showVisibilityWindow = [this] { M_GIESelCatView_Click(); };
  h.closeLayerProperties = [this] { closeLayerProperties(); };
  // Busy while the commands work; the state before comes back after, so that a start-up that
  // holds the redraw keeps holding it.
  h.setRedrawBusy = [this, before = std::make_shared<bool>(false)](bool busy) {
    if (busy)
      *before = std::exchange(redraw_->RedrawBusy, true);
    else
      redraw_->RedrawBusy = *before;
  };
  h.endTool = [this] { Form_KeyDown(keycode::Escape, 0); };
  // Within a batch of files the view is drawn once, fitted, when the last one is in: a layer
  // drawn at the view of before would cost the large ones their spatial index and a picture
  // nobody sees.
  h.redraw = [this] {
    if (!batchImporting_)
      RedrawScreen();
  };
  h.applySystemSettings = [this] {
    // Every layer afresh and empty, and no reference point on them.
    layersBuilt_ = false;
    if (measuring_)
      measuring_->clearReferencePoint();
    ApplySystemSettings();
  };
  h.selectFunctionOne = [this] {
    currentFunction_ = 0;
    M_FSI_Click(1);
  };
  h.startImport = [this] { M_FSIimport_Click(); };
  h.changed = [this] { syncLayerMenu(); };

  QMenu* menu = new QMenu("PCB &Layer", this);
  menu->setObjectName("M_ActiveCategory");
  menuBar()->addMenu(menu);
  // The title over the layer rows.
  QAction* title = menu->addAction("Select to view ..");
  title->setObjectName("M_ActiveCategorySel");
  title->setEnabled(false);
  for (int32_t n = 1; n <= LayerCount; ++n) {
    QAction* row = menu->addAction(QString());
    row->setObjectName(QString("M_ActiveCategories_%1").arg(n));
    row->setCheckable(true);
    connect(row, &QAction::triggered, this, [this, n] {
      layerCommands_->M_ActiveCategories_Click(n);
      syncLayerMenu();
    });
  }
  menu->addSeparator();
  QAction* add = menu->addAction("&Add inner layer");
  add->setObjectName("M_AddLayer");
  connect(add, &QAction::triggered, this, [this] { layerCommands_->M_AddLayer_Click(); });
  QAction* remove = menu->addAction(QString());
  remove->setObjectName("M_RemoveLayer");
  connect(remove, &QAction::triggered, this, [this] { layerCommands_->M_RemoveLayer_Click(); });
  connect(menu, &QMenu::aboutToShow, this, [this] { syncLayerMenu(); });
}

void GBRVIEWER_MAIN::syncLayerMenu() {
  if (!layerCommands_)
    return;
  const LayerCommandsState state = layerCommands_->state();
  const auto apply = [](QAction* action, const LayerEntryState& entry, bool caption) {
    if (!action)
      return;
    if (caption)
      action->setText(QString::fromStdString(entry.caption));
    action->setVisible(entry.visible);
    action->setChecked(entry.checked);
    action->setEnabled(entry.enabled);
  };
  for (int32_t n = 1; n <= LayerCount; ++n)
    apply(findChild<QAction*>(QString("M_ActiveCategories_%1").arg(n)), state.layer(n), true);
  apply(menuEntry("M_AddLayer"), state.addLayer, false);
  apply(menuEntry("M_RemoveLayer"), state.removeLayer, true);
}

void GBRVIEWER_MAIN::M_New_Click() { layerCommands_->M_New_Click(); }

}  // namespace tvx
