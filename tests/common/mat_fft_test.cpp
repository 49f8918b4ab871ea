// The Fourier transform against a slow one in extended precision.
#include "common/numeric/mat_fft.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <new>
#include <numbers>
#include <random>
#include <stdexcept>
#include <vector>

#include "numeric/fft_real.h"
#include "numeric/instruction_set.h"

namespace {

using qarv::common::CMatFFT;
using qarv::common::FftPlan;
using qarv::common::InstructionSet;
using qarv::common::int64;
using qarv::common::RealFft;
using qarv::common::uint64;
using Wave = std::vector<double>;
using Lengths = std::vector<uint64>;

constexpr unsigned kSeed = 20260415;

Wave Noise(uint64 n) {
  std::mt19937_64 random(kSeed + n);
  std::normal_distribution<double> normal;
  Wave x(n);
  for (double& v : x) v = normal(random);
  return x;
}

struct Spectrum {
  std::vector<long double> re, im;
};

/// Lines of the transform by its definition, with roots from a table in extended precision.
Spectrum SlowLines(const Wave& x, const std::vector<uint64>& lines) {
  const uint64 n = x.size();
  std::vector<long double> c(n);
  std::vector<long double> s(n);
  for (uint64 k = 0; k < n; ++k) {
    const long double angle = 2.0L * std::numbers::pi_v<long double> * static_cast<long double>(k) /
                              static_cast<long double>(n);
    c[k] = std::cos(angle);
    s[k] = std::sin(angle);
  }
  Spectrum out;
  for (const uint64 line : lines) {
    long double re = 0.0L;
    long double im = 0.0L;
    uint64 at = 0;  // j times line, modulo n
    for (uint64 j = 0; j < n; ++j) {
      re += static_cast<long double>(x[j]) * c[at];
      im -= static_cast<long double>(x[j]) * s[at];
      at += line;
      if (at >= n) at -= n;
    }
    out.re.push_back(re);
    out.im.push_back(im);
  }
  return out;
}

struct Transformed {
  Wave spec1, spec2;
};

Transformed Forward(const Wave& x) {
  const FftPlan plan(x.size());
  Wave work(plan.GetWorkSize());
  Transformed out{Wave(x.size() / 2 + 1), Wave(x.size() / 2 + 1)};
  EXPECT_TRUE(plan.Forward(x.data(), work.data(), out.spec1.data(), out.spec2.data()));
  return out;
}

/// Root mean square of the error over the given lines, relative to that of the lines themselves.
double RelativeError(const Wave& x, const std::vector<uint64>& lines) {
  const Transformed fast = Forward(x);
  const Spectrum slow = SlowLines(x, lines);
  long double error = 0.0L;
  long double power = 0.0L;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const long double dr = fast.spec1[lines[i]] - slow.re[i];
    const long double di = fast.spec2[lines[i]] - slow.im[i];
    error += dr * dr + di * di;
    power += slow.re[i] * slow.re[i] + slow.im[i] * slow.im[i];
  }
  return static_cast<double>(std::sqrt(error / power));
}

std::vector<uint64> AllLines(uint64 n) {
  std::vector<uint64> lines(n / 2 + 1);
  for (uint64 k = 0; k < lines.size(); ++k) lines[k] = k;
  return lines;
}

/// The largest difference after a transform and its inverse, relative to the peak.
double RoundTripError(const Wave& x) {
  const Transformed t = Forward(x);
  const FftPlan plan(x.size());
  Wave work(plan.GetWorkSize());
  Wave back(x.size());
  EXPECT_TRUE(plan.Inverse(back.data(), work.data(), t.spec1.data(), t.spec2.data()));
  double error = 0.0;
  double peak = 0.0;
  for (std::size_t i = 0; i < x.size(); ++i) {
    error = std::max(error, std::fabs(back[i] - x[i]));
    peak = std::max(peak, std::fabs(x[i]));
  }
  return error / peak;
}

#ifdef __SANITIZE_ADDRESS__
constexpr uint64 kStep = 7;  // every length takes minutes there
#else
constexpr uint64 kStep = 1;
#endif

// ---- Accuracy ----------------------------------------------------------------------------------

