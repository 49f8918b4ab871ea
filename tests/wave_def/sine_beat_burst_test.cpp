// Sine beats and bursts: packets, rests, tapers, and sizes that no array has.
#include "family/sine_beat_burst.h"

#include <gtest/gtest.h>

#include <limits>

#include "common/numeric/constants.h"
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
using Set = CWaveDefSineBeatBurst;

Set Packets(Set::WAVE_KIND kind, double freq, unsigned int cycle, unsigned int frame, double rest) {
  Set set;
  set.SetWaveKind(kind);
  set.SetAmpl(2.0);
  set.SetFreq(freq);
  set.SetCycle(cycle);
  set.SetFrame(frame);
  set.SetRestTime(rest);
  return set;
}

Samples Generate(const Set& set, double fsamp) {
  Samples wave;
  EXPECT_TRUE(SineBeatBurstGenerate(set, fsamp, &wave));
  return wave;
}

// ---- The second computation --------------------------------------------------------------------

__extension__ using Wide = __int128;

/// The samples of a stretch, negative where its duration is.
Wide SignedCount(double samples) {
  const uint64 count = test::Index(samples + 0.5);
  return samples < 0 ? Wide{static_cast<int64>(count)} : Wide{count};
}

/// The length of the whole.
Wide TotalOf(const Set& set, double fsamp) {
  const Wide packet = SignedCount(set.GetCycle() * (1.0 / set.GetFreq()) * fsamp);
  return packet * set.GetFrame() +
         (Wide{set.GetFrame()} - 1) * SignedCount(set.GetRestTime() * fsamp);
}

/// A window of the edges, laid on the samples first .. last, whether they exist or not.
void Taper(Wave* packet, bool hanning, bool rising, int64 first, int64 last) {
  if (last <= first) return;
  // In one of the two ends lies outside the range of a signed number, the length still is exact.
  const auto length = static_cast<double>(static_cast<uint64>(last) - static_cast<uint64>(first));
  for (std::size_t i = 0; i < packet->size(); ++i) {
    const auto at = static_cast<int64>(i);
    if (at < first || at > last) continue;
    const auto from =
        static_cast<double>(rising ? static_cast<uint64>(at) - static_cast<uint64>(first)
                                   : static_cast<uint64>(last) - static_cast<uint64>(at));
    (*packet)[i] *= hanning ? 0.5 - 0.5 * Cos(3.141592653589793 * from / length) : from / length;
  }
}

Wave Packet(const Set& set, double fsamp, uint64 n) {
  Wave packet(n);
  const double dt = 1.0 / fsamp;
  for (uint64 k = 0; k < n; ++k) {
    const double x = ((static_cast<double>(k) * dt) * set.GetFreq()) * 6.283185307179586;
    packet[k] = Sin(x) * set.GetAmpl();
    if (set.GetWaveKind() == Set::SINE_BEAT) packet[k] *= Sin(x / set.GetCycle() * 0.5);
  }
  if (set.GetWaveKind() == Set::SINE_BURST && set.GetEdging()) {
    const double cyclesPerSample = dt * set.GetFreq();
    const uint64 rise = test::Index(set.GetEdgeRise() / cyclesPerSample + 0.5);
    const uint64 fall = test::Index(set.GetEdgeFall() / cyclesPerSample + 0.5);
    if (set.GetEdgeWindow() == Set::WINDOW_HALF_HANNING ||
        set.GetEdgeWindow() == Set::WINDOW_RAMP) {
      const bool hanning = set.GetEdgeWindow() == Set::WINDOW_HALF_HANNING;
      Taper(&packet, hanning, true, 0, static_cast<int64>(rise));
      Taper(&packet, hanning, false, static_cast<int64>(n - 1 - fall), static_cast<int64>(n - 1));
    }
  }
  return packet;
}

/// The whole, packet after packet; `total` is small enough to be built.
std::optional<Wave> Reference(const Set& set, double fsamp, Wide total) {
  const bool isKind = set.GetWaveKind() == Set::SINE_BEAT || set.GetWaveKind() == Set::SINE_BURST;
  if (fsamp == 0 || set.GetAmpl() == 0 || set.GetFreq() == 0 || set.GetCycle() == 0 ||
      set.GetFrame() == 0 || !isKind) {
    return std::nullopt;
  }
  const uint64 n = test::Index(set.GetCycle() * (1.0 / set.GetFreq()) * fsamp + 0.5);
  if (n == 0 || total <= 0) return std::nullopt;
  const Wave packet = Packet(set, fsamp, n);
  Wave wave(static_cast<std::size_t>(total));
  if (wave.size() < n) return wave;  // every copy is refused
  const uint64 step = n + test::Index(set.GetRestTime() * fsamp + 0.5);
  for (uint64 j = 0; j < set.GetFrame(); ++j) {
    for (uint64 k = 0; k < n; ++k) wave[(j * step + k) % wave.size()] = packet[k];
  }
  return wave;
}

