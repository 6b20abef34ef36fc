#include "aperture/ApertureSizesModel.h"

#include "common/FormatNumber.h"
#include "common/LengthFormats.h"
#include "common/TextHelpers.h"
#include "common/ToNumber.h"
#include "common/WholeNumber.h"
#include "import/core/ReportStatus.h"
#include "import/gerber/ApertureLabel.h"
#include "import/gerber/ArtSections.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"

#include <utility>

namespace tvx {

namespace {

constexpr double LargestSize = 5080000;  // 50.8 mm

// A count as the grids show it: a blank before a number that is not negative.
std::string usesText(double uses) { return (uses >= 0 ? " " : "") + FormatNumber(uses, ""); }

ShownRow fixedRow(std::vector<std::string> cells) {
  ShownRow row;
  row.Editable.assign(cells.size(), false);
  row.Cells = std::move(cells);
  return row;
}

}  // namespace

std::string apertureTableNameOf(const std::string& sourcePath) {
  std::string name = PathPart(StripQuotes(sourcePath), false);
  if (const auto dot = name.find('.'); dot != std::string::npos)
    name.resize(dot);
  return FirstWord(name);
}

std::vector<ApertureTableRow> tableOfLists(const ApertureLists& lists) {
  std::vector<ApertureTableRow> rows;
  const auto take = [&rows](const std::vector<ApertureUse>& list, int32_t ApertureTableRow::*code) {
    for (const ApertureUse& use : list) {
      if (use.Size < 1)
        continue;
      auto at = rows.begin();
      while (at != rows.end() && at->Size < use.Size)
        ++at;
      if (at == rows.end() || at->Size != use.Size)
        at = rows.insert(at, ApertureTableRow{use.Size, 0, 0, 0});
      (*at).*code = use.DCode;
    }
  };
  take(lists.DrawList, &ApertureTableRow::LinesD);
  take(lists.RoundPadList, &ApertureTableRow::RoundD);
  take(lists.SquarePadList, &ApertureTableRow::SquareD);
  return rows;
}

ApertureSizesModel::ApertureSizesModel(ApertureSizesOwners owners)
    : scan_(owners.scan), job_(owners.job), table_(owners.table), sysDir_(std::move(owners.sysDir)),
      setCurrent_(std::move(owners.setCurrent)), reporter_(owners.reporter),
      displayUnit_(owners.displayUnit), layerOffsetX_(owners.layerOffsetX),
      layerOffsetY_(owners.layerOffsetY) {}

std::string ApertureSizesModel::text(const char* defaultText, const char* id) const {
  return reporter_.services().LocalMessage(defaultText, id);
}

void ApertureSizesModel::beep() const { reporter_.prompts().beep(); }

std::vector<ApertureUse>* ApertureSizesModel::list(int index) {
  ApertureLists& lists = scan_.Lists;
  switch (index) {
  case 0:
    return &lists.DrawList;
  case 1:
    return &lists.RoundPadList;
  case 2:
    return &lists.SquarePadList;
  default:
    return nullptr;
  }
}

void ApertureSizesModel::open() {
  messageTitle = text("Aperture & Sizes Display", "62248");
  caption = std::string(WindowTitle) + "(" + job_.IntermediatePath + ")";
  const std::string inch = text("inch", "62193");
  const std::string mm = text("mm", "62192");
  const std::string number = text("Number", "62242");
  const std::string dcode = text("Dcode", "62241");
  apertureHeader = {dcode, inch, mm, number};
  sizeHeader = {text("Item:", "62243"), inch, mm, inch, mm};
  specialHeader = {dcode, text("Type", "62245"), number};
  modifierHeader = {text("Primitive", "62246"), text("Item", "62247"), inch, mm};
  modifierCaption = text("Modifiers for: ", "62249");
  standardTab = text("Standard Apertures", "62239");
  specialTab = text("Special Apertures", "62240");
  createShown = job_.Kind == ImportKind::ArtworkRS274D;
  FirstPrimitive = SpecialRow = 0;
  ModifierClasses.clear();
  modifierGrid.clear();
  for (std::vector<ShownRow>& rows : apertureGrids)
    rows.clear();
  specialGrid.clear();
  sizeGrid.clear();
  specialTabEnabled = false;

  // A file that is gone or damaged leaves the grids empty; the scan has said why already.
  ArtFile art;
  if (job_.IntermediatePath.empty() || !art.open(job_.IntermediatePath))
    return;
  int32_t status = 0;
  LoadArtHeader(status, art, false, scan_, reporter_);
  if (status != 0)
    return;
  fillGrids();
  fillSizes();
}

ShownRow ApertureSizesModel::apertureRow(int index, const ApertureUse& use) const {
  const double unitsPerMm = reporter_.services().DatabaseUnitsPerMm();
  ShownRow row;
  row.Cells = {ApertureLabel(use.DCode), {}, {}, usesText(use.Uses)};
  row.Editable = {false, true, true, false};
  if (index == 0 && use.Size < 0) {
    // A code that draws with a square or special flash: its size is that flash's.
    row.Cells[1] =
        use.Size == LinkToSquarePad ? text("See square", "62231") : text("See macro", "62232");
    row.Editable = {false, false, false, false};
    return row;
  }
  row.Cells[1] = LengthValueText(use.Size, 0, unitsPerMm);
  row.Cells[2] = LengthValueText(use.Size, 1, unitsPerMm);
  return row;
}

std::string ApertureSizesModel::specialType(const ApertureUse& use) const {
  return specialApertureType(reporter_.services(), use, scan_.Lists.PrimitiveList);
}

ShownRow ApertureSizesModel::specialRow(const ApertureUse& use) const {
  return fixedRow({ApertureLabel(use.DCode), specialType(use), usesText(use.Uses)});
}

void ApertureSizesModel::fillGrids() {
  for (int index = 0; index < 3; ++index)
    for (const ApertureUse& use : *list(index))
      apertureGrids[size_t(index)].push_back(apertureRow(index, use));
  for (const ApertureUse& use : scan_.Lists.SpecialList)
    specialGrid.push_back(specialRow(use));
  specialTabEnabled = !specialGrid.empty();
}

void ApertureSizesModel::fillSizes() {
  const ArtHeader& h = scan_.Header;
  const double unitsPerMm = reporter_.services().DatabaseUnitsPerMm();
  const std::string_view picture = lengthPictures(displayUnit_).Length;
  const auto cells = [&](const std::string& item, double x, double y) {
    return fixedRow(
        {item, FormatNumber(x / unitsPerMm / 25.4, picture), FormatNumber(x / unitsPerMm, picture),
         FormatNumber(y / unitsPerMm / 25.4, picture), FormatNumber(y / unitsPerMm, picture)});
  };
  sizeGrid.push_back(cells(text("Board", "62173"), h.MaxX - h.MinX, h.MaxY - h.MinY));
  sizeGrid.push_back(
      cells(text("Offset", "62244"), layerOffsetX_ + h.MinX, layerOffsetY_ + h.MinY));
}

bool ApertureSizesModel::editSize(int index, int32_t row, int column, const std::string& typed) {
  CellEditPending = false;
  std::vector<ApertureUse>* shown = list(index);
  if (!shown || row < 1 || row > static_cast<int32_t>(shown->size()) ||
      (column != 1 && column != 2))
    return true;
  EditRow = row;
  EditColumn = column;
  if (typed.empty())
    return true;
  ApertureUse& use = (*shown)[size_t(row - 1)];
  if (index == 0 && use.Size < 0)
    return true;  // a link has no size of its own
  const double factor = column == 1 ? 1 / 25.4 : 1.0;
  const double value = ToNumber(typed) / factor * reporter_.services().DatabaseUnitsPerMm();
  const bool taken = value >= 1.0 && value <= LargestSize;
  if (taken)
    use.Size = whole(value);
  else
    beep();
  apertureGrids[size_t(index)][size_t(row - 1)] = apertureRow(index, use);
  return taken;
}

void ApertureSizesModel::showModifiers(int32_t row) {
  const std::vector<ApertureUse>& specials = scan_.Lists.SpecialList;
  if (row < 1 || row > static_cast<int32_t>(specials.size()))
    return;
  const ApertureUse& use = specials[size_t(row - 1)];
  SpecialRow = row;
  FirstPrimitive = use.Size;
  modifierGrid.clear();
  ModifierClasses.clear();
  modifierCaption =
      text("Modifiers for: ", "62249") + ApertureLabel(use.DCode) + " " + specialType(use);
  const std::vector<PrimitiveRow>& primitives = scan_.Lists.PrimitiveList;
  const std::vector<ModifierRow> items =
      modifierRows(reporter_.services(), primitives, FirstPrimitive);
  for (size_t n = 0; n < items.size(); ++n) {
    const ModifierCells cells = modifierCells(
        reporter_.services(), primitives[size_t(FirstPrimitive - 1) + n].Value, items[n].Class);
    modifierGrid.push_back(
        {{items[n].Name, items[n].Label, cells.inch, cells.mm}, {false, false, true, true}});
    ModifierClasses.push_back(items[n].Class);
  }
}

bool ApertureSizesModel::editModifier(int32_t row, int column, const std::string& typed) {
  CellEditPending = false;
  if (row < 1 || row > static_cast<int32_t>(ModifierClasses.size()))
    return true;
  EditRow = row;
  EditColumn = column;
  const int32_t cls = ModifierClasses[size_t(row - 1)];
  if (cls != modifierclass::FixedCount && typed.empty())
    return true;
  double value = 0;
  if (!modifierValue(reporter_.services(), cls, column, typed, value)) {
    beep();
    return false;
  }
  const size_t at = size_t(FirstPrimitive - 1 + row - 1);
  std::vector<PrimitiveRow>& primitives = scan_.Lists.PrimitiveList;
  if (FirstPrimitive < 1 || at >= primitives.size())
    return true;
  primitives[at].Value = value;
  const ModifierCells cells = modifierCells(reporter_.services(), value, cls);
  ShownRow& shown = modifierGrid[size_t(row - 1)];
  shown.Cells[2] = cells.inch;
  shown.Cells[3] = cells.mm;
  return true;
}

bool ApertureSizesModel::updateArtwork() {
  if (job_.IntermediatePath.empty())
    return true;
  ArtFile art;
  if (!art.open(job_.IntermediatePath))
    return false;
  int32_t status = 0;
  LoadArtHeader(status, art, true, scan_, reporter_);
  if (status != 0)
    return false;
  art.close();
  ArtworkUpdated = true;
  return true;
}

bool ApertureSizesModel::createApertureFile() {
  const std::string name = apertureTableNameOf(job_.SourcePath);
  if (name.empty())
    return false;
  ApertureTable created;
  created.rows = tableOfLists(scan_.Lists);
  if (!created.save(sysDir_, name))
    return false;
  table_ = std::move(created);
  if (setCurrent_)
    setCurrent_(table_.current);
  ApertureFileCreated = true;
  return true;
}

}  // namespace tvx
