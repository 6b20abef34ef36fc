// The platform's printers through Qt: the system's printers and a PDF printer that is always
// listed (port "FILE:"), the current one a QPrinter. Paper codes map through QPageSize's
// Windows ids.
#pragma once

#include "print/PlatformPrinter.h"

#include <QPrinter>

#include <map>
#include <memory>

namespace tvx {

// The name of the PDF printer.
inline constexpr const char* PdfPrinterName = "PDF file";

class QtPrinter : public PlatformPrinter {
public:
  // With systemPrinters false only the PDF printer is listed (windowless printing).
  explicit QtPrinter(bool systemPrinters = true, int pdfResolution = 600);

  std::vector<std::string> printerNames() const override;
  bool selectPrinter(const std::string& name) override;
  std::string deviceName() const override { return name_; }
  std::string driverName() const override;
  std::string port() const override;
  int32_t value(PrinterValue which) const override;
  void setValue(PrinterValue which, int32_t value) override;
  int32_t deviceCaps(int32_t index) const override;
  int32_t printableWidth() const override;
  int32_t printableHeight() const override;
  int32_t deviceContext() const override { return 1; }

  QPaintDevice* paintDevice() override { return printer_.get(); }
  int32_t startDoc(const std::string& documentName, const std::string& output) override;
  int32_t startPage() override;
  void endPage() override { pageEnded_ = true; }
  void endDoc() override {}

  QPrinter& printer() { return *printer_; }

private:
  bool isPdf() const { return name_ == PdfPrinterName; }
  void resetMargins();

  bool systemPrinters_;
  int pdfResolution_;
  std::string name_;
  std::unique_ptr<QPrinter> printer_;
  std::map<PrinterValue, int32_t> kept_;  // values Qt does not hold: bin, quality, scale
  bool pageEnded_ = false;
};

}  // namespace tvx
