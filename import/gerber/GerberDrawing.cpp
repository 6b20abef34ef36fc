#include "import/gerber/GerberDrawing.h"

#include "import/core/FileRecognition.h"
#include "import/core/PlaceHole.h"
#include "import/core/ReportStatus.h"
#include "import/core/StatusCodes.h"
#include "import/gerber/ApertureExpansion.h"
#include "import/gerber/ApertureLabel.h"
#include "import/gerber/GerberBlockReader.h"
#include "import/gerber/GerberFormat.h"
#include "kernel/PlaneGeometry.h"
#include "kernel/Store.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace tvx {

namespace {

constexpr int32_t FirstPolygonId = 10000;

// Modes of the pen.
namespace mode {
constexpr int32_t None = 0, Line = LineMode, Clockwise = ClockwiseMode,
                  CounterClockwise = CounterClockwiseMode, Circle = 4, Polygon = RegionMode;
}  // namespace mode

int32_t mirrored(int32_t m, bool mirror) {
  if (!mirror)
    return m;
  return m == mode::Clockwise          ? mode::CounterClockwise
         : m == mode::CounterClockwise ? mode::Clockwise
                                       : m;
}

class DrawingPass {
public:
  DrawingPass(ArtFile& art, LayerRecord& layer, LayerFileRecord& file,
              const GerberDrawContext& context)
      : art_(art), file_(file), context_(context), lists_(context.scan.Lists),
        writer_(context.store, lists_.PrimitiveList, layer, file, context.clearColour),
        clock_(context.yield) {}

  // Replays the stream, then reports each aperture that no list held, once, with the count of
  // elements it cost. The number of elements (flashes, draws, regions) the stream held.
  int32_t run(int32_t& status);

private:
  void replay(int32_t& status);
  bool lookUp(int32_t dCode, bool flash);
  void flash(int32_t dCode);
  void draw(int32_t dCode);
  void polygonArc();
  void polygonEnd();
  // A new outline whose first point is the current one; point 0 is the repeat's offset.
  void openPolygon() {
    points_.assign(1, OutlinePoint{});
    points_.push_back({outlinepoint::Straight, curX_, curY_});
  }
  // Calls body(dI, dJ) once per repeat of the step and repeat in force.
  template <typename Body> void forEachRepeat(Body body) const;

  ArtFile& art_;
  LayerFileRecord& file_;
  const GerberDrawContext& context_;
  const ApertureLists& lists_;
  ElementWriter writer_;

