// Band-limited interpolation.
//
//   t    place of a result [sample]
//   c    cutoff, of the Nyquist frequency of x: 1, or less where the sampling frequency is lowered
//   R    half length of the kernel [sample]
#include "analysis/resample.h"

#include <algorithm>
#include <cmath>

#include "common/numeric/constants.h"
#include "common/numeric/index_conv.h"
#include "numeric/elementary.h"

namespace qarv::analysis {

namespace {

constexpr double kCrossings = 32.0;

std::size_t Index(double v) { return static_cast<std::size_t>(common::TruncToIndex(v)); }

/// The four-term window of least side lobes, over -1 .. 1.
double Window(double u) {
  const double c = common::elementary::Cos(common::kPi * u);
  return 0.35875 + 0.48829 * c + 0.14128 * (2.0 * c * c - 1.0) +
         0.01168 * (4.0 * c * c * c - 3.0 * c);
}

/// The kernel about a place, at every sample within its reach.
struct Weights {
  double first;  // [sample] of the first weight
  std::vector<double> h;
  double sum;

  Weights(double t, double c, double R) : first(std::ceil(t - R)), sum(0.0) {
    for (double k = first; k <= t + R; k += 1.0) {
      const double x = common::kPi * c * (t - k);
      const double sinc = std::fabs(x) < 1e-9 ? 1.0 : common::elementary::Sin(x) / x;
      h.push_back(sinc * Window((t - k) / R));
      sum += h.back();
    }
  }
};

/// The weighted samples, `shift` samples further than the weights stand for.  The sum of the
/// weights scales them, so that a constant stays that constant.
double Weighted(const Weights& weights, double shift, std::span<const double> x) {
  const auto last = static_cast<double>(x.size() - 1);
  const double begin = weights.first + shift;
  double sum = 0.0;
  if (begin >= 0.0 && begin + static_cast<double>(weights.h.size()) <= last) {
    const double* const from = x.data() + common::TruncToIndex(begin);
    for (std::size_t i = 0; i < weights.h.size(); ++i) sum += weights.h[i] * from[i];
    return sum / weights.sum;
  }
  double k = begin;
  for (const double h : weights.h) {
    sum += h * x[Index(std::clamp(k, 0.0, last))];
    k += 1.0;
  }
  return sum / weights.sum;
}

}  // namespace

std::vector<double> SampledAt(std::span<const double> x, double start, double step,
                              std::size_t count) {
  if (x.empty() || !std::isfinite(start) || !(step > 0.0) || !std::isfinite(step)) return {};
  const double c = std::min(1.0, 1.0 / step);
  const double R = kCrossings / c;
  const auto last = static_cast<double>(x.size() - 1);
  const double whole = std::floor(start);
  const bool oneKernel = step == 1.0;  // every result lies alike between its samples
  const bool onSamples =
      oneKernel && start == whole;  // nothing lies between: they stay as they are
  const Weights common(start - whole, c, R);
  std::vector<double> out(count);
  for (std::size_t j = 0; j < count; ++j) {
    const double offset = static_cast<double>(j) * step;
    const double t = start + offset;
    if (t <= -R || t >= last + R) {  // the signal stays where it is
      out[j] = t < 0.0 ? x.front() : x.back();
    } else if (onSamples) {
      out[j] = x[Index(std::clamp(t, 0.0, last))];
    } else if (oneKernel) {
      out[j] = Weighted(common, whole + offset, x);
    } else {
      out[j] = Weighted(Weights(t, c, R), 0.0, x);
    }
  }
  return out;
}

}  // namespace qarv::analysis
