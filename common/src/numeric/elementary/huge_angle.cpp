// The reduction of any angle to a multiple of pi / 128 and a rest, in integers.
//
//   |x| = m 2^e,   |x| 128 / pi = m 2^(e + 6) 2 / pi
//
// Of the digits of 2 / pi those that give multiples of 256 are left out, and 256 of the following
// are enough: no double comes closer than 2^-62 to a multiple of pi / 128, relative to it.  (M.
// Payne, R. Hanek, Radian reduction for trigonometric functions, 1983)
#include <array>
#include <cmath>
#include <cstdint>

#include "numeric/elementary/sine_core.h"

namespace qarv::common::elementary {
namespace {

constexpr int kWords = 8;
using Words = std::array<std::uint32_t, kWords>;  // the last word first

/// The word of 2 / pi behind the point; the words before the point are 0.
std::uint32_t DigitWord(int i) { return i < 0 ? 0 : kTwoOverPi[i]; }

/// The lower 256 bits of m times the eight words of 2 / pi from @p first on.
Words Multiply(uint64 m, int first) {
  Words product{};
  for (int shift = 0; shift < 2; ++shift) {
    const uint64 factor = (m >> 32 * shift) & 0xffffffffu;
    uint64 carry = 0;
    for (int i = 0; i + shift < kWords; ++i) {
      const auto at = static_cast<std::size_t>(i + shift);
      carry += factor * DigitWord(first + kWords - 1 - i) + product[at];
      product[at] = static_cast<std::uint32_t>(carry);
      carry >>= 32;
    }
  }
  return product;
}

/// 32 bits from bit @p from on, the lowest first.
std::uint32_t BitsFrom(const Words& words, int from) {
  const auto at = static_cast<std::size_t>(from / 32);
  const uint64 upper = at + 1 < words.size() ? words[at + 1] : 0;
  return static_cast<std::uint32_t>((upper << 32 | words[at]) >> from % 32);
}

/// Leaves the lowest @p count bits, and with @p negate their complement to 2^count.
void KeepBits(Words& words, int count, bool negate) {
  uint64 carry = negate ? 1 : 0;
  for (int i = 0; i < kWords; ++i) {
    std::uint32_t& word = words[static_cast<std::size_t>(i)];
    if (negate) {
      carry += static_cast<std::uint32_t>(~word);
      word = static_cast<std::uint32_t>(carry);
      carry >>= 32;
    }
    const int bits = count - 32 * i;
    if (bits < 32) word = bits <= 0 ? 0 : word & ((std::uint32_t{1} << bits) - 1);
  }
}

/// The words as a number times 2^-point.
TwoDouble ToTwoDouble(const Words& words, int point) {
  int top = kWords - 1;
  while (top > 3 && words[static_cast<std::size_t>(top)] == 0) --top;
  const auto term = [&](int i) {
    return std::ldexp(static_cast<double>(words[static_cast<std::size_t>(top - i)]),
                      32 * (top - i) - point);
  };
  const TwoDouble upper = FastTwoSum(term(0), term(1));
  return FastTwoSum(upper.high, upper.low + (term(2) + term(3)));
}

}  // namespace

ReducedAngle ReduceAnyAngle(double x) {
  int e = 0;
  const double fraction = std::frexp(std::fabs(x), &e);
  const auto m = static_cast<uint64>(std::ldexp(fraction, 53));
  e -= 53;
  constexpr int kAhead = 64;  // keeps the quotient's dividend positive: it is a floor
  const int first = (e - 2 + 32 * kAhead) / 32 - kAhead;
  Words y = Multiply(m, first);
  const int point = 250 + 32 * first - e;  // the bits of y behind the point
  std::uint32_t row = BitsFrom(y, point);
  const bool above = (BitsFrom(y, point - 1) & 1) != 0;  // more than half a step
  row += above ? 1u : 0u;
  KeepBits(y, point, above);
  const TwoDouble f = ToTwoDouble(y, point);
  const TwoDouble product = TwoProduct(f.high, kStepHigh);
  TwoDouble r = FastTwoSum(product.high, product.low + (f.high * kStepLow + f.low * kStepHigh));
  if (above != (x < 0.0)) r = {-r.high, -r.low};
  if (x < 0.0) row = 0 - row;
  return {row & 255, r};
}

}  // namespace qarv::common::elementary
