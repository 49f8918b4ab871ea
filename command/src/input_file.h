// Whole input files.
#pragma once

#include <string>
#include <vector>

namespace qarv::command {

/// The bytes of a file.  Ends the command where it cannot be read.
std::vector<unsigned char> ReadFile(const std::string& file);

}  // namespace qarv::command
