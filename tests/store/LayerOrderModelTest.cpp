// The layer order dialog's logic: the list of listed layers, selection as visibility, moving lines
// up and down, the selection tools, and OK and Cancel.
#include "store/LayerOrderModel.h"

#include "store/LayerTestSupport.h"

#include <algorithm>

namespace tvx {
namespace {

class LayerOrderModelTest : public test::LayerTablesFixture {
protected:
  void SetUp() override {
    LayerTablesFixture::SetUp();
    build();
  }
  LayerOrderModel& open() {
    model_ = std::make_unique<LayerOrderModel>(tables, k.store, services, [this] { ++redraws_; });
    model_->FormFill();
    return *model_;
  }
  // The layer numbers of all 31 rows of LayerOrder.
  std::vector<int32_t> order() const {
    std::vector<int32_t> layers;
    for (const LayerOrderRow& row : tables.LayerOrder)
      layers.push_back(row.LayerNumber);
    return layers;
  }
  std::vector<bool> selections() const {
    std::vector<bool> s;
    for (const auto& line : model_->lines())
      s.push_back(line.Selected);
    return s;
  }
  // The expected lines: these layers' captions with these selections.
  std::vector<LayerOrderModel::Line> linesOf(const std::vector<int32_t>& layers,
                                             const std::vector<bool>& selected) const {
    std::vector<LayerOrderModel::Line> lines;
    for (size_t i = 0; i < layers.size(); ++i)
      lines.push_back({tables.layer(layers[i]).DisplayName, selected[i]});
    return lines;
  }
  void listOnly(std::initializer_list<int32_t> layers) {
    for (LayerRecord& l : tables.Layers)
      l.Listed = false;
    for (int32_t layer : layers)
      tables.layer(layer).Listed = true;
  }

