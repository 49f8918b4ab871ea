// Sawtooth bands: the table's kinds, kind 9, the standard's levels.
#include <gtest/gtest.h>

#include "classical_case.h"

namespace qarv::wave_def {
namespace {

using test::ClassicalSet;
using test::ExpectLevel;
using test::ExpectLine;
using test::Generate;
using test::kEnd;
using test::kStart;
using Set = CWaveDefClassical;
using Std = CWaveDefTolSpecify;
using wave_def_sub::HALF_SINE;
using wave_def_sub::TERMINAL_PEAK_SAWTOOTH;

struct Row {
  int kind;
  double left, front, main, rightLower, begin;
};

TEST(SawtoothBand, WithAFallRegionFollowsTheTableOfItsKind) {
  const Row rows[] = {{1, 0.05, 0.3, 0.15, -0.3, 0.15},
                      {4, 0.05, 0.3, 0.15, -0.2, 0.15},
                      {6, 0.05, 0.4, 0.15, -0.2, 0.15}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.kind);
    const auto g =
        Generate(ClassicalSet(TERMINAL_PEAK_SAWTOOTH, static_cast<Set::TOL_KIND>(row.kind)));
    ASSERT_TRUE(g);
    const auto front = static_cast<std::size_t>(row.front * 40 + 0.5);
    ExpectLevel(g->upper, 0, kStart - front, row.left * 10);
    ExpectLine(g->upper, kStart - front, row.left * 10, kStart, row.begin * 10);
    ExpectLine(g->upper, kStart, row.begin * 10, kEnd, 11.5);
    ExpectLevel(g->upper, kEnd, kEnd + 2, 11.5);  // floor(0.07 * 40) samples beyond the pulse
    ExpectLevel(g->upper, kEnd + 3, 127, 2);
    ExpectLevel(g->lower, 0, kStart - front, -row.left * 10);
    ExpectLine(g->lower, kStart - front, -row.left * 10, kStart - 1,
               -row.left * 10 - (row.begin - row.left) * 10 * static_cast<double>(front - 1) /
                                    static_cast<double>(front));
    const double top = g->wave[kEnd - 2] - 1.5;
    ExpectLine(g->lower, kStart, -row.begin * 10, kEnd - 2, top);
    ExpectLevel(g->lower, kEnd - 1, 127, row.rightLower * 10);
  }
}

TEST(SawtoothBand, WithAFallOfItsOwnEndsWithThePulse) {
  const Row rows[] = {{5, 0.2, 0.4, 0.2, -0.2, 0.2},
                      {7, 0.2, 0.4, 0.2, -0.2, 0.2},
                      {8, 0.05, 0.4, 0.15, -0.2, 0.2}};
  const std::size_t peak = kStart + 36;
  for (const Row& row : rows) {
    SCOPED_TRACE(row.kind);
    const auto g =
        Generate(ClassicalSet(TERMINAL_PEAK_SAWTOOTH, static_cast<Set::TOL_KIND>(row.kind)));
    ASSERT_TRUE(g);
    ExpectLevel(g->upper, 0, kStart - 16, row.left * 10);
    ExpectLine(g->upper, kStart - 16, row.left * 10, kStart, row.begin * 10);
    ExpectLine(g->upper, kStart, row.begin * 10, peak, (1 + row.main) * 10);
    ExpectLevel(g->upper, peak, kEnd - 1, (1 + row.main) * 10);
    ExpectLevel(g->upper, kEnd, 127, 2);
    ExpectLine(g->lower, kStart, -row.begin * 10, peak, (1 - row.main) * 10);
    if (row.kind == 8) {  // Deliberate: only here the drop takes more than a sample
      ExpectLine(g->lower, peak, 8.5, kEnd, -2);
      ExpectLevel(g->lower, kEnd, 127, -2);
    } else {
      ExpectLevel(g->lower, peak + 1, 127, -2);
    }
  }
}

// Deliberate: the left level of the upper band reaches into the pulse, lengths are rounded half up,
// and the front line begins at 0.
TEST(SawtoothBand, OfKind9HasRoundedLengthsAndALeftLevelIntoThePulse) {
  const auto g = Generate(ClassicalSet(TERMINAL_PEAK_SAWTOOTH, Set::TOL_FIXED_9));
  ASSERT_TRUE(g);
  const std::size_t leftEnd = kStart + 2;  // 0.05 of 40 samples, and the half
  for (std::size_t i = 0; i <= leftEnd; ++i) {
    const double line = i < 28 ? 0.0 : 2.0 * static_cast<double>(i - 28) / 18;  // to 0.2 at leftEnd
    const double rise = i < kStart ? 0.0 : 1.5 + 10.0 * static_cast<double>(i - kStart) / 40;
    EXPECT_NEAR(g->upper[i], std::max({0.5, line, rise}), 1e-12) << i;
  }
  ExpectLine(g->upper, kStart + 3, 1.5 + 10.0 * 3 / 40, kEnd, 11.5);
  ExpectLevel(g->upper, kEnd, kEnd + 3, 11.5);  // 2.8 samples, rounded
  ExpectLevel(g->upper, kEnd + 4, 127, 2);
  for (std::size_t i = 0; i < kStart; ++i) {
    const double line = i < 28 ? 0.0 : -1.5 * static_cast<double>(i - 28) / 16;
    EXPECT_NEAR(g->lower[i], std::min(-0.5, line), 1e-12) << i;
  }
  const double top = g->wave[kEnd - 3] - 1.5;
  ExpectLine(g->lower, kStart, -1.5, kEnd - 3, top);
  ExpectLevel(g->lower, kEnd - 2, 127, -3);
}

Std Standard(int bs) {
  Std tol;
  tol.SetWaveKind(TERMINAL_PEAK_SAWTOOTH);
  tol.SetBaseStandard(static_cast<Std::BASE_STANDARD_TYPE>(bs));
  tol.SetTolBeginHi(0.1);
  tol.SetTolBeginLo(0.12);
  tol.SetPulseBeforeHi(0.2);
  tol.SetPulseBeforeLo(0.22);
  tol.SetMainPulseHi(1.3);
  tol.SetMainPulseLo(0.8);
  tol.SetTolEndHi(0.25);
  tol.SetTolEndLo(0.35);
  tol.SetPulseBeforeWidth(0.5);
  tol.SetPulseAfterWidth(0.2);
  tol.SetPulseSlopeHi(9);  // plays no part
  tol.SetPulseRiseWidth(9);
  return tol;
}

TEST(SawtoothBand, OfAStandardHasItsLevels) {
  for (int bs = 1; bs <= 5; ++bs) {
    SCOPED_TRACE(bs);
    Set set = ClassicalSet(TERMINAL_PEAK_SAWTOOTH, Set::TOL_SPECIFY);
    ASSERT_TRUE(set.SetDefTolSpecify(Standard(bs)));
    const auto g = Generate(set);
    ASSERT_TRUE(g);
    ExpectLevel(g->upper, 0, kStart - 20, 1);
    ExpectLine(g->upper, kStart - 20, 1, kStart, 2);
    ExpectLine(g->lower, kStart - 20, -1.2, kStart - 1, -1.2 - 19.0 / 20);
    if (bs == 1 || bs == 4) {
      ExpectLine(g->upper, kStart, 2, kEnd, 13);
      ExpectLevel(g->upper, kEnd, kEnd + 8, 13);
      ExpectLevel(g->upper, kEnd + 9, 127, 2.5);
      const double top = g->wave[kEnd - 8] - 2;
      ExpectLine(g->lower, kStart, -2.2, kEnd - 8, top);
      ExpectLine(g->lower, kEnd - 8, top, kEnd, -3.5);  // Deliberate: down to the pulse's end
    } else {
      const std::size_t peak = kStart + 32;
      ExpectLine(g->upper, kStart, 2, peak, 13);
      ExpectLevel(g->upper, peak, kEnd - 1, 13);
      ExpectLevel(g->upper, kEnd, 127, 2.5);
      ExpectLine(g->lower, kStart, -2.2, peak, 8);
      ExpectLevel(g->lower, peak + 1, 127, -3.5);
    }
    ExpectLevel(g->lower, kEnd, 127, -3.5);
  }
}

TEST(SawtoothBand, OfAStandardForAnotherShapeIsRefused) {
  Set set = ClassicalSet(TERMINAL_PEAK_SAWTOOTH, Set::TOL_SPECIFY);
  Std tol = Standard(2);
  tol.SetWaveKind(HALF_SINE);
  ASSERT_TRUE(set.SetDefTolSpecify(tol));
  EXPECT_FALSE(Generate(set));
}

TEST(SawtoothBand, ATopThatLeavesTheFrameIsRefused) {
  Set set = ClassicalSet(TERMINAL_PEAK_SAWTOOTH, Set::TOL_FIXED_1);
  set.SetMainShift(40.0 / 128);  // ends at 124, the top at 126, the right level at 127
  EXPECT_TRUE(Generate(set));
  set.SetMainShift(41.0 / 128);
  EXPECT_FALSE(Generate(set));
}

TEST(SawtoothBand, EnclosesThePulse) {
  for (const int kind : {1, 4, 5, 6, 7, 8, 9}) {
    const auto g = Generate(ClassicalSet(TERMINAL_PEAK_SAWTOOTH, static_cast<Set::TOL_KIND>(kind)));
    ASSERT_TRUE(g);
    test::ExpectEnclosed(*g);
  }
}

}  // namespace
}  // namespace qarv::wave_def
