// A user-visible text of the viewer: its catalogue id and the default text shown without one.
#pragma once

namespace tvx {

struct MessageText {
  const char* id;
  const char* text;
};

}  // namespace tvx
