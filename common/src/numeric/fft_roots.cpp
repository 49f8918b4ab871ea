// Roots of unity.
#include "numeric/fft_roots.h"

#include <bit>
#include <cmath>
#include <utility>

#include "common/numeric/constants.h"

namespace qarv::common {

Complex UnitRoot(uint64 i, uint64 n) {
  // The angle is num / den of a turn; den grows to 8 n at the most, beyond 64 bits.
  __extension__ using Wide = unsigned __int128;
  Wide num = i;
  Wide den = n;
  const bool lowerHalf = 2 * num > den;
  if (lowerHalf) num = den - num;
  const bool leftHalf = 4 * num > den;
  if (leftHalf) {  // 1/2 - num / den
    num = den - 2 * num;
    den = 2 * den;
  }
  const bool steep = 8 * num > den;
  if (steep) {  // 1/4 - num / den
    num = den - 4 * num;
    den = 4 * den;
  }
  const double x = kTwoPi * (static_cast<double>(num) / static_cast<double>(den));
  double c = std::cos(x);
  double s = std::sin(x);
  if (8 * num == den) c = s = std::sqrt(0.5);  // on the diagonal the two are one number
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
