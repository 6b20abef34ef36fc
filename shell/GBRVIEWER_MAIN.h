// The component's main window: its life (load, close request, unload), the host's commands, the
// view picture with its redraw, the status bar, the menu bar and the file-open command.
//
// The window's code is split by subject: GBRVIEWER_MAIN.cpp (commands, status bar, menus),
// MainStartup.cpp (Form_Load, positioning, ApplySystemSettings), MainShutdown.cpp (close request,
// unload, resize) and MainImport.cpp (the file-open command and the host's files).
#pragma once

#include "aperture/ApertureTable.h"
#include "common/WheelSteps.h"
#include "platform/ViewerWorkFolder.h"
#include "shell/ComponentContext.h"
#include "shell/FunctionKeys.h"
#include "shell/MenuFile.h"
#include "shell/ViewerSettings.h"
#include "store/ColourSlots.h"
#include "store/Layers.h"
#include "viewer/KeyboardInput.h"
#include "viewer/PointerTools.h"
#include "viewer/Redraw.h"
#include "viewer/ToolBarModel.h"
#include "viewer/ViewState.h"

#include <QMainWindow>
#include <QPointF>
#include <QPointer>

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

class QAction;
class QCloseEvent;
class QFileDialog;
class QKeyEvent;
class QLabel;
class QLineEdit;
class QToolBar;
class QScrollBar;
class QToolButton;
class QWheelEvent;

namespace tvx {

class GBRVIEWER_GIEIMP;
class QtPrinter;
class TvxPreview;
struct PrinterSettings;
class GBRVIEWER_GIESVC;
class GBRVIEWER_GISIMP;
class GBRVIEWER_IMPORT;
class HelpWindow;
class ElementEditor;
class ImportSession;
class LayerCommands;
class MeasureTools;
class Measuring;
class UserStore;
class ViewPicture;
class ToolBarModel;
class ToolBarView;
class ToolDispatcher;
struct ReconstructionState;

// Window states as Load and the host's commands number them.
namespace windowstate {
inline constexpr int16_t Normal = 0;
inline constexpr int16_t Minimised = 1;
inline constexpr int16_t Maximised = 2;
}  // namespace windowstate

// Why the window is asked to unload.
namespace unloadmode {
inline constexpr int16_t UserClose = 0;  // the window's close button or the desktop
inline constexpr int16_t Code = 1;       // ShutDown, from "EX" or a start-up that gave up
}  // namespace unloadmode

// Keys of the status bar's panels and the pictures of the busy panel.
inline constexpr const char* BusyPanel = "BUSY";
inline constexpr const char* EscPanel = "ESC";
inline constexpr const char* MessagePanel = "MSG";
inline constexpr const char* BusyPicture = "ST_BUSY";
inline constexpr const char* IdlePicture = "ST_NORMAL";

// The window's size as designed: the smallest it can be made.
inline constexpr int DesignWidth = 640;
inline constexpr int DesignHeight = 480;

class GBRVIEWER_MAIN : public QMainWindow {
  Q_OBJECT

public:
  explicit GBRVIEWER_MAIN(const ComponentContext& context, QWidget* parent = nullptr);
  ~GBRVIEWER_MAIN() override;

  const ComponentContext& context() const { return context_; }

  // --- Before Load. The folder of the data files (menu file, catalogues, help); the folder of
  // the program by default.
  void setAppPath(const std::string& path) { appPath_ = path; }
  const std::string& appPath() const { return appPath_; }
  // The per-user store of window places; the desktop's by default.
  void setUserStore(UserStore* store);
  // Files that start-up imports one after another in place of the file request, each into the
  // layer given for it (0 or none: where the import puts it). Names refused before start-up, each
  // with its FileLayer error, are named in the message line once start-up is over (the first).
  void setStartupFiles(std::vector<std::string> files, std::vector<int32_t> layers = {},
                       std::vector<std::pair<std::string, int>> refused = {}) {
    startupFiles_ = std::move(files);
    startupLayers_ = std::move(layers);
    refusedStartupNames_ = std::move(refused);
  }

