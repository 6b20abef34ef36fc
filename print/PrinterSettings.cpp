#include "print/PrinterSettings.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>

namespace tvx {

namespace {

constexpr std::array<std::string_view, PaperCodeCount> PaperNames = {
    "Letter, 8 1/2- by 11-inches",
    "Letter Small, 8 1/2- by 11-inches",
    "Tabloid, 11- by 17-inches",
    "Ledger, 17- by 11-inches",
    "Legal, 8 1/2- by 14-inches",
    "Statement, 5 1/2- by 8 1/2-inches",
    "Executive, 7 1/4- by 10 1/2-inches",
    "A3 sheet, 297- by 420-millimeters",
    "A4 sheet, 210- by 297-millimeters",
    "A4 small sheet, 210- by 297-millimeters",
    "A5 sheet, 148- by 210-millimeters",
    "B4 sheet, 250- by 354-millimeters",
    "B5 sheet, 182- by 257-millimeter paper",
    "Folio, 8 1/2- by 13-inch paper",
    "Quarto, 215- by 275-millimeter paper",
    "10- by 14-inch sheet",
    "11- by 17-inch sheet",
    "Note, 8 1/2- by 11-inches",
    "#9 Envelope, 3 7/8- by 8 7/8-inches",
    "#10 Envelope, 4 1/8- by 9 1/2-inches",
    "#11 Envelope, 4 1/2- by 10 3/8-inches",
    "#12 Envelope, 4 3/4- by 11-inches",
    "#14 Envelope, 5- by 11 1/2-inches",
    "C Sheet, 17- by 22-inches",
    "D Sheet, 22- by 34-inches",
    "E Sheet, 34- by 44-inches",
    "DL Envelope, 110- by 220-millimeters",
    "C5 Envelope, 162- by 229-millimeters",
    "C3 Envelope, 324- by 458-millimeters",
    "C4 Envelope, 229- by 324-millimeters",
    "C6 Envelope, 114- by 162-millimeters",
    "C65 Envelope, 114- by 229-millimeters",
    "B4 Envelope, 250- by 353-millimeters",
    "B5 Envelope, 176- by 250-millimeters",
    "B6 Envelope, 176- by 125-millimeters",
    "Italy Envelope, 110- by 230-millimeters",
    "Monarch Envelope, 3 7/8- by 7 1/2-inches",
    "6 3/4 Envelope, 3 5/8- by 6 1/2-inches",
    "US Std Fanfold, 14 7/8- by 11-inches",
    "German Std Fanfold, 8 1/2- by 12-inches",
    "German Legal Fanfold, 8 \xC2\xBD- by 13-inches",
};

std::string firstCharactersUpper(const std::string& name) {
  std::string out = name.substr(0, 32);
  for (char& c : out)
    c = char(std::toupper(static_cast<unsigned char>(c)));
  return out;
}

}  // namespace

std::string PaperSizeName(int32_t code) {
  return code >= 1 && code <= PaperCodeCount ? std::string(PaperNames[size_t(code - 1)])
                                             : std::string();
}

std::string BinNameOf(int32_t bin) {
  switch (bin) {
  case 1:
    return "Only one";
  case 2:
    return "Lower";
  case 3:
    return "Middle";
  case 4:
    return "Manual";
  case 5:
    return "Envelope";
  case 6:
    return "Envelope Manual";
  case 7:
    return "Auto";
  case 8:
    return "Tractor";
  case 9:
    return "Small FMT";
  case 10:
    return "Large FMT";
  case 11:
    return "Large Capacity";
  case 14:
    return "Cassette";
  default:
    return "Custom";
  }
}

std::string QualityNameOf(int32_t quality) {
  switch (quality) {
  case -4:
    return "High";
  case -3:
    return "Medium";
  case -2:
    return "Low";
  case -1:
    return "Draft";
  default:
    return "Device dependent";
  }
}

std::string ColorNameOf(int32_t colour) {
  return colour == 1 ? "Monochrome" : colour == 2 ? "Color" : "";
}

void DefaultPrinterSettings(PrinterSettings& record, const PlatformPrinter& printer) {
  record = PrinterSettings{};
  record.ScaleMode = scalemode::Twips;
  record.Orientation = 1;
  record.DeviceName = printer.deviceName();
  record.DriverName = printer.driverName();
  record.Port = printer.port();
  record.ColorMode = printer.value(PrinterValue::ColorMode);
  record.Duplex = printer.value(PrinterValue::Duplex);
  record.PaperSize = printer.value(PrinterValue::PaperSize);
  record.PrintQuality = printer.value(PrinterValue::PrintQuality);
  record.DeviceScale = printer.value(PrinterValue::DeviceScale);
  record.PrinterDc = printer.deviceContext();
  record.PaperSizeString = PaperSizeName(record.PaperSize);
  record.BinName = BinNameOf(printer.value(PrinterValue::PaperBin));
  record.QualityName = QualityNameOf(record.PrintQuality);
  record.ColorName = ColorNameOf(record.ColorMode);
}

void InitPrinter(PrinterSettings& record, PlatformPrinter& printer) {
  const std::vector<std::string> names = printer.printerNames();
  if (names.empty())
    return;
  const std::string wanted = firstCharactersUpper(record.DeviceName);
  if (firstCharactersUpper(printer.deviceName()) != wanted) {
    auto match = std::find_if(names.begin(), names.end(), [&](const std::string& name) {
      return firstCharactersUpper(name) == wanted;
    });
    if (match != names.end())
      printer.selectPrinter(*match);
  }
  record.PrinterDc = printer.deviceContext();
  if (printer.ScaleMode != record.ScaleMode) {
    auto convertX = [&](float& v) {
      v = float(printer.convert(v, printer.ScaleMode, record.ScaleMode, false));
    };
    auto convertY = [&](float& v) {
      v = float(printer.convert(v, printer.ScaleMode, record.ScaleMode, true));
    };
    for (float* v : {&record.MarginRt, &record.MarginLt, &record.LeastRt, &record.LeastLt})
      convertX(*v);
    for (float* v : {&record.MarginTp, &record.MarginBt, &record.LeastTp, &record.LeastBt})
      convertY(*v);
    printer.ScaleMode = record.ScaleMode;
  }
  auto apply = [&](PrinterValue which, int32_t value) {
    if (printer.value(which) != value)
      printer.setValue(which, value);
  };
  apply(PrinterValue::PaperSize, record.PaperSize);
  apply(PrinterValue::Orientation, record.Orientation);
  if (printer.value(PrinterValue::PaperSize) == UserPaperSize) {
    printer.setValue(PrinterValue::Height, record.PaperLength);
    printer.setValue(PrinterValue::Width, record.PaperWidth);
  }
  apply(PrinterValue::DeviceScale, record.DeviceScale);
  apply(PrinterValue::Copies, record.Copies);
  apply(PrinterValue::PrintQuality, record.PrintQuality);
  apply(PrinterValue::ColorMode, record.ColorMode);
  if (printer.port() != record.Port)
    record.Port = printer.port();
  record.ScaleHeight = float(printer.ScaleHeight());
  record.ScaleWidth = float(printer.ScaleWidth());
  record.TwipsPerPixelX = float(printer.TwipsPerPixelX());
  record.TwipsPerPixelY = float(printer.TwipsPerPixelY());
}

double ConvertMeasure(const PrinterSettings& record, const PlatformPrinter& printer, double value,
                      int32_t mode, bool alongY, int32_t sourceMode) {
  switch (mode) {
  case measure::FromThousandthInch:
    return printer.convert(value / 1000.0, scalemode::Inches, record.ScaleMode, alongY);
  case measure::FromHundredthMm:
    return printer.convert(value / 100.0, scalemode::Millimetres, record.ScaleMode, alongY);
  case measure::FromSourceMode:
    return printer.convert(value, sourceMode, record.ScaleMode, alongY);
  case measure::ToThousandthInch:
    return printer.convert(value, record.ScaleMode, scalemode::Inches, alongY) * 1000.0;
  case measure::ToHundredthMm:
    return printer.convert(value, record.ScaleMode, scalemode::Millimetres, alongY) * 100.0;
  default:
    return value;
  }
}

void ReadLeastMargins(PrinterSettings& record, PlatformPrinter& printer) {
  const int32_t mode = record.ScaleMode;
  record.LeastLt =
      float(printer.fromPixels(printer.deviceCaps(devcaps::PhysicalOffsetX), mode, false));
  record.LeastTp =
      float(printer.fromPixels(printer.deviceCaps(devcaps::PhysicalOffsetY), mode, true));
  record.LeastRt = float(
      printer.fromPixels(printer.deviceCaps(devcaps::PhysicalWidth) - printer.printableWidth(),
                         mode, false) -
      record.LeastLt);
  record.LeastBt = float(
      printer.fromPixels(printer.deviceCaps(devcaps::PhysicalHeight) - printer.printableHeight(),
                         mode, true) -
      record.LeastTp);
}

}  // namespace tvx
