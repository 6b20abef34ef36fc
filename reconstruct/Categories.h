// The fifteen board categories into which the layers are sorted for the layout editor: each a
// symbol of the store under a fixed id and name, which the layout module reads.
#pragma once

#include "kernel/Store.h"

#include <array>
#include <cstdint>
#include <string>

namespace tvx {

class SystemServices;

// Category numbers, 1 to 15.
namespace category {
inline constexpr int32_t BoardOutline = 1;
inline constexpr int32_t BoardCutouts = 2;
inline constexpr int32_t SilkscreenTop = 3;
inline constexpr int32_t ThruPads = 4;
inline constexpr int32_t SmdPadsTop = 5;
inline constexpr int32_t ThruPadStacks = 6;
inline constexpr int32_t SmdPadStacksTop = 7;
inline constexpr int32_t ViaPads = 8;
inline constexpr int32_t ViaPadStacks = 9;
inline constexpr int32_t Traces = 10;
inline constexpr int32_t Copper = 11;
inline constexpr int32_t SmdPadStacksBottom = 12;
inline constexpr int32_t SmdPadsBottom = 13;
inline constexpr int32_t SilkscreenBottom = 14;
inline constexpr int32_t TemplateOutlines = 15;
inline constexpr int32_t Count = 15;
}  // namespace category

// The marker that a position category's pad stacks hold.
namespace categorypad {
inline constexpr int32_t None = 0;
inline constexpr int32_t Circle = 1;        // through pads
inline constexpr int32_t Square = 3;        // surface pads, component side
inline constexpr int32_t Diamond = 4;       // surface pads, solder side
inline constexpr int32_t FilledSquare = 5;  // vias
}  // namespace categorypad

struct CategoryRecord {
  int32_t Mask = 0;           // 2 to the power of (number - 1)
  SymbolId SymbolHandle = 0;  // -76000 - number
  int32_t Colour = 0;         // palette number of the category's own markers
  int32_t PadKind = 0;
  std::string Caption;  // in the user's language
  std::string KeyName;
  std::string SymbolName;  // "$$GIE_CAT" + SymbolHandle, as "$$GIE_CAT-76001"
};

class Categories {
public:
  // The fifteen rows, their captions through the service object's catalogue (none: English).
  explicit Categories(const SystemServices* services = nullptr);

  // A row by its number, 1 to 15.
  const CategoryRecord& operator[](int32_t number) const { return rows_.at(size_t(number - 1)); }
  // The number of the category with this mask; Count + 1 when none has it.
  int32_t FindCategory(int32_t mask) const;

private:
  std::array<CategoryRecord, category::Count> rows_;
};

// Makes sure the category's symbol exists, with its dead entry at index 1. With replace a symbol
// is deleted and made anew, empty, even when its name fits: "Remove previous import".
void EnsureCategorySymbol(Store& store, const CategoryRecord& record, bool replace);

// The marker item of a pad stack of a category with this PadKind and colour.
ItemRecord categoryMarker(int32_t padKind, int32_t colour);

}  // namespace tvx
