// Shock response spectra by ramp-invariant recursive filters.
//
//   w, wd   natural frequency, undamped and damped [rad/s]
//   T       sample interval [s]
//   E, K    e^(-zeta w T) and wd T: by how much the free response decays and turns in a sample
#include "analysis/srs.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "common/numeric/constants.h"
#include "common/numeric/index_conv.h"

namespace qarv::analysis {

namespace {

/// The decay and turn of a free response in one sample.
struct FreeStep {
  double E, K;
};

FreeStep StepOf(double frequency, double zeta, double fsamp) {
  const double wT = common::kTwoPi * frequency / fsamp;
  return {std::exp(-zeta * wT), wT * std::sqrt(1.0 - zeta * zeta)};
}

SrsFilter AccelerationFilter(double frequency, double zeta, double fsamp) {
  const auto [E, K] = StepOf(frequency, zeta, fsamp);
  const double C = E * std::cos(K);
  const double S = E * std::sin(K) / K;
  return {1.0 - S, 2.0 * (S - C), E * E - S, -2.0 * C, E * E};
}

/// The relative displacement's filter, from the response to a unit ramp at the first samples:
///
///   r(t) = -(t / w^2 - 2 zeta / w^3 + e^(-zeta w t) (2 zeta / w^3 cos(wd t) + (2 zeta^2 - 1) /
///   (w^2 wd) sin(wd t)))
///
/// In extended precision, as r begins with t^3 / 6 and its terms with t.
SrsFilter DisplacementFilter(double frequency, double zeta, double fsamp) {
  using Real = long double;
  const Real T = 1.0L / static_cast<Real>(fsamp);
  const Real w = 2 * std::acos(Real{-1}) * static_cast<Real>(frequency);
  const auto z = static_cast<Real>(zeta);
  const Real wd = w * std::sqrt(1 - z * z);
  const auto ramp = [&](int k) {
    const Real t = static_cast<Real>(k) * T;
    const Real free = 2 * z / w * std::cos(wd * t) + (2 * z * z - 1) / wd * std::sin(wd * t);
    return -(t - 2 * z / w + std::exp(-z * w * t) * free) / (w * w);
  };
  const Real E = std::exp(-z * w * T);
  const Real a1 = -2 * E * std::cos(wd * T);
  const Real a2 = E * E;
  // The response to a triangle of one sample, by differences; the filter's numerator reproduces it.
  const Real h0 = ramp(1) / T;
  const Real h1 = (ramp(2) - 2 * ramp(1)) / T;
  const Real h2 = (ramp(3) - 2 * ramp(2) + ramp(1)) / T;
  const auto narrow = [](Real v) { return static_cast<double>(v); };
  return {narrow(h0), narrow(h1 + a1 * h0), narrow(h2 + a1 * h1 + a2 * h0), narrow(a1), narrow(a2)};
}

// ---- The primary response ----------------------------------------------------------------------

constexpr std::size_t kLanes = 8;  // as many recursions hide the latency of one
using Lanes = std::array<double, kLanes>;

/// Eight filters side by side and their last two outputs.
struct Bank {
  Lanes b0{}, b1{}, b2{}, a1{}, a2{};
  Lanes y1{}, y2{};

  void Set(std::size_t lane, const SrsFilter& f) {
    b0[lane] = f.b0;
    b1[lane] = f.b1;
    b2[lane] = f.b2;
    a1[lane] = f.a1;
    a2[lane] = f.a2;
  }
  void Step(double x0, double x1, double x2) {
    for (std::size_t i = 0; i < kLanes; ++i) {
      const double y = b0[i] * x0 + b1[i] * x1 + b2[i] * x2 - a1[i] * y1[i] - a2[i] * y2[i];
      y2[i] = y1[i];
      y1[i] = y;
    }
  }
};

/// The input with its past: 0 before its first sample and behind its last one.
struct Input {
  std::span<const double> x;
  double At(std::ptrdiff_t k) const {
    return k >= 0 && k < std::ssize(x) ? x[static_cast<std::size_t>(k)] : 0.0;
  }
};

/// Where the extremes of eight responses lie: the block of samples, and the state before it.
struct Best {
  Lanes value{};
  std::array<std::ptrdiff_t, kLanes> block{};
  Lanes y1{}, y2{};

