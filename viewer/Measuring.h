// What the view measures with, without widgets: the coordinate panels that follow the pointer and
// the origin they count from, the reference point, the pointer cross, the ruler with its cursor
// and calibration, and the zoom factor's prompt.
//
// Marks and cursors are exclusive-or figures in the view's shadow picture: one overlay at a time
// (the ruler cursor or a tool's figure) is drawn over the picture and taken away by drawing it
// again before the next one; a rebuild of the picture leaves none. The ruler itself is opaque and
// goes with a rebuild.
#pragma once

#include "viewer/MessageText.h"
#include "viewer/Ruler.h"

#include <cstdint>
#include <functional>
#include <string>

namespace tvx {

class Graphics;
class PointerTools;
class SystemServices;
class UserPrompts;
class ViewRedraw;
class ViewState;

// Values of MeasureMode: where the shown coordinates and the ruler count from.
namespace measuremode {
inline constexpr int32_t Centre = 0;
inline constexpr int32_t BoardDatum = 1;
inline constexpr int32_t ReferencePoint = 2;
}  // namespace measuremode

// Message ids and default texts of measuring.
namespace measuremsg {
using Text = MessageText;
inline constexpr Text Distance{"62102", "Distance:"};
inline constexpr Text Coords{"6243", "X/Y Coords:"};
inline constexpr Text SelectObject{"62100", "Select Object"};
inline constexpr Text RefPointAsk{"6292", "Ref.point X,Y ("};
inline constexpr Text RefPointFormat{"6293", "Format: x,y[,D]"};
inline constexpr Text RefPointDatum{"6294", "D for x,y displacement from board datum."};
inline constexpr Text RulerAsk{"6285", "Set ruler calibration : (Range = 1 to 10)"};
inline constexpr Text RulerRange{"6286", "(Range = 1 to 10)"};
inline constexpr Text ZoomAsk{"6288", "Set Zoom In/Out Factor : (Range = 1.1 to 10)"};
inline constexpr Text ZoomRange{"6289", "(Range = 1.1 to 10)"};
inline constexpr Text DistanceIs{"6278", "Distance = "};
inline constexpr Text AlignmentVector{"6277", "Alignment vector"};
inline constexpr Text ClearanceIs{"900108", "Clearance = "};
inline constexpr Text SecondObject{"900109", "Select the second object"};
}  // namespace measuremsg

// The status of a value outside its range.
inline constexpr int32_t OutOfRangeStatus = 2002;

// The user's reference point.
struct ReferencePointState {
  bool Set = false;
  int32_t X = 0;
  int32_t Y = 0;

  bool operator==(const ReferencePointState&) const = default;
};

// What measuring asks of the window. Every hook may be left empty.
struct MeasureHooks {
  // The two position panels' texts.
  std::function<void(const std::string& x, const std::string& y)> showPanels;
  // ReportStatus of a status code with its text.
  std::function<void(int32_t status, const std::string& text)> reportStatus;
  // The view picture shows a rectangle of its shadow picture again after an overlay changed:
  // x, y, width, height in pixels.
  std::function<void(int32_t, int32_t, int32_t, int32_t)> repaint;
  // The picture's height in points (1/72 inch), for the fixed ruler.
  std::function<double()> heightPoints;
  // The menus and tools that follow DistanceDisplay, MeasureMode, RulerOn and RulerType.
  std::function<void()> syncChecks;
};

class Measuring {
public:
  Measuring(Graphics& graphics, SystemServices& services, UserPrompts& prompts, ViewState& view,
            ViewRedraw& redraw, PointerTools& pointer);

  MeasureHooks hooks;

  // Members of the main window, named as the system names them.
  int32_t MeasureMode = measuremode::Centre;
  bool DistanceDisplay = false;
  ReferencePointState ReferencePoint;
  int32_t RulerType = rulertype::Auto;
  double RulerCustomStep = 2.0;
  std::string XPanel;
  std::string YPanel;

  // The origin of the shown coordinates and of the ruler: the world's, the board datum (the
  // cover's lower left) or the reference point (0, 0 while none is set).
  void origin(int32_t& x, int32_t& y) const;
  // Fills the panels for a world point.
  void ShowCoordinates(int32_t x, int32_t y);
  // An idle pointer move: the panels and, with the ruler on, its cursor.
  void pointerMoved(int32_t x, int32_t y);

  // Keys P (0, at the pointer), G (1, snapped to the raster) and R (2, typed).
  void SetReferencePoint(int32_t mode);
  void clearReferencePoint() { ReferencePoint = {}; }
  // On the open view: 4 draws the mark, 6 takes it away (both by exclusive-or, so that either
  // restores the picture the other changed).
  void DrawReferencePoint(int32_t dc, int32_t drawMode);

  // Prepares the open view (opening it first with open set) for overlay drawing of a kind from 1
  // to 6; the device, 0 when the view does not open.
  int32_t SetDrawStyle(int32_t kind, bool open);
  // On the open view: the pointer cross (or the long cursor with state) and the ruler's margin
  // marks, and the panels.
  void DrawPointerCross(int32_t dc, bool state, int32_t x, int32_t y);
  // On the open view: the ruler's two margin marks at a world point.
  void DrawRulerCursor(int32_t dc, int32_t x, int32_t y);

  // The overlay: figure is drawn on the open view; the one shown before is drawn again first,
  // which takes it away. An empty figure leaves none. inStrips tells that the figure lies in the
  // ruler's strips alone.
  void showOverlay(std::function<void(int32_t dc)> figure, bool inStrips = false);
  void clearOverlay() { showOverlay({}); }
  // The picture was rebuilt: no overlay is left on it.
  void forgetOverlay() { overlay_ = {}; }

  // The ruler on the open view in the view's unit and the current origin; 4 draws, 6 by
  // exclusive-or.
  void DrawRuler(int32_t dc, int32_t drawMode);
  RulerCalibration calibration() const;

  // Menu and tool handlers.
  void M_Coords_Click();
  void ATB_Distance();
  void ATB_XY();
  void M_XYmeasure_Click(int32_t index);
  void M_Ruler_Click();
  void mnuCalRulerType_Click(int32_t index);
  void M_ZoomFactor_Click();

private:
  std::string text(const measuremsg::Text& message) const;
  std::string length(double storeLength) const;
  // The ruler again after a change of its calibration or origin: the picture is rebuilt, which
  // draws it anew.
  void renewRuler();
  // SetReferencePoint without the ruler's renewal.
  void placeReferencePoint(int32_t mode);
  // Asks for a number through the combo prompt; false when the answer was empty.
  bool askNumber(const measuremsg::Text& prompt, double current, const char* rows, double& value);

  Graphics& graphics_;
  SystemServices& services_;
  UserPrompts& prompts_;
  ViewState& view_;
  ViewRedraw& redraw_;
  PointerTools& pointer_;
  void repaintAll();

  std::function<void(int32_t)> overlay_;
  bool overlayInStrips_ = false;
};

}  // namespace tvx
