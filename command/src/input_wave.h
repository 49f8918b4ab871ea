// The waveform of a file, whatever kind of file it is.
#pragma once

#include <string>

#include "common/data_array/data_array_float_t.h"
#include "wave_def/wave_def.h"

namespace qarv::command {

struct InputWave {
  common::CDataArrayFloatT<double> samples;
  double fsamp;      // [Hz]
  std::string unit;  // of the samples; empty if the file does not say
};

/// Reads a definition (.json) or a record (anything else).
wave_def::CWaveDef LoadDefinitionOrRecord(const std::string& file);

/// Reads a definition (.json), a measured CSV file (.csv) or a record (anything else).
/// Ends the command where it cannot be used.
InputWave LoadInputWave(const std::string& file);

}  // namespace qarv::command
