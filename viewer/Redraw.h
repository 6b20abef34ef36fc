// The one path by which the view reaches the screen: the paint with its guards, the rebuild of the
// shadow picture in its fixed draw order, the highlights, the raster and the display options.
//
// No widget header: the window gives the model its device (through ViewState) and a few hooks for
// what it shows around the picture (busy picture, pointer, message line, raster combo).
#pragma once

#include "viewer/ViewState.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace tvx {

struct Kernel;
struct LayerTables;
class ColourSlots;
class SystemServices;
class UserPrompts;

// Palette numbers of the grid dot and the background while a one-colour pass draws.
inline constexpr int32_t MonoGridDotColour = 12;
inline constexpr int32_t MonoBackgroundColour = 15;

// What the model asks of the window around the picture. Every hook may be left empty.
struct RedrawHooks {
  std::function<void(bool busy)> showBusy;               // "BUSY" panel: "ST_BUSY" or "ST_NORMAL"
  std::function<void(bool hourglass)> pointer;           // hourglass, or the default shape
  std::function<void(const std::string&)> messagePanel;  // the "MSG" panel's text
  std::function<void(int32_t step)> showRasterStep;      // the raster combo, in store units
  std::function<void(int32_t device)> drawRuler;         // the ruler in mode 4
  std::function<void(int32_t device)> drawDragMark;      // a running pan's mark at its start
  std::function<void(int32_t device)> drawReferencePoint;
  std::function<uint32_t()> ticks;  // milliseconds, for RedrawTime
  std::function<void()> rebuilt;    // the picture was drawn afresh: no overlay is left on it
};

// The display options with a menu entry and a tool each.
enum class DisplayOption { TrueSize, PadFrame, PadPosition, Mirror, Mono };

class ViewRedraw {
public:
  ViewRedraw(Kernel& kernel, SystemServices& services, UserPrompts& prompts, ViewState& view,
             LayerTables& tables, ColourSlots& colours);

  // Members of the main window that the redraw owns, named as the system names them.
  bool RedrawPending = false;
  bool PaintBusy = false;
  bool RedrawBusy = false;
  bool ResizeBusy = false;
  bool ResizePending = false;
  int32_t RedrawTime = 0;
  std::string MessageLine;
  int32_t HLDCode = 0;
  std::string HLDCodeText;
  int32_t HLPadstack = 0;
  std::string HLPadstackText;
  bool GridOn = false;
  int32_t RasterStep = 254000;
  int32_t MarkerColour = 0;
  int32_t HighlightColour = 0;
  int32_t MonoColour = 0;
  // A middle-button drag: it asks for RedrawTime, and while it pans its mark is drawn.
  bool MiddleDragTimed = false;
  bool PanInProgress = false;
  // The view flags and mono flags that ApplySystemSettings gives back to the view.
  int32_t RememberedViewFlags = 0;
  int32_t RememberedMonoFlags = 0;

  RedrawHooks hooks;

  // Sets RedrawPending and paints at once.
  void RedrawScreen();
  // The paint: guards, the rebuild when one is pending, then the shadow picture to the screen.
  void ViewPicture_Paint();
  // Centres the view on a world point, redraws, and marks the point.
  // The returned change tells the window to show the scroll bars again.
  ViewChange RedrawScreenFocus(int32_t Xpos, int32_t Ypos);
  // The message line: the panel shows text and a blank; MessageLine keeps text.
  void EditMsgLine(const std::string& text);

  // Sets bytes 62 and 63 of the kernel's colour table for a pass (state 1) or back (state 0).
  void setBackgroundSlots(int32_t state);
  // Gives every row of LayerOrder the mono flag and colour of MonoFlags, and sets the marker
  // and highlight colours to match.
  void applyMono();
  bool mono() const;

  // Toggles one display option, remembers the flags where the option is remembered, and
  // redraws. isChecked tells the menu entry's and the tool's check mark.
  void toggle(DisplayOption option);
  bool isChecked(DisplayOption option) const;

  // The raster's tools. The dot and cross rasters (grid modes 1 and 3) are drawn by exclusive-or,
  // so that they are added and taken away on the picture as it stands; the line raster (mode 2)
  // always takes a rebuild.
  // The raster on or off: a dot raster is toggled on the picture, the others redrawn.
  void toggleRaster();
  // Grid mode 1, 2 or 3 chosen: the raster shows in that mode afterwards.
  void chooseGridMode(int32_t mode);
  // A new raster step: stored, and the raster shown with it where it shows.
  void changeRasterStep(int32_t step);

  // Rebuilds done since the model was made; a plain repaint does not count.
  int32_t rebuilds() const { return rebuilds_; }

private:
  void rebuild();
  // Draws the raster; report tells the step used (and a step too fine for the view).
  void drawRaster(int32_t device, bool report = true);
  int32_t gridMode() const;
  // Draws the raster once more by exclusive-or on the view: it appears or goes. With a new step
  // the raster of the old one goes and the new one comes.
  void xorRaster(std::optional<int32_t> newStep = std::nullopt);
  void highlightPadStack(int32_t device);
  void highlightAperture(int32_t device);
  // Draws the entries of symbol whose pad stack key is key, their pad stack items in colour.
  void drawEntriesOf(int32_t device, int32_t symbol, int32_t key, int32_t colour);

  Kernel& kernel_;
  SystemServices& services_;
  UserPrompts& prompts_;
  ViewState& view_;
  LayerTables& tables_;
  ColourSlots& colours_;
  int32_t rebuilds_ = 0;
};

}  // namespace tvx
