// The kernel stand-in: one artwork store, the shared strings and tables, and the drawing engine.
// One per component; a test builds its own.
#pragma once

#include "kernel/Graphics.h"
#include "kernel/KernelStrings.h"
#include "kernel/Store.h"

namespace tvx {

struct Kernel {
  Store store;
  KernelStrings strings;
  Graphics graphics{store, strings};
};

}  // namespace tvx
