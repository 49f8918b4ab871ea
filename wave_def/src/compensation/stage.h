// The compensation stage of a classical pulse: from the nominal pulse to a waveform that leaves the
// table at rest where it began, within its bands, with as little stroke as they allow.
#pragma once

#include "compensation/preparation.h"
#include "compensation/problem.h"
#include "compensation/refusal.h"

namespace qarv::wave_def::compensation {

/// What a definition reports of its compensation.
struct Results {
  Drawn drawn{};
  double gain = 0.0;       // of the reshaping
  double waveShift = 0.0;  // [frame]
};

/// Compensates a pulse in place.
/// @param[in,out] pulse  the nominal pulse with its bands, upright; then the compensated one, with
///                       the bands where the pulse is
/// @param[in,out] work   what it took is added; may be null
/// @return false if there is no room (pulse unchanged) or its candidate fails at gain 1 (pulse
///         holds that candidate, with its bands)
bool Compensate(Pulse* pulse, const Settings& settings, Results* results, Refusal* refusal,
                Work* work = nullptr);

}  // namespace qarv::wave_def::compensation
