#include "import/readers/window/LayerPropertiesModel.h"

#include "common/LengthFormats.h"
#include "common/ParseList.h"
#include "import/gerber/ApertureLabel.h"
#include "kernel/Palette.h"
#include "platform/SystemServices.h"
#include "store/LayerCatalogue.h"

#include <array>
#include <utility>

namespace tvx {

namespace {

// The captions of the counts, by the index of LayerContents; the last is the drill layer's.
struct ContentsCaption {
  const char* id;
  const char* text;
};
constexpr std::array<ContentsCaption, 12> ContentsCaptions = {{
    {"", ""},
    {"62201", "Lines"},
    {"62289", "Arcs"},
    {"62287", "Filled Rectangles"},
    {"62288", "Open Rectangles"},
    {"62290", "Filled circles"},
    {"62291", "Open circles"},
    {"62292", "Filled triangles"},
    {"62293", "Open triangles"},
    {"62295", "Texts"},
    {"62294", "Polygons"},
    {"62149", "Pad positions"},
}};

GridRow valueRow(std::string key, std::string caption, CellKind kind, std::string value) {
  GridRow row;
  row.Key = std::move(key);
  row.Caption = std::move(caption);
  row.Cell = kind;
  row.Value = std::move(value);
  return row;
}

// A number as the stored colour writes it: a blank before a number that is not negative.
std::string numberText(int32_t value) { return (value >= 0 ? " " : "") + std::to_string(value); }

}  // namespace

LayerPropertiesModel::LayerPropertiesModel(LayerPropertiesOwners owners)
    : store_(owners.store), services_(owners.services), layers_(owners.layers),
      PropertiesLayer_(owners.PropertiesLayer), highlights_(owners.highlights),
      redraw_(std::move(owners.RedrawScreen)), unload_(std::move(owners.unload)),
      clearColourNumber_(owners.clearColourNumber), clearColourCode_(owners.clearColourCode),
      displayUnit_(owners.displayUnit) {}

std::string LayerPropertiesModel::text(const char* defaultText, const char* id) const {
  return services_.LocalMessage(defaultText, id);
}

void LayerPropertiesModel::notify() {
  if (changed)
    changed();
}

LayerRecord* LayerPropertiesModel::layer() {
  if (DialogLayer < 1 || DialogLayer > static_cast<int32_t>(layers_.size()))
    return nullptr;
  return &layers_[size_t(DialogLayer - 1)];
}

bool LayerPropertiesModel::drillLayer() const {
  return DialogLayer >= 1 && DialogLayer <= static_cast<int32_t>(layers_.size()) &&
         layers_[size_t(DialogLayer - 1)].Mask == DrillLayerMask;
}

const std::vector<std::string>& LayerPropertiesModel::list(int32_t which) const {
  static const std::vector<std::string> none;
  return which == propertieslist::Colour ? colourList_ : none;
}

int32_t LayerPropertiesModel::rowOf(const std::string& key) const { return rowOfKey(rows, key); }

void LayerPropertiesModel::FormFill() {
  DialogLayer = PropertiesLayer_;
  const LayerRecord* shown = layer();
  gridCaption = text("Layer properties", "62303");
  caption = gridCaption + " [" + (shown ? shown->DisplayName : "") + "]";
  paletteCaption = text("Palette", "62210");
  headerProperty = text("Property", "62301");
  headerValue = text("Value", "62302");
  colourList_ = {text("Selected from palette", "62281"), text("Use default layer color", "62282")};
}

void LayerPropertiesModel::FormUpdate() {
  DialogLayer = PropertiesLayer_;
  Contents.fill(0);
  ToolList.clear();
  if (LayerRecord* shown = layer()) {
    CountLayerContents(store_, *shown, Contents);
    if (drillLayer())
      ToolList = LayerToolList(store_, *shown);
    else
      CountApertureUses(store_, *shown);
  }
  buildRows();
  notify();
}

void LayerPropertiesModel::buildRows() {
  rows.clear();
  LayerRecord* shown = layer();
  if (!shown)
    return;
  rows.push_back(readOnlyRow(
      valueRow("", text("Import file name", "62283"), CellKind::Text, shown->LastFile)));
  GridRow colour = valueRow("AF_ICL", text("Change display color", "62284"), CellKind::List,
                            colourChoiceText(services_, *shown) + "    ");
  colour.List = propertieslist::Colour;
  colour.Swatch = shown->ColourRgb;
  rows.push_back(std::move(colour));
  rows.push_back(groupRow(text("Layer ", "62285"), text("Contents", "62286")));
  for (int32_t index = 1; index <= contents::Entries; ++index) {
    if (Contents[size_t(index)] < 1)
      continue;
    const ContentsCaption& name = index == contents::Entries && drillLayer()
                                      ? ContentsCaption{"62296", "Drilled holes"}
                                      : ContentsCaptions[size_t(index)];
    rows.push_back(readOnlyRow(valueRow("", text(name.text, name.id), CellKind::Text,
                                        std::to_string(Contents[size_t(index)]))));
  }
  addUseRows(*shown);
}

void LayerPropertiesModel::addUseRows(const LayerRecord& shown) {
  if (drillLayer()) {
    if (ToolList.empty())
      return;
    rows.push_back(groupRow(text("Tool List(Hole Count)", "62297"), text("Diameters", "62298")));
    for (size_t n = 0; n < ToolList.size(); ++n) {
      const LayerToolRow& tool = ToolList[n];
      const std::string label =
          tool.HoleKind != 0 ? ToolLabel(tool.Code) : ApertureLabel(tool.Code);
      rows.push_back(
          valueRow("AF_APH," + std::to_string(n + 1),
                   label + " (" + std::to_string(tool.Count) + ")", CellKind::Number,
                   ShortLengthText(tool.Diameter, displayUnit_, services_.DatabaseUnitsPerMm())));
    }
    return;
  }
  if (shown.Apertures.empty())
    return;
  rows.push_back(groupRow(text("Aperture list", "62299"), text("Count", "62300")));
  for (size_t n = 0; n < shown.Apertures.size(); ++n)
    rows.push_back(readOnlyRow(valueRow("AF_APF," + std::to_string(n + 1), shown.Apertures[n].Text,
                                        CellKind::Text, std::to_string(shown.Apertures[n].Count))));
}

void LayerPropertiesModel::CommitCell(int32_t row, const std::string& cellText) {
  if (row < 0 || row >= static_cast<int32_t>(rows.size()))
    return;
  const std::string key = rows[size_t(row)].Key;
  if (key.empty() || rows[size_t(row)].ReadOnly)
    return;
  CellEdited = false;
  LayerRecord* shown = layer();
  if (cellText.empty() || !shown) {
    FormUpdate();  // the old value is shown again
    return;
  }
  const ParsedList parsed = ParseList(key);
  const std::string first = parsed.token(1);
  const int32_t n = static_cast<int32_t>(parsed.value(2));
  if (first == "AF_ICL") {
    int32_t index = -1;
    for (size_t i = 0; i < colourList_.size(); ++i)
      if (colourList_[i] == cellText)
        index = static_cast<int32_t>(i);
    if (index == 1) {
      changeColour(shown->DefaultColourNumber, shown->DefaultColourRgb);
      return;
    }
    colourPageShown = index == 0;
  } else if (first == "AF_APH" && n >= 1 && n <= static_cast<int32_t>(ToolList.size())) {
    // The diameter stays as it is: the commit only lights the tool's holes.
    highlights_.HLPadstack = ToolList[size_t(n - 1)].Code;
    if (redraw_)
      redraw_();
  }
  FormUpdate();
}

void LayerPropertiesModel::ClickRow(int32_t row) {
  if (row < 0 || row >= static_cast<int32_t>(rows.size()))
    return;
  const ParsedList parsed = ParseList(rows[size_t(row)].Key);
  const std::string first = parsed.token(1);
  const int32_t n = static_cast<int32_t>(parsed.value(2));
  const LayerRecord* shown = layer();
  if (!shown)
    return;
  if (first == "AF_APF" && n >= 1 && n <= static_cast<int32_t>(shown->Apertures.size())) {
    const ApertureRow& aperture = shown->Apertures[size_t(n - 1)];
    if (highlights_.HLDCode == aperture.Code) {
      highlights_.HLDCode = 0;
      highlights_.HLDCodeText.clear();
    } else {
      highlights_.HLDCode = aperture.Code;
      highlights_.HLDCodeText = text("Dcode:", "2940") + " " + aperture.Text;
    }
  } else if (first == "AF_APH" && n >= 1 && n <= static_cast<int32_t>(ToolList.size())) {
    const int32_t code = ToolList[size_t(n - 1)].Code;
    if (highlights_.HLPadstack == code) {
      highlights_.HLPadstack = 0;
      highlights_.HLPadstackText.clear();
    } else {
      highlights_.HLPadstack = code;
      highlights_.HLPadstackText = text("Tool No.", "2939") + " " + ToolLabel(code);
    }
  } else {
    return;
  }
  if (redraw_)
    redraw_();
  notify();
}

void LayerPropertiesModel::PaletteClick(int32_t colour) {
  colourPageShown = false;
  const LayerRecord* shown = layer();
  if (!shown || colour < 0 || colour >= PaletteSize ||
      colourRefused(*shown, colour, clearColourNumber_)) {
    notify();
    return;
  }
  changeColour(colour, static_cast<int32_t>(paletteRgb()[size_t(colour)]));
}

// The colour kept in the settings for the layer, given to its elements and shown.
void LayerPropertiesModel::changeColour(int32_t number, int32_t rgb) {
  LayerRecord* shown = layer();
  if (!shown)
    return;
  shown->ColourNumber = number;
  shown->ColourRgb = rgb;
  // A settings file that cannot take it leaves the colour for this session only.
  int32_t status = 0;
  services_.WriteIniString("LAYERCOLORS", shown->SymbolName,
                           numberText(number) + "," + numberText(rgb), status);
  RecolourLayerElements(store_, *shown, clearColourCode_);
  if (redraw_)
    redraw_();
  FormUpdate();
}

void LayerPropertiesModel::cmdClose() {
  highlights_.clear();
  if (redraw_)
    redraw_();
  if (unload_)
    unload_();
}

}  // namespace tvx
