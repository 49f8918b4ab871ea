// Functions of time in universal files, dataset 58: what modal and vibration analysis programs
// exchange.
#pragma once

#include <string_view>
#include <vector>

#include "exchange/signal.h"
#include "exchange/waveform.h"

namespace qarv::exchange {

/// What a dataset begins and ends with, so that it is known before it is read.
inline constexpr std::string_view kUffDelimiter = "    -1";

/// Reads the functions of a universal file, whose values are text (58) or binary (58b, of either
/// byte order); other datasets are passed over.
/// @return every function with `fsamp`, `begin`, its first identification line as its name, and the
///         unit of its values
/// Throws Error where there is none, or one is complex, unevenly spaced, of another floating-point
/// format, or incomplete; with the line where a column has no number.
std::vector<Signal> ReadUff(Bytes bytes);

/// Writes waveform, lower and upper band as three functions of evenly spaced double precision
/// numbers, which keep 13 digits.  The name stands in the second identification line, of at most 80
/// bytes; the unit has 20 columns; the sampling frequency is written with all its digits.
/// Throws Error where a sample is no number, or a band is not as long as the waveform.
void WriteUff(const Waveform& waveform, const Sink& sink);

}  // namespace qarv::exchange
