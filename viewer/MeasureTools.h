// The two measuring tools of the view without widgets: tool 700 shows the distance from the
// pointer to a picked element, tool 800 moves the working layer so that one of its elements lands
// on a target (with undo). Their rubber figures are overlays of Measuring.
#pragma once

#include "kernel/KernelTypes.h"
#include "viewer/BlockTransform.h"

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace tvx {

class ElementEditor;
class Graphics;
class Measuring;
class PointerTools;
class Store;
class SystemServices;
class ViewRedraw;
class ViewState;
struct LayerTables;

// Options of key 8 of function 1: how the alignment's target is found.
namespace alignoption {
inline constexpr int32_t Raster = 0;  // the displacement dragged, snapped to the raster
inline constexpr int32_t Pad = 1;     // the first pad of a visible layer at the target
inline constexpr int32_t Near = 2;    // the near point of an element at the target
inline constexpr int32_t Middle = 3;  // its middle point
}  // namespace alignoption

// Pixel sizes of the tools' figures.
inline constexpr int32_t ArrowPixels = 18;        // an arrow head's length
inline constexpr int32_t ArrowHalfBase = 6;       // half its base
inline constexpr int32_t TickHalfPixels = 20;     // a distance tick to each side
inline constexpr int32_t ArrowsInsideAbove = 36;  // distances above this keep the arrows inside

struct MeasureToolHooks {
  // An option row of the current key is checked.
  std::function<bool(int32_t row)> optionChecked;
  // ATB_AddLayer and ATB_RemoveLayer, disabled while the distance tool runs.
  std::function<void(bool enabled)> enableLayerTools;
};

class MeasureTools {
public:
  MeasureTools(Store& store, Graphics& graphics, SystemServices& services, ViewState& view,
               ViewRedraw& redraw, LayerTables& tables, PointerTools& pointer, Measuring& measuring,
               ElementEditor& editor);

  MeasureToolHooks hooks;

  // The target of tool 700 and the block of tool 800.
  ItemRecord Target;
  // Key 9: the distance tool's first click picked the first element of a clearance; its second
  // click picks the second one and shows the clearance until a third click or Escape.
  bool ClearanceMode = false;
  bool ClearanceShown = false;
  std::array<double, 5> Clearance{};  // the distance and its two points: on the first, the second
  std::vector<ItemRecord> ClearanceFirst;  // the first element: one record, or a polygon's sides
  BlockTransform Block;
  int32_t MoveDeltaX = 0;  // the last move of tool 800
  int32_t MoveDeltaY = 0;

  // The element at a world point of a symbol: a pad entry's pad item under the point (in world
  // terms) or, without one, the entry's position as a point (type 99); an item, a text as the
  // rectangle that frames it. Status 0 when found, 1 when nothing.
  int32_t PickElement(SymbolId symbol, int32_t x, int32_t y, ItemRecord& record) const;

  // The element at a world point of a symbol as PickElement finds it; a polygon side brings the
  // sides of its whole run. Empty when nothing is there.
  std::vector<ItemRecord> elementAt(SymbolId symbol, int32_t x, int32_t y) const;

  // The click of the armed distance tool: true when an element was picked as the target.
  bool pickTarget(int32_t x, int32_t y);
  // Key 9 of function 1: the element at the click is the first of a clearance; tool 700 runs.
  void startClearance(int32_t x, int32_t y);
  // Key 8 of function 1: mode 1 at the click starts tool 800 when an element is there.
  void startAlignment(int32_t x, int32_t y);
  // Modes of the block: 0 the whole board, 1 the start of the alignment at a click, 2 its end
  // (the displacement by the key's options). Status 0 when set, 1 when nothing was found.
  int32_t SelectBlock(int32_t mode, int32_t x, int32_t y);

  // A pointer move of a running tool at a world point.
  void drawFigure(int32_t tool, int32_t shift, int32_t x, int32_t y);
  // Every end of a running tool, with or without its effect: the figure goes.
  void end(int32_t tool);
  // The tool ends with its effect at a world point.
  void finish(int32_t tool, int32_t x, int32_t y);

private:
  void distanceFigure(int32_t dc, int32_t x, int32_t y);
  // Ticks, line and arrows of a measured distance d from (nx, ny) to (x, y).
  void dimension(int32_t dc, double nx, double ny, double x, double y, double d);
  void clearanceFigure(int32_t dc);
  // The clearance's result at the second click; false when nothing is there.
  bool takeSecondElement(int32_t x, int32_t y);
  void alignmentFigure(int32_t dc, int32_t x, int32_t y, int32_t dx, int32_t dy);
  // A filled arrow head with its point at (x, y), its body along the unit vector (ux, uy).
  void arrowHead(int32_t dc, double x, double y, double ux, double uy);
  void line(int32_t dc, double x1, double y1, double x2, double y2);
  void edit(const std::string& text);
  std::string length(double storeLength) const;
  // The displacement of mode 2 at the end point; false when the options find no target.
  bool targetDisplacement(int32_t x, int32_t y, int32_t& dx, int32_t& dy);

  Store& store_;
  Graphics& graphics_;
  SystemServices& services_;
  ViewState& view_;
  ViewRedraw& redraw_;
  LayerTables& tables_;
  PointerTools& pointer_;
  Measuring& measuring_;
  ElementEditor& editor_;
};

}  // namespace tvx
