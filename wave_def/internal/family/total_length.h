// TotalLength: the length of a waveform that is put together from many stretches, formed exactly.
#pragma once

#include <compare>
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
  void Add(common::uint64 count, double duration, unsigned int times = 1) {
    const bool negative = duration < 0.0 && (count >> 63) != 0;
    if (negative) {
      below_.Add(0 - count, times);
    } else {
      above_.Add(count, times);
    }
  }

  /// Whether there is at least one sample.
  bool IsPositive() const { return above_ > below_; }

  /// The length of a positive sum; one that no array can have becomes the largest count there is,
  /// which an array refuses with its length error.
  common::uint64 Count() const {
    const bool borrow = above_.low < below_.low;
    const bool fits = above_.high - below_.high == (borrow ? 1U : 0U);
    return fits ? above_.low - below_.low : std::numeric_limits<common::uint64>::max();
  }

 private:
  /// An unsigned sum in 128 bits, which hold a few products of a 64-bit count and a 32-bit number.
  struct Sum {
    common::uint64 high = 0;
    common::uint64 low = 0;

    auto operator<=>(const Sum&) const = default;

    void Add(common::uint64 count, unsigned int times) {
      const common::uint64 lower = (count & 0xffffffffU) * times;
      const common::uint64 upper = (count >> 32) * times;
      AddLow(lower);
      AddLow(upper << 32);
      high += upper >> 32;
    }
    void AddLow(common::uint64 x) {
      low += x;
      if (low < x) ++high;
    }
  };

  Sum above_;  // the stretches of a positive length
  Sum below_;  // and the magnitude of the negative ones
};

}  // namespace qarv::wave_def
