// Required spectra as files.
#pragma once

#include "assess/requirement.h"
#include "files/input_file.h"

namespace qarv::command {

/// Reads a required spectrum (.json).  Ends the command where the file is not one.
assess::Requirement LoadRequirement(InputFile file);

}  // namespace qarv::command
