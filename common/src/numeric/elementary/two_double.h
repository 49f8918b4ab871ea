// Sums and products that keep what rounding drops: a number as the sum of two doubles.
#pragma once

#include "common/int_types.h"
#include "numeric/instruction_set.h"

namespace qarv::common::elementary {

/// high + low; low is what high lacks.
struct TwoDouble {
  double high;
  double low;
};

/// a + b exactly, where a is 0 or not smaller than b in size.
QARV_LANES_INLINE TwoDouble FastTwoSum(double a, double b) {
  const double sum = a + b;
  return {sum, b - (sum - a)};
}

/// a + b exactly.  (Knuth, The Art of Computer Programming, volume 2, 4.2.2)
QARV_LANES_INLINE TwoDouble TwoSum(double a, double b) {
  const double sum = a + b;
  const double bPart = sum - a;
  const double aPart = sum - bPart;
  return {sum, (a - aPart) + (b - bPart)};
}

/// The upper 26 bits of x: a product with a factor of 27 bits is exact.
QARV_LANES_INLINE double UpperBits(double x) {
  return __builtin_bit_cast(double, __builtin_bit_cast(uint64, x) & ~((uint64{1} << 27) - 1));
}

/// a * b exactly, but for underflow.  The lower parts have up to 27 bits; each product of halves is
/// exact but that of the two lower ones, whose rounding is 2^-106 of the whole.
QARV_LANES_INLINE TwoDouble TwoProduct(double a, double b) {
  const double product = a * b;
  const double a1 = UpperBits(a);
  const double a2 = a - a1;
  const double b1 = UpperBits(b);
  const double b2 = b - b1;
  return {product, ((a1 * b1 - product) + a1 * b2 + a2 * b1) + a2 * b2};
}

}  // namespace qarv::common::elementary
