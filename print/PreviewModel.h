// The logic of the print preview TvxPreview: the artwork's frame cut into printer sheets at a
// scale, the sheets' metrics and margins, the grid of thumbnails, the scale and zoom boxes, the
// tools, keys and selection with their live texts. Lengths of the thumbnail grid are
// millimetres of the screen; everything else is store units. No widget lives here.
#pragma once

#include "kernel/KernelTypes.h"
#include "print/PrinterSettings.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace tvx {

class Graphics;
class SystemServices;
class UserPrompts;

struct PageRow {
  int32_t Number = 0;
  int32_t CentreX = 0;
  int32_t CentreY = 0;
  bool Shown = false;
};

// A thumbnail's place in the container, in millimetres.
struct PreviewCell {
  double X = 0, Y = 0, Width = 0, Height = 0;
};

// What the window must do after a command of the model.
enum class PreviewAction {
  None,
  StartPrinting,  // PrintFrom and PrintTo are set: start the timer
  Close,
  UpdateAndClose,
  PageSetup,
  PrinterDialog,  // ATB_Printers and ATB_PrintSetup: the print dialog, then print its range
  Help,
  FullScreen,
  Popup,  // show the band "SB_Popup"
};

// The print record of the suite's print manager, read and given back by name.
struct PrintManagerRecord {
  int32_t unit = 1;
  int32_t Orientation = 1;
  double MarginBt = 0, MarginLt = 0, MarginRt = 0, MarginTp = 0;
  int32_t PaperSize = 9;
  std::string PaperSizeString;
  std::string PrecisionMult = "1", PrecisionDiv = "1";
};

class PreviewModel {
public:
  // Draws the layers on a device in a mode: the drawing callback.
  using DrawCallback = std::function<void(int32_t device, int32_t mode)>;

  PreviewModel(PrinterSettings& record, PlatformPrinter& printer, int32_t displayUnit,
               const SystemServices* services = nullptr, UserPrompts* prompts = nullptr);

  // Opening: the frame and mode, the start values, the printer's defaults. The settings are
  // loaded by the caller between Begin and Build (PrintOutput::LoadSettings).
  void Begin(const FrameRect& frame, int32_t drawFlags);
  // The metrics with repaging and the live texts; the fit when FitOnOpen is set.
  void Build();

  // --- Sheets.
  void PageMetrics(bool repage);
  void ComputeMargins();
  void Repage();
  void Fit(bool withoutMargins);
  // The scale box's and the zoom box's handlers; each gives the box's new text.
  std::string ScaleEntered(const std::string& text);
  std::string ZoomEntered(const std::string& text);
  std::string ScaleText() const;
  std::string ZoomText() const;

  // --- Thumbnails. The container's inner size in millimetres, set by the window.
  void SetContainer(double widthMm, double heightMm);
  // Lays out the grid; false when a ZoomMode 0 grid would be larger than MaxZoom.
  bool Layout();
  // Layout with the fall-back to ZoomMode 1.
  void LayoutOrZoom();
  const std::vector<PreviewCell>& Cells() const { return cells_; }
  // The scroll range of a one-page view (0 to the end, which may be negative), in millimetres.
  double ScrollEndX = 0, ScrollEndY = 0;
  // Store units per pixel of a thumbnail of that size in pixels.
  int32_t ThumbZoomFor(int32_t widthPixels, int32_t heightPixels) const;
  // Paints a sheet on an open-ready device of that size in pixels at zoom: background, the
  // frame's background rectangle, the layers. Thumbnails use mode DrawFlags, the printer
  // DrawFlags with the layer bit.
  void DrawSheet(Graphics& graphics, int32_t device, const PageRow& row, int32_t widthPixels,
                 int32_t heightPixels, int32_t zoom, bool forPrinter) const;
  DrawCallback DrawPage;

  // --- Selection, keys, commands.
  void SelectPage(int32_t page);
  // The sheet a click on the cell selects, and whether it switches the view (a click on the
  // selected cell): the action of the left button.
  PreviewAction CellClicked(size_t cell, bool rightButton);
  // A key of Qt::Key with ctrl; true when the model took it.
  bool KeyPressed(int key, bool ctrl);
  // A tool of atvPrev by name (compared in capitals). Refused while DocOpen.
  PreviewAction Command(const std::string& tool);
  void ChooseAcross(int32_t n);
  void ChooseDown(int32_t n);
  void PagesButton(int32_t index);
  // The print manager's record in and out.
  void ReadPrintManager(const PrintManagerRecord& record);
  void WritePrintManager(PrintManagerRecord& record);

  // --- Live texts.
  std::string PrintTip() const;
  std::string PrintPopCaption() const;
  std::string PrintAllTip() const;
  std::string PrintAllCaption() const;
  std::string MultipagesTip() const;
  std::string CentreTip() const;
  std::string PagePanel() const;  // staMsg panel 1
  std::string SizePanel() const;  // staMsg panel 2
  std::string text(const char* defaultText, const char* id) const;
  // The unit of the margins and dialogs: 5 inches or 6 millimetres by the display unit.
  int32_t UnitScaleMode() const;
  double UnitFactor() const;  // millimetres times this give the display unit
  static bool IsWin2000orGreater() { return true; }

  // State.
  FrameRect PreviewFrame;
  int32_t DrawFlags = 4;
  double PrecisionMult = 1.0, PrecisionDiv = 1.0;
  int32_t PrintZoom = 0;
  int32_t ResolutionX = 0, ResolutionY = 0;
  double PageWidth = 0, PageHeight = 0;
  double RightMargin = 0, LeftMargin = 0, TopMargin = 0, BottomMargin = 0;
  int32_t PagesAcross = 1, PagesDown = 1, PageCount = 1;
  std::vector<PageRow> PageRows;  // [0] is sheet 1
  int32_t ViewAcross = 1, ViewDown = 1;
  int32_t SavedAcross = 1, SavedDown = 1;
  int32_t MaxAcross = 8, MaxDown = 4;
  std::vector<PageRow> ViewRows;
  int32_t CurrentPage = 1;
  int32_t CurrentCell = 0;
  bool KeepFirstPage = false;
  int32_t FirstPageBefore = 1;
  int32_t ZoomMode = 0;
  double ZoomPercent = 50.0;
  double MaxZoom = 250.0, MinZoom = 10.0;
  int32_t ScrollOnePage = 0;
  int32_t ThumbZoom = 1;
  bool CentreImage = false;
  bool FitWithoutMargins = false;
  bool ShowBackground = true;
  bool DocOpen = false;
  int32_t PrintFrom = 1, PrintTo = 1;
  bool PrinterChanged = false;
  bool FitOnOpen = false;
  const PrintManagerRecord* PrintManager = nullptr;

  PrinterSettings& Record;
  PlatformPrinter& Printer;
  int32_t DisplayUnit;

private:
  void guardScale();
  void computePrintZoom();
  void hideAll();
  void layoutGridFromZero();
  void setPrintRange(int32_t from, int32_t to);

  const SystemServices* services_;
  UserPrompts* prompts_;
  std::vector<PreviewCell> cells_;
  bool selecting_ = false;
  double containerW_ = 200, containerH_ = 150;
};

}  // namespace tvx
