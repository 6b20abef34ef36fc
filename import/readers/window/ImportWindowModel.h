// The model of the import window GBRVIEWER_IMPORT: the rows of its parameter grid, the commit of
// a cell, the layer choice, the aperture and tool rows, the highlights, the buttons, the colour
// page and the file menu. No widget lives here; the Qt window shows the rows and forwards the
// user's actions. The two stages of an import are ImportDialogModel's.
#pragma once

#include "common/GridRow.h"
#include "import/core/FileRecognition.h"
#include "import/readers/ImportSession.h"
#include "import/readers/window/ImportDialogModel.h"
#include "store/LayerRecord.h"

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace tvx {

// What the viewer highlights: a D-code and a tool (pad stack), each with the text of its panel.
struct HighlightValues {
  int32_t HLDCode = 0;
  std::string HLDCodeText;
  int32_t HLPadstack = 0;
  std::string HLPadstackText;

  bool operator==(const HighlightValues&) const = default;
};

// The four highlight values where their owner keeps them (the main window's redraw).
struct HighlightLink {
  HighlightLink(int32_t& dCode, std::string& dCodeText, int32_t& padstack,
                std::string& padstackText)
      : HLDCode(dCode), HLDCodeText(dCodeText), HLPadstack(padstack), HLPadstackText(padstackText) {
  }
  HighlightLink(HighlightValues& values)  // NOLINT: a set of values stands for its fields
      : HighlightLink(values.HLDCode, values.HLDCodeText, values.HLPadstack,
                      values.HLPadstackText) {}

  void clear() {
    HLDCode = 0;
    HLDCodeText.clear();
    HLPadstack = 0;
    HLPadstackText.clear();
  }

  int32_t& HLDCode;
  std::string& HLDCodeText;
  int32_t& HLPadstack;
  std::string& HLPadstackText;
};

// The fixed lists of the grid.
namespace importlist {
inline constexpr int32_t None = 0;
inline constexpr int32_t ImportMode = 2;
inline constexpr int32_t Colour = 3;
inline constexpr int32_t FileType = 4;
inline constexpr int32_t Precision = 5;
inline constexpr int32_t Zeroes = 6;
inline constexpr int32_t Unit = 7;
inline constexpr int32_t HoleMapping = 8;
inline constexpr int32_t Layers = 9;
inline constexpr int32_t Count = 10;
}  // namespace importlist

// Colours of the grid, 0xBBGGRR; NoColour leaves the grid's own.
namespace importcolour {
inline constexpr int32_t NoColour = gridcolour::NoColour;
inline constexpr int32_t ReadOnly = gridcolour::Greyed;
inline constexpr int32_t Group = gridcolour::Group;
inline constexpr int32_t EnterFormat = 0xFFFF00;
inline constexpr int32_t FileText = 255;
inline constexpr int32_t ViewerWhite = 0xFFFFFF;
inline constexpr int32_t ViewerOnly = 0xFFFFC0;  // a file shown by "Open for View"
}  // namespace importcolour

// "T" + number, filled with blanks to exactly 5 characters.
std::string ToolLabel(int32_t code);

// How a layer's colour row names its colour: "(Default)", "(Palette)" for another palette
// colour, "()" for none of them.
std::string colourChoiceText(const SystemServices& services, const LayerRecord& layer);

// Layers other than the board outline and the drill layer never take the colour of clear
// elements (clearColourNumber): true when colour is such a refusal.
bool colourRefused(const LayerRecord& layer, int32_t colour, int32_t clearColourNumber);

// What the window needs of the main window and of the windows it opens. Empty callables do
// nothing; an empty file picker is a cancelled one.
struct ImportWindowLink {
  // The file request; mode 1 for display, 2 for import (filerequest::ForDisplay, ForImport).
  std::function<std::string(int mode, const std::string& startFolder)> SetInpFileN;
  std::function<void()> RedrawScreen;
  std::function<void()> unload;                // the window goes
  std::function<int32_t()> currentLayer;       // the main window's current layer
  std::function<void(int32_t)> activateLayer;  // M_ActiveCategories_Click with a layer
  std::function<void()> dialogClosed;          // the main window's import-dialog-open flag off
  std::function<void(bool)> saveNoCenter;
  std::function<void(const std::string&)> saveImpDir;
  // IMP_APT: the aperture table window, modal. True when it was shown.
  std::function<bool()> openApertureTable;
  // IMP_APTUSE: the apertures display, modal. Returns its flags ApertureFileCreated (1) and
  // ArtworkUpdated (2).
  std::function<int32_t()> openApertureUse;
  std::function<void(bool)> setTopmost;  // above all windows while a modal window is up
  std::function<void()> showHelp;        // the window's help page (Ctrl+F1)
};

struct ImportWindowOwners {
  ImportSession& session;
  std::span<LayerRecord> layers;  // the 31 slots, layer n at index n - 1
  HighlightLink highlights;
  MainWindowLink mainWindow;
  ImportWindowLink window;
  int32_t clearColourNumber = 0;  // palette number of the ClearColour slot
  int32_t displayUnit = 0;        // the viewer's DisplayUnit
};

// Flags that the apertures display leaves.
inline constexpr int32_t ApertureFileCreated = 1;
inline constexpr int32_t ArtworkUpdated = 2;

class ImportWindowModel {
public:
  explicit ImportWindowModel(ImportWindowOwners owners);

  // Once at load: captions, lists, buttons, the unit.
  void FormFill();
  // Rebuilds the rows and refills their values.
  void FormUpdate();

  // The stages, run on the file the job names.
  bool ApplyFile();
  void ImportFile() { stages_.ImportFile(); }
  ImportDialogModel& stages() { return stages_; }
  ImportSession& session() { return session_; }
  const ImportDialogModel& stages() const { return stages_; }

  // The one commit step for a cell of row (from 0). A list cell gives the chosen entry's text, a
  // check box "1" or "0", a button its caption.
  void CommitCell(int32_t row, const std::string& text);
  // A click on a row: the highlight of an aperture or tool row, or the file picker of the file
  // name's value cell.
  void ClickRow(int32_t row, bool valueCell);

  // Buttons of the window.
  void cmdClose();
  void cmdFilters();
  void cmdClear();
  void cmdView();
  void M_FileSelect();
  void M_FileView();
  void F_InchMM(int32_t index);
  void PaletteClick(int32_t colour);
  // Form_Unload: what the main window gets back when the window goes.
  void Form_Unload();

  // The index of a row by key, -1 when none.
  int32_t rowOf(const std::string& key) const;
  const std::vector<std::string>& list(int32_t which) const { return lists_.at(size_t(which)); }

  // Dialog state.
  int32_t& DialogLayer;
  bool CellEdited = false;
  std::vector<ApertureRow> ApertureRows;
  bool ViewShown = false;
  int32_t OffsetUnit = 0;
  int32_t HoleMapping = 0;  // process-wide: the owner may keep it from one window to the next
  bool NoCenter = true;
  std::string ImpDir;

  // What the window shows beyond the stages' fields.
  std::vector<GridRow> rows;
  int32_t currentRow = 0;
  std::string tabGridCaption;
  std::string tabPaletteCaption;
  bool colourPageShown = false;
  std::string viewerText;
  int32_t viewerBackground = importcolour::ViewerWhite;
  std::string apertureTableName;     // the aperture table an RS-274-D file is read with
  bool apertureTableWindow = false;  // IMP_APT has its window (for plain RS-274-D files)
  bool apertureUseWindow = false;    // IMP_APTUSE has its window
  std::function<void()> changed;     // rows or state changed: the window refills

  // Row builders, public for the window and the tests.
  void buildApertureRows();
  void buildToolRows();
  std::string apertureRowText(const ApertureUse& use, const char* word, const char* id,
                              bool withSize, int32_t size) const;

private:
  std::string text(const char* defaultText, const char* id) const;
  void buildLists();
  void buildRows();
  void addFormatRows(ImportKind kind);
  void addLayerRows(ImportKind kind);
  void addFilterRows(ImportKind kind);
  std::string specialShape(const ApertureUse& use) const;
  std::string lengthText(double storeLength) const;
  std::string shortLengthText(double storeLength) const;
  void readArtSections();
  void notify();
  // A reader of whole files that shows its progress in the main window's message line.
  FileRecogniser fileReader() const;
  // F_Viewer shows the file's name and text on background; false when it cannot be read.
  bool showFileText(const std::string& path, int32_t background);

  void commit(const std::string& key, const std::string& text);
  bool commitImport(const std::string& first, int32_t n, const std::string& text, double v,
                    double L, int32_t index, int& saved);
  bool commitLayerKeys(const std::string& first, int32_t n, double v, double L, int32_t index);
  void chooseLayer(int32_t index);
  void reRun();
  void restoreAfterApertures(bool scanAgain);
  void rebuildTag();
  void highlightApertureRow(int32_t n, bool toggle);
  void highlightToolRow(int32_t n, bool toggle);
  LayerRecord* dialogLayer();
  LayerFileRecord* firstFile();
  ImportKind kind() const { return session_.state.Job.Kind; }

  ImportSession& session_;
  std::span<LayerRecord> layers_;
  HighlightLink highlights_;
  ImportWindowLink link_;
  MainWindowLink mainWindow_;
  int32_t clearColourNumber_;
  int32_t displayUnit_;
  ImportDialogModel stages_;
  std::vector<std::vector<std::string>> lists_;
};

}  // namespace tvx
