// The drawing engine: devices over Qt paint targets, pens and modes, shapes in store units, and
// the drawing of symbols, items and entries. The operations that draw or set the pen are virtual
// so a test can record what a caller drew.
#pragma once

#include "kernel/KernelTypes.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

class QPaintDevice;
class QImage;

namespace tvx {

class Store;
class KernelStrings;

// The view of one drawing pass, as G_OpenDC takes it.
struct ViewSetup {
  int32_t Scale = 1;   // store units per device unit
  int32_t Width = 0;   // picture size in device units
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
inline constexpr int32_t Outline = 32;    // skeleton lines, no fills
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

  // Geometry helpers.
  int32_t G_DPtoLP(int32_t dev, int32_t& x, int32_t& y) const;
  static int32_t G_AngleAdj(int32_t angle);

  // The palette's RGB values by palette number (32 of them).
  static void G_GetAllRGBColors(int32_t unused, uint32_t* table);

  class Impl;

private:
  std::unique_ptr<Impl> impl_;
  int32_t nodeView_ = 1;
};

}  // namespace tvx