// ---- Packets -----------------------------------------------------------------------------------

TEST(SineBeatBurst, OnePacketHasNoRest) {
  for (const double rest : {0.0, 0.5, 1e30}) {
    EXPECT_EQ(Generate(Packets(Set::SINE_BURST, 100, 10, 1, rest), 10000).GetSize(), 1000U);
  }
}

TEST(SineBeatBurst, RestsLieBetweenThePacketsOnly) {
  const Samples wave =
      Generate(Packets(Set::SINE_BURST, 100, 1, 3, 0.005), 10000);  // 100 and 50 samples
  ASSERT_EQ(wave.GetSize(), 400U);
  for (const uint64 begin : std::vector<uint64>{0, 150, 300}) {
    for (uint64 k = 0; k < 100; ++k) EXPECT_EQ(wave[begin + k], wave[k]);
    EXPECT_NE(wave[begin + 1], 0.0);
  }
  for (const uint64 begin : std::vector<uint64>{100, 250}) {
    for (uint64 k = 0; k < 50; ++k) EXPECT_EQ(wave[begin + k], 0.0);
  }
}

TEST(SineBeatBurst, ABeatRisesToTheMiddleAndFallsBack) {
  const Samples wave = Generate(Packets(Set::SINE_BEAT, 100, 10, 1, 0), 10000);
  EXPECT_EQ(wave[0], 0.0);
  for (uint64 k = 1; k < 1000; ++k) {
    const double t = static_cast<double>(k) / 10000;
    EXPECT_NEAR(wave[k], 2.0 * Sin(common::kTwoPi * 100 * t) * Sin(common::kPi * 10 * t), 1e-12);
  }
  EXPECT_NEAR(wave[525], 2.0, 0.01) << "the peak next to the middle";
}

TEST(SineBeatBurst, ABurstWithoutEdgesIsAPlainSine) {
  Set set = Packets(Set::SINE_BURST, 100, 3, 2, 0.001);
  const Samples plain = Generate(set, 10000);
  for (uint64 k = 0; k < 300; ++k) {
    EXPECT_NEAR(plain[k], 2.0 * Sin(common::kTwoPi * 100 * static_cast<double>(k) / 10000), 1e-12);
  }
  set.SetEdging(false, 1, 1, Set::WINDOW_RAMP);
  EXPECT_EQ(Generate(set, 10000), plain);
  set.SetEdging(true, 1, 1, Set::WINDOW_NONE);
  EXPECT_EQ(Generate(set, 10000), plain) << "no window";
  set.SetEdging(true, 1, 1, static_cast<Set::WINDOW_TYPE>(3));
  EXPECT_EQ(Generate(set, 10000), plain) << "an unknown window";
}

TEST(SineBeatBurst, ABeatIgnoresEdging) {
  Set set = Packets(Set::SINE_BEAT, 100, 3, 1, 0);
  const Samples plain = Generate(set, 10000);
  set.SetEdging(true, 1, 1, Set::WINDOW_RAMP);
  EXPECT_EQ(Generate(set, 10000), plain);
}

TEST(SineBeatBurst, EdgesTaperBothEndsOfEveryPacket) {
  for (const auto window : {Set::WINDOW_RAMP, Set::WINDOW_HALF_HANNING}) {
    Set set = Packets(Set::SINE_BURST, 99, 4, 2, 0.001);
    const Samples plain = Generate(set, 10000);
    const uint64 n = 404;
    set.SetEdging(true, 1, 2, window);
    const Samples tapered = Generate(set, 10000);
    const auto weight = [&](double part) {
      return window == Set::WINDOW_RAMP ? part : std::pow(Sin(common::kPi / 2 * part), 2);
    };
    for (const uint64 begin : std::vector<uint64>{0, n + 10}) {
      EXPECT_EQ(tapered[begin], 0.0);
      EXPECT_EQ(tapered[begin + n - 1], 0.0) << "the last sample is the taper's outer end";
      for (uint64 k = 1; k + 1 < n; ++k) {
        double expected = plain[k];
        if (k <= 101) expected *= weight(static_cast<double>(k) / 101);
        if (k >= n - 1 - 202) expected *= weight(static_cast<double>(n - 1 - k) / 202);
        EXPECT_NEAR(tapered[begin + k], expected, 1e-13) << k;
      }
    }
  }
}

