// How far the tolerance bands of classical pulses reach before, into and behind the pulse.
#pragma once

#include <optional>

#include "pulse/pulse_span.h"

namespace qarv::wave_def {

/// The length of the front region of a half-sine's band.  [sample]
common::uint64 HalfSineFront(const CWaveDefClassical& def, const PulseSpan& p);

/// The length of the front region of a haversine's band; 0 if it has none.  [sample]
common::uint64 HaversineFront(const CWaveDefClassical& def, const PulseSpan& p);

/// The length of the front region of a sawtooth's band.  [sample]
common::uint64 SawtoothFront(const CWaveDefClassical& def, const PulseSpan& p);

/// How far the left level of a sawtooth's upper band reaches into the pulse.  [sample]
common::uint64 SawtoothLeft(const CWaveDefClassical& def, const PulseSpan& p);

/// The length of the region in which the band of a sawtooth that falls at once comes down, behind
/// the pulse's end in the upper band and before it in the lower.  [sample]
/// @return nothing where the pulse has a fall of its own
std::optional<common::uint64> SawtoothFall(const CWaveDefClassical& def, const PulseSpan& p);

/// The length of the front region of a trapezoid's band.  [sample]
common::uint64 TrapezoidFront(const CWaveDefClassical& def, const PulseSpan& p);

}  // namespace qarv::wave_def
