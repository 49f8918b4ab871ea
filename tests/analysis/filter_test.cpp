// Filters without a shift in time, against the gains of their formulas.
#include "analysis/filter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>

namespace qarv::test {
namespace {

using namespace analysis;

const double kPi = std::acos(-1.0);

/// The gain of ZeroPhase at a frequency, from a long sine, by its part in phase; `out` of phase.
double GainAt(const FilterSections& filter, double f, double fsamp, double* out = nullptr) {
  constexpr int kLength = 40000;
  std::vector<double> x(kLength);
  for (int i = 0; i < kLength; ++i)
    x[static_cast<std::size_t>(i)] = std::sin(2 * kPi * f * i / fsamp);
  const std::vector<double> y = ZeroPhase(x, filter);
  double sine = 0.0;
  double cosine = 0.0;
  double own = 0.0;
  // Whole periods in the middle, far from both ends.
  const int period = static_cast<int>(std::lround(fsamp / f));
  for (int i = 10000; i < 10000 + (20000 / period) * period; ++i) {
    const double phase = 2 * kPi * f * i / fsamp;
    sine += y[static_cast<std::size_t>(i)] * std::sin(phase);
    cosine += y[static_cast<std::size_t>(i)] * std::cos(phase);
    own += std::sin(phase) * std::sin(phase);
  }
  if (out != nullptr) *out = cosine / own;
  return sine / own;
}

/// What a frequency is to the analog filter.
double Warped(double f, double fsamp) { return std::tan(kPi * f / fsamp); }

TEST(Filter, ButterworthHasItsGainAndNoPhase) {
  const double fsamp = 10000;
  for (int order = 1; order <= kMostFilterOrder; ++order) {
    for (const double f : {100.0, 500.0, 1000.0, 2000.0}) {
      // Two passes: 1 / (1 + r^2n), and 1 / sqrt(2) at the cutoff.
      const double ratio = std::pow(Warped(f, fsamp) / Warped(500, fsamp), 2 * order);
      const double open = std::sqrt(2.0) - 1.0;
      double turned = 1.0;
      const auto low = DesignFilter(FilterShape::Butterworth, FilterPass::Low, order, 500, fsamp);
      EXPECT_NEAR(GainAt(low, f, fsamp, &turned), 1 / (1 + open * ratio), 1e-9)
          << order << " " << f;
      EXPECT_NEAR(turned, 0.0, 1e-9);
      const auto high = DesignFilter(FilterShape::Butterworth, FilterPass::High, order, 500, fsamp);
      EXPECT_NEAR(GainAt(high, f, fsamp, &turned), 1 / (1 + open / ratio), 1e-9)
          << order << " " << f;
      EXPECT_NEAR(turned, 0.0, 1e-9);
    }
  }
}

/// The reverse Bessel polynomial by its recursion.
std::complex<double> Bessel(int n, std::complex<double> s) {
  std::complex<double> before = 1.0;
  std::complex<double> value = s + 1.0;
  if (n == 0) return before;
  for (int k = 2; k <= n; ++k) {
    const std::complex<double> next = (2.0 * k - 1.0) * value + s * s * before;
    before = value;
    value = next;
  }
  return value;
}

TEST(Filter, BesselHasTheGainOfItsPolynomial) {
  const double fsamp = 10000;
  for (int order = 1; order <= kMostFilterOrder; ++order) {
    const auto squared = [&](double w) {
      return std::norm(Bessel(order, 0.0)) / std::norm(Bessel(order, {0.0, w}));
    };
    double low = 0.0;
    double high = 20.0;
    for (int i = 0; i < 80; ++i) {
      const double middle = (low + high) / 2;
      (squared(middle) > std::sqrt(0.5) ? low : high) = middle;
    }
    const auto filter = DesignFilter(FilterShape::Bessel, FilterPass::Low, order, 800, fsamp);
    for (const double f : {200.0, 800.0, 1250.0}) {
      EXPECT_NEAR(GainAt(filter, f, fsamp), squared(low * Warped(f, fsamp) / Warped(800, fsamp)),
                  1e-9)
          << order << " " << f;
    }
  }
}

TEST(Filter, AChannelFrequencyClassHasTheCoefficientsOfItsStandard) {
  for (const double cfc : {60.0, 180.0, 600.0, 1000.0}) {
    const double T = 1.0 / 10000;
    const double wd = 2 * kPi * cfc * 2.0775;
    const double wa = std::tan(wd * T / 2);
    const double a0 = wa * wa / (1 + std::sqrt(2.0) * wa + wa * wa);
    const auto filter = CfcFilter(cfc, 1 / T);
    ASSERT_EQ(filter.size(), 1U);
    EXPECT_NEAR(filter[0].b0, a0, 1e-12);
    EXPECT_NEAR(filter[0].b1, 2 * a0, 1e-12);
    EXPECT_NEAR(filter[0].b2, a0, 1e-12);
    EXPECT_NEAR(-filter[0].a1, -2 * (wa * wa - 1) / (1 + std::sqrt(2.0) * wa + wa * wa), 1e-12);
    EXPECT_NEAR(-filter[0].a2,
                (-1 + std::sqrt(2.0) * wa - wa * wa) / (1 + std::sqrt(2.0) * wa + wa * wa), 1e-12);
  }
  EXPECT_TRUE(CfcFilter(1000, 4000).empty());
}

TEST(Filter, KeepsAConstantAndTheSymmetryOfAPulse) {
  const auto filter = DesignFilter(FilterShape::Butterworth, FilterPass::Low, 4, 1000, 12800);
  for (const double v : ZeroPhase(std::vector<double>(500, 3.25), filter))
    EXPECT_NEAR(v, 3.25, 1e-12);
  const auto high = DesignFilter(FilterShape::Butterworth, FilterPass::High, 2, 10, 12800);
  for (const double v : ZeroPhase(std::vector<double>(500, 3.25), high)) EXPECT_NEAR(v, 0.0, 1e-9);
  std::vector<double> pulse(1001);
  for (int i = 400; i <= 600; ++i)
    pulse[static_cast<std::size_t>(i)] = std::sin(kPi * (i - 400) / 200.0);
  const auto filtered = ZeroPhase(pulse, filter);
  for (std::size_t i = 0; i < 500; ++i) EXPECT_NEAR(filtered[i], filtered[1000 - i], 1e-12);
}

TEST(Filter, RefusesWhatIsNone) {
  EXPECT_TRUE(DesignFilter(FilterShape::Bessel, FilterPass::Low, 9, 10, 100).empty());
  EXPECT_TRUE(DesignFilter(FilterShape::Bessel, FilterPass::Low, 0, 10, 100).empty());
  EXPECT_TRUE(DesignFilter(FilterShape::Bessel, FilterPass::Low, 2, 50, 100).empty());
  EXPECT_TRUE(DesignFilter(FilterShape::Bessel, FilterPass::Low, 2, 0, 100).empty());
  EXPECT_EQ(ZeroPhase(std::vector<double>{1, 2}, {}), (std::vector<double>{1, 2}));
}

}  // namespace
}  // namespace qarv::test
