#include "print/widgets/QtPrinter.h"

#include "print/PrinterSettings.h"

#include <QFile>
#include <QPageLayout>
#include <QPageSize>
#include <QPrinterInfo>

namespace tvx {

QtPrinter::QtPrinter(bool systemPrinters, int pdfResolution)
    : systemPrinters_(systemPrinters), pdfResolution_(pdfResolution) {
  kept_ = {{PrinterValue::PaperBin, 7}, {PrinterValue::DeviceScale, 100}};
  const QString systemDefault = systemPrinters_ ? QPrinterInfo::defaultPrinterName() : QString();
  selectPrinter(systemDefault.isEmpty() ? std::string(PdfPrinterName)
                                        : systemDefault.toStdString());
}

std::vector<std::string> QtPrinter::printerNames() const {
  std::vector<std::string> names;
  if (systemPrinters_)
    for (const QString& name : QPrinterInfo::availablePrinterNames())
      names.push_back(name.toStdString());
  names.push_back(PdfPrinterName);
  return names;
}

bool QtPrinter::selectPrinter(const std::string& name) {
  const std::vector<std::string> names = printerNames();
  if (std::find(names.begin(), names.end(), name) == names.end())
    return false;
  // The page of the printer before goes on to the new one.
  const QPageLayout layout = printer_ ? printer_->pageLayout() : QPageLayout();
  name_ = name;
  printer_ = std::make_unique<QPrinter>(QPrinter::HighResolution);
  if (isPdf()) {
    printer_->setOutputFormat(QPrinter::PdfFormat);
    printer_->setResolution(pdfResolution_);
  } else {
    printer_->setPrinterName(QString::fromStdString(name));
  }
  if (layout.isValid()) {
    printer_->setPageSize(layout.pageSize());
    printer_->setPageOrientation(layout.orientation());
  } else {
    printer_->setPageSize(QPageSize(QPageSize::A4));
  }
  resetMargins();
  return true;
}

void QtPrinter::resetMargins() {
  // The platform's least margins, or none: the user's margins are the preview's affair.
  printer_->setFullPage(false);
  printer_->setPageMargins(QMarginsF(0, 0, 0, 0), QPageLayout::Millimeter);
}

std::string QtPrinter::driverName() const { return isPdf() ? "pdf" : "system"; }

std::string QtPrinter::port() const { return isPdf() ? "FILE:" : name_; }

int32_t QtPrinter::value(PrinterValue which) const {
  const QPageLayout layout = printer_->pageLayout();
  switch (which) {
  case PrinterValue::Orientation:
    return layout.orientation() == QPageLayout::Landscape ? 2 : 1;
  case PrinterValue::PaperSize: {
    const int code = layout.pageSize().windowsId();
    return code > 0 && layout.pageSize().id() != QPageSize::Custom ? code : UserPaperSize;
  }
  case PrinterValue::Height:
    return int32_t(layout.pageSize().size(QPageSize::Millimeter).height() * 10 + 0.5);
  case PrinterValue::Width:
    return int32_t(layout.pageSize().size(QPageSize::Millimeter).width() * 10 + 0.5);
  case PrinterValue::Copies:
    return printer_->copyCount();
  case PrinterValue::ColorMode:
    return printer_->colorMode() == QPrinter::Color ? 2 : 1;
  case PrinterValue::Duplex:
    return int32_t(printer_->duplex()) + 1;
  case PrinterValue::PrintQuality:
    return printer_->resolution();
  default:
    return kept_.count(which) ? kept_.at(which) : 0;
  }
}

void QtPrinter::setValue(PrinterValue which, int32_t value) {
  switch (which) {
  case PrinterValue::Orientation:
    printer_->setPageOrientation(value == 2 ? QPageLayout::Landscape : QPageLayout::Portrait);
    break;
  case PrinterValue::PaperSize: {
    const QPageSize::PageSizeId id = QPageSize::id(value);
    if (value != UserPaperSize && id != QPageSize::Custom)
      printer_->setPageSize(QPageSize(id));
    break;
  }
  case PrinterValue::Height:
  case PrinterValue::Width: {
    QSizeF mm = printer_->pageLayout().pageSize().size(QPageSize::Millimeter);
    (which == PrinterValue::Height ? mm.rheight() : mm.rwidth()) = value / 10.0;
    if (mm.width() > 0 && mm.height() > 0)
      printer_->setPageSize(QPageSize(mm, QPageSize::Millimeter));
    break;
  }
  case PrinterValue::Copies:
    printer_->setCopyCount(std::max(1, value));
    break;
  case PrinterValue::ColorMode:
    printer_->setColorMode(value == 1 ? QPrinter::GrayScale : QPrinter::Color);
    break;
  case PrinterValue::Duplex:
    printer_->setDuplex(QPrinter::DuplexMode(std::clamp(value - 1, 0, 3)));
    break;
  case PrinterValue::PrintQuality:
    if (value > 0 && !isPdf())
      printer_->setResolution(value);
    break;
  default:
    kept_[which] = value;
    break;
  }
  resetMargins();
}

int32_t QtPrinter::deviceCaps(int32_t index) const {
  const QRectF paper = printer_->paperRect(QPrinter::DevicePixel);
  const QRectF page = printer_->pageRect(QPrinter::DevicePixel);
  switch (index) {
  case devcaps::LogPixelsX:
  case devcaps::LogPixelsY:
    return printer_->resolution();
  case devcaps::PhysicalWidth:
    return int32_t(paper.width() + 0.5);
  case devcaps::PhysicalHeight:
    return int32_t(paper.height() + 0.5);
  case devcaps::PhysicalOffsetX:
    return int32_t(page.left() + 0.5);
  case devcaps::PhysicalOffsetY:
    return int32_t(page.top() + 0.5);
  default:
    return 0;
  }
}

int32_t QtPrinter::printableWidth() const {
  return int32_t(printer_->pageRect(QPrinter::DevicePixel).width() + 0.5);
}

int32_t QtPrinter::printableHeight() const {
  return int32_t(printer_->pageRect(QPrinter::DevicePixel).height() + 0.5);
}

int32_t QtPrinter::startDoc(const std::string& documentName, const std::string& output) {
  printer_->setDocName(QString::fromStdString(documentName));
  pageEnded_ = false;
  if (isPdf() || output != port()) {
    // A file: it must be writable before the painter opens it.
    QFile file(QString::fromStdString(output));
    if (output.empty() || !file.open(QIODevice::WriteOnly))
      return 0;
    file.close();
    if (!isPdf())
      printer_->setOutputFormat(QPrinter::PdfFormat);
    printer_->setOutputFileName(QString::fromStdString(output));
  } else {
    printer_->setOutputFileName(QString());
  }
  return 1;
}

int32_t QtPrinter::startPage() {
  if (!pageEnded_)
    return 1;
  pageEnded_ = false;
  return printer_->newPage() ? 1 : 0;
}

}  // namespace tvx
