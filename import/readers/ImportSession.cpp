#include "import/readers/WindowlessImport.h"

#include "import/gerber/ArtSections.h"
#include "import/core/FileRecognition.h"
#include "import/gerber/GerberDrawing.h"
#include "import/core/PlaceHole.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"

#include <algorithm>
#include <filesystem>

namespace tvx {

std::string intermediatePathIn(const std::string& workDirectory) {
  if (workDirectory.empty() || workDirectory.back() == '/')
    return workDirectory + "TMP.ART";
  return workDirectory + "/TMP.ART";
}

LayerFileRecord& StartLayerFile(ImportJob& job, LayerRecord& layer, bool noCenter) {
  const bool drill = layer.Mask == DrillLayerMask;
  if (drill && job.Kind == ImportKind::ArtworkRS274D)
    job.Kind = ImportKind::DrillingRS274D;
  else if (drill && job.Kind == ImportKind::ArtworkRS274X)
    job.Kind = ImportKind::DrillingRS274X;
  else if (!drill && job.Kind == ImportKind::DrillingRS274D)
    job.Kind = ImportKind::ArtworkRS274D;
  else if (!drill && job.Kind == ImportKind::DrillingRS274X)
    job.Kind = ImportKind::ArtworkRS274X;

  layer.Files.assign(1, LayerFileRecord{});
  LayerFileRecord& file = layer.Files.front();
  if (isGerberKind(job.Kind)) {
    layer.OriginalCoordinates = noCenter;
    file.FileName = job.IntermediatePath;
    file.Tag.assign(1, ' ');
    file.FilterMask = layer.FilterMask;
    file.Mirror = layer.Mirror;
    file.OriginalCoordinates = layer.OriginalCoordinates;
    const bool drilling =
        job.Kind == ImportKind::DrillingRS274X || job.Kind == ImportKind::DrillingRS274D;
    file.ReaderCode = drilling ? ReaderGerberDrilling : ReaderGerberArtwork;
  } else if (job.Kind == ImportKind::Dxf) {
    file.FileName = job.SourcePath;
    file.ReaderCode = ReaderDxf;
  } else {
    return file;
  }
  file.Colour = layer.ColourNumber;
  file.OffsetX = file.OffsetY = 0;
  return file;
}

namespace {

constexpr int32_t StatusNotSupported = 93;
constexpr int32_t StatusNotFormatTwo = 94;
constexpr int32_t StatusNoLayers = 200;

// Stage one of a drill file: read, scan, bind the drill layer. False when the import stops here.
bool applyExcellon(ImportOwners& o, const WindowlessImportOptions& options) {
  ImportJob& job = o.state.Job;
  if (!o.scans.readExcellonText || !o.readers.scanExcellonText) {
    o.reporter.ReportStatus(StatusNotSupported, job.SourcePath);
    return false;
  }
  if (!o.scans.readExcellonText(job.SourcePath, job.ExcellonText))
    return false;
  std::vector<ToolEntry> tools;
  const auto found = static_cast<ImportKind>(o.readers.scanExcellonText(
      job.ExcellonText, tools, job.Kind == ImportKind::ExcellonFormatTwo, false));
  if (found == ImportKind::Unknown) {
    o.reporter.ReportStatus(StatusNotSupported, job.SourcePath);
    return false;
  }
  if (found == ImportKind::ExcellonFormatOne && job.Kind == ImportKind::ExcellonFormatTwo)
    o.reporter.ReportStatus(StatusNotFormatTwo, job.SourcePath);
  job.Kind = found;
  bindLayers(o.state, o.layers, options.noCenter, o.readers);
  return true;
}

bool applyGerber(ImportOwners& o, const WindowlessImportOptions& options) {
  ImportJob& job = o.state.Job;
  if (!o.scans.runGerberTextPass) {
    o.reporter.ReportStatus(StatusNotSupported, job.SourcePath);
    return false;
  }
  // Without a work directory (a command line run) TMP.ART goes to the system's temporary folder
  // rather than wherever the process happens to stand.
  std::error_code error;
  const std::string folder = job.WorkDirectory.empty()
                                 ? std::filesystem::temp_directory_path(error).string()
                                 : job.WorkDirectory;
  job.IntermediatePath = intermediatePathIn(folder);
  int32_t status = 0;
  o.scans.runGerberTextPass(status, job.SourcePath, job.IntermediatePath);
  if (status != 0) {
    job.IntermediatePath.clear();
    return false;
  }
  bindLayers(o.state, o.layers, options.noCenter, o.readers);
  return true;
}

bool applyPlotterOrCad(ImportOwners& o, const WindowlessImportOptions& options) {
  ImportJob& job = o.state.Job;
  const bool hpgl = job.Kind == ImportKind::Hpgl;
  if (hpgl ? !o.scans.readHpglText : !o.scans.readDxfFile) {
    o.reporter.ReportStatus(StatusNotSupported, job.SourcePath);
    return false;
  }
  const bool loaded = hpgl ? o.scans.readHpglText(job.SourcePath, job.HpglText)
                           : o.scans.readDxfFile(job.SourcePath, job.DxfText);
  if (!loaded)
    return false;
  bindLayers(o.state, o.layers, options.noCenter, o.readers);
  return true;
}

// The user's choice of a layer among the offered ones, as the dialog's layer cell takes it: a
// Gerber file becomes drilling on the drill layer and artwork elsewhere, and the layer gets one
// new file record.
void chooseLayer(ImportOwners& o, int32_t number, bool noCenter) {
  ImportState& state = o.state;
  ImportJob& job = state.Job;
  LayerRecord& layer = o.layers[size_t(number - 1)];
  state.DialogLayer = number;
  state.CurrentSymbol = layer.SymbolHandle;
  StartLayerFile(job, layer, noCenter);
}

// For the kinds whose binding only offers layers: the requested layer, else the first offered.
bool bindRequestedLayer(ImportOwners& o, const WindowlessImportOptions& options) {
  const ImportState& state = o.state;
  const std::vector<LayerChoice>& choices = state.LayerChoices;
  const bool offersOnly = isGerberKind(state.Job.Kind) || state.Job.Kind == ImportKind::Dxf;
  if (!offersOnly)
    return state.DialogLayer != 0;
  int32_t number = options.layer;
  if (number == 0) {
    if (state.DialogLayer != 0)
      return true;  // DXF: the outline layer is bound already
    if (choices.empty())
      return false;
    number = choices.front().LayerNumber;
  }
  const bool offered = std::any_of(choices.begin(), choices.end(),
                                   [&](const LayerChoice& c) { return c.LayerNumber == number; });
  if (!offered || number < 1 || number > static_cast<int32_t>(o.layers.size()))
    return false;
  if (number != state.DialogLayer)
    chooseLayer(o, number, options.noCenter);
  return true;
}

}  // namespace

WindowlessImportResult ImportWithoutWindow(ImportOwners& o, const std::string& path,
                                           const WindowlessImportOptions& options) {
  WindowlessImportResult result;
  ImportState& state = o.state;
  ImportJob& job = state.Job;

  // A new file: nothing of the last one's scan stays.
  const std::string workDirectory = job.WorkDirectory;
  job = ImportJob{};
  job.WorkDirectory = workDirectory;
  job.SourcePath = path;
  state.DialogLayer = 0;
  state.LayerChoices.clear();
  state.LayerListIndex = 0;

  ImportKind kind = options.kind;
  if (kind == ImportKind::Unknown) {
    FileRecogniser recogniser(o.files, o.services);
    recogniser.editMsgLine = options.editMsgLine;
    recogniser.yield = options.yield;
    recogniser.gerberUnit = o.gerberUnit;
    kind = recogniser.RecogniseFile(path);
  }
  result.kind = kind;
  if (kind == ImportKind::Unknown) {
    o.reporter.ReportStatus(StatusNotSupported, path);
    return result;
  }
  job.Kind = kind;
  job.Prepared = false;
  job.ApertureTableChoice = 0;

  bool applied = false;
  if (isExcellonKind(kind))
    applied = applyExcellon(o, options);
  else if (isGerberKind(kind))
    applied = applyGerber(o, options);
  else if (isPlotterOrCadKind(kind))
    applied = applyPlotterOrCad(o, options);
  result.kind = job.Kind;
  result.scanned = state.Extents;
  if (!applied)
    return result;
  if (!job.Prepared || !bindRequestedLayer(o, options)) {
    o.reporter.ReportStatus(StatusNoLayers, path);
    return result;
  }
  result.kind = job.Kind;
  result.layer = state.DialogLayer;

  LayerRecord& layer = o.layers[size_t(state.DialogLayer - 1)];
  int32_t status = 0;
  ImportContext context{o.store, o.services, o.reporter, state, o.readers, options.editMsgLine};
  ImportIntoLayer(status, layer, context);
  if (status == 0) {
    layer.LastFile = path;
    centreImportedLayer(o.store, layer, state.Extents);
  } else {
    layer.LastFile.clear();
  }
  result.status = status;
  return result;
}

ImportSession::ImportSession(Store& store, SystemServices& services, UserPrompts& prompts)
    : store(store), services(services), reporter(services, prompts, titles, digits),
      files(services, &prompts), excellon(store, services, reporter, excellonFormat, state.Extents),
      gerberPass{services, reporter, files, gerberFormat, gerberScan, {}, {}, {}, {}} {
  LoadExcellonSettings(services, excellonFormat);
  LoadGerberSettings(services, gerberFormat);
  LoadDxfSettings(services, dxfFormat);
  excellon.install(readers);
  excellon.install(scans, files);

  // Gerber: the text pass writes TMP.ART and leaves its extents as the board's; the import loads
  // the file's apertures back and replays its stream, placing hole positions as the drill
  // reader does.
  scans.runGerberTextPass = [this](int32_t& status, const std::string& source,
                                   const std::string& intermediate) {
    RunGerberTextPass(status, source, intermediate, gerberPass);
    if (status == 0) {
      const ArtHeader& header = gerberScan.Header;
      state.Extents = {header.MinX, header.MinY, header.MaxX, header.MaxY};
    }
  };
  readers.loadArtSections = loadArtSectionsCallable(gerberScan, reporter);
  GerberDrawContext drawing{this->store, reporter, gerberScan, {}};
  drawing.placeHole = [this](double x, double y, int32_t toolCode, const LayerRecord& layer,
                             const LayerFileRecord& file) {
    PlaceHole(this->store, x, y, toolCode, layer, file);
  };
  readers.drawGerberStream = drawGerberStreamCallable(drawing);
}

ImportOwners ImportSession::owners(std::span<LayerRecord> layers) {
  return ImportOwners{store,   services, reporter,          files, state, layers,
                      readers, scans,    &gerberFormat.Unit};
}

}  // namespace tvx
