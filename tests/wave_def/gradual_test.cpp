// The gradual wave: its three sections, how its ramp is given, and the edges of its parameters.
#include "family/gradual.h"

#include <gtest/gtest.h>

#include "common/numeric/constants.h"
#include "expect_wave.h"
#include "numeric/elementary.h"
#include "random_values.h"
#include "wave_def/wave_def.h"

namespace qarv::wave_def {
namespace {

using namespace common::elementary;

using common::uint64;
using test::Samples;
using test::Wave;
using Set = CWaveDefGradual;

/// A carrier of 0.37 cycles per sample at 1000 Hz, so that no sample of interest is near a zero.
Set Ramp(double pre, double ramp, unsigned int n) {
  Set set;
  set.SetPeriod(0.0037);
  set.SetLevelBeg(1.0);
  set.SetLevelEnd(3.0);
  set.SetLengthType(Set::LENGTH_BY_TIME);
  set.SetWaveTime(ramp);
  set.SetPreTime(pre);
  set.SetNsamp(n);
  return set;
}

double Envelope(const Samples& wave, uint64 k) {
  return wave[k] / Sin(static_cast<double>(k) / 3.7 * common::kTwoPi);
}

/// The wave as its formula says, section by section.
std::optional<Wave> Reference(const Set& set, double fsamp) {
  const uint64 n = set.GetNsamp();
  if (fsamp == 0) return std::nullopt;
  double seconds = set.GetWaveTime();
  if (set.GetLengthType() == Set::LENGTH_BY_SLOPE) {
    if (set.GetWaveSlope() == 0) return std::nullopt;
    seconds = (set.GetLevelEnd() - set.GetLevelBeg()) / set.GetWaveSlope();
  } else if (set.GetLengthType() != Set::LENGTH_BY_TIME) {
    return std::nullopt;
  }
  if (n == 0) return std::nullopt;
  const double interval = 1.0 / fsamp;
  const uint64 pre = test::Index(set.GetPreTime() / interval);
  const uint64 ramp = test::Index(seconds / interval);
  const uint64 rampEnd = ramp + pre;
  double up = 0;
  double change = 0;
  double down = 0;
  if (pre != 0) up = set.GetLevelBeg() / static_cast<double>(pre);
  if (ramp != 0) change = (set.GetLevelEnd() - set.GetLevelBeg()) / static_cast<double>(ramp);
  if (rampEnd != n) down = set.GetLevelEnd() / static_cast<double>(n - rampEnd) * -1.0;
  Wave wave;
  for (uint64 k = 0; k < n; ++k) {
    double level = (static_cast<double>(k) - static_cast<double>(n)) * down;
    if (k < rampEnd) level = static_cast<double>(k - pre) * change + set.GetLevelBeg();
    if (k < pre) level = static_cast<double>(k) * up;
    wave.push_back(level *
                   Sin(static_cast<double>(k) / (set.GetPeriod() / interval) * 6.283185307179586));
  }
  return wave;
}

TEST(GradualWave, MeetsItsLevelsWhereTheSectionsMeet) {
  Samples wave;
  ASSERT_TRUE(GradualGenerate(Ramp(0.1, 0.2, 500), 1000.0, &wave));
  ASSERT_EQ(wave.GetSize(), 500U);
  EXPECT_EQ(wave[0], 0.0);
  EXPECT_NEAR(Envelope(wave, 50), 0.5, 1e-11);
  EXPECT_NEAR(Envelope(wave, 100), 1.0, 1e-11);
  EXPECT_NEAR(Envelope(wave, 200), 2.0, 1e-11);
  EXPECT_NEAR(Envelope(wave, 300), 3.0, 1e-11);
  EXPECT_NEAR(Envelope(wave, 400), 1.5, 1e-11);
  EXPECT_NEAR(Envelope(wave, 499), 0.015, 1e-11) << "not 0 at the end";
}

TEST(GradualWave, WithoutPreTimeStartsOnTheRamp) {
  Samples wave;
  ASSERT_TRUE(GradualGenerate(Ramp(0.0, 0.2, 300), 1000.0, &wave));
  EXPECT_NEAR(Envelope(wave, 1), 1.01, 1e-11);
  EXPECT_NEAR(Envelope(wave, 200), 3.0, 1e-11);
}

TEST(GradualWave, TakesTheRampFromItsSlope) {
  Set slope = Ramp(0.1, 99.0, 500);
  slope.SetLengthType(Set::LENGTH_BY_SLOPE);
  slope.SetWaveSlope(10.0);  // 2 / 10 = 0.2 s
  Samples a;
  Samples b;
  ASSERT_TRUE(GradualGenerate(slope, 1000.0, &a));
  ASSERT_TRUE(GradualGenerate(Ramp(0.1, 0.2, 500), 1000.0, &b));
  EXPECT_EQ(a, b);
}

TEST(GradualWave, CutsSectionsThatExceedTheFrame) {
  Samples whole;
  Samples cut;
  ASSERT_TRUE(GradualGenerate(Ramp(0.1, 0.2, 500), 1000.0, &whole));
  ASSERT_TRUE(GradualGenerate(Ramp(0.1, 0.2, 250), 1000.0, &cut));
  for (uint64 k = 0; k < 250; ++k) EXPECT_EQ(cut[k], whole[k]) << k;
}

TEST(GradualWave, EdgeTimeTakesNoPart) {
  Set other = Ramp(0.1, 0.2, 500);
  other.SetEdgeTime(0.3);
  Samples a;
  Samples b;
  ASSERT_TRUE(GradualGenerate(other, 1000.0, &a));
  ASSERT_TRUE(GradualGenerate(Ramp(0.1, 0.2, 500), 1000.0, &b));
  EXPECT_EQ(a, b);
}

TEST(GradualWave, WithoutRampRateOrSamplesIsRefused) {
  const auto refused = [](const Set& set, double fsamp) {
    test::ExpectGenerates(GradualGenerate, set, fsamp, std::nullopt);
  };
  refused(Ramp(0.1, 0.2, 0), 1000.0);
  refused(Ramp(0.1, 0.2, 10), 0.0);
  Set set = Ramp(0.1, 0.2, 10);
  for (const int type : {0, 3, -1}) {
    set.SetLengthType(static_cast<Set::LENGTH_TYPE>(type));
    refused(set, 1000.0);
  }
  set.SetLengthType(Set::LENGTH_BY_SLOPE);
  refused(set, 1000.0);
  set.SetWaveSlope(-0.0);
  refused(set, 1000.0);
}

TEST(GradualWave, MatchesItsFormulaForArbitraryParameters) {
  test::RandomValues random(54);
  for (int round = 0; round < 3000; ++round) {
    Set set;
    set.SetPeriod(random.Value(1e-4, 0.1));
    set.SetLevelBeg(random.Value(-10, 10));
    set.SetLevelEnd(random.Value(-10, 10));
    set.SetLengthType(
        random.Pick({Set::LENGTH_BY_TIME, Set::LENGTH_BY_SLOPE, Set::LENGTH_TYPE_NONE}));
    set.SetWaveTime(random.Value(-0.01, 0.2));
    set.SetWaveSlope(random.Value(-100, 100));
    set.SetPreTime(random.Value(-0.01, 0.1));
    set.SetNsamp(random.Pick({0U, 1U, 2U, 3U, 17U, random.Below(300)}));
    const double fsamp = random.Value(100, 3000);
    SCOPED_TRACE(round);
    test::ExpectGenerates(GradualGenerate, set, fsamp, Reference(set, fsamp));
    if (::testing::Test::HasFatalFailure()) return;
  }
}

TEST(GradualWave, IsDefinedThroughTheDefinitionObject) {
  const Set set = Ramp(0.1, 0.2, 500);
  CWaveDef def;
  def.SetFsamp(1000.0);
  ASSERT_TRUE(def.SetDefGradual(set));
  EXPECT_EQ(def.GetWaveType(), CWaveDef::WAVE_TYPE_GRADUAL);
  EXPECT_EQ(def.GetDefGradual(), set);
  test::ExpectSameWave(def.GetWave(), *Reference(set, 1000.0));
  EXPECT_FALSE(def.SetDefGradual(Set()));
  EXPECT_EQ(def.GetWaveType(), CWaveDef::WAVE_TYPE_NONE);
  EXPECT_EQ(def.GetNsamp(), 0U);
}

}  // namespace
}  // namespace qarv::wave_def