TEST(SineBeatBurst, EdgesLongerThanThePacketKeepTheirShapeAndTouchNothingElse) {
  Set set = Packets(Set::SINE_BURST, 100, 2, 2, 0.002);  // 200 samples, 20 of rest
  const Samples plain = Generate(set, 10000);
  set.SetEdging(true, 10, 10, Set::WINDOW_RAMP);  // 1000 samples each
  const Samples tapered = Generate(set, 10000);
  ASSERT_EQ(tapered.GetSize(), plain.GetSize());
  for (uint64 k = 0; k < 200; ++k) {
    const double weight = static_cast<double>(k) / 1000 * (static_cast<double>(199 - k) / 1000);
    EXPECT_NEAR(tapered[k], plain[k] * weight, 1e-13);
    EXPECT_EQ(tapered[220 + k], tapered[k]);
  }
  for (uint64 k = 200; k < 220; ++k) EXPECT_EQ(tapered[k], 0.0);
}

// ---- Refusals and sizes ------------------------------------------------------------------------

TEST(SineBeatBurst, WithoutKindAmplitudeFrequencyCyclesFramesOrRateIsRefused) {
  const Set good = Packets(Set::SINE_BEAT, 100, 10, 1, 0);
  const auto refused = [&](void (*change)(Set&), double fsamp = 10000) {
    Set set(good);
    change(set);
    test::ExpectGenerates(SineBeatBurstGenerate, set, fsamp, std::nullopt);
  };
  refused([](Set& s) { s.SetWaveKind(Set::WAVE_KIND_NONE); });
  refused([](Set& s) { s.SetWaveKind(static_cast<Set::WAVE_KIND>(3)); });
  refused([](Set& s) { s.SetAmpl(0); });
  refused([](Set& s) { s.SetFreq(-0.0); });
  refused([](Set& s) { s.SetCycle(0); });
  refused([](Set& s) { s.SetFrame(0); });
  refused([](Set&) {}, 0.0);
  refused([](Set& s) { s.SetFreq(1e9); });  // less than half a sample
}

TEST(SineBeatBurst, PacketsThatOverlapLieOneOnTheOther) {
  const Set set = Packets(Set::SINE_BURST, 100, 1, 3, -0.0041);  // 100 samples, a step of 60
  const Samples wave = Generate(set, 10000);
  const Samples packet = Generate(Packets(Set::SINE_BURST, 100, 1, 1, 0), 10000);
  ASSERT_EQ(wave.GetSize(), 220U);
  for (uint64 k = 0; k < 60; ++k) {
    EXPECT_EQ(wave[k], packet[k]);
    EXPECT_EQ(wave[60 + k], packet[k]);
  }
  for (uint64 k = 0; k < 100; ++k) EXPECT_EQ(wave[120 + k], packet[k]);
}

TEST(SineBeatBurst, ATotalShorterThanAPacketPrintsAndGoesOn) {
  ::testing::internal::CaptureStderr();
  const Samples wave =
      Generate(Packets(Set::SINE_BURST, 100, 1, 3, -0.0141), 10000);  // a step of -40
  const std::string printed = ::testing::internal::GetCapturedStderr();
  EXPECT_EQ(wave, Samples(20)) << "no packet fits, the wave is silent";
  EXPECT_EQ(std::count(printed.begin(), printed.end(), '\n'), 3) << "one line for every packet";
}

TEST(SineBeatBurst, ThousandsOfPacketsThatDoNotFitPrintTenLinesAndTheirNumber) {
  // Packets of 10000 samples with rests of -10001: each one makes the whole a sample shorter.
  const auto printed = [](unsigned int frames) {
    ::testing::internal::CaptureStderr();
    const Samples wave = Generate(Packets(Set::SINE_BURST, 1, 1, frames, -1.0002), 10000);
    const std::string lines = ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(wave, Samples(10000 - (frames - 1))) << "no packet fits, the wave is silent";
    return lines;
  };
  const auto count = [](const std::string& lines) {
    return std::count(lines.begin(), lines.end(), '\n');
  };
  EXPECT_EQ(count(printed(10)), 10);
  const std::string lines = printed(4000);
  EXPECT_EQ(count(lines), 11);
  EXPECT_TRUE(lines.ends_with("[Error] and 3990 more of the same\n")) << lines;
}

