// Turns a status code into the message box that the user sees, at the place where it was detected.
// The caller then sets its status word to 1, so that no caller reports the same failure again.
#pragma once

#include <cstdint>
#include <string>

namespace tvx {

class SystemServices;
class UserPrompts;

// The two titles of a message box: the program's, and the dialog that is on the screen now
// (a modal dialog sets it while it is shown; empty when none).
struct StatusTitles {
  std::string programTitle;
  std::string dialogTitle;

  std::string boxTitle() const {
    return dialogTitle.empty() ? programTitle : programTitle + " (" + dialogTitle + ")";
  }
};

// Digits of the coordinate format in force, for the range error text.
struct FormatDigits {
  int32_t IntegerDigits = 2;
  int32_t DecimalDigits = 3;
};

// The text and icon of one status code.
struct StatusMessage {
  std::string text;
  int icon = 0;  // msgbox::Exclamation, msgbox::Critical or 0
};

// Builds the message of a status code; name is the Text argument of ReportStatus. A message that
// tells what a failure cost (a missing aperture) names its count of elements when it is above 0.
StatusMessage statusMessage(const SystemServices& services, int32_t status, const std::string& name,
                            const FormatDigits& format, int64_t elements = 0);

class StatusReporter {
public:
  // The titles and the format are read at each report, so the owners may change them at any time.
  StatusReporter(const SystemServices& services, UserPrompts& prompts, const StatusTitles& titles,
                 const FormatDigits& format)
      : services_(services), prompts_(prompts), titles_(titles), format_(format) {}

  // Shows the system-modal box of the status code.
  void ReportStatus(int32_t status, const std::string& text, int64_t elements = 0) const;

  const SystemServices& services() const { return services_; }
  UserPrompts& prompts() const { return prompts_; }

private:
  const SystemServices& services_;
  UserPrompts& prompts_;
  const StatusTitles& titles_;
  const FormatDigits& format_;
};

}  // namespace tvx
