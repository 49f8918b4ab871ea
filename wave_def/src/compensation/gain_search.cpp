// The search for the largest gain of the reshaping with which the waveform still keeps within its
// bands.
#include "compensation/gain_search.h"

#include "compensation/tolerance.h"
#include "numeric/elementary.h"

namespace qarv::wave_def::compensation {

Candidates::Candidates(Reshaper* reshaper, const Attempt& attempt, const Settings& settings)
    : reshaper_(reshaper), attempt_(attempt), settings_(settings) {
  reshaper_->SetWave(attempt.comp);
}

bool Candidates::Make(double g, Wave* out, int64* worst) {
  const Pulse& pulse = attempt_.pulse;
  if (!reshaper_->Reshape(g, out)) return false;
  RescaleToPeak(out->data(), out->size(), pulse.A, pulse.at.iS, pulse.at.iE);
  return InTolerance(out->data(), pulse.upper.data(), pulse.lower.data(), pulse.N(), pulse.at.iS,
                     pulse.at.iE, settings_.pre, settings_.post, kLeastLimit, worst);
}

bool Candidates::IsOnSide(const Wave& candidate) const {
  const double A = settings_.negative ? -attempt_.pulse.A : attempt_.pulse.A;
  // The side does not depend on a positive rate.  With 0, a NaN or infinity there would be no
  // displacement to look at, which would steer the search downwards.
  const bool integrates =
      settings_.fsamp < 0.0 || (settings_.fsamp > 0.0 && settings_.fsamp < HUGE_VAL);
  const double fsamp = integrates ? settings_.fsamp : 1.0;
  return DisplacementSideTest(candidate.data(), candidate.size(), fsamp, A);
}

GainFound SearchGain(Candidates* candidates, const Settings& settings) {
  constexpr int kTries = 8;
  GainFound found{};
  Wave candidate;
  double x = common::elementary::Log(1.0);
  double step = (common::elementary::Log(1e8) - common::elementary::Log(1.0)) * 0.5;
  for (int tries = 0; tries < kTries; ++tries, step *= 0.5) {
    const double g = common::elementary::Exp(x);
    const bool passed = candidates->Make(g, &candidate, &found.worst);
    if (passed || tries == 0) {
      std::swap(found.best, candidate);
      found.gain = g;
      found.passed = passed;
    }
    if (!found.passed) return found;
    // Deliberate: a candidate on the wrong side is kept as the best all the same.
    const bool up = passed && (!settings.HasSideTest() || candidates->IsOnSide(found.best));
    x = up ? x + step : x - step;
  }
  return found;
}

}  // namespace qarv::wave_def::compensation
