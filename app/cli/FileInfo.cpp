#include "app/cli/FileInfo.h"

#include "common/TextHelpers.h"
#include "import/core/FileRecognition.h"
#include "import/gerber/ApertureSummary.h"
#include "import/readers/ImportSession.h"
#include "import/readers/WindowlessLayers.h"
#include "kernel/Kernel.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"
#include "store/ColourSlots.h"
#include "store/Layers.h"

#include <QTemporaryDir>

#include <charconv>
#include <memory>

namespace tvx {

namespace {

constexpr double UnitsPerMm = StoreUnitsPerMm;
constexpr double UnitsPerInch = StoreUnitsPerMm * 25.4;

// A number with a fixed count of decimals, "." as the point whatever the locale.
std::string fixed(double value, int decimals) {
  char digits[512];
  const auto [end, error] =
      std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed, decimals);
  return error == std::errc() ? std::string(digits, end) : std::string("0");
}

std::string unitName(int32_t unit) {
  if (unit == 0)
    return "inch";
  if (unit == 1)
    return "mm";
  return "unit " + std::to_string(unit);
}

std::string zerosName(int32_t zeros) {
  if (zeros == 0)
    return "LZ";
  if (zeros == 1)
    return "TZ";
  return "OMZeros " + std::to_string(zeros);
}

std::string jsonString(const std::string& text) {
  std::string out = "\"";
  for (const char c : text) {
    const auto u = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      out += '\\';
      out += c;
    } else if (c == '\n') {
      out += "\\n";
    } else if (c == '\r') {
      out += "\\r";
    } else if (c == '\t') {
      out += "\\t";
    } else if (u < 0x20) {
      static constexpr char Hex[] = "0123456789abcdef";
      out += "\\u00";
      out += Hex[u >> 4];
      out += Hex[u & 15];
    } else {
      out += c;
    }
  }
  return out + "\"";
}

// The extents as a line of the text report.
std::string extentsLine(const FileInfo& info) {
  if (!info.hasExtents)
    return "extents mm: none\n";
  const FileExtents& e = info.extents;
  return "extents mm: x " + fixed(e.MinX / UnitsPerMm, 5) + " .. " + fixed(e.MaxX / UnitsPerMm, 5) +
         ", y " + fixed(e.MinY / UnitsPerMm, 5) + " .. " + fixed(e.MaxY / UnitsPerMm, 5) + "\n";
}

// Extents that a scan left; a scan that found no point leaves them inverted.
void setExtents(FileInfo& info, const FileExtents& extents) {
  info.extents = extents;
  info.hasExtents = extents.MinX <= extents.MaxX && extents.MinY <= extents.MaxY;
}

void takeMessages(const ScriptedPrompts& prompts, size_t from, bool withTitle,
                  std::vector<std::string>& messages) {
  for (size_t i = from; i < prompts.shown.size(); ++i) {
    const ScriptedPrompts::Shown& box = prompts.shown[i];
    std::string text = OneLine(box.prompt);
    if (withTitle && !box.title.empty())
      text += " (" + box.title + ")";
    messages.push_back(text);
  }
}

void gatherExcellon(FileInfo& info, WindowlessLayers& run, ScriptedPrompts& prompts) {
  ImportSession& session = *run.session;
  ImportOptions options;
  options.kind = info.recognisedKind;
  options.noCenter = true;
  const size_t before = prompts.shown.size();
  const ImportResult result = session.importFile(run.layers(), info.path, options);
  takeMessages(prompts, before, false, info.messages);

  info.excellon = true;
  info.kind = result.kind;
  info.importStatus = result.status;
  info.format = session.excellonFormat;
  setExtents(info, result.scanned);
  info.layer = result.layer;
  if (result.layer != 0) {
    const Store& store = run.kernel->store;
    const LayerRecord& layer = run.tables->layer(result.layer);
    info.layerName = layer.DisplayName;
    if (!layer.Files.empty())
      info.tools = layer.Files.front().Tools;
    info.pads = store.OA_GetCount(store.S_SymbolEntryArray(layer.SymbolHandle));
    info.holeTally = session.excellon.LastImport;
  }
  for (const ToolEntry& tool : info.tools)
    info.holes += tool.HoleCount;
}

