// Shapes and store elements drawn on an open device.
#include "kernel/GraphicsImpl.h"

#include "kernel/PlaneGeometry.h"

#include <QPainterPath>
#include <QPolygonF>

#include <cmath>
#include <optional>

namespace tvx {

namespace {

// Appends an arc (centre, radius, start, sweep in thousandths of a degree) to a path in device
// coordinates, from the end nearer to the path's current point when join is set.
void appendArc(const Device& d, QPainterPath& path, const ItemFields& f, bool join) {
  double r = std::abs(double(f.Width));
  double start = f.Height / 1000.0, sweep = f.Sweep / 1000.0;
  auto pointAt = [&](double degrees) {
    double a = degrees * RadiansPerDegree;
    return d.toDevice(f.X + r * std::cos(a), f.Y + r * std::sin(a));
  };
  QPointF from = pointAt(start), to = pointAt(start + sweep);
  if (join && path.elementCount() > 0) {
    QPointF here = path.currentPosition();
    if (QLineF(here, to).length() < QLineF(here, from).length()) {
      start += sweep;
      sweep = -sweep;
      std::swap(from, to);
    }
    path.lineTo(from);
  } else {
    path.moveTo(from);
  }
  double radiusPx = r * d.scale;
  if (!d.rasterImage && !d.usesShadow) {
    // A printer or a vector file takes the arc as curves: a tenth of the chords' size, and true
    // at any enlargement.
    const QPointF centre = d.toDevice(f.X, f.Y);
    const QRectF box(centre.x() - radiusPx, centre.y() - radiusPx, 2 * radiusPx, 2 * radiusPx);
    path.arcTo(box, d.mirror ? 180.0 - start : start, d.mirror ? -sweep : sweep);
    return;
  }
  int steps = std::max(2, int(std::ceil(std::abs(sweep) / 5.0)));
  if (radiusPx < 4)
    steps = std::min(steps, 8);
  for (int i = 1; i <= steps; ++i)
    path.lineTo(pointAt(start + sweep * i / steps));
}

// Points along an arc in device coordinates, close enough that no chord strays a quarter pixel.
void flattenArc(const Device& d, const ItemFields& f, ArcDirections& arcs,
                std::vector<QPointF>& out) {
  double r = std::abs(double(f.Width));
  double sweep = f.Sweep / 1000.0;
  double step = arcs.stepFor(r * d.scale);
  int steps = std::clamp(int(std::ceil(std::abs(sweep) / std::max(step, 0.5))), 1, 720);
  for (const auto& [cosine, sine] : arcs.along(f.Height, f.Sweep, steps))
    out.push_back(d.toDevice(f.X + r * cosine, f.Y + r * sine));
}

QPolygonF cornersOf(const Device& d, const ItemFields& f, size_t textLength) {
  double c = 1, s = 0;
  if (f.Angle % 360000 != 0) {
    double a = f.Angle / 1000.0 * RadiansPerDegree;
    c = std::cos(a);
    s = std::sin(a);
  }
  auto at = [&](double dx, double dy) {
    return d.toDevice(f.X + dx * c - dy * s, f.Y + dx * s + dy * c);
  };
  if (f.Type == ItemTriangle)
    return QPolygonF({d.toDevice(f.X, f.Y),
                      d.toDevice(double(f.X) + f.Width, double(f.Y) + f.Height),
                      d.toDevice(double(f.X) + f.Angle, double(f.Y) + f.Sweep)});
  double w = f.Width, h = f.Height;
  if (f.Type == ItemVectorText || f.Type == ItemTrueTypeText) {
    int32_t tw = 0, th = 0;
    textBoxSize(f.Type, f.Width, f.Height, textLength, tw, th);
    w = tw;
    h = th;
  }
  return QPolygonF({at(0, 0), at(w, 0), at(w, h), at(0, h)});
}

}  // namespace

bool Graphics::Impl::rasterItem(Device& d, Raster& r, DrawScratch& scratch, const ItemFields& f) {
  if (f.Type == ItemVectorText || f.Type == ItemTrueTypeText)
    return false;
  r.setColour(qrgbOf(d, f.Colour));
  bool skeleton = isOutlineView(d);
  bool filled = f.Style == StyleFilled && !skeleton;
  double pen = skeleton ? 0.0 : std::max(0, f.LineWidth) * d.scale;
  switch (f.Type) {
  case ItemLine:
    r.strokeSegment(d.toDevice(f.X, f.Y), d.toDevice(double(f.X) + f.Width, double(f.Y) + f.Height),
                    pen);
    return true;
  case ItemCircle: {
    double radius = std::abs(double(f.Width)) * d.scale;
    QPointF c = d.toDevice(f.X, f.Y);
    if (filled)
      r.fillDisc(c, radius);
    else {
      double half = std::max(pen, 1.0) / 2;
      r.fillRing(c, radius + half, radius - half);
    }
    return true;
  }
  case ItemArc: {
    double reach = std::abs(double(f.Width)) * d.scale;
    if (reach + pen / 2 < 1.0) {
      // Smaller than a pixel: the pixel under its centre stands for it.
      QPointF c = d.toDevice(f.X, f.Y);
      r.plot(int(std::floor(c.x())), int(std::floor(c.y())));
      return true;
    }
    std::vector<QPointF>& points = scratch.points;
    points.clear();
    flattenArc(d, f, scratch.arcs, points);
    for (size_t i = 1; i < points.size(); ++i)
      r.strokeSegment(points[i - 1], points[i], pen);
    return true;
  }
  case ItemTriangle:
  case ItemRectangle: {
    QPolygonF corners = cornersOf(d, f, 0);
    if (filled) {
      r.fillConvex(corners.constData(), int(corners.size()));
    } else {
      for (qsizetype i = 0; i < corners.size(); ++i)
        r.strokeSegment(corners[i], corners[(i + 1) % corners.size()], pen);
    }
    return true;
  }
  default:
    return false;
  }
}

void Graphics::Impl::drawItemFields(Device& d, const ItemFields& f, const std::string* text,
                                    const std::string* face) {
  if (Raster* r = rasterFor(d); r && rasterItem(d, *r, scratch_, f))
    return;
  if (!canPaint(d))
    return;
  QPainter& p = *d.painter;
  bool filled = f.Style == StyleFilled;
  switch (f.Type) {
  case ItemLine:
    applyPen(d, f.Colour, penstyle::Outline, f.LineWidth);
    p.drawLine(d.toDevice(f.X, f.Y), d.toDevice(double(f.X) + f.Width, double(f.Y) + f.Height));
    break;
  case ItemCircle: {
    applyPen(d, f.Colour, filled ? penstyle::Filled : penstyle::Outline, filled ? 0 : f.LineWidth);
    if (filled && !isOutlineView(d))
      p.setPen(Qt::NoPen);
    double r = std::abs(double(f.Width)) * d.scale;
    QPointF c = d.toDevice(f.X, f.Y);
    if (r < 0.5 && filled)
      r = 0.5;  // a disc smaller than a pixel still shows
    p.drawEllipse(c, r, r);
    break;
  }
  case ItemArc: {
    applyPen(d, f.Colour, penstyle::Outline, f.LineWidth);
    QPainterPath path;
    appendArc(d, path, f, false);
    p.drawPath(path);
    break;
  }
  case ItemTriangle:
  case ItemRectangle: {
    applyPen(d, f.Colour, filled ? penstyle::Filled : penstyle::Outline, filled ? 0 : f.LineWidth);
    if (filled && !isOutlineView(d))
      p.setPen(Qt::NoPen);
    QPolygonF corners = cornersOf(d, f, 0);
    QRectF bounds = corners.boundingRect();
    if (filled && bounds.width() < 1 && bounds.height() < 1)
      p.fillRect(QRectF(bounds.center() - QPointF(0.5, 0.5), QSizeF(1, 1)), p.brush());
    else
      p.drawPolygon(corners);
    break;
  }
  case ItemVectorText:
  case ItemTrueTypeText: {
    if (!text || text->empty())
      break;
    applyPen(d, f.Colour, penstyle::Outline, f.LineWidth);
    int32_t tw = 0, th = 0;
    textBoxSize(f.Type, f.Width, f.Height, text->size(), tw, th);
    double heightPx = th * d.scale;
    if (heightPx < 2) {
      // Too small to read: the text's box stands for it.
      p.setBrush(Qt::NoBrush);
      p.drawPolygon(cornersOf(d, f, text->size()));
      break;
    }
    QFont font;
    if (f.Type == ItemTrueTypeText && face && !face->empty())
      font.setFamily(QString::fromStdString(*face));
    font.setPixelSize(std::max(1, int(std::lround(heightPx))));
    p.save();
    QPointF origin = d.toDevice(f.X, f.Y);
    p.translate(origin);
    p.rotate(-(d.mirror ? -1 : 1) * f.Angle / 1000.0);
    if (d.mirror)
      p.scale(-1, 1);
    QPainterPath glyphs;
    glyphs.addText(0, 0, font, QString::fromStdString(*text));
    QRectF b = glyphs.boundingRect();
    if (b.width() > 0 && tw > 0)
      p.scale(tw * d.scale / b.width(), 1.0);
    p.fillPath(glyphs, p.pen().color());
    p.restore();
    break;
  }
  default:
    break;
  }
}

void Graphics::Impl::rasterPolygonRun(Device& d, Raster& raster, DrawScratch& scratch,
                                      ArrayHandle items, int32_t first, int32_t last) {
  // The outline as one ring of points; arcs are followed from the end nearer to the ring.
  std::vector<QPointF>& points = scratch.points;
  points.clear();
  ItemFields firstSide{};
  for (int32_t i = first; i <= last; ++i) {
    const ItemFields* side = store.itemFields(store.OA_Object(items, i));
    if (!side)
      return;
    const ItemFields& f = *side;
    if (i == first)
      firstSide = f;
    if (f.Type == ItemArc) {
      size_t start = points.size();
      flattenArc(d, f, scratch.arcs, points);
      if (start > 0 && points.size() > start + 1 &&
          QLineF(points[start - 1], points.back()).length() <
              QLineF(points[start - 1], points[start]).length())
        std::reverse(points.begin() + qsizetype(start), points.end());
    } else {
      points.push_back(d.toDevice(f.X, f.Y));
      if (f.Type == ItemLine)
        points.push_back(d.toDevice(double(f.X) + f.Width, double(f.Y) + f.Height));
    }
  }
  raster.setColour(qrgbOf(d, firstSide.Colour));
  if (firstSide.Style == StyleFilled && !isOutlineView(d)) {
    raster.fillPolygon(points);
  } else {
    double pen = isOutlineView(d) ? 0.0 : std::max(0, firstSide.LineWidth) * d.scale;
    for (size_t i = 0; i < points.size(); ++i)
      raster.strokeSegment(points[i], points[(i + 1) % points.size()], pen);
  }
}

void Graphics::Impl::drawPolygonRun(Device& d, ArrayHandle items, int32_t first, int32_t last) {
  if (Raster* raster = rasterFor(d)) {
    rasterPolygonRun(d, *raster, scratch_, items, first, last);
    return;
  }
  ItemRecord r;
  if (!canPaint(d))
    return;
  QPainterPath path;
  ItemFields firstSide;
  for (int32_t i = first; i <= last; ++i) {
    if (!store.I_ReadItem(store.OA_Object(items, i), r))
      return;
    ItemFields f = r;
    if (i == first)
      firstSide = f;
    if (f.Type == ItemArc) {
      appendArc(d, path, f, true);
    } else {
      QPointF a = d.toDevice(f.X, f.Y);
      if (path.elementCount() == 0)
        path.moveTo(a);
      else
        path.lineTo(a);
      if (f.Type == ItemLine)
        path.lineTo(d.toDevice(double(f.X) + f.Width, double(f.Y) + f.Height));
    }
  }
  path.closeSubpath();
  bool filled = firstSide.Style == StyleFilled && !isOutlineView(d);
  applyPen(d, firstSide.Colour, filled ? penstyle::Filled : penstyle::Outline, firstSide.LineWidth);
  if (filled) {
    d.painter->setPen(Qt::NoPen);
    path.setFillRule(Qt::OddEvenFill);
  }
  d.painter->drawPath(path);
}

void Graphics::Impl::drawEntry(Device& d, SymbolId id, const EntryRecord& e) {
  ObjectHandle pad = store.OM_Object(store.S_SymbolPadStackMap(id), e.PadStack);
  ArrayHandle items = store.S_PadStackItemArray(pad);
  Placement place{e.X, e.Y, e.Rotation, false};
  int32_t n = store.OA_GetCount(items);
  if ((d.view.Mode & viewflag::PadFrames) && n > 0) {
    // Pad frames: the pad's extent as an open rectangle in its first item's colour.
    ItemRecord r;
    store.I_ReadItem(store.OA_Object(items, 1), r);
    FrameRect f;
    ItemFields frame{};
    frame.Type = ItemRectangle;
    frame.Colour = r.Colour;
    bool any = false;
    for (int32_t i = 1; i <= n; ++i) {
      FrameRect one;
      if (!store.I_FrameItem(store.OA_Object(items, i), one))
        continue;
      if (any)
        f.unite(one);
      else
        f = one;
      any = true;
    }
    Box placed = placeBox({f.MinX, f.MinY, f.MaxX, f.MaxY}, place);
    frame.X = placed.minX;
    frame.Y = placed.minY;
    frame.Width = placed.maxX - placed.minX;
    frame.Height = placed.maxY - placed.minY;
    drawItemFields(d, frame, nullptr);
    return;
  }
  ItemRecord r;
  for (int32_t i = 1; i <= n; ++i) {
    if (!store.I_ReadItem(store.OA_Object(items, i), r))
      break;
    ItemFields f = r;
    placeItem(f, place);
    drawItemFields(d, f, &r.Text, &r.Face);
  }
  if (n == 0 && canPaint(d)) {
    // An entry without pad items shows as a small cross at its point.
    applyPen(d, 15, penstyle::Outline, 0);
    QPointF c = d.toDevice(e.X, e.Y);
    d.painter->drawLine(c - QPointF(2, 0), c + QPointF(2, 0));
    d.painter->drawLine(c - QPointF(0, 2), c + QPointF(0, 2));
  }
}

namespace {

// Exclusive-or of a colour into a row or a column of a 32-bit picture, clipped to it. The alpha
// byte is left as it is.
void xorRow(QImage& image, double y, double x0, double x1, uint32_t rgb) {
  const int row = int(std::floor(y));
  if (row < 0 || row >= image.height())
    return;
  const int from = int(std::max(0.0, std::floor(std::min(x0, x1))));
  const int to = int(std::min(double(image.width() - 1), std::floor(std::max(x0, x1))));
  auto* pixels = reinterpret_cast<uint32_t*>(image.scanLine(row));
  for (int x = from; x <= to; ++x)
    pixels[x] ^= rgb;
}

void xorColumn(QImage& image, double x, double y0, double y1, uint32_t rgb) {
  const int column = int(std::floor(x));
  if (column < 0 || column >= image.width())
    return;
  const int from = int(std::max(0.0, std::floor(std::min(y0, y1))));
  const int to = int(std::min(double(image.height() - 1), std::floor(std::max(y0, y1))));
  for (int y = from; y <= to; ++y)
    reinterpret_cast<uint32_t*>(image.scanLine(y))[column] ^= rgb;
}

}  // namespace

std::optional<uint32_t> Graphics::Impl::straightXorColour(Device& d) {
  // The rubber figures of the tools: exclusive-or hairlines on a 32-bit picture. Set straight
  // into the pixels, a step costs the pixels it touches; a painter costs far more to start up,
  // and hands long lines to its threads.
  const QImage* image = d.rasterImage;
  if (!(d.drawMode & drawmode::ExclusiveOr) || d.style != penstyle::Outline || !image ||
      (image->format() != QImage::Format_RGB32 && image->format() != QImage::Format_ARGB32 &&
       image->format() != QImage::Format_ARGB32_Premultiplied) ||
      (!isOutlineView(d) && std::max(0, d.width) * d.scale >= 1.0))
    return std::nullopt;
  if (d.raster)
    d.raster->flush();
  return qrgbOf(d, d.colour) & 0xFFFFFFu;
}

int32_t Graphics::G_Line(int32_t dev, int32_t x1, int32_t y1, int32_t x2, int32_t y2) {
  Device* d = impl_->paintingDevice(dev);
  if (!d)
    return 0;
  const QPointF a = d->toDevice(x1, y1), b = d->toDevice(x2, y2);
  if (std::floor(a.y()) == std::floor(b.y()) || std::floor(a.x()) == std::floor(b.x())) {
    if (const std::optional<uint32_t> rgb = impl_->straightXorColour(*d)) {
      if (std::floor(a.y()) == std::floor(b.y()))
        xorRow(*d->rasterImage, a.y(), a.x(), b.x(), *rgb);
      else
        xorColumn(*d->rasterImage, a.x(), a.y(), b.y(), *rgb);
      return 1;
    }
  }
  impl_->applyPen(*d, d->colour, d->style, d->width);
  d->painter->drawLine(a, b);
  return 1;
}

int32_t Graphics::G_Rectangle(int32_t dev, int32_t x, int32_t y, int32_t width, int32_t height) {
  Device* d = impl_->paintingDevice(dev);
  if (!d)
    return 0;
  const QRectF r =
      QRectF(d->toDevice(x, y), d->toDevice(double(x) + width, double(y) + height)).normalized();
  if (const std::optional<uint32_t> colour = impl_->straightXorColour(*d)) {
    const uint32_t rgb = *colour;
    // Every pixel of the outline once, corners too, so that drawing it twice restores them.
    QImage& image = *d->rasterImage;
    xorRow(image, r.top(), r.left(), r.right(), rgb);
    if (std::floor(r.bottom()) != std::floor(r.top()))
      xorRow(image, r.bottom(), r.left(), r.right(), rgb);
    if (std::floor(r.bottom()) - std::floor(r.top()) >= 2) {
      xorColumn(image, r.left(), std::floor(r.top()) + 1, std::floor(r.bottom()) - 1, rgb);
      if (std::floor(r.right()) != std::floor(r.left()))
        xorColumn(image, r.right(), std::floor(r.top()) + 1, std::floor(r.bottom()) - 1, rgb);
    }
    return 1;
  }
  impl_->applyPen(*d, d->colour, d->style, d->width);
  d->painter->drawRect(r);
  return 1;
}

int32_t Graphics::G_Circle(int32_t dev, int32_t x, int32_t y, int32_t radius) {
  Device* d = impl_->paintingDevice(dev);
  if (!d)
    return 0;
  impl_->applyPen(*d, d->colour, d->style, d->width);
  double r = std::abs(double(radius)) * d->scale;
  d->painter->drawEllipse(d->toDevice(x, y), r, r);
  return 1;
}

int32_t Graphics::G_Triangle(int32_t dev, int32_t x1, int32_t y1, int32_t x2, int32_t y2,
                             int32_t x3, int32_t y3) {
  Device* d = impl_->paintingDevice(dev);
  if (!d)
    return 0;
  impl_->applyPen(*d, d->colour, d->style, d->width);
  d->painter->drawPolygon(
      QPolygonF({d->toDevice(x1, y1), d->toDevice(x2, y2), d->toDevice(x3, y3)}));
  return 1;
}

int32_t Graphics::S_DrawSymbol(int32_t dev, SymbolId id, int32_t items, int32_t entries) {
  Device* d = impl_->openDevice(dev);
  Store& store = impl_->store;
  if (!d || store.S_Symbol(id) == ObjectHandle::None)
    return 0;
  // The span rasteriser keeps the symbol's shapes and draws them on both cores before returning.
  Raster* raster = impl_->rasterFor(*d);
  if (raster)
    raster->beginBatch();
  if (items)
    impl_->drawItemArray(*d, store.S_SymbolItemArray(id), true);
  if (entries) {
    ArrayHandle array = store.S_SymbolEntryArray(id);
    std::vector<int32_t> positions;
    bool indexed = store.membersInBox(array, d->visibleFrame(), positions);
    if (!indexed)
      for (int32_t i = 1, n = store.OA_GetCount(array); i <= n; ++i)
        positions.push_back(i);
    EntryRecord e;
    for (int32_t i : positions)
      if (store.S_ReadEntry(id, i, e) && (e.Attributes & attr::Shown))
        impl_->drawEntry(*d, id, e);
  }
  if (raster)
    raster->endBatch();
  return 1;
}

int32_t Graphics::S_DrawItem(int32_t dev, SymbolId id, int32_t index) {
  Device* d = impl_->openDevice(dev);
  ItemRecord r;
  if (!d || !impl_->store.I_ReadItem(impl_->store.S_SymbolItem(id, index), r))
    return 0;
  impl_->drawItemFields(*d, r, &r.Text, &r.Face);
  return 1;
}

int32_t Graphics::S_DrawEntry(int32_t dev, SymbolId id, int32_t index) {
  Device* d = impl_->openDevice(dev);
  EntryRecord e;
  if (!d || !impl_->store.S_ReadEntry(id, index, e))
    return 0;
  impl_->drawEntry(*d, id, e);
  return 1;
}

int32_t Graphics::I_DrawItem(int32_t dev, ObjectHandle item) {
  Device* d = impl_->openDevice(dev);
  ItemRecord r;
  if (!d || !impl_->store.I_ReadItem(item, r))
    return 0;
  impl_->drawItemFields(*d, r, &r.Text, &r.Face);
  return 1;
}

}  // namespace tvx