  double minX_ = 0, minY_ = 0, shiftX_ = 0, shiftY_ = 0, mirrorAxis_ = 0;
  double curX_ = 0, curY_ = 0, prevX_ = 0, prevY_ = 0;
  double centreX_ = 0, centreY_ = 0;
  int32_t radius_ = 0;
  int32_t mode_ = mode::None;
  double stepX_ = 1, stepY_ = 1, stepI_ = 0, stepJ_ = 0;
  bool skip_ = false;
  bool cached_ = false;
  int32_t cachedD_ = 0, size_ = 0, listKind_ = RoundAperture;
  int32_t polygonId_ = FirstPolygonId;
  OutlinePoints points_;
  int32_t elements_ = 0;
  // D-codes that no list held, with the elements each one cost, in the order of their codes.
  std::map<int32_t, int64_t> missing_;
  YieldClock clock_;
};

template <typename Body> void DrawingPass::forEachRepeat(Body body) const {
  const double countX = wholeNumber(stepX_), countY = wholeNumber(stepY_);
  for (double i = 1; i <= countX; ++i)
    for (double j = 1; j <= countY; ++j)
      body((i - 1) * stepI_, (j - 1) * stepJ_);
}

// Whether a list holds the aperture; one that none holds costs the element that uses it, and the
// pass goes on with the next one.
bool DrawingPass::lookUp(int32_t dCode, bool flash) {
  if (cached_ && dCode == cachedD_)
    return true;
  int32_t size = -1;
  int32_t kind = RoundAperture;
  if (!flash) {
    if (const int32_t row = findAperture(lists_.DrawList, dCode); row >= 0)
      size = lists_.DrawList[size_t(row)].Size;
    if (size == LinkToSpecial || size == LinkToSquarePad) {
      kind = size == LinkToSpecial ? SpecialAperture : SquareAperture;
      const auto& list = size == LinkToSpecial ? lists_.SpecialList : lists_.SquarePadList;
      const int32_t row = findAperture(list, dCode);
      size = row >= 0 ? list[size_t(row)].Size : -1;
    }
  } else {
    const std::vector<ApertureUse>* lists[] = {&lists_.RoundPadList, &lists_.SquarePadList,
                                               &lists_.SpecialList};
    for (int32_t k = 0; k < 3; ++k)
      if (const int32_t row = findAperture(*lists[k], dCode); row >= 0) {
        size = (*lists[k])[size_t(row)].Size;
        kind = k;
        break;
      }
  }
  if (size == -1) {
    ++missing_[dCode];
    return false;
  }
  cached_ = true;
  cachedD_ = dCode;
  size_ = size;
  listKind_ = kind;
  return true;
}

void DrawingPass::flash(int32_t dCode) {
  ++elements_;
  if (!lookUp(dCode, true) || skip_)
    return;
  forEachRepeat([&](double dI, double dJ) {
    FlashAperture(writer_, curX_ + dI, curY_ + dJ, size_, listKind_, dCode);
  });
}

void DrawingPass::draw(int32_t dCode) {
  ++elements_;
  // Without its aperture the element is left out; the pen moves on as if it had been drawn.
  const bool found = lookUp(dCode, false);
  if ((mode_ == mode::Clockwise || mode_ == mode::CounterClockwise) && curX_ == prevX_ &&
      curY_ == prevY_)
    mode_ = mode::Circle;
  mode_ = mirrored(mode_, file_.Mirror);
  if (found && !skip_) {
    forEachRepeat([&](double dI, double dJ) {
      const Point centre{centreX_ + dI, centreY_ + dJ};
      const Point from{prevX_ + dI, prevY_ + dJ}, to{curX_ + dI, curY_ + dJ};
      switch (mode_) {
      case mode::Line:
        writer_.AddStroke(from.x, from.y, to.x, to.y, size_, listKind_, dCode, force::None,
                          flashword::Drawn);
        break;
      case mode::Clockwise:
        // Clockwise from Prev to Cur is counter-clockwise from Cur to Prev.
        writer_.AddArc(centre, radius_, to, from, size_, dCode, force::None);
        break;
      case mode::CounterClockwise:
        writer_.AddArc(centre, radius_, from, to, size_, dCode, force::None);
        break;
      case mode::Circle:
        writer_.AddDisc(centre.x, centre.y, radius_, size_, StyleOpen, force::None,
                        flashword::Drawn, dCode);
        break;
      default:
        break;  // no path was started: nothing to draw
      }
    });
  }
  mode_ = mode::Line;
}

void DrawingPass::polygonArc() {
  if (points_.empty())
    openPolygon();  // cannot happen in a stream of the text pass; keeps the list well formed
  const bool clockwise = mirrored(mode_, file_.Mirror) == mode::Clockwise;
  const double fromX = clockwise ? curX_ : prevX_, fromY = clockwise ? curY_ : prevY_;
  const double toX = clockwise ? prevX_ : curX_, toY = clockwise ? prevY_ : curY_;
  const double start = AngleOf(fromX - centreX_, fromY - centreY_);
  double sweep = AngleOf(toX - centreX_, toY - centreY_) - start;
  if (sweep < 0)
    sweep += 360.0;
  const double middle = (start + sweep / 2) * RadiansPerDegree;
  points_.back().Kind = outlinepoint::NoStretch;
  OutlinePoint arc{outlinepoint::ArcMiddle, centreX_ + radius_ * std::cos(middle),
                   centreY_ + radius_ * std::sin(middle)};
  arc.CentreX = toInt32(centreX_);
  arc.CentreY = toInt32(centreY_);
  arc.Radius = radius_;
  points_.push_back(arc);
  points_.push_back({outlinepoint::Straight, curX_, curY_});
  mode_ = mode::Polygon;
  prevX_ = curX_;
  prevY_ = curY_;
}

void DrawingPass::polygonEnd() {
  // Closing the list: back to the first point, on whole units.
  if (points_.size() > 1) {
    const OutlinePoint& first = points_[1];
    if (points_.back().X != first.X || points_.back().Y != first.Y)
      points_.push_back({outlinepoint::Straight, first.X, first.Y});
    for (size_t i = 1; i < points_.size(); ++i) {
      points_[i].X = wholeNumber(points_[i].X);
      points_[i].Y = wholeNumber(points_[i].Y);
    }
  }
  ++elements_;
  forEachRepeat([&](double dI, double dJ) {
    ++polygonId_;
    if (skip_ || points_.size() < 2)
      return;
    points_[0] = {outlinepoint::NoStretch, dI, dJ};
    writer_.AddOutlinePolygon(points_, polygonId_, flashword::Drawn);
  });
  points_.clear();
  mode_ = mode::Line;
}

int32_t DrawingPass::run(int32_t& status) {
  replay(status);
  for (const auto& [dCode, elements] : missing_)
    context_.reporter.ReportStatus(StatusApertureMissing, ApertureLabel(dCode), elements);
  return elements_;
}

void DrawingPass::replay(int32_t& status) {
  const ArtHeader& header = context_.scan.Header;
  minX_ = header.MinX;
  minY_ = header.MinY;
  if (!file_.OriginalCoordinates) {
    // Centred on the origin.
    shiftX_ = -(header.MaxX - header.MinX) / 2;
    shiftY_ = -(header.MaxY - header.MinY) / 2;
    mirrorAxis_ = (header.MaxX - header.MinX) / 2 + shiftX_;
  } else {
    mirrorAxis_ = (header.MaxX - header.MinX) / 2 + header.MinX;
    minX_ = minY_ = 0;
  }
  // The offset moves the picture against the mirror line, which stays.
  shiftX_ += file_.OffsetX;
  shiftY_ += file_.OffsetY;
  file_.ClearPolarity = false;

  ArtRecord record;
  for (int32_t n = artrecord::HeaderRecords + 1;; ++n) {
    if (!art_.read(n, record)) {
      context_.reporter.ReportStatus(StatusIncorrectFormat, art_.path());
      status = 1;
      break;
    }
    if (n % 64 == 0)
      clock_.poll();
    curX_ = record.X - minX_ + shiftX_;
    curY_ = record.Y - minY_ + shiftY_;
    if (file_.Mirror)
      curX_ = 2 * mirrorAxis_ - curX_;
    if (std::abs(curX_) > WorldLimit || std::abs(curY_) > WorldLimit) {
      context_.reporter.ReportStatus(StatusOutsideLimits, "");
      status = 1;
      break;
    }
    switch (record.Type) {
    case artrecord::EndOfStream:
      status = 0;
      file_.ClearPolarity = false;
      return;
    case artrecord::Flash:
      flash(record.N);
      break;
    case artrecord::PathStart:
    case artrecord::PolygonArcStart: {
      const bool contour = record.Type == artrecord::PathStart && record.N == mode::Polygon;
      // A region of several contours: each one is complete when the next one starts.
      if (contour && points_.size() > 1)
        polygonEnd();
      prevX_ = curX_;
      prevY_ = curY_;
      mode_ = record.N;
      if (contour || (record.Type == artrecord::PolygonArcStart && points_.empty()))
        openPolygon();
      break;
    }
    case artrecord::PathPoint:
      if (mode_ == mode::Polygon)
        points_.push_back({outlinepoint::Straight, curX_, curY_});
      else
        draw(record.N);
      prevX_ = curX_;
      prevY_ = curY_;
      break;
    case artrecord::PolygonArcPoint:
      polygonArc();
      break;
    case artrecord::ArcCentreOrPolygonEnd:
      if (record.N >= 0) {
        centreX_ = curX_;
        centreY_ = curY_;
        radius_ = record.N;
        mode_ = mode::Line;
      } else {
        polygonEnd();
      }
      break;
    case artrecord::StepRepeat:
      if (record.N == 1) {
        stepX_ = record.X;
        stepY_ = record.Y;
      } else if (record.N == 2) {
        stepI_ = record.X;
        stepJ_ = record.Y;
      }
      break;
    case artrecord::ImagePolarity:
    case artrecord::LayerPolarity:
      if (record.N == 0) {
        skip_ = false;
        file_.ClearPolarity = false;
      } else if (record.N == 1) {
        if (file_.FilterMask & filter::AF_IMP) {
          skip_ = false;
          file_.ClearPolarity = true;
        } else {
          skip_ = true;  // clear elements are left out of the layer
        }
      }
      break;
    default:
      context_.reporter.ReportStatus(StatusIncorrectFormat, art_.path());
      status = 0;
      file_.ClearPolarity = false;
      return;
    }
  }
  file_.ClearPolarity = false;
}

}  // namespace

int32_t DrawGerberStream(int32_t& status, ArtFile& art, LayerRecord& layer, LayerFileRecord& file,
                         const GerberDrawContext& context) {
  // One or two elements a record (macros, outlines and thermals make several): room for them at
  // once spares the store's copies as it grows. Capacity left unused is never touched.
  context.store.reserveItems(2 * size_t(std::max(0, art.recordCount())));
  DrawingPass pass(art, layer, file, context);
  return pass.run(status);
}

}  // namespace tvx
