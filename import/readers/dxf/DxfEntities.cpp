// The entities of a drawing: each reads its groups up to the next code 0 and writes its elements
// into the target symbol.
#include "common/WholeNumber.h"
#include "import/readers/dxf/DxfGeometry.h"
#include "import/readers/dxf/DxfInterpreter.h"
#include "kernel/PlaneGeometry.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace tvx {

namespace {

// A bulge after the vertex in hand: that vertex starts the arc, a placeholder holds its angle.
void addBulge(OutlinePoints& points, double bulge) {
  if (points.size() < 2 || bulge == 0 || !std::isfinite(bulge))
    return;
  points.back().Kind = outlinepoint::NoStretch;
  OutlinePoint middle = points.back();
  middle.Kind = outlinepoint::ArcMiddle;
  middle.Radius = bulgeAngle(bulge);
  points.push_back(middle);
}

// The text of MTEXT without its formatting: "\P" breaks a line, "\S" stacks a fraction, the
// settings of font, height, width, colour and the like go.
std::vector<std::string> mtextLines(const std::string& raw) {
  std::vector<std::string> lines(1);
  for (size_t i = 0; i < raw.size(); ++i) {
    const char c = raw[i];
    if (c == '{' || c == '}')
      continue;
    if (c != '\\' || i + 1 >= raw.size()) {
      lines.back() += c;
      continue;
    }
    const char code = raw[++i];
    if (code == 'P') {
      lines.emplace_back();
    } else if (code == '\\' || code == '{' || code == '}') {
      lines.back() += code;
    } else if (code == '~') {
      lines.back() += ' ';
    } else if (code == 'S') {
      // A stacked fraction: its two parts with a slash between.
      for (++i; i < raw.size() && raw[i] != ';'; ++i)
        lines.back() += raw[i] == '^' || raw[i] == '#' ? '/' : raw[i];
    } else if (std::string_view("ACFfHQTWpX").find(code) != std::string_view::npos) {
      // A setting up to its ";".
      while (i + 1 < raw.size() && raw[i + 1] != ';')
        ++i;
      if (i + 1 < raw.size())
        ++i;
    }
    // Underline, overline and strike-through switches (L, l, O, o, K, k) draw nothing.
  }
  return lines;
}

double degrees(double radians) { return radians / RadiansPerDegree; }

}  // namespace

bool DxfInterpreter::roundGroup(const DxfRecord& g, RoundShape& shape) const {
  switch (g.Code) {
  case 39:
    shape.width = lineSize(g.RealValue);
    return true;
  case 10:
    shape.cx = length(g.RealValue);
    return true;
  case 20:
    shape.cy = length(g.RealValue);
    return true;
  case 30:
    shape.cz = length(g.RealValue);
    return true;
  case 40:
    shape.radius = length(g.RealValue);
    return true;
  case 67:
    shape.paper = g.IntValue == 1;
    return true;
  default:
    return shape.normal.take(g.Code, g.RealValue);
  }
}

bool DxfInterpreter::drawn(bool ended, bool paper, const std::string& name) {
  if (ended && paper)
    ++report.passedOver[name];
  return ended && !paper;
}

void DxfInterpreter::finishChain(OutlinePoints& points, bool closed, const DxfPlane& plane,
                                 double elevation, const ItemRecord& templ, int32_t tolerance,
                                 const std::string& name) {
  if (closed)
    closeChain(points);
  else
    dropTrailingBulge(points);
  ResolveBulges(points);
  place(points, plane, elevation);
  ItemRecord e = templ;
  e.Attributes = closed ? dxfattr::ClosedOutline : dxfattr::OpenChain;
  if (closed && PointsToCircle(points, tolerance))
    e.Attributes = dxfattr::CircleOutline;
  writeOutline(e, points, name);
}

