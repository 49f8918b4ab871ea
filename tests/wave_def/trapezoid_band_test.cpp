// Trapezoid bands: a second computation of them, and what a test engineer expects, over arbitrary
// definitions.
#include "band/trapezoid_band.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "classical_case.h"
#include "pulse/pulse_shape.h"
#include "random_classical.h"
#include "reference_classical.h"

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
using Std = CWaveDefTolSpecify;
using wave_def_sub::HALF_SINE;
using wave_def_sub::TRAPEZOID;

Std Standard(int bs = 1) {
  Std tol;
  tol.SetWaveKind(TRAPEZOID);
  tol.SetBaseStandard(static_cast<Std::BASE_STANDARD_TYPE>(bs));
  tol.SetTolBeginHi(0.1);
  tol.SetTolBeginLo(0.12);
  tol.SetPulseBeforeHi(0.2);
  tol.SetPulseBeforeLo(0.22);
  tol.SetPulseSlopeHi(0.15);
  tol.SetPulseSlopeLo(0.17);
  tol.SetMainPulseHi(1.3);
  tol.SetMainPulseLo(0.8);
  tol.SetTolEndHi(0.25);
  tol.SetTolEndLo(0.35);
  tol.SetPulseBeforeWidth(0.5);
  tol.SetPulseRiseWidth(0.25);
  tol.SetPulseFallWidth(0.5);
  return tol;
}

Set WithStandard(const Std& tol) {
  Set set = ClassicalSet(TRAPEZOID, Set::TOL_SPECIFY);
  EXPECT_TRUE(set.SetDefTolSpecify(tol));
  return set;
}

struct Row {
  int kind;
  double left, front, begin, slope, main, rightUpper, rightLower;
};
const Row kRows[] = {
    {2, 0.05, 0.3, 0.15, 0.15, 0.15, 0.2, -0.3}, {5, 0.2, 0.4, 0.2, 0.2, 0.2, 0.2, -0.2},
    {7, 0.2, 0.4, 0.2, 0.2, 0.2, 0.2, -0.2},     {8, 0.05, 0.4, 0.2, 0.2, 0.2, 0.2, -0.2},
    {9, 0.05, 0.4, 0.15, 0.15, 0.15, 0.2, -0.3},
};

// ---- The figure --------------------------------------------------------------------------------

TEST(TrapezoidBand, HasTheLevelsOfItsKind) {
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.kind);
    const auto g = Generate(ClassicalSet(TRAPEZOID, static_cast<Set::TOL_KIND>(row.kind)));
    ASSERT_TRUE(g);
    const auto front = static_cast<std::size_t>(row.front * 40 + 0.5);
    ExpectLevel(g->upper, 0, kStart - front, row.left * 10);
    ExpectLevel(g->lower, 0, kStart - front, -row.left * 10);
    const double step = (row.begin - row.left) * 10 / static_cast<double>(front);
    ExpectLine(g->upper, kStart - front, row.left * 10, kStart - 2, row.begin * 10 - 2 * step);
    ExpectLevel(g->upper, kStart + 3, kEnd - 3,
                (1 + row.main) * 10);  // the flat top and a sample to each side
    ExpectLevel(g->lower, kStart + 5, kEnd - 5, (1 - row.main) * 10);
    for (std::size_t k = 0; k <= 2;
         ++k) {  // parallel to the slope of 2.5 per sample, one sample away
      const double slope = 2.5 * static_cast<double>(k + 1);
      const double limit = std::min(slope + row.slope * 10, (1 + row.main) * 10);
      EXPECT_NEAR(g->upper[kStart + k], limit, 1e-12) << k;
      EXPECT_NEAR(g->upper[kEnd - k], limit, 1e-12) << k;
    }
    for (std::size_t k = 1; k <= 4; ++k) {
      const double slope = 2.5 * static_cast<double>(k - 1);
      EXPECT_NEAR(g->lower[kStart + k], slope - row.slope * 10, 1e-12) << k;
      EXPECT_NEAR(g->lower[kEnd - k], slope - row.slope * 10, 1e-12) << k;
    }
    ExpectLevel(g->upper, kEnd + 2, 127, row.rightUpper * 10);
    ExpectLevel(g->lower, kEnd, 127, row.rightLower * 10);
  }
}

TEST(TrapezoidBand, OfOtherKindsFollowsThePulse) {
  for (const int kind : {1, 3, 4, 6}) {
    const auto g = Generate(ClassicalSet(TRAPEZOID, static_cast<Set::TOL_KIND>(kind)));
    ASSERT_TRUE(g) << kind;
    ExpectLevel(g->upper, 0, kStart - 2, 0);
    ExpectLevel(g->upper, kStart + 4, kEnd - 4, 10);
    ExpectLevel(g->lower, kStart + 5, kEnd - 5, 10);
    ExpectLevel(g->upper, kEnd + 2, 127, 0);
  }
}

