// The fit of the amplitudes: to a required spectrum, within limits of the motion.
#pragma once

#include <initializer_list>
#include <span>
#include <vector>

#include "analysis/srs.h"
#include "element.h"
#include "model.h"
#include "run.h"
#include "synthesis/requirement.h"
#include "synthesis/synthesize.h"

namespace qarv::synthesis {

/// What a fit is after.
struct FitGoal {
  std::vector<double> lower, upper;  // [dB] of each line, between which nothing is to be gained
  bool band = false;                 // whether these are apart
  MotionLimits limits;
  bool bothPolarities = false;
};

/// What is wrong with a waveform: one number for each thing, 0 where nothing is.
struct FitRow {
  double h;                      // [dB], or what counts as much
  std::vector<double> gradient;  // by the steps of the amplitudes
};

/// A waveform with its spectrum.
struct FitState {
  std::vector<double> amplitudes;
  std::vector<double> wave;
  MotionSeries motion;  // where it is looked at
  std::vector<std::vector<analysis::SrsPeak>> peaks;
  std::vector<double> levels;  // of the spectrum
  std::vector<double> h;       // of the lines [dB]
  std::vector<double> extra;   // of what else is wanted
  double overLimit = 0.0;      // [dB] the largest excess over a limit
  double worst = 0.0;          // [dB] the largest |h| and excess
  double rms = 0.0;            // [dB] of h
  double motionPeaks[3] = {};  // acceleration, velocity, displacement
};

class Fit {
 public:
  /// The model's amplitudes are where the fit starts; its other fields stay.
  Fit(Run* run, const SrsRequirement& requirement, Model* model, const Summation* sum,
      std::span<const SrsLine> lines, FitGoal goal);

  /// Rounds of multiplying each amplitude by (required / reached)^0.7 of the line next to it.
  void Rescale(int rounds);

  /// Up to `steps` steps that make the sum of |h|^p small, p a power of two; ends where the worst
  /// is not above `target`.
  void Improve(int p, int steps, double target);

  /// The state with the least worst; it stands in the model too.
  const FitState& TakeBest();
  const FitState& Current() const { return state_; }
  /// Another goal, from those amplitudes on.
  void Restart(const std::vector<double>& amplitudes, FitGoal goal);

  /// For tests: the rows at the current state, of all lines.
  std::vector<FitRow> Rows() const;
  /// By how much an amplitude moves with a step of 1.
  double StepOf(std::size_t element) const;
  FitState Measure(const std::vector<double>& amplitudes);

 private:
  void AddLineRows(std::vector<FitRow>* rows) const;
  void AddLimitRows(std::vector<FitRow>* rows) const;
  void AddEndRows(std::vector<FitRow>* rows) const;
  FitRow SpectrumRow(std::size_t line, double side, double factor, double h) const;
  double UnitMotion(int kind, std::size_t element, std::size_t sample) const;
  bool NeedsMotion() const;
  void SetLevels(FitState* state) const;
  void SetMotion(FitState* state) const;
  double StartOf(const Element& element) const;
  double Sum(const FitState& state, int p) const;
  void Accept(FitState state);

  Run* run_;
  const SrsRequirement& requirement_;
  Model* model_;
  const Summation* sum_;
  std::span<const SrsLine> lines_;
  FitGoal goal_;
  std::vector<double> frequencies_;
  std::vector<ElementMotion> motions_;
  std::vector<ElementResponse> responses_;     // of line i to element j at i n + j
  std::vector<ElementResponse> compensation_;  // of line i
  Compensation compensated_;                   // of the current state
  std::vector<double> starts_;                 // [s] of the elements
  std::vector<double> leastSteps_;
  FitState state_, best_;
};

/// The goal of hitting each line.
FitGoal MatchGoal(std::size_t lines);

}  // namespace qarv::synthesis
