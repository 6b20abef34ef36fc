#include "print/widgets/QtSetupDialogs.h"

#include "print/widgets/QtPrinter.h"

#include <QPageSetupDialog>
#include <QPrintDialog>

#include <cmath>
#include <map>

namespace tvx {

namespace {

using namespace setupvalue;

class QtSetupDialog : public SetupDialog {
public:
  QtSetupDialog(QtPrinter& printer, QWidget* owner, bool pageDialog)
      : printer_(printer), owner_(owner), page_(pageDialog) {}

  void SetValue(int index, int32_t value) override { values_[index] = value; }
  void SetText(int index, const std::string& text) override { texts_[index] = text; }
  int32_t GetValue(int index) const override {
    auto it = values_.find(index);
    return it == values_.end() ? 0 : it->second;
  }
  std::string GetText(int index) const override {
    auto it = texts_.find(index);
    return it == texts_.end() ? std::string() : it->second;
  }
  bool GetDeviceMode(const std::string& device) override {
    const std::vector<std::string> names = printer_.printerNames();
    return std::find(names.begin(), names.end(), device) != names.end() &&
           printer_.selectPrinter(device);
  }
  bool SetDeviceMode(const std::string& device) override {
    if (device != printer_.deviceName() && !printer_.selectPrinter(device))
      return false;
    applyDeviceValues();
    return true;
  }
  void SetDevNames(const std::string&, const std::string&, const std::string&) override {}
  bool Activate() override { return page_ ? activatePage() : activatePrinter(); }

private:
  // The dialog's unit: thousandths of an inch (flag 4) or hundredths of a millimetre.
  QPageLayout::Unit unit() const {
    return GetValue(Flags) & 8 ? QPageLayout::Millimeter : QPageLayout::Inch;
  }
  double perUnit() const { return unit() == QPageLayout::Millimeter ? 100.0 : 1000.0; }

  void applyDeviceValues() {
    for (auto [which, index] :
         {std::pair{PrinterValue::PaperSize, PaperSize},
          std::pair{PrinterValue::Orientation, Orientation},
          std::pair{PrinterValue::Copies, Copies}, std::pair{PrinterValue::ColorMode, Colour},
          std::pair{PrinterValue::Duplex, setupvalue::Duplex}})
      if (values_.count(index) && GetValue(index) != 0)
        printer_.setValue(which, GetValue(index));
  }

  void readNames() {
    texts_[DriverOut] = printer_.driverName();
    texts_[DeviceOut] = printer_.deviceName();
    texts_[PortOut] = printer_.port();
    values_[Orientation] = printer_.value(PrinterValue::Orientation);
    values_[PaperSize] = printer_.value(PrinterValue::PaperSize);
    values_[PaperLengthRead] = printer_.value(PrinterValue::Height);
    values_[PaperWidthRead] = printer_.value(PrinterValue::Width);
    values_[Copies] = printer_.value(PrinterValue::Copies);
    values_[Quality] = printer_.value(PrinterValue::PrintQuality);
    values_[Colour] = printer_.value(PrinterValue::ColorMode);
    values_[setupvalue::Duplex] = printer_.value(PrinterValue::Duplex);
  }

  bool activatePage() {
    applyDeviceValues();
    QPrinter& qprinter = printer_.printer();
    const double per = perUnit();
    qprinter.setPageMargins(QMarginsF(GetValue(MarginBt + 1) / per, GetValue(MarginBt + 3) / per,
                                      GetValue(MarginBt + 2) / per, GetValue(MarginBt) / per),
                            unit());
    QPageSetupDialog dialog(&qprinter, owner_);
    dialog.setObjectName("PageSetupDialog");
    const bool ok = dialog.exec() == QDialog::Accepted;
    const QPageLayout layout = qprinter.pageLayout();
    // The user's margins are the preview's: the printer prints to its least ones.
    qprinter.setPageMargins(QMarginsF(0, 0, 0, 0), QPageLayout::Millimeter);
    if (!ok)
      return false;
    readNames();
    const QMarginsF margins = layout.margins(unit());
    const double sides[] = {margins.bottom(), margins.left(), margins.right(), margins.top()};
    for (int i = 0; i < 4; ++i)
      values_[MarginBt + i] = int32_t(std::lround(sides[i] * per));
    const QSizeF size = layout.pageSize().size(
        unit() == QPageLayout::Millimeter ? QPageSize::Millimeter : QPageSize::Inch);
    values_[PaperWidth] = int32_t(std::lround(size.width() * per));
    values_[PaperLength] = int32_t(std::lround(size.height() * per));
    return true;
  }

  bool activatePrinter() {
    applyDeviceValues();
    QPrinter& qprinter = printer_.printer();
    const int least = std::max(1, GetValue(MinPage)), most = std::max(least, GetValue(MaxPage));
    qprinter.setFromTo(std::clamp(GetValue(FromPage), least, most),
                       std::clamp(GetValue(ToPage), least, most));
    QPrintDialog dialog(&qprinter, owner_);
    dialog.setObjectName("PrintDialog");
    dialog.setMinMax(least, most);
    dialog.setOption(QAbstractPrintDialog::PrintCurrentPage, true);
    dialog.setOption(QAbstractPrintDialog::PrintSelection, false);
    if (dialog.exec() != QDialog::Accepted)
      return false;
    const std::string chosen = qprinter.outputFormat() == QPrinter::PdfFormat
                                   ? std::string(PdfPrinterName)
                                   : qprinter.printerName().toStdString();
    const std::string file = qprinter.outputFileName().toStdString();
    if (chosen != printer_.deviceName())
      printer_.selectPrinter(chosen);
    readNames();
    int32_t range = 0;
    switch (dialog.printRange()) {
    case QAbstractPrintDialog::CurrentPage:
    case QAbstractPrintDialog::Selection:
      range = 1;
      break;
    case QAbstractPrintDialog::PageRange:
      range = 2;
      break;
    default:
      break;
    }
    values_[Flags] = (GetValue(Flags) & ~3 & ~printflag::PrintToFile) | range |
                     (file.empty() || chosen == PdfPrinterName ? 0 : printflag::PrintToFile);
    values_[FromPage] = qprinter.fromPage();
    values_[ToPage] = qprinter.toPage();
    return true;
  }

  QtPrinter& printer_;
  QWidget* owner_;
  bool page_;
  std::map<int, int32_t> values_;
  std::map<int, std::string> texts_;
};

}  // namespace

std::unique_ptr<SetupDialog> QtSetupDialogs::CreatePageSetupDlg() {
  return std::make_unique<QtSetupDialog>(printer_, owner_, true);
}

std::unique_ptr<SetupDialog> QtSetupDialogs::CreatePrinterSetupDlg() {
  return std::make_unique<QtSetupDialog>(printer_, owner_, false);
}

}  // namespace tvx