  std::unique_ptr<LayerOrderModel> model_;
  int redraws_ = 0;
};

TEST_F(LayerOrderModelTest, FormFillListsTheListedLayersInRowOrder) {
  tables.orderRow(2).Visible = false;
  tables.orderRow(9).Visible = true;  // a row without a line keeps whatever it holds
  const auto before = tables.LayerOrder;
  LayerOrderModel& m = open();

  EXPECT_EQ(m.lines(), linesOf({1, 2, 3, 4, 5, 6, 30, 31}, {1, 0, 1, 1, 1, 1, 1, 1}));
  for (int32_t row = 0; row <= 32; ++row) {
    const int32_t expect = row >= 1 && row <= 6 ? row - 1 : row == 30 ? 6 : row == 31 ? 7 : -1;
    EXPECT_EQ(m.ListPosition(row), expect) << row;
  }
  EXPECT_EQ(std::tuple(m.listIndex(), m.upEnabled(), m.downEnabled(), m.loading()),
            std::tuple(0, false, true, false));
  EXPECT_EQ(std::tuple(m.workingOrder(), m.savedOrder(), tables.LayerOrder, redraws_),
            std::tuple(before, before, before, 0))
      << "filling changes nothing";
  EXPECT_EQ(m.tools().size(), 3u);

  // Texts come from the catalogue; an inner layer listed later gets a line in its row's place.
  useCatalogue("62304\tLagen\n62305\tSichtbarkeit\n62308\tNicht leere\n");
  tables.layer(9).Listed = true;
  open();
  EXPECT_EQ(std::tuple(model_->title(), model_->tabCaption(), model_->tools()[2].Caption),
            std::tuple("Lagen", "Sichtbarkeit", "Nicht leere"));
  EXPECT_EQ(model_->lines(), linesOf({1, 2, 3, 4, 5, 6, 9, 30, 31}, {1, 0, 1, 1, 1, 1, 1, 1, 1}));
  EXPECT_EQ(model_->ListPosition(30), 7);
}

TEST_F(LayerOrderModelTest, EmptyAndSingleLineListsCannotMove) {
  listOnly({});
  LayerOrderModel& m = open();
  EXPECT_EQ(std::tuple(m.lines().size(), m.listIndex()), std::tuple(0u, -1));
  m.cmdUp_Click();
  m.cmdDown_Click();
  EXPECT_EQ(m.lstSearchSeq_Click(0, true), true) << "no line 0: nothing happens";
  EXPECT_EQ(redraws_, 0);

  listOnly({5});
  const auto before = tables.LayerOrder;
  open();
  ASSERT_EQ(model_->lines().size(), 1u);
  EXPECT_FALSE(model_->upEnabled() || model_->downEnabled());
  model_->lstSearchSeq_Click(0, true);
  EXPECT_FALSE(model_->upEnabled() || model_->downEnabled());
  model_->cmdUp_Click();
  model_->cmdDown_Click();
  EXPECT_EQ(std::tuple(tables.LayerOrder, redraws_), std::tuple(before, 1))
      << "only the click redrew";
}

TEST_F(LayerOrderModelTest, UpAndDownExchangeRowsAndSkipRowsWithoutALine) {
  tables.orderRow(6).Visible = false;
  tables.orderRow(2).Visible = false;
  LayerOrderModel& m = open();
  const std::vector<int32_t> start = order();

  // The board outline (row 30, line 6) goes up past the unlisted rows 7 to 29 into row 6; the
  // visibility travels with the layer.
  m.lstSearchSeq_Click(6, true);
  EXPECT_TRUE(m.upEnabled() && m.downEnabled());
  m.cmdUp_Click();
  std::vector<int32_t> expected = start;
  std::swap(expected[5], expected[29]);
  EXPECT_EQ(std::tuple(m.listIndex(), order(), tables.orderRow(6).Visible,
                       tables.orderRow(30).Visible, redraws_),
            std::tuple(5, expected, true, false, 2))
      << "the click and the move redrew";
  EXPECT_EQ(m.lines(), linesOf({1, 2, 3, 4, 5, 30, 6, 31}, {1, 0, 1, 1, 1, 1, 0, 1}));
  EXPECT_EQ(tables.LayerOrder, m.workingOrder());

  // Up to the top; at line 0 Up is disabled and does nothing.
  for (int i = 0; i < 5; ++i)
    m.cmdUp_Click();
  EXPECT_EQ(std::tuple(m.listIndex(), m.upEnabled(), m.downEnabled()), std::tuple(0, false, true));
  const std::vector<int32_t> top = order();
  EXPECT_EQ(std::vector<int32_t>(top.begin(), top.begin() + 6),
            (std::vector<int32_t>{30, 1, 2, 3, 4, 5}));
  EXPECT_FALSE(tables.orderRow(3).Visible) << "layer 2's hidden row moved down with it";
  const int redrawsAtTop = redraws_;
  m.cmdUp_Click();
  EXPECT_EQ(std::tuple(tables.orderRow(1).LayerNumber, redraws_), std::tuple(30, redrawsAtTop));

  // Down to the bottom: Down is disabled on the last line; then up again to where it came from.
  for (int i = 0; i < 7; ++i)
    m.cmdDown_Click();
  EXPECT_EQ(std::tuple(m.listIndex(), m.downEnabled(), tables.orderRow(30).LayerNumber,
                       tables.orderRow(31).LayerNumber),
            std::tuple(7, false, 31, 30));
  m.cmdDown_Click();
  EXPECT_EQ(tables.orderRow(31).LayerNumber, 30);
  m.cmdUp_Click();
  EXPECT_EQ(order(), start);
  EXPECT_EQ(std::count_if(tables.LayerOrder.begin(), tables.LayerOrder.end(),
                          [](const LayerOrderRow& r) { return r.Visible; }),
            6);
}

TEST_F(LayerOrderModelTest, ClicksSetVisibilityButTheActiveLayerStaysVisible) {
  LayerOrderModel& m = open();
  EXPECT_FALSE(m.lstSearchSeq_Click(1, false));
  EXPECT_EQ(
      std::tuple(tables.orderRow(2).Visible, m.workingOrder()[1].Visible, m.listIndex(), redraws_),
      std::tuple(false, false, 1, 1));
  EXPECT_TRUE(m.lstSearchSeq_Click(1, true));
  EXPECT_EQ(std::tuple(tables.orderRow(2).Visible, redraws_), std::tuple(true, 2));

  tables.layer(4).Active = true;
  EXPECT_TRUE(m.lstSearchSeq_Click(3, false)) << "the active layer cannot be hidden";
  EXPECT_EQ(std::tuple(tables.orderRow(4).Visible, m.lines()[3].Selected, redraws_),
            std::tuple(true, true, 3));
  EXPECT_TRUE(m.lstSearchSeq_Click(8, true)) << "no such line";
  EXPECT_FALSE(m.lstSearchSeq_Click(-1, false));
  EXPECT_EQ(std::tuple(redraws_, m.listIndex()), std::tuple(3, 3));
}

TEST_F(LayerOrderModelTest, SelectionToolsKeepTheActiveLayerAndUnlistedRows) {
  tables.layer(3).Active = true;
  tables.orderRow(12).Visible = true;  // unlisted, but drawn
  addItem(5, ItemLine);
  addPad(31, 1, 0, 0, 3);
  LayerOrderModel& m = open();

  m.ATB_UnSelectAll();
  EXPECT_EQ(std::tuple(selections(), redraws_),
            std::tuple(std::vector<bool>{0, 0, 1, 0, 0, 0, 0, 0}, 1));
  for (int32_t row = 1; row <= 31; ++row)
    EXPECT_EQ(tables.orderRow(row).Visible, row == 3 || row == 12) << row;

  m.ATB_SelectAll();
  EXPECT_EQ(
      std::tuple(selections(), tables.orderRow(30).Visible, tables.orderRow(11).Visible, redraws_),
      std::tuple(std::vector<bool>(8, true), true, false, 2));

  // Not empty: layer 5 (an item) and 31 (an entry), and the active layer 3 although empty. The
  // lines follow their layers after a move.
  m.lstSearchSeq_Click(4, true);
  m.cmdUp_Click();  // layer 5 now on line 3, layer 4 on line 4
  m.ATB_SelectAllUsed();
  EXPECT_EQ(m.lines(), linesOf({1, 2, 3, 5, 4, 6, 30, 31}, {0, 0, 1, 1, 0, 0, 0, 1}));
  EXPECT_EQ(std::tuple(tables.orderRow(4).LayerNumber, tables.orderRow(4).Visible,
                       tables.orderRow(12).Visible, redraws_),
            std::tuple(5, true, true, 5));

  // Keys of the menu, trimmed and in any case.
  const std::pair<const char*, long> keys[] = {
      {"  atb_selectall ", 8}, {"ATB_UNSELECTALL", 1}, {"Atb_SelectAllUsed\t", 3}};
  for (const auto& [key, selected] : keys) {
    EXPECT_TRUE(m.runTool(key)) << key;
    EXPECT_EQ(std::ranges::count(selections(), true), selected) << key;
  }
  EXPECT_EQ(redraws_, 8);
  EXPECT_EQ((std::tuple{m.runTool("ATB_SelectNone"), m.runTool(""), redraws_}),
            std::tuple(false, false, 8));
}

TEST_F(LayerOrderModelTest, CancelRestoresTheRowsAndOkKeepsThem) {
  tables.orderRow(5).Visible = false;
  const auto before = tables.LayerOrder;
  LayerOrderModel& m = open();
  m.lstSearchSeq_Click(7, true);
  m.cmdUp_Click();
  m.cmdUp_Click();
  m.ATB_UnSelectAll();
  m.lstSearchSeq_Click(0, true);
  ASSERT_NE(tables.LayerOrder, before);
  EXPECT_EQ(redraws_, 5) << "the picture follows each click";

  m.cmdCancel_Click();
  EXPECT_EQ(std::tuple(tables.LayerOrder, redraws_), std::tuple(before, 5))
      << "the main window redraws after closing";

  // OK keeps what the user made.
  LayerOrderModel& again = open();
  again.lstSearchSeq_Click(0, false);
  again.lstSearchSeq_Click(2, true);
  again.cmdDown_Click();
  const auto working = again.workingOrder();
  tables.LayerOrder = before;  // another part of the viewer changed LayerOrder meanwhile
  again.cmdOK_Click();
  EXPECT_EQ(tables.LayerOrder, working);
  EXPECT_EQ(std::tuple(tables.orderRow(3).LayerNumber, tables.orderRow(4).LayerNumber),
            std::tuple(4, 3));
}

}  // namespace
}  // namespace tvx
