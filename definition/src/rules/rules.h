// The rules of a definition, a table per family.
#pragma once

#include <string>

#include "definition/check.h"

namespace qarv::definition {

/// Generates the waveform of a definition, which may be larger than the memory.
/// @return why there is none; empty if there is
std::string GenerateOrExplain(const Definition& definition, wave_def::CWaveDef* def);

/// Whether a classical pulse that breaks no other rule can be compensated.  The only rule that has
/// to try, and therefore one of its own: of the optimised type up to nine times, to name the least
/// OptRatLevel that gives a compensation.
Findings CompensationFindings(const wave_def::CWaveDefClassical& set, double fsamp);

/// Whether a compensation has taken more of the pulse's velocity change than the usual tolerance
/// leaves, and how much of it OptRatLevel may spend.
/// @param[in] def  the waveform of the definition
Findings VelocityFindings(const Definition& definition, const wave_def::CWaveDef& def);

// The tables, one per family.  `fsamp` is the sampling frequency of the definition [Hz].
Findings BrokenRules(const wave_def::CWaveDefClassical& set, double fsamp);
Findings BrokenRules(const wave_def::CWaveDefSymmetry& set, double fsamp);
Findings BrokenRules(const wave_def::CWaveDefSineBeatBurst& set, double fsamp);
Findings BrokenRules(const MeasuredSet& set, double fsamp);
Findings BrokenRules(const wave_def::CWaveDefGradual& set, double fsamp);
Findings BrokenRules(const wave_def::CWaveDefSingle& set, double fsamp);
Findings BrokenRules(const wave_def::CWaveDefDamping& set, double fsamp);

}  // namespace qarv::definition
