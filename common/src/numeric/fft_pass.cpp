// The passes, each with its butterfly: the transform of a few values.
//
//   k, j, r, q   as in the formula of Pass
//   d            distance of the values of one butterfly, stride * m
//   lanes        butterflies that are computed side by side, by one pass of odd radix
#include "numeric/fft_pass.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

#include "numeric/fft_roots.h"

namespace qarv::common {
namespace {

QARV_LANES_INLINE Complex operator+(Complex a, Complex b) { return {a.re + b.re, a.im + b.im}; }
QARV_LANES_INLINE Complex operator-(Complex a, Complex b) { return {a.re - b.re, a.im - b.im}; }
QARV_LANES_INLINE Complex operator*(double k, Complex a) { return {k * a.re, k * a.im}; }
/// -i a
QARV_LANES_INLINE Complex Turn(Complex a) { return {a.im, -a.re}; }

/// f(0), f(1), ... f(N - 1), unrolled where it stands: the compilers take a loop around it for
/// lanes only if no other loop is left inside.
template <std::size_t N, class F>
QARV_LANES_INLINE void Each(const F& f) {
  [&]<std::size_t... I>(std::index_sequence<I...>) QARV_LANES {
    (f(std::integral_constant<std::size_t, I>()), ...);
  }
  (std::make_index_sequence<N>());
}

// ---- Butterflies, in place ---------------------------------------------------------------------

QARV_LANES_INLINE void Butterfly(std::array<Complex, 2>& a) {
  const Complex t = a[1];
  a[1] = a[0] - t;
  a[0] = a[0] + t;
}

QARV_LANES_INLINE void Butterfly(std::array<Complex, 3>& a) {
  constexpr double kHalfRoot3 = 0.86602540378443864676;  // sin(2 pi / 3)
  const Complex sum = a[1] + a[2];
  const Complex mid = a[0] - 0.5 * sum;
  const Complex side = kHalfRoot3 * Turn(a[1] - a[2]);
  a = {a[0] + sum, mid + side, mid - side};
}

QARV_LANES_INLINE void Butterfly(std::array<Complex, 4>& a) {
  const Complex s02 = a[0] + a[2];
  const Complex d02 = a[0] - a[2];
  const Complex s13 = a[1] + a[3];
  const Complex d13 = Turn(a[1] - a[3]);
  a = {s02 + s13, d02 + d13, s02 - s13, d02 - d13};
}

QARV_LANES_INLINE void Butterfly(std::array<Complex, 5>& a) {
  constexpr double kC1 = 0.30901699437494742410;   // cos(2 pi / 5)
  constexpr double kC2 = -0.80901699437494742410;  // cos(4 pi / 5)
  constexpr double kS1 = 0.95105651629515357212;   // sin(2 pi / 5)
  constexpr double kS2 = 0.58778525229247312917;   // sin(4 pi / 5)
  const Complex s14 = a[1] + a[4];
  const Complex s23 = a[2] + a[3];
  const Complex d14 = Turn(a[1] - a[4]);
  const Complex d23 = Turn(a[2] - a[3]);
  const Complex mid1 = a[0] + kC1 * s14 + kC2 * s23;
  const Complex mid2 = a[0] + kC2 * s14 + kC1 * s23;
  const Complex side1 = kS1 * d14 + kS2 * d23;
  const Complex side2 = kS2 * d14 - kS1 * d23;
  a = {a[0] + s14 + s23, mid1 + side1, mid2 + side2, mid2 - side2, mid1 - side1};
}

QARV_LANES_INLINE void Butterfly(std::array<Complex, 8>& a) {
  constexpr double kDiagonal = 0.70710678118654752440;  // cos(2 pi / 8)
  std::array<Complex, 4> even{a[0], a[2], a[4], a[6]};
  std::array<Complex, 4> odd{a[1], a[3], a[5], a[7]};
  Butterfly(even);
  Butterfly(odd);
  const Complex t1{kDiagonal * (odd[1].re + odd[1].im), kDiagonal * (odd[1].im - odd[1].re)};
  const Complex t2 = Turn(odd[2]);
  const Complex t3{kDiagonal * (odd[3].im - odd[3].re), -kDiagonal * (odd[3].re + odd[3].im)};
  a = {even[0] + odd[0], even[1] + t1, even[2] + t2, even[3] + t3,
       even[0] - odd[0], even[1] - t1, even[2] - t2, even[3] - t3};
}

// ---- Passes with a butterfly of their own ------------------------------------------------------

template <bool kPairs>
QARV_LANES_INLINE Complex Load(const double* re, const double* im, uint64 i) {
  if constexpr (kPairs) return {re[2 * i], re[2 * i + 1]};
  return {re[i], im[i]};
}

template <bool kPairs>
QARV_LANES_INLINE void Store(double* re, double* im, uint64 i, Complex z) {
  if constexpr (kPairs) {
    re[2 * i] = z.im;
    re[2 * i + 1] = z.re;
  } else {
    re[i] = z.re;
    im[i] = z.im;
  }
}

/// The first pass, stride 1: no factors.  Neighbours are read together and part on being written.
template <std::size_t R, bool kPairsIn, bool kPairsOut>
QARV_LANES_INLINE void FirstPass(uint64 m, const double* __restrict xr, const double* __restrict xi,
                                 double* __restrict yr, double* __restrict yi) {
  QARV_INDEPENDENT
  for (uint64 j = 0; j < m; ++j) {
    std::array<Complex, R> a;
    Each<R>([&](auto r) QARV_LANES { a[r] = Load<kPairsIn>(xr, xi, j + r * m); });
    Butterfly(a);
    Each<R>([&](auto q) QARV_LANES { Store<kPairsOut>(yr, yi, R * j + q, a[q]); });
  }
}

/// Part of a row of a pass: its k from first to end.
template <std::size_t R, bool kPairs>
QARV_LANES_INLINE void Row(uint64 first, uint64 end, uint64 stride, uint64 d,
                           const double* __restrict w, const double* __restrict xr,
                           const double* __restrict xi, double* __restrict yr,
                           double* __restrict yi) {
  QARV_INDEPENDENT
  for (uint64 k = first; k < end; ++k) {
    std::array<Complex, R> a;
    a[0] = {xr[k], xi[k]};
    Each<R - 1>([&](auto r) QARV_LANES {
      const double* const row = w + 2 * r * stride;
      a[r + 1] =
          Complex{xr[k + (r + 1) * d], xi[k + (r + 1) * d]} * Complex{row[k], row[stride + k]};
    });
    Butterfly(a);
    Each<R>([&](auto q) QARV_LANES { Store<kPairs>(yr, yi, k + q * stride, a[q]); });
  }
}

// Loads across two lines of the cache cost twice, and more where all of them meet in one set of it,
// as they do in the last passes of powers of 2: long rows begin with what is left of a line.
constexpr uint64 kLongRow = 128;

QARV_LANES_INLINE uint64 DistanceToLine(const double* p) {
  return (8 - reinterpret_cast<std::uintptr_t>(p) / sizeof(double) % 8) % 8;
}

/// A later pass; kStride fixes the stride where it is not 0.
template <std::size_t R, uint64 kStride, bool kPairs>
QARV_LANES_INLINE void LaterPass(const Pass& p, const Source& x, const Target& y) {
  const uint64 stride = kStride != 0 ? kStride : p.stride;
  const uint64 m = p.m;
  constexpr uint64 kStep = kPairs ? 2 : 1;
  for (uint64 j = 0; j < m; ++j) {
    const auto row = [&](uint64 first, uint64 end) QARV_LANES {
      Row<R, kPairs>(first, end, stride, stride * m, p.twiddle, x.re + j * stride,
                     x.im + j * stride, y.re + kStep * j * stride * R,
                     kPairs ? nullptr : y.im + j * stride * R);
    };
    if (kStride != 0 || stride < kLongRow) {
      row(0, stride);
    } else {
      const uint64 lineEnd = DistanceToLine(x.re + j * stride);
      row(0, lineEnd);
      row(lineEnd, stride);
    }
  }
}

template <std::size_t R>
void RunFirstPass(InstructionSet set, const Pass& p, const Source& x, const Target& y) {
  if (y.im == nullptr) {
    RunWith(set, [&]() QARV_LANES { FirstPass<R, false, true>(p.m, x.re, x.im, y.re, y.im); });
  } else if (x.step == 2) {
    RunWith(set, [&]() QARV_LANES { FirstPass<R, true, false>(p.m, x.re, x.im, y.re, y.im); });
  } else {
    RunWith(set, [&]() QARV_LANES { FirstPass<R, false, false>(p.m, x.re, x.im, y.re, y.im); });
  }
}

template <std::size_t R>
void RunLaterPass(InstructionSet set, const Pass& p, const Source& x, const Target& y) {
  if (y.im == nullptr) {
    RunWith(set, [&]() QARV_LANES { LaterPass<R, 0, true>(p, x, y); });
  } else if (p.stride == 4) {
    RunWith(set, [&]() QARV_LANES { LaterPass<R, 4, false>(p, x, y); });
  } else if (p.stride == 8) {
    RunWith(set, [&]() QARV_LANES { LaterPass<R, 8, false>(p, x, y); });
  } else {
    RunWith(set, [&]() QARV_LANES { LaterPass<R, 0, false>(p, x, y); });
  }
}

template <std::size_t R>
void RunPassOf(InstructionSet set, const Pass& p, const Source& x, const Target& y) {
  if (p.stride == 1) return RunFirstPass<R>(set, p, x, y);
  RunLaterPass<R>(set, p, x, y);
}

// ---- Passes of any odd radix -------------------------------------------------------------------

constexpr std::size_t kLanes = 8;
using Lanes = std::array<double, kLanes>;
using OddValues = std::array<Lanes, kLargestRadix>;

/// Replaces values r and radix - r by their sum and their difference.
QARV_LANES_INLINE void SumAndDifference(std::size_t radix, OddValues& a) {
  for (std::size_t r = 1; r <= radix / 2; ++r) {
    for (std::size_t l = 0; l < kLanes; ++l) {
      const double sum = a[r][l] + a[radix - r][l];
      a[radix - r][l] = a[r][l] - a[radix - r][l];
      a[r][l] = sum;
    }
  }
}

/// The sums that make the values q and radix - q of a butterfly: sum of cos (a[r] + a[radix - r])
/// and of sin (a[r] - a[radix - r]).
QARV_LANES_INLINE void OddSums(std::size_t radix, std::size_t q, const double* roots,
                               const OddValues& a, Lanes& even, Lanes& odd) {
  even = a[0];
  odd = {};
  std::size_t at = 0;  // r q modulo radix
  for (std::size_t r = 1; r <= radix / 2; ++r) {
    at += q;
    if (at >= radix) at -= radix;
    const double c = roots[at];
    const double s = roots[radix + at];
    for (std::size_t l = 0; l < kLanes; ++l) {
      even[l] += c * a[r][l];
      odd[l] += s * a[radix - r][l];
    }
  }
}

/// kLanes butterflies at a time; their results go out one by one, since rows may be short.
QARV_LANES_INLINE void OddPass(const Pass& p, const Source& x, const Target& y) {
  const auto radix = static_cast<std::size_t>(p.radix);
  const auto stride = static_cast<std::size_t>(p.stride);
  const std::size_t d = stride * static_cast<std::size_t>(p.m);
  const std::size_t outStep = y.im == nullptr ? 2 : 1;
  double* const outRe = y.im == nullptr ? y.re + 1 : y.re;
  double* const outIm = y.im == nullptr ? y.re : y.im;
  OddValues re{};
  OddValues im{};
  std::array<std::size_t, kLanes> row{};  // k
  std::array<std::size_t, kLanes> out{};  // place of the value q = 0
  std::size_t k = 0;
  std::size_t base = 0;
  for (std::size_t i = 0; i < d; i += kLanes) {
    const std::size_t lanes = std::min(kLanes, d - i);
    for (std::size_t l = 0; l < lanes; ++l) {
      row[l] = k;
      out[l] = base + k;
      if (++k == stride) {
        k = 0;
        base += stride * radix;
      }
    }
    for (std::size_t r = 0; r < radix; ++r) {
      const double* const w = p.twiddle + (r == 0 ? 0 : 2 * (r - 1) * stride);
      for (std::size_t l = 0; l < lanes; ++l) {
        const uint64 at = (i + l + r * d) * x.step;
        Complex z{x.re[at], x.im[at]};
        if (r != 0 && stride != 1) z = z * Complex{w[row[l]], w[stride + row[l]]};
        re[r][l] = z.re;
        im[r][l] = z.im;
      }
    }
    SumAndDifference(radix, re);
    SumAndDifference(radix, im);
    const auto put = [&](std::size_t q, std::size_t l, double zr, double zi) QARV_LANES {
      outRe[(out[l] + q * stride) * outStep] = zr;
      outIm[(out[l] + q * stride) * outStep] = zi;
    };
    Lanes sumRe = re[0];
    Lanes sumIm = im[0];
    for (std::size_t r = 1; r <= radix / 2; ++r) {
      for (std::size_t l = 0; l < kLanes; ++l) {
        sumRe[l] += re[r][l];
        sumIm[l] += im[r][l];
      }
    }
    for (std::size_t l = 0; l < lanes; ++l) put(0, l, sumRe[l], sumIm[l]);
    for (std::size_t q = 1; q <= radix / 2; ++q) {
      Lanes evenRe, oddRe, evenIm, oddIm;
      OddSums(radix, q, p.roots, re, evenRe, oddRe);
      OddSums(radix, q, p.roots, im, evenIm, oddIm);
      for (std::size_t l = 0; l < lanes; ++l) {
        put(q, l, evenRe[l] - oddIm[l], evenIm[l] + oddRe[l]);
        put(radix - q, l, evenRe[l] + oddIm[l], evenIm[l] - oddRe[l]);
      }
    }
  }
}

}  // namespace

void RunPass(InstructionSet set, const Pass& p, const Source& x, const Target& y) {
  switch (p.radix) {
    case 2:
      return RunPassOf<2>(set, p, x, y);
    case 3:
      return RunPassOf<3>(set, p, x, y);
    case 4:
      return RunPassOf<4>(set, p, x, y);
    case 5:
      return RunPassOf<5>(set, p, x, y);
    case 8:
      return RunPassOf<8>(set, p, x, y);
    default:
      return RunWith(set, [&]() QARV_LANES { OddPass(p, x, y); });
  }
}

}  // namespace qarv::common
