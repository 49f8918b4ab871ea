// More samples of a record, so that the straight lines between them stand for it at high
// frequencies too.
#pragma once

#include <cstddef>

#include "assess/conditioning.h"
#include "assess/error.h"
#include "assess/record.h"

namespace qarv::assess {

/// Records are not made longer than this: 160 MB, and a second or so of a spectrum [sample].
inline constexpr std::size_t kMostUpsampled = 20'000'000;

/// How many times as many samples are taken, a whole number so that the record's own are kept.
struct Upsampling {
  int wanted = 1;  // what gives kSamplesPerCycle at the highest frequency
  int factor = 1;  // what kMostUpsampled leaves of it
};

/// What a spectrum up to a natural frequency takes.
/// @param[in] fsamp    of the record [Hz]
/// @param[in] highest  natural frequency [Hz]
/// @return 1 where nothing is needed, and above kHighestLine, where there is no spectrum
Upsampling UpsamplingFor(std::size_t samples, double fsamp, double highest);

/// The record at `factor` times its sampling frequency, by band-limited interpolation
/// (analysis::SampledAt).  Every factor-th sample is the record's own.  That a shock rises from 0
/// within the interval before its first sample and falls to 0 within the one behind its last is
/// kept, as straight lines: the result begins, and ends, less than a sample of the record outside.
/// @param[in] factor  at least 1
/// @throws Error where a sample is no number
OwnedRecord Upsampled(const Record& record, int factor);

}  // namespace qarv::assess
