// Ctrl+F1, the key that opens the help in every window of the viewer.
#pragma once

#include <QKeyEvent>

namespace tvx {

inline bool isHelpKey(const QKeyEvent& event) {
  return event.key() == Qt::Key_F1 && (event.modifiers() & Qt::ControlModifier);
}

}  // namespace tvx
