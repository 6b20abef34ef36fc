#include "common/MessageBoxModel.h"

#include "platform/SystemServices.h"

#include <algorithm>
#include <cctype>

namespace tvx {

namespace {

struct ButtonText {
  const char* caption;
  const char* id;
  int16_t result;
};
constexpr std::array<ButtonText, MessageBoxModel::ButtonCount> Buttons{{
    {"&Yes", "39171", 6},
    {"&No", "39172", 7},
    {"Yes &To All", "39173", 8},
    {"Cancel", "99388", 2},
}};

// Gives button the place in order, the others keeping their sequence.
void moveTo(std::array<int, MessageBoxModel::ButtonCount>& order, int button, int place) {
  auto from = std::find(order.begin(), order.end(), button);
  auto to = order.begin() + place;
  if (from < to)
    std::rotate(from, from + 1, to + 1);
  else
    std::rotate(to, from, from + 1);
}

bool sameLetters(const std::string& a, const std::string& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
    return std::toupper(static_cast<unsigned char>(x)) ==
           std::toupper(static_cast<unsigned char>(y));
  });
}

}  // namespace

MessageBoxModel::MessageBoxModel(const SystemServices& services) {
  for (size_t i = 0; i < Buttons.size(); ++i)
    captions_[i] = services.LocalMessage(Buttons[i].caption, Buttons[i].id);
}

void MessageBoxModel::ShowMe(const std::string& prompt, int flags, const std::string& title) {
  prompt_ = prompt;
  title_ = title;
  tabOrder_ = {0, 1, 2, 3};
  switch (flags & 0x300) {
  case 0x100:
    for (int b = 0; b < 3; ++b)
      moveTo(tabOrder_, b, b);
    break;
  case 0x200:
    moveTo(tabOrder_, 2, 0);
    moveTo(tabOrder_, 3, 1);
    break;
  case 0x300:
    moveTo(tabOrder_, 3, 1);
    break;
  default:
    break;
  }
  result_ = 2;
}

void MessageBoxModel::click(int button) {
  if (button >= 0 && button < ButtonCount)
    result_ = Buttons[size_t(button)].result;
}

int MessageBoxModel::pressKey(const std::string& key) {
  if (key.empty())
    return -1;
  for (int b = 0; b < ButtonCount; ++b) {
    const std::string& text = captions_[size_t(b)];
    const size_t amp = text.find('&');
    if (amp != std::string::npos && sameLetters(text.substr(amp + 1, key.size()), key)) {
      click(b);
      return b;
    }
  }
  return -1;
}

BoxFit Fit(BoxSize designPrompt, BoxSize neededPrompt, BoxSize designWindow) {
  BoxFit fit;
  fit.prompt = {std::max(designPrompt.width, neededPrompt.width),
                std::max(designPrompt.height, neededPrompt.height)};
  const int32_t wider = fit.prompt.width - designPrompt.width;
  const int32_t taller = fit.prompt.height - designPrompt.height;
  fit.window = {designWindow.width + wider, designWindow.height + taller};
  fit.buttonsDown = taller;
  fit.buttonsRight = wider / 2;
  return fit;
}

}  // namespace tvx