  // Loads the window when it is not loaded yet (Form_Load) and shows it without a modal loop.
  void showWindow();
  bool isLoaded() const { return loaded_; }

  void Form_Load();
  // Refuses (Cancel = true) while a pointer tool runs, while the window is minimised (which it
  // restores) and while the import dialog shows.
  void Form_QueryUnload(bool& Cancel, int16_t UnloadMode);
  void Form_Unload(bool& Cancel);
  // Keeps the minimum size, takes the other windows along on minimising, lays out the view.
  void Form_Resize();
  // Unloads the window, subject to Form_QueryUnload.
  void ShutDown();
  // Unloads the window without asking Form_QueryUnload: the component itself is going away.
  void unloadUnconditionally();
  // A key of the window, by the key codes of viewer/KeyboardInput.h (MainPointer.cpp).
  void Form_KeyDown(int KeyCode, int Shift);

  // Executes one incoming command "addressee,verb[,...]".
  void AP_ExeCmd(const std::string& Cmd);
  void AP_SendCmd(const std::string& Aname, const std::string& sCommand);
  void AP_SendCmdAll(const std::string& sCommand);
  // Raises NotifyClass(Aname, "SHELL,<iMode>," + sFileName).
  void AP_Shell(const std::string& Aname, int16_t& iMode, const std::string& sFileName);

  // The window state as a windowstate value; any other value sets the normal state.
  int16_t windowStateCode() const;
  void setWindowStateCode(int16_t state);

  // Re-reads what depends on the suite's settings and the kernel's tables.
  void ApplySystemSettings();
  // Selects function (of the menu file's function table) as the current one.
  void M_FSI_Click(int16_t function);

  // --- Redraw.
  void RedrawScreen();
  void ViewPicture_Paint();
  void RedrawScreenFocus(int32_t Xpos, int32_t Ypos);
  // The message line: the "MSG" panel shows text and a blank.
  void EditMsgLine(const std::string& text);
  // Hourglass pointer and the busy picture.
  void UpdateStatusBusy();
  // Applies what a view operation asks the window to show again.
  void applyViewChange(const ViewChange& change);

  // --- Menu commands.
  void M_FSIimport_Click();
  void M_Scopy_Click();
  void M_Exit_Click();
  void M_Inches_Click();
  void M_Mm_Click();
  void M_TrueSize_Click();
  void M_PadFrame_Click();
  void M_PadPosition_Click();
  void M_Mirror_Click();
  void M_Mono_Click();
  void M_Sbars_Click();
  void M_GIESelCatView_Click();
  void M_Help_Click();
  // File > New: every layer cleared after a question, then a new import (MainLayers.cpp).
  void M_New_Click();
  // Tools > Import Categories: the options asked, the layers sorted into the board categories,
  // and the suite told that the layout module may take them over (MainCategories.cpp).
  void M_ImportCategories_Click();
  // What the sorting into categories keeps between runs: the options, the via D-code, the pads.
  ReconstructionState& categoryState() { return *categories_; }
  // The window "Import to categories" while it is open.
  GBRVIEWER_GIEIMP* categoryDialog() const;
  // The tool bands (MainToolBars.cpp): the bar's model, the lock, the tool tips, the raster combo.
  ToolBarModel* toolBar() { return bar_.get(); }  // nullptr before the window is loaded
  void M_LockTB_Click();
  void M_ToolTip_Click();
  void RasterValueChanged();
  // The tools show the state of the view, the keys and the layers again.
  void refreshBands();
  // Tools > Mirror Current Layer: along X (0) or Y (1), about the middle of all layers.
  void M_FlipLayer_Click(int32_t index);
  // File > Print: the print preview of all layers as the view draws them (MainPrint.cpp).
  void M_Print_Click();
  // The print preview while it is open.
  TvxPreview* previewWindow() const;
  // The unload once the preview has closed (it may end a print first).
  void shutDownAfterPreview();

