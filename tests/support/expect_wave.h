// Comparison of generated samples with a second computation of them, bit for bit.
#pragma once

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <new>
#include <optional>
#include <stdexcept>
#include <vector>

#include "common/data_array/data_array_float_t.h"
#include "common/int_types.h"

namespace qarv::test {

using common::uint64;
using Samples = common::CDataArrayFloatT<double>;
using Wave = std::vector<double>;

/// The same bits; of a NaN only that it is one, as its sign depends on the order of operands.
inline bool SameSample(double a, double b) {
  if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b);
  return std::bit_cast<uint64>(a) == std::bit_cast<uint64>(b);
}

/// Expects the samples to be the wave; names the first that is not.
template <class Array>
void ExpectSameWave(const Array& samples, const Wave& wave) {
  ASSERT_EQ(static_cast<std::size_t>(std::distance(samples.begin(), samples.end())), wave.size());
  const double* const x = &*samples.begin();
  for (std::size_t i = 0; i < wave.size(); ++i) {
    ASSERT_TRUE(SameSample(x[i], wave[i])) << "sample " << i << ": " << x[i] << ", not " << wave[i];
  }
}

/// Expects a generator to deliver the wave, or where there is none to be false and to leave the
/// array as it was.
template <class Set, class Generate>
void ExpectGenerates(Generate generate, const Set& set, double fsamp,
                     const std::optional<Wave>& expected) {
  const Samples before{7.0, -8.0};
  Samples wave(before);
  if (!expected) {
    EXPECT_FALSE(generate(set, fsamp, &wave));
    EXPECT_EQ(wave, before);
    return;
  }
  ASSERT_TRUE(generate(set, fsamp, &wave));
  ExpectSameWave(wave, *expected);
  EXPECT_FALSE(generate(set, fsamp, nullptr));
}

/// Expects that a wave of a size that no array has is refused or ends with a standard error, and
/// leaves the array as it was.
template <class Set, class Generate>
void ExpectTooLarge(Generate generate, const Set& set, double fsamp) {
  const Samples before{7.0, -8.0};
  Samples wave(before);
  try {
    EXPECT_FALSE(generate(set, fsamp, &wave));
  } catch (const std::bad_alloc&) {
  } catch (const std::length_error&) {
  }
  EXPECT_EQ(wave, before);
}

/// A double as an index: truncated, wrapped where negative, 2^63 where 64 bits do not hold it.
inline uint64 Index(double x) {
  __extension__ using Wide = __int128;
  if (!(std::fabs(x) < 0x1p64) || x < -0x1p63) return uint64{1} << 63;
  return static_cast<uint64>(static_cast<Wide>(x));
}

}  // namespace qarv::test
