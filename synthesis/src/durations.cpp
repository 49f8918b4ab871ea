// The effective durations of a shock.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "analysis/shock.h"
#include "common/numeric/index_conv.h"
#include "synthesis/requirement.h"

namespace qarv::synthesis {

namespace {

/// From the first to the last sample whose size is at least `least`; both count as half.  [sample]
double Extent(std::span<const double> shock, double least) {
  const auto reaches = [&](double v) { return std::fabs(v) >= least; };
  const auto first = std::find_if(shock.begin(), shock.end(), reaches);
  const auto last = std::find_if(shock.rbegin(), shock.rend(), reaches);
  if (first == shock.end()) return 0.0;
  return static_cast<double>((last.base() - 1) - first);
}

/// Sums of squares over windows that begin at each sample.
std::vector<double> ShortTimeSquares(std::span<const double> shock, std::size_t window) {
  std::vector<double> until(shock.size() + 1);
  for (std::size_t i = 0; i < shock.size(); ++i) until[i + 1] = until[i] + shock[i] * shock[i];
  std::vector<double> squares(shock.size() - window + 1);
  for (std::size_t i = 0; i < squares.size(); ++i) squares[i] = until[i + window] - until[i];
  return squares;
}

}  // namespace

Durations EffectiveDurations(std::span<const double> shock, double fsamp) {
  const double peak = std::fabs(analysis::PeakOf(shock).value);
  if (!(peak > 0.0 && fsamp > 0.0)) return {};
  const double Te = Extent(shock, peak / 3.0);
  const auto window = static_cast<std::size_t>(common::RoundToIndex(
      std::clamp(0.1 * Te, 1.0, static_cast<double>(shock.size()))));  // rounded half up
  const std::vector<double> squares = ShortTimeSquares(shock, window);
  const double least = 0.01 * *std::max_element(squares.begin(), squares.end());
  std::vector<std::size_t> above;  // windows of more than a tenth of the largest r.m.s.
  for (std::size_t i = 0; i < squares.size(); ++i) {
    if (squares[i] >= least) above.push_back(i);
  }
  // The shortest stretch that holds nine tenths of them.
  const std::size_t needed = above.size() - above.size() / 10;
  std::size_t shortest = shock.size();
  for (std::size_t i = 0; i + needed <= above.size(); ++i) {
    shortest = std::min(shortest, above[i + needed - 1] - above[i]);
  }
  return {Te / fsamp, static_cast<double>(shortest) / fsamp};
}

}  // namespace qarv::synthesis