// A Gerber file: stage one alone, whose aperture lists tell what the file defines and uses.
void gatherGerber(FileInfo& info, WindowlessLayers& run, ScriptedPrompts& prompts) {
  ImportSession& session = *run.session;
  session.startJob(info.path, info.recognisedKind);
  const size_t before = prompts.shown.size();
  const ScanResult result = session.applyFile(run.layers(), true);
  takeMessages(prompts, before, false, info.messages);
  info.gerber = true;
  info.importStatus = result == ScanResult::Scanned ? 0 : 1;
  if (result != ScanResult::Scanned)
    return;
  info.apertures = describeApertures(session.gerberScan.Lists);
  setExtents(info, session.state.Extents);
}

}  // namespace

FileInfo gatherFileInfo(const std::string& path) {
  FileInfo info;
  info.path = path;
  ScriptedPrompts prompts;  // shows nothing; keeps every message for the report
  SystemServices services(&prompts);

  {
    FileLayer files(services, &prompts);
    FileRecogniser recogniser(files, services);
    std::string text;
    info.readable = recogniser.LoadWholeFile(path, text);
    takeMessages(prompts, 0, true, info.messages);
    if (!info.readable)
      return info;
    info.bytes = static_cast<int64_t>(text.size());
    YieldClock clock;
    info.recognisedKind = recogniseText(text, clock);
  }
  info.kind = info.recognisedKind;
  if (isExcellonKind(info.recognisedKind) || isGerberKind(info.recognisedKind)) {
    WindowlessLayers run(services, prompts);
    run.session->titles.programTitle = "gbrview";
    // A work folder of this run's own for the intermediate file.
    QTemporaryDir workFolder;
    if (workFolder.isValid())
      run.session->state.Job.WorkDirectory = workFolder.path().toStdString() + "/";
    if (isExcellonKind(info.recognisedKind))
      gatherExcellon(info, run, prompts);
    else
      gatherGerber(info, run, prompts);
  }
  info.kindName = importKindName(services, info.kind);
  return info;
}

std::string fileInfoText(const FileInfo& info) {
  std::string out;
  out += "file: " + info.path + "\n";
  if (!info.readable) {
    out += "readable: no\n";
  } else {
    out += "bytes: " + std::to_string(info.bytes) + "\n";
    out += "kind: " + std::to_string(int(info.kind)) + " " + info.kindName + "\n";
    if (info.kind != info.recognisedKind)
      out += "recognised as: " + std::to_string(int(info.recognisedKind)) + "\n";
  }
  if (info.excellon) {
    const ExcellonFormat& f = info.format;
    out += "format: " + unitName(f.XYunit) + " " + std::to_string(f.XYFormB) + "." +
           std::to_string(f.XYFormA) + " " + zerosName(f.OMZeros) + "\n";
    out += "tools: " + std::to_string(info.tools.size()) + "\n";
    for (const ToolEntry& tool : info.tools)
      out += "  T" + std::to_string(tool.Code) + "  " + fixed(tool.Diameter / UnitsPerMm, 5) +
             " mm  " + fixed(tool.Diameter / UnitsPerInch, 6) + " in  " +
             std::to_string(tool.HoleCount) + " holes\n";
    out += "holes: " + std::to_string(info.holes) + "\n";
    out += extentsLine(info);
    out += "import: status " + std::to_string(info.importStatus);
    if (info.layer != 0) {
      const HoleTally& t = info.holeTally;
      out += ", layer " + std::to_string(info.layer) + " " + info.layerName + ", pads " +
             std::to_string(info.pads) + " (placed " + std::to_string(t.Placed) + ", covered " +
             std::to_string(t.Covered) + ", without size " + std::to_string(t.WithoutSize) +
             ", refused " + std::to_string(t.StoreRefused) + ")";
    }
    out += "\n";
  }
  if (info.gerber && info.importStatus == 0) {
    out += "apertures: " + std::to_string(info.apertures.size()) + "\n";
    for (const ApertureInfo& a : info.apertures)
      out += "  D" + std::to_string(a.DCode) + "  " + apertureRoleWord(a.Role) + "  " +
             apertureShapeWord(a.Shape) + (a.MacroName.empty() ? "" : " " + a.MacroName) +
             (a.Size != 0 ? "  " + fixed(a.Size / UnitsPerMm, 5) + " mm" : "") + "  " +
             fixed(a.Uses, 0) + " uses" + (a.Defined ? "" : "  (not defined)") + "\n";
    if (info.hasExtents)
      out += extentsLine(info);
  }
  for (const std::string& message : info.messages)
    out += "message: " + message + "\n";
  return out;
}

