// The waveform of a file, whatever kind of file it is.
#pragma once

#include <optional>
#include <string>

#include "common/data_array/data_array_float_t.h"
#include "wave_def/wave_def.h"

namespace qarv::command {

struct InputWave {
  common::CDataArrayFloatT<double> samples;
  double fsamp;        // [Hz]
  std::string unit;    // of the samples; empty if the file does not say
  double begin = 0.0;  // [s] time of the first sample, as the file counts it
};

/// Reads a definition (.json) or a record (anything else).
wave_def::CWaveDef LoadDefinitionOrRecord(const std::string& file);

/// Reads measured samples: .csv, or the first function of a universal file (.uff, .unv).
/// @param[in] fsamp  sampling frequency of samples without times [Hz]; not for others
/// Ends the command where they cannot be used.
InputWave LoadMeasured(const std::string& file, std::optional<double> fsamp);

/// Reads a definition (.json), measured samples (.csv, .uff, .unv) or a record (anything else).
/// Ends the command where it cannot be used.
InputWave LoadInputWave(const std::string& file, std::optional<double> fsamp);

}  // namespace qarv::command
