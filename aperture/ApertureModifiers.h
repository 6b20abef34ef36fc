// The modifiers of a special aperture as the apertures display lists them: one row per primitive
// row of the aperture, named by the shape or macro primitive it belongs to, labelled by its place
// in that shape, and shown and taken by its class (a length, a count, a rotation, an exposure).
#pragma once

#include "import/gerber/ApertureLists.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tvx {

class SystemServices;

// How a modifier is shown and what an edit may give it.
namespace modifierclass {
inline constexpr int32_t Length = 1;         // store units; inch and mm
inline constexpr int32_t Count = 2;          // above 0
inline constexpr int32_t Rotation = 3;       // thousandths of a degree; -360 to 360 degrees
inline constexpr int32_t Exposure = 4;       // 0 off, 1 on, 2 reverse
inline constexpr int32_t FixedCount = 5;     // never changed
inline constexpr int32_t MacroSides = 6;     // 3 to 50
inline constexpr int32_t StandardSides = 7;  // 3 to 12
}  // namespace modifierclass

// One row of the modifier grid.
struct ModifierRow {
  std::string Name;   // the shape's name on its first row, else empty
  std::string Label;  // the item's label; empty beyond the shape's items or for an unknown code
  int32_t Class = modifierclass::Length;

  bool operator==(const ModifierRow&) const = default;
};

// The rows of the aperture whose primitive rows start at first (from 1): from there as long as
// the rows carry that row's D-code. None when first is outside the list.
std::vector<ModifierRow> modifierRows(const SystemServices& services,
                                      const std::vector<PrimitiveRow>& primitives, int32_t first);

// The texts of the inch and mm cells of a value of a class.
struct ModifierCells {
  std::string inch;
  std::string mm;
};
ModifierCells modifierCells(const SystemServices& services, double value, int32_t cls);

// The value a typed text gives a modifier of a class in column 2 (inch) or 3 (mm): false when the
// class takes no edit, the column is not one of the two or the value is out of its range. An
// exposure takes its words as well as its number.
bool modifierValue(const SystemServices& services, int32_t cls, int column,
                   const std::string& typed, double& value);

// The three words of an exposure, by its value 0, 1 and 2.
std::vector<std::string> exposureWords();

}  // namespace tvx
