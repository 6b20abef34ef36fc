// The rows of the import window's grid, its fixed lists, and the aperture and tool rows.
#include "import/readers/window/ImportWindowModel.h"

#include "import/gerber/ArtSections.h"

#include "common/FormatNumber.h"
#include "common/LengthFormats.h"
#include "import/gerber/ApertureLabel.h"
#include "import/gerber/ApertureRows.h"
#include "import/gerber/ArtFile.h"
#include "kernel/Palette.h"
#include "platform/SystemServices.h"

#include <cmath>

namespace tvx {

namespace {

constexpr const char* ScalePicture = "#0.0##";

std::string digitsText(int32_t before, int32_t after) {
  return std::to_string(before) + "." + std::to_string(after);
}

bool isArtworkGerber(ImportKind kind) {
  return kind == ImportKind::ArtworkRS274X || kind == ImportKind::ArtworkRS274D;
}
bool isDrillingGerber(ImportKind kind) {
  return kind == ImportKind::DrillingRS274X || kind == ImportKind::DrillingRS274D;
}

GridRow cell(std::string key, std::string caption, CellKind kind, std::string value,
             int32_t list = importlist::None) {
  GridRow row;
  row.Key = std::move(key);
  row.Caption = std::move(caption);
  row.Cell = kind;
  row.Value = std::move(value);
  row.List = list;
  return row;
}

GridRow checkBox(std::string key, std::string caption, bool checked) {
  GridRow row = cell(std::move(key), std::move(caption), CellKind::Check, checked ? "1" : "0");
  row.Checked = checked;
  return row;
}

std::string entry(const std::vector<std::string>& list, int32_t index) {
  if (index < 0 || index >= static_cast<int32_t>(list.size()))
    return {};
  return list[size_t(index)];
}

}  // namespace

std::string ToolLabel(int32_t code) {
  std::string label = "T" + std::to_string(code);
  label.resize(5, ' ');
  return label;
}

std::string colourChoiceText(const SystemServices& services, const LayerRecord& layer) {
  std::string word;
  if (layer.ColourNumber == layer.DefaultColourNumber)
    word = services.LocalMessage("Default", "62280");
  else if (layer.ColourNumber < PaletteSize)
    word = services.LocalMessage("Palette", "62210");
  return "(" + word + ")";
}

std::string ImportWindowModel::lengthText(double storeLength) const {
  return LengthText(storeLength, OffsetUnit, session_.services.DatabaseUnitsPerMm());
}

std::string ImportWindowModel::shortLengthText(double storeLength) const {
  return ShortLengthText(storeLength, OffsetUnit, session_.services.DatabaseUnitsPerMm());
}

void ImportWindowModel::buildLists() {
  lists_.assign(size_t(importlist::Count), {});
  lists_[importlist::ImportMode] = {text("Clear before import", "62326"), text("Append", "62327")};
  lists_[importlist::Colour] = {text("Selected from palette", "62281"),
                                text("Use default layer color", "62282")};
  if (isExcellonKind(kind()))
    lists_[importlist::FileType] = {
        importKindName(session_.services, ImportKind::ExcellonFormatTwo),
        importKindName(session_.services, ImportKind::ExcellonFormatOne)};
  else
    lists_[importlist::FileType] = {importKindName(session_.services, kind())};
  lists_[importlist::Precision] = {"2.3", "2.4", "2.5", "3.2", "3.3",
                                   "3.4", "4.2", "4.3", "4.4", "5.3"};
  lists_[importlist::Zeroes] = {text("Trailing", "62328"), text("Leading", "62329")};
  lists_[importlist::Unit] = {text("Inches", "62174"), text("Metric", "62330")};
  lists_[importlist::HoleMapping] = {text("adjusted to aperture size", "62331"),
                                     text("explicit apeture size", "62332")};
  lists_[importlist::Layers].clear();
  for (const LayerChoice& choice : session_.state.LayerChoices)
    lists_[importlist::Layers].push_back(choice.LayerName);
}

void ImportWindowModel::addFormatRows(ImportKind k) {
  const int n = static_cast<int>(k);
  if (n == 1 || n == 3 || n == 5)
    rows.push_back(groupRow(text("Format", "62334"), text("Info", "62335")));
  else if (n == 2 || n == 4 || n == 6 || n == 8)
    rows.push_back(groupRow(text("Format", "62334"),
                            text("Enter format paremeters below:", "62336"),
                            importcolour::EnterFormat));

  const ExcellonFormat& exc = session_.excellonFormat;
  const std::string unit = text("Unit", "62315");
  const std::string zeroes = text("Omitted Zeroes", "62337");
  const std::string precision = text("Precision Format XY", "62343");
  if (k == ImportKind::ExcellonFormatTwo) {
    rows.push_back(readOnlyRow(cell("", unit, CellKind::Text, entry(list(7), exc.XYunit))));
    rows.push_back(readOnlyRow(cell("", zeroes, CellKind::Text, entry(list(6), exc.OMZeros))));
    rows.push_back(
        readOnlyRow(cell("", precision, CellKind::Text, digitsText(exc.XYFormB, exc.XYFormA))));
  } else if (k == ImportKind::ExcellonFormatOne) {
    rows.push_back(cell("IMP_UNITD", unit, CellKind::List, entry(list(7), exc.XYunit), 7));
    rows.push_back(cell("IMP_OZD", zeroes, CellKind::List, entry(list(6), exc.OMZeros), 6));
    rows.push_back(
        cell("IMP_PRFXYD", precision, CellKind::List, digitsText(exc.XYFormB, exc.XYFormA), 5));
  } else if (k == ImportKind::Dxf) {
    const DxfFormat& dxf = session_.dxfFormat;
    rows.push_back(cell("IMP_UNITDXF", unit, CellKind::List, entry(list(7), dxf.DxfUnit), 7));
    rows.push_back(cell("IMP_SCFDXF", text("Scale Factor", "loc"), CellKind::Number,
                        FormatNumber(dxf.DxfScale, ScalePicture)));
  } else if (isGerberKind(k)) {
    const GerberFormat& g = session_.gerberFormat;
    const bool fixed = k == ImportKind::ArtworkRS274X || k == ImportKind::DrillingRS274X;
    const auto add = [&](GridRow row) {
      rows.push_back(fixed ? readOnlyRow(std::move(row)) : row);
    };
    add(cell("IMP_UNITG", unit, CellKind::List, entry(list(7), g.Unit), 7));
    add(cell("IMP_OZG", zeroes, CellKind::List, entry(list(6), g.OmittedZeros), 6));
    add(cell("IMP_SCFXG", text("Scale Factor X", "62338"), CellKind::Number,
             FormatNumber(g.Scale[AxisX], ScalePicture)));
    add(cell("IMP_SCFYG", text("Scale Factor Y", "62339"), CellKind::Number,
             FormatNumber(g.Scale[AxisY], ScalePicture)));
    add(cell("IMP_PFXG", text("Precision Format X", "62340"), CellKind::List,
             digitsText(g.IntegerDigits[AxisX], g.DecimalDigits[AxisX]), 5));
    add(cell("IMP_PFYG", text("Precision Format Y", "62341"), CellKind::List,
             digitsText(g.IntegerDigits[AxisY], g.DecimalDigits[AxisY]), 5));
    GridRow table = cell("IMP_APT", text("Aperture Table", "62206"), CellKind::Button,
                         fixed ? text("Embedded", "62365") : apertureTableName);
    table.Enabled = apertureTableWindow && !fixed;
    add(std::move(table));
    if (!session_.state.Job.IntermediatePath.empty()) {
      GridRow use = cell("IMP_APTUSE", text("Apertures used", "62342"), CellKind::Button,
                         text("Click for info & setup", "62366"));
      use.Enabled = apertureUseWindow;
      rows.push_back(std::move(use));
    }
  }
}

void ImportWindowModel::addLayerRows(ImportKind k) {
  const LayerRecord* layer = dialogLayer();
  // The layer choice needs a scanned file; the rows of a bound layer stay without one, so that a
  // rescan that found nothing still shows the layer's values.
  if (session_.state.Job.Prepared) {
    rows.push_back(groupRow(text("Layer Import", "62344"), text("Setup", "62345")));
    const std::string name = layer ? layer->DisplayName : text("Click to select", "62367");
    const bool choosable = isGerberKind(k) || k == ImportKind::Dxf;
    GridRow choice = cell("IMP_LAYER", text("Import to layer", "62346"),
                          choosable ? CellKind::List : CellKind::Text, name,
                          choosable ? importlist::Layers : importlist::None);
    rows.push_back(choosable ? choice : readOnlyRow(choice));
  }
  if (!layer)
    return;

  GridRow colour = cell("AF_ICL", text("Import in color", "62348"), CellKind::List,
                        colourChoiceText(session_.services, *layer), importlist::Colour);
  colour.Swatch = layer->ColourRgb;
  rows.push_back(colour);
  rows.push_back(cell("AFS_XO", text("Image X Offset", "62349"), CellKind::Number,
                      lengthText(layer->OffsetX)));
  rows.push_back(cell("AFS_YO", text("Image Y Offset", "62350"), CellKind::Number,
                      lengthText(layer->OffsetY)));
  rows.push_back(
      checkBox("AFS_NOCENTER", text("Original coordinates", "4954"), layer->OriginalCoordinates));
  if (k == ImportKind::Dxf)
    rows.push_back(checkBox("AFS_DXFTRUESIZE", text("Import with true line sizes", "4955"),
                            !layer->Files.empty() && layer->Files.front().TrueLineSize));
}

void ImportWindowModel::addFilterRows(ImportKind k) {
  LayerRecord* layer = dialogLayer();
  if (!stages_.FiltersShown || !layer || layer->Files.empty())
    return;
  const LayerFileRecord& file = layer->Files.front();
  const std::string uncheck = text("UnCheck to ignore with import", "62353");
  if (isArtworkGerber(k)) {
    rows.push_back(groupRow(text("Imported Elements", "62352"), uncheck));
    for (const FilterBitInfo& bit : FilterBits)
      if ((layer->FilterMask & bit.bit) != 0)
        rows.push_back(
            checkBox(std::string(bit.key),
                     text(std::string(bit.caption).c_str(), std::string(bit.textId).c_str()),
                     (file.FilterMask & bit.bit) != 0));
    rows.push_back(groupRow(text("Apertures (click to highlight)", "62358"), uncheck));
    for (size_t n = 0; n < ApertureRows.size(); ++n)
      rows.push_back(checkBox("AF_APF," + std::to_string(n + 1), ApertureRows[n].Text,
                              ApertureRows[n].Selected));
  } else if (isExcellonKind(k)) {
    rows.push_back(
        groupRow(text("Tool Code(Hole Count)", "62362"), text("Hole Diameters", "62359")));
    for (size_t n = 0; n < file.Tools.size(); ++n) {
      const ToolEntry& tool = file.Tools[n];
      rows.push_back(cell("AF_APH," + std::to_string(n + 1),
                          ToolLabel(tool.Code) + "(" + std::to_string(tool.HoleCount) + ")",
                          CellKind::Number, shortLengthText(tool.Diameter)));
    }
  } else if (isDrillingGerber(k)) {
    rows.push_back(cell("AF_MAPHOLES", text("Hole Diameters", "62359"), CellKind::List,
                        entry(list(8), HoleMapping), importlist::HoleMapping));
    rows.push_back(groupRow(text("Aperture Codes (click to highlight)", "62360"),
                            text("Mapped Hole Diameters", "62361")));
    for (size_t n = 0; n < ApertureRows.size() && n < file.Tools.size(); ++n)
      rows.push_back(cell("AF_APH," + std::to_string(n + 1), ApertureRows[n].Text, CellKind::Number,
                          shortLengthText(file.Tools[n].Diameter)));
  }
}

void ImportWindowModel::buildRows() {
  buildLists();
  rows.clear();
  const ImportKind k = kind();
  GridRow name = readOnlyRow(cell("IMP_FLEN", text("Import file name", "62283"), CellKind::Text,
                                  session_.state.Job.SourcePath));
  name.ValueFore = importcolour::FileText;
  rows.push_back(name);
  const std::string kindName = importKindName(session_.services, k);
  GridRow type = isExcellonKind(k) ? cell("IMP_FLET", text("Import file type", "62333"),
                                          CellKind::List, kindName, importlist::FileType)
                                   : readOnlyRow(cell("IMP_FLET", text("Import file type", "62333"),
                                                      CellKind::Text, kindName));
  type.ValueFore = importcolour::FileText;
  rows.push_back(type);
  addFormatRows(k);
  addLayerRows(k);
  addFilterRows(k);
  if (currentRow >= static_cast<int32_t>(rows.size()))
    currentRow = static_cast<int32_t>(rows.size()) - 1;
  if (currentRow < 0)
    currentRow = 0;
}

int32_t ImportWindowModel::rowOf(const std::string& key) const { return rowOfKey(rows, key); }

void ImportWindowModel::readArtSections() {
  const ImportJob& job = session_.state.Job;
  if (job.IntermediatePath.empty())
    return;
  ArtFile art;
  if (!art.open(job.IntermediatePath))
    return;
  int32_t status = 0;
  LoadArtHeader(status, art, false, session_.gerberScan, session_.reporter);
}

std::string ImportWindowModel::apertureRowText(const ApertureUse& use, const char* word,
                                               const char* id, bool withSize, int32_t size) const {
  return tvx::apertureRowText(session_.services, OffsetUnit, use, word, id, withSize, size);
}

std::string ImportWindowModel::specialShape(const ApertureUse& use) const {
  return specialApertureType(session_.services, use, session_.gerberScan.Lists.PrimitiveList);
}

void ImportWindowModel::buildApertureRows() {
  readArtSections();
  const LayerFileRecord* file = firstFile();
  ApertureRows = gerberApertureRows(session_.services, OffsetUnit, session_.gerberScan.Lists,
                                    file ? file->Tag : std::string(" "));
  if (LayerRecord* layer = dialogLayer())
    layer->Apertures = ApertureRows;
}

void ImportWindowModel::buildToolRows() {
  readArtSections();
  const ApertureLists& lists = session_.gerberScan.Lists;
  LayerFileRecord* file = firstFile();
  ApertureRows.clear();
  if (file)
    file->Tools.clear();
  const double d = HoleMapping == 0 ? 2.0 : 1.0;
  const auto add = [&](const ApertureUse& use, std::string rowText, int32_t diameter) {
    ApertureRow row;
    row.Text = std::move(rowText);
    row.Code = use.DCode;
    row.Selected = true;
    ApertureRows.push_back(std::move(row));
    if (file) {
      ToolEntry tool;
      tool.Code = use.DCode;
      tool.Diameter = diameter;
      file->Tools.push_back(tool);
    }
  };
  const auto mapped = [&](int32_t size) {
    const int64_t value = static_cast<int64_t>(std::nearbyint(size / d));
    return static_cast<int32_t>(value / 10000 * 10000);
  };
  for (const ApertureUse& use : lists.RoundPadList)
    add(use, apertureRowText(use, "Rnd.Pad ", "62323", true, use.Size), mapped(use.Size));
  for (const ApertureUse& use : lists.SquarePadList)
    add(use, apertureRowText(use, "Sqr.Pad ", "62324", true, use.Size), mapped(use.Size));
  for (const ApertureUse& use : lists.SpecialList)
    add(use, apertureRowText(use, "Special ", "62325", false, 0) + specialShape(use), 100000);
}

}  // namespace tvx
