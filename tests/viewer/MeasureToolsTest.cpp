// The two measuring tools driven through the pointer: what is picked, the distance tool's message
// and its arrows at the 36-pixel threshold, and the alignment by each option of key 8 with its
// undo.
#include "support/ItemBuilder.h"

#include "store/AddElement.h"
#include "viewer/ElementEditor.h"
#include "viewer/MeasureGeometry.h"
#include "viewer/MeasureTools.h"
#include "viewer/Measuring.h"
#include "viewer/PointerTools.h"

#include "RedrawWorld.h"

#include <QImage>
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

namespace tvx::test {
namespace {

constexpr int32_t Mm = 100000;
constexpr int Width = 400;
constexpr int Height = 300;
constexpr int32_t WorkingLayer = 3;
constexpr int32_t TargetLayer = 5;

class MeasureToolsTest : public ::testing::Test, public RedrawWorld {
public:
  void SetUp() override {
    build(Width, Height, Mm / 10);  // 0.1 mm a pixel, 0, 0 in the middle
    view.PickDistance = Mm / 5;
    view.DisplayUnit = displayunit::Millimetre;
    redraw.HighlightColour = 12;
    redraw.MarkerColour = 12;
    tables.CurrentLayer = WorkingLayer;
    for (int32_t row = 1; row <= LayerCount; ++row)
      tables.orderRow(row).Visible = true;
    PointerHooks& p = tools.hooks;
    p.pickElement = [this](int32_t x, int32_t y) { return measure.pickTarget(x, y); };
    p.drawToolFigure = [this](int32_t tool, int32_t shift, int32_t x, int32_t y) {
      measure.drawFigure(tool, shift, x, y);
    };
    p.endMeasuringTool = [this](int32_t tool) { measure.end(tool); };
    p.finishMeasuringTool = [this](int32_t tool, int32_t x, int32_t y) {
      measure.finish(tool, x, y);
    };
    p.functionOneCurrent = [] { return true; };
    p.elementOperation = [this](int32_t x, int32_t y) { editor.ElementClick(x, y); };
    editor.hooks.currentKey = [this] { return key; };
    editor.hooks.startAlignment = [this](int32_t x, int32_t y) { measure.startAlignment(x, y); };
    editor.hooks.startClearance = [this](int32_t x, int32_t y) { measure.startClearance(x, y); };
    measure.hooks.optionChecked = [this](int32_t row) { return row == option; };
    redraw.RedrawScreen();
  }

  SymbolId symbolOf(int32_t layer) const { return tables.layer(layer).SymbolHandle; }
  void add(int32_t layer, ItemRecord record, const std::string& text = {}) {
    int32_t status = 1, index = 0;
    record.Colour = uint8_t(tables.layer(layer).ColourNumber);
    AddElement(kernel.store, status, PlaceSymbolItems, symbolOf(layer), record, text, index, {});
    ASSERT_EQ(status, 0);
  }
  // A pad stack of key 7 in layer whose one item is a disc of the radius at the pad's centre.
  void addPadStack(int32_t layer, int32_t radius, int32_t offsetX = 0) {
    Store& s = kernel.store;
    const ObjectHandle stack = s.S_MakePadStack();
    s.OA_Add(s.S_PadStackItemArray(stack),
             s.I_MakeItem(Item(ItemCircle).at(offsetX, 0).size(radius).filled().colour(15)));
    s.OM_Add(s.S_SymbolPadStackMap(symbolOf(layer)), stack, 7);
  }
  std::array<double, 2> pixelOf(int32_t x, int32_t y) const {
    return {Width / 2 + x / double(Mm / 10) + 0.5, Height / 2 - y / double(Mm / 10) + 0.5};
  }
  void moveTo(int32_t x, int32_t y) {
    const auto [px, py] = pixelOf(x, y);
    tools.ViewPicture_MouseMove(0, 0, px, py);
  }
  void clickAt(int32_t x, int32_t y) {
    const auto [px, py] = pixelOf(x, y);
    tools.ViewPicture_MouseDown(mousebutton::Left, 0, px, py);
    tools.ViewPicture_MouseUp(mousebutton::Left, 0, px, py);
  }
  std::vector<ItemRecord> workingItems() const {
    std::vector<ItemRecord> all;
    const ArrayHandle items = kernel.store.S_SymbolItemArray(symbolOf(WorkingLayer));
    for (int32_t i = 1; i <= kernel.store.OA_GetCount(items); ++i)
      kernel.store.I_ReadItem(kernel.store.OA_Object(items, i), all.emplace_back());
    return all;
  }
  QImage picture() const { return kernel.graphics.shadowImage(view.device())->copy(); }

