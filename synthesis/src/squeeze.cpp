// The trade of the match against the peaks of the motion.
#include "squeeze.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <utility>

namespace qarv::synthesis {

namespace {

constexpr double kMargin = 0.25;  // [dB] that the fit's lines keep from the tolerance

FitGoal BandGoal(const Task& task, double share, double margin) {
  FitGoal goal;
  goal.band = true;
  for (const SrsLine& line : task.fine) {
    goal.lower.push_back(share * std::min(0.0, line.lower + margin));
    goal.upper.push_back(share * std::max(0.0, line.upper - margin));
  }
  return goal;
}

FitGoal SqueezeGoal(const Task& task, double margin) {
  FitGoal goal = BandGoal(task, 1.0, margin);
  const double within = task.settings.within;
  if (!(within > 0.0)) return goal;
  for (double& lower : goal.lower) lower = std::max(lower, -within);
  for (double& upper : goal.upper) upper = std::min(upper, within);
  return goal;
}

std::size_t KindOf(SrsQuantity quantity) {
  return quantity == SrsQuantity::Acceleration ? 0 : quantity == SrsQuantity::Velocity ? 1 : 2;
}

/// By how much the worst of the lines in between is outside its tolerance; 0 if none is.  [dB]
double ExcessOf(const Task& task, const Outcome& outcome) {
  const SrsDeviation& found = outcome.comparison.between;
  if (found.inside == found.lines) return 0.0;
  double lower = -1e9;
  double upper = 1e9;
  for (const SrsLine& line : task.fine) {
    lower = std::max(lower, line.lower);
    upper = std::min(upper, line.upper);
  }
  return std::max({0.05, found.worst - upper, lower - found.worst});
}

}  // namespace

Outcome Squeeze(const Task& task, const Outcome& start, SrsQuantity quantity, Run* run) {
  constexpr double kMet = 0.05;     // [dB]
  constexpr double kGain = 0.0025;  // of the peak, that a step is worth
  constexpr int kSteps = 10;
  constexpr int kMostRefusals = 5;
  constexpr int kMostMargins = 3;
  const std::size_t kind = KindOf(quantity);
  Candidate candidate{start.model, start.sum, 0.0};
  double margin = kMargin;
  double peak = start.Of(quantity);
  FitGoal goal = SqueezeGoal(task, margin);
  SetLimit(&goal.limits, quantity, peak);
  Fit fit(run, task.requirement, &candidate.model, candidate.sum.get(), task.fine, goal);
  std::vector<double> accepted = fit.Current().amplitudes;
  Outcome best = start;
  for (int round = 0; round <= kMostMargins; ++round) {
    int refusals = 0;
    for (double step = 0.12; step >= 0.008 && refusals < kMostRefusals;) {
      if (run->IsCancelled()) return best;
      goal = SqueezeGoal(task, margin);
      SetLimit(&goal.limits, quantity, peak * (1.0 - step));
      fit.Restart(accepted, goal);
      fit.Improve(2, kSteps, kMet);
      const FitState& now = fit.TakeBest();
      double worst = 0.0;
      for (const double h : now.h) worst = std::max(worst, std::fabs(h));
      if (worst <= kMet && now.motionPeaks[kind] < peak * (1.0 - kGain)) {
        accepted = now.amplitudes;
        peak = now.motionPeaks[kind];
      } else {
        ++refusals;
        step *= 0.5;
      }
    }
    for (std::size_t j = 0; j < accepted.size(); ++j) {
      candidate.model.elements[j].ampl = accepted[j];
    }
    Outcome outcome = OutcomeOf(task, candidate);
    const double excess = ExcessOf(task, outcome);
    if (excess == 0.0) {
      if (outcome.Of(quantity) < best.Of(quantity)) best = std::move(outcome);
      break;
    }
    margin += excess + 0.05;
    // Back inside first, with as little of the gain lost as can be.
    goal = SqueezeGoal(task, margin);
    fit.Restart(accepted, goal);
    fit.Improve(2, kSteps, kMet);
    accepted = fit.TakeBest().amplitudes;
    SetLimit(&goal.limits, quantity, peak);
    fit.Restart(accepted, goal);
    peak = fit.Current().motionPeaks[kind];
  }
  return best;
}

Outcome KeepWithinLimits(const Task& task, const Outcome& start, Run* run) {
  constexpr double kMet = 0.05;  // [dB]
  constexpr int kSteps = 12;
  constexpr double kSafe = 0.995;  // of a limit
  Candidate candidate{start.model, start.sum, 0.0};
  MotionLimits limits = task.settings.limits;
  limits.acceleration *= kSafe;
  limits.velocity *= kSafe;
  limits.displacement *= kSafe;
  Outcome best = start;
  FitGoal goal = MatchGoal(task.fine.size());
  goal.limits = limits;
  Fit fit(run, task.requirement, &candidate.model, candidate.sum.get(), task.fine, goal);
  std::vector<double> amplitudes = fit.Current().amplitudes;
  for (const double share : {0.0, 0.15, 0.3, 0.5, 0.75, 1.0}) {
    if (run->IsCancelled()) return best;
    goal = BandGoal(task, share, kMargin);
    goal.limits = limits;
    fit.Restart(amplitudes, goal);
    for (const int p : {2, 8}) fit.Improve(p, kSteps, kMet);
    amplitudes = fit.TakeBest().amplitudes;
    Outcome outcome = OutcomeOf(task, candidate);
    const bool met = outcome.Meets(task.requirement);
    const bool closer = !best.Meets(task.requirement) &&
                        outcome.comparison.Meets(task.requirement) &&
                        outcome.overLimit < best.overLimit;
    if (met || closer) best = std::move(outcome);
    if (met) break;
  }
  return best;
}

}  // namespace qarv::synthesis
