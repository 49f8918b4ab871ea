// qarv-wave batch: every definition of a folder, and one table of them.
#pragma once

#include <string>

#include "command_error.h"

namespace qarv::command {

struct BatchOptions {
  std::string folder;
  std::string output;  // folder for files and pictures of each, and a page of all; empty for none
  std::string csv;     // the table as a file; empty for none
};

/// Generates every definition (.json) of a folder in the order of their names, prints a table, and
/// writes the files that are asked for.  A definition that cannot be used or is refused is a line
/// of the table, and the others go on.
/// @return kDone; kRefused if there is such a definition; otherwise kWarned if one has warnings
ExitCode Batch(const BatchOptions& options);

}  // namespace qarv::command
