#include "viewer/ToolBarModel.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace tvx {

std::string BandPlace::text() const {
  std::string out;
  for (const int32_t value : {Visible, Area, Line, Offset, Left, Top, Width, Height})
    out += (out.empty() ? "" : ",") + std::to_string(value);
  return out;
}

std::optional<BandPlace> BandPlace::parse(std::string_view text) {
  std::array<int32_t, 8> values{};
  size_t n = 0;
  bool atEnd = false;
  while (n < values.size()) {
    const size_t comma = text.find(',');
    std::string_view field = text.substr(0, comma);
    while (!field.empty() && field.front() == ' ')
      field.remove_prefix(1);
    while (!field.empty() && field.back() == ' ')
      field.remove_suffix(1);
    const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), values[n]);
    if (field.empty() || error != std::errc() || end != field.data() + field.size())
      return std::nullopt;
    ++n;
    atEnd = comma == std::string_view::npos;
    if (atEnd)
      break;
    text.remove_prefix(comma + 1);
  }
  if (n != values.size() || !atEnd)
    return std::nullopt;
  BandPlace place{values[0], values[1], values[2], values[3],
                  values[4], values[5], values[6], values[7]};
  const int32_t a = place.Area;
  if (a != bandarea::Left && a != bandarea::Right && a != bandarea::Top && a != bandarea::Bottom &&
      a != bandarea::Floating)
    return std::nullopt;
  return place;
}

std::string ToolBarModel::keyOf(std::string_view name) {
  std::string key(name);
  std::transform(key.begin(), key.end(), key.begin(),
                 [](unsigned char c) { return char(std::toupper(c)); });
  return key;
}

ToolBand& ToolBarModel::addBand(const std::string& name, const std::string& caption, bool popup) {
  auto [it, made] = bands_.try_emplace(keyOf(name));
  if (made)
    order_.push_back(name);
  it->second.Name = name;
  it->second.Caption = caption;
  it->second.Popup = popup;
  return it->second;
}

ToolItem& ToolBarModel::addTool(const std::string& band, const ToolItem& tool) {
  auto [it, made] = tools_.try_emplace(keyOf(tool.Name), tool);
  if (ToolBand* b = this->band(band))
    b->Tools.push_back(it->second.Name);
  return it->second;
}

void ToolBarModel::clearBand(const std::string& name) {
  ToolBand* b = band(name);
  if (!b)
    return;
  const std::vector<std::string> gone = std::move(b->Tools);
  b->Tools.clear();
  for (const std::string& toolName : gone)
    if (bandOf(toolName).empty())
      tools_.erase(keyOf(toolName));
}

ToolItem* ToolBarModel::tool(std::string_view name) {
  const auto it = tools_.find(keyOf(name));
  return it == tools_.end() ? nullptr : &it->second;
}

const ToolItem* ToolBarModel::tool(std::string_view name) const {
  const auto it = tools_.find(keyOf(name));
  return it == tools_.end() ? nullptr : &it->second;
}

ToolBand* ToolBarModel::band(std::string_view name) {
  const auto it = bands_.find(keyOf(name));
  return it == bands_.end() ? nullptr : &it->second;
}

const ToolBand* ToolBarModel::band(std::string_view name) const {
  const auto it = bands_.find(keyOf(name));
  return it == bands_.end() ? nullptr : &it->second;
}

std::string ToolBarModel::bandOf(std::string_view toolName) const {
  const std::string key = keyOf(toolName);
  for (const std::string& name : order_) {
    const ToolBand& b = bands_.at(keyOf(name));
    for (const std::string& t : b.Tools)
      if (keyOf(t) == key)
        return b.Name;
  }
  return {};
}

void ToolBarModel::update(const std::string& name, const std::function<void(ToolItem&)>& change) {
  ToolItem* t = tool(name);
  if (!t)
    return;
  change(*t);
  if (toolChanged)
    toolChanged(t->Name);
}

void ToolBarModel::bandChanged(const std::string& name) {
  if (bandUpdated && band(name))
    bandUpdated(band(name)->Name);
}

}  // namespace tvx
