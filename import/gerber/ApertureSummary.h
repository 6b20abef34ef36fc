// The apertures of a scanned file in plain rows, for whoever reports them (the command line's
// info, the apertures display): list, shape, size, modifiers and how often the file used each.
#pragma once

#include "import/gerber/ApertureLists.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tvx {

enum class ApertureRole {
  Draw,        // DrawList: draws lines with Size as width
  RoundPad,    // RoundPadList
  SquarePad,   // SquarePadList
  SpecialPad,  // SpecialList, with primitive rows
};

enum class ApertureShape {
  Round,          // a draw row of its own, or a round pad
  Square,         // a square pad, or a draw row that links to one
  RoundWithHole,  // the special shapes of the standard apertures
  Rectangle,
  Oval,
  RegularPolygon,
  Macro,
  LinkedSpecial,  // a draw row that draws with a special aperture's shape
  Unknown,        // a special row without primitive rows
};

struct ApertureInfo {
  int32_t DCode = 0;
  ApertureRole Role = ApertureRole::Draw;
  ApertureShape Shape = ApertureShape::Round;
  std::string MacroName;       // for Macro
  int32_t Size = 0;            // store units: width, diameter or side; 0 for special rows
  std::vector<double> Values;  // the primitive rows' values of a special aperture, in order
  double Uses = 0;
  bool Defined = false;  // a definition gave the code (table or AD); false for a code used without
};

// Every row of the four lists, in list order: DrawList, RoundPadList, SquarePadList, SpecialList.
std::vector<ApertureInfo> describeApertures(const ApertureLists& lists);

// A short English word for a shape ("round", "square", "macro", ...), for plain-text reports.
const char* apertureShapeWord(ApertureShape shape);
const char* apertureRoleWord(ApertureRole role);

}  // namespace tvx
