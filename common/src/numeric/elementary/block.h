// How an elementary function runs over many values: two loops per block, the rare ones by
// themselves.
//
// A function is a class with arrays of kBlock reduced arguments and
//   uint64 Reduce(i, x)     reduces x into place i; not 0 if x is rare, that is not for the loops
//   double Evaluate(i)      the value at place i; anything for a rare one
//   static double Rare(x)   the value of a rare x
// Two loops instead of one keep both within the registers: the compilers turn each into lanes.  For
// their sake a test is a number and not a bool (SSE2 has no comparison of 64-bit integers), and the
// values go through an array of their own, which cannot be the table's.
#pragma once

#include <algorithm>
#include <cstddef>
#include <span>

#include "common/int_types.h"
#include "numeric/instruction_set.h"

namespace qarv::common::elementary {

inline constexpr std::size_t kBlock = 256;

template <class Function>
double OneValue(double x) {
  Function f;
  return f.Reduce(0, x) != 0 ? Function::Rare(x) : f.Evaluate(0);
}

/// 0 if the comparison holds.
QARV_LANES_INLINE uint64 ZeroIf(bool holds) {
  return __builtin_bit_cast(uint64, holds ? 0.0 : 1.0);
}

/// One block; x and y may be the same.
template <class Function>
QARV_LANES_INLINE void OneBlock(Function& f, const double* x, double* y, std::size_t n) {
  uint64 isRare[kBlock];
  double value[kBlock];
  uint64 any = 0;
  for (std::size_t i = 0; i < n; ++i) {
    isRare[i] = f.Reduce(i, x[i]);
    any |= isRare[i];
  }
  for (std::size_t i = 0; i < n; ++i) value[i] = f.Evaluate(i);
  if (any != 0) {
    for (std::size_t i = 0; i < n; ++i) {
      if (isRare[i] != 0) value[i] = Function::Rare(x[i]);
    }
  }
  std::copy_n(value, n, y);
}

template <class Function>
void AllValues(std::span<const double> x, std::span<double> y, InstructionSet set) {
  RunWith(set, [&]() QARV_LANES {
    Function f;
    for (std::size_t i = 0; i < x.size(); i += kBlock) {
      OneBlock(f, x.data() + i, y.data() + i, std::min(kBlock, x.size() - i));
    }
  });
}

}  // namespace qarv::common::elementary
