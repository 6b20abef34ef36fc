// The layer properties window: the property grid of the layer's contents and use counts on one
// page, the palette on the other, the message line and Close. It shows LayerPropertiesModel and
// hands the user's actions to it.
#pragma once

#include "common/widgets/ToolWindow.h"
#include "import/readers/window/LayerPropertiesModel.h"
#include "platform/InterfaceFont.h"

#include <functional>
#include <memory>

class QLabel;
class QPushButton;
class QTabWidget;

namespace tvx {

class PropertyGrid;
class UserStore;

class GBRVIEWER_GISIMP : public ToolWindow {
  Q_OBJECT

public:
  // With a store of places the window comes back where it was closed last time. unloaded runs
  // once, when the window goes.
  GBRVIEWER_GISIMP(LayerPropertiesOwners owners, UserStore* places, QWidget* parent = nullptr,
                   const InterfaceFont& font = {});
  ~GBRVIEWER_GISIMP() override;

  LayerPropertiesModel& model() { return *model_; }
  PropertyGrid& grid() { return *egrdProp_; }
  void refresh();
  // The message line.
  void EditMsgLine(const std::string& text);

  // What runs when the window goes (the query-unload and unload of the main window's side).
  std::function<void()> unloaded;

protected:
  void unload() override;

private:
  std::unique_ptr<LayerPropertiesModel> model_;
  PropertyGrid* egrdProp_ = nullptr;
  QTabWidget* tabColor_ = nullptr;
  QPushButton* cmdCmd_ = nullptr;
  QLabel* MsgLine_ = nullptr;
};

}  // namespace tvx
