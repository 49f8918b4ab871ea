// What kind of sample file it is, by its content.
#pragma once

#include <vector>

#include "exchange/signal.h"

namespace qarv::exchange {

enum class Kind { Unknown, Csv, Uff, Npy, Wav, Mat };

/// What kind of file it is.  Its first 64 bytes are enough, and more are not looked at.
/// What is text (UTF-16 with its mark included) and none of the others passes for CSV, unless it
/// begins with a brace, as JSON does.
Kind DetectKind(Bytes bytes);

/// Reads a file of any of these kinds, which is found by its content.
/// Throws Error where it is of none, or where the reader of its kind does.
std::vector<Signal> ReadSignals(Bytes bytes);

}  // namespace qarv::exchange
