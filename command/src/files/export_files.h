// A waveform in the files of other programs.
#pragma once

#include <string>

#include "wave_def/wave_def.h"

namespace qarv::command {

// Each ends the command where the file cannot be written, or its format cannot hold the waveform.

/// Writes time [s], waveform, lower and upper band as CSV.
void WriteWaveCsv(const wave_def::CWaveDef& def, const std::string& file);

/// Writes the samples of the waveform alone as CSV, in a form that ReadCsv takes for the same bits.
void WriteSamplesCsv(const wave_def::CWaveDef& def, const std::string& file);

/// Writes time [s], waveform, lower and upper band as a NumPy file.
void WriteNpy(const wave_def::CWaveDef& def, const std::string& file);

/// Writes waveform, lower and upper band as the functions of a universal file.
/// @param[in] name  of the definition, for the file and for messages
void WriteUff(const wave_def::CWaveDef& def, const std::string& name, const std::string& file);

/// Writes the waveform as a sound file.
/// @param[in] name  of the definition, for messages
void WriteWav(const wave_def::CWaveDef& def, const std::string& name, const std::string& file);

}  // namespace qarv::command
