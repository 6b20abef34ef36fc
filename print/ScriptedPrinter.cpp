#include "print/ScriptedPrinter.h"

#include "print/PrinterSettings.h"

#include <cmath>

namespace tvx {

namespace {

// Width and length in millimetres of the papers the scripted printer knows; others are A4.
std::pair<double, double> paperMm(int32_t code, int32_t widthTenths, int32_t lengthTenths) {
  switch (code) {
  case 1:
    return {215.9, 279.4};
  case 5:
    return {215.9, 355.6};
  case 8:
    return {297.0, 420.0};
  case 11:
    return {148.0, 210.0};
  case UserPaperSize:
    if (widthTenths > 0 && lengthTenths > 0)
      return {widthTenths / 10.0, lengthTenths / 10.0};
    return {210.0, 297.0};
  default:
    return {210.0, 297.0};
  }
}

}  // namespace

ScriptedPrinter::ScriptedPrinter(std::vector<Printer> printers) : printers_(std::move(printers)) {
  values_ = {{PrinterValue::Orientation, 1},   {PrinterValue::PaperSize, 9},
             {PrinterValue::Height, 2970},     {PrinterValue::Width, 2100},
             {PrinterValue::Copies, 1},        {PrinterValue::PaperBin, 7},
             {PrinterValue::ColorMode, 2},     {PrinterValue::Duplex, 1},
             {PrinterValue::PrintQuality, -4}, {PrinterValue::DeviceScale, 100}};
}

std::vector<std::string> ScriptedPrinter::printerNames() const {
  std::vector<std::string> names;
  for (const Printer& p : printers_)
    names.push_back(p.name);
  return names;
}

bool ScriptedPrinter::selectPrinter(const std::string& name) {
  for (size_t i = 0; i < printers_.size(); ++i)
    if (printers_[i].name == name) {
      current_ = int32_t(i);
      return true;
    }
  return false;
}

std::string ScriptedPrinter::deviceName() const {
  return printers_.empty() ? std::string() : printers_[size_t(current_)].name;
}

std::string ScriptedPrinter::port() const {
  return printers_.empty() ? std::string() : printers_[size_t(current_)].port;
}

int32_t ScriptedPrinter::value(PrinterValue which) const { return values_.at(which); }

void ScriptedPrinter::setValue(PrinterValue which, int32_t value) {
  values_[which] = value;
  changes.push_back(which);
}

int32_t ScriptedPrinter::paperPixels(bool alongY) const {
  if (printers_.empty())
    return 0;
  auto [w, h] = paperMm(values_.at(PrinterValue::PaperSize), values_.at(PrinterValue::Width),
                        values_.at(PrinterValue::Height));
  if (values_.at(PrinterValue::Orientation) == 2)
    std::swap(w, h);
  return int32_t(std::lround((alongY ? h : w) / 25.4 * printers_[size_t(current_)].dpi));
}

int32_t ScriptedPrinter::deviceCaps(int32_t index) const {
  if (printers_.empty())
    return 0;
  const Printer& p = printers_[size_t(current_)];
  switch (index) {
  case devcaps::LogPixelsX:
  case devcaps::LogPixelsY:
    return p.dpi;
  case devcaps::PhysicalWidth:
    return paperPixels(false);
  case devcaps::PhysicalHeight:
    return paperPixels(true);
  case devcaps::PhysicalOffsetX:
  case devcaps::PhysicalOffsetY:
    return p.leastMarginPixels;
  default:
    return 0;
  }
}

int32_t ScriptedPrinter::printableWidth() const {
  return printers_.empty() ? 0
                           : paperPixels(false) - 2 * printers_[size_t(current_)].leastMarginPixels;
}

int32_t ScriptedPrinter::printableHeight() const {
  return printers_.empty() ? 0
                           : paperPixels(true) - 2 * printers_[size_t(current_)].leastMarginPixels;
}

QPaintDevice* ScriptedPrinter::paintDevice() {
  // A small picture: what a sheet draws beyond it is clipped, and a test of the document calls
  // needs no sheet of a hundred megabytes.
  if (sheet_.isNull())
    sheet_ = QImage(64, 64, QImage::Format_RGB32);
  return &sheet_;
}

int32_t ScriptedPrinter::startDoc(const std::string& documentName, const std::string& output) {
  documents.push_back(documentName + " -> " + output);
  return startDocResult;
}

int32_t ScriptedPrinter::startPage() {
  ++pagesStarted;
  return startPageResult;
}

}  // namespace tvx
