// How a measured record compares with a reference.
#include "analysis/judge.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "analysis/resample.h"
#include "common/int_types.h"
#include "common/numeric/mat_fft.h"

namespace qarv::analysis {

namespace {

/// A wave and its spectrum, of a plan's length.
struct Transformed {
  std::vector<double> real, imaginary;
};

Transformed Transform(const common::FftPlan& plan, std::span<const double> x) {
  const auto n = static_cast<std::size_t>(plan.GetSize());
  std::vector<double> wave(n);
  std::copy(x.begin(), x.end(), wave.begin());
  std::vector<double> work(static_cast<std::size_t>(plan.GetWorkSize()));
  Transformed out{std::vector<double>(n / 2 + 1), std::vector<double>(n / 2 + 1)};
  plan.Forward(wave.data(), work.data(), out.real.data(), out.imaginary.data());
  return out;
}

/// r[lag + reference.size() - 1] = sum of reference[i] record[lag + i], for every lag at
/// which they meet.
std::vector<double> CrossCorrelation(std::span<const double> reference,
                                     std::span<const double> record) {
  const std::size_t lags = reference.size() + record.size() - 1;
  std::size_t n = 2;
  while (n < lags) n *= 2;
  const common::FftPlan plan(n);
  const Transformed a = Transform(plan, std::vector<double>(reference.rbegin(), reference.rend()));
  const Transformed b = Transform(plan, record);
  Transformed product = a;
  for (std::size_t k = 0; k <= n / 2; ++k) {
    product.real[k] = a.real[k] * b.real[k] - a.imaginary[k] * b.imaginary[k];
    product.imaginary[k] = a.real[k] * b.imaginary[k] + a.imaginary[k] * b.real[k];
  }
  std::vector<double> r(n);
  std::vector<double> work(static_cast<std::size_t>(plan.GetWorkSize()));
  plan.Inverse(r.data(), work.data(), product.real.data(), product.imaginary.data());
  r.resize(lags);
  return r;
}

double Energy(std::span<const double> x) {
  double sum = 0.0;
  for (const double v : x) sum += v * v;
  return sum;
}

/// The energy of the part of a record that a reference of `length` samples lies over, at the lags
/// of CrossCorrelation.
std::vector<double> EnergyBelow(std::size_t length, std::span<const double> record) {
  std::vector<double> upTo(record.size() + 1);  // of the samples before each one
  for (std::size_t i = 0; i < record.size(); ++i) upTo[i + 1] = upTo[i] + record[i] * record[i];
  std::vector<double> out(length + record.size() - 1);
  for (std::size_t lag = 0; lag < out.size(); ++lag) {
    const std::size_t end = std::min(record.size(), lag + 1);
    const std::size_t first = lag + 1 > length ? lag + 1 - length : 0;
    out[lag] = upTo[end] - upTo[first];
  }
  return out;
}

/// The lag at which reference and record have the largest correlation coefficient among samples,
/// next to that of the largest cross-correlation: this shows where the signal is, and not some
/// small ripple of the same form.  [index of CrossCorrelation]
std::size_t NearestSample(std::span<const double> reference, std::span<const double> record) {
  const std::vector<double> cross = CrossCorrelation(reference, record);
  const std::vector<double> below = EnergyBelow(reference.size(), record);
  const auto at = [&](std::size_t k) {
    return below[k] > 0.0 ? cross[k] / std::sqrt(below[k]) : 0.0;
  };
  auto k = static_cast<std::size_t>(std::max_element(cross.begin(), cross.end()) - cross.begin());
  while (k > 0 && at(k - 1) > at(k)) --k;
  while (k + 1 < cross.size() && at(k + 1) > at(k)) ++k;
  return k;
}

}  // namespace

Likeness LikenessOf(std::span<const double> reference, std::span<const double> record) {
  if (reference.size() != record.size()) return {0.0, 0.0};
  double cross = 0.0;
  for (std::size_t i = 0; i < reference.size(); ++i) cross += reference[i] * record[i];
  const double own = Energy(reference);
  const double scale = std::sqrt(own) * std::sqrt(Energy(record));
  if (!(scale > 0.0)) return {0.0, 0.0};
  return {std::clamp(cross / scale, -1.0, 1.0), cross / own};  // rounding leads beyond
}

Alignment Align(std::span<const double> reference, std::span<const double> record) {
  constexpr double kWhole = 1e-4;  // [sample]
  const double own = Energy(reference);
  const double all = Energy(record);
  if (!(own > 0.0 && all > 0.0 && std::isfinite(own) && std::isfinite(all))) return {0.0, 0.0, 0.0};
  const std::size_t index = NearestSample(reference, record);
  // What they share there.
  const std::size_t ahead = reference.size() - 1;
  const std::size_t first = index < ahead ? ahead - index : 0;  // [sample of the reference]
  const std::size_t length = std::min(reference.size(), record.size() + ahead - index) - first;
  const auto part = reference.subspan(first, length);
  const auto likeness = [&](double lag) {
    return LikenessOf(part, SampledAt(record, lag + static_cast<double>(first), 1.0, length));
  };
  const auto coefficient = [&](double lag) { return likeness(lag).correlation; };
  double lag = static_cast<double>(index) - static_cast<double>(ahead);
  // Parabolas through ever closer points.
  for (const double step : {0.5, 0.1, 0.02, 0.004, 0.0008}) {
    const double before = coefficient(lag - step);
    const double here = coefficient(lag);
    const double behind = coefficient(lag + step);
    const double bend = before - 2.0 * here + behind;
    const double vertex = bend < 0.0 ? 0.5 * (before - behind) / bend : 0.0;
    lag += step * std::clamp(vertex, -1.0, 1.0);
  }
  if (std::fabs(lag - std::round(lag)) < kWhole) lag = std::round(lag);
  const auto [correlation, gain] = likeness(lag);
  return {lag, correlation, gain};
}

Verdict JudgeBands(std::span<const double> wave, std::span<const double> upper,
                   std::span<const double> lower, std::size_t first, std::size_t last) {
  const std::size_t size = std::min({wave.size(), upper.size(), lower.size()});
  Verdict verdict;
  if (first > last || last >= size) return verdict;
  verdict.judged = last - first + 1;
  double farthest = 0.0;
  for (std::size_t i = first; i <= last; ++i) {
    const double beyond = Beyond(wave[i], upper[i], lower[i]);
    if (!(beyond > 0.0)) continue;
    ++verdict.outside;
    if (!(beyond > farthest)) continue;
    farthest = beyond;
    verdict.worst = i;
    verdict.value = wave[i];
    const bool above = Beyond(wave[i], upper[i], kNoLimit) >= Beyond(wave[i], kNoLimit, lower[i]);
    verdict.limit = above ? upper[i] : lower[i];
  }
  return verdict;
}

}  // namespace qarv::analysis