  // The file-open command after the file request: recognition, import, the unknown-file question.
  void importChosenFile(const std::string& path);
  // The host's files: each imported in turn into its layer of the command line, or where the
  // import puts it, then the view fits them. The number of files imported.
  int importFiles(const std::vector<std::string>& files, const std::vector<int32_t>& layers = {});
  // The modeless file request of the file-open command while it is open.
  QFileDialog* fileRequest() const;
  // The layer visibility window while it is open.
  GBRVIEWER_GIESVC* layerVisibilityWindow() const;
  // The import window while it is loaded.
  GBRVIEWER_IMPORT* importWindow() const;
  // The layer properties window while it is loaded.
  GBRVIEWER_GISIMP* layerPropertiesWindow() const;

  // --- The layer properties window (MainWindows.cpp): loaded for the current layer, or raised;
  // the window's tool runs while it is up.
  void openLayerProperties();
  void closeLayerProperties();
  // The layer the properties window shows, and whether it is loaded.
  int32_t PropertiesLayer = 0;
  bool PropertiesOpen = false;

  // The pointer tools, the keys and the functions' keys (MainPointer.cpp).
  PointerTools& pointerTools() { return *pointer_; }
  KeyboardInput& keyboard() { return *keyboard_; }
  FunctionKeys& functionKeys() { return *keys_; }
  // A tool that keeps the window open and on the screen runs (any but the layer properties).
  bool pointerToolActive() const { return pointer_->ToolCode > toolcode::LayerProperties; }
  // Asks yes or no through the pop-up menu M_Conf at a view pixel; closing it answers no.
  bool ConfirmYESNO(const std::string& text, int32_t X, int32_t Y);
  // Measuring: the panels, the reference point, the ruler and the two tools (MainMeasure.cpp).
  Measuring& measuring() { return *measuring_; }
  MeasureTools& measureTools() { return *measureTools_; }
  // The texts of the position band's two panels.
  std::string positionText(bool y) const;
  void M_BScopy_Click();
  void M_LCursor_Click();
  // Set by the import dialog while it is loaded and visible.
  bool importDialogVisible() const;
  void setImportDialogVisible(bool visible);
  // Set while an import runs; the window is disabled then.
  bool importRunning() const;

  // True while start-up has not yet got the view ready; unload then releases nothing.
  bool ExitAnyWay() const { return exitAnyWay_; }
  int16_t currentFunction() const { return currentFunction_; }
  bool redrawPending() const { return redraw_->RedrawPending; }
  const std::string& languagePath() const { return languagePath_; }
  const std::string& sysName() const { return sysName_; }
  const std::string& helpFile() const { return helpFile_; }
  const std::string& viewerTitle() const { return viewerTitle_; }
  const std::string& MessageLine() const { return redraw_->MessageLine; }
  double MinWidth() const { return minWidth_; }
  double MinHeight() const { return minHeight_; }
  int32_t CPDcId() const { return cpDcId_; }
  const FunctionTable& functionTable() const { return functions_; }

  ViewState& view() { return *view_; }
  ViewRedraw& redraw() { return *redraw_; }
  LayerTables& layerTables() { return *tables_; }
  ColourSlots& colourSlots() { return *colours_; }
  ViewerSettings& settings() { return settings_; }

  QWidget* viewPicture() const;
  ViewPicture* viewPictureWidget() const { return viewPicture_; }
  // A panel of the status bar by its key, or nullptr.
  QWidget* statusPanel(const std::string& key) const;
  // The picture key the busy panel shows.
  const std::string& busyPicture() const { return busyPicture_; }
  // A menu entry by its name (M_...), or nullptr.
  QAction* menuEntry(const std::string& name) const;
  // Saves the view as the screen shows it (its shadow picture while it is hidden) as PNG; false
  // when there is none or it cannot be written.
  bool saveViewPicture(const std::string& path) const;

