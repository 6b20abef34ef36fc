// The viewer's settings in the suite's settings file, with their defaults and corrections, and the
// default tables of raster steps, pick distances and precision steps that go into the kernel.
//
// Sections: "Tarvex" (names and folders of the suite, read only), "GBRVIEWER" (the viewer's own,
// read at start and written at unload), "POSTART", "IMAGES" and the layout group of
// "CATEGORIES". Import formats ("GERBER", "EXCELLON", "DXF") live in
// import/readers/ImportSettings.h, layer colours in store/Layers.h.
#pragma once

#include "store/ColourSlots.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace tvx {

class KernelStrings;
class SystemServices;
class ViewState;

// Values that every ApplySystemSettings sets; they are constants, not settings.
inline constexpr int32_t LargestTypedRaster = 2540000;    // largest raster step that may be typed
inline constexpr int32_t LargestDisplayedSize = 5080000;  // largest size in the sizes display
inline constexpr double BoardMarginMm = 6.35;  // margin of the board rectangle, in millimetres

// The seven fields of the setting VIEW, in their order. Defaults "1,1,1,0,0,0,1".
struct ViewOptions {
  bool RulerOn = true;
  bool TrueSize = true;     // 0 sets the outline bit (32) of ViewFlags
  bool PadFrames = true;    // bit 128 of ViewFlags
  bool Mirror = false;      // bit 1 of ViewFlags
  bool Monochrome = false;  // written at unload; never applied at start, the view starts in colour
  bool ScrollBarsOn = false;
  bool PadPositions = true;

  bool operator==(const ViewOptions&) const = default;
};

// Reads a VIEW text: a field that is missing, or holds no number, reads as 0 (off); any nonzero
// number is on.
ViewOptions parseViewOptions(std::string_view text);
// The VIEW text: seven fields of 0 or 1 separated by commas, "1,1,1,0,0,0,1".
std::string viewOptionsText(const ViewOptions& options);

// The four default tables as the kernel keeps them. Each group starts with the number of its
// current row, the rows follow.
struct DefaultTables {
  // Table 5: values 1 to 13 from LayGridTable (inch group), 14 to 26 from LayGridTableM (mm).
  std::array<int32_t, 26> Grid{};
  // Table 8: current row and four pick distances in pixels.
  std::array<int32_t, 5> Pick{};
  // Table 21: an inch group of 16 values and a millimetre group of 16.
  std::array<int32_t, 32> Precision{};

  bool operator==(const DefaultTables&) const = default;
};

// The kernel's table numbers.
namespace defaulttable {
inline constexpr int32_t Grid = 5;
inline constexpr int32_t Pick = 8;
inline constexpr int32_t Precision = 21;
}  // namespace defaulttable

// Default texts of the four lists of section "Tarvex".
inline constexpr std::string_view DefaultLayGridTable =
    "2, 508000, 254000, 127000, 63500, 25400, 12700, 254000, 200000, 130000, 100000, 65000, 50000";
inline constexpr std::string_view DefaultLayGridTableM =
    "2, 254000, 200000, 130000, 100000, 65000, 50000, 508000, 254000, 127000, 63500, 25400, 12700";
inline constexpr std::string_view DefaultPickTable = "2, 1, 2, 4, 8";
inline constexpr std::string_view DefaultLayPrecision =
    "12, 254, 508, 1270, 2540, 5080,6350,10160,12700,15240,19050,20320,25400,50800,127000,254000, "
    "12,100,500,1000,2500,5000,7500,10000,12500,15000,17500,20000,25000,50000,125000,250000";

// Reads LayGridTable, LayGridTableM, PickTable and LayPrecision from section "Tarvex", each with
// its default. A list shorter than its table leaves the rest 0; values beyond it are dropped; a
// field without a number reads as 0.
DefaultTables readDefaultTables(const SystemServices& services);
// Copies the tables into kernel tables 5, 8 and 21 (E_MemCopy). Table 7, the angles, is the
// kernel's own and is not touched. A table the kernel does not keep is skipped.
void writeDefaultTables(KernelStrings& strings, const DefaultTables& tables);
// Reads the three tables back from the kernel; a table the kernel does not keep reads as zeros.
DefaultTables readKernelDefaultTables(KernelStrings& strings);

