#include "print/widgets/PrinterDialogs.h"

#include "print/PreviewModel.h"
#include "print/widgets/QtPrinter.h"

#include <QPageSetupDialog>
#include <QPrintDialog>

#include <algorithm>

namespace tvx {

namespace {

int32_t dialogScaleMode(const PrinterSettings& record) {
  return record.UnitIndex == 0 ? scalemode::Inches : scalemode::Millimetres;
}

void fillNames(PrinterSettings& record, const QtPrinter& printer) {
  if (record.DeviceName.empty() || record.DriverName.empty() || record.Port.empty()) {
    record.DeviceName = printer.deviceName();
    record.DriverName = printer.driverName();
    record.Port = printer.port();
  }
}

// What the dialog left on the printer, back into the record.
void readBack(PrinterSettings& record, QtPrinter& printer) {
  record.DeviceName = printer.deviceName();
  record.DriverName = printer.driverName();
  record.Port = printer.port();
  record.Orientation = printer.value(PrinterValue::Orientation);
  record.PaperSize = printer.value(PrinterValue::PaperSize);
  record.PaperSizeString = PaperSizeName(record.PaperSize);
  record.PaperLength = printer.value(PrinterValue::Height);
  record.PaperWidth = printer.value(PrinterValue::Width);
  record.Copies = printer.value(PrinterValue::Copies);
  record.ColorMode = printer.value(PrinterValue::ColorMode);
  record.ColorName = ColorNameOf(record.ColorMode);
  record.Duplex = printer.value(PrinterValue::Duplex);
  record.PrintQuality = printer.value(PrinterValue::PrintQuality);
  record.QualityName = QualityNameOf(record.PrintQuality);
}

}  // namespace

bool PageSetup(QWidget* owner, PrinterSettings& record, QtPrinter& printer, bool docOpen) {
  if (docOpen)
    return false;
  fillNames(record, printer);
  record.ScaleMode = dialogScaleMode(record);
  InitPrinter(record, printer);
  ReadLeastMargins(record, printer);
  const QPageLayout::Unit unit =
      record.UnitIndex == 0 ? QPageLayout::Inch : QPageLayout::Millimeter;
  QPrinter& qprinter = printer.printer();
  qprinter.setPageMargins(QMarginsF(std::max(record.MarginLt, record.LeastLt),
                                    std::max(record.MarginTp, record.LeastTp),
                                    std::max(record.MarginRt, record.LeastRt),
                                    std::max(record.MarginBt, record.LeastBt)),
                          unit);
  QPageSetupDialog dialog(&qprinter, owner);
  dialog.setObjectName("PageSetupDialog");
  const bool ok = dialog.exec() == QDialog::Accepted;
  const QMarginsF margins = qprinter.pageLayout().margins(unit);
  // The user's margins are the preview's: the printer prints to its least ones.
  qprinter.setPageMargins(QMarginsF(0, 0, 0, 0), QPageLayout::Millimeter);
  if (!ok)
    return false;
  readBack(record, printer);
  record.MarginLt = float(margins.left());
  record.MarginTp = float(margins.top());
  record.MarginRt = float(margins.right());
  record.MarginBt = float(margins.bottom());
  return true;
}

bool PreviewPrintDialog(QWidget* owner, PreviewModel& model, QtPrinter& printer, bool& changed) {
  changed = false;
  model.PrinterChanged = false;
  if (model.DocOpen)
    return false;
  PrinterSettings& record = model.Record;
  fillNames(record, printer);
  const PrinterSettings before = record;
  QPrinter& qprinter = printer.printer();
  qprinter.setFromTo(1, std::max(1, model.PageCount));
  QPrintDialog dialog(&qprinter, owner);
  dialog.setObjectName("PrintDialog");
  dialog.setMinMax(1, std::max(1, model.PageCount));
  dialog.setOption(QAbstractPrintDialog::PrintCurrentPage, true);
  dialog.setOption(QAbstractPrintDialog::PrintSelection, false);
  if (dialog.exec() != QDialog::Accepted)
    return false;
  if (qprinter.printerName().toStdString() != printer.deviceName() &&
      !qprinter.printerName().isEmpty())
    printer.selectPrinter(qprinter.printerName().toStdString());
  readBack(record, printer);
  record.PrintToFile = !qprinter.outputFileName().isEmpty();
  switch (dialog.printRange()) {
  case QAbstractPrintDialog::CurrentPage:
    model.PrintFrom = model.PrintTo = model.CurrentPage;
    break;
  case QAbstractPrintDialog::PageRange:
    model.PrintFrom = std::min(qprinter.fromPage(), qprinter.toPage());
    model.PrintTo = std::max(qprinter.fromPage(), qprinter.toPage());
    break;
  default:
    model.PrintFrom = 1;
    model.PrintTo = model.PageCount;
    break;
  }
  model.PrinterChanged = record.DeviceName != before.DeviceName ||
                         record.Orientation != before.Orientation ||
                         record.PaperSize != before.PaperSize;
  changed = model.PrinterChanged;
  return true;
}

}  // namespace tvx
