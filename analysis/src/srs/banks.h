// Sixteen oscillators side by side, from one sample to the next, in either of two forms:
//
//   StiffBank  the response and its difference from sample to sample.  As few operations as the
//              usual filter, which takes two responses; but the difference does not cancel.
//   SoftBank   the motion of the mass itself, for oscillators that see the whole shock within a
//              cycle.  It is small beside the base's, which is integrated apart and without
//              rounding: what a compensated shock leaves behind is not lost in it.
//
// Both walk with additions and multiplications alone, so that their bits are the same in lanes of
// any width.
#pragma once

#include <array>
#include <cstddef>

#include "numeric/instruction_set.h"
#include "srs/base_motion.h"
#include "srs/oscillator.h"

namespace qarv::analysis {

inline constexpr std::size_t kLanes = 16;  // as many recursions hide the latency of one
struct alignas(64) Lanes : std::array<double, kLanes> {};  // none of its vectors in two lines

/// What takes a response from one sampling interval to the next; d is its difference.
///
///   d[i] = kept d[i - 1] - stiffness y[i]
///          + newest (x[i + 1] - x[i]) + before (x[i] - x[i - 1]) + held x[i]
struct StepRule {
  double stiffness, kept, newest, before, held;

  StepRule(const Oscillator& o, const Drive& drive) {
    const double moved = o.impulse * o.impulse - o.slopeKept * o.constant;
    const double gain = o.constant + moved;  // of all terms positive
    stiffness = o.h2 * gain;
    kept = o.kept;
    newest = drive.change * o.constant + drive.level * o.ramp;
    before = drive.change * moved +
             drive.level * (o.impulse * o.constant - o.slopeKept * o.ramp - moved);
    held = drive.level * gain;
  }
};

/// Two numbers of each oscillator.
struct BankState {
  Lanes a{}, b{};
};

/// The same of one.
struct LaneState {
  double a, b;
};

/// The state is the response before a step, and its difference over the step before.
class StiffBank {
 public:
  explicit StiffBank(const BaseMotion* base)
      : acceleration_(base->acceleration.data()), change_(base->change.data()) {}

  void Set(std::size_t lane, const Oscillator& o, const Drive& drive) {
    const StepRule rule(o, drive);
    scale_[lane] = rule.newest;
    stiffness_[lane] = rule.stiffness;
    kept_[lane] = rule.kept;
    held_[lane] = rule.held / rule.newest;
    before_[lane] = rule.before / rule.newest;
    slopeByStep_[lane] = 1.0 / o.impulse;
    slopeByY_[lane] = o.h2 * o.constant / o.impulse;
    slopeByX_[lane] = drive.level * o.constant / o.impulse / rule.newest;
    slopeByChange_[lane] =
        (drive.change * o.constant + drive.level * o.ramp) / o.impulse / rule.newest;
  }

  /// The output is this times the response; it makes the coefficient of the newest change 1.
  double Scale(std::size_t lane) const { return scale_[lane]; }

  QARV_LANES_INLINE void Step(std::size_t lane, std::size_t i, double& y, double& d) const {
    d = (change_[i + 1] + before_[lane] * change_[i] + held_[lane] * acceleration_[i] +
         kept_[lane] * d) -
        stiffness_[lane] * y;
    y += d;
  }
  QARV_LANES_INLINE double Response(std::size_t, std::size_t, double y, double) const { return y; }
  /// At point i, from the state there and the one behind it.
  QARV_LANES_INLINE double Slope(std::size_t lane, std::size_t i, double y, double, double,
                                 double d) const {
    return (slopeByStep_[lane] * d + slopeByY_[lane] * y) -
           (slopeByX_[lane] * acceleration_[i] + slopeByChange_[lane] * change_[i + 1]);
  }

