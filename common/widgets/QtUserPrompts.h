// Questions and messages shown as Qt message boxes, for the host and the real windows.
#pragma once

#include "platform/UserPrompts.h"

namespace tvx {

class QtUserPrompts : public UserPrompts {
public:
  // flags: the button set in the low four bits (0 Ok, 1 Ok/Cancel, 2 Abort/Retry/Ignore,
  // 3 Yes/No/Cancel, 4 Yes/No, 5 Retry/Cancel), the icon in msgbox::IconMask (0x40 information),
  // 0x100 and 0x200 make the second or third button the default.
  int messageBox(const std::string& prompt, int flags, const std::string& title) override;
  void beep() override;
};

}  // namespace tvx
