// Required spectra as lines on logarithmic axes.
#include "synthesis/requirement.h"

#include <algorithm>
#include <cmath>

#include "analysis/srs.h"
#include "numeric/elementary.h"

namespace qarv::synthesis {

using common::elementary::Exp;
using common::elementary::Log;

namespace {

constexpr double kLn10 = 2.302585092994046;
constexpr double kLn2 = 0.6931471805599453;
constexpr double kMostLines = 4000.0;

/// Between which points a frequency lies, and where.
struct Between {
  const SrsTarget& from;
  const SrsTarget& to;
  double share;
};

Between PlaceOf(const SrsRequirement& requirement, double frequency) {
  const auto& points = requirement.points;
  std::size_t i = 1;
  while (i + 1 < points.size() && points[i].frequency <= frequency) ++i;
  const SrsTarget& from = points[i - 1];
  const SrsTarget& to = points[i];
  const double share = Log(frequency / from.frequency) / Log(to.frequency / from.frequency);
  return {from, to, std::clamp(share, 0.0, 1.0)};
}

double LevelAt(const Between& at) {
  if (at.share == 0.0) return at.from.level;
  if (at.share == 1.0) return at.to.level;
  return at.from.level * Exp(at.share * Log(at.to.level / at.from.level));
}

bool IsPositive(double v) { return v > 0.0 && std::isfinite(v); }

}  // namespace

double Decibels(double ratio) { return 20.0 / kLn10 * Log(ratio); }
double RatioOf(double decibels) { return Exp(decibels * kLn10 / 20.0); }

RequirementFault FaultOf(const SrsRequirement& requirement) {
  using enum RequirementFault::What;
  const auto& points = requirement.points;
  if (points.size() < 2) return {TooFewPoints, 0};
  for (std::size_t i = 0; i < points.size(); ++i) {
    const SrsTarget& p = points[i];
    if (!IsPositive(p.frequency)) return {NotRising, i};
    if (i > 0 && !(p.frequency > points[i - 1].frequency)) return {NotRising, i};
    if (!IsPositive(p.level)) return {Level, i};
    const bool finite = std::isfinite(p.tolLower) && std::isfinite(p.tolUpper);
    if (!(finite && p.tolLower < 0.0 && p.tolUpper > 0.0)) return {Tolerance, i};
  }
  if (!(requirement.zeta >= 0.001 && requirement.zeta <= 0.5)) return {Damping, 0};
  const double octaves = Log(points.back().frequency / points.front().frequency) / kLn2;
  if (!(requirement.perOctave >= 1.0 && requirement.perOctave * octaves + 2.0 <= kMostLines)) {
    return {Lines, 0};
  }
  const Durations& d = requirement.durations;
  const bool durations = d.Te >= 0.0 && d.TE >= 0.0 && std::isfinite(d.Te) && std::isfinite(d.TE);
  if (!(durations && IsPositive(requirement.durationTol))) return {Duration, 0};
  return {};
}

double RequiredLevel(const SrsRequirement& requirement, double frequency) {
  return LevelAt(PlaceOf(requirement, frequency));
}

std::vector<SrsLine> RequiredLines(const SrsRequirement& requirement, double perOctave) {
  const double last = requirement.points.back().frequency;
  std::vector<double> frequencies =
      analysis::SrsFrequencies(requirement.points.front().frequency, last, perOctave);
  if (frequencies.back() < last * (1.0 - 1e-9)) {
    frequencies.push_back(last);
  } else {
    frequencies.back() = last;
  }
  std::vector<SrsLine> lines;
  for (const double f : frequencies) {
    const Between at = PlaceOf(requirement, f);
    const auto mix = [&](double a, double b) { return a + at.share * (b - a); };
    lines.push_back({f, LevelAt(at), mix(at.from.tolLower, at.to.tolLower),
                     mix(at.from.tolUpper, at.to.tolUpper)});
  }
  return lines;
}

}  // namespace qarv::synthesis
