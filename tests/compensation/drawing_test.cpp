// Compensation pulses as they are drawn, and the array operations around them.
#include "compensation/drawing.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>

#include "expect_wave.h"
#include "numeric/elementary.h"
#include "random_values.h"

namespace qarv::wave_def::compensation {
namespace {

/// The ramps, rule by rule.
Wave Ramps(const Wave& before, double A, int64 iPre, int64 iPost, double pPre, double pPost) {
  Wave target(before);
  const auto N = static_cast<int64>(target.size());
  for (int64 i = 0; i < iPre && i < N; ++i) {
    target[static_cast<std::size_t>(i)] =
        static_cast<double>(i) * -(A * pPre / static_cast<double>(iPre));
  }
  const int64 m = N - iPost - 1;
  for (int64 k = 0; k < m; ++k) {
    if (N - 1 - k > 0) {
      target[static_cast<std::size_t>(N - 1 - k)] =
          static_cast<double>(k) * -(A * pPost / static_cast<double>(m));
    }
  }
  return target;
}

/// The cosine pulses, rule by rule.
Wave Cosines(const Wave& before, double A, double S, int64 iPre, int64 iPost,
             const CosinePulse& pre, const CosinePulse& post) {
  Wave target(before);
  if (A == 0) return target;
  const auto N = static_cast<int64>(target.size());
  const auto draw = [&](const CosinePulse& pulse, int64 first, int64 step) {
    double n = 0;
    if (pulse.p > 0) n = S / A * pulse.sh / ((pulse.f + 0.5) * pulse.p);
    const auto taper = static_cast<int64>(std::floor(n + 0.5));
    const auto flat = static_cast<int64>(std::floor(n * pulse.f + 0.5));
    const double L = -(A * pulse.p);
    for (int64 k = 0; k < flat + taper; ++k) {
      const int64 i = first + k * step;
      if (i < 0 || i >= N) return;
      const double c = common::elementary::Cos(static_cast<double>(k - flat) * 3.141592653589793 /
                                               static_cast<double>(taper));
      target[static_cast<std::size_t>(i)] = k < flat ? L : L * (0.5 + 0.5 * c);
    }
  };
  draw(pre, iPre - 1, -1);
  draw(post, iPost + 1, 1);
  return target;
}

TEST(RampCompensation, DeepensTowardsThePulse) {
  Wave target(20, 7.0);
  DrawRampCompensation(target.data(), 20, 10, 8, 13, 0.4, 0.3);
  EXPECT_EQ(target[0], 0.0);
  EXPECT_DOUBLE_EQ(target[7], -10 * 0.4 * 7 / 8);
  for (std::size_t i = 8; i <= 13; ++i)
    EXPECT_EQ(target[i], 7.0) << "the rests keep what they have";
  EXPECT_DOUBLE_EQ(target[14], -10 * 0.3 * 5 / 6);
  EXPECT_EQ(target[19], 0.0);
}

TEST(RampCompensation, WithoutRoomDrawsNothing) {
  Wave target(5, 7.0);
  DrawRampCompensation(target.data(), 5, 10, 0, 4, 0.4, 0.3);
  EXPECT_EQ(target, Wave(5, 7.0));
  DrawRampCompensation(target.data(), 5, 10, 0, ~uint64{0}, 0.4, 0.3);
  DrawRampCompensation(target.data(), 0, 10, 0, 0, 0.4, 0.3);
  EXPECT_EQ(target, Wave(5, 7.0));
}

// Deliberate: sample 0 is never written from behind.
TEST(RampCompensation, LeavesTheFirstSampleToTheRampBefore) {
  Wave target(5, 7.0);
  DrawRampCompensation(target.data(), 5, 10, 0, 0, 0.4, 0.3);
  EXPECT_EQ(target[0], 7.0);
  EXPECT_EQ(target[4], 0.0);
}

TEST(CosineCompensation, IsALevelAndAFade) {
  Wave target(40);
  // r = 8 samples; share 0.5 at level 0.5 with a flat part as long as the taper: 8 * 0.5 / (1.5 *
  // 0.5) = 5.33
  DrawCosineCompensation(target.data(), 40, 10, 80, 18, 21, {0.5, 0.5, 1.0}, {0.25, 0.5, 0.0});
  for (std::size_t k = 0; k < 5; ++k) EXPECT_EQ(target[17 - k], -5.0);
  EXPECT_EQ(target[12], -5.0) << "the fade begins at full level";
  EXPECT_NEAR(target[11], -5 * (0.5 + 0.5 * std::cos(std::acos(-1) / 5)), 1e-12);
  EXPECT_EQ(target[7], 0.0);
  EXPECT_EQ(target[22], -2.5);
  EXPECT_EQ(target[22 + 32 > 39 ? 39 : 0], target[39]);
}

TEST(CosineCompensation, WithoutLevelOrAmplitudeDrawsNothing) {
  Wave target(40, 7.0);
  DrawCosineCompensation(target.data(), 40, 10, 80, 18, 21, {0.0, 5.0, 1.0}, {-0.1, 5.0, 1.0});
  DrawCosineCompensation(target.data(), 40, 0.0, 80, 18, 21, {0.5, 0.5, 1.0}, {0.5, 0.5, 1.0});
  EXPECT_EQ(target, Wave(40, 7.0));
}

TEST(CosineCompensation, IsCutAtTheFrame) {
  Wave target(10);
  DrawCosineCompensation(target.data(), 10, 10, 800, 4, 6, {0.1, 1.0, 1.0}, {0.1, 1.0, 1.0});
  EXPECT_EQ(target, (Wave{-1, -1, -1, -1, 0, 0, 0, -1, -1, -1}));
}

TEST(Compensations, MatchTheSecondComputationForArbitraryArguments) {
  test::RandomValues random(33);
  for (int round = 0; round < 5000; ++round) {
    Wave before(1 + random.Below(80));
    for (double& v : before) v = random.Between(-1, 1);
    const auto N = before.size();
    const auto iPre = static_cast<int64>(random.Below(static_cast<unsigned int>(N) + 1));
    const auto iPost = static_cast<int64>(random.Below(static_cast<unsigned int>(N)));
    const double A = random.OneIn(10) ? 0.0 : random.Between(-20, 20);
    const auto level = [&] { return random.OneIn(6) ? 0.0 : random.Between(-0.1, 1); };
    const double pPre = level();
    const double pPost = level();
    Wave ramps(before);
    DrawRampCompensation(ramps.data(), N, A, static_cast<uint64>(iPre), static_cast<uint64>(iPost),
                         pPre, pPost);
    test::ExpectSameWave(ramps, Ramps(before, A, iPre, iPost, pPre, pPost));
    const double S = A * random.Between(0, 40);
    const CosinePulse pre{pPre, random.Between(0, 1), random.Pick({0.0, 1.0})};
    const CosinePulse post{pPost, random.Between(0, 1), random.Pick({0.0, 1.0})};
    Wave cosines(before);
    DrawCosineCompensation(cosines.data(), N, A, S, static_cast<uint64>(iPre),
                           static_cast<uint64>(iPost), pre, post);
    test::ExpectSameWave(cosines, Cosines(before, A, S, iPre, iPost, pre, post));
    if (::testing::Test::HasFatalFailure()) return;
  }
}

TEST(DrawCompensation, DrawsItsThreeTypesAndNoOther) {
  const Place at{20, 30, 18, 32};
  const Drawn drawn{0.4, 0.3, 0.5, 0.5};
  for (int type = -1; type <= 5; ++type) {
    Wave target(60);
    const bool done = DrawCompensation(target.data(), 60, 10, 70,
                                       static_cast<CWaveDefClassical::COMP_TYPE>(type), at, drawn);
    EXPECT_EQ(done, type >= 1 && type <= 3) << type;
    Wave expected(60);
    if (type == 1) expected = Ramps(expected, 10, 18, 32, 0.4, 0.3);
    if (type == 2) expected = Cosines(expected, 10, 70, 18, 32, {0.4, 0.5, 0.0}, {0.3, 0.5, 0.0});
    if (type == 3) expected = Cosines(expected, 10, 70, 18, 32, {0.4, 0.5, 1.0}, {0.3, 0.5, 1.0});
    test::ExpectSameWave(target, expected);
  }
  EXPECT_FALSE(DrawCompensation(nullptr, 60, 10, 70, CWaveDefClassical::CMP_RAMP, at, drawn));
}

TEST(SampleSum, LeavesTheEndOut) {
  const double x[] = {1, 2, 4, 8};
  EXPECT_EQ(SampleSum(x, 1, 3), 6.0);
  EXPECT_EQ(SampleSum(x, 2, 2), 0.0);
  EXPECT_EQ(SampleSum(x, 3, 1), 0.0);
  EXPECT_EQ(SampleSum(nullptr, 0, 3), 0.0);
}

/// The shift, sample by sample.
Wave Shifted(const Wave& x, int64 shift) {
  Wave out(x.size());
  const auto N = static_cast<int64>(x.size());
  for (int64 i = 0; i < N; ++i) {
    const int64 from = std::min(std::max<int64>(i - shift, 0), N - 1);
    out[static_cast<std::size_t>(i)] = x[static_cast<std::size_t>(from)];
  }
  return out;
}

TEST(ShiftWithHold, RepeatsTheSampleAtTheVacatedEnd) {
  for (const std::size_t n : std::vector<std::size_t>{1, 2, 3, 10}) {
    Wave x(n);
    std::iota(x.begin(), x.end(), 1.0);
    for (int64 shift = -14; shift <= 14; ++shift) {
      Wave moved(x);
      ShiftWithHold(moved.data(), n, shift);
      EXPECT_EQ(moved, Shifted(x, shift)) << n << " " << shift;
    }
    for (const int64 shift :
         {std::numeric_limits<int64>::min(), std::numeric_limits<int64>::max()}) {
      Wave moved(x);
      ShiftWithHold(moved.data(), n, shift);
      EXPECT_EQ(moved, Wave(n, shift > 0 ? x.front() : x.back()));
    }
  }
  ShiftWithHold(nullptr, 5, 1);
}

}  // namespace
}  // namespace qarv::wave_def::compensation
