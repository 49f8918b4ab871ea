// Samples as CSV files.
#pragma once

#include <string>

#include "wave_def/wave_def.h"

namespace qarv::command {

/// The header of a waveform's file, by which it is known again.
inline constexpr const char* kWaveCsvHeader = "time,waveform,lower,upper";

/// Writes time [s], waveform, lower and upper band, one sample a line below a header line, in the
/// shortest digits that read back as the same double.
void WriteWaveCsv(const wave_def::CWaveDef& def, const std::string& file);

/// Writes the samples of the waveform alone, in a form that ReadCsv takes for the same bits.
void WriteSamplesCsv(const wave_def::CWaveDef& def, const std::string& file);

}  // namespace qarv::command
