#include "import/gerber/ApertureLists.h"

namespace tvx {

void ApertureLists::clear() {
  DrawList.clear();
  RoundPadList.clear();
  SquarePadList.clear();
  SpecialList.clear();
  PrimitiveList.clear();
  DefinedDCodes.clear();
  changed();
}

void ApertureLists::clearStandardLists() {
  DrawList.clear();
  RoundPadList.clear();
  SquarePadList.clear();
  // The table's codes go with its rows; codes of special apertures stay defined.
  std::set<int32_t> kept;
  for (const ApertureUse& row : SpecialList)
    if (DefinedDCodes.count(row.DCode))
      kept.insert(row.DCode);
  DefinedDCodes = std::move(kept);
  changed();
}

std::vector<ApertureUse>& ApertureLists::flashList(ApertureListKind kind) {
  switch (kind) {
  case SquareList:
    return SquarePadList;
  case SpecialShapeList:
    return SpecialList;
  default:
    return RoundPadList;
  }
}

void loadApertureTable(ApertureLists& lists, std::span<const ApertureTableRow> table) {
  lists.clear();
  for (const ApertureTableRow& row : table) {
    if (row.LinesD != 0)
      lists.DrawList.push_back({row.LinesD, row.Size, 0});
    if (row.RoundD != 0)
      lists.RoundPadList.push_back({row.RoundD, row.Size, 0});
    if (row.SquareD != 0)
      lists.SquarePadList.push_back({row.SquareD, row.Size, 0});
    for (int32_t code : {row.LinesD, row.RoundD, row.SquareD})
      if (code != 0)
        lists.DefinedDCodes.insert(code);
  }
  lists.changed();
}

int32_t findAperture(const std::vector<ApertureUse>& list, int32_t dCode) {
  for (size_t i = 0; i < list.size(); ++i)
    if (list[i].DCode == dCode)
      return static_cast<int32_t>(i);
  return -1;
}

void NoteApertureUse(ApertureLists& lists, int32_t dCode, int mode, ApertureListKind& listKind,
                     int32_t& index) {
  if (mode == 0) {
    listKind = DrawOrRoundList;
    index = findAperture(lists.DrawList, dCode);
    if (index >= 0)
      return;
    index = static_cast<int32_t>(lists.DrawList.size());
    ApertureUse row{dCode, 0, 0};
    // A code that only a flash list knows draws with that flash's shape; the flash row must then
    // reach the file even when nothing flashes it, so that the drawing pass finds its size.
    if (int32_t square = findAperture(lists.SquarePadList, dCode); square >= 0) {
      listKind = SquareList;
      if (lists.SquarePadList[square].Uses == 0)
        lists.SquarePadList[square].Uses = 1;
    } else if (int32_t special = findAperture(lists.SpecialList, dCode); special >= 0) {
      listKind = SpecialShapeList;
      if (lists.SpecialList[special].Uses == 0)
        lists.SpecialList[special].Uses = 1;
    }
    if (listKind != DrawOrRoundList)
      row.Size = listKind == SquareList ? LinkToSquarePad : LinkToSpecial;
    lists.DrawList.push_back(row);
    return;
  }
  for (ApertureListKind kind : {DrawOrRoundList, SquareList, SpecialShapeList}) {
    index = findAperture(lists.flashList(kind), dCode);
    if (index >= 0) {
      listKind = kind;
      return;
    }
  }
  listKind = DrawOrRoundList;
  index = static_cast<int32_t>(lists.RoundPadList.size());
  lists.RoundPadList.push_back({dCode, 0, 0});
}

}  // namespace tvx
