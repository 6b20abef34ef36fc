// The drawing engine: devices over Qt paint targets, pens and modes, shapes in store units, and
// the drawing of symbols, items and entries. The operations that draw or set the pen are virtual
// so a test can record what a caller drew.
#pragma once

#include "kernel/KernelTypes.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <unordered_map>

class QCursor;
class QPaintDevice;
class QImage;

namespace tvx {

class Store;
class KernelStrings;

// The view of one drawing pass, as G_OpenDC takes it.
struct ViewSetup {
  int32_t Scale = 1;  // store units per device unit
  int32_t Width = 0;  // picture size in device units
  int32_t Height = 0;
  int32_t OriginX = 0;  // store coordinates at the centre of the picture
  int32_t OriginY = 0;
  int32_t Mode = 4;  // the view's draw mode with bit 4 set
};

// Draw mode bits.
namespace drawmode {
inline constexpr int32_t Normal = 4;
inline constexpr int32_t ExclusiveOr = 2;  // mode 6: drawing twice restores the picture
inline constexpr int32_t SingleElement = 8;
inline constexpr int32_t Layer = 64;
inline constexpr int32_t Marker = 128;
}  // namespace drawmode

// Bits of ViewSetup::Mode that change how elements are drawn.
namespace viewflag {
inline constexpr int32_t Mirror = 1;
inline constexpr int32_t Outline = 32;     // skeleton lines, no fills
inline constexpr int32_t PadFrames = 128;  // pads drawn as their frames
}  // namespace viewflag

// Style values of G_SetStyle.
namespace penstyle {
inline constexpr int32_t Outline = 0;
inline constexpr int32_t Dotted = 1;
inline constexpr int32_t Dashed = 2;
inline constexpr int32_t Filled = 16;
}  // namespace penstyle

class Graphics {
public:
  Graphics(Store& store, KernelStrings& strings);
  virtual ~Graphics();
  Graphics(const Graphics&) = delete;
  Graphics& operator=(const Graphics&) = delete;

  // Devices. A widget or any other paint device gets a shadow image that the pass draws into;
  // G_CloseDC(dev, 1) presents it through onPresent (the view then paints shadowImage()).
  // A QImage is drawn into directly; printers, PDF writers and SVG generators get a painter for
  // the time of the pass.
  int32_t G_GetDC(QPaintDevice* target, std::function<void()> onPresent = {});
  int32_t G_DeleteDC(int32_t dev);
  int32_t G_OpenDC(int32_t dev, const ViewSetup& view, int32_t mode);
  int32_t G_CloseDC(int32_t dev, int32_t flag);
  const QImage* shadowImage(int32_t dev) const;
  // An 8-bit picture (QImage::Format_Indexed8) is drawn by the span rasteriser alone, with the
  // colours it meets as its colour table. True when the last pass on it met a figure only a
  // painter draws (text, exclusive-or) or more than 256 colours: the picture is then incomplete.
  bool figuresLeftOut(int32_t dev) const;
  void N_SetNodeView(int32_t flag) { nodeView_ = flag; }
  int32_t G_CreateShadowBitmap(int32_t dev);
  int32_t G_ChangeBackgroundColor(int32_t dev, int32_t colour);
  int32_t G_CopyRGBColors(int32_t unused, int32_t dev);
  int32_t G_GetThickPens(int32_t dev) const;
  int32_t G_FreeThickPen(int32_t dev, int32_t, int32_t);

  // Pen.
  virtual int32_t G_SetColor(int32_t dev, int32_t colour);
  virtual int32_t G_SetStyle(int32_t dev, int32_t style);
  virtual int32_t G_SetWidth(int32_t dev, int32_t width);
  virtual int32_t G_SetDrawMode(int32_t dev, int32_t mode);
  // One colour for everything drawn on the device while set (colour >= 0): colour itself, and
  // colour with the background bit for what has clearColour. A one-colour layer is drawn so
  // without recolouring its elements in the store. A negative colour ends it.
  virtual int32_t G_SetOneColour(int32_t dev, int32_t colour, int32_t clearColour);

  // Text of a pixel size. G_SetTextMode sets how later texts stand at their point: horizontal
  // 0 left, 1 centre, 2 right; vertical 0 top, 1 middle, 2 bottom; transparent 1 draws the
  // glyphs alone, 0 on a box of the background colour. G_SetTextMirror(dev, 1) writes the glyphs
  // turned over left to right within their box, as a mirrored view shows them. Both stay until
  // set again.
  virtual int32_t G_SetTextMode(int32_t dev, int32_t horizontal, int32_t vertical,
                                int32_t transparent);
  virtual int32_t G_SetTextMirror(int32_t dev, int32_t mirror);
  // Writes text at a store point, pixelSize pixels high, in the pen's colour and draw mode.
  virtual int32_t G_PixelText(int32_t dev, int32_t x, int32_t y, int32_t pixelSize,
                              const std::string& text);

