// The one line that a failing range check of the arrays prints.
#pragma once

namespace qarv::common {

/// Prints "[Error] path(line)message" and an end of line on the standard error stream and flushes
/// it.  Takes no memory, and never throws; a line of more than 511 bytes is cut.
void ReportArrayError(const char* path, int line, const char* message) noexcept;

}  // namespace qarv::common
