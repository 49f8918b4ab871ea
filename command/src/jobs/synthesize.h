// qarv-wave synthesize: from a required shock response spectrum to a definition.
#pragma once

#include <string>

#include "assess/synthesis.h"
#include "command_error.h"

namespace qarv::command {

struct SynthesizeOptions {
  std::string requirement;
  std::string machine;  // whose limits hold, too; empty for none
  assess::SynthesisRequest request;
  bool force = false;                   // write what does not meet the requirement, too
  std::string output, plot, csv, json;  // files to write; empty for none
};

/// Finds a waveform, writes its definition and the files that are asked for, and prints how close
/// it comes.
/// @return kDone, kWarned, or kRefused where the requirement is not met
ExitCode Synthesize(const SynthesizeOptions& options);

}  // namespace qarv::command
