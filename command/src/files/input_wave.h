// The waveform of a file, whatever kind of file it is.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "common/data_array/data_array_float_t.h"
#include "common/int_types.h"
#include "files/input_file.h"
#include "wave_def/wave_def.h"

namespace qarv::command {

struct InputWave {
  common::CDataArrayFloatT<double> samples;
  double fsamp;                           // [Hz]
  std::string unit;                       // of the samples; empty if the file does not say
  double begin = 0.0;                     // [s] time of the first sample, as the file counts it
  std::string title = {};                 // what they are, where they have a definition
  std::string channel = {};               // what the file calls it, where there are several
  std::vector<std::string> remarks = {};  // every choice and conversion that was made, a line each
};

/// What is said of a file of measured samples.
struct MeasuredChoice {
  std::optional<double> fsamp{};  // [Hz] in the place of what the file says
  std::string time{};             // column of the times, by number or name
  std::string channels{};         // by number or name, separated by commas; empty: the first one
  bool resultant = false;         // of the channels
  common::uint64 skipBad = 0;     // lines without a value that are bridged
  std::string unit{};             // of files that say none, or of what is scaled
  std::optional<double> scale{};  // the unit of a number of the file
};

/// The waveform of a definition, with what it is.
InputWave InputWaveOf(const wave_def::CWaveDef& def);

// Where the name of a file says nothing of its kind, as that of a stream, its first bytes do.

/// Reads a definition (.json, {) or a record (anything else).
wave_def::CWaveDef LoadDefinitionOrRecord(InputFile file);

/// Reads measured samples from a file of any kind that exchange/ reads, found by its content.
/// Ends the command where they cannot be used.
/// @return a wave for each channel that is asked for; one at least
std::vector<InputWave> LoadMeasured(InputFile file, const MeasuredChoice& choice);

/// Reads a definition (.json), a record (.rec, or no text and no sample file) or measured samples.
/// Ends the command where it cannot be used.
std::vector<InputWave> LoadInputWaves(InputFile file, const MeasuredChoice& choice);

}  // namespace qarv::command
