// What the blocks of a drill program do with the tool: holes drilled where a coordinate block
// stands, repeated by "R", slots drilled by "G85", and slots routed between "M15" (tool down) and
// "M16"/"M17" (tool up) along G01 lines and G02/G03 arcs. The scan counts and measures what this
// finds, the import places it; both read a block alike through this one class.
#pragma once

#include "common/ToNumber.h"
#include "import/readers/excellon/ExcellonBlocks.h"
#include "kernel/PlaneGeometry.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>

namespace tvx {

// One thing the tool makes, in file coordinates (store units).
struct DrillStroke {
  enum Kind { Hole, Slot, Arc } kind = Hole;
  Point from;    // a hole's centre, or where a slot starts
  Point to;      // where a slot ends
  Point centre;  // an arc's centre
  bool clockwise = false;
  bool startsCut = true;  // the first stroke of a routed slot, or any hole or drilled slot
};

class DrillMotion {
public:
  // text is the whole program: a program that routes (M15, or G01 to G03 moves) moves the tool
  // without drilling after G00; one that never plunges with M15 cuts along every routed move.
  explicit DrillMotion(std::string_view text)
      : routes_(text.find("M15") != std::string_view::npos ||
                text.find("G01") != std::string_view::npos ||
                text.find("G02") != std::string_view::npos ||
                text.find("G03") != std::string_view::npos),
        plunges_(text.find("M15") != std::string_view::npos) {}

  // Reads one block; decode turns a coordinate field into store units; emit(const DrillStroke&)
  // receives each hole or cut. Coordinates are modal: a block with only X keeps the last Y.
  template <typename Decode, typename Emit>
  void take(const ExcellonBlock& block, Decode&& decode, Emit&& emit) {
    const int32_t g =
        block[ExcellonBlock::G].empty() ? -1 : toInt32(ToNumber(block[ExcellonBlock::G]));
    followMachineCode(block[ExcellonBlock::M]);
    followMode(g);
    const std::string& xs = block[ExcellonBlock::X];
    const std::string& ys = block[ExcellonBlock::Y];
    if (xs.empty() && ys.empty())
      return;
    const Point target = pointOf(xs, ys, decode);

    if (g == ZeroSet) {  // "G93": the zero point of the coordinates that follow; no hole
      origin_ = {target.x - origin_.x, target.y - origin_.y};
      return;
    }
    if (g == DrilledSlot) {
      Point end = target;
      if (!block[ExcellonBlock::SlotX].empty())
        end.x = absolute(decode(block[ExcellonBlock::SlotX]), origin_.x, target.x);
      if (!block[ExcellonBlock::SlotY].empty())
        end.y = absolute(decode(block[ExcellonBlock::SlotY]), origin_.y, target.y);
      emit(DrillStroke{DrillStroke::Slot, target, end, {}, false, true});
      position_ = end;
      return;
    }
    if (!block[ExcellonBlock::R].empty() && !routing_) {
      // A repeat: the fields are the step, taken as often as R says from the last hole.
      const Point step{xs.empty() ? 0.0 : decode(xs), ys.empty() ? 0.0 : decode(ys)};
      const int32_t count = std::min(toInt32(ToNumber(block[ExcellonBlock::R])), repeatsLeft_);
      repeatsLeft_ -= std::max(count, 0);
      for (int32_t i = 0; i < count; ++i) {
        position_ = {position_.x + step.x, position_.y + step.y};
        emit(DrillStroke{DrillStroke::Hole, position_, position_, {}, false, true});
      }
      return;
    }

    const Point from = position_;
    position_ = target;
    if (!routing_) {
      emit(DrillStroke{DrillStroke::Hole, target, target, {}, false, true});
      return;
    }
    if (interpolation_ == Move || (plunges_ && !toolDown_))
      return;
    DrillStroke cut{DrillStroke::Slot, from, target, {}, false, !cutting_};
    cutting_ = true;
    if (interpolation_ == Clockwise || interpolation_ == CounterClockwise) {
      cut.kind = DrillStroke::Arc;
      cut.clockwise = interpolation_ == Clockwise;
      if (!arcCentre(block, from, target, cut.clockwise, decode, cut.centre))
        cut.kind = DrillStroke::Slot;
    }
    emit(cut);
  }

  // Where the tool stands before the first block, for modal coordinates.
  void startAt(Point position) { position_ = position; }

private:
  enum Interpolation { Move, Linear, Clockwise, CounterClockwise };
  static constexpr int32_t ZeroSet = 93;
  static constexpr int32_t DrilledSlot = 85;
  // Repeats of one program, all blocks together: a file cannot make more holes by them.
  static constexpr int32_t MaxRepeats = 100000;

  void followMachineCode(const std::string& m) {
    if (m.empty())
      return;
    const double code = ToNumber(m);
    if (code == 15.0) {
      toolDown_ = true;
      cutting_ = false;
    } else if (code == 16.0 || code == 17.0) {
      toolDown_ = false;
      cutting_ = false;
    }
  }

  void followMode(int32_t g) {
    switch (g) {
    case 0:
      if (routes_) {
        routing_ = true;
        interpolation_ = Move;
        cutting_ = false;
      }
      break;
    case 1:
    case 2:
    case 3:
      routing_ = true;
      interpolation_ = g == 1 ? Linear : g == 2 ? Clockwise : CounterClockwise;
      break;
    case 5:   // drill mode
    case 81:  // canned drilling
      routing_ = false;
      break;
    case 90:
      incremental_ = false;
      break;
    case 91:
      incremental_ = true;
      break;
    default:
      break;
    }
  }

  double absolute(double value, double origin, double last) const {
    return incremental_ ? last + value : origin + value;
  }

  template <typename Decode>
  Point pointOf(const std::string& xs, const std::string& ys, Decode& decode) const {
    return {xs.empty() ? position_.x : absolute(decode(xs), origin_.x, position_.x),
            ys.empty() ? position_.y : absolute(decode(ys), origin_.y, position_.y)};
  }

  // The centre of an arc from its I and J offsets (from the start), or from its radius A: of the
  // two circles through both ends, the one whose arc in the given direction is the shorter.
  template <typename Decode>
  static bool arcCentre(const ExcellonBlock& block, Point from, Point to, bool clockwise,
                        Decode& decode, Point& centre) {
    const std::string& i = block[ExcellonBlock::I];
    const std::string& j = block[ExcellonBlock::J];
    if (!i.empty() || !j.empty()) {
      centre = {from.x + (i.empty() ? 0.0 : decode(i)), from.y + (j.empty() ? 0.0 : decode(j))};
      return true;
    }
    const std::string& a = block[ExcellonBlock::A];
    if (a.empty())
      return false;
    const double radius = std::abs(decode(a));
    const double dx = to.x - from.x, dy = to.y - from.y;
    const double chord = std::hypot(dx, dy);
    if (chord == 0.0 || radius == 0.0)
      return false;
    const double h = std::sqrt(std::max(0.0, radius * radius - chord * chord / 4.0));
    // Left of the direction of travel for a counter-clockwise arc, right for a clockwise one.
    const double side = clockwise ? -1.0 : 1.0;
    centre = {(from.x + to.x) / 2.0 - side * h * dy / chord,
              (from.y + to.y) / 2.0 + side * h * dx / chord};
    return true;
  }

  bool routes_;
  bool plunges_;
  bool routing_ = false;
  bool toolDown_ = false;
  bool cutting_ = false;
  bool incremental_ = false;
  int32_t repeatsLeft_ = MaxRepeats;
  Interpolation interpolation_ = Move;
  Point position_;
  Point origin_;
};

}  // namespace tvx