TEST(MatFFT, MatchesTheDefinitionForEveryLengthTo2048) {
  double worst = 0.0;
  for (uint64 n = 1; n <= 2048; n += n < 300 ? 1 : kStep) {
    const double error = RelativeError(Noise(n), AllLines(n));
    EXPECT_LE(error, 1e-15) << "length " << n << ", seed " << kSeed;
    worst = std::max(worst, error);
  }
  RecordProperty("worst", testing::PrintToString(worst));
}

TEST(MatFFT, MatchesTheDefinitionForALongPrime) {
  EXPECT_LE(RelativeError(Noise(10007), AllLines(10007)), 1e-15);
}

TEST(MatFFT, MatchesTheDefinitionInLinesOfLongWaves) {
  std::mt19937_64 random(kSeed);
  for (const uint64 n : {uint64{65536}, uint64{65537}, uint64{1000000}}) {
    std::vector<uint64> lines{0, 1, n / 2};
    while (lines.size() < 200) lines.push_back(random() % (n / 2 + 1));
    EXPECT_LE(RelativeError(Noise(n), lines), 1e-15) << "length " << n << ", seed " << kSeed;
  }
}

TEST(MatFFT, GivesTheSamplesBackForEveryLength) {
  for (uint64 n = 1; n <= 2048; ++n) {
    EXPECT_LE(RoundTripError(Noise(n)), 5e-15) << "length " << n << ", seed " << kSeed;
  }
  for (const uint64 n : {uint64{10007}, uint64{65536}, uint64{65537}, uint64{1000000}}) {
    EXPECT_LE(RoundTripError(Noise(n)), 5e-15) << "length " << n << ", seed " << kSeed;
  }
}

// ---- What a transform is -----------------------------------------------------------------------

TEST(MatFFT, OfAnImpulseIsFlat) {
  for (const uint64 n : Lengths{1, 2, 3, 8, 30, 37, 74}) {
    Wave x(n);
    x[0] = 3.0;
    const Transformed t = Forward(x);
    for (uint64 k = 0; k <= n / 2; ++k) {
      EXPECT_NEAR(t.spec1[k], 3.0, 1e-14) << n;
      EXPECT_NEAR(t.spec2[k], 0.0, 1e-14) << n;
    }
  }
}

TEST(MatFFT, OfAConstantIsItsSumInLineZero) {
  for (const uint64 n : Lengths{1, 2, 3, 8, 30, 37, 74}) {
    const Transformed t = Forward(Wave(n, 2.0));
    EXPECT_NEAR(t.spec1[0], 2.0 * static_cast<double>(n), 1e-12) << n;
    for (uint64 k = 1; k <= n / 2; ++k) EXPECT_NEAR(std::hypot(t.spec1[k], t.spec2[k]), 0.0, 1e-12);
  }
}

TEST(MatFFT, OfACosineAndASineLiesInTheirLine) {
  const uint64 n = 48;
  Wave x(n);
  for (uint64 j = 0; j < n; ++j) {
    const double angle = 2.0 * std::numbers::pi * static_cast<double>(5 * j) / 48.0;
    x[j] = std::cos(angle) + 2.0 * std::sin(angle);
  }
  const Transformed t = Forward(x);
  for (uint64 k = 0; k <= n / 2; ++k) {
    EXPECT_NEAR(t.spec1[k], k == 5 ? 24.0 : 0.0, 1e-12);
    EXPECT_NEAR(t.spec2[k], k == 5 ? -48.0 : 0.0, 1e-12);
  }
}

TEST(MatFFT, HasNoImaginaryPartWhereARealWaveHasNone) {
  for (uint64 n = 1; n < 80; ++n) {
    const Transformed t = Forward(Noise(n));
    EXPECT_EQ(t.spec2[0], 0.0) << n;
    if (n % 2 == 0) {
      EXPECT_EQ(t.spec2[n / 2], 0.0) << n;
    }
  }
}

TEST(MatFFT, IgnoresImaginaryPartsThatARealWaveDoesNotHave) {
  for (const uint64 n : Lengths{1, 2, 9, 12, 37, 74}) {
    const Wave x = Noise(n);
    Transformed t = Forward(x);
    t.spec2[0] = 1e9;
    if (n % 2 == 0) t.spec2[n / 2] = -1e9;
    const FftPlan plan(n);
    Wave work(plan.GetWorkSize());
    Wave back(n);
    ASSERT_TRUE(plan.Inverse(back.data(), work.data(), t.spec1.data(), t.spec2.data()));
    for (uint64 j = 0; j < n; ++j) EXPECT_NEAR(back[j], x[j], 1e-13) << n;
  }
}

