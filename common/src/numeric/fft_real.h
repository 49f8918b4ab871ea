// The Fourier transform of real waves, behind its public face FftPlan.
#pragma once

#include <optional>

#include "common/int_types.h"
#include "numeric/fft_chirp.h"
#include "numeric/fft_complex.h"
#include "numeric/fft_table.h"
#include "numeric/instruction_set.h"

namespace qarv::common {

/// The tables of an FftPlan of n samples, 0 < n, and its transforms by a chosen instruction set.
/// Every set gives the same bits.
class RealFft {
 public:
  explicit RealFft(uint64 n);

  uint64 GetWorkSize() const;
  void Forward(const double* wave, double* work, double* spec1, double* spec2,
               InstructionSet set = BestInstructionSet()) const;
  void Inverse(double* wave, double* work, const double* spec1, const double* spec2,
               InstructionSet set = BestInstructionSet()) const;

 private:
  bool IsEven() const { return n_ % 2 == 0; }
  void ForwardOdd(InstructionSet set, const double* wave, double* work, const Split& spec) const;
  void InverseOdd(InstructionSet set, double* wave, double* work, const double* spec1,
                  const double* spec2) const;
  void Untangle(InstructionSet set, const Split& z, const Split& spec) const;
  void Entangle(InstructionSet set, const double* spec1, const double* spec2, const Split& z) const;

  uint64 n_;
  uint64 points_;  // complex values that the wave is transformed as
  // One of the two, for that many values.
  std::optional<ComplexFft> passes_;
  std::optional<ChirpFft> chirp_;
  FftTable twiddle_;  // exp(-2 pi i k / n), k = 0 .. n / 4: real, then imaginary
};

}  // namespace qarv::common
