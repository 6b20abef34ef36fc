// File > Print: the print preview of the frame of all layers, its sheets drawn with the view's
// layer order, layers and draw context, so that visibility, order and one-colour layers print
// as they are seen.
#include "shell/GBRVIEWER_MAIN.h"

#include "kernel/Kernel.h"
#include "print/widgets/QtPrinter.h"
#include "print/widgets/TvxPreview.h"
#include "store/ColourSlots.h"
#include "store/LayerDrawing.h"
#include "store/Layers.h"
#include "viewer/ViewState.h"

#include <QTimer>

namespace tvx {

TvxPreview* GBRVIEWER_MAIN::previewWindow() const { return preview_; }

void GBRVIEWER_MAIN::shutDownAfterPreview() {
  if (preview_) {
    QTimer::singleShot(50, this, [this] { shutDownAfterPreview(); });
    return;
  }
  ShutDown();
}

void GBRVIEWER_MAIN::M_Print_Click() {
  if (preview_)
    return;
  if (!printer_) {
    printer_ = std::make_unique<QtPrinter>();
    printerRecord_ = std::make_unique<PrinterSettings>();
  }
  Kernel& kernel = context_.kernel;
  FrameRect frame;
  FrameLayers(kernel.store, tables_->Layers, frame);
  LayerDrawContext drawContext(kernel.graphics, kernel.store);
  drawContext.clearColour = colours_->ClearColour();
  drawContext.padPositions = view_->PadPositions != 0;

  const char* product = kernel.strings.E_GetString("PRODUCT_NAME");
  const char* mainWidth = kernel.strings.E_GetString("MAINWIDTH");
  PreviewHost host{kernel.graphics, *printer_, *printerRecord_, {}, {}, {}, {}, {}, {}, {}, {}, {}};
  host.store = userStore_;
  host.prompts = &context_.prompts;
  host.services = &context_.services;
  host.displayUnit = view_->DisplayUnit;
  host.importFolder = settings_.ImpDir;
  if (product && *product)
    host.productName = product;
  host.mainWidth = mainWidth ? std::atoi(mainWidth) : 0;
  host.draw = [&](int32_t device, int32_t mode) {
    DrawLayers(drawContext, device, mode, tables_->LayerOrder, tables_->Layers);
  };
  host.help = [this] { M_Help_Click(); };
  TvxPreview preview(host, this);
  preview_ = &preview;
  int32_t status = 0;
  preview.ShowPreview(frame, windowTitle().toStdString(), drawmode::Normal, status);
  preview_ = nullptr;
}

}  // namespace tvx
