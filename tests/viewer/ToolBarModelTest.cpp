// The bands' model and the dispatcher: one tool on two bands is one tool, the places' eight
// numbers, and which handler a pressed tool reaches.
#include "viewer/ToolBarModel.h"
#include "viewer/ToolDispatcher.h"

#include <gtest/gtest.h>

namespace tvx {
namespace {

TEST(ToolBarModelTest, ATwinIsTheSameToolAndOutlivesItsOtherBand) {
  ToolBarModel bar;
  bar.addBand("B_Tools", "Tools");
  bar.addBand("SB_ToolsProp", "", true);
  bar.addTool("B_Tools", {.Name = "ATB_New", .Caption = "New"});
  bar.addTool("SB_ToolsProp", {.Name = "atb_new", .Caption = "ignored"});
  std::vector<std::string> told;
  bar.toolChanged = [&](const std::string& name) { told.push_back(name); };
  bar.update("ATB_NEW", [](ToolItem& t) { t.Checked = true; });
  EXPECT_EQ(told, std::vector<std::string>{"ATB_New"});
  EXPECT_EQ(bar.tool("atb_new")->Caption, "New") << "the first tool of the name stays";
  EXPECT_TRUE(bar.tool("Atb_New")->Checked);
  EXPECT_EQ(bar.bandOf("ATB_NEW"), "B_Tools");

  bar.clearBand("B_Tools");
  ASSERT_NE(bar.tool("ATB_New"), nullptr) << "still on the twin band";
  EXPECT_EQ(bar.bandOf("ATB_New"), "SB_ToolsProp");
  bar.clearBand("SB_ToolsProp");
  EXPECT_EQ(bar.tool("ATB_New"), nullptr);
  EXPECT_EQ(ToolItem{.Caption = "Zoom"}.shownTip(), "Zoom") << "no tip: the caption";
}

TEST(ToolBarModelTest, APlaceIsEightNumbersWithAKnownArea) {
  const std::pair<const char*, std::optional<BandPlace>> cases[] = {
      {"1,4,0,479,479,19,411,32", BandPlace{1, 4, 0, 479, 479, 19, 411, 32}},
      {"0, 16, 0, 0, -20, 900, 100, 30", BandPlace{0, 16, 0, 0, -20, 900, 100, 30}},
      {"1,4,0,479,479,19,411", std::nullopt},
      {"1,4,0,479,479,19,411,32,5", std::nullopt},
      {"1,3,0,0,0,0,0,0", std::nullopt},
      {"1,4,0,x,0,0,0,0", std::nullopt},
      {"", std::nullopt},
  };
  for (const auto& [text, place] : cases) {
    SCOPED_TRACE(text);
    EXPECT_EQ(BandPlace::parse(text), place);
    if (place) {
      EXPECT_EQ(BandPlace::parse(place->text()), place);
    }
  }
}

TEST(ToolDispatcherTest, ATooolReachesItsHandlerByNameOrByItsBand) {
  ToolBarModel bar;
  for (const char* band : {"FunctionTools", "SB_OptionToolsProp", "SB_ActiveCategories", "B_Tools"})
    bar.addBand(band, "");
  bar.addTool("FunctionTools", {.Name = "3007"});
  bar.addTool("SB_OptionToolsProp", {.Name = "4002"});
  bar.addTool("SB_ActiveCategories", {.Name = "34"});
  bar.addTool("B_Tools", {.Name = "5000"});
  ToolDispatcher dispatcher(bar);
  std::string log;
  ToolDispatchHooks& h = dispatcher.hooks;
  h.busy = [&](bool busy) { log += busy ? "[" : "]"; };
  h.refreshBands = [&] { log += " refresh"; };
  h.named = [&](std::string_view name) { log += std::string(" ") + std::string(name); };
  h.functionKey = [&](int32_t key) { log += " key " + std::to_string(key); };
  h.optionRow = [&](int32_t row) { log += " option " + std::to_string(row); };
  h.layerRow = [&](int32_t layer) { log += " layer " + std::to_string(layer); };
  const std::pair<const char*, const char*> cases[] = {
      {"ATB_ZoomUp", "[ ATB_ZOOMUP refresh]"},
      {"atb_graphicimports", "[ ATB_GRAPHICIMPORTS refresh]"},
      {"3007", "[ key 7 refresh]"},
      {"4002", "[ option 2 refresh]"},
      {"34", "[ layer 3 refresh]"},
      {"5000", "[ refresh]"},         // a number on a band without numbered tools
      {"ATB_Unknown", "[ refresh]"},  // not known: only the frame of the press
  };
  for (const auto& [tool, expected] : cases) {
    log.clear();
    dispatcher.ToolClick(tool);
    EXPECT_EQ(log, expected) << tool;
  }
}

}  // namespace
}  // namespace tvx
