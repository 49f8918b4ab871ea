// Bluestein's chirp transform.
//
//   M   length of the convolution
//   c   the chirp
#include "numeric/fft_chirp.h"

#include <algorithm>
#include <bit>

#include "numeric/fft_roots.h"

namespace qarv::common {
namespace {

/// The shortest length from `least` on whose passes are quick: few odd factors, rows of whole
/// lanes.
uint64 QuickLength(uint64 least) {
  uint64 best = std::bit_ceil(least);
  for (const uint64 odd : {uint64{3}, uint64{5}, uint64{9}, uint64{15}, uint64{25}}) {
    const uint64 length = odd * std::bit_ceil((least + odd - 1) / odd);
    if (length % 64 == 0) best = std::min(best, length);
  }
  return best;
}

Split FirstHalf(double* scratch, uint64 M) { return {scratch, scratch + M}; }

/// out[i] = in[i] * factor[i].
template <uint64 kInStep>
QARV_LANES_INLINE void Multiply(uint64 count, const Source& in, const double* factorRe,
                                const double* factorIm, const Split& out) {
  QARV_INDEPENDENT
  for (uint64 i = 0; i < count; ++i) {
    const Complex z =
        Complex{in.re[kInStep * i], in.im[kInStep * i]} * Complex{factorRe[i], factorIm[i]};
    out.re[i] = z.re;
    out.im[i] = z.im;
  }
}

}  // namespace

ChirpFft::ChirpFft(uint64 n, uint64 lines)
    : n_(n), lines_(lines), convolution_(QuickLength(n + lines - 1)) {
  const uint64 M = convolution_.GetSize();
  tables_ = FftTable(2 * (n + M));
  double* const filterRe = tables_.Get();
  double* const filterIm = filterRe + M;
  double* const chirpRe = filterIm + M;
  double* const chirpIm = chirpRe + n;
  chirpRe_ = chirpRe;
  chirpIm_ = chirpIm;
  filterRe_ = filterRe;
  filterIm_ = filterIm;

  const FftTable scratch(2 * M);
  const RootTable roots(2 * n, 1);
  const double scale = 1.0 / static_cast<double>(M);
  const Split wrapped =
      convolution_.ReadsMid() ? FirstHalf(scratch.Get(), M) : Split{filterRe, filterIm};
  std::fill_n(wrapped.re, M, 0.0);
  std::fill_n(wrapped.im, M, 0.0);
  uint64 square = 0;  // j^2 modulo 2 n
  for (uint64 j = 0; j < n; ++j) {
    const Complex c = roots(square);
    chirpRe[j] = c.re;
    chirpIm[j] = c.im;
    const Complex scaled{c.re * scale, -c.im * scale};
    const auto put = [&](uint64 at) {
      wrapped.re[at] = scaled.re;
      wrapped.im[at] = scaled.im;
    };
    if (j < lines) put(j);
    if (j != 0) put(M - j);
    square = (square + 2 * j + 1) % (2 * n);
  }
  convolution_.Transform(BestInstructionSet(), {wrapped.re, wrapped.im, 1},
                         FirstHalf(scratch.Get(), M), {filterRe, filterIm});
}

void ChirpFft::Transform(InstructionSet set, const Source& in, double* scratch,
                         const Target& out) const {
  const uint64 M = convolution_.GetSize();
  const Split z = FirstHalf(scratch, M);
  RunWith(set, [&]() QARV_LANES {
    if (in.step == 1) return Multiply<1>(n_, in, chirpRe_, chirpIm_, z);
    Multiply<2>(n_, {in.re, in.re + 1, 2}, chirpRe_, chirpIm_, z);
  });
  Convolve(set, n_, false, scratch);
  RunWith(set, [&]() QARV_LANES {
    const Source from{z.re, z.im, 1};
    if (out.im != nullptr) {
      return Multiply<1>(lines_, from, chirpRe_, chirpIm_, {out.re, out.im});
    }
    QARV_INDEPENDENT
    for (uint64 k = 0; k < lines_; ++k) {
      const Complex value = Complex{z.re[k], z.im[k]} * Complex{chirpRe_[k], chirpIm_[k]};
      out.re[2 * k] = value.im;
      out.re[2 * k + 1] = value.re;
    }
  });
}

void ChirpFft::ForwardReal(InstructionSet set, const double* in, double* scratch,
                           const Split& out) const {
  const Split z = FirstHalf(scratch, convolution_.GetSize());
  RunWith(set, [&]() QARV_LANES {
    QARV_INDEPENDENT
    for (uint64 j = 0; j < n_; ++j) {
      z.re[j] = in[j] * chirpRe_[j];
      z.im[j] = in[j] * chirpIm_[j];
    }
  });
  Convolve(set, n_, false, scratch);
  RunWith(set, [&]() QARV_LANES { Multiply<1>(lines_, {z.re, z.im, 1}, chirpRe_, chirpIm_, out); });
}

// n x[j] = Re(X[0] + 2 sum over the lines k of conj(X[k]) exp(-2 pi i j k / n)): lines and values
// change places, and with them the sign of k - j in the convolution.
void ChirpFft::InverseReal(InstructionSet set, const double* re, const double* im, double* scratch,
                           double* out) const {
  const Split z = FirstHalf(scratch, convolution_.GetSize());
  const double scale = 1.0 / static_cast<double>(n_);
  RunWith(set, [&]() QARV_LANES {
    QARV_INDEPENDENT
    for (uint64 k = 0; k < lines_; ++k) {
      const Complex line{2.0 * scale * re[k], -2.0 * scale * im[k]};
      const Complex value = line * Complex{chirpRe_[k], chirpIm_[k]};
      z.re[k] = value.re;
      z.im[k] = value.im;
    }
  });
  z.re[0] = scale * re[0];
  z.im[0] = 0.0;
  Convolve(set, lines_, true, scratch);
  RunWith(set, [&]() QARV_LANES {
    QARV_INDEPENDENT
    for (uint64 j = 0; j < n_; ++j) out[j] = z.re[j] * chirpRe_[j] - z.im[j] * chirpIm_[j];
  });
}

void ChirpFft::Convolve(InstructionSet set, uint64 count, bool backwards, double* scratch) const {
  const uint64 M = convolution_.GetSize();
  const Split a = FirstHalf(scratch, M);
  const Split b = FirstHalf(scratch + 2 * M, M);
  std::fill(a.re + count, a.re + M, 0.0);
  std::fill(a.im + count, a.im + M, 0.0);
  // From a to where the passes lead, and back to a.
  const bool odd = convolution_.ReadsMid();
  const Split& middle = odd ? b : a;
  const Split& other = odd ? a : b;
  convolution_.Transform(set, {a.re, a.im, 1}, other, middle);
  if (backwards) {
    ApplyFilterBackwards(set, middle);
  } else {
    ApplyFilter(set, middle);
  }
  // Exchanged parts: the inverse.
  convolution_.Transform(set, {middle.im, middle.re, 1}, {b.im, b.re}, {a.im, a.re});
}

void ChirpFft::ApplyFilter(InstructionSet set, const Split& z) const {
  RunWith(set, [&]() QARV_LANES {
    Multiply<1>(convolution_.GetSize(), {z.re, z.im, 1}, filterRe_, filterIm_, z);
  });
}

void ChirpFft::ApplyFilterBackwards(InstructionSet set, const Split& z) const {
  const uint64 M = convolution_.GetSize();
  Multiply<1>(1, {z.re, z.im, 1}, filterRe_, filterIm_, z);
  RunWith(set, [&]() QARV_LANES {
    QARV_INDEPENDENT
    for (uint64 k = 1; k < M; ++k) {
      const Complex value = Complex{z.re[k], z.im[k]} * Complex{filterRe_[M - k], filterIm_[M - k]};
      z.re[k] = value.re;
      z.im[k] = value.im;
    }
  });
}

}  // namespace qarv::common
