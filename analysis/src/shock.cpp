// What a shock waveform is and what it asks of a table.
#include "analysis/shock.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "common/numeric/calc_wave.h"

namespace qarv::analysis {

namespace {

/// From a sample above the level outwards to where a straight line crosses it.  [sample]
double DistanceToLevel(std::span<const double> wave, std::size_t peak, double level, bool down) {
  const double sign = wave[peak] < 0.0 ? -1.0 : 1.0;
  const std::size_t room = down ? peak : wave.size() - 1 - peak;
  for (std::size_t k = 1; k <= room; ++k) {
    const double inner = sign * wave[down ? peak - k + 1 : peak + k - 1];
    const double outer = sign * wave[down ? peak - k : peak + k];
    if (outer < level) return static_cast<double>(k - 1) + (inner - level) / (inner - outer);
  }
  return static_cast<double>(room);
}

SampleAt LeastDifference(std::span<const double> above, std::span<const double> below) {
  SampleAt least{0, std::numeric_limits<double>::infinity()};
  for (std::size_t i = 0; i < std::min(above.size(), below.size()); ++i) {
    if (above[i] - below[i] < least.value) least = {i, above[i] - below[i]};
  }
  return least;
}

}  // namespace

SampleAt PeakOf(std::span<const double> wave) {
  SampleAt peak{0, 0.0};
  for (std::size_t i = 0; i < wave.size(); ++i) {
    if (std::fabs(wave[i]) > std::fabs(peak.value)) peak = {i, wave[i]};
  }
  return peak;
}

double WidthAtLevel(std::span<const double> wave, double level) {
  const SampleAt peak = PeakOf(wave);
  if (peak.value == 0.0) return 0.0;
  const double limit = level * std::fabs(peak.value);
  return DistanceToLevel(wave, peak.index, limit, true) +
         DistanceToLevel(wave, peak.index, limit, false);
}

Motion MotionOf(std::span<const double> acceleration, double fsamp) {
  Motion motion;
  if (acceleration.empty() || !(fsamp > 0.0)) return motion;
  std::vector<double> x(acceleration.begin(), acceleration.end());
  common::CCalcWave::IntegTime(x.size(), x.data(), x.data(), fsamp);
  for (const double v : x) motion.peakVelocity = std::max(motion.peakVelocity, std::fabs(v));
  motion.residualVelocity = x.back();
  common::CCalcWave::IntegTime(x.size(), x.data(), x.data(), fsamp);
  const auto [low, high] = std::minmax_element(x.begin(), x.end());
  motion.peakDisplacement = std::max(*high, -*low);
  motion.peakToPeakDisplacement = *high - *low;
  motion.residualDisplacement = x.back();
  return motion;
}

double VelocityChange(std::span<const double> acceleration, double fsamp, std::size_t first,
                      std::size_t last) {
  if (first > last || last >= acceleration.size() || !(fsamp > 0.0)) return 0.0;
  double sum = -0.5 * (acceleration[first] + acceleration[last]);
  for (std::size_t i = first; i <= last; ++i) sum += acceleration[i];
  return sum / fsamp;
}

SampleAt MarginToUpper(std::span<const double> wave, std::span<const double> upper) {
  return LeastDifference(upper, wave);
}

SampleAt MarginToLower(std::span<const double> wave, std::span<const double> lower) {
  return LeastDifference(wave, lower);
}

SampleAt LargestOutside(std::span<const double> wave, std::size_t first, std::size_t last) {
  SampleAt largest{0, 0.0};
  for (std::size_t i = 0; i < wave.size(); ++i) {
    const bool inside = i >= first && i <= last;
    if (!inside && std::fabs(wave[i]) > std::fabs(largest.value)) largest = {i, wave[i]};
  }
  return largest;
}

}  // namespace qarv::analysis
