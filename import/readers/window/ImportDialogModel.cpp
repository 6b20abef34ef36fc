#include "import/readers/window/ImportDialogModel.h"

#include "import/core/StatusCodes.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"

#include <numeric>
#include <utility>

namespace tvx {

ImportDialogModel::ImportDialogModel(ImportSession& session, std::span<LayerRecord> layers,
                                     MainWindowLink mainWindow)
    : LayerOrder(static_cast<size_t>(LayerCount)), session_(session), layers_(layers),
      mainWindow_(std::move(mainWindow)) {
  std::iota(LayerOrder.begin(), LayerOrder.end(), 1);
  filterButtonCaption = text("Show Filters", "62316");
  viewButtonCaption = text("View", "62311");
}

std::string ImportDialogModel::text(const char* defaultText, const char* id) const {
  return session_.services.LocalMessage(defaultText, id);
}

void ImportDialogModel::busy(bool on) const {
  if (mainWindow_.setBusyPointer)
    mainWindow_.setBusyPointer(on);
}

void ImportDialogModel::EditMsgLine(const std::string& line) {
  messageLine = line;
  if (messageLineChanged)
    messageLineChanged(messageLine);
}

void ImportDialogModel::showViewButton() {
  viewButtonCaption = text("View", "62311");
  viewButtonVisible = true;
  kindText = importKindName(session_.services, session_.state.Job.Kind);
}

void ImportDialogModel::showFilters(bool shown) {
  FiltersShown = shown;
  filterButtonCaption = shown ? text("Hide Filters", "62317") : text("Show Filters", "62316");
}

void ImportDialogModel::showLayerChoices() {
  layerList.clear();
  for (const LayerChoice& choice : session_.state.LayerChoices)
    layerList.push_back(choice.LayerName);
}

bool ImportDialogModel::ApplyFile() {
  const ImportKind kind = session_.state.Job.Kind;
  caption = programTitle + " - " + text("Import Parameters", "62318");
  if (kind == ImportKind::Unknown)
    return false;
  busy(true);
  const ScanResult result = session_.applyFile(layers_, NoCenter);
  busy(false);

  // Text not of its kind's format, and a plotter or drawing file that cannot be loaded, are shown
  // as plain text instead, and the window goes; so does a drill file that cannot be read. A Gerber
  // pass that stopped on a value (coordinates outside the limits, a range error) keeps the window
  // up, so that the format can be corrected and the file read again.
  const bool scanned = result == ScanResult::Scanned;
  const bool gerber = isGerberKind(kind);
  const bool plotterOrCad = isPlotterOrCadKind(kind);
  const bool displayed = result == ScanResult::NotReadable || (!scanned && plotterOrCad);
  if (displayed && mainWindow_.setDisplayFile)
    mainWindow_.setDisplayFile(true);
  // The main window's line showed the reading's progress; now it tells that the reading is over.
  if (mainWindow_.editMsgLine)
    mainWindow_.editMsgLine(
        scanned ? session_.state.Job.SourcePath + " " + text("Completed", "62399") : std::string());
  if (!scanned && !gerber && !plotterOrCad)
    return false;
  showViewButton();
  if (plotterOrCad)
    filterButtonVisible = false;
  if (!scanned && (plotterOrCad || displayed))
    return false;
  if (scanned)
    showLayerChoices();
  const ImportKind now = session_.state.Job.Kind;
  showFilters(isExcellonKind(kind) || now == ImportKind::DrillingRS274X ||
              now == ImportKind::DrillingRS274D);
  if (rowsChanged)
    rowsChanged();
  return true;
}

void ImportDialogModel::ImportFile() {
  const ImportState& state = session_.state;
  if (!state.Job.Prepared)
    return;
  const int32_t number = state.DialogLayer;
  // Without a bound layer (a drill file when the drill layer is not listed) there is nothing to
  // import into.
  if (number < 1 || number > static_cast<int32_t>(layers_.size()))
    return;
  LayerRecord& layer = layers_[size_t(number - 1)];

  topmost = true;
  if (mainWindow_.markProjectChanged)
    mainWindow_.markProjectChanged();

  busy(true);
  const int32_t status =
      session_.importBoundLayer(layers_, [this](const std::string& line) { EditMsgLine(line); });
  busy(false);

  // The outcome goes to both message lines: the main window's still shows the progress of the
  // reading otherwise.
  // What the reader dropped or cut is said with it, once.
  const std::string outcome =
      outcomeWithNotes(layer.DisplayName + " " +
                           (status == StatusOk ? text("Import successful", "62320")
                                               : text("Import failed", "62319")),
                       session_.notes());
  EditMsgLine(outcome);
  if (mainWindow_.editMsgLine)
    mainWindow_.editMsgLine(outcome);
  if (status != StatusOk)
    session_.reporter.prompts().beep();
  else
    filterButtonVisible = true;
  clearButtonVisible = true;

  // The imported layer becomes the only active one and goes to the front of the order.
  for (size_t i = 0; i < LayerOrder.size(); ++i) {
    const int32_t entry = LayerOrder[i];
    if (entry >= 1 && entry <= static_cast<int32_t>(layers_.size()))
      layers_[size_t(entry - 1)].Active = false;
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
  const bool again = number == lastLayer_ && state.Job.SourcePath == lastSource_;
  lastLayer_ = number;
  lastSource_ = state.Job.SourcePath;
  if (mainWindow_.redraw)
    mainWindow_.redraw(!again);
  topmost = false;
}

}  // namespace tvx
