// Peak, width, motion and margins of shock waveforms.
#include "analysis/shock.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace qarv::analysis {
namespace {

const double kPi = std::acos(-1.0);

/// A half-sine of n samples and peak 10 in the middle of a frame of 3 n.
std::vector<double> HalfSine(std::size_t n) {
  std::vector<double> x(3 * n);
  for (std::size_t k = 0; k <= n; ++k)
    x[n + k] = 10 * std::sin(kPi * static_cast<double>(k) / static_cast<double>(n));
  return x;
}

TEST(Shock, PeakIsTheFirstSampleOfTheLargestMagnitude) {
  const SampleAt peak = PeakOf(std::vector<double>{1, std::nan(""), -3, 3, 2});
  EXPECT_EQ(peak.index, 2U);
  EXPECT_EQ(peak.value, -3.0);
  EXPECT_EQ(PeakOf({}).value, 0.0);
  EXPECT_EQ(PeakOf(std::vector<double>{std::nan("")}).value, 0.0);
}

TEST(Shock, WidthIsMeasuredBetweenTheSamples) {
  EXPECT_NEAR(WidthAtLevel(std::vector<double>{0, 0, 5, 10, 5, 0, 0}, 0.1), 2 * 1.8, 1e-12);
  EXPECT_NEAR(WidthAtLevel(std::vector<double>{0, 0, -5, -10, -5, 0, 0}, 0.1), 2 * 1.8, 1e-12);
  // A half-sine stays above a tenth of its peak for 1 - 2 asin(0.1) / pi of its duration.
  EXPECT_NEAR(WidthAtLevel(HalfSine(1000), 0.1) / 1000, 1 - 2 * std::asin(0.1) / kPi, 1e-6);
  EXPECT_EQ(WidthAtLevel(std::vector<double>{3, 3, 3}, 0.1), 2.0) << "cut by the frame";
  EXPECT_EQ(WidthAtLevel(std::vector<double>{0, 0}, 0.1), 0.0);
  EXPECT_EQ(WidthAtLevel({}, 0.1), 0.0);
}

TEST(Shock, MotionIsThatOfTheIntegrals) {
  const auto x = HalfSine(1000);
  const Motion motion = MotionOf(x, 1000);  // 10 over a second: a velocity of 20 / pi
  EXPECT_NEAR(motion.peakVelocity, 20 / kPi, 1e-5);
  EXPECT_NEAR(motion.residualVelocity, 20 / kPi, 1e-5);
  // Half of that over the pulse, all of it over the second behind it but for the last sample.
  EXPECT_NEAR(motion.residualDisplacement, 10 / kPi + 20 / kPi * 0.999, 1e-4);
  EXPECT_EQ(motion.peakDisplacement, motion.residualDisplacement);
  EXPECT_EQ(motion.peakToPeakDisplacement, motion.peakDisplacement);
  std::vector<double> back(x);
  for (std::size_t k = 0; k <= 1000; ++k) back[2000 + k - 1] -= x[1000 + k];
  EXPECT_NEAR(MotionOf(back, 1000).residualVelocity, 0.0, 1e-9);
  EXPECT_EQ(MotionOf({}, 1000).peakVelocity, 0.0);
  EXPECT_EQ(MotionOf(x, 0).peakVelocity, 0.0);
  EXPECT_EQ(MotionOf(x, std::nan("")).peakVelocity, 0.0);
}

TEST(Shock, VelocityChangeIsTheAreaOfTheRange) {
  const auto x = HalfSine(1000);
  EXPECT_NEAR(VelocityChange(x, 1000, 1000, 2000), 20 / kPi, 1e-5);
  EXPECT_NEAR(VelocityChange(x, 1000, 1000, 1500), 10 / kPi, 1e-5);
  EXPECT_EQ(VelocityChange(x, 1000, 5, 5), 0.0);
  EXPECT_EQ(VelocityChange(x, 1000, 6, 5), 0.0);
  EXPECT_EQ(VelocityChange(x, 1000, 0, 3000), 0.0);
  EXPECT_EQ(VelocityChange(x, 0, 0, 10), 0.0);
}

TEST(Shock, MarginsAreTheLeastDistances) {
  const std::vector<double> wave{0, 5, 0, std::nan("")};
  const std::vector<double> upper{1, 5.5, 2, 0};
  const std::vector<double> lower{-1, 6, -2, 0};
  EXPECT_EQ(MarginToUpper(wave, upper).index, 1U);
  EXPECT_EQ(MarginToUpper(wave, upper).value, 0.5);
  EXPECT_EQ(MarginToLower(wave, lower).value, -1.0) << "outside";
  EXPECT_TRUE(std::isinf(MarginToUpper({}, {}).value));
}

TEST(Shock, OutsideIsEverythingButThePulse) {
  const std::vector<double> wave{0.5, 9, 9, -0.75, 0};
  EXPECT_EQ(LargestOutside(wave, 1, 2).value, -0.75);
  EXPECT_EQ(LargestOutside(wave, 1, 2).index, 3U);
  EXPECT_EQ(LargestOutside(wave, 0, 4).value, 0.0);
}

}  // namespace
}  // namespace qarv::analysis
