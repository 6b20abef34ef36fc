#include "viewer/ViewTables.h"

#include "kernel/KernelStrings.h"
#include "viewer/DisplayUnits.h"

#include <algorithm>

namespace tvx {

namespace {
// The group of a two-unit table: its current-row number followed by its rows.
template <size_t N>
std::span<const int32_t> group(const std::array<int32_t, N>& table, int32_t unit) {
  constexpr size_t half = N / 2;
  return std::span<const int32_t>(table).subspan(unit == displayunit::Millimetre ? half : 0, half);
}

int32_t currentOf(std::span<const int32_t> group) {
  const int32_t row = group[0];
  return row >= 1 && size_t(row) < group.size() ? group[size_t(row)] : 0;
}

template <size_t N>
void copyTable(KernelStrings& strings, int32_t number, std::array<int32_t, N>& to) {
  to.fill(0);
  const uint8_t* table = strings.E_SysTable(number);
  const int32_t bytes = std::min<int32_t>(KernelStrings::tableSize(number), int32_t(N * 4));
  if (table)
    KernelStrings::E_MemCopy(to.data(), table, bytes);
}
}  // namespace

std::span<const int32_t> ViewTables::precisionRows(int32_t unit) const {
  return group(LayPrecision, unit).subspan(1);
}

std::span<const int32_t> ViewTables::gridRows(int32_t unit) const {
  return group(LayGridTable, unit).subspan(1);
}

std::span<const int32_t> ViewTables::angleRows() const {
  return std::span<const int32_t>(AngleTable).subspan(1);
}

int32_t ViewTables::currentPrecisionRow(int32_t unit) const {
  return currentOf(group(LayPrecision, unit));
}

int32_t ViewTables::currentGridStep(int32_t unit) const {
  return currentOf(group(LayGridTable, unit));
}

int32_t ViewTables::currentAngleStep() const { return currentOf(AngleTable); }

int32_t ViewTables::currentPickPixels() const { return currentOf(PickTable); }

int32_t ViewTables::defaultPrecision(int32_t unit) const {
  const int32_t value = currentPrecisionRow(unit);
  return value != 0 ? value : 12700;
}

int32_t ViewTables::wheelPrecision(int32_t unit, int32_t precision, int32_t rotation) const {
  int32_t below = 0, finest = 0, above = 0, coarsest = 0;
  for (int32_t step : precisionRows(unit)) {
    if (step <= 0)
      continue;
    if (finest == 0 || step < finest)
      finest = step;
    coarsest = std::max(coarsest, step);
    if (step < precision)
      below = std::max(below, step);
    if (step > precision && (above == 0 || step < above))
      above = step;
  }
  if (finest == 0)
    return precision;
  if (rotation < 0)
    return below != 0 ? below : finest;
  return above != 0 ? above : coarsest;
}

ViewTables ReadViewTables(KernelStrings& strings) {
  ViewTables tables;
  copyTable(strings, viewtable::Grid, tables.LayGridTable);
  copyTable(strings, viewtable::AlternateGrid, tables.LayGridTableM);
  copyTable(strings, viewtable::Angle, tables.AngleTable);
  copyTable(strings, viewtable::Pick, tables.PickTable);
  copyTable(strings, viewtable::Precision, tables.LayPrecision);
  return tables;
}

}  // namespace tvx
