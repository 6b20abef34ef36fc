// The shared grid look and wheel steps, on a grid that records what is done to it.
#include "common/GridHelpers.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <utility>

namespace tvx {
namespace {

using Cell = std::pair<int32_t, int32_t>;

class FakeGrid : public PropertyGridAccess {
public:
  FakeGrid(int32_t rows, int32_t cols) : rows_(rows), cols_(cols) {}

  int32_t Rows() const override { return rows_; }
  int32_t Cols() const override { return cols_; }
  int32_t CellBackColor(int32_t row, int32_t col) const override {
    check(row, col);
    auto it = back.find({row, col});
    return it == back.end() ? 0xFFFFFF : it->second;
  }
  void SetCellBackColor(int32_t row, int32_t col, int32_t colour) override {
    check(row, col);
    back[{row, col}] = colour;
  }
  void SetCellFontBold(int32_t row, int32_t col, bool bold) override {
    check(row, col);
    if (bold)
      boldCells.insert({row, col});
    else
      boldCells.erase({row, col});
  }
  void SetBackColorFixed(int32_t colour) override { fixedColour = colour; }
  void SetGridLinesFixed(int32_t style) override { fixedLines = style; }
  int32_t TopRow() const override { return top; }
  void SetTopRow(int32_t row) override {
    check(row, 0);
    top = row;
  }
  bool canScroll() const override { return scrollable; }

  std::map<Cell, int32_t> back;
  std::set<Cell> boldCells;
  int32_t fixedColour = 0, fixedLines = 0, top = 0;
  bool scrollable = true;

private:
  void check(int32_t row, int32_t col) const {
    EXPECT_TRUE(row >= 0 && row < rows_ && col >= 0 && col < cols_) << row << "," << col;
  }
  int32_t rows_, cols_;
};

TEST(GridHelpersTest, StyleGridGreysCaptionsAndKeepsGreyedCells) {
  FakeGrid grid(5, 3);
  grid.SetCellBackColor(2, 0, 0xC0C0C0);  // a caption a dialog has greyed
  grid.SetCellBackColor(1, 1, 0x00FF00);
  StyleGrid(grid);
  EXPECT_EQ(std::tuple(grid.fixedColour, grid.fixedLines, grid.boldCells),
            std::tuple(0xD1D1D1, 2, std::set<Cell>{{0, 0}, {0, 1}}));
  EXPECT_EQ(grid.back, (std::map<Cell, int32_t>{{{0, 0}, 0xE6E6E6},
                                                {{1, 0}, 0xE6E6E6},
                                                {{1, 1}, 0x00FF00},
                                                {{2, 0}, 0xC0C0C0},
                                                {{3, 0}, 0xE6E6E6}}))
      << "the last row and the value cells are left as they are";

  FakeGrid narrow(3, 1);  // no second caption to make bold
  StyleGrid(narrow);
  EXPECT_EQ(narrow.boldCells, (std::set<Cell>{{0, 0}}));
  FakeGrid single(1, 2);  // only the fixed look
  StyleGrid(single);
  EXPECT_EQ(std::tuple(single.fixedColour, single.boldCells.size(), single.back.size()),
            std::tuple(0xD1D1D1, 0u, 0u));
}

TEST(GridHelpersTest, ScrollGridStepsOneRowWithinTheGrid) {
  FakeGrid grid(4, 2);
  grid.top = 2;
  const std::pair<int32_t, int32_t> steps[] = {// rotation, top row after it
                                               {120, 1}, {1, 0},  {120, 0}, {-120, 1},
                                               {0, 2},   {-1, 3}, {-1, 3}};
  for (auto [rotation, top] : steps) {
    SCOPED_TRACE(rotation);
    ScrollGrid(grid, rotation);
    EXPECT_EQ(grid.top, top);
  }
  grid.scrollable = false;
  ScrollGrid(grid, 120);
  EXPECT_EQ(grid.top, 3) << "a grid that cannot scroll is left alone";
}

}  // namespace
}  // namespace tvx
