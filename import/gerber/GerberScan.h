// What the Gerber text pass leaves for the rest of the import: the extents, the feature flags, the
// aperture lists with their uses, and the file's attribute texts. The same record is restored from
// TMP.ART by LoadArtHeader.
#pragma once

#include "import/gerber/ApertureLists.h"
#include "import/gerber/ArtFile.h"
#include "kernel/KernelTypes.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace tvx {

// Bits of ArtHeader::FeatureFlags: what polarities the file holds.
namespace featureflag {
inline constexpr int32_t PositiveImage = 1;
inline constexpr int32_t NegativeImage = 2;
inline constexpr int32_t DarkLayer = 4;
inline constexpr int32_t ClearLayer = 8;
}  // namespace featureflag

// Records 1 to 5 of TMP.ART.
struct ArtHeader {
  double MinX = WorldLimit;
  double MinY = WorldLimit;
  double MaxX = -WorldLimit;
  double MaxY = -WorldLimit;
  int32_t FeatureFlags = 0;
  int32_t TwoFileFlag = 0;
  // Store units of one file unit, both axes.
  double UnitX = 0;
  double UnitY = 0;
  // Record numbers of the sections 10, 20, 30 and 40.
  std::array<int32_t, 4> SectionRecords{};

  bool operator==(const ArtHeader&) const = default;
};

std::array<ArtRecord, artrecord::HeaderRecords> headerRecords(const ArtHeader& header);
ArtHeader headerFromRecords(const std::array<ArtRecord, artrecord::HeaderRecords>& records);

// Something of the file that the pass dropped or cut, and where: the byte it was found at, and
// its line (from 1) once the pass has counted the lines.
struct InputNote {
  int64_t Offset = 0;
  int64_t Line = 0;
  std::string What;

  bool operator==(const InputNote&) const = default;
};

struct GerberScan {
  ArtHeader Header;
  ApertureLists Lists;
  // The texts of the file's attribute blocks (TF, TA, TO), each once; empty after LoadArtHeader.
  std::vector<std::string> FileAttributes;
  // Records of the drawing stream, from record 6 up to and including the end record.
  int32_t StreamRecords = 0;
  // The last pass stopped on text that is no Gerber (and reported it with status 93).
  bool NotGerber = false;
  // What the last pass dropped or cut, in the order of the file; and how many more there were.
  std::vector<InputNote> Notes;
  size_t MoreNotes = 0;
};

}  // namespace tvx