TEST(MatFFT, IsLinear) {
  for (const uint64 n : Lengths{100, 101}) {
    const Wave x = Noise(n);
    Wave y = Noise(n + 1);
    y.pop_back();
    Wave sum(n);
    for (uint64 j = 0; j < n; ++j) sum[j] = 2.0 * x[j] - 3.0 * y[j];
    const Transformed tx = Forward(x);
    const Transformed ty = Forward(y);
    const Transformed ts = Forward(sum);
    for (uint64 k = 0; k <= n / 2; ++k) {
      EXPECT_NEAR(ts.spec1[k], 2.0 * tx.spec1[k] - 3.0 * ty.spec1[k], 1e-12);
      EXPECT_NEAR(ts.spec2[k], 2.0 * tx.spec2[k] - 3.0 * ty.spec2[k], 1e-12);
    }
  }
}

// ---- Instruction sets --------------------------------------------------------------------------

/// All bits that a transform and its inverse deliver, line by line and sample by sample.
std::vector<std::uint64_t> BitsOf(const RealFft& fft, const Wave& x, InstructionSet set) {
  const uint64 lines = x.size() / 2 + 1;
  Wave work(fft.GetWorkSize());
  Wave out(2 * lines + x.size());
  double* const spec1 = out.data();
  double* const spec2 = spec1 + lines;
  fft.Forward(x.data(), work.data(), spec1, spec2, set);
  fft.Inverse(spec2 + lines, work.data(), spec1, spec2, set);
  std::vector<std::uint64_t> bits;
  for (const double v : out) bits.push_back(std::bit_cast<std::uint64_t>(v));
  return bits;
}

TEST(MatFFT, GivesTheSameBitsWithEveryInstructionSet) {
  Lengths lengths{10007, 2 * 10007, 16384, 65536, 65537, 3 * 17 * 512, 31 * 29 * 16, 44100, 100000};
  for (uint64 n = 1; n <= 1100; ++n) lengths.push_back(n);
  for (const uint64 n : lengths) {
    const RealFft fft(n);
    const Wave x = Noise(n);
    const auto sets = qarv::common::UsableInstructionSets();
    const std::vector<std::uint64_t> baseline = BitsOf(fft, x, sets.front());
    for (const InstructionSet set : sets.subspan(1)) {
      EXPECT_EQ(BitsOf(fft, x, set), baseline)
          << "length " << n << ", set " << static_cast<int>(set);
    }
  }
}

// ---- Plans and calls ---------------------------------------------------------------------------

TEST(MatFFT, LeavesItsInputAsItIs) {
  for (const uint64 n : Lengths{16, 15, 37, 74}) {
    const Wave x = Noise(n);
    const Wave before = x;
    const Transformed t = Forward(x);
    EXPECT_EQ(x, before);
    const Transformed spectrum = t;
    const FftPlan plan(n);
    Wave work(plan.GetWorkSize());
    Wave back(n);
    ASSERT_TRUE(plan.Inverse(back.data(), work.data(), t.spec1.data(), t.spec2.data()));
    EXPECT_EQ(t.spec1, spectrum.spec1);
    EXPECT_EQ(t.spec2, spectrum.spec2);
  }
}

TEST(MatFFT, APlanGivesTheSameBitsEveryTimeAndInItsCopies) {
  for (const uint64 n : Lengths{64, 74, 81}) {
    const Wave x = Noise(n);
    const FftPlan plan(n);
    EXPECT_EQ(plan.GetSize(), n);
    const FftPlan copy = plan;
    const Transformed first = Forward(x);
    for (const FftPlan& p : {plan, copy, plan}) {
      Wave work(p.GetWorkSize(), 7.0);
      Wave spec1(n / 2 + 1);
      Wave spec2(n / 2 + 1);
      ASSERT_TRUE(p.Forward(x.data(), work.data(), spec1.data(), spec2.data()));
      EXPECT_EQ(spec1, first.spec1);
      EXPECT_EQ(spec2, first.spec2);
    }
  }
}

TEST(MatFFT, ASmoothEvenLengthNeedsWorkOfItsOwnLengthOnly) {
  for (const uint64 n : Lengths{2, 4, 1000, 1024, 65536}) EXPECT_EQ(FftPlan(n).GetWorkSize(), n);
}

