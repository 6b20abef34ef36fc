// The import window's state outside the commit step: filling, the buttons, the text view, the
// file menu, the unit menu, the colour page, the highlights of a row click and the unload.
#include "import/readers/window/ImportWindowModel.h"

#include "import/readers/window/FileRequestMode.h"
#include "store/LayerCatalogue.h"

#include "import/core/FileRecognition.h"
#include "kernel/Palette.h"
#include "platform/SystemServices.h"
#include "store/LayerSymbol.h"

#include <filesystem>
#include <utility>

namespace tvx {

bool colourRefused(const LayerRecord& layer, int32_t colour, int32_t clearColourNumber) {
  return colour == clearColourNumber && (layer.Mask & layergroup::AllButOutlineAndDrill) != 0;
}

ImportWindowModel::ImportWindowModel(ImportWindowOwners owners)
    : DialogLayer(owners.session.state.DialogLayer), OffsetUnit(owners.displayUnit),
      session_(owners.session), layers_(owners.layers), highlights_(owners.highlights),
      link_(std::move(owners.window)), mainWindow_(owners.mainWindow),
      clearColourNumber_(owners.clearColourNumber), displayUnit_(owners.displayUnit),
      stages_(owners.session, owners.layers, owners.mainWindow) {
  stages_.messageLineChanged = [this](const std::string&) { notify(); };
  // A scan changes what the grid shows (format, layer choices, apertures): its rows follow.
  stages_.rowsChanged = [this] { FormUpdate(); };
  buildLists();
}

std::string ImportWindowModel::text(const char* defaultText, const char* id) const {
  return session_.services.LocalMessage(defaultText, id);
}

void ImportWindowModel::notify() {
  if (changed)
    changed();
}

LayerRecord* ImportWindowModel::dialogLayer() {
  if (DialogLayer < 1 || DialogLayer > static_cast<int32_t>(layers_.size()))
    return nullptr;
  return &layers_[size_t(DialogLayer - 1)];
}

LayerFileRecord* ImportWindowModel::firstFile() {
  LayerRecord* layer = dialogLayer();
  if (!layer || layer->Files.empty())
    return nullptr;
  return &layer->Files.front();
}

bool ImportWindowModel::ApplyFile() {
  stages_.NoCenter = NoCenter;
  return stages_.ApplyFile();
}

void ImportWindowModel::FormFill() {
  tabGridCaption = text("Import Parameters", "62318");
  tabPaletteCaption = text("Palette", "62210");
  stages_.caption = stages_.programTitle + " - " + tabGridCaption;
  buildLists();
  stages_.filterButtonVisible = false;
  stages_.clearButtonVisible = false;
  stages_.showFilters(false);
  ViewShown = false;
  OffsetUnit = displayUnit_;
}

void ImportWindowModel::FormUpdate() {
  buildRows();
  notify();
}

FileRecogniser ImportWindowModel::fileReader() const {
  FileRecogniser reader(session_.files, session_.services);
  reader.editMsgLine = mainWindow_.editMsgLine;
  return reader;
}

bool ImportWindowModel::showFileText(const std::string& path, int32_t background) {
  std::string content;
  if (!fileReader().LoadWholeFile(path, content))
    return false;
  viewerText = path + ":" + "\r\n\r\n" + content;
  viewerBackground = background;
  ViewShown = true;
  stages_.viewButtonCaption = text("Hide View", "62376");
  return true;
}

void ImportWindowModel::cmdClose() {
  highlights_.clear();
  if (link_.RedrawScreen)
    link_.RedrawScreen();
  if (link_.unload)
    link_.unload();
}

void ImportWindowModel::Form_Unload() {
  if (ViewShown)
    cmdView();
  if (link_.dialogClosed)
    link_.dialogClosed();
  highlights_.clear();
  if (DialogLayer == 0 && link_.currentLayer)
    DialogLayer = link_.currentLayer();
  if (link_.activateLayer)
    link_.activateLayer(DialogLayer);
}

void ImportWindowModel::cmdFilters() {
  stages_.showFilters(!stages_.FiltersShown);
  FormUpdate();
}

void ImportWindowModel::cmdClear() {
  if (LayerRecord* layer = dialogLayer()) {
    EnsureLayerSymbol(session_.store, *layer, true);
    if (mainWindow_.redraw)
      mainWindow_.redraw(true);
    if (layer->Mask != DrillLayerMask)
      DialogLayer = 0;
  }
  stages_.clearButtonVisible = false;
  stages_.filterButtonVisible = false;
  stages_.showFilters(false);
  FormUpdate();
}

void ImportWindowModel::cmdView() {
  if (!ViewShown) {
    if (!showFileText(session_.state.Job.SourcePath, importcolour::ViewerWhite))
      return;
  } else {
    ViewShown = false;
    stages_.viewButtonCaption = text("View", "62311");
  }
  notify();
}

void ImportWindowModel::M_FileView() {
  if (!link_.SetInpFileN)
    return;
  const std::string path = link_.SetInpFileN(filerequest::ForDisplay, ImpDir);
  if (path.empty())
    return;
  if (showFileText(path, importcolour::ViewerOnly))
    notify();
}

void ImportWindowModel::M_FileSelect() {
  if (ViewShown)
    cmdView();
  highlights_.clear();
  ImportJob& job = session_.state.Job;
  if (!job.SourcePath.empty())
    ImpDir = std::filesystem::path(job.SourcePath).parent_path().string();
  const std::string path =
      link_.SetInpFileN ? link_.SetInpFileN(filerequest::ForImport, ImpDir) : std::string();
  if (link_.saveImpDir)
    link_.saveImpDir(ImpDir);
  if (path.empty())
    return;

  stages_.clearButtonVisible = false;
  job.IntermediatePath.clear();
  job.Prepared = false;
  job.ApertureTableChoice = 0;
  job.SourcePath = path;
  job.Kind = ImportKind::Unknown;
  DialogLayer = 0;
  session_.state.LayerListIndex = 0;
  stages_.filterButtonVisible = false;
  stages_.viewButtonVisible = false;
  if (mainWindow_.setBusyPointer)
    mainWindow_.setBusyPointer(true);
  const ImportKind found = session_.recognise(path, mainWindow_.editMsgLine);
  bool applied = false;
  if (found != ImportKind::Unknown) {
    job.Kind = found;
    FormUpdate();
    if (mainWindow_.setBusyPointer)
      mainWindow_.setBusyPointer(false);
    applied = ApplyFile();
    const ImportKind k = job.Kind;
    if (applied && (isExcellonKind(k) || isPlotterOrCadKind(k)))
      ImportFile();
  }
  if (!applied) {
    if (mainWindow_.setBusyPointer)
      mainWindow_.setBusyPointer(false);
    // ApplyFile has asked for the text of a file it rejected; an unrecognised one asks here.
    if (found == ImportKind::Unknown && session_.reportRefusal(path) && mainWindow_.setDisplayFile)
      mainWindow_.setDisplayFile(true);
    cmdClose();
    return;
  }
  FormUpdate();
}

void ImportWindowModel::F_InchMM(int32_t index) {
  OffsetUnit = index == 1 ? 1 : 0;
  if (DialogLayer != 0) {
    const ImportKind k = kind();
    if (k == ImportKind::ArtworkRS274X || k == ImportKind::ArtworkRS274D)
      buildApertureRows();
    else if (k == ImportKind::DrillingRS274X || k == ImportKind::DrillingRS274D)
      buildToolRows();
  }
  buildLists();
  FormUpdate();
}

void ImportWindowModel::PaletteClick(int32_t colour) {
  colourPageShown = false;
  LayerRecord* layer = dialogLayer();
  if (!layer || colour < 0 || colour >= PaletteSize) {
    notify();
    return;
  }
  if (colourRefused(*layer, colour, clearColourNumber_)) {
    notify();
    return;
  }
  layer->ColourNumber = colour;
  layer->ColourRgb = static_cast<int32_t>(paletteRgb()[size_t(colour)]);
  for (LayerFileRecord& file : layer->Files)
    file.Colour = colour;
  buildRows();
  ImportFile();
  notify();
}

void ImportWindowModel::highlightApertureRow(int32_t n, bool toggle) {
  if (n < 1 || n > static_cast<int32_t>(ApertureRows.size()))
    return;
  const ApertureRow& row = ApertureRows[size_t(n - 1)];
  if (toggle && highlights_.HLDCode == row.Code) {
    highlights_.HLDCode = 0;
    highlights_.HLDCodeText.clear();
    return;
  }
  highlights_.HLDCode = row.Code;
  highlights_.HLDCodeText = text("Dcode:", "2940") + " " + row.Text;
}

void ImportWindowModel::highlightToolRow(int32_t n, bool toggle) {
  const LayerFileRecord* file = firstFile();
  if (!file || n < 1 || n > static_cast<int32_t>(file->Tools.size()))
    return;
  const int32_t code = file->Tools[size_t(n - 1)].Code;
  if (toggle && highlights_.HLPadstack == code) {
    highlights_.HLPadstack = 0;
    highlights_.HLPadstackText.clear();
    return;
  }
  highlights_.HLPadstack = code;
  if (isExcellonKind(kind()))
    highlights_.HLPadstackText = text("Tool No.", "2939") + " " + ToolLabel(code);
  else if (n <= static_cast<int32_t>(ApertureRows.size()))
    highlights_.HLPadstackText = text("Dcode:", "2940") + " " + ApertureRows[size_t(n - 1)].Text;
}

void ImportWindowModel::ClickRow(int32_t row, bool valueCell) {
  if (row < 0 || row >= static_cast<int32_t>(rows.size()))
    return;
  currentRow = row;
  const std::string key = rows[size_t(row)].Key;
  if (key == "IMP_FLEN") {
    if (valueCell)
      M_FileSelect();
    return;
  }
  const auto comma = key.find(',');
  if (comma == std::string::npos)
    return;
  const std::string first = key.substr(0, comma);
  const int32_t n = std::stoi(key.substr(comma + 1));
  if (first == "AF_APF")
    highlightApertureRow(n, true);
  else if (first == "AF_APH")
    highlightToolRow(n, true);
  else
    return;
  if (link_.RedrawScreen)
    link_.RedrawScreen();
  notify();
}

}  // namespace tvx
