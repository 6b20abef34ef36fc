// Sorting layers into board categories: which pad becomes what, the via question, what is copied
// and how, and the pad list's index against a plain walk of the list.
#include "reconstruct/Reconstruction.h"
#include "kernel/Kernel.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"
#include "reconstruct/PadIndex.h"
#include "store/ColourSlots.h"
#include "store/LayerCatalogue.h"
#include "store/Layers.h"

#include "support/ItemBuilder.h"

#include <gtest/gtest.h>

#include <random>

namespace tvx {
namespace {

using test::Item;

constexpr int32_t Top = 3, Bottom = 4, Mask = 2, Outline = 30, Drill = 31;

// A store with the 31 layers built, and what a run keeps.
struct Board {
  Board() : services(&prompts) {
    colours.build(k.strings);
    BuildLayerTables(k.store, services, colours, false, tables);
  }

  // A pad of code at (x, y) in a layer; on the drill layer its pad stack has a hole of hole.
  void pad(int32_t layer, int32_t x, int32_t y, int32_t code, int32_t hole = 0) {
    const SymbolId symbol = tables.layer(layer).SymbolHandle;
    const MapHandle map = k.store.S_SymbolPadStackMap(symbol);
    if (k.store.OM_Object(map, code) == ObjectHandle::None) {
      const ObjectHandle stack = k.store.S_MakePadStack();
      k.store.OM_Add(map, stack, code);
      k.store.S_ChangePadStackHole(stack, hole, 0);
    }
    k.store.S_ChangePadPadStack(symbol, k.store.S_InsertEntry(symbol, -1, x, y), code);
  }
  void item(int32_t layer, const ItemRecord& record) {
    k.store.OA_AddNewItem(k.store.S_SymbolItemArray(tables.layer(layer).SymbolHandle), record);
  }
  // A flashed round pad of code at (x, y), 1 mm across, drawn as a filled circle.
  void flash(int32_t layer, int32_t x, int32_t y, int32_t code, int32_t colour = 10) {
    item(layer, Item(ItemCircle, attr::Shown | attr::Flashed)
                    .at(x, y)
                    .size(50000)
                    .filled()
                    .link(code)
                    .colour(colour));
  }
  void aperture(int32_t layer, int32_t code) {
    tables.layer(layer).Apertures.push_back({"D" + std::to_string(code) + " Rnd.Pad", true, code});
  }

  bool run() {
    Reconstruction r(k.store, tables.Layers, colours.ClearColour(), &services, prompts, state);
    return r.RunReconstruction();
  }
  SymbolId symbolOf(int32_t category) const { return CategorySymbolBase - category; }
  int32_t items(int32_t category) const {
    return k.store.OA_GetCount(k.store.S_SymbolItemArray(symbolOf(category)));
  }
  // Pads of a category, without its dead entry.
  int32_t pads(int32_t category) const {
    return k.store.OA_GetCount(k.store.S_SymbolEntryArray(symbolOf(category))) - 1;
  }
  ItemRecord itemOf(int32_t category, int32_t index) const {
    ItemRecord r;
    k.store.I_ReadItem(k.store.S_SymbolItem(symbolOf(category), index), r);
    return r;
  }
  int32_t holeOf(int32_t category, int32_t code) const {
    PadStackRecord r;
    k.store.S_ReadPadStack(k.store.OM_Object(k.store.S_SymbolPadStackMap(symbolOf(category)), code),
                           r);
    return r.HoleDiameter;
  }

