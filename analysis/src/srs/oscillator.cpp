// Power series of an oscillator's response within a sampling interval, and its free decay.
#include "srs/oscillator.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "common/numeric/constants.h"
#include "numeric/elementary.h"

namespace qarv::analysis {

using common::elementary::Atan;
using common::elementary::Exp;

Oscillator::Oscillator(double step, double damping)
    : h(step), zeta(damping), h2(step * step), s2(2.0 * damping * step), kept(Exp(-s2)) {
  // The n-th coefficient is below h^(n - 1) / (n - 1)!.
  terms_ = 4;
  for (double bound = 1.0; bound > 1e-19 && terms_ < kMostTerms; ++terms_) {
    bound *= h / static_cast<double>(terms_ - 3);
  }
  impulse_[1] = 1.0;
  for (std::size_t n = 2; n < terms_; ++n) {
    const auto k = static_cast<double>(n);
    impulse_[n] = -(s2 * (k - 1.0) * impulse_[n - 1] + h2 * impulse_[n - 2]) / (k * (k - 1.0));
    constant_[n] = impulse_[n - 1] / k;
    ramp_[n] = constant_[n - 1] / k;
  }
  // Each response is the integral of the one before.
  impulse = constant = ramp = square = cube = 0.0;
  for (std::size_t n = terms_ - 1; n >= 1; --n) {
    const auto k = static_cast<double>(n);
    double c = impulse_[n];
    impulse += c;
    constant += c /= k + 1.0;
    ramp += c /= k + 2.0;
    square += c /= k + 3.0;
    cube += c / (k + 4.0);
  }
  // 0 at half the sampling frequency, where rounding must not make it less.
  impulse = impulse > 1e-15 ? impulse : 1e-15;
  slopeKept = 1.0 - s2 * impulse - h2 * constant;

  byBend_[2] = 0.5;
  for (std::size_t n = 3; n < terms_; ++n) {
    byBend_[n] = -h2 * ramp_[n - 1] / static_cast<double>(n);
  }
  const double lead = 0.5 - h2 * square;  // by the second derivative; by the third it is ramp
  const double turn = 1.0 - h2 * ramp;    // and constant
  const double determinant = lead * constant - turn * ramp;  // 1/12 of soft oscillators
  bendRule = {constant / determinant, -ramp / determinant, -turn / determinant, lead / determinant};
}

double Oscillator::ValueAfter(const Arc& arc) const {
  return arc.y + arc.slope * impulse + (arc.force - h2 * arc.y) * constant + arc.rise * ramp;
}

double Oscillator::SlopeAfter(const Arc& arc) const {
  return arc.slope * slopeKept + (arc.force - h2 * arc.y) * impulse + arc.rise * constant;
}

Oscillator::Jet Oscillator::At(const Series& y, double t) const {
  double value = 0.0;
  double slope = 0.0;
  double halfBend = 0.0;
  for (std::size_t n = terms_; n-- > 0;) {
    halfBend = halfBend * t + slope;
    slope = slope * t + value;
    value = value * t + y[n];
  }
  return {value, slope, 2.0 * halfBend};
}

/// Where f, which is a value and its derivative of a jet, becomes 0 between low and high; its signs
/// there differ.  By Newton's steps, halving where they leave the range.
template <class F>
double Oscillator::Zero(const Series& y, double low, double high, F f) const {
  constexpr double kClose = 1e-9;  // of an interval: at a top the error of the value is its square
  const bool rising = f(At(y, low)).first < 0.0;
  double t = 0.5 * (low + high);
  for (int tries = 0; tries < 100 && high - low > kClose; ++tries) {
    const auto [value, derivative] = f(At(y, t));
    ((value < 0.0) == rising ? low : high) = t;
    const double newton = t - value / derivative;
    const double next = newton > low && newton < high ? newton : 0.5 * (low + high);
    const bool arrived = std::fabs(next - t) < kClose;
    t = next;
    if (arrived) break;
  }
  return t;
}

/// How far the response that starts with these derivatives is from the straight line through the
/// ends of an interval, at most.
double Oscillator::FarthestFromChord(double bend, double third) const {
  constexpr int kParts = 8;
  Series y{};
  for (std::size_t n = 0; n < terms_; ++n) y[n] = bend * byBend_[n] + third * ramp_[n];
  const double end = At(y, 1.0).value;
  double most = 0.0;
  for (int part = 0; part <= kParts; ++part) {
    const double t = static_cast<double>(part) / kParts;
    most = std::max(most, std::fabs(At(y, t).value - t * end));
  }
  // Between those points by an eighth of the second derivative, a free response, which stays below
  // the sum of itself and its slope.
  return most + 0.125 / (kParts * kParts) * (std::fabs(bend) + std::fabs(third));
}

Oscillator::TurnRule Oscillator::TurnRuleOf() const {
  constexpr double kAlways = 1e300;
  constexpr double kRounded = 1.0 + 1e-6;
  // A response is its chord, and turn times one response and lean times another: the slope is
  // p (1 - g) + q g + lean f, where p and q are those of the ends, g leads from 0 to 1 and f is
  // above 0 between.  The derivatives of g and f at both ends:
  const double g0 = 0.5 * bendRule.bendByLead + bendRule.bendByTurn;
  const double gThird = 0.5 * bendRule.thirdByLead + bendRule.thirdByTurn;
  const double f0 = 0.5 * bendRule.bendByLead;
  const double fThird = 0.5 * bendRule.thirdByLead;
  const auto after = [&](double bend, double third) {
    return bend * (1.0 - h2 * constant) + third * impulse;
  };
  const double g1 = after(g0, gThird);
  const double f1 = after(f0, fThird);
  TurnRule rule{FarthestFromChord(g0, gThird), FarthestFromChord(f0, fThird), kAlways};
  // Free responses change their sign once at most.  If g only rises, p (1 - g) / f is least at the
  // second end and q g / f at the first, as the ratio of two free responses only rises or falls.
  if (g0 > 0.0 && g1 > 0.0 && f0 > 0.0 && f1 < 0.0) {
    rule.leanest = kRounded / std::min(g0 / f0, -g1 / f1);
  }
  return rule;
}

double Oscillator::Crest(const Arc& arc) const {
  constexpr double kNone = -std::numeric_limits<double>::infinity();
  const double slope = SlopeAfter(arc);
  if (!(arc.slope > 0.0 || slope < 0.0)) return kNone;
  Series y{};
  const double force = arc.force - h2 * arc.y;
  for (std::size_t n = 0; n < terms_; ++n) {
    y[n] = arc.slope * impulse_[n] + force * constant_[n] + arc.rise * ramp_[n];
  }
  y[0] = arc.y;
  double low = 0.0;
  double high = 1.0;
  if (!(arc.slope > 0.0 && slope < 0.0)) {
    // Both ends rise, or both fall: the slope may still change its sign twice.  It turns at most
    // once within an interval, as h is below pi.
    const double before = Bend(arc);
    const double after = Bend({ValueAfter(arc), slope, arc.force + arc.rise, arc.rise});
    const bool rises = arc.slope > 0.0;
    if (!(rises ? before < 0.0 && after > 0.0 : before > 0.0 && after < 0.0)) return kNone;
    const auto third = [&](const Jet& at) {
      return std::pair(at.bend, arc.rise - s2 * at.bend - h2 * at.slope);
    };
    const double turn = Zero(y, 0.0, 1.0, third);
    const double steepest = At(y, turn).slope;
    if (!(rises ? steepest < 0.0 : steepest > 0.0)) return kNone;
    (rises ? high : low) = turn;
  }
  return At(y, Zero(y, low, high, [](const Jet& at) { return std::pair(at.slope, at.bend); }))
      .value;
}

Drive DriveOf(const Oscillator& o, SrsResponse response) {
  switch (response) {
    case SrsResponse::AbsoluteAcceleration:
      return {o.h2, o.s2};
    case SrsResponse::RelativeVelocity:
      return {0.0, 1.0};
    case SrsResponse::RelativeDisplacement:
    case SrsResponse::PseudoVelocity:
    case SrsResponse::StaticEquivalent:
      break;
  }
  return {1.0, 0.0};
}

double UnitOf(const Oscillator& o, SrsResponse response, double fsamp) {
  switch (response) {
    case SrsResponse::AbsoluteAcceleration:
      return 1.0;
    case SrsResponse::PseudoVelocity:
      return -o.h / fsamp;
    case SrsResponse::RelativeVelocity:
      return -1.0 / fsamp;
    case SrsResponse::StaticEquivalent:
      return -o.h2;
    case SrsResponse::RelativeDisplacement:
      break;
  }
  return -1.0 / fsamp / fsamp;
}

/// y turns first at the phase whose tangent is kv / c, at the height r e^(-zeta phase / k), and
/// again half a turn later on the other side.
SrsExtremes FreeExtremes(double y, double v, double zeta) {
  if (v < 0.0 || (v == 0.0 && y < 0.0)) {
    const SrsExtremes mirrored = FreeExtremes(-y, -v, zeta);
    return {-mirrored.negative, -mirrored.positive};
  }
  const double k = std::sqrt((1.0 - zeta) * (1.0 + zeta));
  const double c = zeta * v + y;
  const double kv = k * v;
  const double r = std::sqrt(kv * kv + c * c);
  if (!(r > 0.0)) return {};
  const double quarter = 0.5 * common::kPi;
  const double phase = c > kv ? Atan(kv / c) : quarter - Atan(c / kv);
  const double top = r * Exp(-zeta * phase / k);
  const double bottom = -top * Exp(-zeta * common::kPi / k);
  return {top, y < bottom ? y : bottom};
}

}  // namespace qarv::analysis
