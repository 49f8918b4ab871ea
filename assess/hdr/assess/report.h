// What a waveform asks of the shaker, and how it lies in its bands.
#pragma once

#include "assess/entries.h"
#include "wave_def/wave_def.h"

namespace qarv::assess {

/// The report of a defined waveform with bands: peak, margins, motion, and of a classical pulse its
/// width, velocity change and compensation.
Entries ReportOf(const wave_def::CWaveDef& def);

}  // namespace qarv::assess
