// Roots of unity.
#include "numeric/fft_roots.h"

#include <bit>
#include <cmath>
#include <utility>

#include "common/numeric/constants.h"

namespace qarv::common {

Complex UnitRoot(uint64 i, uint64 n) {
  // The angle is part num / (n parts) of a turn, parts a power of two.  A multiple of num is only
  // formed where it is at most n, so that 64 bits hold it for every n.
  uint64 num = i;
  double parts = 1.0;
  const bool lowerHalf = num > n - num;
  if (lowerHalf) num = n - num;
  const bool leftHalf = 2 * num > n - 2 * num;
  if (leftHalf) {  // 1/2 - num / n
    num = n - 2 * num;
    parts = 2.0;
  }
  const uint64 quarter = leftHalf ? 2 * num : 4 * num;  // of 1/4, in units of 1 / n; at most n
  const bool steep = quarter > n - quarter;
  const bool diagonal = quarter == n - quarter;
  if (steep) {  // 1/4 - num / (n parts)
    num = n - quarter;
    parts = 4.0;
  }
  const double x = kTwoPi * (static_cast<double>(num) / static_cast<double>(n) / parts);
  double c = std::cos(x);
  double s = std::sin(x);
  if (diagonal) c = s = std::sqrt(0.5);  // on the diagonal the two are one number
  if (steep) std::swap(c, s);
  return {leftHalf ? -c : c, lowerHalf ? -s : s};
}

RootTable::RootTable(uint64 n) {
  shift_ = static_cast<unsigned int>(std::bit_width(n) / 2);
  mask_ = (uint64{1} << shift_) - 1;
  for (uint64 k = 0; k <= mask_ && k < n; ++k) fine_.push_back(UnitRoot(k, n));
  for (uint64 k = 0; k < n; k += mask_ + 1) coarse_.push_back(UnitRoot(k, n));
}

}  // namespace qarv::common
