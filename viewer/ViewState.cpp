// The view's state, its device, the world limits, the cover with the scroll bars, the precision
// text, the unit and the settings that the view keeps.
#include "viewer/ViewState.h"

#include "common/ToNumber.h"
#include "kernel/Graphics.h"
#include "platform/SystemServices.h"
#include "store/Layers.h"
#include "viewer/DisplayUnits.h"
#include "viewer/Redraw.h"
#include "viewer/ViewArithmetic.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace tvx {

namespace {
using view::toInt32;
using view::whole;

int32_t clampToWorld(int32_t v) { return std::clamp(v, -WorldExtent, WorldExtent); }

int32_t barUnits(int64_t storeUnits) { return whole(double(storeUnits) / ScrollBarUnit); }

// Range, steps and value of one bar over [low, high] in store units; the value held within it.
void setBar(ScrollBarState& bar, int64_t low, int64_t high, int64_t value, bool topIsHigh) {
  const int32_t lowBar = barUnits(low), highBar = barUnits(high);
  bar.Minimum = topIsHigh ? highBar : lowBar;
  bar.Maximum = topIsHigh ? lowBar : highBar;
  const double extent = double(high - low) / ScrollBarUnit;
  bar.LargeChange = std::max(1, whole(extent / 4));
  bar.SmallChange = std::max(1, whole(extent / 100));
  bar.Value = std::clamp(barUnits(value), lowBar, highBar);
}
}  // namespace

ViewChange& ViewChange::operator|=(const ViewChange& other) {
  if (other.EraseRulerUnit >= 0)
    EraseRulerUnit = other.EraseRulerUnit;
  ScrollBars |= other.ScrollBars;
  Precision |= other.Precision;
  Combos |= other.Combos;
  ModeTool |= other.ModeTool;
  UnitTool |= other.UnitTool;
  Redraw |= other.Redraw;
  DrawRuler |= other.DrawRuler;
  FocusView |= other.FocusView;
  RepeatPointerMove |= other.RepeatPointerMove;
  return *this;
}

bool ViewChange::any() const {
  return EraseRulerUnit >= 0 || ScrollBars || Precision || Combos || ModeTool || UnitTool ||
         Redraw || DrawRuler || FocusView || RepeatPointerMove;
}

ViewState::ViewState(Graphics& graphics, const SystemServices& services)
    : graphics_(graphics), services_(services) {}

void ViewState::setPictureSize(int32_t width, int32_t height) {
  width_ = std::max(0, width);
  height_ = std::max(0, height);
}

void ViewState::readKernelTables(KernelStrings& strings) { tables_ = ReadViewTables(strings); }

ViewChange ViewState::takeDefaultPrecision() {
  m_Precision = tables_.defaultPrecision(DisplayUnit);
  return ShowPrecision();
}

// --- Device and world --------------------------------------------------------------------------

int32_t ViewState::OpenView(int32_t mode) {
  graphics_.N_SetNodeView(1);
  const int32_t centreY = toInt32(-int64_t(ViewCenterY));
  const ViewSetup setup{m_Precision, width_,  height_,
                        ViewCenterX, centreY, ViewFlags | viewflag::ScreenView};
  if (!graphics_.G_OpenDC(dc_, setup, mode))
    return 0;
  // The far corner's offsets from the centre, whatever the mirror and the direction of Y.
  int32_t x = width_, y = height_;
  graphics_.G_DPtoLP(dc_, x, y);
  halfWidth_ = std::llabs(int64_t(x) - ViewCenterX);
  halfHeight_ = std::llabs(int64_t(y) - centreY);
  ViewRect = {toInt32(ViewCenterX - halfWidth_), toInt32(centreY - halfHeight_),
              toInt32(ViewCenterX + halfWidth_), toInt32(centreY + halfHeight_)};
  return 1;
}

bool ViewState::pixelToWorld(int32_t px, int32_t py, int32_t& x, int32_t& y) const {
  int32_t wx = px, wy = py;
  if (!graphics_.G_DPtoLP(dc_, wx, wy))
    return false;
  x = clampToWorld(wx);
  y = clampToWorld(wy);
  return true;
}

bool ViewState::halfExtent(int64_t& halfWidth, int64_t& halfHeight) {
  if (!OpenView(2))
    return false;
  halfWidth = halfWidth_;
  halfHeight = halfHeight_;
  return true;
}

void ViewState::closeCheck() { graphics_.G_CloseDC(dc_, 0); }

ViewChange ViewState::keepInWorld() {
  ViewChange change;
  int64_t cx = ViewCenterX, cy = ViewCenterY;
  ViewCenterX = ViewCenterY = 0;
  int64_t a = 0, b = 0;
  bool opened = halfExtent(a, b);
  if (opened && (a > WorldExtent || b > WorldExtent)) {
    // Truncated, so that the world fits and does not overshoot it by a fraction of a pixel.
    m_Precision = int32_t(2 * int64_t(WorldExtent) / std::max(width_, height_));
    opened = halfExtent(a, b);
    change |= ShowPrecision();
  }
  if (opened) {
    if (cx + a > WorldExtent)
      cx = WorldExtent - a;
    if (cy + b > WorldExtent)
      cy = WorldExtent - b;
    if (cx - a < -WorldExtent)
      cx = -WorldExtent + a;
    if (cy - b < -WorldExtent)
      cy = -WorldExtent + b;
    closeCheck();
  }
  ViewCenterX = toInt32(cx);
  ViewCenterY = toInt32(cy);
  return change;
}

