// TotalLength: the length of a waveform that is put together from many stretches, formed exactly.
#pragma once

#include <limits>

#include "common/int_types.h"

namespace qarv::wave_def {

/// A sum of sample counts that neither wraps nor rounds, so that a hostile count cannot become a
/// small allocation.
class TotalLength {
 public:
  /// Adds `times` stretches of `count` samples.
  /// @param[in] duration  what the count was converted from: where it is negative, the count
  ///                      wrapped below zero and is taken as negative too
  void Add(common::uint64 count, double duration, common::uint64 times = 1) {
    const auto value = duration < 0.0 ? Wide{static_cast<common::int64>(count)} : Wide{count};
    sum_ += value * Wide{times};
  }

  /// Whether there is at least one sample.
  bool IsPositive() const { return sum_ > 0; }

  /// The length of a positive sum; one that no array can have becomes the largest count there is,
  /// which an array refuses with its length error.
  common::uint64 Count() const {
    constexpr common::uint64 kMax = std::numeric_limits<common::uint64>::max();
    return sum_ > Wide{kMax} ? kMax : static_cast<common::uint64>(sum_);
  }

 private:
  // 128 bits hold every sum of a few products of a 64-bit count and a 32-bit number.
  __extension__ using Wide = __int128;

  Wide sum_ = 0;
};

}  // namespace qarv::wave_def
