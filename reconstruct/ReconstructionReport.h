// What a sorting into categories did, told to the user: a summary for the message line, and the
// whole report as text or JSON for the command line.
#pragma once

#include "reconstruct/ReconstructionState.h"

#include <string>

namespace tvx {

// One line: the pads by kind and the holes matched.
std::string reportSummary(const ReconstructionReport& report);
// Counts per category, the holes, and each hole without a pad with its nearest pad, lengths in
// millimetres.
std::string reportText(const ReconstructionReport& report);
// {"categories": {caption: count}, "holes": {"total", "matched", "withoutPad", "toleranceMm",
//  "unmatched": [{"x", "y", "nearestPadMm"}]}, "viaCode"}.
std::string reportJson(const ReconstructionReport& report, int32_t viaCode);

}  // namespace tvx
