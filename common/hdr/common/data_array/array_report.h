// The one line that a failing range check of the arrays prints.
#pragma once

namespace qarv::common {

/// Prints "[Error] path(line)message" and an end of line on the standard error stream and flushes
/// it.
void ReportArrayError(const char* path, int line, const char* message);

}  // namespace qarv::common