TEST(TrapezoidBand, OfAStandardHasItsLevelsAndSlopes) {
  for (int bs = 1; bs <= 5; ++bs) {
    const auto g = Generate(WithStandard(Standard(bs)));
    ASSERT_TRUE(g) << bs;
    ExpectLevel(g->upper, 0, kStart - 20, 1);
    ExpectLevel(g->lower, 0, kStart - 20, -1.2);
    ExpectLine(g->upper, kStart - 20, 1, kStart - 2, 1.9);
    ExpectLine(g->lower, kStart - 20, -1.2, kStart, -2.2);
    ExpectLine(g->upper, kStart, 1 + 1.5, kStart + 8, 9 + 1.5);  // the rise of 10 samples
    ExpectLine(g->lower, kStart + 1, 0 - 1.7, kStart + 10, 9 - 1.7);
    ExpectLevel(g->upper, kStart + 9, kEnd - 19, 13);
    ExpectLevel(g->lower, kStart + 11, kEnd - 21, 8);
    ExpectLine(g->upper, kEnd - 18, 9.5 + 1.5, kEnd - 1, 1.0 + 1.5);  // and the fall of 20
    ExpectLevel(g->upper, kEnd + 2, 127, 2.5);
    ExpectLevel(g->lower, kEnd, 127, -3.5);
  }
}

// The pulse's stretch used to replace the end of the front line below.
TEST(TrapezoidBand, KeepsTheEndOfTheFrontLineBelowASmallerSlopeMargin) {
  Set set = ClassicalSet(TRAPEZOID, Set::TOL_SPECIFY);
  set.SetNsamp(1024);
  set.SetFmax(25600 / 2.56);
  set.SetMainAmpl(100);
  set.SetMainWidth(0.01);
  Std tol;
  tol.SetWaveKind(TRAPEZOID);
  tol.SetBaseStandard(Std::BASE_STD_1);
  for (const auto change : {&Std::SetTolBeginHi, &Std::SetTolBeginLo, &Std::SetPulseBeforeHi,
                            &Std::SetPulseBeforeLo, &Std::SetTolEndHi, &Std::SetTolEndLo}) {
    (tol.*change)(0.2);
  }
  tol.SetPulseSlopeHi(0.15);
  tol.SetPulseSlopeLo(0.05);
  tol.SetMainPulseHi(1.2);
  tol.SetMainPulseLo(0.8);
  tol.SetPulseRiseWidth(0.1);
  tol.SetPulseFallWidth(0.1);
  ASSERT_TRUE(set.SetDefTolSpecify(tol));
  const auto g = Generate(set);
  ASSERT_TRUE(g);
  const std::size_t start = 512 - 128;
  ExpectLevel(g->lower, start - 2, start, -20);
  EXPECT_NEAR(g->lower[start + 1], -5, 1e-12) << "the slope's margin under the neighbour at 0";
  ExpectLevel(g->upper, 512 + 130, 1023, 20);
  ExpectLevel(g->lower, 512 + 128, 1023, -20);
}

TEST(TrapezoidBand, OfTheUserIsTheUsers) {
  Set set = ClassicalSet(TRAPEZOID, Set::TOL_USER_DEF);
  CWaveDefTolUserDef tol;
  tol.SetTolMainU(0.5);
  ASSERT_TRUE(set.SetDefTolUserDef(tol));
  const auto g = Generate(set);
  ASSERT_TRUE(g);
  ExpectLevel(g->upper, kStart + 4, kEnd - 4, 15);
}

// ---- Against the second computation ------------------------------------------------------------

/// A trapezoid of any kind; now and then with fractions that put its corners out of order.
Set RandomTrapezoid(test::RandomValues* random) {
  Set set = test::RandomClassical(random);
  set.SetWaveKind(TRAPEZOID);
  Std tol = test::RandomStandard(random, TRAPEZOID);
  if (random->OneIn(3)) tol.SetPulseRiseWidth(random->Between(-0.4, 1.4));
  if (random->OneIn(3)) tol.SetPulseFallWidth(random->Between(-0.4, 1.4));
  const Set::TOL_KIND kind = random->OneIn(2) ? Set::TOL_SPECIFY : set.GetTolKind();
  set.SetTolKind(Set::TOL_SPECIFY);
  EXPECT_TRUE(set.SetDefTolSpecify(tol));
  set.SetTolKind(kind);
  return set;
}

