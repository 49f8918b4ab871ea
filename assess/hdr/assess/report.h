// What a waveform asks of the shaker, and how it lies in its bands.
#pragma once

#include <optional>

#include "assess/entries.h"
#include "assess/machine.h"
#include "wave_def/wave_def.h"

namespace qarv::assess {

/// The report of a defined waveform with bands: peak, margins, motion, and of a classical pulse its
/// width, velocity change and compensation.
/// @param[in] machine  if there is one: its limits and margins, too
/// @throws Error ("machine") where the amplitude unit is none that a machine has limits for
Entries ReportOf(const wave_def::CWaveDef& def, const std::optional<Machine>& machine = {});

}  // namespace qarv::assess
