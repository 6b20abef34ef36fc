#include "viewer/Measuring.h"

#include "common/CallHook.h"
#include "common/ParseList.h"
#include "common/ToNumber.h"
#include "common/UserDialogs.h"
#include "kernel/Graphics.h"
#include "platform/MarkGlyphs.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"
#include "viewer/DisplayUnits.h"
#include "viewer/MeasureGeometry.h"
#include "viewer/PointerTools.h"
#include "viewer/Redraw.h"
#include "viewer/ViewState.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <sstream>
#include <vector>

namespace tvx {

namespace {

constexpr int32_t XorMode = drawmode::Normal | drawmode::ExclusiveOr;
// The reference point's mark: a ring of 4 pixels and a cross of 8 to each side.
constexpr int32_t ReferenceRingPixels = 4;
constexpr int32_t ReferenceCrossPixels = 8;
// The reference mark's colour in a one-colour view.
constexpr int32_t MonoMarkColour = 15;
// The ruler cursor's marks are as long as the strip is wide.
constexpr int32_t RulerCursorPixels = 20;
// Pixels of one size step of a mark glyph.
constexpr int32_t GlyphPixels = 3;

int32_t saturated(double v) {
  return int32_t(std::clamp(std::round(v), -2147483647.0, 2147483647.0));
}

std::string numberText(double value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

std::string trimmedUpper(std::string s) {
  const auto space = [](unsigned char c) { return std::isspace(c) != 0; };
  s.erase(s.begin(), std::find_if_not(s.begin(), s.end(), space));
  s.erase(std::find_if_not(s.rbegin(), s.rend(), space).base(), s.end());
  for (char& c : s)
    c = char(std::toupper(static_cast<unsigned char>(c)));
  return s;
}

}  // namespace

Measuring::Measuring(Graphics& graphics, SystemServices& services, UserPrompts& prompts,
                     ViewState& view, ViewRedraw& redraw, PointerTools& pointer)
    : graphics_(graphics), services_(services), prompts_(prompts), view_(view), redraw_(redraw),
      pointer_(pointer) {
  // A rebuild draws the ruler and the point afresh and leaves no overlay on the picture.
  redraw_.hooks.drawRuler = [this](int32_t dc) { DrawRuler(dc, drawmode::Normal); };
  redraw_.hooks.drawReferencePoint = [this](int32_t dc) {
    if (ReferencePoint.Set)
      DrawReferencePoint(dc, drawmode::Normal);
  };
  auto rebuilt = std::move(redraw_.hooks.rebuilt);
  redraw_.hooks.rebuilt = [this, rebuilt] {
    callHook(rebuilt);
    forgetOverlay();
  };
}

std::string Measuring::text(const measuremsg::Text& message) const {
  return services_.LocalMessage(message.text, message.id);
}

std::string Measuring::length(double storeLength) const {
  return FormatLength(storeLength, view_.DisplayUnit, services_.DatabaseUnitsPerMm());
}

// --- Coordinates --------------------------------------------------------------------------------

void Measuring::origin(int32_t& x, int32_t& y) const {
  x = y = 0;
  if (MeasureMode == measuremode::BoardDatum) {
    x = view_.CoverRect.CoverMinX;
    y = view_.CoverRect.CoverMinY;
  } else if (MeasureMode == measuremode::ReferencePoint && ReferencePoint.Set) {
    x = ReferencePoint.X;
    y = ReferencePoint.Y;
  }
}

void Measuring::ShowCoordinates(int32_t x, int32_t y) {
  int32_t ox = 0, oy = 0;
  origin(ox, oy);
  const double dx = double(x) - ox, dy = double(y) - oy;
  if (DistanceDisplay) {
    XPanel.clear();
    YPanel = "D= " + length(GetDistance(0, 0, dx, dy));
  } else {
    XPanel = "X= " + length(dx);
    YPanel = "Y= " + length(dy);
  }
  callHook(hooks.showPanels, XPanel, YPanel);
}

void Measuring::pointerMoved(int32_t x, int32_t y) {
  ShowCoordinates(x, y);
  if (view_.RulerOn)
    showOverlay([this, x, y](int32_t dc) { DrawRulerCursor(dc, x, y); }, true);
  else if (overlay_)
    clearOverlay();
}

// --- Overlays -----------------------------------------------------------------------------------

void Measuring::showOverlay(std::function<void(int32_t)> figure, bool inStrips) {
  if (!overlay_ && !figure)
    return;
  if (!view_.OpenView(1)) {
    overlay_ = {};
    return;
  }
  const int32_t dc = view_.device();
  if (overlay_)
    overlay_(dc);
  // The ruler cursor changes the two strips alone: only they are shown again.
  const bool strips = (overlayInStrips_ || !overlay_) && (inStrips || !figure);
  overlay_ = std::move(figure);
  overlayInStrips_ = inStrips;
  if (overlay_)
    overlay_(dc);
  graphics_.G_CloseDC(dc, 0);
  if (!strips) {
    repaintAll();
    return;
  }
  const int32_t w = view_.pictureWidth(), h = view_.pictureHeight();
  constexpr int32_t Strip = RulerCursorPixels + 1;
  callHook(hooks.repaint, 0, 0, Strip, h);
  callHook(hooks.repaint, 0, h - Strip, w, Strip);
}

void Measuring::repaintAll() {
  callHook(hooks.repaint, 0, 0, view_.pictureWidth(), view_.pictureHeight());
}

int32_t Measuring::SetDrawStyle(int32_t kind, bool open) {
  if (open && !view_.OpenView(1))
    return 0;
  const int32_t dc = view_.device();
  // Overlays are exclusive-or figures in the shadow picture: kinds 1, 3, 4 and 5 draw by it.
  struct Row {
    int32_t mode;
    bool colour, style, width;
  };
  static constexpr Row Rows[] = {
      {36 | XorMode, true, true, true},  {0, false, false, false},
      {60 | XorMode, true, true, true},  {28 | XorMode, true, true, false},
      {12 | XorMode, true, true, false}, {0, true, false, false}};
  if (kind < 1 || kind > 6)
    return dc;
  const Row& row = Rows[kind - 1];
  int32_t mode = row.mode;
  if (kind == 2)
    mode = view_.ViewFlags | viewflag::PadFrames | viewflag::ScreenView;
  else if (kind == 6)
    mode = view_.ViewFlags | drawmode::SingleElement | viewflag::ScreenView;
  graphics_.G_SetDrawMode(dc, mode);
  if (row.colour)
    graphics_.G_SetColor(dc, redraw_.HighlightColour);
  if (row.style)
    graphics_.G_SetStyle(dc, penstyle::Outline);
  if (row.width)
    graphics_.G_SetWidth(dc, 1);
  return dc;
}

void Measuring::DrawRulerCursor(int32_t dc, int32_t x, int32_t y) {
  int32_t leftX = 0, bottomY = view_.pictureHeight();
  if (!graphics_.G_DPtoLP(dc, leftX, bottomY))
    return;
  const int32_t reach = RulerCursorPixels * std::max(1, view_.m_Precision);
  const int32_t m = (view_.ViewFlags & viewflag::Mirror) ? -1 : 1;
  graphics_.G_SetDrawMode(dc, XorMode);
  graphics_.G_SetColor(dc, redraw_.HighlightColour);
  graphics_.G_SetStyle(dc, penstyle::Outline);
  graphics_.G_SetWidth(dc, 1);
  graphics_.G_Line(dc, leftX, y, saturated(double(leftX) + double(reach) * m), y);
  graphics_.G_Line(dc, x, bottomY, x, saturated(double(bottomY) + reach));
}

void Measuring::DrawPointerCross(int32_t dc, bool state, int32_t x, int32_t y) {
  SetDrawStyle(1, false);
  const int32_t p = std::max(1, view_.m_Precision);
  if (pointer_.MiddleDrag == 4) {
    drawMarkGlyph(graphics_, dc, XorMode, SystemServices::GlyphPanStart, x, y, redraw_.MarkerColour,
                  0, 8 * p, 8 * p);
  } else if (state) {
    graphics_.G_Line(dc, -WorldExtent, y, WorldExtent, y);
    graphics_.G_Line(dc, x, -WorldExtent, x, WorldExtent);
  } else {
    drawMarkGlyph(graphics_, dc, XorMode, SystemServices::GlyphPoint, x, y, redraw_.MarkerColour, 0,
                  5 * GlyphPixels * p, GlyphPixels * p);
    if (view_.RulerOn)
      DrawRulerCursor(dc, x, y);
  }
  ShowCoordinates(x, y);
}

// --- Reference point ----------------------------------------------------------------------------

void Measuring::DrawReferencePoint(int32_t dc, int32_t /*drawMode*/) {
  const int32_t p = std::max(1, view_.m_Precision);
  const int32_t x = ReferencePoint.X, y = ReferencePoint.Y;
  const int32_t cross = ReferenceCrossPixels * p;
  graphics_.G_SetDrawMode(dc, XorMode);
  graphics_.G_SetColor(dc, redraw_.mono() ? MonoMarkColour : redraw_.HighlightColour);
  graphics_.G_SetStyle(dc, penstyle::Outline);
  graphics_.G_SetWidth(dc, 1);
  graphics_.G_Circle(dc, x, y, ReferenceRingPixels * p);
  graphics_.G_Line(dc, saturated(double(x) - cross), y, saturated(double(x) + cross), y);
  graphics_.G_Line(dc, x, saturated(double(y) - cross), x, saturated(double(y) + cross));
}

void Measuring::SetReferencePoint(int32_t mode) {
  if (redraw_.RedrawBusy || pointer_.toolRunning())
    return;
  const ReferencePointState before = ReferencePoint;
  placeReferencePoint(mode);
  // A ruler that counts from the point counts from the new one, or from 0, 0 without one.
  if (MeasureMode == measuremode::ReferencePoint && !(ReferencePoint == before))
    renewRuler();
}

void Measuring::placeReferencePoint(int32_t mode) {
  if (ReferencePoint.Set && view_.OpenView(1)) {
    DrawReferencePoint(view_.device(), drawmode::Normal | drawmode::ExclusiveOr);
    graphics_.G_CloseDC(view_.device(), 0);
    repaintAll();
  }
  ReferencePoint.Set = false;
  int32_t x = pointer_.CursorX, y = pointer_.CursorY;
  if (mode == 1) {
    // The key's point is snapped even when a redraw has just passed.
    const bool firstMove = pointer_.FirstMove;
    pointer_.FirstMove = false;
    bool unchanged = false;
    pointer_.SnapToRaster(unchanged, x, y);
    pointer_.FirstMove = firstMove;
  } else if (mode == 2) {
    const std::string prompt = text(measuremsg::RefPointAsk) +
                               (view_.DisplayUnit == displayunit::Millimetre ? " mm " : " inch ") +
                               ")\r\n" + text(measuremsg::RefPointFormat) + "\r\n" +
                               text(measuremsg::RefPointDatum);
    const std::string answer = AskText(prompts_, prompt, "", "");
    if (answer.empty())
      return;
    const ParsedList fields = ParseList(answer);
    if (fields.count() < 2) {
      prompts_.beep();
      return;
    }
    const double toStore =
        services_.DatabaseUnitsPerMm() / displayUnitInfo(view_.DisplayUnit).FactorFromMm;
    double px = fields.value(1) * toStore, py = fields.value(2) * toStore;
    if (trimmedUpper(fields.token(3)) == "D") {
      view_.computeCover();
      px += view_.CoverRect.CoverMinX;
      py += view_.CoverRect.CoverMinY;
    }
    if (!(std::abs(px) < WorldExtent && std::abs(py) < WorldExtent)) {
      prompts_.beep();
      return;
    }
    x = saturated(px);
    y = saturated(py);
  }
  if (!view_.OpenView(1))
    return;
  ReferencePoint = {true, x, y};
  DrawReferencePoint(view_.device(), drawmode::Normal);
  graphics_.G_CloseDC(view_.device(), 0);
  repaintAll();
}

// --- Ruler --------------------------------------------------------------------------------------

RulerCalibration Measuring::calibration() const {
  return {RulerType, RulerCustomStep, view_.DisplayUnit, redraw_.RasterStep,
          services_.DatabaseUnitsPerMm()};
}

void Measuring::DrawRuler(int32_t dc, int32_t drawMode) {
  RulerView ruler;
  ruler.Precision = view_.m_Precision;
  ruler.Width = view_.pictureWidth();
  ruler.Height = view_.pictureHeight();
  // Without a screen to ask, a picture of 96 pixels to the inch.
  ruler.HeightPoints = hooks.heightPoints ? hooks.heightPoints() : ruler.Height * 0.75;
  ruler.Mirror = (view_.ViewFlags & viewflag::Mirror) != 0;
  origin(ruler.OriginX, ruler.OriginY);
  tvx::DrawRuler(graphics_, dc, drawMode, ruler, calibration());
}

void Measuring::renewRuler() {
  if (view_.RulerOn)
    redraw_.RedrawScreen();
}

// --- Menus and tools ----------------------------------------------------------------------------

void Measuring::M_Coords_Click() {
  DistanceDisplay = !DistanceDisplay;
  callHook(hooks.syncChecks);
}

void Measuring::ATB_Distance() {
  DistanceDisplay = false;
  M_Coords_Click();
}

void Measuring::ATB_XY() {
  DistanceDisplay = true;
  M_Coords_Click();
}

void Measuring::M_XYmeasure_Click(int32_t index) {
  MeasureMode = std::clamp(index, measuremode::Centre, measuremode::ReferencePoint);
  if (MeasureMode == measuremode::BoardDatum)
    view_.computeCover();
  callHook(hooks.syncChecks);
  renewRuler();
}

void Measuring::M_Ruler_Click() {
  view_.RulerOn = !view_.RulerOn;
  callHook(hooks.syncChecks);
  if (!view_.RulerOn) {
    // Taken away by a rebuild, which shows the artwork under the strip again.
    redraw_.RedrawScreen();
    return;
  }
  clearOverlay();
  if (!view_.OpenView(1))
    return;
  DrawRuler(view_.device(), drawmode::Normal);
  graphics_.G_CloseDC(view_.device(), 1);
  repaintAll();
}

bool Measuring::askNumber(const measuremsg::Text& prompt, double current, const char* rows,
                          double& value) {
  std::vector<std::string> list{numberText(current)};
  const ParsedList proposals = ParseList(rows);
  for (int i = 1; i <= proposals.count(); ++i)
    list.push_back(proposals.token(i));
  int32_t index = 0;
  const std::string answer = AskQuery(prompts_, "", text(prompt), list, 2, index);
  if (answer.empty())
    return false;
  value = ToNumber(answer);
  return true;
}

void Measuring::mnuCalRulerType_Click(int32_t index) {
  if (index < rulertype::Auto || index > rulertype::Custom)
    return;
  RulerType = index;
  callHook(hooks.syncChecks);
  double value = 0;
  if (index == rulertype::Custom &&
      askNumber(measuremsg::RulerAsk, RulerCustomStep, "1,1.5,2,2.5,5", value)) {
    if (value >= 1 && value < 10.1)
      RulerCustomStep = value;
    else
      callHook(hooks.reportStatus, OutOfRangeStatus, text(measuremsg::RulerRange) + "  ");
  }
  renewRuler();
}

void Measuring::M_ZoomFactor_Click() {
  double value = 0;
  if (!askNumber(measuremsg::ZoomAsk, view_.ZoomFactor, "1.5,2,2.5,3,4", value))
    return;
  if (value > 1 && value < 10.1)
    view_.ZoomFactor = value;
  else
    callHook(hooks.reportStatus, OutOfRangeStatus, text(measuremsg::ZoomRange) + "  ");
}

}  // namespace tvx
