// Questions and messages shown in real dialogs, for the host and the real windows: Qt's message
// box, the four-button box frmTVXMsgBox and the query box TvxQuery.
#pragma once

#include "platform/UserPrompts.h"

#include <functional>

namespace tvx {

class SystemServices;

class QtUserPrompts : public UserPrompts {
public:
  // The boxes' own captions are translated by services once it is given (the design captions
  // before); Ctrl+F1 in the query box calls help.
  void setServices(const SystemServices* services) { services_ = services; }
  void setHelpHandler(std::function<void()> help) { help_ = std::move(help); }

  // flags: the button set in the low four bits (0 Ok, 1 Ok/Cancel, 2 Abort/Retry/Ignore,
  // 3 Yes/No/Cancel, 4 Yes/No, 5 Retry/Cancel), the icon in msgbox::IconMask (0x40 information),
  // 0x100 and 0x200 make the second or third button the default.
  int messageBox(const std::string& prompt, int flags, const std::string& title) override;
  int fourButtonBox(const std::string& prompt, int flags, const std::string& title) override;
  QueryAnswer query(const QueryRequest& request) override;
  void beep() override;

private:
  const SystemServices* services_ = nullptr;
  std::function<void()> help_;
};

}  // namespace tvx
