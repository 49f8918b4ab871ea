// Levels, lengths and place of the compensation pulses of the types that are drawn: ramp, cosine,
// flat cosine.
//
// Before the pulse the table has to reach a velocity, after it another one, and in between the
// shock takes it from one to the other.  The levels follow from the limits, the lengths from the
// area that each side has to cancel; where the sides may differ, areas and first moments are
// matched to those of the pulse exactly, so that velocity and displacement return to zero before
// any spectrum is touched.
#pragma once

#include <optional>

#include "compensation/problem.h"
#include "compensation/refusal.h"

namespace qarv::wave_def::compensation {

/// Plans and draws a compensation of CMP_RAMP, CMP_COSINE or CMP_FLAT_COSINE.
/// @param[in,out] pulse     goes into the attempt; stays where there is none
/// @param[out]    shortage  why there is none, if it is not null
/// @param[in,out] work      what it took is added
/// @return nothing if the frame has no room for pulses of the allowed levels
std::optional<Attempt> PrepareDrawn(Pulse* pulse, const Settings& settings, Shortage* shortage,
                                    Work* work);

/// The pulse with its bands `shift` samples later.
Pulse ShiftedBy(Pulse pulse, int64 shift);

}  // namespace qarv::wave_def::compensation
