// The Fourier transform of any length, as a convolution.
#pragma once

#include "common/int_types.h"
#include "numeric/fft_complex.h"
#include "numeric/fft_table.h"

namespace qarv::common {

/// The transform as a convolution with a chirp: j k = (j^2 + k^2 - (k - j)^2) / 2 makes
///
///   Z[k] = c[k] sum (z[j] c[j]) conj(c[k - j]),   c[j] = exp(-pi i j^2 / n),
///
/// which is computed by transforms of a length M with small factors (L. I. Bluestein, A linear
/// filtering approach to the computation of the discrete Fourier transform, 1970).  M holds n
/// values and as many lines as are wanted, without the convolution's wrapping onto them.
class ChirpFft {
 public:
  /// @param[in]  lines  how many of the n lines are wanted, 0 .. lines - 1
  ChirpFft(uint64 n, uint64 lines);

  /// The number of doubles that the transforms need for their scratch: 4 M.
  uint64 GetScratchSize() const { return 4 * convolution_.GetSize(); }
  /// The half of the scratch in which input and output may stand.
  double* GetFreeHalf(double* scratch) const { return scratch + 2 * convolution_.GetSize(); }

  /// From n complex values to the lines.  The inverse, unscaled, is the same with re and im
  /// exchanged, if all lines are wanted.
  void Transform(InstructionSet set, const Source& in, double* scratch, const Target& out) const;

  /// From n real values to the lines.
  void ForwardReal(InstructionSet set, const double* in, double* scratch, const Split& out) const;

  /// From the first half of the lines of n real values, lines = n / 2 + 1 of odd n, to the values.
  void InverseReal(InstructionSet set, const double* re, const double* im, double* scratch,
                   double* out) const;

 private:
  /// Convolves the first `count` values of the scratch, which is filled up with zeros.
  void Convolve(InstructionSet set, uint64 count, bool backwards, double* scratch) const;
  void ApplyFilter(InstructionSet set, const Split& z) const;
  void ApplyFilterBackwards(InstructionSet set, const Split& z) const;

  uint64 n_;
  uint64 lines_;
  ComplexFft convolution_;
  FftTable tables_;
  const double* chirpRe_;  // c[0 .. n - 1]
  const double* chirpIm_;
  const double* filterRe_;  // transform of conj(c), scaled for the inverse
  const double* filterIm_;
};

}  // namespace qarv::common
