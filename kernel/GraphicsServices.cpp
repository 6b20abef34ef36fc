// The drawing engine's smaller services: grid, geometry helpers, text sizes, clipboard, cursors.
#include "kernel/GraphicsImpl.h"

#include <QClipboard>
#include <QFontMetricsF>
#include <QGuiApplication>

#include <algorithm>
#include <cmath>
#include <limits>

namespace tvx {

int32_t Graphics::I_DrawItemPoly(int32_t dev, int32_t itemOrArray, int32_t a, int32_t b) {
  Device* d = impl_->openDevice(dev);
  if (!d)
    return 0;
  const std::string* text = nullptr;
  if (const ItemFields* f = impl_->store.itemFields(objectHandle(itemOrArray), &text)) {
    ItemFields moved = *f;
    placeItem(moved, Placement{a, b, 0, false});
    impl_->drawItemFields(*d, moved, text);
    return 1;
  }
  int32_t count = impl_->store.OA_GetCount(arrayHandle(itemOrArray));
  if (a < 1 || b < a || b > count)
    return 0;
  impl_->drawPolygonRun(*d, arrayHandle(itemOrArray), a, b);
  return 1;
}

int32_t Graphics::G_SetGridMode(int32_t dev, int32_t mode) {
  Device* d = impl_->device(dev);
  if (!d || mode < 1 || mode > 3)
    return 0;
  d->gridMode = mode;
  return 1;
}

int32_t Graphics::G_GetGridMode(int32_t dev) const {
  Device* d = impl_->device(dev);
  return d ? d->gridMode : 0;
}

int32_t Graphics::G_DrawGrid(int32_t dev, const FrameRect& r, int32_t step, int32_t flag) {
  Device* d = impl_->paintingDevice(dev);
  if (!d || step <= 0)
    return step;
  int64_t used = step;
  while (used * d->scale < MinimumGridPixels && used < 2000000000)
    used *= 2;
  if (!flag)
    return int32_t(used);
  // The rectangle in store units, then every grid point that falls in it.
  int32_t x0 = std::min(r.MinX, r.MaxX), x1 = std::max(r.MinX, r.MaxX);
  int32_t y0 = std::min(r.MinY, r.MaxY), y1 = std::max(r.MinY, r.MaxY);
  int32_t ax = x0, ay = y1, bx = x1, by = y0;
  G_DPtoLP(dev, ax, ay);
  G_DPtoLP(dev, bx, by);
  int64_t sx0 = std::min(ax, bx), sx1 = std::max(ax, bx), sy0 = std::min(ay, by),
          sy1 = std::max(ay, by);
  auto firstMultiple = [&](int64_t v) {
    int64_t q = v / used;
    return (q * used < v ? q + 1 : q) * used;
  };
  // Slot codes of the grid's colours: 62 dots, 36 lines, 37 crosses.
  const int32_t dotColour = 64 + 30, lineColour = 64 + 4, crossColour = 64 + 5;
  QPainter& p = *d->painter;
  // By exclusive-or the pen is the colour taken with the background's, so that a point over the
  // background shows the grid's own colour and drawing the grid twice takes it away again.
  const bool exclusive = (d->drawMode & drawmode::ExclusiveOr) != 0;
  const QRgb background = impl_->qrgbOf(*d, 128);
  auto setPen = [&](int32_t colour) {
    QRgb rgb = impl_->qrgbOf(*d, colour);
    if (exclusive)
      rgb = (rgb ^ background) | 0xFF000000u;
    QPen pen{QColor(rgb)};
    pen.setCosmetic(true);
    pen.setWidth(1);
    p.setPen(pen);
    p.setRenderHint(QPainter::Antialiasing, false);
  };
  if (d->gridMode == 2) {
    setPen(lineColour);
    for (int64_t x = firstMultiple(sx0); x <= sx1; x += used)
      p.drawLine(d->toDevice(double(x), double(sy0)), d->toDevice(double(x), double(sy1)));
    for (int64_t y = firstMultiple(sy0); y <= sy1; y += used)
      p.drawLine(d->toDevice(double(sx0), double(y)), d->toDevice(double(sx1), double(y)));
  } else {
    setPen(d->gridMode == 3 ? crossColour : dotColour);
    for (int64_t x = firstMultiple(sx0); x <= sx1; x += used)
      for (int64_t y = firstMultiple(sy0); y <= sy1; y += used) {
        QPointF c = d->toDevice(double(x), double(y));
        QPoint px(int(std::floor(c.x())), int(std::floor(c.y())));
        if (d->gridMode == 3) {
          // The upright stroke leaves out the middle, which the level one holds: every pixel
          // of a cross is set once.
          p.drawLine(px - QPoint(2, 0), px + QPoint(2, 0));
          p.drawLine(px - QPoint(0, 2), px - QPoint(0, 1));
          p.drawLine(px + QPoint(0, 1), px + QPoint(0, 2));
        } else {
          p.drawPoint(px);
        }
      }
  }
  impl_->applyMode(*d);
  return int32_t(used);
}

void Graphics::G_ArcNormalize(int32_t&, int32_t&, int32_t& radius, int32_t& start, int32_t& sweep) {
  radius = radius < 0 ? -radius : radius;
  normaliseArc(start, sweep);
}

int64_t Graphics::G_LinePointDeterminant(int32_t x1, int32_t y1, int32_t x2, int32_t y2, int32_t x3,
                                         int32_t y3) {
  // Differences of 33 bits give products of 66: worked in 128 bits, held at the ends of 64, so
  // that the sign and a zero stay true.
  const __int128 d = __int128(int64_t(x2) - x1) * (int64_t(y3) - y1) -
                     __int128(int64_t(y2) - y1) * (int64_t(x3) - x1);
  constexpr __int128 top = std::numeric_limits<int64_t>::max();
  return int64_t(d > top ? top : d < -top ? -top : d);
}

int32_t Graphics::DB_CoverRectangle(int32_t x, int32_t y, int32_t inclusive, int32_t x0, int32_t y0,
                                    int32_t x1, int32_t y1) {
  int32_t minX = std::min(x0, x1), maxX = std::max(x0, x1);
  int32_t minY = std::min(y0, y1), maxY = std::max(y0, y1);
  if (inclusive)
    return x >= minX && x <= maxX && y >= minY && y <= maxY;
  return x > minX && x < maxX && y > minY && y < maxY;
}

void Graphics::G_GetTextSize(int32_t size1, int32_t size2, int32_t length, int32_t& width,
                             int32_t& height) {
  textBoxSize(ItemVectorText, size1, size2, size_t(std::max(0, length)), width, height);
}

int32_t Graphics::G_GetTrueTypeTextSize(int32_t, int32_t size, const std::string& text,
                                        const std::string& face, int32_t style, int32_t& width,
                                        int32_t& height) const {
  width = height = 0;
  if (size <= 0 || !QGuiApplication::instance())
    return 0;
  // Measured at a 100-pixel font and scaled, so that huge store sizes stay exact.
  QFont font(QString::fromStdString(face));
  font.setPixelSize(100);
  font.setBold(style & 1);
  font.setItalic(style & 2);
  QFontMetricsF metrics(font);
  double factor = size / 100.0;
  width = clampToInt32(metrics.horizontalAdvance(QString::fromStdString(text)) * factor);
  height = clampToInt32(metrics.height() * factor);
  return 1;
}

namespace {
const QImage* pictureOf(const Device* d) {
  if (!d)
    return nullptr;
  if (d->usesShadow)
    return &d->shadow;
  return d->target->devType() == QInternal::Image ? static_cast<const QImage*>(d->target) : nullptr;
}
}  // namespace

int32_t Graphics::G_CopyToClipBoard(int32_t dev) {
  const QImage* picture = pictureOf(impl_->device(dev));
  if (!picture || picture->isNull() || !QGuiApplication::clipboard())
    return 0;
  QGuiApplication::clipboard()->setImage(*picture);
  return 1;
}

int32_t Graphics::G_CopyScreen(int32_t dev, int32_t x, int32_t y, int32_t width, int32_t height) {
  const QImage* picture = pictureOf(impl_->device(dev));
  QRect area =
      QRect(x, y, width, height).normalized().intersected(picture ? picture->rect() : QRect());
  if (!picture || area.isEmpty() || !QGuiApplication::clipboard())
    return 0;
  QGuiApplication::clipboard()->setImage(picture->copy(area));
  return 1;
}

int32_t Graphics::G_SelectCur(int32_t number) {
  static constexpr Qt::CursorShape Shapes[] = {
      Qt::ArrowCursor,   Qt::ArrowCursor,        Qt::CrossCursor, Qt::OpenHandCursor,
      Qt::SizeAllCursor, Qt::PointingHandCursor, Qt::WaitCursor};
  Qt::CursorShape shape = number >= 1 && number <= 6 ? Shapes[number] : Qt::ArrowCursor;
  impl_->cursors.push_back(std::make_unique<QCursor>(shape));
  return int32_t(impl_->cursors.size());
}

int32_t Graphics::G_DelCur(int32_t handle) {
  if (handle < 1 || size_t(handle) > impl_->cursors.size() || !impl_->cursors[size_t(handle) - 1])
    return 0;
  impl_->cursors[size_t(handle) - 1].reset();
  return 1;
}

const QCursor* Graphics::cursor(int32_t handle) const {
  if (handle < 1 || size_t(handle) > impl_->cursors.size())
    return nullptr;
  return impl_->cursors[size_t(handle) - 1].get();
}

}  // namespace tvx
