// The one commit step of the import window's grid and the choice of the target layer.
#include "import/readers/window/ImportWindowModel.h"

#include "common/ParseList.h"
#include "common/ToNumber.h"
#include "import/readers/ImportSettings.h"
#include "platform/SystemServices.h"

#include <cctype>
#include <cmath>
#include <cstdlib>
#include <map>

namespace tvx {

namespace {

constexpr double OffsetLimit = 220000000.0;  // the edge of the world
constexpr double LargestHole = 10000000.0;   // 100 mm

// The fixed list behind each list key.
int32_t listOfKey(const std::string& first) {
  static const std::map<std::string, int32_t> lists = {
      {"IMP_FLET", importlist::FileType},    {"IMP_UNITG", importlist::Unit},
      {"IMP_UNITDXF", importlist::Unit},     {"IMP_UNITD", importlist::Unit},
      {"IMP_OZG", importlist::Zeroes},       {"IMP_OZD", importlist::Zeroes},
      {"IMP_PFXG", importlist::Precision},   {"IMP_PFYG", importlist::Precision},
      {"IMP_PRFXYD", importlist::Precision}, {"IMP_LAYER", importlist::Layers},
      {"AF_ICL", importlist::Colour},        {"AF_MAPHOLES", importlist::HoleMapping},
      {"AF_IMODE", importlist::ImportMode}};
  const auto found = lists.find(first);
  return found == lists.end() ? importlist::None : found->second;
}

// Digits before and after the point of a precision entry such as "2.4".
bool precisionOf(const std::string& entry, int32_t& before, int32_t& after) {
  if (entry.size() < 2 || !std::isdigit(static_cast<unsigned char>(entry.front())) ||
      !std::isdigit(static_cast<unsigned char>(entry.back())))
    return false;
  before = entry.front() - '0';
  after = entry.back() - '0';
  return true;
}

}  // namespace

void ImportWindowModel::CommitCell(int32_t row, const std::string& cellText) {
  if (row < 0 || row >= static_cast<int32_t>(rows.size()))
    return;
  currentRow = row;
  const GridRow& target = rows[size_t(row)];
  if (target.Key.empty() || target.ReadOnly)
    return;
  commit(target.Key, cellText);
}

void ImportWindowModel::commit(const std::string& key, const std::string& cellText) {
  CellEdited = false;
  if (cellText.empty()) {
    FormUpdate();  // the old value is shown again
    return;
  }
  const double v = ToNumber(cellText);
  const double L = v / unitTableValue(OffsetUnit) * session_.services.DatabaseUnitsPerMm();
  const ParsedList parsed = ParseList(key);
  const std::string first = parsed.token(1);
  const int32_t n = static_cast<int32_t>(parsed.value(2));

  int32_t index = -1;
  if (const int32_t which = listOfKey(first); which != importlist::None) {
    const std::vector<std::string>& entries = list(which);
    for (size_t i = 0; i < entries.size(); ++i)
      if (entries[i] == cellText)
        index = static_cast<int32_t>(i);
    if (index < 0 && which != importlist::Precision) {
      FormUpdate();
      return;
    }
  }

  int saved = 0;
  if (!commitImport(first, n, cellText, v, L, index, saved) &&
      !commitLayerKeys(first, n, v, L, index)) {
    FormUpdate();
    return;
  }
  buildRows();
  if (saved != 0) {
    // One commit, one replacement of the settings file.
    SettingsBatch batch(session_.services);
    if (saved & 1)
      SaveExcellonSettings(session_.services, session_.excellonFormat);
    if (saved & 2)
      SaveGerberSettings(session_.services, session_.gerberFormat);
    if (saved & 4)
      SaveDxfSettings(session_.services, session_.dxfFormat);
    batch.commit();
  }
  notify();
}

void ImportWindowModel::reRun() {
  const int32_t remembered = DialogLayer;
  const bool applied = ApplyFile();
  if (remembered != 0 && applied) {
    DialogLayer = remembered;
    if (LayerRecord* layer = dialogLayer())
      session_.state.CurrentSymbol = layer->SymbolHandle;
    ImportFile();
  }
}

// After a modal aperture window: the file scanned again when asked, the layer restored, the
// aperture rows rebuilt and the file imported.
void ImportWindowModel::restoreAfterApertures(bool scanAgain) {
  const int32_t remembered = DialogLayer;
  if (scanAgain) {
    session_.state.Job.Prepared = false;
    ApplyFile();
  } else {
    buildRows();
  }
  if (remembered != 0) {
    DialogLayer = remembered;
    if (LayerRecord* layer = dialogLayer())
      session_.state.CurrentSymbol = layer->SymbolHandle;
    buildApertureRows();
    ImportFile();
  }
}

// The keys of the file and its format. True when the key was one of them and was taken.
bool ImportWindowModel::commitImport(const std::string& first, int32_t, const std::string& cellText,
                                     double v, double, int32_t index, int& saved) {
  ImportJob& job = session_.state.Job;
  GerberFormat& gerber = session_.gerberFormat;
  ExcellonFormat& excellon = session_.excellonFormat;
  DxfFormat& dxf = session_.dxfFormat;
  const bool scaleTaken = v > 0 && v < 10;
  int32_t before = 0;
  int32_t after = 0;

  if (first == "IMP_FLET") {
    job.IntermediatePath.clear();
    job.Prepared = false;
    session_.state.LayerListIndex = 0;
    DialogLayer = 0;
    job.Kind = index == 1 ? ImportKind::ExcellonFormatOne : ImportKind::ExcellonFormatTwo;
    if (!ApplyFile()) {
      cmdClose();
      return true;
    }
    if (job.Kind == ImportKind::ExcellonFormatOne) {
      LoadGerberSettings(session_.services, gerber);
      LoadExcellonSettings(session_.services, excellon);
    }
    if (DialogLayer != 0)
      ImportFile();
  } else if (first == "IMP_UNITG") {
    gerber.Unit = index;
    saved |= 2;
    reRun();
  } else if (first == "IMP_OZG") {
    gerber.OmittedZeros = index;
    saved |= 2;
    reRun();
  } else if (first == "IMP_SCFXG" || first == "IMP_SCFYG") {
    if (!scaleTaken)
      return false;
    gerber.Scale[first == "IMP_SCFXG" ? AxisX : AxisY] = v;
    saved |= 2;
    reRun();
  } else if (first == "IMP_PFXG" || first == "IMP_PFYG") {
    if (!precisionOf(cellText, before, after))
      return false;
    const int axis = first == "IMP_PFXG" ? AxisX : AxisY;
    gerber.IntegerDigits[size_t(axis)] = before;
    gerber.DecimalDigits[size_t(axis)] = after;
    saved |= 2;
    reRun();
  } else if (first == "IMP_UNITDXF") {
    dxf.DxfUnit = index;
    saved |= 4;
    reRun();
  } else if (first == "IMP_SCFDXF") {
    if (!scaleTaken)
      return false;
    dxf.DxfScale = v;
    saved |= 4;
    reRun();
  } else if (first == "IMP_UNITD") {
    excellon.XYunit = index;
    saved |= 1;
    ImportFile();
  } else if (first == "IMP_OZD") {
    excellon.OMZeros = index;
    saved |= 1;
    ImportFile();
  } else if (first == "IMP_PRFXYD") {
    if (!precisionOf(cellText, before, after))
      return false;
    excellon.XYFormB = before;
    excellon.XYFormA = after;
    saved |= 1;
    ImportFile();
  } else if (first == "IMP_APT") {
    if (!link_.openApertureTable)
      return false;
    if (link_.setTopmost)
      link_.setTopmost(true);
    link_.openApertureTable();
    if (link_.setTopmost)
      link_.setTopmost(false);
    restoreAfterApertures(true);
    stages_.showFilters(false);
    stages_.filterButtonVisible = true;
  } else if (first == "IMP_APTUSE") {
    if (!link_.openApertureUse)
      return false;
    readArtSections();
    if (link_.setTopmost)
      link_.setTopmost(true);
    const int32_t flags = link_.openApertureUse();
    if (link_.setTopmost)
      link_.setTopmost(false);
    if ((flags & ApertureFileCreated) != 0)
      restoreAfterApertures(true);
    else if ((flags & ArtworkUpdated) != 0)
      restoreAfterApertures(false);
    else
      buildApertureRows();
  } else if (first == "IMP_LAYER") {
    chooseLayer(index);
  } else {
    return false;
  }
  return true;
}

// The keys of the bound layer and its first file. True when the key was taken.
bool ImportWindowModel::commitLayerKeys(const std::string& first, int32_t n, double v, double L,
                                        int32_t index) {
  LayerRecord* layer = dialogLayer();
  LayerFileRecord* file = firstFile();
  if (!layer || !file)
    return false;
  const bool box = v != 0;

  if (first == "AFS_XO" || first == "AFS_YO") {
    if (std::abs(L) > OffsetLimit)
      return false;
    const int32_t offset = toInt32(L);
    const bool x = first == "AFS_XO";
    (x ? layer->OffsetX : layer->OffsetY) = offset;
    for (LayerFileRecord& f : layer->Files)
      (x ? f.OffsetX : f.OffsetY) = offset;
    ImportFile();
  } else if (first == "AFS_NOCENTER") {
    layer->OriginalCoordinates = box;
    for (LayerFileRecord& f : layer->Files)
      f.OriginalCoordinates = box;
    NoCenter = box;
    if (link_.saveNoCenter)
      link_.saveNoCenter(box);
    ImportFile();
  } else if (first == "AFS_DXFTRUESIZE") {
    for (LayerFileRecord& f : layer->Files)
      f.TrueLineSize = box;
    ImportFile();
  } else if (first == "AFS_MIR") {
    layer->Mirror = box;
    for (LayerFileRecord& f : layer->Files)
      f.Mirror = box;
  } else if (first == "AF_IMODE") {
    layer->ImportMode = index;
  } else if (first == "AF_ICL") {
    if (index == 0) {
      colourPageShown = true;
      return true;
    }
    layer->ColourNumber = layer->DefaultColourNumber;
    layer->ColourRgb = layer->DefaultColourRgb;
    for (LayerFileRecord& f : layer->Files)
      f.Colour = layer->ColourNumber;
    ImportFile();
  } else if (first == "AF_APF") {
    if (n < 1 || n > static_cast<int32_t>(ApertureRows.size()))
      return false;
    ApertureRows[size_t(n - 1)].Selected = box;
    layer->Apertures = ApertureRows;
    rebuildTag();
    if (box) {
      highlightApertureRow(n, false);
    } else {
      highlights_.HLDCode = 0;
      highlights_.HLDCodeText.clear();
    }
    ImportFile();
  } else if (first == "AF_MAPHOLES") {
    HoleMapping = index;
    buildToolRows();
    ImportFile();
  } else if (first == "AF_APH") {
    if (n < 1 || n > static_cast<int32_t>(file->Tools.size()) || L < 0 || L >= LargestHole)
      return false;
    file->Tools[size_t(n - 1)].Diameter = toInt32(L);
    highlightToolRow(n, false);
    ImportFile();
  } else {
    for (const FilterBitInfo& bit : FilterBits)
      if (first == bit.key) {
        if (box)
          file->FilterMask |= bit.bit;
        else
          file->FilterMask &= ~bit.bit;
        ImportFile();
        return true;
      }
    return false;
  }
  return true;
}

// The first file's Tag: a blank when every aperture row is selected, else the labels of the
// unselected rows between bars, the list that the drawing pass leaves out.
void ImportWindowModel::rebuildTag() {
  LayerFileRecord* file = firstFile();
  if (!file)
    return;
  std::string tag = "|";
  bool any = false;
  for (const ApertureRow& row : ApertureRows) {
    if (row.Selected)
      continue;
    std::string label = row.Text.substr(0, 5);
    const auto start = label.find_first_not_of(' ');
    const auto end = label.find_last_not_of(' ');
    label = start == std::string::npos ? std::string() : label.substr(start, end - start + 1);
    tag += label + "|";
    any = true;
  }
  file->Tag = any ? tag : std::string(" ");
}

void ImportWindowModel::chooseLayer(int32_t index) {
  ImportState& state = session_.state;
  if (index < 0 || index >= static_cast<int32_t>(state.LayerChoices.size()))
    return;
  const int32_t number = state.LayerChoices[size_t(index)].LayerNumber;
  if (number < 1 || number > static_cast<int32_t>(layers_.size()))
    return;
  state.LayerListIndex = index;
  highlights_.clear();
  session_.chooseLayer(layers_, number, NoCenter);
  LayerRecord& layer = layers_[size_t(number - 1)];
  const ImportJob& job = state.Job;
  stages_.kindText = importKindName(session_.services, job.Kind);
  layer.OffsetX = layer.OffsetY = 0;  // the first import into a layer has no offsets
  if (isGerberKind(job.Kind)) {
    if (job.Kind == ImportKind::DrillingRS274X || job.Kind == ImportKind::DrillingRS274D) {
      buildToolRows();
      stages_.showFilters(true);
    } else {
      buildApertureRows();
      stages_.showFilters(false);
      stages_.filterButtonVisible = true;
    }
    // A drilling layer shows its filter button only once an import into it has succeeded.
    ImportFile();
  } else if (job.Kind == ImportKind::Dxf) {
    ImportFile();
  }
}

}  // namespace tvx
