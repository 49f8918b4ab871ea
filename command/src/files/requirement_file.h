// Required spectra and machines as files.
#pragma once

#include <optional>
#include <string>

#include "assess/machine.h"
#include "assess/requirement.h"
#include "files/input_file.h"

namespace qarv::command {

/// Reads a required spectrum (.json).  Ends the command where the file is not one.
assess::Requirement LoadRequirement(InputFile file);

/// Reads a machine (.json), if there is one.  Ends the command where the file is not one.
/// @param[in] file  empty for none
std::optional<assess::Machine> LoadMachine(const std::string& file);

}  // namespace qarv::command
