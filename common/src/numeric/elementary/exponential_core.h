// The exponential of a reduced argument, and its reduction.
//
//   x = k ln 2 / 256 + r,  |r| <= ln 2 / 512,  k = 256 n + j
//   e^x = 2^n P (1 + r + r^2 / 2 + ...),   P = 2^(j / 256) from the table
//
// As for the sine: P is a double of 27 bits and one of the rest, t the upper 26 bits of r, P1 t is
// exact and P1 + P1 t known with its remainder; everything else is below 2^-19 of it.
#pragma once

#include "common/int_types.h"
#include "numeric/elementary/tables.h"
#include "numeric/elementary/two_double.h"

namespace qarv::common::elementary {

/// Between these bounds the result and all that it is made of are normal numbers.
inline constexpr double kSmallestExpArgument = -708.0;
inline constexpr double kLargestExpArgument = 709.0;

/// An argument after its reduction: k + 256 * 1023 and the rest.
struct ReducedPower {
  uint64 biased;
  TwoDouble r;
};

/// The reduction of |x| < 1000: k has at most 19 bits, so that its products with kLogStep1 and 2
/// are exact.
QARV_LANES_INLINE ReducedPower ReducePower(double x) {
  constexpr double kToInteger = 0x1.8p52;  // a sum with it has the nearest integer in its last bits
  constexpr uint64 kBias = __builtin_bit_cast(uint64, kToInteger) - 256 * 1023;
  const double shifted = x * kLogStepsPerUnit + kToInteger;
  const double k = shifted - kToInteger;
  const TwoDouble r = TwoSum(x - k * kLogStep1, -(k * kLogStep2));
  return {__builtin_bit_cast(uint64, shifted) - kBias, {r.high, r.low - k * kLogStep3}};
}

/// 2^(j / 256) e^r with a relative error below 2^-70.
QARV_LANES_INLINE TwoDouble PowerOfReduced(uint64 j, TwoDouble r) {
  const double p1 = kPower[j][0];
  const double p2 = kPower[j][1];
  const double t = UpperBits(r.high);
  const double rest = (r.high - t) + r.low;
  const double square = r.high * r.high;
  const double powerRest =  // e^r - 1 - r
      square * ((0.5 + r.high * (1.0 / 6)) +
                square * ((1.0 / 24 + r.high * (1.0 / 120)) + square * (1.0 / 720)));
  const TwoDouble sum = FastTwoSum(p1, p1 * t);
  return {sum.high, sum.low + ((p2 + (p2 * r.high + p1 * rest)) + (p1 + p2) * powerRest)};
}

}  // namespace qarv::common::elementary
