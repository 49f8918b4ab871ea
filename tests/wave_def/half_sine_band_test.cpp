// Half-sine bands: the table's kinds, kind 9, the standard's levels.
#include <gtest/gtest.h>

#include "classical_case.h"

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
using namespace wave_def_sub;

/// The blend over the pulse's inner samples.
void ExpectBlend(const test::ClassicalWave& g, const Wave& band, double a, double m, double b) {
  for (std::size_t i = kStart + 1; i < kEnd; ++i) {
    const double x = g.wave[i] / 10;
    const double edge = i < kCentre ? a : b;
    EXPECT_NEAR(band[i], g.wave[i] + (edge * (1 - x) + m * x) * 10, 1e-12) << i;
  }
}

/// The triangle from (start, a) over the peak to (end, b), capped.
void ExpectCappedTriangle(const Wave& band, double a, double b, double cap) {
  for (std::size_t k = 1; k < 20; ++k) {
    const double part = static_cast<double>(k) / 20;
    EXPECT_NEAR(band[kStart + k], std::min(a + (10 - a) * part, cap), 1e-12);
    EXPECT_NEAR(band[kEnd - k], std::min(b + (10 - b) * part, cap), 1e-12);
  }
  EXPECT_NEAR(band[kCentre], cap, 1e-12);
}

struct Row {
  int kind;
  double left, front, main, rightUpper, rightLower;
};

TEST(HalfSineBand, FollowsTheTableOfItsKind) {
  const Row rows[] = {
      {1, 0, 0, 0, 0, 0},
      {2, 0, 0, 0, 0, 0},
      {3, 0.05, 0.3, 0.15, 0.2, -0.3},
      {4, 0.05, 0.3, 0.15, 0.2, -0.2},
      {5, 0.2, 0.4, 0.2, 0.2, -0.2},
      {6, 0.05, 0.4, 0.15, 0.2, -0.2},
      {7, 0.2, 0.4, 0.2, 0.2, -0.2},
      {8, 0.05, 0.4, 0.15, 0.2, -0.2},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.kind);
    const auto g = Generate(ClassicalSet(HALF_SINE, static_cast<Set::TOL_KIND>(row.kind)));
    ASSERT_TRUE(g);
    const auto front = static_cast<std::size_t>(row.front * 40 + 0.5);
    ExpectLevel(g->upper, 0, kStart - front - (front == 0 ? 1 : 0), row.left * 10);
    ExpectLevel(g->lower, 0, kStart - front - (front == 0 ? 1 : 0), -row.left * 10);
    if (front != 0) {
      ExpectLine(g->upper, kStart - front, row.left * 10, kStart, 2);
      ExpectLine(g->lower, kStart - front, -row.left * 10, kStart, -2);
    }
    ExpectBlend(*g, g->upper, 0.2, row.main, row.rightUpper);
    if (row.kind == 7 || row.kind == 8) {
      ExpectCappedTriangle(g->lower, -2, row.rightLower * 10, (1 - row.main) * 10);
    } else {
      ExpectBlend(*g, g->lower, -0.2, -row.main, row.rightLower);
    }
    ExpectLevel(g->upper, kEnd + 1, 127, row.rightUpper * 10);
    ExpectLevel(g->lower, kEnd + 1, 127, row.rightLower * 10);
  }
}

// Deliberate: all levels of kinds 1 and 2 are 0, but the one at the pulse's start is not.
TEST(HalfSineBand, OfKinds1And2IsOpenedAtThePulsesStartAlone) {
  for (const auto kind : {Set::TOL_FIXED_1, Set::TOL_FIXED_2}) {
    SCOPED_TRACE(kind);
    const auto g = Generate(ClassicalSet(HALF_SINE, kind));
    ASSERT_TRUE(g);
    for (const double sign : {1.0, -1.0}) {
      const Wave& band = sign > 0 ? g->upper : g->lower;
      ExpectLevel(band, 0, kStart - 1, 0);
      EXPECT_NEAR(band[kStart], sign * 2, 1e-12);
      for (std::size_t i = kStart; i < kCentre; ++i) {
        EXPECT_GT(sign * (band[i] - g->wave[i]), 0) << i;
        EXPECT_LT(sign * (band[i + 1] - g->wave[i + 1]), sign * (band[i] - g->wave[i])) << i;
      }
      for (std::size_t i = kCentre; i < 128; ++i) EXPECT_NEAR(band[i], g->wave[i], 1e-14) << i;
    }
  }
}

