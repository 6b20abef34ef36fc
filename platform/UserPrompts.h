// The one interface through which the system asks the user and tells the user things.
// The Qt implementation shows real boxes; the scripted one lets tests answer and read the texts.
#pragma once

#include <deque>
#include <string>
#include <vector>

namespace tvx {

// Flags of a message box, as the system passes them.
namespace msgbox {
inline constexpr int Ok = 0x0;
inline constexpr int YesNo = 0x4;
inline constexpr int Critical = 0x10;
inline constexpr int Question = 0x20;
inline constexpr int Exclamation = 0x30;
inline constexpr int SystemModal = 0x1000;
inline constexpr int IconMask = 0x70;
}  // namespace msgbox

// Results of a message box.
namespace answer {
inline constexpr int Ok = 1;
inline constexpr int Cancel = 2;
inline constexpr int Yes = 6;
inline constexpr int No = 7;
}  // namespace answer

class UserPrompts {
public:
  virtual ~UserPrompts() = default;
  // A modal message box; returns one of the answer values.
  virtual int messageBox(const std::string& prompt, int flags, const std::string& title) = 0;
  virtual void beep() = 0;
};

// Records every box and beep; answers from a queue, Yes (or Ok) when the queue is empty.
class ScriptedPrompts : public UserPrompts {
public:
  struct Shown {
    std::string prompt;
    int flags = 0;
    std::string title;
  };

  int messageBox(const std::string& prompt, int flags, const std::string& title) override;
  void beep() override { ++beeps; }

  std::vector<Shown> shown;
  std::deque<int> answers;
  int beeps = 0;
};

}  // namespace tvx
