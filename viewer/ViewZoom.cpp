// The ways the view scales and moves: zoom steps, the redraw modes with fit and actual size, the
// box zoom, the wheel, panning and the remembered view.
#include "viewer/ViewState.h"

#include "kernel/Graphics.h"
#include "viewer/ViewArithmetic.h"

#include <algorithm>
#include <cstdlib>

namespace tvx {

using view::toInt32;
using view::whole;

ViewChange ViewState::afterZoom() {
  ViewChange change = SetScrollBars();
  change |= ShowPrecision();
  change.Redraw = change.FocusView = change.RepeatPointerMove = true;
  return change;
}

ViewChange ViewState::ZoomStep(int32_t mode) {
  if (ZoomFactor <= 0)
    ZoomFactor = 1.0;
  if (mode == zoomstep::In)
    m_Precision = std::max(FinestStepPrecision, whole(m_Precision / ZoomFactor));
  else if (mode == zoomstep::Out)
    m_Precision = std::min(CoarsestPrecision, whole(m_Precision * ZoomFactor));
  ViewCenterX = CursorX;
  ViewCenterY = toInt32(-int64_t(CursorY));
  ViewChange change = SetScrollBars();
  change |= ShowPrecision();
  change.Redraw = change.RepeatPointerMove = true;
  return change;
}

ViewChange ViewState::zoomAboutCentre(int32_t mode) {
  CursorX = ViewCenterX;
  CursorY = toInt32(-int64_t(ViewCenterY));
  return ZoomStep(mode);
}

void ViewState::frameView(const FrameRect& frame, bool fit) {
  const int64_t width = int64_t(frame.MaxX) - frame.MinX;
  const int64_t height = int64_t(frame.MaxY) - frame.MinY;
  const bool hasArea = width > 0 && height > 0;
  if (fit && !hasArea)
    return;
  const int64_t margin = RulerOn ? RulerMargin : 0;
  double r = 0;
  if (width_ > 0 && height_ > 0)
    r = std::max(double(width + margin) / width_, double(height + margin) / height_);
  if (fit) {
    if (width_ <= 0 || height_ <= 0)
      return;
    m_Precision = r <= 1 ? 1 : whole(r + 635);
  } else {
    m_Precision = hasArea && r <= 1 ? 1 : ActualSizePrecision;
  }
  // Centred on the frame itself; the ruler's room is half a margin left and half below.
  const double x = frame.MinX + width / 2.0 - margin / 2;
  const double y = frame.MinY + height / 2.0 - margin / 2;
  ViewCenterX = whole(x);
  ViewCenterY = toInt32(-int64_t(whole(y)));
}

ViewChange ViewState::ATB_RedrawButtonClick(int32_t mode) {
  applyTypedPrecision();
  switch (mode) {
  case zoommode::Center:
    ViewCenterX = ViewCenterY = 0;
    break;
  case zoommode::Board: {
    FrameRect frame;
    if (fitSource_) {
      frame = fitSource_();
    } else {
      computeCover();
      frame = {CoverRect.CoverMinX, CoverRect.CoverMinY, CoverRect.CoverMaxX, CoverRect.CoverMaxY};
    }
    frameView(frame, true);
    break;
  }
  case zoommode::ActualBoard:
    frameView({CoverRect.CoverMinX, CoverRect.CoverMinY, CoverRect.CoverMaxX, CoverRect.CoverMaxY},
              false);
    break;
  default:
    break;
  }
  return afterZoom();
}

ViewChange ViewState::boxZoom(int32_t sx, int32_t sy, int32_t ex, int32_t ey) {
  const int64_t dx = int64_t(sx) - ex, dy = int64_t(sy) - ey;
  if (dx == 0 || dy == 0 || width_ <= 0 || height_ <= 0)
    return {};
  for (int64_t v : {dx, dy, int64_t(sx), int64_t(sy), int64_t(ex), int64_t(ey)})
    if (std::llabs(v) > WorldExtent)
      return {};
  ViewChange change;
  ZoomModeFlag = zoommode::Current;
  change.ModeTool = true;
  ViewCenterX = ViewCenterY = 0;
  change |= SetScrollBars();
  const double r = std::max(std::llabs(dx) / double(width_), std::llabs(dy) / double(height_));
  m_Precision = r <= 1 ? 1 : int32_t(r);
  ViewCenterX = whole((double(sx) + ex) / 2);
  ViewCenterY = -whole((double(sy) + ey) / 2);
  change |= SetScrollBars();
  change |= ShowPrecision();
  // The redraw in mode 0 reads the precision back from the text just shown.
  change |= ATB_RedrawButtonClick(zoommode::Current);
  return change;
}

ViewChange ViewState::wheelZoom(int32_t rotation, int32_t px, int32_t py) {
  if (!OpenView(2))
    return {};
  int32_t x0 = px, y0 = py;
  graphics_.G_DPtoLP(dc_, x0, y0);
  const int32_t precision = tables_.wheelPrecision(DisplayUnit, m_Precision, rotation);
  const int32_t saved = m_Precision;
  m_Precision = precision;
  if (!OpenView(2)) {
    m_Precision = saved;
    return {};
  }
  int32_t x1 = px, y1 = py;
  graphics_.G_DPtoLP(dc_, x1, y1);
  closeCheck();
  ViewCenterX = toInt32(int64_t(ViewCenterX) + x0 - x1);
  ViewCenterY = toInt32(int64_t(ViewCenterY) - (int64_t(y0) - y1));
  ViewChange change = SetScrollBars();
  change |= ShowPrecision();
  change.Redraw = true;
  return change;
}

ViewChange ViewState::centreOn(int32_t x, int32_t y) {
  ViewCenterX = std::clamp(x, -WorldExtent, WorldExtent);
  ViewCenterY = -std::clamp(y, -WorldExtent, WorldExtent);
  ViewChange change = SetScrollBars();
  change.Redraw = true;
  return change;
}

ViewChange ViewState::panToPixel(int32_t px, int32_t py) {
  int32_t x = 0, y = 0;
  if (!pixelToWorld(px, py, x, y))
    return {};
  return centreOn(x, y);
}

ViewChange ViewState::exchangeViewHistory() {
  const ViewTriple now{m_Precision, ViewCenterX, ViewCenterY};
  if (!ViewHistory) {
    ViewHistory = now;
    return {};
  }
  const ViewTriple back = *ViewHistory;
  ViewHistory = now;
  m_Precision = back.m_Precision;
  ViewCenterX = back.ViewCenterX;
  ViewCenterY = back.ViewCenterY;
  ViewChange change = SetScrollBars();
  change |= ShowPrecision();
  change.Redraw = true;
  return change;
}

}  // namespace tvx
