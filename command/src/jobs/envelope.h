// qarv-wave srs --envelope: what the spectra of several records have in common.
#pragma once

#include <vector>

#include "assess/spectrum.h"
#include "command_error.h"
#include "jobs/srs.h"

namespace qarv::command {

/// Takes the spectra of all records, in the unit of the first that has one and on lines that all of
/// them hold, and gives their envelope, their mean and P95/50, for each of the settings.
/// @return kDone
ExitCode Envelope(const SrsOptions& options, std::vector<assess::SpectrumSettings> settings);

}  // namespace qarv::command
