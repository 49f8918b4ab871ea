// Haversine bands: the user's levels, whatever the kind.
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
using Set = CWaveDefClassical;
using wave_def_sub::HAVERSINE;

CWaveDefTolUserDef Levels() {
  CWaveDefTolUserDef tol;
  tol.SetTolLeftU(0.1);
  tol.SetTolLeftL(0.1);
  tol.SetTolFrontA(0.01);  // a switch
  tol.SetTolMainU(0.3);
  tol.SetTolMainL(0.25);
  tol.SetTolRightU(0.15);
  tol.SetTolRightL(0.15);
  tol.SetTolRearA(0.01);  // a switch
  return tol;
}

Set WithLevels(int kind, const CWaveDefTolUserDef& tol) {
  Set set = ClassicalSet(HAVERSINE, Set::TOL_USER_DEF);
  EXPECT_TRUE(set.SetDefTolUserDef(tol));
  set.SetTolKind(static_cast<Set::TOL_KIND>(kind));
  return set;
}

// Deliberate: the lengths are switches; the kind has the front region, and the rear runs to the
// end.
TEST(HaversineBand, TheKindHasTheLengthOfTheFrontRegion) {
  const std::pair<int, std::size_t> lengths[] = {{1, 0},  {2, 0},  {3, 12}, {4, 12}, {5, 16},
                                                 {6, 16}, {7, 16}, {8, 16}, {9, 16}, {11, 0}};
  for (const auto& [kind, length] : lengths) {
    SCOPED_TRACE(kind);
    const auto g = Generate(WithLevels(kind, Levels()));
    ASSERT_TRUE(g);
    if (length == 0) {
      ExpectLevel(g->upper, 0, kStart - 1, 1);
    } else {
      ExpectLevel(g->upper, 0, kStart - length, 1);
      ExpectLine(g->upper, kStart - length, 1, kStart, 3);
      ExpectLine(g->lower, kStart - length, -1, kStart, -2.5);
    }
  }
}

TEST(HaversineBand, TheRearTransitionRunsToTheLastSample) {
  for (const double rear : {0.01, 0.5, 100.0}) {
    CWaveDefTolUserDef tol = Levels();
    tol.SetTolRearA(rear);
    const auto g = Generate(WithLevels(4, tol));
    ASSERT_TRUE(g);
    ExpectLine(g->upper, kEnd, 3, 127, 1.5);
    ExpectLine(g->lower, kEnd, -2.5, 127, -1.5);
  }
}

TEST(HaversineBand, WithoutTransitionsHasLevels) {
  CWaveDefTolUserDef tol = Levels();
  tol.SetTolFrontA(0);
  tol.SetTolRearA(0);
  const auto g = Generate(WithLevels(4, tol));
  ASSERT_TRUE(g);
  ExpectLevel(g->upper, 0, kStart, 1);
  ExpectLevel(g->upper, kEnd, 127, 1.5);
  ExpectLevel(g->lower, 0, kStart, -1);
  ExpectLevel(g->lower, kEnd, 127, -1.5);
}

TEST(HaversineBand, HasACappedTriangleForKinds5And7And8) {
  for (int kind = 1; kind <= 11; ++kind) {
    if (kind == 10) continue;
    SCOPED_TRACE(kind);
    const auto g = Generate(WithLevels(kind, Levels()));
    ASSERT_TRUE(g);
    const bool capped = kind == 5 || kind == 7 || kind == 8;
    for (std::size_t k = 1; k < 20; ++k) {
      const double part = static_cast<double>(k) / 20;
      const double x = g->wave[kStart + k] / 10;
      // The triangle is raised over what is there: 0 inside the pulse.
      const double triangle = std::min(std::max(0.0, -2.5 + 12.5 * part), 7.5);
      const double blend = 10 * x - (0.25 * (1 - x) + 0.25 * x) * 10;
      EXPECT_NEAR(g->lower[kStart + k], capped ? triangle : blend, 1e-12) << k;
      const double falling = std::min(std::max(0.0, -1.5 + 11.5 * part), 7.5);
      const double rear = 10 * x - (0.15 * (1 - x) + 0.25 * x) * 10;
      EXPECT_NEAR(g->lower[kEnd - k], capped ? falling : rear, 1e-12) << k;
    }
  }
}

TEST(HaversineBand, IgnoresTheStandard) {
  Set set = WithLevels(11, Levels());
  const auto without = Generate(set);
  CWaveDefTolSpecify tol;
  tol.SetTolBeginHi(0.7);
  tol.SetPulseBeforeWidth(0.5);
  ASSERT_TRUE(set.SetDefTolSpecify(tol));
  const auto with = Generate(set);
  ASSERT_TRUE(without && with);
  EXPECT_EQ(with->upper, without->upper);
  EXPECT_EQ(with->lower, without->lower);
}

TEST(HaversineBand, WithAFrontOfNoLengthIsASampleAtTheStart) {
  CWaveDefTolUserDef tol = Levels();
  const auto g = Generate(WithLevels(1, tol));
  ASSERT_TRUE(g);
  EXPECT_NEAR(g->upper[kStart - 1], 1, 1e-12);
  EXPECT_NEAR(g->upper[kStart], 3, 1e-12);
}

TEST(HaversineBand, DoesNotUseTheLevelsAtThePulsesEnds) {
  CWaveDefTolUserDef tol = Levels();
  const auto without = Generate(WithLevels(6, tol));
  tol.SetTolPulsParam(true, 0.9, 0.9, 0.9, 0.9);
  const auto with = Generate(WithLevels(6, tol));
  ASSERT_TRUE(without && with);
  EXPECT_EQ(with->upper, without->upper);
}

TEST(HaversineBand, EnclosesThePulseWhereItBlends) {
  for (const int kind : {1, 2, 3, 4, 6, 9, 11}) {
    const auto g = Generate(WithLevels(kind, Levels()));
    ASSERT_TRUE(g);
    test::ExpectEnclosed(*g);
  }
}

}  // namespace
}  // namespace qarv::wave_def
