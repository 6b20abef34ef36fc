// One tagged pair of a DXF drawing (a group code and its value) as the loader keeps it.
#pragma once

#include <cstdint>
#include <string>

namespace tvx {

// Which field a group fills follows from its code; the loader keeps no other groups.
struct DxfRecord {
  int32_t Code = 0;
  int32_t IntValue = 0;
  double RealValue = 0;
  std::string TextValue;  // upper-cased and trimmed

  bool operator==(const DxfRecord&) const = default;
};

}  // namespace tvx
