// The search for the largest gain of the reshaping with which the waveform still keeps within its
// bands.
#pragma once

#include "compensation/problem.h"
#include "compensation/reshape.h"

namespace qarv::wave_def::compensation {

/// Makes and tests the candidates of one attempt.
class Candidates {
 public:
  /// Both objects must outlive this one.
  Candidates(Reshaper* reshaper, const Attempt& attempt, const Settings& settings);

  /// The attempt's waveform reshaped with gain g and rescaled to its peak.
  /// @return whether it keeps within the bands; out holds it either way
  bool Make(double g, Wave* out, int64* worst = nullptr);

  /// Whether the displacement lies on the wanted side.
  bool IsOnSide(const Wave& candidate) const;

 private:
  Reshaper* reshaper_;
  const Attempt& attempt_;
  const Settings& settings_;
};

struct GainFound {
  bool passed;  // at gain 1, and so at the gain found
  Wave best;    // the last candidate that passed, or the first one that failed
  double gain;
  int64 worst;  // [sample] where the first one failed
};

/// Eight tries of a bisection on the logarithm between 1 and 1e8.
GainFound SearchGain(Candidates* candidates, const Settings& settings);

}  // namespace qarv::wave_def::compensation
