#include "viewer/widgets/ToolBarView.h"

#include <QAction>
#include <QComboBox>
#include <QEvent>
#include <QFileInfo>
#include <QGuiApplication>
#include <QIcon>
#include <QKeyEvent>
#include <QKeySequence>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QPainter>
#include <QPixmap>
#include <QScreen>
#include <QSvgRenderer>
#include <QToolBar>
#include <QToolButton>

#include <algorithm>
#include <cstdlib>
#include <tuple>
#include <utility>
#include <vector>

namespace tvx {

namespace {

Qt::ToolBarArea qtArea(int32_t area) {
  switch (area) {
  case bandarea::Left:
    return Qt::LeftToolBarArea;
  case bandarea::Right:
    return Qt::RightToolBarArea;
  case bandarea::Bottom:
    return Qt::BottomToolBarArea;
  default:
    return Qt::TopToolBarArea;
  }
}

QString qs(const std::string& text) { return QString::fromStdString(text); }

}  // namespace

ToolBarView::ToolBarView(ToolBarModel& model, QMainWindow& window, QString pictures,
                         int pictureSize)
    : QObject(&window), model_(model), window_(window), pictures_(std::move(pictures)),
      pictureSize_(pictureSize) {
  model_.toolChanged = [this](const std::string& tool) { showTool(tool); };
  model_.bandUpdated = [this](const std::string& band) { fillBand(band); };
}

QToolBar* ToolBarView::toolBar(const std::string& band) const {
  const auto it = bars_.find(band);
  return it == bars_.end() ? nullptr : it->second;
}

QAction* ToolBarView::action(const std::string& tool) const {
  const ToolItem* t = model_.tool(tool);
  const auto it = t ? actions_.find(t->Name) : actions_.end();
  return it == actions_.end() || it->second.empty() ? nullptr : it->second.front();
}

QComboBox* ToolBarView::combo(const std::string& tool) const {
  const auto it = combos_.find(tool);
  return it == combos_.end() ? nullptr : it->second;
}

QLineEdit* ToolBarView::panel(const std::string& tool) const {
  const auto it = panels_.find(tool);
  return it == panels_.end() ? nullptr : it->second;
}

void ToolBarView::build() {
  for (const std::string& name : model_.bands()) {
    const ToolBand* band = model_.band(name);
    if (band->Popup || bars_.count(name))
      continue;
    auto* bar = new QToolBar(qs(band->Caption), &window_);
    bar->setObjectName(qs(name));
    bar->setIconSize(QSize(pictureSize_, pictureSize_));
    bar->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(bar, &QToolBar::customContextMenuRequested, this, [this, name, bar](const QPoint& at) {
      if (QMenu* menu = contextMenu(name))
        menu->popup(bar->mapToGlobal(at));
    });
    // A band the user hides (its own hide, not its window's) is closed.
    connect(bar, &QToolBar::visibilityChanged, this, [this, name, bar](bool visible) {
      if (!visible && bar->isHidden() && !ownChange_ && model_.events.bandClosed)
        model_.events.bandClosed(name);
    });
    bar->installEventFilter(this);
    if (band->NewLine)
      window_.addToolBarBreak(Qt::TopToolBarArea);
    window_.addToolBar(Qt::TopToolBarArea, bar);
    bars_[name] = bar;
  }
  for (const std::string& name : model_.bands())
    if (bars_.count(name))
      fillBand(name);
}

QAction* ToolBarView::makeAction(const ToolItem& tool, QObject* parent, const std::string& band) {
  auto* action = new QAction(parent);
  action->setObjectName(qs(tool.Name));
  const std::string name = tool.Name;
  connect(action, &QAction::triggered, this, [this, name] {
    if (model_.events.toolClick)
      model_.events.toolClick(name);
  });
  connect(action, &QAction::hovered, this, [this, name] {
    if (model_.events.toolEnter)
      model_.events.toolEnter(name);
  });
  keep(tool.Name, action, band);
  return action;
}

void ToolBarView::showKeys(QAction& action, const std::string& keys) {
  // Bound to the action's own widgets only, which never hold the focus the view's keys need:
  // a menu shows the keys, the view still handles them.
  action.setShortcut(QKeySequence(qs(keys)));
  action.setShortcutContext(Qt::WidgetShortcut);
}

void ToolBarView::keep(const std::string& tool, QAction* action, const std::string& band) {
  actions_[tool].push_back(action);
  made_[band].push_back(action);
}

void ToolBarView::fillBand(const std::string& bandName) {
  QToolBar* bar = toolBar(bandName);
  const ToolBand* band = model_.band(bandName);
  if (!bar || !band)
    return;
  // The band's actions go, later, as a press of one of them may be what fills the band again.
  for (QAction* old : std::exchange(made_[bandName], {})) {
    std::vector<QAction*>& same = actions_[old->objectName().toStdString()];
    std::erase(same, old);
    old->deleteLater();
  }
  bar->clear();
  for (const std::string& name : band->Tools) {
    const ToolItem* tool = model_.tool(name);
    if (!tool)
      continue;
    if (tool->GroupStart)
      bar->addSeparator();
    switch (tool->Kind) {
    case ToolKind::Button: {
      QAction* action = makeAction(*tool, bar, bandName);
      bar->addAction(action);
      if (QWidget* button = bar->widgetForAction(action)) {
        button->setObjectName(qs(name));
        button->installEventFilter(this);
        hoverOf_[button] = name;
      }
      break;
    }
    case ToolKind::DropDown: {
      auto* button = new QToolButton(bar);
      button->setObjectName(qs(name));
      // The button's own press is the tool's; its arrow opens the rows.
      button->setPopupMode(QToolButton::MenuButtonPopup);
      connect(button, &QToolButton::clicked, this, [this, name] {
        if (model_.events.toolClick)
          model_.events.toolClick(name);
      });
      auto* menu = new QMenu(button);
      if (const ToolBand* rows = model_.band(tool->Rows))
        for (const std::string& row : rows->Tools)
          if (const ToolItem* rowTool = model_.tool(row))
            menu->addAction(makeAction(*rowTool, menu, bandName));
      button->setMenu(menu);
      button->installEventFilter(this);
      hoverOf_[button] = name;
      dropDowns_[name] = button;
      keep(name, bar->addWidget(button), bandName);
      for (QAction* row : menu->actions())
        showTool(row->objectName().toStdString());
      break;
    }
    case ToolKind::Combo: {
      auto* box = new QComboBox(bar);
      box->setObjectName(qs(name));
      box->setEditable(true);
      box->setInsertPolicy(QComboBox::NoInsert);
      box->setCompleter(nullptr);  // what is typed stays as typed
      box->setMinimumContentsLength(9);
      box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
      connect(box, &QComboBox::activated, this, [this, name, box](int) {
        model_.update(name, [&](ToolItem& t) { t.ComboText = box->currentText().toStdString(); });
        comboEdited_[name] = true;
        comboDone(name);
      });
      connect(box->lineEdit(), &QLineEdit::textEdited, this,
              [this, name] { comboEdited_[name] = true; });
      box->installEventFilter(this);
      box->lineEdit()->installEventFilter(this);
      hoverOf_[box] = name;
      hoverOf_[box->lineEdit()] = name;
      combos_[name] = box;
      keep(name, bar->addWidget(box), bandName);
      break;
    }
    case ToolKind::Panel: {
      auto* field = new QLineEdit(bar);
      field->setObjectName(qs(name));
      field->setReadOnly(true);
      field->setFocusPolicy(Qt::NoFocus);
      field->setFixedWidth(field->fontMetrics().averageCharWidth() * 16);
      panels_[name] = field;
      keep(name, bar->addWidget(field), bandName);
      break;
    }
    }
    showTool(name);
  }
  bar->setMovable(!band->Locked);
}

QIcon ToolBarView::pictureOf(const std::string& picture) {
  if (picture.empty())
    return {};
  if (const auto cached = pictureCache_.find(picture); cached != pictureCache_.end())
    return cached->second;
  QIcon icon;
  if (picture.front() == '#') {
    // A cell of the strip, drawn at the screen's pixel ratio so that it stays sharp.
    const int cell = std::atoi(picture.c_str() + 1);
    QSvgRenderer strip(pictures_ + "/strip.svg");
    const int cells = strip.isValid() ? strip.defaultSize().width() / 16 : 0;
    if (cell >= 0 && cell < cells) {
      const qreal ratio = window_.devicePixelRatioF();
      QPixmap pixmap(QSize(pictureSize_, pictureSize_) * ratio);
      pixmap.fill(Qt::transparent);
      QPainter painter(&pixmap);
      const qreal side = pictureSize_ * ratio;
      strip.render(&painter, QRectF(-cell * side, 0, cells * side, side));
      painter.end();
      pixmap.setDevicePixelRatio(ratio);
      icon = QIcon(pixmap);
    }
  } else if (const QString file = pictures_ + "/" + qs(picture) + ".svg"; QFileInfo::exists(file)) {
    icon = QIcon(file);
  }
  pictureCache_[picture] = icon;
  return icon;
}

void ToolBarView::showTool(const std::string& name) {
  const ToolItem* tool = model_.tool(name);
  QAction* action = this->action(name);
  if (!tool || !action)
    return;
  const QIcon icon = pictureOf(tool->Picture);
  const QString caption = qs(tool->Caption);
  const QString tipText = qs(tool->shownTip());
  const QString tip = tipsShown_ ? tipText : QString();
  if (tool->Kind == ToolKind::Button) {
    // Every action of the tool: on a band and its twin alike.
    for (QAction* each : actions_[tool->Name]) {
      each->setText(caption.isEmpty() ? tipText : caption);
      each->setToolTip(tip);
      each->setIcon(icon);
      each->setCheckable(tool->Checkable);
      each->setChecked(tool->Checked);
      each->setEnabled(tool->Enabled);
      each->setVisible(tool->Visible);
      showKeys(*each, tool->Keys);
    }
  } else if (QToolButton* button = dropDowns_.count(name) ? dropDowns_[name] : nullptr) {
    // A drop-down shows its chosen row's picture and caption.
    QString shown = caption;
    QIcon shownIcon = icon;
    if (const ToolBand* rows = model_.band(tool->Rows))
      for (const std::string& row : rows->Tools)
        if (const ToolItem* r = model_.tool(row); r && r->Checked) {
          shown = qs(r->Caption);
          if (const QIcon rowIcon = pictureOf(r->Picture); !rowIcon.isNull())
            shownIcon = rowIcon;
        }
    button->setText(shown.isEmpty() ? tipText : shown);
    button->setIcon(shownIcon);
    button->setToolTip(tip);
    button->setToolButtonStyle(shownIcon.isNull() ? Qt::ToolButtonTextOnly
                                                  : Qt::ToolButtonIconOnly);
    button->setCheckable(tool->Checkable);
    button->setChecked(tool->Checked);
    button->setEnabled(tool->Enabled);
  } else if (QComboBox* box = combo(name)) {
    box->setToolTip(tip);
    box->setEnabled(tool->Enabled);
    const QStringList rows = [&] {
      QStringList list;
      for (const std::string& row : tool->ComboRows)
        list << qs(row);
      return list;
    }();
    QStringList present;
    for (int i = 0; i < box->count(); ++i)
      present << box->itemText(i);
    if (present != rows) {
      box->clear();
      box->addItems(rows);
    }
    if (box->currentText() != qs(tool->ComboText))
      box->setEditText(qs(tool->ComboText));
  } else if (QLineEdit* field = panel(name)) {
    field->setToolTip(tip);
  }
  action->setVisible(tool->Visible);
}

QMenu* ToolBarView::contextMenu(const std::string& bandName) {
  const ToolBand* band = model_.band(bandName);
  if (!band)
    return nullptr;
  auto* menu = new QMenu(&window_);
  menu->setAttribute(Qt::WA_DeleteOnClose);
  for (const std::string& name : band->Tools) {
    const ToolItem* tool = model_.tool(name);
    QAction* action = this->action(name);
    if (tool && action && tool->Kind == ToolKind::Button && tool->Visible)
      menu->addAction(action);
  }
  if (!contextEntries_.isEmpty()) {
    if (!menu->isEmpty())
      menu->addSeparator();
    menu->addActions(contextEntries_);
  }
  return menu->isEmpty() ? (delete menu, nullptr) : menu;
}

void ToolBarView::comboDone(const std::string& name) {
  if (!comboEdited_[name])
    return;
  comboEdited_[name] = false;
  if (QComboBox* box = combo(name))
    model_.update(name, [&](ToolItem& t) { t.ComboText = box->currentText().toStdString(); });
  if (model_.events.comboChange)
    model_.events.comboChange(name);
}

bool ToolBarView::eventFilter(QObject* watched, QEvent* event) {
  const auto hovered = hoverOf_.find(watched);
  if (hovered != hoverOf_.end()) {
    const std::string& name = hovered->second;
    if (event->type() == QEvent::Enter && model_.events.toolEnter)
      model_.events.toolEnter(name);
    else if (event->type() == QEvent::Leave && model_.events.toolLeave)
      model_.events.toolLeave(name);
    else if (combos_.count(name)) {
      // Return ends a typed value once and is not passed on; leaving the box ends it too.
      if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
          comboEdited_[name] = true;
          comboDone(name);
          return true;
        }
      } else if (event->type() == QEvent::FocusOut) {
        comboDone(name);
      }
    }
  }
  if (auto* bar = qobject_cast<QToolBar*>(watched);
      bar &&
      (event->type() == QEvent::Move || event->type() == QEvent::Resize ||
       event->type() == QEvent::Show || event->type() == QEvent::Hide) &&
      model_.events.bandMoved)
    model_.events.bandMoved(bar->objectName().toStdString());
  return QObject::eventFilter(watched, event);
}

