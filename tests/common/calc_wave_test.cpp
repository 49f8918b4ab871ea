// The time integral by the trapezoidal rule.
#include "common/numeric/calc_wave.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "common/numeric/constants.h"

namespace qarv::common {
namespace {

TEST(IntegTime, StartsAtRestAndAddsTrapezoids) {
  const std::vector<double> in{1, 3, 5, -1};
  std::vector<double> out(4, 7.0);
  ASSERT_TRUE(CCalcWave::IntegTime(4, out.data(), in.data(), 2.0));
  EXPECT_EQ(out, (std::vector<double>{0, 1, 3, 4}));
}

TEST(IntegTime, WorksInPlace) {
  std::vector<double> x{1, 3, 5, -1};
  ASSERT_TRUE(CCalcWave::IntegTime(4, x.data(), x.data(), 2.0));
  EXPECT_EQ(x, (std::vector<double>{0, 1, 3, 4}));
}

TEST(IntegTime, IsExactForAConstantAndTwiceForItsDisplacement) {
  std::vector<double> x(1001, 2.0);
  ASSERT_TRUE(CCalcWave::IntegTime(1001, x.data(), x.data(), 1000.0));
  EXPECT_NEAR(x[1000], 2.0, 1e-12);
  ASSERT_TRUE(CCalcWave::IntegTime(1001, x.data(), x.data(), 1000.0));
  EXPECT_NEAR(x[1000], 1.0, 1e-12);
}

TEST(IntegTime, ConvergesWithTheSquareOfTheStep) {
  const auto error = [](uint64 n) {
    const double rate = static_cast<double>(n);
    std::vector<double> x(n + 1);
    for (uint64 i = 0; i <= n; ++i) x[i] = std::sin(kPi * static_cast<double>(i) / rate);
    EXPECT_TRUE(CCalcWave::IntegTime(n + 1, x.data(), x.data(), rate));
    return std::fabs(x[n] - 2 / kPi);
  };
  EXPECT_NEAR(error(100) / error(200), 4.0, 0.01);
}

TEST(IntegTime, NullOrARateThatIsNotPositiveIsFalse) {
  const std::vector<double> in{1, 2};
  std::vector<double> out{7, 7};
  EXPECT_FALSE(CCalcWave::IntegTime(2, nullptr, in.data(), 1));
  EXPECT_FALSE(CCalcWave::IntegTime(2, out.data(), nullptr, 1));
  for (const double rate : {0.0, -1.0, -HUGE_VAL, std::nan("")}) {
    EXPECT_FALSE(CCalcWave::IntegTime(2, out.data(), in.data(), rate));
  }
  EXPECT_EQ(out, (std::vector<double>{7, 7}));
}

TEST(IntegTime, OfFewSamples) {
  const std::vector<double> in{5};
  std::vector<double> out{7, 7};
  EXPECT_TRUE(CCalcWave::IntegTime(0, out.data(), in.data(), 1));
  EXPECT_EQ(out[0], 7);
  EXPECT_TRUE(CCalcWave::IntegTime(1, out.data(), in.data(), 1));
  EXPECT_EQ(out, (std::vector<double>{0, 7}));
}

}  // namespace
}  // namespace qarv::common
