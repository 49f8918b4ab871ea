// What goes to standard error: a message that cannot be written changes nothing else.
#pragma once

#include <string>
#include <string_view>

namespace qarv::command {

/// Gives standard streams that are closed at the start something to refuse their use, so that no
/// output file takes a descriptor that messages go to.
void FillStandardStreams();

/// Writes a text to standard error.  Where that is closed or full the text is lost, and the run
/// ends as it would have.
void Diagnose(std::string_view text);

/// The line of a warning, from what has been found at a place (a file, an option).
void Warn(const std::string& where, const std::string& what);

}  // namespace qarv::command
