// The unit and scale that a DXF drawing is read with: import settings of the user, not of the file.
#pragma once

#include <cstdint>

namespace tvx {

struct DxfFormat {
  int32_t DxfUnit = 1;    // 0 inches, 1 millimetres
  double DxfScale = 1.0;  // factor on all coordinates

  bool operator==(const DxfFormat&) const = default;
};

}  // namespace tvx
