#include "import/readers/hpgl/HpglInterpreter.h"

#include "common/ToNumber.h"
#include "common/WholeNumber.h"
#include "import/core/FileRecognition.h"
#include "import/gerber/OutlineArcs.h"
#include "kernel/PlaneGeometry.h"
#include "store/AddElement.h"
#include "store/LayerRecord.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <limits>
#include <optional>

namespace tvx {

namespace {

constexpr char Escape = '\x1B';
constexpr int32_t LargestPen = 65535;  // a pen beyond this is a fault, not a table to grow
constexpr int32_t OutlineAttributes = 9;

constexpr int32_t code(char a, char b) { return (int32_t(uint8_t(a)) << 8) | uint8_t(b); }

// The command of every pair of characters: its index in the command table, -1 when the pair
// is not in it. Built once, so that a letter costs one look-up.
const std::array<int8_t, 65536>& commandOfPair() {
  static const std::array<int8_t, 65536> table = [] {
    std::array<int8_t, 65536> t{};
    t.fill(-1);
    for (int a = 0; a < 256; ++a)
      for (int b = 0; b < 256; ++b) {
        const char pair[2] = {char(a), char(b)};
        const size_t at = HpglCommandTable.find(std::string_view(pair, 2));
        if (at != std::string_view::npos)
          t[size_t(code(char(a), char(b)))] = int8_t(at / 3);
      }
    return t;
  }();
  return table;
}

bool inSeparatorSet(char c) { return PlotterSeparatorSet.find(c) != std::string_view::npos; }

// Commands are read case-blind: the text keeps its case for the encoded polylines.
char upper(char c) { return c >= 'a' && c <= 'z' ? char(c - 'a' + 'A') : c; }

// The polygon commands of current drivers, read beside the command table.
bool isPolygonCommand(char a, char b) {
  const int32_t c = code(a, b);
  return c == code('P', 'M') || c == code('F', 'P') || c == code('E', 'P');
}

// A sub-polygon of two points or more is made to end where it began.
void close(OutlinePoints& sub) {
  // Ends that round to one store unit meet already.
  if (sub.size() > 2 &&
      (std::abs(sub[1].X - sub.back().X) >= 0.5 || std::abs(sub[1].Y - sub.back().Y) >= 0.5)) {
    OutlinePoint first = sub[1];
    first.Kind = outlinepoint::Straight;
    sub.push_back(first);
  }
}

}  // namespace

HpglInterpreter::HpglInterpreter(Store& store, SymbolId symbol, uint8_t colour)
    : store_(store), symbol_(symbol), colour_(colour) {}

std::string_view HpglInterpreter::arg(size_t index) const {
  return index < state.ArgCount ? std::string_view(state.Args[index]) : std::string_view();
}

void HpglInterpreter::run(std::string_view text) {
  walk(text, 0);
  walk(text, 1);
}

size_t HpglInterpreter::skipEscape(std::string_view text, size_t at) const {
  // ESC "." and a letter, then the parameters of the instruction up to its ":".
  size_t next = at + 1;
  if (next >= text.size() || text[next] != '.')
    return next;
  next = std::min(text.size(), next + 2);
  size_t end = next;
  while (end < text.size() && (std::isdigit(uint8_t(text[end])) || text[end] == ';' ||
                               text[end] == ',' || text[end] == ' '))
    ++end;
  return end < text.size() && text[end] == ':' ? end + 1 : next;
}

size_t HpglInterpreter::label(std::string_view text, size_t at, int walkNumber) {
  std::string shown;
  for (; at < text.size() && upper(text[at]) != state.LabelEnd; ++at)
    if (uint8_t(text[at]) >= 32 && text[at] != 127)
      shown += text[at];  // control characters (line feeds, returns) place nothing
  const size_t behind = std::min(text.size(), at + 1);
  if (shown.empty())
    return behind;
  // A character's cell is one and a half of its width; the pen ends behind the last one.
  constexpr double UnitsPerCm = 10 * HpglUnitsPerMm;
  const double height = state.CharHeight * UnitsPerCm;
  const double cell = 1.5 * state.CharWidth * UnitsPerCm;
  const double degrees =
      std::atan2(state.DirectionRise, state.DirectionRun) / RadiansPerDegree + state.Rotation;
  const auto x = roundToInt32(state.CurX), y = roundToInt32(state.CurY), h = roundToInt32(height),
             w = roundToInt32(cell), angle = roundToInt32(degrees * 1000);
  if (!x || !y || !h || !w || !angle)
    return behind;
  if (walkNumber == 1) {
    ItemRecord r = element(ItemVectorText);
    r.X = *x;
    r.Y = *y;
    r.Width = *h;
    r.Height = *w;
    r.Angle = *angle;
    r.Style = 0;
    r.Text = shown;
    write(r);
    ++counts.labels;
  }
  const double advance = cell * double(shown.size());
  state.CurX += advance * std::cos(degrees * RadiansPerDegree);
  state.CurY += advance * std::sin(degrees * RadiansPerDegree);
  return behind;
}

size_t HpglInterpreter::encodedPolyline(std::string_view text, size_t at, int walkNumber) {
  bool sevenBit = false, penUpNext = false, absoluteNext = false;
  int32_t fractionBits = 0;
  // One number: digits of 6 bits (5 in seven-bit mode), the lowest first, the last one from the
  // terminating range; the lowest bit of the whole is its sign. False at the ";" or the end.
  const auto number = [&](int64_t& value) {
    uint64_t whole = 0;
    int shift = 0;
    while (at < text.size() && text[at] != ';') {
      const int b = uint8_t(text[at++]);
      const int base = sevenBit ? 32 : 64;
      const int terminal = sevenBit ? 95 : 191;
      const bool last = b >= terminal && b < terminal + base;
      if (!last && !(b >= 63 && b < 63 + base))
        continue;  // a line end or a blank among the digits
      const uint64_t digit = uint64_t(last ? b - terminal : b - 63);
      if (shift < 60)
        whole |= digit << shift;
      shift += sevenBit ? 5 : 6;
      if (last) {
        const int64_t magnitude = int64_t(whole >> 1);
        value = whole & 1 ? -magnitude : magnitude;
        return true;
      }
    }
    return false;
  };
  while (at < text.size() && text[at] != ';') {
    int64_t value = 0;
    switch (text[at]) {
    case ':':
      ++at;
      if (number(value) && value >= 0 && value <= LargestPen)
        selectPen(int32_t(value));
      break;
    case '<':
      ++at;
      penUpNext = true;
      break;
    case '>':
      ++at;
      if (number(value))
        fractionBits = int32_t(std::clamp<int64_t>(value, 0, 30));
      break;
    case '=':
      ++at;
      absoluteNext = true;
      break;
    case '7':
      ++at;
      sevenBit = true;
      break;
    default: {
      int64_t x = 0, y = 0;
      if (!number(x) || !number(y))
        break;
      const double unit = 1.0 / double(int64_t(1) << fractionBits);
      const int32_t kept = state.Relative;
      state.Relative = absoluteNext ? 0 : 1;
      toPointValues(double(x) * unit, double(y) * unit);
      state.Relative = kept;
      if (!roundToInt32(state.NextX) || !roundToInt32(state.NextY))
        break;
      state.PenDown = penUpNext ? 0 : 1;
      if (walkNumber == 1 && !penUpNext)
        line(state.CurX, state.CurY, state.NextX, state.NextY);
      state.CurX = state.NextX;
      state.CurY = state.NextY;
      penUpNext = absoluteNext = false;
      break;
    }
    }
  }
  return std::min(text.size(), at + 1);
}

void HpglInterpreter::walk(std::string_view text, int walkNumber) {
  state.PenTable.assign(1, 1);
  state.EveryPenWidth = 1;
  state.PolygonMode = false;
  state.Polygon.clear();
  state.Args.resize(std::max<size_t>(state.Args.size(), 8));
  const auto emptyArgs = [this] {
    state.ArgCount = 1;
    state.Args[0].clear();
  };
  emptyArgs();
  bool open = false;
  bool newArgument = false;
  const auto& pairs = commandOfPair();
  const size_t n = text.size();
  size_t at = 0;
  while (at < n) {
    const char c = upper(text[at]);
    if (c == ',' || c == ' ') {
      newArgument = true;
      ++at;
    } else if (c == ';') {
      execute(walkNumber);
      open = false;
      emptyArgs();
      ++at;
    } else if (inSeparatorSet(c)) {
      if (newArgument) {
        if (state.ArgCount == state.Args.size())
          state.Args.emplace_back();
        state.Args[state.ArgCount++].clear();
        newArgument = false;
      }
      state.Args[state.ArgCount - 1] += c;
      ++at;
    } else if (c == Escape) {
      at = skipEscape(text, at);
    } else if (at + 1 >= n) {
      break;
    } else if (c == 'P' && upper(text[at + 1]) == 'E') {
      // An encoded polyline runs to its ";" and is drawn as it is read.
      if (open)
        execute(walkNumber);
      open = false;
      emptyArgs();
      at = encodedPolyline(text, at + 2, walkNumber);
    } else {
      const char second = upper(text[at + 1]);
      const int8_t found =
          isPolygonCommand(c, second) ? int8_t(-1) : pairs[size_t(code(c, second))];
      if (found < 0 && !isPolygonCommand(c, second)) {
        ++at;
        continue;
      }
      if (open)
        execute(walkNumber);
      emptyArgs();
      state.CommandIndex = found;
      state.Command = {c, second};
      open = true;
      newArgument = true;
      at += 2;
      const std::string_view name = state.Command;
      if (name == "LB") {
        // A label's text is no command: it runs to its terminator.
        open = false;
        at = label(text, at, walkNumber);
      } else if (name == "DT") {
        state.LabelEnd = at < n && text[at] != ';' ? upper(text[at]) : '\x03';
        if (at < n && text[at] != ';')
          ++at;
      }
    }
  }
  if (open)
    execute(walkNumber);
}

void HpglInterpreter::toPoint(std::string_view argX, std::string_view argY) {
  toPointValues(ToNumber(argX), ToNumber(argY));
}

void HpglInterpreter::toPointValues(double valueX, double valueY) {
  double x = valueX * state.ScaleX * HpglUnitsPerMm;
  double y = valueY * state.ScaleY * HpglUnitsPerMm;
  if (state.Relative == 0) {
    x += state.OriginX;
    y += state.OriginY;
  }
  if (state.Rotation != 0) {
    const double a = state.Rotation * RadiansPerDegree;
    const double turnedX = x * std::cos(a) - y * std::sin(a);
    y = x * std::sin(a) + y * std::cos(a);
    x = turnedX;
  }
  state.NextX = state.Relative == 0 ? x : state.CurX + x;
  state.NextY = state.Relative == 0 ? y : state.CurY + y;
}

void HpglInterpreter::selectPen(int32_t pen) {
  state.PenNumber = pen;
  state.PenWidth =
      size_t(pen) < state.PenTable.size() ? state.PenTable[size_t(pen)] : state.EveryPenWidth;
}

double HpglInterpreter::penWidth(double value) const {
  const double diagonal = std::hypot(state.P2X - state.P1X, state.P2Y - state.P1Y) / HpglUnitsPerMm;
  const double mm =
      state.RelativeWidths && diagonal > 0 ? value / 100 * diagonal : value * state.WidthUnit;
  return mm * HpglUnitsPerMm;
}

double HpglInterpreter::toLength(std::string_view argument) const {
  return ToNumber(argument) * state.ScaleX * HpglUnitsPerMm;
}

ItemRecord HpglInterpreter::element(int32_t type) const {
  ItemRecord r{};
  r.Type = type;
  r.Attributes = attr::Shown;
  r.Colour = colour_;
  r.LineWidth = state.PenWidth;
  r.Style = uint8_t(state.LineType);
  return r;
}

void HpglInterpreter::write(ItemRecord record) {
  int32_t refused = 0, index = 0;
  AddElement(store_, refused, PlaceSymbolItems, symbol_, record, record.Text, index, std::string());
  status = std::max(status, refused);
}

void HpglInterpreter::line(double x0, double y0, double x1, double y1) {
  const auto x = roundToInt32(x0), y = roundToInt32(y0), w = roundToInt32(x1 - x0),
             h = roundToInt32(y1 - y0);
  if (!x || !y || !w || !h)
    return;
  ItemRecord r = element(ItemLine);
  r.X = *x;
  r.Y = *y;
  r.Width = *w;
  r.Height = *h;
  write(r);
  ++counts.lines;
}

std::optional<OutlinePoint> HpglInterpreter::outlinePoint(int32_t kind, double x, double y) const {
  if (!roundToInt32(x) || !roundToInt32(y))
    return std::nullopt;
  OutlinePoint p;
  p.Kind = kind;
  p.X = x;
  p.Y = y;
  if (kind == outlinepoint::ArcMiddle) {
    const auto cx = roundToInt32(state.CentreX), cy = roundToInt32(state.CentreY),
               r = roundToInt32(state.Radius);
    if (!cx || !cy || !r)
      return std::nullopt;
    p.CentreX = *cx;
    p.CentreY = *cy;
    p.Radius = *r;
  }
  return p;
}

void HpglInterpreter::writeOutline(const std::vector<std::array<double, 3>>& points, bool filled) {
  OutlinePoints outline(1);
  for (const auto& [kind, x, y] : points) {
    const auto p = outlinePoint(int32_t(kind), x, y);
    if (!p)
      return;
    outline.push_back(*p);
  }
  writeOutlinePoints(outline, filled);
}

void HpglInterpreter::writeOutlinePoints(const OutlinePoints& outline, bool filled) {
  ItemRecord templ = element(ItemLine);
  templ.Attributes = OutlineAttributes;
  if (filled)
    templ.Style = StyleFilled;
  int32_t refused = 0, first = 0, last = 0;
  const ArrayHandle items = store_.S_SymbolItemArray(symbol_);
  const int32_t before = store_.OA_GetCount(items);
  WriteOutline(refused, store_, symbol_, templ, outline, first, last);
  outlinePieces += store_.OA_GetCount(items) - before;
  status = std::max(status, refused);
  ++counts.outlines;
}

void HpglInterpreter::pairs(int walkNumber, bool draw) {
  for (size_t i = 1; i < argumentCount(); i += 2) {
    toPoint(arg(i), arg(i + 1));
    if (!roundToInt32(state.NextX) || !roundToInt32(state.NextY))
      return;  // a point beyond the store's reach ends the statement; the pen stays
    if (state.PolygonMode)
      polygonMove(draw || state.PenDown == 1);
    else if (walkNumber == 1 && (draw || state.PenDown == 1))
      line(state.CurX, state.CurY, state.NextX, state.NextY);
    state.CurX = state.NextX;
    state.CurY = state.NextY;
  }
}

void HpglInterpreter::arc(int walkNumber, int32_t relative) {
  if (argumentCount() < 3)
    return;
  const int32_t kept = state.Relative;
  state.Relative = relative;
  toPoint(arg(1), arg(2));
  state.Relative = kept;
  state.CentreX = state.NextX;
  state.CentreY = state.NextY;
  const double dx = state.CurX - state.CentreX, dy = state.CurY - state.CentreY;
  state.Radius = std::hypot(dx, dy);
  state.StartAngle = AngleOf(dx, dy);
  state.SweepAngle = ToNumber(arg(3));
  if (!roundToInt32(state.CentreX) || !roundToInt32(state.CentreY) || !roundToInt32(state.Radius))
    return;
  const double s = state.SweepAngle * RadiansPerDegree;
  state.NextX = dx * std::cos(s) + state.CentreX - dy * std::sin(s);
  state.NextY = dx * std::sin(s) + state.CentreY + dy * std::cos(s);
  if (state.PolygonMode) {
    if (state.PenDown == 1)
      polygonArc(state.StartAngle, state.SweepAngle);
    else
      polygonMove(false);
  } else if (walkNumber == 1 && state.PenDown == 1) {
    const auto x = roundToInt32(state.CentreX), y = roundToInt32(state.CentreY),
               r = roundToInt32(state.Radius), start = roundToInt32(state.StartAngle * 1000),
               sweep = roundToInt32(state.SweepAngle * 1000);
    if (x && y && r && start && sweep) {
      ItemRecord e = element(ItemArc);
      e.X = *x;
      e.Y = *y;
      e.Width = *r;
      e.Height = *start;
      e.Sweep = *sweep;
      e.Style = 0;  // arcs are solid whatever the line type
      write(e);
      ++counts.arcs;
    }
  }
  state.CurX = state.NextX;
  state.CurY = state.NextY;
}

void HpglInterpreter::rectangle(int walkNumber, int32_t relative, bool filled) {
  if (argumentCount() < 2)
    return;
  const int32_t kept = state.Relative;
  state.Relative = relative;
  toPoint(arg(1), arg(2));
  state.Relative = kept;
  if (walkNumber != 1)
    return;
  const double x0 = state.CurX, y0 = state.CurY, x1 = state.NextX, y1 = state.NextY;
  writeOutline({{1, x0, y0}, {1, x0, y1}, {1, x1, y1}, {1, x1, y0}, {1, x0, y0}}, filled);
}

void HpglInterpreter::wedge(int walkNumber, bool filled) {
  if (argumentCount() < 3)
    return;
  state.Radius = toLength(arg(1));
  state.StartAngle = ToNumber(arg(2));
  state.SweepAngle = ToNumber(arg(3));
  state.CentreX = state.CurX;
  state.CentreY = state.CurY;
  const auto at = [this](double degrees, double& x, double& y) {
    x = state.CentreX + state.Radius * std::cos(degrees * RadiansPerDegree);
    y = state.CentreY + state.Radius * std::sin(degrees * RadiansPerDegree);
  };
  double startX = 0, startY = 0;
  at(state.StartAngle, startX, startY);
  at(state.StartAngle + state.SweepAngle / 2, state.MidX, state.MidY);
  at(state.StartAngle + state.SweepAngle, state.NextX, state.NextY);
  if (walkNumber != 1)
    return;
  const double cx = state.CentreX, cy = state.CentreY;
  writeOutline({{1, cx, cy},
                {0, startX, startY},
                {5, state.MidX, state.MidY},
                {1, state.NextX, state.NextY},
                {1, cx, cy}},
               filled);
}

void HpglInterpreter::execute(int walkNumber) {
  if (state.Command.size() != 2)
    return;
  const std::string_view name = state.Command;
  const size_t count = argumentCount();
  switch (code(name[0], name[1])) {
  case code('I', 'N'):
    state.Relative = state.PenDown = state.LineType = state.PenNumber = 0;
    state.Rotation = 0;
    state.ScaleX = state.ScaleY = HpglPlotterUnit;
    state.PenWidth = state.EveryPenWidth = 1;
    state.WidthUnit = 1.0;
    state.RelativeWidths = false;
    state.OriginX = state.OriginY = 0;
    state.CharWidth = 0.187;
    state.CharHeight = 0.269;
    state.DirectionRun = 1;
    state.DirectionRise = 0;
    state.CurX = state.CurY = 0;
    state.PolygonMode = false;
    state.Polygon.clear();
    break;
  case code('D', 'F'):
    state.Relative = state.PenDown = 0;
    state.Rotation = 0;
    break;
  case code('I', 'P'):
    if (count >= 4) {
      double* p[] = {&state.P1X, &state.P1Y, &state.P2X, &state.P2Y};
      for (size_t i = 0; i < 4; ++i)
        *p[i] = ToNumber(arg(i + 1)) * HpglPlotterUnit * HpglUnitsPerMm;
    }
    break;
  case code('S', 'C'):
    if (count < 4) {
      state.ScaleX = state.ScaleY = HpglPlotterUnit;
      state.OriginX = state.OriginY = 0;
    } else {
      const double xMin = ToNumber(arg(1)), yMin = ToNumber(arg(3));
      const double rangeX = std::abs(ToNumber(arg(2)) - xMin);
      const double rangeY = std::abs(ToNumber(arg(4)) - yMin);
      const double sizeX = std::abs(state.P2X - state.P1X) / HpglUnitsPerMm;
      const double sizeY = std::abs(state.P2Y - state.P1Y) / HpglUnitsPerMm;
      if (rangeX != 0 && rangeY != 0 && sizeX != 0 && sizeY != 0) {
        state.ScaleX = sizeX / rangeX;
        state.ScaleY = sizeY / rangeY;
        // The user's minimum lands on P1.
        state.OriginX = std::min(state.P1X, state.P2X) - xMin * state.ScaleX * HpglUnitsPerMm;
        state.OriginY = std::min(state.P1Y, state.P2Y) - yMin * state.ScaleY * HpglUnitsPerMm;
      }
    }
    break;
  case code('W', 'U'):
    // Millimetres (no argument or 0), or hundredths of the P1-P2 diagonal (1).
    state.WidthUnit = 1.0;
    state.RelativeWidths = count >= 1 && ToNumber(arg(1)) == 1;
    break;
  case code('P', 'W'): {
    if (count < 1)
      break;
    const auto width = roundToInt32(penWidth(ToNumber(arg(1))));
    if (!width)
      break;
    if (count == 1) {
      // A width alone is every pen's, the one in hand too.
      std::fill(state.PenTable.begin(), state.PenTable.end(), *width);
      state.EveryPenWidth = state.PenWidth = *width;
      break;
    }
    const auto pen = roundToInt32(ToNumber(arg(2)));
    if (!pen || *pen < 0 || *pen > LargestPen)
      break;
    if (size_t(*pen) >= state.PenTable.size())
      state.PenTable.resize(size_t(*pen) + 1, 0);
    state.PenTable[size_t(*pen)] = *width;
    break;
  }
  case code('S', 'P'): {
    if (count < 1)
      break;
    const auto pen = roundToInt32(ToNumber(arg(1)));
    if (pen && *pen >= 0)
      selectPen(*pen);
    break;
  }
  case code('S', 'I'):
    // Without arguments the default size; otherwise width and height in centimetres.
    if (count >= 2) {
      state.CharWidth = std::abs(ToNumber(arg(1)));
      state.CharHeight = std::abs(ToNumber(arg(2)));
    } else {
      state.CharWidth = 0.187;
      state.CharHeight = 0.269;
    }
    break;
  case code('D', 'I'):
    if (count >= 2 && (ToNumber(arg(1)) != 0 || ToNumber(arg(2)) != 0)) {
      state.DirectionRun = ToNumber(arg(1));
      state.DirectionRise = ToNumber(arg(2));
    } else if (count == 0) {
      state.DirectionRun = 1;
      state.DirectionRise = 0;
    }
    break;
  case code('S', 'R'): {
    // Sizes in hundredths of the P1-P2 width and height; without arguments 0.75 and 1.5.
    const double w = count >= 2 ? ToNumber(arg(1)) : 0.75, h = count >= 2 ? ToNumber(arg(2)) : 1.5;
    const double mmToCm = 0.1 / HpglUnitsPerMm;
    state.CharWidth = std::abs(w / 100 * (state.P2X - state.P1X) * mmToCm);
    state.CharHeight = std::abs(h / 100 * (state.P2Y - state.P1Y) * mmToCm);
    break;
  }
  case code('D', 'R'):
    // A direction relative to the P1-P2 frame: its run across the width, its rise up the height.
    if (count >= 2 && (ToNumber(arg(1)) != 0 || ToNumber(arg(2)) != 0)) {
      state.DirectionRun = ToNumber(arg(1)) * (state.P2X - state.P1X);
      state.DirectionRise = ToNumber(arg(2)) * (state.P2Y - state.P1Y);
    } else if (count == 0) {
      state.DirectionRun = 1;
      state.DirectionRise = 0;
    }
    break;
  case code('R', 'O'):
    state.Rotation = count >= 1 ? ToNumber(arg(1)) : 0;
    break;
  case code('L', 'T'): {
    if (count < 1) {
      state.LineType = 0;
      break;
    }
    // The pattern's own number is kept: 1 dotted and 2 dashed as the drawing reads a style,
    // the longer patterns as they are. A negative (adaptive) pattern is its positive one; 0 and
    // any other value leave the line type.
    const double value = std::abs(ToNumber(arg(1)));
    if (value >= 1 && value <= 6 && value == std::floor(value))
      state.LineType = int32_t(value);
    break;
  }
  case code('P', 'A'):
    state.Relative = 0;
    pairs(walkNumber, false);
    break;
  case code('P', 'R'):
    state.Relative = 1;
    pairs(walkNumber, false);
    break;
  case code('P', 'D'):
    state.PenDown = 1;
    pairs(walkNumber, true);
    break;
  case code('P', 'U'):
    state.PenDown = 0;
    pairs(walkNumber, false);
    break;
  case code('A', 'A'):
    arc(walkNumber, 0);
    break;
  case code('A', 'R'):
    arc(walkNumber, 1);
    break;
  case code('C', 'I'):
    if (count >= 1) {
      state.Radius = toLength(arg(1));
      const auto x = roundToInt32(state.CurX), y = roundToInt32(state.CurY),
                 r = roundToInt32(state.Radius);
      if (state.PolygonMode && x && y && r) {
        // A circle is a sub-polygon of its own; the pen stays at the centre.
        state.CentreX = state.CurX;
        state.CentreY = state.CurY;
        state.NextX = state.CurX + state.Radius;
        state.NextY = state.CurY;
        polygonMove(false);
        polygonArc(0, 360);
        closeSubPolygon();
        state.CurX = state.CentreX;
        state.CurY = state.CentreY;
      } else if (walkNumber == 1 && x && y && r) {
        ItemRecord e = element(ItemCircle);
        e.X = *x;
        e.Y = *y;
        e.Width = *r;
        write(e);
        ++counts.circles;
      }
    }
    break;
  case code('E', 'A'):
    rectangle(walkNumber, 0, false);
    break;
  case code('R', 'A'):
    rectangle(walkNumber, 0, true);
    break;
  case code('E', 'R'):
    rectangle(walkNumber, 1, false);
    break;
  case code('R', 'R'):
    rectangle(walkNumber, 1, true);
    break;
  case code('E', 'W'):
    wedge(walkNumber, false);
    break;
  case code('W', 'G'):
    wedge(walkNumber, true);
    break;
  case code('P', 'M'): {
    const auto step = count >= 1 ? roundToInt32(ToNumber(arg(1))) : std::optional<int32_t>(0);
    if (step)
      polygonMode(*step);
    break;
  }
  case code('F', 'P'):
    writePolygon(walkNumber, true);
    break;
  case code('E', 'P'):
    writePolygon(walkNumber, false);
    break;
  default:
    break;  // recognised, so that it ends the command before it; nothing to do
  }
}

void HpglInterpreter::polygonMode(int32_t step) {
  if (step == 0) {
    state.PolygonMode = true;
    state.PolygonStartX = state.CurX;
    state.PolygonStartY = state.CurY;
    state.Polygon.assign(1, OutlinePoints(1));
    if (const auto p = outlinePoint(outlinepoint::Straight, state.CurX, state.CurY))
      state.Polygon.back().push_back(*p);
  } else if (state.PolygonMode && (step == 1 || step == 2)) {
    closeSubPolygon();
    if (step == 2) {
      state.PolygonMode = false;
      state.CurX = state.PolygonStartX;
      state.CurY = state.PolygonStartY;
    }
  }
}

void HpglInterpreter::polygonMove(bool down) {
  const auto next = outlinePoint(outlinepoint::Straight, state.NextX, state.NextY);
  if (!next)
    return;
  if (state.Polygon.empty())
    state.Polygon.emplace_back(1);
  OutlinePoints* sub = &state.Polygon.back();
  if (!down) {
    // A pen-up move begins the next sub-polygon there.
    if (sub->size() > 2)
      state.Polygon.emplace_back(1);
    sub = &state.Polygon.back();
    sub->resize(1);
    sub->push_back(*next);
    return;
  }
  if (sub->size() == 1)
    if (const auto from = outlinePoint(outlinepoint::Straight, state.CurX, state.CurY))
      sub->push_back(*from);
  sub->push_back(*next);
}

void HpglInterpreter::polygonArc(double startAngle, double sweep) {
  // Pieces of at most half a turn, each drawn through its middle; the pen's point begins it.
  if (!std::isfinite(sweep) || sweep == 0)
    return;
  sweep = std::clamp(sweep, -360.0, 360.0);  // more than a turn draws the one turn
  if (state.Polygon.empty())
    state.Polygon.emplace_back(1);
  OutlinePoints& sub = state.Polygon.back();
  if (sub.size() == 1) {
    const auto from = outlinePoint(outlinepoint::Straight, state.CurX, state.CurY);
    if (!from)
      return;
    sub.push_back(*from);
  }
  const int pieces = std::max(1, int(std::ceil(std::abs(sweep) / 180.0 - 1e-9)));
  const double step = sweep / pieces;
  for (int i = 0; i < pieces; ++i) {
    const double from = startAngle + step * i;
    const auto at = [this](int32_t kind, double degrees) {
      return outlinePoint(kind, state.CentreX + state.Radius * std::cos(degrees * RadiansPerDegree),
                          state.CentreY + state.Radius * std::sin(degrees * RadiansPerDegree));
    };
    const auto middle = at(outlinepoint::ArcMiddle, from + step / 2);
    const auto end = at(outlinepoint::Straight, from + step);
    if (!middle || !end)
      return;
    sub.back().Kind = outlinepoint::NoStretch;
    sub.push_back(*middle);
    sub.push_back(*end);
  }
}

void HpglInterpreter::closeSubPolygon() {
  if (state.Polygon.empty())
    return;
  close(state.Polygon.back());
  state.Polygon.emplace_back(1);
}

void HpglInterpreter::writePolygon(int walkNumber, bool filled) {
  if (walkNumber != 1 || state.PolygonMode)
    return;
  for (OutlinePoints sub : state.Polygon) {
    if (sub.size() < 3)
      continue;
    close(sub);
    writeOutlinePoints(sub, filled);
  }
}

void ImportHpgl(int32_t& /*status*/, std::string_view text, Store& store, const LayerRecord& layer,
                const LayerFileRecord& file, HpglCounts* counts) {
  HpglInterpreter interpreter(store, layer.SymbolHandle, uint8_t(file.Colour));
  interpreter.run(text);
  if (counts)
    *counts = interpreter.counts;
}

}  // namespace tvx
