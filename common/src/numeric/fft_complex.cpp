// The complex Fourier transform of any length.
//
//   n        length
//   radix    factor of the length that a pass takes out
//   stride   product of the factors before; the values of one butterfly lie stride * m apart
//   w        twiddle factor exp(-2 pi i j q / (radix m))
#include "numeric/fft_complex.h"

#include <algorithm>
#include <array>
#include <limits>
#include <new>

#include "common/numeric/constants.h"

namespace qarv::common {
namespace {

// Larger prime factors are cheaper as a convolution than by their sums.
constexpr uint64 kLargestRadix = 31;

/// The factors of n, fours first; empty if one of them is larger than kLargestRadix.
std::vector<uint64> Factorise(uint64 n) {
  std::vector<uint64> factors;
  const auto take = [&](uint64 p) {
    for (; n % p == 0; n /= p) factors.push_back(p);
  };
  take(4);
  take(2);
  for (uint64 p = 3; p <= kLargestRadix; p += 2) take(p);
  if (n != 1) factors.clear();
  return factors;
}

Complex operator+(Complex a, Complex b) { return {a.re + b.re, a.im + b.im}; }
Complex operator-(Complex a, Complex b) { return {a.re - b.re, a.im - b.im}; }
Complex operator*(double k, Complex a) { return {k * a.re, k * a.im}; }
/// -i a
Complex Turn(Complex a) { return {a.im, -a.re}; }

// ---- Butterflies: the transform of a few values, in place --------------------------------------

void Butterfly(std::array<Complex, 2>& a) {
  const Complex t = a[1];
  a[1] = a[0] - t;
  a[0] = a[0] + t;
}

void Butterfly(std::array<Complex, 3>& a) {
  constexpr double kHalfRoot3 = 0.86602540378443864676;  // sin(2 pi / 3)
  const Complex sum = a[1] + a[2];
  const Complex mid = a[0] - 0.5 * sum;
  const Complex side = kHalfRoot3 * Turn(a[1] - a[2]);
  a = {a[0] + sum, mid + side, mid - side};
}

void Butterfly(std::array<Complex, 4>& a) {
  const Complex s02 = a[0] + a[2];
  const Complex d02 = a[0] - a[2];
  const Complex s13 = a[1] + a[3];
  const Complex d13 = Turn(a[1] - a[3]);
  a = {s02 + s13, d02 + d13, s02 - s13, d02 - d13};
}

void Butterfly(std::array<Complex, 5>& a) {
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

// ---- Passes ------------------------------------------------------------------------------------

/// Source and target of a pass.
struct Buffers {
  const double* __restrict xr;
  const double* __restrict xi;
  double* __restrict yr;
  double* __restrict yi;
};

/// One butterfly of R values: from in, in + step, ... to out, out + gap, ..., times the row's
/// factors.
template <std::size_t R>
inline void Step(const Buffers& b, uint64 in, uint64 step, uint64 out, uint64 gap,
                 const Complex* w) {
  std::array<Complex, R> a;
  for (std::size_t r = 0; r < R; ++r) a[r] = {b.xr[in + r * step], b.xi[in + r * step]};
  Butterfly(a);
  b.yr[out] = a[0].re;
  b.yi[out] = a[0].im;
  for (std::size_t q = 1; q < R; ++q) {
    const Complex y = a[q] * w[q - 1];
    b.yr[out + q * gap] = y.re;
    b.yi[out + q * gap] = y.im;
  }
}

/// A pass of radix R.  The inner loop runs over neighbours that share their twiddle factors.
template <std::size_t R>
void RunPass(uint64 m, uint64 stride, const Complex* twiddle, const Buffers& b) {
  for (uint64 j = 0; j < m; ++j) {
    std::array<Complex, R - 1> w;
    std::copy_n(twiddle + j * (R - 1), R - 1, w.begin());
    for (uint64 k = 0; k < stride; ++k) {
      Step<R>(b, k + stride * j, stride * m, k + stride * R * j, stride, w.data());
    }
  }
}

/// A pass of any radix, by its sums.
void RunAnyPass(uint64 radix, uint64 m, uint64 stride, const Complex* twiddle, const Complex* roots,
                const Buffers& b) {
  for (uint64 j = 0; j < m; ++j) {
    for (uint64 q = 0; q < radix; ++q) {
      const Complex w = q == 0 ? Complex{1.0, 0.0} : twiddle[j * (radix - 1) + q - 1];
      for (uint64 k = 0; k < stride; ++k) {
        Complex sum{0.0, 0.0};
        for (uint64 r = 0; r < radix; ++r) {
          const uint64 at = k + stride * (j + m * r);
          sum = sum + Complex{b.xr[at], b.xi[at]} * roots[r * q % radix];
        }
        sum = sum * w;
        b.yr[k + stride * (radix * j + q)] = sum.re;
        b.yi[k + stride * (radix * j + q)] = sum.im;
      }
    }
  }
}

}  // namespace

// ---- Bluestein's chirp transform ---------------------------------------------------------------

/// The transform as a convolution with a chirp: j k = (j^2 + k^2 - (k - j)^2) / 2 makes
///
///   Z[k] = c[k] sum (z[j] c[j]) conj(c[k - j]),   c[j] = exp(-pi i j^2 / n),
///
/// which is computed by transforms of a length with small factors (L. I. Bluestein, A linear
/// filtering approach to the computation of the discrete Fourier transform, 1970).
class ChirpFft {
 public:
  explicit ChirpFft(uint64 n) : convolution_(LengthFor(n)), chirp_(static_cast<std::size_t>(n)) {
    const auto M = static_cast<std::size_t>(convolution_.GetSize());
    std::vector<double> re(M);
    std::vector<double> im(M);
    std::vector<double> scratch(static_cast<std::size_t>(convolution_.GetScratchSize()));
    uint64 square = 0;  // j^2 modulo 2 n
    for (std::size_t j = 0; j < n; ++j) {
      const Complex c = UnitRoot(square, 2 * n);
      chirp_[j] = {c.re, -c.im};
      re[j] = c.re;
      im[j] = c.im;
      if (j != 0) {
        re[M - j] = c.re;
        im[M - j] = c.im;
      }
      square = (square + 2 * j + 1) % (2 * n);
    }
    convolution_.Transform(re.data(), im.data(), scratch.data());
    const double scale = 1.0 / static_cast<double>(M);
    filter_.reserve(M);
    for (std::size_t k = 0; k < M; ++k) filter_.push_back({re[k] * scale, im[k] * scale});
  }

