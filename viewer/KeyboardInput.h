// The main window's keys without widgets: Escape, the arrows, Tab, Space, End, Home, the Shift
// letters, the function keys over the option tools, "+", "-", and "*" with two letters that pick
// a key of a function. Key codes are the window system's virtual key codes (8 Backspace, 9 Tab,
// 13 Return, 27 Escape, 32 Space, 35 End, 36 Home, 37 to 40 arrows, 65 to 90 letters, 112 to 123
// F1 to F12); Shift holds shiftbit:: values.
#pragma once

#include "viewer/PointerTools.h"

#include <cstdint>
#include <functional>
#include <string>

namespace tvx {

namespace keycode {
inline constexpr int32_t Backspace = 8;
inline constexpr int32_t Tab = 9;
inline constexpr int32_t Return = 13;
inline constexpr int32_t Escape = 27;
inline constexpr int32_t Space = 32;
inline constexpr int32_t End = 35;
inline constexpr int32_t Home = 36;
inline constexpr int32_t Left = 37;
inline constexpr int32_t Up = 38;
inline constexpr int32_t Right = 39;
inline constexpr int32_t Down = 40;
inline constexpr int32_t F1 = 112;
inline constexpr int32_t F12 = 123;
}  // namespace keycode

// The option tools and the functions' keys as the keys use them, and what the window does for
// a key. Every hook may be left empty.
struct KeyboardHooks {
  // The row (0 to 10) of the nth visible option tool, from 0; -1 when there is none.
  std::function<int32_t(int32_t n)> visibleOptionRow;
  std::function<bool(int32_t row)> optionEnabled;
  std::function<bool(int32_t row)> optionChecked;
  std::function<int32_t(int32_t row)> optionCommand;
  std::function<void(int32_t row, bool check)> setOption;
  // RunFunctionCommand(CurrentKey, row) of a command option.
  std::function<void(int32_t row)> runOptionCommand;
  // Two letters typed after "*": the walk over the functions' shortcuts.
  std::function<void(const std::string& letters)> lookupShortcut;
  // The view picture is the active control.
  std::function<bool()> viewHasFocus;
  // The screen pointer moved by a pixel, held within the view.
  std::function<void(int32_t dx, int32_t dy)> movePointer;
  // The screen pointer over the view: its view pixel; false when it is elsewhere.
  std::function<bool(double& x, double& y)> pointerInView;
  std::function<void()> showHelp;
  // The position input of the measuring tools: mode 0 (P), 1 (G), 2 (R).
  std::function<void(int32_t mode)> positionInput;
  // The reference point, when one is set.
  std::function<bool(int32_t& x, int32_t& y)> referencePoint;
  // The long cursor's menu entry follows LongCursor.
  std::function<void(bool checked)> checkLongCursor;
};

class KeyboardInput {
public:
  KeyboardInput(PointerTools& pointer, ViewState& view, ViewRedraw& redraw,
                SystemServices& services);

  KeyboardHooks hooks;

  // KeyCode is set to 0 where the key is taken.
  void Form_KeyDown(int32_t& KeyCode, int32_t Shift);
  void Form_KeyPress(int32_t& KeyAscii);
  void Form_KeyUp(int32_t& KeyCode, int32_t Shift);

private:
  void letter(int32_t key);
  void functionKey(int32_t key, int32_t shift);
  void endShortcut();
  void apply(const ViewChange& c);

  PointerTools& pointer_;
  ViewState& view_;
  ViewRedraw& redraw_;
  SystemServices& services_;
  bool guard_ = false;
};

}  // namespace tvx
