// The editor of the working layer driven with world points: what a click names, single and box
// deletes, the cuts of a polyline, and the undo stack of five.
#include "support/ItemBuilder.h"
#include "viewer/RedrawWorld.h"

#include "store/AddElement.h"
#include "store/LayerSymbol.h"
#include "viewer/ElementEditor.h"

#include <gtest/gtest.h>

#include <deque>
#include <tuple>

namespace tvx::test {
namespace {

constexpr int32_t Mm = StoreUnitsPerMm;

class ElementEditorTest : public ::testing::Test {
protected:
  void SetUp() override {
    world.build(400, 300, Mm / 10);  // 40 mm by 30 mm around 0, 0
    world.view.PickDistance = Mm / 5;
    editor.hooks.currentKey = [this] { return key; };
    editor.hooks.confirmAtPointer = [this](const std::string& question) {
      questions.push_back(question);
      const bool yes = popupAnswers.empty() || popupAnswers.front();
      if (!popupAnswers.empty())
        popupAnswers.pop_front();
      return yes;
    };
    editor.hooks.enableUndo = [this](bool enabled) { undoEnabled = enabled; };
    editor.hooks.startBoxDelete = [this](int32_t, int32_t) { boxStarted = true; };
  }
  SymbolId working() const { return editor.WorkingSymbol(); }
  ArrayHandle items() const { return world.kernel.store.S_SymbolItemArray(working()); }
  int32_t add(ItemRecord record, const std::string& text = {}) {
    int32_t status = 1, index = 0;
    record.Colour = uint8_t(world.tables.layer(1).ColourNumber);
    AddElement(world.kernel.store, status, PlaceSymbolItems, working(), record, text, index, {});
    EXPECT_EQ(status, 0);
    return index;
  }
  // A run of sides along y = 0 from x = 0, each 1 mm long, with the given extra attributes.
  void addRun(int32_t sides, int32_t attributes, int32_t link = 0) {
    for (int32_t i = 0; i < sides; ++i) {
      const int32_t marks = (i == 0 ? attr::PolygonFirst : 0) |
                            (i == sides - 1 ? attr::PolygonLast : 0) | attr::PolygonSide;
      add(Item(ItemLine, attr::Shown | marks | attributes).at(i * Mm, 0).size(Mm, 0).link(link));
    }
  }
  std::vector<ItemRecord> records() const {
    std::vector<ItemRecord> all;
    const Store& s = world.kernel.store;
    for (int32_t i = 1; i <= s.OA_GetCount(items()); ++i)
      s.I_ReadItem(s.OA_Object(items(), i), all.emplace_back());
    return all;
  }
  // The first/last marks of the remaining sides, as "F-L" pairs: "F.", "..", ".L" or "FL".
  std::string marks() const {
    std::string out;
    for (const ItemRecord& r : records())
      out += std::string(r.Attributes & attr::PolygonFirst ? "F" : ".") +
             (r.Attributes & attr::PolygonLast ? "L" : ".") + " ";
    return out;
  }

