// The kernel's tables of raster steps, angle steps, pick distances and precision steps, as the
// viewer copies them back after the settings have been written into the kernel.
#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace tvx {

class KernelStrings;

// Table numbers of E_SysTable.
namespace viewtable {
inline constexpr int32_t Grid = 5;
inline constexpr int32_t AlternateGrid = 6;
inline constexpr int32_t Angle = 7;
inline constexpr int32_t Pick = 8;
inline constexpr int32_t Precision = 21;
}  // namespace viewtable

// Each group starts with the number of its current row; rows are numbered from 1 behind it. The
// grid and precision tables hold an inch group and then a millimetre group.
struct ViewTables {
  static constexpr int32_t GridRows = 12;
  static constexpr int32_t PrecisionRows = 15;
  static constexpr int32_t AngleRows = 6;
  static constexpr int32_t PickRows = 4;

  std::array<int32_t, 26> LayGridTable{};   // raster steps in store units
  std::array<int32_t, 26> LayGridTableM{};  // alternate raster steps
  std::array<int32_t, 7> AngleTable{};      // rotation steps in thousandths of a degree
  std::array<int32_t, 5> PickTable{};       // pick distances in pixels
  std::array<int32_t, 32> LayPrecision{};   // precision steps in store units per pixel

  // The rows of the display unit's group (any unit but millimetre takes the inch group).
  std::span<const int32_t> precisionRows(int32_t unit) const;
  std::span<const int32_t> gridRows(int32_t unit) const;
  std::span<const int32_t> angleRows() const;

  // The value of the current row; a current row number outside the group reads as a row of 0.
  int32_t currentPrecisionRow(int32_t unit) const;
  int32_t currentGridStep(int32_t unit) const;
  int32_t currentAngleStep() const;
  int32_t currentPickPixels() const;

  // The view's precision before the user chose one: the current precision row, 12700 when that
  // row holds 0.
  int32_t defaultPrecision(int32_t unit) const;

  // The precision step the wheel moves to from precision. A negative rotation takes the nearest
  // step below precision, the finest step when there is none; a zero or positive rotation the
  // nearest step above, the coarsest when there is none. Rows of 0 or less are no steps; without
  // any step precision stays.
  int32_t wheelPrecision(int32_t unit, int32_t precision, int32_t rotation) const;
};

// Copies tables 5, 6, 7, 8 and 21 out of the kernel; a table the kernel lacks reads as zeros.
ViewTables ReadViewTables(KernelStrings& strings);

}  // namespace tvx
