// The band that the user defines, over every pulse shape.
#include "band/user_band.h"

#include <gtest/gtest.h>

#include "classical_case.h"
#include "random_classical.h"

namespace qarv::wave_def {
namespace {

using test::ClassicalSet;
using test::ExpectLevel;
using test::ExpectLine;
using test::Generate;
using test::kCentre;
using test::kEnd;
using test::kStart;
using test::Wave;
using Set = CWaveDefClassical;
using namespace wave_def_sub;

Set WithLevels(WAVE_KIND shape, const CWaveDefTolUserDef& tol) {
  Set set = ClassicalSet(shape, Set::TOL_USER_DEF);
  set.SetMainRise(0.2);
  set.SetMainFall(0.4);
  EXPECT_TRUE(set.SetDefTolUserDef(tol));
  return set;
}

TEST(UserBand, OfZerosIsThePulse) {
  for (const auto shape :
       {HALF_SINE, TERMINAL_PEAK_SAWTOOTH, TRAPEZOID, TRIANGLE, USER_TRAPEZOID, HAVERSINE}) {
    const auto g = Generate(WithLevels(shape, {}));
    ASSERT_TRUE(g);
    for (std::size_t i = 0; i < 128; ++i) {
      EXPECT_NEAR(g->upper[i], g->wave[i], 1e-14);
      EXPECT_NEAR(g->lower[i], g->wave[i], 1e-14);
    }
  }
}

TEST(UserBand, BlendsFromTheLevelsAtTheEndsToThatAtThePeak) {
  CWaveDefTolUserDef tol;
  tol.SetTolLeftU(0.1);
  tol.SetTolMainU(0.2);
  tol.SetTolRightU(0.3);
  const auto g = Generate(WithLevels(HALF_SINE, tol));
  ASSERT_TRUE(g);
  ExpectLevel(g->upper, 0, kStart - 1, 1);
  for (std::size_t i = kStart; i <= kEnd; ++i) {
    const double x = g->wave[i] / 10;
    const double edge = i < kCentre ? 0.1 : 0.3;
    // At the end the level behind the pulse is merged in.
    if (i != kEnd) {
      EXPECT_NEAR(g->upper[i], g->wave[i] + (edge * (1 - x) + 0.2 * x) * 10, 1e-12) << i;
    }
  }
  ExpectLevel(g->upper, kEnd, 127, 3);
}

TEST(UserBand, HasTransitionsIntoAndOutOfThePulse) {
  CWaveDefTolUserDef tol;
  tol.SetTolLeftU(0.1);
  tol.SetTolLeftL(0.2);
  tol.SetTolFrontA(0.25);
  tol.SetTolMainU(0.3);
  tol.SetTolMainL(0.4);
  tol.SetTolRearA(0.5);
  tol.SetTolRightU(0.15);
  tol.SetTolRightL(0.05);
  const auto g = Generate(WithLevels(TRIANGLE, tol));
  ASSERT_TRUE(g);
  ExpectLevel(g->upper, 0, kStart - 10, 1);
  ExpectLine(g->upper, kStart - 10, 1, kStart, 3);
  ExpectLine(g->upper, kEnd, 3, kEnd + 20, 1.5);
  ExpectLevel(g->upper, kEnd + 20, 127, 1.5);
  ExpectLevel(g->lower, 0, kStart - 10, -2);
  ExpectLine(g->lower, kStart - 10, -2, kStart, -4);
  ExpectLine(g->lower, kEnd, -4, kEnd + 20, -0.5);
  ExpectLevel(g->lower, kEnd + 20, 127, -0.5);
}

TEST(UserBand, AFallingFrontIsLoweredInTheUpperBandToo) {
  CWaveDefTolUserDef tol;
  tol.SetTolLeftU(0.5);
  tol.SetTolFrontA(0.25);
  tol.SetTolMainU(0.1);
  const auto g = Generate(WithLevels(TRIANGLE, tol));
  ASSERT_TRUE(g);
  ExpectLevel(g->upper, 0, kStart - 10, 5);
  ExpectLine(g->upper, kStart - 10, 5, kStart, 1);
}

TEST(UserBand, LevelsAtThePulsesEndsReplaceTheMainOne) {
  CWaveDefTolUserDef tol;
  tol.SetTolFrontA(0.25);
  tol.SetTolRearA(0.25);
  tol.SetTolMainU(0.1);
  tol.SetTolMainL(0.1);
  tol.SetTolPulsParam(true, 0.3, 0.35, 0.4, 0.45);
  const auto g = Generate(WithLevels(HALF_SINE, tol));
  ASSERT_TRUE(g);
  ExpectLine(g->upper, kStart - 10, 0, kStart, 3);
  ExpectLine(g->lower, kStart - 10, 0, kStart, -3.5);
  ExpectLine(g->upper, kEnd, 4, kEnd + 10, 0);
  ExpectLine(g->lower, kEnd, -4.5, kEnd + 10, 0);
  EXPECT_NEAR(g->upper[kCentre], 11, 1e-12);
}

// Deliberate: the upper value is the switch for both bands.
TEST(UserBand, ALowerLevelAtThePulsesEndNeedsTheUpperOne) {
  CWaveDefTolUserDef tol;
  tol.SetTolFrontA(0.25);
  tol.SetTolRearA(0.25);
  tol.SetTolMainL(0.1);
  tol.SetTolPulsParam(true, 0.0, 0.3, 0.0, 0.3);
  const auto g = Generate(WithLevels(HALF_SINE, tol));
  ASSERT_TRUE(g);
  ExpectLine(g->lower, kStart - 10, 0, kStart, -1);
  ExpectLine(g->lower, kEnd, -1, kEnd + 10, 0);
  tol.SetTolPulsParam(true, 0.2, 0.0, 0.2,
                      0.0);  // and the upper one switches the lower level of 0 on
  const auto h = Generate(WithLevels(HALF_SINE, tol));
  ASSERT_TRUE(h);
  ExpectLevel(h->lower, 0, kStart, 0);
}

TEST(UserBand, TheFirstOfEqualPeaksParesTheBlend) {
  CWaveDefTolUserDef tol;
  tol.SetTolLeftU(0.5);
  tol.SetTolMainU(0.1);
  tol.SetTolRightU(0.3);
  const auto g = Generate(WithLevels(TRAPEZOID, tol));
  ASSERT_TRUE(g);
  // The flat top lies behind the peak: it blends towards the right level, which at the peak value
  // has no share.
  ExpectLevel(g->upper, kStart + 4, kEnd - 4, 11);
  for (std::size_t k = 1; k < 4; ++k) {
    const double x = 1 - static_cast<double>(k) / 4;
    EXPECT_NEAR(g->upper[kEnd - 4 + k], 10 * x + (0.3 * (1 - x) + 0.1 * x) * 10, 1e-12);
    EXPECT_NEAR(g->upper[kStart + 4 - k], 10 * x + (0.5 * (1 - x) + 0.1 * x) * 10, 1e-12);
  }
}

TEST(UserBand, TransitionsThatDoNotFitAreRefused) {
  CWaveDefTolUserDef tol;
  tol.SetTolFrontA(1.1);  // 44 samples: up to the first one
  EXPECT_TRUE(Generate(WithLevels(HALF_SINE, tol)));
  tol.SetTolFrontA(1.125);
  EXPECT_FALSE(Generate(WithLevels(HALF_SINE, tol)));
  tol = {};
  tol.SetTolRearA(1.075);  // 43 samples: up to the last one
  EXPECT_TRUE(Generate(WithLevels(HALF_SINE, tol)));
  tol.SetTolRearA(1.1);
  EXPECT_FALSE(Generate(WithLevels(HALF_SINE, tol)));
}

TEST(UserBand, IsForItsOwnKindOnly) {
  const Wave wave(128, 1.0);
  for (int kind = 0; kind <= 12; ++kind) {
    Wave out(128);
    const Set set = ClassicalSet(HALF_SINE, static_cast<Set::TOL_KIND>(kind));
    EXPECT_EQ(BuildUserTolBand({set, true, kCentre, 0.001, wave, out}), kind == 10) << kind;
  }
  Wave out(128);
  const Set set = ClassicalSet(HALF_SINE, Set::TOL_USER_DEF);
  EXPECT_FALSE(BuildUserTolBand({set, true, kCentre, 0.0, wave, out}));
  EXPECT_FALSE(BuildUserTolBand({set, true, kCentre, 0.001, {}, out}));
  EXPECT_FALSE(BuildUserTolBand({set, true, kCentre, 0.001, wave, {}}));
}

TEST(UserBand, EnclosesThePulseWhereTheLevelsAreNotNegative) {
  test::RandomValues random(45);
  int built = 0;
  for (int round = 0; round < 5000; ++round) {
    CWaveDefTolUserDef tol;
    const auto level = [&] { return random.Between(0, 0.5); };
    tol.SetTolLeftU(level());
    tol.SetTolLeftL(level());
    tol.SetTolMainU(level());
    tol.SetTolMainL(level());
    tol.SetTolRightU(level());
    tol.SetTolRightL(level());
    tol.SetTolFrontA(random.OneIn(2) ? 0.0 : level());
    tol.SetTolRearA(random.OneIn(2) ? 0.0 : level());
    const auto g = Generate(WithLevels(random.Pick({HALF_SINE, TERMINAL_PEAK_SAWTOOTH, TRAPEZOID,
                                                    TRIANGLE, USER_TRAPEZOID, HAVERSINE}),
                                       tol));
    if (!g) continue;
    ++built;
    for (std::size_t i = 0; i < 128; ++i) {
      ASSERT_LE(g->wave[i] - g->upper[i], 1e-12) << i;
      ASSERT_LE(g->lower[i] - g->wave[i], 1e-12) << i;
    }
  }
  EXPECT_GT(built, 4000);
}

}  // namespace
}  // namespace qarv::wave_def
