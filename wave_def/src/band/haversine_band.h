// Haversine tolerance bands, whose levels are always the user's.
#pragma once

#include "band/band_row.h"
#include "pulse/pulse_span.h"

namespace qarv::wave_def {

/// Fills a band of a haversine pulse from the definition's CWaveDefTolUserDef; the tolerance kind
/// only chooses the length of the front region and the form of the lower band.
/// @return false, with what was drawn so far left in the band, if dt is 0, an array is missing, the
///         kind is none, or the pulse or its front region does not fit the frame
[[nodiscard]] bool BuildHaversineBand(const BandTask& task);

}  // namespace qarv::wave_def
