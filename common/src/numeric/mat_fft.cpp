// The plan of a Fourier transform of real waves, the one-call form, and roots of unity.
#include "common/numeric/mat_fft.h"

#include <vector>

#include "numeric/fft_real.h"
#include "numeric/fft_roots.h"

namespace qarv::common {

FftPlan::FftPlan(uint64 n) : n_(n) {
  if (n != 0) tables_ = std::make_shared<const RealFft>(n);
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
