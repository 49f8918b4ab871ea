// Roots of unity: the reduction of their angle to the first octant.
#include "numeric/fft_roots.h"

#include <gtest/gtest.h>

#include <cmath>
#include <iterator>
#include <limits>
#include <random>
#include <utility>

#include "numeric/elementary.h"

namespace qarv::common {
namespace {

TEST(UnitRoot, IsExactAtTheEighthsOfATurnOfTheLargestLength) {
  const uint64 n = uint64{1} << 63;
  const double h = std::sqrt(0.5);
  const Complex eighths[] = {{1, 0}, {h, h}, {0, 1}, {-h, h}, {-1, 0}, {-h, -h}, {0, -1}, {h, -h}};
  for (uint64 k = 0; k < 8; ++k) {
    const Complex root = UnitRoot(k * (n / 8), n);
    EXPECT_EQ(root.re, eighths[k].re) << k;
    EXPECT_EQ(root.im, eighths[k].im) << k;
  }
}

#ifdef __SIZEOF_INT128__
/// The reduction in 128 bits, where num / den never needs care.
Complex RootInWideIntegers(uint64 i, uint64 n) {
  __extension__ using Wide = unsigned __int128;
  Wide num = i;
  Wide den = n;
  const bool lowerHalf = 2 * num > den;
  if (lowerHalf) num = den - num;
  const bool leftHalf = 4 * num > den;
  if (leftHalf) num = den - 2 * num, den = 2 * den;
  const bool steep = 8 * num > den;
  if (steep) num = den - 4 * num, den = 4 * den;
  const double x = 6.283185307179586 * (static_cast<double>(num) / static_cast<double>(den));
  Complex root{elementary::Cos(x), elementary::Sin(x)};
  if (8 * num == den) root = {std::sqrt(0.5), std::sqrt(0.5)};
  if (steep) std::swap(root.re, root.im);
  return {leftHalf ? -root.re : root.re, lowerHalf ? -root.im : root.im};
}

TEST(UnitRoot, HasTheBitsOfAReductionInWideIntegersForArbitraryLengths) {
  std::mt19937_64 random(5);
  for (int round = 0; round < 500000; ++round) {
    const uint64 x = random() >> random() % 64;
    const uint64 lengths[] = {x, x, uint64{1} << random() % 64, ~uint64{0} - x % 9, 8 * (x / 8)};
    const uint64 n = lengths[random() % std::size(lengths)];
    if (n == 0) continue;
    const uint64 near = n / 8 * (random() % 8) + random() % 3;  // about the ends of the octants
    for (const uint64 i : {random() % n, near % n, n - 1}) {
      const Complex root = UnitRoot(i, n);
      const Complex wide = RootInWideIntegers(i, n);
      ASSERT_EQ(root.re, wide.re) << i << " of " << n;
      ASSERT_EQ(root.im, wide.im) << i << " of " << n;
    }
  }
}
#endif

}  // namespace
}  // namespace qarv::common
