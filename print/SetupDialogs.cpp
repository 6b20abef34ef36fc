#include "print/SetupDialogs.h"

#include "print/PreviewModel.h"

#include <algorithm>
#include <cmath>

namespace tvx {

namespace {

using namespace setupvalue;

constexpr int32_t DeviceRecordVersion = 0x320;

void fillNames(PrinterSettings& record, const PlatformPrinter& printer) {
  if (record.DeviceName.empty() || record.DriverName.empty() || record.Port.empty()) {
    record.DeviceName = printer.deviceName();
    record.DriverName = printer.driverName();
    record.Port = printer.port();
  }
}

// The values both dialogs take from the record before they show.
void putDeviceValues(SetupDialog& dialog, const PrinterSettings& record, bool withQuality) {
  dialog.SetValue(FieldMask, AllFields);
  dialog.SetText(DeviceName, record.DeviceName);
  dialog.SetValue(Orientation, record.Orientation);
  dialog.SetValue(PaperSize, record.PaperSize);
  dialog.SetValue(Scale, record.DeviceScale);
  dialog.SetValue(Copies, record.Copies);
  if (withQuality)
    dialog.SetValue(Quality, record.PrintQuality);
  dialog.SetValue(Colour, record.ColorMode);
  dialog.SetValue(setupvalue::Duplex, record.Duplex);
  dialog.SetValue(setupvalue::YResolution, record.YResolution);
  dialog.SetValue(setupvalue::Collate, record.Collate ? 1 : 0);
  dialog.SetDevNames(record.DriverName, record.DeviceName, record.Port);
}

// What both dialogs give back after OK.
void readDeviceValues(SetupDialog& dialog, PrinterSettings& record, bool withLengths) {
  record.DriverName = dialog.GetText(DriverOut);
  record.DeviceName = dialog.GetText(DeviceOut);
  record.Port = dialog.GetText(PortOut);
  dialog.SetValue(FieldMask, AllFields);
  record.Orientation = dialog.GetValue(Orientation);
  record.PaperSize = dialog.GetValue(PaperSize);
  record.PaperSizeString = PaperSizeName(record.PaperSize);
  if (withLengths) {
    record.PaperLength = dialog.GetValue(PaperLengthRead);
    record.PaperWidth = dialog.GetValue(PaperWidthRead);
  }
  record.DeviceScale = dialog.GetValue(Scale);
  record.Copies = dialog.GetValue(Copies);
  record.PrintQuality = dialog.GetValue(Quality);
  record.QualityName = QualityNameOf(record.PrintQuality);
  record.ColorMode = dialog.GetValue(Colour);
  record.ColorName = ColorNameOf(record.ColorMode);
  record.YResolution = dialog.GetValue(setupvalue::YResolution);
  record.Collate = dialog.GetValue(setupvalue::Collate) != 0;
  record.Duplex = dialog.GetValue(setupvalue::Duplex);
}

int32_t dialogMode(const PrinterSettings& record) {
  return record.UnitIndex == 0 ? scalemode::Inches : scalemode::Millimetres;
}

}  // namespace

bool PageSetup(PrinterSettings& record, PlatformPrinter& printer, SetupDialogs& dialogs,
               int32_t flags, bool docOpen) {
  if (docOpen)
    return false;
  fillNames(record, printer);
  std::unique_ptr<SetupDialog> dialog = dialogs.CreatePageSetupDlg();
  if (!dialog)
    return false;
  dialog->SetValue(Owner, 0);
  dialog->SetValue(Flags, (flags & 0x80FB3) | 2 | (record.UnitIndex == 0 ? 4 : 8));
  if (record.PaperSize == UserPaperSize) {
    dialog->SetValue(PaperWidth, record.PaperWidth);
    dialog->SetValue(PaperLength, record.PaperLength);
  }
  const int32_t toDialog = measure::ToThousandthInch + record.UnitIndex;
  auto out = [&](float value, bool alongY) {
    return int32_t(std::lround(ConvertMeasure(record, printer, value, toDialog, alongY)));
  };
  record.ScaleMode = dialogMode(record);
  InitPrinter(record, printer);
  ReadLeastMargins(record, printer);
  const float margins[] = {
      std::max(record.MarginBt, record.LeastBt), std::max(record.MarginLt, record.LeastLt),
      std::max(record.MarginRt, record.LeastRt), std::max(record.MarginTp, record.LeastTp)};
  const float least[] = {record.LeastBt, record.LeastLt, record.LeastRt, record.LeastTp};
  for (int i = 0; i < 4; ++i) {
    const bool alongY = i == 0 || i == 3;
    dialog->SetValue(MarginBt + i, out(margins[i], alongY));
    dialog->SetValue(LeastBt + i, out(least[i], alongY));
  }
  if (!dialog->GetDeviceMode(record.DeviceName))
    return false;
  dialog->SetValue(Version, DeviceRecordVersion);
  putDeviceValues(*dialog, record, true);
  if (!dialog->Activate())
    return false;
  readDeviceValues(*dialog, record, true);
  float* back[] = {&record.MarginBt, &record.MarginLt, &record.MarginRt, &record.MarginTp};
  for (int i = 0; i < 4; ++i)
    *back[i] = float(ConvertMeasure(record, printer, dialog->GetValue(MarginBt + i),
                                    record.UnitIndex, i == 0 || i == 3));
  auto tenthsMm = [&](int32_t value) {
    return record.UnitIndex == 1 ? value / 10 : int32_t(value / 1000.0 * 254);
  };
  record.PaperWidth = tenthsMm(dialog->GetValue(PaperWidth));
  record.PaperLength = tenthsMm(dialog->GetValue(PaperLength));
  return dialog->SetDeviceMode(record.DeviceName);
}

bool PrinterSetup(PrinterSettings& record, PlatformPrinter& printer, SetupDialogs& dialogs,
                  bool docOpen, bool& printerChanged) {
  printerChanged = false;
  InitPrinter(record, printer);
  if (docOpen)
    return false;
  fillNames(record, printer);
  const PrinterSettings before = record;
  std::unique_ptr<SetupDialog> dialog = dialogs.CreatePrinterSetupDlg();
  if (!dialog)
    return false;
  dialog->SetValue(Owner, 0);
  dialog->SetValue(Flags, record.Flags | (record.PrintToFile ? printflag::PrintToFile : 0));
  dialog->SetValue(FromPage, record.FromPage);
  dialog->SetValue(ToPage, record.ToPage);
  dialog->SetValue(MinPage, record.MinPage);
  dialog->SetValue(MaxPage, record.MaxPage);
  dialog->SetValue(PrinterCopies, record.Copies);
  if (!dialog->GetDeviceMode(record.DeviceName))
    return false;
  putDeviceValues(*dialog, record, false);
  if (!dialog->Activate())
    return false;
  readDeviceValues(*dialog, record, false);
  record.FromPage = dialog->GetValue(FromPage);
  record.ToPage = dialog->GetValue(ToPage);
  record.Flags = dialog->GetValue(Flags);
  record.PrintToFile = (record.Flags & printflag::PrintToFile) == printflag::PrintToFile;
  if (!dialog->SetDeviceMode(record.DeviceName))
    return false;
  InitPrinter(record, printer);
  printerChanged = record.DeviceName != before.DeviceName ||
                   record.Orientation != before.Orientation || record.PaperSize != before.PaperSize;
  dialog.reset();
  return printerChanged ? PageSetup(record, printer, dialogs, 0, docOpen) : true;
}

bool PreviewPrintDialog(PreviewModel& model, SetupDialogs& dialogs, const std::string& docName,
                        bool& changed) {
  changed = false;
  if (model.DocOpen)
    return false;
  PrinterSettings& record = model.Record;
  record.ScaleMode = dialogMode(record);
  InitPrinter(record, model.Printer);
  const float margins[] = {record.MarginBt, record.MarginLt, record.MarginRt, record.MarginTp};
  record.ScaleMode = scalemode::Pixels;
  InitPrinter(record, model.Printer);
  const float width = record.ScaleWidth, height = record.ScaleHeight;
  record.DefaultExt = "pdf";
  record.DocName = docName;
  record.Filter = "PDF files (*.pdf)";
  record.FromPage = 1;
  record.ToPage = model.PageCount;
  record.InitialDir = ".";
  record.MinPage = 1;
  record.MaxPage = int16_t(std::clamp(model.PageCount, 1, 32767));
  record.Flags = printflag::UseDevModeCopies | printflag::NoSelection | printflag::PageNumbers;
  if (!PrinterSetup(record, model.Printer, dialogs, model.DocOpen, model.PrinterChanged))
    return false;
  switch (record.Flags & 3) {
  case 0:
    model.PrintFrom = 1;
    model.PrintTo = model.PageCount;
    break;
  case 1:
    model.PrintFrom = model.PrintTo = model.CurrentPage;
    break;
  case 2:
    model.PrintFrom = std::min(record.FromPage, record.ToPage);
    model.PrintTo = std::max(record.FromPage, record.ToPage);
    break;
  default:
    model.PrintFrom = record.FromPage;
    model.PrintTo = record.ToPage;
    break;
  }
  changed = model.PrinterChanged;
  if (record.ScaleMode == scalemode::Inches || record.ScaleMode == scalemode::Millimetres) {
    const float now[] = {record.MarginBt, record.MarginLt, record.MarginRt, record.MarginTp};
    changed = changed || !std::equal(std::begin(now), std::end(now), std::begin(margins));
  } else if (record.ScaleMode == scalemode::Pixels) {
    changed = changed || record.ScaleWidth != width || record.ScaleHeight != height;
  }
  record.ScaleMode = scalemode::Pixels;
  InitPrinter(record, model.Printer);
  return true;
}

}  // namespace tvx
