// A platform printer that tests and benchmarks script: named printers with a resolution, paper
// and a least margin, sheets drawn into an image, and a log of the document calls.
#pragma once

#include "print/PlatformPrinter.h"

#include <QImage>

#include <map>

namespace tvx {

// One printer of the script.
struct ScriptedPrinterEntry {
  std::string name;
  std::string port = "LPT1:";
  int32_t dpi = 600;
  int32_t leastMarginPixels = 0;  // the unprintable band on each side
};

class ScriptedPrinter : public PlatformPrinter {
public:
  using Printer = ScriptedPrinterEntry;

  // One 600 dpi printer "Scripted A4" on A4.
  ScriptedPrinter() : ScriptedPrinter(std::vector<Printer>{Printer{"Scripted A4"}}) {}
  explicit ScriptedPrinter(std::vector<Printer> printers);

  std::vector<std::string> printerNames() const override;
  bool selectPrinter(const std::string& name) override;
  std::string deviceName() const override;
  std::string driverName() const override { return "scripted"; }
  std::string port() const override;
  int32_t value(PrinterValue which) const override;
  void setValue(PrinterValue which, int32_t value) override;
  int32_t deviceCaps(int32_t index) const override;
  int32_t printableWidth() const override;
  int32_t printableHeight() const override;
  int32_t deviceContext() const override { return printers_.empty() ? 0 : current_ + 1; }

  QPaintDevice* paintDevice() override;
  int32_t startDoc(const std::string& documentName, const std::string& output) override;
  int32_t startPage() override;
  void endPage() override { ++pagesEnded; }
  void endDoc() override { ++docsEnded; }

  // The log and the answers of the document calls.
  std::vector<std::string> documents;  // "name -> output" of each StartDoc
  int32_t pagesStarted = 0, pagesEnded = 0, docsEnded = 0;
  int32_t startDocResult = 1, startPageResult = 1;
  // Sets every change of a value, for tests that count them.
  std::vector<PrinterValue> changes;

private:
  // The paper in pixels as it lies (orientation applied).
  int32_t paperPixels(bool alongY) const;

  std::vector<Printer> printers_;
  int32_t current_ = 0;
  std::map<PrinterValue, int32_t> values_;
  QImage sheet_;
};

}  // namespace tvx
