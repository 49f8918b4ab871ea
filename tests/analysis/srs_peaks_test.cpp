// All large extremes of responses: against the spectrum, and against a response at many points.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "analysis/srs.h"
#include "common/numeric/constants.h"

namespace qarv::analysis {
namespace {

using common::kTwoPi;

/// Bursts of several frequencies, with silence before and behind some of them.
std::vector<double> Bursts(std::mt19937* random, std::size_t n, double highest) {
  std::uniform_real_distribution<double> any(0.0, 1.0);
  std::vector<double> x(n);
  for (int burst = 0; burst < 12; ++burst) {
    const double step = kTwoPi * highest * std::pow(0.01, any(*random));
    const auto start = static_cast<std::size_t>(any(*random) * 0.7 * static_cast<double>(n));
    const double length = 0.3 * static_cast<double>(n) * any(*random) + 3.0;
    const double ampl = any(*random) - 0.5;
    for (std::size_t i = start; i < n && static_cast<double>(i - start) < length; ++i) {
      const auto t = static_cast<double>(i - start);
      x[i] += ampl * std::sin(step * t) * std::sin(0.5 * kTwoPi * t / length);
    }
  }
  return x;
}

TEST(SrsPeaks, TheLargestIsThatOfTheSpectrum) {
  std::mt19937 random(1);
  for (int round = 0; round < 40; ++round) {
    const double rate = 1000.0;
    const std::vector<double> x = Bursts(&random, 200 + 150 * static_cast<std::size_t>(round), 0.1);
    const std::vector<double> f = SrsFrequencies(0.05, 100.0, 3.0);
    const double zeta = round % 4 == 0 ? 0.001 : 0.05;
    const auto peaks = CalcSrsPeaks(x, rate, f, zeta, 0.85);
    const auto points = CalcSrs(x, rate, f, zeta, SrsResponse::AbsoluteAcceleration);
    ASSERT_EQ(peaks.size(), f.size());
    for (std::size_t i = 0; i < f.size(); ++i) {
      double largest = 0.0;
      for (const SrsPeak& p : peaks[i]) largest = std::max(largest, std::fabs(p.value));
      EXPECT_NEAR(largest / points[i].Total().Maximax(), 1.0, 1e-3) << round << ", " << f[i];
    }
  }
}

TEST(SrsPeaks, ComeInTheOrderOfTimeAndReachWhatIsKept) {
  std::mt19937 random(2);
  for (const double keep : {1.0, 0.85, 0.3}) {
    const std::vector<double> x = Bursts(&random, 4000, 0.1);
    for (const auto& peaks : CalcSrsPeaks(x, 500.0, SrsFrequencies(0.2, 50.0, 6.0), 0.05, keep)) {
      ASSERT_FALSE(peaks.empty());
      double largest = 0.0;
      for (const SrsPeak& p : peaks) largest = std::max(largest, std::fabs(p.value));
      for (std::size_t i = 0; i < peaks.size(); ++i) {
        EXPECT_GE(std::fabs(peaks[i].value), keep * largest);
        const double before = i > 0 ? peaks[i - 1].time : -1.0;
        EXPECT_GT(peaks[i].time, before);
      }
    }
  }
}

/// The absolute acceleration of an oscillator on a base of straight lines through the samples,
/// `fine` points to an interval, by the filter at that rate, and on zeros for some more samples.
std::vector<double> ResponseOf(const std::vector<double>& x, std::size_t fine, std::size_t more,
                               double f, double zeta, double rate) {
  const auto at = [&](std::size_t i) { return i >= 1 && i <= x.size() ? x[i - 1] : 0.0; };
  const SrsFilter filter =
      MakeSrsFilter(f, zeta, rate * static_cast<double>(fine), SrsResponse::AbsoluteAcceleration);
  std::vector<double> y;
  double x1 = 0.0, x2 = 0.0, y1 = 0.0, y2 = 0.0;
  for (std::size_t k = 0; k < (x.size() + more) * fine; ++k) {
    const double share = static_cast<double>(k % fine) / static_cast<double>(fine);
    const double x0 = (1.0 - share) * at(k / fine) + share * at(k / fine + 1);
    const double y0 =
        filter.b0 * x0 + filter.b1 * x1 + filter.b2 * x2 - filter.a1 * y1 - filter.a2 * y2;
    y.push_back(y0);
    x2 = x1, x1 = x0, y2 = y1, y1 = y0;
  }
  return y;
}

TEST(SrsPeaks, AreAllThoseOfTheResponseWithTheDecayBehindTheShock) {
  std::mt19937 random(3);
  constexpr std::size_t kFine = 32;
  constexpr double kRate = 200.0;
  for (int round = 0; round < 10; ++round) {
    std::vector<double> x(60, 0.0);  // silence, which takes time
    const std::vector<double> shock = Bursts(&random, 700, 0.08);
    x.insert(x.end(), shock.begin(), shock.end());
    for (const double f : {0.3, 1.7, 6.0, 19.0}) {
      const double frequencies[] = {f};
      const auto peaks = CalcSrsPeaks(x, kRate, frequencies, 0.01, 0.8).at(0);
      const std::vector<double> y = ResponseOf(x, kFine, 5000, f, 0.01, kRate);
      double largest = 0.0;
      for (const double v : y) largest = std::max(largest, std::fabs(v));
      std::vector<SrsPeak> expected;
      for (std::size_t k = 1; k + 1 < y.size(); ++k) {
        const double size = std::fabs(y[k]);
        const double sign = std::copysign(1.0, y[k]);
        if (size < 0.8 * largest || size < sign * y[k - 1] || size <= sign * y[k + 1]) continue;
        const double time = (static_cast<double>(k) / kFine - 1.0) / kRate;
        expected.push_back({time, y[k]});
      }
      // One that just reaches what is kept may be there or not.
      const auto isClear = [&](const SrsPeak& p) { return std::fabs(p.value) > 0.802 * largest; };
      const auto near = [&](const SrsPeak& a, const SrsPeak& b) {
        return std::fabs(a.time - b.time) < 0.3 / kRate &&
               std::fabs(a.value - b.value) < 2e-3 * largest;
      };
      const auto hasEach = [&](const auto& all, const auto& of) {
        return std::all_of(all.begin(), all.end(), [&](const SrsPeak& p) {
          return !isClear(p) ||
                 std::any_of(of.begin(), of.end(), [&](const SrsPeak& q) { return near(p, q); });
        });
      };
      EXPECT_TRUE(hasEach(expected, peaks)) << round << ", " << f << " Hz";
      EXPECT_TRUE(hasEach(peaks, expected)) << round << ", " << f << " Hz";
    }
  }
}

TEST(SrsPeaks, OfNothingAreNone) {
  const double f[] = {10.0};
  const double over[] = {500.0};
  const std::vector<double> x(100, 0.0);
  const std::vector<double> y(100, 1.0);
  EXPECT_TRUE(CalcSrsPeaks(x, 1000.0, f, 0.05, 0.85).at(0).empty());
  EXPECT_TRUE(CalcSrsPeaks({}, 1000.0, f, 0.05, 0.85).at(0).empty());
  for (const double keep : {0.0, -1.0, 1.1, std::nan("")}) {
    EXPECT_TRUE(CalcSrsPeaks(y, 1000.0, f, 0.05, keep).empty());
  }
  EXPECT_TRUE(CalcSrsPeaks(y, 0.0, f, 0.05, 0.85).empty());
  EXPECT_TRUE(CalcSrsPeaks(y, 1000.0, over, 0.05, 0.85).empty());
  EXPECT_TRUE(CalcSrsPeaks(y, 1000.0, f, 1.0, 0.85).empty());
  const std::vector<double> infinite(9, std::numeric_limits<double>::infinity());
  EXPECT_TRUE(CalcSrsPeaks(infinite, 1000.0, f, 0.05, 0.85).empty());
}

}  // namespace
}  // namespace qarv::analysis
