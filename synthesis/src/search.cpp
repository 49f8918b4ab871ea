// Which layouts are tried, and which one is kept.
#include "search.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "analysis/shock.h"
#include "common/numeric/index_conv.h"
#include "numeric/elementary.h"

namespace qarv::synthesis {

namespace {

SrsSettings Completed(const SrsRequirement& requirement, SrsSettings settings) {
  if (settings.fsamp == 0.0) settings.fsamp = 20.48 * requirement.points.back().frequency;
  if (settings.nsamp == 0) {
    const double periods = 6.0 / requirement.points.front().frequency;
    settings.nsamp = common::RoundToIndex(periods * settings.fsamp);  // rounded half up
  }
  return settings;
}

/// How far durations are from the required ones, in tolerances.
double DurationExcess(const SrsRequirement& requirement, const Durations& durations) {
  const auto excess = [&](double is, double required) {
    if (required == 0.0) return 0.0;
    const double ratio = std::max(is, 1e-3 * required) / required;
    return std::fabs(common::elementary::Log(ratio)) / (0.01 * requirement.durationTol);
  };
  return std::max(excess(durations.Te, requirement.durations.Te),
                  excess(durations.TE, requirement.durations.TE));
}

bool HasDurations(const SrsRequirement& requirement) {
  return requirement.durations.Te > 0.0 || requirement.durations.TE > 0.0;
}

/// The layouts of a shape.
std::vector<LayoutRule> RulesOf(const Task& task) {
  const unsigned int N0 = task.Halves(0.5);
  const unsigned int N1 = task.Halves(1.0);
  const unsigned int N2 = task.Halves(2.0);
  const common::uint64 seed = task.settings.seed;
  using enum Signs;
  std::vector<LayoutRule> rules;
  switch (task.settings.shape) {
    case SrsShape::Sweep:
      rules = {{Order::HighFirst, N1}, {Order::Together, N2}, {Order::HighFirst, N2},
               {Order::LowFirst, N1},  {Order::Random, N2},   {Order::Together, N1}};
      break;
    case SrsShape::Shock:
      // Equal signs would be a match too, but one that pushes to one side.
      for (const unsigned int N : {N0, N1}) {
        rules.push_back({Order::Together, N, Alternating});
        for (common::uint64 n = 0; n < 2; ++n) {
          rules.push_back(
              {.order = Order::Together, .halves = N, .signs = Random, .seed = seed + 1000003 * n});
        }
      }
      break;
    case SrsShape::Random:
      for (const unsigned int N : {N2, N1}) {
        for (common::uint64 n = 0; n < 3; ++n) {
          rules.push_back({.order = Order::Random, .halves = N, .seed = seed + 1000003 * n});
        }
      }
      break;
  }
  if (task.settings.shape == SrsShape::Sweep) {
    for (LayoutRule& rule : rules) rule.seed = seed;
  }
  return rules;
}

/// Longer ones, for what none of the usual ones meets well.
std::vector<LayoutRule> LongerRules(const Task& task, double perQ) {
  std::vector<LayoutRule> rules;
  for (const Signs signs : {Signs::Alternating, Signs::Random}) {
    rules.push_back({.order = Order::Together,
                     .halves = task.Halves(perQ),
                     .signs = signs,
                     .seed = task.settings.seed});
  }
  return rules;
}

/// Layouts between those that are short and those that are long.
std::vector<LayoutRule> RulesForDurations(const Task& task) {
  std::vector<LayoutRule> rules;
  for (const double perQ : {0.3, 0.5, 1.0, 2.0}) {
    for (const double spread : {0.0, 0.03, 0.08, 0.2, 0.4, 0.7, 1.0}) {
      rules.push_back({.order = Order::HighFirst,
                       .halves = task.Halves(perQ),
                       .spread = spread,
                       .seed = task.settings.seed});
    }
    // As short as it gets: all that starts adds up.
    rules.push_back({Order::Together, task.Halves(perQ), Signs::Equal, 0.0});
  }
  return rules;
}

}  // namespace

Task::Task(const SrsRequirement& required, const SrsSettings& chosen)
    : requirement(required), settings(Completed(required, chosen)), Q(0.5 / required.zeta) {
  const double dense = 36.0 * std::max(1.0, 0.1 * Q);
  const double perOctave = std::ceil(dense / required.perOctave) * required.perOctave;
  coarse = RequiredLines(required, std::min(perOctave, std::max(12.0, 1.2 * Q)));
  fine = RequiredLines(required, perOctave);
}

Model Task::Layout(const LayoutRule& rule) const {
  return MakeLayout(requirement, settings.method, settings.fsamp, settings.nsamp, rule);
}

unsigned int Task::Halves(double perQ) const {
  return 2 * static_cast<unsigned int>(common::FloorToIndex(0.5 * perQ * Q)) + 1;
}

double Outcome::Of(SrsQuantity quantity) const {
  if (quantity == SrsQuantity::Acceleration) return peak;
  return quantity == SrsQuantity::Velocity ? motion.peakVelocity : motion.peakDisplacement;
}

double LimitOf(const MotionLimits& limits, SrsQuantity quantity) {
  if (quantity == SrsQuantity::Acceleration) return limits.acceleration;
  return quantity == SrsQuantity::Velocity ? limits.velocity : limits.displacement;
}

void SetLimit(MotionLimits* limits, SrsQuantity quantity, double limit) {
  if (quantity == SrsQuantity::Acceleration) limits->acceleration = limit;
  if (quantity == SrsQuantity::Velocity) limits->velocity = limit;
  if (quantity == SrsQuantity::Displacement) limits->displacement = limit;
}

Outcome OutcomeOf(const Task& task, const Candidate& candidate) {
  Outcome out;
  out.model = candidate.model;
  out.sum = candidate.sum;
  const double fsamp = task.settings.fsamp;
  const std::vector<double> wave = GenerateWave(DefinitionOf(out.model), fsamp);
  out.comparison = CompareSrs(task.requirement, wave, fsamp);
  out.motion = analysis::MotionOf(wave, fsamp);
  out.peak = std::fabs(analysis::PeakOf(wave).value);
  out.overLimit = -1e9;
  for (const SrsQuantity quantity :
       {SrsQuantity::Acceleration, SrsQuantity::Velocity, SrsQuantity::Displacement}) {
    const double limit = LimitOf(task.settings.limits, quantity);
    if (limit == 0.0 || out.Of(quantity) == 0.0) continue;
    const double over = Decibels(out.Of(quantity) / limit);
    if (over <= out.overLimit) continue;
    out.overLimit = over;
    out.over = quantity;
  }
  return out;
}

bool IsBetter(const Task& task, const Outcome& a, const Outcome& b) {
  const bool aMeets = a.Meets(task.requirement);
  const bool bMeets = b.Meets(task.requirement);
  if (aMeets != bMeets) return aMeets;
  const auto score = [&](const Outcome& outcome) {
    const SrsComparison& c = outcome.comparison;
    const double sides =
        task.requirement.bothPolarities ? std::max(0.0, c.polarity - kPolarityDb) : 0.0;
    return std::fabs(c.between.worst) + sides +
           std::max(0.0, DurationExcess(task.requirement, c.durations) - 1.0);
  };
  return score(a) < score(b);
}

Candidate Screen(const Task& task, const LayoutRule& rule, Run* run) {
  constexpr int kRounds = 5;
  constexpr int kSteps = 5;
  constexpr double kTarget = 0.1;  // [dB]
  Candidate out{task.Layout(rule), {}, 0.0};
  out.sum = std::make_shared<const Summation>(out.model);
  FitGoal goal = MatchGoal(task.coarse.size());
  goal.bothPolarities = task.requirement.bothPolarities;
  Fit fit(run, task.requirement, &out.model, out.sum.get(), task.coarse, goal);
  fit.Rescale(kRounds);
  fit.Improve(2, kSteps, kTarget);
  out.score = fit.Current().rms;
  if (HasDurations(task.requirement)) {
    const Durations durations = EffectiveDurations(fit.Current().wave, task.settings.fsamp);
    out.score += 3.0 * std::max(0.0, DurationExcess(task.requirement, durations) - 0.5);
  }
  return out;
}

Outcome Refine(const Task& task, Candidate candidate, Run* run) {
  constexpr int kSteps = 12;
  const double target = task.settings.quick ? 0.2 : 0.1;  // [dB]
  FitGoal goal = MatchGoal(task.fine.size());
  goal.bothPolarities = task.requirement.bothPolarities;
  Fit fit(run, task.requirement, &candidate.model, candidate.sum.get(), task.fine, goal);
  const int most = task.settings.quick ? 2 : 16;
  for (int p = 2; p <= most; p *= 2) {
    fit.Improve(p, kSteps, target);
    if (fit.Current().worst <= target) break;
  }
  fit.TakeBest();
  return OutcomeOf(task, candidate);
}

namespace {

constexpr double kGood = 0.6;  // [dB] with which no other shocks are looked at

/// The best of some layouts, of which `refined` are looked at, and more until one meets all.
Outcome BestOf(const Task& task, const std::vector<LayoutRule>& rules, std::size_t refined,
               Run* run) {
  const bool picky = task.settings.shape == SrsShape::Shock && !task.settings.quick;
  constexpr std::size_t kMostRefined = 8;
  std::vector<Candidate> candidates;
  for (const LayoutRule& rule : rules) {
    if (run->IsCancelled()) return {};
    candidates.push_back(Screen(task, rule, run));
  }
  std::stable_sort(candidates.begin(), candidates.end(),
                   [](const Candidate& a, const Candidate& b) { return a.score < b.score; });
  Outcome best;
  for (std::size_t n = 0; n < candidates.size(); ++n) {
    if (run->IsCancelled()) return {};
    const bool good = !picky || std::fabs(best.comparison.between.worst) < kGood;
    if (n >= refined && good && best.comparison.Meets(task.requirement)) break;
    if (n == kMostRefined) break;
    Outcome outcome = Refine(task, std::move(candidates[n]), run);
    if (n == 0 || IsBetter(task, outcome, best)) best = std::move(outcome);
  }
  return best;
}

}  // namespace

Outcome Match(const Task& task, Run* run) {
  if (HasDurations(task.requirement)) return BestOf(task, RulesForDurations(task), 4, run);
  Outcome best = BestOf(task, RulesOf(task), task.settings.quick ? 1 : 2, run);
  if (task.settings.shape != SrsShape::Shock) return best;
  // Narrow peaks and notches need wavelets that last; these still start together.
  for (const double perQ : {1.5, 2.0}) {
    if (run->IsCancelled()) return best;
    const bool meets = best.comparison.Meets(task.requirement);
    const bool longest = perQ == 2.0 || task.settings.quick;  // looks like a sweep
    if (meets && (longest || std::fabs(best.comparison.between.worst) < kGood)) break;
    Outcome other = BestOf(task, LongerRules(task, perQ), 1, run);
    if (!run->IsCancelled() && IsBetter(task, other, best)) best = std::move(other);
  }
  return best;
}

}  // namespace qarv::synthesis
