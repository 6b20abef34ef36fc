// Drawing the members of an item array: in order, a polygon run once and whole; many members on
// both cores, the later half into a picture of its own that is laid over the first half's.
#include "kernel/GraphicsImpl.h"

#include <functional>
#include <thread>

namespace tvx {

namespace {

// Fewer members than this are drawn on one core: a second picture to clear and lay over costs
// a few milliseconds.
constexpr size_t MembersForTwoHalves = 65536;
// A larger picture (a print or export at a high resolution) is drawn on one core: a second
// picture of its size would double its memory, and its shapes are large enough for the
// rasteriser's two bands.
constexpr qsizetype MostPixelsForTwoHalves = qsizetype(1) << 24;

bool isText(const ItemFields& f) { return f.Type == ItemVectorText || f.Type == ItemTrueTypeText; }

// Draws the members it is given, in order, each polygon run once from the member that reaches it
// first. Without a raster of its own it draws as the device does (the rasteriser or the painter);
// with one it draws with that rasteriser alone and stops at the first member only a painter draws.
class ItemWalk {
public:
  ItemWalk(Graphics::Impl& graphics, Device& device, ArrayHandle items, int32_t count,
           bool onlyShown, Raster* raster, DrawScratch& scratch)
      : g_(graphics), d_(device), items_(items), count_(count), onlyShown_(onlyShown),
        raster_(raster), scratch_(scratch) {}

  // f: the fields of member i when the caller has them already.
  void operator()(int32_t i, const ItemFields* f) {
    if (stopped_)
      return;
    const std::string* text = nullptr;
    const std::string* face = nullptr;
    if (!f || isText(*f))
      f = g_.store.itemFields(g_.store.OA_Object(items_, i), &text, &face);
    if (!f || (onlyShown_ && !(f->Attributes & attr::Shown)))
      return;
    if (f->Attributes & attr::PolygonSide) {
      drawRunOf(i, *f);
      return;
    }
    if (!raster_)
      g_.drawItemFields(d_, *f, text, face);
    else if (!g_.rasterItem(d_, *raster_, scratch_, *f))
      stopped_ = true;
  }

  // The member the walk stopped at: one only a painter draws.
  bool stopped() const { return stopped_; }

private:
  int32_t statusAt(int32_t i) const {
    const ItemFields* f = g_.store.itemFields(g_.store.OA_Object(items_, i));
    return f ? f->Attributes : 0;
  }

  void drawRunOf(int32_t i, const ItemFields& f) {
    if (i <= lastRunDrawn_)
      return;
    int32_t first = i, last = i;
    int32_t status = f.Attributes;
    while (first > 1 && !(status & attr::PolygonFirst)) {
      status = statusAt(first - 1);
      if (!(status & attr::PolygonSide) || (status & attr::PolygonLast))
        break;
      --first;
    }
    status = f.Attributes;
    while (last < count_ && !(status & attr::PolygonLast)) {
      status = statusAt(last + 1);
      if (!(status & attr::PolygonSide) || (status & attr::PolygonFirst))
        break;
      ++last;
    }
    lastRunDrawn_ = last;
    if (raster_)
      g_.rasterPolygonRun(d_, *raster_, scratch_, items_, first, last);
    else
      g_.drawPolygonRun(d_, items_, first, last);
  }

  Graphics::Impl& g_;
  Device& d_;
  ArrayHandle items_;
  int32_t count_;
  bool onlyShown_;
  Raster* raster_;
  DrawScratch& scratch_;
  int32_t lastRunDrawn_ = 0;
  bool stopped_ = false;
};

// Lays the pixels drawn into later (those with alpha) over picture.
void layOver(QImage& picture, const QImage& later) {
  for (int y = 0; y < picture.height(); ++y) {
    auto* to = reinterpret_cast<QRgb*>(picture.scanLine(y));
    const auto* from = reinterpret_cast<const QRgb*>(later.constScanLine(y));
    for (int x = 0; x < picture.width(); ++x)
      if (from[x] >> 24)
        to[x] = from[x];
  }
}

}  // namespace

void Graphics::Impl::drawItemArray(Device& d, ArrayHandle items, bool onlyShown) {
  const int32_t count = store.OA_GetCount(items);
  if (count == 0)
    return;
  std::vector<Store::ItemInBox> met;
  const bool every = store.drawsEveryItem(items, d.visibleFrame(), met);
  const size_t members = every ? size_t(count) : met.size();
  // Members [from, to) of what the view needs.
  const auto drawMembers = [&](size_t from, size_t to, ItemWalk& walk) {
    if (every) {
      // By reference: the walk keeps its state (the run drawn last, where it stopped).
      store.forEachItem(items, int32_t(from + 1), int32_t(to), std::ref(walk));
      return;
    }
    // The members lie scattered in memory; fetching a few ahead hides most of the misses.
    constexpr size_t Ahead = 8;
    for (size_t k = from; k < to; ++k) {
      if (k + Ahead < to)
        __builtin_prefetch(met[k + Ahead].fields);
      walk(met[k].position, met[k].fields);
    }
  };
  ItemWalk walk(*this, d, items, count, onlyShown, nullptr, scratch_);

  // Two halves need a 32-bit picture the rasteriser draws (every pixel it sets is opaque, so the
  // later half's pixels laid over the first half's give the picture drawn in order).
  Raster* raster = rasterFor(d);
  const bool twoHalves =
      members >= MembersForTwoHalves && raster && d.rasterImage && d.rasterImage->depth() == 32 &&
      qsizetype(d.rasterImage->width()) * d.rasterImage->height() <= MostPixelsForTwoHalves;
  if (!twoHalves) {
    drawMembers(0, members, walk);
    return;
  }
  // The later half starts at a member that is no continuation of a polygon run.
  const auto positionOf = [&](size_t k) { return every ? int32_t(k + 1) : met[k].position; };
  size_t split = members / 2;
  while (split < members) {
    const ItemFields* f = store.itemFields(store.OA_Object(items, positionOf(split)));
    if (!f || !(f->Attributes & attr::PolygonSide) || (f->Attributes & attr::PolygonFirst))
      break;
    ++split;
  }
  if (laterHalf_.size() != d.rasterImage->size())
    laterHalf_ = QImage(d.rasterImage->size(), QImage::Format_ARGB32);
  laterHalf_.fill(0);
  bool laid = false;
  {
    Raster laterRaster(laterHalf_);
    DrawScratch laterScratch;
    ItemWalk laterWalk(*this, d, items, count, onlyShown, &laterRaster, laterScratch);
    std::thread second([&] { drawMembers(split, members, laterWalk); });
    drawMembers(0, split, walk);
    second.join();
    laid = !laterWalk.stopped();
  }
  if (!laid) {
    // A member only a painter draws: the later half is drawn here after all, in order.
    drawMembers(split, members, walk);
    return;
  }
  raster->flush();  // the first half's kept shapes lie under the later half
  layOver(*d.rasterImage, laterHalf_);
}

}  // namespace tvx
