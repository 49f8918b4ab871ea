// What a reader gives: the samples of one channel, with what the file says of them.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "common/int_types.h"

namespace qarv::exchange {

/// The bytes of a file.
using Bytes = std::span<const unsigned char>;

/// A text as bytes, and bytes as a text; both look at the memory of what they were given.
Bytes BytesOf(std::string_view text);
std::string_view TextOf(Bytes bytes);

/// The samples of one channel.  A reader gives one sample at least; samples that are no numbers are
/// kept where the format can hold them.
struct Signal {
  std::string name;                   // what the file calls it; empty if it does not say
  std::vector<double> values;         // [amplitude unit]
  std::vector<double> times;          // [s] as many, or none in a file without times
  std::vector<common::uint64> lines;  // where each value stands in a file of one sample a line
  double fsamp = 0.0;                 // [Hz] 0 where the file does not say: then SampleRateOf
  double begin = 0.0;                 // [s] time of the first value; 0 where the file does not say
  std::string unit;                   // of the values; empty if the file does not say
};

/// The sampling frequency of times [Hz], from their mean step, to 12 digits.
/// @param[in] times  [s]
/// @param[in] lines  where each of them stands, or none
/// Throws Error where there is no time or only one, or a step differs from the mean by more than
/// 0.1 %, is not above 0 or no number; with its line, or in the text the sample (from 0).
double SampleRateOf(std::span<const double> times, std::span<const common::uint64> lines = {});

/// The sampling frequency of a signal [Hz]: what its file says, otherwise that of its times.
double SampleRateOf(const Signal& signal);

/// Throws Error where a value is NaN or infinite; with its line, or in the text the sample (from
/// 0).
/// @param[in] lines  where each of them stands, or none
void RequireNumbers(std::span<const double> values, std::span<const common::uint64> lines = {});
void RequireNumbers(const Signal& signal);

}  // namespace qarv::exchange