void ToolBarView::setBandVisible(const std::string& band, bool visible) {
  if (QToolBar* bar = toolBar(band)) {
    ownChange_ = true;
    bar->setVisible(visible);
    ownChange_ = false;
  }
}

void ToolBarView::setTipsShown(bool shown) {
  tipsShown_ = shown;
  for (const auto& [name, actions] : actions_)
    showTool(name);
}

void ToolBarView::setLocked(const std::string& band, bool locked) {
  if (ToolBand* b = model_.band(band))
    b->Locked = locked;
  if (QToolBar* bar = toolBar(band))
    bar->setMovable(!locked);
}

BandPlace ToolBarView::placeOf(const std::string& band) const {
  BandPlace place;
  QToolBar* bar = toolBar(band);
  if (!bar)
    return place;
  place.Visible = bar->isHidden() ? 0 : 1;
  const QRect frame(bar->mapToGlobal(QPoint(0, 0)), bar->size());
  place.Left = frame.x();
  place.Top = frame.y();
  place.Width = frame.width();
  place.Height = frame.height();
  if (bar->isFloating()) {
    place.Area = bandarea::Floating;
    return place;
  }
  place.Area = int32_t(window_.toolBarArea(bar));
  const bool across = place.Area == bandarea::Top || place.Area == bandarea::Bottom;
  // The line is the count of distinct rows (or columns) of bands of the area before this one's.
  std::vector<int> lines;
  for (const auto& [name, other] : bars_)
    if (!other->isFloating() && window_.toolBarArea(other) == window_.toolBarArea(bar) &&
        !other->isHidden())
      lines.push_back(across ? other->y() : other->x());
  std::sort(lines.begin(), lines.end());
  lines.erase(std::unique(lines.begin(), lines.end()), lines.end());
  place.Line = int32_t(std::lower_bound(lines.begin(), lines.end(), across ? bar->y() : bar->x()) -
                       lines.begin());
  place.Offset = across ? bar->x() : bar->y();
  return place;
}