// --- Cover and scroll bars ---------------------------------------------------------------------

void ViewState::computeCover() {
  const FrameRect frame = coverSource_ ? coverSource_() : FrameRect{};
  CoverRect.CoverMinX = frame.MinX;
  CoverRect.CoverMinY = frame.MinY;
  CoverRect.CoverMaxX = frame.MaxX;
  CoverRect.CoverMaxY = frame.MaxY;
  CoverRect.CoverWidth = toInt32(int64_t(frame.MaxX) - frame.MinX);
  CoverRect.CoverHeight = toInt32(int64_t(frame.MaxY) - frame.MinY);
}

ViewChange ViewState::SetScrollBars() {
  computeCover();
  int64_t minX = CoverRect.CoverMinX, minY = CoverRect.CoverMinY;
  int64_t maxX = CoverRect.CoverMaxX, maxY = CoverRect.CoverMaxY;
  if (CoverRect.CoverWidth < SmallestScrollCover || CoverRect.CoverHeight < SmallestScrollCover) {
    minX = minY = -WorldExtent;
    maxX = maxY = WorldExtent;
  }
  // The centre never leaves the world, so neither do the bars: their range stays in 16 bits
  // also for data beyond it.
  const auto inWorld = [](int64_t v) { return std::clamp<int64_t>(v, -WorldExtent, WorldExtent); };
  setBar(HorizontalBar, inWorld(minX), inWorld(maxX), ViewCenterX, false);
  setBar(VerticalBar, inWorld(minY), inWorld(maxY), -int64_t(ViewCenterY), true);
  ViewChange change;
  change.ScrollBars = true;
  return change;
}

ViewChange ViewState::horizontalBarChanged(int32_t value) {
  if (value == 0)
    return {};
  const int64_t x = int64_t(value) * ScrollBarUnit;
  ViewCenterX = toInt32((ViewFlags & viewflag::Mirror) ? -x : x);
  ViewChange change;
  change.Redraw = change.FocusView = true;
  return change;
}

ViewChange ViewState::verticalBarChanged(int32_t value) {
  if (value == 0)
    return {};
  ViewCenterY = toInt32(int64_t(value) * -ScrollBarUnit);
  ViewChange change;
  change.Redraw = change.FocusView = true;
  return change;
}

// --- Precision ---------------------------------------------------------------------------------

std::string ViewState::lengthText(double storeLength) const {
  return FormatLengthValue(storeLength, DisplayUnit, services_.DatabaseUnitsPerMm());
}

std::optional<int32_t> ViewState::typedRasterStep(const std::string& text) const {
  constexpr double LargestRasterStep = 2540000;
  const double value =
      ToNumber(text) * services_.DatabaseUnitsPerMm() * displayUnitInfo(DisplayUnit).FactorToStore;
  if (!(value >= 1 && value <= LargestRasterStep))
    return std::nullopt;
  return std::max<int32_t>(1, int32_t(std::lround(value)));
}

ViewChange ViewState::ShowPrecision() {
  PrecisionText = lengthText(m_Precision);
  PickDistance = toInt32(int64_t(tables_.currentPickPixels()) * m_Precision);
  ViewChange change;
  change.Precision = true;
  return change;
}

void ViewState::applyTypedPrecision() {
  const DisplayUnitInfo& unit = displayUnitInfo(DisplayUnit);
  const double unitsPerMm = services_.DatabaseUnitsPerMm();
  double value = ToNumber(PrecisionText);
  if (value == 0)
    value = m_Precision / unitsPerMm * unit.FactorFromMm;
  m_Precision = std::clamp(whole(value * unitsPerMm * unit.FactorToStore), FinestStepPrecision,
                           CoarsestPrecision);
}

// --- Unit and combos ---------------------------------------------------------------------------

ViewChange ViewState::setDisplayUnit(int32_t unit) {
  ViewChange change;
  const bool changed = unit != DisplayUnit;
  if (RulerOn && changed)
    change.EraseRulerUnit = DisplayUnit;
  DisplayUnit = unit;
  change.UnitTool = true;
  if (changed) {
    change.Combos = true;
    change |= ShowPrecision();
    change.DrawRuler = RulerOn;
  }
  return change;
}

ViewChange ViewState::M_Inches_Click() { return setDisplayUnit(displayunit::Inch); }

ViewChange ViewState::M_Mm_Click() { return setDisplayUnit(displayunit::Millimetre); }

std::vector<std::string> ViewState::precisionComboRows() const {
  std::vector<std::string> rows;
  for (int32_t step : tables_.precisionRows(DisplayUnit))
    rows.push_back(lengthText(step));
  return rows;
}

std::vector<std::string> ViewState::rasterComboRows() const {
  std::vector<std::string> rows;
  for (int32_t step : tables_.gridRows(DisplayUnit))
    rows.push_back(lengthText(step));
  return rows;
}

std::function<FrameRect()> LayersCover(Store& store, std::span<const LayerRecord> layers) {
  return [&store, layers] {
    FrameRect frame;
    FrameLayers(store, layers, frame);
    return frame;
  };
}

}  // namespace tvx
