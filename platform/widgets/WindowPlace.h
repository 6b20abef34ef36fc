// Where a window was: saved at unload and restored at start, in the per-user store.
#pragma once

#include "platform/UserStore.h"

#include <cstdint>
#include <string>

class QWidget;

namespace tvx {

// Places are kept in twips, 15 to a pixel (the 96 dpi measure), as the suite's other modules
// keep theirs. Top and Left are the outer frame's position, Width and Height the window's size
// without its frame: the values QWidget::move and QWidget::resize take.
inline constexpr int32_t TwipsPerPixel = 15;

struct WindowPlace {
  int32_t Top = 0;
  int32_t Left = 0;
  int32_t Width = 0;
  int32_t Height = 0;
};

// Width and height of the desktop's work area, in twips.
struct WorkArea {
  int32_t Width = 0;
  int32_t Height = 0;
};

// Writes the keys name + "_TOP", "_LEFT", "_HEIGHT", "_WIDTH" as whole numbers.
void SaveWindowPlace(UserStore& store, const std::string& name, const WindowPlace& place);

// Reads the four keys (a missing or unreadable one is -1) and corrects them:
//  - a Top below 0, or one within the bottom fortieth of the work area, becomes 0; the same for
//    Left with the work area's width; either makes the result false;
//  - a Height or Width below 1 becomes the window's present one (this alone keeps the result).
// So a window never saved gets false and 0, 0 with its present size.
bool RestoreWindowPlace(const UserStore& store, const std::string& name, const WorkArea& work,
                        int32_t presentWidth, int32_t presentHeight, WindowPlace& place);

// The same for a window: its objectName is the name (its class name when it has none), its
// screen's available geometry the work area.
WindowPlace placeOf(const QWidget& window);
WorkArea workAreaOf(const QWidget& window);
void SaveWindowPlace(UserStore& store, const QWidget& window);
bool RestoreWindowPlace(const UserStore& store, const QWidget& window, int32_t& Top, int32_t& Left,
                        int32_t& Width, int32_t& Height);
// Moves and sizes the window to a place in twips.
void moveToPlace(QWidget& window, const WindowPlace& place);

}  // namespace tvx
