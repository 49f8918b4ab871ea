// The nominal pulses: their widths, their corners, and how they meet the frame.
#include "pulse/pulse_shape.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "classical_case.h"
#include "common/numeric/constants.h"
#include "numeric/elementary.h"
#include "pulse/pulse_span.h"
#include "random_values.h"
#include "reference_classical.h"

namespace qarv::wave_def {
namespace {

using namespace common::elementary;

using common::kPi;
using common::uint64;
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

// ---- Half width --------------------------------------------------------------------------------

TEST(PulseHalfWidth, IsHalfTheWidthInSamplesWithAGuard) {
  const auto half = CalcPulseHalfWidth(0.01, 0.001, 64);
  ASSERT_TRUE(half);
  EXPECT_EQ(half->h, 5.0);
  EXPECT_EQ(half->n, 5U);
  EXPECT_EQ(CalcPulseHalfWidth(0.00999, 0.001, 64)->n, 5U) << "4.995 is taken for 5";
  EXPECT_EQ(CalcPulseHalfWidth(0.00997, 0.001, 64)->n, 4U);
}

TEST(PulseHalfWidth, OfNoWidthIntervalOrFrameIsNone) {
  EXPECT_FALSE(CalcPulseHalfWidth(0, 0.001, 64));
  EXPECT_FALSE(CalcPulseHalfWidth(0.01, 0, 64));
  EXPECT_FALSE(CalcPulseHalfWidth(0.01, 0.001, 1));
  EXPECT_FALSE(CalcPulseHalfWidth(0.01, 0.001, 0));
}

TEST(PulseHalfWidth, ClampedToTheFrameBecomesATime) {
  for (const double width : {0.064, 1.0, 1e30, -0.01, HUGE_VAL, -HUGE_VAL, std::nan("")}) {
    const auto half = CalcPulseHalfWidth(width, 0.001, 64);
    ASSERT_TRUE(half) << width;
    EXPECT_EQ(half->n, 31U) << width;
    EXPECT_EQ(half->h, 31 * 0.001) << "not 31 samples";
  }
  EXPECT_EQ(CalcPulseHalfWidth(0.001, 0.001, 2)->n, 0U);
  EXPECT_EQ(CalcPulseHalfWidth(0.0, 0.001, 2).has_value(), false);
}

// ---- Half-sine and haversine -------------------------------------------------------------------

TEST(HalfSinePulse, IsHalfAPeriodAboutItsCentre) {
  Wave wave(32);
  ASSERT_TRUE(DrawHalfSine(16, 0.01, 0.001, 3, wave));
  EXPECT_EQ(wave[16], 3.0);
  EXPECT_NEAR(wave[15], 3 * Cos(kPi / 10), 1e-14);
  EXPECT_NEAR(wave[17], 3 * Cos(kPi / 10), 1e-14);
  EXPECT_NEAR(wave[11], 0, 1e-14);
  EXPECT_NEAR(wave[21], 0, 1e-14);
  ExpectLevel(wave, 0, 10, 0);
  ExpectLevel(wave, 22, 31, 0);
}

TEST(HaversinePulse, IsARaisedCosineAboutItsCentre) {
  Wave wave(32);
  ASSERT_TRUE(DrawHaversine(16, 0.01, 0.001, 3, wave));
  EXPECT_EQ(wave[16], 3.0);
  for (int k = -5; k <= 5; ++k) {
    EXPECT_NEAR(wave[static_cast<std::size_t>(16 + k)], 1.5 + 1.5 * Cos(kPi * k / 5), 1e-14);
  }
}

TEST(HalfSinePulse, IsCutAtTheFrame) {
  for (const auto draw : {DrawHalfSine, DrawHaversine}) {
    Wave whole(32);
    Wave left(32);
    Wave right(32);
    ASSERT_TRUE(draw(16, 0.01, 0.001, 3, whole));
    ASSERT_TRUE(draw(3, 0.01, 0.001, 3, left));
    ASSERT_TRUE(draw(29, 0.01, 0.001, 3, right));
    for (std::size_t i = 0; i < 9; ++i) EXPECT_EQ(left[i], whole[13 + i]);
    for (std::size_t i = 24; i < 32; ++i) EXPECT_EQ(right[i], whole[i - 13]);
  }
}

TEST(HalfSinePulse, NarrowerThanTwoSamplesIsItsPeakAlone) {
  Wave wave(8);
  ASSERT_TRUE(DrawHalfSine(4, 0.001, 0.001, 3, wave));
  EXPECT_EQ(wave, (Wave{0, 0, 0, 0, 3, 0, 0, 0}));
}

TEST(HalfSinePulse, OutsideTheFrameOrOfNoHeightIsRefused) {
  for (const auto draw : {DrawHalfSine, DrawHaversine}) {
    Wave wave(32);
    for (const uint64 centre : {uint64{32}, uint64{1} << 63, ~uint64{0}}) {
      EXPECT_FALSE(draw(centre, 0.01, 0.001, 3, wave));
    }
    EXPECT_FALSE(draw(16, 0.01, 0.001, 0, wave));
    EXPECT_FALSE(draw(16, 0.01, 0, 3, wave));
    EXPECT_FALSE(draw(16, 0, 0.001, 3, wave));
    EXPECT_FALSE(draw(0, 0.01, 0.001, 3, {}));
    EXPECT_EQ(wave, Wave(32));
  }
}

TEST(HalfSinePulse, ClampedToTheFrameUsesTheTimeForItsStep) {
  Wave wave(32);
  ASSERT_TRUE(DrawHalfSine(16, 1.0, 0.001, 3, wave));
  const double step = kPi / (15 * 0.001) * 0.5;
  EXPECT_NEAR(wave[17], 3 * Cos(step), 1e-12);
  EXPECT_NEAR(wave[1], 3 * Cos(15 * step), 1e-10);
  EXPECT_EQ(wave[0], 0.0);
}

// ---- Sawtooth ----------------------------------------------------------------------------------

TEST(SawtoothPulse, RisesOverItsWholeWidthOrNineTenths) {
  const auto instant = Generate(ClassicalSet(TERMINAL_PEAK_SAWTOOTH, Set::TOL_FIXED_1));
  ASSERT_TRUE(instant);
  ExpectLine(instant->wave, kStart, 0, kEnd, 10);
  EXPECT_EQ(instant->wave[kEnd], 10.0) << "the last sample is the peak";
  EXPECT_EQ(instant->wave[kEnd + 1], 0.0);
  const auto falling = Generate(ClassicalSet(TERMINAL_PEAK_SAWTOOTH, Set::TOL_FIXED_5));
  ASSERT_TRUE(falling);
  ExpectLine(falling->wave, kStart, 0, kStart + 36, 10);
  ExpectLine(falling->wave, kStart + 36, 10, kEnd, 0);
}

TEST(SawtoothPulse, TakesItsFallFromTheStandard) {
  CWaveDefTolSpecify tol;
  tol.SetWaveKind(TERMINAL_PEAK_SAWTOOTH);
  tol.SetPulseAfterWidth(0.25);
  tol.SetMainPulseHi(1.1);
  tol.SetMainPulseLo(0.9);
  for (int bs = 0; bs <= 6; ++bs) {
    tol.SetBaseStandard(static_cast<CWaveDefTolSpecify::BASE_STANDARD_TYPE>(bs));
    Set set = ClassicalSet(TERMINAL_PEAK_SAWTOOTH, Set::TOL_SPECIFY);
    ASSERT_TRUE(set.SetDefTolSpecify(tol));
    const auto g = Generate(set);
    ASSERT_EQ(g.has_value(), bs >= 1 && bs <= 5) << bs;
    if (!g) continue;
    const std::size_t peak = bs == 1 || bs == 4 ? kEnd : kStart + 30;
    ExpectLine(g->wave, kStart, 0, peak, 10);
    if (peak != kEnd) ExpectLine(g->wave, peak, 10, kEnd, 0);
  }
}

TEST(SawtoothPulse, IsNotOfferedForKinds2And3) {
  EXPECT_FALSE(Generate(ClassicalSet(TERMINAL_PEAK_SAWTOOTH, Set::TOL_FIXED_2)));
  EXPECT_FALSE(Generate(ClassicalSet(TERMINAL_PEAK_SAWTOOTH, Set::TOL_FIXED_3)));
}

// ---- Trapezoid family --------------------------------------------------------------------------

Set UserTrapezoid(double rise, double fall) {
  Set set = ClassicalSet(USER_TRAPEZOID, Set::TOL_USER_DEF);
  set.SetMainRise(rise);
  set.SetMainFall(fall);
  return set;
}

TEST(TrapezoidPulse, RisesAndFallsOverATenth) {
  const auto g = Generate(ClassicalSet(TRAPEZOID, Set::TOL_FIXED_2));
  ASSERT_TRUE(g);
  ExpectLine(g->wave, kStart, 0, kStart + 4, 10);
  ExpectLevel(g->wave, kStart + 4, kEnd - 4, 10);
  ExpectLine(g->wave, kEnd - 4, 10, kEnd, 0);
}

TEST(TrapezoidPulse, OfTheUserHasTheUsersFractions) {
  const auto g = Generate(UserTrapezoid(0.2, 0.2));
  ASSERT_TRUE(g);
  ExpectLine(g->wave, kStart, 0, kStart + 8, 10);
  ExpectLevel(g->wave, kStart + 8, kEnd - 8, 10);
  ExpectLine(g->wave, kEnd - 8, 10, kEnd, 0);
}

TEST(TrapezoidPulse, WhoseFractionsFillTheWidthHasNoFlatTop) {
  const auto g = Generate(UserTrapezoid(0.3, 0.7));
  ASSERT_TRUE(g);
  ExpectLine(g->wave, kStart, 0, kStart + 12, 10);
  ExpectLine(g->wave, kStart + 12, 10, kEnd, 0);
  EXPECT_EQ(std::count(g->wave.begin(), g->wave.end(), 10.0), 1);
}

TEST(TrapezoidPulse, WhoseSlopesOverlapKeepsTheLarger) {
  const auto g = Generate(UserTrapezoid(0.75, 0.75));  // the flat top is walked backwards
  ASSERT_TRUE(g);
  ExpectLevel(g->wave, kStart + 10, kStart + 30, 10);
  EXPECT_NEAR(g->wave[kStart + 9], 10.0 * 9 / 30, 1e-12);
}

TEST(TrianglePulse, RisesAndFallsOverHalfTheWidth) {
  const auto g = Generate(ClassicalSet(TRIANGLE, Set::TOL_USER_DEF));
  ASSERT_TRUE(g);
  ExpectLine(g->wave, kStart, 0, kCentre, 10);
  ExpectLine(g->wave, kCentre, 10, kEnd, 0);
}

// Deliberate: no other kind is offered.
TEST(TrianglePulse, AndUserTrapezoidHaveTheUsersBandOnly) {
  for (int kind = 1; kind <= 11; ++kind) {
    for (const auto shape : {TRIANGLE, USER_TRAPEZOID}) {
      Set set = ClassicalSet(shape, static_cast<Set::TOL_KIND>(kind));
      set.SetMainRise(0.2);
      set.SetMainFall(0.2);
      EXPECT_EQ(Generate(set).has_value(), kind == 10) << kind;
    }
  }
}

TEST(TrapezoidPulse, TheFallEndsExactlyAtZero) {
  test::RandomValues random(44);
  for (int round = 0; round < 2000; ++round) {
    Set set = UserTrapezoid(random.Between(0.05, 0.5), random.Between(0.05, 0.5));
    set.SetMainAmpl(random.Between(0.001, 100));
    set.SetMainWidth(random.Between(0.01, 0.06));
    const auto g = Generate(set);
    ASSERT_TRUE(g);
    const auto last =
        std::find_if(g->wave.rbegin(), g->wave.rend(), [](double v) { return v != 0; });
    // No rounding error of the line stands as a tiny pulse of its own: what is left is a real step.
    EXPECT_GT(*last, set.GetMainAmpl() * 1e-3);
  }
}

TEST(TrapezoidPulse, OneThatBeginsBeforeTheFrameIsRefused) {
  Wave wave(32);
  Set set = ClassicalSet(TRAPEZOID, Set::TOL_FIXED_2);
  set.SetNsamp(32);
  set.SetMainWidth(0.01);
  EXPECT_FALSE(DrawTrapezoid(set, true, 3, 0.001, 0.1, 0.1, 0, 10, 0, wave));
  EXPECT_FALSE(DrawTrapezoid(set, true, 30, 0.001, 0.1, 0.1, 0, 10, 0, wave));
  EXPECT_TRUE(DrawTrapezoid(set, true, 16, 0.001, 0.1, 0.1, 0, 10, 0, wave));
  Wave upper(32);
  Wave lower(32);
  set.SetWaveKind(TERMINAL_PEAK_SAWTOOTH);
  set.SetTolKind(Set::TOL_FIXED_1);
  EXPECT_FALSE(BuildSawtoothPulse(set, 3, 0.001, {wave, upper, lower}));
}

TEST(TrapezoidPulse, DownwardsIsDrawnWhereItIsSmaller) {
  Set set = ClassicalSet(TRAPEZOID, Set::TOL_FIXED_2);
  Wave out(128);
  ASSERT_TRUE(DrawTrapezoid(set, false, kCentre, 0.001, 0.1, 0.1, -1, -5, -2, out));
  ExpectLine(out, kStart, -1, kStart + 4, -5);
  ExpectLevel(out, kStart + 4, kEnd - 4, -5);
  ExpectLine(out, kEnd - 4, -5, kEnd, -2);
}

TEST(NegativePulses, OfCosinesAreDrawnAndOfLinesAreNot) {
  for (const auto shape : {HALF_SINE, HAVERSINE}) {
    Set set = ClassicalSet(shape, Set::TOL_FIXED_4);
    set.SetMainAmpl(-10);
    const auto g = Generate(set);
    ASSERT_TRUE(g);
    EXPECT_EQ(g->wave[kCentre], -10.0);
    if (shape == HALF_SINE) {
      EXPECT_LT(g->upper[kCentre], g->lower[kCentre]) << "crossed bands";
    }
  }
  for (const auto shape : {TERMINAL_PEAK_SAWTOOTH, TRAPEZOID, TRIANGLE}) {
    const auto pulse = test::reference::Pulse(
        [&] {
          Set set = ClassicalSet(shape, Set::TOL_USER_DEF);
          set.SetMainAmpl(-10);
          return set;
        }(),
        kCentre, 0.001);
    ASSERT_TRUE(pulse);
    EXPECT_EQ(*pulse, Wave(128)) << "samples are only raised";
    Set set = ClassicalSet(shape, Set::TOL_USER_DEF);
    set.SetMainAmpl(-10);
    EXPECT_FALSE(Generate(set)) << "a band needs a pulse";
  }
}

}  // namespace
}  // namespace qarv::wave_def
