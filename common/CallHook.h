// Calls a hook that may be left empty, as the models' hook records allow.
#pragma once

#include <utility>

namespace tvx {

template <typename Hook, typename... Args> void callHook(const Hook& hook, Args&&... args) {
  if (hook)
    hook(std::forward<Args>(args)...);
}

}  // namespace tvx
