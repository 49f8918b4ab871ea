// Trapezoid tolerance bands: the fixed tables, the standard's levels, and their one drawing.
#pragma once

#include "band/band_row.h"
#include "pulse/pulse_span.h"

namespace qarv::wave_def {

/// Fills a band of a trapezoid pulse, whatever the tolerance kind: a left level, a front line,
/// limits parallel to the slopes, a plateau over the flat top, a right level to the last sample.
///
/// The slopes and corners allow for a pulse that lies one sample early or late: the upper band
/// follows the largest of a sample and its neighbours, the lower band the smallest.
/// docs/trapezoid_band.md has the figure and what else was tried.
/// @return false, with what was drawn so far left in the band, if dt is 0, an array is missing, the
///         kind is none, the pulse or its front region does not fit the frame, or the levels are a
///         standard's that is not for trapezoids
[[nodiscard]] bool BuildTrapezoidBand(const BandTask& task);

}  // namespace qarv::wave_def
