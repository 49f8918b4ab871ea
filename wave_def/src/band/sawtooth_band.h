// Terminal-peak sawtooth tolerance bands: the fixed tables, the standard's levels, their one
// drawing.
#pragma once

#include "band/band_row.h"
#include "pulse/pulse_span.h"

namespace qarv::wave_def {

/// Fills a band of a terminal-peak sawtooth, whatever the tolerance kind.
/// @param[in] peak  sample of the drawn pulse's peak [sample]
/// @return false, with what was drawn so far left in the band, if dt is 0, an array is missing, the
///         kind is none, a part of the band does not fit the frame, or the levels are a standard's
///         that is not for sawtooths or of no known family
[[nodiscard]] bool BuildSawtoothBand(const BandTask& task, common::uint64 peak);

}  // namespace qarv::wave_def
