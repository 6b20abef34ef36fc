// The tool bar of the main window without widgets: bands by name, each with its tools in order,
// and tools by name with what the user sees of them (caption, tip, description, picture, check,
// enabled, shown, group start, a combo's text and rows). A view shows it and hands the user's
// acts back as events; the owner answers them.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tvx {

enum class ToolKind {
  Button,    // pressed: a click
  DropDown,  // opens the band of its rows; shows the chosen row's picture
  Combo,     // an editable combo box
  Panel,     // a read-only field the owner fills
};

// Value-initialised, so that designated initialisers may name a few fields.
struct ToolItem {
  std::string Name{};
  ToolKind Kind = ToolKind::Button;
  std::string Caption{};
  std::string ToolTip{};  // a tool without one shows its caption
  std::string Description{};
  std::string Picture{};  // the picture's name, "#n" for cell n of the strip; empty for none
  bool Checkable = false;
  bool Checked = false;
  bool Enabled = true;
  bool Visible = true;
  bool GroupStart = false;  // a separator stands before it
  std::string Category{};   // "FSITOOL" for the function tools
  std::string Rows{};       // a drop-down's band of rows
  std::string ComboText{};
  std::vector<std::string> ComboRows{};
  int32_t Number = 0;  // an option tool's control number, 27 to 36; 0 for none
  // The keys that do what the tool does ("Shift+B", "F3"), shown beside it in menus; the keys
  // themselves are the view's to handle.
  std::string Keys{};

  // What the tool's tip shows.
  const std::string& shownTip() const { return ToolTip.empty() ? Caption : ToolTip; }
};

// Where a band stands: the eight numbers kept for it, in their order.
struct BandPlace {
  int32_t Visible = 1;
  int32_t Area = 4;  // 1 left, 2 right, 4 top, 8 bottom, 16 floating
  int32_t Line = 0;
  int32_t Offset = 0;
  int32_t Left = 0;
  int32_t Top = 0;
  int32_t Width = 0;
  int32_t Height = 0;

  std::string text() const;
  // Eight whole numbers and a known area; none for anything else.
  static std::optional<BandPlace> parse(std::string_view text);
  bool operator==(const BandPlace&) const = default;
};

namespace bandarea {
inline constexpr int32_t Left = 1;
inline constexpr int32_t Right = 2;
inline constexpr int32_t Top = 4;
inline constexpr int32_t Bottom = 8;
inline constexpr int32_t Floating = 16;
}  // namespace bandarea

struct ToolBand {
  std::string Name;
  std::string Caption;
  bool Popup = false;  // a drop-down's rows or a context menu, not a band of the bar
  std::vector<std::string> Tools;
  bool Locked = false;   // cannot be dragged
  bool NewLine = false;  // starts the second line of its area when the bar is built
  BandPlace Place;
};

// What the user does, for the owner to answer. Every hook may be left empty.
struct ToolBarEvents {
  std::function<void(const std::string& tool)> toolClick;
  std::function<void(const std::string& tool)> comboChange;  // a row chosen, Return, or left
  std::function<void(const std::string& tool)> toolEnter;
  std::function<void(const std::string& tool)> toolLeave;
  std::function<void(const std::string& band)> bandClosed;
  std::function<void(const std::string& band)> bandMoved;
};

class ToolBarModel {
public:
  explicit ToolBarModel(std::string name = "atvPostPro") : name_(std::move(name)) {}

  const std::string& name() const { return name_; }
  ToolBand& addBand(const std::string& name, const std::string& caption, bool popup = false);
  // Puts a tool at the end of band. A tool of that name that exists already is listed on band as
  // well: the two are one tool, its twin, so what is set on one is set on both.
  ToolItem& addTool(const std::string& band, const ToolItem& tool);
  // Empties a band; a tool listed on no other band goes.
  void clearBand(const std::string& band);

  // By name, case-blind; nullptr when none.
  ToolItem* tool(std::string_view name);
  const ToolItem* tool(std::string_view name) const;
  ToolBand* band(std::string_view name);
  const ToolBand* band(std::string_view name) const;
  // The first band a tool is listed on; empty for none.
  std::string bandOf(std::string_view tool) const;
  // The bands of the bar in the order they were made.
  const std::vector<std::string>& bands() const { return order_; }

  // Changes a tool's properties and tells the view.
  void update(const std::string& name, const std::function<void(ToolItem&)>& change);
  // The view follows a band's tools or properties after a change of them.
  void bandChanged(const std::string& band);

  ToolBarEvents events;
  // For the view: a tool's properties changed, or a band's list or place.
  std::function<void(const std::string& tool)> toolChanged;
  std::function<void(const std::string& band)> bandUpdated;

private:
  static std::string keyOf(std::string_view name);

  std::string name_;
  std::map<std::string, ToolItem> tools_;  // by upper-cased name
  std::map<std::string, ToolBand> bands_;
  std::vector<std::string> order_;
};

}  // namespace tvx