// Deliberate: the front line of kind 9 begins at 0, and its length is rounded half up.
TEST(HalfSineBand, OfKind9HasAFrontLineFromZeroOfRoundedLength) {
  const auto g = Generate(ClassicalSet(HALF_SINE, Set::TOL_FIXED_9));
  ASSERT_TRUE(g);
  for (std::size_t i = 0; i <= kStart; ++i) {
    // The left level stands where it lies outside the line.
    const double line = i < 28 ? 0.0 : 2.0 * static_cast<double>(i - 28) / 16;
    EXPECT_NEAR(g->upper[i], std::max(0.5, line), 1e-12);
    EXPECT_NEAR(g->lower[i], std::min(-0.5, -line), 1e-12);
  }
  ExpectBlend(*g, g->upper, 0.2, 0.15, 0.2);
  ExpectCappedTriangle(g->lower, -2, -2, 8.5);
  ExpectLevel(g->upper, kEnd + 1, 127, 2);
  ExpectLevel(g->lower, kEnd + 1, 127, -2);

  // 0.4 * 39 = 15.6 samples: 16, where a table kind takes 15.
  Set set = ClassicalSet(HALF_SINE, Set::TOL_FIXED_9);
  set.SetMainWidth(0.039);
  const auto h = Generate(set);
  ASSERT_TRUE(h);
  const std::size_t start = 64 - 19;
  EXPECT_NEAR(h->upper[start - 1], 2.0 * 15 / 16, 1e-12);
  set.SetTolKind(Set::TOL_FIXED_6);
  const auto table = Generate(set);
  ASSERT_TRUE(table);
  EXPECT_NEAR(table->upper[start - 1], 0.5 + 1.5 * 14 / 15, 1e-12);
}

Std Standard(int bs) {
  Std tol;
  tol.SetWaveKind(HALF_SINE);
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
  tol.SetPulseSlopeHi(9);  // plays no part
  tol.SetPulseSlopeLo(9);
  tol.SetPulseAfterWidth(9);
  return tol;
}

TEST(HalfSineBand, OfAStandardHasItsLevels) {
  for (int bs = 1; bs <= 5; ++bs) {
    Set set = ClassicalSet(HALF_SINE, Set::TOL_SPECIFY);
    ASSERT_TRUE(set.SetDefTolSpecify(Standard(bs)));
    const auto g = Generate(set);
    ASSERT_TRUE(g) << bs;
    ExpectLevel(g->upper, 0, kStart - 20, 1);
    ExpectLine(g->upper, kStart - 20, 1, kStart, 2);
    ExpectBlend(*g, g->upper, 0.2, 0.3, 0.25);
    ExpectLevel(g->upper, kEnd + 1, 127, 2.5);
    ExpectLevel(g->lower, 0, kStart - 20, -1.2);
    ExpectLine(g->lower, kStart - 20, -1.2, kStart, -2.2);
    if (bs == 1 || bs == 5) {
      ExpectBlend(*g, g->lower, -0.22, -0.2, -0.35);
    } else {
      for (std::size_t k = 1; k < 20; ++k) {
        const double part = static_cast<double>(k) / 20;
        EXPECT_NEAR(g->lower[kStart + k], std::min(-2.2 + 12.2 * part, 8.0), 1e-12);
        // The floor under the triangle is the level at the pulse's start.
        EXPECT_NEAR(g->lower[kEnd - k], std::min(std::max(-2.2, -3.5 + 13.5 * part), 8.0), 1e-12);
      }
    }
    ExpectLevel(g->lower, kEnd + 1, 127, -3.5);
  }
}

TEST(HalfSineBand, OfAStandardForAnotherShapeOrOfNoFamilyIsRefused) {
  const auto made = [](const Std& tol) {
    Set set = ClassicalSet(HALF_SINE, Set::TOL_SPECIFY);
    EXPECT_TRUE(set.SetDefTolSpecify(tol));
    return Generate(set).has_value();
  };
  Std tol = Standard(1);
  EXPECT_TRUE(made(tol));
  tol.SetWaveKind(HAVERSINE);
  EXPECT_FALSE(made(tol));
  EXPECT_FALSE(made(Standard(0)));
  EXPECT_FALSE(made(Standard(6)));
}

TEST(HalfSineBand, AFrontRegionBeforeTheFrameIsRefused) {
  Set set = ClassicalSet(HALF_SINE, Set::TOL_FIXED_6);
  set.SetMainShift(-0.25);  // starts at sample 12, its front region at -4
  EXPECT_FALSE(Generate(set));
  set.SetTolKind(Set::TOL_FIXED_3);  // at 0
  EXPECT_TRUE(Generate(set));
}

TEST(HalfSineBand, EnclosesThePulse) {
  for (const int kind : {3, 4, 5, 6, 7, 8, 9}) {
    const auto g = Generate(ClassicalSet(HALF_SINE, static_cast<Set::TOL_KIND>(kind)));
    ASSERT_TRUE(g);
    test::ExpectEnclosed(*g);
  }
}

}  // namespace
}  // namespace qarv::wave_def