void DxfInterpreter::writeSlantedArc(const DxfPlane& plane, double cx, double cy, double cz,
                                     double radius, double start, double end, int32_t width,
                                     const std::string& name) {
  DxfEllipse e;
  const std::array<double, 2> c = world(plane, cx, cy, cz);
  e.CentreX = c[0];
  e.CentreY = c[1];
  e.UX = radius * plane.ax[0];
  e.UY = radius * plane.ax[1];
  e.VX = radius * plane.ay[0];
  e.VY = radius * plane.ay[1];
  e.Start = start;
  e.End = end;
  OutlinePoints points;
  int32_t attributes = dxfattr::OpenChain;
  EllipseToPoints(e, points, attributes);
  ItemRecord templ = element(ItemLine, attributes);
  templ.LineWidth = width;
  writeOutline(templ, points, name);
}

void DxfInterpreter::line(size_t& at) {
  const std::vector<DxfRecord>& r = *records_;
  ItemRecord e = element(ItemLine, dxfattr::Single);
  bool paper = false;
  for (; at < r.size() && r[at].Code != 0; ++at) {
    const DxfRecord& g = r[at];
    std::optional<int32_t> v;
    switch (g.Code) {
    case 39:
      e.LineWidth = lineSize(g.RealValue);
      break;
    case 67:
      paper = g.IntValue == 1;
      break;
    case 10:
      if ((v = roundToInt32(x(g.RealValue))))
        e.X = *v;
      break;
    case 20:
      if ((v = roundToInt32(y(g.RealValue))))
        e.Y = *v;
      break;
    // The far end must be a point of the store too.
    case 11:
      if ((v = roundToInt32(x(g.RealValue) - e.X)) && roundToInt32(x(g.RealValue)))
        e.Width = *v;
      break;
    case 21:
      if ((v = roundToInt32(y(g.RealValue) - e.Y)) && roundToInt32(y(g.RealValue)))
        e.Height = *v;
      if (paper)
        ++report.passedOver["LINE"];
      else
        write(e, "LINE");
      ++at;
      return;  // the rest of the entity's groups are passed over
    default:
      break;
    }
  }
}

void DxfInterpreter::arc(size_t& at) {
  RoundShape shape;
  const bool ended = groups(at, [&](const DxfRecord& g) {
    if (roundGroup(g, shape))
      return;
    if (g.Code == 50)
      arcStart_ = g.RealValue;
    else if (g.Code == 51)
      arcEnd_ = g.RealValue;
  });
  if (!drawn(ended, shape.paper, "ARC"))
    return;
  const auto& [cx, cy, cz, radius, width, paper, normal] = shape;
  // Counter-clockwise in its plane from the start to the end, more than nothing and one turn at
  // most.
  double a = arcStart_;
  double s = std::fmod(arcEnd_ - a, 360.0);
  if (!std::isfinite(a) || !std::isfinite(s))
    return;
  if (s <= 0)
    s += 360;
  const DxfPlane plane = normal.plane();
  if (!plane.flat()) {
    writeSlantedArc(plane, cx, cy, cz, radius, a, a + s, width, "ARC");
    return;
  }
  if (plane.fromBelow()) {
    a = 180 - a;
    if (a < 0)
      a += 360;
    s = -s;
  }
  const std::array<double, 2> c = world(plane, cx, cy, cz);
  const auto wx = roundToInt32(c[0]), wy = roundToInt32(c[1]), wr = roundToInt32(radius);
  if (!wx || !wy || !wr || !roundToInt32(c[0] + radius) || !roundToInt32(c[0] - radius) ||
      !roundToInt32(c[1] + radius) || !roundToInt32(c[1] - radius))
    return;  // the whole circle must lie within the store's reach
  if (std::abs(s) > 1) {
    const auto start = roundToInt32(a * 1000), sweep = roundToInt32(s * 1000);
    if (!start || !sweep)
      return;
    ItemRecord e = element(ItemArc, dxfattr::Single);
    e.LineWidth = width;
    e.X = *wx;
    e.Y = *wy;
    e.Width = *wr;
    e.Height = *start;
    e.Sweep = *sweep;
    write(e, "ARC");
    return;
  }
  // One degree or less: two lines through its middle.
  double p[3][2];
  for (int i = 0; i < 3; ++i) {
    const double t = (a + s * i / 2) * RadiansPerDegree;
    p[i][0] = std::nearbyint(*wx + *wr * std::cos(t));
    p[i][1] = std::nearbyint(*wy + *wr * std::sin(t));
  }
  for (int i = 0; i < 2; ++i) {
    const auto lx = roundToInt32(p[i][0]), ly = roundToInt32(p[i][1]),
               lw = roundToInt32(p[i + 1][0] - p[i][0]), lh = roundToInt32(p[i + 1][1] - p[i][1]);
    if (!lx || !ly || !lw || !lh)
      return;
    ItemRecord e = element(ItemLine, dxfattr::Single);
    e.LineWidth = width;
    e.X = *lx;
    e.Y = *ly;
    e.Width = *lw;
    e.Height = *lh;
    write(e, "ARC");
  }
}

