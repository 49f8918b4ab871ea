// The tolerance band that the user defines, for every pulse shape.
#pragma once

#include "band/band_row.h"

namespace qarv::wave_def {

/// Fills a band from the definition's CWaveDefTolUserDef: a left level, a transition into the
/// pulse, the pulse with its margins, a transition out of it, a right level.
/// @return false, with what was drawn so far left in the band, if dt is 0, an array is missing,
///         TolKind is not TOL_USER_DEF, the shape is none, or the pulse or a transition does not
///         fit the frame
[[nodiscard]] bool BuildUserTolBand(const BandTask& task);

}  // namespace qarv::wave_def
