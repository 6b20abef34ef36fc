// The page and printer dialogs of SetupDialogs over Qt's QPageSetupDialog and QPrintDialog on
// the QtPrinter: the values go onto the QPrinter before the dialog shows and are read from it
// after OK.
#pragma once

#include "print/SetupDialogs.h"

class QWidget;

namespace tvx {

class QtPrinter;

class QtSetupDialogs : public SetupDialogs {
public:
  QtSetupDialogs(QtPrinter& printer, QWidget* owner) : printer_(printer), owner_(owner) {}
  std::unique_ptr<SetupDialog> CreatePageSetupDlg() override;
  std::unique_ptr<SetupDialog> CreatePrinterSetupDlg() override;

private:
  QtPrinter& printer_;
  QWidget* owner_;
};

}  // namespace tvx
