// The generation of classical pulses: against the second computation, its failures, its storage.
#include "classical/classical_pipeline.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "expect_wave.h"
#include "random_classical.h"
#include "reference_classical.h"
#include "wave_def/wave_def.h"

namespace qarv::wave_def {
namespace {

using common::uint64;
using test::Samples;
using test::Wave;
using Set = CWaveDefClassical;
using namespace wave_def_sub;

/// A half-sine of 20 ms at 1 ms in a frame of 64 samples.
Set HalfSine(Set::TOL_KIND kind = Set::TOL_FIXED_4) {
  Set set;
  set.SetWaveKind(HALF_SINE);
  set.SetMainAmpl(10);
  set.SetMainWidth(0.02);
  set.SetFmax(1000 / 2.56);
  set.SetNsamp(64);
  set.SetTolKind(kind);
  return set;
}

struct Arrays {
  Samples wave{7.0}, upper{8.0, 8.0}, lower{9.0};
  bool Generate(const Set& set) {
    Set params(set);
    return GenerateClassical(params, 0.0, &wave, &upper, &lower, false);
  }
  bool Untouched() const {
    return wave == Samples{7.0} && upper == Samples{8.0, 8.0} && lower == Samples{9.0};
  }
};

TEST(Classical, MatchesTheSecondComputationForArbitraryDefinitions) {
  test::RandomValues random(41);
  std::array<std::array<int, 13>, 8> succeeded{};
  for (int round = 0; round < 40000; ++round) {
    const Set set = test::RandomClassical(&random);
    SCOPED_TRACE(round);
    const auto expected = test::reference::Define(set);
    Arrays arrays;
    ASSERT_EQ(arrays.Generate(set), expected.has_value());
    if (!expected) {
      ASSERT_TRUE(arrays.Untouched());
      continue;
    }
    ++succeeded[static_cast<std::size_t>(set.GetWaveKind())]
               [static_cast<std::size_t>(set.GetTolKind())];
    test::ExpectSameWave(arrays.wave, expected->wave);
    test::ExpectSameWave(arrays.upper, expected->upper);
    test::ExpectSameWave(arrays.lower, expected->lower);
    if (::testing::Test::HasFatalFailure()) return;
  }
  for (const int kind : {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}) {  // each has been seen often enough
    const auto k = static_cast<std::size_t>(kind);
    EXPECT_GT(succeeded[HALF_SINE][k], 40) << kind;
    EXPECT_GT(succeeded[HAVERSINE][k], 40) << kind;
    EXPECT_GT(succeeded[TRAPEZOID][k], 20) << kind;
    EXPECT_EQ(succeeded[TERMINAL_PEAK_SAWTOOTH][k] > 20, kind != 2 && kind != 3) << kind;
    EXPECT_EQ(succeeded[TRIANGLE][k] > 20, kind == 10) << kind;
    EXPECT_EQ(succeeded[USER_TRAPEZOID][k] > 20, kind == 10) << kind;
  }
}

// ---- Place -------------------------------------------------------------------------------------

TEST(Classical, CentresThePulseInTheFrame) {
  for (const unsigned int n : {64U, 65U}) {
    Set set = HalfSine();
    set.SetNsamp(n);
    Arrays arrays;
    ASSERT_TRUE(arrays.Generate(set));
    EXPECT_EQ(std::max_element(arrays.wave.begin(), arrays.wave.end()) - arrays.wave.begin(), 32);
    EXPECT_EQ(arrays.wave[32], 10.0);
  }
}

TEST(Classical, ShiftsThePulseByAFractionOfTheFrame) {
  Set set = HalfSine();
  set.SetMainShift(0.25);
  Arrays arrays;
  ASSERT_TRUE(arrays.Generate(set));
  EXPECT_EQ(arrays.wave[48], 10.0);
}

// Deliberate: the half width has no guard: here it is one sample less than its own quotient says,
// and a pulse that begins one sample before the frame by that quotient is still taken.
TEST(Classical, RoundsTheHalfWidthDownWithoutTheGuardOfTheCentre) {
  Set set = HalfSine();
  const double dt = 1 / (2.56 * set.GetFmax());
  set.SetMainWidth(2 * 32.9995 * dt);  // the guard of 0.001 would make it 33
  set.SetWaveKind(HAVERSINE);
  set.SetTolKind(Set::TOL_FIXED_1);
  const auto place = test::reference::PlaceOf(set);
  ASSERT_TRUE(place) << "32 samples before a centre of 32";
  EXPECT_EQ(place->centre, 32U);
  Arrays arrays;
  EXPECT_TRUE(arrays.Generate(set));
  set.SetMainWidth(2 * 33.0005 * dt);
  EXPECT_FALSE(Arrays().Generate(set));
}

TEST(Classical, MovingTheCentreByWholeSamplesMovesEverything) {
  for (const auto shape : {HALF_SINE, TERMINAL_PEAK_SAWTOOTH, TRAPEZOID, TRIANGLE}) {
    for (const auto kind : {Set::TOL_FIXED_4, Set::TOL_FIXED_5, Set::TOL_FIXED_7, Set::TOL_FIXED_9,
                            Set::TOL_USER_DEF}) {
      Set set = HalfSine(kind);
      set.SetWaveKind(shape);
      set.SetNsamp(128);
      CWaveDefTolUserDef tol;
      tol.SetTolLeftU(0.1);
      tol.SetTolLeftL(0.1);
      tol.SetTolFrontA(0.3);
      tol.SetTolMainU(0.15);
      tol.SetTolMainL(0.2);
      tol.SetTolRearA(0.2);
      tol.SetTolRightU(0.25);
      if (kind == Set::TOL_USER_DEF) {
        ASSERT_TRUE(set.SetDefTolUserDef(tol));
      }
      Arrays here;
      Arrays there;
      const bool offered = shape != TRIANGLE || kind == Set::TOL_USER_DEF;
      ASSERT_EQ(here.Generate(set), offered);
      if (!offered) continue;
      set.SetMainShift(8.0 / 128);
      ASSERT_TRUE(there.Generate(set));
      const auto moved = [](const Samples& a, const Samples& b) {
        for (uint64 i = 0; i + 8 < a.GetSize(); ++i) {
          if (a[i] != b[i + 8]) return false;
        }
        return true;
      };
      EXPECT_TRUE(moved(here.wave, there.wave));
      EXPECT_TRUE(moved(here.upper, there.upper)) << shape << " " << kind;
      EXPECT_TRUE(moved(here.lower, there.lower)) << shape << " " << kind;
    }
  }
}

TEST(Classical, TwiceTheAmplitudeIsTwiceEverySample) {
  test::RandomValues random(43);
  int compared = 0;
  for (int round = 0; round < 5000; ++round) {
    Set set = test::RandomClassical(&random);
    if (!(std::fabs(set.GetMainAmpl()) > 1e-6 && std::fabs(set.GetMainAmpl()) < 1e6)) continue;
    Arrays one;
    Arrays two;
    const bool made = one.Generate(set);
    set.SetMainAmpl(2 * set.GetMainAmpl());
    ASSERT_EQ(two.Generate(set), made);
    if (!made) continue;
    ++compared;
    for (uint64 i = 0; i < set.GetNsamp(); ++i) {
      const auto twice = [](double a,
                            double b) {  // levels of 1e308 overflow, those of 1e-300 do not matter
        return 2 * a == b || (std::isnan(a) && std::isnan(b)) || !std::isfinite(2 * a) ||
               !std::isfinite(b) || std::fabs(b) < 1e-290;
      };
      ASSERT_TRUE(twice(one.wave[i], two.wave[i])) << round;
      ASSERT_TRUE(twice(one.upper[i], two.upper[i]))
          << round << " " << one.upper[i] << " " << two.upper[i];
      ASSERT_TRUE(twice(one.lower[i], two.lower[i])) << round;
    }
  }
  EXPECT_GT(compared, 1500);
}

// ---- Failures ----------------------------------------------------------------------------------

void ExpectRefused(const Set& set) {
  Arrays arrays;
  EXPECT_FALSE(arrays.Generate(set));
  EXPECT_TRUE(arrays.Untouched());
}

template <class Change>
void ExpectRefusedWhen(Change change) {
  Set set = HalfSine();
  change(set);
  ExpectRefused(set);
}

TEST(Classical, WithoutAmplitudeFrequencySamplesKindOrShapeIsRefused) {
  ExpectRefusedWhen([](Set& s) { s.SetMainAmpl(0); });
  ExpectRefusedWhen([](Set& s) { s.SetFmax(-0.0); });
  ExpectRefusedWhen([](Set& s) { s.SetFmax(HUGE_VAL); });  // a sample interval of 0
  ExpectRefusedWhen([](Set& s) { s.SetNsamp(0); });
  ExpectRefusedWhen([](Set& s) { s.SetNsamp(1); });  // no line
  for (const int kind : {0, 12, -1}) {
    ExpectRefusedWhen([=](Set& s) { s.SetTolKind(static_cast<Set::TOL_KIND>(kind)); });
  }
  for (const int shape : {0, 7, -1}) {
    ExpectRefusedWhen([=](Set& s) { s.SetWaveKind(static_cast<WAVE_KIND>(shape)); });
  }
}

TEST(Classical, APulseThatDoesNotFitTheFrameIsRefused) {
  ExpectRefusedWhen([](Set& s) { s.SetMainWidth(0.066); });  // begins before it
  ExpectRefusedWhen([](Set& s) { s.SetMainShift(-0.4); });
  ExpectRefusedWhen([](Set& s) { s.SetMainShift(0.4); });  // leaves it
  for (const double shift : {0.5, 0.6, 1e30, HUGE_VAL, -HUGE_VAL, std::nan("")}) {
    ExpectRefusedWhen([=](Set& s) { s.SetMainShift(shift); });
    ExpectRefusedWhen([=](Set& s) {
      s.SetMainShift(shift);
      s.SetWaveKind(HAVERSINE);
    });
  }
}

TEST(Classical, WithCompensationOfNoTypeIsRefused) {
  for (const int type : {0, 5, -1}) {
    ExpectRefusedWhen([=](Set& s) {
      s.SetAddCmp(true);
      s.SetCmpType(static_cast<Set::COMP_TYPE>(type));
    });
  }
}

TEST(Classical, MissingArraysAreRefused) {
  Set set = HalfSine();
  Samples a;
  Samples b;
  EXPECT_FALSE(GenerateClassical(set, 0, nullptr, &a, &b, false));
  EXPECT_FALSE(GenerateClassical(set, 0, &a, nullptr, &b, false));
  EXPECT_FALSE(GenerateClassical(set, 0, &a, &b, nullptr, false));
  EXPECT_EQ(a.GetSize() + b.GetSize(), 0U);
}

TEST(Classical, EmptyArraysAreEmptyAgainAfterAFailure) {
  Set set = HalfSine();
  set.SetMainShift(0.4);
  Samples a;
  Samples b;
  Samples c;
  EXPECT_FALSE(GenerateClassical(set, 0, &a, &b, &c, false));
  EXPECT_EQ(a.GetSize() + b.GetSize() + c.GetSize(), 0U);
}

// ---- Through the definition object -------------------------------------------------------------

TEST(Classical, IsDefinedWithItsOwnBandsWhateverTheRatios) {
  Set set = HalfSine();
  set.SetCmpU1(0.3);
  set.SetWaveShift(0.1);
  CWaveDef def;
  def.SetTolUpperRat(5);
  def.SetTolLowerRat(7);
  ASSERT_TRUE(def.SetDefClassical(set));
  EXPECT_EQ(def.GetWaveType(), CWaveDef::WAVE_TYPE_CLASSICAL);
  EXPECT_EQ(def.GetDefClassical(), set)
      << "the results of a compensation stay as the caller had them";
  const auto expected = *test::reference::Define(set);
  test::ExpectSameWave(def.GetWave(), expected.wave);
  test::ExpectSameWave(def.GetTolU(), expected.upper);
  test::ExpectSameWave(def.GetTolL(), expected.lower);
}

TEST(Classical, AFailedDefinitionLeavesNothing) {
  CWaveDef def;
  ASSERT_TRUE(def.SetDefClassical(HalfSine()));
  Set bad = HalfSine();
  bad.SetMainShift(0.4);
  EXPECT_FALSE(def.SetDefClassical(bad));
  EXPECT_EQ(def.GetWaveType(), CWaveDef::WAVE_TYPE_NONE);
  EXPECT_EQ(def.GetNsamp(), 0U);
  EXPECT_EQ(def.GetTolU().GetSize(), 0U);
  EXPECT_EQ(def.GetTolL().GetSize(), 0U);
  EXPECT_EQ(def.GetDefClassical(), Set());
}

TEST(Classical, ARepeatedDefinitionUsesTheStorageAgain) {
  CWaveDef def;
  ASSERT_TRUE(def.SetDefClassical(HalfSine()));
  const double* const wave = def.GetWave().GetData();
  const double* const upper = def.GetTolU().GetData();
  const double* const lower = def.GetTolL().GetData();
  ASSERT_TRUE(def.SetDefClassical(HalfSine(Set::TOL_FIXED_7)));
  EXPECT_EQ(def.GetWave().GetData(), wave);
  EXPECT_EQ(def.GetTolU().GetData(), upper);
  EXPECT_EQ(def.GetTolL().GetData(), lower);
}

}  // namespace
}  // namespace qarv::wave_def
