// The import window's part of the two stages of an import: the session runs them, this model keeps
// what the window shows of them (caption, message line, kind, layer list, buttons) and what it asks
// of the main window. No widget lives here; the Qt view shows this state and forwards the user's
// actions.
#pragma once

#include "import/readers/ImportSession.h"
#include "store/LayerRecord.h"

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace tvx {

// What the dialog asks of the main window. Empty callables do nothing.
struct MainWindowLink {
  std::function<void(bool busy)> setBusyPointer;  // hourglass while a stage runs
  // Show the file as plain text instead; reported tells that status 93 has been shown already.
  std::function<void(bool reported)> setDisplayFile;
  std::function<void()> markProjectChanged;
  std::function<void(int32_t layer, bool checked)> checkActiveCategory;  // M_ActiveCategories
  std::function<void()> showHoles;  // the viewer's hole display flag on
  // ATB_RedrawButtonClick: fitted to the data, or with the view kept as it is.
  std::function<void(bool fit)> redraw;
  // The main window's message line, where reading a whole file shows its progress.
  std::function<void(const std::string&)> editMsgLine;
};

class ImportDialogModel {
public:
  // layers holds the 31 slots, layer n at index n - 1.
  ImportDialogModel(ImportSession& session, std::span<LayerRecord> layers,
                    MainWindowLink mainWindow);

  // Stage one for the job's kind: scans the file without touching any layer and binds the target
  // layer. True when the dialog is to stay up for the user.
  bool ApplyFile();
  // Stage two into DialogLayer, when the job is prepared and a layer is bound.
  void ImportFile();
  void EditMsgLine(const std::string& text);
  // The filter rows shown or not, with the filter button's caption.
  void showFilters(bool shown);

  // Settings and tables that the dialog reads.
  std::string programTitle;
  bool NoCenter = true;  // the setting: new imports keep the file's own coordinates
  // The drawing order as layer numbers, first entry on top. It stands here until the layer order
  // table exists; ImportFile moves the imported layer to the front.
  std::vector<int32_t> LayerOrder;

  // What the window shows.
  std::string caption;
  std::string messageLine;
  std::string kindText;                // the file type's name
  std::vector<std::string> layerList;  // the names of LayerChoices, in their order
  bool viewButtonVisible = false;
  std::string viewButtonCaption;
  bool filterButtonVisible = false;  // button 3
  std::string filterButtonCaption;
  bool clearButtonVisible = false;  // button 4
  bool FiltersShown = false;        // the filter rows of the grid are shown
  bool topmost = false;             // raised above all windows while an import runs

  // Told when the grid's rows must be rebuilt and when the message line changed.
  std::function<void()> rowsChanged;
  std::function<void(const std::string&)> messageLineChanged;

private:
  void showLayerChoices();
  void showViewButton();
  void busy(bool on) const;
  std::string text(const char* defaultText, const char* id) const;

  ImportSession& session_;
  std::span<LayerRecord> layers_;
  MainWindowLink mainWindow_;
  // The file and layer of the last import: importing them again keeps the view, so that the user
  // sees what a changed value did.
  std::string lastSource_;
  int32_t lastLayer_ = 0;
};

}  // namespace tvx
