#include "print/PreviewModel.h"

#include "common/FormatNumber.h"
#include "common/ToNumber.h"
#include "common/WholeNumber.h"
#include "kernel/Graphics.h"
#include "platform/SystemServices.h"
#include "platform/TokenList.h"
#include "platform/UserPrompts.h"
#include "viewer/DisplayUnits.h"

#include <Qt>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>

namespace tvx {

namespace {

constexpr double UnitsPerMm = StoreUnitsPerMm;
constexpr int32_t BackgroundMargin = 254000;  // 2.54 mm round the frame

int32_t mulDiv(int64_t a, int64_t b, int64_t c) {
  if (c == 0)
    return -1;
  const int64_t product = a * b;
  return int32_t((product + (product >= 0 ? c / 2 : -c / 2)) / c);
}

// A scale term as the boxes show it: whole, or through "#.00"; one that reads 0 shows as 1.
std::string termText(double term) {
  if (term == std::floor(term))
    return FormatNumber(term, "0");
  std::string text = FormatNumber(term, "#.00");
  return ToNumber(text) == 0 ? std::string("1") : text;
}

double roundedTerm(double term) {
  return term == std::floor(term) ? term : ToNumber(FormatNumber(term, "#.00"));
}

std::string upper(std::string s) {
  for (char& c : s)
    c = char(std::toupper(static_cast<unsigned char>(c)));
  return s;
}

}  // namespace

PreviewModel::PreviewModel(PrinterSettings& record, PlatformPrinter& printer, int32_t displayUnit,
                           const SystemServices* services, UserPrompts* prompts)
    : Record(record), Printer(printer), DisplayUnit(displayUnit), services_(services),
      prompts_(prompts) {}

std::string PreviewModel::text(const char* defaultText, const char* id) const {
  return services_ ? services_->LocalMessage(defaultText, id) : std::string(defaultText);
}

int32_t PreviewModel::UnitScaleMode() const {
  return DisplayUnit == displayunit::Millimetre ? scalemode::Millimetres : scalemode::Inches;
}

double PreviewModel::UnitFactor() const { return displayUnitInfo(DisplayUnit).FactorFromMm; }

void PreviewModel::Begin(const FrameRect& frame, int32_t drawFlags) {
  PreviewFrame = frame;
  DrawFlags = drawFlags;
  PrecisionMult = PrecisionDiv = 1.0;
  ZoomPercent = 50.0;
  ZoomMode = 0;
  DefaultPrinterSettings(Record, Printer);
  Record.UnitIndex = DisplayUnit == displayunit::Millimetre ? 1 : 0;
}

void PreviewModel::Build() {
  PageMetrics(true);
  ViewAcross = ViewDown = 1;
  if (FitOnOpen) {
    Fit(false);
    FitOnOpen = false;
  }
}

void PreviewModel::guardScale() {
  if (PrecisionMult == 0)
    PrecisionMult = 1;
  if (PrecisionDiv == 0)
    PrecisionDiv = 1;
}

void PreviewModel::computePrintZoom() {
  if (ResolutionX > 0)
    PrintZoom = whole(PrecisionDiv * 2540000.0 / (ResolutionX * PrecisionMult));
}

void PreviewModel::PageMetrics(bool repage) {
  guardScale();
  ComputeMargins();
  Record.ScaleMode = scalemode::Pixels;
  InitPrinter(Record, Printer);
  ResolutionX = Printer.deviceCaps(devcaps::LogPixelsX);
  ResolutionY = Printer.deviceCaps(devcaps::LogPixelsY);
  const int32_t inch = whole(UnitsPerMm * 25.4);
  if (ResolutionX > 0)
    PageWidth = mulDiv(inch, whole(Printer.ScaleWidth()), ResolutionX);
  if (ResolutionY > 0)
    PageHeight = mulDiv(inch, whole(Printer.ScaleHeight()), ResolutionY);
  computePrintZoom();
  if (repage)
    Repage();
}

void PreviewModel::ComputeMargins() {
  if (FitWithoutMargins) {
    LeftMargin = RightMargin = TopMargin = BottomMargin = 2540.0;
    return;
  }
  if (CentreImage) {
    const double w = double(PreviewFrame.MaxX - PreviewFrame.MinX) * PrecisionMult / PrecisionDiv;
    const double h = double(PreviewFrame.MaxY - PreviewFrame.MinY) * PrecisionMult / PrecisionDiv;
    LeftMargin = RightMargin = (PagesAcross * PageWidth - w) / 2;
    TopMargin = BottomMargin = (PagesDown * PageHeight - h) / 2;
    return;
  }
  Record.ScaleMode = UnitScaleMode();
  InitPrinter(Record, Printer);
  ReadLeastMargins(Record, Printer);
  Record.MarginRt = std::max(Record.MarginRt, Record.LeastRt);
  Record.MarginLt = std::max(Record.MarginLt, Record.LeastLt);
  Record.MarginTp = std::max(Record.MarginTp, Record.LeastTp);
  Record.MarginBt = std::max(Record.MarginBt, Record.LeastBt);
  const double factor = displayUnitInfo(DisplayUnit).FactorFromMm;
  if (factor <= 0)
    return;
  RightMargin = Record.MarginRt * UnitsPerMm / factor;
  LeftMargin = Record.MarginLt * UnitsPerMm / factor;
  TopMargin = Record.MarginTp * UnitsPerMm / factor;
  BottomMargin = Record.MarginBt * UnitsPerMm / factor;
}

void PreviewModel::Repage() {
  guardScale();
  ComputeMargins();
  const double mult = PrecisionMult, div = PrecisionDiv;
  const double m = LeftMargin * div / mult, t = TopMargin * div / mult;
  const FrameRect& f = PreviewFrame;
  const double extW = whole(double(f.MaxX - f.MinX) + m);
  const double extH = whole(double(f.MaxY - f.MinY) + t);
  const double paperW = extW * mult / div, paperH = extH * mult / div;
  const double pieceW = PageWidth * div / mult, pieceH = PageHeight * div / mult;
  if (!CentreImage && PageWidth > 0 && PageHeight > 0) {
    auto sheets = [](double ratio) {
      const int32_t n = std::abs(whole(ratio));
      return std::max(1, std::abs(ratio) > n ? n + 1 : n);
    };
    PagesAcross = sheets(paperW / PageWidth);
    PagesDown = sheets(paperH / PageHeight);
    PageCount = PagesAcross * PagesDown;
  }
  const double originX = whole(f.MinX - m), originY = whole(f.MaxY + t);
  PageRows.assign(size_t(std::max(0, PageCount)), PageRow{});
  for (int32_t r = 1; r <= PagesDown; ++r)
    for (int32_t c = 1; c <= PagesAcross; ++c) {
      PageRow& row = PageRows[size_t((r - 1) * PagesAcross + (c - 1))];
      row.CentreX = whole((2 * c - 1) * pieceW / 2 + originX);
      row.CentreY = whole(originY - (2 * r - 1) * pieceH / 2);
    }
  ViewAcross = std::max(1, std::min(PagesAcross, MaxAcross));
  ViewDown = std::max(1, std::min(PagesDown, MaxDown));
  SavedAcross = ViewAcross;
  SavedDown = ViewDown;
  CurrentPage = 1;
  hideAll();
  Record.MaxPage = int16_t(std::clamp(PageCount, 1, 32767));
}

void PreviewModel::Fit(bool withoutMargins) {
  FitWithoutMargins = withoutMargins;
  ComputeMargins();
  double usableW = PageWidth - (LeftMargin + RightMargin);
  if (usableW <= 0)
    usableW = PageWidth;
  double usableH = PageHeight - (TopMargin + BottomMargin);
  if (usableH <= 0)
    usableH = PageHeight;
  const double w = double(PreviewFrame.MaxX) - PreviewFrame.MinX;
  const double h = double(PreviewFrame.MaxY) - PreviewFrame.MinY;
  // A frame with no size keeps its scale.
  if (!(w > 0 && h > 0 && usableW > 0 && usableH > 0)) {
    FitWithoutMargins = false;
    return;
  }
  // A millionth of slack: the whole store units of the sheets' arithmetic must not round a
  // frame that fits into a second sheet.
  PrecisionDiv = std::max(w / usableW, h / usableH) * (1 + 1e-6);
  PrecisionMult = 1;
  if (PrecisionDiv <= 1) {
    PrecisionMult = 1 / PrecisionDiv;
    PrecisionDiv = 1;
  }
  computePrintZoom();
  Repage();
  FitWithoutMargins = false;
  CurrentPage = std::min(CurrentPage, PageCount);
  LayoutOrZoom();
}

std::string PreviewModel::ScaleText() const {
  return termText(PrecisionMult) + ":" + termText(PrecisionDiv);
}

std::string PreviewModel::ZoomText() const { return FormatNumber(ZoomPercent, "0") + "%"; }

std::string PreviewModel::ScaleEntered(const std::string& entered) {
  TokenList items;
  items.Parse(entered, ":");
  double mult = 1, div = 1;
  if (items.Count() >= 2) {
    mult = items.ItemValue(1);
    div = items.ItemValue(2);
  } else if (items.Count() == 1) {
    mult = items.ItemValue(1);
  }
  if (mult == 0)
    mult = 1;
  if (div == 0)
    div = 1;
  if (mult / div > 10)
    mult = div * 10;
  else if (div / mult > 10)
    div = mult * 10;
  PrecisionMult = roundedTerm(mult);
  PrecisionDiv = roundedTerm(div);
  computePrintZoom();
  Repage();
  CurrentPage = std::min(CurrentPage, PageCount);
  ZoomMode = 0;
  LayoutOrZoom();
  return ScaleText();
}

std::string PreviewModel::ZoomEntered(const std::string& entered) {
  const double value = std::trunc(ToNumber(entered));
  if (value == ZoomPercent)
    return ZoomText();
  ZoomPercent = std::clamp(value, MinZoom, MaxZoom);
  ZoomMode = 1;
  Layout();
  return ZoomText();
}

void PreviewModel::SetContainer(double widthMm, double heightMm) {
  containerW_ = widthMm;
  containerH_ = heightMm;
}

void PreviewModel::hideAll() {
  for (PageRow& row : ViewRows)
    row.Shown = false;
}

bool PreviewModel::Layout() {
  const double w = containerW_, h = containerH_;
  const double pw = PageWidth / UnitsPerMm, ph = PageHeight / UnitsPerMm;
  ViewAcross = std::max(ViewAcross, 1);
  ViewDown = std::max(ViewDown, 1);
  double cellW = 0, cellH = 0;
  if (ZoomMode == 1) {
    cellW = pw * ZoomPercent / 100;
    cellH = ph * ZoomPercent / 100;
    ViewAcross = whole((w - 10) / (cellW + 20) - 0.5);
    ViewDown = whole((h - 10) / (cellH + 20) - 0.5);
    hideAll();
    if (ViewAcross > 0 && ViewDown > 0) {
      ScrollOnePage = 0;
    } else {
      ScrollOnePage = 1;
      ViewAcross = ViewDown = 1;
    }
    ViewAcross = std::min(ViewAcross, MaxAcross);
    ViewDown = std::min(ViewDown, MaxDown);
  } else {
    ScrollOnePage = 0;
    cellW = std::max(0.0, (w - 10) / ViewAcross - 20);
    cellH = std::max(0.0, (h - 10) / ViewDown - 20);
    if (pw != 0 && ph != 0) {
      if (cellW / pw < cellH / ph)
        cellH = cellW * ph / pw;
      else
        cellW = cellH * pw / ph;
    }
    const double zoom = pw != 0 ? whole(cellW * 100 / pw) : ZoomPercent;
    if (zoom > MaxZoom)
      return false;
    ZoomPercent = zoom;
  }
  const double offY = (h - (cellH + 10) * ViewDown) / 2;
  const double offX = (w - (cellW + 10) * ViewAcross) / 2;

  const int32_t n = ViewAcross * ViewDown;
  int32_t first =
      KeepFirstPage && std::abs(FirstPageBefore - CurrentPage) < n ? FirstPageBefore : CurrentPage;
  if (PageCount - first < n)
    first = PageCount + 1 - n;
  first = std::max(first, 1);
  ViewRows.assign(size_t(n), PageRow{});
  cells_.assign(size_t(n), PreviewCell{});
  for (int32_t i = 0; i < n; ++i) {
    const int32_t sheet = first + i;
    if (sheet <= PageCount && sheet >= 1) {
      ViewRows[size_t(i)] = PageRows[size_t(sheet - 1)];
      ViewRows[size_t(i)].Number = sheet;
      ViewRows[size_t(i)].Shown = true;
    }
    const int32_t r = i / ViewAcross, c = i % ViewAcross;
    cells_[size_t(i)] = {c * cellW + c * 10 + offX, r * cellH + r * 10 + offY, cellW, cellH};
  }
  if (ScrollOnePage == 1) {
    ScrollEndY = std::min(0.0, h - cellH - 20);
    ScrollEndX = std::min(0.0, w - cellW - 20);
  } else {
    ScrollEndX = ScrollEndY = 0;
  }
  SelectPage(CurrentPage);
  return true;
}

void PreviewModel::LayoutOrZoom() {
  if (!Layout() && ZoomMode == 0) {
    ZoomMode = 1;
    Layout();
  }
}

int32_t PreviewModel::ThumbZoomFor(int32_t widthPixels, int32_t heightPixels) const {
  if (widthPixels <= 0 || heightPixels <= 0)
    return 1;
  const double larger = std::max(PageWidth / widthPixels, PageHeight / heightPixels);
  const double zoom = larger * PrecisionDiv / PrecisionMult;
  return zoom <= 1 ? 1 : int32_t(std::min(zoom, 2147483647.0));
}

void PreviewModel::DrawSheet(Graphics& graphics, int32_t device, const PageRow& row,
                             int32_t widthPixels, int32_t heightPixels, int32_t zoom,
                             bool forPrinter) const {
  const int32_t mode = forPrinter ? (DrawFlags | drawmode::Layer) : DrawFlags;
  graphics.N_SetNodeView((DrawFlags & 4) != 0 ? 1 : 0);
  ViewSetup view{zoom, widthPixels, heightPixels, row.CentreX, row.CentreY, mode};
  if (!graphics.G_OpenDC(device, view, 3))
    return;
  int32_t backgroundColour = 0;
  if (forPrinter) {
    backgroundColour = (DrawFlags & 4) != 0 ? 95 : 319;
  } else {
    if (graphics.G_GetThickPens(device) > 32)
      graphics.G_FreeThickPen(device, 0, 0);
    graphics.G_ChangeBackgroundColor(device, 15);
    backgroundColour = (DrawFlags & 8) != 0 ? 15 : (DrawFlags & 4) != 0 ? 95 : 63;
  }
  if (ShowBackground) {
    const FrameRect& f = PreviewFrame;
    graphics.G_SetColor(device, backgroundColour);
    graphics.G_SetStyle(device, penstyle::Filled);
    graphics.G_Rectangle(device, f.MinX - BackgroundMargin, f.MinY - BackgroundMargin,
                         f.MaxX - f.MinX + 2 * BackgroundMargin,
                         f.MaxY - f.MinY + 2 * BackgroundMargin);
  }
  if (DrawPage)
    DrawPage(device, mode);
}

void PreviewModel::SelectPage(int32_t page) {
  CurrentPage = std::clamp(page, 1, std::max(PageCount, 1));
  auto shown = [&] {
    for (size_t i = 0; i < ViewRows.size(); ++i)
      if (ViewRows[i].Shown && ViewRows[i].Number == CurrentPage)
        return int32_t(i);
    return -1;
  };
  int32_t cell = shown();
  if (cell < 0 && !ViewRows.empty() && !selecting_) {
    // The grid moves to the sheet; its layout selects it again.
    selecting_ = true;
    KeepFirstPage = false;
    Layout();
    selecting_ = false;
    cell = shown();
  }
  CurrentCell = std::max(cell, 0);
}

PreviewAction PreviewModel::CellClicked(size_t cell, bool rightButton) {
  if (DocOpen || cell >= ViewRows.size() || !ViewRows[cell].Shown)
    return PreviewAction::None;
  if (ViewRows[cell].Number != CurrentPage) {
    SelectPage(ViewRows[cell].Number);
    return PreviewAction::None;
  }
  if (rightButton)
    return PreviewAction::Popup;
  return Command(ViewAcross * ViewDown == 1 ? "ATB_Multipages" : "ATB_Onepage");
}

bool PreviewModel::KeyPressed(int key, bool ctrl) {
  if (DocOpen)
    return false;
  auto scaleStep = [&](double step) {
    double mult = PrecisionMult + step, div = PrecisionDiv;
    if (mult <= 0) {
      mult = PrecisionMult;
      div += 1;
    }
    ScaleEntered(termText(mult) + ":" + termText(div));
  };
  const int32_t row = (CurrentPage - 1) / ViewAcross;
  int32_t page = CurrentPage;
  switch (key) {
  case Qt::Key_Plus:
    scaleStep(1);
    return true;
  case Qt::Key_Minus:
    scaleStep(-1);
    return true;
  case Qt::Key_E:
    if (!ctrl)
      return false;
    Command("ATB_CentreImage");
    return true;
  case Qt::Key_Home:
    page = ctrl ? 1 : row * ViewAcross + 1;
    break;
  case Qt::Key_End:
    page = ctrl ? PageCount : (row + 1) * ViewAcross;
    if (page < 1 || page > PageCount)
      return true;
    break;
  case Qt::Key_Up:
    page = std::max(1, CurrentPage - ViewAcross);
    break;
  case Qt::Key_Down:
    page = std::min(PageCount, CurrentPage + ViewAcross);
    break;
  case Qt::Key_Left:
    if (CurrentPage - 1 < 1)
      return true;
    page = CurrentPage - 1;
    break;
  case Qt::Key_Right:
    if (CurrentPage + 1 > PageCount)
      return true;
    page = CurrentPage + 1;
    break;
  default:
    return false;
  }
  SelectPage(page);
  return true;
}

void PreviewModel::PagesButton(int32_t index) {
  if (DocOpen)
    return;
  if (index == 2) {
    if (CurrentPage < PageCount)
      SelectPage(CurrentPage + 1);
  } else if (index == 0) {
    if (CurrentCell == 0)
      SelectPage(std::max(1, CurrentPage - ViewAcross * ViewDown));
    else if (CurrentPage > 1)
      SelectPage(CurrentPage - 1);
  }
}

void PreviewModel::layoutGridFromZero() {
  hideAll();
  ZoomMode = 0;
  LayoutOrZoom();
}

void PreviewModel::ChooseAcross(int32_t n) {
  ViewAcross = std::clamp(n, 1, MaxAcross);
  layoutGridFromZero();
  SavedAcross = ViewAcross;
  SavedDown = ViewDown;
}

void PreviewModel::ChooseDown(int32_t n) {
  ViewDown = std::clamp(n, 1, MaxDown);
  layoutGridFromZero();
  SavedAcross = ViewAcross;
  SavedDown = ViewDown;
}

void PreviewModel::setPrintRange(int32_t from, int32_t to) {
  PrintFrom = std::clamp(from, 1, std::max(PageCount, 1));
  PrintTo = std::clamp(to, 1, std::max(PageCount, 1));
}

PreviewAction PreviewModel::Command(const std::string& tool) {
  if (DocOpen)
    return PreviewAction::None;
  const std::string name = upper(tool);
  if (name == "ATB_ZOOMUP") {
    KeyPressed(Qt::Key_Plus, false);
  } else if (name == "ATB_ZOOMDN") {
    KeyPressed(Qt::Key_Minus, false);
  } else if (name == "ATB_PRINT" || name == "ATB_PRINTPOP") {
    setPrintRange(CurrentPage, CurrentPage);
    return PreviewAction::StartPrinting;
  } else if (name == "ATB_PRINTALL") {
    setPrintRange(1, PageCount);
    return PreviewAction::StartPrinting;
  } else if (name == "ATB_PRINTERS" || name == "ATB_PRINTSETUP") {
    return PreviewAction::PrinterDialog;
  } else if (name == "ATB_PAGESETUP") {
    return PreviewAction::PageSetup;
  } else if (name == "ATB_ONEPAGE") {
    if (ViewAcross > 1 || ViewDown > 1) {
      SavedAcross = ViewAcross;
      SavedDown = ViewDown;
    }
    FirstPageBefore = ViewRows.empty() ? CurrentPage : ViewRows.front().Number;
    ViewAcross = ViewDown = 1;
    layoutGridFromZero();
  } else if (name == "ATB_MULTIPAGES") {
    KeepFirstPage = true;
    if (SavedAcross > 1)
      ViewAcross = SavedAcross;
    if (SavedDown > 1)
      ViewDown = SavedDown;
    layoutGridFromZero();
    KeepFirstPage = false;
  } else if (name == "ATB_FITPAGE" || name == "ATB_FITWOMARGINS") {
    Fit(name == "ATB_FITWOMARGINS");
  } else if (name == "ATB_BESTFIT") {
    ViewAcross = SavedAcross = std::min(PagesAcross, MaxAcross);
    ViewDown = SavedDown = std::min(PagesDown, MaxDown);
    CurrentPage = 1;
    layoutGridFromZero();
  } else if (name == "ATB_CENTREIMAGE") {
    CentreImage = true;
    const int32_t page = CurrentPage;
    Repage();
    CurrentPage = std::min(page, PageCount);
    LayoutOrZoom();
    CentreImage = false;
  } else if (name == "ATB_MPAGE") {
    if (!prompts_)
      return PreviewAction::None;
    QueryRequest request;
    request.title = text("Select Page", "991189");
    request.prompt =
        text("Enter page to select (1 to ", "52126") + std::to_string(PageCount) + "): ";
    request.list = {std::to_string(CurrentPage)};
    const double page = std::trunc(ToNumber(prompts_->query(request).text));
    if (page >= 1 && page <= PageCount)
      SelectPage(int32_t(page));
  } else if (name == "ATB_SHOWBKGD") {
    ShowBackground = !ShowBackground;
  } else if (name == "ATB_FULLSCREEN") {
    return PreviewAction::FullScreen;
  } else if (name == "ATB_CLOSE") {
    return PreviewAction::Close;
  } else if (name == "ATB_UPDCLOSE") {
    return PreviewAction::UpdateAndClose;
  } else if (name == "ATB_HELP") {
    return PreviewAction::Help;
  } else if (name == "ATB_FPAGE") {
    SelectPage(1);
  } else if (name == "ATB_LPAGE") {
    SelectPage(PageCount);
  } else if (name == "ATB_PPAGE") {
    PagesButton(0);
  } else if (name == "ATB_NPAGE") {
    PagesButton(2);
  }
  return PreviewAction::None;
}

void PreviewModel::ReadPrintManager(const PrintManagerRecord& record) {
  DisplayUnit = record.unit == 0 ? displayunit::Inch : displayunit::Millimetre;
  Record.UnitIndex = record.unit == 0 ? 0 : 1;
  Record.ScaleMode = UnitScaleMode();
  Printer.ScaleMode = Record.ScaleMode;
  Record.Orientation = record.Orientation;
  Record.MarginBt = float(record.MarginBt);
  Record.MarginLt = float(record.MarginLt);
  Record.MarginRt = float(record.MarginRt);
  Record.MarginTp = float(record.MarginTp);
  Record.PaperSize = record.PaperSize;
  InitPrinter(Record, Printer);
  const double mult = ToNumber(record.PrecisionMult), div = ToNumber(record.PrecisionDiv);
  if (mult <= 0 || div <= 0) {
    FitOnOpen = true;
  } else {
    PrecisionMult = ToNumber(FormatNumber(mult, "00.00"));
    PrecisionDiv = ToNumber(FormatNumber(div, "00.00"));
  }
}

void PreviewModel::WritePrintManager(PrintManagerRecord& record) {
  // A term its text does not hold exactly gives the artwork a little more room.
  const bool inexact[] = {ToNumber(termText(PrecisionMult)) != PrecisionMult,
                          ToNumber(termText(PrecisionDiv)) != PrecisionDiv};
  for (bool term : inexact)
    if (term) {
      PrecisionDiv += 0.01;
      PrecisionMult -= 0.01;
    }
  record.PrecisionDiv = FormatNumber(PrecisionDiv, "0.00");
  record.PrecisionMult = FormatNumber(PrecisionMult, "0.00");
  const double factor = UnitFactor();
  record.MarginBt = BottomMargin * factor / UnitsPerMm;
  record.MarginLt = LeftMargin * factor / UnitsPerMm;
  record.MarginTp = TopMargin * factor / UnitsPerMm;
  record.MarginRt = RightMargin * factor / UnitsPerMm;
  record.Orientation = Record.Orientation;
  record.PaperSize = Record.PaperSize;
  record.PaperSizeString = PaperSizeName(Record.PaperSize);
  record.unit = DisplayUnit == displayunit::Millimetre ? 1 : 0;
}

std::string PreviewModel::PrintTip() const {
  return text("Print page : ", "5298") + std::to_string(CurrentPage) + text(" using (", "52124") +
         Record.DeviceName + ")";
}

std::string PreviewModel::PrintPopCaption() const {
  return text("Print page : ", "5298") + std::to_string(CurrentPage);
}

std::string PreviewModel::PrintAllCaption() const {
  return text("Print all Pages from 1 to ", "5295") + std::to_string(PageCount);
}

std::string PreviewModel::PrintAllTip() const {
  return PrintAllCaption() + text(" using (", "52124") + Record.DeviceName + ")";
}

std::string PreviewModel::MultipagesTip() const {
  return text("Show Multiple pages (", "52118") + std::to_string(SavedAcross) + "x" +
         std::to_string(SavedDown) + ")";
}

std::string PreviewModel::CentreTip() const {
  return text("Centre image in ", "52119") + std::to_string(PagesAcross) + "x" +
         std::to_string(PagesDown) + text(" Pages", "13247");
}

std::string PreviewModel::PagePanel() const {
  return "Page " + std::to_string(CurrentPage) + std::string(35, ' ') +
         std::to_string(CurrentPage) + "/" + std::to_string(PageCount);
}

std::string PreviewModel::SizePanel() const {
  auto size = [&](int32_t unit) {
    const DisplayUnitInfo& info = displayUnitInfo(unit);
    return FormatNumber(PageWidth / UnitsPerMm * info.FactorFromMm, "#0.0#") + "X" +
           FormatNumber(PageHeight / UnitsPerMm * info.FactorFromMm, "#0.0#") + " " +
           std::string(info.Word);
  };
  const int32_t other =
      DisplayUnit == displayunit::Millimetre ? displayunit::Inch : displayunit::Millimetre;
  return "P:" + size(DisplayUnit) + " (" + size(other) + ")";
}

}  // namespace tvx
