// Measuring in the main window: the Preferences menu (zoom factor, ruler calibration, the origin
// of the coordinates), the ruler's entry in View, the position band with its two panels, and the
// hooks that bind the pointer, the keys and the element editor to the widget-free Measuring and
// MeasureTools.
#include "shell/GBRVIEWER_MAIN.h"

#include "import/readers/ImportSession.h"
#include "kernel/Kernel.h"
#include "platform/SystemServices.h"
#include "viewer/ElementEditor.h"
#include "viewer/MeasureTools.h"
#include "viewer/Measuring.h"
#include "viewer/ToolBarModel.h"
#include "viewer/widgets/ViewPicture.h"

#include <QAction>
#include <QActionGroup>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QToolBar>
#include <QToolButton>

#include <span>

namespace tvx {

namespace {

constexpr const char* RulerRows[] = {"Auto", "Fixed", "Grid", "Custom..."};
constexpr const char* OriginRows[] = {"&Centre", "&Board Datum", "&Reference Point"};

QString localText(const SystemServices& services, const measuremsg::Text& message) {
  return QString::fromStdString(services.LocalMessage(message.text, message.id));
}

}  // namespace

void GBRVIEWER_MAIN::buildPreferencesMenu() {
  // The ruler's entry belongs to View.
  if (QMenu* viewMenu = menuBar()->findChild<QMenu*>("M_View")) {
    QAction* ruler = viewMenu->addAction("&Ruler");
    ruler->setObjectName("M_Ruler");
    ruler->setCheckable(true);
    connect(ruler, &QAction::triggered, this, [this] { measuring_->M_Ruler_Click(); });
  }

  QMenu* prefs = menuBar()->addMenu("P&references");
  prefs->setObjectName("M_Prefs");
  QAction* zoom = prefs->addAction("Zoom In/Out Factor...");
  zoom->setObjectName("M_ZoomFactor");
  connect(zoom, &QAction::triggered, this, [this] { measuring_->M_ZoomFactor_Click(); });

  // A row array: checkable rows named prefix_index, each calling handler with its index.
  const auto rowArray = [this](QMenu* menu, const char* prefix, std::span<const char* const> rows,
                               void (Measuring::*handler)(int32_t)) {
    for (int32_t index = 0; index < int32_t(rows.size()); ++index) {
      QAction* row = menu->addAction(rows[size_t(index)]);
      row->setObjectName(QString("%1_%2").arg(prefix).arg(index));
      row->setCheckable(true);
      connect(row, &QAction::triggered, this,
              [this, handler, index] { (measuring_.get()->*handler)(index); });
    }
  };
  QMenu* calibrate = prefs->addMenu("Calibrate Ruler");
  calibrate->setObjectName("mnuCalibrateRuler");
  rowArray(calibrate, "mnuCalRulerType", RulerRows, &Measuring::mnuCalRulerType_Click);
  // The coordinates' entry names the kind the panels show; its rows choose their origin.
  QMenu* coords = prefs->addMenu("X/Y Coords:");
  coords->menuAction()->setObjectName("M_Coords");
  coords->setObjectName("M_CoordsMenu");
  rowArray(coords, "M_XYmeasure", OriginRows, &Measuring::M_XYmeasure_Click);
}

void GBRVIEWER_MAIN::buildPositionBand(ToolBarModel& bar) {
  const auto t = [this](const char* fallback, const char* id) { return toolText(fallback, id); };
  const auto tool = [&](const char* band, const char* name, ToolKind kind, const std::string& tip,
                        const std::string& description, const std::string& caption = {},
                        const char* rows = "") {
    bar.addTool(band,
                bandTool(name, kind, tip, description, caption, rows, kind == ToolKind::Button));
  };
  bar.addBand("B_Position", t("Position", "6255"));
  tool("B_Position", "ATB_XPos", ToolKind::Panel, "", "");
  tool("B_Position", "ATB_YPos", ToolKind::Panel, "", "");
  tool("B_Position", "ATB_DistanceTool", ToolKind::Button,
       t("Measure distance", "62129") + " (SHIFT+M)",
       t("Measure distance from selected object", "62130") + " (SHIFT+M)");
  tool("B_Position", "ATB_Units", ToolKind::DropDown, t("Units", "62127"),
       t("Set current working unit", "62128"), "", "SB_Units");
  tool("B_Position", "ATB_Coordinates", ToolKind::DropDown, t("Coordinates", "62131"),
       t("Set current coordinates (XY/Distance)", "62132"), "", "SB_Coordinates");
  bar.addBand("SB_Units", "", true);
  tool("SB_Units", "ATB_Inches", ToolKind::Button, "", t("View units in inches", "62133"),
       t("Inches", "62174"));
  tool("SB_Units", "ATB_Millimeters", ToolKind::Button, "", t("View units in millimeters", "62134"),
       t("Millimeters", "62175"));
  bar.addBand("SB_Coordinates", "", true);
  tool("SB_Coordinates", "ATB_XY", ToolKind::Button, "",
       t("Set current coordinates in XY", "62135"), t("XY", "62176"));
  tool("SB_Coordinates", "ATB_Distance", ToolKind::Button, "",
       t("Set current coordinates in Distance", "62136"), t("Distance", "62177"));
}

void GBRVIEWER_MAIN::buildMeasuring() {
  Kernel& kernel = context_.kernel;
  measuring_ = std::make_unique<Measuring>(kernel.graphics, context_.services, context_.prompts,
                                           *view_, *redraw_, *pointer_);
  measureTools_ =
      std::make_unique<MeasureTools>(kernel.store, kernel.graphics, context_.services, *view_,
                                     *redraw_, *tables_, *pointer_, *measuring_, *editor_);

  MeasureHooks& m = measuring_->hooks;
  m.showPanels = [this](const std::string& x, const std::string& y) {
    if (xPosPanel_ && yPosPanel_) {
      xPosPanel_->setText(QString::fromStdString(x));
      yPosPanel_->setText(QString::fromStdString(y));
    }
  };
  m.reportStatus = [this](int32_t status, const std::string& text) {
    if (import_)
      import_->reporter.ReportStatus(status, text);
  };
  m.repaint = [this](int32_t x, int32_t y, int32_t width, int32_t height) {
    viewPicture_->update(x, y, width, height);
  };
  m.heightPoints = [this] {
    const QScreen* screen = viewPicture_->screen();
    const double dpi = screen ? screen->logicalDotsPerInchY() : 96.0;
    return viewPicture_->height() * 72.0 / (dpi > 0 ? dpi : 96.0);
  };
  m.syncChecks = [this] { syncMeasureChecks(); };

  MeasureToolHooks& t = measureTools_->hooks;
  t.optionChecked = [this](int32_t row) { return keys_->optionChecked(row); };

  PointerHooks& p = pointer_->hooks;
  p.showCoordinates = [this](int32_t x, int32_t y) { measuring_->pointerMoved(x, y); };
  p.pickElement = [this](int32_t x, int32_t y) { return measureTools_->pickTarget(x, y); };
  p.drawToolFigure = [this](int32_t tool, int32_t shift, int32_t x, int32_t y) {
    measureTools_->drawFigure(tool, shift, x, y);
  };
  p.endMeasuringTool = [this](int32_t tool) { measureTools_->end(tool); };
  p.finishMeasuringTool = [this](int32_t tool, int32_t x, int32_t y) {
    measureTools_->finish(tool, x, y);
  };
  const auto previousCheck = p.checkTool;
  p.checkTool = [this, previousCheck](ArmedTool tool, bool checked) {
    if (previousCheck)
      previousCheck(tool, checked);
    if (tool == ArmedTool::SelectObject)
      if (QAction* action = findChild<QAction*>("ATB_DistanceTool"))
        action->setChecked(checked);
  };

  KeyboardHooks& k = keyboard_->hooks;
  k.positionInput = [this](int32_t mode) { measuring_->SetReferencePoint(mode); };
  k.referencePoint = [this](int32_t& x, int32_t& y) {
    if (!measuring_->ReferencePoint.Set)
      return false;
    x = measuring_->ReferencePoint.X;
    y = measuring_->ReferencePoint.Y;
    return true;
  };

  editor_->hooks.startAlignment = [this](int32_t x, int32_t y) {
    measureTools_->startAlignment(x, y);
  };
  editor_->hooks.startClearance = [this](int32_t x, int32_t y) {
    measureTools_->startClearance(x, y);
  };
  syncMeasureChecks();
}

void GBRVIEWER_MAIN::syncMeasureChecks() {
  if (!measuring_)
    return;
  const auto check = [this](const QString& name, bool on) {
    if (QAction* action = findChild<QAction*>(name))
      action->setChecked(on);
  };
  check("M_Ruler", view_->RulerOn);
  for (int32_t index = 0; index < 4; ++index)
    check(QString("mnuCalRulerType_%1").arg(index), measuring_->RulerType == index);
  for (int32_t index = 0; index < 3; ++index)
    check(QString("M_XYmeasure_%1").arg(index), measuring_->MeasureMode == index);
  const bool distance = measuring_->DistanceDisplay;
  if (QAction* coords = findChild<QAction*>("M_Coords"))
    coords->setText(
        localText(context_.services, distance ? measuremsg::Distance : measuremsg::Coords));
  refreshBands();
}

void GBRVIEWER_MAIN::applyMeasureSettings() {
  measuring_->RulerType = std::clamp(settings_.RULER_TYPE, 0, 3);
  measuring_->RulerCustomStep = settings_.RULER_TYPE_CUSTOM;
  measuring_->MeasureMode = std::clamp(settings_.MEASURE, 0, 2);
  if (QAction* zoom = menuEntry("M_ZoomFactor"))
    zoom->setText(QString::fromStdString(
        context_.services.LocalMessage("Zoom In/Out Factor", "62444") + "..."));
  syncMeasureChecks();
}

void GBRVIEWER_MAIN::takeMeasureSettings() {
  settings_.RULER_TYPE = measuring_->RulerType;
  settings_.RULER_TYPE_CUSTOM = measuring_->RulerCustomStep;
}

std::string GBRVIEWER_MAIN::positionText(bool y) const {
  const QLineEdit* panel = y ? yPosPanel_ : xPosPanel_;
  return panel ? panel->text().toStdString() : std::string();
}

}  // namespace tvx
