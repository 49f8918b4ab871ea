// A second computation of the tolerance test of compensated waveforms, written rule by rule.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace qarv::test {

/// Whether x keeps within its bands; iS .. iE is the main pulse.
inline bool ReferenceInTolerance(const std::vector<double>& x, const std::vector<double>* upper,
                                 const std::vector<double>* lower, long long iS, long long iE,
                                 double pre, double post, double minRatio) {
  constexpr double kNoLimit = std::numeric_limits<double>::lowest();
  const auto N = static_cast<long long>(x.size());
  double high = -HUGE_VAL;
  double low = HUGE_VAL;
  for (long long i = iS; i <= iE; ++i) {
    if (x[static_cast<std::size_t>(i)] > high) high = x[static_cast<std::size_t>(i)];
    if (x[static_cast<std::size_t>(i)] < low) low = x[static_cast<std::size_t>(i)];
  }
  const double Ap = high < low ? 0.0 : std::max(std::fabs(high), std::fabs(low));
  const double floor = Ap * minRatio;
  for (long long i = 0; i < N; ++i) {
    const auto k = static_cast<std::size_t>(i);
    const bool isPre = i < (pre == 0 ? iS - 3 : iS);
    const bool isPost = i > (post == 0 ? iE + 3 : iE);
    const bool isMain = i >= iS && i <= iE;
    if (x[k] == kNoLimit) continue;
    if (std::isnan(x[k]) && (isPre || isPost || (isMain && upper != nullptr && lower != nullptr)))
      return false;
    if (upper == nullptr || lower == nullptr) {
      const double scale = isPre ? pre : post;
      if ((isPre || isPost) && !(std::fabs(x[k]) <= std::max(floor, Ap * std::fabs(scale))))
        return false;
      continue;
    }
    const double u = (*upper)[k];
    const double l = (*lower)[k];
    if (isMain) {
      if (u != kNoLimit && !(x[k] <= u)) return false;
      if (l != kNoLimit && !(x[k] >= l)) return false;
    } else if (isPre || isPost) {
      const double scale = std::fabs(isPre ? pre : post);
      if (u != kNoLimit && !(x[k] <= std::max(floor, scale * u))) return false;
      if (l != kNoLimit && !(x[k] >= std::min(-floor, scale * l))) return false;
    }
  }
  return true;
}

}  // namespace qarv::test
