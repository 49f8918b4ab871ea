// From a double to a sample index: every double has one defined index.
#include "common/numeric/index_conv.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>

namespace qarv::common {
namespace {

constexpr uint64 kTop = uint64{1} << 63;
constexpr double kInf = std::numeric_limits<double>::infinity();
const double k2p63 = std::ldexp(1.0, 63);

TEST(IndexConv, TruncatesTowardZero) {
  EXPECT_EQ(TruncToIndex(0.0), 0U);
  EXPECT_EQ(TruncToIndex(-0.0), 0U);
  EXPECT_EQ(TruncToIndex(2.999), 2U);
  EXPECT_EQ(TruncToIndex(-0.999), 0U);
  EXPECT_EQ(TruncToIndex(9007199254740993.0), 9007199254740992U);
}

TEST(IndexConv, NegativeValuesWrapBelowZero) {
  EXPECT_EQ(TruncToIndex(-1.0), ~uint64{0});
  EXPECT_EQ(TruncToIndex(-2.9), ~uint64{0} - 1);
  EXPECT_EQ(TruncToIndex(-k2p63), kTop);
}

TEST(IndexConv, TheUpperHalfOf64BitsIsExact) {
  EXPECT_EQ(TruncToIndex(std::nextafter(k2p63, 0)), kTop - 1024);
  EXPECT_EQ(TruncToIndex(k2p63), kTop);
  EXPECT_EQ(TruncToIndex(std::nextafter(k2p63, kInf)), kTop + 2048);
  EXPECT_EQ(TruncToIndex(std::nextafter(2 * k2p63, 0)), ~uint64{0} - 2047);
}

TEST(IndexConv, WhatNoIndexCanHoldIsTwoToThePower63) {
  for (const double x :
       {kInf, -kInf, std::nan(""), 2 * k2p63, -std::nextafter(k2p63, kInf), 1e300, -1e300}) {
    EXPECT_EQ(TruncToIndex(x), kTop) << x;
    EXPECT_EQ(RoundToIndex(x), kTop) << x;
    EXPECT_EQ(FloorToIndex(x), kTop) << x;
  }
}

TEST(IndexConv, RoundsHalfUpByAddingOneHalf) {
  EXPECT_EQ(RoundToIndex(2.5), 3U);
  EXPECT_EQ(RoundToIndex(2.4999), 2U);
  EXPECT_EQ(RoundToIndex(-0.5), 0U);
  EXPECT_EQ(RoundToIndex(-1.4), 0U);  // -0.9 toward zero
  EXPECT_EQ(RoundToIndex(-1.5), ~uint64{0});
  // The sum itself is rounded: the largest double below one half becomes 1.
  EXPECT_EQ(RoundToIndex(std::nextafter(0.5, 0)), 1U);
}

TEST(IndexConv, FloorsBelowZeroToo) {
  EXPECT_EQ(FloorToIndex(2.999), 2U);
  EXPECT_EQ(FloorToIndex(-0.001), ~uint64{0});
  EXPECT_EQ(FloorToIndex(-2.0), ~uint64{0} - 1);
}

TEST(IndexConv, AgreesWithExactArithmeticOnArbitraryBits) {
  std::mt19937_64 random(1);
  for (int i = 0; i < 200000; ++i) {
    const auto x = std::bit_cast<double>(random());
    uint64 expected = kTop;
    if (std::isfinite(x) && std::fabs(x) < 2 * k2p63) {
      // As a 128-bit integer, which the whole range fits.
      __extension__ using Wide = __int128;
      const auto whole = static_cast<Wide>(std::trunc(x));
      if (whole >= -static_cast<Wide>(kTop)) expected = static_cast<uint64>(whole);
    }
    ASSERT_EQ(TruncToIndex(x), expected) << x;
    ASSERT_EQ(RoundToIndex(x), TruncToIndex(x + 0.5)) << x;
    ASSERT_EQ(FloorToIndex(x), TruncToIndex(std::floor(x))) << x;
  }
}

}  // namespace
}  // namespace qarv::common
