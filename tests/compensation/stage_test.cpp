// The compensation as a whole: what holds for every compensated pulse, and how it fails.
#include "compensation/stage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "classical/classical_pipeline.h"
#include "compensation/drawing.h"
#include "compensation/gain_search.h"
#include "compensation/tolerance.h"
#include "compensation_cases.h"
#include "expect_wave.h"
#include "numeric/elementary.h"
#include "random_classical.h"
#include "reference_tolerance.h"
#include "value_semantics.h"
#include "wave_def/wave_def.h"

namespace qarv::wave_def::compensation {
namespace {

using test::Compensate;
using test::StrokeResult;
using Def = CWaveDefClassical;

Def WithoutCompensation(Def set) {
  set.SetAddCmp(false);
  return set;
}

double LargestOf(const Wave& x) {
  double largest = 0;
  for (const double v : x) largest = std::max(largest, std::fabs(v));
  return largest;
}

/// Where the main pulse lies, from the definition.
Place PlaceOf(const Def& set) {
  const double dt = 1.0 / (2.56 * set.GetFmax());
  const double T = set.GetNsamp() * dt;
  const auto centre =
      static_cast<int64>(std::floor((set.GetMainShift() * T + T * 0.5) / dt + 0.001));
  const auto half = static_cast<int64>(std::floor(set.GetMainWidth() * 0.5 / dt));
  return {centre - half, centre + half,
          centre - half - static_cast<int64>(std::floor(set.GetRestPre() / dt)),
          centre + half + static_cast<int64>(std::floor(set.GetRestPost() / dt))};
}

/// What the stage works on, without compensation; of a pulse that is positive.
Pulse PulseOf(const Def& set) {
  const StrokeResult nominal = Compensate(WithoutCompensation(set));
  const Place at = PlaceOf(set);
  const double A = nominal.done ? ExtremeOf(nominal.wave.data(), at.iS, at.iE) : 0.0;
  return {at, A, nominal.wave, nominal.upper, nominal.lower};
}
Settings SettingsOf(const Def& set) {
  const bool standard = set.GetTolKind() == Def::TOL_SPECIFY;
  return {.type = set.GetCmpType(),
          .symmetric = !set.GetCmpNonSym(),
          .pre = set.GetCmpPre(),
          .post = set.GetCmpPost(),
          .shape = set.GetWaveKind(),
          .kind = set.GetTolKind(),
          .base = standard ? set.GetDefTolSpecify().GetBaseStandard()
                           : CWaveDefTolSpecify::BASE_STD_NONE,
          .optRatLevel = set.GetOptRatLevel(),
          .fsamp = 1000.0,
          .negative = false};
}

/// A compensation by the stage itself, with what it took.
struct StageResult {
  bool done;
  double shift;  // [sample]
  Results results;
  Refusal refusal;
  Work work;
};
StageResult RunStage(const Def& set) {
  StageResult result{};
  Pulse pulse = PulseOf(set);
  result.done = compensation::Compensate(&pulse, SettingsOf(set), &result.results, &result.refusal,
                                         &result.work);
  result.shift = result.results.waveShift * static_cast<double>(set.GetNsamp());
  return result;
}

/// Sum and first moment about the middle of the frame.
std::pair<double, double> MomentsOf(const Wave& x) {
  double sum = 0;
  double moment = 0;
  for (std::size_t i = 0; i < x.size(); ++i) {
    sum += x[i];
    moment += (static_cast<double>(i) - static_cast<double>(x.size()) / 2) * x[i];
  }
  return {sum, moment};
}

/// The pulses of the types that are drawn, from what the definition reports of them.
Wave DrawnPulses(const Def& params, const Wave& nominal, double A, const Place& at) {
  Wave target(nominal.size());
  const double S =
      SampleSum(nominal.data(), static_cast<uint64>(at.iS), static_cast<uint64>(at.iE));
  EXPECT_TRUE(DrawCompensation(
      target.data(), target.size(), A, S, params.GetCmpType(), at,
      {params.GetCmpU1(), params.GetCmpU2(), params.GetCmpRgm1(), params.GetCmpRgm2()}));
  return target;
}

/// What holds for every compensated pulse.
void ExpectHardRules(const Def& set, const StrokeResult& result) {
  const StrokeResult nominal = Compensate(WithoutCompensation(set));
  ASSERT_TRUE(nominal.done);
  const auto N = static_cast<int64>(set.GetNsamp());
  const Def& params = result.params;
  const double shifted = params.GetWaveShift() * static_cast<double>(N);
  const auto shift = static_cast<int64>(std::llround(shifted));
  EXPECT_NEAR(shifted, static_cast<double>(shift), 1e-9) << "a whole number of samples";
  const Place at = PlaceOf(set).Shifted(shift);
  const double A = ExtremeOf(nominal.wave.data(), at.iS - shift, at.iE - shift);
  const Wave& w = result.wave;
  for (const Wave* array : {&result.wave, &result.upper, &result.lower}) {
    for (const double v : *array) ASSERT_TRUE(std::isfinite(v));
  }

  // The table ends at rest where it began, by either rule of integration.
  EXPECT_LE(result.endVelocity, 1e-9);
  EXPECT_LE(result.endDisplacement, 1e-9);
  Wave velocity(w);
  for (std::size_t i = 1; i < w.size(); ++i) velocity[i] += velocity[i - 1];
  Wave displacement(velocity);
  for (std::size_t i = 1; i < w.size(); ++i) displacement[i] += displacement[i - 1];
  EXPECT_LE(std::fabs(velocity.back()), 1e-9 * LargestOf(velocity));
  EXPECT_LE(std::fabs(displacement.back()), 1e-9 * LargestOf(displacement));
  EXPECT_LE(std::fabs(w.front()), 1e-9 * std::fabs(A));
  EXPECT_LE(std::fabs(w.back()), 1e-9 * std::fabs(A));

  EXPECT_NEAR(ExtremeOf(w.data(), at.iS, at.iE) / A, 1.0, 1e-12);
  EXPECT_TRUE(test::ReferenceInTolerance(w, &result.upper, &result.lower, at.iS, at.iE,
                                         set.GetCmpPre(), set.GetCmpPost(), 0.01));
  Wave upper(nominal.upper);
  Wave lower(nominal.lower);
  ShiftWithHold(upper.data(), upper.size(), shift);
  ShiftWithHold(lower.data(), lower.size(), shift);
  test::ExpectSameWave(result.upper, upper);
  test::ExpectSameWave(result.lower, lower);

  const bool twoSided = set.GetCmpPre() != 0 && set.GetCmpPost() != 0;
  if (!set.GetCmpNonSym() && twoSided && set.GetCmpType() != Def::CMP_OPTIMIZED) {
    EXPECT_EQ(params.GetCmpU1(), params.GetCmpU2());
    if (set.GetCmpType() != Def::CMP_RAMP) {
      EXPECT_EQ(params.GetCmpRgm1(), params.GetCmpRgm2());
    }
  }
  if (set.GetCmpType() != Def::CMP_OPTIMIZED) {
    Wave moved(nominal.wave);
    ShiftWithHold(moved.data(), moved.size(), shift);
    const Wave pulses = DrawnPulses(params, moved, A, at);
    const auto [waveSum, waveMoment] = MomentsOf(moved);
    const auto [sum, moment] = MomentsOf(pulses);
    EXPECT_NEAR(sum / waveSum, -1.0, 1e-9) << "the drawn pulses cancel the area";
    if (set.GetCmpNonSym() && twoSided) {
      EXPECT_LE(std::fabs(moment + waveMoment), 1e-9 * std::fabs(waveSum) * static_cast<double>(N));
    }
  }

  const StrokeResult again = Compensate(set);
  EXPECT_EQ(again.wave, w) << "the same call gives the same bits";
  EXPECT_EQ(test::RecordOf(again.params), test::RecordOf(params));
}

/// A definition that asks for compensation, mostly with room for it.
Def RandomCompensated(test::RandomValues* random, unsigned int longest) {
  using namespace wave_def_sub;
  Def set;
  const auto shape = static_cast<WAVE_KIND>(1 + random->Below(6));
  set.SetWaveKind(shape);
  set.SetMainAmpl(random->Between(0.5, 100));
  set.SetNsamp(static_cast<unsigned int>(
      std::exp(random->Between(std::log(16.0), std::log(static_cast<double>(longest))))));
  set.SetFmax(1000 / 2.56);
  set.SetMainWidth(set.GetNsamp() / random->Between(4, 40) / 1000);
  set.SetMainRise(random->Between(0.05, 0.4));
  set.SetMainFall(random->Between(0.05, 0.4));
  set.SetMainShift(random->OneIn(2) ? 0.0 : random->Between(-0.1, 0.1));
  if (random->OneIn(3)) set.SetRestPre(random->Between(0, 0.3) * set.GetMainWidth());
  if (random->OneIn(3)) set.SetRestPost(random->Between(0, 0.3) * set.GetMainWidth());
  CWaveDefTolUserDef user;
  const auto level = [&] { return random->Between(0.02, 0.3); };
  user.SetTolLeftU(level());
  user.SetTolLeftL(level());
  user.SetTolFrontA(random->OneIn(2) ? 0.0 : level());
  user.SetTolMainU(level());
  user.SetTolMainL(level());
  user.SetTolRightU(level());
  user.SetTolRightL(level());
  user.SetTolRearA(random->OneIn(2) ? 0.0 : level());
  set.SetTolKind(Def::TOL_USER_DEF);
  set.SetDefTolUserDef(user);
  set.SetTolKind(Def::TOL_SPECIFY);
  CWaveDefTolSpecify tol = test::RandomStandard(random, shape);
  tol.SetMainPulseHi(1 + level());
  tol.SetMainPulseLo(1 - level());
  set.SetDefTolSpecify(tol);
  set.SetTolKind(shape == TRIANGLE || shape == USER_TRAPEZOID
                     ? Def::TOL_USER_DEF
                     : static_cast<Def::TOL_KIND>(1 + random->Below(11)));
  set.SetAddCmp(true);
  set.SetCmpType(static_cast<Def::COMP_TYPE>(1 + random->Below(4)));
  set.SetCmpNonSym(random->OneIn(2));
  set.SetCmpPre(random->Pick({1.0, 1.0, 0.5, 0.0}));
  set.SetCmpPost(random->Pick({1.0, 1.0, 0.5, 0.0}));
  set.SetOptRatLevel(random->Pick({0.0, 0.5, 1.0}));
  return set;
}

TEST(Compensation, LeavesTheTableAtRestWhereItBeganWithinItsBands) {
  test::RandomValues random(31);
  int done = 0;
  for (int round = 0; round < 5000; ++round) {
    const Def set = RandomCompensated(&random, round % 50 == 0 ? 8192 : 300);
    SCOPED_TRACE(round);
    const StrokeResult result = Compensate(set);
    if (!result.done) {
      EXPECT_EQ(test::RecordOf(result.params), test::RecordOf(set))
          << "a failure leaves them alone";
      continue;
    }
    ++done;
    ExpectHardRules(set, result);
    if (::testing::Test::HasFailure()) return;
  }
  EXPECT_GT(done, 1000);
}

TEST(Compensation, OfHostileSettingsHoldsTheRulesOrFails) {
  test::RandomValues random(32);
  const double nan = std::nan("");
  int done = 0;
  for (int round = 0; round < 5000; ++round) {
    Def set = RandomCompensated(&random, 100);
    switch (random.Below(8)) {
      case 0:
        set.SetCmpPre(random.Pick({0.0, -1.0, 5.0, 1e300, nan, HUGE_VAL, 1e-5}));
        break;
      case 1:
        set.SetCmpPost(random.Pick({0.0, -1.0, 5.0, 1e300, nan, HUGE_VAL, 1e-5}));
        break;
      case 2:
        set.SetRestPre(random.Pick({1e3, 1e30, -0.01, -1e30, nan, HUGE_VAL}));
        break;
      case 3:
        set.SetRestPost(random.Pick({1e3, 1e30, -0.01, -1e30, nan, HUGE_VAL}));
        break;
      case 4:
        set.SetOptRatLevel(random.Pick({nan, -3.0, 7.0, HUGE_VAL}));
        break;
      case 5:
        set.SetMainWidth(
            random.Pick({0.001, 0.002, 0.5 * set.GetNsamp() / 1000, 1.0 * set.GetNsamp() / 1000}));
        break;
      case 6: {
        set.SetNsamp(2 + random.Below(30));
        break;
      }
      default:
        set.SetMainAmpl(random.Pick({1e-200, 1e150, -5.0}));
        break;
    }
    SCOPED_TRACE(round);
    const StrokeResult result = Compensate(set);
    if (!result.done) {
      EXPECT_EQ(result.params.GetCmpCparam(), 0.0);
      continue;
    }
    ++done;
    // A rest beyond the frame, which a NaN is too, leaves one side to draw on.
    if (!(std::fabs(set.GetRestPre()) <= 1 && std::fabs(set.GetRestPost()) <= 1)) {
      for (const double v : result.wave) ASSERT_TRUE(std::isfinite(v));
      continue;
    }
    ExpectHardRules(set, result);
    if (::testing::Test::HasFailure()) return;
  }
  EXPECT_GT(done, 300);
}

TEST(Compensation, ScalesWithTheAmplitude) {
  test::RandomValues random(311);
  int done = 0;
  for (int round = 0; round < 600; ++round) {
    Def set = RandomCompensated(&random, 300);
    const StrokeResult one = Compensate(set);
    set.SetMainAmpl(set.GetMainAmpl() * 4);
    const StrokeResult four = Compensate(set);
    ASSERT_EQ(one.done, four.done);
    if (!one.done) continue;
    ++done;
    for (std::size_t i = 0; i < one.wave.size(); ++i) {
      ASSERT_NEAR(four.wave[i], 4 * one.wave[i], 1e-9 * set.GetMainAmpl()) << round;
    }
  }
  EXPECT_GT(done, 100);
}

TEST(Compensation, OfANegativePulseIsTheNegatedOne) {
  test::RandomValues random(312);
  int done = 0;
  for (int round = 0; round < 2000; ++round) {
    Def set = RandomCompensated(&random, 200);
    if (set.GetCmpType() == Def::CMP_OPTIMIZED) continue;
    set.SetWaveKind(random.Pick({wave_def_sub::HALF_SINE, wave_def_sub::HAVERSINE}));
    set.SetTolKind(Def::TOL_USER_DEF);
    const StrokeResult up = Compensate(set);
    CWaveDefTolUserDef tol =
        set.GetDefTolUserDef();  // the ratios swapped and negated, as the peak is negative
    const CWaveDefTolUserDef& t = set.GetDefTolUserDef();
    tol.SetTolLeftU(-t.GetTolLeftL());
    tol.SetTolLeftL(-t.GetTolLeftU());
    tol.SetTolMainU(-t.GetTolMainL());
    tol.SetTolMainL(-t.GetTolMainU());
    tol.SetTolRightU(-t.GetTolRightL());
    tol.SetTolRightL(-t.GetTolRightU());
    // Without transitions: their merging follows the ratios, which now fall where they rose.
    tol.SetTolFrontA(0);
    tol.SetTolRearA(0);
    if (t.GetTolFrontA() != 0 || t.GetTolRearA() != 0) continue;
    set.SetDefTolUserDef(tol);
    set.SetMainAmpl(-set.GetMainAmpl());
    const Def nominal = WithoutCompensation(set);
    const StrokeResult bands = Compensate(nominal);
    if (!bands.done) continue;
    // Merging by band keeps the larger of 0 and a level: below 0 an upper band of a negative pulse
    // stays 0.
    const bool outside = LargestOf(Wave(bands.upper.begin(), bands.upper.begin() + 2)) != 0;
    if (!outside) continue;
    const StrokeResult down = Compensate(set);
    if (!up.done || !down.done) continue;
    ++done;
    for (std::size_t i = 0; i < up.wave.size(); ++i) {
      ASSERT_NEAR(down.wave[i], -up.wave[i], 1e-9 * std::fabs(set.GetMainAmpl()));
    }
  }
  EXPECT_GT(done, 20);
}

// ---- The gain search ---------------------------------------------------------------------------

TEST(Compensation, ReportsTheLastGainThatPassedOfEightTries) {
  test::RandomValues random(313);
  int compared = 0;
  for (int round = 0; round < 1000 && compared < 200; ++round) {
    Def set = RandomCompensated(&random, 200);
    if (set.GetCmpType() == Def::CMP_OPTIMIZED) continue;
    const Settings settings = SettingsOf(set);
    Pulse pulse = PulseOf(set);
    if (!(pulse.A > 0)) continue;
    Work work;
    const auto attempt = PrepareDrawn(&pulse, settings, nullptr, &work);
    if (!attempt) continue;
    ++compared;
    Reshaper reshaper(attempt->pulse.wave.size());
    Candidates candidates(&reshaper, *attempt, settings);
    const GainFound found = SearchGain(&candidates, settings);
    // The same search, rule by rule.
    double low = 0;
    double step = common::elementary::Log(1e8) / 2;
    double gain = 1;
    bool passed = false;
    Wave candidate;
    for (int tries = 0; tries < 8; ++tries, step /= 2) {
      const bool ok = candidates.Make(common::elementary::Exp(low), &candidate);
      if (tries == 0) passed = ok;
      if (!passed) break;
      if (ok) gain = common::elementary::Exp(low);
      low += ok ? step : -step;
    }
    EXPECT_EQ(found.passed, passed);
    EXPECT_NEAR(found.gain, gain, 1e-9 * gain);
    Wave best;
    EXPECT_EQ(candidates.Make(found.gain, &best), passed);
    EXPECT_EQ(best, found.best);
  }
  EXPECT_GE(compared, 100);
}

TEST(Compensation, ThatPassesAtEveryGainEndsWithTheLastTry) {
  // Bands that no candidate leaves.
  const std::size_t N = 256;
  Pulse pulse{{120, 136, 120, 136}, 1.0, Wave(N), Wave(N, kNoLimit), Wave(N, kNoLimit)};
  for (std::size_t i = 120; i <= 136; ++i)
    pulse.wave[i] = std::sin(3.14159 * static_cast<double>(i - 120) / 16);
  const Settings settings{Def::CMP_COSINE,
                          true,
                          1,
                          1,
                          wave_def_sub::HALF_SINE,
                          Def::TOL_USER_DEF,
                          CWaveDefTolSpecify::BASE_STD_NONE,
                          0,
                          1000,
                          false};
  Results results;
  Refusal refusal;
  ASSERT_TRUE(compensation::Compensate(&pulse, settings, &results, &refusal));
  EXPECT_NEAR(results.gain / std::pow(1e8, 127.0 / 128), 1.0, 1e-9);
}

// ---- Symmetry ----------------------------------------------------------------------------------

/// A half-sine of 20 ms in a frame of 1 ms samples: 5 % are allowed before it, 20 % behind it.
Def HalfSine20(int type, unsigned int Nsamp) {
  Def set;
  set.SetWaveKind(wave_def_sub::HALF_SINE);
  set.SetMainAmpl(50);
  set.SetMainWidth(0.02);
  set.SetFmax(390.625);
  set.SetNsamp(Nsamp);
  set.SetTolKind(Def::TOL_FIXED_4);
  set.SetAddCmp(true);
  set.SetCmpType(static_cast<Def::COMP_TYPE>(type));
  set.SetCmpPre(1);
  set.SetCmpPost(1);
  return set;
}

// Equal ramps are as high in every place: a pulse at the frame's start had its tight left band
// beyond the frame, and nearly all of its compensation on one side.
TEST(Compensation, OfSymmetricRampsDoesNotPushATightBandOutOfItsFrame) {
  const StageResult tooShort = RunStage(HalfSine20(Def::CMP_RAMP, 540));
  EXPECT_FALSE(tooShort.done);
  EXPECT_EQ(tooShort.refusal.reason, Refusal::NoRoom);
  EXPECT_GT(tooShort.refusal.shortage.pre.needed, tooShort.refusal.shortage.pre.available);
  EXPECT_LE(tooShort.refusal.shortage.post.needed, tooShort.refusal.shortage.post.available);
  const StageResult longEnough = RunStage(HalfSine20(Def::CMP_RAMP, 560));
  ASSERT_TRUE(longEnough.done);
  EXPECT_EQ(longEnough.shift, 0);
  EXPECT_NEAR(longEnough.results.drawn.sharePre, longEnough.results.drawn.sharePost, 0.01);
}

TEST(Compensation, OfACentredDefinitionIsSymmetricWhereItIsAskedToBeOrRefused) {
  test::RandomValues random(314);
  std::array<int, 5> done{};
  for (int round = 0; round < 6000; ++round) {
    Def set = RandomCompensated(&random, 600);
    set.SetCmpNonSym(false);
    set.SetMainShift(0);
    set.SetRestPost(set.GetRestPre());
    set.SetCmpPost(set.GetCmpPre());
    if (!Compensate(WithoutCompensation(set)).done) continue;
    SCOPED_TRACE(round);
    const StageResult result = RunStage(set);
    if (!result.done) {
      EXPECT_NE(result.refusal.reason, Refusal::None);
      continue;
    }
    ++done.at(static_cast<std::size_t>(set.GetCmpType()));
    EXPECT_EQ(result.shift, 0);
    const auto& [levelPre, levelPost, pre, post] = result.results.drawn;
    EXPECT_EQ(levelPre, levelPost);
    // The centre of an even frame is half a sample late: equal ramps differ by one sample.
    const auto n = static_cast<double>(PlaceOf(set).iPS);
    const bool ramps = set.GetCmpType() == Def::CMP_RAMP;
    EXPECT_LE(std::fabs(pre - post), std::max(0.02, ramps ? 1.01 / (n - 1) : 0.0) * pre);
  }
  for (const int type : {1, 2, 3, 4})
    EXPECT_GT(done.at(static_cast<std::size_t>(type)), 100) << type;
}

// ---- Growth ------------------------------------------------------------------------------------

TEST(Compensation, OfARefusedDefinitionIsRefusedInLinearTime) {
  for (const int type : {1, 2, 3}) {
    for (const bool nonSymmetric : {false, true}) {
      for (const unsigned int Nsamp : {4096U, 65536U}) {
        Def set = HalfSine20(type, Nsamp);
        // A pulse that is as wide as its frame lets it be; and one with no level at all.
        set.SetMainWidth(Nsamp / 3 / 1000.0);
        set.SetCmpNonSym(nonSymmetric);
        for (const double scale : {1.0, 0.0}) {
          set.SetCmpPre(scale);
          set.SetCmpPost(scale);
          SCOPED_TRACE(testing::Message()
                       << type << " " << nonSymmetric << " " << Nsamp << " " << scale);
          const StageResult result = RunStage(set);
          ASSERT_FALSE(result.done);
          EXPECT_EQ(result.refusal.reason, Refusal::NoRoom);
          EXPECT_LE(result.work.attempts, 2 * Nsamp);
          EXPECT_LE(result.work.samples, 64 * Nsamp);
        }
      }
    }
  }
}

TEST(Compensation, OfTheOptimisedTypeStaysInPlaceAndCentredInALongFrame) {
  for (const auto& [shape, kind] :
       {std::pair(wave_def_sub::HALF_SINE, Def::TOL_FIXED_3),
        std::pair(wave_def_sub::TERMINAL_PEAK_SAWTOOTH, Def::TOL_FIXED_5)}) {
    for (const bool nonSymmetric : {false, true}) {
      for (const unsigned int Nsamp : {4096U, 16384U, 65536U}) {
        Def set = HalfSine20(Def::CMP_OPTIMIZED, Nsamp);
        set.SetWaveKind(shape);
        set.SetTolKind(kind);
        set.SetCmpNonSym(nonSymmetric);
        SCOPED_TRACE(testing::Message() << shape << " " << nonSymmetric << " " << Nsamp);
        const StrokeResult result = Compensate(set);
        ASSERT_TRUE(result.done);
        EXPECT_EQ(result.params.GetWaveShift(), 0);
        EXPECT_GE(result.params.GetCmpCparam(), 1);
        EXPECT_LE(result.stroke, 0.51 * result.swing) << "centred";
        // One plan and its lengths, whatever the frame is.
        const StageResult stage = RunStage(set);
        EXPECT_LE(stage.work.attempts, 80U);
        EXPECT_LE(stage.work.samples, 80U * Nsamp);
      }
    }
  }
}

// Bands without width on the pulse let no reshaped waveform pass, whichever plan it comes from.
TEST(Compensation, OfTheOptimisedTypeIsRefusedEarly) {
  for (const unsigned int Nsamp : {8192U, 65536U}) {
    Def pinned = HalfSine20(Def::CMP_OPTIMIZED, Nsamp);
    pinned.SetTolKind(Def::TOL_FIXED_1);
    pinned.SetCmpNonSym(true);
    const StageResult result = RunStage(pinned);
    ASSERT_FALSE(result.done);
    EXPECT_EQ(result.refusal.reason, Refusal::OutOfTolerance);
    EXPECT_LE(result.work.attempts, 60U) << "one plan";
  }
  Def crowded = HalfSine20(Def::CMP_OPTIMIZED, 8192);
  crowded.SetMainWidth(4.0);
  crowded.SetCmpNonSym(true);
  const StageResult result = RunStage(crowded);
  ASSERT_FALSE(result.done);
  EXPECT_EQ(result.refusal.reason, Refusal::NoRoom);
  EXPECT_LE(result.work.attempts, 20U * 30) << "the places of one plan, roughly";
}

/// Of the optimised type: the lengths of four plans in two places, and of one in 32 places between;
/// of equal pulses all of it once more with moves under them.
constexpr uint64 kMostAttempts = 2 * (2 * 4 * 25 + 32 * 15);

// A pulse that has found its room does not move in a longer frame.
TEST(Compensation, OfTheOptimisedTypeMovesAPulseOnlyForWantOfRoom) {
  test::RandomValues random(315);
  int shifted = 0;
  int settled = 0;
  for (int round = 0; round < 100; ++round) {
    Def set = RandomCompensated(&random, 200);
    set.SetCmpType(Def::CMP_OPTIMIZED);
    if (!Compensate(WithoutCompensation(set)).done) continue;
    SCOPED_TRACE(round);
    const Pulse pulse = PulseOf(set);
    const double off = set.GetMainShift() * set.GetNsamp();  // [sample]
    // Of the least levels on either side, with what the closest plan takes of them.
    const Limits limits = LimitsInForce(pulse, set.GetCmpPre(), set.GetCmpPost(), 0.01);
    const double level = 0.75 * std::min(-limits.lo.front(), -limits.lo.back());
    double area = 0;
    for (const double v : pulse.wave) area += v;
    const double room = 4 * area / level;
    for (const double frame : {1.0, 4.0, 16.0}) {
      set.SetNsamp(static_cast<unsigned int>(frame * static_cast<double>(pulse.N())));
      set.SetMainShift(off / set.GetNsamp());
      const StageResult result = RunStage(set);
      EXPECT_LE(result.work.attempts, kMostAttempts);
      if (!result.done) continue;
      shifted += result.shift != 0;
      const Place at = PlaceOf(set);
      if (room > static_cast<double>(std::min(at.iPS, set.GetNsamp() - at.iPE) - 3)) continue;
      ++settled;
      EXPECT_EQ(result.shift, 0);
    }
  }
  EXPECT_GT(shifted, 2);
  EXPECT_GT(settled, 30);
}

/// How many definitions moved a pulse further in a larger frame than in a smaller one.
struct Series {
  int count = 0;
  int moved = 0;     // with a shift in some frame
  int violated = 0;  // with a larger shift in a larger frame
};

/// Frames that grow around one pulse by an even number of samples, so that it keeps its place.
void GrowFrame(Def set, test::RandomValues* random, Series* series) {
  const double off = set.GetMainShift() * set.GetNsamp();  // [sample]
  double least = HUGE_VAL;
  bool moved = false;
  bool violated = false;
  int done = 0;
  for (int frame = 0; frame < 5; ++frame) {
    set.SetMainShift(off / set.GetNsamp());
    if (Compensate(WithoutCompensation(set)).done) {
      const StageResult result = RunStage(set);
      EXPECT_LE(result.work.attempts, kMostAttempts);
      if (result.done) {
        const double shift = std::fabs(std::round(result.shift));
        ++done;
        moved = moved || shift != 0;
        violated = violated || shift > least;
        least = std::min(least, shift);
      }
    }
    const double growth = random->Pick({0.1, 0.1, 0.25, 0.5, 1.0, 3.0});
    set.SetNsamp(set.GetNsamp() +
                 2 * static_cast<unsigned int>(std::ceil(growth / 2 * set.GetNsamp())));
  }
  if (done < 2) return;
  ++series->count;
  series->moved += moved;
  series->violated += violated;
}

TEST(Compensation, OfTheOptimisedTypeMovesAPulseNoFurtherInALargerFrame) {
  Series differing;  // sides that may differ
  Series equal;
  for (const unsigned int seed : {316U, 317U, 318U}) {
    test::RandomValues random(seed);
    for (int round = 0; round < 200; ++round) {
      Def set = RandomCompensated(&random, 200);
      set.SetCmpType(Def::CMP_OPTIMIZED);
      set.SetNsamp(64 + random.Below(137));
      const double room = random.Between(2.5, 12);  // [width]
      set.SetMainWidth(set.GetNsamp() / room / 1000);
      set.SetMainShift(random.OneIn(3) ? 0.0 : random.Between(-0.4, 0.4));
      SCOPED_TRACE(testing::Message() << seed << " " << round);
      GrowFrame(set, &random, SettingsOf(set).IsSymmetric() ? &equal : &differing);
    }
  }
  EXPECT_GE(differing.count, 200);
  EXPECT_GE(differing.moved, 50);
  EXPECT_EQ(differing.violated, 0);
  EXPECT_GE(equal.count, 100);
  EXPECT_GE(equal.moved, 50);
  // Where equal pulses only just fit, the place that brings the table home is the only one, and
  // may lie short of the one that a little more room asks for.
  EXPECT_LE(equal.violated, equal.count * 15 / 100);
}

// ---- The sampling frequency --------------------------------------------------------------------

TEST(Compensation, LooksAtTheSideOfTheDisplacementWhateverTheSamplingFrequencyIs) {
  for (const auto kind : {Def::TOL_FIXED_5, Def::TOL_FIXED_7}) {
    Def set = HalfSine20(Def::CMP_OPTIMIZED, 1024);
    set.SetTolKind(kind);
    const auto waveAt = [&](double fsamp) {
      common::CDataArrayFloatT<double> wave;
      common::CDataArrayFloatT<double> upper;
      common::CDataArrayFloatT<double> lower;
      Def params = set;
      EXPECT_TRUE(GenerateClassical(params, fsamp, &wave, &upper, &lower, false)) << fsamp;
      return wave;
    };
    const auto expected = waveAt(1000.0);
    for (const double fsamp : {0.0, std::nan(""), HUGE_VAL}) EXPECT_EQ(waveAt(fsamp), expected);
  }
}

// ---- Failures ----------------------------------------------------------------------------------

/// The same in a longer pulse and a frame that has room for it.
Def Everyday(int type) {
  Def set = HalfSine20(type, 1024);
  set.SetMainWidth(0.032);
  return set;
}

TEST(Compensation, OfNoKnownTypeLeavesTheArraysAlone) {
  for (const int type : {0, 5, -1}) {
    Def set = Everyday(type);
    common::CDataArrayFloatT<double> wave{7.0};
    common::CDataArrayFloatT<double> upper{8.0};
    common::CDataArrayFloatT<double> lower{9.0};
    EXPECT_FALSE(GenerateClassical(set, 0, &wave, &upper, &lower, false));
    EXPECT_EQ(wave, (common::CDataArrayFloatT<double>{7.0}));
    EXPECT_EQ(upper, (common::CDataArrayFloatT<double>{8.0}));
    EXPECT_EQ(lower, (common::CDataArrayFloatT<double>{9.0}));
  }
}

TEST(Compensation, WithoutRoomLeavesThePulseAndItsBands) {
  Def set = Everyday(2);
  set.SetNsamp(64);
  const StrokeResult nominal = Compensate(WithoutCompensation(set));
  ASSERT_TRUE(nominal.done);
  const StrokeResult result = Compensate(set);
  EXPECT_FALSE(result.done);
  EXPECT_EQ(result.wave, nominal.wave);
  EXPECT_EQ(result.upper, nominal.upper);
  EXPECT_EQ(result.lower, nominal.lower);
  EXPECT_EQ(result.params, set);
}

// Deliberate: what a failed compensation has come to stays in the arrays.
TEST(Compensation, OutOfToleranceLeavesItsFirstCandidate) {
  Def set = Everyday(2);
  set.SetTolKind(
      Def::TOL_FIXED_1);  // bands of 0 outside: the reshaped pulse cannot stay on the bare one
  const StrokeResult nominal = Compensate(WithoutCompensation(set));
  const StrokeResult result = Compensate(set);
  EXPECT_FALSE(result.done);
  if (result.wave != nominal.wave) {
    EXPECT_EQ(result.wave.size(), nominal.wave.size());
    EXPECT_EQ(result.params, set);
  }
  CWaveDef def;
  EXPECT_FALSE(def.SetDefClassical(set));
  EXPECT_EQ(def.GetWaveType(), CWaveDef::WAVE_TYPE_NONE);
  EXPECT_EQ(def.GetNsamp(), 1024U) << "the arrays are there, the definition is not";
}

TEST(Compensation, IsStoredWithItsResults) {
  for (int type = 1; type <= 4; ++type) {
    CWaveDef def;
    ASSERT_TRUE(def.SetDefClassical(Everyday(type))) << type;
    const Def& set = def.GetDefClassical();
    EXPECT_GT(set.GetCmpU1(), 0.0);
    EXPECT_GT(set.GetCmpRgm1(), 0.0);
    EXPECT_GE(set.GetCmpCparam(), 1.0);
    EXPECT_EQ(set.GetWaveShift(), 0.0);
    common::CSerialData stream;
    ASSERT_TRUE(def.Serialize(&stream));
    stream.Finalize();
    CWaveDef back;
    ASSERT_TRUE(back.Serialize(&stream));
    EXPECT_EQ(back, def);
  }
}

}  // namespace
}  // namespace qarv::wave_def::compensation