  /// The response over interval i, which leads from one state to the other.
  Arc ArcOf(const Oscillator& o, const Drive& drive, std::size_t lane, std::size_t i,
            const LaneState& from, const LaneState& to) const {
    const double x = acceleration_[i] / scale_[lane];
    const double rise = change_[i + 1] / scale_[lane];
    Arc arc{from.a, 0.0, drive.level * x + drive.change * rise, drive.level * rise};
    arc.slope = (to.b - (arc.force - o.h2 * arc.y) * o.constant - arc.rise * o.ramp) / o.impulse;
    return arc;
  }

 private:
  const double* acceleration_;
  const double* change_;
  Lanes stiffness_{}, kept_{}, held_{}, before_{};
  Lanes slopeByStep_{}, slopeByY_{}, slopeByX_{}, slopeByChange_{};
  Lanes scale_{};
};

/// The state is the displacement and the velocity of the mass; relative motion is the base's less
/// the mass's.
class SoftBank {
 public:
  SoftBank(const BaseMotion* base, const BaseMotion::Travel* travel)
      : acceleration_(base->acceleration.data()),
        change_(base->change.data()),
        travel_(travel),
        velocity_(travel->velocity.data()),
        displacement_(travel->displacement.data()) {}

  void Set(std::size_t lane, const Oscillator& o, const Drive& drive) {
    // By how much the mass moves in a step, on account of each of the four.
    moveByU_[lane] = o.h2 * o.constant;
    moveByV_[lane] = o.s2 * o.constant + o.h2 * o.ramp;
    moveByX_[lane] = o.s2 * o.ramp + o.h2 * o.square;
    moveByChange_[lane] = o.s2 * o.square + o.h2 * o.cube;
    gainByU_[lane] = o.h2 * o.impulse;
    gainByV_[lane] = o.s2 * o.impulse + o.h2 * o.constant;
    level_[lane] = drive.level;
    slope_[lane] = drive.change;
    s2_[lane] = o.s2;
    h2_[lane] = o.h2;
  }

  double Scale(std::size_t) const { return 1.0; }

  QARV_LANES_INLINE void Step(std::size_t lane, std::size_t i, double& r, double& q) const {
    const double u = displacement_[i] - r;
    const double v = velocity_[i] - q;
    const double x = acceleration_[i];
    const double change = change_[i + 1];
    r += q + (moveByU_[lane] * u + moveByV_[lane] * v + moveByX_[lane] * x +
              moveByChange_[lane] * change);
    q += gainByU_[lane] * u + gainByV_[lane] * v + moveByV_[lane] * x + moveByX_[lane] * change;
  }
  QARV_LANES_INLINE double Response(std::size_t lane, std::size_t i, double r, double q) const {
    return level_[lane] * (displacement_[i] - r) + slope_[lane] * (velocity_[i] - q);
  }
  QARV_LANES_INLINE double Slope(std::size_t lane, std::size_t i, double r, double q, double,
                                 double) const {
    const double u = displacement_[i] - r;
    const double v = velocity_[i] - q;
    return level_[lane] * v + slope_[lane] * (acceleration_[i] - s2_[lane] * v - h2_[lane] * u);
  }

  Arc ArcOf(const Oscillator& o, const Drive& drive, std::size_t, std::size_t i,
            const LaneState& from, const LaneState&) const {
    double u = displacement_[i] - from.a;
    double v = velocity_[i] - from.b;
    if (i + 2 == travel_->velocity.size()) {  // the last point; one more is kept
      u += travel_->displacementRest;
      v += travel_->velocityRest;
    }
    const double x = acceleration_[i];
    const double rise = change_[i + 1];
    return {drive.level * u + drive.change * v,
            drive.level * v + drive.change * (x - o.s2 * v - o.h2 * u),
            drive.level * x + drive.change * rise, drive.level * rise};
  }

 private:
  const double* acceleration_;
  const double* change_;
  const BaseMotion::Travel* travel_;
  const double* velocity_;
  const double* displacement_;
  Lanes moveByU_{}, moveByV_{}, moveByX_{}, moveByChange_{}, gainByU_{}, gainByV_{};
  Lanes level_{}, slope_{}, s2_{}, h2_{};
};

}  // namespace qarv::analysis
