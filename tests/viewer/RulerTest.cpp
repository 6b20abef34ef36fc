// The ruler's arithmetic: the tick step of the non-fixed calibrations, the fixed steps, the tick
// lengths of a group, and the sweeps with their labels, also far from the origin.
#include "viewer/Ruler.h"
#include "viewer/DisplayUnits.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace tvx::test {
namespace {

constexpr int32_t PerMm = 100000;

RulerCalibration calibration(int32_t type, int32_t unit, double custom = 2.0,
                             int32_t raster = 254000) {
  return {type, custom, unit, raster, PerMm};
}

// A length in store units whose group (ticks per label times the length) is value display units.
double lengthFor(double value, int32_t unit) {
  return value / TicksPerLabel(unit) * PerMm / displayUnitInfo(unit).FactorFromMm;
}

// The group between two labels in display units for a tick step in store units.
double groupOf(int32_t step, int32_t unit) {
  return double(step) * TicksPerLabel(unit) / PerMm * displayUnitInfo(unit).FactorFromMm;
}

TEST(RulerTickStep, MantissaOfEachCalibration) {
  struct Case {
    const char* name;
    int32_t type;
    double custom;
    int32_t raster;
    int32_t unit;
    double value;  // the length's group in display units
    double group;  // the step's group in display units
  };
  using namespace displayunit;
  const Case cases[] = {
      {"auto 0.1 stays 1 at its power", rulertype::Auto, 0, 0, Millimetre, 0.1, 0.1},
      {"auto 1.9 gives 1", rulertype::Auto, 0, 0, Millimetre, 1.9, 1},
      {"auto 2.5 gives 2", rulertype::Auto, 0, 0, Millimetre, 2.5, 2},
      {"auto 3.9 gives 2", rulertype::Auto, 0, 0, Millimetre, 3.9, 2},
      {"auto 4 gives 5", rulertype::Auto, 0, 0, Millimetre, 4, 5},
      {"auto 79 gives 50", rulertype::Auto, 0, 0, Millimetre, 79, 50},
      {"auto 8.5 gives 10", rulertype::Auto, 0, 0, Millimetre, 8.5, 10},
      {"auto 0.037 gives 0.02", rulertype::Auto, 0, 0, Millimetre, 0.037, 0.02},
      {"auto 950 in inches gives 1000", rulertype::Auto, 0, 0, Inch, 950, 1000},
      {"custom 2.5", rulertype::Custom, 2.5, 0, Millimetre, 37, 25},
      {"custom 1 below a first digit of 5", rulertype::Custom, 1, 0, Millimetre, 4.9, 1},
      {"custom 1 at a first digit of 5", rulertype::Custom, 1, 0, Millimetre, 5.5, 1},
      {"custom 1 above a first digit of 5", rulertype::Custom, 1, 0, Millimetre, 6.2, 10},
      {"custom 1 at 9", rulertype::Custom, 1, 0, Millimetre, 0.93, 1},
      {"grid of 0.25 mm gives 2.5", rulertype::Grid, 0, 25000, Millimetre, 3.3, 2.5},
      {"grid of 1 mm above 5 gives 10", rulertype::Grid, 0, 100000, Millimetre, 7, 10},
      {"grid of 0.1 inch", rulertype::Grid, 0, 254000, Inch, 12, 10},
  };
  for (const Case& c : cases) {
    const RulerCalibration cal = calibration(c.type, c.unit, c.custom, c.raster);
    const int32_t step = RulerTickStep(lengthFor(c.value, c.unit), cal);
    EXPECT_NEAR(groupOf(step, c.unit), c.group, c.group * 1e-3) << c.name;
  }
  EXPECT_EQ(RulerTickStep(0, calibration(rulertype::Auto, displayunit::Inch)), 0);
  EXPECT_EQ(RulerTickStep(-lengthFor(2.5, displayunit::Millimetre),
                          calibration(rulertype::Auto, displayunit::Millimetre)),
            RulerTickStep(lengthFor(2.5, displayunit::Millimetre),
                          calibration(rulertype::Auto, displayunit::Millimetre)));
}

TEST(RulerTicks, LengthsOfAGroup) {
  std::vector<int32_t> inch, mm;
  for (int32_t p = 0; p < 16; ++p)
    inch.push_back(TickPixels(p, 16));
  for (int32_t p = 0; p < 10; ++p)
    mm.push_back(TickPixels(p, 10));
  EXPECT_EQ(inch, (std::vector<int32_t>{12, 3, 6, 3, 9, 3, 6, 3, 9, 3, 6, 3, 9, 3, 6, 3}));
  EXPECT_EQ(mm, (std::vector<int32_t>{12, 6, 6, 6, 6, 9, 6, 6, 6, 6}));
}

TEST(RulerSteps, FixedCalibrationByUnitAndHeight) {
  struct Case {
    const char* name;
    int32_t unit;
    int32_t precision;
    double heightPoints;
    double tick;  // store units
    int32_t ticks;
    std::string format;
  };
  const Case cases[] = {
      // An inch in sixteenths at 0.01 inch a pixel; ten inches once the view is tall enough to
      // want it at 0.1 inch a pixel.
      {"inches, fine", displayunit::Inch, 25400, 100, 2540000 / 16.0, 16, "###.###"},
      {"inches, coarse and tall", displayunit::Inch, 254000, 300, 25400000 / 16.0, 16, "###.###"},
      {"millimetres", displayunit::Millimetre, 10000, 300, 100000, 10, "######.###"},
      {"millimetres, coarse", displayunit::Millimetre, 2540000, 600, 10000000, 10, "######.###"},
  };
  for (const Case& c : cases) {
    const RulerSteps s =
        RulerStepsFor(c.precision, c.heightPoints, calibration(rulertype::Fixed, c.unit));
    EXPECT_NEAR(s.TickStep, c.tick, 1e-6) << c.name;
    EXPECT_EQ(s.TicksPerLabel, c.ticks) << c.name;
    EXPECT_EQ(s.LabelFormat, c.format) << c.name;
    // At least a pixel between two ticks for the views of the table.
    EXPECT_GE(s.TickStep, c.precision) << c.name;
  }
}

TEST(RulerSweep, TicksAndLabelsOfEachDirection) {
  const RulerCalibration mm = calibration(rulertype::Auto, displayunit::Millimetre);
  RulerSteps steps;
  steps.TickStep = 100000;  // 1 mm
  steps.TicksPerLabel = 10;
  struct Case {
    const char* name;
    double origin;
    int32_t direction;
    double low, high;
    size_t count;
    double firstAt;
    int32_t firstPixels;
    std::vector<std::string> labels;
  };
  const Case cases[] = {
      {"right from inside", 0, 1, -500000, 2500000, 26, 0, 12, {"0", "10", "20"}},
      {"left from inside, positive labels", 0, -1, -2500000, 500000, 26, 0, 12, {"0", "10", "20"}},
      {"right from far left starts inside", -200000000, 1, 0, 1550000, 16, 0, 12, {"2000", "2010"}},
      {"left from far right", 200000000, -1, -50000, 1050000, 11, 1000000, 12, {"1990", "2000"}},
      {"origin beyond the view on the wrong side", 5000000, 1, 0, 1000000, 0, 0, 0, {}},
  };
  for (const Case& c : cases) {
    const std::vector<RulerTick> ticks =
        RulerSweep(c.origin, c.direction, c.low, c.high, steps, mm);
    ASSERT_EQ(ticks.size(), c.count) << c.name;
    std::vector<std::string> labels;
    for (const RulerTick& t : ticks) {
      EXPECT_GE(t.At, c.low) << c.name;
      EXPECT_LE(t.At, c.high) << c.name;
      if (!t.Label.empty() || t.Pixels == 12)
        labels.push_back(t.Label);
    }
    if (c.count == 0)
      continue;
    EXPECT_DOUBLE_EQ(ticks.front().At, c.firstAt) << c.name;
    EXPECT_EQ(ticks.front().Pixels, c.firstPixels) << c.name;
    EXPECT_EQ(labels, c.labels) << c.name;
  }
}

}  // namespace
}  // namespace tvx::test