void ToolBarView::applyPlaces(const std::map<std::string, BandPlace>& places, bool dock) {
  std::vector<std::tuple<int32_t, int32_t, int32_t, std::string>> docked;
  for (const auto& [name, place] : places)
    if (dock && toolBar(name) && place.Area != bandarea::Floating)
      docked.emplace_back(place.Area, place.Line, place.Offset, name);
  std::sort(docked.begin(), docked.end());
  int32_t area = -1, line = -1;
  for (const auto& [a, l, offset, name] : docked) {
    if (a == area && l != line)
      window_.addToolBarBreak(qtArea(a));
    window_.addToolBar(qtArea(a), toolBar(name));
    area = a;
    line = l;
  }
  for (const auto& [name, place] : places) {
    QToolBar* bar = toolBar(name);
    if (!bar)
      continue;
    setBandVisible(name, place.Visible != 0);
    // Only the window's own saved layout floats a band (Qt has no call that floats one); a band
    // that floats is kept on the desktop.
    if (place.Area != bandarea::Floating || !bar->isFloating())
      continue;
    // Kept on the desktop: a band beyond an edge by more than a fortieth comes back inside.
    const QScreen* screen = window_.screen() ? window_.screen() : QGuiApplication::primaryScreen();
    const QRect work = screen ? screen->availableGeometry() : QRect(0, 0, 1024, 768);
    int32_t top = place.Top, left = place.Left;
    if (top + work.height() / 40 >= work.height())
      top = work.height() - place.Height;
    if (top - work.height() / 40 < 0)
      top = 0;
    if (left + work.width() / 40 >= work.width())
      left = work.width() - place.Width;
    if (left - work.width() / 40 < 0)
      left = 0;
    bar->move(left, top);
  }
}

}  // namespace tvx
