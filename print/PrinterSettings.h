// The one record of what the system knows of the printer and the page, its name tables, and how
// it is applied to the platform's printer.
#pragma once

#include "print/PlatformPrinter.h"

#include <cstdint>
#include <string>

namespace tvx {

// Code of a paper size of the user's own.
inline constexpr int32_t UserPaperSize = 256;
// Flags of the print dialog.
namespace printflag {
inline constexpr int32_t PageNumbers = 0x2;
inline constexpr int32_t NoSelection = 0x4;
inline constexpr int32_t NoPageNumbers = 0x8;
inline constexpr int32_t PrintToFile = 0x20;
inline constexpr int32_t UseDevModeCopies = 0x40000;
}  // namespace printflag

struct PrinterSettings {
  bool Collate = false;
  int32_t ColorMode = 0;
  std::string ColorName;
  int32_t Copies = 1;
  std::string DefaultExt;
  std::string BinName;
  std::string DeviceName;
  std::string DocName = "UnNamed";
  std::string DriverName;
  int32_t Duplex = 0;
  std::string FileName;
  std::string Filter;
  int32_t Flags = 0;
  int32_t FromPage = 1;
  bool FileNameUnique = true;
  int32_t PrinterDc = 0;
  std::string InitialDir;
  float MarginBt = 0, LeastBt = 0;
  float MarginLt = 0, LeastLt = 0;
  float MarginRt = 0, LeastRt = 0;
  float MarginTp = 0, LeastTp = 0;
  int16_t MaxPage = 1, MinPage = 1;
  int32_t Orientation = 1;
  int32_t PaperLength = 0;  // tenths of a millimetre, for UserPaperSize
  int32_t PaperSize = 0;
  std::string PaperSizeString;
  int32_t PaperWidth = 0;
  std::string Port;
  std::string QualityName;
  int32_t PrintQuality = 0;
  bool PrintToFile = false;
  int32_t DeviceScale = 100;
  float ScaleHeight = 0;
  int32_t ScaleMode = scalemode::Twips;
  float ScaleWidth = 0;
  int32_t ToPage = 1;
  float TwipsPerPixelX = 0, TwipsPerPixelY = 0;
  int32_t UnitIndex = 0;  // the dialogs' unit: 0 inch, 1 millimetre
  int32_t YResolution = 0;
};

// The name tables. A paper or colour code not listed gives "".
std::string PaperSizeName(int32_t code);
std::string BinNameOf(int32_t bin);
std::string QualityNameOf(int32_t quality);
std::string ColorNameOf(int32_t colour);
// The number of codes of the paper table (1 to PaperCodeCount).
inline constexpr int32_t PaperCodeCount = 41;

// The record's start values: the counters, ScaleMode twips, portrait, and the printer's own
// fields from the platform's current printer, with the names looked up.
void DefaultPrinterSettings(PrinterSettings& record, const PlatformPrinter& printer);

// Applies the record to the platform's printer: the printer of DeviceName (the first 32
// characters compared in capitals), the margins converted to the record's ScaleMode, paper,
// orientation, copies, quality and colour; reads back the printable size. Nothing without any
// printer.
void InitPrinter(PrinterSettings& record, PlatformPrinter& printer);

// Modes of ConvertMeasure.
namespace measure {
inline constexpr int32_t FromThousandthInch = 0;
inline constexpr int32_t FromHundredthMm = 1;
inline constexpr int32_t FromSourceMode = 2;
inline constexpr int32_t ToThousandthInch = 3;
inline constexpr int32_t ToHundredthMm = 4;
}  // namespace measure

// A measure to or from the record's ScaleMode (measure::*), along X or Y.
double ConvertMeasure(const PrinterSettings& record, const PlatformPrinter& printer, double value,
                      int32_t mode, bool alongY, int32_t sourceMode = scalemode::Twips);

// The least margins of the printer in the record's ScaleMode: the offsets of the printable area
// and what the paper holds beyond it on the right and at the bottom.
void ReadLeastMargins(PrinterSettings& record, PlatformPrinter& printer);

}  // namespace tvx
