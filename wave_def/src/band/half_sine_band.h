// Half-sine tolerance bands: the fixed tables, the standard's levels, and their one drawing.
#pragma once

#include "band/band_row.h"
#include "pulse/pulse_span.h"

namespace qarv::wave_def {

/// The length of the front region of a built-in kind [width]; 0 for a kind that has none.
double FrontFraction(int kind);

/// Fills a band of a half-sine pulse, whatever the tolerance kind.
/// @return false, with what was drawn so far left in the band, if dt is 0, an array is missing, the
///         kind is none, the pulse or its front region does not fit the frame, or the levels are a
///         standard's that is not for half-sines or, for the lower band, of no known family
[[nodiscard]] bool BuildHalfSineStdBand(const BandTask& task);

}  // namespace qarv::wave_def
