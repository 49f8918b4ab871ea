// The tests that a compensated waveform has to pass, and the limits that they put in force.
#pragma once

#include "compensation/problem.h"

namespace qarv::wave_def::compensation {

/// The extreme of larger magnitude of the samples start .. end, with its sign; of equal ones the
/// maximum. 0 if there is none.
double ExtremeOf(const double* samples, int64 start, int64 end);

/// Multiplies all N samples so that the extreme of iS .. iE has the magnitude of A.
void RescaleToPeak(double* samples, uint64 N, double A, int64 iS, int64 iE);

/// Whether a candidate keeps within its bands.
///
/// Before and after the main pulse the bands are scaled by |pre| and |post|, and are never narrower
/// than minRatio of the candidate's peak; on the pulse they hold as they are.  A limit of kNoLimit
/// is none.  With a scale of 0 the three samples next to the pulse are not tested.  Without bands
/// the regions before and after are limited by the peak alone.
/// @param[in] candidate,upper,lower  N samples each; a band may be null
/// @param[out] worst  the first sample that violates its limit, if it is not null
/// @return false at the first violation; a NaN is one
bool InTolerance(const double* candidate, const double* upper, const double* lower, int64 N,
                 int64 iS, int64 iE, double pre, double post, double minRatio,
                 int64* worst = nullptr);

/// Whether the displacement of a candidate reaches further to the positive side than to the
/// negative.
/// @param[in] fsamp  [Hz]
/// @return false too for a missing candidate, a negative rate or a negative pulse
// Deliberate: a negative pulse always fails, before anything else is looked at.
bool DisplacementSideTest(const double* candidate, uint64 N, double fsamp, double A);

/// The limits that InTolerance puts in force for a peak of A, sample by sample; infinite where
/// there is none.
struct Limits {
  Wave lo, hi;
  Limits Scaled(double factor) &&;
};

/// @param[in] untested  limit of the samples that are not tested, a share of A
Limits LimitsInForce(const Pulse& pulse, double pre, double post, double untested);

}  // namespace qarv::wave_def::compensation
