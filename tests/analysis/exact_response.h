// The exact response of an oscillator to straight lines through samples, from the closed form in
// 400 bits: what the shock response spectrum is compared with.
#pragma once

#include <mpfr.h>

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "analysis/srs.h"

namespace qarv::test {

/// A number of 400 bits.
class Real {
 public:
  Real(double v = 0.0) {
    mpfr_init2(value_, 400);
    mpfr_set_d(value_, v, MPFR_RNDN);
  }
  Real(const Real& other) {
    mpfr_init2(value_, 400);
    mpfr_set(value_, other.value_, MPFR_RNDN);
  }
  Real& operator=(const Real& other) {
    mpfr_set(value_, other.value_, MPFR_RNDN);
    return *this;
  }
  ~Real() { mpfr_clear(value_); }

  double ToDouble() const { return mpfr_get_d(value_, MPFR_RNDN); }
  friend Real operator+(const Real& a, const Real& b) { return Of(mpfr_add, a, b); }
  friend Real operator-(const Real& a, const Real& b) { return Of(mpfr_sub, a, b); }
  friend Real operator*(const Real& a, const Real& b) { return Of(mpfr_mul, a, b); }
  friend Real operator/(const Real& a, const Real& b) { return Of(mpfr_div, a, b); }
  friend bool operator<(const Real& a, const Real& b) {
    return mpfr_less_p(a.value_, b.value_) != 0;
  }
  friend Real Sqrt(const Real& a) { return Of(mpfr_sqrt, a); }
  friend Real Exp(const Real& a) { return Of(mpfr_exp, a); }
  friend Real Sin(const Real& a) { return Of(mpfr_sin, a); }
  friend Real Cos(const Real& a) { return Of(mpfr_cos, a); }
  static Real Pi() {
    Real pi;
    mpfr_const_pi(pi.value_, MPFR_RNDN);
    return pi;
  }

 private:
  template <class F>
  static Real Of(F f, const Real& a, const Real& b) {
    Real out;
    f(out.value_, a.value_, b.value_, MPFR_RNDN);
    return out;
  }
  template <class F>
  static Real Of(F f, const Real& a) {
    Real out;
    f(out.value_, a.value_, MPFR_RNDN);
    return out;
  }
  mpfr_t value_;
};

/// The line of a spectrum: the input goes straight from 0 to the first sample and from the last
/// sample to 0, within a sampling interval each.
class ExactResponse {
 public:
  ExactResponse(double f, double fsamp, double zeta, analysis::SrsResponse response)
      : fsamp_(fsamp), response_(response), h_(Real(2) * Real::Pi() * f / Real(fsamp)) {
    s_ = Real(zeta) * h_;
    K_ = h_ * Sqrt((Real(1) - zeta) * (Real(1) + zeta));
    for (std::size_t i = 0; i <= kParts; ++i) {
      parts_.push_back(At(Real(static_cast<double>(i)) / Real(static_cast<double>(kParts))));
      halfTurns_.push_back(At(Real(3 * static_cast<double>(i)) * Real::Pi() / K_ /
                              Real(static_cast<double>(kParts))));
    }
  }

  analysis::SrsPoint Of(const std::vector<double>& shock) {
    analysis::SrsPoint point{};
    std::vector<double> x{0.0};
    x.insert(x.end(), shock.begin(), shock.end());
    x.push_back(0.0);
    u_ = v_ = 0.0;
    for (std::size_t i = 0; i + 1 < x.size(); ++i) {
      Widen(parts_, x[i], Real(x[i + 1]) - Real(x[i]), &point.primary);
    }
    Widen(halfTurns_, 0.0, 0.0, &point.residual);
    return point;
  }

 private:
  static constexpr std::size_t kParts = 16;
  /// The functions of time that responses are made of.
  struct Time {
    Real t, decay, cosine, sine;
  };
  Time At(const Real& t) const { return {t, Exp(Real(0) - s_ * t), Cos(K_ * t), Sin(K_ * t)}; }

  /// Relative motion, its sign changed: u'' + 2 s u' + h^2 u = x + change t, from u_ and v_.
  struct Motion {
    Real u, v, force;
  };
  Motion MotionAt(const Time& at, const Real& x, const Real& change) const {
    const Real h2 = h_ * h_;
    const Real lag = Real(2) * s_ * change / (h2 * h2);
    const Real A = u_ - (x / h2 - lag);
    const Real B = (v_ - change / h2 + s_ * A) / K_;
    const Real force = x + change * at.t;
    return {force / h2 - lag + at.decay * (A * at.cosine + B * at.sine),
            change / h2 + at.decay * ((K_ * B - s_ * A) * at.cosine - (K_ * A + s_ * B) * at.sine),
            force};
  }
  /// The response of interest and its slope.
  std::pair<Real, Real> Response(const Motion& m) const {
    using enum analysis::SrsResponse;
    const Real acceleration = Real(2) * s_ * m.v + h_ * h_ * m.u;
    const Real relative = m.force - acceleration;
    if (response_ == AbsoluteAcceleration) {
      return {acceleration, Real(2) * s_ * relative + h_ * h_ * m.v};
    }
    if (response_ == StaticEquivalent) {
      const Real unit = Real(0) - h_ * h_;
      return {unit * m.u, unit * m.v};
    }
    if (response_ == RelativeVelocity) {
      const Real unit = Real(0) - Real(1) / fsamp_;
      return {unit * m.v, unit * relative};
    }
    const Real unit = Real(0) - (response_ == PseudoVelocity ? h_ : Real(1) / fsamp_) / fsamp_;
    return {unit * m.u, unit * m.v};
  }

  /// Takes the extremes of a stretch into account, and goes to its end.
  void Widen(const std::vector<Time>& times, const Real& x, const Real& change,
             analysis::SrsExtremes* extremes) {
    std::pair<Real, Real> before;
    Motion end;
    for (std::size_t i = 0; i < times.size(); ++i) {
      end = MotionAt(times[i], x, change);
      const auto here = Response(end);
      Note(here.first, extremes);
      if (i > 0 && Falls(before) != Falls(here)) {
        Real low = times[i - 1].t;
        Real high = times[i].t;
        for (int halving = 0; halving < 30; ++halving) {
          const Real middle = (low + high) / Real(2);
          const auto there = Response(MotionAt(At(middle), x, change));
          Note(there.first, extremes);
          (Falls(there) == Falls(before) ? low : high) = middle;
        }
      }
      before = here;
    }
    u_ = end.u;
    v_ = end.v;
  }
  static bool Falls(const std::pair<Real, Real>& response) { return response.second < Real(0); }
  static void Note(const Real& y, analysis::SrsExtremes* extremes) {
    extremes->positive = std::max(extremes->positive, y.ToDouble());
    extremes->negative = std::min(extremes->negative, y.ToDouble());
  }

  Real fsamp_;
  analysis::SrsResponse response_;
  Real h_, s_, K_;
  std::vector<Time> parts_, halfTurns_;
  Real u_, v_;
};

}  // namespace qarv::test
