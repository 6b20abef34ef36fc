// Sheets of the preview to the printer or to a file: the timer's ticks, the print pass over the
// kernel device of the printer, the document calls, the generated file names, and the preview's
// settings in the per-user store.
#pragma once

#include "print/PreviewModel.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace tvx {

class Graphics;
class UserStore;

// What the save dialog cdlgPrnFile starts with.
struct PrintFileRequest {
  std::string folder;
  std::string defaultExtension;  // without the dot
  std::string fileName;
  std::string filter;
};

// The first "PrintOut_n" (n from 1) in folder for which no file with the extension exists, as
// folder + name without the extension; n = 49 is taken without a test. A folder that does not
// exist gives the home folder.
std::string GeneratedPrintName(const std::string& folder, const std::string& extension);

class PrintOutput {
public:
  PrintOutput(PreviewModel& model, Graphics& graphics, UserPrompts* prompts = nullptr,
              const SystemServices* services = nullptr);

  // What the window provides; each may stay empty.
  std::function<void()> DoEvents;
  std::function<void(int32_t picture)> ShowPrinterPicture;  // "Prn" + picture, 1 to 5
  std::function<void(const std::string&)> ShowStatus;       // staMsg panel 3
  std::function<void(bool)> EnableClose;                    // ATB_Close
  std::function<void()> StopTimer;
  // The save dialog: the chosen name, nothing on Cancel.
  std::function<std::optional<std::string>(const PrintFileRequest&)> AskFileName;

  std::string Caption;                 // the window's caption, the start of the document's name
  std::string ImportFolder;            // the start folder of the save dialog
  std::string ProductName = "Tarvex";  // the title of its messages

  // One tick of timPrinting; the pass runs at the fourth.
  void Tick();
  void PrintPass();
  bool StartDoc(const std::string& documentName);
  void NewPage();
  void EndDoc();
  // Closing during a pass: the pass ends its document after the sheet being drawn.
  void RequestStop() { stopRequested_ = true; }

  // The settings keys of the per-user store.
  void LoadSettings(UserStore& store);
  void SaveSettings(UserStore& store);

  int32_t PrintFrame = 0;
  int32_t NewPages = 0;    // NewPage calls of the last pass
  std::string LastOutput;  // where the last document went

private:
  void message(const char* defaultText, const char* id) const;

  PreviewModel& model_;
  Graphics& graphics_;
  UserPrompts* prompts_;
  const SystemServices* services_;
  bool stopRequested_ = false;
};

}  // namespace tvx
