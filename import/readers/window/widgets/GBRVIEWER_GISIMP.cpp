#include "import/readers/window/widgets/GBRVIEWER_GISIMP.h"

#include "common/GridHelpers.h"
#include "common/widgets/PropertyGrid.h"
#include "import/readers/window/widgets/PalettePage.h"
#include "platform/SystemServices.h"
#include "platform/widgets/LocalizeForm.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStatusBar>
#include <QTabWidget>
#include <QVBoxLayout>

namespace tvx {

GBRVIEWER_GISIMP::GBRVIEWER_GISIMP(LayerPropertiesOwners owners, UserStore* places, QWidget* parent,
                                   const InterfaceFont& font)
    : ToolWindow(places, parent) {
  setObjectName("GBRVIEWER_GISIMP");
  owners.unload = [this, outer = std::move(owners.unload)] {
    if (outer)
      outer();
    close();
  };
  const SystemServices& services = owners.services;
  model_ = std::make_unique<LayerPropertiesModel>(std::move(owners));
  LayerPropertiesModel& m = *model_;

  egrdProp_ = new PropertyGrid;
  tabColor_ = new QTabWidget;
  tabColor_->setObjectName("tabColor");
  tabColor_->addTab(egrdProp_, QString());
  tabColor_->addTab(makePalettePage([&m](int32_t colour) { m.PaletteClick(colour); }), QString());
  cmdCmd_ = new QPushButton("Close");
  cmdCmd_->setObjectName("cmdCmd");
  cmdCmd_->setProperty(TagProperty, "99422");
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(cmdCmd_);
  auto* central = new QWidget;
  auto* layout = new QVBoxLayout(central);
  layout->addWidget(tabColor_, 1);
  layout->addLayout(buttons);
  setCentralWidget(central);
  MsgLine_ = new QLabel;
  MsgLine_->setObjectName("MsgLine");
  statusBar()->addWidget(MsgLine_, 1);

  connect(cmdCmd_, &QPushButton::clicked, this, [&m] { m.cmdClose(); });
  connect(egrdProp_, &PropertyGrid::cellEdited, this, [&m] { m.CellEdited = true; });
  connect(egrdProp_, &PropertyGrid::cellCommitted, this,
          [&m](int row, const QString& text) { m.CommitCell(row, text.toStdString()); });
  connect(egrdProp_, &PropertyGrid::rowClicked, this, [&m](int row, bool) { m.ClickRow(row); });
  m.changed = [this] { refresh(); };
  LocalizeForm(this, services, font);
  if (!restorePlace())
    resize(420, 520);
  m.FormFill();
  m.FormUpdate();
}

GBRVIEWER_GISIMP::~GBRVIEWER_GISIMP() {
  if (model_)
    model_->changed = nullptr;
}

void GBRVIEWER_GISIMP::refresh() {
  LayerPropertiesModel& m = *model_;
  setWindowTitle(QString::fromStdString(m.caption));
  tabColor_->setTabText(0, QString::fromStdString(m.gridCaption));
  tabColor_->setTabText(1, QString::fromStdString(m.paletteCaption));
  tabColor_->setCurrentIndex(m.colourPageShown ? 1 : 0);
  egrdProp_->setHorizontalHeaderLabels(
      {QString::fromStdString(m.headerProperty), QString::fromStdString(m.headerValue)});
  egrdProp_->setRows(
      m.rows, [&m](int32_t which) -> const std::vector<std::string>& { return m.list(which); });
  StyleGrid(*egrdProp_);
}

void GBRVIEWER_GISIMP::EditMsgLine(const std::string& text) {
  MsgLine_->setText(QString::fromStdString(text));
}

void GBRVIEWER_GISIMP::unload() {
  if (unloaded)
    unloaded();
}

}  // namespace tvx
