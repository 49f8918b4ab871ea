// How long a transient lasts and how its energy lies in time.
#include "analysis/transient.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "analysis/shock.h"
#include "numeric/elementary.h"

namespace qarv::analysis {

namespace {

double CubeRoot(double v) {
  if (v == 0.0) return 0.0;
  const double root = common::elementary::Exp(common::elementary::Log(std::fabs(v)) / 3.0);
  return v < 0.0 ? -root : root;
}

/// From the first to the last crossing of a level.  [sample]
double BetweenCrossings(std::span<const double> wave, double level) {
  const auto isAbove = [level](double v) { return std::fabs(v) >= level; };
  const auto begin = std::find_if(wave.begin(), wave.end(), isAbove);
  if (begin == wave.end()) return 0.0;
  const auto first = static_cast<std::size_t>(begin - wave.begin());
  std::size_t last = wave.size() - 1;
  while (!isAbove(wave[last])) --last;
  // How far outwards from a sample above the level to the crossing.
  const auto beyond = [&](std::size_t inner, std::size_t outer) {
    const double in = std::fabs(wave[inner]);
    const double sign = wave[inner] < 0.0 ? -1.0 : 1.0;
    return (in - level) / (in - sign * wave[outer]);
  };
  double length = static_cast<double>(last - first);
  if (first > 0) length += beyond(first, first - 1);
  if (last + 1 < wave.size()) length += beyond(last, last + 1);
  return length;
}

/// From 5 % to 95 % of the energy, which grows evenly within the interval of a sample.  [sample]
double BetweenEnergies(std::span<const double> wave, double sum) {
  double upTo = 0.0;
  double begin = -1.0;
  for (std::size_t i = 0; i < wave.size(); ++i) {
    const double square = wave[i] * wave[i];
    const auto at = [&](double share) {
      return static_cast<double>(i) + (share * sum - upTo) / square;
    };
    if (begin < 0.0 && upTo + square >= 0.05 * sum && square > 0.0) begin = at(0.05);
    if (upTo + square >= 0.95 * sum && square > 0.0) return at(0.95) - begin;
    upTo += square;
  }
  return 0.0;
}

}  // namespace

Transient TransientOf(std::span<const double> wave, double fsamp) {
  Transient out;
  if (wave.empty() || !(fsamp > 0.0)) return out;
  double m0 = 0.0;
  double m1 = 0.0;
  for (std::size_t i = 0; i < wave.size(); ++i) {
    m0 += wave[i] * wave[i];
    m1 += static_cast<double>(i) * wave[i] * wave[i];
  }
  if (!(m0 > 0.0)) return out;
  const double tau = m1 / m0;
  double m2 = 0.0;
  double m3 = 0.0;
  double m4 = 0.0;
  for (std::size_t i = 0; i < wave.size(); ++i) {
    const double t = static_cast<double>(i) - tau;
    const double square = wave[i] * wave[i];
    m2 += t * t * square;
    m3 += t * t * t * square;
    m4 += t * t * t * t * square;
  }
  out.rms = std::sqrt(m0 / static_cast<double>(wave.size()));
  out.energy = m0 / fsamp;
  out.durationTenth = BetweenCrossings(wave, 0.1 * std::fabs(PeakOf(wave).value)) / fsamp;
  out.durationEnergy = BetweenEnergies(wave, m0) / fsamp;
  out.centroid = tau / fsamp;
  out.rmsDuration = std::sqrt(m2 / m0) / fsamp;
  out.skewness = CubeRoot(m3 / m0) / fsamp;
  out.kurtosis = std::sqrt(std::sqrt(m4 / m0)) / fsamp;
  out.rootEnergy = out.rmsDuration > 0.0 ? std::sqrt(out.energy / out.rmsDuration) : 0.0;
  return out;
}

}  // namespace qarv::analysis