TEST(MatFFT, AnAwkwardLengthNeedsWorkForAConvolutionHalfAsLongAgain) {
  // An odd prime is convolved with its n / 2 + 1 lines alone, twice a prime with as many lines as
  // values; the quick length above may be a fifth longer, and four arrays of it are needed.
  for (const uint64 p : Lengths{10007, 65537, 524309, 1048573}) {
    EXPECT_LE(FftPlan(p).GetWorkSize(), 4 * (p + p / 2 + 1) * 6 / 5) << p;
    EXPECT_LE(FftPlan(2 * p).GetWorkSize(), 4 * 2 * p * 6 / 5) << p;
  }
}

TEST(MatFFT, TheCallsGiveTheBitsOfAPlanWithWorkOfTheWavesLength) {
  for (const uint64 n : Lengths{1, 2, 3, 37, 74, 100, 101, 1024}) {
    const Wave x = Noise(n);
    const Transformed t = Forward(x);
    Wave work(n);
    Wave spec1(n / 2 + 1);
    Wave spec2(n / 2 + 1);
    ASSERT_TRUE(CMatFFT::WaveRfft(x.data(), work.data(), n, spec1.data(), spec2.data(), n / 2));
    EXPECT_EQ(spec1, t.spec1);
    EXPECT_EQ(spec2, t.spec2);
    Wave back(n);
    ASSERT_TRUE(CMatFFT::WaveIfft(back.data(), work.data(), n, spec1.data(), spec2.data(), n / 2));
    for (uint64 j = 0; j < n; ++j) EXPECT_NEAR(back[j], x[j], 1e-13);
  }
}

TEST(MatFFT, RefusesMissingBuffersAndWrongLineCountsWithNothingWritten) {
  const uint64 n = 8;
  const Wave x(n, 1.0);
  Wave work(n, 7.0);
  Wave spec1(5, 7.0);
  Wave spec2(5, 7.0);
  const Wave untouched(5, 7.0);
  const double* const in = x.data();
  double* const w = work.data();
  double* const a = spec1.data();
  double* const b = spec2.data();
  EXPECT_FALSE(CMatFFT::WaveRfft(nullptr, w, n, a, b, 4));
  EXPECT_FALSE(CMatFFT::WaveRfft(in, nullptr, n, a, b, 4));
  EXPECT_FALSE(CMatFFT::WaveRfft(in, w, n, nullptr, b, 4));
  EXPECT_FALSE(CMatFFT::WaveRfft(in, w, n, a, nullptr, 4));
  EXPECT_FALSE(CMatFFT::WaveRfft(in, w, 0, a, b, 0));
  for (const uint64 nline : Lengths{0, 3, 5, 8})
    EXPECT_FALSE(CMatFFT::WaveRfft(in, w, n, a, b, nline));
  EXPECT_EQ(spec1, untouched);
  EXPECT_EQ(spec2, untouched);

  Wave back(n, 7.0);
  double* const out = back.data();
  EXPECT_FALSE(CMatFFT::WaveIfft(nullptr, w, n, a, b, 4));
  EXPECT_FALSE(CMatFFT::WaveIfft(out, nullptr, n, a, b, 4));
  EXPECT_FALSE(CMatFFT::WaveIfft(out, w, n, nullptr, b, 4));
  EXPECT_FALSE(CMatFFT::WaveIfft(out, w, n, a, nullptr, 4));
  EXPECT_FALSE(CMatFFT::WaveIfft(out, w, 0, a, b, 0));
  EXPECT_FALSE(CMatFFT::WaveIfft(out, w, n, a, b, 5));
  EXPECT_EQ(back, Wave(n, 7.0));

  const FftPlan plan(n);
  EXPECT_FALSE(plan.Forward(nullptr, w, a, b));
  EXPECT_FALSE(plan.Forward(in, nullptr, a, b));
  EXPECT_FALSE(plan.Inverse(out, w, a, nullptr));
  const FftPlan empty(0);
  EXPECT_EQ(empty.GetSize(), 0U);
  EXPECT_FALSE(empty.Forward(in, w, a, b));
  EXPECT_FALSE(empty.Inverse(out, w, a, b));
  EXPECT_EQ(spec1, untouched);
  EXPECT_EQ(back, Wave(n, 7.0));
}

