// The symmetry wave: layouts, shapes, zero net area, and pulses that do not fit.
#include "family/symmetry.h"

#include <gtest/gtest.h>

#include <numeric>

#include "expect_wave.h"
#include "numeric/elementary.h"
#include "random_values.h"
#include "wave_def/wave_def.h"

namespace qarv::wave_def {
namespace {

using namespace common::elementary;

using common::int64;
using common::uint64;
using test::Samples;
using test::Wave;
using Set = CWaveDefSymmetry;
using wave_def_sub::HALF_SINE;
using wave_def_sub::HAVERSINE;
using wave_def_sub::TRAPEZOID;
using wave_def_sub::TRIANGLE;

/// At 1000 Hz: 5 samples, a pulse of 10, 2 samples, a pulse of 10, 3 samples.
Set Pulses(wave_def_sub::WAVE_KIND kind) {
  Set set;
  set.SetWaveKind(kind);
  set.SetPeak(4.0);
  set.SetWidth(0.01);
  set.SetPeakPos(0.5);
  set.SetPreZero(0.005);
  set.SetMidZero(0.002);
  set.SetPostZero(0.003);
  set.SetMidZeroBackward(0.004);
  return set;
}

Samples Generate(const Set& set) {
  Samples wave;
  EXPECT_TRUE(SymmetryGenerate(set, 1000, &wave));
  return wave;
}

// ---- The second computation --------------------------------------------------------------------

__extension__ using Wide = __int128;

enum class Kind { Silence, Main, Compensation };

struct Stretch {
  Wide length;
  Kind kind = Kind::Silence;
};

/// The stretches in their order, each with its length; negative silences reach back.
std::vector<Stretch> StretchesOf(const Set& set, double fsamp) {
  const auto length = [&](double time) {
    const uint64 count = test::Index(time * fsamp + 0.5);
    return time * fsamp < 0 ? Wide{static_cast<int64>(count)} : Wide{count};
  };
  const Wide n = length(set.GetWidth());
  std::vector<Stretch> list{{length(set.GetPreZero())}};
  if (set.GetDevideComp()) {
    list.insert(list.end(), {{n, Kind::Compensation},
                             {length(set.GetMidZero())},
                             {n, Kind::Main},
                             {length(set.GetMidZeroBackward())},
                             {n, Kind::Compensation}});
  } else {
    const bool forward = set.GetCompForward();
    list.insert(list.end(), {{n, forward ? Kind::Compensation : Kind::Main},
                             {length(set.GetMidZero())},
                             {n, forward ? Kind::Main : Kind::Compensation}});
  }
  list.push_back({length(set.GetPostZero())});
  return list;
}

/// A pulse of n samples as (offset, value) pairs; nothing if the triangle's peak lies beyond the
/// width.
std::optional<std::vector<std::pair<Wide, double>>> PulseOf(const Set& set, double a, uint64 n) {
  std::vector<std::pair<Wide, double>> out;
  const double width = static_cast<double>(n);
  if (set.GetWaveKind() == HALF_SINE) {
    for (uint64 k = 0; k < n; ++k) {
      out.emplace_back(k, Sin(static_cast<double>(k) * 3.141592653589793 / width) * a);
    }
  } else if (set.GetWaveKind() == HAVERSINE) {
    const uint64 half = n / 2;
    out.emplace_back(half, a);
    for (uint64 k = 0; k < half; ++k) {
      const double angle = static_cast<double>(k) * 3.141592653589793 / static_cast<double>(half);
      const double y = (Cos(angle) * 0.5 + 0.5) * a;
      out.emplace_back(half - k, y);
      out.emplace_back(half + k, y);
    }
  } else {
    uint64 peak = test::Index(set.GetPeakPos() * width);
    if (peak == 0) peak = 1;
    if (peak > n) return std::nullopt;
    const uint64 rise = peak == n ? n - 1 : peak;
    const uint64 fall = n - rise;
    for (uint64 k = 0; k < rise; ++k)
      out.emplace_back(k, static_cast<double>(k) * (a / static_cast<double>(rise)));
    out.emplace_back(rise, a);
    for (uint64 k = 1; k < fall; ++k) {
      out.emplace_back(rise + k, static_cast<double>(k) * -(a / static_cast<double>(fall)) + a);
    }
  }
  return out;
}

/// The whole, whose length has been found small enough; nothing where a sample falls outside it.
std::optional<Wave> Reference(const Set& set, double fsamp, Wide total) {
  const auto kind = set.GetWaveKind();
  if (fsamp == 0 || set.GetPeak() == 0 || set.GetWidth() == 0 || total <= 0) return std::nullopt;
  if (kind != HALF_SINE && kind != TRIANGLE && kind != HAVERSINE) return std::nullopt;
  Wave wave(static_cast<std::size_t>(total));
  const auto list = StretchesOf(set, fsamp);
  for (const Kind pass : {Kind::Main, Kind::Compensation}) {  // the latter over the former
    const double compensation = set.GetDevideComp() ? -set.GetPeak() * 0.5 : -set.GetPeak();
    Wide at = 0;
    for (const Stretch& s : list) {
      if (s.kind == pass) {
        const auto n = static_cast<uint64>(s.length);
        const auto pulse = PulseOf(set, pass == Kind::Main ? set.GetPeak() : compensation, n);
        if (!pulse) return std::nullopt;
        for (const auto& [offset, value] : *pulse) {
          const Wide i = at + offset;
          if (i >= 0 && i < total) {
            wave[static_cast<std::size_t>(i)] = value;
          } else if (n != 0) {
            return std::nullopt;
          }
        }
      }
      at += s.length;
    }
  }
  return wave;
}

Wide TotalOf(const Set& set, double fsamp) {
  Wide total = 0;
  for (const Stretch& s : StretchesOf(set, fsamp)) total += s.length;
  return total;
}

// ---- Layouts -----------------------------------------------------------------------------------

/// Where a wave is not 0, as first and last samples of its pulses.
std::vector<std::pair<uint64, uint64>> Pulses(const Samples& wave) {
  std::vector<std::pair<uint64, uint64>> out;
  for (uint64 i = 0; i < wave.GetSize(); ++i) {
    if (wave[i] == 0.0) continue;
    if (!out.empty() && out.back().second + 1 == i) {
      out.back().second = i;
    } else {
      out.emplace_back(i, i);
    }
  }
  return out;
}

using Stretches = std::vector<std::pair<uint64, uint64>>;

TEST(SymmetryWave, TheCompensationComesFirstOrLast) {
  Set set = Pulses(HALF_SINE);
  Samples wave = Generate(set);
  EXPECT_EQ(wave.GetSize(), 30U);
  EXPECT_EQ(Pulses(wave), (Stretches{{6, 14}, {18, 26}}));
  EXPECT_EQ(wave[10], 4.0);
  EXPECT_EQ(wave[22], -4.0);
  set.SetCompForward(true);
  wave = Generate(set);
  EXPECT_EQ(wave.GetSize(), 30U);
  EXPECT_EQ(Pulses(wave), (Stretches{{6, 14}, {18, 26}}));
  EXPECT_EQ(wave[10], -4.0);
  EXPECT_EQ(wave[22], 4.0);
}

TEST(SymmetryWave, TheDividedCompensationSurroundsTheMainPulse) {
  Set set = Pulses(HALF_SINE);
  set.SetDevideComp(true);
  const Samples wave = Generate(set);
  EXPECT_EQ(wave.GetSize(), 44U);
  EXPECT_EQ(Pulses(wave), (Stretches{{6, 14}, {18, 26}, {32, 40}}));
  EXPECT_EQ(wave[10], -2.0);
  EXPECT_EQ(wave[22], 4.0);
  EXPECT_EQ(wave[36], -2.0);
  set.SetCompForward(true);
  EXPECT_EQ(Generate(set), wave) << "which side is first does not matter";
  set.SetMidBackward(true);
  EXPECT_EQ(Generate(set), wave);
}

TEST(SymmetryWave, MidZeroBackwardIsForTheDividedCompensationOnly) {
  Set set = Pulses(TRIANGLE);
  const Samples wave = Generate(set);
  set.SetMidZeroBackward(1e30);
  EXPECT_EQ(Generate(set), wave);
}

// ---- Shapes ------------------------------------------------------------------------------------

/// The pulse of n samples alone, behind one sample.
Wave Shape(wave_def_sub::WAVE_KIND kind, unsigned int n, double peakPos = 0.5) {
  Set set;
  set.SetWaveKind(kind);
  set.SetPeak(1.0);
  set.SetWidth(n / 1000.0);
  set.SetPeakPos(peakPos);
  set.SetPreZero(0.001);
  const Samples wave = Generate(set);
  EXPECT_EQ(wave.GetSize(), 2 * n + 1);
  return {wave.begin() + 1, wave.begin() + 1 + n};
}

void ExpectNear(const Wave& a, const Wave& b) {
  ASSERT_EQ(a.size(), b.size());
  for (std::size_t i = 0; i < a.size(); ++i) EXPECT_NEAR(a[i], b[i], 1e-15) << i;
}

TEST(SymmetryWave, AHalfSineEndsOneSampleBeforeItsZero) {
  const double s = std::sqrt(0.5);
  ExpectNear(Shape(HALF_SINE, 4), {0, s, 1, s});
  ExpectNear(Shape(HALF_SINE, 1), {0});
}

TEST(SymmetryWave, AHaversineLeavesItsOuterSamplesZero) {
  ExpectNear(Shape(HAVERSINE, 5), {0, 0.5, 1, 0.5, 0});
  ExpectNear(Shape(HAVERSINE, 4), {0, 0.5, 1, 0.5});
  ExpectNear(Shape(HAVERSINE, 1), {1});
}

TEST(SymmetryWave, ATriangleHasItsPeakWhereItIsTold) {
  ExpectNear(Shape(TRIANGLE, 10, 0.3),
             {0, 1. / 3, 2. / 3, 1, 6. / 7, 5. / 7, 4. / 7, 3. / 7, 2. / 7, 1. / 7});
  ExpectNear(Shape(TRIANGLE, 4, 0.0), {0, 1, 2. / 3, 1. / 3});  // raised to one sample
  ExpectNear(Shape(TRIANGLE, 4, 1.0), {0, 1. / 3, 2. / 3, 1});  // the last sample of the width
  ExpectNear(Shape(TRIANGLE, 2, 0.9), {0, 1});                  // truncated to one sample
  ExpectNear(Shape(TRIANGLE, 1, 0.5), {1});
}

TEST(SymmetryWave, AHaversineOfNoSamplesIsOneSampleWhereTheArrayHasIt) {
  Set set;
  set.SetWaveKind(HAVERSINE);
  set.SetPeak(3.0);
  set.SetWidth(1e-9);
  set.SetPreZero(0.002);
  set.SetMidZero(0.001);
  set.SetPostZero(0.001);
  const Samples wave = Generate(set);  // the main pulse at 2, the compensation at 3
  EXPECT_EQ(wave, (Samples{0, 0, 3, -3}));
  set.SetPostZero(0.0);
  EXPECT_EQ(Generate(set), (Samples{0, 0, 3})) << "the compensation would lie at the end";
}

// ---- Properties --------------------------------------------------------------------------------

TEST(SymmetryWave, HasNoNetArea) {
  test::RandomValues random(56);
  for (int round = 0; round < 2000; ++round) {
    Set set;
    set.SetWaveKind(random.Pick({HALF_SINE, TRIANGLE, HAVERSINE}));
    set.SetPeak(random.Between(-10, 10));
    set.SetWidth(random.Between(0.001, 0.2));
    set.SetPeakPos(random.Between(0, 1));
    set.SetPreZero(random.Between(0, 0.05));
    set.SetMidZero(random.Between(0, 0.05));
    set.SetPostZero(random.Between(0, 0.05));
    set.SetMidZeroBackward(random.Between(0, 0.05));
    set.SetDevideComp(random.OneIn(2));
    set.SetCompForward(random.OneIn(2));
    Samples wave;
    ASSERT_TRUE(SymmetryGenerate(set, 2000, &wave));
    const double sum = std::accumulate(wave.begin(), wave.end(), 0.0);
    EXPECT_LE(std::fabs(sum / 2000), 1e-12 * std::fabs(set.GetPeak()) * set.GetWidth());
  }
}

// ---- Refusals and sizes ------------------------------------------------------------------------

TEST(SymmetryWave, WithoutShapePeakWidthRateOrSamplesIsRefused) {
  const auto refused = [](const Set& set, double fsamp) {
    test::ExpectGenerates(SymmetryGenerate, set, fsamp, std::nullopt);
  };
  for (const int kind : {0, 2, 3, 5, 7, -1}) {
    refused(Pulses(static_cast<wave_def_sub::WAVE_KIND>(kind)), 1000);
  }
  refused(Pulses(HALF_SINE), 0);
  Set set = Pulses(HALF_SINE);
  set.SetPeak(-0.0);
  refused(set, 1000);
  set = Pulses(HALF_SINE);
  set.SetWidth(0);
  refused(set, 1000);
  set = Set();
  set.SetWaveKind(HAVERSINE);
  set.SetPeak(1);
  set.SetWidth(1e-9);
  refused(set, 1000);  // nothing but a pulse of no samples
}

TEST(SymmetryWave, PulsesOutsideTheWholeAreRefused) {
  const auto refused = [](Set set, void (*change)(Set&)) {
    change(set);
    test::ExpectGenerates(SymmetryGenerate, set, 1000, std::nullopt);
  };
  for (const auto kind : {HALF_SINE, TRIANGLE, HAVERSINE}) {
    refused(Pulses(kind), [](Set& s) { s.SetPreZero(-0.003); });   // begins before the array
    refused(Pulses(kind), [](Set& s) { s.SetPostZero(-0.003); });  // ends behind it
    refused(Pulses(kind),
            [](Set& s) { s.SetMidZero(-0.02); });  // the second pulse before the first
  }
  refused(Pulses(TRIANGLE), [](Set& s) { s.SetPeakPos(1.1); });
  refused(Pulses(TRIANGLE), [](Set& s) { s.SetPeakPos(-0.5); });
  refused(Pulses(TRIANGLE), [](Set& s) { s.SetPeakPos(std::nan("")); });
  refused(Pulses(TRIANGLE), [](Set& s) { s.SetWidth(0.0001); });  // a triangle of no samples
}

TEST(SymmetryWave, PulsesThatOverlapAreWrittenOneAfterTheOther) {
  Set set = Pulses(HALF_SINE);
  set.SetMidZero(-0.0046);  // the compensation begins on the sixth sample of the main pulse
  const Samples wave = Generate(set);
  const Samples apart = Generate(Pulses(HALF_SINE));
  ASSERT_EQ(wave.GetSize(), 24U);
  for (uint64 k = 0; k < 6; ++k) EXPECT_EQ(wave[5 + k], apart[5 + k]);
  for (uint64 k = 0; k < 10; ++k) EXPECT_EQ(wave[11 + k], apart[17 + k]);
}

TEST(SymmetryWave, SizesThatNoArrayHasEndAtOnce) {
  for (const double time : {1e30, 1e12, HUGE_VAL, std::nan(""), 9.3e15, 1.8e16}) {
    for (const auto change :
         {&Set::SetWidth, &Set::SetPreZero, &Set::SetMidZero, &Set::SetPostZero}) {
      for (const auto kind : {HALF_SINE, TRIANGLE, HAVERSINE}) {
        Set set = Pulses(kind);
        (set.*change)(time);
        test::ExpectTooLarge(SymmetryGenerate, set, 1000);
      }
    }
  }
}

TEST(SymmetryWave, MatchesItsFormulaForArbitraryParameters) {
  test::RandomValues random(57);
  int built = 0;
  for (int round = 0; round < 6000; ++round) {
    Set set;
    set.SetWaveKind(random.OneIn(20) ? TRAPEZOID : random.Pick({HALF_SINE, TRIANGLE, HAVERSINE}));
    set.SetPeak(random.Value(-10, 10));
    set.SetWidth(random.OneIn(8) ? random.Between(0, 0.003) : random.Value(0.001, 0.1));
    set.SetPeakPos(random.Value(-0.1, 1.1));
    set.SetPreZero(random.Value(-0.002, 0.02));
    set.SetMidZero(random.Value(-0.02, 0.02));
    set.SetPostZero(random.Value(-0.002, 0.02));
    set.SetMidZeroBackward(random.Value(-0.02, 0.02));
    set.SetDevideComp(random.OneIn(2));
    set.SetCompForward(random.OneIn(2));
    const double fsamp = random.Value(200, 3000);
    const Wide total = TotalOf(set, fsamp);
    SCOPED_TRACE(round);
    if (total <= 100000) {
      const auto expected = Reference(set, fsamp, total);
      built += expected ? 1 : 0;
      test::ExpectGenerates(SymmetryGenerate, set, fsamp, expected);
    } else if (total > Wide{1} << 42) {
      test::ExpectTooLarge(SymmetryGenerate, set, fsamp);
    }
    if (::testing::Test::HasFatalFailure()) return;
  }
  EXPECT_GT(built, 2000);
}

TEST(SymmetryWave, IsDefinedThroughTheDefinitionObject) {
  const Set set = Pulses(HAVERSINE);
  CWaveDef def;
  def.SetFsamp(1000);
  ASSERT_TRUE(def.SetDefSymmetry(set));
  EXPECT_EQ(def.GetWaveType(), CWaveDef::WAVE_TYPE_SYMMETRY);
  EXPECT_EQ(def.GetDefSymmetry(), set);
  test::ExpectSameWave(def.GetWave(), *Reference(set, 1000, 30));
  EXPECT_FALSE(def.SetDefSymmetry(Set()));
  EXPECT_EQ(def.GetNsamp(), 0U);
}

}  // namespace
}  // namespace qarv::wave_def