  // The host's text behind the class's SeverPath property.
  const std::string& severPath() const { return severPath_; }
  void setSeverPath(const std::string& path) { severPath_ = path; }

signals:
  // Every command the component sends; the class passes it on to its host unchanged.
  void NotifyClass(const std::string& Aname, const std::string& sCommand);

protected:
  void closeEvent(QCloseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

private:
  // Runs the unload path once; false when it was refused.
  bool unloadWindow(int16_t unloadMode, bool mayRefuse);
  // Interface font, control texts by their tags and the caption for the current language.
  void localizeWindow();
  void resetMembers();
  void buildStatusBar();
  void buildMenus();
  void positionWindow();
  void layoutView();
  // The view fitted to the data (ATB_Board), or redrawn as it stands (ATB_Current).
  void redrawView(bool fit);
  void setBusyPicture(const char* picture);
  void syncMenuChecks();
  void syncScrollBars();
  void toggleDisplay(DisplayOption option);
  // The file-open command's window state: disabled while the import runs.
  void setImportControlsEnabled(bool enabled);
  // The "PCB Layer" menu and the layer commands behind it; the menu follows their state.
  void buildLayerCommands();
  void syncLayerMenu();
  // The Edit and Tools menus and the element editor behind function 1 (MainEditor.cpp); its
  // wiring to the pointer, the keys and the layer commands once they exist.
  void buildEditMenu();
  void buildToolsMenu();
  void wireElementEditor();
  // Offers to show a file that is not imported as plain text; status 93 first unless shown.
  void askToDisplayFile(const std::string& path, bool reported);
  // Loads the import window for the job's file, wired to this window; the one that is loaded
  // already is used again.
  GBRVIEWER_IMPORT& loadImportWindow();
  // The apertures display over the import window, modal: its flags ApertureFileCreated and
  // ArtworkUpdated.
  int32_t openApertureUse();
  // The aperture table in force named in the settings ("Aper").
  void setCurrentApertureTable(const std::string& name);
  // Pointer, keys and wheel (MainPointer.cpp).
  void buildPointerInput();
  // Measuring and what hangs on it: the Preferences menu, the ruler's entry in View, the
  // position band, the pointer's and the keys' hooks (MainMeasure.cpp).
  void buildMeasuring();
  void buildPreferencesMenu();
  void buildPositionBand(ToolBarModel& bar);
  void buildToolBars();
  void buildToolbarMenu();
  void applyToolbarLock();
  void runNamedTool(std::string_view name);
  void rebuildKeyBands();
  // The view band of function 1 (with the layer visibility's tool) or of the others, in one place.
  void switchViewBand(bool layout);
  // View > Toolbar's entries follow their bands.
  void syncBandEntries();
  // A band shown, moved or resized: the option band's size is kept for its rebuilds, and the
  // bands' visibility goes to their menu entries.
  void BandMoved(const std::string& band);
  // A band of View > Toolbar; an empty name is the view band of the moment.
  std::string bandOf(const char* entryBand) const;
  std::string toolText(const char* fallback, const char* id) const;
  // A tool of a band, its picture named after it.
  static ToolItem bandTool(const char* name, ToolKind kind, const std::string& tip,
                           const std::string& description, const std::string& caption = {},
                           const char* rows = "", bool checkable = false);
  // The bands' places in the per-user store: written at unload, read at start.
  void saveBands();
  void loadBands();
  void syncMeasureChecks();
  // Reads RULER_TYPE, RULER_TYPE_CUSTOM and MEASURE into measuring; gives the first two back.
  void applyMeasureSettings();
  void takeMeasureSettings();
  void viewPointer(int action, int button, int shift, double x, double y);
  bool routeKey(QKeyEvent* event);
  bool routeWheel(QObject* watched, QWheelEvent* event);
  void setViewCursor(int32_t cursor);

  ComponentContext context_;
  UserStore* userStore_ = nullptr;
  std::unique_ptr<UserStore> ownUserStore_;
  ViewPicture* viewPicture_ = nullptr;
  QScrollBar* horizontalBar_ = nullptr;
  QScrollBar* verticalBar_ = nullptr;
  QLabel* busyPanel_ = nullptr;
  QToolButton* escPanel_ = nullptr;
  QLabel* messagePanel_ = nullptr;
  QPointer<QFileDialog> fileRequest_;
  QPointer<GBRVIEWER_GIESVC> layerVisibility_;
  QPointer<GBRVIEWER_IMPORT> importWindow_;
  QPointer<GBRVIEWER_GISIMP> properties_;
  std::unique_ptr<HelpWindow> help_;

  std::unique_ptr<ViewState> view_;
  WheelSteps wheelSteps_;
  std::unique_ptr<LayerTables> tables_;
  std::unique_ptr<ColourSlots> colours_;
  std::unique_ptr<ViewRedraw> redraw_;
  std::unique_ptr<PointerTools> pointer_;
  std::unique_ptr<FunctionKeys> keys_;
  std::unique_ptr<KeyboardInput> keyboard_;
  bool inWheel_ = false;
  bool wheelQueued_ = false;
  int32_t pendingWheelSteps_ = 0;
  QPointF pendingWheelAt_;
  std::unique_ptr<ImportSession> import_;
  std::unique_ptr<LayerCommands> layerCommands_;
  std::unique_ptr<ElementEditor> editor_;
  std::unique_ptr<Measuring> measuring_;
  std::unique_ptr<ReconstructionState> categories_;
  QPointer<GBRVIEWER_GIEIMP> categoryDialog_;
  // The printer and its record, kept from one preview to the next.
  std::unique_ptr<QtPrinter> printer_;
  std::unique_ptr<PrinterSettings> printerRecord_;
  QPointer<TvxPreview> preview_;
  std::unique_ptr<MeasureTools> measureTools_;
  std::unique_ptr<ToolBarModel> bar_;
  ToolBarView* barView_ = nullptr;
  std::unique_ptr<ToolDispatcher> dispatcher_;
  bool toolTipsOn_ = true;
  int16_t builtFunction_ = -1;  // the function and key the two key bands were built for
  int32_t builtKey_ = -1;
  int32_t OptionBandWidth = 0;  // the option band's size as the user left it, in pixels
  int32_t OptionBandHeight = 0;
  bool rebuildingKeyBands_ = false;
  bool batchImporting_ = false;                    // files of the command line are being read
  std::string viewBand_ = "B_ViewLayout";          // the view band in the bar's place
  std::map<std::string, BandPlace> loadedPlaces_;  // the bands' places as read at start
  QLineEdit* xPosPanel_ = nullptr;
  QLineEdit* yPosPanel_ = nullptr;
  std::unique_ptr<ViewerWorkFolder> workFolder_;  // the intermediate files of this viewer
  ViewerSettings settings_;
  FunctionTable functions_{};
  std::vector<std::string> startupFiles_;
  std::vector<int32_t> startupLayers_;
  std::vector<std::pair<std::string, int>> refusedStartupNames_;
  // Set when the import window rejected its file: the file is offered as plain text once the
  // window has gone. The value tells whether status 93 has been shown already.
  std::optional<bool> displayFileReported_;

  bool loaded_ = false;
  bool unloading_ = false;
  bool exitAnyWay_ = false;
  bool layersBuilt_ = false;
  bool resizeStartup_ = false;
  bool firstResize_ = false;
  bool minimisingAll_ = false;
  bool toolbarsLocked_ = false;
  bool updatingBars_ = false;
  int16_t currentFunction_ = 0;
  int32_t cpDcId_ = 0;
  std::array<int32_t, 2> cursors_{};
  double minWidth_ = 0;
  double minHeight_ = 0;
  std::string busyPicture_;
  std::string appPath_;
  std::string sysDir_;
  std::string languagePath_;
  std::string sysName_;
  std::string helpFile_;
  std::string viewerTitle_;
  std::string coordinateFormat_;
  // The aperture table in force, read at every application of the settings; the Gerber text
  // pass starts its lists from its rows.
  ApertureTable apertureTable_;
  std::string severPath_;
  std::vector<QPointer<QWidget>> minimisedWithMe_;
};

}  // namespace tvx
