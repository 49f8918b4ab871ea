// From a double to a sample index: the three roundings, defined for every double.
#pragma once

#include <cmath>

#include "common/int_types.h"

namespace qarv::common {

/// x truncated toward zero, as an index.  [sample]
///
/// Defined for every double and the same with every compiler: values down to -2^63 wrap below zero
/// to a huge index, values from 2^63 to below 2^64 are exact, and everything else (NaN, the
/// infinities, what is too large either way) gives 2^63.  No frame is that long, so that the one
/// test `index >= N` finds every index that went wrong.
inline uint64 TruncToIndex(double x) {
  constexpr double k2p63 = 9223372036854775808.0;
  constexpr uint64 kTop = uint64{1} << 63;
  if (x >= -k2p63 && x < k2p63) return static_cast<uint64>(static_cast<int64>(x));
  if (x >= k2p63 && x < 2.0 * k2p63) return kTop | static_cast<uint64>(x - k2p63);
  return kTop;
}

/// x rounded half up, as an index: x + 0.5, truncated.  The conversion is that of TruncToIndex.
inline uint64 RoundToIndex(double x) { return TruncToIndex(x + 0.5); }

/// The largest whole number not above x, as an index.  The conversion is that of TruncToIndex.
inline uint64 FloorToIndex(double x) { return TruncToIndex(std::floor(x)); }

}  // namespace qarv::common
