// Where a record shows a reference, and whether it keeps within its bands.
#include "analysis/judge.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "random_values.h"

namespace qarv::analysis {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kMax = std::numeric_limits<double>::max();
const double kNaN = std::nan("");

/// A smooth pulse about t = 0 whose spectrum ends far below the Nyquist frequency.
double Pulse(double t) { return std::exp(-t * t / 200.0) * (1.0 + 0.3 * std::sin(t / 6.0)); }

std::vector<double> Pulses(std::size_t n, double centre, double peak) {
  std::vector<double> x(n);
  for (std::size_t k = 0; k < n; ++k) x[k] = peak * Pulse(static_cast<double>(k) - centre);
  return x;
}

TEST(Align, FindsACopyExactly) {
  const auto reference = Pulses(101, 50, 3);
  for (const std::size_t lag : std::vector<std::size_t>{0, 1, 77, 399}) {
    std::vector<double> record(500);
    std::copy(reference.begin(), reference.end(),
              record.begin() + static_cast<std::ptrdiff_t>(lag));
    const Alignment found = Align(reference, record);
    EXPECT_EQ(found.lag, static_cast<double>(lag));
    EXPECT_NEAR(found.correlation, 1.0, 1e-12);
  }
}

TEST(Align, FindsAPulseBetweenTheSamples) {
  test::RandomValues random(81);
  const auto reference = Pulses(141, 70, 50);
  for (int round = 0; round < 50; ++round) {
    const double lag = random.Between(40, 300);
    const Alignment found = Align(reference, Pulses(500, lag + 70, 40));
    EXPECT_NEAR(found.lag, lag, 1e-3);
    EXPECT_NEAR(found.correlation, 1.0, 1e-3);
  }
}

TEST(Align, ANegativePulseIsFoundByANegativeReference) {
  const Alignment found = Align(Pulses(141, 70, -50), Pulses(500, 270.25, -40));
  EXPECT_NEAR(found.lag, 200.25, 1e-3);
}

TEST(Align, APulseTurnedOverDoesNotCorrelate) {
  const auto reference = Pulses(141, 70, 50);
  EXPECT_LT(Align(reference, Pulses(500, 270, -50)).correlation, 0.1);
  EXPECT_LE(Align(std::vector<double>{2}, std::vector<double>{-3}).correlation, 0.0);
}

TEST(Align, TellsWhatMultipleOfTheReferenceTheRecordShows) {
  const auto reference = Pulses(141, 70, 50);
  EXPECT_NEAR(Align(reference, Pulses(500, 270.25, 40)).gain, 0.8, 1e-4);
  EXPECT_NEAR(Align(reference, Pulses(500, 270, 65)).gain, 1.3, 1e-12);
}

TEST(LikenessOf, IsTheCoefficientAndTheMultiple) {
  const std::vector<double> a{1, 2, -2};
  EXPECT_DOUBLE_EQ(LikenessOf(a, std::vector<double>{3, 6, -6}).correlation, 1.0);
  EXPECT_DOUBLE_EQ(LikenessOf(a, std::vector<double>{3, 6, -6}).gain, 3.0);
  EXPECT_DOUBLE_EQ(LikenessOf(a, std::vector<double>{-1, -2, 2}).correlation, -1.0);
  // 1 x 2 + 2 x 1 - 2 x 2 = 0
  EXPECT_DOUBLE_EQ(LikenessOf(a, std::vector<double>{2, 1, 2}).correlation, 0.0);
  for (const std::size_t n : std::vector<std::size_t>{0, 2, 3}) {
    EXPECT_EQ(LikenessOf(a, std::vector<double>(n)).correlation, 0.0);
    EXPECT_EQ(LikenessOf(a, std::vector<double>(n)).gain, 0.0);
  }
}

TEST(Align, NoiseOfATenthOfThePeakMovesItByLessThanASample) {
  test::RandomValues random(82);
  const auto reference = Pulses(141, 70, 50);
  for (int round = 0; round < 50; ++round) {
    const double lag = random.Between(40, 300);
    auto record = Pulses(500, lag + 70, 50);
    for (double& v : record) v += random.Between(-5, 5);
    EXPECT_NEAR(Align(reference, record).lag, lag, 1.0);
  }
}

TEST(Align, AReferenceMayReachBeyondTheRecord) {
  const auto reference = Pulses(141, 70, 50);
  EXPECT_NEAR(Align(reference, Pulses(200, 30, 50)).lag, -40, 1.0);
  EXPECT_NEAR(Align(reference, Pulses(100, 50, 50)).lag, -20, 1e-3);
}

TEST(Align, FindsNothingInWhatIsNoSignal) {
  const auto pulse = Pulses(141, 70, 50);
  const std::vector<double> zero(100);
  std::vector<double> odd = pulse;
  for (const double bad : {kNaN, kInf}) {
    odd[3] = bad;
    EXPECT_EQ(Align(pulse, odd).correlation, 0.0);
    EXPECT_EQ(Align(odd, pulse).correlation, 0.0);
  }
  EXPECT_EQ(Align({}, pulse).correlation, 0.0);
  EXPECT_EQ(Align(pulse, {}).correlation, 0.0);
  EXPECT_EQ(Align(zero, pulse).correlation, 0.0);
  EXPECT_EQ(Align(pulse, zero).correlation, 0.0);
  EXPECT_EQ(Align(std::vector<double>{2}, std::vector<double>{3}).lag, 0.0);
}

TEST(JudgeBands, CountsWhatLiesBeyondALimitAndNamesTheFarthest) {
  const std::vector<double> wave{0, 5, 12, 9, -4, -1};
  const std::vector<double> upper{1, 6, 10, 9, 2, 2};
  const std::vector<double> lower{-1, 4, 8, 9, -3, -2};
  const Verdict verdict = JudgeBands(wave, upper, lower, 0, 5);
  EXPECT_EQ(verdict.judged, 6U);
  EXPECT_EQ(verdict.outside, 2U);
  EXPECT_EQ(verdict.worst, 2U);
  EXPECT_EQ(verdict.value, 12.0);
  EXPECT_EQ(verdict.limit, 10.0);
  const Verdict rear = JudgeBands(wave, upper, lower, 3, 5);
  EXPECT_EQ(rear.judged, 3U);
  EXPECT_EQ(rear.outside, 1U);
  EXPECT_EQ(rear.worst, 4U);
  EXPECT_EQ(rear.limit, -3.0);
}

TEST(Beyond, IsTheDistanceFromTheLimitThatIsExceeded) {
  EXPECT_EQ(Beyond(5, 3, -1), 2.0);
  EXPECT_EQ(Beyond(-5, 3, -1), 4.0);
  EXPECT_EQ(Beyond(2, 3, -1), -1.0);
  EXPECT_EQ(Beyond(2, kMax, 4), 2.0);
  EXPECT_EQ(Beyond(5, 3, -kMax), 2.0);
  for (const double odd : {kNaN, kInf, -kInf}) EXPECT_EQ(Beyond(odd, kMax, -kMax), kInf);
}

TEST(JudgeBands, ALimitItselfIsInside) {
  const std::vector<double> wave{1, -1};
  EXPECT_EQ(JudgeBands(wave, wave, wave, 0, 1).outside, 0U);
}

TEST(JudgeBands, NoLimitLetsEverythingPass) {
  const std::vector<double> wave{1e300, -1e300};
  EXPECT_EQ(
      JudgeBands(wave, std::vector<double>{kMax, -kMax}, std::vector<double>{-kMax, -kMax}, 0, 1)
          .outside,
      0U);
}

TEST(JudgeBands, WhatIsNoNumberIsOutside) {
  const std::vector<double> upper(3, kMax);
  const std::vector<double> lower(3, -kMax);
  const Verdict verdict = JudgeBands(std::vector<double>{0.0, kNaN, kInf}, upper, lower, 0, 2);
  EXPECT_EQ(verdict.outside, 2U);
  EXPECT_EQ(verdict.worst, 1U);
}

TEST(JudgeBands, JudgesNothingOutsideItsArrays) {
  const std::vector<double> x(4);
  EXPECT_EQ(JudgeBands(x, x, x, 0, 4).judged, 0U);
  EXPECT_EQ(JudgeBands(x, x, x, 3, 2).judged, 0U);
  EXPECT_EQ(JudgeBands(x, x, {}, 0, 0).judged, 0U);
  EXPECT_EQ(JudgeBands(x, x, x, 3, 3).judged, 1U);
}

}  // namespace
}  // namespace qarv::analysis
