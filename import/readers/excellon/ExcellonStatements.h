// What a drill file states about its own numbers, in its unit lines and in the comments that CAD
// tools write for it, and what its coordinate strings show when it states nothing.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string_view>

namespace tvx {

// Each value is set only when the file states it; the first statement found wins.
struct StatedFormat {
  std::optional<int32_t> unit;  // 0 inches, 1 millimetres
  std::optional<int32_t> integerDigits;
  std::optional<int32_t> decimalDigits;
  std::optional<int32_t> zeros;  // as ExcellonFormat::OMZeros: 0 under "LZ", 1 under "TZ"
  // An "INCH" or "METRIC" line ahead of the header's "M48": it declares the unit as a header does.
  bool unitLineAhead = false;

  bool operator==(const StatedFormat&) const = default;
};

// Reads, by the first that states a value: a unit line ("INCH" or "METRIC", with ",LZ" or ",TZ"
// and a digit pattern such as "000.000") standing before the first tool selection or coordinate,
// or "M72"/"M71" when there is none; then ";FILE_FORMAT=a:b"; then ";FORMAT={a:b/ absolute /
// inch / suppress trailing zeros}" and "; Format : 3.3 / Absolute / MM / Leading" comments.
// blocks is the file as blocks ("|" closes each), comments its comment lines the same way, both
// upper-cased.
StatedFormat ReadStatedFormat(std::string_view blocks, std::string_view comments);

// What the coordinate strings written without a decimal point show.
struct DigitEvidence {
  int32_t numbers = 0;        // coordinates without a point, other than all zeros
  int32_t widest = 0;         // most digits in one of them
  int32_t leadingZeros = 0;   // of them, those that begin with 0: leading zeros are kept
  int32_t trailingZeros = 0;  // of them, those that end with 0: trailing zeros are kept
};

DigitEvidence GatherDigitEvidence(std::string_view blocks);

// The zero form the evidence shows: 0 when numbers keep leading zeros (left-aligned), 1 when no
// number keeps one but some keep trailing zeros (right-aligned); nothing when it shows neither.
std::optional<int32_t> ZerosShownBy(const DigitEvidence& evidence);

// Tool sizes given only in comments, in millimetres by tool number: ";T01 Holesize 1. = 8.000000
// Tolerance = ... PLATED MILS Quantity = 18" or ";T1 0.800mm". A size without a unit word is in
// the file's unit (fileUnit: 0 inches, 1 millimetres).
std::map<int32_t, double> ToolSizesInComments(std::string_view comments, int32_t fileUnit);

}  // namespace tvx