  uint64 GetScratchSize() const {
    return 2 * convolution_.GetSize() + convolution_.GetScratchSize();
  }

  void Transform(double* re, double* im, double* scratch) const {
    const std::size_t n = chirp_.size();
    const std::size_t M = filter_.size();
    double* const zr = scratch;
    double* const zi = scratch + M;
    double* const rest = scratch + 2 * M;
    for (std::size_t j = 0; j < n; ++j) Put(Complex{re[j], im[j]} * chirp_[j], j, zr, zi);
    std::fill(zr + n, zr + M, 0.0);
    std::fill(zi + n, zi + M, 0.0);
    convolution_.Transform(zr, zi, rest);
    for (std::size_t k = 0; k < M; ++k) Put(Complex{zr[k], zi[k]} * filter_[k], k, zr, zi);
    convolution_.Transform(zi, zr, rest);  // exchanged: the inverse
    for (std::size_t k = 0; k < n; ++k) Put(Complex{zr[k], zi[k]} * chirp_[k], k, re, im);
  }

 private:
  static void Put(Complex z, uint64 k, double* re, double* im) {
    re[k] = z.re;
    im[k] = z.im;
  }

  /// The shortest length 2^a, 3 2^a or 5 2^a in which the convolution does not wrap.
  static uint64 LengthFor(uint64 n) {
    if (n > std::numeric_limits<uint64>::max() / 64) throw std::bad_alloc();
    uint64 best = std::numeric_limits<uint64>::max();
    for (const uint64 odd : {uint64{1}, uint64{3}, uint64{5}}) {
      uint64 length = odd;
      while (length < 2 * n - 1) length *= 2;
      best = std::min(best, length);
    }
    return best;
  }

  ComplexFft convolution_;
  std::vector<Complex> chirp_;
  std::vector<Complex> filter_;  // transform of the chirp, scaled for the inverse
};

// ---- ComplexFft --------------------------------------------------------------------------------

ComplexFft::ComplexFft(uint64 n) : n_(n) {
  if (n < 2) return;
  // More than memory can hold is refused before any table is begun.
  if (n > std::numeric_limits<std::size_t>::max() / (8 * sizeof(Complex))) throw std::bad_alloc();
  const std::vector<uint64> factors = Factorise(n);
  if (factors.empty()) {
    chirp_ = std::make_shared<const ChirpFft>(n);
  } else {
    AddPasses(factors);
  }
}

void ComplexFft::AddPasses(const std::vector<uint64>& factors) {
  const RootTable roots(n_);
  const auto conjugate = [](Complex c) { return Complex{c.re, -c.im}; };
  uint64 length = n_;
  uint64 stride = 1;
  for (const uint64 radix : factors) {
    Pass pass{radix, length / radix, stride, {}, {}};
    pass.twiddle.reserve(static_cast<std::size_t>(pass.m * (radix - 1)));
    for (uint64 j = 0; j < pass.m; ++j) {
      for (uint64 q = 1; q < radix; ++q) pass.twiddle.push_back(conjugate(roots(j * q * stride)));
    }
    if (radix > 5) {
      for (uint64 r = 0; r < radix; ++r) pass.roots.push_back(conjugate(UnitRoot(r, radix)));
    }
    passes_.push_back(std::move(pass));
    length /= radix;
    stride *= radix;
  }
}

uint64 ComplexFft::GetScratchSize() const { return chirp_ ? chirp_->GetScratchSize() : 2 * n_; }

void ComplexFft::Transform(double* re, double* im, double* scratch) const {
  if (chirp_) {
    chirp_->Transform(re, im, scratch);
    return;
  }
  Buffers b{re, im, scratch, scratch + n_};
  double* xr = re;
  double* xi = im;
  double* yr = scratch;
  double* yi = scratch + n_;
  for (const Pass& p : passes_) {
    b = {xr, xi, yr, yi};
    const Complex* const w = p.twiddle.data();
    switch (p.radix) {
      case 2:
        RunPass<2>(p.m, p.stride, w, b);
        break;
      case 3:
        RunPass<3>(p.m, p.stride, w, b);
        break;
      case 4:
        RunPass<4>(p.m, p.stride, w, b);
        break;
      case 5:
        RunPass<5>(p.m, p.stride, w, b);
        break;
      default:
        RunAnyPass(p.radix, p.m, p.stride, w, p.roots.data(), b);
        break;
    }
    std::swap(xr, yr);
    std::swap(xi, yi);
  }
  if (xr != re) {
    std::copy_n(xr, n_, re);
    std::copy_n(xi, n_, im);
  }
}

}  // namespace qarv::common
