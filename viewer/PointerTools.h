// The view's pointer input without widgets: presses, moves and releases of the three buttons on
// the view picture, the tools they start and end (box zoom, box copy, box delete, the measuring
// tools), the rubber box, the long cursor, the middle-button pan and the wheel.
//
// Positions come in view pixels; the model turns them into world points through the view.
// Overlays (the rubber box, pan marks) are drawn by exclusive-or into the view's shadow picture
// and closed at once: no painter stays open between events. The window and the later tools
// reach in through PointerHooks, so that tests drive the model with numbers.
#pragma once

#include "viewer/Redraw.h"
#include "viewer/ViewState.h"

#include <cstdint>
#include <functional>
#include <string>

namespace tvx {

class Graphics;
class SystemServices;

namespace toolcode {
inline constexpr int32_t None = 0;
inline constexpr int32_t LayerProperties = 1;  // the layer properties dialog is open
inline constexpr int32_t BoxDelete = 302;
inline constexpr int32_t Box = 600;        // box zoom, or box copy while BoxCopyArmed
inline constexpr int32_t Distance = 700;   // distance from the pointer to a picked element
inline constexpr int32_t Alignment = 800;  // moves the working layer onto a target
}  // namespace toolcode

namespace mousebutton {
inline constexpr int32_t Left = 1;
inline constexpr int32_t Right = 2;
inline constexpr int32_t Middle = 4;
}  // namespace mousebutton

namespace shiftbit {
inline constexpr int32_t Shift = 1;
inline constexpr int32_t Ctrl = 2;
inline constexpr int32_t Alt = 4;
}  // namespace shiftbit

// The tools of the tool bar whose check follows an armed state.
enum class ArmedTool { BlockZoom, SelectObject };

// The view cursors: the first one while idle, the second one while a tool is armed or runs.
inline constexpr int32_t FirstCursor = 1;
inline constexpr int32_t SecondCursor = 2;

// What the model asks of the window and of the tools that come with later parts of the viewer.
// Every hook may be left empty.
struct PointerHooks {
  std::function<void(const ViewChange&)> applyViewChange;  // bars, menus, redraw, focus
  std::function<void(int32_t cursor)> setViewCursor;
  std::function<void(bool enabled)> enableMenuGroups;
  std::function<void(bool enabled)> enableView;
  std::function<void()> focusView;
  std::function<void(ArmedTool, bool checked)> checkTool;
  // The view picture's pixels to show again after an overlay was drawn: x, y, width, height.
  std::function<void(int32_t, int32_t, int32_t, int32_t)> repaintArea;
  // The import window or the layer properties window shows.
  std::function<bool()> dialogsVisible;
  // Row 10 of the current key's options ("end the tool") is checked, and its clearing.
  std::function<bool()> endOptionChecked;
  std::function<void()> clearEndOption;
  // The prompt of the current function, for the idle message line.
  std::function<std::string()> functionPrompt;
  // Function 1 is the current function: its element operation at a world point.
  std::function<bool()> functionOneCurrent;
  std::function<void(int32_t x, int32_t y)> elementOperation;
  // The coordinates panel and the ruler cursor at a world point (measuring).
  std::function<void(int32_t x, int32_t y)> showCoordinates;
  // Picks the element at a world point for tool 700; true when one was found.
  std::function<bool(int32_t x, int32_t y)> pickElement;
  // The rubber figure of tools 700 and 800, and their ends (measuring).
  std::function<void(int32_t tool, int32_t shift, int32_t x, int32_t y)> drawToolFigure;
  std::function<void(int32_t tool, int32_t x, int32_t y)> finishMeasuringTool;
  // Every end of tools 700 and 800, before their effect: the figure goes.
  std::function<void(int32_t tool)> endMeasuringTool;
  // Tool 302: deletes within the box; true when something was deleted.
  std::function<bool(int32_t sx, int32_t sy, int32_t ex, int32_t ey)> boxDelete;
  // Tool 1 ends: the working layer's rows become visible.
  std::function<void()> showWorkingLayer;
};

class PointerTools {
public:
  PointerTools(Graphics& graphics, SystemServices& services, ViewState& view, ViewRedraw& redraw);

  PointerHooks hooks;

