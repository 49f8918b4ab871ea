// A waveform as a NumPy file.
#pragma once

#include <string>

#include "wave_def/wave_def.h"

namespace qarv::command {

/// Writes one array of records of doubles, `time` [s], `waveform`, `lower` and `upper`.
void WriteNpy(const wave_def::CWaveDef& def, const std::string& file);

}  // namespace qarv::command
