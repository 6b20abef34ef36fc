#include "viewer/Redraw.h"

#include "kernel/Kernel.h"
#include "platform/MarkGlyphs.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"
#include "store/ColourSlots.h"
#include "store/LayerDrawing.h"
#include "store/Layers.h"
#include "viewer/ViewState.h"

#include <algorithm>
#include <vector>

namespace tvx {

namespace {

constexpr const char* RedrawMessageId = "62185";
constexpr const char* RedrawMessage = "Redraw in progress....";
constexpr const char* RasterAdjustedId = "6290";
constexpr const char* RasterAdjusted =
    "Selected raster cannot be displayed in current precision. Raster interval adjusted";

// Draw modes of the passes after the layers.
constexpr int32_t PadStackHighlightMode = 140;
constexpr int32_t ApertureHighlightMode = 12;
constexpr int32_t MarkMode = drawmode::Normal;
// The focus mark's size in pixels.
constexpr int32_t FocusMarkPixels = 4;

void call(const std::function<void(bool)>& hook, bool value) {
  if (hook)
    hook(value);
}

// Gives every item of items the colour, remembering the old colours in saved; restore undoes it.
// The engine draws an item in its own colour, so a highlight recolours for the time of its pass.
void recolour(Store& store, ArrayHandle items, int32_t colour, std::vector<int32_t>& saved) {
  const int32_t count = store.OA_GetCount(items);
  saved.assign(size_t(count), -1);
  for (int32_t i = 1; i <= count; ++i) {
    const ObjectHandle item = store.OA_Object(items, i);
    if (const ItemFields* f = store.itemFields(item)) {
      saved[size_t(i - 1)] = f->Colour;
      store.I_ChangeItemAttr(item, f->Attributes, colour, f->Style, f->LineWidth);
    }
  }
}

void restore(Store& store, ArrayHandle items, const std::vector<int32_t>& saved) {
  for (size_t i = 0; i < saved.size(); ++i) {
    if (saved[i] < 0)
      continue;
    const ObjectHandle item = store.OA_Object(items, int32_t(i + 1));
    if (const ItemFields* f = store.itemFields(item))
      store.I_ChangeItemAttr(item, f->Attributes, saved[i], f->Style, f->LineWidth);
  }
}

}  // namespace

ViewRedraw::ViewRedraw(Kernel& kernel, SystemServices& services, UserPrompts& prompts,
                       ViewState& view, LayerTables& tables, ColourSlots& colours)
    : kernel_(kernel), services_(services), prompts_(prompts), view_(view), tables_(tables),
      colours_(colours) {}

bool ViewRedraw::mono() const { return (view_.MonoFlags & MonoFlag) != 0; }

void ViewRedraw::EditMsgLine(const std::string& text) {
  MessageLine = text;
  if (hooks.messagePanel)
    hooks.messagePanel(text + " ");
}

void ViewRedraw::RedrawScreen() {
  RedrawPending = true;
  ViewPicture_Paint();
}

void ViewRedraw::ViewPicture_Paint() {
  if (PaintBusy)
    return;
  PaintBusy = true;
  call(hooks.showBusy, true);
  if (ResizeBusy) {
    ResizeBusy = false;
    PaintBusy = false;
    return;
  }
  if (RedrawBusy) {
    PaintBusy = false;
    return;
  }
  if (RedrawPending)
    rebuild();
  call(hooks.pointer, false);
  kernel_.graphics.G_CloseDC(view_.device(), 1);
  RedrawPending = false;
  PaintBusy = false;
  EditMsgLine(MessageLine);
  call(hooks.showBusy, false);
}

void ViewRedraw::rebuild() {
  Graphics& graphics = kernel_.graphics;
  const int32_t device = view_.device();
  uint32_t started = 0;
  if (MiddleDragTimed && hooks.ticks)
    started = hooks.ticks();
  else
    call(hooks.pointer, true);
  RedrawBusy = true;
  ++rebuilds_;
  setBackgroundSlots(1);

  const std::string kept = MessageLine;
  EditMsgLine(services_.LocalMessage(RedrawMessage, RedrawMessageId));
  MessageLine = kept;

  view_.keepInWorld();
  view_.OpenView(1);
  if (graphics.G_GetThickPens(device) > 32)
    graphics.G_FreeThickPen(device, 0, 0);
  graphics.G_CopyRGBColors(0, device);
  setBackgroundSlots(1);
  graphics.G_ChangeBackgroundColor(device, colours_.backgroundColour());
  graphics.G_CreateShadowBitmap(device);

  LayerDrawContext context(graphics, kernel_.store);
  context.clearColour = colours_.ClearColour();
  context.padPositions = view_.PadPositions != 0;
  DrawLayers(context, device, view_.ViewFlags | viewflag::ScreenView, tables_.LayerOrder,
             tables_.Layers);

  // The message line after the rebuild is what the tools left, unless the raster or a highlight
  // has something to say.
  MessageLine = kept;
  if (GridOn)
    drawRaster(device);
  if (view_.RulerOn && hooks.drawRuler)
    hooks.drawRuler(device);
  highlightPadStack(device);
  highlightAperture(device);
  call(hooks.pointer, false);
  graphics.G_SetDrawMode(device, MarkMode);
  if (MiddleDragTimed && PanInProgress && hooks.drawDragMark)
    hooks.drawDragMark(device);
  if (hooks.drawReferencePoint)
    hooks.drawReferencePoint(device);
  RedrawBusy = false;
  ResizePending = false;
  setBackgroundSlots(0);
  if (MiddleDragTimed && hooks.ticks)
    RedrawTime = int32_t(hooks.ticks() - started);
  if (hooks.rebuilt)
    hooks.rebuilt();
}

void ViewRedraw::setBackgroundSlots(int32_t state) {
  uint8_t* table = kernel_.strings.E_SysTable(1);
  if (!table)
    return;
  if (state == 1 && mono()) {
    table[colourslot::GridDot] = uint8_t(MonoGridDotColour);
    table[colourslot::Background] = uint8_t(MonoBackgroundColour);
  } else {
    table[colourslot::GridDot] = uint8_t(colours_[colourslot::GridDot].ColourNumber);
    table[colourslot::Background] = uint8_t(colours_[colourslot::Background].ColourNumber);
  }
}

void ViewRedraw::drawRaster(int32_t device, bool report) {
  const FrameRect picture{0, 0, view_.pictureWidth(), view_.pictureHeight()};
  Graphics& graphics = kernel_.graphics;
  if (gridMode() != 2)
    graphics.G_SetDrawMode(device, drawmode::Normal | drawmode::ExclusiveOr);
  const int32_t used = graphics.G_DrawGrid(device, picture, RasterStep, 1);
  graphics.G_SetDrawMode(device, drawmode::Normal);
  if (!report)
    return;
  if (used != RasterStep) {
    EditMsgLine(services_.LocalMessage(RasterAdjusted, RasterAdjustedId));
    prompts_.beep();
  }
  if (hooks.showRasterStep)
    hooks.showRasterStep(used);
}

int32_t ViewRedraw::gridMode() const { return kernel_.graphics.G_GetGridMode(view_.device()); }

void ViewRedraw::xorRaster(std::optional<int32_t> newStep) {
  if (!view_.OpenView(1)) {
    RasterStep = newStep.value_or(RasterStep);
    return;
  }
  // The grid's colours as a rebuild had them (in mono they are the paper's), or the points
  // would not go away.
  setBackgroundSlots(1);
  if (newStep) {
    drawRaster(view_.device(), false);
    RasterStep = *newStep;
  }
  drawRaster(view_.device(), GridOn);
  setBackgroundSlots(0);
  kernel_.graphics.G_CloseDC(view_.device(), 1);
}

void ViewRedraw::toggleRaster() {
  GridOn = !GridOn;
  if (gridMode() == 1)
    xorRaster();
  else
    RedrawScreen();
}

void ViewRedraw::chooseGridMode(int32_t mode) {
  const bool shown = GridOn;
  if (shown && gridMode() == mode)
    return;
  GridOn = true;
  kernel_.graphics.G_SetGridMode(view_.device(), mode);
  // Dots come onto the picture as it stands; any other change takes a rebuild, which draws the
  // new raster (dots too) in place of the old one.
  if (mode == 1 && !shown)
    xorRaster();
  else
    RedrawScreen();
}

void ViewRedraw::changeRasterStep(int32_t step) {
  if (!GridOn || gridMode() == 2) {
    RasterStep = step;
    if (GridOn)
      RedrawScreen();
    return;
  }
  xorRaster(step);
}

void ViewRedraw::drawEntriesOf(int32_t device, int32_t symbol, int32_t key, int32_t colour) {
  Store& store = kernel_.store;
  const ArrayHandle entries = store.S_SymbolEntryArray(symbol);
  const int32_t count = store.OA_GetCount(entries);
  const MapHandle padStacks = store.S_SymbolPadStackMap(symbol);
  const ArrayHandle items = store.S_PadStackItemArray(store.OM_Object(padStacks, key));
  std::vector<int32_t> saved;
  recolour(store, items, colour, saved);
  for (int32_t i = 1; i <= count; ++i) {
    EntryRecord entry;
    if (store.S_ReadEntry(symbol, i, entry) && entry.PadStack == key)
      kernel_.graphics.S_DrawEntry(device, symbol, i);
  }
  restore(store, items, saved);
}

void ViewRedraw::highlightPadStack(int32_t device) {
  if (HLPadstack == 0)
    return;
  for (const LayerRecord& layer : tables_.Layers) {
    if (layer.Mask != DrillLayerMask)
      continue;
    kernel_.graphics.G_SetDrawMode(device, PadStackHighlightMode);
    kernel_.graphics.G_SetColor(device, HighlightColour);
    drawEntriesOf(device, layer.SymbolHandle, HLPadstack, HighlightColour);
    break;
  }
  EditMsgLine(HLPadstackText);
}

void ViewRedraw::highlightAperture(int32_t device) {
  if (HLDCode == 0)
    return;
  Graphics& graphics = kernel_.graphics;
  Store& store = kernel_.store;
  graphics.G_SetDrawMode(device, ApertureHighlightMode);
  const SymbolId working = tables_.layer(tables_.CurrentLayer).SymbolHandle;
  const ArrayHandle items = store.S_SymbolItemArray(working);
  const int32_t count = store.OA_GetCount(items);
  // A clear element shows as background where clear and highlight share a palette colour.
  const bool clearAsBackground = !mono() && colours_[colourslot::ClearColour].ColourNumber ==
                                                colours_[colourslot::Highlight].ColourNumber;
  for (int32_t i = 1; i <= count; ++i) {
    const ObjectHandle item = store.OA_Object(items, i);
    const ItemFields* f = store.itemFields(item);
    if (!f || f->Link != HLDCode)
      continue;
    int32_t colour = HighlightColour;
    if (f->Colour == colours_.ClearColour() && clearAsBackground)
      colour = colours_.backgroundColour() | ColourMarkBit;
    const int32_t own = f->Colour;
    graphics.G_SetColor(device, colour);
    store.I_ChangeItemAttr(item, f->Attributes, colour, f->Style, f->LineWidth);
    graphics.I_DrawItem(device, item);
    if (const ItemFields* g = store.itemFields(item))
      store.I_ChangeItemAttr(item, g->Attributes, own, g->Style, g->LineWidth);
  }
  if (view_.PadPositions != 0) {
    graphics.G_SetColor(device, HighlightColour);
    drawEntriesOf(device, working, HLDCode, HighlightColour);
  }
  EditMsgLine(HLDCodeText);
}

ViewChange ViewRedraw::RedrawScreenFocus(int32_t Xpos, int32_t Ypos) {
  view_.ViewCenterX = Xpos;
  view_.ViewCenterY = -Ypos;
  ViewChange change = view_.SetScrollBars();
  RedrawScreen();
  if (view_.OpenView(1)) {
    const int32_t size = FocusMarkPixels * std::max(1, view_.m_Precision);
    drawMarkGlyph(kernel_.graphics, view_.device(), MarkMode, SystemServices::GlyphFocus, Xpos,
                  Ypos, MarkerColour, 0, size, size);
    kernel_.graphics.G_CloseDC(view_.device(), 1);
  }
  return change;
}

void ViewRedraw::applyMono() {
  const bool on = mono();
  for (LayerOrderRow& row : tables_.LayerOrder) {
    row.Mono = on;
    row.MonoColour = MonoColour;
  }
  MarkerColour = HighlightColour = colours_.highlightColour(on);
}

void ViewRedraw::toggle(DisplayOption option) {
  switch (option) {
  case DisplayOption::TrueSize:
    view_.ViewFlags ^= viewflag::Outline;
    break;
  case DisplayOption::PadFrame:
    view_.ViewFlags ^= viewflag::PadFrames;
    break;
  case DisplayOption::PadPosition:
    view_.PadPositions ^= 1;
    break;
  case DisplayOption::Mirror:
    view_.ViewFlags ^= viewflag::Mirror;
    break;
  case DisplayOption::Mono:
    view_.MonoFlags ^= MonoFlag;
    applyMono();
    break;
  }
  if (option != DisplayOption::PadPosition) {
    RememberedViewFlags = view_.ViewFlags;
    RememberedMonoFlags = view_.MonoFlags;
  }
  RedrawScreen();
}

bool ViewRedraw::isChecked(DisplayOption option) const {
  switch (option) {
  case DisplayOption::TrueSize:
    return (view_.ViewFlags & viewflag::Outline) == 0;
  case DisplayOption::PadFrame:
    return (view_.ViewFlags & viewflag::PadFrames) != 0;
  case DisplayOption::PadPosition:
    return view_.PadPositions != 0;
  case DisplayOption::Mirror:
    return (view_.ViewFlags & viewflag::Mirror) != 0;
  case DisplayOption::Mono:
    return mono();
  }
  return false;
}

}  // namespace tvx
