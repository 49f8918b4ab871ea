// qarv-wave check: what is wrong with a definition, and what would work.
#pragma once

#include <string>

#include "command_error.h"

namespace qarv::command {

struct CheckOptions {
  std::string definition;
  std::string machine;  // whose limits the waveform has to keep; empty for none
};

/// Prints every broken rule of a definition.
/// @return kDone if there is none, kRefused if the definition would fail, kWarned otherwise
ExitCode Check(const CheckOptions& options);

}  // namespace qarv::command
