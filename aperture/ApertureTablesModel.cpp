#include "aperture/ApertureTablesModel.h"

#include "aperture/ForeignApertureList.h"
#include "common/FormatNumber.h"
#include "common/TextHelpers.h"
#include "common/ToNumber.h"
#include "common/UserDialogs.h"
#include "import/gerber/ApertureLabel.h"
#include "kernel/KernelTypes.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

namespace tvx {

namespace {
constexpr float SmallestSize = 1.0f;
constexpr float LargestSize = 220000000.0f;  // 2200 mm
}  // namespace

int32_t codeOfCell(const std::string& text) {
  const std::string_view trimmed = TrimBlanks(text);
  if (trimmed.empty())
    return 0;
  int32_t code = 0;
  for (char c : trimmed)
    if (c >= '0' && c <= '9')
      code = std::min(code * 10 + (c - '0'), 1000);  // anything above 999 is refused alike
  return code >= 10 && code <= 999 ? code : -1;
}

ApertureTablesModel::ApertureTablesModel(ApertureTable& table, SystemServices& services,
                                         UserPrompts& prompts, std::string sysDir,
                                         std::function<void(const std::string&)> setCurrent)
    : table_(table), services_(services), prompts_(prompts), sysDir_(std::move(sysDir)),
      setCurrent_(std::move(setCurrent)) {}

std::string ApertureTablesModel::text(const char* defaultText, const char* id) const {
  return services_.LocalMessage(defaultText, id);
}

std::string ApertureTablesModel::header(int column) const {
  switch (column) {
  case 0:
    return text(" inch ", "62193");
  case 1:
    return text("  mm  ", "62192");
  case 2:
    return text(" Lines ", "62201");
  case 3:
    return text(" Round ", "62202");
  default:
    return text(" Square ", "62203");
  }
}

std::string ApertureTablesModel::cell(int32_t row, int column) const {
  if (row < 1 || row > rowCount())
    return {};
  const ApertureTableRow& r = table_.rows[size_t(row - 1)];
  const double mm = double(r.Size) / StoreUnitsPerMm;
  switch (column) {
  case 0:
    return FormatNumber(mm / 25.4, "#0.0000#");
  case 1:
    return FormatNumber(mm, "###0.000#");
  case 2:
    return ApertureLabel(r.LinesD);
  case 3:
    return ApertureLabel(r.RoundD);
  default:
    return ApertureLabel(r.SquareD);
  }
}

void ApertureTablesModel::refreshList() {
  tableFiles_.clear();
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(sysDir_, error)) {
    const std::string name = entry.path().filename().string();
    if (name.size() > 4 && UpperCase(name.substr(name.size() - 4)) == ".APT")
      tableFiles_.push_back(name);
  }
  std::sort(tableFiles_.begin(), tableFiles_.end());
}

void ApertureTablesModel::loadChosen() {
  const bool read = table_.load(sysDir_);
  staCurApt = read ? table_.current : "none";
  txtNewFname = read ? table_.current : std::string();
  ChangedFlag = 0;
  CurrentRow = TopRow = 1;
}

void ApertureTablesModel::FillAptform() {
  ChangedFlag = 0;
  refreshList();
  loadChosen();
}

void ApertureTablesModel::askUnsaved() {
  if (ChangedFlag != 0 &&
      services_.AskYesNo(text("Current Aperture Table has been changed", "62199") + "\r" +
                             text("Do You wish to save changes ?", "62200"),
                         text("Aperture Table", "62206")))
    save();
}

void ApertureTablesModel::listClick(const std::string& entry) {
  std::string name(TrimBlanks(entry));
  askUnsaved();
  name = FirstWord(name.substr(0, name.find('.')));
  if (name.empty())
    return;
  table_.current = UpperCase(name);
  loadChosen();
  setCurrent_(table_.current);
}

bool ApertureTablesModel::EditAptValues(int32_t row, int column, const std::string& typed) {
  CellEditPending = false;
  const int32_t code = codeOfCell(typed);
  if (row < 1 || row > rowCount() || column < 2 || column > 4 || code < 0) {
    prompts_.beep();
    return false;
  }
  ApertureTableRow& r = table_.rows[size_t(row - 1)];
  (column == 2 ? r.LinesD : column == 3 ? r.RoundD : r.SquareD) = code;
  ChangedFlag = 1;
  return true;
}

