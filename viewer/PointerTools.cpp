#include "viewer/PointerTools.h"

#include "common/CallHook.h"
#include "kernel/Graphics.h"
#include "kernel/PlaneGeometry.h"
#include "platform/MarkGlyphs.h"
#include "platform/SystemServices.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <tuple>
#include <utility>

namespace tvx {

namespace {

constexpr int32_t XorMode = drawmode::Normal | drawmode::ExclusiveOr;
constexpr int32_t MarkMode = drawmode::Normal;
// The long cursor runs over the whole world.
constexpr int32_t WorldReach = 220000000;
// The pan's marks: four glyphs around the press point, five pixels out.
constexpr int32_t PanMarkOffsetPixels = 5;
constexpr int32_t PanMarkPixels = 8;

int32_t pixelOf(double value) { return int32_t(std::clamp(std::floor(value), -1.0e9, 1.0e9)); }

}  // namespace

PointerTools::PointerTools(Graphics& graphics, SystemServices& services, ViewState& view,
                           ViewRedraw& redraw)
    : graphics_(graphics), services_(services), view_(view), redraw_(redraw) {
  // A slow pan keeps its start mark through the redraws that happen while it runs.
  redraw_.hooks.drawDragMark = [this](int32_t device) { drawPanStart(device); };
  // A rebuild leaves no overlay: the next move draws the rubber figure afresh.
  redraw_.hooks.rebuilt = [this] {
    boxShown_ = false;
    panLineShown_ = false;
    FirstMove = true;
  };
}

void PointerTools::reset() {
  PointerX = PointerY = 0;
  CursorX = CursorY = ToolX = ToolY = ToolStartX = ToolStartY = SnapLastX = SnapLastY = 0;
  ButtonDownSeen = BlockZoomArmed = BoxCopyArmed = SelectObjectArmed = NoChange = false;
  EndRequested = ShortcutMode = FirstMove = MiddleNotMoved = MiddleSlow = false;
  MiddleSavedCursor = KeyboardSelect = LongCursor = ToolCursor = false;
  ToolCode = toolcode::None;
  ShortcutText.clear();
  MiddleDrag = 0;
  MiddleStartX = MiddleStartY = MiddlePixelX = MiddlePixelY = 0;
  boxShown_ = panLineShown_ = inMove_ = false;
}

void PointerTools::edit(const std::string& text) { redraw_.EditMsgLine(text); }

ViewChange PointerTools::change(ViewChange c) {
  callHook(hooks.applyViewChange, c);
  return c;
}

bool PointerTools::toWorld(double x, double y, int32_t& wx, int32_t& wy) const {
  return view_.pixelToWorld(pixelOf(x), pixelOf(y), wx, wy);
}

void PointerTools::storePointer(double x, double y) {
  PointerX = x;
  PointerY = y;
  int32_t wx = CursorX, wy = CursorY;
  if (toWorld(x, y, wx, wy)) {
    CursorX = ToolX = view_.CursorX = wx;
    CursorY = ToolY = view_.CursorY = wy;
  }
}

void PointerTools::setIdleCursor() {
  if (!ToolCursor)
    callHook(hooks.setViewCursor, FirstCursor);
}

// --- Buttons ------------------------------------------------------------------------------------

void PointerTools::ViewPicture_MouseDown(int32_t button, int32_t /*shift*/, double x, double y) {
  if (MiddleDrag == 4)
    return;
  ButtonDownSeen = false;
  storePointer(x, y);
  if (button == mousebutton::Middle) {
    MiddleSavedCursor = ToolCursor;
    ToolCursor = true;
    callHook(hooks.setViewCursor, SecondCursor);
    MiddleNotMoved = true;
    MiddleDrag = 4;
    MiddleStartX = CursorX;
    MiddleStartY = CursorY;
    MiddlePixelX = pixelOf(x);
    MiddlePixelY = pixelOf(y);
    MiddleSlow = redraw_.RedrawTime > SlowRedrawMs;
    redraw_.MiddleDragTimed = true;
    if (view_.OpenView(1)) {
      drawPanStart(view_.device());
      graphics_.G_CloseDC(view_.device(), 0);
      repaintWorld(MiddleStartX, MiddleStartY, MiddleStartX, MiddleStartY);
    }
    if (toolRunning())
      repeatPointerMove();
  }
  ButtonDownSeen = true;
}

void PointerTools::ViewPicture_MouseMove(int32_t button, int32_t shift, double x, double y) {
  if (inMove_)
    return;
  struct Guard {
    bool& flag;
    ~Guard() { flag = false; }
  } guard{inMove_ = true};
  KeyboardSelect = false;
  callHook(hooks.setViewCursor, ToolCursor ? SecondCursor : FirstCursor);
  storePointer(x, y);
  if (!ToolCursor)
    callHook(hooks.showCoordinates, CursorX, CursorY);

  if (button == mousebutton::Middle && MiddleDrag == 4) {
    MiddleNotMoved = false;
    if (MiddleSlow) {
      rubberPan(x, y);
      return;
    }
    // Live pan: the press point follows the pointer.
    view_.ViewCenterX = int32_t(std::clamp<int64_t>(
        int64_t(view_.ViewCenterX) + MiddleStartX - CursorX, -WorldReach, WorldReach));
    view_.ViewCenterY = int32_t(std::clamp<int64_t>(
        int64_t(view_.ViewCenterY) - MiddleStartY + CursorY, -WorldReach, WorldReach));
    redraw_.PanInProgress = true;
    ViewChange c = view_.SetScrollBars();
    c.Redraw = true;
    change(c);
    redraw_.PanInProgress = false;
    if (toolRunning()) {
      inMove_ = false;
      ViewPicture_MouseMove(mousebutton::Left, shiftbit::Shift, x, y);
    }
    return;
  }

  if (toolRunning() && hooks.endOptionChecked && hooks.endOptionChecked()) {
    // Row 10 of the options (Escape) ends the tool without its effect.
    NoChange = true;
    callHook(hooks.clearEndOption);
  }
  if (toolRunning() && (NoChange || EndRequested)) {
    FinishMove(ToolX, ToolY);
    return;
  }
  if (toolRunning()) {
    dispatchToolFigure(shift);
    return;
  }
  if (redraw_.HLDCode != 0)
    edit(redraw_.HLDCodeText);
  else if (redraw_.HLPadstack != 0)
    edit(redraw_.HLPadstackText);
  else if (hooks.functionPrompt)
    edit(hooks.functionPrompt());
}

void PointerTools::ViewPicture_MouseUp(int32_t button, int32_t shift, double x, double y) {
  if (button == mousebutton::Middle && MiddleDrag != 4)
    return;
  if (!ButtonDownSeen || redraw_.PaintBusy || redraw_.RedrawBusy || redraw_.ResizePending)
    return;
  ButtonDownSeen = false;
  KeyboardSelect = false;
  PointerX = x;
  PointerY = y;
  int32_t wx = CursorX, wy = CursorY;
  toWorld(x, y, wx, wy);

  if (button == mousebutton::Left) {
    CursorX = ToolX = view_.CursorX = wx;
    CursorY = ToolY = view_.CursorY = wy;
    callHook(redraw_.hooks.showBusy, true);
    if (toolRunning()) {
      callHook(hooks.enableView, false);
      FinishMove(ToolX, ToolY);
      callHook(hooks.enableView, true);
    } else {
      leftClick();
    }
    callHook(redraw_.hooks.showBusy, false);
    setIdleCursor();
    callHook(hooks.focusView);
  } else if (button == mousebutton::Right) {
    if (shift & shiftbit::Shift)
      change(view_.centreOn(wx, wy));
  } else if (button == mousebutton::Middle) {
    MiddleDrag = 0;
    ToolCursor = MiddleSavedCursor;
    redraw_.MiddleDragTimed = false;
    ViewChange c;
    if (MiddleNotMoved) {
      c = view_.centreOn(wx, wy);
    } else if (MiddleSlow) {
      view_.ViewCenterX = int32_t(std::clamp<int64_t>(
          int64_t(view_.ViewCenterX) + MiddleStartX - wx, -WorldReach, WorldReach));
      view_.ViewCenterY = int32_t(std::clamp<int64_t>(
          int64_t(view_.ViewCenterY) - MiddleStartY + wy, -WorldReach, WorldReach));
    }
    c |= view_.SetScrollBars();
    c.Redraw = true;
    change(c);
    callHook(hooks.setViewCursor, ToolCursor ? SecondCursor : FirstCursor);
    repeatPointerMove();
  }
}

void PointerTools::repeatPointerMove() {
  // A repeat brings a rubber figure back. Without a running tool there is none, and the message
  // line keeps what the command that asked for the repeat said (an import's outcome, say).
  if (!toolRunning())
    return;
  ViewPicture_MouseMove(mousebutton::Left, shiftbit::Shift, PointerX, PointerY);
}

void PointerTools::wheel(int32_t steps, double x, double y) {
  if (steps == 0)
    return;
  constexpr int32_t Notch = 120;
  ViewChange c;
  for (int32_t step = 0; step < std::abs(steps); ++step)
    c |= view_.wheelZoom(steps > 0 ? Notch : -Notch, pixelOf(x), pixelOf(y));
  c.Redraw = true;
  change(c);
  if (toolRunning())
    repeatPointerMove();
}

// --- Tools --------------------------------------------------------------------------------------

void PointerTools::leftClick() {
  if (hooks.dialogsVisible && hooks.dialogsVisible())
    return;
  callHook(hooks.enableMenuGroups, false);
  FirstMove = true;
  if (BlockZoomArmed) {
    BlockZoomArmed = false;
    callHook(hooks.checkTool, ArmedTool::BlockZoom, false);
    ToolStartX = ToolX;
    ToolStartY = ToolY;
    StartTool(toolcode::Box);
  } else if (BoxCopyArmed) {
    // Stays armed while the box runs: FinishMove tells a copy from a zoom by it.
    ToolStartX = ToolX;
    ToolStartY = ToolY;
    copyStartPixelX_ = pixelOf(PointerX);
    copyStartPixelY_ = pixelOf(PointerY);
    StartTool(toolcode::Box);
  } else if (SelectObjectArmed) {
    SelectObjectArmed = false;
    callHook(hooks.checkTool, ArmedTool::SelectObject, false);
    const bool found = hooks.pickElement && hooks.pickElement(ToolX, ToolY);
    edit("");
    if (found) {
      ToolStartX = ToolX;
      ToolStartY = ToolY;
      StartTool(toolcode::Distance);
    }
  } else if (hooks.functionOneCurrent && hooks.functionOneCurrent()) {
    callHook(hooks.elementOperation, ToolX, ToolY);
  }
  if (!toolRunning()) {
    ToolCursor = false;
    callHook(hooks.enableMenuGroups, true);
    repeatPointerMove();
  }
}

void PointerTools::StartTool(int32_t code) {
  ToolCode = code;
  callHook(hooks.enableMenuGroups, false);
  FirstMove = true;
  ToolCursor = true;
  NoChange = false;
  EndRequested = false;
  boxShown_ = false;
}

void PointerTools::FinishMove(int32_t x, int32_t y) {
  eraseBox();
  const int32_t code = ToolCode;
  const bool noChange = NoChange;
  ToolCode = toolcode::None;  // a redraw below must not bring a rubber figure back
  switch (code) {
  case toolcode::BoxDelete:
    if (!noChange && hooks.boxDelete && hooks.boxDelete(ToolStartX, ToolStartY, x, y)) {
      redraw_.RedrawScreen();
      callHook(hooks.showWorkingLayer);
    }
    break;
  case toolcode::LayerProperties:
    callHook(hooks.showWorkingLayer);
    redraw_.RedrawScreen();
    break;
  case toolcode::Box:
    if (noChange)
      break;
    if (BoxCopyArmed) {
      BoxCopyArmed = false;
      const int32_t ex = pixelOf(PointerX), ey = pixelOf(PointerY);
      const int32_t left = std::min(copyStartPixelX_, ex), top = std::min(copyStartPixelY_, ey);
      graphics_.G_CopyScreen(view_.device(), left, top, std::abs(ex - copyStartPixelX_) + 1,
                             std::abs(ey - copyStartPixelY_) + 1);
    } else {
      change(view_.boxZoom(ToolStartX, ToolStartY, x, y));
    }
    break;
  case toolcode::Distance:
  case toolcode::Alignment:
    callHook(hooks.endMeasuringTool, code);
    if (!noChange)
      callHook(hooks.finishMeasuringTool, code, x, y);
    break;
  default:
    break;
  }
  if (toolRunning())
    return;  // the tool's click started it again: a second step of the same measurement
  NoChange = EndRequested = BoxCopyArmed = BlockZoomArmed = SelectObjectArmed = false;
  FirstMove = false;
  edit("");
  ToolCursor = false;
  if (!(hooks.dialogsVisible && hooks.dialogsVisible()))
    callHook(hooks.enableMenuGroups, true);
  callHook(hooks.setViewCursor, FirstCursor);
}

void PointerTools::SnapToRaster(bool& unchanged, int32_t& x, int32_t& y) {
  unchanged = false;
  const int32_t step = redraw_.RasterStep;
  if (step <= 1 || FirstMove)
    return;
  // Half away from zero, then toward zero: -120 with a step of 100 is -100, not -200.
  const auto snap = [step](int32_t v) {
    const double half = v < 0 ? -step / 2.0 : step / 2.0;
    const double multiple = std::trunc((double(v) + half) / step) * step;
    return int32_t(std::clamp(multiple, double(std::numeric_limits<int32_t>::min()),
                              double(std::numeric_limits<int32_t>::max())));
  };
  x = snap(x);
  y = snap(y);
  unchanged = x == SnapLastX && y == SnapLastY;
  SnapLastX = x;
  SnapLastY = y;
}

void PointerTools::dispatchToolFigure(int32_t shift) {
  switch (ToolCode) {
  case toolcode::Box:
  case toolcode::BoxDelete: {
    int32_t x = ToolX, y = ToolY;
    bool unchanged = false;
    if (!(shift & shiftbit::Shift))
      SnapToRaster(unchanged, x, y);
    if (!unchanged || !boxShown_)
      drawBox(x, y);
    break;
  }
  case toolcode::Distance:
  case toolcode::Alignment:
    callHook(hooks.drawToolFigure, ToolCode, shift, ToolX, ToolY);
    break;
  default:
    break;
  }
  FirstMove = false;
}

// --- Overlays -----------------------------------------------------------------------------------

void PointerTools::xorBox(int32_t device, int32_t x, int32_t y) {
  graphics_.G_Rectangle(device, x, y, ToolStartX - x, ToolStartY - y);
  if (LongCursor)
    xorLongCursor(device, x, y);
}

void PointerTools::xorLongCursor(int32_t device, int32_t x, int32_t y) {
  graphics_.G_Line(device, -WorldReach, y, WorldReach, y);
  graphics_.G_Line(device, x, -WorldReach, x, WorldReach);
}

int32_t PointerTools::openRubber() {
  if (!view_.OpenView(1))
    return 0;
  const int32_t device = view_.device();
  graphics_.G_SetDrawMode(device, XorMode);
  graphics_.G_SetColor(device, redraw_.HighlightColour);
  graphics_.G_SetStyle(device, penstyle::Outline);
  graphics_.G_SetWidth(device, 0);
  return device;
}

void PointerTools::drawBox(int32_t x, int32_t y) {
  const int32_t device = openRubber();
  if (device == 0)
    return;
  const bool hadBox = boxShown_;
  const int32_t oldX = boxX_, oldY = boxY_;
  if (hadBox)
    xorBox(device, oldX, oldY);
  xorBox(device, x, y);
  graphics_.G_CloseDC(device, 0);
  boxShown_ = true;
  boxX_ = x;
  boxY_ = y;
  if (LongCursor) {
    callHook(hooks.repaintArea, 0, 0, view_.pictureWidth(), view_.pictureHeight());
    return;
  }
  repaintWorld(
      std::min({ToolStartX, x, hadBox ? oldX : x}), std::min({ToolStartY, y, hadBox ? oldY : y}),
      std::max({ToolStartX, x, hadBox ? oldX : x}), std::max({ToolStartY, y, hadBox ? oldY : y}));
}

void PointerTools::eraseBox() {
  if (!boxShown_)
    return;
  boxShown_ = false;
  const int32_t device = openRubber();
  if (device == 0)
    return;
  xorBox(device, boxX_, boxY_);
  graphics_.G_CloseDC(device, 0);
  if (LongCursor)
    callHook(hooks.repaintArea, 0, 0, view_.pictureWidth(), view_.pictureHeight());
  else
    repaintWorld(std::min(ToolStartX, boxX_), std::min(ToolStartY, boxY_),
                 std::max(ToolStartX, boxX_), std::max(ToolStartY, boxY_));
}

void PointerTools::repaintWorld(int32_t x1, int32_t y1, int32_t x2, int32_t y2) {
  if (!hooks.repaintArea)
    return;
  int32_t ax = x1, ay = y1, bx = x2, by = y2;
  if (!graphics_.G_LPtoDP(view_.device(), ax, ay) || !graphics_.G_LPtoDP(view_.device(), bx, by))
    return;
  // Grown by the marks drawn around a point and by a pixel of rounding.
  constexpr int32_t Margin = PanMarkOffsetPixels + PanMarkPixels + 2;
  const int32_t left = std::max(0, std::min(ax, bx) - Margin);
  const int32_t top = std::max(0, std::min(ay, by) - Margin);
  const int32_t right = std::min(view_.pictureWidth(), std::max(ax, bx) + Margin + 1);
  const int32_t bottom = std::min(view_.pictureHeight(), std::max(ay, by) + Margin + 1);
  if (right > left && bottom > top)
    hooks.repaintArea(left, top, right - left, bottom - top);
}

void PointerTools::drawPanStart(int32_t device) {
  const int32_t precision = std::max(1, view_.m_Precision);
  const int32_t offset = PanMarkOffsetPixels * precision;
  const int32_t size = PanMarkPixels * precision;
  for (int32_t quarter = 0; quarter < 4; ++quarter) {
    const int32_t dx = quarter == 0 ? offset : quarter == 2 ? -offset : 0;
    const int32_t dy = quarter == 1 ? offset : quarter == 3 ? -offset : 0;
    drawMarkGlyph(graphics_, device, MarkMode, SystemServices::GlyphPanStart, MiddleStartX + dx,
                  MiddleStartY + dy, redraw_.MarkerColour, quarter * 90000, size, size / 2);
  }
}

void PointerTools::rubberPan(double x, double y) {
  if (!view_.OpenView(1))
    return;
  const int32_t device = view_.device();
  const auto line = [&](double px, double py) {
    int32_t wx = MiddleStartX, wy = MiddleStartY;
    toWorld(px, py, wx, wy);
    const int32_t precision = std::max(1, view_.m_Precision);
    const double angle =
        std::atan2(double(wy) - MiddleStartY, double(wx) - MiddleStartX) / RadiansPerDegree;
    graphics_.G_SetDrawMode(device, XorMode);
    graphics_.G_SetColor(device, redraw_.MarkerColour);
    graphics_.G_SetStyle(device, penstyle::Outline);
    graphics_.G_SetWidth(device, 0);
    graphics_.G_Line(device, MiddleStartX, MiddleStartY, wx, wy);
    drawMarkGlyph(graphics_, device, XorMode, SystemServices::GlyphPanEnd, wx, wy,
                  redraw_.MarkerColour, int32_t(std::lround(angle * 1000)),
                  PanMarkPixels * precision, PanMarkPixels * precision);
    return std::pair<int32_t, int32_t>{wx, wy};
  };
  int32_t oldX = MiddleStartX, oldY = MiddleStartY;
  if (panLineShown_)
    std::tie(oldX, oldY) = line(panLineX_, panLineY_);
  const auto [newX, newY] = line(x, y);
  graphics_.G_CloseDC(device, 0);
  panLineShown_ = true;
  panLineX_ = x;
  panLineY_ = y;
  repaintWorld(std::min({MiddleStartX, oldX, newX}), std::min({MiddleStartY, oldY, newY}),
               std::max({MiddleStartX, oldX, newX}), std::max({MiddleStartY, oldY, newY}));
}

// --- Armed states -------------------------------------------------------------------------------

void PointerTools::arm(bool& flag, const ArmedTool* tool, const char* prompt, const char* id) {
  flag = true;
  ToolCursor = true;
  if (tool)
    callHook(hooks.checkTool, *tool, true);
  edit(services_.LocalMessage(prompt, id));
}

void PointerTools::armBlockZoom() {
  constexpr ArmedTool tool = ArmedTool::BlockZoom;
  arm(BlockZoomArmed, &tool, "Select Box Zoom Area", "6299");
}

void PointerTools::armBoxCopy() { arm(BoxCopyArmed, nullptr, "Select Box Copy Area", "6287"); }

void PointerTools::armSelectObject() {
  constexpr ArmedTool tool = ArmedTool::SelectObject;
  arm(SelectObjectArmed, &tool, "Select Object", "62100");
}

void PointerTools::disarm() {
  // An armed state takes its check and its prompt with it; with nothing armed the message line
  // keeps what it says.
  const bool armed = BlockZoomArmed || SelectObjectArmed || BoxCopyArmed;
  if (BlockZoomArmed) {
    BlockZoomArmed = false;
    callHook(hooks.checkTool, ArmedTool::BlockZoom, false);
  }
  if (SelectObjectArmed) {
    SelectObjectArmed = false;
    callHook(hooks.checkTool, ArmedTool::SelectObject, false);
  }
  BoxCopyArmed = false;
  ShortcutMode = false;
  ShortcutText.clear();
  ToolCursor = false;
  setIdleCursor();
  if (armed)
    edit("");
}

void PointerTools::requestEnd() {
  if (!toolRunning())
    return;
  EndRequested = true;
  repeatPointerMove();
}

void PointerTools::toggleLongCursor() {
  // A box on the screen carries the long cursor with it: take it away before the change.
  const bool hadBox = boxShown_;
  eraseBox();
  LongCursor = !LongCursor;
  if (hadBox)
    drawBox(boxX_, boxY_);
}

}  // namespace tvx
