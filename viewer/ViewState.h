// The one view of the artwork: its zoom (m_Precision), its centre, its flags, the cover of the
// drawn data and the scroll bars over it, and every way the view moves or scales.
//
// This is the main window's view without widgets. Pixel and world points go through the kernel's
// device (G_OpenDC, G_DPtoLP); the model makes no transformation of its own. Each operation
// changes the state and returns a ViewChange that tells the window what to show again.
#pragma once

#include "kernel/KernelTypes.h"
#include "viewer/DisplayUnits.h"
#include "viewer/ViewTables.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tvx {

// Bit of ViewState::MonoFlags for the one-colour view.
inline constexpr int32_t MonoFlag = 8;

class Graphics;
class KernelStrings;
class Store;
class SystemServices;
struct LayerRecord;

// The drawable world runs from -WorldExtent to +WorldExtent store units on both axes.
inline constexpr int32_t WorldExtent = 220000000;
// Store units per scroll bar step; it keeps the world within 16 bits (32000 steps each way).
inline constexpr int32_t ScrollBarUnit = 6875;
// A cover thinner than this on either side lets the bars scroll over the whole world.
inline constexpr int32_t SmallestScrollCover = 27500;
// Limits of m_Precision: the finest the user's steps reach, the coarsest of all.
inline constexpr int32_t FinestStepPrecision = 100;
inline constexpr int32_t CoarsestPrecision = 2540000;
// Actual size: 0.3 mm per pixel.
inline constexpr int32_t ActualSizePrecision = 30000;
// The room a fit leaves for the ruler, left and below.
inline constexpr int32_t RulerMargin = 1270000;

// Bits of ViewFlags besides those of viewflag:: in kernel/Graphics.h.
namespace viewflag {
inline constexpr int32_t ScreenView = 4;  // always set when the view is opened
}  // namespace viewflag

// Values of ZoomModeFlag, as ATB_RedrawButtonClick takes them.
namespace zoommode {
inline constexpr int32_t Current = 0;      // ATB_Current
inline constexpr int32_t Center = 1;       // ATB_Center
inline constexpr int32_t Board = 2;        // ATB_Board: fit the data
inline constexpr int32_t ActualBoard = 3;  // ATB_ActlBoard: actual size
}  // namespace zoommode

// Values of ZoomStep.
namespace zoomstep {
inline constexpr int32_t In = 0;
inline constexpr int32_t Out = 1;
inline constexpr int32_t Recentre = -1;  // no change of precision
}  // namespace zoomstep

// The bounding rectangle of the drawn data with its width and height.
struct CoverRectangle {
  int32_t CoverMinX = 0;
  int32_t CoverMinY = 0;
  int32_t CoverMaxX = 0;
  int32_t CoverMaxY = 0;
  int32_t CoverWidth = 0;
  int32_t CoverHeight = 0;
};

// One scroll bar in bar units (ScrollBarUnit store units each). The vertical bar's Minimum is its
// top end, which is the high Y, so there Minimum is above Maximum; a bar whose range must run
// upwards shows it negated.
struct ScrollBarState {
  int32_t Minimum = 0;
  int32_t Maximum = 0;
  int32_t LargeChange = 1;
  int32_t SmallChange = 1;
  int32_t Value = 0;
};

// A view that the Tab key can bring back.
struct ViewTriple {
  int32_t m_Precision = 0;
  int32_t ViewCenterX = 0;
  int32_t ViewCenterY = 0;
};

// What the window has to do after an operation, in this order: erase the ruler in the old unit,
// apply the bars (with their change handlers off), show the precision text, refill the combos,
// update the mode and unit tools, redraw, draw the ruler, focus the view picture, repeat the last
// pointer move.
struct ViewChange {
  int32_t EraseRulerUnit = -1;  // the unit to erase the ruler in; -1 for none
  bool ScrollBars = false;      // HorizontalBar and VerticalBar changed
  bool Precision = false;       // PrecisionText changed
  bool Combos = false;          // precisionComboRows() and rasterComboRows() changed
  bool ModeTool = false;        // the mode tool shows the tool of ZoomModeFlag
  bool UnitTool = false;        // the unit tool and the unit menu entries follow DisplayUnit
  bool Redraw = false;          // RedrawScreen
  bool DrawRuler = false;       // draw the ruler again in DisplayUnit
  bool FocusView = false;
  bool RepeatPointerMove = false;  // so that a tool's rubber figure comes back

  ViewChange& operator|=(const ViewChange& other);
  bool any() const;
};

class ViewState {
public:
  ViewState(Graphics& graphics, const SystemServices& services);

  // Members of the main window's view, named as the system names them.
  int32_t m_Precision = 0;  // store units per pixel
  int32_t ViewCenterX = 0;  // world X at the centre of the picture
  int32_t ViewCenterY = 0;  // the negated world Y at the centre
  int16_t ZoomModeFlag = zoommode::Board;
  int32_t DisplayUnit = 0;  // displayunit::
  int32_t ViewFlags = viewflag::ScreenView;
  int32_t MonoFlags = 0;     // MonoFlag: monochrome
  int32_t PadPositions = 0;  // nonzero: pad position marks
  bool RulerOn = false;
  bool ScrollBarsOn = false;
  double ZoomFactor = 2.0;
  int32_t PickDistance = 0;  // pick radius in store units
  CoverRectangle CoverRect;
  FrameRect ViewRect;  // the world seen at the last open: MinX left ... MaxY top
  std::optional<ViewTriple> ViewHistory;
  int32_t CursorX = 0;  // last pointer position in world units
  int32_t CursorY = 0;
  std::string PrecisionText;  // the precision combo's text, as shown or as typed
  ScrollBarState HorizontalBar;
  ScrollBarState VerticalBar;