std::string fileInfoJson(const FileInfo& info) {
  std::string out = "{\n";
  out += "  \"file\": " + jsonString(info.path) + ",\n";
  out += "  \"readable\": " + std::string(info.readable ? "true" : "false") + ",\n";
  out += "  \"bytes\": " + std::to_string(info.bytes) + ",\n";
  out += "  \"kind\": " + std::to_string(int(info.kind)) + ",\n";
  out += "  \"kindName\": " + jsonString(info.kindName) + ",\n";
  out += "  \"recognisedKind\": " + std::to_string(int(info.recognisedKind)) + ",\n";
  if (info.excellon) {
    const ExcellonFormat& f = info.format;
    out += "  \"excellon\": {\n";
    out += "    \"format\": {\"unit\": " + jsonString(unitName(f.XYunit)) +
           ", \"integerDigits\": " + std::to_string(f.XYFormB) +
           ", \"decimalDigits\": " + std::to_string(f.XYFormA) +
           ", \"zeros\": " + jsonString(zerosName(f.OMZeros)) + "},\n";
    out += "    \"tools\": [";
    for (size_t i = 0; i < info.tools.size(); ++i) {
      const ToolEntry& tool = info.tools[i];
      out += std::string(i ? "," : "") + "\n      {\"code\": " + std::to_string(tool.Code) +
             ", \"diameterMm\": " + fixed(tool.Diameter / UnitsPerMm, 5) +
             ", \"diameterInch\": " + fixed(tool.Diameter / UnitsPerInch, 6) +
             ", \"holes\": " + std::to_string(tool.HoleCount) + "}";
    }
    out += info.tools.empty() ? "],\n" : "\n    ],\n";
    out += "    \"holes\": " + std::to_string(info.holes) + ",\n";
    if (info.hasExtents) {
      const FileExtents& e = info.extents;
      out += "    \"extentsMm\": {\"minX\": " + fixed(e.MinX / UnitsPerMm, 5) +
             ", \"minY\": " + fixed(e.MinY / UnitsPerMm, 5) +
             ", \"maxX\": " + fixed(e.MaxX / UnitsPerMm, 5) +
             ", \"maxY\": " + fixed(e.MaxY / UnitsPerMm, 5) + "},\n";
    } else {
      out += "    \"extentsMm\": null,\n";
    }
    const HoleTally& t = info.holeTally;
    out += "    \"import\": {\"status\": " + std::to_string(info.importStatus) +
           ", \"layer\": " + std::to_string(info.layer) +
           ", \"layerName\": " + jsonString(info.layerName) +
           ", \"pads\": " + std::to_string(info.pads) +
           ", \"placed\": " + std::to_string(t.Placed) +
           ", \"covered\": " + std::to_string(t.Covered) +
           ", \"withoutSize\": " + std::to_string(t.WithoutSize) +
           ", \"refused\": " + std::to_string(t.StoreRefused) + "}\n";
    out += "  },\n";
  }
  if (info.gerber && info.importStatus == 0) {
    out += "  \"gerber\": {\"apertures\": [";
    for (size_t i = 0; i < info.apertures.size(); ++i) {
      const ApertureInfo& a = info.apertures[i];
      out += std::string(i ? "," : "") + "\n      {\"dCode\": " + std::to_string(a.DCode) +
             ", \"role\": " + jsonString(apertureRoleWord(a.Role)) +
             ", \"shape\": " + jsonString(apertureShapeWord(a.Shape)) +
             ", \"macro\": " + jsonString(a.MacroName) +
             ", \"sizeMm\": " + fixed(a.Size / UnitsPerMm, 5) + ", \"uses\": " + fixed(a.Uses, 0) +
             ", \"defined\": " + (a.Defined ? "true" : "false") + "}";
    }
    out += info.apertures.empty() ? "]},\n" : "\n    ]},\n";
  }
  out += "  \"messages\": [";
  for (size_t i = 0; i < info.messages.size(); ++i)
    out += std::string(i ? ", " : "") + jsonString(info.messages[i]);
  out += "]\n}\n";
  return out;
}

int runInfoCommand(const std::string& path, bool json, std::string& out, std::string& err) {
  const FileInfo info = gatherFileInfo(path);
  if (!info.readable) {
    err =
        "gbrview: " + (info.messages.empty() ? path + ": cannot be read" : info.messages.front()) +
        "\n";
    return 1;
  }
  out = json ? fileInfoJson(info) : fileInfoText(info);
  if (info.failed()) {
    std::string reason = "import failed";
    for (const std::string& message : info.messages)
      reason += ": " + message;
    err = "gbrview: " + path + ": " + reason + "\n";
    return 1;
  }
  return 0;
}

}  // namespace tvx
