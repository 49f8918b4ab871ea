// The page of a waveform: its pictures and its numbers.
#pragma once

#include <optional>
#include <string>

#include "assess/machine.h"
#include "assess/spectrum.h"
#include "files/output_files.h"
#include "wave_def/wave_def.h"

namespace qarv::command {

/// Writes the numbers, the plots of acceleration, velocity and displacement and the spectrum, if
/// there is one, as one page.
/// @param[in] machine  if there is one: its limits, among the numbers and in the plots
/// @param[in] name     of the definition, for the title
void WriteReportPage(const wave_def::CWaveDef& def, const std::optional<assess::Spectrum>& spectrum,
                     const std::optional<assess::Machine>& machine, const std::string& name,
                     const std::string& target, OutputFiles* files);

}  // namespace qarv::command
