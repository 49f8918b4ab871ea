// How an elementary function runs over many values: two loops per block, the rare ones by
// themselves.
//
// A function is a class with arrays of kBlock reduced arguments and
//   uint64 Reduce(i, x)     reduces x into place i; not 0 if x is rare, that is not for the loops
//   double Evaluate(i)      the value at place i; anything for a rare one
//   static double Rare(x)   the value of a rare x
// Two loops instead of one keep both within the registers: the compilers turn each into lanes.  For
// their sake a test is a number and not a bool (SSE2 has no comparison of 64-bit integers), and
// they are told that the values are not stored over the table.
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
/// 0 if both are positive, by one comparison; neither may be a NaN without the other.
QARV_LANES_INLINE uint64 ZeroIfPositive(double a, double b) {
  return ZeroIf((a < b ? a : b) > 0.0);
}

/// The function of argument(i), for n values of a block, each handed to put(i, y).  What put writes
/// may be what argument reads.
template <class Function, class Argument, class Put>
QARV_LANES_INLINE void OneBlock(Function& f, std::size_t n, Argument argument, Put put) {
  // Kept per value: a block with one rare value, as every wave's first one that begins with
  // sin(0), is not reduced again to find it.
  uint64 rare[kBlock];
  uint64 any = 0;
  for (std::size_t i = 0; i < n; ++i) {
    rare[i] = f.Reduce(i, argument(i));
    any |= rare[i];
  }
  double rareValue[kBlock];
  for (std::size_t i = 0; any != 0 && i < n; ++i) {
    if (rare[i] != 0) rareValue[i] = Function::Rare(argument(i));
  }
  // Into an array of its own: Clang makes lanes of a loop only where it sees all that is written.
  double value[kBlock];
  QARV_INDEPENDENT
  for (std::size_t i = 0; i < n; ++i) value[i] = f.Evaluate(i);
  for (std::size_t i = 0; i < n; ++i) put(i, value[i]);
  for (std::size_t i = 0; any != 0 && i < n; ++i) {
    if (rare[i] != 0) put(i, rareValue[i]);
  }
}

/// x and y may be the same.
template <class Function>
void AllValues(std::span<const double> x, std::span<double> y, InstructionSet set) {
  RunWith(set, [&]() QARV_LANES {
    Function f;
    for (std::size_t first = 0; first < x.size(); first += kBlock) {
      const double* const from = x.data() + first;
      double* const to = y.data() + first;
      OneBlock(
          f, std::min(kBlock, x.size() - first),
          [from](std::size_t i) QARV_LANES { return from[i]; },
          [to](std::size_t i, double value) QARV_LANES { to[i] = value; });
    }
  });
}

}  // namespace qarv::common::elementary