TEST(TrapezoidBand, MatchesTheSecondComputationForArbitraryDefinitions) {
  test::RandomValues random(45);
  std::array<int, 13> built{};
  int outOfOrder = 0;
  for (int round = 0; round < 60000; ++round) {
    const Set set = RandomTrapezoid(&random);
    SCOPED_TRACE("seed 45, round " + std::to_string(round));
    const auto expected = test::reference::Define(set);
    const auto g = Generate(set);
    ASSERT_EQ(g.has_value(), expected.has_value());
    if (!g) continue;
    ++built[static_cast<std::size_t>(set.GetTolKind())];
    const Std& tol = set.GetDefTolSpecify();
    outOfOrder += set.GetTolKind() == Set::TOL_SPECIFY &&
                  (tol.GetPulseRiseWidth() < 0 || tol.GetPulseFallWidth() < 0 ||
                   tol.GetPulseRiseWidth() > 1 || tol.GetPulseFallWidth() > 1);
    test::ExpectSameWave(g->wave, expected->wave);
    test::ExpectSameWave(g->upper, expected->upper);
    test::ExpectSameWave(g->lower, expected->lower);
    if (::testing::Test::HasFatalFailure()) return;
  }
  for (std::size_t kind = 1; kind <= 11; ++kind) EXPECT_GT(built[kind], 100) << kind;
  EXPECT_GT(outOfOrder, 500);
}

// ---- Properties --------------------------------------------------------------------------------

Set RandomFixed(test::RandomValues* random) {
  Set set =
      ClassicalSet(TRAPEZOID, random->Pick({Set::TOL_FIXED_2, Set::TOL_FIXED_5, Set::TOL_FIXED_7,
                                            Set::TOL_FIXED_8, Set::TOL_FIXED_9}));
  set.SetMainAmpl(random->Between(0.001, 100));
  set.SetNsamp(8 + random->Below(300));
  set.SetMainWidth(random->Between(0.002, 0.3));
  set.SetMainShift(random->Between(-0.3, 0.3));
  return set;
}

Set RandomStandard(test::RandomValues* random) {
  Set set = RandomFixed(random);
  set.SetTolKind(Set::TOL_SPECIFY);
  Std tol;
  tol.SetWaveKind(TRAPEZOID);
  tol.SetBaseStandard(random->Pick(
      {Std::BASE_STD_1, Std::BASE_STD_2, Std::BASE_STD_3, Std::BASE_STD_4, Std::BASE_STD_5}));
  for (const auto set1 :
       {&Std::SetTolBeginHi, &Std::SetTolBeginLo, &Std::SetPulseBeforeHi, &Std::SetPulseBeforeLo,
        &Std::SetPulseSlopeHi, &Std::SetPulseSlopeLo, &Std::SetTolEndHi, &Std::SetTolEndLo}) {
    (tol.*set1)(random->OneIn(4) ? 0.0 : random->Between(0, 0.5));
  }
  tol.SetMainPulseHi(random->Between(1.001, 1.5));
  tol.SetMainPulseLo(random->Between(0.3, 0.999));
  tol.SetPulseBeforeWidth(random->OneIn(3) ? 0.0 : random->Between(0, 0.8));
  tol.SetPulseRiseWidth(random->Between(0, 0.7));
  tol.SetPulseFallWidth(random->OneIn(4) ? 1 - tol.GetPulseRiseWidth() : random->Between(0, 0.7));
  EXPECT_TRUE(set.SetDefTolSpecify(tol));
  return set;
}

template <class Check>
void ForRandomDefinitions(unsigned int seed, Check check) {
  test::RandomValues random(seed);
  int built = 0;
  for (int round = 0; round < 30000; ++round) {
    const Set set = random.OneIn(2) ? RandomFixed(&random) : RandomStandard(&random);
    const auto g = Generate(set);
    if (!g) continue;
    ++built;
    SCOPED_TRACE(round);
    check(set, *g);
    if (::testing::Test::HasFailure()) return;
  }
  EXPECT_GT(built, 6000);
}

TEST(TrapezoidBand, EnclosesThePulseEverywhere) {
  ForRandomDefinitions(46,
                       [](const Set&, const test::ClassicalWave& g) { test::ExpectEnclosed(g); });
}

// Beyond start and end the pulse's stretch used to be missing there.
TEST(TrapezoidBand, EnclosesAPulseWhoseRiseOrFallIsNegative) {
  test::RandomValues random(411);
  std::array<int, 3> built{};
  for (int round = 0; round < 30000; ++round) {
    Set set = RandomStandard(&random);
    Std tol = set.GetDefTolSpecify();
    const unsigned int which = random.Below(3);  // rise, fall, both
    if (which != 1) tol.SetPulseRiseWidth(random.Between(-0.6, 0));
    if (which != 0) tol.SetPulseFallWidth(random.Between(-0.6, 0));
    ASSERT_TRUE(set.SetDefTolSpecify(tol));
    const auto g = Generate(set);
    if (!g) continue;
    ++built[which];
    SCOPED_TRACE("seed 411, round " + std::to_string(round));
    test::ExpectEnclosed(*g);
    if (::testing::Test::HasFailure()) return;
  }
  for (const int n : built) EXPECT_GT(n, 1000);
}

