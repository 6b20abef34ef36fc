#include "shell/ViewerSettings.h"

#include "common/ParseList.h"
#include "common/ToNumber.h"
#include "common/WholeNumber.h"
#include "kernel/Graphics.h"
#include "kernel/KernelStrings.h"
#include "platform/SystemServices.h"
#include "viewer/ViewState.h"

#include <charconv>
#include <filesystem>
#include <span>

namespace tvx {

namespace {

constexpr const char* Suite = "Tarvex";
constexpr const char* Viewer = "GBRVIEWER";
// The current aperture table's name.
constexpr const char* AperSection = "POSTART";
constexpr const char* AperKey = "Aper";

int32_t readWhole(const SystemServices& services, const char* section, const char* key,
                  const char* defaultText) {
  return whole(ToNumber(services.GetIniString(section, key, defaultText)));
}

double readNumber(const SystemServices& services, const char* section, const char* key,
                  const char* defaultText) {
  return ToNumber(services.GetIniString(section, key, defaultText));
}

// Fills target from the values of a comma list, from its first value on.
void fillFromList(std::string_view text, std::span<int32_t> target) {
  const ParsedList fields = ParseList(text);
  for (size_t i = 0; i < target.size(); ++i)
    target[i] = whole(fields.value(int(i) + 1));
}

template <size_t N>
void copyIntoKernel(KernelStrings& strings, int32_t number, const std::array<int32_t, N>& values) {
  uint8_t* table = strings.E_SysTable(number);
  const int32_t bytes = int32_t(N * sizeof(int32_t));
  if (table && KernelStrings::tableSize(number) >= bytes)
    KernelStrings::E_MemCopy(table, values.data(), bytes);
}

template <size_t N>
void copyFromKernel(KernelStrings& strings, int32_t number, std::array<int32_t, N>& values) {
  values.fill(0);
  const uint8_t* table = strings.E_SysTable(number);
  const int32_t bytes = int32_t(N * sizeof(int32_t));
  if (table && KernelStrings::tableSize(number) >= bytes)
    KernelStrings::E_MemCopy(values.data(), table, bytes);
}

std::string bit(bool on) { return on ? "1" : "0"; }

// The shortest text that reads back to the same number, with "." whatever the locale.
std::string numberText(double value) {
  char buffer[32];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  return std::string(buffer, result.ptr);
}

}  // namespace

// --- VIEW --------------------------------------------------------------------------------------

ViewOptions parseViewOptions(std::string_view text) {
  const ParsedList fields = ParseList(text);
  const auto on = [&](int i) { return fields.value(i) != 0; };
  ViewOptions options;
  options.RulerOn = on(1);
  options.TrueSize = on(2);
  options.PadFrames = on(3);
  options.Mirror = on(4);
  options.Monochrome = on(5);
  options.ScrollBarsOn = on(6);
  options.PadPositions = on(7);
  return options;
}

std::string viewOptionsText(const ViewOptions& o) {
  return bit(o.RulerOn) + "," + bit(o.TrueSize) + "," + bit(o.PadFrames) + "," + bit(o.Mirror) +
         "," + bit(o.Monochrome) + "," + bit(o.ScrollBarsOn) + "," + bit(o.PadPositions);
}

// --- Default tables ----------------------------------------------------------------------------

DefaultTables readDefaultTables(const SystemServices& services) {
  DefaultTables tables;
  const std::span<int32_t> grid(tables.Grid);
  fillFromList(services.GetIniString(Suite, "LayGridTable", std::string(DefaultLayGridTable)),
               grid.first(13));
  fillFromList(services.GetIniString(Suite, "LayGridTableM", std::string(DefaultLayGridTableM)),
               grid.last(13));
  fillFromList(services.GetIniString(Suite, "PickTable", std::string(DefaultPickTable)),
               tables.Pick);
  fillFromList(services.GetIniString(Suite, "LayPrecision", std::string(DefaultLayPrecision)),
               tables.Precision);
  return tables;
}

void writeDefaultTables(KernelStrings& strings, const DefaultTables& tables) {
  copyIntoKernel(strings, defaulttable::Grid, tables.Grid);
  copyIntoKernel(strings, defaulttable::Pick, tables.Pick);
  copyIntoKernel(strings, defaulttable::Precision, tables.Precision);
}

DefaultTables readKernelDefaultTables(KernelStrings& strings) {
  DefaultTables tables;
  copyFromKernel(strings, defaulttable::Grid, tables.Grid);
  copyFromKernel(strings, defaulttable::Pick, tables.Pick);
  copyFromKernel(strings, defaulttable::Precision, tables.Precision);
  return tables;
}

// --- Reading -----------------------------------------------------------------------------------

void readFolders(const SystemServices& services, const std::string& productName,
                 ViewerSettings& settings) {
  settings.JobDir = services.GetIniString(Suite, "JobDir", "C:\\" + productName + "\\JOB");
  settings.LibDir = services.GetIniString(Suite, "LibDir", "C:\\" + productName + "\\LIB");
}

void readSystemNames(const SystemServices& services, ViewerSettings& settings) {
  const ViewerSettings defaults;
  settings.SysName = services.GetIniString(Suite, "SysName", defaults.SysName);
  settings.Maker = services.GetIniString(Suite, "Maker", defaults.Maker);
  settings.Ver = services.GetIniString(Suite, "Ver", defaults.Ver);
  settings.Rev = services.GetIniString(Suite, "Rev", defaults.Rev);
  settings.Range = services.GetIniString(Suite, "Range", defaults.Range);
  // The caption is the viewer's own name, whatever the suite calls itself.
  settings.SysName =
      services.LocalMessage(std::string(SysNameMessageText), std::string(SysNameMessageId));
}

void readViewerSettings(const SystemServices& services, ViewerSettings& settings) {
  settings.UNIT = readWhole(services, Viewer, "UNIT", "0");
  settings.VIEW = parseViewOptions(services.GetIniString(Viewer, "VIEW", "1,1,1,0,0,0,1"));
  const double zoom = readNumber(services, Viewer, "ZOOM", "2");
  settings.ZOOM = zoom < 1.1 ? 2.0 : zoom;
  settings.RULER_TYPE = readWhole(services, Viewer, "RULER_TYPE", "0");
  settings.RULER_TYPE_CUSTOM = readNumber(services, Viewer, "RULER_TYPE_CUSTOM", "2");
  const int32_t measure = readWhole(services, Viewer, "MEASURE", "0");
  settings.MEASURE = measure > 2 ? 0 : measure;
  settings.TOOLBARS = readWhole(services, Viewer, "TOOLBARS", "0");
}

void readSystemSettings(const SystemServices& services, KernelStrings& strings,
                        ViewerSettings& settings) {
  settings.ImpDir = services.GetIniString(Viewer, "ImpDir", settings.JobDir);
  readCategoryGroup(services, strings, CategoryGroup::Layout, settings.Categories);
  settings.GRID = readWhole(services, Viewer, "GRID", "1");
  settings.Tables = readDefaultTables(services);
  writeDefaultTables(strings, settings.Tables);
  settings.Aper = services.GetIniString(AperSection, AperKey, "NONE");
  settings.NoCenter = readWhole(services, Viewer, "NoCenter", "1") != 0;
  settings.IMGHEIGHT = readWhole(services, "IMAGES", "IMGHEIGHT", "16");
  settings.IMGWIDTH = readWhole(services, "IMAGES", "IMGWIDTH", "16");
}

// --- Writing -----------------------------------------------------------------------------------

void writeViewerSettings(int32_t& status, SystemServices& services,
                         const ViewerSettings& settings) {
  status = 0;
  const auto write = [&](const char* key, const std::string& value) {
    int32_t written = 0;
    services.WriteIniString(Viewer, key, value, written);
    if (written != 0)
      status = 1;
  };
  write("UNIT", std::to_string(settings.UNIT));
  write("VIEW", viewOptionsText(settings.VIEW));
  write("ZOOM", numberText(settings.ZOOM));
  write("RULER_TYPE", std::to_string(settings.RULER_TYPE));
  write("RULER_TYPE_CUSTOM", numberText(settings.RULER_TYPE_CUSTOM));
  write("GRID", std::to_string(settings.GRID));
  write("TOOLBARS", std::to_string(settings.TOOLBARS));
}

void writeImpDir(int32_t& status, SystemServices& services, const std::string& folder) {
  status = 0;
  services.WriteIniString(Viewer, "ImpDir", folder, status);
  if (status != 0)
    status = 1;
}

void writeAper(int32_t& status, SystemServices& services, const std::string& name) {
  status = 0;
  services.WriteIniString(AperSection, AperKey, name, status);
  if (status != 0)
    status = 1;
}

// --- The view's share --------------------------------------------------------------------------

void applyToView(const ViewerSettings& settings, ViewState& view) {
  view.DisplayUnit = settings.UNIT;
  const ViewOptions& o = settings.VIEW;
  view.RulerOn = o.RulerOn;
  view.ViewFlags = viewflag::ScreenView;
  if (!o.TrueSize)
    view.ViewFlags |= viewflag::Outline;
  if (o.PadFrames)
    view.ViewFlags |= viewflag::PadFrames;
  if (o.Mirror)
    view.ViewFlags |= viewflag::Mirror;
  view.ScrollBarsOn = o.ScrollBarsOn;
  view.PadPositions = o.PadPositions ? 1 : 0;
  view.ZoomFactor = settings.ZOOM;
}

void takeFromView(const ViewState& view, ViewerSettings& settings) {
  settings.UNIT = view.DisplayUnit;
  ViewOptions& o = settings.VIEW;
  o.RulerOn = view.RulerOn;
  o.TrueSize = (view.ViewFlags & viewflag::Outline) == 0;
  o.PadFrames = (view.ViewFlags & viewflag::PadFrames) != 0;
  o.Mirror = (view.ViewFlags & viewflag::Mirror) != 0;
  o.Monochrome = (view.MonoFlags & MonoFlag) != 0;
  o.ScrollBarsOn = view.ScrollBarsOn;
  o.PadPositions = view.PadPositions != 0;
  settings.ZOOM = view.ZoomFactor;
}

}  // namespace tvx