  // The kernel's device of the view picture and the picture's size in pixels.
  void setDevice(int32_t dc) { dc_ = dc; }
  int32_t device() const { return dc_; }
  void setPictureSize(int32_t width, int32_t height);
  int32_t pictureWidth() const { return width_; }
  int32_t pictureHeight() const { return height_; }

  // Where the cover comes from (every layer's frame), and the rectangle that a fit frames (the
  // cover while function 1 is current, else the import's board rectangle). Without a source the
  // cover is empty; without a fit source a fit frames the cover.
  void setCoverSource(std::function<FrameRect()> source) { coverSource_ = std::move(source); }
  void setFitSource(std::function<FrameRect()> source) { fitSource_ = std::move(source); }

  // Copies the raster, angle, pick and precision tables back from the kernel.
  void readKernelTables(KernelStrings& strings);
  const ViewTables& tables() const { return tables_; }
  // Takes the kernel's default precision and shows it.
  ViewChange takeDefaultPrecision();

  // Opens the kernel's device with the view (mode 1 to draw, 2 to check it) and derives
  // ViewRect; the device stays open for the caller. 0 when the device did not open.
  int32_t OpenView(int32_t mode);
  // The world point of a picture pixel, through the device as last opened, clamped to the world.
  // False, with x and y untouched, when there is no such device.
  bool pixelToWorld(int32_t px, int32_t py, int32_t& x, int32_t& y) const;
  // Keeps the view inside the world, before every redraw: a picture larger than the world at
  // this precision gets the precision at which the world just fits, and the centre moves so that
  // no edge of the view lies outside.
  ViewChange keepInWorld();

  // Computes CoverRect from the cover source.
  void computeCover();
  // Recomputes the cover and both bars for the current centre.
  ViewChange SetScrollBars();
  // A bar moved by the user (with the change handlers on). A value of 0 is ignored.
  ViewChange horizontalBarChanged(int32_t value);
  ViewChange verticalBarChanged(int32_t value);

  // The precision combo's text from m_Precision, and PickDistance from the pick table.
  ViewChange ShowPrecision();
  // Reads PrecisionText in the display unit (comma as decimal point); 0 keeps the shown value.
  // Held within FinestStepPrecision and CoarsestPrecision without a message.
  void applyTypedPrecision();

  // zoomstep::In, Out or Recentre about the cursor position (CursorX, CursorY).
  ViewChange ZoomStep(int32_t mode);
  // The zoom tools and keys: the cursor goes to the centre first.
  ViewChange zoomAboutCentre(int32_t mode);
  // Applies the typed precision, then the zoommode:: of mode, then shows the result. The mode
  // is not remembered: ZoomModeFlag stays as it is.
  ViewChange ATB_RedrawButtonClick(int32_t mode);
  // The box of tool 600 from corner (sx, sy) to (ex, ey) in world units. An empty box, or one
  // not within the world, changes nothing.
  ViewChange boxZoom(int32_t sx, int32_t sy, int32_t ex, int32_t ey);
  // One wheel turn at a picture pixel: the next precision step, the point under the pointer
  // kept under it.
  ViewChange wheelZoom(int32_t rotation, int32_t px, int32_t py);
  // Centres the view on a world point (clamped), or on the world point of a picture pixel.
  ViewChange centreOn(int32_t x, int32_t y);
  ViewChange panToPixel(int32_t px, int32_t py);
  // Tab: exchanges the view with ViewHistory. The first exchange only remembers the view.
  ViewChange exchangeViewHistory();

  // The unit switch of M_Inches_Click and M_Mm_Click. The artwork is not redrawn.
  ViewChange M_Inches_Click();
  ViewChange M_Mm_Click();
  ViewChange setDisplayUnit(int32_t unit);

  // Combo rows in the display unit: the 15 precision steps, the 12 raster steps.
  std::vector<std::string> precisionComboRows() const;
  std::vector<std::string> rasterComboRows() const;
  // A store length in the display unit, as the combos and panels show it (without the mark).
  std::string lengthText(double storeLength) const;
  // A raster step typed in the display unit (comma as decimal point), in whole store units, at
  // least 1; none when it lies below one store unit or above the largest raster step.
  std::optional<int32_t> typedRasterStep(const std::string& text) const;

private:
  // Opens the device in mode 2 and gives the half extent of the picture in store units.
  bool halfExtent(int64_t& halfWidth, int64_t& halfHeight);
  // Ends a check's pass without presenting it.
  void closeCheck();
  // Centres on frame, with the ruler's margin left and below. A fit (fit true) takes the
  // precision that shows the whole frame; actual size takes ActualSizePrecision.
  void frameView(const FrameRect& frame, bool fit);
  // The window's part after a zoom mode: bars, precision, redraw, focus, pointer move.
  ViewChange afterZoom();

  Graphics& graphics_;
  const SystemServices& services_;
  int32_t dc_ = 0;
  int32_t width_ = 0;
  int32_t height_ = 0;
  int64_t halfWidth_ = 0;  // half extents of the picture in store units, at the last open
  int64_t halfHeight_ = 0;
  ViewTables tables_;
  std::function<FrameRect()> coverSource_;
  std::function<FrameRect()> fitSource_;
};

// The cover source of the layer tables: FrameLayers over all layers, hidden ones too.
std::function<FrameRect()> LayersCover(Store& store, std::span<const LayerRecord> layers);

}  // namespace tvx