TEST(MatFFT, ALengthBeyondMemoryIsTheStandardAllocationError) {
  for (const uint64 n : {uint64{1} << 60, uint64{1} << 62, uint64{1} << 63, ~uint64{0},
                         (uint64{1} << 62) + 1, (uint64{1} << 60) - 1}) {
    EXPECT_THROW(FftPlan{n}, std::bad_alloc) << n;
  }
}

// ---- Roots of unity ----------------------------------------------------------------------------

TEST(MatFFTRoots, AreExactAndSymmetricInEighthsOfATurn) {
  const double diagonal = std::sqrt(0.5);
  struct Row {
    int64 i, n;
    double c, s;
  };
  // clang-format off
  const std::vector<Row> rows{
    // i    n   cos        sin
    {  0,   1,  1.0,       0.0      },
    {  5,   1,  1.0,       0.0      },
    {  0,   8,  1.0,       0.0      },
    {  1,   8,  diagonal,  diagonal },
    {  2,   8,  0.0,       1.0      },
    {  3,   8, -diagonal,  diagonal },
    {  4,   8, -1.0,       0.0      },
    {  5,   8, -diagonal, -diagonal },
    {  6,   8,  0.0,      -1.0      },
    {  7,   8,  diagonal, -diagonal },
    { -1,   8,  diagonal, -diagonal },
    {  17,  8,  diagonal,  diagonal },
    { -6,   4, -1.0,       0.0      },
    {  1,   2, -1.0,       0.0      },
  };
  // clang-format on
  for (const Row& row : rows) {
    double c = 9.0;
    double s = 9.0;
    ASSERT_TRUE(CMatFFT::GetCosSinI(row.i, row.n, &c, &s));
    EXPECT_EQ(c, row.c) << row.i << "/" << row.n;
    EXPECT_EQ(s, row.s) << row.i << "/" << row.n;
  }
}

TEST(MatFFTRoots, MatchExtendedPrecisionAllAround) {
  for (const int64 n : std::vector<int64>{3, 7, 12, 97, 360, 1000}) {
    for (int64 i = -n; i <= 2 * n; ++i) {
      double c = 0.0;
      double s = 0.0;
      ASSERT_TRUE(CMatFFT::GetCosSinI(i, n, &c, &s));
      const long double angle = 2.0L * std::numbers::pi_v<long double> *
                                static_cast<long double>(i) / static_cast<long double>(n);
      EXPECT_NEAR(c, static_cast<double>(std::cos(angle)), 2.3e-16);
      EXPECT_NEAR(s, static_cast<double>(std::sin(angle)), 2.3e-16);
    }
  }
}

TEST(MatFFTRoots, CountAnyIndexModuloTheTurnWithoutOverflow) {
  constexpr int64 kMin = std::numeric_limits<int64>::min();
  constexpr int64 kMax = std::numeric_limits<int64>::max();
  double c = 0.0;
  double s = 0.0;
  ASSERT_TRUE(CMatFFT::GetCosSinI(kMin, 8, &c, &s));  // -2^63 is a multiple of 8
  EXPECT_EQ(c, 1.0);
  EXPECT_EQ(s, 0.0);
  ASSERT_TRUE(CMatFFT::GetCosSinI(kMax, 8, &c, &s));  // one less
  EXPECT_EQ(c, std::sqrt(0.5));
  EXPECT_EQ(s, -std::sqrt(0.5));
  ASSERT_TRUE(CMatFFT::GetCosSinI(kMin, kMax, &c, &s));  // one step back of a great many
  EXPECT_EQ(c, 1.0);
  EXPECT_LT(s, 0.0);
  EXPECT_GT(s, -1e-18);
}

TEST(MatFFTRoots, AreRefusedWithNothingWrittenWithoutATurnOrAPlace) {
  double c = 7.0;
  double s = 7.0;
  EXPECT_FALSE(CMatFFT::GetCosSinI(1, 0, &c, &s));
  EXPECT_FALSE(CMatFFT::GetCosSinI(1, -8, &c, &s));
  EXPECT_FALSE(CMatFFT::GetCosSinI(1, 8, nullptr, &s));
  EXPECT_FALSE(CMatFFT::GetCosSinI(1, 8, &c, nullptr));
  EXPECT_EQ(c, 7.0);
  EXPECT_EQ(s, 7.0);
}

}  // namespace
