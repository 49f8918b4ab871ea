// The tests that a compensated waveform has to pass, and the limits that they put in force.
#include "compensation/tolerance.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "common/numeric/calc_wave.h"
#include "common/numeric/mat_basic.h"

namespace qarv::wave_def::compensation {

using common::CCalcWave;
using common::CMatBasic;

namespace {

/// The limits at one sample before or after the pulse.
double UpperLimit(double upper, double scale, double floor) {
  return upper == kNoLimit ? HUGE_VAL : std::max(floor, std::fabs(scale) * upper);
}
double LowerLimit(double lower, double scale, double floor) {
  return lower == kNoLimit ? -HUGE_VAL : std::min(-floor, std::fabs(scale) * lower);
}

/// How many samples next to the pulse are not tested.
int64 Untested(double scale) { return scale == 0.0 ? 3 : 0; }

}  // namespace

double ExtremeOf(const double* samples, int64 start, int64 end) {
  double low = 0.0;
  double high = 0.0;
  if (start < 0 || end < start) return 0.0;
  if (!CMatBasic::GetMinMax(static_cast<uint64>(end) + 1, samples, static_cast<uint64>(start), &low,
                            &high)) {
    return 0.0;
  }
  return std::fabs(low) > std::fabs(high) ? low : high;
}

void RescaleToPeak(double* samples, uint64 N, double A, int64 iS, int64 iE) {
  CMatBasic::MulArr(samples, std::fabs(A) / std::fabs(ExtremeOf(samples, iS, iE)), N);
}

bool InTolerance(const double* candidate, const double* upper, const double* lower, int64 N,
                 int64 iS, int64 iE, double pre, double post, double minRatio, int64* worst) {
  const double Ap = std::fabs(ExtremeOf(candidate, iS, iE));
  const double floor = Ap * minRatio;
  const bool banded = upper != nullptr && lower != nullptr;
  const auto fits = [&](int64 i, double lo, double hi) {
    // Written so that a NaN does not fit.
    if (candidate[i] == kNoLimit || (candidate[i] <= hi && candidate[i] >= lo)) return true;
    if (worst != nullptr) *worst = i;
    return false;
  };
  const auto regionFits = [&](int64 first, int64 last, double scale) {
    const double bare = std::max(floor, Ap * std::fabs(scale));
    for (int64 i = std::max<int64>(first, 0); i <= std::min(last, N - 1); ++i) {
      const double hi = banded ? UpperLimit(upper[i], scale, floor) : bare;
      const double lo = banded ? LowerLimit(lower[i], scale, floor) : -bare;
      if (!fits(i, lo, hi)) return false;
    }
    return true;
  };
  if (!regionFits(0, iS - 1 - Untested(pre), pre)) return false;
  if (!regionFits(iE + 1 + Untested(post), N - 1, post)) return false;
  if (!banded) return true;
  for (int64 i = std::max<int64>(iS, 0); i <= std::min(iE, N - 1); ++i) {
    const double hi = upper[i] == kNoLimit ? HUGE_VAL : upper[i];
    const double lo = lower[i] == kNoLimit ? -HUGE_VAL : lower[i];
    if (!fits(i, lo, hi)) return false;
  }
  return true;
}

bool DisplacementSideTest(const double* candidate, uint64 N, double fsamp, double A) {
  if (candidate == nullptr || fsamp < 0.0 || A < 0.0) return false;
  Wave x(candidate, candidate + N);
  CCalcWave::IntegTime(N, x.data(), x.data(), fsamp);
  CCalcWave::IntegTime(N, x.data(), x.data(), fsamp);
  double low = 0.0;
  double high = 0.0;
  CMatBasic::GetMinMax(N, x.data(), 0, &low, &high);
  return std::fabs(high) > std::fabs(low);
}

Limits Limits::Scaled(double factor) && {
  for (double& v : lo) v *= factor;
  for (double& v : hi) v *= factor;
  return std::move(*this);
}

Limits LimitsInForce(const Pulse& pulse, double pre, double post, double untested) {
  const int64 N = pulse.N();
  const double floor = pulse.A * kLeastLimit;
  Limits limits{Wave(pulse.wave.size(), -untested * pulse.A),
                Wave(pulse.wave.size(), untested * pulse.A)};
  const auto at = [](int64 i) { return static_cast<std::size_t>(i); };
  const auto region = [&](int64 first, int64 last, double scale) {
    for (int64 i = std::max<int64>(first, 0); i <= std::min(last, N - 1); ++i) {
      limits.hi[at(i)] = UpperLimit(pulse.upper[at(i)], scale, floor);
      limits.lo[at(i)] = LowerLimit(pulse.lower[at(i)], scale, floor);
    }
  };
  region(0, pulse.at.iS - 1 - Untested(pre), pre);
  region(pulse.at.iE + 1 + Untested(post), N - 1, post);
  for (int64 i = pulse.at.iS; i <= pulse.at.iE; ++i) {
    limits.hi[at(i)] = pulse.upper[at(i)] == kNoLimit ? HUGE_VAL : pulse.upper[at(i)];
    limits.lo[at(i)] = pulse.lower[at(i)] == kNoLimit ? -HUGE_VAL : pulse.lower[at(i)];
  }
  return limits;
}

}  // namespace qarv::wave_def::compensation
