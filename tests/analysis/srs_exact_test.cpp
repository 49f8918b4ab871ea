// Shock response spectra against the exact response to straight lines, in 400 bits.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "analysis/exact_response.h"
#include "analysis/srs.h"
#include "common/numeric/constants.h"
#include "random_values.h"
#include "srs/spectrum.h"

namespace qarv::analysis {
namespace {

using common::kPi;
using enum SrsResponse;
constexpr SrsResponse kResponses[] = {AbsoluteAcceleration, RelativeDisplacement, PseudoVelocity,
                                      RelativeVelocity, StaticEquivalent};

struct Case {
  double f, fsamp, zeta;
  SrsResponse response;
};

SrsPoint PointOf(const std::vector<double>& shock, const Case& c) {
  const double frequencies[] = {c.f};
  const auto points = CalcSrs(shock, c.fsamp, frequencies, c.zeta, c.response);
  EXPECT_EQ(points.size(), 1U);
  return points.at(0);
}

/// Each part's extremes, to 1e-9 of their own; of the largest, what is much smaller than that one.
void ExpectExact(const std::vector<double>& shock, const Case& c) {
  const SrsPoint exact = test::ExactResponse(c.f, c.fsamp, c.zeta, c.response).Of(shock);
  const SrsPoint point = PointOf(shock, c);
  const auto near = [](const SrsExtremes& value, const SrsExtremes& expected) {
    const double small = 1e-6 * expected.Maximax();
    EXPECT_NEAR(value.positive, expected.positive, 1e-11 * std::max(expected.positive, small));
    EXPECT_NEAR(value.negative, expected.negative, 1e-11 * std::max(-expected.negative, small));
  };
  SCOPED_TRACE(std::to_string(c.f) + " Hz at " + std::to_string(c.fsamp) + " Hz, damping " +
               std::to_string(c.zeta) + ", response " +
               std::to_string(static_cast<int>(c.response)) + ", " + std::to_string(shock.size()) +
               " samples");
  near(point.primary, exact.primary);
  near(point.residual, exact.residual);
}

std::vector<double> Noise(test::RandomValues* random, std::size_t n) {
  std::vector<double> x(n);
  for (double& v : x) v = random->Between(-1, 1);
  return x;
}

std::vector<double> HalfSine(std::size_t n) {
  std::vector<double> x(n);
  for (std::size_t k = 0; k < n; ++k) {
    x[k] = 50 * std::sin(kPi * static_cast<double>(k + 1) / static_cast<double>(n + 1));
  }
  return x;
}

/// Of which neither a velocity nor a displacement is left, but for the rounding of its samples.
std::vector<double> Compensated(std::size_t n) {
  std::vector<double> x(n);
  for (std::size_t k = 0; k < n; ++k) {
    const double phase = kPi * static_cast<double>(k + 1) / static_cast<double>(n + 1);
    x[k] = std::sin(phase) * (std::cos(3 * phase) + std::cos(phase) * std::sin(5 * phase));
  }
  return x;
}

TEST(SrsExact, ExtremesBetweenSamplesUpToAQuarterOfTheSamplingFrequency) {
  test::RandomValues random(71);
  for (int round = 0; round < 300; ++round) {
    const std::vector<double> shocks[] = {Noise(&random, 1 + random.Below(60)),
                                          HalfSine(1 + random.Below(60))};
    ExpectExact(shocks[random.Below(2)],
                {1000 * random.Between(0.005, 0.25), 1000,
                 random.Pick({0.0, 1e-9, 0.01, 0.05, 0.3, 0.5, 0.9, 0.99999}),
                 kResponses[random.Below(std::size(kResponses))]});
  }
}

TEST(SrsExact, NearHalfTheSamplingFrequencyToo) {
  test::RandomValues random(72);
  for (int round = 0; round < 40; ++round) {
    ExpectExact(Noise(&random, 30), {random.Between(250, 490), 1000, random.Pick({0.0, 0.05, 0.9}),
                                     random.Pick({AbsoluteAcceleration, RelativeVelocity})});
  }
}

TEST(SrsExact, FromAMillionthOfAHertz) {
  test::RandomValues random(73);
  for (const auto& shock : {HalfSine(40), Compensated(40), Noise(&random, 40)}) {
    for (const SrsResponse response : kResponses) {
      for (const double zeta : {0.0, 1e-9, 0.05, 0.5, 0.99999}) {
        for (const double f : {1e-6, 1e-3, 0.01, 1.0, 100.0, 207.0}) {
          ExpectExact(shock, {f, 51200, zeta, response});
        }
      }
    }
  }
}

TEST(SrsExact, TheShockGoesStraightTo0BehindItsLastSample) {
  // A terminal sawtooth of 50 g.
  std::vector<double> sawtooth(15);
  for (std::size_t k = 0; k < 15; ++k) sawtooth[k] = 50.0 * static_cast<double>(k) / 14.0;
  const Case c{256, 2560, 0.05, AbsoluteAcceleration};
  EXPECT_NEAR(PointOf(sawtooth, c).primary.positive, 49.87, 0.005);
  ExpectExact(sawtooth, c);
  ExpectExact({1.0, -1.0}, c);
  ExpectExact({1.0}, c);
  // The line belongs to the shock: with the sample that it leads to the spectrum is the same.
  std::vector<double> withZero(sawtooth);
  withZero.push_back(0.0);
  EXPECT_NEAR(PointOf(withZero, c).primary.positive, PointOf(sawtooth, c).primary.positive, 1e-12);
}

TEST(SrsExact, AHigherTopAwayFromTheHighestSample) {
  // The parabola through the highest sample and its neighbours, 12.5 samples to a cycle, is not the
  // highest top of noise.
  std::size_t elsewhere = 0;
  test::RandomValues random(74);
  for (int round = 0; round < 60; ++round) {
    const auto shock = Noise(&random, 100);
    const Case c{80, 1000, 0.01, AbsoluteAcceleration};
    ExpectExact(shock, c);
    // Its samples are those of the filter.
    const SrsFilter filter = MakeSrsFilter(c.f, c.zeta, c.fsamp, c.response);
    std::vector<double> y;
    for (std::size_t k = 0; k < shock.size(); ++k) {
      const auto at = [&](const std::vector<double>& v, std::size_t back) {
        return k >= back ? v[k - back] : 0.0;
      };
      y.push_back(filter.b0 * shock[k] + filter.b1 * at(shock, 1) + filter.b2 * at(shock, 2) -
                  filter.a1 * at(y, 1) - filter.a2 * at(y, 2));
    }
    const std::size_t peak =
        static_cast<std::size_t>(std::max_element(y.begin(), y.end()) - y.begin());
    if (peak == 0 || peak + 1 == y.size()) continue;
    const double rise = y[peak + 1] - y[peak - 1];
    const double parabola = y[peak] + rise * rise / (8 * (2 * y[peak] - y[peak - 1] - y[peak + 1]));
    if (PointOf(shock, c).primary.positive > 1.003 * parabola) ++elsewhere;
  }
  EXPECT_GE(elsewhere, 3U) << "the shocks do not show what they are for";
}

TEST(SrsExact, OfAnInputThatKeepsTheResponseAtItsHighest) {
  // More tops of nearly one height than are looked at together.
  std::vector<double> shock(3000);
  for (std::size_t k = 0; k < shock.size(); ++k) shock[k] = std::sin(0.61 * static_cast<double>(k));
  ExpectExact(shock, {0.08, 1, 0.02, AbsoluteAcceleration});
}

/// A sine of @p cycles per sample, whose amplitude is a function of the sample.
template <class F>
std::vector<double> SineUnder(std::size_t n, double cycles, F amplitude) {
  std::vector<double> x(n);
  for (std::size_t k = 0; k < n; ++k) {
    x[k] = amplitude(static_cast<double>(k)) * std::sin(2 * kPi * cycles * static_cast<double>(k));
  }
  return x;
}

TEST(SrsExact, OfInputsWhoseEveryTopMayBeTheHighest) {
  test::RandomValues random(77);
  std::vector<double> noise = Noise(&random, 500);
  for (std::size_t k = 0; k < noise.size(); ++k) noise[k] *= std::pow(static_cast<double>(k), 3.0);
  const std::vector<double> shocks[] = {
      noise, SineUnder(500, 0.1, [](double k) { return k; }),
      SineUnder(500, 0.04, [](double k) { return std::min(1.0, k / 200); }),
      SineUnder(500, 0.237, [](double k) { return 1 + k / 1e5; })};
  for (const auto& shock : shocks) {
    for (const double f : {20.0, 700.0, 4950.0}) {
      for (const SrsResponse response :
           {AbsoluteAcceleration, RelativeDisplacement, RelativeVelocity}) {
        ExpectExact(shock, {f, 50000, 0.05, response});
      }
    }
  }
}

TEST(SrsExact, OfALongBurstWhoseBlocksAreWalkedThroughOnce) {
  const auto burst = SineUnder(6000, 0.04, [](double k) { return std::min(1.0, k / 100); });
  ExpectExact(burst, {700.0, 50000, 0.05, AbsoluteAcceleration});
}

/// An input, and what a search of it may take beside the walk through all samples: for each
/// interval and line the shares that are looked at closely, bounded and climbed.
struct Searched {
  const char* name;
  std::vector<double> shock;
  double looked, bounded, climbed;
};

TEST(SrsExact, ManyNearlyEqualTopsAreSearchedWithLittleWorkUpToAQuarterOfTheSamplingFrequency) {
  constexpr std::size_t n = 32768;
  const auto frequencies = SrsFrequencies(10, 12500, 12);
  test::RandomValues random(76);
  const std::vector<double> noise = Noise(&random, n);
  std::vector<double> growing(noise);
  for (std::size_t k = 0; k < n; ++k) growing[k] *= static_cast<double>(k) / n;
  std::vector<double> sweep(n);
  for (std::size_t k = 0; k < n; ++k) {
    const double t = static_cast<double>(k) / n;
    sweep[k] = (1 + t) * std::sin(2 * kPi * 0.125 * t * static_cast<double>(k));
  }
  const auto constant = [](double) { return 1.0; };
  const auto linear = [](double k) { return k; };
  const auto ramped = [](double k) { return std::min(1.0, k / 2500); };
  const Searched inputs[] = {
      {"half-sine", HalfSine(1600), 0.7, 0.01, 0.003},
      {"noise", noise, 0.3, 0.003, 0.001},
      {"growing noise", growing, 0.3, 0.003, 0.001},
      {"sine of 4 samples a cycle", SineUnder(n, 0.25, constant), 0.3, 0.02, 0.02},
      {"sine of 5.3", SineUnder(n, 1 / 5.3, constant), 0.3, 0.02, 0.004},
      {"sine of 10", SineUnder(n, 0.1, constant), 0.4, 0.01, 0.001},
      {"sine of 100", SineUnder(n, 0.01, constant), 0.7, 0.003, 0.001},
      {"sine of 1000", SineUnder(n, 0.001, constant), 0.4, 0.003, 0.001},
      {"growing sine of 4", SineUnder(n, 0.25, linear), 1.1, 0.45, 0.1},
      {"growing sine of 10", SineUnder(n, 0.1, linear), 0.4, 0.03, 0.001},
      {"growing sine of 100", SineUnder(n, 0.01, linear), 0.4, 0.003, 0.001},
      {"slowly growing sine", SineUnder(n, 0.1, [](double k) { return 1 + k / 1e6; }), 0.4, 0.01,
       0.003},
      {"burst of 5", SineUnder(n, 0.2, ramped), 1.1, 0.41, 0.08},
      {"burst of 10", SineUnder(n, 0.1, ramped), 1.1, 0.21, 0.03},
      {"burst of 25", SineUnder(n, 0.04, ramped), 1.1, 0.09, 0.01},
      {"burst of 100", SineUnder(n, 0.01, ramped), 0.7, 0.02, 0.004},
      {"sweep", sweep, 0.4, 0.02, 0.004}};
  for (const Searched& input : inputs) {
    SCOPED_TRACE(input.name);
    SearchWork work;
    CalcSrsWith(common::BestInstructionSet(), input.shock, 50000, frequencies, 0.05,
                AbsoluteAcceleration, &work);
    const double all =
        static_cast<double>(input.shock.size()) * static_cast<double>(frequencies.size());
    EXPECT_GT(work.crests, 0U);
    EXPECT_LT(static_cast<double>(work.looked) * 16 / all, input.looked);
    EXPECT_LT(static_cast<double>(work.examined) / all, input.bounded);
    EXPECT_LT(static_cast<double>(work.crests) / all, input.climbed);
  }
}

TEST(SrsExact, OfHeavilyDampedOscillatorsToo) {
  test::RandomValues random(78);
  for (int round = 0; round < 60; ++round) {
    ExpectExact(Noise(&random, 40),
                {1000 * random.Between(0.05, 0.45), 1000, random.Pick({0.7, 0.95, 0.999}),
                 kResponses[random.Below(std::size(kResponses))]});
  }
}

TEST(SrsExact, ALineHasTheSameBitsInEveryCompany) {
  const auto frequencies = SrsFrequencies(20, 12500, 6);
  const auto shock = SineUnder(20000, 0.1, [](double k) { return std::min(1.0, k / 2500); });
  const auto together = CalcSrs(shock, 50000, frequencies, 0.05, AbsoluteAcceleration);
  for (std::size_t i = 0; i < frequencies.size(); i += 3) {
    const SrsPoint alone = PointOf(shock, {frequencies[i], 50000, 0.05, AbsoluteAcceleration});
    EXPECT_EQ(alone.primary.positive, together[i].primary.positive);
    EXPECT_EQ(alone.primary.negative, together[i].primary.negative);
  }
}

TEST(SrsExact, SilenceBeforeAShockAndBehindItChangesNothing) {
  const auto shock = HalfSine(50);
  std::vector<double> late(shock);
  late.insert(late.begin(), 1000, 0.0);
  std::vector<double> longer(shock);
  longer.resize(200000);
  for (const double f : {0.001, 10.0, 3000.0}) {
    const Case c{f, 20000, 0.05, AbsoluteAcceleration};
    const SrsPoint point = PointOf(shock, c);
    EXPECT_EQ(PointOf(late, c).primary.positive, point.primary.positive);
    EXPECT_EQ(PointOf(late, c).residual.negative, point.residual.negative);
    EXPECT_NEAR(PointOf(longer, c).Total().Maximax(), point.Total().Maximax(),
                1e-12 * point.Total().Maximax());
  }
  EXPECT_EQ(PointOf(longer, {3000, 20000, 0.05, AbsoluteAcceleration}).residual.Maximax(), 0.0);
}

TEST(SrsExact, EveryInstructionSetGivesTheSameBits) {
  test::RandomValues random(75);
  auto shock = Noise(&random, 3000);
  const auto frequencies = SrsFrequencies(1e-4, 400, 3);
  for (const SrsResponse response : kResponses) {
    for (const double zeta : {0.0, 0.05, 0.7}) {
      const auto with = [&](common::InstructionSet set) {
        return CalcSrsWith(set, shock, 1000, frequencies, zeta, response);
      };
      const auto expected = with(common::InstructionSet::Baseline);
      ASSERT_EQ(expected.size(), frequencies.size());
      for (const common::InstructionSet set : common::UsableInstructionSets()) {
        const auto points = with(set);
        for (std::size_t i = 0; i < points.size(); ++i) {
          EXPECT_EQ(points[i].primary.positive, expected[i].primary.positive);
          EXPECT_EQ(points[i].primary.negative, expected[i].primary.negative);
          EXPECT_EQ(points[i].residual.positive, expected[i].residual.positive);
          EXPECT_EQ(points[i].residual.negative, expected[i].residual.negative);
        }
      }
    }
  }
}

TEST(SrsExact, DoesNotDependOnTheInputsUnit) {
  const auto shock = HalfSine(50);
  for (const SrsResponse response : kResponses) {
    const Case c{300, 20000, 0.05, response};
    const SrsPoint point = PointOf(shock, c);
    for (const double unit : {0x1p-900, 0x1p900}) {
      std::vector<double> scaled(shock);
      for (double& v : scaled) v *= unit;
      EXPECT_EQ(PointOf(scaled, c).Total().positive, unit * point.Total().positive);
      EXPECT_EQ(PointOf(scaled, c).Total().negative, unit * point.Total().negative);
    }
  }
}

}  // namespace
}  // namespace qarv::analysis
