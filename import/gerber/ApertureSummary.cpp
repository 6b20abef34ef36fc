#include "import/gerber/ApertureSummary.h"

namespace tvx {

namespace {

ApertureShape specialShape(int32_t kind) {
  switch (kind) {
  case primitive::RoundWithHole:
    return ApertureShape::RoundWithHole;
  case primitive::Rectangle:
    return ApertureShape::Rectangle;
  case primitive::Oval:
    return ApertureShape::Oval;
  case primitive::RegularPolygon:
    return ApertureShape::RegularPolygon;
  case primitive::Macro:
    return ApertureShape::Macro;
  default:
    return ApertureShape::Unknown;
  }
}

}  // namespace

std::vector<ApertureInfo> describeApertures(const ApertureLists& lists) {
  std::vector<ApertureInfo> rows;
  auto base = [&lists](const ApertureUse& use, ApertureRole role) {
    ApertureInfo info;
    info.DCode = use.DCode;
    info.Role = role;
    info.Size = use.Size;
    info.Uses = use.Uses;
    info.Defined = lists.DefinedDCodes.count(use.DCode) > 0;
    return info;
  };
  for (const ApertureUse& use : lists.DrawList) {
    ApertureInfo info = base(use, ApertureRole::Draw);
    if (use.Size == LinkToSquarePad || use.Size == LinkToSpecial) {
      info.Shape =
          use.Size == LinkToSquarePad ? ApertureShape::Square : ApertureShape::LinkedSpecial;
      info.Size = 0;
    }
    rows.push_back(std::move(info));
  }
  for (const ApertureUse& use : lists.RoundPadList)
    rows.push_back(base(use, ApertureRole::RoundPad));
  for (const ApertureUse& use : lists.SquarePadList) {
    ApertureInfo info = base(use, ApertureRole::SquarePad);
    info.Shape = ApertureShape::Square;
    rows.push_back(std::move(info));
  }
  for (const ApertureUse& use : lists.SpecialList) {
    ApertureInfo info = base(use, ApertureRole::SpecialPad);
    info.Size = 0;
    info.Shape = ApertureShape::Unknown;
    if (use.Size >= 1 && size_t(use.Size) <= lists.PrimitiveList.size()) {
      size_t k = size_t(use.Size) - 1;
      const PrimitiveRow& first = lists.PrimitiveList[k];
      info.Shape = specialShape(first.Kind);
      info.MacroName = first.Text;
      for (; k < lists.PrimitiveList.size() && lists.PrimitiveList[k].DCode == use.DCode &&
             lists.PrimitiveList[k].Kind == first.Kind;
           ++k)
        info.Values.push_back(lists.PrimitiveList[k].Value);
    }
    rows.push_back(std::move(info));
  }
  return rows;
}

const char* apertureShapeWord(ApertureShape shape) {
  switch (shape) {
  case ApertureShape::Round:
    return "round";
  case ApertureShape::Square:
    return "square";
  case ApertureShape::RoundWithHole:
    return "round with hole";
  case ApertureShape::Rectangle:
    return "rectangle";
  case ApertureShape::Oval:
    return "oval";
  case ApertureShape::RegularPolygon:
    return "polygon";
  case ApertureShape::Macro:
    return "macro";
  case ApertureShape::LinkedSpecial:
    return "special";
  default:
    return "unknown";
  }
}

const char* apertureRoleWord(ApertureRole role) {
  switch (role) {
  case ApertureRole::Draw:
    return "draw";
  case ApertureRole::RoundPad:
    return "round pad";
  case ApertureRole::SquarePad:
    return "square pad";
  default:
    return "special";
  }
}

}  // namespace tvx
