#include "viewer/KeyboardInput.h"

#include "common/CallHook.h"
#include "platform/SystemServices.h"

#include <cctype>

namespace tvx {

KeyboardInput::KeyboardInput(PointerTools& pointer, ViewState& view, ViewRedraw& redraw,
                             SystemServices& services)
    : pointer_(pointer), view_(view), redraw_(redraw), services_(services) {}

void KeyboardInput::apply(const ViewChange& c) { callHook(pointer_.hooks.applyViewChange, c); }

void KeyboardInput::endShortcut() {
  pointer_.ShortcutText.clear();
  pointer_.ShortcutMode = false;
}

void KeyboardInput::Form_KeyDown(int32_t& KeyCode, int32_t Shift) {
  if (pointer_.MiddleDrag == 4)
    return;
  pointer_.KeyboardSelect = true;
  if (guard_ || (Shift & shiftbit::Alt))
    return;

  if (KeyCode == keycode::Escape) {
    if (pointer_.toolRunning()) {
      // Row 10 of the options ends the running tool without its effect.
      callHook(hooks.setOption, 10, true);
      KeyCode = 0;
    } else {
      pointer_.disarm();
    }
    endShortcut();
  }
  if (!(hooks.viewHasFocus && hooks.viewHasFocus()))
    return;

  switch (KeyCode) {
  case keycode::Left:
    callHook(hooks.movePointer, -1, 0);
    return;
  case keycode::Right:
    callHook(hooks.movePointer, 1, 0);
    return;
  case keycode::Up:
    callHook(hooks.movePointer, 0, -1);
    return;
  case keycode::Down:
    callHook(hooks.movePointer, 0, 1);
    return;
  default:
    break;
  }
  if (pointer_.ShortcutMode)
    return;

  const bool ctrl = (Shift & shiftbit::Ctrl) != 0;
  switch (KeyCode) {
  case keycode::Backspace:
    KeyCode = keycode::F1;
    break;
  case keycode::Tab:
    apply(view_.exchangeViewHistory());  // the first Tab only remembers this view
    break;
  case keycode::Space:
    apply(ctrl ? view_.ZoomStep(zoomstep::Recentre) : view_.ATB_RedrawButtonClick(0));
    break;
  case keycode::End:
    pointer_.requestEnd();
    break;
  case keycode::Home:
    if (ctrl) {
      int32_t x = 0, y = 0;
      if (!(hooks.referencePoint && hooks.referencePoint(x, y))) {
        view_.computeCover();
        x = view_.CoverRect.CoverMinX;
        y = view_.CoverRect.CoverMinY;
      }
      view_.CursorX = x;
      view_.CursorY = y;
      apply(view_.ZoomStep(zoomstep::Recentre));
    } else {
      apply(view_.ATB_RedrawButtonClick(2));
    }
    break;
  default:
    break;
  }

  const int32_t key = KeyCode;
  KeyCode = 0;
  if ((Shift & shiftbit::Shift) && key >= 'A' && key <= 'Z') {
    guard_ = true;
    letter(key);
    guard_ = false;
    endShortcut();
  }
  if (key >= keycode::F1 && key <= keycode::F12)
    functionKey(key, Shift);
}

void KeyboardInput::letter(int32_t key) {
  switch (key) {
  case 'U':
    apply(view_.zoomAboutCentre(zoomstep::In));
    break;
  case 'D':
    apply(view_.zoomAboutCentre(zoomstep::Out));
    break;
  case 'V':
    apply(view_.zoomAboutCentre(zoomstep::Recentre));
    break;
  case 'B':
    pointer_.armBlockZoom();
    break;
  case 'S':
    pointer_.armBoxCopy();
    break;
  case 'M':
    pointer_.armSelectObject();
    break;
  case 'Z':
    pointer_.toggleLongCursor();
    callHook(hooks.checkLongCursor, pointer_.LongCursor);
    break;
  case 'P':
    callHook(hooks.positionInput, 0);
    break;
  case 'G':
    callHook(hooks.positionInput, 1);
    break;
  case 'R':
    callHook(hooks.positionInput, 2);
    break;
  default:
    break;
  }
}

void KeyboardInput::functionKey(int32_t key, int32_t shift) {
  const int32_t row = hooks.visibleOptionRow ? hooks.visibleOptionRow(key - keycode::F1) : -1;
  if (row >= 0 && row <= 10 && !(shift & shiftbit::Ctrl) &&
      (!hooks.optionEnabled || hooks.optionEnabled(row))) {
    if (hooks.optionCommand && hooks.optionCommand(row) != 0)
      callHook(hooks.runOptionCommand, row);
    else
      callHook(hooks.setOption, row, !(hooks.optionChecked && hooks.optionChecked(row)));
  }
  endShortcut();
  pointer_.repeatPointerMove();
}

void KeyboardInput::Form_KeyPress(int32_t& KeyAscii) {
  if (pointer_.MiddleDrag == 4 || !(hooks.viewHasFocus && hooks.viewHasFocus()))
    return;
  const char c = char(KeyAscii);
  if (c == '+' && !pointer_.ShortcutMode) {
    apply(view_.zoomAboutCentre(zoomstep::In));
  } else if (c == '-' && !pointer_.ShortcutMode) {
    apply(view_.zoomAboutCentre(zoomstep::Out));
  } else if (c == '*') {
    if (pointer_.toolRunning() || pointer_.boxShown()) {
      pointer_.ShortcutMode = false;
      return;
    }
    KeyAscii = 0;
    pointer_.ShortcutText.clear();
    pointer_.ShortcutMode = true;
    redraw_.EditMsgLine(services_.LocalMessage("Shortcut:", "62103"));
  } else if (pointer_.ShortcutMode && KeyAscii > 32 && KeyAscii < 127) {
    KeyAscii = 0;
    pointer_.ShortcutText += char(std::toupper(static_cast<unsigned char>(c)));
    redraw_.EditMsgLine(services_.LocalMessage("Shortcut:", "62103") + " " + pointer_.ShortcutText);
    if (pointer_.ShortcutText.size() >= 2) {
      const std::string letters = pointer_.ShortcutText;
      endShortcut();
      callHook(hooks.lookupShortcut, letters);
    }
  }
}

void KeyboardInput::Form_KeyUp(int32_t& KeyCode, int32_t Shift) {
  if (pointer_.MiddleDrag == 4 || redraw_.PaintBusy || redraw_.RedrawBusy)
    return;
  if (KeyCode == 'W' && (Shift & shiftbit::Alt)) {
    apply(view_.ATB_RedrawButtonClick(view_.ZoomModeFlag));
    KeyCode = 0;
  } else if (KeyCode == keycode::F1 && Shift == shiftbit::Ctrl) {
    callHook(hooks.showHelp);
  } else if (KeyCode == keycode::Return && Shift != 0) {
    double x = 0, y = 0;
    if (hooks.pointerInView && hooks.pointerInView(x, y)) {
      // A left click at the pointer.
      pointer_.ButtonDownSeen = true;
      pointer_.ViewPicture_MouseUp(mousebutton::Left, 0, x, y);
      pointer_.ViewPicture_MouseMove(0, 0, x, y);
    }
  }
  KeyCode = 0;
}

}  // namespace tvx