void DxfInterpreter::circle(size_t& at) {
  RoundShape shape;
  const bool ended = groups(at, [&](const DxfRecord& g) { roundGroup(g, shape); });
  if (!drawn(ended, shape.paper, "CIRCLE"))
    return;
  const auto& [cx, cy, cz, radius, width, paper, normal] = shape;
  const DxfPlane plane = normal.plane();
  if (!plane.flat()) {
    writeSlantedArc(plane, cx, cy, cz, radius, 0, 360, width, "CIRCLE");
    return;
  }
  const std::array<double, 2> c = world(plane, cx, cy, cz);
  const auto wx = roundToInt32(c[0]), wy = roundToInt32(c[1]), wr = roundToInt32(radius);
  if (!wx || !wy || !wr)
    return;
  ItemRecord templ = element(ItemLine, dxfattr::CircleOutline);
  templ.LineWidth = width;
  writeOutline(templ, circleOutline(*wx, *wy, *wr), "CIRCLE");
}

void DxfInterpreter::ellipse(size_t& at) {
  double cx = 0, cy = 0, mx = 0, my = 0, mz = 0, ratio = 1, start = 0, end = 2 * M_PI;
  DxfNormal normal;
  bool paper = false;
  const bool ended = groups(at, [&](const DxfRecord& g) {
    if (normal.take(g.Code, g.RealValue))
      return;
    switch (g.Code) {
    case 10:
      cx = g.RealValue;
      break;
    case 20:
      cy = g.RealValue;
      break;
    case 11:
      mx = length(g.RealValue);
      break;
    case 21:
      my = length(g.RealValue);
      break;
    case 31:
      mz = length(g.RealValue);
      break;
    case 40:
      ratio = g.RealValue;
      break;
    case 41:
      start = g.RealValue;
      break;
    case 42:
      end = g.RealValue;
      break;
    case 67:
      paper = g.IntValue == 1;
      break;
    default:
      break;
    }
  });
  if (!drawn(ended, paper, "ELLIPSE"))
    return;
  // The minor axis is the normal crossed with the major one, seen from above.
  const DxfPlane plane = normal.plane();
  const std::array<double, 3>& n = plane.n;
  DxfEllipse e;
  e.CentreX = x(cx);
  e.CentreY = y(cy);
  e.UX = mx;
  e.UY = my;
  e.VX = ratio * (n[1] * mz - n[2] * my);
  e.VY = ratio * (n[2] * mx - n[0] * mz);
  e.Start = degrees(start);
  e.End = degrees(end);
  OutlinePoints points;
  int32_t attributes = dxfattr::Single;
  EllipseToPoints(e, points, attributes);
  if ((attributes & attr::PolygonSide) != 0 && PointsToCircle(points, 2000))
    attributes |= dxfattr::CircleOutline;
  writeOutline(element(ItemLine, attributes), points, "ELLIPSE");
}

