// A measured record, wherever its samples come from.
#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace qarv::assess {

/// The samples of a record; they belong to the caller.
struct Record {
  std::span<const double> samples;
  double fsamp = 0.0;     // [Hz]
  std::string unit = {};  // of the samples; empty if it is not known, and then the definition's
  double begin = 0.0;     // [s] time of the first sample, as the record counts it
};

/// Samples of a record, both ends included.
struct Stretch {
  std::size_t first, last;  // [sample]
};

/// @throws Error, with the number of the sample, where one is NaN or infinite
void RequireNumbers(std::span<const double> samples);

}  // namespace qarv::assess
