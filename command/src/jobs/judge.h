// qarv-wave judge: whether a measured record passes.
#pragma once

#include <optional>
#include <string>

#include "command_error.h"

namespace qarv::command {

struct JudgeOptions {
  std::string definition;       // definition (.json) or record
  std::string measured;         // samples (.csv)
  std::optional<double> fsamp;  // [Hz] of samples without times
  double dvTol = 10.0;          // [%] of the velocity change of the definition
  bool force = false;           // whatever the sampling does not show
  std::string json, plot;       // files to write; empty for none
};

/// Lays the measured record over the definition, compares it with the bands, and prints the
/// verdict.  Ends the command with kBadInput where there is none: the definition is refused, the
/// record does not show the pulse, or its sampling does not show enough of it.
/// @return kDone if it passes, kRefused if not
ExitCode Judge(const JudgeOptions& options);

}  // namespace qarv::command
