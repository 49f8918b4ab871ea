// Samples as sound files.
#pragma once

#include <span>
#include <vector>

#include "exchange/signal.h"
#include "exchange/waveform.h"

namespace qarv::exchange {

/// Reads a WAV file (RIFF, RIFX, RF64) of any sample type and number of channels.  Floating-point
/// numbers are given as they stand; integers are divided by their largest value and so lie in
/// -1 .. 1.
/// @return every channel, with `fsamp`; the name is the title of the file if it has one
/// Throws Error where it is no WAV file, of a kind that is not read, without samples, or shorter
/// than it says.
std::vector<Signal> ReadWav(Bytes bytes);

/// Writes samples as one channel of 32-bit floating-point numbers in the amplitude unit, not
/// scaled.
/// @param[in] samples  [amplitude unit]
/// @param[in] fsamp    sampling frequency [Hz]
/// Throws Error where a sample is no such number, the sampling frequency is not a whole number of
/// Hz of 1 to 2^31 - 1, or there are more samples than the 4 GiB that such a file can have.
void WriteWav(std::span<const double> samples, double fsamp, const Sink& sink);

}  // namespace qarv::exchange
