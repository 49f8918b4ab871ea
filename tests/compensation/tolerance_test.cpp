// The tests that a compensated waveform has to pass.
#include "compensation/tolerance.h"

#include <gtest/gtest.h>

#include <cmath>

#include "random_values.h"
#include "reference_tolerance.h"

namespace qarv::wave_def::compensation {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(InTolerance, AgreesWithTheSecondComputation) {
  test::RandomValues random(34);
  int passed = 0;
  for (int round = 0; round < 20000; ++round) {
    const auto N = static_cast<int64>(5 + random.Below(30));
    const auto iS = static_cast<int64>(random.Below(static_cast<unsigned int>(N)));
    const auto iE = iS + static_cast<int64>(random.Below(static_cast<unsigned int>(N - iS)));
    Wave x;
    Wave upper;
    Wave lower;
    for (int64 i = 0; i < N; ++i) {
      const double peak = i >= iS && i <= iE ? 10 : 0;
      x.push_back(random.OneIn(300) ? random.Pick({kNaN, kNoLimit})
                                    : peak + random.Between(-0.5, 0.5));
      upper.push_back(random.OneIn(20) ? kNoLimit : peak + random.Between(0.4, 2));
      lower.push_back(random.OneIn(20) ? kNoLimit : peak - random.Between(0.4, 2));
    }
    const double pre = random.Pick({0.0, 1.0, -1.0, 0.5, 2.0});
    const double post = random.Pick({0.0, 1.0, -1.0, 0.5, 2.0});
    const bool banded = !random.OneIn(5);
    const bool expected = test::ReferenceInTolerance(
        x, banded ? &upper : nullptr, banded ? &lower : nullptr, iS, iE, pre, post, 0.05);
    EXPECT_EQ(InTolerance(x.data(), banded ? upper.data() : nullptr,
                          banded ? lower.data() : nullptr, N, iS, iE, pre, post, 0.05),
              expected)
        << round;
    passed += expected;
  }
  EXPECT_GT(passed, 1000);
  EXPECT_LT(passed, 19000);
}

/// A pulse of 10 at the samples 8 to 11 of 20, in bands of +-1.
struct Case {
  Wave x = Wave(20), upper = Wave(20, 1.0), lower = Wave(20, -1.0);
  Case() {
    for (std::size_t i = 8; i <= 11; ++i) {
      x[i] = 10;
      upper[i] = 11;
      lower[i] = 9;
    }
  }
  bool Passes(double pre, double post) const {
    return InTolerance(x.data(), upper.data(), lower.data(), 20, 8, 11, pre, post, kLeastLimit);
  }
};

TEST(InTolerance, WithAScaleOfZeroLeavesThreeSamplesUntested) {
  for (std::size_t i = 0; i < 20; ++i) {
    if (i >= 8 && i <= 11) continue;
    Case c;
    c.x[i] = 5;
    EXPECT_FALSE(c.Passes(1, 1)) << i;
    EXPECT_EQ(c.Passes(0, 0), (i >= 5 && i <= 7) || (i >= 12 && i <= 14)) << i;
  }
}

TEST(InTolerance, IsNeverNarrowerThanTheLeastLimit) {
  Case c;
  for (double& v : c.upper) v = std::max(0.0, v - 1);
  c.upper[9] = 11;
  for (std::size_t i = 8; i <= 11; ++i) c.upper[i] = 11;
  c.x[2] = 0.1;  // 1 % of the peak
  EXPECT_TRUE(c.Passes(1, 1));
  c.x[2] = 0.1001;
  EXPECT_FALSE(c.Passes(1, 1));
}

TEST(InTolerance, ALimitOfTheLowestDoubleIsNone) {
  Case c;
  c.x[2] = 1e300;
  EXPECT_FALSE(c.Passes(1, 1));
  c.upper[2] = kNoLimit;
  EXPECT_TRUE(c.Passes(1, 1));
  c.x[9] = 2;
  EXPECT_FALSE(c.Passes(1, 1));
  c.lower[9] = kNoLimit;
  EXPECT_TRUE(c.Passes(1, 1));
}

TEST(InTolerance, ANaNFails) {
  for (const std::size_t i : std::vector<std::size_t>{0, 9, 19}) {
    Case c;
    c.x[i] = kNaN;
    EXPECT_FALSE(c.Passes(1, 1)) << i;
  }
}

TEST(InTolerance, NamesTheFirstSampleThatFails) {
  Case c;
  c.x[15] = 5;
  c.x[3] = 5;
  int64 worst = -1;
  EXPECT_FALSE(InTolerance(c.x.data(), c.upper.data(), c.lower.data(), 20, 8, 11, 1, 1, kLeastLimit,
                           &worst));
  EXPECT_EQ(worst, 3);
}

TEST(LimitsInForce, AreThoseOfTheTest) {
  test::RandomValues random(35);
  for (int round = 0; round < 2000; ++round) {
    Case c;
    Pulse pulse{{8, 11, 8, 11}, 10, c.x, c.upper, c.lower};
    for (std::size_t i = 0; i < 20; ++i) {
      if (random.OneIn(6)) pulse.upper[i] = kNoLimit;
      if (random.OneIn(6)) pulse.lower[i] = kNoLimit;
    }
    const double pre = random.Pick({0.0, 1.0, 0.02, -2.0});
    const double post = random.Pick({0.0, 1.0, 0.02, -2.0});
    const Limits limits = LimitsInForce(pulse, pre, post, 3.0);
    const auto i = static_cast<std::size_t>(random.Below(20));
    if (i >= 8 && i <= 11) continue;
    for (const double sign : {-1.0, 1.0}) {
      for (const double factor : {1 - 1e-9, 1 + 1e-9}) {
        Wave x(pulse.wave);
        const double limit = sign > 0 ? limits.hi[i] : limits.lo[i];
        if (std::isinf(limit)) continue;
        x[i] = limit * factor;
        const bool untested = std::fabs(limit) == 30;  // three times the peak
        EXPECT_EQ(InTolerance(x.data(), pulse.upper.data(), pulse.lower.data(), 20, 8, 11, pre,
                              post, kLeastLimit),
                  untested || factor < 1)
            << i << " " << limit;
      }
    }
  }
}

TEST(RescaleToPeak, GivesTheMainPulseItsPeak) {
  Wave x{9, 1, -2, 1.5, 9};
  RescaleToPeak(x.data(), 5, -6, 1, 3);
  EXPECT_EQ(x, (Wave{27, 3, -6, 4.5, 27}));
  EXPECT_EQ(ExtremeOf(x.data(), 1, 3), -6);
  const Wave tie{-2, 2};
  EXPECT_EQ(ExtremeOf(tie.data(), 0, 1), 2) << "of two equal magnitudes the maximum";
  EXPECT_EQ(ExtremeOf(tie.data(), 1, 0), 0);
  EXPECT_EQ(ExtremeOf(tie.data(), -1, 0), 0);
}

TEST(DisplacementSideTest, AsksForThePositiveSide) {
  Wave up(50);
  up[10] = 1;
  up[20] = -2;
  up[30] = 1;  // up and back
  EXPECT_TRUE(DisplacementSideTest(up.data(), 50, 1000, 5));
  Wave down(up);
  for (double& v : down) v = -v;
  EXPECT_FALSE(DisplacementSideTest(down.data(), 50, 1000, 5));
  EXPECT_FALSE(DisplacementSideTest(Wave(50).data(), 50, 1000, 5)) << "equal magnitudes fail";
  EXPECT_FALSE(DisplacementSideTest(nullptr, 50, 1000, 5));
  EXPECT_FALSE(DisplacementSideTest(up.data(), 50, -1, 5));
}

// Deliberate: whatever its displacement.
TEST(DisplacementSideTest, ANegativePulseAlwaysFails) {
  Wave up(50);
  up[10] = 1;
  up[20] = -2;
  up[30] = 1;
  EXPECT_FALSE(DisplacementSideTest(up.data(), 50, 1000, -5));
  for (double& v : up) v = -v;
  EXPECT_FALSE(DisplacementSideTest(up.data(), 50, 1000, -5));
}

}  // namespace
}  // namespace qarv::wave_def::compensation
