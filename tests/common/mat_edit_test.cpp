// The tapers: their shape, their ends, and what they leave untouched.
#include "common/numeric/mat_edit.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace qarv::common {
namespace {

using Samples = CDataArrayFloatT<double>;

Samples Ones(uint64 n) {
  Samples x(n);
  for (double& v : x) v = 1.0;
  return x;
}

struct Kind {
  bool hanning, rising;
};
constexpr Kind kKinds[] = {{true, true}, {true, false}, {false, true}, {false, false}};

bool Taper(const Kind& kind, Samples* wave, double level, int64 first, int64 last) {
  if (!kind.hanning) return CMatEdit::RampFunction(1000, wave, kind.rising, level, first, last);
  return CMatEdit::HalfHanning(
      1000, wave, kind.rising ? CMatEdit::HALFHANNING_START : CMatEdit::HALFHANNING_END, level,
      first, last);
}

/// The weight at sample i, by another form of the window: level sin^2(pi / 2 k / n).
double Weight(const Kind& kind, double level, int64 first, int64 last, int64 i) {
  const auto n = static_cast<long double>(last) - static_cast<long double>(first);
  const auto k = kind.rising ? static_cast<long double>(i) - static_cast<long double>(first)
                             : static_cast<long double>(last) - static_cast<long double>(i);
  const long double s = std::sin(std::acos(-1.0L) / 2 * k / n);
  return static_cast<double>(level * (kind.hanning ? s * s : k / n));
}

TEST(MatEdit, RunsFromZeroAtTheOuterEndToTheLevelAtTheInner) {
  for (const Kind& kind : kKinds) {
    Samples x = Ones(9);
    ASSERT_TRUE(Taper(kind, &x, 3.0, 2, 6));
    EXPECT_EQ(x[kind.rising ? 2 : 6], 0.0);
    EXPECT_EQ(x[kind.rising ? 6 : 2], 3.0);
    EXPECT_DOUBLE_EQ(x[4], 1.5) << "half way";
    for (const uint64 i : {0U, 1U, 7U, 8U}) EXPECT_EQ(x[i], 1.0) << "outside";
  }
}

TEST(MatEdit, FollowsItsWindowAtEverySample) {
  std::mt19937_64 random(6);
  for (int round = 0; round < 2000; ++round) {
    const Kind& kind = kKinds[random() % 4];
    const uint64 size = random() % 30;
    const auto first = static_cast<int64>(random() % 60) - 20;
    const int64 last = first + 1 + static_cast<int64>(random() % 30);
    Samples x = Ones(size);
    ASSERT_TRUE(Taper(kind, &x, -2.0, first, last));
    for (uint64 i = 0; i < size; ++i) {
      const auto at = static_cast<int64>(i);
      const double expected = at < first || at > last ? 1.0 : Weight(kind, -2.0, first, last, at);
      EXPECT_NEAR(x[i], expected, 1e-15);
    }
  }
}

TEST(MatEdit, EndsOutsideTheArrayKeepTheShapeOfTheTaper) {
  for (const Kind& kind : kKinds) {
    Samples cut = Ones(10);
    Samples whole = Ones(30);
    ASSERT_TRUE(Taper(kind, &cut, 1.0, -5, 20));
    ASSERT_TRUE(Taper(kind, &whole, 1.0, 0, 25));
    for (uint64 i = 0; i < 10; ++i) EXPECT_EQ(cut[i], whole[i + 5]);
  }
}

TEST(MatEdit, ExtremeEndsTouchOnlySamplesThatExist) {
  constexpr int64 kMin = std::numeric_limits<int64>::min();
  constexpr int64 kMax = std::numeric_limits<int64>::max();
  for (const Kind& kind : kKinds) {
    Samples x = Ones(3);
    EXPECT_TRUE(Taper(kind, &x, 1.0, kMin, kMax));
    for (const double v : x) EXPECT_NEAR(v, 0.5, 1e-15);
    x = Ones(3);
    EXPECT_TRUE(Taper(kind, &x, 1.0, kMin, -1));
    EXPECT_TRUE(Taper(kind, &x, 1.0, 3, kMax));
    EXPECT_EQ(x, Ones(3));
    Samples empty;
    EXPECT_TRUE(Taper(kind, &empty, 1.0, 0, 5));
  }
}

TEST(MatEdit, ATaperWithoutLengthArrayOrDirectionIsFalse) {
  for (const Kind& kind : kKinds) {
    Samples x = Ones(3);
    EXPECT_FALSE(Taper(kind, &x, 1.0, 1, 1));
    EXPECT_FALSE(Taper(kind, &x, 1.0, 2, 1));
    EXPECT_FALSE(Taper(kind, nullptr, 1.0, 0, 1));
    EXPECT_EQ(x, Ones(3));
  }
  Samples x = Ones(3);
  for (const int dir : {0, 3, -1}) {
    EXPECT_FALSE(
        CMatEdit::HalfHanning(1, &x, static_cast<CMatEdit::HALFHANNING_DIRECT>(dir), 1, 0, 2));
  }
  EXPECT_EQ(x, Ones(3));
}

TEST(MatEdit, DoesNotUseTheSamplingFrequency) {
  Samples a = Ones(5);
  Samples b = Ones(5);
  EXPECT_TRUE(CMatEdit::RampFunction(0.0, &a, true, 1, 0, 4));
  EXPECT_TRUE(CMatEdit::RampFunction(std::nan(""), &b, true, 1, 0, 4));
  EXPECT_EQ(a, b);
}

}  // namespace
}  // namespace qarv::common
