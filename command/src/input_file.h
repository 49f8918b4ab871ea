// Whole input files.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace qarv::command {

/// The bytes of a file, which is an input from then on.  Ends the command where it cannot be read.
std::vector<unsigned char> ReadFile(const std::string& file);

/// Remembers a file that is read in another way.
void NoteInput(const std::string& file);

/// Whether a file was read: no output may replace it.
bool IsInput(const std::filesystem::path& file);

}  // namespace qarv::command
