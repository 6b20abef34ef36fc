#include "print/PrintOutput.h"

#include "common/FormatNumber.h"
#include "common/ToNumber.h"
#include "common/UserDialogs.h"
#include "kernel/Graphics.h"
#include "platform/SystemServices.h"
#include "platform/UserStore.h"
#include "viewer/DisplayUnits.h"

#include <QDir>
#include <QFileInfo>

#include <charconv>

namespace tvx {

namespace {

std::string floatText(float value) {
  char buffer[32];
  auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, value);
  return error == std::errc() ? std::string(buffer, end) : std::string("0");
}

}  // namespace

std::string GeneratedPrintName(const std::string& folder, const std::string& extension) {
  std::string base = folder;
  if (base.empty() || !QFileInfo(QString::fromStdString(base)).isDir())
    base = QDir::homePath().toStdString();
  if (base.back() != '/')
    base += '/';
  const std::string dotted = extension.empty() || extension[0] == '.' ? extension : "." + extension;
  for (int n = 1; n < 49; ++n) {
    const std::string name = base + "PrintOut_" + std::to_string(n);
    if (!QFileInfo::exists(QString::fromStdString(name + dotted)))
      return name;
  }
  return base + "PrintOut_49";
}

PrintOutput::PrintOutput(PreviewModel& model, Graphics& graphics, UserPrompts* prompts,
                         const SystemServices* services)
    : model_(model), graphics_(graphics), prompts_(prompts), services_(services) {}

void PrintOutput::message(const char* defaultText, const char* id) const {
  if (prompts_)
    ShowMessage(*prompts_, model_.text(defaultText, id), 16, ProductName);
}

void PrintOutput::Tick() {
  if (ShowPrinterPicture)
    ShowPrinterPicture(PrintFrame + 1);
  PrintFrame = PrintFrame < 4 ? PrintFrame + 1 : 0;
  if (!model_.DocOpen && PrintFrame == 4)
    PrintPass();
}

void PrintOutput::PrintPass() {
  if (model_.DocOpen)
    return;
  PreviewModel& m = model_;
  PrinterSettings& record = m.Record;
  stopRequested_ = false;
  NewPages = 0;
  if (EnableClose)
    EnableClose(false);
  const std::string range = m.PrintFrom == m.PrintTo
                                ? m.text(" Page : ", "52121") + std::to_string(m.PrintFrom)
                                : m.text(" Pages from  ", "52122") + std::to_string(m.PrintFrom) +
                                      m.text(" to ", "52123") + std::to_string(m.PrintTo);
  const std::vector<PageRow> rows = m.PageRows;
  record.DefaultExt = "pdf";
  record.Filter = "PDF files (*.pdf)";
  record.FileNameUnique = true;
  record.FileName.clear();
  record.InitialDir = ImportFolder;
  record.ScaleMode = scalemode::Pixels;
  InitPrinter(record, m.Printer);
  const int32_t device = graphics_.G_GetDC(m.Printer.paintDevice());
  if (device != 0 && StartDoc(Caption + range)) {
    const int32_t width = m.Printer.printableWidth(), height = m.Printer.printableHeight();
    for (int32_t sheet = m.PrintFrom; sheet <= m.PrintTo && sheet <= int32_t(rows.size());
         ++sheet) {
      if (ShowStatus)
        ShowStatus(std::to_string(sheet));
      Tick();
      if (DoEvents)
        DoEvents();
      if (stopRequested_)
        break;
      m.DrawSheet(graphics_, device, rows[size_t(sheet - 1)], width, height, m.PrintZoom, true);
      if (sheet < m.PrintTo)
        NewPage();
    }
    EndDoc();
    if (DoEvents)
      DoEvents();
  }
  graphics_.G_DeleteDC(device);
  if (EnableClose)
    EnableClose(true);
  if (StopTimer)
    StopTimer();
  m.DocOpen = false;
  if (ShowStatus)
    ShowStatus(std::string());
}

