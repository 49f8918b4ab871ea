// Fourier transform of real waves: an even length through a complex transform of half of it, an odd
// one through a complex transform of its own length.
//
//   h     half of an even length
//   z     complex values: of an even wave, sample 2 j + i sample 2 j + 1
//   Z     their spectrum, from which the wave's is X[k] = E[k] + w^k O[k], w = exp(-2 pi i / n)
//   E, O  spectra of the even and of the odd samples
#include "common/numeric/mat_fft.h"

#include <vector>

#include "numeric/fft_complex.h"
#include "numeric/fft_roots.h"

namespace qarv::common {

class FftPlan::Tables {
 public:
  explicit Tables(uint64 n) : n_(n), complex_(n % 2 == 0 ? n / 2 : n) {
    if (n % 2 != 0) return;
    const RootTable roots(n);
    twiddle_.reserve(static_cast<std::size_t>(n / 4 + 1));
    for (uint64 k = 0; k <= n / 4; ++k) twiddle_.push_back(roots(k));
  }

  uint64 GetWorkSize() const {
    // The complex values stand in `work`, the scratch behind them; an even length with small
    // factors finds room for one of the two in the caller's arrays.
    const uint64 values = 2 * complex_.GetSize();
    return IsSlim() ? values : values + complex_.GetScratchSize();
  }

  void Forward(const double* wave, double* work, double* spec1, double* spec2) const {
    if (n_ % 2 != 0) {
      ForwardOdd(wave, work, spec1, spec2);
      return;
    }
    for (uint64 j = 0; j < n_ / 2; ++j) {
      spec1[j] = wave[2 * j];
      spec2[j] = wave[2 * j + 1];
    }
    complex_.Transform(spec1, spec2, work);
    Untangle(spec1, spec2);
  }

  void Inverse(double* wave, double* work, const double* spec1, const double* spec2) const {
    if (n_ % 2 != 0) {
      InverseOdd(wave, work, spec1, spec2);
      return;
    }
    const uint64 h = n_ / 2;
    double* const zr = work;
    double* const zi = work + h;
    Entangle(spec1, spec2, zr, zi);
    complex_.Transform(zi, zr, IsSlim() ? wave : work + n_);  // exchanged: the inverse
    const double scale = 1.0 / static_cast<double>(h);
    for (uint64 j = 0; j < h; ++j) {
      wave[2 * j] = zr[j] * scale;
      wave[2 * j + 1] = zi[j] * scale;
    }
  }

 private:
  bool IsSlim() const { return n_ % 2 == 0 && complex_.GetScratchSize() <= n_; }

  void ForwardOdd(const double* wave, double* work, double* spec1, double* spec2) const {
    double* const re = work;
    double* const im = work + n_;
    for (uint64 j = 0; j < n_; ++j) {
      re[j] = wave[j];
      im[j] = 0.0;
    }
    complex_.Transform(re, im, work + 2 * n_);
    for (uint64 k = 0; k <= n_ / 2; ++k) {
      spec1[k] = re[k];
      spec2[k] = im[k];
    }
    spec2[0] = 0.0;
  }

  void InverseOdd(double* wave, double* work, const double* spec1, const double* spec2) const {
    double* const re = work;
    double* const im = work + n_;
    re[0] = spec1[0];
    im[0] = 0.0;
    for (uint64 k = 1; k <= n_ / 2; ++k) {
      re[k] = re[n_ - k] = spec1[k];
      im[k] = spec2[k];
      im[n_ - k] = -spec2[k];
    }
    complex_.Transform(im, re, work + 2 * n_);  // exchanged: the inverse
    const double scale = 1.0 / static_cast<double>(n_);
    for (uint64 j = 0; j < n_; ++j) wave[j] = re[j] * scale;
  }

