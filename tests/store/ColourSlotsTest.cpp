// The colour slots of kernel table 1, their fixed roles, and the colour categories of the settings
// that fill the table.
#include "store/LayerTestSupport.h"

namespace tvx {
namespace {

class ColourSlotsTest : public test::LayerTablesFixture {
protected:
  uint8_t* table() { return k.strings.E_SysTable(1); }
  void markTable() { std::fill_n(table(), ColourSlotCount, uint8_t(0xEE)); }
  // Reads the group into a marked table; each row writes its colour to its own slot and a slot
  // without a row keeps the mark. Returns the number of rows.
  int readGroup(CategoryGroup group) {
    markTable();
    readCategoryGroup(services, k.strings, group, categories);
    const bool layout = group == CategoryGroup::Layout;
    const auto& rows = layout ? categories.Layout : categories.Schematic;
    int count = 0;
    for (int32_t i = 0; i < 32; ++i) {
      const int32_t key = layout ? 32 + i : i;
      SCOPED_TRACE(key);
      if (rows[size_t(i)].isEmpty()) {
        EXPECT_EQ(table()[key], 0xEE) << "no row, no write";
        continue;
      }
      ++count;
      EXPECT_EQ(rows[size_t(i)].Slot, key);
      EXPECT_EQ(table()[key], rows[size_t(i)].Colour);
    }
    for (int32_t key = layout ? 0 : 32; key < (layout ? 32 : 64); ++key)
      EXPECT_EQ(table()[key], 0xEE) << "the other group's slot " << key;
    return count;
  }
};

TEST_F(ColourSlotsTest, SlotsFollowTableOneAndNameThemselvesByCode) {
  for (int slot = 0; slot < ColourSlotCount; ++slot)
    table()[slot] = uint8_t((slot * 7 + 3) % PaletteSize);
  colours.build(k.strings);
  for (int32_t slot = 0; slot < ColourSlotCount; ++slot) {
    EXPECT_EQ(colours[slot].ColourNumber, table()[slot]) << slot;
    EXPECT_EQ(uint32_t(colours[slot].Rgb), paletteRgb()[table()[slot]]) << slot;
    EXPECT_EQ(colours[slot].Code, slot < 32 ? 32 + slot : 64 + (slot - 32)) << slot;
  }
  EXPECT_EQ(colours.ClearColour(), colours[60].Code);
  EXPECT_EQ(colours.highlightColour(false), colours[36].Code);
  EXPECT_EQ(colours.highlightColour(true), 12);
  EXPECT_EQ(colours.backgroundColour(), colours[63].Code);
}

TEST_F(ColourSlotsTest, CategoryRowsAreWrittenThroughToTableOne) {
  EXPECT_EQ(readGroup(CategoryGroup::Layout), 11);
  EXPECT_EQ(table()[60], 15) << "the defaults are read";
  colours.build(k.strings);
  EXPECT_EQ(colours[colourslot::ClearColour].ColourNumber, 15);

  // Settings replace rows one by one; an empty row and a key outside the group write nothing.
  setSetting("CATEGORIES", "63", "Background,15,dark room");
  setSetting("CATEGORIES", "61", "\"Outline, board\",5");
  setSetting("CATEGORIES", "36", "");
  setSetting("CATEGORIES", "40", "Not a layout key,9,");
  EXPECT_EQ(readGroup(CategoryGroup::Layout), 10);
  EXPECT_EQ(categories.LayoutBackground, 15);
  EXPECT_EQ(categories.Layout[63 - 32].Remark, "dark room");
  EXPECT_EQ(categories.Layout[61 - 32].Name, "Outline, board");
  EXPECT_EQ(std::vector<uint8_t>(table() + 60, table() + 64), (std::vector<uint8_t>{15, 5, 7, 15}));

  // The schematic group fills the low slots and leaves the layout's alone.
  EXPECT_EQ(readGroup(CategoryGroup::Schematic), 23);
  EXPECT_EQ(categories.Schematic[14].Name, "Simvex \"GND\" Marker");
  EXPECT_EQ(categories.Schematic[31].Remark, " ");
}

}  // namespace
}  // namespace tvx
