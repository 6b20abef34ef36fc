// The import window: the parameter grid and the text viewer behind a splitter, the button row,
// the message line, the colour page and the menus. It shows ImportWindowModel and hands the
// user's actions to it.
#pragma once

#include "common/widgets/ToolWindow.h"
#include "import/readers/window/ImportWindowModel.h"
#include "platform/InterfaceFont.h"

#include <QSize>

#include <array>
#include <functional>
#include <memory>

class QAction;
class QLabel;
class QPlainTextEdit;
class QPushButton;
class QSplitter;
class QTabWidget;

namespace tvx {

class PropertyGrid;
class UserStore;

class GBRVIEWER_IMPORT : public ToolWindow {
  Q_OBJECT

public:
  // An empty file picker in the owners' link gets the window's own. With a store of places the
  // window comes back where it was closed last time. Captions are translated in font.
  explicit GBRVIEWER_IMPORT(ImportWindowOwners owners, UserStore* places = nullptr,
                            QWidget* parent = nullptr, const InterfaceFont& font = {});
  ~GBRVIEWER_IMPORT() override;

  ImportWindowModel& model() { return *model_; }
  PropertyGrid& grid() { return *egrdProp_; }
  // Shows the model's state: rows, buttons, texts, the viewer and the page.
  void refresh();
  // SizeControls: the grid's share of the splitter, in pixels.
  void SizeControls(int splitterPosition);

protected:
  void unload() override;

private:
  // Resizes the window to what its rows and buttons need, within the screen's work area.
  void fitToContent();
  void buildMenus();

  std::unique_ptr<ImportWindowModel> model_;
  PropertyGrid* egrdProp_ = nullptr;
  QPlainTextEdit* F_Viewer_ = nullptr;
  QSplitter* picSplitter_ = nullptr;
  QTabWidget* tabColor_ = nullptr;
  QPushButton* cmdClose_ = nullptr;
  QPushButton* cmdFilters_ = nullptr;
  QPushButton* cmdClear_ = nullptr;
  QPushButton* cmdView_ = nullptr;
  QLabel* MsgLine_ = nullptr;
  std::array<QAction*, 2> F_InchMM_{};
  bool placeKept_ = false;  // the stored place was usable; otherwise the size follows the rows
  QSize fittedSize_;        // the size fitToContent gave last
};

}  // namespace tvx