TEST(TrapezoidBand, LeavesRoomOnTheFlatTop) {
  ForRandomDefinitions(47, [](const Set& set, const test::ClassicalWave& g) {
    for (std::size_t i = 0; i < g.wave.size(); ++i) {
      if (g.wave[i] != set.GetMainAmpl()) continue;
      EXPECT_GT(g.upper[i], g.wave[i]) << i;
      EXPECT_LT(g.lower[i], g.wave[i]) << i;
    }
  });
}

TEST(TrapezoidBand, LetsAPulsePassThatIsOneSampleEarlyOrLate) {
  ForRandomDefinitions(48, [](const Set&, const test::ClassicalWave& g) {
    for (std::size_t i = 1; i + 1 < g.wave.size(); ++i) {
      for (const double moved : {g.wave[i - 1], g.wave[i + 1]}) {
        EXPECT_LE(moved, g.upper[i]) << i;
        EXPECT_GE(moved, g.lower[i]) << i;
      }
    }
  });
}

TEST(TrapezoidBand, HasNoLimitBeyondItsPlateaus) {
  ForRandomDefinitions(49, [](const Set& set, const test::ClassicalWave& g) {
    const Std& tol = set.GetDefTolSpecify();
    const bool standard = set.GetTolKind() == Set::TOL_SPECIFY;
    const double upper = *std::max_element(g.upper.begin(), g.upper.end());
    const double most = standard ? std::max({tol.GetMainPulseHi(), tol.GetTolBeginHi(),
                                             tol.GetTolEndHi(), tol.GetPulseBeforeHi()})
                                 : 1.2;
    EXPECT_LE(upper, most * set.GetMainAmpl() * (1 + 1e-12));
    EXPECT_LT(*std::max_element(g.lower.begin(), g.lower.end()), set.GetMainAmpl());
  });
}

// ---- Refusals ----------------------------------------------------------------------------------

TEST(TrapezoidBand, OfAStandardForAnotherShapeOrOfNoFamilyIsRefused) {
  Std tol = Standard();
  tol.SetWaveKind(HALF_SINE);
  EXPECT_FALSE(Generate(WithStandard(tol)));
  EXPECT_FALSE(Generate(WithStandard(Standard(0))));
  EXPECT_FALSE(Generate(WithStandard(Standard(6))));
}

TEST(TrapezoidBand, AFrontRegionBeforeTheFrameIsRefused) {
  Set set = ClassicalSet(TRAPEZOID, Set::TOL_FIXED_5);
  set.SetMainShift(-28.0 / 128);  // starts at 16, its front region at 0
  EXPECT_TRUE(Generate(set));
  set.SetMainShift(-29.0 / 128);
  EXPECT_FALSE(Generate(set));
}

TEST(TrapezoidBand, IsBuiltOnWholeInputOnly) {
  const Set set = ClassicalSet(TRAPEZOID, Set::TOL_FIXED_2);
  const Wave wave(128);
  Wave out(128);
  EXPECT_FALSE(BuildTrapezoidBand({set, true, kCentre, 0.0, wave, out}));
  EXPECT_FALSE(BuildTrapezoidBand({set, true, kCentre, 0.001, {}, out}));
  EXPECT_FALSE(BuildTrapezoidBand({set, true, kCentre, 0.001, wave, {}}));
  EXPECT_FALSE(BuildTrapezoidBand(
      {ClassicalSet(TRAPEZOID, Set::TOL_NONE), true, kCentre, 0.001, wave, out}));
}

TEST(TrapezoidBand, HostileStandardsStayInTheFrame) {
  test::RandomValues random(410);
  for (int round = 0; round < 20000; ++round) {
    Set set = RandomFixed(&random);
    set.SetTolKind(Set::TOL_SPECIFY);
    Std tol = Standard();
    for (const auto change :
         {&Std::SetTolBeginHi, &Std::SetPulseBeforeLo, &Std::SetPulseSlopeHi, &Std::SetMainPulseLo,
          &Std::SetPulseBeforeWidth, &Std::SetPulseRiseWidth, &Std::SetPulseFallWidth}) {
      if (random.OneIn(4)) (tol.*change)(random.Hostile());
    }
    ASSERT_TRUE(set.SetDefTolSpecify(tol));
    const auto g = Generate(set);
    if (g) {
      ASSERT_EQ(g->upper.size(), set.GetNsamp());
    }
  }
}

}  // namespace
}  // namespace qarv::wave_def