  PointerTools tools{kernel.graphics, services, view, redraw};
  Measuring measuring{kernel.graphics, services, prompts, view, redraw, tools};
  ElementEditor editor{kernel.store, services, tables, view, redraw};
  MeasureTools measure{kernel.store, kernel.graphics, services,  view,  redraw,
                       tables,       tools,           measuring, editor};
  int32_t option = alignoption::Pad;
  int32_t key = editkey::Align;
};

TEST_F(MeasureToolsTest, PickElementByKind) {
  add(WorkingLayer, Item(ItemLine).at(0, 0).size(2 * Mm, 0).pen(Mm / 10));
  add(WorkingLayer, Item(ItemVectorText).at(0, 5 * Mm).size(Mm, Mm / 2).angle(90000), "AB");
  addPadStack(WorkingLayer, Mm / 2, 2 * Mm);  // the pad's disc lies 2 mm right of its position
  add(WorkingLayer, Item(ItemPadEntry).at(-8 * Mm, -8 * Mm).link(7));
  struct Case {
    const char* name;
    int32_t x, y;
    int32_t status, type, recordX, recordY;
  };
  const Case cases[] = {
      {"a line", Mm, 0, 0, ItemLine, 0, 0},
      {"a text as its frame", -Mm / 10, 5 * Mm + Mm / 10, 0, ItemRectangle, 0, 5 * Mm},
      {"a pad's disc, in world terms", -6 * Mm, -8 * Mm, 0, ItemCircle, -6 * Mm, -8 * Mm},
      {"a pad without its disc there: its position", -8 * Mm, -8 * Mm, 0, ItemPointRecord, -8 * Mm,
       -8 * Mm},
      {"nothing", 10 * Mm, 10 * Mm, 1, 0, 0, 0},
  };
  for (const Case& c : cases) {
    ItemRecord record;
    const int32_t status = measure.PickElement(symbolOf(WorkingLayer), c.x, c.y, record);
    EXPECT_EQ(status, c.status) << c.name;
    if (status != 0)
      continue;
    EXPECT_EQ(record.Type, c.type) << c.name;
    EXPECT_EQ((std::array<int32_t, 2>{record.X, record.Y}),
              (std::array<int32_t, 2>{c.recordX, c.recordY}))
        << c.name;
    if (c.type == ItemRectangle) {
      EXPECT_EQ(record.Angle, 90000) << c.name;
      EXPECT_EQ(record.Style, 0) << c.name;
      EXPECT_GT(record.Width, 0) << c.name;
      EXPECT_GT(record.Height, 0) << c.name;
    }
  }
}

TEST_F(MeasureToolsTest, DistanceMessageAndArrowsAtTheThreshold) {
  add(WorkingLayer, Item(ItemLine).at(-10 * Mm, 0).size(20 * Mm, 0));
  redraw.RedrawScreen();
  const QImage plain = picture();
  struct Case {
    const char* name;
    int32_t y;    // the pointer above the line at x = 1 mm
    bool inside;  // the arrows between the two points
    std::string message;
  };
  const Case cases[] = {
      {"37 pixels: inside", 37 * Mm / 10, true, "Distance = 3.700mm   dX = 0.000mm   dY = 3.700mm"},
      {"36 pixels: outside", 36 * Mm / 10, false,
       "Distance = 3.600mm   dX = 0.000mm   dY = 3.600mm"},
      {"below the line: outside", -2 * Mm, false,
       "Distance = 2.000mm   dX = 0.000mm   dY = -2.000mm"},
  };
  for (const Case& c : cases) {
    tools.armSelectObject();
    clickAt(Mm, 0);
    ASSERT_EQ(tools.ToolCode, toolcode::Distance) << c.name;
    moveTo(Mm, c.y);
    EXPECT_EQ(redraw.MessageLine, c.message) << c.name;
    // 40 pixels beyond each end, on the far side from the other, only the outer lines reach.
    const int32_t away = c.y > 0 ? 1 : -1;
    const auto [bx, by] = pixelOf(Mm, c.y + away * 4 * Mm);
    const auto [ax, ay] = pixelOf(Mm, -away * 4 * Mm);
    const QImage shown = picture();
    EXPECT_EQ(shown.pixel(int(bx), int(by)) != plain.pixel(int(bx), int(by)), !c.inside) << c.name;
    EXPECT_EQ(shown.pixel(int(ax), int(ay)) != plain.pixel(int(ax), int(ay)), !c.inside) << c.name;
    // Escape's option ends the tool at the next move; the picture is as before.
    tools.NoChange = true;
    moveTo(Mm, c.y);
    EXPECT_EQ(tools.ToolCode, toolcode::None) << c.name;
    EXPECT_EQ(picture(), plain) << c.name;
  }
  // Nothing under the click: no tool.
  tools.armSelectObject();
  clickAt(5 * Mm, 5 * Mm);
  EXPECT_EQ(tools.ToolCode, toolcode::None);
}

TEST_F(MeasureToolsTest, AlignmentByEachOptionAndUndo) {
  add(WorkingLayer, Item(ItemCircle).at(Mm, Mm).size(Mm / 2).filled());
  add(WorkingLayer, Item(ItemLine).at(5 * Mm, 5 * Mm).size(2 * Mm, 0));
  addPadStack(TargetLayer, Mm / 2);
  add(TargetLayer, Item(ItemPadEntry).at(10 * Mm, 8 * Mm).link(7));
  add(TargetLayer, Item(ItemLine).at(12 * Mm, 0).size(2 * Mm, 0));
  redraw.RasterStep = Mm / 2;
  struct Case {
    const char* name;
    int32_t option;
    std::array<int32_t, 2> end;  // where the button goes up
    std::array<int32_t, 2> shift;
  };
  const Case cases[] = {
      {"pad", alignoption::Pad, {10 * Mm, 8 * Mm}, {9 * Mm, 7 * Mm}},
      {"near point", alignoption::Near, {138 * Mm / 10, Mm / 20}, {13 * Mm, -Mm}},
      {"middle point", alignoption::Middle, {124 * Mm / 10, 0}, {12 * Mm, -Mm}},
      {"the raster", alignoption::Raster, {404 * Mm / 100, 303 * Mm / 100}, {3 * Mm, 2 * Mm}},
      {"no pad at the end", alignoption::Pad, {-10 * Mm, -10 * Mm}, {0, 0}},
  };
  const std::vector<ItemRecord> before = workingItems();
  for (const Case& c : cases) {
    option = c.option;
    clickAt(Mm, Mm);  // on the circle: the alignment starts at its centre
    ASSERT_EQ(tools.ToolCode, toolcode::Alignment) << c.name;
    EXPECT_EQ((std::array<int32_t, 2>{tools.ToolStartX, tools.ToolStartY}),
              (std::array<int32_t, 2>{Mm, Mm}))
        << c.name;
    // The block is the whole working layer: the circle's left and lower edges to the line's end.
    EXPECT_EQ((std::array<int32_t, 4>{measure.Block.BlockCornerX, measure.Block.BlockCornerY,
                                      measure.Block.BlockWidth, measure.Block.BlockHeight}),
              (std::array<int32_t, 4>{Mm / 2, Mm / 2, 7 * Mm - Mm / 2, 5 * Mm - Mm / 2}))
        << c.name;
    moveTo(2 * Mm, 2 * Mm);
    moveTo(c.end[0], c.end[1]);
    EXPECT_EQ(redraw.MessageLine.rfind("Alignment vector Dx=", 0), 0u) << c.name;
    clickAt(c.end[0], c.end[1]);
    EXPECT_EQ(tools.ToolCode, toolcode::None) << c.name;
    const std::vector<ItemRecord> after = workingItems();
    ASSERT_EQ(after.size(), before.size()) << c.name;
    for (size_t i = 0; i < after.size(); ++i)
      EXPECT_EQ((std::array<int32_t, 2>{after[i].X - before[i].X, after[i].Y - before[i].Y}),
                c.shift)
          << c.name << " element " << i;
    editor.M_Undo_Click();
    EXPECT_EQ(workingItems(), before) << c.name;
  }
}

TEST_F(MeasureToolsTest, ClearanceOfTwoClicksStaysUntilTheThird) {
  key = editkey::Clearance;
  add(WorkingLayer, Item(ItemCircle).at(0, 0).size(Mm).filled());
  add(TargetLayer, Item(ItemLine).at(3 * Mm, -5 * Mm).size(0, 10 * Mm).pen(4 * Mm / 10));
  add(TargetLayer, Item(ItemCircle).at(-4 * Mm, 0).size(2 * Mm));
  // A filled pour from (-2, -2) to (2, 2) mm round the pad: four sides of one polygon.
  const int32_t pour[4][4] = {{-2, -2, 4, 0}, {2, -2, 0, 4}, {2, 2, -4, 0}, {-2, 2, 0, -4}};
  for (int i = 0; i < 4; ++i) {
    const int32_t marks = attr::Shown | attr::PolygonSide | (i == 0 ? attr::PolygonFirst : 0) |
                          (i == 3 ? attr::PolygonLast : 0);
    add(TargetLayer, Item(ItemLine, marks)
                         .at(pour[i][0] * Mm, pour[i][1] * Mm)
                         .size(pour[i][2] * Mm, pour[i][3] * Mm)
                         .filled());
  }
  redraw.RedrawScreen();
  const QImage plain = picture();
  struct Case {
    const char* name;
    std::array<int32_t, 2> second;  // the second click
    std::string message;            // empty: no clearance, the tool has ended
  };
  const Case cases[] = {
      {"a pad to a trace on another layer",
       {3 * Mm, Mm},
       "Clearance = 1.800mm   dX = 1.800mm   dY = 0.000mm"},
      {"a pad beside a ring, leftwards",
       {-6 * Mm, 0},
       "Clearance = 1.000mm   dX = -1.000mm   dY = 0.000mm"},
      {"a pad inside a pour",
       {15 * Mm / 10, 15 * Mm / 10},
       "Clearance = 0.000mm   dX = 0.000mm   dY = 0.000mm"},
      {"nothing at the second click", {10 * Mm, 10 * Mm}, ""},
  };
  for (const Case& c : cases) {
    clickAt(0, 0);
    ASSERT_EQ(tools.ToolCode, toolcode::Distance) << c.name;
    EXPECT_EQ(redraw.MessageLine, "Select the second object") << c.name;
    moveTo(Mm, 2 * Mm);
    EXPECT_EQ(redraw.MessageLine.rfind("Distance = ", 0), 0u) << c.name;
    clickAt(c.second[0], c.second[1]);
    if (c.message.empty()) {
      EXPECT_EQ(tools.ToolCode, toolcode::None) << c.name;
      continue;
    }
    EXPECT_EQ(tools.ToolCode, toolcode::Distance) << c.name;
    EXPECT_EQ(redraw.MessageLine, c.message) << c.name;
    // It stays while the pointer moves; the third click ends it and leaves the picture.
    moveTo(5 * Mm, 5 * Mm);
    EXPECT_EQ(redraw.MessageLine, c.message) << c.name;
    clickAt(5 * Mm, 5 * Mm);
    EXPECT_EQ(tools.ToolCode, toolcode::None) << c.name;
    EXPECT_EQ(picture(), plain) << c.name;
  }
  // A plain distance tool after a clearance measures the pointer again.
  tools.armSelectObject();
  clickAt(0, 0);
  moveTo(3 * Mm, 0);
  EXPECT_EQ(redraw.MessageLine, "Distance = 2.000mm   dX = 2.000mm   dY = 0.000mm");
}

}  // namespace
}  // namespace tvx::test
