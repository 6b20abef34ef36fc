// The colour slots of kernel table 1, their fixed roles, and the colour categories of the settings
// that fill the table.
#include "store/LayerTestSupport.h"

namespace tvx {
namespace {

class ColourSlotsTest : public test::LayerTablesFixture {
protected:
  uint8_t* table() { return k.strings.E_SysTable(1); }
  void markTable() { std::fill_n(table(), ColourSlotCount, uint8_t(0xEE)); }
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
  markTable();
  readCategoryGroup(services, k.strings, CategoryGroup::Layout, categories);
  const std::vector<uint8_t> layout = {15, 1, 10, 10, 4, 4, 4};  // keys 32 to 38
  EXPECT_EQ(std::vector<uint8_t>(table() + 32, table() + 39), layout);
  EXPECT_EQ(std::vector<uint8_t>(table() + 60, table() + 64), (std::vector<uint8_t>{15, 10, 7, 0}));
  for (int32_t key : {0, 31, 39, 59})
    EXPECT_EQ(table()[key], 0xEE) << "no row, no write: " << key;
  EXPECT_EQ(categories.Layout[35 - 32].Name, "Comp. Entry (Mirror)");
  EXPECT_EQ(categories.Layout[60 - 32].Slot, 60);
  EXPECT_TRUE(categories.Layout[40 - 32].isEmpty());
  colours.build(k.strings);
  EXPECT_EQ(colours[colourslot::ClearColour].ColourNumber, 15);

  // Settings replace rows one by one; an empty row and a key outside the group write nothing.
  setSetting("CATEGORIES", "63", "Background,15,dark room");
  setSetting("CATEGORIES", "61", "\"Outline, board\",5");
  setSetting("CATEGORIES", "36", "");
  setSetting("CATEGORIES", "40", "Not a layout key,9,");
  markTable();
  readCategoryGroup(services, k.strings, CategoryGroup::Layout, categories);
  EXPECT_EQ(categories.LayoutBackground, 15);
  EXPECT_EQ(categories.Layout[63 - 32].Remark, "dark room");
  EXPECT_EQ(categories.Layout[61 - 32].Name, "Outline, board");
  EXPECT_TRUE(categories.Layout[36 - 32].isEmpty());
  EXPECT_EQ(std::vector<uint8_t>(table() + 60, table() + 64), (std::vector<uint8_t>{15, 5, 7, 15}));
  EXPECT_EQ(table()[36], 0xEE);
  EXPECT_EQ(table()[40], 0xEE);

  // The schematic group fills the low slots and leaves the layout's alone.
  markTable();
  readCategoryGroup(services, k.strings, CategoryGroup::Schematic, categories);
  const std::vector<uint8_t> schematic = {4, 1, 2, 6, 4, 0, 7,  2,  6, 7,
                                          1, 1, 2, 5, 5, 5, 15, 15, 4};
  EXPECT_EQ(std::vector<uint8_t>(table(), table() + 19), schematic);
  EXPECT_EQ(table()[20], 0xEE);
  EXPECT_EQ(table()[31], 15);
  EXPECT_EQ(table()[32], 0xEE);
  EXPECT_EQ(categories.Schematic[14].Name, "Simvex \"GND\" Marker");
  EXPECT_EQ(categories.Schematic[31].Remark, " ");
}

}  // namespace
}  // namespace tvx
