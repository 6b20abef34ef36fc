// The main window's side of the layer properties window (function 1, key 0) and of the apertures
// display that the import window opens.
#include "shell/GBRVIEWER_MAIN.h"

#include "aperture/widgets/GBRVIEWER_GBRINFO.h"
#include "import/readers/ImportSession.h"
#include "import/readers/window/widgets/GBRVIEWER_GISIMP.h"
#include "import/readers/window/widgets/GBRVIEWER_IMPORT.h"
#include "kernel/Kernel.h"
#include "platform/InterfaceFont.h"
#include "viewer/LayerCommands.h"

namespace tvx {

void GBRVIEWER_MAIN::openLayerProperties() {
  PropertiesLayer = tables_->CurrentLayer;
  if (properties_) {
    properties_->model().FormUpdate();
    properties_->raise();
    properties_->activateWindow();
  } else {
    ViewRedraw& r = *redraw_;
    LayerPropertiesOwners owners{
        context_.kernel.store,
        context_.services,
        tables_->Layers,
        PropertiesLayer,
        HighlightLink(r.HLDCode, r.HLDCodeText, r.HLPadstack, r.HLPadstackText),
        [this] { RedrawScreen(); },
        {},
        (*colours_)[colourslot::ClearColour].ColourNumber,
        colours_->ClearColour(),
        view_->DisplayUnit};
    auto* window = new GBRVIEWER_GISIMP(std::move(owners), userStore_, this, SelectInterfaceFont());
    window->setWindowFlag(Qt::Window);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->showHelp = [this] { M_Help_Click(); };
    window->unloaded = [this] {
      PropertiesOpen = false;
      redraw_->HLPadstack = 0;
      // The tool that the window's opening started ends with it.
      if (pointer_->ToolCode == toolcode::LayerProperties)
        pointer_->FinishMove(0, 0);
    };
    properties_ = window;
    PropertiesOpen = true;
    window->show();
  }
  pointer_->StartTool(toolcode::LayerProperties);
}

void GBRVIEWER_MAIN::closeLayerProperties() {
  if (properties_)
    properties_->close();
}

GBRVIEWER_GISIMP* GBRVIEWER_MAIN::layerPropertiesWindow() const { return properties_; }

int32_t GBRVIEWER_MAIN::openApertureUse() {
  if (!import_)
    return 0;
  int32_t offsetX = 0;
  int32_t offsetY = 0;
  if (importWindow_) {
    const int32_t layer = importWindow_->model().DialogLayer;
    if (layer >= 1 && layer <= LayerCount) {
      offsetX = tables_->layer(layer).OffsetX;
      offsetY = tables_->layer(layer).OffsetY;
    }
  }
  ApertureSizesModel model({import_->gerberScan, import_->state.Job, apertureTable_, sysDir_,
                            [this](const std::string& name) { setCurrentApertureTable(name); },
                            import_->reporter, view_->DisplayUnit, offsetX, offsetY});
  GBRVIEWER_GBRINFO window(model, importWindow_);
  window.setHelpHandler([this] { M_Help_Click(); });
  window.exec();
  if (importWindow_)
    importWindow_->model().apertureTableName = apertureTable_.current;
  return (model.ApertureFileCreated ? tvx::ApertureFileCreated : 0) |
         (model.ArtworkUpdated ? tvx::ArtworkUpdated : 0);
}

}  // namespace tvx
