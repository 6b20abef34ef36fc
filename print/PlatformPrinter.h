// The platform's printer as the printing logic sees it: a list of printers, one current printer
// with its properties, its page in pixels, and the document calls. The Qt side lies in
// print/widgets/QtPrinter; ScriptedPrinter stands in for tests.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

class QPaintDevice;

namespace tvx {

// Properties of the current printer, read and written by name.
enum class PrinterValue {
  Orientation,  // 1 portrait, 2 landscape
  PaperSize,    // a code of the paper table, 256 a size of the user's own
  Height,       // paper length in tenths of a millimetre, for paper 256
  Width,        // paper width in tenths of a millimetre, for paper 256
  Copies,
  PaperBin,
  ColorMode,  // 1 monochrome, 2 colour
  Duplex,
  PrintQuality,  // -4 to -1, or dots per inch
  DeviceScale,   // the driver's scale in percent
};

// Indexes of deviceCaps, as the platform's GetDeviceCaps numbers them.
namespace devcaps {
inline constexpr int32_t LogPixelsX = 88;
inline constexpr int32_t LogPixelsY = 90;
inline constexpr int32_t PhysicalWidth = 110;  // the paper, in pixels
inline constexpr int32_t PhysicalHeight = 111;
inline constexpr int32_t PhysicalOffsetX = 112;  // the printable area's corner on the paper
inline constexpr int32_t PhysicalOffsetY = 113;
}  // namespace devcaps

// Units of a scale mode.
namespace scalemode {
inline constexpr int32_t Twips = 1;
inline constexpr int32_t Pixels = 3;
inline constexpr int32_t Inches = 5;
inline constexpr int32_t Millimetres = 6;
}  // namespace scalemode

class PlatformPrinter {
public:
  virtual ~PlatformPrinter() = default;

  virtual std::vector<std::string> printerNames() const = 0;
  // Makes the printer of that exact name the current one; false when there is none.
  virtual bool selectPrinter(const std::string& name) = 0;
  virtual std::string deviceName() const = 0;
  virtual std::string driverName() const = 0;
  virtual std::string port() const = 0;  // "FILE:" for a printer that writes files
  virtual int32_t value(PrinterValue which) const = 0;
  virtual void setValue(PrinterValue which, int32_t value) = 0;
  virtual int32_t deviceCaps(int32_t index) const = 0;
  // The printable area in pixels.
  virtual int32_t printableWidth() const = 0;
  virtual int32_t printableHeight() const = 0;
  virtual int32_t deviceContext() const = 0;

  // What the kernel device draws on; a document opens on it with StartDoc.
  virtual QPaintDevice* paintDevice() = 0;
  // output is a port or a file name. Greater than 0 on success, as the platform answers.
  virtual int32_t startDoc(const std::string& documentName, const std::string& output) = 0;
  virtual int32_t startPage() = 0;
  virtual void endPage() = 0;
  virtual void endDoc() = 0;

  // The unit the printer's sizes are given in (scalemode), as the platform's printer keeps it.
  int32_t ScaleMode = scalemode::Twips;
  double ScaleWidth() const { return fromPixels(printableWidth(), ScaleMode, false); }
  double ScaleHeight() const { return fromPixels(printableHeight(), ScaleMode, true); }
  double TwipsPerPixelX() const { return fromPixels(1, scalemode::Twips, false); }
  double TwipsPerPixelY() const { return fromPixels(1, scalemode::Twips, true); }
  // A measure between two scale modes, along X or Y (pixels differ by axis).
  double convert(double value, int32_t fromMode, int32_t toMode, bool alongY) const;
  double fromPixels(double value, int32_t toMode, bool alongY) const {
    return convert(value, scalemode::Pixels, toMode, alongY);
  }

private:
  double unitsPerInch(int32_t mode, bool alongY) const;
};

}  // namespace tvx
