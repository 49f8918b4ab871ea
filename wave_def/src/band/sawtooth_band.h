// Terminal-peak sawtooth tolerance bands: the fixed tables, the standard's levels, their one
// drawing.
#pragma once

#include <optional>

#include "band/band_row.h"
#include "pulse/pulse_span.h"

namespace qarv::wave_def {

/// The length of the front region of a sawtooth's band.  [sample]
common::uint64 SawtoothFront(const CWaveDefClassical& def, const PulseSpan& p);

/// How far the left level of a sawtooth's upper band reaches into the pulse.  [sample]
common::uint64 SawtoothLeft(const CWaveDefClassical& def, const PulseSpan& p);

/// The length of the region in which the band of a sawtooth that falls at once comes down, behind
/// the pulse's end in the upper band and before it in the lower.  [sample]
/// @return nothing where the pulse has a fall of its own
std::optional<common::uint64> SawtoothFall(const CWaveDefClassical& def, const PulseSpan& p);

/// Fills a band of a terminal-peak sawtooth, whatever the tolerance kind.
/// @param[in] peak  sample of the drawn pulse's peak [sample]
/// @return false, with what was drawn so far left in the band, if dt is 0, an array is missing, the
///         kind is none, a part of the band does not fit the frame, or the levels are a standard's
///         that is not for sawtooths or of no known family
[[nodiscard]] bool BuildSawtoothBand(const BandTask& task, common::uint64 peak);

}  // namespace qarv::wave_def
