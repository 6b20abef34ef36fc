// The editor of the working layer in the main window: the Edit menu with its undo, the Tools
// menu (the functions, the import, the layer mirrors), and the pointer's clicks and boxes of
// function 1 bound to the widget-free ElementEditor.
#include "shell/GBRVIEWER_MAIN.h"

#include "kernel/Kernel.h"
#include "store/Layers.h"
#include "viewer/BlockTransform.h"
#include "viewer/ElementEditor.h"
#include "viewer/LayerCommands.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QMenuBar>

#include <algorithm>

namespace tvx {

void GBRVIEWER_MAIN::buildEditMenu() {
  editor_ = std::make_unique<ElementEditor>(context_.kernel.store, context_.services, *tables_,
                                            *view_, *redraw_);
  ElementEditorHooks& h = editor_->hooks;
  h.currentKey = [this] { return keys_ ? keys_->CurrentKey() : editkey::Inspect; };
  h.confirmAtPointer = [this](const std::string& question) {
    return ConfirmYESNO(question, int32_t(pointer_->PointerX), int32_t(pointer_->PointerY));
  };
  h.startBoxDelete = [this](int32_t x, int32_t y) {
    bool unchanged = false;
    pointer_->SnapToRaster(unchanged, x, y);
    pointer_->ToolStartX = x;
    pointer_->ToolStartY = y;
    pointer_->StartTool(toolcode::BoxDelete);
  };
  h.functionTitle = [this] { return keys_ ? keys_->FunctionTitle : std::string(); };
  h.hourglass = [](bool busy) {
    if (busy)
      QApplication::setOverrideCursor(Qt::WaitCursor);
    else
      QApplication::restoreOverrideCursor();
  };
  h.enableUndo = [this](bool enabled) {
    if (QAction* undo = menuEntry("M_Undo"))
      undo->setEnabled(enabled);
  };

  QMenu* edit = menuBar()->addMenu("Edit");
  edit->setObjectName("M_OrdEdit");
  QAction* undo = edit->addAction("UnDo");
  undo->setObjectName("M_Undo");
  undo->setShortcut(QKeySequence::Undo);
  undo->setEnabled(false);
  connect(undo, &QAction::triggered, this, [this] { editor_->M_Undo_Click(); });
}

void GBRVIEWER_MAIN::buildToolsMenu() {
  QMenu* tools = menuBar()->addMenu("&Tools");
  tools->setObjectName("M_Edit");
  QAction* import = tools->addAction("&Import Artworks&&Drilling");
  import->setObjectName("M_FSIimport");
  connect(import, &QAction::triggered, this, [this] { M_FSIimport_Click(); });
  tools->addSeparator();
  // The current layer mirrored about the middle of all layers, so that it stays in register with
  // the others once they are all mirrored; a second time gives it back.
  for (int32_t index : {0, 1}) {
    QAction* flip = tools->addAction(index == 0 ? blockmsg::MirrorAlongX : blockmsg::MirrorAlongY);
    flip->setObjectName(QString("M_FlipLayer_%1").arg(index));
    connect(flip, &QAction::triggered, this, [this, index] { M_FlipLayer_Click(index); });
  }
  QAction* categories = tools->addAction("Import &Categories for editing");
  categories->setObjectName("M_ImportCategories");
  connect(categories, &QAction::triggered, this, [this] { M_ImportCategories_Click(); });
  // A row per function of the menu file, which start-up reads after the menus are built; the
  // current function checked. Function 1, the viewer's own, is the Graphic Imports tool's: its row
  // is hidden.
  connect(tools, &QMenu::aboutToShow, this, [this, tools, import] {
    for (QAction* action : tools->actions())
      if (action->objectName().startsWith("M_FSI_"))
        delete action;
    for (int16_t n = 1; n < FunctionCount; ++n) {
      if (functions_[size_t(n)].Name.empty())
        continue;
      auto* row = new QAction(QString::fromStdString(functions_[size_t(n)].Name), tools);
      row->setObjectName(QString("M_FSI_%1").arg(n));
      row->setCheckable(true);
      row->setChecked(n == currentFunction_);
      row->setVisible(n != 1);
      connect(row, &QAction::triggered, this, [this, n] { M_FSI_Click(n); });
      tools->insertAction(import, row);
    }
  });
}

void GBRVIEWER_MAIN::M_FlipLayer_Click(int32_t index) {
  FrameRect all;
  FrameLayers(context_.kernel.store, tables_->Layers, all);
  FlipLayer(context_.kernel.store, editor_->WorkingSymbol(), all, index);
  RedrawScreen();
}

// The pointer's left click and the delete box of function 1, and what hangs on the layer.
void GBRVIEWER_MAIN::wireElementEditor() {
  PointerHooks& p = pointer_->hooks;
  p.elementOperation = [this](int32_t x, int32_t y) { editor_->ElementClick(x, y); };
  p.boxDelete = [this](int32_t sx, int32_t sy, int32_t ex, int32_t ey) {
    const FrameRect box{std::min(sx, ex), std::min(sy, ey), std::max(sx, ex), std::max(sy, ey)};
    return editor_->DeleteInBox(editor_->WorkingSymbol(), box);
  };
  keys_->hooks.functionOneCommand = [this](int32_t key, int32_t option) {
    editor_->FunctionOneCommand(key, option);
  };
  editor_->hooks.openLayerProperties = [this] { openLayerProperties(); };
  LayerCommandHooks& layers = layerCommands_->hooks;
  layers.clearUndo = [this](SymbolId symbol) { editor_->DoUndo(symbol, undomode::Free); };
  layers.reselectKey = [this] { keys_->reselectKey(editkey::Inspect); };
}

}  // namespace tvx