  // Shapes in store units.
  virtual int32_t G_Line(int32_t dev, int32_t x1, int32_t y1, int32_t x2, int32_t y2);
  virtual int32_t G_Rectangle(int32_t dev, int32_t x, int32_t y, int32_t width, int32_t height);
  virtual int32_t G_Circle(int32_t dev, int32_t x, int32_t y, int32_t radius);
  virtual int32_t G_Triangle(int32_t dev, int32_t x1, int32_t y1, int32_t x2, int32_t y2,
                             int32_t x3, int32_t y3);

  // Elements of the store.
  virtual int32_t S_DrawSymbol(int32_t dev, SymbolId id, int32_t items, int32_t entries);
  virtual int32_t S_DrawItem(int32_t dev, SymbolId id, int32_t index);
  virtual int32_t S_DrawEntry(int32_t dev, SymbolId id, int32_t index);
  virtual int32_t I_DrawItem(int32_t dev, ObjectHandle item);
  // Given an item: the item drawn at the offset (a, b), as part of a polygon being moved.
  // Given an item array: its polygon run from index a to index b, filled when its style is filled.
  virtual int32_t I_DrawItemPoly(int32_t dev, int32_t itemOrArray, int32_t a, int32_t b);

  // Grid. Modes: 1 dots, 2 lines, 3 crosses. G_DrawGrid draws over a rectangle in device units
  // when flag is set and returns the step it used: the asked step doubled until the grid is at
  // least MinimumGridPixels apart.
  static constexpr int32_t MinimumGridPixels = 5;
  int32_t G_SetGridMode(int32_t dev, int32_t mode);
  int32_t G_GetGridMode(int32_t dev) const;
  int32_t G_DrawGrid(int32_t dev, const FrameRect& deviceRect, int32_t step, int32_t flag);

  // Geometry helpers.
  // The device pixel of a world point, as the device was last opened; 0 without a view.
  int32_t G_LPtoDP(int32_t dev, int32_t& x, int32_t& y) const;
  int32_t G_DPtoLP(int32_t dev, int32_t& x, int32_t& y) const;
  static int32_t G_AngleAdj(int32_t angle);
  // Brings an arc into the store's form: positive radius, start in 0..359999, positive sweep.
  static void G_ArcNormalize(int32_t& x, int32_t& y, int32_t& radius, int32_t& start,
                             int32_t& sweep);
  // Twice the signed area of the triangle of three points: 0 when they lie on one line.
  static int64_t G_LinePointDeterminant(int32_t x1, int32_t y1, int32_t x2, int32_t y2, int32_t x3,
                                        int32_t y3);
  // Non-zero when (x, y) lies in the rectangle (corners in any order); with inclusive the edges
  // count.
  static int32_t DB_CoverRectangle(int32_t x, int32_t y, int32_t inclusive, int32_t x0, int32_t y0,
                                   int32_t x1, int32_t y1);
  // Width and height of a vector text from its two size values and its length.
  static void G_GetTextSize(int32_t size1, int32_t size2, int32_t length, int32_t& width,
                            int32_t& height);
  // Width and height, in store units, of a TrueType text of the given height in store units.
  int32_t G_GetTrueTypeTextSize(int32_t dev, int32_t size, const std::string& text,
                                const std::string& face, int32_t style, int32_t& width,
                                int32_t& height) const;

  // Clipboard: the device's whole picture, or a rectangle of it in device pixels.
  int32_t G_CopyToClipBoard(int32_t dev);
  int32_t G_CopyScreen(int32_t dev, int32_t x, int32_t y, int32_t width, int32_t height);

  // Cursors of the suite's set, by number: 1 arrow, 2 cross, 3 pan hand, 4 zoom, 5 pick, 6 busy;
  // other numbers give the arrow. The handle stays valid until G_DelCur.
  int32_t G_SelectCur(int32_t number);
  int32_t G_DelCur(int32_t handle);
  const QCursor* cursor(int32_t handle) const;

  // The palette's RGB values by palette number (32 of them).
  static void G_GetAllRGBColors(int32_t unused, uint32_t* table);

  class Impl;

private:
  struct TextMode {
    int32_t horizontal = 0;
    int32_t vertical = 0;
    bool transparent = true;
    bool mirror = false;
  };

  std::unique_ptr<Impl> impl_;
  int32_t nodeView_ = 1;
  std::unordered_map<int32_t, TextMode> textModes_;
};

}  // namespace tvx
