// qarv-wave synthesize: from a required shock response spectrum to a definition.
#pragma once

#include <string>

#include "command_error.h"
#include "common/int_types.h"

namespace qarv::command {

struct SynthesizeOptions {
  std::string requirement;
  std::string method = "wavelet";
  std::string shape = "shock";
  std::string minimize;  // empty for the best match
  double within = 0.0;   // [dB] of the required spectrum, with minimize; 0 for its tolerance
  common::uint64 seed = 1;
  bool quick = false;
  bool force = false;                   // write what does not meet the requirement, too
  std::string output, plot, csv, json;  // files to write; empty for none
};

/// The names of the options' values.
std::string MethodNames(const std::string& separator);
std::string ShapeNames(const std::string& separator);
std::string AimNames(const std::string& separator);

/// Finds a waveform, writes its definition and the files that are asked for, and prints how close
/// it comes.
/// @return kDone, kWarned, or kRefused where the requirement is not met
ExitCode Synthesize(const SynthesizeOptions& options);

}  // namespace qarv::command
