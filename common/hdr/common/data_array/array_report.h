// The one line that a failing range check of the arrays prints.
#pragma once

#include "common/int_types.h"

namespace qarv::common {

/// Prints "[Error] path(line)message" and an end of line on the standard error stream and flushes
/// it.  Takes no memory, and never throws; a line of more than 511 bytes is cut.
void ReportArrayError(const char* path, int line, const char* message) noexcept;

/// The most such lines that one operation on many arrays prints of a kind.
inline constexpr uint64 kMostArrayErrors = 10;

/// Prints the line that stands for the lines behind those.
void ReportMoreArrayErrors(uint64 count);

}  // namespace qarv::common
