// Internal state of the drawing engine. Only the engine's own .cpp files include this.
#pragma once

#include "kernel/ArcDirections.h"
#include "kernel/Graphics.h"
#include "kernel/ItemGeometry.h"
#include "kernel/KernelStrings.h"
#include "kernel/Palette.h"
#include "kernel/Raster.h"
#include "kernel/Store.h"

#include <QCursor>
#include <QImage>
#include <QPainter>
#include <QPointF>

#include <array>
#include <memory>
#include <optional>
#include <vector>

namespace tvx {

struct Device {
  QPaintDevice* target = nullptr;
  std::function<void()> onPresent;
  bool usesShadow = false;  // widgets and other surfaces that are painted from an image
  // A printer keeps one painter from its first G_OpenDC to G_DeleteDC: ending the painter ends
  // the printer's document, and the sheets of one document are passes of their own.
  bool keepsPainter = false;
  QImage shadow;
  std::unique_ptr<QPainter> painter;
  bool open = false;
  ViewSetup view;
  int32_t openMode = 0;

  int32_t colour = 15;
  int32_t style = penstyle::Outline;
  int32_t width = 0;
  int32_t drawMode = drawmode::Normal;
  int32_t background = 0;  // colour value of the background
  int32_t oneColour = -1;  // G_SetOneColour
  int32_t oneColourClear = 0;
  std::array<uint32_t, PaletteSize> palette{};
  // Span drawing straight into the pixels, for images in the normal mode; null otherwise.
  std::unique_ptr<Raster> raster;
  QImage* rasterImage = nullptr;
  // An 8-bit picture with a palette: no painter can draw into it, the span rasteriser alone does.
  bool rasterOnly = false;
  // Set when a pass on such a picture met a figure only a painter draws, or too many colours.
  bool figuresLeftOut = false;
  int32_t thickPens = 0;
  int32_t gridMode = 1;

  // Store to device coordinates of the open pass.
  double scale = 1.0;  // device units per store unit
  double offsetX = 0, offsetY = 0;
  bool mirror = false;

  QPointF toDevice(double x, double y) const {
    double dx = (x - view.OriginX) * scale;
    return {(mirror ? -dx : dx) + offsetX, offsetY - (y - view.OriginY) * scale};
  }
  // The store rectangle the picture shows.
  FrameRect visibleFrame() const;
};

// Scratch of the element drawing of one thread: an outline's points, kept between elements so
// that none allocates, and the directions of the arcs drawn last.
struct DrawScratch {
  std::vector<QPointF> points;
  ArcDirections arcs;
};

class Graphics::Impl {
public:
  Impl(Store& kernelStore, KernelStrings& kernelStrings)
      : store(kernelStore), strings(kernelStrings) {}

  Store& store;
  KernelStrings& strings;
  std::vector<std::unique_ptr<Device>> devices;  // id n at index n - 1
  DrawScratch scratch_;
  // The picture a second thread draws the later half of a large item array into.
  QImage laterHalf_;
  std::vector<std::unique_ptr<QCursor>> cursors;  // handle n at index n - 1

  Device* device(int32_t dev) {
    if (dev < 1 || size_t(dev) > devices.size())
      return nullptr;
    return devices[size_t(dev) - 1].get();
  }
  // An open device that elements can be drawn on, by the painter or by the span rasteriser alone.
  Device* openDevice(int32_t dev) {
    Device* d = device(dev);
    return d && d->open && (d->painter || d->rasterOnly) ? d : nullptr;
  }
  // An open device with a painter, for the figures that only a painter draws.
  Device* paintingDevice(int32_t dev) {
    Device* d = device(dev);
    return d && d->open && d->painter ? d : nullptr;
  }
  // True when the device has a painter for a figure the span rasteriser cannot draw; otherwise
  // the figure is noted as left out.
  bool canPaint(Device& d) const {
    if (!d.painter)
      d.figuresLeftOut = true;
    else if (d.raster)
      d.raster->flush();  // what the rasteriser holds lies under the painter's figure
    return d.painter != nullptr;
  }

  // The RGB of a colour value: palette numbers, slot codes, layer codes; bit 128 is the background.
  uint32_t rgbOf(const Device& d, int32_t colour) const;
  void applyPen(Device& d, int32_t colour, int32_t style, int32_t width);
  void applyMode(Device& d);
  // The colour to set straight into the pixels for an exclusive-or hairline on a 32-bit
  // picture; nothing when the figure goes to the painter.
  std::optional<uint32_t> straightXorColour(Device& d);

  // Element drawing, all in store units on an open device.
  void drawItemFields(Device& d, const ItemFields& f, const std::string* text,
                      const std::string* face = nullptr);
  void drawPolygonRun(Device& d, ArrayHandle items, int32_t first, int32_t last);
  void rasterPolygonRun(Device& d, Raster& raster, DrawScratch& scratch, ArrayHandle items,
                        int32_t first, int32_t last);
  void drawEntry(Device& d, SymbolId id, const EntryRecord& e);
  // The members of an item array the device's view needs, in order; a polygon run once, whole.
  // Many members are drawn in two halves on both cores where the picture allows it.
  void drawItemArray(Device& d, ArrayHandle items, bool onlyShown);
  bool isOutlineView(const Device& d) const { return (d.view.Mode & viewflag::Outline) != 0; }

  // The span rasteriser serves when the pass draws into an image and not exclusive-or.
  Raster* rasterFor(Device& d) const {
    return d.raster && !(d.drawMode & drawmode::ExclusiveOr) ? d.raster.get() : nullptr;
  }
  // Draws a non-text item with the span rasteriser; false when it cannot.
  bool rasterItem(Device& d, Raster& r, DrawScratch& scratch, const ItemFields& f);
  QRgb qrgbOf(const Device& d, int32_t colour) const {
    uint32_t v = rgbOf(d, colour);
    return qRgb(redOf(v), greenOf(v), blueOf(v));
  }
};

}  // namespace tvx
