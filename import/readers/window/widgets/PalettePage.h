// The colour page of the import and layer properties windows: the 32 squares picColor0 to
// picColor31 of the palette, eight to a row.
#pragma once

#include <cstdint>
#include <functional>

class QWidget;

namespace tvx {

// A new page; a click on a square calls clicked with the square's palette number.
QWidget* makePalettePage(const std::function<void(int32_t)>& clicked);

}  // namespace tvx
