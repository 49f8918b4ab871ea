// Where bands fit a record best, against trying every place.
#include "analysis/band_fit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "analysis/resample.h"
#include "random_values.h"

namespace qarv::analysis {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kMax = std::numeric_limits<double>::max();
const double kPi = std::acos(-1.0);

struct Bands {
  std::vector<double> upper, lower;
};

/// A half-sine of peak 1 about the middle of its frame.
double HalfSine(double t, double width) {
  return std::fabs(t) < width / 2 ? std::cos(kPi * t / width) : 0.0;
}

/// Levels before and behind a half-sine and a margin along it, all in its peak.
Bands BandsOf(std::size_t n, double width, double level, double margin) {
  Bands bands{std::vector<double>(n), std::vector<double>(n)};
  const double centre = static_cast<double>(n / 2);
  for (std::size_t i = 0; i < n; ++i) {
    const double t = static_cast<double>(i) - centre;
    const double m = std::fabs(t) < width / 2 ? margin : level;
    bands.upper[i] = HalfSine(t, width) + m;
    bands.lower[i] = HalfSine(t, width) - m;
  }
  return bands;
}

/// A half-sine of its own width in a longer record, with some noise below half the sampling
/// frequency.
std::vector<double> RecordOf(std::size_t n, double centre, double width, double peak, double noise,
                             test::RandomValues* random) {
  std::vector<double> x(n);
  double held = 0.0;
  for (std::size_t k = 0; k < n; ++k) {
    held = 0.5 * held + random->Between(-noise, noise);
    x[k] = peak * HalfSine(static_cast<double>(k) - centre, width) + held;
  }
  return x;
}

/// How far a record lies beyond its limits at a place, by definition.
double BeyondAt(const std::vector<double>& record, const Bands& bands, double p) {
  const std::size_t n = bands.upper.size();
  const std::vector<double> wave = SampledAt(record, p, 1.0, n);
  double worst = -kMax;
  for (std::size_t i = 0; i < n; ++i) {
    const double at = p + static_cast<double>(i);
    if (at < -1e-6 || at > static_cast<double>(record.size()) - 1.0 + 1e-6) continue;
    worst = std::max({worst, wave[i] - bands.upper[i], bands.lower[i] - wave[i]});
  }
  return worst;
}

/// The least of all places that are a multiple of `step`.
double LeastOfAll(const std::vector<double>& record, const Bands& bands, const Places& places,
                  double step) {
  double least = kMax;
  for (double p = std::ceil(places.from / step) * step; p <= places.to; p += step) {
    least = std::min(least, BeyondAt(record, bands, p));
  }
  return least;
}

TEST(FitBands, KeepsThePreferredPlaceWhereItPasses) {
  test::RandomValues random(1);
  const Bands bands = BandsOf(200, 60, 0.05, 0.15);
  const auto record = RecordOf(400, 200.3, 60, 1.0, 0.0, &random);
  const BandFit fit = FitBands(record, bands.upper, bands.lower, {100.3, 90, 110});
  EXPECT_EQ(fit.place, 100.3);
  EXPECT_LT(fit.beyond, 0.0);
  EXPECT_EQ(fit.passes, 1U);
}

// The search may leave out places, but must not lose anything by it: at the eighths it is exact.
TEST(FitBands, FindsWhatTryingEveryEighthFinds) {
  test::RandomValues random(2);
  int passed = 0;
  int moved = 0;
  int failed = 0;
  for (int round = 0; round < 200; ++round) {
    const auto n = static_cast<std::size_t>(60 + random.Below(140));
    const double width = random.Between(10, 0.4 * static_cast<double>(n));
    const Bands bands = BandsOf(n, width, random.Between(0.02, 0.2), random.Between(0.05, 0.25));
    const auto record = RecordOf(2 * n, static_cast<double>(n) + random.Between(-0.1, 0.1) * width,
                                 width * random.Between(0.85, 1.15), random.Between(0.85, 1.15),
                                 random.OneIn(2) ? 0.0 : random.Between(0, 0.1), &random);
    const double start = static_cast<double>(n - n / 2) + random.Between(-0.5, 0.5);
    const Places places{start, start - 0.1 * width, start + 0.1 * width};
    const BandFit fit = FitBands(record, bands.upper, bands.lower, places);

    ASSERT_GE(fit.place, places.from) << round;
    ASSERT_LE(fit.place, places.to) << round;
    // What is said of the place holds there.
    ASSERT_NEAR(fit.beyond, BeyondAt(record, bands, fit.place), 1e-12) << round;
    const double eighths = LeastOfAll(record, bands, places, 0.125);
    if (fit.place == start) {
      ASSERT_LE(fit.beyond, std::max(0.0, eighths)) << round;
    } else {
      ASSERT_LE(fit.beyond, eighths + 1e-6 * std::fabs(eighths)) << round;
      moved += fit.beyond <= 0.0 ? 1 : 0;
    }
    // Between the eighths there may be a better place, but not by much.
    const double fine = LeastOfAll(record, bands, places, 1.0 / 64);
    ASSERT_LE(fit.beyond, std::max(0.0, fine) + 0.006) << round << ", width " << width;
    ++(fit.beyond <= 0.0 ? passed : failed);
  }
  EXPECT_GT(passed, 25);
  EXPECT_GT(moved, 10);
  EXPECT_GT(failed, 50);
}

TEST(FitBands, WhatIsOutsideEverywhereNeverPasses) {
  test::RandomValues random(3);
  for (int round = 0; round < 200; ++round) {
    const Bands bands = BandsOf(160, 50, 0.05, 0.15);
    auto record = RecordOf(320, 160, 50, 1.0, 0.0, &random);
    // A spike on the pulse that is beyond the highest limit, wherever the bands lie.
    record[150 + random.Below(20)] += random.Between(0.4, 1.0);
    const BandFit fit = FitBands(record, bands.upper, bands.lower, {80, 75, 85});
    ASSERT_GT(fit.beyond, 0.0) << round;
  }
}

TEST(FitBands, FindsAPlaceBetweenTheEighths) {
  // Steep flanks leave a window of a few hundredths of a sample about 20.3.
  test::RandomValues random(4);
  const auto record = RecordOf(100, 50.3, 12, 1.0, 0.0, &random);
  const auto exact = SampledAt(record, 20.3, 1.0, 60);
  Bands bands{exact, exact};
  for (double& v : bands.upper) v += 0.01;
  for (double& v : bands.lower) v -= 0.01;
  const Places places{20.0, 18.8, 21.2};
  ASSERT_GT(LeastOfAll(record, bands, places, 0.125), 0.0);
  const BandFit fit = FitBands(record, bands.upper, bands.lower, places);
  EXPECT_LE(fit.beyond, 0.0);
  EXPECT_NEAR(fit.place, 20.3, 0.05);
}

// Ten times the length is ten times the work, and not a hundred times.
TEST(FitBands, ItsPassesDoNotGrowWithTheLength) {
  for (const double outside : {0.0, 0.3}) {
    std::size_t most = 0;
    for (const std::size_t n : std::vector<std::size_t>{500, 5000, 50000}) {
      test::RandomValues random(5);
      const double width = 0.4 * static_cast<double>(n);
      const Bands bands = BandsOf(n, width, 0.05, 0.1);
      auto record = RecordOf(2 * n, static_cast<double>(n), width, 1.04, 0.02, &random);
      record[n] += outside;  // at no place inside
      const double start = static_cast<double>(n - n / 2) + 0.06 * width;
      const BandFit fit = FitBands(record, bands.upper, bands.lower,
                                   {start, start - 0.1 * width, start + 0.1 * width});
      EXPECT_EQ(fit.beyond <= 0.0, outside == 0.0) << n;
      most = std::max(most, fit.passes);
    }
    EXPECT_LT(most, 80U) << outside;
  }
}

TEST(FitBands, JudgesOnlyWhatTheRecordCovers) {
  test::RandomValues random(6);
  const Bands bands = BandsOf(200, 40, 0.05, 0.15);
  // Ends soon behind the pulse, three samples late for the bands.
  const auto record = RecordOf(140, 103, 40, 1.0, 0.0, &random);
  const BandFit fit = FitBands(record, bands.upper, bands.lower, {0, -4, 4});
  EXPECT_LE(fit.beyond, 0.0);
  EXPECT_GT(fit.place, 0.0);
}

TEST(FitBands, NoLimitExcludesNothing) {
  const std::vector<double> upper(20, kMax);
  const std::vector<double> lower(20, -kMax);
  const std::vector<double> record(60, 1e300);
  EXPECT_LT(FitBands(record, upper, lower, {20, 15, 25}).beyond, 0.0);
}

TEST(FitBands, WhatIsNoNumberIsOutsideEverywhere) {
  const std::vector<double> upper(20, 1.0);
  const std::vector<double> lower(20, -1.0);
  std::vector<double> record(60);
  record[30] = std::nan("");
  EXPECT_GT(FitBands(record, upper, lower, {20, 19, 21}).beyond, 0.0);
}

TEST(FitBands, APlaceBesideTheRecordDoesNotPass) {
  const std::vector<double> upper(20, 1.0);
  const std::vector<double> lower(20, -1.0);
  const std::vector<double> record(60, 5.0);
  EXPECT_NEAR(FitBands(record, upper, lower, {59, 50, 70}).beyond, 4.0, 1e-12);
  EXPECT_EQ(FitBands(record, upper, lower, {100, 90, 110}).beyond, kInf);
}

TEST(FitBands, StaysWhereThereIsNothingToCompare) {
  const std::vector<double> x(10);
  const auto expectNothing = [](const BandFit& fit) {
    EXPECT_EQ(fit.place, 3.0);
    EXPECT_EQ(fit.beyond, kInf);
    EXPECT_EQ(fit.passes, 0U);
  };
  expectNothing(FitBands({}, x, x, {3, 2, 4}));
  expectNothing(FitBands(x, {}, {}, {3, 2, 4}));
  expectNothing(FitBands(x, x, std::vector<double>(9), {3, 2, 4}));
  expectNothing(FitBands(x, x, x, {3, 4, 5}));
  expectNothing(FitBands(x, x, x, {3, -kInf, 4}));
  expectNothing(FitBands(x, x, x, {3, 2, kInf}));
  expectNothing(FitBands(x, x, x, {3, 2, std::nan("")}));
}

}  // namespace
}  // namespace qarv::analysis
