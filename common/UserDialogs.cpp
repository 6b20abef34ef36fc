#include "common/UserDialogs.h"

#include "kernel/KernelStrings.h"
#include "platform/UserPrompts.h"

namespace tvx {

std::string AskQuery(UserPrompts& prompts, const std::string& title, const std::string& prompt,
                     std::vector<std::string>& list, int32_t mode, int32_t& index, bool showButton,
                     const std::string& buttonCaption) {
  prompts.beep();
  QueryAnswer answer = prompts.query({title, prompt, list, mode, index, showButton, buttonCaption});
  if (list.empty())
    list.emplace_back();
  list[0] = answer.text;
  index = answer.index;
  return answer.text;
}

std::string AskText(UserPrompts& prompts, const std::string& prompt, const std::string& title,
                    const std::string& defaultText) {
  return prompts.query({title, prompt, {defaultText}, 1, 0, false, {}}).text;
}

int ShowMessage(UserPrompts& prompts, const std::string& prompt, int flags,
                const std::string& title) {
  if (flags & msgbox::FourButtons)
    return prompts.fourButtonBox(prompt, flags, title);
  return prompts.messageBox(prompt, flags, title);
}

int ShowMessage(UserPrompts& prompts, const KernelStrings& strings, const std::string& prompt,
                int flags, const std::string& title) {
  const char* product = strings.E_GetString("PRODUCT_NAME");
  if (title.empty() && product)
    return ShowMessage(prompts, prompt, flags, std::string(product));
  return ShowMessage(prompts, prompt, flags, title);
}

}  // namespace tvx
