// The page dialog and the print dialog over the platform's (QPageSetupDialog, QPrintDialog): the
// record's values go in, what the user chose comes back into the record. Both refuse while a
// document is open and change nothing when cancelled.
#pragma once

#include "print/PrinterSettings.h"

class QWidget;

namespace tvx {

class PreviewModel;
class QtPrinter;

// Paper, orientation and margins; true on OK. The margins come back in the record's dialog
// unit (UnitIndex: inches or millimetres), each at least the printer's least margin.
bool PageSetup(QWidget* owner, PrinterSettings& record, QtPrinter& printer, bool docOpen);

// The preview's print dialog: printer, copies and the page range of the next print (into the
// model's PrintFrom and PrintTo); changed tells that the sheets must be cut anew (another
// printer, paper or orientation). True on OK.
bool PreviewPrintDialog(QWidget* owner, PreviewModel& model, QtPrinter& printer, bool& changed);

}  // namespace tvx