  /// From Z to the spectrum X, in place: lines k and h - k come from the same two values.
  void Untangle(double* re, double* im) const {
    const uint64 h = n_ / 2;
    const Complex z0{re[0], im[0]};
    re[0] = z0.re + z0.im;
    re[h] = z0.re - z0.im;
    im[0] = im[h] = 0.0;
    for (std::size_t k = 1; k <= h / 2; ++k) {
      const Complex a{re[k], im[k]};
      const Complex b{re[h - k], im[h - k]};
      const Complex even{0.5 * (a.re + b.re), 0.5 * (a.im - b.im)};
      const Complex odd{0.5 * (a.im + b.im), 0.5 * (b.re - a.re)};
      const Complex turned = odd * Complex{twiddle_[k].re, -twiddle_[k].im};
      re[k] = even.re + turned.re;
      im[k] = even.im + turned.im;
      re[h - k] = even.re - turned.re;
      im[h - k] = turned.im - even.im;
    }
  }

  /// From the spectrum X to Z.
  void Entangle(const double* spec1, const double* spec2, double* zr, double* zi) const {
    const uint64 h = n_ / 2;
    zr[0] = 0.5 * (spec1[0] + spec1[h]);
    zi[0] = 0.5 * (spec1[0] - spec1[h]);
    for (std::size_t k = 1; k <= h / 2; ++k) {
      const Complex a{spec1[k], spec2[k]};
      const Complex b{spec1[h - k], -spec2[h - k]};
      const Complex even{0.5 * (a.re + b.re), 0.5 * (a.im + b.im)};
      const Complex odd = Complex{0.5 * (a.re - b.re), 0.5 * (a.im - b.im)} * twiddle_[k];
      zr[k] = even.re - odd.im;
      zi[k] = even.im + odd.re;
      zr[h - k] = even.re + odd.im;
      zi[h - k] = odd.re - even.im;
    }
  }

  uint64 n_;
  ComplexFft complex_;
  std::vector<Complex> twiddle_;  // exp(2 pi i k / n) for the first quarter
};

FftPlan::FftPlan(uint64 n) : n_(n) {
  if (n != 0) tables_ = std::make_shared<const Tables>(n);
}

uint64 FftPlan::GetWorkSize() const { return tables_ ? tables_->GetWorkSize() : 0; }

bool FftPlan::Forward(const double* wave, double* work, double* spec1, double* spec2) const {
  if (!tables_ || wave == nullptr || work == nullptr) return false;
  if (spec1 == nullptr || spec2 == nullptr) return false;
  tables_->Forward(wave, work, spec1, spec2);
  return true;
}

bool FftPlan::Inverse(double* wave, double* work, const double* spec1, const double* spec2) const {
  if (!tables_ || wave == nullptr || work == nullptr) return false;
  if (spec1 == nullptr || spec2 == nullptr) return false;
  tables_->Inverse(wave, work, spec1, spec2);
  return true;
}

namespace {

/// Runs a transform with the caller's work of n doubles, or with a larger one where it takes more.
template <class Transform>
bool WithWork(uint64 n, double* work, Transform transform) {
  const FftPlan plan(n);
  if (plan.GetWorkSize() <= n) return transform(plan, work);
  std::vector<double> larger(static_cast<std::size_t>(plan.GetWorkSize()));
  return transform(plan, larger.data());
}

}  // namespace

bool CMatFFT::WaveRfft(const double* wave, double* work, uint64 n, double* spec1, double* spec2,
                       uint64 nline) {
  if (wave == nullptr || work == nullptr || spec1 == nullptr || spec2 == nullptr) return false;
  if (n == 0 || nline != n / 2) return false;
  return WithWork(n, work, [&](const FftPlan& plan, double* room) {
    return plan.Forward(wave, room, spec1, spec2);
  });
}

bool CMatFFT::WaveIfft(double* wave, double* work, uint64 n, const double* spec1,
                       const double* spec2, uint64 nline) {
  if (wave == nullptr || work == nullptr || spec1 == nullptr || spec2 == nullptr) return false;
  if (n == 0 || nline != n / 2) return false;
  return WithWork(n, work, [&](const FftPlan& plan, double* room) {
    return plan.Inverse(wave, room, spec1, spec2);
  });
}

bool CMatFFT::GetCosSinI(int64 i, int64 n, double* c, double* s) {
  if (n <= 0 || c == nullptr || s == nullptr) return false;
  const int64 rest = i % n;
  const Complex root =
      UnitRoot(static_cast<uint64>(rest < 0 ? rest + n : rest), static_cast<uint64>(n));
  *c = root.re;
  *s = root.im;
  return true;
}

}  // namespace qarv::common
