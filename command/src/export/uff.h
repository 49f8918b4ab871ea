// Functions of time in universal files, dataset 58: what modal and vibration analysis programs
// exchange.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "common/data_array/data_array_float_t.h"
#include "input_file.h"
#include "wave_def/wave_def.h"

namespace qarv::command {

/// What a dataset begins and ends with, so that it is known before it is read.
inline constexpr std::string_view kUffDelimiter = "    -1";

/// A function of a universal file.
struct UffFunction {
  std::string name;  // its first identification line
  double fsamp;      // [Hz]
  double begin;      // [s] abscissa of the first value
  std::string unit;  // of the values; empty if the file does not say
  common::CDataArrayFloatT<double> samples;
};

/// Writes waveform, lower and upper band as three functions of evenly spaced double precision
/// numbers, which keep 13 digits.  Ends the command where a sample is no number.
/// @param[in] name  of the definition, for the second identification line and messages
void WriteUff(const wave_def::CWaveDef& def, const std::string& name, const std::string& file);

/// Reads the functions of a universal file; other datasets are passed over.
/// Ends the command where there is none, or one is complex, binary, unevenly spaced or incomplete.
std::vector<UffFunction> ReadUff(InputFile in);

}  // namespace qarv::command
