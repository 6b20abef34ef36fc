#include "reconstruct/widgets/GBRVIEWER_GIEIMP.h"

#include "common/widgets/HelpKey.h"
#include "common/widgets/PropertyGrid.h"
#include "platform/SystemServices.h"
#include "platform/widgets/LocalizeForm.h"
#include "platform/widgets/WindowPlace.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QPushButton>

#include <algorithm>

namespace tvx {

namespace {
constexpr int Margin = 8;
constexpr int ButtonGap = 6;
}  // namespace

GBRVIEWER_GIEIMP::GBRVIEWER_GIEIMP(CategoryOptions& options, const SystemServices& services,
                                   UserStore* places, QWidget* parent, const InterfaceFont& font)
    : QDialog(parent), model_(options, &services), places_(places) {
  setObjectName("GBRVIEWER_GIEIMP");
  setModal(true);
  egrdProp = new PropertyGrid(this);
  cmdOK = new QPushButton("OK", this);
  cmdOK->setObjectName("cmdOK");
  cmdOK->setDefault(true);
  cmdCancel = new QPushButton("Cancel", this);
  cmdCancel->setObjectName("cmdCancel");
  cmdCancel->setProperty(TagProperty, "99388");
  connect(cmdOK, &QPushButton::clicked, this, [this] {
    model_.OK();
    accept();
  });
  connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
  // A check box clicked, or Tab or Enter on it: the option follows the box, and the rows are
  // built again with the same row current.
  connect(egrdProp, &PropertyGrid::cellCommitted, this, [this](int row, const QString& text) {
    const int kept = model_.CellCommitted(row, text == "1" || text == "[x]");
    egrdProp->setUpdatesEnabled(false);
    FormUpdate();
    egrdProp->setCurrentCell(std::min(kept, egrdProp->rowCount() - 1), 1);
    egrdProp->setUpdatesEnabled(true);
  });
  LocalizeForm(this, services, font);
  FormFill();
  FormUpdate();
  resize(std::max(egrdProp->sizeHint().width() + 2 * Margin, 360),
         egrdProp->sizeHint().height() + cmdOK->sizeHint().height() + 3 * Margin);
  WindowPlace place;
  if (places_ &&
      RestoreWindowPlace(*places_, *this, place.Top, place.Left, place.Width, place.Height))
    moveToPlace(*this, place);
}

void GBRVIEWER_GIEIMP::FormFill() { setWindowTitle(QString::fromStdString(model_.Title())); }

void GBRVIEWER_GIEIMP::FormUpdate() {
  model_.FormUpdate();
  egrdProp->setRows(model_.Rows(), [](int32_t) -> const std::vector<std::string>& {
    static const std::vector<std::string> none;
    return none;
  });
  egrdProp->setHorizontalHeaderLabels({QString::fromStdString(model_.CaptionHeading()),
                                       QString::fromStdString(model_.ModeHeading())});
}

void GBRVIEWER_GIEIMP::SizeControls() {
  const QSize button = cmdOK->sizeHint().expandedTo(cmdCancel->sizeHint());
  const int buttonsTop = height() - Margin - button.height();
  egrdProp->setGeometry(Margin, Margin, width() - 2 * Margin, buttonsTop - 2 * Margin);
  cmdCancel->setGeometry(width() - Margin - button.width(), buttonsTop, button.width(),
                         button.height());
  cmdOK->setGeometry(cmdCancel->x() - ButtonGap - button.width(), buttonsTop, button.width(),
                     button.height());
}

void GBRVIEWER_GIEIMP::resizeEvent(QResizeEvent* event) {
  QDialog::resizeEvent(event);
  SizeControls();
}

void GBRVIEWER_GIEIMP::keyPressEvent(QKeyEvent* event) {
  if (isHelpKey(*event) && help_) {
    help_();
    return;
  }
  QDialog::keyPressEvent(event);
}

void GBRVIEWER_GIEIMP::done(int result) {
  // Escape, the window's close button and Cancel all leave without a run.
  if (result != QDialog::Accepted)
    model_.Cancel();
  if (places_)
    SaveWindowPlace(*places_, *this);
  QDialog::done(result);
}

}  // namespace tvx
