// Roots of unity: the one place where the transforms get their sines and cosines from.
#pragma once

#include <vector>

#include "common/int_types.h"

namespace qarv::common {

struct Complex {
  double re, im;
};

inline Complex operator*(Complex a, Complex b) {
  return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}

/// cos and sin of 2 pi i / n, 0 <= i < n, from an angle that is reduced to the first octant
/// exactly, in integers: multiples of an eighth of a turn come out exact and symmetric.
Complex UnitRoot(uint64 i, uint64 n);

/// All n roots e^(2 pi i k / n), from two tables of about sqrt(n) entries: a root is the product of
/// a coarse and a fine one, so that a plan costs few sines.  The error of a root is about one
/// rounding.
class RootTable {
 public:
  explicit RootTable(uint64 n);
  /// The root of index k, 0 <= k < n.
  Complex operator()(uint64 k) const {
    return coarse_[static_cast<std::size_t>(k >> shift_)] *
           fine_[static_cast<std::size_t>(k & mask_)];
  }

 private:
  unsigned int shift_ = 0;
  uint64 mask_ = 0;
  std::vector<Complex> coarse_;
  std::vector<Complex> fine_;
};

}  // namespace qarv::common
