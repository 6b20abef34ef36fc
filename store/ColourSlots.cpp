#include "store/ColourSlots.h"

#include "common/ParseList.h"
#include "common/WholeNumber.h"
#include "kernel/Graphics.h"

#include <string_view>

namespace tvx {

namespace {

struct CategoryDefault {
  int32_t key;
  std::string_view text;
};

constexpr CategoryDefault LayoutDefaults[] = {
    {32, "Comp. Entry,15,"},   {33, "Via hole,1,"},
    {34, "Node Marker,10,"},   {35, "Comp. Entry (Mirror),10,"},
    {36, "Grid Line,4,"},      {37, "Grid Cross,4,"},
    {38, "Highlight,4,"},      {60, "Airgaps,15,"},
    {61, "Board Outline,10,"}, {62, "Grid Dot,7,"},
    {63, "Background,0,"},
};

constexpr CategoryDefault SchematicDefaults[] = {
    {0, "Comp. Outline,4,"},       {1, "Comp. Name,1,,"},   {2, "Comp. Descript.,2,"},
    {3, "Comp. Value,6,"},         {4, "Comp. Text,4,"},    {5, "Comp. Entry,0,"},
    {6, "Pinout Text,7,"},         {7, "Bus,2,"},           {8, "Bus Name,6,"},
    {9, "Bus Member,7,"},          {10, "Wire,1,"},         {11, "Junction,1,"},
    {12, "Net Name,2,"},           {13, "Node Marker,5,"},  {14, "Simvex \"GND\" Marker,5,"},
    {15, "Simvex Node Marker,5,"}, {16, "Grid Line,15,"},   {17, "Grid Cross,15,"},
    {18, "Highlight,4,"},          {28, "Page Link,2,"},    {29, "Format Outline,0,"},
    {30, "Grid Dot,15,"},          {31, "Background,15, "},
};

constexpr int32_t LayoutBackgroundKey = 63;

}  // namespace

ColourSlots::ColourSlots() {
  for (int32_t slot = 0; slot < ColourSlotCount; ++slot)
    slots_[size_t(slot)].Code = slotCode(slot);
}

void ColourSlots::build(KernelStrings& strings) {
  Graphics::G_GetAllRGBColors(0, palette_.data());
  const uint8_t* table = strings.E_SysTable(1);
  for (int32_t slot = 0; slot < ColourSlotCount; ++slot) {
    ColourSlot& s = slots_[size_t(slot)];
    s.ColourNumber = table ? table[slot] : 0;
    s.Rgb = rgbOf(s.ColourNumber);
    s.Code = slotCode(slot);
  }
}

int32_t ColourSlots::rgbOf(int32_t colourNumber) const {
  const uint32_t n = uint32_t(colourNumber) % uint32_t(PaletteSize);
  return int32_t(palette_[n]);
}

void readCategoryGroup(const SystemServices& services, KernelStrings& strings, CategoryGroup group,
                       CategoryTable& table) {
  const bool layout = group == CategoryGroup::Layout;
  std::array<CategoryRow, 32>& rows = layout ? table.Layout : table.Schematic;
  rows.fill(CategoryRow{});
  uint8_t* slotTable = strings.E_SysTable(1);

  const auto read = [&](const CategoryDefault& d) {
    const std::string text =
        services.GetIniString("CATEGORIES", std::to_string(d.key), std::string(d.text));
    if (text.empty())
      return;
    const ParsedList fields = ParseList(text);
    CategoryRow& row = rows[size_t(layout ? d.key - 32 : d.key)];
    row.Name = fields.token(1);
    row.Colour = whole(fields.value(2));
    row.Remark = fields.token(3);
    row.Slot = d.key;
    if (layout && d.key == LayoutBackgroundKey)
      table.LayoutBackground = row.Colour;
    if (slotTable)
      slotTable[d.key] = uint8_t(row.Colour);
  };
  if (layout)
    for (const CategoryDefault& d : LayoutDefaults)
      read(d);
  else
    for (const CategoryDefault& d : SchematicDefaults)
      read(d);
}

}  // namespace tvx