  RedrawWorld world;
  ElementEditor editor{world.kernel.store, world.services, world.tables, world.view, world.redraw};
  int32_t key = editkey::Inspect;
  std::deque<bool> popupAnswers;
  std::vector<std::string> questions;
  bool undoEnabled = false;
  bool boxStarted = false;
};

TEST_F(ElementEditorTest, InspectNamesTheApertureOrToolThatMadeTheElement) {
  world.tables.layer(1).Apertures = {{.Text = "C 0.254", .Code = 10}};
  add(Item(ItemLine).at(0, 0).size(2 * Mm, 0).pen(Mm / 10).link(10));
  add(Item(ItemCircle).at(-10 * Mm, 0).size(Mm).link(0));
  add(Item(ItemLine, attr::Shown | attr::PolygonSide | attr::PolygonFirst | attr::PolygonLast)
          .at(0, 10 * Mm)
          .size(Mm, 0)
          .link(-3));

  editor.Inspect(Mm, 0);
  EXPECT_EQ(world.redraw.HLDCode, 10);
  EXPECT_EQ(world.redraw.HLDCodeText, "Dcode: Line C 0.254");
  editor.Inspect(Mm / 2, 10 * Mm);
  EXPECT_EQ(world.redraw.HLDCode, -3);
  EXPECT_EQ(world.redraw.HLDCodeText, "Polygon");
  editor.Inspect(-10 * Mm, Mm);
  EXPECT_EQ(world.redraw.HLDCode, 0);
  EXPECT_EQ(world.redraw.MessageLine, "Circle Completed");
  // On a pour the element drawn on it is meant; off it, the pour.
  const int32_t sides[][4] = {{10, -10, 4, 0}, {14, -10, 0, 4}, {14, -6, -4, 0}, {10, -6, 0, -4}};
  for (const auto& [sx, sy, dx, dy] : sides)
    add(Item(ItemLine, attr::Shown | attr::PolygonSide | (sx == 10 && sy == -10 ? 16 : 0) |
                           (sy == -6 && sx == 10 ? 32 : 0))
            .at(sx * Mm, sy * Mm)
            .size(dx * Mm, dy * Mm)
            .filled()
            .link(-5));
  add(Item(ItemCircle).at(12 * Mm, -8 * Mm).size(Mm / 2).filled().link(7));
  editor.Inspect(12 * Mm, -8 * Mm);
  EXPECT_EQ(world.redraw.HLDCode, 7);
  editor.Inspect(11 * Mm, -9 * Mm);
  EXPECT_EQ(world.redraw.HLDCode, -5);
  editor.Inspect(12 * Mm, 12 * Mm);  // nothing there: the highlight goes, nothing is said
  EXPECT_EQ(world.redraw.HLDCode, 0);
  EXPECT_EQ(world.redraw.HLDCodeText, "");

  // A hole on the drill layer: its size in the display unit and the D-code or tool it came from.
  Store& s = world.kernel.store;
  world.tables.CurrentLayer = 31;
  for (const auto& [kind, unit, expected] :
       {std::tuple{0, 1, "Holes with diameter 0.800mm[Original Dcode: D12*]"},
        std::tuple{1, 0, "Holes with diameter 0.0315\"Tool: T12"}}) {
    const ObjectHandle stack = s.S_MakePadStack();
    s.S_ChangePadStackHole(stack, 8 * Mm / 10, kind);
    s.OM_Delete(s.S_SymbolPadStackMap(working()), 12);
    s.OM_Add(s.S_SymbolPadStackMap(working()), stack, 12);
    if (s.OA_GetCount(s.S_SymbolEntryArray(working())) == 0)
      add(Item(ItemPadEntry).at(5 * Mm, 5 * Mm).link(12));
    world.view.DisplayUnit = unit;
    editor.Inspect(5 * Mm, 5 * Mm);
    EXPECT_EQ(world.redraw.HLPadstack, 12);
    EXPECT_EQ(world.redraw.HLDCode, 0);
    EXPECT_EQ(world.redraw.HLPadstackText, expected);
  }
}

TEST_F(ElementEditorTest, FiveDeletesUndoStepByStepAndASixthDropsTheOldest) {
  key = editkey::Delete;
  for (int32_t i = 0; i < 6; ++i)
    add(Item(ItemCircle).at(i * 3 * Mm, 0).size(Mm).filled().link(i + 10));
  std::vector<std::vector<ItemRecord>> states{records()};
  for (int32_t i = 0; i < 6; ++i) {
    editor.ElementClick(i * 3 * Mm, 0);
    states.push_back(records());
    EXPECT_EQ(states.back().size(), size_t(5 - i));
  }
  EXPECT_EQ(editor.UndoDepth, 5);
  for (int32_t i = 5; i >= 1; --i) {
    EXPECT_TRUE(undoEnabled);
    editor.M_Undo_Click();
    EXPECT_EQ(records(), states[size_t(i)]) << "after undo to state " << i;
  }
  EXPECT_FALSE(undoEnabled);
  editor.M_Undo_Click();  // depth 0: nothing
  EXPECT_EQ(records(), states[1]);
  EXPECT_EQ(questions, std::vector<std::string>(6, "Delete element?"));

  // No to the question changes nothing and takes no copy; a click on nothing starts the box.
  popupAnswers = {false};
  editor.ElementClick(3 * Mm, 0);
  EXPECT_EQ(records(), states[1]);
  EXPECT_EQ(editor.UndoDepth, 0);
  editor.ElementClick(-15 * Mm, 0);
  EXPECT_TRUE(boxStarted);
}

TEST_F(ElementEditorTest, PolylinesAreCutAtTheSideOrGoWhole) {
  key = editkey::Delete;
  struct Case {
    int32_t side;  // 0-based side of a four-side chain that is clicked
    std::deque<bool> answers;
    const char* remaining;
  };
  for (const Case& c : {Case{1, {true, true}, "FL F. .L "}, Case{0, {true, true}, "F. .. .L "},
                        Case{3, {true, true}, "F. .. .L "}, Case{2, {true, false}, ""}}) {
    EnsureLayerSymbol(world.kernel.store, world.tables.layer(1), true);
    addRun(4, attr::OpenChain);
    popupAnswers = c.answers;
    editor.ElementClick(c.side * Mm + Mm / 2, 0);
    EXPECT_EQ(marks(), c.remaining) << "side " << c.side;
  }
  // A closed polygon goes whole without the second question; a text marked as a chain stays.
  EnsureLayerSymbol(world.kernel.store, world.tables.layer(1), true);
  addRun(3, 0);
  add(Item(ItemVectorText).at(0, 5 * Mm).size(Mm, Mm), "REF");
  questions.clear();
  editor.ElementClick(Mm / 2, 0);
  editor.ElementClick(Mm / 2, 5 * Mm + Mm / 2);
  EXPECT_EQ(questions, std::vector<std::string>(2, "Delete element?"));
  ASSERT_EQ(records().size(), 1u);
  EXPECT_EQ(records()[0].Text, "REF");
}

TEST_F(ElementEditorTest, TheBoxTakesWhatLiesWhollyInsideAndNoBringsItBack) {
  add(Item(ItemCircle).at(0, 0).size(Mm).filled().link(1));  // inside
  add(Item(ItemLine).at(0, 0).size(20 * Mm, 0).link(2));     // half inside
  addRun(3, 0, 3);                                           // 0..3 mm: inside
  add(Item(ItemPadEntry).at(2 * Mm, 2 * Mm).link(4));        // inside
  add(Item(ItemPadEntry).at(12 * Mm, 2 * Mm).link(4));       // outside
  const FrameRect box{-2 * Mm, -2 * Mm, 5 * Mm, 5 * Mm};
  const std::vector<ItemRecord> before = records();
  world.redraw.RedrawScreen();
  const QImage picture = *world.kernel.graphics.shadowImage(world.view.device());

  world.prompts.answers = {answer::No};
  EXPECT_FALSE(editor.DeleteInBox(working(), box));
  EXPECT_EQ(records(), before);
  EXPECT_EQ(editor.UndoDepth, 1) << "the copy stays after No";
  EXPECT_EQ(*world.kernel.graphics.shadowImage(world.view.device()), picture);

  world.prompts.answers = {answer::Yes};
  EXPECT_TRUE(editor.DeleteInBox(working(), box));
  ASSERT_EQ(records().size(), 1u);
  EXPECT_EQ(records()[0].Link, 2);
  Store& s = world.kernel.store;
  EXPECT_EQ(s.OA_GetCount(s.S_SymbolEntryArray(working())), 1);
  EXPECT_EQ(s.OA_SearchMask(items(), 1, attr::Selected), 0);
  EXPECT_EQ(s.OA_SearchMask(s.S_SymbolEntryArray(working()), 1, attr::Selected), 0);
  EXPECT_EQ(world.prompts.shown.back().prompt, "Delete Selected items");

  world.redraw.RedrawScreen();
  EXPECT_NE(*world.kernel.graphics.shadowImage(world.view.device()), picture) << "nothing drawn";
  // Undo gives the same picture as before the delete.
  editor.M_Undo_Click();
  EXPECT_EQ(records(), before);
  EXPECT_EQ(*world.kernel.graphics.shadowImage(world.view.device()), picture);
}

}  // namespace
}  // namespace tvx::test