// Every setting of the shell and the viewer, with its default.
struct ViewerSettings {
  // --- Section "Tarvex", read at start, never written by the viewer.
  std::string SysName = "Tarvex";  // the caption takes message 62450 instead (see below)
  std::string Maker = "Tarvex";
  std::string Ver = "?";
  std::string Rev = "?";
  std::string Range = "Electronic Engineering System";
  std::string JobDir;  // default "C:\<product>\JOB"
  std::string LibDir;  // default "C:\<product>\LIB"

  // --- Section "GBRVIEWER".
  int32_t UNIT = 0;  // DisplayUnit: 0 inch, 1 millimetre
  ViewOptions VIEW;
  double ZOOM = 2.0;  // ZoomFactor; a stored value below 1.1 reads as 2.0
  int32_t RULER_TYPE = 0;
  double RULER_TYPE_CUSTOM = 2.0;
  int32_t MEASURE = 0;   // coordinate origin mode 0 to 2; a stored value above 2 reads as 0
  int32_t TOOLBARS = 0;  // 1: the tool bars start locked
  int32_t GRID = 1;      // grid mode for G_SetGridMode
  std::string ImpDir;    // folder of the last import; default JobDir
  bool NoCenter = true;  // a stored value other than 0 or 1 reads as 1

  // --- Section "POSTART".
  std::string Aper = "NONE";  // current aperture table, file name without extension, in SysDir

  // --- Section "IMAGES".
  int32_t IMGHEIGHT = 16;
  int32_t IMGWIDTH = 16;

  // --- Layout group of "CATEGORIES" (read by readSystemSettings) and the default tables.
  CategoryTable Categories;
  DefaultTables Tables;
};

// Message giving the window caption in place of SysName.
inline constexpr std::string_view SysNameMessageId = "62450";
inline constexpr std::string_view SysNameMessageText =
    "Fabrication Graphics (Gerber/Excellon/DXF/HPGL) Viewer & Import";

// Start-up: JobDir and LibDir from "Tarvex", defaulting to "C:\" + productName + "\JOB" and
// "\LIB" (productName is the kernel string "PRODUCT_NAME").
void readFolders(const SystemServices& services, const std::string& productName,
                 ViewerSettings& settings);
// Start-up: SysName, Maker, Ver, Rev and Range from "Tarvex", then SysName replaced by
// message 62450.
void readSystemNames(const SystemServices& services, ViewerSettings& settings);
// Start-up: the viewer's own settings of "GBRVIEWER": UNIT, VIEW, ZOOM, RULER_TYPE,
// RULER_TYPE_CUSTOM, MEASURE and TOOLBARS, with their corrections.
void readViewerSettings(const SystemServices& services, ViewerSettings& settings);
// ApplySystemSettings: ImpDir (default JobDir, so readFolders first), the layout group of
// "CATEGORIES" (its colours go into kernel table 1), GRID, the default tables (written into the
// kernel), Aper, NoCenter, IMGHEIGHT and IMGWIDTH.
void readSystemSettings(const SystemServices& services, KernelStrings& strings,
                        ViewerSettings& settings);

// Unload: writes UNIT, VIEW, ZOOM, RULER_TYPE, RULER_TYPE_CUSTOM, GRID and TOOLBARS of
// "GBRVIEWER", in this order (MEASURE is left as it was). UNIT, RULER_TYPE, GRID and TOOLBARS
// are whole numbers, ZOOM and RULER_TYPE_CUSTOM numbers, VIEW as viewOptionsText. Every key is
// tried; status is 0 when all were written, else 1.
void writeViewerSettings(int32_t& status, SystemServices& services, const ViewerSettings& settings);
// After an import: the folder of the imported file.
void writeImpDir(int32_t& status, SystemServices& services, const std::string& folder);
// When the aperture table in force changes: its name.
void writeAper(int32_t& status, SystemServices& services, const std::string& name);

// The view's share: UNIT, VIEW and ZOOM into the view state (monochrome not applied: the view
// starts in colour), and back from it before writing.
void applyToView(const ViewerSettings& settings, ViewState& view);
void takeFromView(const ViewState& view, ViewerSettings& settings);

}  // namespace tvx
