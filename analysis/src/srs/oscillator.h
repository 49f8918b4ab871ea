// One oscillator over one sampling interval, within which its input is a straight line.
//
//   y'' + 2 s y' + h^2 y = force + rise t,   0 <= t <= 1,   s = zeta h,   h = w T
//
// Time runs in sampling intervals.  Responses are power series in t: they converge quickly, since h
// stays below pi, nothing cancels in them where h is small, and they need no sine or exponential.
#pragma once

#include <array>
#include <cstddef>

#include "analysis/srs.h"

namespace qarv::analysis {

/// What drives a response: level times the base's acceleration x, and change times its slope x'.
///
///   relative displacement, with its sign changed      x
///   relative velocity, with its sign changed                    x'
///   absolute acceleration                         h^2 x + 2 s x'
struct Drive {
  double level, change;
};

/// What a response does over an interval: its start, and what drives it.
struct Arc {
  double y, slope, force, rise;
  Arc operator-() const { return {-y, -slope, -force, -rise}; }
};

class Oscillator {
 public:
  /// @param[in] step  2 pi f / fsamp, above 0 and below pi
  /// @param[in] zeta  damping ratio, 0 <= zeta < 1
  Oscillator(double step, double zeta);

  double h, zeta;
  double h2, s2;  // h^2 and 2 s
  /// The responses from rest to a unit impulse, and to 1, t, t^2 / 2, t^3 / 6, at t = 1.
  double impulse, constant, ramp, square, cube;
  double slopeKept;  // the slope at t = 1 of a response that starts with slope 1
  double kept;       // e^(-2 s)

  /// The response at the end of an interval.
  double ValueAfter(const Arc& arc) const;
  double SlopeAfter(const Arc& arc) const;
  double Bend(const Arc& arc) const { return arc.force - h2 * arc.y - s2 * arc.slope; }

  /// By how much a response can exceed the higher one of an interval's ends, where its second
  /// derivative is at most 1 at both.
  double MarginByBend() const { return FarthestFromChord(1.0, h2 * constant / impulse); }

  /// The second and third derivative at the start of an interval, from its ends:
  ///
  ///   turn = y'(1) - y'(0),   lead = y(1) - y(0) - y'(0)
  ///
  /// From the second one on the derivatives are free responses: nothing else is needed.
  struct BendRule {
    double bendByLead, bendByTurn, thirdByLead, thirdByTurn;
  };
  BendRule bendRule;
  /// The response that starts with these.
  Arc ArcOf(double y, double slope, double bend, double third) const {
    return {y, slope, bend + h2 * y + s2 * slope, third + s2 * bend + h2 * slope};
  }

  /// Where a response can turn, and how high, by the ends of an interval.
  struct TurnRule {
    /// It exceeds the higher end by no more than byTurn |turn| + byLean |lean|, where
    /// lean = 2 (y(1) - y(0)) - y'(0) - y'(1).
    double byTurn, byLean;
    /// If both slopes have the same sign, it turns only if |lean| times this exceeds their sum.
    double leanest;
  };
  TurnRule TurnRuleOf() const;

  /// The highest point inside an interval; minus infinity if the response has no top there.
  double Crest(const Arc& arc) const;

  static constexpr std::size_t kMostTerms = 40;  // pi^n / n! is below 1e-19 from 33 on
  using Series = std::array<double, kMostTerms>;

  std::size_t Terms() const { return terms_; }
  /// What the second derivative at a start, and the third, add to the response: its powers of t.
  const Series& ByBend() const { return byBend_; }
  const Series& ByThird() const { return ramp_; }

 private:
  std::size_t terms_;
  Series impulse_{}, constant_{}, ramp_{}, byBend_{};  // the responses' coefficients

  struct Jet {
    double value, slope, bend;
  };
  Jet At(const Series& y, double t) const;
  double FarthestFromChord(double bend, double third) const;
  template <class F>
  double Zero(const Series& y, double low, double high, F f) const;
};

Drive DriveOf(const Oscillator& oscillator, SrsResponse response);

/// What a driven response is multiplied by, to be in the units of the spectrum and with its sign.
double UnitOf(const Oscillator& oscillator, SrsResponse response, double fsamp);

/// The extremes of the free response that starts with y and, in units of h, with the slope v.
SrsExtremes FreeExtremes(double y, double v, double zeta);

}  // namespace qarv::analysis