TEST(SineBeatBurst, ATotalOfNothingOrLessIsRefused) {
  test::ExpectGenerates(SineBeatBurstGenerate, Packets(Set::SINE_BURST, 100, 1, 3, -0.0151), 10000,
                        std::nullopt);
  test::ExpectGenerates(SineBeatBurstGenerate, Packets(Set::SINE_BURST, 100, 1, 3, -5), 10000,
                        std::nullopt);
}

TEST(SineBeatBurst, CountlessPacketsOnOnePlaceAreOnePacket) {
  const Set set =
      Packets(Set::SINE_BURST, 100, 1, std::numeric_limits<unsigned int>::max(), -0.0101);
  EXPECT_EQ(Generate(set, 10000), Generate(Packets(Set::SINE_BURST, 100, 1, 1, 0), 10000));
}

TEST(SineBeatBurst, SizesThatNoArrayHasEndAtOnce) {
  constexpr unsigned int kMax = std::numeric_limits<unsigned int>::max();
  constexpr double kInf = std::numeric_limits<double>::infinity();
  const auto tooLarge = [](const Set& set) {
    test::ExpectTooLarge(SineBeatBurstGenerate, set, 10000);
  };
  tooLarge(Packets(Set::SINE_BURST, 100, 10, kMax, 1e6));
  for (const double rest : {1e30, 1e12, kInf, std::nan(""), 1.8e15, 9.3e14}) {
    tooLarge(Packets(Set::SINE_BURST, 100, 10, 3, rest));
    tooLarge(Packets(Set::SINE_BURST, 100, 10, kMax, rest));
  }
  for (const double freq : {1e-300, 1e-14, std::nan("")})
    tooLarge(Packets(Set::SINE_BEAT, freq, kMax, 1, 0));
  tooLarge(Packets(Set::SINE_BEAT, -100, 10, 1, 0));  // a negative number of samples
  // 2^61 samples would wrap to an allocation of nothing.
  tooLarge(Packets(Set::SINE_BURST, 100, 100, 2, 0x1p61 / 10000));
}

TEST(SineBeatBurst, MatchesItsFormulaForArbitraryParameters) {
  test::RandomValues random(53);
  int built = 0;
  int taken = 0;
  ::testing::internal::CaptureStderr();  // copies that negative rests refuse are reported
  for (int round = 0; round < 6000; ++round) {
    Set set;
    set.SetWaveKind(random.OneIn(20) ? Set::WAVE_KIND_NONE
                                     : random.Pick({Set::SINE_BEAT, Set::SINE_BURST}));
    set.SetAmpl(random.Value(-10, 10));
    set.SetFreq(random.Value(20, 700));
    set.SetCycle(random.Below(10));
    set.SetFrame(random.Below(5));
    set.SetRestTime(random.Value(-0.05, 0.05));
    if (random.OneIn(2)) {
      set.SetEdging(true, random.Below(9), random.Below(9),
                    random.Pick({Set::WINDOW_HALF_HANNING, Set::WINDOW_RAMP, Set::WINDOW_NONE}));
    }
    const double fsamp = random.Value(500, 5000);
    const Wide total = TotalOf(set, fsamp);
    SCOPED_TRACE(round);
    if (total <= 100000) {
      const auto expected = Reference(set, fsamp, total);
      built += expected ? 1 : 0;
      ++taken;
      test::ExpectGenerates(SineBeatBurstGenerate, set, fsamp, expected);
    } else if (total > Wide{1} << 42) {
      test::ExpectTooLarge(SineBeatBurstGenerate, set, fsamp);
    }
    if (::testing::Test::HasFatalFailure()) break;
  }
  ::testing::internal::GetCapturedStderr();
  EXPECT_GT(built, 2000);
  EXPECT_GT(taken, 4500);
}

TEST(SineBeatBurst, IsDefinedThroughTheDefinitionObject) {
  const Set set = Packets(Set::SINE_BEAT, 100, 10, 2, 0.01);
  CWaveDef def;
  def.SetFsamp(10000);
  ASSERT_TRUE(def.SetDefSineBeatBurst(set));
  EXPECT_EQ(def.GetWaveType(), CWaveDef::WAVE_TYPE_SINE_BEAT_BURST);
  EXPECT_EQ(def.GetDefSineBeatBurst(), set);
  test::ExpectSameWave(def.GetWave(), *Reference(set, 10000, TotalOf(set, 10000)));
  EXPECT_FALSE(def.SetDefSineBeatBurst(Set()));
  EXPECT_EQ(def.GetNsamp(), 0U);
}

}  // namespace
}  // namespace qarv::wave_def
