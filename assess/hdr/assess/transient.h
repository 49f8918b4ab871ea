// The durations, the energy and the severity of a transient, as results.
#pragma once

#include <span>
#include <string>

#include "assess/entries.h"

namespace qarv::assess {

/// Effective durations, rms, energy and temporal moments (analysis/transient.h has formulas and
/// sources), and the pseudo-velocity severity: the largest pseudo velocity of the shock response
/// spectrum at Q 10, which bounds the stress (H. A. Gaberson, Pseudo velocity shock spectrum rules
/// for analysis of mechanical shock, 2007).
/// @param[in] unit  of the amplitude
/// @return nothing where a sample is no number
Entries TransientEntries(std::span<const double> wave, double fsamp, const std::string& unit);

}  // namespace qarv::assess
