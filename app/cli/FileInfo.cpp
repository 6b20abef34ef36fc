#include "app/cli/FileInfo.h"
#include "app/cli/CliApertureTable.h"

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

#include <filesystem>

#include <map>
#include <memory>
#include <string_view>

namespace tvx {

namespace {

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

// The file imported where it stands (no centring), with the messages it gave.
ImportResult importWhereItStands(FileInfo& info, WindowlessLayers& run, ScriptedPrompts& prompts) {
  ImportOptions options;
  options.kind = info.recognisedKind;
  options.noCenter = true;
  const size_t before = prompts.shown.size();
  const ImportResult result = run.session->importFile(run.layers(), info.path, options);
  takeMessages(prompts, before, false, info.messages);
  info.notes = result.notes;
  info.kind = result.kind;
  info.importStatus = result.status;
  return result;
}

void gatherExcellon(FileInfo& info, WindowlessLayers& run, ScriptedPrompts& prompts) {
  ImportSession& session = *run.session;
  const ImportResult result = importWhereItStands(info, run, prompts);
  info.excellon = true;
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

// A plotter file or a drawing: imported into its layer where it stands (no centring), then its
// elements counted by kind and framed.
void gatherPlotter(FileInfo& info, WindowlessLayers& run, ScriptedPrompts& prompts) {
  const ImportResult result = importWhereItStands(info, run, prompts);
  info.plotter = info.kind == ImportKind::Hpgl;
  info.drawing = info.kind == ImportKind::Dxf;
  if (info.drawing) {
    const DxfFileReader& reader = run.session->dxfReader;
    const DxfHeader header = dxfHeaderOf(run.session->state.Job.DxfText);
    info.acadVer = header.AcadVer;
    info.insUnits = header.InsUnits;
    info.entitiesRead = reader.lastReport.read;
    info.entitiesPassedOver = reader.lastReport.passedOver;
    info.leftOut = reader.lastReport.removed;
  }
  if (result.layer == 0)
    return;
  Store& store = run.kernel->store;
  const LayerRecord& layer = run.tables->layer(result.layer);
  info.layer = result.layer;
  info.layerName = layer.DisplayName;
  const ArrayHandle items = store.S_SymbolItemArray(layer.SymbolHandle);
  for (int32_t i = 1; i <= store.OA_GetCount(items); ++i) {
    ItemRecord item;
    store.I_ReadItem(store.OA_Object(items, i), item);
    if (item.Type == ItemVectorText || item.Type == ItemTrueTypeText)
      ++info.texts;
    else if (item.Attributes & attr::PolygonSide)
      ++info.outlinePieces;
    else if (item.Type == ItemLine)
      ++info.lines;
    else if (item.Type == ItemArc)
      ++info.arcs;
    else if (item.Type == ItemCircle)
      ++info.circles;
  }
  FrameRect frame;
  if (store.S_FrameSymbolItems(layer.SymbolHandle, -1, frame)) {
    info.hasExtents = true;
    info.extents = {double(frame.MinX), double(frame.MinY), double(frame.MaxX), double(frame.MaxY)};
  }
}

// A Gerber file: stage one alone. Its aperture lists tell what the file defines and uses, one walk
// over the intermediate file counts the operations.
void gatherGerber(FileInfo& info, WindowlessLayers& run, ScriptedPrompts& prompts) {
  ImportSession& session = *run.session;
  session.startJob(info.path, info.recognisedKind);
  const size_t before = prompts.shown.size();
  const ScanResult result = session.applyFile(run.layers(), true);
  takeMessages(prompts, before, false, info.messages);
  info.gerber = true;
  info.notes = session.notes();
  info.importStatus = result == ScanResult::Scanned ? 0 : 1;
  info.scanned = result == ScanResult::Scanned;
  if (!info.scanned)
    return;
  info.gerberFormat = session.gerberFormat;
  setExtents(info, session.state.Extents);
  info.fileAttributes = fileAttributesOf(session.gerberScan.FileAttributes);
  if (!countGerberStream(session.state.Job.IntermediatePath, info.stream)) {
    info.importStatus = 1;
    info.messages.push_back("the drawing stream of " + session.state.Job.IntermediatePath +
                            " cannot be read to its end");
  }
  info.apertures = aperturesByDCode(describeApertures(session.gerberScan.Lists), info.stream);
}

}  // namespace

std::vector<ApertureUses> aperturesByDCode(const std::vector<ApertureInfo>& rows,
                                           const GerberStreamCounts& stream) {
  std::map<int32_t, ApertureUses> byCode;
  for (const ApertureInfo& row : rows) {
    const auto [at, first] = byCode.try_emplace(row.DCode);
    ApertureUses& uses = at->second;
    uses.DCode = row.DCode;
    // A draw row may only link to the pad row that holds the shape.
    if (first || row.Role != ApertureRole::Draw) {
      uses.Shape = row.Shape;
      uses.MacroName = row.MacroName;
      uses.Values = row.Values;
    }
    if (row.Size != 0)
      uses.Size = row.Size;
    uses.Defined = uses.Defined || row.Defined;
    uses.Uses += row.Uses;
  }
  for (const auto& [dCode, operations] : stream.ByDCode) {
    const auto [at, first] = byCode.try_emplace(dCode);
    if (first) {
      at->second.DCode = dCode;
      at->second.Shape = ApertureShape::Unknown;
    }
    at->second.Draws = operations.Draws;
    at->second.Flashes = operations.Flashes;
  }
  // A region's outline notes the code in force without using it; a code neither defined nor used
  // is left out.
  std::vector<ApertureUses> out;
  for (auto& entry : byCode) {
    const ApertureUses& a = entry.second;
    if (a.Defined || a.Uses != 0 || a.Draws != 0 || a.Flashes != 0)
      out.push_back(std::move(entry.second));
  }
  return out;
}

std::vector<FileAttribute> fileAttributesOf(const std::vector<std::string>& texts) {
  std::vector<FileAttribute> out;
  for (const std::string& text : texts) {
    if (text.rfind("TF", 0) != 0)
      continue;
    std::string_view rest = std::string_view(text).substr(2);
    if (!rest.empty() && rest.front() == '.')
      rest.remove_prefix(1);
    const size_t comma = rest.find(',');
    out.push_back({std::string(rest.substr(0, comma)), comma == std::string_view::npos
                                                           ? std::string()
                                                           : std::string(rest.substr(comma + 1))});
  }
  return out;
}

FileInfo gatherFileInfo(const std::string& path,
                        const std::vector<ApertureTableRow>* apertureTable) {
  FileInfo info;
  info.path = path;
  ScriptedPrompts prompts;  // shows nothing; keeps every message for the report
  SystemServices services(&prompts);

  {
    FileLayer files(services, &prompts);
    FileRecogniser recogniser(files, services);
    info.recognisedKind = recogniser.RecogniseFile(path);
    info.readable = recogniser.refusal != Refusal::Unreadable;
    takeMessages(prompts, 0, true, info.messages);
    if (!info.readable)
      return info;
    std::error_code error;
    info.bytes = static_cast<int64_t>(std::filesystem::file_size(path, error));
  }
  info.kind = info.recognisedKind;
  if (isExcellonKind(info.recognisedKind) || isGerberKind(info.recognisedKind) ||
      isPlotterOrCadKind(info.recognisedKind)) {
    WindowlessLayers run(services, prompts);
    run.session->titles.programTitle = "gbrview";
    run.session->gerberPass.apertureTable = apertureTable;
    // A work folder of this run's own for the intermediate file.
    QTemporaryDir workFolder;
    if (workFolder.isValid())
      run.session->state.Job.WorkDirectory = workFolder.path().toStdString() + "/";
    if (isExcellonKind(info.recognisedKind))
      gatherExcellon(info, run, prompts);
    else if (isPlotterOrCadKind(info.recognisedKind))
      gatherPlotter(info, run, prompts);
    else
      gatherGerber(info, run, prompts);
  }
  info.kindName = importKindName(services, info.kind);
  return info;
}

int runInfoCommand(const std::string& path, bool json, std::string& out, std::string& err,
                   const std::string& apertureTablePath) {
  ApertureTable table;
  if (std::string error = loadCliApertureTable(table, apertureTablePath); !error.empty()) {
    err = "gbrview: " + error + "\n";
    return 2;
  }
  const FileInfo info = gatherFileInfo(path, &table.rows);
  if (!info.readable) {
    err =
        "gbrview: " + (info.messages.empty() ? path + ": cannot be read" : info.messages.front()) +
        "\n";
    return 1;
  }
  out = json ? fileInfoJson(info) : fileInfoText(info);
  // What was dropped or cut is said, the exit code stays.
  for (const std::string& note : info.notes)
    err += "gbrview: " + path + ": " + note + "\n";
  if (info.failed()) {
    std::string reason = info.bytes == 0                    ? "the file is empty"
                         : info.kind == ImportKind::Unknown ? "not a file that gbrview reads"
                                                            : "import failed";
    for (const std::string& message : info.messages)
      reason += ": " + message;
    err += "gbrview: " + path + ": " + reason + "\n";
    return 1;
  }
  return 0;
}

}  // namespace tvx
