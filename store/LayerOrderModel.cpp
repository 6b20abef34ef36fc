#include "store/LayerOrderModel.h"

#include "platform/SystemServices.h"
#include "store/Layers.h"

#include <algorithm>
#include <cctype>

namespace tvx {

namespace {

struct ToolText {
  const char* key;
  const char* caption;
  const char* id;
};
constexpr ToolText OptionTools[] = {
    {"ATB_SelectAll", "Select &All", "62306"},
    {"ATB_UnSelectAll", "&UnSelect All", "62307"},
    {"ATB_SelectAllUsed", "Select &Not Empty", "62308"},
};

std::string trimmedUpper(std::string_view text) {
  const auto blank = [](unsigned char c) { return std::isspace(c) != 0; };
  while (!text.empty() && blank(text.front()))
    text.remove_prefix(1);
  while (!text.empty() && blank(text.back()))
    text.remove_suffix(1);
  std::string upper(text);
  for (char& c : upper)
    c = char(std::toupper(static_cast<unsigned char>(c)));
  return upper;
}

}  // namespace

LayerOrderModel::LayerOrderModel(LayerTables& tables, const Store& store,
                                 const SystemServices& services, std::function<void()> redraw)
    : tables_(tables), store_(store), services_(services), redraw_(std::move(redraw)) {
  listPosition_.fill(-1);
}

void LayerOrderModel::FormFill() {
  loading_ = true;
  title_ = services_.LocalMessage("PCB Layers", "62304");
  tabCaption_ = services_.LocalMessage("Set visibility and display order", "62305");

  lines_.clear();
  for (int32_t row = 1; row <= LayerCount; ++row) {
    const LayerOrderRow& r = tables_.orderRow(row);
    const bool listed =
        r.LayerNumber >= 1 && r.LayerNumber <= LayerCount && tables_.layer(r.LayerNumber).Listed;
    if (!listed) {
      listPosition_[size_t(row - 1)] = -1;
      continue;
    }
    listPosition_[size_t(row - 1)] = int32_t(lines_.size());
    lines_.push_back({tables_.layer(r.LayerNumber).DisplayName, r.Visible});
  }
  working_ = tables_.LayerOrder;
  saved_ = tables_.LayerOrder;
  listIndex_ = lines_.empty() ? -1 : 0;

  tools_.clear();
  for (const ToolText& t : OptionTools)
    tools_.push_back({t.key, services_.LocalMessage(t.caption, t.id)});

  upEnabled_ = downEnabled_ = false;
  loading_ = false;
  if (listIndex_ >= 0)
    updateButtons();
}

int32_t LayerOrderModel::ListPosition(int32_t row) const {
  return row >= 1 && row <= LayerCount ? listPosition_[size_t(row - 1)] : -1;
}

int32_t LayerOrderModel::rowOfLine(int32_t index) const {
  if (index < 0)
    return 0;
  for (int32_t row = 1; row <= LayerCount; ++row)
    if (listPosition_[size_t(row - 1)] == index)
      return row;
  return 0;
}

bool LayerOrderModel::rowIsActive(int32_t row) const {
  const int32_t layer = working_[size_t(row - 1)].LayerNumber;
  return layer >= 1 && layer <= LayerCount && tables_.layer(layer).Active;
}

void LayerOrderModel::updateButtons() {
  upEnabled_ = listIndex_ > 0;
  downEnabled_ = listIndex_ >= 0 && listIndex_ < int32_t(lines_.size()) - 1;
}

void LayerOrderModel::commit() {
  tables_.LayerOrder = working_;
  if (redraw_)
    redraw_();
}

void LayerOrderModel::setLineSelection(int32_t index, bool selected) {
  const int32_t row = rowOfLine(index);
  if (row == 0)
    return;
  if (rowIsActive(row))
    selected = true;  // the active layer cannot be hidden
  lines_[size_t(index)].Selected = selected;
  working_[size_t(row - 1)].Visible = selected;
}

bool LayerOrderModel::lstSearchSeq_Click(int32_t index, bool selected) {
  if (index < 0 || index >= int32_t(lines_.size()))
    return selected;
  if (loading_)
    return lines_[size_t(index)].Selected;
  listIndex_ = index;
  updateButtons();
  setLineSelection(index, selected);
  commit();
  return lines_[size_t(index)].Selected;
}

void LayerOrderModel::moveLine(int32_t from, int32_t to) {
  const int32_t rowFrom = rowOfLine(from);
  const int32_t rowTo = rowOfLine(to);
  if (rowFrom == 0 || rowTo == 0)
    return;
  // Rows without a line between the two stay where they are.
  std::swap(working_[size_t(rowFrom - 1)], working_[size_t(rowTo - 1)]);
  std::swap(lines_[size_t(from)], lines_[size_t(to)]);
  listIndex_ = to;
  updateButtons();
  commit();
}

void LayerOrderModel::cmdUp_Click() {
  if (upEnabled_ && !loading_)
    moveLine(listIndex_, listIndex_ - 1);
}

void LayerOrderModel::cmdDown_Click() {
  if (downEnabled_ && !loading_)
    moveLine(listIndex_, listIndex_ + 1);
}

void LayerOrderModel::ATB_SelectAll() {
  for (int32_t i = 0; i < int32_t(lines_.size()); ++i)
    setLineSelection(i, true);
  commit();
}

void LayerOrderModel::ATB_UnSelectAll() {
  for (int32_t i = 0; i < int32_t(lines_.size()); ++i)
    setLineSelection(i, false);
  commit();
}

void LayerOrderModel::ATB_SelectAllUsed() {
  for (int32_t i = 0; i < int32_t(lines_.size()); ++i) {
    const int32_t row = rowOfLine(i);
    if (row == 0)
      continue;
    bool used = false;
    LayerContentsText(store_, services_, tables_.layer(working_[size_t(row - 1)].LayerNumber),
                      used);
    setLineSelection(i, used);
  }
  commit();
}

bool LayerOrderModel::runTool(std::string_view key) {
  const std::string k = trimmedUpper(key);
  if (k == "ATB_SELECTALL")
    ATB_SelectAll();
  else if (k == "ATB_UNSELECTALL")
    ATB_UnSelectAll();
  else if (k == "ATB_SELECTALLUSED")
    ATB_SelectAllUsed();
  else
    return false;
  return true;
}

void LayerOrderModel::cmdOK_Click() { tables_.LayerOrder = working_; }

void LayerOrderModel::cmdCancel_Click() { tables_.LayerOrder = saved_; }

}  // namespace tvx
