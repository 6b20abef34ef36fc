#include "reconstruct/Categories.h"

#include "platform/SystemServices.h"
#include "store/LayerSymbol.h"

#include <cmath>
#include <string_view>

namespace tvx {

namespace {

struct CategoryRow {
  std::string_view KeyName;
  std::string_view TextId;
  std::string_view Caption;
  int32_t Colour;
  int32_t PadKind;
};

constexpr std::array<CategoryRow, category::Count> CategoryTable = {{
    {"GIE_MASTER_BOARD", "62406", "Board Outline", 12, categorypad::None},
    {"GIE_MASTER_CUTOUT", "62407", "Board Cutouts", 13, categorypad::None},
    {"GIE_MASTER_SILKSCREENTOP", "62408", "Silkscreen Comp.Side", 0, categorypad::None},
    {"GIE_MASTER_PMDPADS", "62409", "Thrupads Positions", 15, categorypad::Circle},
    {"GIE_MASTER_SMDPADSTOP", "62410", "SMD Pads Positions Comp.Side", 15, categorypad::Square},
    {"GIE_MASTER_PMDPADSTACKS", "62411", "Thrupads Padstacks", 0, categorypad::None},
    {"GIE_MASTER_SMDPADSTACKSTOP", "62412", "SMD Padstacks Comp.Side ", 0, categorypad::None},
    {"GIE_MASTER_VIAPADS", "62413", "Via Positions", 12, categorypad::FilledSquare},
    {"GIE_MASTER_VIAPADSTACKS", "62414", "Via Padstacks", 0, categorypad::None},
    {"GIE_MASTER_TRACES", "62415", "Trace Master", 0, categorypad::None},
    {"GIE_MASTER_COPPER", "62416", "Copper Planes Master", 0, categorypad::None},
    {"GIE_MASTER_SMDPADSTACKSBTM", "62417", "SMD Padstacks Solder Side", 0, categorypad::None},
    {"GIE_MASTER_SMDPADSBTM", "62418", "SMD Pads Positions Solder Side", 15, categorypad::Diamond},
    {"GIE_MASTER_SILKSCREENBTM", "62419", "Silkscreen Solder Side", 0, categorypad::None},
    {"GIE_MASTER_TEMPLATE", "62420", "Template Outlines", 6, categorypad::None},
}};

constexpr int32_t MarkerHalf = 63500;  // markers are 1.27 mm across
constexpr int32_t MarkerLineWidth = 20320;

}  // namespace

Categories::Categories(const SystemServices* services) {
  for (int32_t number = 1; number <= category::Count; ++number) {
    const CategoryRow& row = CategoryTable[size_t(number - 1)];
    CategoryRecord& record = rows_[size_t(number - 1)];
    record.Mask = int32_t(1u << (number - 1));
    record.SymbolHandle = CategorySymbolBase - number;
    record.Colour = row.Colour;
    record.PadKind = row.PadKind;
    record.KeyName = row.KeyName;
    record.Caption = services
                         ? services->LocalMessage(std::string(row.Caption), std::string(row.TextId))
                         : std::string(row.Caption);
    record.SymbolName = "$$GIE_CAT" + std::to_string(record.SymbolHandle);
  }
}

int32_t Categories::FindCategory(int32_t mask) const {
  for (int32_t number = 1; number <= category::Count; ++number)
    if ((*this)[number].Mask == mask)
      return number;
  return category::Count + 1;
}

void EnsureCategorySymbol(Store& store, const CategoryRecord& record, bool replace) {
  EnsureSymbol(store, record.SymbolHandle, record.SymbolName, replace, true);
}

ItemRecord categoryMarker(int32_t padKind, int32_t colour) {
  ItemRecord item;
  item.Attributes = attr::Shown;
  item.LineWidth = MarkerLineWidth;
  item.Colour = static_cast<uint8_t>(colour);
  item.Style = StyleOpen;
  switch (padKind) {
  case categorypad::Circle:
    item.Type = ItemCircle;
    item.Width = MarkerHalf;
    break;
  case categorypad::Diamond:
    // A square of half the size turned by 45 degrees about its corner, which lies straight
    // below the pad's point: the diamond is centred on the point.
    item.Type = ItemRectangle;
    item.Angle = 45000;
    item.Y = -int32_t(std::lround(MarkerHalf / std::sqrt(2.0)));
    item.Width = item.Height = MarkerHalf;
    break;
  default:  // Square and FilledSquare
    item.Type = ItemRectangle;
    item.X = item.Y = -MarkerHalf;
    item.Width = item.Height = 2 * MarkerHalf;
    item.Style = padKind == categorypad::FilledSquare ? StyleFilled : StyleOpen;
    break;
  }
  return item;
}

}  // namespace tvx
