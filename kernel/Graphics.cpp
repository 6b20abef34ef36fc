// Devices, passes, pens and colours of the drawing engine.
#include "kernel/GraphicsImpl.h"

#include <QFont>
#include <QFontMetricsF>
#include <QImage>
#include <QPaintDevice>

#include <algorithm>
#include <cmath>

namespace tvx {

FrameRect Device::visibleFrame() const {
  double halfW = view.Width / 2.0 / scale, halfH = view.Height / 2.0 / scale;
  return {clampToInt32(std::floor(view.OriginX - halfW)),
          clampToInt32(std::floor(view.OriginY - halfH)),
          clampToInt32(std::ceil(view.OriginX + halfW)),
          clampToInt32(std::ceil(view.OriginY + halfH))};
}

Graphics::Graphics(Store& store, KernelStrings& strings)
    : impl_(std::make_unique<Impl>(store, strings)) {}

Graphics::~Graphics() = default;

int32_t Graphics::G_GetDC(QPaintDevice* target, std::function<void()> onPresent) {
  if (!target)
    return 0;
  auto d = std::make_unique<Device>();
  d->target = target;
  d->onPresent = std::move(onPresent);
  // A widget can only be painted from its own paint handling: it is shown from a shadow image.
  d->usesShadow = target->devType() == QInternal::Widget;
  d->keepsPainter = target->devType() == QInternal::Printer;
  d->palette = paletteRgb();
  for (size_t i = 0; i < impl_->devices.size(); ++i)
    if (!impl_->devices[i]) {
      impl_->devices[i] = std::move(d);
      return int32_t(i + 1);
    }
  impl_->devices.push_back(std::move(d));
  return int32_t(impl_->devices.size());
}

int32_t Graphics::G_DeleteDC(int32_t dev) {
  Device* d = impl_->device(dev);
  if (!d)
    return 0;
  if (d->painter && d->painter->isActive())
    d->painter->end();
  impl_->devices[size_t(dev) - 1].reset();
  textModes_.erase(dev);
  return 1;
}

int32_t Graphics::G_OpenDC(int32_t dev, const ViewSetup& view, int32_t mode) {
  Device* d = impl_->device(dev);
  if (!d || view.Scale <= 0 || view.Width <= 0 || view.Height <= 0)
    return 0;
  if (d->open)
    G_CloseDC(dev, 0);
  d->view = view;
  d->openMode = mode;
  d->scale = 1.0 / view.Scale;
  d->offsetX = view.Width / 2.0;
  d->offsetY = view.Height / 2.0;
  d->mirror = (view.Mode & viewflag::Mirror) != 0;
  d->rasterOnly = !d->usesShadow && d->target->devType() == QInternal::Image &&
                  static_cast<QImage*>(d->target)->format() == QImage::Format_Indexed8;
  d->figuresLeftOut = false;
  if (d->keepsPainter && d->painter && d->painter->isActive()) {
    // The next sheet of the same printer document: the painter goes on.
    d->painter->resetTransform();
    d->painter->setClipping(false);
  } else {
    d->painter = d->rasterOnly ? nullptr : std::make_unique<QPainter>();
  }
  if (d->rasterOnly || (d->keepsPainter && d->painter->isActive())) {
    // No painter draws into an 8-bit picture: the span rasteriser alone does.
  } else if (d->usesShadow) {
    if (d->shadow.width() != view.Width || d->shadow.height() != view.Height)
      G_CreateShadowBitmap(dev);
    if (!d->painter->begin(&d->shadow))
      return 0;
  } else if (!d->painter->begin(d->target)) {
    d->painter.reset();
    return 0;
  }
  if (d->painter)
    d->painter->setRenderHint(QPainter::Antialiasing, true);
  d->rasterImage = d->usesShadow                              ? &d->shadow
                   : d->target->devType() == QInternal::Image ? static_cast<QImage*>(d->target)
                                                              : nullptr;
  if (d->rasterImage && Raster::draws(*d->rasterImage))
    d->raster = std::make_unique<Raster>(*d->rasterImage);
  else
    d->raster.reset();
  d->open = true;
  d->drawMode = drawmode::Normal;
  impl_->applyMode(*d);
  return 1;
}

int32_t Graphics::G_CloseDC(int32_t dev, int32_t flag) {
  Device* d = impl_->device(dev);
  if (!d || !d->open)
    return 0;
  // A printer's document ends with its painter: that waits for G_DeleteDC.
  if (!d->keepsPainter) {
    if (d->painter)
      d->painter->end();
    d->painter.reset();
  }
  if (d->rasterOnly && d->raster) {
    d->rasterImage->setColorTable(d->raster->palette());
    d->figuresLeftOut = d->figuresLeftOut || d->raster->paletteOverflowed();
  }
  d->raster.reset();
  d->open = false;
  if (flag && d->onPresent)
    d->onPresent();
  return 1;
}

const QImage* Graphics::shadowImage(int32_t dev) const {
  Device* d = impl_->device(dev);
  return d && d->usesShadow ? &d->shadow : nullptr;
}

bool Graphics::figuresLeftOut(int32_t dev) const {
  Device* d = impl_->device(dev);
  return d && d->figuresLeftOut;
}

int32_t Graphics::G_CreateShadowBitmap(int32_t dev) {
  Device* d = impl_->device(dev);
  if (!d)
    return 0;
  QColor bg = QColor::fromRgb(redOf(impl_->rgbOf(*d, d->background)),
                              greenOf(impl_->rgbOf(*d, d->background)),
                              blueOf(impl_->rgbOf(*d, d->background)));
  if (d->usesShadow) {
    int w = std::max(1, d->view.Width), h = std::max(1, d->view.Height);
    if (d->shadow.width() != w || d->shadow.height() != h)
      d->shadow = QImage(w, h, QImage::Format_RGB32);
    if (d->open && d->painter->isActive()) {
      d->painter->save();
      d->painter->setCompositionMode(QPainter::CompositionMode_Source);
      d->painter->fillRect(QRect(0, 0, w, h), bg);
      d->painter->restore();
    } else {
      d->shadow.fill(bg);
    }
  } else if (d->open && d->rasterOnly) {
    d->raster->setColour(bg.rgb());
    d->raster->fill();
  } else if (d->open) {
    // A direct surface: clear the picture area to the background.
    d->painter->save();
    d->painter->setCompositionMode(QPainter::CompositionMode_Source);
    d->painter->fillRect(QRectF(0, 0, d->view.Width, d->view.Height), bg);
    d->painter->restore();
  }
  return 1;
}

int32_t Graphics::G_ChangeBackgroundColor(int32_t dev, int32_t colour) {
  Device* d = impl_->device(dev);
  if (!d)
    return 0;
  d->background = colour & 127;
  return 1;
}

int32_t Graphics::G_CopyRGBColors(int32_t, int32_t dev) {
  Device* d = impl_->device(dev);
  if (!d)
    return 0;
  d->palette = paletteRgb();
  return 1;
}

int32_t Graphics::G_GetThickPens(int32_t dev) const {
  Device* d = impl_->device(dev);
  return d ? d->thickPens : 0;
}

int32_t Graphics::G_FreeThickPen(int32_t dev, int32_t, int32_t) {
  Device* d = impl_->device(dev);
  if (!d)
    return 0;
  d->thickPens = 0;
  return 1;
}

int32_t Graphics::G_SetColor(int32_t dev, int32_t colour) {
  Device* d = impl_->device(dev);
  if (!d)
    return 0;
  d->colour = colour;
  return 1;
}

int32_t Graphics::G_SetOneColour(int32_t dev, int32_t colour, int32_t clearColour) {
  Device* d = impl_->device(dev);
  if (!d)
    return 0;
  d->oneColour = colour < 0 ? -1 : colour;
  d->oneColourClear = clearColour;
  return 1;
}

int32_t Graphics::G_SetStyle(int32_t dev, int32_t style) {
  Device* d = impl_->device(dev);
  if (!d)
    return 0;
  d->style = style;
  return 1;
}

int32_t Graphics::G_SetWidth(int32_t dev, int32_t width) {
  Device* d = impl_->device(dev);
  if (!d)
    return 0;
  if (width > 0 && width != d->width)
    ++d->thickPens;  // each new width is one more prepared pen until they are freed
  d->width = width;
  return 1;
}

int32_t Graphics::G_SetDrawMode(int32_t dev, int32_t mode) {
  Device* d = impl_->device(dev);
  if (!d)
    return 0;
  d->drawMode = mode;
  if (d->open)
    impl_->applyMode(*d);
  return 1;
}

void Graphics::Impl::applyMode(Device& d) {
  if (!d.painter || !d.painter->isActive())
    return;
  bool xorMode = (d.drawMode & drawmode::ExclusiveOr) != 0;
  // Exclusive-or only exists on raster surfaces; elsewhere the figure is drawn plainly.
  bool raster = d.usesShadow || d.target->devType() == QInternal::Image;
  d.painter->setCompositionMode(xorMode && raster ? QPainter::RasterOp_SourceXorDestination
                                                  : QPainter::CompositionMode_SourceOver);
  // Exclusive-or must hit exact pixels twice: no antialiasing.
  d.painter->setRenderHint(QPainter::Antialiasing, !xorMode);
}

uint32_t Graphics::Impl::rgbOf(const Device& d, int32_t colour) const {
  if (d.oneColour >= 0)
    colour = uint8_t(colour == d.oneColourClear ? (d.oneColour | ColourMarkBit) : d.oneColour);
  if (colour & 128)
    colour = d.background;
  colour &= 127;
  int paletteNumber = colour;
  if (colour >= 32 && colour < 96) {
    int slot = colour < 64 ? colour - 32 : 32 + (colour - 64);
    const uint8_t* slotTable = strings.E_SysTable(1);
    paletteNumber = slotTable ? slotTable[slot] : 0;
  } else if (colour >= 96) {
    const uint8_t* layers = strings.E_SysTable(2);
    paletteNumber = layers ? layers[colour - 96] : 0;
  }
  return d.palette[size_t(paletteNumber) % PaletteSize];
}

void Graphics::Impl::applyPen(Device& d, int32_t colour, int32_t style, int32_t width) {
  uint32_t rgb = rgbOf(d, colour);
  QColor c = QColor::fromRgb(redOf(rgb), greenOf(rgb), blueOf(rgb));
  bool skeleton = isOutlineView(d);
  double px = skeleton ? 0.0 : std::max(0, width) * d.scale;
  QPen pen(c);
  if (px < 1.0) {
    pen.setWidthF(1.0);
    pen.setCosmetic(true);
  } else {
    pen.setWidthF(px);
  }
  pen.setCapStyle(Qt::RoundCap);
  pen.setJoinStyle(Qt::RoundJoin);
  if (style == penstyle::Dotted)
    pen.setStyle(Qt::DotLine);
  else if (style == penstyle::Dashed)
    pen.setStyle(Qt::DashLine);
  d.painter->setPen(pen);
  bool filled = (style & penstyle::Filled) && !skeleton;
  d.painter->setBrush(filled ? QBrush(c) : Qt::NoBrush);
}

int32_t Graphics::G_SetTextMode(int32_t dev, int32_t horizontal, int32_t vertical,
                                int32_t transparent) {
  if (!impl_->device(dev))
    return 0;
  TextMode& mode = textModes_[dev];
  mode.horizontal = std::clamp(horizontal, 0, 2);
  mode.vertical = std::clamp(vertical, 0, 2);
  mode.transparent = transparent != 0;
  return 1;
}

int32_t Graphics::G_SetTextMirror(int32_t dev, int32_t mirror) {
  if (!impl_->device(dev))
    return 0;
  textModes_[dev].mirror = mirror != 0;
  return 1;
}

int32_t Graphics::G_PixelText(int32_t dev, int32_t x, int32_t y, int32_t pixelSize,
                              const std::string& text) {
  Device* d = impl_->paintingDevice(dev);
  if (!d || pixelSize <= 0 || text.empty() || !impl_->canPaint(*d))
    return 0;
  const auto found = textModes_.find(dev);
  const TextMode mode = found == textModes_.end() ? TextMode{} : found->second;
  QPainter& painter = *d->painter;
  painter.save();
  QFont font = painter.font();
  font.setPixelSize(pixelSize);
  // Pixel text is small: its glyphs are set on whole pixels, unsmoothed, so that exclusive-or
  // text sets the same pixels twice and a mirrored text is its plain one turned over.
  font.setStyleStrategy(QFont::NoAntialias);
  font.setHintingPreference(QFont::PreferFullHinting);
  painter.setFont(font);
  painter.setRenderHint(QPainter::TextAntialiasing, false);
  const QString label = QString::fromStdString(text);
  const QFontMetricsF metrics(font, d->target);
  const QSize size(int(std::ceil(metrics.horizontalAdvance(label))),
                   int(std::ceil(metrics.height())));
  if (size.isEmpty()) {
    painter.restore();
    return 0;
  }
  const QPointF at = d->toDevice(x, y);
  const QPointF corner(std::round(at.x() - size.width() * mode.horizontal / 2.0),
                       std::round(at.y() - size.height() * mode.vertical / 2.0));
  if (!mode.transparent)
    painter.fillRect(QRectF(corner, QSizeF(size)), QColor::fromRgb(impl_->qrgbOf(*d, 128)));
  // The glyphs are set apart and turned over as a picture, so that a mirrored text is exactly
  // its plain one read backwards.
  QImage glyphs(size, QImage::Format_ARGB32_Premultiplied);
  glyphs.fill(Qt::transparent);
  {
    QPainter setter(&glyphs);
    setter.setRenderHint(QPainter::TextAntialiasing, false);
    setter.setFont(font);
    setter.setPen(QColor::fromRgb(impl_->qrgbOf(*d, d->colour)));
    setter.drawText(QPointF(0, metrics.ascent()), label);
  }
  if (mode.mirror)
    glyphs = glyphs.mirrored(true, false);
  painter.drawImage(corner, glyphs);
  painter.restore();
  return 1;
}

int32_t Graphics::G_DPtoLP(int32_t dev, int32_t& x, int32_t& y) const {
  Device* d = impl_->device(dev);
  if (!d || d->view.Scale <= 0)
    return 0;
  double dx = (x - d->offsetX) / d->scale;
  if (d->mirror)
    dx = -dx;
  double sx = dx + d->view.OriginX;
  double sy = (d->offsetY - y) / d->scale + d->view.OriginY;
  x = clampToInt32(sx);
  y = clampToInt32(sy);
  return 1;
}

int32_t Graphics::G_LPtoDP(int32_t dev, int32_t& x, int32_t& y) const {
  Device* d = impl_->device(dev);
  if (!d || d->view.Scale <= 0)
    return 0;
  double dx = (double(x) - d->view.OriginX) * d->scale;
  if (d->mirror)
    dx = -dx;
  x = clampToInt32(std::floor(dx + d->offsetX));
  y = clampToInt32(std::floor(d->offsetY - (double(y) - d->view.OriginY) * d->scale));
  return 1;
}

int32_t Graphics::G_AngleAdj(int32_t angle) { return normalisedAngle(angle); }

void Graphics::G_GetAllRGBColors(int32_t, uint32_t* table) {
  if (!table)
    return;
  const auto& p = paletteRgb();
  std::copy(p.begin(), p.end(), table);
}

}  // namespace tvx
