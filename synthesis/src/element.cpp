// Closed forms of components and responses.
//
//   W, z     frequency [rad/s] and damping of the component
//   w, zeta  those of the oscillator, wd = w sqrt(1 - zeta^2)
//   u        relative displacement: u'' + 2 zeta w u' + w^2 u = -x
//   y        absolute acceleration: -(2 zeta w u' + w^2 u)
#include "element.h"

#include <cmath>
#include <limits>

#include "common/numeric/constants.h"
#include "numeric/elementary.h"

namespace qarv::synthesis {

using common::elementary::Atan;
using common::elementary::Cos;
using common::elementary::Exp;
using common::elementary::Sin;
using namespace com_def::comdefconst;

namespace {

Complex ExpOf(Complex s, double t) {
  const double size = s.re == 0.0 ? 1.0 : Exp(s.re * t);
  return {size * Cos(s.im * t), size * Sin(s.im * t)};
}

}  // namespace

ElementMotion::ElementMotion(Method method, const Element& element) {
  const double W = common::kTwoPi * element.frequency;
  const double z = element.zeta;
  end = std::numeric_limits<double>::infinity();
  if (method == SYNC_WAVE_WAVELET) {
    const double N = element.halves;
    count = 2;
    c = {Complex{0.5, 0.0}, Complex{-0.5, 0.0}};
    s = {Complex{0.0, W * (1.0 - 1.0 / N)}, Complex{0.0, W * (1.0 + 1.0 / N)}};
    end = N / (2.0 * element.frequency);
  } else if (method == SYNC_WAVE_DAMPED_SINE) {
    count = 1;
    c[0] = {0.0, -1.0};
    s[0] = {-z * W, W};
  } else {
    // t e^(s t) as a difference of two exponentials.
    const double E = Exp(1.0) * z;
    const double phi = 2.0 * Atan(z);
    const double h = 1e-4 * W;
    const Complex turned{E * W * Cos(phi) / (2.0 * h), E * W * Sin(phi) / (2.0 * h)};
    count = 3;
    c = {turned, -turned, Complex{0.0, -E}};
    s = {Complex{-z * W + h, W}, Complex{-z * W - h, W}, Complex{-z * W, W}};
  }
}

double ElementMotion::Velocity(double t) const {
  if (!(t > 0.0 && t < end)) return 0.0;
  double v = 0.0;
  for (std::size_t m = 0; m < count; ++m) {
    v += (c[m] * (ExpOf(s[m], t) - Complex{1.0, 0.0}) / s[m]).re;
  }
  return v;
}

double ElementMotion::Displacement(double t) const {
  if (!(t > 0.0 && t < end)) return 0.0;
  double d = 0.0;
  for (std::size_t m = 0; m < count; ++m) {
    d += (c[m] * ((ExpOf(s[m], t) - Complex{1.0, 0.0}) / s[m] - Complex{t, 0.0}) / s[m]).re;
  }
  return d;
}

ElementResponse::ElementResponse(const ElementMotion& motion, double w, double zeta)
    : count_(motion.count), s_(motion.s), end_(motion.end), decay_(zeta * w) {
  wd_ = w * std::sqrt((1.0 - zeta) * (1.0 + zeta));
  const double damping = 2.0 * decay_;
  const double w2 = w * w;
  std::array<Complex, 3> U{};
  double u0 = 0.0;
  double v0 = 0.0;
  for (std::size_t m = 0; m < count_; ++m) {
    const Complex s = s_[m];
    U[m] = -motion.c[m] / (s * s + s * damping + Complex{w2, 0.0});
    Y_[m] = -((s * damping + Complex{w2, 0.0}) * U[m]);
    u0 += U[m].re;
    v0 += (U[m] * s).re;
  }
  // From u = C cos + D sin, under the decay, to y.
  const auto freeOf = [&](double C, double D, double* P, double* Q) {
    *P = -(damping * (wd_ * D - decay_ * C) + w2 * C);
    *Q = -(damping * (-wd_ * C - decay_ * D) + w2 * D);
  };
  const double C = -u0;
  const double D = (-v0 + decay_ * C) / wd_;
  freeOf(C, D, &P_, &Q_);
  PAfter_ = QAfter_ = 0.0;
  if (!std::isfinite(end_)) return;
  const double kept = Exp(-decay_ * end_);
  const double cosine = Cos(wd_ * end_);
  const double sine = Sin(wd_ * end_);
  double u = kept * (C * cosine + D * sine);
  double v = kept * ((wd_ * D - decay_ * C) * cosine + (-wd_ * C - decay_ * D) * sine);
  for (std::size_t m = 0; m < count_; ++m) {
    const Complex now = U[m] * ExpOf(s_[m], end_);
    u += now.re;
    v += (now * s_[m]).re;
  }
  freeOf(u, (v + decay_ * u) / wd_, &PAfter_, &QAfter_);
}

double ElementResponse::Free(double t, double cosine, double sine) const {
  constexpr double kOver = 40.0;  // e^-40 is nothing
  if (decay_ * t > kOver) return 0.0;
  return Exp(-decay_ * t) * (cosine * Cos(wd_ * t) + sine * Sin(wd_ * t));
}

double ElementResponse::At(double t) const {
  if (!(t > 0.0)) return 0.0;
  if (t >= end_) return Free(t - end_, PAfter_, QAfter_);
  double y = Free(t, P_, Q_);
  for (std::size_t m = 0; m < count_; ++m) y += (Y_[m] * ExpOf(s_[m], t)).re;
  return y;
}

}  // namespace qarv::synthesis
