// The single wave: its envelope, its carrier, and its behaviour at the edges of its parameters.
#include "family/single.h"

#include <gtest/gtest.h>

#include "common/numeric/constants.h"
#include "expect_wave.h"
#include "numeric/elementary.h"
#include "random_values.h"
#include "wave_def/wave_def.h"

namespace qarv::wave_def {
namespace {

using namespace common::elementary;

using test::Samples;
using test::Wave;

CWaveDefSingle Set(double period, double peak, double edge, unsigned int n) {
  CWaveDefSingle set;
  set.SetPeriod(period);
  set.SetPeakLevel(peak);
  set.SetEdgeTime(edge);
  set.SetNsamp(n);
  return set;
}

/// The wave as its formula says, sample by sample.
std::optional<Wave> Reference(const CWaveDefSingle& set, double fsamp) {
  const common::uint64 n = set.GetNsamp();
  if (fsamp == 0 || n == 0) return std::nullopt;
  const double interval = 1.0 / fsamp;
  const common::uint64 edge = test::Index(set.GetEdgeTime() / interval);
  double slope = 0.0;
  if (edge > 0) slope = set.GetPeakLevel() / static_cast<double>(edge);
  Wave wave;
  for (common::uint64 k = 0; k < n; ++k) {
    const double carrier =
        Sin(static_cast<double>(k) / (set.GetPeriod() / interval) * 6.283185307179586);
    double level = (static_cast<double>(n) - static_cast<double>(k)) * slope;
    if (k < n - edge) level = set.GetPeakLevel();
    if (k < edge) level = static_cast<double>(k) * slope;
    wave.push_back(level * carrier);
  }
  return wave;
}

/// The envelope: a period of four samples has its carrier at 1 in sample 1, 5, ...; shifted by
/// choosing the period so that every sample of interest carries +-1 would move the edges, so the
/// carrier is divided out where it is not small.
double Envelope(const Samples& wave, double period, common::uint64 k) {
  return wave[k] / Sin(static_cast<double>(k) / period * common::kTwoPi);
}

TEST(SingleWave, RisesFromZeroAndFallsToOneStep) {
  Samples wave;
  ASSERT_TRUE(SingleGenerate(Set(0.0037, 2.0, 0.01, 100), 1000.0, &wave));
  ASSERT_EQ(wave.GetSize(), 100U);
  EXPECT_EQ(wave[0], 0.0);
  for (const common::uint64 k : std::vector<common::uint64>{1, 5, 9}) {
    EXPECT_NEAR(Envelope(wave, 3.7, k), 0.2 * static_cast<double>(k), 1e-12) << k;
  }
  for (const common::uint64 k : std::vector<common::uint64>{10, 50, 89, 90}) {
    EXPECT_NEAR(Envelope(wave, 3.7, k), 2.0, 1e-12) << k;
  }
  EXPECT_NEAR(Envelope(wave, 3.7, 91), 1.8, 1e-12);
  EXPECT_NEAR(Envelope(wave, 3.7, 99), 0.2, 1e-12) << "the slope, not 0";
}

TEST(SingleWave, TruncatesTheEdgeToWholeSamples) {
  Samples wave;
  ASSERT_TRUE(SingleGenerate(Set(0.0037, 2.0, 0.0105, 100), 1000.0, &wave));
  EXPECT_NEAR(Envelope(wave, 3.7, 9), 1.8, 1e-12) << "10 samples, not 10.5 or 11";
  EXPECT_NEAR(Envelope(wave, 3.7, 10), 2.0, 1e-12);
}

TEST(SingleWave, WithoutEdgesIsThePlainSine) {
  Samples wave;
  ASSERT_TRUE(SingleGenerate(Set(0.01, 3.0, 0.0, 25), 1000.0, &wave));
  for (common::uint64 k = 0; k < 25; ++k) {
    EXPECT_NEAR(wave[k], 3.0 * Sin(common::kTwoPi * static_cast<double>(k) / 10.0), 1e-12);
  }
}

TEST(SingleWave, WithEdgesLongerThanTheWaveNeverReachesItsPeak) {
  Samples wave;
  ASSERT_TRUE(SingleGenerate(Set(0.0037, 2.0, 0.2, 100), 1000.0, &wave));
  for (common::uint64 k = 1; k < 100; ++k) {
    EXPECT_NEAR(Envelope(wave, 3.7, k), 0.01 * static_cast<double>(k), 1e-11) << k;
  }
}

TEST(SingleWave, IgnoresHowTheLengthWasStated) {
  CWaveDefSingle stated = Set(0.0037, 2.0, 0.01, 50);
  stated.SetLengthType(static_cast<CWaveDefSingle::LENGTH_TYPE>(3));
  stated.SetWaveTime(9.0);
  stated.SetWavePeriod(-1.0);
  Samples a;
  Samples b;
  ASSERT_TRUE(SingleGenerate(stated, 1000.0, &a));
  ASSERT_TRUE(SingleGenerate(Set(0.0037, 2.0, 0.01, 50), 1000.0, &b));
  EXPECT_EQ(a, b);
}

TEST(SingleWave, OfNoSamplesOrNoRateIsRefused) {
  test::ExpectGenerates(SingleGenerate, Set(0.01, 1.0, 0.0, 0), 1000.0, std::nullopt);
  test::ExpectGenerates(SingleGenerate, Set(0.01, 1.0, 0.0, 5), 0.0, std::nullopt);
  test::ExpectGenerates(SingleGenerate, Set(0.01, 1.0, 0.0, 5), -0.0, std::nullopt);
}

TEST(SingleWave, OfAPeriodOfZeroIsNotANumber) {
  Samples wave;
  ASSERT_TRUE(SingleGenerate(Set(0.0, 1.0, 0.0, 3), 1000.0, &wave));
  for (const double v : wave) EXPECT_TRUE(std::isnan(v));
}

TEST(SingleWave, MatchesItsFormulaForArbitraryParameters) {
  test::RandomValues random(55);
  for (int round = 0; round < 3000; ++round) {
    const double fsamp = random.Value(100, 5000);
    const auto set = Set(random.Value(1e-4, 0.1), random.Value(-10, 10), random.Value(-0.01, 0.1),
                         random.Pick({0U, 1U, 2U, 3U, 17U, random.Below(300)}));
    SCOPED_TRACE(round);
    test::ExpectGenerates(SingleGenerate, set, fsamp, Reference(set, fsamp));
    if (::testing::Test::HasFatalFailure()) return;
  }
}

TEST(SingleWave, IsDefinedWithItsBands) {
  const auto set = Set(0.0037, 2.0, 0.01, 50);
  CWaveDef def;
  def.SetFsamp(1000.0);
  def.SetTolUpperRat(0.25);
  def.SetTolLowerRat(-0.5);
  ASSERT_TRUE(def.SetDefSingle(set));
  EXPECT_EQ(def.GetWaveType(), CWaveDef::WAVE_TYPE_SINGLE);
  EXPECT_EQ(def.GetDefSingle(), set);
  const Wave wave = *Reference(set, 1000.0);
  double peak = 0.0;
  for (const double v : wave) peak = std::max(peak, std::fabs(v));
  Wave upper;
  Wave lower;
  for (const double v : wave) {
    upper.push_back(v + peak * 0.25);
    lower.push_back(v + peak * -0.5);
  }
  test::ExpectSameWave(def.GetWave(), wave);
  test::ExpectSameWave(def.GetTolU(), upper);
  test::ExpectSameWave(def.GetTolL(), lower);
}

}  // namespace
}  // namespace qarv::wave_def