void ApertureTablesModel::insertSize(int index) {
  const bool mm = index == 1;
  const std::string answer =
      AskText(prompts_, text("Size to insert ", "62205") + (mm ? "(mm)" : "(inch)") + ":",
              text("Aperture Table", "62206"), std::string());
  if (answer.empty())
    return;
  // Held in single precision, as the window has always taken it.
  const float value = float(ToNumber(answer) / (mm ? 1.0 : 1.0 / 25.4) * StoreUnitsPerMm);
  if (!(value >= SmallestSize && value <= LargestSize)) {
    prompts_.beep();
    return;
  }
  const int32_t size = int32_t(std::lround(value));
  const SizeRow found = table_.findSizeRow(size);
  if (found.row != 0) {
    prompts_.beep();
    return;
  }
  table_.rows.insert(table_.rows.begin() + (found.position - 1), ApertureTableRow{size, 0, 0, 0});
  ChangedFlag = 1;
  CurrentRow = found.position;
  CurrentColumn = 2;
  // The page of VisibleRows rows that holds the new row comes to the top.
  const int32_t page = std::max(1, VisibleRows);
  TopRow = (found.position - 1) / page * page + 1;
  if (TopRow > rowCount())
    TopRow = std::max(1, rowCount() - VisibleRows);
}

void ApertureTablesModel::deleteSize() {
  const int32_t row = CurrentRow;
  if (row < TopRow || row >= TopRow + VisibleRows || row > rowCount()) {
    prompts_.beep();
    return;
  }
  if (!services_.AskYesNo(text("Are you sure you want to delete the entry ", "62204") +
                              cell(row, 0) + " inch / " + cell(row, 1) + " mm ",
                          text("Aperture Table", "62206")))
    return;
  if (rowCount() < 2) {
    prompts_.beep();  // the table never loses its last row
    return;
  }
  table_.rows.erase(table_.rows.begin() + (row - 1));
  TopRow = std::max(1, TopRow - 1);
  CurrentRow = std::min(CurrentRow, rowCount());
  ChangedFlag = 1;
}

void ApertureTablesModel::readList(const std::string& path) {
  askUnsaved();
  const std::string title = text("Aperture Table", "62206");
  const std::optional<ForeignApertureList> list = readForeignApertureListFile(path);
  if (!list) {
    ShowMessage(prompts_, text("Can't read file: ", "62451") + path, 0, title);
    return;
  }
  if (list->rows.empty()) {
    ShowMessage(prompts_, text("No round or square aperture in", "900106") + " " + path, 0, title);
    return;
  }
  table_.rows = list->rows;
  ChangedFlag = 1;
  CurrentRow = TopRow = 1;
  CurrentColumn = 2;
  txtNewFname = UpperCase(FirstWord(std::filesystem::path(path).stem().string()));
  std::string report = text("Aperture list read:", "900104") + " " +
                       std::to_string(list->codes.size()) + " " + text("codes taken", "900105");
  if (!list->leftOut.empty()) {
    report += "\r" + text("Left out (no round or square shape):", "900107") + " ";
    constexpr size_t Named = 24;
    for (size_t i = 0; i < std::min(Named, list->leftOut.size()); ++i)
      report += (i > 0 ? " D" : "D") + std::to_string(list->leftOut[i]);
    if (list->leftOut.size() > Named)
      report += " ...";
  }
  ShowMessage(prompts_, report, 0, title);
}

void ApertureTablesModel::save() {
  const std::string name = UpperCase(FirstWord(txtNewFname));
  if (name.empty())
    return;
  if (!table_.save(sysDir_, name)) {
    // An edited table must not be lost unseen.
    ShowMessage(prompts_, text("Can't create/write to file: ", "62452") + name + ".APT", 0,
                text("Aperture Table", "62206"));
    return;
  }
  setCurrent_(table_.current);
  refreshList();
  staCurApt = txtNewFname = table_.current;
}

void ApertureTablesModel::accept() { askUnsaved(); }

void ApertureTablesModel::cancel() { table_.load(sysDir_); }

}  // namespace tvx