  // Members of the main window, named as the system names them.
  double PointerX = 0;
  double PointerY = 0;
  int32_t CursorX = 0;
  int32_t CursorY = 0;
  int32_t ToolX = 0;
  int32_t ToolY = 0;
  bool ButtonDownSeen = false;
  int32_t ToolCode = toolcode::None;
  int32_t ToolStartX = 0;
  int32_t ToolStartY = 0;
  bool BlockZoomArmed = false;
  bool BoxCopyArmed = false;
  bool SelectObjectArmed = false;
  bool NoChange = false;
  bool EndRequested = false;  // End: the running tool ends at the next move, with its effect
  bool ShortcutMode = false;
  std::string ShortcutText;
  bool FirstMove = false;
  int32_t SnapLastX = 0;
  int32_t SnapLastY = 0;
  int16_t MiddleDrag = 0;  // 4 while the middle button is held in the view
  bool MiddleNotMoved = false;
  bool MiddleSlow = false;
  int32_t MiddleStartX = 0;
  int32_t MiddleStartY = 0;
  int32_t MiddlePixelX = 0;
  int32_t MiddlePixelY = 0;
  bool MiddleSavedCursor = false;
  bool KeyboardSelect = false;
  bool LongCursor = false;
  bool ToolCursor = false;  // the tool cursor state: the view shows the second cursor

  // A redraw slower than this makes the next middle drag a rubber line.
  static constexpr int32_t SlowRedrawMs = 300;

  // Every member back to its start value, as the window's start-up leaves them; the hooks stay.
  void reset();

  void ViewPicture_MouseDown(int32_t button, int32_t shift, double x, double y);
  void ViewPicture_MouseMove(int32_t button, int32_t shift, double x, double y);
  void ViewPicture_MouseUp(int32_t button, int32_t shift, double x, double y);
  // The move again at the last pixel, as tools and keys ask for it (button 1, Shift).
  void repeatPointerMove();
  // Whole wheel steps at a view pixel (positive: away from the user): the zooms that keep the
  // point under the pointer, one redraw, and the move again when a tool runs.
  void wheel(int32_t steps, double x, double y);

  void StartTool(int32_t code);
  void FinishMove(int32_t x, int32_t y);
  // Rounds a point to the raster: to the nearest multiple of the step, half away from zero.
  // unchanged tells that the point is the last snapped one. No snap with a step of 1 or less or
  // in a tool's first move.
  void SnapToRaster(bool& unchanged, int32_t& x, int32_t& y);

  // Arming from keys and tools: the next left click starts the tool.
  void armBlockZoom();
  void armBoxCopy();
  void armSelectObject();
  // Escape without a running tool: every armed state goes, with its check and the message.
  void disarm();
  // End: the running tool ends at the next move.
  void requestEnd();
  void toggleLongCursor();

  bool toolRunning() const { return ToolCode != toolcode::None; }
  // The rubber box is on the screen.
  bool boxShown() const { return boxShown_; }

private:
  // The world point of a view pixel, clamped to the world; false without a device.
  bool toWorld(double x, double y, int32_t& wx, int32_t& wy) const;
  void storePointer(double x, double y);
  void leftClick();
  void dispatchToolFigure(int32_t shift);
  // Opens the view for the rubber box: exclusive-or hairlines in the highlight colour. The
  // device, 0 when the view does not open.
  int32_t openRubber();
  void drawBox(int32_t x, int32_t y);
  void eraseBox();
  void xorBox(int32_t device, int32_t x, int32_t y);
  void xorLongCursor(int32_t device, int32_t x, int32_t y);
  // Pixel rectangle of a world rectangle, grown by a pixel, for repainting.
  void repaintWorld(int32_t x1, int32_t y1, int32_t x2, int32_t y2);
  void drawPanStart(int32_t device);
  void rubberPan(double x, double y);
  void setIdleCursor();
  // Arms a state: the tool cursor, the tool's check (when it has a tool) and the prompt.
  void arm(bool& flag, const ArmedTool* tool, const char* prompt, const char* id);
  void edit(const std::string& text);
  ViewChange change(ViewChange c);

  Graphics& graphics_;
  SystemServices& services_;
  ViewState& view_;
  ViewRedraw& redraw_;
  bool boxShown_ = false;
  int32_t boxX_ = 0;  // the pointer corner of the box on the screen
  int32_t boxY_ = 0;
  bool panLineShown_ = false;
  double panLineX_ = 0;
  double panLineY_ = 0;
  int32_t copyStartPixelX_ = 0;
  int32_t copyStartPixelY_ = 0;
  bool inMove_ = false;
};

}  // namespace tvx
