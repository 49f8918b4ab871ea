// How close the spectrum of a shock comes to what is required.
#pragma once

#include <cstddef>
#include <span>

#include "synthesis/requirement.h"

namespace qarv::synthesis {

/// Deviations of a spectrum from the required one, over the lines of a grid.
struct SrsDeviation {
  double worst = 0.0;           // [dB] the largest one, with its sign
  double worstFrequency = 0.0;  // [Hz]
  double rms = 0.0;             // [dB]
  std::size_t lines = 0;
  std::size_t inside = 0;  // lines within the tolerance
};

/// What is found of a shock.
struct SrsComparison {
  SrsDeviation onGrid;             // the requirement's own lines
  SrsDeviation between;            // lines twelve times as close
  double polarity = 0.0;           // [dB] by which one side is larger than the other, at worst
  double polarityFrequency = 0.0;  // [Hz]
  double polarityMedian = 0.0;     // [dB]
  Durations durations;             // [s]

  /// Every line is inside, and what else is required holds.
  bool Meets(const SrsRequirement& requirement) const;
};

/// The number of lines that stand for one of the requirement's, to see what happens in between.
inline constexpr double kBetween = 12.0;

/// Compares a shock with a requirement without faults.  Cost: two spectra.
/// @return no lines where the shock has no spectrum: a sample is no number, or the sampling
///         frequency is not more than twice the last frequency
SrsComparison CompareSrs(const SrsRequirement& requirement, std::span<const double> shock,
                         double fsamp);

/// Whether durations are within the tolerance of those that are required.
bool DurationsMeet(const SrsRequirement& requirement, const Durations& durations);

}  // namespace qarv::synthesis
