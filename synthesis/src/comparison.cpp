// A shock's spectrum beside the required one.
#include "synthesis/comparison.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "analysis/srs.h"

namespace qarv::synthesis {

namespace {

std::vector<analysis::SrsPoint> SpectrumOn(const std::vector<SrsLine>& lines, double zeta,
                                           std::span<const double> shock, double fsamp) {
  std::vector<double> frequencies;
  for (const SrsLine& line : lines) frequencies.push_back(line.frequency);
  return analysis::CalcSrs(shock, fsamp, frequencies, zeta,
                           analysis::SrsResponse::AbsoluteAcceleration);
}

SrsDeviation DeviationOf(const std::vector<SrsLine>& lines,
                         const std::vector<analysis::SrsPoint>& points) {
  SrsDeviation out;
  out.lines = points.size();
  double squares = 0.0;
  for (std::size_t i = 0; i < points.size(); ++i) {
    const double db = Decibels(points[i].Total().Maximax() / lines[i].level);
    squares += db * db;
    if (db >= lines[i].lower && db <= lines[i].upper) ++out.inside;
    if (i > 0 && !(std::fabs(db) > std::fabs(out.worst))) continue;
    out.worst = db;
    out.worstFrequency = lines[i].frequency;
  }
  if (out.lines != 0) out.rms = std::sqrt(squares / static_cast<double>(out.lines));
  return out;
}

void SetPolarity(const std::vector<analysis::SrsPoint>& points, SrsComparison* out) {
  std::vector<double> sides;
  for (const analysis::SrsPoint& p : points) {
    const analysis::SrsExtremes total = p.Total();
    sides.push_back(std::fabs(Decibels(total.positive / -total.negative)));
    if (sides.size() > 1 && !(sides.back() > out->polarity)) continue;
    out->polarity = sides.back();
    out->polarityFrequency = p.frequency;
  }
  if (sides.empty()) return;
  const auto middle = sides.begin() + static_cast<std::ptrdiff_t>(sides.size() / 2);
  std::nth_element(sides.begin(), middle, sides.end());
  out->polarityMedian = *middle;
}

bool IsNear(double duration, double required, double tolerance) {
  return required == 0.0 || std::fabs(duration / required - 1.0) <= 0.01 * tolerance;
}

}  // namespace

bool DurationsMeet(const SrsRequirement& requirement, const Durations& durations) {
  const Durations& required = requirement.durations;
  return IsNear(durations.Te, required.Te, requirement.durationTol) &&
         IsNear(durations.TE, required.TE, requirement.durationTol);
}

bool SrsComparison::Meets(const SrsRequirement& requirement) const {
  return onGrid.lines != 0 && onGrid.inside == onGrid.lines && between.inside == between.lines &&
         !(requirement.bothPolarities && polarity > kPolarityDb) &&
         DurationsMeet(requirement, durations);
}

SrsComparison CompareSrs(const SrsRequirement& requirement, std::span<const double> shock,
                         double fsamp) {
  const auto lines = RequiredLines(requirement, requirement.perOctave);
  const auto closer = RequiredLines(requirement, kBetween * requirement.perOctave);
  const auto points = SpectrumOn(lines, requirement.zeta, shock, fsamp);
  SrsComparison out;
  out.onGrid = DeviationOf(lines, points);
  out.between = DeviationOf(closer, SpectrumOn(closer, requirement.zeta, shock, fsamp));
  SetPolarity(points, &out);
  out.durations = EffectiveDurations(shock, fsamp);
  return out;
}

}  // namespace qarv::synthesis
