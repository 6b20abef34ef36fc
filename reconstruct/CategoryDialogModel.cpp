#include "reconstruct/CategoryDialogModel.h"

#include "platform/SystemServices.h"

#include <array>

namespace tvx {

namespace {

struct OptionRow {
  const char* Key;
  const char* Caption;
  const char* TextId;
  bool CategoryOptions::*Option;
  bool Parent;
};

constexpr const char* RemovePrevious = "Remove previous import";
constexpr const char* RemovePreviousId = "151212";

// The rows in order; each group is a parent followed by its children, and groups are parted by
// an empty row.
constexpr std::array<OptionRow, 12> OptionRows = {{
    {"I_OUTL", "Board outlines", "151210", &CategoryOptions::Outlines, true},
    {"I_OUTCT", "Duplicate in 'Board Cutouts'", "2937", &CategoryOptions::OutlinesCutouts, false},
    {"I_OUTTM", "Duplicate in 'Template Outlines'", "2938", &CategoryOptions::OutlinesTemplate,
     false},
    {"I_OUTLR", RemovePrevious, RemovePreviousId, &CategoryOptions::OutlinesReplace, false},
    {"I_SILK", "Silkscreen", "151211", &CategoryOptions::Silkscreen, true},
    {"I_SILKR", RemovePrevious, RemovePreviousId, &CategoryOptions::SilkscreenReplace, false},
    {"I_TRC", "Traces", "991332", &CategoryOptions::Traces, true},
    {"I_TRCR", RemovePrevious, RemovePreviousId, &CategoryOptions::TracesReplace, false},
    {"I_PAD", "Pads & pads positions", "151213", &CategoryOptions::Pads, true},
    {"I_PADR", RemovePrevious, RemovePreviousId, &CategoryOptions::PadsReplace, false},
    {"I_COP", "Copper pour (polygons only)", "15503", &CategoryOptions::Copper, true},
    {"I_COPR", RemovePrevious, RemovePreviousId, &CategoryOptions::CopperReplace, false},
}};

}  // namespace

CategoryDialogModel::CategoryDialogModel(CategoryOptions& options, const SystemServices* services)
    : options_(options), services_(services) {
  FormUpdate();
}

std::string CategoryDialogModel::text(const char* defaultText, const char* id) const {
  return services_ ? services_->LocalMessage(defaultText, id) : std::string(defaultText);
}

std::string CategoryDialogModel::Title() const { return text("Import to categories", "151216"); }
std::string CategoryDialogModel::CaptionHeading() const {
  return text("Import Category", "151214");
}
std::string CategoryDialogModel::ModeHeading() const { return text("Mode", "151215"); }

void CategoryDialogModel::FormUpdate() {
  rows_.clear();
  bool parentChecked = false;
  for (const OptionRow& option : OptionRows) {
    if (option.Parent) {
      if (!rows_.empty())
        rows_.push_back(GridRow{});  // the empty row between groups
      parentChecked = options_.*option.Option;
    } else if (!parentChecked) {
      continue;
    }
    GridRow row;
    row.Key = option.Key;
    row.Caption = text(option.Caption, option.TextId);
    row.Cell = CellKind::Check;
    row.Checked = options_.*option.Option;
    rows_.push_back(std::move(row));
  }
}

int CategoryDialogModel::CellCommitted(int row, bool checked) {
  if (row < 0 || size_t(row) >= rows_.size() || rows_[size_t(row)].Key.empty())
    return row;
  const std::string key = rows_[size_t(row)].Key;
  for (const OptionRow& option : OptionRows)
    if (key == option.Key)
      options_.*option.Option = checked;
  FormUpdate();
  for (size_t r = 0; r < rows_.size(); ++r)
    if (rows_[r].Key == key)
      return int(r);
  return row;
}

}  // namespace tvx
