// The waveform of a file, whatever kind of file it is.
#pragma once

#include <optional>
#include <string>

#include "common/data_array/data_array_float_t.h"
#include "files/input_file.h"
#include "wave_def/wave_def.h"

namespace qarv::command {

struct InputWave {
  common::CDataArrayFloatT<double> samples;
  double fsamp;            // [Hz]
  std::string unit;        // of the samples; empty if the file does not say
  double begin = 0.0;      // [s] time of the first sample, as the file counts it
  std::string title = {};  // what they are, where they have a definition
};

/// The waveform of a definition, with what it is.
InputWave InputWaveOf(const wave_def::CWaveDef& def);

// Where the name of a file says nothing of its kind, as that of a stream, its first bytes do.

/// Reads a definition (.json, {) or a record (anything else).
wave_def::CWaveDef LoadDefinitionOrRecord(InputFile file);

/// Reads measured samples: the first function of a universal file (.uff, .unv), or a CSV file
/// (anything else).
/// @param[in] fsamp  sampling frequency of samples without times [Hz]; not for others
/// Ends the command where they cannot be used.
InputWave LoadMeasured(InputFile file, std::optional<double> fsamp);

/// Reads a definition (.json), measured samples (.csv, .uff, .unv) or a record, whose first bytes
/// are no text.
/// Ends the command where it cannot be used.
InputWave LoadInputWave(InputFile file, std::optional<double> fsamp);

}  // namespace qarv::command
