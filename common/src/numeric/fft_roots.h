// Roots of unity: the one place where the transforms get their sines and cosines from.
#pragma once

#include <vector>

#include "common/int_types.h"
#include "numeric/instruction_set.h"

namespace qarv::common {

struct Complex {
  double re, im;
};

QARV_LANES_INLINE Complex operator*(Complex a, Complex b) {
  return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}

/// cos and sin of 2 pi i / n, 0 <= i < n, from an angle that is reduced to the first octant
/// exactly, in integers: multiples of an eighth of a turn come out exact and symmetric.
Complex UnitRoot(uint64 i, uint64 n);

/// All n roots e^(-2 pi i k / n), from two tables: a root is the product of a coarse and a fine
/// one, so that a plan costs few sines.  The error of a root is about one rounding.
class RootTable {
 public:
  /// @param[in]  widest  the largest step that FillRow will be asked for
  RootTable(uint64 n, uint64 widest);

  /// The root of index k, 0 <= k < n.
  Complex operator()(uint64 k) const {
    return coarse_.data()[k >> shift_] * fine_.data()[k & (block_ - 1)];
  }

  /// The roots of the indices 0, step, 2 step, ... below n.
  /// @param[out] re,im  `count` values each
  void FillRow(InstructionSet set, uint64 step, uint64 count, double* re, double* im);

 private:
  uint64 block_;                 // roots from one coarse one to the next, a power of two
  int shift_;                    // its logarithm: the tables are asked for every twiddle
  std::vector<Complex> fine_;    // as far as `widest` blocks go
  std::vector<Complex> coarse_;  // every block_-th
  std::vector<double> rowRe_;    // the fine roots of one step
  std::vector<double> rowIm_;
};

}  // namespace qarv::common
