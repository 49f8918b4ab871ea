// A waveform as a sound file, for what plays or records such files.
#pragma once

#include <string>

#include "wave_def/wave_def.h"

namespace qarv::command {

/// Writes the waveform as one channel of 32-bit floating-point numbers in the amplitude unit, not
/// scaled.  Ends the command where a sample is no such number, or the sampling frequency is not a
/// whole number of Hz.
/// @param[in] name  of the definition, for messages
void WriteWav(const wave_def::CWaveDef& def, const std::string& name, const std::string& file);

}  // namespace qarv::command
