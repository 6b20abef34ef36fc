// The message box with the buttons Yes, No, Yes To All and Cancel, without its window: captions,
// tab order, result and letter keys, and how the window grows for a long prompt. frmTVXMsgBox
// shows it.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace tvx {

class SystemServices;

class MessageBoxModel {
public:
  static constexpr int ButtonCount = 4;

  // The buttons' captions in the user's language.
  explicit MessageBoxModel(const SystemServices& services);

  // ShowMe's start: what is shown, the tab order of the buttons by flags and 0x300, and the
  // result 2 (Cancel), which closing the window keeps.
  void ShowMe(const std::string& prompt, int flags, const std::string& title);

  const std::string& prompt() const { return prompt_; }
  const std::string& title() const { return title_; }
  const std::string& caption(int button) const { return captions_[size_t(button)]; }
  // The buttons by their places in the tab order; the first takes the focus.
  const std::array<int, ButtonCount>& tabOrder() const { return tabOrder_; }

  // A click on cmdBut(button): its result (6, 7, 8, 2).
  void click(int button);
  // A key pressed in the window presses the button whose caption has that letter after "&"
  // (case-blind). Returns the button, or -1 when none has it.
  int pressKey(const std::string& key);
  int16_t result() const { return result_; }

private:
  std::array<std::string, ButtonCount> captions_;
  std::array<int, ButtonCount> tabOrder_{0, 1, 2, 3};
  std::string prompt_;
  std::string title_;
  int16_t result_ = 2;
};

// Fit: sizes in twips.
struct BoxSize {
  int32_t width = 0;
  int32_t height = 0;
  bool operator==(const BoxSize&) const = default;
};
struct BoxFit {
  BoxSize prompt;            // the prompt label, at least its design size
  BoxSize window;            // the window, larger by what the label grew
  int32_t buttonsDown = 0;   // every button moves down by the label's growth in height
  int32_t buttonsRight = 0;  // and right by half its growth in width
  bool operator==(const BoxFit&) const = default;
};
BoxFit Fit(BoxSize designPrompt, BoxSize neededPrompt, BoxSize designWindow);

}  // namespace tvx
