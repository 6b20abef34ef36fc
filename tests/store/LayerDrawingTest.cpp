// Drawing the layers: order and visibility, the entries rule, the draw mode and locations, and the
// one-colour view as the device sees it during the drawing and the store keeps it afterwards.
#include "store/LayerTestSupport.h"

#include "store/LayerDrawing.h"

namespace tvx {
namespace {

// A drawing engine that draws nothing and records each S_DrawSymbol: its arguments, the mode and
// the one colour set last, the colours of the symbol's items and pad stack items at that moment,
// and whether both locations were at zero (a free probe item then reads the same placed and plain).
class RecordingGraphics : public Graphics {
public:
  struct Call {
    SymbolId symbol;
    int32_t items, entries, mode;
    std::vector<int32_t> itemColours, padStackColours;
    bool locationsZero;
    std::pair<int32_t, int32_t> oneColour;
  };
  RecordingGraphics(Store& store, KernelStrings& strings)
      : Graphics(store, strings), s(store), probe(s.I_MakeItem({{.Type = ItemLine, .X = 1000}})) {}
  int32_t G_SetDrawMode(int32_t, int32_t m) override {
    mode = m;
    return 1;
  }
  int32_t G_SetOneColour(int32_t, int32_t colour, int32_t clear) override {
    oneColour = {colour, clear};
    return 1;
  }
  int32_t S_DrawSymbol(int32_t, SymbolId id, int32_t items, int32_t entries) override {
    Call call{id, items, entries, mode, {}, {}, false, oneColour};
    addColours(s.S_SymbolItemArray(id), call.itemColours);
    const MapHandle map = s.S_SymbolPadStackMap(id);
    for (int32_t cursor = s.OM_GetFirst(map), key; (key = s.OM_SearchMask(map, &cursor, 0, 0));)
      addColours(s.S_PadStackItemArray(s.OM_Object(map, key)), call.padStackColours);
    ItemRecord plain, placed;
    s.I_ReadItem(probe, plain);
    s.I_ReadItemAbs(probe, placed);
    call.locationsZero = plain == placed;
    calls.push_back(call);
    return 1;
  }
  void addColours(ArrayHandle array, std::vector<int32_t>& colours) const {
    for (int32_t i = 1; i <= s.OA_GetCount(array); ++i) {
      ItemRecord r;
      s.I_ReadItem(s.OA_Object(array, i), r);
      colours.push_back(r.Colour);
    }
  }

  Store& s;
  ObjectHandle probe = ObjectHandle::None;
  int32_t mode = -1;
  std::pair<int32_t, int32_t> oneColour{-1, 0};
  std::vector<Call> calls;
};

class LayerDrawingTest : public test::LayerTablesFixture {
protected:
  void SetUp() override {
    LayerTablesFixture::SetUp();
    build();
    context.clearColour = colours.ClearColour();
  }
  const std::vector<RecordingGraphics::Call>& draw(int32_t layer, bool mono, int32_t colour = 0) {
    recorder.calls.clear();
    DrawLayer(context, 7, 4, tables.layer(layer), 1, 1, mono, colour);
    return recorder.calls;
  }

  RecordingGraphics recorder{k.store, k.strings};
  LayerDrawContext context{recorder, k.store};
};

TEST_F(LayerDrawingTest, RowsAreDrawnFromTheLastToTheFirstVisibleOnly) {
  std::swap(tables.orderRow(1), tables.orderRow(4));  // rows: 4 2 3 1 5 6 7 ... 29 31 30
  std::swap(tables.orderRow(30), tables.orderRow(31));
  tables.orderRow(3).Visible = false;
  tables.orderRow(7).Visible = true;
  tables.orderRow(5).DrawItems = 0;
  k.store.S_SetCompLocation(5000, -3000, 90000, 1);
  k.store.S_SetPadLocation(700, 800, 45000);
  DrawLayers(context, 7, 4, tables.LayerOrder, tables.Layers);

  std::vector<SymbolId> drawn;
  for (const auto& call : recorder.calls) {
    drawn.push_back(call.symbol);
    EXPECT_EQ(call.mode, 4 | 64);
    EXPECT_TRUE(call.locationsZero);
  }
  EXPECT_EQ(drawn, (std::vector<SymbolId>{-76530, -76530, -76531, -76531, -76507, -76506, -76505,
                                          -76501, -76502, -76504}));
  EXPECT_EQ(recorder.calls[6].items, 0) << "the row's item flag";
}

TEST_F(LayerDrawingTest, EntriesOfArtworkLayersOnlyWithPadPositions) {
  const std::tuple<int32_t, bool, bool> cases[] = {
      {3, false, false}, {3, true, true}, {29, true, true}, {30, false, true}, {31, false, true}};
  for (auto [layer, padPositions, entries] : cases) {
    SCOPED_TRACE(::testing::Message() << "layer " << layer << " pads " << padPositions);
    context.padPositions = padPositions;
    recorder.calls.clear();
    DrawLayer(context, 7, 6, tables.layer(layer), 5, 9, false, 0);
    ASSERT_EQ(recorder.calls.size(), entries ? 2u : 1u);
    const RecordingGraphics::Call& c = recorder.calls[0];
    EXPECT_EQ(std::tuple(c.symbol, c.items, c.entries, recorder.calls.back().mode),
              std::tuple(tables.layer(layer).SymbolHandle, 5, 0, 6 | 64));
    EXPECT_TRUE(!entries || (recorder.calls[1].items == 0 && recorder.calls[1].entries == 9));
  }
}

TEST_F(LayerDrawingTest, MonoDrawsItemsInOneColourAndLeavesTheStoreAlone) {
  const int32_t clear = colours.ClearColour();
  const std::vector<int32_t> own = {10, clear, 7, 12 | 128};
  for (int32_t colour : own)
    addItem(3, ItemLine, colour);
  const ObjectHandle pad = addPad(3, 10, 0, 0, 10 | 128);  // not the mono walk's business

  context.padPositions = true;
  for (int32_t mono : {0, 5}) {
    SCOPED_TRACE(mono);
    const auto& calls = draw(3, true, mono);
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[0].oneColour, std::pair(mono, clear)) << "the items in the one colour";
    EXPECT_EQ(calls[1].oneColour.first, -1) << "the entries in their own";
    for (const auto& call : calls)
      EXPECT_EQ(call.itemColours, own);
    EXPECT_EQ(colourOf(pad), 10 | 128);
  }
  EXPECT_EQ(draw(3, false)[0].oneColour.first, -1);
}

TEST_F(LayerDrawingTest, DrillTemplatePadStacksTakeTheLayersColourAndKeepIt) {
  const ObjectHandle first = addPad(31, 1, 0, 0, 17);
  addPad(31, 2, 9000, 0, 3 | 128);
  addItem(31, ItemLine, 4);
  ItemRecord shape, after;
  k.store.I_ReadItem(first, shape);
  tables.layer(31).ColourNumber = 9;
  const auto& calls = draw(31, true);
  ASSERT_EQ(calls.size(), 2u);
  EXPECT_EQ(std::tuple(calls[0].padStackColours, calls[0].itemColours),
            std::tuple(std::vector<int32_t>{9, 9}, std::vector<int32_t>{4}))
      << "items are not touched";
  shape.Colour = 9;
  k.store.I_ReadItem(first, after);
  EXPECT_EQ(after, shape) << "the pad stack items keep the colour and the rest";
  tables.layer(31).ColourNumber = 2;
  draw(31, false);
  EXPECT_EQ(colourOf(first), 9) << "in colour the pad stacks are left alone";
}

}  // namespace
}  // namespace tvx
