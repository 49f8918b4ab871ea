// Shock response spectra: against closed forms, exact filters, and their conventions.
#include "analysis/srs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "common/numeric/constants.h"
#include "random_values.h"

namespace qarv::analysis {
namespace {

using common::kPi;
using common::kTwoPi;
using enum SrsResponse;

constexpr double kRate = 50000;

/// 50 g, 11 ms at 50 kHz.
std::vector<double> HalfSine() {
  std::vector<double> x(551);
  for (std::size_t k = 0; k <= 550; ++k) x[k] = 50 * std::sin(kPi * static_cast<double>(k) / 550);
  return x;
}

SrsPoint PointOf(const std::vector<double>& shock, double f, double zeta,
                 SrsResponse response = AbsoluteAcceleration, double rate = kRate) {
  const double frequencies[] = {f};
  const auto points = CalcSrs(shock, rate, frequencies, zeta, response);
  EXPECT_EQ(points.size(), 1U);
  return points.at(0);
}

TEST(Srs, OfAHalfSineIsThatOfTheClosedForm) {
  const auto x = HalfSine();
  const auto near = [](double value, double expected) { EXPECT_NEAR(value / expected, 1.0, 1e-4); };
  near(PointOf(x, 10, 0).residual.Maximax(), 21.752);
  near(PointOf(x, 40, 0).residual.Maximax(), 73.092);
  near(PointOf(x, 80, 0).Total().Maximax(), 88.132);
  near(PointOf(x, 100, 0).Total().Maximax(), 84.689);
  near(PointOf(x, 10, 0.05).Total().Maximax(), 20.259);
  near(PointOf(x, 80, 0.05).Total().Maximax(), 82.414);
  near(PointOf(x, 100, 0.05).Total().Maximax(), 79.570);
  near(PointOf(x, 1000, 0.05).Total().Maximax(), 50.378);
}

/// The undamped response to a half-sine of duration D and peak 1, from its differential equation:
/// while it lasts, w^2 / (w^2 - p^2) (sin(p t) - p / w sin(w t)), p = pi / D; afterwards a sine of
/// amplitude 2 p w cos(w D / 2) / (w^2 - p^2).
TEST(Srs, WithoutDampingFollowsTheClosedFormUpToThreeKilohertz) {
  const auto x = HalfSine();
  const double D = 0.011;
  const double p = kPi / D;
  for (double f = 5; f <= 3000; f *= 1.13) {
    const double w = kTwoPi * f;
    double primary = 0;
    for (int i = 0; i <= 200000; ++i) {
      const double t = D * i / 200000;
      primary = std::max(primary, std::fabs(w * w / (w * w - p * p) *
                                            (std::sin(p * t) - p / w * std::sin(w * t))));
    }
    const double residual = std::fabs(2 * p * w / (w * w - p * p) * std::cos(w * D / 2));
    const SrsPoint point = PointOf(x, f, 0);
    EXPECT_NEAR(point.Total().Maximax() / (50 * std::max(primary, residual)), 1.0, 1e-4) << f;
    EXPECT_NEAR(point.residual.Maximax(), 50 * residual, 50 * 2e-4) << f;
    EXPECT_NEAR(point.residual.positive, -point.residual.negative, 1e-9)
        << "an undamped residual is symmetric";
  }
}

/// Response to a ramp from rest, in extended precision.
long double RampResponse(long double t, double f, double zeta, SrsResponse response) {
  if (t <= 0) return 0;
  const long double w = 2 * std::acos(-1.0L) * f;
  const long double z = zeta;
  const long double wd = w * std::sqrt(1 - z * z);
  const long double c = std::exp(-z * w * t) * std::cos(wd * t);
  const long double s = std::exp(-z * w * t) * std::sin(wd * t);
  const long double displacement =
      -(t - 2 * z / w + 2 * z / w * c + (2 * z * z - 1) / wd * s) / (w * w);
  if (response == RelativeDisplacement) return displacement;
  if (response == PseudoVelocity) return w * displacement;
  if (response == StaticEquivalent) return w * w * displacement;
  if (response == RelativeVelocity) return -(1 - c - z * w / wd * s) / (w * w);
  return t - s / wd;  // the mass lags behind a ramp of its base
}

TEST(SrsFilter, IsExactForAnInputOfStraightLines) {
  test::RandomValues random(61);
  for (int round = 0; round < 200; ++round) {
    const double f = random.Between(20, 400);
    const double zeta = random.Pick({0.0, 0.01, 0.05, 0.3, 0.9});
    const auto response = random.Pick({AbsoluteAcceleration, RelativeDisplacement, PseudoVelocity,
                                       RelativeVelocity, StaticEquivalent});
    const double rate = 2000;
    // A polyline with corners on samples.
    std::vector<double> x(120);
    for (std::size_t corner = 10; corner < 110; corner += 20) {
      const double level = random.Between(-1, 1);
      for (std::size_t k = 0; k < 20; ++k) {
        x[corner + k - 10] += level * (1 - std::fabs(static_cast<double>(k) - 10) / 10);
      }
    }
    const SrsFilter filter = MakeSrsFilter(f, zeta, rate, response);
    double x1 = 0;
    double x2 = 0;
    double y1 = 0;
    double y2 = 0;
    double scale = 0;
    std::vector<double> errors;
    for (std::size_t k = 0; k < x.size(); ++k) {
      const double y =
          filter.b0 * x[k] + filter.b1 * x1 + filter.b2 * x2 - filter.a1 * y1 - filter.a2 * y2;
      y2 = y1;
      y1 = y;
      x2 = x1;
      x1 = x[k];
      // The exact response: a ramp from every corner of the input, which is 0 before its first
      // sample.
      long double exact = 0;
      for (std::size_t j = 0; j <= k; ++j) {
        const double before = j >= 1 ? x[j - 1] : 0.0;
        const double twice = j >= 2 ? x[j - 2] : 0.0;
        const double bend = x[j] - 2 * before + twice;
        exact += bend * rate *
                 RampResponse(static_cast<long double>(k + 1 - j) / rate, f, zeta, response);
      }
      errors.push_back(std::fabs(y - static_cast<double>(exact)));
      scale = std::max(scale, std::fabs(y));
    }
    EXPECT_LE(*std::max_element(errors.begin(), errors.end()), 1e-9 * scale) << f << " " << zeta;
  }
}

TEST(Srs, OfASoftOscillatorsRelativeVelocityIsThatOfItsBaseTurnedOver) {
  // 50 g over 11 ms: the base is up to 2 / pi of their product by the end, and coasts.
  const double velocity = 50 * 0.011 * 2 / kPi;
  const SrsPoint point = PointOf(HalfSine(), 0.001, 0.05, RelativeVelocity);
  EXPECT_NEAR(point.Total().negative, -velocity, 1e-4 * velocity);
  EXPECT_NEAR(point.primary.positive, 0.0, 1e-12);
}

TEST(Srs, OfAStiffOscillatorsRelativeVelocityFollowsTheSlopeOfItsInput) {
  // On a straight ramp z' = -a' / w^2 (1 - cos w t) without damping.
  std::vector<double> ramp(4000);
  for (std::size_t k = 0; k < ramp.size(); ++k) ramp[k] = 0.01 * static_cast<double>(k + 1);
  const double w = kTwoPi * 2000;
  const SrsPoint point = PointOf(ramp, 2000, 0.0, RelativeVelocity);
  EXPECT_NEAR(point.primary.negative, -2 * 0.01 * kRate / (w * w), 1e-6 / (w * w));
}

TEST(Srs, OfAnUndampedOscillatorTheStaticEquivalentIsTheAbsoluteAccelerationTurnedOver) {
  for (const double f : {10.0, 80.0, 1000.0}) {
    const SrsExtremes absolute = PointOf(HalfSine(), f, 0).Total();
    const SrsExtremes equivalent = PointOf(HalfSine(), f, 0, StaticEquivalent).Total();
    EXPECT_NEAR(equivalent.positive, -absolute.negative, 1e-11 * absolute.Maximax());
    EXPECT_NEAR(equivalent.negative, -absolute.positive, 1e-11 * absolute.Maximax());
    EXPECT_LT(PointOf(HalfSine(), f, 0.5, StaticEquivalent).Total().Maximax(),
              PointOf(HalfSine(), f, 0.5).Total().Maximax());
  }
}

TEST(SrsFilter, OfALowFrequencyIntegratesTwice) {
  // Where the oscillator has no time to swing, the response to a triangle is its double integral:
  // 1, 4 and 1 sixths at the samples.
  for (const double zeta : {0.0, 0.5}) {
    const SrsFilter filter = MakeSrsFilter(1e-6, zeta, 1, RelativeDisplacement);
    EXPECT_NEAR(filter.b0, -1.0 / 6, 1e-5);
    EXPECT_NEAR(filter.b1, -4.0 / 6, 1e-5);
    EXPECT_NEAR(filter.b2, -1.0 / 6, 1e-5);
  }
}

TEST(Srs, PseudoVelocityIsTheDisplacementTimesTheFrequency) {
  const auto x = HalfSine();
  for (const double f : {15.0, 70.0, 600.0}) {
    const SrsPoint d = PointOf(x, f, 0.05, RelativeDisplacement);
    const SrsPoint v = PointOf(x, f, 0.05, PseudoVelocity);
    EXPECT_NEAR(v.Total().positive, kTwoPi * f * d.Total().positive, 1e-9 * v.Total().Maximax());
    EXPECT_NEAR(v.Total().negative, kTwoPi * f * d.Total().negative, 1e-9 * v.Total().Maximax());
  }
}

TEST(Srs, AStiffOscillatorFollowsAndASoftOneStaysBehind) {
  const auto x = HalfSine();
  EXPECT_NEAR(PointOf(x, 5000, 0.05).primary.positive, 50, 0.5);
  // Soft: the mass stays, its relative displacement is that of the base.
  const double velocity = 2 * 50 * 0.011 / kPi;
  EXPECT_NEAR(PointOf(x, 0.5, 0).residual.Maximax(), velocity * kTwoPi * 0.5, 0.01);
  EXPECT_NEAR(PointOf(x, 0.5, 0, PseudoVelocity).residual.Maximax(), velocity, 0.001);
}

TEST(Srs, TheResidualIsTheFreeDecayBehindTheShock) {
  test::RandomValues random(62);
  for (int round = 0; round < 200; ++round) {
    std::vector<double> x(40);
    for (double& v : x) v = random.Between(-1, 1);
    const double f = random.Between(5, 90);
    const double zeta = random.Pick({0.0, 0.02, 0.1, 0.5});
    const auto response = random.Pick({AbsoluteAcceleration, RelativeDisplacement, PseudoVelocity});
    const SrsPoint point = PointOf(x, f, zeta, response, 1000);
    // The same with the decay as part of the shock, sampled finely enough by the filter itself.
    std::vector<double> longer(x);
    longer.resize(40 + 1000);
    const SrsPoint sampled = PointOf(longer, f, zeta, response, 1000);
    const double scale = point.Total().Maximax();
    const double slack = 1e-11 * scale;
    EXPECT_LE(sampled.primary.positive, point.Total().positive + slack);
    EXPECT_GE(sampled.primary.positive, point.Total().positive - slack);
    EXPECT_GE(sampled.primary.negative, point.Total().negative - slack);
    EXPECT_LE(sampled.primary.negative, point.Total().negative + slack);
  }
}

TEST(Srs, ANegatedShockMirrorsItsSpectrum) {
  const auto x = HalfSine();
  std::vector<double> negated(x);
  for (double& v : negated) v = -v;
  const SrsPoint a = PointOf(x, 60, 0.05);
  const SrsPoint b = PointOf(negated, 60, 0.05);
  EXPECT_EQ(a.primary.positive, -b.primary.negative);
  EXPECT_EQ(a.primary.negative, -b.primary.positive);
  EXPECT_NEAR(a.residual.positive, -b.residual.negative, 1e-12);
}

TEST(Srs, OneFrequencyDoesNotDependOnItsNeighbours) {
  const auto x = HalfSine();
  const auto frequencies = SrsFrequencies(10, 2000, 6);
  const auto points = CalcSrs(x, kRate, frequencies, 0.05, AbsoluteAcceleration);
  ASSERT_EQ(points.size(), frequencies.size());
  for (std::size_t i = 0; i < points.size(); ++i) {
    const SrsPoint alone = PointOf(x, frequencies[i], 0.05);
    EXPECT_EQ(points[i].primary.positive, alone.primary.positive);
    EXPECT_EQ(points[i].residual.negative, alone.residual.negative);
  }
}

TEST(Srs, OfUnusableInputIsEmpty) {
  const auto x = HalfSine();
  const auto none = [&](double rate, double f, double zeta) {
    const double frequencies[] = {100, f};
    return CalcSrs(x, rate, frequencies, zeta, AbsoluteAcceleration).empty();
  };
  const double nan = std::nan("");
  EXPECT_FALSE(none(kRate, 50, 0.05));
  for (const double rate : {0.0, -1.0, nan, HUGE_VAL}) EXPECT_TRUE(none(rate, 50, 0.05));
  for (const double f : {0.0, -5.0, kRate / 2, nan, HUGE_VAL}) EXPECT_TRUE(none(kRate, f, 0.05));
  for (const double zeta : {-0.1, 1.0, nan}) EXPECT_TRUE(none(kRate, 50, zeta));
  EXPECT_TRUE(CalcSrs(x, kRate, {}, 0.05, AbsoluteAcceleration).empty());
  const SrsPoint silent = PointOf({}, 50, 0.05);
  EXPECT_EQ(silent.Total().Maximax(), 0.0);
  for (const double sample : {nan, HUGE_VAL, -HUGE_VAL}) {
    const double frequencies[] = {100};
    EXPECT_TRUE(
        CalcSrs(std::vector{1.0, sample, 1.0}, kRate, frequencies, 0.05, AbsoluteAcceleration)
            .empty());
  }
}

TEST(SrsFrequencies, AreEvenlySpacedOnALogarithmicScale) {
  const auto f = SrsFrequencies(10, 80, 6);
  ASSERT_EQ(f.size(), 19U);
  EXPECT_EQ(f.front(), 10.0);
  EXPECT_NEAR(f.back(), 80.0, 1e-9);
  for (std::size_t i = 1; i < f.size(); ++i)
    EXPECT_NEAR(f[i] / f[i - 1], std::exp2(1.0 / 6), 1e-12);
  EXPECT_EQ(f[6], 20.0) << "octaves are exact";
  EXPECT_EQ(SrsFrequencies(10, 10, 6).size(), 1U);
  EXPECT_TRUE(SrsFrequencies(0, 10, 6).empty());
  EXPECT_TRUE(SrsFrequencies(20, 10, 6).empty());
  EXPECT_TRUE(SrsFrequencies(1, 10, 0).empty());
  EXPECT_TRUE(SrsFrequencies(1, HUGE_VAL, 6).empty());
  EXPECT_TRUE(SrsFrequencies(std::nan(""), 10, 6).empty());
  EXPECT_TRUE(SrsFrequencies(1, 10, 1e9).empty());
}

}  // namespace
}  // namespace qarv::analysis
