// Sine and cosine of a reduced argument, and its reduction.
//
//   x = k pi / 128 + r,  |r| <= pi / 256,  r = r.high + r.low
//   sin x = S cos r + C sin r,   S = sin(k pi / 128), C = cos(k pi / 128) from the table
//
// S and C are sums of a double of 27 bits and one of the rest.  With t the upper 26 bits of r, C1 t
// is exact, S1 + C1 t is known with its remainder, and everything else is below 2^-13 of it and so
// can be rounded as it comes.
#pragma once

#include "common/int_types.h"
#include "numeric/elementary/tables.h"
#include "numeric/elementary/two_double.h"

namespace qarv::common::elementary {

/// Where |x| is larger, k has more than 29 bits and its products with the parts of pi / 128 are not
/// exact any more.
inline constexpr double kLargestSineArgument = 1.25e7;

/// An argument after its reduction: the row of the table, k modulo 256, and the rest.
struct ReducedAngle {
  uint64 row;
  TwoDouble r;
};

/// The reduction of |x| <= kLargestSineArgument.  k * kStep1, 2, 3 are exact, and so are the first
/// two differences; what is left out is below |k| 2^-132.
QARV_LANES_INLINE ReducedAngle ReduceAngle(double x, double* k) {
  constexpr double kToInteger = 0x1.8p52;  // a sum with it has the nearest integer in its last bits
  const double shifted = x * kStepsPerRadian + kToInteger;
  *k = shifted - kToInteger;
  const double rest = (x - *k * kStep1) - *k * kStep2;
  const TwoDouble r = TwoSum(rest, -(*k * kStep3));
  return {__builtin_bit_cast(uint64, shifted) & 255, FastTwoSum(r.high, r.low - *k * kStep4)};
}

/// The reduction of any finite x, in integers.
ReducedAngle ReduceAnyAngle(double x);

/// sin(row pi / 128 + r) with an error below 2^-66, or 2^-66 of it where row is a multiple of 128.
QARV_LANES_INLINE TwoDouble SineOfReduced(uint64 row, TwoDouble r) {
  const double s1 = kSine[row][0];
  const double s2 = kSine[row][1];
  const double c1 = kSine[row + 64][0];
  const double c2 = kSine[row + 64][1];
  const double t = UpperBits(r.high);
  const double rest = (r.high - t) + r.low;
  const double square = r.high * r.high;
  const double sineRest =  // sin r - r
      r.high * square * (-1.0 / 6 + square * (1.0 / 120 - square * (1.0 / 5040)));
  const double cosineRest =  // cos r - 1
      square * (-0.5 + square * (1.0 / 24 + square * (-1.0 / 720 + square * (1.0 / 40320))));
  const TwoDouble sum = FastTwoSum(s1, c1 * t);
  const double low = ((s2 + c2 * r.high) + c1 * rest) + (c1 + c2) * sineRest;
  return {sum.high, sum.low + (low + (s1 + s2) * cosineRest)};
}

/// The row of the cosine: cos x = sin(x + pi / 2).
QARV_LANES_INLINE uint64 CosineRow(uint64 row) { return (row + 64) & 255; }

}  // namespace qarv::common::elementary
