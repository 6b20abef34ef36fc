// The records of one layer slot and of the files imported into it, and the element filter bits.
// Header only: the layer tables and every reader include it.
#pragma once

#include "kernel/KernelTypes.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tvx {

// Element filter bits of LayerRecord::FilterMask and LayerFileRecord::FilterMask. A cleared bit
// leaves such elements out of the import. The names are the keys of the dialog's check boxes.
namespace filter {
inline constexpr int32_t AF_ILN = 1;   // lines
inline constexpr int32_t AF_IPD = 2;   // pads
inline constexpr int32_t AF_IPA = 4;   // arcs
inline constexpr int32_t AF_IPL = 8;   // polygons
inline constexpr int32_t AF_IMC = 16;  // macros and special apertures
inline constexpr int32_t AF_IPP = 32;  // pad and hole positions
inline constexpr int32_t AF_IMP = 64;  // mixed polarity
// Outlines are written filled. It has no check box; it stands only in a layer's default mask.
inline constexpr int32_t FilledOutlines = 16384;
}  // namespace filter

// One check box of the filter rows: its bit, its key, and its caption as id and default text.
struct FilterBitInfo {
  int32_t bit;
  std::string_view key;
  std::string_view caption;
  std::string_view textId;
};

inline constexpr std::array<FilterBitInfo, 7> FilterBits = {{
    {filter::AF_ILN, "AF_ILN", "Lines", "62201"},
    {filter::AF_IPD, "AF_IPD", "Pads", "62354"},
    {filter::AF_IPA, "AF_IPA", "Arcs", "62289"},
    {filter::AF_IPL, "AF_IPL", "Polygons", "62294"},
    {filter::AF_IMC, "AF_IMC", "Macros&Special Apertures", "62355"},
    {filter::AF_IPP, "AF_IPP", "Pad/Hole positions", "62356"},
    {filter::AF_IMP, "AF_IMP", "Import mixed polarity", "62357"},
}};

// Which reader stage two runs for a file. Codes of 5 or more run no reader.
enum ReaderCode : int32_t {
  ReaderGerberArtwork = 0,
  ReaderGerberDrilling = 1,  // Gerber data read as drilling (kinds 5 and 6)
  ReaderExcellon = 2,
  ReaderHpgl = 3,
  ReaderDxf = 4,
};

// One row of an Excellon tool table.
struct ToolEntry {
  int32_t Code = 0;       // tool number in the file plus the program offset
  int32_t Diameter = 0;   // hole diameter in store units; 0 until the file or the user gives one
  int32_t HoleKind = 0;   // third argument of S_ChangePadStackHole
  int32_t HoleCount = 0;  // coordinate blocks that used this tool in the last scan

  bool operator==(const ToolEntry&) const = default;
};

// One aperture or tool row as the import dialog shows it and a layer keeps it.
struct ApertureRow {
  std::string Text;
  bool Selected = false;
  int32_t Code = 0;   // D-code or tool code
  int32_t Count = 0;  // filled by the layer properties

  bool operator==(const ApertureRow&) const = default;
};

// One imported file of a layer.
struct LayerFileRecord {
  std::string FileName;   // what the reader reads: TMP.ART for Gerber, else the source file
  std::string Tag = " ";  // apertures barred from the import, "|D10*|D23*|"; a blank when none
  int32_t ReaderCode = ReaderGerberArtwork;
  int32_t FilterMask = 0;
  int32_t Colour = 0;
  int32_t OffsetX = 0;               // image offset in store units (AFS_XO)
  int32_t OffsetY = 0;               // (AFS_YO)
  bool Mirror = false;               // mirror about the vertical centre line (AFS_MIR)
  bool ClearPolarity = false;        // working flag of the Gerber drawing pass
  bool OriginalCoordinates = false;  // keep the file's coordinates (AFS_NOCENTER)
  bool TrueLineSize = false;         // DXF only (AFS_DXFTRUESIZE)
  int32_t CoordinateStep = 0;        // drill files: store units of the last digit of a coordinate
  std::vector<ToolEntry> Tools;      // the Excellon tool table; empty until a scan fills it

  bool operator==(const LayerFileRecord&) const = default;
};

// One of the 31 layer slots, numbered 1 to 31.
struct LayerRecord {
  int32_t Mask = 0;           // 2 to the power of (number - 1)
  SymbolId SymbolHandle = 0;  // -76500 - number
  bool Active = false;        // receives the pointer tools; at most one layer has it
  bool Listed = false;        // offered in the menu and the layer list
  int32_t DefaultColourNumber = 0;
  int32_t DefaultColourRgb = 0;
  int32_t ColourNumber = 0;
  int32_t ColourRgb = 0;
  int32_t LayerCode = 0;   // layer number in the layout editor
  int32_t ImportMode = 0;  // 0 or less: clear before import; else append
  int32_t FilterMask = 0;  // element kinds this layer takes
  int32_t OffsetX = 0;
  int32_t OffsetY = 0;
  bool Mirror = false;
  bool OriginalCoordinates = false;
  int32_t PadKind = 0;  // marker in a pad stack: 6 drill layer, 0 outline, else 5
  std::string DisplayName;
  std::string KeyName;
  std::string SymbolName;  // "$$GIS_CAT" + SymbolHandle, as "$$GIS_CAT-76501"
  std::string LastFile;
  std::vector<LayerFileRecord> Files = std::vector<LayerFileRecord>(1);
  std::vector<ApertureRow> ApertureCounts;
  std::vector<ApertureRow> Apertures;

  bool operator==(const LayerRecord&) const = default;
};

// Masks of the two layers with a fixed role in the import.
inline constexpr int32_t BoardOutlineMask = 0x20000000;  // layer 30
inline constexpr int32_t DrillLayerMask = 0x40000000;    // layer 31
inline constexpr int32_t LayerCount = 31;

}  // namespace tvx
