// The page dialog and the printer dialog of the kernel library, as the record talks to them:
// values by index in, the dialog shown, values by index out. PageSetup, PrinterSetup and the
// preview's print dialog follow their steps over any implementation; the Qt one lies in
// print/widgets/QtSetupDialogs, a scripted one in ScriptedSetupDialogs.
#pragma once

#include "print/PrinterSettings.h"

#include <cstdint>
#include <memory>
#include <string>

namespace tvx {

class PreviewModel;

// Value indexes of the dialogs.
namespace setupvalue {
inline constexpr int Owner = 0;
inline constexpr int Flags = 1;
inline constexpr int PaperWidth = 2;  // page dialog, in the dialog's unit
inline constexpr int PaperLength = 3;
inline constexpr int FromPage = 3;  // printer dialog
inline constexpr int ToPage = 4;
inline constexpr int MinPage = 5;
inline constexpr int MaxPage = 6;
inline constexpr int PrinterCopies = 7;
inline constexpr int MarginBt = 4;  // page dialog, 4 to 7
inline constexpr int LeastBt = 8;   // page dialog, 8 to 11
inline constexpr int DeviceName = 12;
inline constexpr int Version = 13;
inline constexpr int FieldMask = 17;
inline constexpr int Orientation = 18;
inline constexpr int PaperSize = 19;
inline constexpr int PaperLengthRead = 20;
inline constexpr int PaperWidthRead = 21;
inline constexpr int Scale = 22;
inline constexpr int Copies = 23;
inline constexpr int Quality = 25;
inline constexpr int Colour = 26;
inline constexpr int Duplex = 27;
inline constexpr int YResolution = 28;
inline constexpr int Collate = 30;
inline constexpr int DriverOut = 38;
inline constexpr int DeviceOut = 39;
inline constexpr int PortOut = 40;
inline constexpr int32_t AllFields = 0x9D03;
}  // namespace setupvalue

class SetupDialog {
public:
  virtual ~SetupDialog() = default;
  virtual void SetValue(int index, int32_t value) = 0;
  virtual void SetText(int index, const std::string& text) = 0;
  virtual int32_t GetValue(int index) const = 0;
  virtual std::string GetText(int index) const = 0;
  // Loads the driver's record of the device; false on failure.
  virtual bool GetDeviceMode(const std::string& device) = 0;
  // Writes the record back to the driver; false on failure.
  virtual bool SetDeviceMode(const std::string& device) = 0;
  virtual void SetDevNames(const std::string& driver, const std::string& device,
                           const std::string& port) = 0;
  // Shows the dialog; true when the user pressed OK.
  virtual bool Activate() = 0;
};

// Makes the dialogs; nothing when one cannot be created.
class SetupDialogs {
public:
  virtual ~SetupDialogs() = default;
  virtual std::unique_ptr<SetupDialog> CreatePageSetupDlg() = 0;
  virtual std::unique_ptr<SetupDialog> CreatePrinterSetupDlg() = 0;
};

// The page dialog; true on OK. Refused while docOpen.
bool PageSetup(PrinterSettings& record, PlatformPrinter& printer, SetupDialogs& dialogs,
               int32_t flags, bool docOpen);
// The printer dialog; true on OK. printerChanged tells that the printer, the orientation or the
// paper changed, and then the page dialog has followed and given the result.
bool PrinterSetup(PrinterSettings& record, PlatformPrinter& printer, SetupDialogs& dialogs,
                  bool docOpen, bool& printerChanged);
// The preview's print dialog: the range of the next print into the model's PrintFrom and
// PrintTo, changed when the sheets must be cut anew. True on OK, with ScaleMode left at pixels.
bool PreviewPrintDialog(PreviewModel& model, SetupDialogs& dialogs, const std::string& docName,
                        bool& changed);

}  // namespace tvx
