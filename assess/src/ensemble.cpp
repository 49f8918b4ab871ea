// Envelope, mean and tolerance limit of several spectra.
//
//   n     records
//   y     ratio of the sample's standard deviation to the population's
//   z     what the share of a normal population is below [standard deviations]
#include "assess/ensemble.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace qarv::assess {

namespace {

/// Where a rising function reaches a value.
template <class F>
double Reached(double value, double low, double high, F f) {
  for (int halving = 0; halving < 100; ++halving) {
    const double middle = 0.5 * (low + high);
    (f(middle) < value ? low : high) = middle;
  }
  return 0.5 * (low + high);
}

/// The share of a normal population below x standard deviations.
double Phi(double x) { return 0.5 * std::erfc(-x / std::sqrt(2.0)); }

/// The distribution of y as weights of its places, of sum 1.
struct Weight {
  double y, weight;
};

std::vector<Weight> WeightsOf(double n) {
  constexpr int kSteps = 4000;   // even
  constexpr double kFar = 12.0;  // about so many standard deviations of y; e^-45 of its peak there
  const double reach = kFar / std::sqrt(2.0 * (n - 1.0));
  const double low = std::max(1e-12, 1.0 - reach);
  const double step = (1.0 + reach - low) / kSteps;
  std::vector<Weight> weights;
  double sum = 0.0;
  for (int i = 0; i <= kSteps; ++i) {
    const double y = low + step * i;
    const double density =
        std::exp((n - 2.0) * std::log(y) - 0.5 * (n - 1.0) * (y * y - 1.0));  // 1 at y = 1
    const double simpson = i == 0 || i == kSteps ? 1.0 : i % 2 == 1 ? 4.0 : 2.0;
    weights.push_back({y, simpson * density});
    sum += weights.back().weight;
  }
  for (Weight& w : weights) w.weight /= sum;
  return weights;
}

}  // namespace

double ToleranceFactor(std::size_t n, double share, double confidence) {
  if (n < 2 || !(share >= 0.5 && share < 1.0) || !(confidence > 0.0 && confidence < 1.0)) {
    return std::numeric_limits<double>::quiet_NaN();
  }
  const double z = Reached(share, 0.0, 40.0, Phi);
  const auto count = static_cast<double>(n);
  const double root = std::sqrt(count);
  const std::vector<Weight> weights = WeightsOf(count);
  return Reached(confidence, -1e4, 1e4, [&](double k) {
    double probability = 0.0;
    for (const Weight& w : weights) probability += w.weight * Phi(root * (k * w.y - z));
    return probability;
  });
}

Ensemble EnsembleOf(std::vector<Spectrum> members) {
  Ensemble out;
  out.members = std::move(members);
  const std::size_t n = out.members.size();
  const auto count = static_cast<double>(n);
  if (n < kLeastRecords) {
    out.reason = fmt::format("P95/50 takes at least {} records, not {}", kLeastRecords, n);
  }
  const double k = out.reason.empty() ? ToleranceFactor(n, 0.95, 0.5) : 0.0;
  std::vector<double> logs(n);
  for (std::size_t i = 0; i < out.members.front().points.size(); ++i) {
    double largest = 0.0;
    double sum = 0.0;
    double logSum = 0.0;
    for (std::size_t record = 0; record < n; ++record) {
      const Spectrum& spectrum = out.members[record];
      const double v = spectrum.factor * spectrum.points[i].Total().Maximax();
      largest = std::max(largest, v);
      sum += v;
      logs[record] = std::log10(v);
      logSum += logs[record];
      if (!(v > 0.0) && out.reason.empty()) {
        out.reason =
            fmt::format("P95/50 is of logarithms, and record {} has a response of 0 at {:g} Hz",
                        record + 1, spectrum.points[i].frequency);
      }
    }
    out.envelope.push_back(largest);
    out.mean.push_back(sum / count);
    const double m = logSum / count;
    double squares = 0.0;
    for (const double log : logs) squares += (log - m) * (log - m);
    const double s = std::sqrt(squares / (count - 1.0));
    out.p9550.push_back(std::pow(10.0, m + k * s));
  }
  if (!out.reason.empty()) out.p9550.clear();
  return out;
}

}  // namespace qarv::assess
