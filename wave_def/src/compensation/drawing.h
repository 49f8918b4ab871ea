// Drawing compensation pulses into a frame, and the array operations around it.
//
// A shock pulse leaves a velocity behind.  Pulses of the opposite sign before and after it take it
// back: ramps that deepen towards the pulse, or a level that fades away from it.
#pragma once

#include "compensation/problem.h"

namespace qarv::wave_def::compensation {

/// Draws ramps: 0 at the frame's ends, -(A p) where they would meet the pulse.
/// @param[in,out] target  N samples; those that are not drawn keep their values
/// @param[in] iPre,iPost  ends of the rest: the ramps lie below iPre and above iPost [sample]
void DrawRampCompensation(double* target, uint64 N, double A, uint64 iPre, uint64 iPost,
                          double pPre, double pPost);

/// A half of a cosine compensation: how deep, which share of the pulse's area, and its flat part.
struct CosinePulse {
  double p;   // level, a fraction of A
  double sh;  // share of S that it cancels
  double f;   // flat part as a multiple of the taper
};

/// Draws a constant level next to the rest, tapered by (1 + cos) / 2 away from it; a pulse that
/// does not fit is cut at the frame's ends.
///
///   n = (S / A) sh / ((f + 0.5) p),   taper floor(n + 0.5),   flat part floor(n f + 0.5) samples
///
/// @param[in] S  sum of the main pulse's samples [amplitude unit]
void DrawCosineCompensation(double* target, uint64 N, double A, double S, uint64 iPre, uint64 iPost,
                            const CosinePulse& pre, const CosinePulse& post);

/// Draws the compensation of a drawn type: ramps, cosines without a flat part, cosines with one as
/// long as their taper.
/// @param[in,out] target  N samples; those that are not drawn keep their values
/// @param[in] S           sum of the main pulse's samples [amplitude unit]
/// @param[in] drawn       levels and shares of the two pulses
/// @return false, with nothing drawn, if the target is missing or the type is none of these
bool DrawCompensation(double* target, uint64 N, double A, double S,
                      CWaveDefClassical::COMP_TYPE type, const Place& at, const Drawn& drawn);

/// The sum of the samples first .. end - 1; 0 if they are missing or there are none.
double SampleSum(const double* samples, uint64 first, uint64 end);

/// Moves n samples by `shift` places; the vacated end repeats the sample that was there.
void ShiftWithHold(double* samples, uint64 n, int64 shift);

}  // namespace qarv::wave_def::compensation
