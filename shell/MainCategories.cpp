// Tools > Import Categories: the window of options, the sorting of the layers into the board
// categories, and the signal to the suite that the layout module may take them over.
#include "shell/GBRVIEWER_MAIN.h"

#include "import/core/StatusCodes.h"
#include "import/readers/ImportSession.h"
#include "kernel/Kernel.h"
#include "platform/InterfaceFont.h"
#include "reconstruct/Reconstruction.h"
#include "reconstruct/ReconstructionReport.h"
#include "reconstruct/widgets/GBRVIEWER_GIEIMP.h"
#include "shell/HostCommands.h"

#include <QApplication>

namespace tvx {

GBRVIEWER_GIEIMP* GBRVIEWER_MAIN::categoryDialog() const { return categoryDialog_; }

void GBRVIEWER_MAIN::M_ImportCategories_Click() {
  if (categoryDialog_)
    return;
  CategoryOptions& options = categories_->Options;
  {
    QApplication::setOverrideCursor(Qt::WaitCursor);
    GBRVIEWER_GIEIMP dialog(options, context_.services, userStore_, this, SelectInterfaceFont());
    dialog.setHelpHandler([this] { M_Help_Click(); });
    categoryDialog_ = &dialog;
    QApplication::restoreOverrideCursor();
    dialog.exec();
    categoryDialog_ = nullptr;
  }
  if (!options.Confirmed)
    return;

  UpdateStatusBusy();
  Reconstruction reconstruction(context_.kernel.store, tables_->Layers, colours_->ClearColour(),
                                &context_.services, context_.prompts, *categories_);
  const bool found = reconstruction.RunReconstruction();
  setBusyPicture(IdlePicture);
  unsetCursor();
  if (!found) {
    import_->reporter.ReportStatus(StatusNothingToImport, "");
    return;
  }
  EditMsgLine(reportSummary(categories_->Report));
  SendToModule("TARVEX", "FMG," + std::string(ComponentName));
  SendToModule("TVNLAYPS", "GIE");
}

}  // namespace tvx
