// The layer commands driven with numbers: choosing the current layer, removing inner layers in
// pairs, adding them back with their data, clearing everything, and what the menu rows show.
#include "support/ItemBuilder.h"

#include "kernel/Kernel.h"
#include "platform/UserPrompts.h"
#include "store/ColourSlots.h"
#include "store/Layers.h"
#include "viewer/LayerCommands.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace tvx::test {
namespace {

class LayerCommandsTest : public ::testing::Test {
protected:
  void SetUp() override {
    colours.build(k.strings);
    build();
    const auto note = [this](const char* what) { return [this, what] { log.push_back(what); }; };
    LayerCommandHooks& h = commands.hooks;
    h.closeLayerProperties = note("closeProperties");
    h.unloadVisibilityWindow = [this] {
      return log.push_back("unloadVisibility"), visibilityLoaded;
    };
    h.showVisibilityWindow = note("showVisibility");
    h.setRedrawBusy = [this](bool busy) { log.push_back(busy ? "busy" : "idle"); };
    h.endTool = note("endTool");
    h.clearUndo = [this](SymbolId s) { log.push_back("clearUndo " + std::to_string(s)); };
    h.reselectKey = note("reselectKey");
    h.redraw = note("redraw");
    h.applySystemSettings = note("applySettings");
    h.selectFunctionOne = note("function1");
    h.startImport = note("import");
  }
  void build() {  // as start-up leaves the tables, layer 1 current
    BuildLayerTables(k.store, services, colours, false, tables);
    commands.InitGIE();
  }
  // The layer rows whose flag (visible: listed, checked: current) is set.
  std::set<int32_t> where(bool LayerEntryState::*flag) const {
    std::set<int32_t> numbers;
    for (int32_t n = 1; n <= LayerCount; ++n)
      if (commands.state().layer(n).*flag)
        numbers.insert(n);
    return numbers;
  }
  bool rowVisible(int32_t layer) const {
    return std::ranges::find(tables.LayerOrder, layer, &LayerOrderRow::LayerNumber)->Visible;
  }

  Kernel k;
  ScriptedPrompts prompts;
  SystemServices services{&prompts};
  ColourSlots colours;
  LayerTables tables;
  LayerCommands commands{k.store, services, tables};
  std::vector<std::string> log;
  bool visibilityLoaded = false;
};

TEST_F(LayerCommandsTest, ChoosingALayer) {
  const uint64_t revision = commands.revision();
  for (int32_t index : {1, 0, 32}) {  // the current layer again, or none: nothing at all
    const LayerTables before = tables;
    commands.M_ActiveCategories_Click(index);
    EXPECT_TRUE(log.empty() && tables.Layers == before.Layers &&
                tables.LayerOrder == before.LayerOrder && commands.revision() == revision)
        << index;
  }
  // Layer 4, hidden in the order window, is exchanged with row 1 and shown; the check moves.
  tables.orderRow(4).Visible = false;
  commands.M_ActiveCategories_Click(4);
  EXPECT_EQ(log, (std::vector<std::string>{"closeProperties", "unloadVisibility", "busy", "endTool",
                                           "clearUndo -76504", "reselectKey", "idle", "redraw"}));
  EXPECT_EQ(std::tuple(commands.WorkingSymbolName, tables.orderRow(1).LayerNumber,
                       tables.orderRow(1).Visible, tables.orderRow(4).LayerNumber,
                       where(&LayerEntryState::checked)),
            std::tuple("$$GIS_CAT-76504", 4, true, 1, std::set<int32_t>{4}));
  visibilityLoaded = true;  // an open visibility window comes back after the redraw
  commands.M_ActiveCategories_Click(31);
  EXPECT_EQ(std::tuple(log.back(), tables.orderRow(1).LayerNumber, tables.orderRow(31).LayerNumber,
                       where(&LayerEntryState::checked), commands.state().modeLayer),
            std::tuple("showVisibility", 31, 4, std::set<int32_t>{31}, 31));
}

TEST_F(LayerCommandsTest, RemovingTakesTheInnerPartner) {
  struct Case {
    int32_t lastListed, current;  // inner layers 7 to lastListed listed
    std::set<int32_t> gone;
    int32_t currentAfter;
  } cases[] = {
      {10, 10, {10}, 9},    // the highest listed: 11 stays unlisted
      {10, 9, {9, 10}, 8},  // the partner 10 was listed, and goes
      {8, 7, {7, 8}, 6},    // down to the outer layers
      {29, 29, {29}, 28},   // the board outline stays
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.current);
    build();
    for (int32_t n = 7; n <= c.lastListed; ++n)
      tables.layer(n).Listed = true;
    commands.M_ActiveCategories_Click(c.current);
    k.store.OA_Add(k.store.S_SymbolItemArray(layerSymbolId(c.current)),
                   k.store.I_MakeItem(Item(ItemLine).size(1000)));
    std::set<int32_t> expected = where(&LayerEntryState::visible);
    for (int32_t n : c.gone)
      expected.erase(n);
    commands.M_RemoveLayer_Click();
    EXPECT_EQ(std::tuple(prompts.shown.back().title, where(&LayerEntryState::visible),
                         where(&LayerEntryState::checked), rowVisible(c.current),
                         rowVisible(c.current + 1)),
              std::tuple("Removing Artwork Layer", expected, std::set<int32_t>{c.currentAfter},
                         false, c.current == 29));
    // The data stays; adding lists the layer again, without making it current.
    commands.M_AddLayer_Click();
    EXPECT_EQ(std::tuple(tables.layer(c.current).Listed, commands.CurrentLayer(),
                         k.store.OA_GetCount(k.store.S_SymbolItemArray(layerSymbolId(c.current)))),
              std::tuple(true, c.currentAfter, 1));
  }
}

TEST_F(LayerCommandsTest, NoChangesNothingYesClearsAllAndAddStopsWhenAllAreListed) {
  commands.M_ActiveCategories_Click(3);
  commands.M_RemoveLayer_Click();  // an outer layer: its entry is hidden and nothing is asked
  EXPECT_TRUE(prompts.shown.empty() && !commands.state().removeLayer.visible);
  tables.layer(7).Listed = tables.layer(8).Listed = true;
  commands.M_ActiveCategories_Click(8);
  const LayerTables before = tables;
  log.clear();
  prompts.answers = {answer::No, answer::No, answer::No};
  commands.M_AddLayer_Click();
  commands.M_RemoveLayer_Click();
  commands.M_New_Click();
  EXPECT_TRUE(prompts.answers.empty() && log.empty() && tables.Layers == before.Layers &&
              tables.LayerOrder == before.LayerOrder);
  commands.M_New_Click();
  EXPECT_EQ(std::tuple(prompts.shown.back().prompt, prompts.shown.back().title, log),
            std::tuple("Clear all layers?", "Viewer",
                       std::vector<std::string>{"applySettings", "function1", "redraw", "import"}));
  for (int32_t n = 9; n <= 29; ++n)  // the first unlisted one each time, until none is left
    commands.M_AddLayer_Click();
  EXPECT_EQ(std::tuple(prompts.shown.back().prompt, commands.state().addLayer.enabled),
            std::tuple("Add " + tables.layer(29).DisplayName, false));
  commands.setCommandsEnabled(false);
  EXPECT_FALSE(commands.state().removeLayer.enabled || commands.state().layer(8).enabled);
}

}  // namespace
}  // namespace tvx::test