void DxfInterpreter::solid(size_t& at, bool trace) {
  ItemRecord templ = element(ItemLine, dxfattr::ClosedOutline);
  templ.Style = solidStyle_;
  double corners[4][2] = {};
  double elevation = 0;
  bool complete = false, paper = false;
  DxfNormal normal;
  const bool ended = groups(at, [&](const DxfRecord& g) {
    if (normal.take(g.Code, g.RealValue))
      return;
    if (g.Code >= 10 && g.Code <= 13)
      corners[g.Code - 10][0] = length(g.RealValue);
    else if (g.Code >= 20 && g.Code <= 23)
      corners[g.Code - 20][1] = length(g.RealValue);
    else if (g.Code == 30)
      elevation = length(g.RealValue);
    complete = complete || g.Code == 23;
    if (g.Code == 39 && trace) {
      templ.LineWidth = lineSize(g.RealValue);
      if (widthFlag_ != 0)
        templ.Style = StyleOpen;
    }
    if (g.Code == 67)
      paper = g.IntValue == 1;
  });
  const std::string name = trace ? "TRACE" : "SOLID";
  if (!drawn(ended, paper, name) || !complete)
    return;
  // The third corner lies diagonally to the second: the sides run 1, 2, 4, 3.
  OutlinePoints points(1);
  for (int corner : {0, 1, 3, 2, 0})
    points.push_back(
        outlinePointAt(outlinepoint::Straight, corners[corner][0], corners[corner][1]));
  place(points, normal.plane(), elevation);
  writeOutline(templ, points, name);
}

void DxfInterpreter::lwpolyline(size_t& at) {
  OutlinePoints points(1);
  bool closed = false, paper = false;
  int32_t width = 1;
  double px = 0, elevation = 0;
  DxfNormal normal;
  const bool ended = groups(at, [&](const DxfRecord& g) {
    if (normal.take(g.Code, g.RealValue))
      return;
    switch (g.Code) {
    case 70:
      closed = (g.IntValue & 1) != 0;
      break;
    case 38:
      elevation = length(g.RealValue);
      break;
    case 39:
    case 40:
    case 43:
      width = lineSize(g.RealValue);
      break;
    case 10:
      px = length(g.RealValue);
      break;
    case 20:
      points.push_back(outlinePointAt(outlinepoint::Straight, px, length(g.RealValue)));
      break;
    case 42:
      addBulge(points, g.RealValue);
      break;
    case 67:
      paper = g.IntValue == 1;
      break;
    default:
      break;
    }
  });
  if (!drawn(ended, paper, "LWPOLYLINE"))
    return;
  ItemRecord templ = element(ItemLine, dxfattr::OpenChain);
  templ.LineWidth = width;
  finishChain(points, closed, normal.plane(), elevation, templ, 2000, "LWPOLYLINE");
}

void DxfInterpreter::spline(size_t& at) {
  DxfSpline s;
  bool closed = false, paper = false;
  double px = 0, fx = 0;
  const bool ended = groups(at, [&](const DxfRecord& g) {
    switch (g.Code) {
    case 70:
      closed = (g.IntValue & 1) != 0;
      break;
    case 71:
      s.Degree = g.IntValue;
      break;
    case 40:
      s.Knots.push_back(g.RealValue);
      break;
    case 41:
      s.Weights.push_back(g.RealValue);
      break;
    case 10:
      px = g.RealValue;
      break;
    case 20:
      s.Control.push_back({length(px), length(g.RealValue)});
      break;
    case 11:
      fx = g.RealValue;
      break;
    case 21:
      s.Fit.push_back({length(fx), length(g.RealValue)});
      break;
    case 67:
      paper = g.IntValue == 1;
      break;
    default:
      break;
    }
  });
  if (!drawn(ended, paper, "SPLINE"))
    return;
  // The points of a spline are the drawing's own: seen from above whatever its plane.
  OutlinePoints points(1);
  for (const auto& [sx, sy] : SplineToPoints(s))
    points.push_back(outlinePointAt(outlinepoint::Straight, sx, sy));
  finishChain(points, closed, DxfPlane{}, 0, element(ItemLine, dxfattr::OpenChain), 200, "SPLINE");
}

void DxfInterpreter::polyline(size_t& at) {
  polylineWidth_ = 1;
  polylineClosed_ = polylinePaper_ = false;
  polylineElevation_ = 0;
  int32_t flags = 0;
  DxfNormal normal;
  const bool ended = groups(at, [&](const DxfRecord& g) {
    if (normal.take(g.Code, g.RealValue))
      return;
    if (g.Code == 40)
      polylineWidth_ = lineSize(g.RealValue);
    else if (g.Code == 70)
      flags = g.IntValue;
    else if (g.Code == 30)
      polylineElevation_ = length(g.RealValue);
    else if (g.Code == 67)
      polylinePaper_ = g.IntValue == 1;
  });
  if (!ended)
    return;
  polylineClosed_ = (flags & 1) != 0;
  // A 3D polyline's and a mesh's vertices are the drawing's own points.
  polylinePlane_ = (flags & (8 | 16 | 64)) != 0 ? DxfPlane{} : normal.plane();
  if ((flags & (8 | 16 | 64)) != 0)
    polylineElevation_ = 0;
  polyline_.assign(1, OutlinePoint{});
  polylineOpen_ = true;
}

