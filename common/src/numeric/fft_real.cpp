// Fourier transform of real waves: an even length through a complex transform of half of it, an odd
// one through a complex transform of its own length.
//
//   h     half of an even length
//   z     complex values: of an even wave, sample 2 j + i sample 2 j + 1
//   Z     their spectrum, from which the wave's is X[k] = E[k] + w^k O[k], w = exp(-2 pi i / n)
//   E, O  spectra of the even and of the odd samples
#include "numeric/fft_real.h"

#include <algorithm>
#include <limits>
#include <new>

#include "numeric/fft_roots.h"

namespace qarv::common {

RealFft::RealFft(uint64 n) : n_(n), points_(n % 2 == 0 ? n / 2 : n) {
  // More than memory can hold is refused before any table is begun.
  if (n > std::numeric_limits<uint64>::max() / 128) throw std::bad_alloc();
  if (ComplexFft::HasPasses(points_)) {
    passes_.emplace(points_);
  } else {
    chirp_.emplace(points_, IsEven() ? points_ : n / 2 + 1);
  }
  if (!IsEven()) return;
  const uint64 lines = n / 4 + 1;
  twiddle_ = FftTable(2 * lines);
  RootTable(n, 1).FillRow(BestInstructionSet(), 1, lines, twiddle_.Get(), twiddle_.Get() + lines);
}

uint64 RealFft::GetWorkSize() const {
  if (chirp_) return chirp_->GetScratchSize();
  return IsEven() ? n_ : 4 * n_;
}

void RealFft::Forward(const double* wave, double* work, double* spec1, double* spec2,
                      InstructionSet set) const {
  const Split spec{spec1, spec2};
  if (!IsEven()) return ForwardOdd(set, wave, work, spec);
  const uint64 h = points_;
  const Source pairs{wave, wave + 1, 2};
  Split z{work, work + h};
  if (chirp_) {
    double* const room = chirp_->GetFreeHalf(work);
    z = {room, room + h};
    chirp_->Transform(set, pairs, work, {z.re, z.im});
  } else {
    passes_->Transform(set, pairs, spec, z);
  }
  Untangle(set, z, spec);
}

void RealFft::Inverse(double* wave, double* work, const double* spec1, const double* spec2,
                      InstructionSet set) const {
  if (!IsEven()) return InverseOdd(set, wave, work, spec1, spec2);
  const uint64 h = points_;
  // Real and imaginary parts change places on the way in and, by the pairs, on the way out.
  const Target pairs{wave, nullptr};
  if (chirp_) {
    double* const room = chirp_->GetFreeHalf(work);
    Entangle(set, spec1, spec2, {room, room + h});
    chirp_->Transform(set, {room + h, room, 1}, work, pairs);
    return;
  }
  const Split mid{work, work + h};
  const Split out{wave, wave + h};
  const Split& z = passes_->ReadsMid() ? mid : out;
  Entangle(set, spec1, spec2, z);
  passes_->Transform(set, {z.im, z.re, 1}, mid, out, pairs);
}

void RealFft::ForwardOdd(InstructionSet set, const double* wave, double* work,
                         const Split& spec) const {
  if (chirp_) {
    chirp_->ForwardReal(set, wave, work, spec);
  } else {
    const Split mid{work, work + n_};
    const Split out{work + 2 * n_, work + 3 * n_};
    double* const zeros = passes_->ReadsMid() ? mid.im : out.im;
    std::fill_n(zeros, n_, 0.0);
    passes_->Transform(set, {wave, zeros, 1}, mid, out);
    std::copy_n(out.re, n_ / 2 + 1, spec.re);
    std::copy_n(out.im, n_ / 2 + 1, spec.im);
  }
  spec.im[0] = 0.0;
}

void RealFft::InverseOdd(InstructionSet set, double* wave, double* work, const double* spec1,
                         const double* spec2) const {
  if (chirp_) return chirp_->InverseReal(set, spec1, spec2, work, wave);
  const Split mid{work, work + n_};
  const Split out{work + 2 * n_, wave};
  // Exchanged parts: the inverse, with its real parts in the wave.
  const Split& z = passes_->ReadsMid() ? mid : out;
  const double scale = 1.0 / static_cast<double>(n_);
  z.im[0] = scale * spec1[0];
  z.re[0] = 0.0;
  for (uint64 k = 1; k <= n_ / 2; ++k) {
    z.im[k] = z.im[n_ - k] = scale * spec1[k];
    z.re[k] = scale * spec2[k];
    z.re[n_ - k] = -z.re[k];
  }
  passes_->Transform(set, {z.re, z.im, 1}, mid, out);
}

/// From Z to the spectrum X: lines k and h - k come from the same two values.
void RealFft::Untangle(InstructionSet set, const Split& z, const Split& spec) const {
  const uint64 h = points_;
  const double* const wr = twiddle_.Get();
  const double* const wi = wr + n_ / 4 + 1;
  spec.re[0] = z.re[0] + z.im[0];
  spec.re[h] = z.re[0] - z.im[0];
  spec.im[0] = spec.im[h] = 0.0;
  if (h % 2 == 0) {
    spec.re[h / 2] = z.re[h / 2];
    spec.im[h / 2] = -z.im[h / 2];
  }
  RunWith(set, [&]() QARV_LANES {
    const uint64 last = (h - 1) / 2;
    QARV_INDEPENDENT
    for (uint64 k = 1; k <= last; ++k) {
      const Complex a{z.re[k], z.im[k]};
      const Complex b{z.re[h - k], z.im[h - k]};
      const Complex even{0.5 * (a.re + b.re), 0.5 * (a.im - b.im)};
      const Complex odd{0.5 * (a.im + b.im), 0.5 * (b.re - a.re)};
      const Complex turned = odd * Complex{wr[k], wi[k]};
      spec.re[k] = even.re + turned.re;
      spec.im[k] = even.im + turned.im;
      spec.re[h - k] = even.re - turned.re;
      spec.im[h - k] = turned.im - even.im;
    }
  });
}

/// From the spectrum X to Z, divided by h for the inverse.
void RealFft::Entangle(InstructionSet set, const double* spec1, const double* spec2,
                       const Split& z) const {
  const uint64 h = points_;
  const double* const wr = twiddle_.Get();
  const double* const wi = wr + n_ / 4 + 1;
  const double scale = 1.0 / static_cast<double>(h);
  const double half = 0.5 * scale;
  z.re[0] = half * (spec1[0] + spec1[h]);
  z.im[0] = half * (spec1[0] - spec1[h]);
  if (h % 2 == 0) {
    z.re[h / 2] = scale * spec1[h / 2];
    z.im[h / 2] = -scale * spec2[h / 2];
  }
  RunWith(set, [&]() QARV_LANES {
    const uint64 last = (h - 1) / 2;
    QARV_INDEPENDENT
    for (uint64 k = 1; k <= last; ++k) {
      const Complex a{spec1[k], spec2[k]};
      const Complex b{spec1[h - k], -spec2[h - k]};
      const Complex even{half * (a.re + b.re), half * (a.im + b.im)};
      const Complex odd =
          Complex{half * (a.re - b.re), half * (a.im - b.im)} * Complex{wr[k], -wi[k]};
      z.re[k] = even.re - odd.im;
      z.im[k] = even.im + odd.re;
      z.re[h - k] = even.re + odd.im;
      z.im[h - k] = odd.re - even.im;
    }
  });
}

}  // namespace qarv::common
