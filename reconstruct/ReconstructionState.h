// What the sorting into board categories keeps from one run to the next: the user's choices,
// the via pads' D-code and the pads found by the last run. The main window owns one for as long
// as the component lives.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tvx {

// What a run sorts, and whether it first empties each category ("Remove previous import").
struct CategoryOptions {
  bool Outlines = true;
  bool OutlinesReplace = true;
  bool OutlinesCutouts = false;
  bool OutlinesTemplate = false;
  bool Silkscreen = true;
  bool SilkscreenReplace = true;
  bool Traces = true;
  bool TracesReplace = true;
  bool Pads = true;
  bool PadsReplace = true;
  bool Copper = true;
  bool CopperReplace = true;
  bool Confirmed = false;  // the dialog was left with OK
};

// Sides of a pad position.
namespace padside {
inline constexpr int32_t Top = 1;
inline constexpr int32_t Bottom = 2;
inline constexpr int32_t Both = Top | Bottom;
}  // namespace padside

// A pad found on the top or bottom copper, or both.
struct PadPosition {
  int32_t X = 0;
  int32_t Y = 0;
  int32_t PadStack = 0;  // the D-code of its first flash
  int32_t Hole = 0;      // the diameter of the drill hit on it; 0 until one is matched
  int32_t Sides = 0;     // padside bits
};

// A drill hit that no pad lies under, and how far the nearest pad is.
struct UnmatchedHole {
  int32_t X = 0;
  int32_t Y = 0;
  double NearestPad = -1;  // store units; -1 when there is no pad at all
};

// What the last run did, for the report and the message line.
struct ReconstructionReport {
  std::vector<std::pair<std::string, int32_t>> Counts;  // caption, elements, per category
  int32_t Holes = 0;                                    // drill hits looked at
  int32_t HolesMatched = 0;
  std::vector<UnmatchedHole> HolesWithoutPad;
  int32_t Tolerance = 0;  // how far a drill hit may lie from its pad, store units
};

struct ReconstructionState {
  CategoryOptions Options;
  int32_t ViaCode = 0;  // the via pads' D-code; 0 for none. Set only when the question is asked
  std::vector<PadPosition> PadPositions;
  ReconstructionReport Report;
};

}  // namespace tvx
