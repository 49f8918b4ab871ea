// qarv-wave show: a record as a JSON definition.
#pragma once

#include <string>

#include "files/file_name.h"

namespace qarv::command {

struct ShowOptions {
  std::string record;
  std::string output = kStandardOutput;  // of the JSON
  std::string samples;  // of a measured waveform's samples; beside the record if empty
};

/// Prints the definition of a record.  A measured one also writes the file of its samples.
void Show(const ShowOptions& options);

}  // namespace qarv::command
