// The candidates of a synthesis: layouts that are screened, and the best of them refined.
#pragma once

#include <memory>
#include <vector>

#include "fit.h"
#include "layout.h"
#include "model.h"
#include "run.h"
#include "synthesis/comparison.h"
#include "synthesis/synthesize.h"

namespace qarv::synthesis {

/// What a synthesis works with, checked and complete.
struct Task {
  Task(const SrsRequirement& required, const SrsSettings& chosen);

  const SrsRequirement& requirement;
  SrsSettings settings;               // with a sampling frequency and a number of samples
  std::vector<SrsLine> coarse, fine;  // to screen on, and to fit on
  double Q;

  Model Layout(const LayoutRule& rule) const;
  /// Numbers of half cycles that follow from Q: a response is built up after Q cycles.
  unsigned int Halves(double perQ) const;
};

/// A layout with its amplitudes so far.
struct Candidate {
  Model model;
  std::shared_ptr<const Summation> sum;
  double score = 0.0;  // the less the better
};

/// A waveform and what is found of it.
struct Outcome {
  Model model;
  std::shared_ptr<const Summation> sum;
  SrsComparison comparison;
  analysis::Motion motion;
  double peak = 0.0;
  double overLimit = 0.0;                // [dB]
  SrsQuantity over = SrsQuantity::None;  // that exceeds its limit the most

  bool Meets(const SrsRequirement& requirement) const {
    return comparison.Meets(requirement) && overLimit <= 0.0;
  }
  double Of(SrsQuantity quantity) const;
};

/// The waveform of a model, looked at.
Outcome OutcomeOf(const Task& task, const Candidate& candidate);
/// Whether one is to be preferred: what meets everything, then the smaller deviation.
bool IsBetter(const Task& task, const Outcome& a, const Outcome& b);

double LimitOf(const MotionLimits& limits, SrsQuantity quantity);
void SetLimit(MotionLimits* limits, SrsQuantity quantity, double limit);

/// Lays out, rescales and fits a little on the coarse lines.
Candidate Screen(const Task& task, const LayoutRule& rule, Run* run);
/// Fits on the fine lines.
Outcome Refine(const Task& task, Candidate candidate, Run* run);
/// The best waveform that matches the requirement, without regard to limits.
Outcome Match(const Task& task, Run* run);

}  // namespace qarv::synthesis
