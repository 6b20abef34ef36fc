#include "platform/UserPrompts.h"

namespace tvx {

int ScriptedPrompts::messageBox(const std::string& prompt, int flags, const std::string& title) {
  shown.push_back({prompt, flags, title});
  if (!answers.empty()) {
    int a = answers.front();
    answers.pop_front();
    return a;
  }
  return (flags & 0xF) == msgbox::YesNo ? answer::Yes : answer::Ok;
}

}  // namespace tvx
