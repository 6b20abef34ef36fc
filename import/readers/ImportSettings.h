// The format values that a file does not declare for itself (Gerber RS-274-D, Excellon Format One,
// DXF), kept from one run to the next in the sections "GERBER", "EXCELLON" and "DXF" of the
// settings file.
#pragma once

#include "import/gerber/GerberFormat.h"

#include "import/readers/dxf/DxfFormat.h"

#include <cstdint>
#include <string>

namespace tvx {

class SystemServices;

// The Excellon format state: what the import dialog edits, the header of a Format Two file sets,
// and the reader decodes coordinates with.
struct ExcellonFormat {
  int32_t XYunit = 0;   // 0 inches, 1 millimetres
  int32_t XYFormB = 2;  // digits before the decimal point
  int32_t XYFormA = 4;  // digits after the decimal point
  // 0: numbers are left-aligned, digits missing at the end count as 0 (as under "LZ");
  // 1: numbers are right-aligned, digits missing at the front count as 0 (as under "TZ").
  int32_t OMZeros = 0;

  bool operator==(const ExcellonFormat&) const = default;
};

// Loading reads each key with its default text and takes the number in it (the first comma is a
// decimal point); whole-number values are rounded, half to even. No range is checked: a value
// edited by hand reaches the readers as it stands. A text without a number reads as 0.
void LoadExcellonSettings(const SystemServices& services, ExcellonFormat& format);
void LoadGerberSettings(const SystemServices& services, GerberFormat& format);
void LoadDxfSettings(const SystemServices& services, DxfFormat& format);

// Saving writes every key of the group, in the order of loading. What the service object reports
// about the write is not looked at.
void SaveExcellonSettings(SystemServices& services, const ExcellonFormat& format);
void SaveGerberSettings(SystemServices& services, const GerberFormat& format);
void SaveDxfSettings(SystemServices& services, const DxfFormat& format);

// A stored number: a blank before a number that is not negative (" 2", " 1.5", "-3"), and the
// shortest digits that read back to the same double. Independent of the locale.
std::string settingText(double value);

}  // namespace tvx