void DxfInterpreter::vertex(size_t& at) {
  double px = 0, py = 0, bulge = 0;
  int32_t flags = 0;
  bool havePoint = false;
  groups(at, [&](const DxfRecord& g) {
    if (g.Code == 10) {
      px = length(g.RealValue);
    } else if (g.Code == 20) {
      py = length(g.RealValue);
      havePoint = true;
    } else if (g.Code == 42) {
      bulge = g.RealValue;
    } else if (g.Code == 70) {
      flags = g.IntValue;
    }
  });
  // A spline frame's control point and a face of a mesh are no points of the line.
  if (!havePoint || (flags & 16) != 0 || ((flags & 128) != 0 && (flags & 64) == 0))
    return;
  if (polyline_.empty())
    polyline_.assign(1, OutlinePoint{});
  polyline_.push_back(outlinePointAt(outlinepoint::Straight, px, py));
  addBulge(polyline_, bulge);
}

void DxfInterpreter::seqend(size_t& at) {
  groups(at, [](const DxfRecord&) {});
  if (!polylineOpen_)
    return;
  polylineOpen_ = false;
  OutlinePoints points;
  points.swap(polyline_);
  if (polylinePaper_) {
    ++report.passedOver["POLYLINE"];
    return;
  }
  // Two points or more close: a closed triangle keeps its closing side.
  const bool closed = polylineClosed_ && points.size() > 2;
  polylineClosed_ = false;
  ItemRecord templ = element(ItemLine, dxfattr::OpenChain);
  templ.LineWidth = polylineWidth_;
  finishChain(points, closed, polylinePlane_, polylineElevation_, templ, 2000, "POLYLINE");
}

