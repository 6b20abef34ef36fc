// The kernel stand-in: one artwork store and the shared strings and tables. One per component;
// a test builds its own.
#pragma once

#include "kernel/KernelStrings.h"
#include "kernel/Store.h"

namespace tvx {

struct Kernel {
  Store store;
  KernelStrings strings;
};

}  // namespace tvx
