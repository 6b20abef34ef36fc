#include "import/readers/window/ImportDialogModel.h"

#include "import/core/ReportStatus.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"

#include <numeric>
#include <utility>

namespace tvx {

namespace {
constexpr int32_t StatusNotSupported = 93;
constexpr int32_t StatusNotFormatTwo = 94;
}  // namespace

ImportDialogModel::ImportDialogModel(Store& store, const SystemServices& services,
                                     const StatusReporter& reporter, ImportState& state,
                                     std::span<LayerRecord> layers, const ReaderSet& readers,
                                     ScanSet scans, MainWindowLink mainWindow)
    : LayerOrder(static_cast<size_t>(LayerCount)), store_(store), services_(services),
      reporter_(reporter), state_(state), layers_(layers), readers_(readers),
      scans_(std::move(scans)), mainWindow_(std::move(mainWindow)) {
  std::iota(LayerOrder.begin(), LayerOrder.end(), 1);
  filterButtonCaption = text("Show Filters", "62316");
  viewButtonCaption = text("View", "62311");
}

std::string ImportDialogModel::text(const char* defaultText, const char* id) const {
  return services_.LocalMessage(defaultText, id);
}

void ImportDialogModel::busy(bool on) const {
  if (mainWindow_.setBusyPointer)
    mainWindow_.setBusyPointer(on);
}

void ImportDialogModel::notSupported() const {
  reporter_.ReportStatus(StatusNotSupported, state_.Job.SourcePath);
}

void ImportDialogModel::EditMsgLine(const std::string& line) {
  messageLine = line;
  if (messageLineChanged)
    messageLineChanged(messageLine);
}

void ImportDialogModel::showViewButton() {
  viewButtonCaption = text("View", "62311");
  viewButtonVisible = true;
  kindText = importKindName(services_, state_.Job.Kind);
}

void ImportDialogModel::showFilters(bool shown) {
  FiltersShown = shown;
  filterButtonCaption = shown ? text("Hide Filters", "62317") : text("Show Filters", "62316");
}

void ImportDialogModel::bind() {
  bindLayers(state_, layers_, NoCenter, readers_);
  layerList.clear();
  for (const LayerChoice& choice : state_.LayerChoices)
    layerList.push_back(choice.LayerName);
}

bool ImportDialogModel::ApplyFile() {
  busy(true);
  bool result = false;
  const ImportKind kind = state_.Job.Kind;
  if (isGerberKind(kind))
    result = applyGerber();
  else if (isExcellonKind(kind))
    result = applyExcellon();
  else if (isPlotterOrCadKind(kind))
    result = applyPlotterOrCad();
  busy(false);
  caption = programTitle + " - " + text("Import Parameters", "62318");
  return result;
}

bool ImportDialogModel::applyGerber() {
  ImportJob& job = state_.Job;
  job.Prepared = false;
  job.IntermediatePath = intermediatePathIn(job.WorkDirectory);
  int32_t status = 0;
  if (scans_.runGerberTextPass) {
    scans_.runGerberTextPass(status, job.SourcePath, job.IntermediatePath);
  } else {
    notSupported();
    status = 1;
  }
  showViewButton();
  // A failed scan leaves no scan result, and so nothing to import.
  if (status != 0)
    job.IntermediatePath.clear();
  else
    bind();
  showFilters(job.Kind == ImportKind::DrillingRS274X || job.Kind == ImportKind::DrillingRS274D);
  if (rowsChanged)
    rowsChanged();
  return true;
}

bool ImportDialogModel::applyExcellon() {
  ImportJob& job = state_.Job;
  if (!scans_.readExcellonText || !readers_.scanExcellonText) {
    notSupported();
    return false;
  }
  if (!scans_.readExcellonText(job.SourcePath, job.ExcellonText))
    return false;
  // The tool table is filled for real by the binding, into the drill layer's file record.
  std::vector<ToolEntry> tools;
  const int32_t found = readers_.scanExcellonText(job.ExcellonText, tools,
                                                  job.Kind == ImportKind::ExcellonFormatTwo, false);
  if (found == 0) {
    if (mainWindow_.setDisplayFile)
      mainWindow_.setDisplayFile();
    busy(false);
    return false;
  }
  if (found == static_cast<int32_t>(ImportKind::ExcellonFormatOne) &&
      job.Kind == ImportKind::ExcellonFormatTwo)
    reporter_.ReportStatus(StatusNotFormatTwo, job.SourcePath);
  job.Kind = static_cast<ImportKind>(found);
  showViewButton();
  bind();
  kindText = importKindName(services_, job.Kind);  // the binding's scan may have changed it
  showFilters(true);
  if (rowsChanged)
    rowsChanged();
  return true;
}

bool ImportDialogModel::applyPlotterOrCad() {
  ImportJob& job = state_.Job;
  bool loaded = false;
  if (job.Kind == ImportKind::Hpgl) {
    if (scans_.readHpglText)
      loaded = scans_.readHpglText(job.SourcePath, job.HpglText);
    else
      notSupported();
  } else {
    if (scans_.readDxfFile)
      loaded = scans_.readDxfFile(job.SourcePath, job.DxfText);
    else
      notSupported();
  }
  showViewButton();
  filterButtonVisible = false;
  if (loaded) {
    bind();
    showFilters(false);
  } else {
    if (mainWindow_.setDisplayFile)
      mainWindow_.setDisplayFile();
    busy(false);
  }
  if (rowsChanged)
    rowsChanged();
  return loaded;
}

void ImportDialogModel::ImportFile() {
  ImportJob& job = state_.Job;
  if (!job.Prepared)
    return;
  const int32_t number = state_.DialogLayer;
  // Without a bound layer (a drill file when the drill layer is not listed) there is nothing to
  // import into.
  if (number < 1 || number > static_cast<int32_t>(layers_.size()))
    return;
  LayerRecord& layer = layers_[number - 1];

  topmost = true;
  if (mainWindow_.markProjectChanged)
    mainWindow_.markProjectChanged();

  busy(true);
  int32_t status = 0;
  ImportContext context{store_, services_, reporter_,
                        state_, readers_,  [this](const std::string& line) { EditMsgLine(line); }};
  ImportIntoLayer(status, layer, context);
  busy(false);

  if (status != 0) {
    EditMsgLine(layer.DisplayName + " " + text("Import failed", "62319"));
    reporter_.prompts().beep();
    layer.LastFile.clear();
  } else {
    EditMsgLine(layer.DisplayName + " " + text("Import successful", "62320"));
    layer.LastFile = job.SourcePath;
    filterButtonVisible = true;
    centreImportedLayer(store_, layer, state_.Extents);
  }
  clearButtonVisible = true;

  // The imported layer becomes the only active one and goes to the front of the order.
  for (size_t i = 0; i < LayerOrder.size(); ++i) {
    const int32_t entry = LayerOrder[i];
    if (entry >= 1 && entry <= static_cast<int32_t>(layers_.size()))
      layers_[entry - 1].Active = false;
    if (mainWindow_.checkActiveCategory)
      mainWindow_.checkActiveCategory(entry, false);
    if (entry == number) {
      layer.Active = true;
      std::swap(LayerOrder[i], LayerOrder[0]);
      if (mainWindow_.checkActiveCategory)
        mainWindow_.checkActiveCategory(entry, true);
    }
  }

  if (!layer.Files.empty() && (layer.Files.front().FilterMask & filter::AF_IPP) != 0 &&
      mainWindow_.showHoles)
    mainWindow_.showHoles();
  if (mainWindow_.redraw)
    mainWindow_.redraw();
  topmost = false;
}

}  // namespace tvx
