// The stages of a synthesis, and what is said where one fails.
#include "synthesis/synthesize.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "arrange.h"
#include "common/numeric/index_conv.h"
#include "numeric/elementary.h"
#include "run.h"
#include "search.h"
#include "squeeze.h"

namespace qarv::synthesis {

using namespace com_def::comdefconst;

namespace {

/// Whether a setting is no number or makes no sense.
bool IsBad(const SrsSettings& s) {
  for (const double v :
       {s.fsamp, s.limits.acceleration, s.limits.velocity, s.limits.displacement, s.within}) {
    if (!(v >= 0.0 && std::isfinite(v))) return true;
  }
  constexpr common::uint64 kLongest = common::uint64{1} << 24;
  if (s.nsamp > kLongest) return true;
  const bool wavelet = s.method == SYNC_WAVE_WAVELET;
  if (!wavelet && s.method != SYNC_WAVE_DAMPED_SINE && s.method != SYNC_WAVE_DAMPED_SINE_MODIFIED) {
    return true;
  }
  return !wavelet && (s.aim != SrsAim::Match || s.limits != MotionLimits{});
}

/// What the record and its sampling are too little for; None if they are enough.
SrsResult CheckRecord(const SrsRequirement& requirement, const SrsSettings& s) {
  SrsResult out;
  const double last = requirement.points.back().frequency;
  if (s.fsamp < kLeastSampling * last) {
    out.failure = SrsFailure::SamplingTooLow;
    out.frequency = last;
    out.value = s.fsamp;
    out.bound = kLeastSampling * last;
    return out;
  }
  const double first = requirement.points.front().frequency;
  const double periods = s.method == SYNC_WAVE_WAVELET ? 1.5 : 2.0;
  const double least = std::ceil(periods * s.fsamp / first) + 2.0;
  if (static_cast<double>(s.nsamp) < least) {
    out.failure = SrsFailure::RecordTooShort;
    out.frequency = first;
    out.value = static_cast<double>(s.nsamp);
    out.bound = least;
  }
  return out;
}

/// The steepest change of the required level next to a frequency [dB per octave].
double SlopeAt(const Task& task, double frequency) {
  constexpr double kLn2 = 0.6931471805599453;
  double steepest = 0.0;
  const auto& points = task.requirement.points;
  for (std::size_t i = 0; i + 1 < points.size(); ++i) {
    // As far as a response is felt beside its frequency.
    const double reach = 1.0 + 1.0 / task.Q;
    if (frequency > points[i + 1].frequency * reach) continue;
    if (frequency < points[i].frequency / reach) continue;
    const double octaves =
        common::elementary::Log(points[i + 1].frequency / points[i].frequency) / kLn2;
    const double slope = Decibels(points[i + 1].level / points[i].level) / octaves;
    if (std::fabs(slope) > std::fabs(steepest)) steepest = slope;
  }
  return steepest;
}

/// The line that is outside the most, judged as the comparison does.
SrsLine LineAt(const Task& task, double frequency) {
  const auto lines = RequiredLines(task.requirement, kBetween * task.requirement.perOctave);
  return *std::min_element(lines.begin(), lines.end(), [&](const SrsLine& a, const SrsLine& b) {
    return std::fabs(a.frequency - frequency) < std::fabs(b.frequency - frequency);
  });
}

void ExplainSpectrum(const Task& task, const Outcome& outcome, SrsResult* out) {
  constexpr double kSteepest = 15.0;  // [dB per octave]
  constexpr double kNearPeak = 1.12;
  const SrsComparison& c = outcome.comparison;
  const bool grid = c.between.inside == c.between.lines;
  const SrsDeviation& worst = grid ? c.onGrid : c.between;
  const SrsLine line = LineAt(task, worst.worstFrequency);
  out->frequency = worst.worstFrequency;
  const double reached = line.level * RatioOf(worst.worst);
  const double slope = SlopeAt(task, worst.worstFrequency);
  if (worst.worst > 0.0 && reached <= kNearPeak * outcome.peak) {
    out->failure = SrsFailure::BelowItsOwnPeak;
    out->value = line.level;
    out->bound = outcome.peak;
  } else if (std::fabs(slope) > kSteepest) {
    out->failure = SrsFailure::TooSteep;
    out->value = slope;
    out->bound = kSteepest;
  } else {
    out->failure = SrsFailure::NotReached;
    out->value = worst.worst;
    out->bound = worst.worst > 0.0 ? line.upper : line.lower;
  }
}

/// Why an outcome is not what was asked for.
void Explain(const Task& task, const Outcome& outcome, SrsResult* out) {
  const SrsComparison& c = outcome.comparison;
  const SrsRequirement& required = task.requirement;
  const bool inside = c.onGrid.inside == c.onGrid.lines && c.between.inside == c.between.lines;
  if (!inside) return ExplainSpectrum(task, outcome, out);
  if (outcome.overLimit > 0.0) {
    out->failure = SrsFailure::LimitsNotMet;
    out->quantity = outcome.over;
    out->value = outcome.Of(outcome.over);
    out->bound = LimitOf(task.settings.limits, outcome.over);
  } else if (!DurationsMeet(required, c.durations)) {
    Durations TeAlone = c.durations;
    TeAlone.TE = required.durations.TE;
    const bool isTe = !DurationsMeet(required, TeAlone);
    out->failure = SrsFailure::DurationNotMet;
    out->quantity = isTe ? SrsQuantity::Te : SrsQuantity::TE;
    out->value = isTe ? c.durations.Te : c.durations.TE;
    out->bound = isTe ? required.durations.Te : required.durations.TE;
  } else if (required.bothPolarities && c.polarity > kPolarityDb) {
    out->failure = SrsFailure::PolarityNotMet;
    out->frequency = c.polarityFrequency;
    out->value = c.polarity;
    out->bound = kPolarityDb;
  }
}

/// Whether the frequency falls steadily: by zero crossings, over eight parts of equal energy.
bool IsSweep(const std::vector<double>& wave) {
  constexpr std::size_t kParts = 8;
  double energy = 0.0;
  for (const double v : wave) energy += v * v;
  std::vector<double> rates;
  double sum = 0.0;
  double crossings = 0.0;
  std::size_t first = 0;
  for (std::size_t i = 1; i < wave.size() && rates.size() < kParts; ++i) {
    sum += wave[i] * wave[i];
    if ((wave[i] < 0.0) != (wave[i - 1] < 0.0)) crossings += 1.0;
    if (sum < energy * static_cast<double>(rates.size() + 1) / kParts) continue;
    rates.push_back((crossings + 1.0) / static_cast<double>(i - first + 1));
    first = i;
    crossings = 0.0;
  }
  if (rates.size() < kParts - 1) return false;
  for (std::size_t n = 1; n < rates.size(); ++n) {
    if (rates[n] > rates[n - 1]) return false;
  }
  return rates.back() < 0.5 * rates.front();
}

SrsQuantity QuantityOf(SrsAim aim) {
  switch (aim) {
    case SrsAim::LeastAcceleration:
      return SrsQuantity::Acceleration;
    case SrsAim::LeastVelocity:
      return SrsQuantity::Velocity;
    case SrsAim::LeastDisplacement:
      return SrsQuantity::Displacement;
    case SrsAim::Match:
      break;
  }
  return SrsQuantity::None;
}

Outcome Least(const Task& task, const Outcome& match, SrsQuantity quantity, Run* run) {
  if (quantity == SrsQuantity::Acceleration) return Squeeze(task, match, quantity, run);
  return LeastByPlaces(task, match, quantity, run);
}

/// Whether an outcome has spent most of the tolerance.
bool IsPoor(const Task& task, const Outcome& outcome) {
  constexpr double kMost = 0.8;
  const SrsDeviation& d = outcome.comparison.between;
  const SrsLine line = LineAt(task, d.worstFrequency);
  return d.worst > kMost * line.upper || d.worst < kMost * line.lower;
}

/// Within the limits of the machine, from what matches and, where that leads nowhere or far from
/// the required spectrum, from what moves the least.
Outcome WithinLimits(const Task& task, const Outcome& match, Run* run) {
  if (!match.comparison.Meets(task.requirement)) return match;
  Outcome best = KeepWithinLimits(task, match, run);
  if (run->IsCancelled()) return best;
  if (best.Meets(task.requirement) && !IsPoor(task, best)) return best;
  const Outcome least = Least(task, match, match.over, run);
  if (run->IsCancelled()) return best;
  for (const Outcome& outcome : {least, KeepWithinLimits(task, least, run)}) {
    const bool closer = outcome.comparison.Meets(task.requirement) &&
                        !best.Meets(task.requirement) && outcome.overLimit < best.overLimit;
    const bool better = outcome.Meets(task.requirement) && IsBetter(task, outcome, best);
    if (closer || better) best = outcome;
  }
  return best;
}

}  // namespace

SrsResult SynthesizeSrs(const SrsRequirement& requirement, const SrsSettings& settings) {
  SrsResult out;
  if (FaultOf(requirement).what != RequirementFault::What::None || IsBad(settings)) {
    out.failure = SrsFailure::BadRequirement;
    return out;
  }
  const Task task(requirement, settings);
  if (IsBad(task.settings)) {  // as what follows from the requirement may be
    out.failure = SrsFailure::BadRequirement;
    return out;
  }
  out = CheckRecord(requirement, task.settings);
  out.fsamp = task.settings.fsamp;
  if (out.failure != SrsFailure::None) return out;

  const bool limited = settings.limits != MotionLimits{} || settings.aim != SrsAim::Match;
  const double expected = 60.0 * static_cast<double>(task.coarse.size()) +
                          60.0 * static_cast<double>(task.fine.size()) * (limited ? 3.0 : 1.0);
  Run run(settings.progress, expected);
  Outcome best = Match(task, &run);
  if (!run.IsCancelled() && settings.aim != SrsAim::Match && best.comparison.Meets(requirement)) {
    best = Least(task, best, QuantityOf(settings.aim), &run);
  }
  if (!run.IsCancelled() && best.overLimit > 0.0) best = WithinLimits(task, best, &run);
  if (run.IsCancelled()) {
    out.failure = SrsFailure::Cancelled;
    return out;
  }
  out.definition = DefinitionOf(best.model);
  out.comparison = best.comparison;
  out.motion = best.motion;
  out.peak = best.peak;
  out.sweeps = IsSweep(GenerateWave(out.definition, out.fsamp));
  if (!best.Meets(requirement)) Explain(task, best, &out);
  return out;
}

}  // namespace qarv::synthesis