bool PrintOutput::StartDoc(const std::string& documentName) {
  PreviewModel& m = model_;
  if (m.DocOpen)
    return false;
  PrinterSettings& record = m.Record;
  InitPrinter(record, m.Printer);
  std::string output = record.Port;
  if (record.PrintToFile || record.Port == "FILE:") {
    PrintFileRequest request{record.InitialDir, record.DefaultExt, record.FileName, record.Filter};
    std::string trimmed = request.fileName;
    trimmed.erase(0, trimmed.find_first_not_of(' '));
    if (trimmed.empty() || record.FileNameUnique)
      request.fileName = GeneratedPrintName(request.folder, request.defaultExtension);
    if (!AskFileName)
      return false;
    const std::optional<std::string> chosen = AskFileName(request);
    if (!chosen)
      return false;
    output = *chosen;
  }
  LastOutput = output;
  if (m.Printer.startDoc(documentName, output) <= 0) {
    message("Start Spooling Document Failed", "52156");
    return false;
  }
  m.DocOpen = m.Printer.startPage() > 0;
  if (!m.DocOpen)
    message("Start Printing Page Failed", "52155");
  return m.DocOpen;
}

void PrintOutput::NewPage() {
  if (!model_.DocOpen)
    return;
  model_.Printer.endPage();
  model_.Printer.startPage();
  ++NewPages;
}

void PrintOutput::EndDoc() {
  if (!model_.DocOpen)
    return;
  model_.Printer.endPage();
  model_.Printer.endDoc();
  model_.DocOpen = false;
}

void PrintOutput::LoadSettings(UserStore& store) {
  PrinterSettings& record = model_.Record;
  auto read = [&](const char* key, const char* defaultValue) {
    return ToNumber(store.GetSetting(UserStoreApplication, UserStoreSection, key, defaultValue));
  };
  record.PrintToFile = read("PrintToFile", "0") != 0;
  if (model_.PrintManager) {
    model_.ReadPrintManager(*model_.PrintManager);
    return;
  }
  record.ScaleMode = int32_t(read("scalemode", "6"));
  if (record.ScaleMode != scalemode::Inches && record.ScaleMode != scalemode::Millimetres)
    record.ScaleMode = scalemode::Millimetres;
  record.Orientation = read("Orientation", "1") == 2 ? 2 : 1;
  record.PaperSize = int32_t(read("PaperSize", "9"));
  record.PaperLength = int32_t(read("PaperLength", "0"));
  record.PaperWidth = int32_t(read("PaperWidth", "0"));
  const bool userSize =
      record.PaperSize == UserPaperSize && record.PaperLength > 0 && record.PaperWidth > 0;
  if (!userSize && PaperSizeName(record.PaperSize).empty())
    record.PaperSize = 9;
  record.PaperSizeString = PaperSizeName(record.PaperSize);
  record.MarginBt = float(read("MarginBt", "10"));
  record.MarginLt = float(read("MarginLt", "10"));
  record.MarginRt = float(read("MarginRt", "10"));
  record.MarginTp = float(read("MarginTp", "10"));
  record.UnitIndex = model_.DisplayUnit == displayunit::Millimetre ? 1 : 0;
  // The stored margins are in the stored unit.
  model_.Printer.ScaleMode = record.ScaleMode;
  InitPrinter(record, model_.Printer);
}

void PrintOutput::SaveSettings(UserStore& store) {
  PrinterSettings& record = model_.Record;
  // The margins go out in the display unit, whatever unit the last pass left them in.
  record.ScaleMode = model_.UnitScaleMode();
  InitPrinter(record, model_.Printer);
  auto save = [&](const char* key, const std::string& value) {
    store.SaveSetting(UserStoreApplication, UserStoreSection, key, value);
  };
  save("scalemode", std::to_string(record.ScaleMode));
  save("Orientation", std::to_string(record.Orientation));
  save("PaperSize", std::to_string(record.PaperSize));
  save("PaperLength", std::to_string(record.PaperLength));
  save("PaperWidth", std::to_string(record.PaperWidth));
  save("PrintToFile", record.PrintToFile ? "1" : "0");
  save("MarginBt", floatText(record.MarginBt));
  save("MarginLt", floatText(record.MarginLt));
  save("MarginRt", floatText(record.MarginRt));
  save("MarginTp", floatText(record.MarginTp));
}

}  // namespace tvx
