#include "import/readers/ImportSession.h"

#include "import/core/FileRecognition.h"
#include "import/core/StatusCodes.h"
#include "import/gerber/ApertureRows.h"
#include "kernel/Store.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"
#include "store/LayerCatalogue.h"

#include <algorithm>
#include <array>

namespace tvx {

std::vector<int32_t> gerberLayerOrder() {
  std::vector<int32_t> order = {3, 4, 1, 6, 2, 5};
  for (int32_t n = 7; n < BoardOutlineLayer; ++n)
    order.push_back(n);
  return order;
}

namespace {

bool layerIsEmpty(const Store& store, const LayerRecord& layer) {
  return store.OA_GetCount(store.S_SymbolEntryArray(layer.SymbolHandle)) +
             store.OA_GetCount(store.S_SymbolItemArray(layer.SymbolHandle)) ==
         0;
}

}  // namespace

ImportSession::ImportSession(Store& theStore, SystemServices& theServices, UserPrompts& prompts)
    : store(theStore), services(theServices), reporter(services, prompts, titles, digits),
      files(services, &prompts), gerberPass{services,     reporter,   files,
                                            gerberFormat, gerberScan, nullptr,
                                            {},           {},         {}},
      excellon(store, services, reporter, excellonFormat, state.Extents),
      gerberReader(store, reporter, gerberPass, state.Extents), excellonReader(excellon, files),
      hpglReader(files, services, store), dxfReader(files, services, store, reporter, dxfFormat) {
  LoadExcellonSettings(services, excellonFormat);
  LoadGerberSettings(services, gerberFormat);
  LoadDxfSettings(services, dxfFormat);
  readers.add(ReaderGerberArtwork, gerberReader);
  readers.add(ReaderGerberDrilling, gerberReader);
  readers.add(ReaderExcellon, excellonReader);
  readers.add(ReaderHpgl, hpglReader);
  readers.add(ReaderDxf, dxfReader);
  excellonReader.restoreStoredFormat = [this] {
    LoadExcellonSettings(this->services, excellonFormat);
  };
}

void ImportSession::setYield(std::function<void()> yield) {
  yield_ = std::move(yield);
  gerberPass.yield = yield_;
  excellon.yield = yield_;
}

ImportKind ImportSession::recognise(const std::string& path, const MessageLine& editMsgLine,
                                    const std::function<void()>& yield) {
  FileRecogniser recogniser(files, services);
  recogniser.editMsgLine = editMsgLine;
  recogniser.yield = yield ? yield : yield_;
  recogniser.gerberUnit = &gerberFormat.Unit;
  const ImportKind kind = recogniser.RecogniseFile(path);
  lastRefusal = recogniser.refusal;
  return kind;
}

bool ImportSession::reportRefusal(const std::string& path) {
  switch (lastRefusal) {
  case Refusal::Unreadable:
    return false;
  case Refusal::Empty:
    reporter.ReportStatus(StatusEmptyFile, path);
    return false;
  case Refusal::None:
  case Refusal::Unrecognised:
    break;
  }
  reporter.ReportStatus(StatusNotSupported, path);
  return true;
}

void ImportSession::startJob(const std::string& path, ImportKind kind) {
  const std::string workDirectory = state.Job.WorkDirectory;
  state.Job = ImportJob{};
  state.Job.WorkDirectory = workDirectory;
  state.Job.SourcePath = path;
  state.Job.Kind = kind;
  state.DialogLayer = 0;
  state.LayerChoices.clear();
  state.LayerListIndex = 0;
}

ScanResult ImportSession::applyFile(std::span<LayerRecord> layers, bool noCenter) {
  ImportJob& job = state.Job;
  FileReader* reader = readers.forKind(job.Kind);
  if (!reader) {
    reporter.ReportStatus(StatusNotSupported, job.SourcePath);
    return ScanResult::Failed;
  }
  const ScanResult result = reader->scan(job);
  if (result == ScanResult::Scanned)
    bindLayers(state, layers, noCenter, readers);
  return result;
}

void ImportSession::chooseLayer(std::span<LayerRecord> layers, int32_t number, bool noCenter) {
  if (number < 1 || number > static_cast<int32_t>(layers.size()))
    return;
  LayerRecord& layer = layers[size_t(number - 1)];
  state.DialogLayer = number;
  state.CurrentSymbol = layer.SymbolHandle;
  StartLayerFile(state.Job, layer, noCenter);
}

int32_t ImportSession::importBoundLayer(std::span<LayerRecord> layers,
                                        const MessageLine& editMsgLine) {
  const int32_t number = state.DialogLayer;
  if (number < 1 || number > static_cast<int32_t>(layers.size()))
    return StatusReported;
  LayerRecord& layer = layers[size_t(number - 1)];
  int32_t status = StatusOk;
  ImportIntoLayer(status, layer, state, readers, store, reporter, editMsgLine);
  if (status == StatusOk) {
    layer.LastFile = state.Job.SourcePath;
    centreImportedLayer(store, layer, state.Extents);
  } else {
    layer.LastFile.clear();
  }
  return status;
}

bool ImportSession::bindRequestedLayer(std::span<LayerRecord> layers,
                                       const ImportOptions& options) {
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
  if (!offered || number < 1 || number > static_cast<int32_t>(layers.size()))
    return false;
  if (number != state.DialogLayer)
    chooseLayer(layers, number, options.noCenter);
  return true;
}

ImportResult ImportSession::importFile(std::span<LayerRecord> layers, const std::string& path,
                                       const ImportOptions& options) {
  ImportResult result;
  ImportKind kind = options.kind;
  if (kind == ImportKind::Unknown)
    kind = recognise(path, options.editMsgLine, options.yield);
  else
    lastRefusal = Refusal::None;
  startJob(path, kind);
  result.kind = kind;
  if (kind == ImportKind::Unknown) {
    reportRefusal(path);
    return result;
  }
  ImportJob& job = state.Job;
  // The readers hand control to the event loop through options.yield for this file only.
  struct FileYield {
    ImportSession& session;
    std::function<void()> kept;
    ~FileYield() { session.setYield(std::move(kept)); }
  } fileYield{*this, yield_};
  if (options.yield)
    setYield(options.yield);
  const ScanResult scanned = applyFile(layers, options.noCenter);
  result.kind = job.Kind;
  result.scanned = state.Extents;
  if (scanned != ScanResult::Scanned)
    return result;
  if (!job.Prepared || !bindRequestedLayer(layers, options)) {
    reporter.ReportStatus(StatusNoLayers, path);
    return result;
  }
  result.kind = job.Kind;
  result.layer = state.DialogLayer;
  result.status = importBoundLayer(layers, options.editMsgLine);
  result.notes = notes();
  if (isGerberKind(job.Kind)) {
    // The layer lists its apertures as the import window would have.
    LayerRecord& layer = layers[size_t(result.layer - 1)];
    if (result.status == StatusOk)
      layer.Apertures = gerberApertureRows(services, apertureRowUnit, gerberScan.Lists,
                                           layer.Files.empty() ? " " : layer.Files.front().Tag);
  }
  return result;
}

std::vector<std::string> ImportSession::notes() {
  const FileReader* reader = readers.forKind(state.Job.Kind);
  return reader ? reader->notes() : std::vector<std::string>();
}

std::string outcomeWithNotes(const std::string& outcome, const std::vector<std::string>& notes) {
  if (notes.empty())
    return outcome;
  std::string line = outcome + " - " + notes.front();
  if (notes.size() > 1)
    line += " (and " + std::to_string(notes.size() - 1) + " more)";
  return line;
}

std::vector<ImportResult> ImportSession::importFiles(std::span<LayerRecord> layers,
                                                     const std::vector<std::string>& paths,
                                                     const BatchOptions& options) {
  std::vector<ImportResult> results;
  std::array<bool, LayerCount + 1> taken{};
  bool firstGerber = true;
  for (size_t n = 0; n < paths.size(); ++n) {
    const std::string& path = paths[n];
    const int32_t bound = n < options.layers.size() ? options.layers[n] : 0;
    ImportOptions single;
    single.noCenter = options.noCenter;
    single.editMsgLine = options.editMsgLine;
    single.kind = recognise(path, options.editMsgLine);
    ImportResult result;
    result.kind = single.kind;
    const auto isFree = [&](int32_t number) {
      return number <= static_cast<int32_t>(layers.size()) && !taken[size_t(number)] &&
             layerIsEmpty(store, layers[size_t(number - 1)]);
    };
    const auto freeGerberLayer = [&] {
      for (const int32_t number : gerberLayerOrder())
        if (isFree(number))
          return number;
      return 0;
    };
    if (bound != 0 && single.kind != ImportKind::Unknown) {
      single.layer = bound;
      firstGerber = firstGerber && !isGerberKind(single.kind);
    } else if (isGerberKind(single.kind)) {
      single.layer = firstGerber && options.firstGerberLayer != 0 ? options.firstGerberLayer
                                                                  : freeGerberLayer();
      firstGerber = false;
      result.noFreeLayer = single.layer == 0;
    } else if (isPlotterOrCadKind(single.kind)) {
      // Plotter and drawing files go to the board outline layer, which one of them fills: a
      // second plot is refused rather than replacing the first, a second drawing takes the next
      // free artwork layer.
      single.layer = isFree(BoardOutlineLayer)        ? BoardOutlineLayer
                     : single.kind == ImportKind::Dxf ? freeGerberLayer()
                                                      : 0;
      result.noFreeLayer = single.layer == 0;
    }
    if (single.kind == ImportKind::Unknown) {
      reportRefusal(path);
    } else if (result.noFreeLayer) {
      reporter.ReportStatus(StatusNoLayers, path);
      result.status = StatusNoLayers;
    } else {
      result = importFile(layers, path, single);
    }
    if (result.status == StatusOk && result.layer != 0)
      taken[size_t(result.layer)] = true;
    if (options.afterEach)
      options.afterEach(path, result);
    results.push_back(result);
  }
  return results;
}

}  // namespace tvx
