// The ruler along the view's left and bottom edges: its four calibrations, the steps of its ticks,
// the ticks of the four sweeps from the origin to the view's edges, and the drawing of it all.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tvx {

class Graphics;

// Values of RulerType.
namespace rulertype {
inline constexpr int32_t Auto = 0;
inline constexpr int32_t Fixed = 1;
inline constexpr int32_t Grid = 2;
inline constexpr int32_t Custom = 3;
}  // namespace rulertype

// What the ruler's steps depend on.
struct RulerCalibration {
  int32_t RulerType = rulertype::Auto;
  double RulerCustomStep = 2.0;
  int32_t DisplayUnit = 0;
  int32_t RasterStep = 254000;  // store units, for the Grid calibration
  int32_t UnitsPerMm = 100000;
};

// Ticks in a group between two labels: 16 in inches, 10 in millimetres.
int32_t TicksPerLabel(int32_t displayUnit);

// The tick step of a non-fixed ruler for a length in store units, in store units: the length in
// the display unit (times the ticks per label) as d times a power of ten, d's mantissa by the
// calibration, back in store units per tick. Zero stays zero.
int32_t RulerTickStep(double length, const RulerCalibration& calibration);

// The step of one tick in store units and the label's picture.
struct RulerSteps {
  double TickStep = 0;
  int32_t TicksPerLabel = 16;
  const char* LabelFormat = "###.###";
};
// The steps at a precision (store units per pixel) for a view heightPoints high (in 1/72 inch).
RulerSteps RulerStepsFor(int32_t precision, double heightPoints, const RulerCalibration& c);

// Tick length in pixels at a position inside a group: 12 at the label, then by the unit's
// sixteenths or tenths.
int32_t TickPixels(int32_t position, int32_t ticksPerLabel);

// One tick of a sweep: where it stands on its axis (store units), its length in pixels and its
// label (empty but at a group's first tick).
struct RulerTick {
  double At = 0;
  int32_t Pixels = 0;
  std::string Label;
};
// The ticks of one sweep from origin in direction (+1 or -1) that lie between low and high, the
// first group inside computed rather than counted up to. Labels are positive on both sides.
std::vector<RulerTick> RulerSweep(double origin, int32_t direction, double low, double high,
                                  const RulerSteps& steps, const RulerCalibration& c);

// The view the ruler is drawn on.
struct RulerView {
  int32_t Precision = 1;  // store units per pixel
  int32_t Width = 0;      // pixels
  int32_t Height = 0;
  double HeightPoints = 0;  // the view's height in 1/72 inch
  bool Mirror = false;
  int32_t OriginX = 0;  // where the ticks count from, in store units
  int32_t OriginY = 0;
};

// Palette colours of the ruler: the strip, its edge and the second sweep of a pair, the first.
inline constexpr int32_t RulerStripColour = 15;
inline constexpr int32_t RulerEdgeColour = 4;
inline constexpr int32_t RulerSweepColour = 9;
inline constexpr int32_t RulerLabelPixels = 10;

// Draws the strip and the four sweeps on the open device in drawMode (bits 0x18 added): 4 draws,
// 6 draws by exclusive-or.
void DrawRuler(Graphics& graphics, int32_t dc, int32_t drawMode, const RulerView& view,
               const RulerCalibration& calibration);

}  // namespace tvx
