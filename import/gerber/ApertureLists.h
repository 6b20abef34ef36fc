// The aperture lists of the file last scanned: what draws, what flashes round or square pads, the
// special shapes and their primitive rows, each with how often the file used it.
#pragma once

#include <cstdint>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace tvx {

// The Size of a DrawList row whose D-code draws with the shape of a flash: the drawing pass takes
// the size from that list.
enum DrawListLink : int32_t { LinkToSquarePad = -2, LinkToSpecial = -3 };

// One aperture of a list. In DrawList a Size of DrawListLink is a link to another list. In
// SpecialList Size is the number (from 1) of the aperture's first row in PrimitiveList.
struct ApertureUse {
  int32_t DCode = 0;
  int32_t Size = 0;  // store units
  double Uses = 0;

  bool operator==(const ApertureUse&) const = default;
};

// Kinds of PrimitiveRow.
namespace primitive {
inline constexpr int32_t RoundWithHole = 1;
inline constexpr int32_t Rectangle = 2;
inline constexpr int32_t Oval = 3;
inline constexpr int32_t RegularPolygon = 4;
inline constexpr int32_t Macro = 10;
}  // namespace primitive

// One row of a special aperture: a modifier of a standard shape, or one value of a macro
// primitive (Number is the primitive code on a primitive's first row and minus its row count on
// its last).
struct PrimitiveRow {
  int32_t Kind = 0;
  int32_t DCode = 0;
  int32_t Number = 0;
  double Value = 0;
  std::string Text;  // the macro's name, on a macro aperture's first row

  bool operator==(const PrimitiveRow&) const = default;
};

// One row of an aperture table: which D-codes draw lines, flash round pads and flash square pads
// of one size (0 for none).
struct ApertureTableRow {
  int32_t Size = 0;
  int32_t LinesD = 0;
  int32_t RoundD = 0;
  int32_t SquareD = 0;

  bool operator==(const ApertureTableRow&) const = default;
};

// The list that NoteApertureUse found an aperture in.
enum ApertureListKind : int32_t { DrawOrRoundList = 1, SquareList = 2, SpecialShapeList = 3 };

struct ApertureLists {
  std::vector<ApertureUse> DrawList;
  std::vector<ApertureUse> RoundPadList;
  std::vector<ApertureUse> SquarePadList;
  std::vector<ApertureUse> SpecialList;
  std::vector<PrimitiveRow> PrimitiveList;
  // D-codes that a definition gave (the aperture table or an AD block). A code that a file uses
  // without one gets a row of Size 0; this tells the two apart in reports.
  std::set<int32_t> DefinedDCodes;
  // Counts the changes that can move a row or change which row a D-code finds (definitions,
  // clearing, loading), so that a cached list position can tell that it went stale. Rows that
  // NoteApertureUse appends for a code no list holds move nothing and are not counted.
  uint64_t generation = 0;

  void clear();
  // Empties the three standard lists (not SpecialList nor PrimitiveList).
  void clearStandardLists();
  void changed() { ++generation; }

  // The list that a flash found its aperture in.
  std::vector<ApertureUse>& flashList(ApertureListKind kind);
};

// The aperture lists start a pass with the current aperture table: each table row gives a
// DrawList, RoundPadList and SquarePadList row for each of its D-codes, with the row's size and no
// use. SpecialList and PrimitiveList start empty.
void loadApertureTable(ApertureLists& lists, std::span<const ApertureTableRow> table);

// Finds the row of a D-code, adding one when the lists have none. Mode 0 looks in DrawList (a new
// row links to a square or special aperture of the same code); mode 1 looks in RoundPadList,
// SquarePadList and SpecialList in that order. index is the row's position in its list, from 0.
void NoteApertureUse(ApertureLists& lists, int32_t dCode, int mode, ApertureListKind& listKind,
                     int32_t& index);

// The position (from 0) of the first row of a D-code in a list, or -1.
int32_t findAperture(const std::vector<ApertureUse>& list, int32_t dCode);

}  // namespace tvx
