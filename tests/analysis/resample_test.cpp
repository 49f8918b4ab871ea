// Band-limited interpolation.
#include "analysis/resample.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "random_values.h"

namespace qarv::analysis {
namespace {

const double kPi = std::acos(-1.0);

/// A sine of a frequency in cycles per sample.
double SineAt(double frequency, double t) { return std::sin(2 * kPi * frequency * t + 0.3); }

std::vector<double> Sine(double frequency, std::size_t n) {
  std::vector<double> x(n);
  for (std::size_t k = 0; k < n; ++k) x[k] = SineAt(frequency, static_cast<double>(k));
  return x;
}

TEST(SampledAt, FollowsASineBetweenItsSamples) {
  test::RandomValues random(71);
  for (int round = 0; round < 200; ++round) {
    const double frequency = random.Between(0.0, 0.85 * 0.5);
    const auto x = Sine(frequency, 400);
    const double start = random.Between(50, 300);
    const auto y = SampledAt(x, start, 1.0, 20);
    ASSERT_EQ(y.size(), 20U);
    for (std::size_t j = 0; j < y.size(); ++j) {
      EXPECT_NEAR(y[j], SineAt(frequency, start + static_cast<double>(j)), 1e-4) << frequency;
    }
  }
}

TEST(SampledAt, TakesAHigherAndALowerFrequency) {
  for (const double step : {0.25, 0.8, 1.25, 3.0}) {
    const double frequency = 0.85 * 0.5 * std::min(1.0, 1.0 / step);
    const auto x = Sine(frequency, 2000);
    const auto y = SampledAt(x, 500.5, step, 300);
    for (std::size_t j = 0; j < y.size(); ++j) {
      EXPECT_NEAR(y[j], SineAt(frequency, 500.5 + static_cast<double>(j) * step), 1e-4) << step;
    }
  }
}

TEST(SampledAt, FiltersOutWhatALowerFrequencyCannotHold) {
  const auto y = SampledAt(Sine(0.4, 3000), 800.0, 2.0, 300);
  for (const double v : y) EXPECT_NEAR(v, 0.0, 1e-4);
}

TEST(SampledAt, GivesBackTheSamples) {
  test::RandomValues random(72);
  std::vector<double> x(120);
  for (double& v : x) v = random.Between(-1, 1);
  const auto y = SampledAt(x, 0.0, 1.0, x.size());
  EXPECT_EQ(y, x);  // nothing lies between the samples
}

TEST(SampledAt, AConstantStaysThatConstantEverywhere) {
  const std::vector<double> x(7, 2.5);
  for (const double v : SampledAt(x, -100.3, 0.7, 400)) EXPECT_NEAR(v, 2.5, 1e-14);
}

TEST(SampledAt, StaysAtTheEnds) {
  const std::vector<double> x{1, 2, 3};
  EXPECT_EQ(SampledAt(x, -1e6, 1.0, 2), (std::vector<double>{1, 1}));
  EXPECT_EQ(SampledAt(x, 1e300, 1.0, 2), (std::vector<double>{3, 3}));
  EXPECT_NEAR(SampledAt(std::vector<double>{4}, 0.5, 1.0, 1).front(), 4.0, 1e-14);
}

TEST(SampledAt, RefusesWhatIsNoPlace) {
  const std::vector<double> x{1, 2, 3};
  const double kInf = std::numeric_limits<double>::infinity();
  EXPECT_TRUE(SampledAt({}, 0, 1, 5).empty());
  EXPECT_TRUE(SampledAt(x, 0, 0, 5).empty());
  EXPECT_TRUE(SampledAt(x, 0, -1, 5).empty());
  EXPECT_TRUE(SampledAt(x, 0, std::nan(""), 5).empty());
  EXPECT_TRUE(SampledAt(x, 0, kInf, 5).empty());
  EXPECT_TRUE(SampledAt(x, std::nan(""), 1, 5).empty());
  EXPECT_TRUE(SampledAt(x, kInf, 1, 5).empty());
  EXPECT_TRUE(SampledAt(x, 0, 1, 0).empty());
}

}  // namespace
}  // namespace qarv::analysis
