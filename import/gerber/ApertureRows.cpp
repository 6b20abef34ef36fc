#include "import/gerber/ApertureRows.h"

#include "common/LengthFormats.h"
#include "import/gerber/ApertureLabel.h"
#include "platform/SystemServices.h"

namespace tvx {

std::string apertureRowText(const SystemServices& services, int32_t unit, const ApertureUse& use,
                            const char* word, const char* id, bool withSize, int32_t size) {
  std::string row = ApertureLabel(use.DCode) + " " + services.LocalMessage(word, id);
  if (withSize)
    row += LengthText(size, unit, services.DatabaseUnitsPerMm());
  return row;
}

std::vector<ApertureRow> gerberApertureRows(const SystemServices& services, int32_t unit,
                                            const ApertureLists& lists, const std::string& tag) {
  std::vector<ApertureRow> rows;
  const auto add = [&](const ApertureUse& use, std::string rowText) {
    ApertureRow row;
    row.Text = std::move(rowText);
    row.Code = use.DCode;
    row.Selected = !labelExcluded(tag, use.DCode);
    rows.push_back(std::move(row));
  };
  const auto rowText = [&](const ApertureUse& use, const char* word, const char* id, bool withSize,
                           int32_t size) {
    return apertureRowText(services, unit, use, word, id, withSize, size);
  };
  for (const ApertureUse& use : lists.DrawList) {
    if (use.Size >= 0) {
      add(use, rowText(use, "Line    ", "62321", true, use.Size));
    } else if (use.Size == LinkToSquarePad) {
      const ApertureUse* square = nullptr;
      for (const ApertureUse& s : lists.SquarePadList)
        if (s.DCode == use.DCode) {
          square = &s;
          break;
        }
      add(use, rowText(use, "Sqr. ", "62322", square != nullptr, square ? square->Size : 0));
    } else {
      add(use, rowText(use, "Macro ", "62237", false, 0));
    }
  }
  for (const ApertureUse& use : lists.RoundPadList)
    add(use, rowText(use, "Rnd.Pad ", "62323", true, use.Size));
  for (const ApertureUse& use : lists.SquarePadList)
    add(use, rowText(use, "Sqr.Pad ", "62324", true, use.Size));
  for (const ApertureUse& use : lists.SpecialList)
    add(use, rowText(use, "Special ", "62325", false, 0) +
                 specialApertureType(services, use, lists.PrimitiveList));
  return rows;
}

}  // namespace tvx
