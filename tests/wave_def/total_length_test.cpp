// The exact sum of sample counts.
#include "family/total_length.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

namespace {

using namespace qarv;
using common::int64;
using common::uint64;
using wave_def::TotalLength;

constexpr uint64 kMax = std::numeric_limits<uint64>::max();
constexpr uint64 kTop = uint64{1} << 63;

TEST(TotalLength, OfNothingIsNotPositive) { EXPECT_FALSE(TotalLength{}.IsPositive()); }

TEST(TotalLength, CountsStretchesAndTakesNegativeOnesOff) {
  TotalLength total;
  total.Add(100, 100.0, 3);
  total.Add(~uint64{0} - 49, -50.0, 2);  // -50, wrapped
  EXPECT_TRUE(total.IsPositive());
  EXPECT_EQ(total.Count(), 200U);
  total.Add(~uint64{0} - 199, -200.0);
  EXPECT_FALSE(total.IsPositive()) << "exactly 0";
  total.Add(~uint64{0}, -1.0);
  EXPECT_FALSE(total.IsPositive());
}

TEST(TotalLength, AHugeCountIsNegativeOnlyForANegativeDuration) {
  TotalLength above;
  above.Add(kTop, 9.3e18);
  EXPECT_TRUE(above.IsPositive());
  EXPECT_EQ(above.Count(), kTop);
  TotalLength below;
  below.Add(kTop, -9.3e18);
  EXPECT_FALSE(below.IsPositive());
  below.Add(kTop, 1.0);
  EXPECT_FALSE(below.IsPositive()) << "exactly 0";
  below.Add(5, 5.0);
  EXPECT_EQ(below.Count(), 5U);
}

TEST(TotalLength, BeyondWhatAnIndexHoldsIsTheLargestCount) {
  TotalLength total;
  total.Add(kMax, 1.0);
  EXPECT_EQ(total.Count(), kMax);
  total.Add(1, 1.0);
  EXPECT_EQ(total.Count(), kMax) << "and not 0";
  total.Add(~uint64{0}, -1.0, 2);
  EXPECT_EQ(total.Count(), kMax - 1);
  total.Add(kMax, 1.0, std::numeric_limits<unsigned int>::max());
  EXPECT_EQ(total.Count(), kMax);
}

#ifdef __SIZEOF_INT128__
TEST(TotalLength, IsTheSumIn128BitsForArbitraryCounts) {
  __extension__ using Wide = __int128;
  std::mt19937_64 random(23);
  // Counts and numbers of every magnitude, and those at the ends of the types.
  const auto number = [&](int bits) {
    const uint64 top = bits == 64 ? kMax : (uint64{1} << bits) - 1;
    const uint64 x = random() >> (64 - bits) >> random() % static_cast<unsigned int>(bits);
    const uint64 kinds[] = {x, x, x, x, top - x, uint64{1} << (bits - 1), top};
    return kinds[random() % std::size(kinds)];
  };
  for (int round = 0; round < 200000; ++round) {
    TotalLength total;
    Wide sum = 0;
    for (auto stretches = 1 + random() % 5; stretches != 0; --stretches) {
      const uint64 count = number(64);
      const auto times = static_cast<unsigned int>(number(32));
      const double duration = random() % 2 == 0 ? -1.0 : 1.0;
      total.Add(count, duration, times);
      sum += (duration < 0.0 ? Wide{static_cast<int64>(count)} : Wide{count}) * Wide{times};
      ASSERT_EQ(total.IsPositive(), sum > 0) << round;
      if (sum <= 0) continue;
      ASSERT_EQ(total.Count(), sum > Wide{kMax} ? kMax : static_cast<uint64>(sum)) << round;
    }
  }
}
#endif

}  // namespace
