// The damped-sine synthesis: its three methods, their rules, and that the table ends at rest.
#include "family/damping.h"

#include <gtest/gtest.h>

#include <complex>
#include <numeric>

#include "common/numeric/calc_wave.h"
#include "common/numeric/constants.h"
#include "expect_wave.h"
#include "numeric/elementary.h"
#include "random_values.h"
#include "wave_def/wave_def.h"

namespace qarv::wave_def {
namespace {

using namespace common::elementary;

using namespace com_def::comdefconst;
using common::kPi;
using common::kTwoPi;
using common::uint64;
using test::Samples;
using test::Wave;
using Set = CWaveDefDamping;
using Elm = CWaveDefDampingElm;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

Elm Component(double freq, double ampl, double zeta, double delay, unsigned int halves = 0) {
  Elm elm;
  elm.SetFreq(freq);
  elm.SetAmpl(ampl);
  elm.SetZeta(zeta);
  elm.SetDelay(delay);
  elm.SetNumHalf(halves);
  return elm;
}

Set Synthesis(SYNC_WAVE_TYPE type, uint64 n, const std::list<Elm>& elms, double freq = 0,
              double zeta = 0) {
  Set set;
  set.SetSyncWaveType(type);
  set.SetNsamp(n);
  set.SetFreq(freq);
  set.SetZeta(zeta);
  set.SetDefDampingElmList(elms);
  return set;
}

Samples Generate(const Set& set, double fsamp) {
  Samples wave;
  EXPECT_TRUE(DampingSynthesize(set, fsamp, &wave));
  EXPECT_EQ(wave.GetSize(), set.GetNsamp());
  return wave;
}

// ---- The second computation --------------------------------------------------------------------

/// Adds value(k) from the sample of the delay on.
template <class Value>
void Lay(Wave* wave, double delay, double dt, uint64 length, Value value) {
  const uint64 s = test::Index(std::floor(delay / dt));
  for (uint64 k = 0; k < length && s < wave->size() && s + k < wave->size(); ++k)
    (*wave)[s + k] += value(k);
}

void LayDampedSine(Wave* wave, double dt, double freq, double ampl, double zeta, double delay) {
  double held = 0.0;
  Lay(wave, delay, dt, wave->size(), [&](uint64 k) {
    const double x = (static_cast<double>(k) * dt) * (freq * 6.283185307179586);
    const double e = Exp(x * zeta);
    if (!(e == 0.0)) held = Sin(x) / e;
    return held * ampl;
  });
}

void LayModified(Wave* wave, double dt, double freq, double ampl, double zeta, double delay) {
  const double phi = Atan(zeta * (-2.0) / (zeta * zeta - 1.0));
  double held = 0.0;
  Lay(wave, delay, dt, wave->size(), [&](uint64 k) {
    const double x = (static_cast<double>(k) * dt) * (freq * 6.283185307179586);
    const double e = Exp(x * zeta);
    if (!(e == 0.0)) held = (Cos(x + phi) * x + Sin(x)) * (Exp(1.0) * (ampl * zeta)) / e;
    return held;
  });
}

void LayWavelet(Wave* wave, double fsamp, const Elm& elm) {
  uint64 halves = elm.GetNumHalf();
  if (halves < 3) halves = 3;
  if (halves % 2 == 0) ++halves;
  const double omega = elm.GetFreq() * 6.283185307179586;
  const double window = omega / static_cast<double>(halves);
  const double dt = 1.0 / fsamp;
  const uint64 length = test::Index((static_cast<double>(halves) * 0.5) * fsamp / elm.GetFreq());
  Lay(wave, 0.0 + elm.GetDelay(), dt, length, [&](uint64 k) {
    const double t = static_cast<double>(k) * dt;
    return Sin(t * omega) * elm.GetAmpl() * Sin(t * window);
  });
}

/// What compensates a sum of damped sines.
struct Compensation {
  double ampl, delay, shift;
};

Compensation Compensate(const Set& set) {
  double V = 0;
  double D = 0;
  for (const Elm& e : set.GetDefDampingElmList()) {
    if (e.GetAmpl() == 0.0) continue;
    const double m = (e.GetFreq() * 6.283185307179586) * (e.GetZeta() * e.GetZeta() + 1.0);
    const double q = e.GetAmpl() / m;
    V += q;
    D += e.GetZeta() * (-2.0) * e.GetAmpl() / (m * m) - q * e.GetDelay();
  }
  const double W = set.GetFreq() * 6.283185307179586;
  const double M = set.GetZeta() * set.GetZeta() + 1.0;
  Compensation c{-(W * V * M), 0.0, 0.0};
  if (!(c.ampl == 0.0)) c.delay = (W * D) * M / c.ampl - (set.GetZeta() + set.GetZeta()) / (W * M);
  if (-c.delay > 0.0) c.shift = -c.delay;
  return c;
}

std::optional<Wave> Reference(const Set& set, double fsamp) {
  const auto type = set.GetSyncWaveType();
  if (fsamp == 0 || set.GetNsamp() == 0 || set.GetElmNum() == 0 || type < 1 || type > 3)
    return std::nullopt;
  Wave wave(set.GetNsamp());
  const double dt = 1.0 / fsamp;
  const Compensation c = Compensate(set);
  for (const Elm& e : set.GetDefDampingElmList()) {
    if (e.GetAmpl() == 0.0) continue;
    if (type == 1)
      LayDampedSine(&wave, dt, e.GetFreq(), e.GetAmpl(), e.GetZeta(), e.GetDelay() + c.shift);
    if (type == 2)
      LayModified(&wave, dt, e.GetFreq(), e.GetAmpl(), e.GetZeta(), 0.0 + e.GetDelay());
    if (type == 3) LayWavelet(&wave, fsamp, e);
  }
  if (type == 1) LayDampedSine(&wave, dt, set.GetFreq(), c.ampl, set.GetZeta(), c.delay + c.shift);
  return wave;
}

TEST(DampedSines, MatchTheirFormulaForArbitraryParameters) {
  test::RandomValues random(51);
  for (int round = 0; round < 4000; ++round) {
    std::list<Elm> elms;
    for (unsigned int i = random.Below(6); i > 0; --i) {
      elms.push_back(
          Component(random.Value(5, 400), random.OneIn(6) ? 0.0 : random.Value(-10, 10),
                    random.OneIn(8) ? random.Pick({0.0, 1.0, -0.05, -5.0}) : random.Value(0, 0.3),
                    random.Value(-0.05, 0.3), random.Below(12)));
    }
    const Set set = Synthesis(
        random.OneIn(20) ? SYNC_WAVE_NONE
                         : random.Pick({SYNC_WAVE_DAMPED_SINE, SYNC_WAVE_DAMPED_SINE_MODIFIED,
                                        SYNC_WAVE_WAVELET}),
        random.Pick({0U, 1U, 2U, 3U, 64U, 255U}), elms, random.Value(1, 50), random.Value(0, 1));
    const double fsamp = random.Value(200, 3000);
    SCOPED_TRACE(round);
    test::ExpectGenerates(DampingSynthesize, set, fsamp, Reference(set, fsamp));
    if (::testing::Test::HasFatalFailure()) return;
  }
}

// ---- Rules -------------------------------------------------------------------------------------

TEST(DampedSines, AComponentIsADecayingSineFromItsDelayOn) {
  Wave wave(100);
  ASSERT_TRUE(AddDampedSine(wave.data(), 100, 1000, 40, 3, 0.05, 0.02));
  for (std::size_t k = 0; k < 100; ++k) {
    const double t = k < 20 ? 0 : (static_cast<double>(k) - 20) / 1000;
    EXPECT_NEAR(wave[k], 3 * Exp(-0.05 * kTwoPi * 40 * t) * Sin(kTwoPi * 40 * t), 1e-13) << k;
  }
  EXPECT_FALSE(AddDampedSine(nullptr, 100, 1000, 40, 3, 0.05, 0));
  EXPECT_FALSE(AddModifiedDampedSine(nullptr, 100, 1000, 40, 3, 0.05, 0));
}

TEST(DampedSines, TheValueIsHeldWhereTheDivisorHasVanished) {
  // A negative damping grows: exp(x zeta) underflows to 0 behind some sample.
  Wave wave(400);
  ASSERT_TRUE(AddDampedSine(wave.data(), 400, 1000, 37, 1, -10, 0));
  std::size_t last = 0;
  while (last + 1 < 400 && Exp(static_cast<double>(last + 1) * 0.001 * (37 * kTwoPi) * -10) != 0.0)
    ++last;
  ASSERT_GT(last, 10U);
  ASSERT_LT(last, 399U);
  for (std::size_t k = last + 1; k < 400; ++k) EXPECT_EQ(wave[k], wave[last]) << k;
  Wave modified(400);
  ASSERT_TRUE(AddModifiedDampedSine(modified.data(), 400, 1000, 37, 1, -10, 0));
  for (std::size_t k = last + 1; k < 400; ++k) EXPECT_EQ(modified[k], modified[last]) << k;
}

TEST(DampedSines, ComponentsThatStartOutsideAddNothing) {
  for (const double delay : {0.1, 0.2, 1e30, -0.001, -1e-9, -1e30, kInf, -kInf, kNaN}) {
    Wave wave(100);
    ASSERT_TRUE(AddDampedSine(wave.data(), 100, 1000, 40, 3, 0.05, delay));
    ASSERT_TRUE(AddModifiedDampedSine(wave.data(), 100, 1000, 40, 3, 0.05, delay));
    EXPECT_EQ(wave, Wave(100)) << delay;
    EXPECT_EQ(Generate(Synthesis(SYNC_WAVE_WAVELET, 100, {Component(40, 3, 0, delay)}), 1000),
              Samples(100));
  }
}

TEST(DampedSines, OneThatRunsPastTheEndIsCutThere) {
  Wave wave(101, 0.0);
  ASSERT_TRUE(AddDampedSine(wave.data(), 100, 1000, 40, 3, 0.05, 0.0971));
  EXPECT_EQ(wave[96], 0.0);
  EXPECT_NE(wave[98], 0.0);
  EXPECT_NE(wave[99], 0.0);
  EXPECT_EQ(wave[100], 0.0) << "behind the buffer";
}

TEST(DampedSines, TheStartIsTheDelayDividedByTheRoundedInterval) {
  // 0.3 / (1 / 1000) is 299.99999999999994 and 0.3 * 1000 is 300: the division decides.
  ASSERT_LT(0.29 / (1.0 / 1000), 290.0 + 1e-9);
  for (int ms = 1; ms < 90; ++ms) {
    const double delay = ms / 1000.0;
    Wave wave(100);
    ASSERT_TRUE(AddDampedSine(wave.data(), 100, 1000, 40, 3, 0, delay));
    const auto start = static_cast<std::size_t>(std::floor(delay / (1.0 / 1000)));
    EXPECT_EQ(wave[start], 0.0);
    EXPECT_NE(wave[start + 1], 0.0) << ms;
  }
}

TEST(DampedSines, ZeroAmplitudesAreSkippedByEveryMethod) {
  const Elm real = Component(50, 2, 0.1, 0.01, 5);
  const Elm zero = Component(kNaN, -0.0, kNaN, kNaN, 5);
  for (const auto type :
       {SYNC_WAVE_DAMPED_SINE, SYNC_WAVE_DAMPED_SINE_MODIFIED, SYNC_WAVE_WAVELET}) {
    EXPECT_EQ(Generate(Synthesis(type, 300, {zero, real, zero}, 10, 0.5), 1000),
              Generate(Synthesis(type, 300, {real}, 10, 0.5), 1000));
  }
  const double values[] = {kNaN};
  const double zeros[] = {0.0};
  double v = 9;
  double d = 9;
  EXPECT_TRUE(CalcDampedSineResidual(1, values, zeros, values, values, &v, &d));
  EXPECT_EQ(v, 0.0);
  EXPECT_EQ(d, 0.0);
}

TEST(DampedSines, TheFirstSampleOfAModifiedOneIsZero) {
  const Samples wave = Generate(
      Synthesis(SYNC_WAVE_DAMPED_SINE_MODIFIED, 1000, {Component(100, 1, 0.05, 0)}), 10000);
  EXPECT_EQ(wave[0], 0.0);
  EXPECT_NE(wave[1], 0.0);
  EXPECT_EQ(
      Generate(Synthesis(SYNC_WAVE_DAMPED_SINE_MODIFIED, 100, {Component(100, 1, 0.0, 0)}), 10000),
      Samples(100))
      << "without damping it is nothing";
}

TEST(DampedSines, AWaveletHasAnOddNumberOfHalfCyclesAndAtLeastThree) {
  const auto lengthOf = [](unsigned int halves) {
    const Samples wave =
        Generate(Synthesis(SYNC_WAVE_WAVELET, 200, {Component(100, 1, 0, 0, halves)}), 5100);
    uint64 last = 0;
    for (uint64 k = 0; k < 200; ++k) last = std::fabs(wave[k]) > 1e-12 ? k : last;
    return last;
  };
  EXPECT_EQ(lengthOf(0), lengthOf(3));
  EXPECT_EQ(lengthOf(1), lengthOf(3));
  EXPECT_EQ(lengthOf(2), lengthOf(3));
  EXPECT_EQ(lengthOf(3), 75U);   // 3 / 2 * 51 = 76.5 samples, the last one written is 75
  EXPECT_EQ(lengthOf(4), 126U);  // 5 / 2 * 51 = 127.5
  EXPECT_EQ(lengthOf(5), 126U);
}

TEST(DampedSines, AWaveletOfFiveHalfCyclesCoversTwentyFiveSamples) {
  Samples wave = Generate(Synthesis(SYNC_WAVE_WAVELET, 60, {Component(100, 1, 0, 0.01, 5)}), 1000);
  for (uint64 k = 0; k < 60; ++k) {
    const double t = (static_cast<double>(k) - 10) / 1000;
    const bool inside = k >= 10 && k < 35;
    const double expected = inside ? Sin(kTwoPi * 100 * t) * Sin(kTwoPi * 100 * t / 5) : 0.0;
    EXPECT_NEAR(wave[k], expected, 1e-13) << k;
  }
}

TEST(DampedSines, ANegativeCompensationDelayShiftsEverything) {
  const Set set = Synthesis(SYNC_WAVE_DAMPED_SINE, 400, {Component(50, 2, 0.05, 0.0)}, 10, 0.8);
  const Compensation c = Compensate(set);
  ASSERT_LT(c.delay, 0.0);
  const double freq[] = {50};
  const double ampl[] = {2};
  const double zeta[] = {0.05};
  const double delay[] = {0};
  Wave wave(400);
  EXPECT_EQ(SynthesizeDampedSines(wave.data(), 400, 1000, 0, 1, freq, ampl, zeta, delay, 10, 0.8),
            -c.delay);
  Wave alone(400);
  ASSERT_TRUE(AddDampedSine(alone.data(), 400, 1000, 10, c.ampl, 0.8, 0.0));
  EXPECT_EQ(wave[1], alone[1]) << "the compensation starts at sample 0";
  EXPECT_EQ(
      SynthesizeDampedSines(wave.data(), 400, 1000, 0.25, 1, freq, ampl, zeta, delay, 10, 0.8),
      0.25)
      << "the time origin is the least shift";
}

TEST(DampedSines, AShiftThatIsNoNumberIsTheTimeOrigin) {
  const double freq[] = {50};
  const double ampl[] = {2};
  const double zeta[] = {0.05};
  const double delay[] = {kNaN};
  Wave wave(100);
  EXPECT_EQ(SynthesizeDampedSines(wave.data(), 100, 1000, 0, 1, freq, ampl, zeta, delay, 10, 0.8),
            0.0);
}

TEST(DampedSines, ACompensatingFrequencyOfZeroCompensatesNothing) {
  const std::list<Elm> elms{Component(50, 2, 0.05, 0.01), Component(80, 1, 0.05, 0.02)};
  const Samples wave = Generate(Synthesis(SYNC_WAVE_DAMPED_SINE, 300, elms, 0, 0.5), 1000);
  Wave sum(300);
  for (const Elm& e : elms) {
    ASSERT_TRUE(
        AddDampedSine(sum.data(), 300, 1000, e.GetFreq(), e.GetAmpl(), e.GetZeta(), e.GetDelay()));
  }
  test::ExpectSameWave(wave, sum);
}

TEST(DampedSines, MissingArraysAreRefusedWithNothingChanged) {
  const double v[] = {1};
  const uint64 h[] = {3};
  Wave wave(5, 7.0);
  EXPECT_EQ(SynthesizeDampedSines(nullptr, 5, 10, 3, 1, v, v, v, v, 1, 1), 0.0);
  EXPECT_FALSE(SynthesizeModifiedDampedSines(nullptr, 5, 10, 0, 1, v, v, v, v));
  EXPECT_FALSE(SynthesizeWavelets(nullptr, 5, 10, 0, 1, v, v, h, v));
  for (int missing = 0; missing < 4; ++missing) {
    const auto given = [&](int i) { return i == missing ? nullptr : v; };
    EXPECT_EQ(SynthesizeDampedSines(wave.data(), 5, 10, 3, 1, given(0), given(1), given(2),
                                    given(3), 1, 1),
              0.0);
    EXPECT_FALSE(SynthesizeModifiedDampedSines(wave.data(), 5, 10, 0, 1, given(0), given(1),
                                               given(2), given(3)));
  }
  double place = 7.0;
  EXPECT_FALSE(CalcDampedSineResidual(1, v, v, v, v, nullptr, &place));
  EXPECT_FALSE(CalcDampedSineResidual(1, v, v, v, v, &place, nullptr));
  EXPECT_EQ(place, 7.0);
  EXPECT_EQ(wave, Wave(5, 7.0));
  EXPECT_TRUE(SynthesizeWavelets(wave.data(), 5, 10, 0, 0, v, v, h, v)) << "no components: cleared";
  EXPECT_EQ(wave, Wave(5));
}

TEST(DampedSines, WithoutMethodElementsSamplesOrRateIsRefused) {
  const Elm elm = Component(50, 2, 0.05, 0);
  const auto refused = [](const Set& set, double fsamp) {
    test::ExpectGenerates(DampingSynthesize, set, fsamp, std::nullopt);
  };
  for (const int type : {0, 4, -1})
    refused(Synthesis(static_cast<SYNC_WAVE_TYPE>(type), 10, {elm}), 1000);
  refused(Synthesis(SYNC_WAVE_WAVELET, 0, {elm}), 1000);
  refused(Synthesis(SYNC_WAVE_WAVELET, 10, {}), 1000);
  refused(Synthesis(SYNC_WAVE_WAVELET, 10, {elm}), 0);
}

TEST(DampedSines, SizesThatNoArrayHasEndAtOnce) {
  for (const uint64 n : {uint64{1} << 45, uint64{1} << 61, uint64{1} << 63, ~uint64{0}}) {
    test::ExpectTooLarge(DampingSynthesize,
                         Synthesis(SYNC_WAVE_WAVELET, n, {Component(50, 2, 0, 0)}), 1000);
  }
}

TEST(DampedSines, AHundredThousandElementsOnFewSamplesAreSummedInOrder) {
  std::list<Elm> elms;
  for (int i = 0; i < 100000; ++i)
    elms.push_back(Component(1 + i % 97, 1.0 / (1 + i), 0.05, 0.001 * (i % 70)));
  const Set set = Synthesis(SYNC_WAVE_DAMPED_SINE, 64, elms, 5, 0.7);
  test::ExpectGenerates(DampingSynthesize, set, 1000, Reference(set, 1000));
}

// ---- The table ends at rest --------------------------------------------------------------------

std::list<Elm> RandomComponents(test::RandomValues* random) {
  std::list<Elm> elms;
  for (unsigned int i = 1 + random->Below(40); i > 0; --i) {
    elms.push_back(Component(random->Between(20, 200), random->Between(-10, 10),
                             random->Between(0.03, 0.3), random->Between(0, 0.1),
                             random->Below(20)));
  }
  return elms;
}

/// Velocity and displacement at the end by the trapezoidal rule, from rest.
struct End {
  double velocity, displacement;
};
End EndOf(const Samples& wave, double fsamp) {
  Wave x(wave.begin(), wave.end());
  EXPECT_TRUE(common::CCalcWave::IntegTime(x.size(), x.data(), x.data(), fsamp));
  const double velocity = x.back();
  EXPECT_TRUE(common::CCalcWave::IntegTime(x.size(), x.data(), x.data(), fsamp));
  return {velocity, x.back()};
}

TEST(DampedSines, TheCompensatedSumHasNoFinalVelocityAndDisplacement) {
  test::RandomValues random(511);
  for (int round = 0; round < 500; ++round) {
    const Set set = Synthesis(SYNC_WAVE_DAMPED_SINE, 1, RandomComponents(&random),
                              random.Between(10, 20), random.Between(0.4, 1));
    const Compensation c = Compensate(set);
    std::list<Elm> all = set.GetDefDampingElmList();
    all.push_back(Component(set.GetFreq(), c.ampl, set.GetZeta(), c.delay));
    // In closed form: a damped sine from t0 on leaves the velocity q and the displacement
    // q (t - t0) - 2 zeta a / m^2.
    long double velocity = 0;
    long double displacement = 0;
    long double scaleV = 0;
    long double scaleD = 0;
    for (const Elm& e : all) {
      const long double m = static_cast<long double>(e.GetFreq()) * 2 * std::acos(-1.0L) *
                            (1 + static_cast<long double>(e.GetZeta()) * e.GetZeta());
      const long double q = e.GetAmpl() / m;
      const long double d = -2 * e.GetZeta() * e.GetAmpl() / (m * m) - q * e.GetDelay();
      velocity += q;
      displacement += d;
      scaleV += std::fabs(q);
      scaleD += std::fabs(d);
    }
    EXPECT_LE(std::fabs(velocity), 1e-12L * scaleV);
    EXPECT_LE(std::fabs(displacement), 1e-12L * scaleD);
  }
}

TEST(DampedSines, AModifiedOneHasNoFinalVelocityAndDisplacement) {
  test::RandomValues random(512);
  using Complex = std::complex<long double>;
  for (int round = 0; round < 500; ++round) {
    const double zeta = random.Between(0.001, 0.999);
    const Complex phase =
        std::polar(1.0L, static_cast<long double>(Atan(zeta * -2.0 / (zeta * zeta - 1.0))));
    const Complex pole(zeta, -1.0L);  // the integrals of t^n e^(i t - zeta t) are n! / pole^(n + 1)
    const long double velocity = std::real(phase / (pole * pole)) + std::imag(1.0L / pole);
    const long double moment =
        std::real(2.0L * phase / (pole * pole * pole)) + std::imag(1.0L / (pole * pole));
    EXPECT_LE(std::fabs(velocity), 1e-12L);
    EXPECT_LE(std::fabs(moment), 1e-12L * 2);
  }
}

/// Expects the sampled sum to end at rest as far as sampling allows: the velocity falls with the
/// square of the interval, the displacement stays within what the rounding of the delays to samples
/// moves.
void ExpectRestBySampling(const Set& set, double area, double seconds) {
  double before = 0;
  for (const double fsamp : {10000.0, 20000.0, 40000.0}) {
    Set sampled(set);
    sampled.SetNsamp(static_cast<uint64>(seconds * fsamp));
    const End end = EndOf(Generate(sampled, fsamp), fsamp);
    if (std::fabs(before) > 1e-9 * area) {
      EXPECT_NEAR(end.velocity / before, 0.25, 0.02) << fsamp;
    }
    EXPECT_LE(std::fabs(end.displacement),
              1.01 * (area / fsamp + std::fabs(end.velocity) * seconds));
    before = end.velocity;
  }
}

TEST(DampedSines, TheCompensatedSumEndsAtRestByTheTrapezoidalRule) {
  test::RandomValues random(513);
  for (int round = 0; round < 12; ++round) {
    const Set set = Synthesis(SYNC_WAVE_DAMPED_SINE, 1, RandomComponents(&random),
                              random.Between(10, 20), random.Between(0.4, 1));
    double area = std::fabs(Compensate(set).ampl) / (set.GetFreq() * kTwoPi);
    for (const Elm& e : set.GetDefDampingElmList())
      area += std::fabs(e.GetAmpl()) / (e.GetFreq() * kTwoPi);
    ExpectRestBySampling(set, area, 4.0);
  }
}

TEST(DampedSines, ModifiedOnesEndAtRestByTheTrapezoidalRule) {
  test::RandomValues random(514);
  for (int round = 0; round < 12; ++round) {
    const Set set = Synthesis(SYNC_WAVE_DAMPED_SINE_MODIFIED, 1, RandomComponents(&random));
    double area = 0;
    for (const Elm& e : set.GetDefDampingElmList())
      area += std::fabs(e.GetAmpl()) / (e.GetFreq() * kTwoPi);
    ExpectRestBySampling(set, area, 4.0);
  }
}

TEST(DampedSines, WaveletsOfWholeSamplesEndAtRestExactly) {
  test::RandomValues random(515);
  for (int round = 0; round < 300; ++round) {
    const unsigned int halves = 3 + 2 * random.Below(10);
    const unsigned int samplesPerCycle = 2 * (5 + random.Below(40));  // half of them is whole
    const double fsamp = 10000;
    const double freq = fsamp / samplesPerCycle;
    const uint64 length = uint64{halves} * samplesPerCycle / 2;
    const Set set =
        Synthesis(SYNC_WAVE_WAVELET, length + 50,
                  {Component(freq, random.Between(-5, 5), 0, random.Below(40) / fsamp, halves)});
    if (static_cast<uint64>(halves * 0.5 * fsamp / freq) != length) continue;  // rounded below
    const End end = EndOf(Generate(set, fsamp), fsamp);
    const double seconds = static_cast<double>(set.GetNsamp()) / fsamp;
    EXPECT_LE(std::fabs(end.velocity), 1e-12 * 5 * seconds);
    EXPECT_LE(std::fabs(end.displacement), 1e-12 * 5 * seconds * seconds);
  }
}

TEST(DampedSines, AreDefinedThroughTheDefinitionObject) {
  const Set set = Synthesis(SYNC_WAVE_DAMPED_SINE, 200, {Component(50, 2, 0.05, 0.01)}, 10, 0.8);
  CWaveDef def;
  def.SetFsamp(1000);
  ASSERT_TRUE(def.SetDefDamping(set));
  EXPECT_EQ(def.GetWaveType(), CWaveDef::WAVE_TYPE_DAMPING);
  EXPECT_EQ(def.GetDefDamping(), set);
  test::ExpectSameWave(def.GetWave(), *Reference(set, 1000));
  EXPECT_FALSE(def.SetDefDamping(Set()));
  EXPECT_EQ(def.GetNsamp(), 0U);
}

}  // namespace
}  // namespace qarv::wave_def
