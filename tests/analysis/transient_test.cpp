// Durations and moments of transients whose integrals are known.
#include "analysis/transient.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace qarv::test {
namespace {

using analysis::Transient;
using analysis::TransientOf;

const double kPi = std::acos(-1.0);
constexpr double kRate = 100000.0;

std::vector<double> Sampled(double (*value)(double), double seconds) {
  std::vector<double> x(static_cast<std::size_t>(seconds * kRate) + 1);
  for (std::size_t i = 0; i < x.size(); ++i) x[i] = value(static_cast<double>(i) / kRate);
  return x;
}

TEST(TransientNumbers, OfAHalfSine) {
  // 50 sin(pi t / D), D = 11 ms: energy A^2 D / 2, centroid D / 2.
  constexpr double D = 0.011;
  const Transient t =
      TransientOf(Sampled(
                      [](double s) {
                        return s > 0.01 && s < 0.021 ? -50 * std::sin(kPi * (s - 0.01) / D) : 0.0;
                      },
                      0.05),
                  kRate);
  EXPECT_NEAR(t.energy, 2500 * D / 2, 1e-5);
  EXPECT_NEAR(t.rms, std::sqrt(2500 * D / 2 / 0.05), 0.01);
  EXPECT_NEAR(t.centroid, 0.01 + D / 2, 1e-8);
  EXPECT_NEAR(t.durationTenth, D * (1 - 2 * std::asin(0.1) / kPi), 1e-7);
  // The variance of a density 2 / D sin^2: D^2 (1 / 12 - 1 / (2 pi^2)).
  EXPECT_NEAR(t.rmsDuration, D * std::sqrt(1.0 / 12 - 0.5 / (kPi * kPi)), 1e-8);
  EXPECT_NEAR(t.skewness / D, 0.0, 1e-3);
  EXPECT_NEAR(t.rootEnergy, std::sqrt(t.energy / t.rmsDuration), 1e-9);
  // 5 % and 95 % of u - sin(2 pi u) / (2 pi).
  double low = 0;
  double high = 0.5;
  for (int i = 0; i < 60; ++i) {
    const double u = (low + high) / 2;
    (u - std::sin(2 * kPi * u) / (2 * kPi) < 0.05 ? low : high) = u;
  }
  EXPECT_NEAR(t.durationEnergy, D * (1 - 2 * low), 1e-7);
}

TEST(TransientNumbers, OfAnExponential) {
  // The square e^(-2 a t) has the moments of an exponential density of 1 / (2 a).
  const Transient t =
      TransientOf(Sampled([](double s) { return 8 * std::exp(-100 * s); }, 0.4), kRate);
  const double b = 1.0 / 200;
  EXPECT_NEAR(t.energy, 64 * b, 64 * 1e-5);
  EXPECT_NEAR(t.centroid, b, 1e-5);
  EXPECT_NEAR(t.rmsDuration, b, 1e-5);
  EXPECT_NEAR(t.skewness, b * std::cbrt(2.0), 2e-5);
  EXPECT_NEAR(t.kurtosis, b * std::pow(9.0, 0.25), 2e-5);
  EXPECT_NEAR(t.durationEnergy, b * std::log(19.0), 1e-6);
  EXPECT_NEAR(t.durationTenth, std::log(10.0) / 100, 1e-8);
}

TEST(TransientNumbers, OfNothingAreZero) {
  EXPECT_EQ(TransientOf({}, 100).energy, 0.0);
  EXPECT_EQ(TransientOf(std::vector<double>(10), 100).durationEnergy, 0.0);
  EXPECT_EQ(TransientOf(std::vector<double>(10, 1.0), 0).rms, 0.0);
}

}  // namespace
}  // namespace qarv::test
