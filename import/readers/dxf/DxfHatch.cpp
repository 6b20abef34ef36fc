// HATCH: its boundary paths as closed outlines, filled when the hatch is solid. The paths are
// read by their counts: a polyline path's vertices, or edges (lines, arcs, elliptic arcs,
// splines) joined end to end.
#include "common/WholeNumber.h"
#include "import/readers/dxf/DxfGeometry.h"
#include "import/readers/dxf/DxfInterpreter.h"
#include "kernel/PlaneGeometry.h"

#include <cmath>

namespace tvx {

namespace {

constexpr int32_t MaxCount = 1000000;  // a count beyond this is no count of a real path

// Reads the groups of one hatch in order; a group that is not where the layout puts it ends the
// reading of paths.
class HatchCursor {
public:
  HatchCursor(const std::vector<DxfRecord>& records, size_t& at) : r_(records), at_(at) {}

  bool ended() const { return at_ >= r_.size() || r_[at_].Code == 0; }
  bool is(int32_t code) const { return !ended() && r_[at_].Code == code; }
  bool real(int32_t code, double& value) {
    if (!is(code))
      return false;
    value = r_[at_++].RealValue;
    return true;
  }
  bool integer(int32_t code, int32_t& value) {
    if (!is(code))
      return false;
    value = r_[at_++].IntValue;
    return true;
  }
  bool count(int32_t code, int32_t& value) {
    return integer(code, value) && value >= 0 && value <= MaxCount;
  }
  void skip() { ++at_; }

private:
  const std::vector<DxfRecord>& r_;
  size_t& at_;
};

}  // namespace

void DxfInterpreter::hatch(size_t& at) {
  const std::vector<DxfRecord>& r = *records_;
  bool solidFill = false, paper = false;
  double nx = 0, ny = 0, nz = 1, elevation = 0;
  std::vector<OutlinePoints> paths;
  HatchCursor in(r, at);
  // The paths are built in the hatch's plane, in store units.
  const auto toX = [&](double v) { return length(v); };
  const auto toY = [&](double v) { return length(v); };
  // Joins the next piece of a path at (px, py): a gap is bridged by a straight side.
  const auto join = [&](OutlinePoints& path, double px, double py) {
    const OutlinePoint p = outlinePointAt(outlinepoint::Straight, px, py);
    if (path.size() == 1 || path.back().X != p.X || path.back().Y != p.Y)
      path.push_back(p);
    else
      path.back().Kind = outlinepoint::Straight;
  };
  // An arc edge in drawing values, counter-clockwise for a positive sweep.
  const auto arcEdge = [&](OutlinePoints& path, double cx, double cy, double radius, double start,
                           double sweep) {
    if (!std::isfinite(start) || !std::isfinite(sweep) || sweep == 0)
      return;
    // In pieces of half a turn at most, each through its middle.
    const int pieces = std::abs(sweep) > 180 ? 2 : 1;
    const double step = sweep / pieces;
    const auto onArc = [&](double t, double& px, double& py) {
      px = cx + radius * std::cos(t * RadiansPerDegree);
      py = cy + radius * std::sin(t * RadiansPerDegree);
    };
    double px = 0, py = 0;
    onArc(start, px, py);
    join(path, toX(px), toY(py));
    for (int i = 0; i < pieces; ++i) {
      path.back().Kind = outlinepoint::NoStretch;
      onArc(start + step * (i + 0.5), px, py);
      OutlinePoint middle = outlinePointAt(outlinepoint::ArcMiddle, toX(px), toY(py));
      const auto wx = roundToInt32(toX(cx)), wy = roundToInt32(toY(cy)),
                 wr = roundToInt32(length(radius));
      if (!wx || !wy || !wr)
        return;
      middle.CentreX = *wx;
      middle.CentreY = *wy;
      middle.Radius = *wr;
      path.push_back(middle);
      onArc(start + step * (i + 1), px, py);
      path.push_back(outlinePointAt(outlinepoint::Straight, toX(px), toY(py)));
    }
  };

  // The groups before the paths.
  int32_t pathCount = 0;
  while (!in.ended() && !in.is(91)) {
    const DxfRecord& g = r[at];
    if (g.Code == 70)
      solidFill = g.IntValue == 1;
    else if (g.Code == 67)
      paper = g.IntValue == 1;
    else if (g.Code == 210)
      nx = g.RealValue;
    else if (g.Code == 220)
      ny = g.RealValue;
    else if (g.Code == 230)
      nz = g.RealValue;
    else if (g.Code == 30)
      elevation = length(g.RealValue);
    in.skip();
  }
  if (in.count(91, pathCount)) {
    for (int32_t p = 0; p < pathCount; ++p) {
      int32_t flags = 0;
      if (!in.integer(92, flags))
        break;
      OutlinePoints path(1);
      bool good = true;
      if ((flags & 2) != 0) {
        int32_t hasBulge = 0, closedFlag = 0, vertices = 0;
        in.integer(72, hasBulge);
        in.integer(73, closedFlag);
        good = in.count(93, vertices);
        for (int32_t v = 0; good && v < vertices; ++v) {
          double vx = 0, vy = 0, bulge = 0;
          good = in.real(10, vx) && in.real(20, vy);
          if (!good)
            break;
          path.push_back(outlinePointAt(outlinepoint::Straight, toX(vx), toY(vy)));
          if (in.real(42, bulge) && bulge != 0 && std::isfinite(bulge)) {
            path.back().Kind = outlinepoint::NoStretch;
            OutlinePoint middle = path.back();
            middle.Kind = outlinepoint::ArcMiddle;
            middle.Radius = bulgeAngle(bulge);
            path.push_back(middle);
          }
        }
      } else {
        int32_t edges = 0;
        good = in.count(93, edges);
        for (int32_t e = 0; good && e < edges; ++e) {
          int32_t type = 0;
          if (!in.integer(72, type)) {
            good = false;
            break;
          }
          double x0 = 0, y0 = 0, x1 = 0, y1 = 0, value = 0, start = 0, end = 0;
          int32_t ccw = 1;
          switch (type) {
          case 1:
            good = in.real(10, x0) && in.real(20, y0) && in.real(11, x1) && in.real(21, y1);
            if (good) {
              join(path, toX(x0), toY(y0));
              path.push_back(outlinePointAt(outlinepoint::Straight, toX(x1), toY(y1)));
            }
            break;
          case 2: {
            good = in.real(10, x0) && in.real(20, y0) && in.real(40, value) && in.real(50, start) &&
                   in.real(51, end);
            in.integer(73, ccw);
            if (!good)
              break;
            // A clockwise edge keeps its angles as seen from below.
            double sweep = std::fmod(end - start, 360.0);
            if (sweep <= 0)
              sweep += 360;
            if (ccw == 0) {
              start = -start;
              sweep = -sweep;
            }
            arcEdge(path, x0, y0, value, start, sweep);
            break;
          }
          case 3: {
            good = in.real(10, x0) && in.real(20, y0) && in.real(11, x1) && in.real(21, y1) &&
                   in.real(40, value) && in.real(50, start) && in.real(51, end);
            in.integer(73, ccw);
            if (!good)
              break;
            // A clockwise edge runs its parameters the other way round.
            DxfEllipse el;
            el.CentreX = toX(x0);
            el.CentreY = toY(y0);
            el.UX = length(x1);
            el.UY = length(y1);
            el.VX = -value * el.UY;
            el.VY = value * el.UX;
            el.Start = start;
            el.End = end;
            if (ccw == 0) {
              el.VX = -el.VX;
              el.VY = -el.VY;
            }
            OutlinePoints chords;
            int32_t ignored = 0;
            EllipseToPoints(el, chords, ignored);
            for (size_t i = 1; i < chords.size(); ++i)
              join(path, chords[i].X, chords[i].Y);
            break;
          }
          case 4: {
            DxfSpline s;
            int32_t rational = 0, periodic = 0, knots = 0, controls = 0, fits = 0;
            good = in.integer(94, s.Degree);
            in.integer(73, rational);
            in.integer(74, periodic);
            good = good && in.count(95, knots) && in.count(96, controls);
            for (int32_t k = 0; good && k < knots; ++k)
              good = in.real(40, value) && (s.Knots.push_back(value), true);
            for (int32_t c = 0; good && c < controls; ++c) {
              good = in.real(10, x0) && in.real(20, y0);
              if (good)
                s.Control.push_back({toX(x0), toY(y0)});
              if (good && in.real(42, value))
                s.Weights.push_back(value);
            }
            if (good && in.count(97, fits))
              for (int32_t f = 0; good && f < fits; ++f) {
                good = in.real(11, x0) && in.real(21, y0);
                if (good)
                  s.Fit.push_back({toX(x0), toY(y0)});
              }
            // The end tangents, when given.
            while (in.is(12) || in.is(22) || in.is(13) || in.is(23))
              in.skip();
            if (good)
              for (const auto& [sx, sy] : SplineToPoints(s))
                join(path, sx, sy);
            break;
          }
          default:
            good = false;
            break;
          }
        }
      }
      int32_t sources = 0;
      if (good && in.count(97, sources)) {
        // The handles of the boundary's source objects are not kept by the loader.
      }
      if (path.size() > 2)
        paths.push_back(std::move(path));
      if (!good)
        break;
    }
  }
  // The rest of the hatch (its pattern and seeds) is passed over.
  while (!in.ended())
    in.skip();
  if (!drawn(at < r.size(), paper, "HATCH"))
    return;
  for (OutlinePoints& path : paths) {
    closeChain(path);
    ResolveBulges(path);
    place(path, DxfPlane::ofNormal(nx, ny, nz), elevation);
    ItemRecord templ = element(ItemLine, dxfattr::ClosedOutline);
    templ.Style = solidFill ? StyleFilled : StyleOpen;
    writeOutline(templ, path, "HATCH");
  }
}

}  // namespace tvx
