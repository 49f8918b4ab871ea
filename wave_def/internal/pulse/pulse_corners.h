// The corners of the classical pulses that are made of straight lines.
#pragma once

#include <optional>

#include "pulse/pulse_span.h"

namespace qarv::wave_def {

/// The corners of a trapezoid.  [sample]
struct TrapezoidCorners {
  common::uint64 start, riseEnd, fallStart, end;
  bool flat;  // whether a flat top is drawn between rise and fall
};

/// The corners of a definition's trapezoid, from the fractions of the width that rise and fall
/// take.
/// @return nothing if dt is 0 or there is no width
std::optional<TrapezoidCorners> CornersOf(const CWaveDefClassical& def, common::uint64 centre,
                                          double dt, double rise, double fall);

/// The fractions of the width that rise and fall take.  [width]
struct TrapezoidFractions {
  double rise, fall;
};

/// Those of a triangle, 0.5 each; of a user trapezoid, its own; of a trapezoid, 0.1 each, or the
/// standard's with TOL_SPECIFY.
/// @return nothing for another shape, or if a trapezoid's standard is of no known family
std::optional<TrapezoidFractions> FractionsOf(const CWaveDefClassical& def);

/// The corners of a terminal-peak sawtooth.  [sample]
struct SawtoothCorners {
  common::uint64 start, peak, end;
};

/// @return nothing if dt is 0, there is no width, or the tolerance kind, which shapes the fall, is
///         none that a sawtooth offers
std::optional<SawtoothCorners> SawtoothCornersOf(const CWaveDefClassical& def,
                                                 common::uint64 centre, double dt);

/// Whether the pulse of straight lines that a definition draws has a positive sample, to which the
/// user's band is scaled.
bool HasPositiveSample(const CWaveDefClassical& def, const PulseSpan& p);

}  // namespace qarv::wave_def
