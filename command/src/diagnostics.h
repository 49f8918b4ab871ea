// What goes to standard error: a message that cannot be written changes nothing else.
#pragma once

#include <string>
#include <string_view>

namespace qarv::command {

/// Writes a text to standard error.  Where that is closed or full the text is lost, and the run
/// ends as it would have.
void Diagnose(std::string_view text);

/// The line of a warning, from what has been found at a place (a file, an option).
void Warn(const std::string& where, const std::string& what);

}  // namespace qarv::command
