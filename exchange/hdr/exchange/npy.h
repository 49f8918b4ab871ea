// Samples as arrays in NumPy files.
#pragma once

#include <string_view>
#include <vector>

#include "exchange/signal.h"
#include "exchange/waveform.h"

namespace qarv::exchange {

/// What a file begins with, so that it is known before it is read.
inline constexpr std::string_view kNpyMagic = "\x93NUMPY";

/// Reads an array of 32-bit or 64-bit floating-point numbers of either byte order, from a file of
/// version 1.0 or 2.0.
///
/// - Of a list of records every field is a signal with its name; what the field `time` [s] holds
///   becomes the times of all of them.
/// - A list of numbers, or a table of one row, is one signal.
/// - Of any other table each column is a signal without a name.  Deliberate: no column is taken for
///   the time, because nothing in the file says so.
///
/// Throws Error, with the byte where there is one, where the file is of another version, its array
/// of another type or shape or without samples, or the file shorter or longer than its array.
std::vector<Signal> ReadNpy(Bytes bytes);

/// Writes one list of records of doubles, `time` [s], `waveform`, `lower` and `upper`, in version
/// 1.0 and this machine's byte order.
/// Throws Error where a band is not as long as the waveform.
void WriteNpy(const Waveform& waveform, const Sink& sink);

}  // namespace qarv::exchange