  Kernel k;
  ScriptedPrompts prompts;
  SystemServices services;
  ColourSlots colours;
  LayerTables tables;
  ReconstructionState state;
};

class ReconstructionTest : public ::testing::Test, public Board {};

TEST_F(ReconstructionTest, PadsAreToldApartBySidesAndHoles) {
  struct Case {
    const char* what;
    int32_t bottomX, bottomY;  // the bottom pad's place; the top pad is at 0, 0
    bool drill;                // a hole at 0, 0
    int32_t thru, smdTop, smdBottom, hole;
  };
  const Case cases[] = {
      {"999 apart in X is one pad", 999, 0, false, 1, 0, 0, 0},
      {"1000 apart in X are two", 1000, 0, false, 0, 1, 1, 0},
      {"999 apart in Y is one pad", 0, -999, false, 1, 0, 0, 0},
      {"1000 apart in Y are two", 0, -1000, false, 0, 1, 1, 0},
      {"a drilled pad on both sides", 0, 0, true, 1, 0, 0, 80000},
      {"a hole turns the top pad of two into a through pad", 5000, 0, true, 1, 0, 1, 80000},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Board b;
    b.pad(Top, 0, 0, 10);
    b.pad(Bottom, c.bottomX, c.bottomY, 11);
    if (c.drill)
      b.pad(Drill, 0, 0, 1, 80000);
    EXPECT_TRUE(b.run());
    EXPECT_EQ(b.pads(category::ThruPads), c.thru);
    EXPECT_EQ(b.pads(category::SmdPadsTop), c.smdTop);
    EXPECT_EQ(b.pads(category::SmdPadsBottom), c.smdBottom);
    if (c.thru) {
      EXPECT_EQ(b.holeOf(category::ThruPads, 10), c.hole) << "the first D-code names the stack";
    }
  }
}

TEST_F(ReconstructionTest, AHoleWithoutAPadLeavesNothingAndALaterHoleFillsThePadStack) {
  pad(Top, 0, 0, 10);
  pad(Bottom, 0, 0, 10);
  pad(Drill, 900000, 0, 1, 80000);
  ASSERT_TRUE(run());
  EXPECT_EQ(pads(category::ThruPads), 1);
  EXPECT_EQ(holeOf(category::ThruPads, 10), 0);
  EXPECT_EQ(state.Report.Holes, 1);
  ASSERT_EQ(state.Report.HolesWithoutPad.size(), 1u);
  EXPECT_DOUBLE_EQ(state.Report.HolesWithoutPad[0].NearestPad, 900000);

  // A second run that keeps what the categories hold adds no second pad on the point, and a
  // drilled pad of the same code elsewhere fills the pad stack's hole.
  state.Options.PadsReplace = false;
  pad(Top, 500000, 0, 10);
  pad(Drill, 500000, 0, 1, 80000);
  ASSERT_TRUE(run());
  EXPECT_EQ(pads(category::ThruPads), 2);
  EXPECT_EQ(holeOf(category::ThruPads, 10), 80000);
}

TEST_F(ReconstructionTest, DrillHitsMatchWithinTheFileStepNearestPadFirst) {
  pad(Top, 0, 0, 10);
  pad(Top, 3000, 0, 11);
  pad(Drill, 2000, 0, 1, 80000);  // 2000 from the first pad, 1000 from the second
  ASSERT_TRUE(run());
  EXPECT_EQ(state.Report.HolesMatched, 0) << "beyond 1000 units without a coarser file";
  tables.layer(Drill).Files.front().CoordinateStep = 2540;  // a 2.3 inch drill file
  ASSERT_TRUE(run());
  EXPECT_EQ(state.Report.HolesMatched, 1);
  EXPECT_EQ(pads(category::ThruPads), 1);
  EXPECT_EQ(holeOf(category::ThruPads, 11), 80000) << "the nearer pad takes the hole";
}

TEST_F(ReconstructionTest, TheViaQuestionComesOnlyWithPadsOnBothSidesAndApertures) {
  struct Case {
    const char* what;
    bool bottom, apertures;
    std::optional<int32_t> answer;  // the row chosen, from 1; none cancels
    bool asked;
    int32_t via, thru;
  };
  const Case cases[] = {
      {"top pads only", false, true, 1, false, 0, 0},
      {"no aperture rows", true, false, 1, false, 0, 2},
      {"cancelled", true, true, std::nullopt, true, 0, 2},
      {"the second row", true, true, 2, true, 1, 1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Board b;
    b.pad(Top, 0, 0, 10);
    b.pad(Top, 500000, 0, 20);
    if (c.bottom) {
      b.pad(Bottom, 0, 0, 10);
      b.pad(Bottom, 500000, 0, 20);
    }
    if (c.apertures) {
      b.aperture(Top, 10);
      b.aperture(Top, 20);
    }
    if (c.answer)
      b.prompts.queryAnswers.push_back({"row", *c.answer});
    ASSERT_TRUE(b.run());
    ASSERT_EQ(b.prompts.queries.size(), c.asked ? 1u : 0u);
    if (c.asked) {
      EXPECT_EQ(b.prompts.queries[0].title, "Via hole pad positions filter");
      EXPECT_EQ(b.prompts.queries[0].mode, 5);
      EXPECT_EQ(b.prompts.queries[0].list.size(), 3u);
    }
    EXPECT_EQ(b.pads(category::ViaPads), c.via);
    EXPECT_EQ(b.pads(category::ThruPads), c.thru);
    if (c.via == 0)
      continue;
    // A run that does not ask keeps the answer of the last one that did.
    b.tables.layer(Top).Apertures.clear();
    ASSERT_TRUE(b.run());
    EXPECT_EQ(b.state.ViaCode, 20);
    EXPECT_EQ(b.pads(category::ViaPads), 1);
  }
}

TEST_F(ReconstructionTest, CopiesLeaveClearAndFlashedElementsOutAndTakeTheLayerCode) {
  const int32_t clear = colours.ClearColour();
  item(Top, Item(ItemLine).at(0, 0).size(1000, 0).pen(100).colour(10));                 // trace
  item(Top, Item(ItemArc).at(0, 0).size(1000, 0).sweep(90000).colour(10));              // trace
  item(Top, Item(ItemLine).at(0, 0).size(1000, 0).colour(clear));                       // clear
  item(Top, Item(ItemLine, attr::Shown | attr::Flashed).size(1000, 0).colour(10));      // a flash
  item(Top, Item(ItemRectangle).size(1000, 1000).colour(10));                           // no trace
  item(Top, Item(ItemLine, attr::Shown | attr::PolygonSide).size(1000, 0).colour(10));  // pour
  item(Bottom, Item(ItemLine, attr::Shown | attr::PolygonSide).size(9, 0).colour(clear));
  item(Outline, Item(ItemLine, attr::Shown | attr::Selected).size(1000, 0).colour(7));
  item(1, Item(ItemLine).size(1000, 0).colour(3));
  ASSERT_TRUE(run());
  EXPECT_EQ(items(category::Traces), 2);
  EXPECT_EQ(itemOf(category::Traces, 1).Colour, tables.layer(Top).LayerCode);
  ASSERT_EQ(items(category::Copper), 1);
  EXPECT_EQ(itemOf(category::Copper, 1).Style, 1);
  EXPECT_EQ(itemOf(category::Copper, 1).Colour, tables.layer(Top).LayerCode);
  ASSERT_EQ(items(category::BoardOutline), 1);
  EXPECT_EQ(itemOf(category::BoardOutline, 1).Attributes, attr::Shown);
  EXPECT_EQ(itemOf(category::BoardOutline, 1).Colour, 12);
  EXPECT_EQ(items(category::BoardCutouts), 0) << "a copy only when asked for";
  EXPECT_EQ(itemOf(category::SilkscreenTop, 1).Colour, tables.layer(1).LayerCode);
}

TEST_F(ReconstructionTest, ReplaceStartsEachCategoryAfreshAndARepeatAddsItemsButNoPads) {
  pad(Top, 0, 0, 10);
  flash(Top, 0, 0, 10);
  item(Outline, Item(ItemLine).size(1000, 0));
  ASSERT_TRUE(run());
  ASSERT_TRUE(run());
  EXPECT_EQ(items(category::BoardOutline), 1);
  EXPECT_EQ(pads(category::SmdPadsTop), 1);
  EntryRecord dead;
  ASSERT_TRUE(k.store.S_ReadEntry(symbolOf(category::SmdPadsTop), 1, dead));
  EXPECT_EQ(dead.Attributes, 0) << "entry 1 of a category is its dead entry";
  EXPECT_EQ(SystemServices::StringFromPointer(
                k.store.O_GetName(k.store.S_Symbol(symbolOf(category::SmdPadsTop)))),
            "$$GIE_CAT-76005");

  state.Options.OutlinesReplace = state.Options.PadsReplace = false;
  ASSERT_TRUE(run());
  EXPECT_EQ(items(category::BoardOutline), 2);
  EXPECT_EQ(items(category::SmdPadStacksTop), 2);
  EXPECT_EQ(pads(category::SmdPadsTop), 1);
}

TEST_F(ReconstructionTest, MarkersOfThePositionCategories) {
  const struct {
    int32_t padKind;
    ItemFields expected;
  } cases[] = {
      {categorypad::Circle, {.Type = ItemCircle, .Width = 63500}},
      {categorypad::Square,
       {.Type = ItemRectangle, .X = -63500, .Y = -63500, .Width = 127000, .Height = 127000}},
      {categorypad::Diamond,
       {.Type = ItemRectangle, .Y = -44901, .Angle = 45000, .Width = 63500, .Height = 63500}},
      {categorypad::FilledSquare,
       {.Type = ItemRectangle,
        .X = -63500,
        .Y = -63500,
        .Style = StyleFilled,
        .Width = 127000,
        .Height = 127000}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.padKind);
    ItemFields expected = c.expected;
    expected.Attributes = attr::Shown;
    expected.LineWidth = 20320;
    expected.Colour = 15;
    EXPECT_EQ(static_cast<ItemFields>(categoryMarker(c.padKind, 15)), expected);
  }
}

TEST_F(ReconstructionTest, AShapeOverTwoPadsGoesByTheFirstAndCopperNeedsItsOwnCode) {
  pad(Top, 0, 0, 10);
  pad(Top, 20000, 0, 11);
  pad(Bottom, 20000, 0, 11);
  flash(Mask, 10000, 0, 99);  // 1 mm across: over both pads, any code fits on the mask
  flash(Top, 20000, 0, 12);   // over the second pad, of another code
  flash(Top, 20000, 0, 11, colours.ClearColour());
  ASSERT_TRUE(run());
  EXPECT_EQ(items(category::SmdPadStacksTop), 1) << "the first pad of the list takes the mask";
  EXPECT_EQ(items(category::ThruPadStacks), 0);
  EXPECT_EQ(itemOf(category::SmdPadStacksTop, 1).Colour, tables.layer(Mask).LayerCode);
}

TEST_F(ReconstructionTest, NothingToSortGivesFalse) {
  EXPECT_FALSE(run());
  item(Top, Item(ItemLine).size(1000, 0));
  state.Options = {
      .Outlines = false, .Silkscreen = false, .Traces = false, .Pads = false, .Copper = false};
  EXPECT_FALSE(run()) << "every option off";
  state.Options.Traces = true;
  EXPECT_TRUE(run());
}

// The index gives what a walk of the list from its start gives.
TEST(PadIndexTest, AnswersAsAWalkOfTheList) {
  std::mt19937 random(7);
  std::uniform_int_distribution<int32_t> place(-3000000, 3000000), size(0, 400000);
  std::vector<PadPosition> pads;
  PadIndex index(pads);
  for (int i = 0; i < 3000; ++i)
    pads.push_back({place(random) / 1000 * 1000, place(random) / 1000 * 1000, i % 7, 0, 1});
  index.update();
  for (int i = 0; i < 2000; ++i) {
    const int32_t x = place(random), y = place(random), tolerance = 1000 + size(random) / 10;
    int32_t first = -1, nearest = -1;
    double best = 1e300;
    for (size_t row = 0; row < pads.size(); ++row) {
      const double dx = double(pads[row].X) - x, dy = double(pads[row].Y) - y;
      if (std::abs(dx) >= tolerance || std::abs(dy) >= tolerance)
        continue;
      if (first < 0)
        first = int32_t(row);
      if (dx * dx + dy * dy < best)
        best = dx * dx + dy * dy, nearest = int32_t(row);
    }
    ASSERT_EQ(index.firstNear(x, y, tolerance), first);
    ASSERT_EQ(index.nearestNear(x, y, tolerance), nearest);

    const FrameRect frame{x, y, x + size(random), y + size(random) * (i % 50 == 0 ? 40 : 1)};
    const auto fits = [&](const PadPosition& p) { return p.PadStack != i % 7; };
    int32_t inFrame = -1;
    for (size_t row = 0; row < pads.size() && inFrame < 0; ++row)
      if (pads[row].X >= frame.MinX && pads[row].X <= frame.MaxX && pads[row].Y >= frame.MinY &&
          pads[row].Y <= frame.MaxY && fits(pads[row]))
        inFrame = int32_t(row);
    ASSERT_EQ(index.firstInFrame(frame, fits), inFrame);
  }
}

}  // namespace
}  // namespace tvx
