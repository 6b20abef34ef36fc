#include "viewer/Ruler.h"

#include "common/FormatNumber.h"
#include "kernel/Graphics.h"
#include "viewer/DisplayUnits.h"

#include <algorithm>
#include <cmath>

namespace tvx {

namespace {

constexpr int32_t RulerModeBits = 0x18;
// A sweep whose ticks would stand closer than this (in pixels) is not drawn.
constexpr double DensestTickPixels = 0.5;
// The strip: 20 pixels, the left one twice as wide, the bottom one one and a half times.
constexpr int32_t StripPixels = 20;
constexpr int32_t LabelGapPixels = 2;

bool inches(int32_t unit) { return unit != displayunit::Millimetre; }

double factorOf(int32_t unit) { return displayUnitInfo(unit).FactorFromMm; }

// The mantissa of a non-fixed calibration for a first digit d.
double mantissa(int32_t d, const RulerCalibration& c) {
  double m = 1;
  switch (c.RulerType) {
  case rulertype::Grid: {
    m = double(c.RasterStep) / c.UnitsPerMm * factorOf(c.DisplayUnit);
    for (int i = 0; i < 40 && m > 0 && m < 1; ++i)
      m *= 10;
    for (int i = 0; i < 40 && m >= 10; ++i)
      m /= 10;
    break;
  }
  case rulertype::Custom:
    m = c.RulerCustomStep;
    break;
  default:
    return d <= 1 ? 1 : d <= 3 ? 2 : d <= 7 ? 5 : 10;
  }
  return m == 1 && d > 5 ? 10 : m;
}

// The group length (between two labels) of a non-fixed ruler in the display unit; 0 for none.
double groupLength(double length, const RulerCalibration& c) {
  const int32_t n = TicksPerLabel(c.DisplayUnit);
  double v = std::abs(length) / c.UnitsPerMm * factorOf(c.DisplayUnit) * n;
  if (!(v > 0) || !std::isfinite(v))
    return 0;
  const bool upwards = v < 1;
  int32_t e = 0, d = 0;
  for (int i = 0; i < 64; ++i) {
    d = int32_t(std::min(std::trunc(v), 1e9));
    v = upwards ? v * 10 : v / 10;
    if (d >= 1 && d <= 9)
      break;
    e += upwards ? -1 : 1;
  }
  return mantissa(d, c) * std::pow(10.0, e);
}

// A label through its picture, without a bare decimal point; 0 as a digit of its own.
std::string labelText(double value, const char* format) {
  std::string text = FormatNumber(value, format);
  if (!text.empty() && text.back() == '.')
    text.pop_back();
  if (text.empty())
    text.push_back('0');
  return text;
}

}  // namespace

int32_t TicksPerLabel(int32_t displayUnit) { return inches(displayUnit) ? 16 : 10; }

int32_t RulerTickStep(double length, const RulerCalibration& c) {
  const double group = groupLength(length, c);
  return int32_t(
      std::lround(group * c.UnitsPerMm / factorOf(c.DisplayUnit) / TicksPerLabel(c.DisplayUnit)));
}

RulerSteps RulerStepsFor(int32_t precision, double heightPoints, const RulerCalibration& c) {
  RulerSteps steps;
  const bool inch = inches(c.DisplayUnit);
  steps.TicksPerLabel = TicksPerLabel(c.DisplayUnit);
  const double p = std::max(1, precision);
  if (c.RulerType != rulertype::Fixed) {
    const double length =
        inch ? 160 * p * factorOf(displayunit::Inch) : 10 * p * factorOf(displayunit::Millimetre);
    steps.TickStep = RulerTickStep(length, c);
  } else {
    // A tenth of the unit's length, scaled up by tens until the ticks are far enough apart
    // for the view's height; an inch is then cut in sixteenths.
    const double b = c.UnitsPerMm * (inch ? 2.54 : 0.1);
    double scale = b / p;
    while (scale > 10)
      scale /= 10;
    double s = p * scale;
    for (int i = 0; i < 40 && p * heightPoints / 175 > s; ++i)
      s *= 10;
    steps.TickStep = inch ? s * 10 / 16 : s;
    steps.LabelFormat = inch ? "###.###" : "######.###";
  }
  return steps;
}

int32_t TickPixels(int32_t position, int32_t ticksPerLabel) {
  if (position == 0)
    return 12;
  if (ticksPerLabel == 16)
    return position % 2 == 1 ? 3 : position % 4 == 2 ? 6 : 9;
  return position == 5 ? 9 : 6;
}

std::vector<RulerTick> RulerSweep(double origin, int32_t direction, double low, double high,
                                  const RulerSteps& steps, const RulerCalibration& c) {
  std::vector<RulerTick> ticks;
  const double s = steps.TickStep;
  if (!(s > 0) || high < low)
    return ticks;
  // The first and last tick counts inside the view.
  const double near = direction > 0 ? (low - origin) / s : (origin - high) / s;
  const double far = direction > 0 ? (high - origin) / s : (origin - low) / s;
  const int64_t first = int64_t(std::max(0.0, std::ceil(near)));
  const double lastCount = std::floor(far);
  if (lastCount < double(first) || lastCount - double(first) > 1e6)
    return ticks;
  const int64_t last = int64_t(lastCount);
  const int32_t n = steps.TicksPerLabel;
  const double group = s * n / c.UnitsPerMm * factorOf(c.DisplayUnit);
  ticks.reserve(size_t(last - first + 1));
  for (int64_t k = first; k <= last; ++k) {
    RulerTick tick;
    tick.At = origin + double(direction) * double(k) * s;
    const int32_t position = int32_t(k % n);
    tick.Pixels = TickPixels(position, n);
    if (position == 0)
      tick.Label = labelText(double(k / n) * group, steps.LabelFormat);
    ticks.push_back(std::move(tick));
  }
  return ticks;
}

void DrawRuler(Graphics& g, int32_t dc, int32_t drawMode, const RulerView& view,
               const RulerCalibration& c) {
  const int32_t p = std::max(1, view.Precision);
  const int32_t m = view.Mirror ? -1 : 1;
  const int32_t w = StripPixels * p;
  const int32_t h = w * 3 / 2;
  int32_t leftX = 0, topY = 0, bottomX = 0, bottomY = view.Height, rightX = view.Width,
          rightY = view.Height;
  if (!g.G_DPtoLP(dc, leftX, topY) || !g.G_DPtoLP(dc, bottomX, bottomY) ||
      !g.G_DPtoLP(dc, rightX, rightY))
    return;

  g.G_SetDrawMode(dc, drawMode | RulerModeBits);
  g.G_SetWidth(dc, 1);
  for (const auto& [colour, style] : {std::pair{RulerStripColour, int32_t(penstyle::Filled)},
                                      std::pair{RulerEdgeColour, int32_t(penstyle::Outline)}}) {
    g.G_SetColor(dc, colour);
    g.G_SetStyle(dc, style);
    g.G_Rectangle(dc, bottomX, bottomY, 2 * w * m, topY - bottomY);
    g.G_Rectangle(dc, bottomX, bottomY, rightX - bottomX, h);
  }

  g.G_SetTextMode(dc, 0, 1, 1);
  g.G_SetTextMirror(dc, view.Mirror ? 1 : 0);
  g.G_SetStyle(dc, penstyle::Outline);
  const RulerSteps steps = RulerStepsFor(p, view.HeightPoints, c);
  if (steps.TickStep < DensestTickPixels * p)
    return;
  const double xLow = std::min(bottomX, rightX), xHigh = std::max(bottomX, rightX);
  const double yLow = std::min(bottomY, topY), yHigh = std::max(bottomY, topY);
  const int32_t gap = LabelGapPixels * p;
  // X right and left along the bottom (the pair's colours exchanged in a mirrored view), then Y
  // up and down along the left edge.
  for (const int32_t direction : {1, -1}) {
    const bool first = (direction > 0) != view.Mirror;
    g.G_SetColor(dc, first ? RulerSweepColour : RulerEdgeColour);
    for (const RulerTick& t : RulerSweep(view.OriginX, direction, xLow, xHigh, steps, c)) {
      const int32_t x = int32_t(std::lround(t.At));
      const int32_t top = bottomY + t.Pixels * p;
      g.G_Line(dc, x, bottomY, x, top);
      if (!t.Label.empty())
        g.G_PixelText(dc, x + gap * m, top, RulerLabelPixels, t.Label);
    }
  }
  for (const int32_t direction : {1, -1}) {
    g.G_SetColor(dc, direction > 0 ? RulerSweepColour : RulerEdgeColour);
    for (const RulerTick& t : RulerSweep(view.OriginY, direction, yLow, yHigh, steps, c)) {
      const int32_t y = int32_t(std::lround(t.At));
      const int32_t end = bottomX + t.Pixels * p * m;
      g.G_Line(dc, bottomX, y, end, y);
      if (!t.Label.empty())
        g.G_PixelText(dc, end + gap * m, y, RulerLabelPixels, t.Label);
    }
  }
}

}  // namespace tvx