  void Offer(std::size_t lane, double v, std::ptrdiff_t k, const Bank& before) {
    if (!(v > value[lane])) return;
    value[lane] = v;
    block[lane] = k;
    y1[lane] = before.y1[lane];
    y2[lane] = before.y2[lane];
  }
};

constexpr std::ptrdiff_t kBlock = 256;  // [sample]

/// The largest response of one lane times `sign`, on a parabola through the largest sample of its
/// block and its neighbours.
double Refined(const Bank& bank, const Best& best, std::size_t lane, const Input& input,
               double sign) {
  if (best.value[lane] == 0.0) return 0.0;
  const std::ptrdiff_t first = best.block[lane];
  const std::ptrdiff_t end = std::min(first + kBlock, std::ssize(input.x));
  std::vector<double> y{best.y2[lane], best.y1[lane]};
  for (std::ptrdiff_t k = first; k <= end; ++k) {  // and one sample behind the block
    y.push_back(bank.b0[lane] * input.At(k) + bank.b1[lane] * input.At(k - 1) +
                bank.b2[lane] * input.At(k - 2) - bank.a1[lane] * y.end()[-1] -
                bank.a2[lane] * y.end()[-2]);
  }
  for (double& v : y) v *= sign;
  const auto peak =
      static_cast<std::size_t>(std::max_element(y.begin() + 2, y.end() - 1) - y.begin());
  const double rise = y[peak + 1] - y[peak - 1];
  const double bend = 2.0 * y[peak] - y[peak - 1] - y[peak + 1];
  // At the shock's last sample there is no neighbour that belongs to it; and an end of a slope has
  // no top.
  const bool last = first + static_cast<std::ptrdiff_t>(peak) - 2 == std::ssize(input.x) - 1;
  if (last || !(bend > 0.0) || y[peak - 1] > y[peak] || y[peak + 1] > y[peak]) return y[peak];
  return y[peak] + rise * rise / (8.0 * bend);
}

// ---- The residual response ---------------------------------------------------------------------

/// The extremes of the free response that goes through y0 and, one sample later, y1.
///
///   y(t) = e^(-s t) (y0 cos(K t) + B sin(K t)),   t in samples
SrsExtremes FreeExtremes(double y0, double y1, const FreeStep& step) {
  const double B = (y1 / step.E - y0 * std::cos(step.K)) / std::sin(step.K);
  const double s = -std::log(step.E);
  const double amplitude = std::hypot(y0, B);
  const double phase = std::atan2(B, y0);  // y = amplitude e^(-s t) cos(K t - phase)
  // It turns where tan(K t - phase) = -s / K.
  double angle =
      -std::atan2(s, step.K);  // of K t - phase, at a maximum; minima lie half a turn behind
  while (angle < -phase) angle += common::kPi;
  while (angle - common::kPi >= -phase) angle -= common::kPi;
  SrsExtremes out{std::max(y0, 0.0), std::min(y0, 0.0)};
  for (int turn = 0; turn < 2; ++turn, angle += common::kPi) {
    const double t = (angle + phase) / step.K;
    const double y = amplitude * std::exp(-s * t) * std::cos(angle);
    out.positive = std::max(out.positive, y);
    out.negative = std::min(out.negative, y);
  }
  return out;
}

/// One bank over the whole shock.
void RunBank(std::span<const double> shock, double fsamp, double zeta, SrsResponse response,
             std::span<SrsPoint> points) {
  Bank bank;
  for (std::size_t i = 0; i < points.size(); ++i) {
    bank.Set(i, MakeSrsFilter(points[i].frequency, zeta, fsamp, response));
  }
  const Input input{shock};
  Best highest;
  Best lowest;  // of the negated response
  const std::ptrdiff_t n = std::ssize(shock);
  for (std::ptrdiff_t first = 0; first < n; first += kBlock) {
    const Bank before = bank;
    Lanes high{};
    Lanes low{};
    double x1 = input.At(first - 1);
    double x2 = input.At(first - 2);
    for (std::ptrdiff_t k = first; k < std::min(first + kBlock, n); ++k) {
      const double x0 = shock[static_cast<std::size_t>(k)];
      bank.Step(x0, x1, x2);
      x2 = x1;
      x1 = x0;
      for (std::size_t i = 0; i < kLanes; ++i) {
        high[i] = bank.y1[i] > high[i] ? bank.y1[i] : high[i];
        low[i] = bank.y1[i] < low[i] ? bank.y1[i] : low[i];
      }
    }
    for (std::size_t i = 0; i < kLanes; ++i) {
      highest.Offer(i, high[i], first, before);
      lowest.Offer(i, -low[i], first, before);
    }
  }
  // Behind its last sample the shock falls to 0 in one interval; from there on the response is
  // free.
  bank.Step(0.0, input.At(n - 1), input.At(n - 2));
  const Lanes y0 = bank.y1;
  bank.Step(0.0, 0.0, input.At(n - 1));
  for (std::size_t i = 0; i < points.size(); ++i) {
    points[i].primary = {Refined(bank, highest, i, input, 1.0),
                         -Refined(bank, lowest, i, input, -1.0)};
    points[i].residual = FreeExtremes(y0[i], bank.y1[i], StepOf(points[i].frequency, zeta, fsamp));
  }
}

}  // namespace

SrsFilter MakeSrsFilter(double frequency, double zeta, double fsamp, SrsResponse response) {
  if (response == SrsResponse::AbsoluteAcceleration) {
    return AccelerationFilter(frequency, zeta, fsamp);
  }
  SrsFilter filter = DisplacementFilter(frequency, zeta, fsamp);
  if (response == SrsResponse::PseudoVelocity) {
    for (double* const b : {&filter.b0, &filter.b1, &filter.b2}) *b *= common::kTwoPi * frequency;
  }
  return filter;
}

SrsExtremes SrsPoint::Total() const {
  return {std::max(primary.positive, residual.positive),
          std::min(primary.negative, residual.negative)};
}

std::vector<SrsPoint> CalcSrs(std::span<const double> shock, double fsamp,
                              std::span<const double> frequencies, double zeta,
                              SrsResponse response) {
  // Written so that a NaN is refused.
  if (!(fsamp > 0.0 && std::isfinite(fsamp) && zeta >= 0.0 && zeta < 1.0)) return {};
  for (const double f : frequencies) {
    if (!(f > 0.0 && f < 0.5 * fsamp)) return {};
  }
  std::vector<SrsPoint> points;
  points.reserve(frequencies.size());
  for (const double f : frequencies) points.push_back({f, {}, {}});
  for (std::size_t i = 0; i < points.size(); i += kLanes) {
    const std::size_t n = std::min(kLanes, points.size() - i);
    RunBank(shock, fsamp, zeta, response, std::span(points).subspan(i, n));
  }
  return points;
}

std::vector<double> SrsFrequencies(double low, double high, double perOctave) {
  constexpr double kMost = 1e6;  // lines; more is a mistake
  if (!(low > 0.0 && low <= high && std::isfinite(high) && perOctave > 0.0)) return {};
  const double steps = std::log2(high / low) * perOctave + 1e-9;
  if (!(steps < kMost)) return {};
  std::vector<double> frequencies(static_cast<std::size_t>(common::FloorToIndex(steps) + 1));
  for (std::size_t k = 0; k < frequencies.size(); ++k) {
    frequencies[k] = low * std::exp2(static_cast<double>(k) / perOctave);
  }
  return frequencies;
}

}  // namespace qarv::analysis
