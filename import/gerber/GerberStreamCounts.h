// What the drawing stream of TMP.ART holds, counted in one pass over the file: draws, arcs,
// flashes and regions, per D-code and in all, the layer polarity records and the step and repeat
// blocks. Operations count as the file gives them: a step and repeat does not multiply them.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace tvx {

struct ApertureOperations {
  int64_t Draws = 0;  // strokes outside regions, arcs among them
  int64_t Flashes = 0;

  bool operator==(const ApertureOperations&) const = default;
};

struct StepRepeatBlock {
  double CountX = 1;  // copies along X and Y
  double CountY = 1;
  double StepX = 0;  // distances between the copies, store units
  double StepY = 0;

  bool operator==(const StepRepeatBlock&) const = default;
};

struct GerberStreamCounts {
  int64_t Records = 0;  // stream records read, the end record included
  int64_t Draws = 0;    // strokes outside regions (lines and arcs)
  int64_t Arcs = 0;     // the arcs and full circles among them
  int64_t Flashes = 0;
  int64_t Regions = 0;         // regions closed
  int64_t DarkLayers = 0;      // layer polarity records that turn dark
  int64_t ClearLayers = 0;     // and clear
  bool NegativeImage = false;  // the last image polarity record was negative
  // Every step and repeat that makes more than one copy, in the order of the file; the records
  // that end a block (one copy each way) are left out.
  std::vector<StepRepeatBlock> StepRepeats;
  std::map<int32_t, ApertureOperations> ByDCode;
  bool Complete = false;  // the end record was reached

  int64_t LayerPolarityRecords() const { return DarkLayers + ClearLayers; }
};

// Walks the stream of the intermediate file at path, from the first record after the header to
// the end record, reading large blocks at a time. False when the file cannot be opened, a record
// of an unknown type stands in the stream, or the stream breaks off before its end record; counts
// then hold what came before.
bool countGerberStream(const std::string& path, GerberStreamCounts& counts);

}  // namespace tvx
