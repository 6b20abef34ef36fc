#include "viewer/MeasureTools.h"

#include "common/CallHook.h"
#include "kernel/Graphics.h"
#include "kernel/Store.h"
#include "platform/MarkGlyphs.h"
#include "platform/SystemServices.h"
#include "store/ElementRuns.h"
#include "store/Layers.h"
#include "viewer/DisplayUnits.h"
#include "viewer/ElementEditor.h"
#include "viewer/MeasureGeometry.h"
#include "viewer/Measuring.h"
#include "viewer/PointerTools.h"
#include "viewer/Redraw.h"
#include "viewer/ViewState.h"

#include <algorithm>
#include <cmath>

namespace tvx {

namespace {

// Pixels of one size step of a mark glyph, as the pointer cross has them.
constexpr int32_t GlyphPixels = 3;

int32_t rounded(double v) {
  return int32_t(std::clamp(std::round(v), -2147483647.0, 2147483647.0));
}

}  // namespace

MeasureTools::MeasureTools(Store& store, Graphics& graphics, SystemServices& services,
                           ViewState& view, ViewRedraw& redraw, LayerTables& tables,
                           PointerTools& pointer, Measuring& measuring, ElementEditor& editor)
    : store_(store), graphics_(graphics), services_(services), view_(view), redraw_(redraw),
      tables_(tables), pointer_(pointer), measuring_(measuring), editor_(editor) {}

void MeasureTools::edit(const std::string& text) { redraw_.EditMsgLine(text); }

std::string MeasureTools::length(double storeLength) const {
  return FormatLength(storeLength, view_.DisplayUnit, services_.DatabaseUnitsPerMm());
}

// --- Picking ------------------------------------------------------------------------------------

int32_t MeasureTools::PickElement(SymbolId symbol, int32_t x, int32_t y, ItemRecord& record) const {
  int32_t index = 0, kind = 0;
  if (editor_.PickInSymbol(symbol, x, y, index, kind) != 0)
    return 1;
  record = ItemRecord{};
  if (kind == ItemPadEntry) {
    EntryRecord entry;
    if (!store_.S_ReadEntry(symbol, index, entry))
      return 1;
    // The pad's items are searched in the pad's own space.
    store_.S_SetCompLocation(0, 0, 0, 0);
    store_.S_SetPadLocation(entry.X, entry.Y, entry.Rotation);
    int32_t px = x, py = y;
    store_.I_APtoLP(px, py);
    const ObjectHandle stack = store_.OM_Object(store_.S_SymbolPadStackMap(symbol), entry.PadStack);
    const ArrayHandle padItems = store_.S_PadStackItemArray(stack);
    const int32_t hit = padItems != ArrayHandle::None
                            ? store_.OA_Cover(padItems, 1, px, py, view_.PickDistance, 15)
                            : 0;
    if (hit > 0 && store_.I_ReadItemAbs(store_.OA_Object(padItems, hit), record))
      return 0;
    record = ItemRecord{};
    record.Type = ItemPointRecord;
    record.X = entry.X;
    record.Y = entry.Y;
    return 0;
  }
  if (!store_.I_ReadItem(store_.OA_Object(store_.S_SymbolItemArray(symbol), index), record))
    return 1;
  if (record.Type == ItemVectorText || record.Type == ItemTrueTypeText) {
    int32_t width = 0, height = 0;
    if (record.Type == ItemVectorText)
      Graphics::G_GetTextSize(record.Width, record.Height, int32_t(record.Text.size()), width,
                              height);
    else
      graphics_.G_GetTrueTypeTextSize(view_.device(), record.Width, record.Text, record.Face, 0,
                                      width, height);
    record.Type = ItemRectangle;
    record.Style = 0;
    record.Width = width;
    record.Height = height;
  }
  return 0;
}

std::vector<ItemRecord> MeasureTools::elementAt(SymbolId symbol, int32_t x, int32_t y) const {
  ItemRecord record;
  if (PickElement(symbol, x, y, record) != 0)
    return {};
  int32_t index = 0, kind = 0, first = 0, last = 0;
  const ArrayHandle items = store_.S_SymbolItemArray(symbol);
  if (!(record.Attributes & attr::PolygonSide) ||
      editor_.PickInSymbol(symbol, x, y, index, kind) != 0 ||
      !FindPolygonRun(store_, items, index, first, last))
    return {record};
  std::vector<ItemRecord> run;
  for (int32_t i = first; i <= last; ++i)
    if (store_.I_ReadItem(store_.OA_Object(items, i), run.emplace_back()) == 0)
      run.pop_back();
  return run;
}

bool MeasureTools::pickTarget(int32_t x, int32_t y) {
  ClearanceMode = ClearanceShown = false;
  ItemRecord record;
  if (PickElement(editor_.WorkingSymbol(), x, y, record) != 0)
    return false;
  Target = record;
  callHook(hooks.enableLayerTools, false);
  return true;
}

// --- Block of the alignment ---------------------------------------------------------------------

int32_t MeasureTools::SelectBlock(int32_t mode, int32_t x, int32_t y) {
  const SymbolId symbol = editor_.WorkingSymbol();
  if (mode == 0) {
    FrameRect all;
    FrameLayers(store_, tables_.Layers, all);
    return tvx::SelectBlock(Block, 0, all);
  }
  if (mode == 1) {
    int32_t index = 0, kind = 0;
    if (editor_.PickInSymbol(symbol, x, y, index, kind) != 0 ||
        editor_.ReadElement(symbol, index, kind) != 0)
      return 1;
    ItemRecord record;
    if (PickElement(symbol, x, y, record) != 0)
      return 1;
    if (kind == ItemPadEntry)
      record = editor_.Current.Record;
    const KeyPoints keys = ElementKeyPoints(record, x, y, editor_.Current.Vertices);
    FrameRect frame, entries;
    const bool hasItems = store_.S_FrameSymbolItems(symbol, -1, frame) > 0;
    if (store_.S_FrameSymbolEntries(symbol, -1, entries) > 0) {
      if (hasItems)
        frame.unite(entries);
      else
        frame = entries;
    }
    Block = BlockTransform{};
    Block.BlockCornerX = frame.MinX;
    Block.BlockCornerY = frame.MinY;
    Block.BlockWidth = rounded(double(frame.MaxX) - frame.MinX);
    Block.BlockHeight = rounded(double(frame.MaxY) - frame.MinY);
    const bool circle = record.Type == ItemCircle;
    pointer_.ToolStartX = rounded(circle ? keys.MiddleX : keys.NearX);
    pointer_.ToolStartY = rounded(circle ? keys.MiddleY : keys.NearY);
    MoveDeltaX = MoveDeltaY = 0;
    return 0;
  }
  int32_t dx = 0, dy = 0;
  if (!targetDisplacement(x, y, dx, dy))
    return 1;
  Block.BlockDeltaX = dx;
  Block.BlockDeltaY = dy;
  return 0;
}

bool MeasureTools::targetDisplacement(int32_t x, int32_t y, int32_t& dx, int32_t& dy) {
  const auto checked = [this](int32_t row) {
    return hooks.optionChecked && hooks.optionChecked(row);
  };
  if (checked(alignoption::Raster)) {
    dx = MoveDeltaX;
    dy = MoveDeltaY;
    return true;
  }
  const bool pads = checked(alignoption::Pad);
  if (!pads && !checked(alignoption::Near) && !checked(alignoption::Middle))
    return false;
  // The visible layers below the top row, in their drawing order.
  for (int32_t row = 2; row <= LayerCount; ++row) {
    const LayerOrderRow& order = tables_.orderRow(row);
    if (!order.Visible || order.LayerNumber < 1 || order.LayerNumber > LayerCount)
      continue;
    const SymbolId symbol = tables_.layer(order.LayerNumber).SymbolHandle;
    int32_t index = 0, kind = 0;
    if (editor_.PickInSymbol(symbol, x, y, index, kind) != 0)
      continue;
    if (pads) {
      EntryRecord entry;
      if (kind != ItemPadEntry || !store_.S_ReadEntry(symbol, index, entry))
        continue;
      dx = rounded(double(entry.X) - pointer_.ToolStartX);
      dy = rounded(double(entry.Y) - pointer_.ToolStartY);
      return true;
    }
    if (kind == ItemPadEntry)
      continue;
    ItemRecord record;
    if (PickElement(symbol, x, y, record) != 0)
      continue;
    // The run of a polygon side comes with it, for its vertices.
    CurrentElement kept = editor_.Current;
    editor_.ReadElement(symbol, index, kind);
    const KeyPoints keys = ElementKeyPoints(record, x, y, editor_.Current.Vertices);
    editor_.Current = std::move(kept);
    const bool nearPoint = checked(alignoption::Near);
    dx = rounded((nearPoint ? keys.NearX : keys.MiddleX) - pointer_.ToolStartX);
    dy = rounded((nearPoint ? keys.NearY : keys.MiddleY) - pointer_.ToolStartY);
    return true;
  }
  return false;
}

void MeasureTools::startClearance(int32_t x, int32_t y) {
  if (!pickTarget(x, y))
    return;
  ClearanceMode = true;
  ClearanceFirst = elementAt(editor_.WorkingSymbol(), x, y);
  pointer_.ToolStartX = x;
  pointer_.ToolStartY = y;
  pointer_.StartTool(toolcode::Distance);
  edit(services_.LocalMessage(measuremsg::SecondObject.text, measuremsg::SecondObject.id));
}

bool MeasureTools::takeSecondElement(int32_t x, int32_t y) {
  // The working layer first, then every visible layer in its drawing order.
  std::vector<ItemRecord> second = elementAt(editor_.WorkingSymbol(), x, y);
  for (int32_t row = 1; row <= LayerCount && second.empty(); ++row) {
    const LayerOrderRow& order = tables_.orderRow(row);
    if (order.Visible && order.LayerNumber >= 1 && order.LayerNumber <= LayerCount)
      second = elementAt(tables_.layer(order.LayerNumber).SymbolHandle, x, y);
  }
  if (second.empty() || ClearanceFirst.empty())
    return false;
  auto& [d, ax, ay, bx, by] = Clearance;
  ClosestPoints(d, ax, ay, bx, by, ClearanceFirst, second);
  return true;
}

void MeasureTools::startAlignment(int32_t x, int32_t y) {
  if (SelectBlock(1, x, y) != 0)
    return;
  pointer_.StartTool(toolcode::Alignment);
}

// --- Figures ------------------------------------------------------------------------------------

void MeasureTools::line(int32_t dc, double x1, double y1, double x2, double y2) {
  graphics_.G_Line(dc, rounded(x1), rounded(y1), rounded(x2), rounded(y2));
}

void MeasureTools::arrowHead(int32_t dc, double x, double y, double ux, double uy) {
  const double p = std::max(1, view_.m_Precision);
  const double bx = x + ux * ArrowPixels * p, by = y + uy * ArrowPixels * p;
  const double sx = -uy * ArrowHalfBase * p, sy = ux * ArrowHalfBase * p;
  graphics_.G_SetStyle(dc, penstyle::Filled);
  graphics_.G_Triangle(dc, rounded(x), rounded(y), rounded(bx + sx), rounded(by + sy),
                       rounded(bx - sx), rounded(by - sy));
  graphics_.G_SetStyle(dc, penstyle::Outline);
}

void MeasureTools::dimension(int32_t dc, double nx, double ny, double x, double y, double d) {
  if (!(d > 0))
    return;
  const double p = std::max(1, view_.m_Precision);
  const double ux = (x - nx) / d, uy = (y - ny) / d;  // from the element to the pointer
  const double tx = -uy * TickHalfPixels * p, ty = ux * TickHalfPixels * p;
  line(dc, x - tx, y - ty, x + tx, y + ty);
  line(dc, nx - tx, ny - ty, nx + tx, ny + ty);
  if (d > ArrowsInsideAbove * p) {
    line(dc, nx, ny, x, y);
    arrowHead(dc, nx, ny, ux, uy);
    arrowHead(dc, x, y, -ux, -uy);
  } else {
    const double out = 3 * ArrowPixels * p;
    line(dc, nx, ny, nx - ux * out, ny - uy * out);
    line(dc, x, y, x + ux * out, y + uy * out);
    arrowHead(dc, nx, ny, -ux, -uy);
    arrowHead(dc, x, y, ux, uy);
  }
}

void MeasureTools::distanceFigure(int32_t dc, int32_t x, int32_t y) {
  double d = 0, nx = 0, ny = 0;
  NearestPoint(d, nx, ny, x, y, Target);
  measuring_.SetDrawStyle(5, false);
  dimension(dc, nx, ny, x, y, d);
  const int32_t p = std::max(1, view_.m_Precision);
  if (!pointer_.LongCursor)
    drawMarkGlyph(graphics_, dc, drawmode::Normal | drawmode::ExclusiveOr,
                  SystemServices::GlyphCursor, x, y, redraw_.MarkerColour, 0, 2 * GlyphPixels * p,
                  GlyphPixels * p);
  measuring_.DrawPointerCross(dc, pointer_.LongCursor, x, y);
  edit(services_.LocalMessage(measuremsg::DistanceIs.text, measuremsg::DistanceIs.id) + length(d) +
       "   dX = " + length(x - nx) + "   dY = " + length(y - ny));
}

void MeasureTools::clearanceFigure(int32_t dc) {
  const auto& [d, ax, ay, bx, by] = Clearance;
  measuring_.SetDrawStyle(5, false);
  dimension(dc, ax, ay, bx, by, d);
}

void MeasureTools::alignmentFigure(int32_t dc, int32_t x, int32_t y, int32_t dx, int32_t dy) {
  const int32_t sx = pointer_.ToolStartX, sy = pointer_.ToolStartY;
  const double d = GetDistance(sx, sy, x, y);
  measuring_.SetDrawStyle(5, false);
  if (d > 0) {
    line(dc, sx, sy, x, y);
    arrowHead(dc, x, y, (sx - x) / d, (sy - y) / d);
  }
  // The block where the move would put it.
  graphics_.G_Rectangle(dc, rounded(double(Block.BlockCornerX) + dx),
                        rounded(double(Block.BlockCornerY) + dy), Block.BlockWidth,
                        Block.BlockHeight);
  const int32_t p = std::max(1, view_.m_Precision);
  const int32_t xorMode = drawmode::Normal | drawmode::ExclusiveOr;
  if (!pointer_.LongCursor)
    drawMarkGlyph(graphics_, dc, xorMode, SystemServices::GlyphCursor, x, y, redraw_.MarkerColour,
                  0, 2 * GlyphPixels * p, GlyphPixels * p);
  drawMarkGlyph(graphics_, dc, xorMode, SystemServices::GlyphBlockStart, sx, sy,
                redraw_.MarkerColour, 0, 2 * GlyphPixels * p, 2 * GlyphPixels * p);
  measuring_.DrawPointerCross(dc, pointer_.LongCursor, x, y);
}

void MeasureTools::drawFigure(int32_t tool, int32_t shift, int32_t x, int32_t y) {
  (void)shift;
  if (tool == toolcode::Distance && ClearanceShown) {
    // The clearance stands still while the pointer moves.
    measuring_.showOverlay([this](int32_t dc) { clearanceFigure(dc); });
    const auto& [d, ax, ay, bx, by] = Clearance;
    edit(services_.LocalMessage(measuremsg::ClearanceIs.text, measuremsg::ClearanceIs.id) +
         length(d) + "   dX = " + length(bx - ax) + "   dY = " + length(by - ay));
    return;
  }
  if (tool == toolcode::Distance) {
    measuring_.showOverlay([this, x, y](int32_t dc) { distanceFigure(dc, x, y); });
    return;
  }
  if (tool != toolcode::Alignment)
    return;
  int32_t px = x, py = y;
  if (hooks.optionChecked && hooks.optionChecked(alignoption::Raster)) {
    bool unchanged = false;
    pointer_.SnapToRaster(unchanged, px, py);
    if (unchanged)
      return;
  }
  MoveDeltaX = rounded(double(px) - pointer_.ToolStartX);
  MoveDeltaY = rounded(double(py) - pointer_.ToolStartY);
  measuring_.showOverlay([this, px, py, dx = MoveDeltaX, dy = MoveDeltaY](int32_t dc) {
    alignmentFigure(dc, px, py, dx, dy);
  });
  edit(services_.LocalMessage(measuremsg::AlignmentVector.text, measuremsg::AlignmentVector.id) +
       " Dx=" + length(MoveDeltaX) + " Dy=" + length(MoveDeltaY));
}

void MeasureTools::end(int32_t tool) {
  measuring_.clearOverlay();
  if (tool == toolcode::Distance)
    callHook(hooks.enableLayerTools, true);
}

void MeasureTools::finish(int32_t tool, int32_t x, int32_t y) {
  if (tool == toolcode::Distance && ClearanceMode) {
    // The second click shows the clearance and the tool goes on; the third one ends it.
    ClearanceShown = !ClearanceShown && takeSecondElement(x, y);
    ClearanceMode = ClearanceShown;
    if (ClearanceShown) {
      pointer_.StartTool(toolcode::Distance);
      drawFigure(toolcode::Distance, 0, x, y);
    }
    return;
  }
  if (tool == toolcode::Distance) {
    ItemRecord record;
    if (PickElement(editor_.WorkingSymbol(), x, y, record) == 0)
      Target = record;
    return;
  }
  if (tool != toolcode::Alignment)
    return;
  const SymbolId symbol = editor_.WorkingSymbol();
  editor_.DoUndo(symbol, undomode::Push);
  if (SelectBlock(2, x, y) != 0)
    return;
  bool moved = false;
  MoveBlock(store_, symbol, Block, moved);
  if (moved)
    redraw_.RedrawScreen();
}

}  // namespace tvx