void DxfInterpreter::text(size_t& at, bool mtext) {
  std::string content;
  double px = 0, py = 0, pz = 0, ax = 0, ay = 0, height = 0, widthFactor = 1, rotation = 0;
  double dirX = 0, dirY = 0;
  int32_t hJust = 0, vJust = 0, attach = 1;
  bool aligned = false, paper = false;
  DxfNormal normal;
  const bool ended = groups(at, [&](const DxfRecord& g) {
    if (normal.take(g.Code, g.RealValue))
      return;
    switch (g.Code) {
    case 1:
    case 3:
      content += g.TextValue;  // MTEXT: chunks of 250 characters first, the rest last
      break;
    case 10:
      px = length(g.RealValue);
      break;
    case 20:
      py = length(g.RealValue);
      break;
    case 30:
      pz = length(g.RealValue);
      break;
    case 11:
      (mtext ? dirX : ax) = mtext ? g.RealValue : length(g.RealValue);
      aligned = !mtext;
      break;
    case 21:
      (mtext ? dirY : ay) = mtext ? g.RealValue : length(g.RealValue);
      break;
    case 40:
      height = length(g.RealValue);
      break;
    case 41:
      if (!mtext)
        widthFactor = g.RealValue;
      break;
    case 50:
      rotation = g.RealValue;
      break;
    case 71:
      attach = g.IntValue;
      break;
    case 72:
      hJust = g.IntValue;
      break;
    case 73:
      vJust = g.IntValue;
      break;
    case 67:
      paper = g.IntValue == 1;
      break;
    default:
      break;
    }
  });
  const std::string name = mtext ? "MTEXT" : "TEXT";
  if (!drawn(ended, paper, name) || content.empty())
    return;
  // MTEXT stands in the drawing's own coordinates, TEXT in its plane.
  const DxfPlane plane = mtext ? DxfPlane{} : normal.plane();
  if (mtext && (dirX != 0 || dirY != 0))
    rotation = AngleOf(dirX, dirY);
  if (!mtext) {
    const double a = rotation * RadiansPerDegree;
    const std::array<double, 2> d = plane.map(std::cos(a), std::sin(a), 0);
    rotation = AngleOf(d[0], d[1]);
  }
  const std::vector<std::string> lines = mtext ? mtextLines(content) : std::vector{content};
  const double charWidth = 0.75 * height * (widthFactor > 0 ? widthFactor : 1);
  const double lineSpacing = 5.0 / 3.0 * height;
  const double a = rotation * RadiansPerDegree;
  const double along[2] = {std::cos(a), std::sin(a)}, up[2] = {-std::sin(a), std::cos(a)};
  // Where the first line's baseline starts, and how far each line moves to its justification.
  std::array<double, 2> start = world(plane, px, py, pz);
  double hShare = 0, vShift = 0;  // of a line's width; of the height, up from the anchor
  if (mtext) {
    const int32_t cell = std::clamp(attach, 1, 9);
    hShare = ((cell - 1) % 3) / 2.0;
    const double block = height + double(lines.size() - 1) * lineSpacing;
    vShift = cell <= 3 ? -height : cell <= 6 ? block / 2 - height : block - height;
  } else {
    if (aligned && (hJust != 0 || vJust != 0) && hJust != 3 && hJust != 5)
      start = world(plane, ax, ay, pz);
    hShare = hJust == 1 || hJust == 4 ? 0.5 : hJust == 2 ? 1 : 0;
    vShift = vJust == 3 ? -height : vJust == 2 || hJust == 4 ? -height / 2 : 0;
  }
  for (size_t i = 0; i < lines.size(); ++i) {
    const std::string& shown = lines[i];
    if (shown.empty())
      continue;
    const double w = charWidth * double(shown.size());
    const double lift = vShift - double(i) * lineSpacing;
    const double tx = start[0] - hShare * w * along[0] + lift * up[0];
    const double ty = start[1] - hShare * w * along[1] + lift * up[1];
    const auto wx = roundToInt32(tx), wy = roundToInt32(ty), wh = roundToInt32(height),
               ww = roundToInt32(charWidth), wa = roundToInt32(rotation * 1000);
    if (!wx || !wy || !wh || !ww || !wa)
      continue;
    ItemRecord e = element(ItemVectorText, dxfattr::Single);
    e.X = *wx;
    e.Y = *wy;
    e.Width = *wh;
    e.Height = *ww;
    e.Angle = *wa;
    e.Text = shown;
    write(e, name);
  }
}

void DxfInterpreter::face(size_t& at) {
  double corners[4][2] = {};
  bool paper = false;
  const bool ended = groups(at, [&](const DxfRecord& g) {
    if (g.Code >= 10 && g.Code <= 13)
      corners[g.Code - 10][0] = x(g.RealValue);
    else if (g.Code >= 20 && g.Code <= 23)
      corners[g.Code - 20][1] = y(g.RealValue);
    else if (g.Code == 67)
      paper = g.IntValue == 1;
  });
  if (!drawn(ended, paper, "3DFACE"))
    return;
  // A triangle repeats its third corner as the fourth.
  OutlinePoints points(1);
  for (int corner : {0, 1, 2, 3})
    if (corner < 3 || corners[3][0] != corners[2][0] || corners[3][1] != corners[2][1])
      points.push_back(
          outlinePointAt(outlinepoint::Straight, corners[corner][0], corners[corner][1]));
  closeChain(points);
  writeOutline(element(ItemLine, dxfattr::ClosedOutline), points, "3DFACE");
}

void DxfInterpreter::leader(size_t& at) {
  OutlinePoints points(1);
  double px = 0;
  bool paper = false;
  const bool ended = groups(at, [&](const DxfRecord& g) {
    if (g.Code == 10)
      px = x(g.RealValue);
    else if (g.Code == 20)
      points.push_back(outlinePointAt(outlinepoint::Straight, px, y(g.RealValue)));
    else if (g.Code == 67)
      paper = g.IntValue == 1;
  });
  if (!drawn(ended, paper, "LEADER"))
    return;
  writeOutline(element(ItemLine, dxfattr::OpenChain), points, "LEADER");
}

}  // namespace tvx
