// The store's colours as the viewer sees them: the palette, the 64 colour slots of kernel table 1
// and the slots with a fixed role, and the colour categories of the settings that fill the table.
#pragma once

#include "kernel/KernelStrings.h"
#include "kernel/Palette.h"
#include "platform/SystemServices.h"

#include <array>
#include <cstdint>
#include <string>

namespace tvx {

inline constexpr int32_t ColourSlotCount = 64;

// Slots with a fixed role.
namespace colourslot {
inline constexpr int32_t Highlight = 36;    // colour of a selection
inline constexpr int32_t ClearColour = 60;  // colour of clear-polarity elements
inline constexpr int32_t GridDot = 62;
inline constexpr int32_t Background = 63;  // background of a drawing pass
}  // namespace colourslot

// The highlight's palette number in mono view, whatever slot 36 holds.
inline constexpr int32_t MonoHighlightColour = 12;

// The colour value by which items name slot: 32 + slot for slots 0 to 31, 64 + (slot - 32) for
// slots 32 to 63, so codes 32 to 95 without a gap.
inline constexpr int32_t slotCode(int32_t slot) { return slot < 32 ? 32 + slot : 64 + (slot - 32); }

// One colour slot.
struct ColourSlot {
  int32_t ColourNumber = 0;  // palette number, the slot's byte of table 1
  int32_t Rgb = 0;           // that number's colour, 0x00BBGGRR
  int32_t Code = 0;          // slotCode(slot)
};

// The palette and the slots, read from the kernel. Built at start and again whenever the settings
// are applied.
class ColourSlots {
public:
  ColourSlots();

  // Fills the palette through G_GetAllRGBColors and the slots from the 64 bytes of E_SysTable(1).
  void build(KernelStrings& strings);

  const ColourSlot& operator[](int32_t slot) const { return slots_.at(size_t(slot)); }

  // The palette's colour of a palette number. Numbers outside the palette wrap around it, as the
  // drawing engine takes them.
  int32_t rgbOf(int32_t colourNumber) const;
  const std::array<uint32_t, PaletteSize>& palette() const { return palette_; }

  // The colour value of clear-polarity elements: slot 60's code.
  int32_t ClearColour() const { return slots_[colourslot::ClearColour].Code; }
  // The colour of selections and marks: 12 in mono view, else slot 36's code.
  int32_t highlightColour(bool mono) const {
    return mono ? MonoHighlightColour : slots_[colourslot::Highlight].Code;
  }
  // The colour passed to G_ChangeBackgroundColor: slot 63's code.
  int32_t backgroundColour() const { return slots_[colourslot::Background].Code; }

private:
  std::array<uint32_t, PaletteSize> palette_{};
  std::array<ColourSlot, ColourSlotCount> slots_{};
};

// One row of the colour categories of the settings: "Name,Colour,Extra".
struct CategoryRow {
  std::string Name;
  int32_t Colour = 0;  // palette number
  std::string Remark;
  int32_t Slot = -1;  // the row's key: its slot in table 1; -1 for an empty row
  bool isEmpty() const { return Slot < 0; }
};

// The two groups of the "CATEGORIES" section, 32 rows each. A layout row of key k stands at
// k - 32, a schematic row at k.
struct CategoryTable {
  std::array<CategoryRow, 32> Layout;
  std::array<CategoryRow, 32> Schematic;
  int32_t LayoutBackground = 0;  // colour of the layout's background row, key 63
};

enum class CategoryGroup { Layout, Schematic };

// Reads one group of the section "CATEGORIES" into table, each key with its default; rows of keys
// that have no default stay empty. The colour of every row read is written to byte (key) of
// kernel table 1.
void readCategoryGroup(const SystemServices& services, KernelStrings& strings, CategoryGroup group,
                       CategoryTable& table);

}  // namespace tvx
