// The logic of the layer order dialog GBRVIEWER_GIESVC without widgets: the list of listed
// layers with one line each, their selection (= visibility), the current line and its moves up
// and down, the three selection tools, and OK and Cancel.
//
// Every change the user makes is copied into LayerOrder at once and the redraw callback runs, so
// that the picture behind the dialog follows each click. OK keeps the working rows, Cancel puts
// back the rows as they were at FormFill; neither redraws.
#pragma once

#include "store/LayerOrder.h"
#include "store/LayerRecord.h"

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace tvx {

class Store;
class SystemServices;
struct LayerTables;

class LayerOrderModel {
public:
  // One line of the list.
  struct Line {
    std::string Text;  // the layer's DisplayName
    bool Selected = false;
    bool operator==(const Line&) const = default;
  };

  // One tool of the small menu mnuOptions.
  struct OptionTool {
    std::string Key;      // "ATB_SelectAll", ...
    std::string Caption;  // from the catalogue
  };

  using Rows = std::array<LayerOrderRow, LayerCount>;

  // tables holds Layers and LayerOrder and outlives the model; store and services answer what a
  // layer holds and the texts; redraw is the main window's RedrawScreen.
  LayerOrderModel(LayerTables& tables, const Store& store, const SystemServices& services,
                  std::function<void()> redraw);

  // Fills the list from LayerOrder and remembers the rows for Cancel.
  void FormFill();

  // The current line became index with its selection as the list shows it now. Returns the
  // line's selection afterwards: an active layer's line stays selected whatever was clicked.
  // Ignored (returns the line's selection unchanged) while the dialog loads.
  bool lstSearchSeq_Click(int32_t index, bool selected);
  // Exchange the current line with its neighbour above or below; the current line follows.
  // Nothing happens when the button is disabled.
  void cmdUp_Click();
  void cmdDown_Click();
  void ATB_SelectAll();
  void ATB_UnSelectAll();
  void ATB_SelectAllUsed();
  // Runs the tool of a menu key, compared trimmed and in upper case; false for an unknown key.
  bool runTool(std::string_view key);
  void cmdOK_Click();
  void cmdCancel_Click();

  // What the view shows.
  const std::string& title() const { return title_; }
  const std::string& tabCaption() const { return tabCaption_; }
  const std::vector<Line>& lines() const { return lines_; }
  int32_t listIndex() const { return listIndex_; }  // -1 when the list is empty
  bool upEnabled() const { return upEnabled_; }
  bool downEnabled() const { return downEnabled_; }
  bool loading() const { return loading_; }
  const std::vector<OptionTool>& tools() const { return tools_; }

  // The dialog's own arrays, rows numbered from 1 as in LayerOrder.
  const Rows& workingOrder() const { return working_; }
  const Rows& savedOrder() const { return saved_; }
  // The list position of a row (1 to 31), or -1 when the row has no line.
  int32_t ListPosition(int32_t row) const;

private:
  // The row (1 to 31) of a list line, or 0 when no row has it.
  int32_t rowOfLine(int32_t index) const;
  bool rowIsActive(int32_t row) const;
  void updateButtons();
  void moveLine(int32_t from, int32_t to);
  // Sets a line's selection and its row's Visible, an active layer's line always selected.
  void setLineSelection(int32_t index, bool selected);
  // Copies the working rows into LayerOrder and redraws.
  void commit();

  LayerTables& tables_;
  const Store& store_;
  const SystemServices& services_;
  std::function<void()> redraw_;

  std::string title_;
  std::string tabCaption_;
  std::vector<Line> lines_;
  std::vector<OptionTool> tools_;
  Rows working_{};
  Rows saved_{};
  std::array<int32_t, LayerCount> listPosition_{};
  int32_t listIndex_ = -1;
  bool upEnabled_ = false;
  bool downEnabled_ = false;
  bool loading_ = true;
};

}  // namespace tvx
