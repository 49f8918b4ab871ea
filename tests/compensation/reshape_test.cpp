// The reshaping of the spectrum: its conditions, that it is the optimum, and what the gain does.
#include "compensation/reshape.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numeric>

#include "random_values.h"

namespace qarv::wave_def::compensation {
namespace {

Wave RandomWave(test::RandomValues* random, std::size_t n) {
  Wave x(n);
  for (double& v : x) v = random->Between(-1, 1);
  return x;
}

double LargestOf(const Wave& x) {
  double largest = 0;
  for (const double v : x) largest = std::max(largest, std::fabs(v));
  return largest;
}

/// Running sums: velocity and displacement of the rectangle rule.
Wave Integrated(const Wave& x) {
  Wave out(x.size());
  std::partial_sum(x.begin(), x.end(), out.begin());
  return out;
}

TEST(Reshape, BringsTheTableToRestWhereItBegan) {
  test::RandomValues random(36);
  for (const std::size_t n : std::vector<std::size_t>{16, 17, 64, 99, 1000, 1501, 8192}) {
    for (const double g : {1e-8, 1.0, 1e4, 1e8}) {
      Reshaper reshaper(n);
      reshaper.SetWave(RandomWave(&random, n));
      Wave out;
      ASSERT_TRUE(reshaper.Reshape(g, &out));
      const double scale = LargestOf(out);
      EXPECT_LE(std::fabs(out.front()), 1e-12 * scale) << n;
      EXPECT_LE(std::fabs(out.back()), 1e-12 * scale) << n;
      const Wave velocity = Integrated(out);
      const Wave displacement = Integrated(velocity);
      EXPECT_LE(std::fabs(velocity.back()), 1e-11 * LargestOf(velocity)) << n << " " << g;
      EXPECT_LE(std::fabs(displacement.back()), 1e-11 * LargestOf(displacement)) << n << " " << g;
    }
  }
}

/// What is minimised: closeness to the wave and energy of the displacement, from a plain transform.
long double CostOf(const Wave& x, const Wave& wave, double g) {
  using Complex = std::complex<long double>;
  const std::size_t n = x.size();
  const long double turn = 2 * std::acos(-1.0L);
  long double cost = 0;
  for (std::size_t k = 0; k <= n / 2; ++k) {
    Complex a = 0;
    Complex b = 0;
    for (std::size_t j = 0; j < n; ++j) {
      const Complex e = std::polar(
          1.0L, -turn * static_cast<long double>(j * k % n) / static_cast<long double>(n));
      a += e * static_cast<long double>(wave[j]);
      b += e * static_cast<long double>(x[j]);
    }
    const long double theta = turn * static_cast<long double>(k) / static_cast<long double>(n);
    const auto size = static_cast<long double>(n);
    const bool weighted = k != 0 && k != n / 2;
    const long double w =
        weighted ? static_cast<long double>(g) / std::pow(size, 4.0L) / std::pow(theta, 4.0L)
                 : 0.0L;
    const long double m = k == 0 || 2 * k == n ? 1 : 2;
    cost += m * (std::norm(b - a) + w * std::norm(b));
  }
  return cost;
}

/// A random wave that meets the four conditions: no change of end, velocity or displacement.
Wave Admissible(test::RandomValues* random, std::size_t n) {
  Wave x = RandomWave(random, n);
  x.front() = x.back() = 0;
  // Two inner samples are set so that sum and first moment vanish.
  x[1] = x[2] = 0;
  double sum = 0;
  double moment = 0;
  for (std::size_t i = 0; i < n; ++i) {
    sum += x[i];
    moment += static_cast<double>(i) * x[i];
  }
  x[2] = sum - moment;
  x[1] = -sum - x[2];
  return x;
}

TEST(Reshape, IsTheOptimumUnderItsConditions) {
  test::RandomValues random(37);
  for (const std::size_t n : std::vector<std::size_t>{16, 17, 40}) {
    for (const double g : {1.0, 1e4, 1e7}) {
      const Wave wave = RandomWave(&random, n);
      Reshaper reshaper(n);
      reshaper.SetWave(wave);
      Wave best;
      ASSERT_TRUE(reshaper.Reshape(g, &best));
      const long double least = CostOf(best, wave, g);
      for (int round = 0; round < 20; ++round) {
        const Wave change = Admissible(&random, n);
        for (const double step : {1e-3, -1e-3}) {
          Wave other(best);
          for (std::size_t i = 0; i < n; ++i) other[i] += step * change[i];
          EXPECT_GT(CostOf(other, wave, g), least * (1 - 1e-12L)) << n << " " << g;
        }
      }
    }
  }
}

TEST(Reshape, ALargerGainLowersTheDisplacement) {
  test::RandomValues random(38);
  for (int round = 0; round < 40; ++round) {
    const std::size_t n = 50 + random.Below(400);
    Reshaper reshaper(n);
    reshaper.SetWave(RandomWave(&random, n));
    double before = HUGE_VAL;
    for (double g = 0.1; g < 2e8; g *= 10) {
      Wave out;
      ASSERT_TRUE(reshaper.Reshape(g, &out));
      const Wave d = Integrated(Integrated(out));
      const double mean = std::accumulate(d.begin(), d.end(), 0.0) / static_cast<double>(n);
      double energy = 0;
      for (const double v : d) energy += (v - mean) * (v - mean);
      EXPECT_LE(energy, before * (1 + 1e-9)) << g;
      before = energy;
    }
  }
}

TEST(Reshape, LeavesAWaveThatMeetsItsConditionsAloneAtNoGain) {
  test::RandomValues random(39);
  const Wave wave = Admissible(&random, 100);
  Reshaper reshaper(100);
  reshaper.SetWave(wave);
  Wave out;
  ASSERT_TRUE(reshaper.Reshape(0.0, &out));
  for (std::size_t i = 0; i < 100; ++i) EXPECT_NEAR(out[i], wave[i], 1e-10);
}

}  // namespace
}  // namespace qarv::wave_def::compensation
